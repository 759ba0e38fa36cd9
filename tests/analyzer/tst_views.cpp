// The views in pixels, in both bands and every layout: grids with their labels, the colour
// legends, the planar traces of sweeps fed through the engine link, the density colours, the
// waterfall with its time labels, and the fast paint paths against the plain drawing.
#include <QPainter>
#include <QtTest>
#include <algorithm>
#include <climits>
#include <tuple>

#include "framecache.h"
#include "views.h"
#include "wsa_p.h"
#include "wsatestsupport.h"

using namespace wsatest;

namespace
{

const QRgb kBlack = qRgb(0, 0, 0), kWhite = qRgb(255, 255, 255), kBlue = qRgb(0, 0, 255);
const QRgb kGreen = qRgb(0, 255, 0), kYellow = qRgb(255, 255, 0);
const QRgb kDot = QColor(Qt::lightGray).rgb();
const char* const kLayoutNames[] = {"View All", "Planar", "Topographic", "Spectral"};
using Texts = QList<QPair<QPoint, QString>>;

using Probe = std::tuple<int, int, QRgb>; // x, y, colour
struct Density {
    int band, layout, peak, count, level, row, full, point; // colour indices, -1: not drawn
};
struct Waterfall {
    int band, layout, lastIdx, rows, firstLabel, lastLabel; // labels every 12 entries
};

// Levels both bands put on the same rows of the single view (3 pixels per dB in 2.4 GHz, 6 in
// 5 GHz): the first sweep on row 174, the second on 234, their average on 204; then levels above
// and below the range, and one on the dotted row 84.
struct BandLevels {
    int first, second, above, below, row84;
};
const BandLevels kLevels[2] = {{-60, -80, -5, -115, -30}, {-75, -85, -45, -105, -60}};

// Column 51 + i holds sample i's band and bar and the end of its segment: column 151 shows
// sample 100, 251 sample 200 one row inside the top edge, 351 sample 300 inside the bottom.
// One sweep stored: bars and line, no band yet.
const QList<Probe> kFirst = {{151, 100, kBlack},  {151, 172, kBlack},  {151, 173, kGreen},
                             {151, 174, kYellow}, {151, 175, kBlack},  {51, 323, kYellow},
                             {251, 25, kYellow},  {351, 323, kYellow}, {351, 324, kBlack}};
// The band stands for the sweeps before the new one (none in column 51); the bars include it.
const QList<Probe> kSecond = {{151, 173, kBlue},  {151, 174, kBlue},  {151, 203, kBlack},
                              {151, 204, kGreen}, {151, 233, kGreen}, {151, 234, kYellow},
                              {52, 173, kBlue},   {51, 173, kBlack},  {51, 300, kYellow}};
// Redrawn: the band spans both sweeps; where the stored sweep was changed to row 84 its erase
// segment shows, in blue.
const QList<Probe> kRedraw = {{151, 174, kBlue},   {151, 203, kBlue},  {151, 204, kGreen},
                              {151, 234, kYellow}, {207, 84, kBlue},   {231, 84, kDot},
                              {207, 190, kBlue},   {251, 25, kYellow}, {351, 323, kYellow}};
// Redrawn with Max off: no band, the erase segment black over the dotted row.
const QList<Probe> kMaxOff = {{151, 174, kBlack}, {151, 204, kGreen}, {151, 234, kYellow},
                              {206, 84, kBlack},  {207, 84, kBlack},  {231, 84, kDot},
                              {207, 190, kBlack}, {207, 234, kYellow}};
// Current just switched off, the stored sweep changed to row 84: only sample 1 erases its
// segment, in black; no line.
const QList<Probe> kCurrentOff = {{51, 84, kBlack},   {54, 84, kDot},    {207, 84, kDot},
                                  {151, 234, kBlack}, {151, 190, kBlue}, {151, 204, kGreen}};
const QList<Probe>* const kStages[] = {&kFirst, &kSecond, &kRedraw, &kMaxOff, &kCurrentOff};

// View i (0 Planar, 1 Topographic, 2 Spectral) as laid out: stacked in View All, else alone.
QRect viewRect(int band, bool all, int i)
{
    const int top = all ? 24 + 122 * i : 24;
    return QRect(QPoint(50, top), QPoint(band ? 505 : 473, top + (all ? 100 : 300)));
}

// The texts alone over the window background, drawn as the views draw text.
QImage textsAlone(const Texts& texts, QColor pen = Qt::white)
{
    QImage image(800, 400, QImage::Format_ARGB32_Premultiplied);
    image.fill(viewBackground());
    QPainter painter(&image);
    painter.setFont(viewFont());
    painter.setPen(pen);
    for (const auto& [at, text] : texts)
        painter.drawText(at, text);
    return image;
}

int dotsAlong(const QImage& image, QPoint p, QPoint step, int n)
{
    int dots = 0;
    for (int k = 0; k < n; ++k, p += step)
        dots += image.pixel(p) == kDot;
    return dots;
}

// A colour as a 5-6-5 pixel shows it.
QRgb through16(QRgb color)
{
    QImage pixel(1, 1, QImage::Format_RGB16);
    pixel.fill(QColor(color));
    return pixel.convertToFormat(QImage::Format_ARGB32).pixel(0, 0);
}

// Everything a paint could change in the statistics.
QByteArray statistics()
{
    auto raw = [](auto& v) { return QByteArray(reinterpret_cast<const char*>(&v), sizeof v); };
    return raw(maxData) + raw(minData) + raw(sumData) + raw(popularity) + raw(historyColor) +
           raw(sweep_peak_max);
}

void addLayoutRows(std::initializer_list<Layout> layouts)
{
    QTest::addColumn<int>("band");
    QTest::addColumn<int>("layout");
    for (int band : {0, 1})
        for (Layout l : layouts)
            QTest::addRow("%s, %s", band ? "5 GHz" : "2.4 GHz", kLayoutNames[l]) << band << int(l);
}

} // namespace

Q_DECLARE_METATYPE(Density)
Q_DECLARE_METATYPE(Waterfall)

class TstViews : public QObject
{
    Q_OBJECT
    AnalyzerFixture f;

    static QRgb mapColor(int k) { return qRgb(colormap[k].r, colormap[k].g, colormap[k].b); }

    // One sweep through the link: sample 0 below the range (its seeded maximum leaves band
    // column 51 out), sample 200 above, 300 below. A 5 GHz record carries each sample twice and
    // 60 pairs beyond the view.
    void feed(int band, int level)
    {
        const int n = band ? 452 : 423, pair = band + 1;
        stSweep record = makeSweep(pair * (n + 60 * band), level);
        for (int k = 0; k < pair; ++k) {
            record.data[k] = record.data[300 * pair + k] = kLevels[band].below;
            record.data[200 * pair + k] = kLevels[band].above;
        }
        QVERIFY(sendRecord(f.link, record));
        f.w->wsaDataParse();
    }

private slots:
    void initTestCase() { QVERIFY(f.start()); }
    void init()
    {
        f.w->initData();
        f.w->m_bInspector = f.w->m_bUpdate = bReferencePainting = bRefreshPlanarView = false;
        bCurrent = bAverage = bMax = true;
    }

    // Grids with their labels, the frequency labels under the bottom view, the legends.
    void fixedPixels_data() { addLayoutRows({ViewAll, PlanarOnly, TopoOnly, SpectralOnly}); }
    void fixedPixels()
    {
        QFETCH(int, band);
        QFETCH(int, layout);
        selectLayout(f.w, band, Layout(layout));
        const QImage image = renderAnalyzer(f.w);
        const bool all = layout == ViewAll;
        const int cellW = band ? 65 : 47, cellH = all ? 10 : 30;
        const QStringList labels =
            band ? QStringList{"-55", "-60", "-65", "-70", "-75", "-80", "-85", "-90", "-95"}
                 : QStringList{"-20", "-30", "-40", "-50", "-60", "-70", "-80", "-90", "-100"};
        Texts texts;
        for (int view : {0, 1}) {
            if (!all && layout != PlanarOnly + view)
                continue;
            const QRect g = viewRect(band, all, view);
            const int L = g.left(), T = g.top(), R = g.right(), B = g.bottom();
            // The frame strokes the left and top edges and just outside the right and bottom;
            // dotted lines inside, each with a tick outside.
            QList<int> rows, columns, leftTicks, bottomTicks, wantRows, wantColumns;
            for (int y = T; y <= B + 1; ++y) {
                QVERIFY(image.pixel(L, y) == kWhite && image.pixel(R + 1, y) == kWhite);
                if (dotsAlong(image, {L + 1, y}, {1, 0}, R - L) > (R - L) / 4)
                    rows << y;
                if (image.pixel(L - 2, y) == kWhite)
                    leftTicks << y;
            }
            for (int x = L; x <= R + 1; ++x) {
                QVERIFY(image.pixel(x, T) == kWhite && image.pixel(x, B + 1) == kWhite);
                if (dotsAlong(image, {x, T + 1}, {0, 1}, B - T) > (B - T) / 4)
                    columns << x;
                if (image.pixel(x, B + 2) == kWhite)
                    bottomTicks << x;
            }
            for (int k = 1; k <= 9; ++k) {
                wantRows << T + k * cellH;
                if (k <= (band ? 6 : 8))
                    wantColumns << L + k * cellW;
            }
            QCOMPARE(rows, wantRows);
            QCOMPARE(leftTicks, wantRows);
            QCOMPARE(columns, wantColumns);
            QCOMPARE(bottomTicks, wantColumns);
            QCOMPARE(image.pixel(L + 2, T + cellH), kBlack); // dotted, not solid
            // Ticks three pixels long.
            QVERIFY(image.pixel(L - 3, T + cellH) == kWhite &&
                    image.pixel(L - 4, T + cellH) != kWhite);
            QVERIFY(image.pixel(L + cellW, B + 3) == kWhite &&
                    image.pixel(L + cellW, B + 4) != kWhite);
            texts << qMakePair(QPoint(L - 40, T + 7), CWsa::tr("dBm"));
            for (int i = all; i < 9; i += 1 + all) // View All labels every second row
                texts << qMakePair(QPoint(L - 40, T + (i + 1) * cellH + 7), labels[i]);
        }
        // One frequency label under each inner column line of the bottom view.
        const QStringList frequencies =
            band ? QStringList{"5260", "5360", "5460", "5560", "5660", "5760"}
                 : QStringList{"2410", "2420", "2430", "2440", "2450", "2460", "2470", "2480"};
        const int baseline = all ? 388 : 344;
        for (int k = 0; k < frequencies.size(); ++k)
            texts << qMakePair(QPoint(50 + (k + 1) * cellW - 15, baseline), frequencies[k]);
        const QImage want = textsAlone(texts);
        for (const QRect& area : {QRect(0, 0, 47, 400), QRect(50, baseline - 14, 456, 20)})
            QCOMPARE(image.copy(area), want.copy(area));

        // Legends of the density and waterfall colours, centred over their views.
        const int l = band ? 157 : 141;
        for (int view : {1, 2}) {
            if (!all && layout != PlanarOnly + view)
                continue;
            const int t = viewRect(band, all, view).top() - 12;
            for (int k = 0; k < 240; ++k)
                for (int y = t + 1; y <= t + 8; ++y)
                    QCOMPARE(image.pixel(l + 1 + k, y), mapColor(k));
            // A black frame round the colour lines; the boxes beside it hold only the texts.
            for (int x = l; x <= l + 241; ++x)
                QVERIFY(image.pixel(x, t) == kBlack && image.pixel(x, t + 9) == kBlack);
            for (int y = t; y <= t + 9; ++y)
                QVERIFY(image.pixel(l, y) == kBlack && image.pixel(l + 241, y) == kBlack);
            const QString low = view == 1 ? "0.0%" : band ? "-100 dBm" : "-110 dBm";
            const QString high = view == 1 ? "2.0%" : band ? "-50 dBm" : "-10 dBm";
            const QImage legendTexts =
                textsAlone({{QPoint(l - (view == 1 ? 38 : 75), t + 10), low},
                            {QPoint(l + (view == 1 ? 245 : 247), t + 10), high}},
                           Qt::black);
            for (const QRect& box : {QRect(l - 80, t - 1, 79, 13), QRect(l + 242, t - 1, 80, 13)})
                QCOMPARE(image.copy(box), legendTexts.copy(box));
        }
    }

    void planar_data()
    {
        QTest::addColumn<int>("band");
        QTest::addColumn<int>("stage");
        const char* names[] = {"first sweep", "second sweep", "redraw", "redraw, Max off",
                               "redraw, Current off"};
        for (int band : {0, 1})
            for (int s = 0; s < 5; ++s)
                QTest::addRow("%s, %s", band ? "5 GHz" : "2.4 GHz", names[s]) << band << s;
    }
    void planar()
    {
        QFETCH(int, band);
        QFETCH(int, stage);
        selectLayout(f.w, band, PlanarOnly);
        QImage image;
        for (int k = 0; k <= qMin(stage, 1); ++k) {
            feed(band, k ? kLevels[band].second : kLevels[band].first);
            image = renderAnalyzer(f.w);
        }
        if (stage >= 2) {
            for (int i = stage < 4 ? 150 : 0; i < (stage < 4 ? 170 : 400); ++i)
                historyData[nLastIdx].data[i] = kLevels[band].row84;
            bMax = stage != 3;
            bCurrent = stage != 4;
            f.w->wsaDataParse(); // a tick without a record: the redraw restores the sweep
            const QByteArray before = statistics();
            f.w->msgUpdate();
            image = renderAnalyzer(f.w);
            QVERIFY(statistics() == before);
        }
        for (const auto& [x, y, color] : *kStages[stage])
            QVERIFY2(image.pixel(x, y) == color, qPrintable(QString("(%1, %2)").arg(x).arg(y)));
    }

    // Nothing to draw for a sweep of at most one sample, new or redrawn, and nothing counted.
    void shortSweepDrawsNothing()
    {
        selectLayout(f.w, 0, ViewAll);
        fillFullState(423);
        const QImage before = renderAnalyzer(f.w);
        const QByteArray counted = statistics();
        for (int n : {1, 0, -4})
            for (bool fresh : {true, false}) {
                (fresh ? currentData : currentDatatmp) = makeSweep(n, -40);
                (fresh ? bReceivedData : f.w->m_bUpdate) = true;
                QVERIFY2(renderAnalyzer(f.w) == before, qPrintable(QString::number(n)));
                QVERIFY(statistics() == counted);
            }
    }

    // A stored sweep keeps its levels unclamped; any of them maps one row inside the frame.
    void extremeLevelsStayInside()
    {
        const QRect r = grid_rect_maximize;
        for (int level : {INT_MIN, -1000000, -111, 0, INT_MAX})
            QVERIFY(clampedRow(r, level) > r.top() && clampedRow(r, level) < r.bottom());
        QCOMPARE(clampedRow(r, INT_MIN), r.bottom() - 1);
        QCOMPARE(clampedRow(r, 0), r.top() + 1);
    }

    // Sample 5 of 6 seen `count` times at magnitude `level`; sample 6 too, beyond the sweep.
    void density_data()
    {
        QTest::addColumn<Density>("d");
        QTest::newRow("2.4 GHz, all, peak 1") << Density{0, ViewAll, 1, 1, 61, 197, 239, 239};
        QTest::newRow("2.4 GHz, single, peak 199") << Density{0, TopoOnly, 199, 1, 81, 237, 30, 30};
        QTest::newRow("5 GHz, all, peak 200") << Density{1, ViewAll, 200, 1, 51, 148, 60, 60};
        QTest::newRow("5 GHz, single, peak 399") << Density{1, TopoOnly, 399, 1, 99, 318, 30, 30};
        QTest::newRow("2.4 GHz, all, peak 400") << Density{0, ViewAll, 400, 1, 89, 225, 60, 60};
        QTest::newRow("5 GHz, ratio first") << Density{1, ViewAll, 1000, 9, 71, 188, 216, 215};
        QTest::newRow("2.4 GHz, |nMinDraw|") << Density{0, TopoOnly, 1, 1, 110, 323, -1, 239};
        QTest::newRow("5 GHz, |nMaxDraw|") << Density{1, TopoOnly, 1, 1, 50, 25, -1, 239};
    }
    void density()
    {
        QFETCH(Density, d);
        selectLayout(f.w, d.band, Layout(d.layout));
        maxData.num_samples = 6;
        sweep_peak_max = d.peak;
        popularity[5][d.level] = popularity[6][d.level] = d.count;
        QImage image = renderAnalyzer(f.w);
        QCOMPARE(image.pixel(55, d.row), d.full < 0 ? kBlack : mapColor(d.full));
        QCOMPARE(image.pixel(56, d.row), kBlack);
        // The point of the sample in hand stands at the sweep's level, edge levels included.
        currentData.data[5] = -d.level;
        QPainter painter(&image);
        f.w->drawTopoSample(&painter, 5, d.level);
        painter.end();
        QCOMPARE(image.pixel(55, d.row), mapColor(d.point));
    }

    // A redraw pass over a full recording seen through nLastIdx.
    void waterfall_data()
    {
        QTest::addColumn<Waterfall>("s");
        QTest::newRow("2.4 GHz, single, ten sweeps") << Waterfall{0, SpectralOnly, 10, 10, 0, 0};
        QTest::newRow("2.4 GHz, all, full") << Waterfall{0, ViewAll, 3597, 50, 3558, 3594};
        QTest::newRow("2.4 GHz, all, one sweep") << Waterfall{0, ViewAll, 0, 0, 0, -1};
        QTest::newRow("5 GHz, all, filling") << Waterfall{1, ViewAll, 40, 40, 0, 36};
        QTest::newRow("5 GHz, single, full") << Waterfall{1, SpectralOnly, 3597, 150, 3450, 3594};
    }
    void waterfall()
    {
        QFETCH(Waterfall, s);
        selectLayout(f.w, s.band, Layout(s.layout));
        fillFullState(s.band ? 452 : 423);
        nLastIdx = s.lastIdx;
        f.w->m_bUpdate = true;
        const QImage image = renderAnalyzer(f.w);
        const QRect v = viewRect(s.band, s.layout == ViewAll, 2);
        const int columns = s.band ? 227 : 211, x = v.left() + 1, y = v.top() + 1;
        // Every second entry of the colour rows, newest on top, doubled; entry 0 is always black.
        for (int r = 0; r < s.rows; ++r)
            for (int c = 0; c < columns; ++c) {
                const QRgb want = c ? through16(historyColor[s.lastIdx - r].color[2 * c]) : kBlack;
                for (int d = 0; d < 4; ++d)
                    QCOMPARE(image.pixel(x + 2 * c + d % 2, y + 2 * r + d / 2), want);
            }
        QCOMPARE(image.pixel(x + 2 * columns, y), kBlack);
        if (2 * s.rows < v.height() - 1)
            QCOMPARE(image.pixel(x + 8, y + 2 * s.rows), kBlack);
        // The label column is cleared even with nothing to label; a label stands on the lower
        // pixel row of its entry.
        QImage column(image.size(), image.format());
        column.fill(Qt::red);
        QPainter painter(&column);
        painter.setFont(viewFont());
        f.w->drawSpectralTime(&painter);
        painter.end();
        Texts labels;
        for (int k = s.firstLabel; k <= s.lastLabel; k += 12)
            labels << qMakePair(QPoint(10, y + 2 * (s.lastIdx - k) + 1),
                                QString(historyTime[k] + 3));
        const QImage want = textsAlone(labels);
        const QRect box(0, v.top(), 50, v.height() + 9);
        QCOMPARE(column.copy(box), want.copy(box));
        QCOMPARE(image.copy(box), want.copy(box));
    }

    // Both paths on the same full store, on a 32-bit and on a 16-bit target. A new sweep is wider
    // than the grid and its density peak reaches 25, repainting the density view inside the
    // pass; once with a planar refresh in the pass. All states draw levels beyond the range and
    // a maximum below it; with overlays the Inspector cursor and a signature outline go on top.
    void fastEqualsReference_data()
    {
        QTest::addColumn<int>("format");
        QTest::addColumn<int>("band");
        QTest::addColumn<int>("layout");
        QTest::addColumn<int>("state"); // 0 redraw, 1 new sweep, 2 new sweep with refresh
        QTest::addColumn<bool>("overlays");
        const char* states[] = {"redraw", "new sweep", "new sweep, refresh"};
        for (QImage::Format format : {QImage::Format_ARGB32_Premultiplied, QImage::Format_RGB16})
            for (int band : {0, 1})
                for (int layout = 0; layout < 4; ++layout)
                    for (int state = 0; state < 3; ++state)
                        for (bool overlays : {false, true})
                            QTest::addRow("%s, %s, %s, %s%s",
                                          format == QImage::Format_RGB16 ? "RGB16" : "RGB32",
                                          band ? "5 GHz" : "2.4 GHz", kLayoutNames[layout],
                                          states[state], overlays ? ", overlays" : "")
                                << int(format) << band << layout << state << overlays;
    }
    void fastEqualsReference()
    {
        QFETCH(int, format);
        QFETCH(int, band);
        QFETCH(int, layout);
        QFETCH(int, state);
        QFETCH(bool, overlays);
        const bool fresh = state > 0;
        QImage images[2];
        for (int reference : {0, 1}) {
            selectLayout(f.w, band, Layout(layout));
            fillFullState(fresh ? int(SA_MAX_SAMPLES) : (band ? 452 : 423), band + 1);
            currentData.data[2] = currentDatatmp.data[2] = nMinDraw - 20;
            currentData.data[3] = currentDatatmp.data[3] = nMaxDraw + 5;
            maxData.data[5] = nMinDraw - 7;
            if (fresh) {
                for (auto& counts : popularity)
                    for (int& count : counts)
                        count %= 25;
                sweep_peak_max = 24;
                popularity[1][-currentData.data[1]] = 24;
            }
            bRefreshPlanarView = state == 2;
            (fresh ? bReceivedData : f.w->m_bUpdate) = true;
            f.w->m_bInspector = f.w->m_bInspectorUpdate = f.w->m_bSignatureUpdate = overlays;
            f.w->m_clickRect = layout == ViewAll ? grid_rect_topographic : grid_rect_maximize;
            f.w->m_clickxPos = 240;
            f.w->m_SignaturePoint = {200, 150};
            bReferencePainting = reference;
            captureStdout([&] { images[reference] = renderAnalyzer(f.w, QImage::Format(format)); });
            // The fast run must have taken the cached paths, in the target's own format.
            if (!reference) {
                const auto* grid = frameCache().findGrid(planarRect(), nCellWidth, nCellHeight);
                const QImage cached = layout != PlanarOnly ? frameCache().legend
                                      : grid               ? grid->image
                                                           : QImage();
                QCOMPARE(cached.format(), format == QImage::Format_RGB16 ? QImage::Format_RGB16
                                                                         : QImage::Format_RGB32);
            }
        }
        bReferencePainting = false;
        f.w->m_bInspector = f.w->m_bInspectorUpdate = f.w->m_bSignatureUpdate = false;
        QCOMPARE(images[0].format(), QImage::Format(format));
        QVERIFY(images[0] == images[1]);
    }

    // The cache follows what it was rendered from without being told: a colour map or display
    // range changed behind its back shows at the next fast frame as in the plain drawing. A reset
    // for a new recording shows all three views, empties the readout and relabels the grids for
    // the new band's range at once.
    void cacheFollowsTheState_data()
    {
        QTest::addColumn<int>("change");
        QTest::newRow("colour map") << 0;
        QTest::newRow("display range") << 1;
        QTest::newRow("reset to the other band") << 2;
    }
    void cacheFollowsTheState()
    {
        QFETCH(int, change);
        for (QImage::Format format : {QImage::Format_ARGB32_Premultiplied, QImage::Format_RGB16}) {
            selectLayout(f.w, 0, ViewAll);
            fillFullState(shownSamples(0));
            const QImage before = renderAnalyzer(f.w, format);
            if (change == 0)
                std::reverse(std::begin(colormap), std::end(colormap));
            else if (change == 1)
                nMaxDraw -= 20;
            else {
                bPlanarView = false, bPrevCurrent = true;
                std::strcpy(strInspector[0], "Freq :  2420");
                s_band = 1;
                f.w->initData();
                QVERIFY(isViewAll() && !bPrevCurrent && !strInspector[0][0] && nLastIdx == -1);
            }
            const QImage fast = renderAnalyzer(f.w, format);
            bReferencePainting = true;
            const QImage plain = renderAnalyzer(f.w, format);
            bReferencePainting = false;
            fillColormap();
            QVERIFY(fast != before);
            QVERIFY(fast == plain);
        }
    }

    // The diagnostic switch: any value but empty or "0" asks for the plain drawing.
    void plainPaintingSwitch()
    {
        const QByteArray saved = qgetenv("WSA_PLAIN_PAINT");
        const std::pair<QByteArray, bool> values[] = {
            {{}, false}, {"0", false}, {"1", true}, {"yes", true}};
        for (const auto& [value, plain] : values) {
            value.isNull() ? void(qunsetenv("WSA_PLAIN_PAINT"))
                           : void(qputenv("WSA_PLAIN_PAINT", value));
            QVERIFY2(wsaPlainPaintingRequested() == plain, value.constData());
        }
        qputenv("WSA_PLAIN_PAINT", saved);
    }
};

QTEST_MAIN(TstViews)
#include "tst_views.moc"
