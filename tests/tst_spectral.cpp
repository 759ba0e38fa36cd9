// The spectral view: waterfall image, time labels and their column, checked pixel by pixel in
// painted images and in the analyzer's own repaint, and the fast paint against the plain one.
#include <QPainter>
#include <QTest>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <memory>

#include "spectral.h"
#include "views.h"
#include "wsa_p.h"
#include "wsatestsupport.h"

namespace
{

const QRgb kMarker = qRgb(40, 41, 42);
const QRgb kBlack = qRgb(0, 0, 0);
enum Layout { ViewAll, PlanarOnly, TopoOnly, SpectralOnly };
const QRect kSingle(QPoint(50, 24), QPoint(473, 324));
const QRect kStacked(QPoint(50, 268), QPoint(473, 368));

void useLayout(CWsa* wsa, int band, int layout)
{
    s_band = band;
    nMinDraw = band ? -100 : -110;
    nMaxDraw = band ? -50 : -10;
    wsa->resizeGrid();
    layout == ViewAll      ? wsa->procViewAll()
    : layout == PlanarOnly ? wsa->procPlanar()
    : layout == TopoOnly   ? wsa->procTopographic()
                           : wsa->procSpectral();
}

QImage paint(const std::function<void(QPainter*)>& draw,
             QImage::Format format = QImage::Format_ARGB32_Premultiplied)
{
    QImage image(800, 400, format);
    image.fill(kMarker);
    QPainter painter(&image);
    painter.setFont(viewFont());
    draw(&painter);
    return image;
}

// A colour as a 5-6-5 image shows it.
QRgb through16(QRgb color)
{
    QImage pixel(1, 1, QImage::Format_RGB16);
    pixel.fill(QColor(color));
    return pixel.convertToFormat(QImage::Format_ARGB32).pixel(0, 0);
}

// Colour rows as the store writes them (entry 0 black) in colours 5-6-5 does not turn black.
void fillRecording()
{
    quint32 seed = 11;
    for (int k = 0; k < WSA_HISTORY_ROWS; ++k) {
        historyColor[k].color[0] = kBlack;
        for (int e = 1; e < WSA_COLOR_LINE; ++e) {
            seed = seed * 1664525u + 1013904223u;
            historyColor[k].color[e] = qRgb(8 + (seed >> 24) % 248, seed >> 16, seed >> 8);
        }
        std::snprintf(historyTime[k], WSA_TIME_TEXT, "%02d:%02d:%02d", k / 3600, k / 60 % 60,
                      k % 60);
    }
}

// Labels (offset of the baseline from the view top, entry) of entries first, first + 12, ... last.
QList<QPoint> labelsOf(int lastIdx, int first, int last)
{
    QList<QPoint> labels;
    for (int k = first; k <= last; k += 12)
        labels << QPoint(2 * (lastIdx - k) + 2, k);
    return labels;
}

} // namespace

class TestSpectral : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        m_env = std::make_unique<wsatest::AnalyzerEnv>();
        m_wsa = std::make_unique<CWsa>();
        m_wsa->setSize(QSize(800, 400));
        m_wsa->m_bInspector = false;
        wsatest::takeOverLink(); // no records arrive behind the tests' back
        fillRecording();
    }
    void cleanup() { bReferencePainting = false; }

    void timeLabels_data()
    {
        QTest::addColumn<QRect>("view");
        QTest::addColumn<int>("lastIdx");
        QTest::addColumn<QList<QPoint>>("labels");
        QTest::newRow("empty") << kSingle << -1 << QList<QPoint>();
        QTest::newRow("one sweep") << kSingle << 0 << QList<QPoint>();
        QTest::newRow("ten sweeps") << kSingle << 10 << labelsOf(10, 0, 0);
        QTest::newRow("none in the lowest rows") << kSingle << 149 << labelsOf(149, 12, 144);
        QTest::newRow("just full") << kSingle << 150 << labelsOf(150, 6, 138);
        QTest::newRow("stacked, longest") << kStacked << 3597 << labelsOf(3597, 3558, 3594);
        QTest::newRow("past the history") << kSingle << int(WSA_HISTORY_ROWS) << QList<QPoint>();
    }
    void timeLabels()
    {
        QFETCH(QRect, view);
        QFETCH(int, lastIdx);
        QFETCH(QList<QPoint>, labels);
        stTimeLabel found[64];
        const int count = spectralTimeLabels(view, lastIdx, found, 64);
        QList<QPoint> got;
        for (int k = 0; k < count; ++k)
            got << QPoint(found[k].y - view.top(), found[k].entry);
        std::sort(got.begin(), got.end(), [](QPoint a, QPoint b) { return a.y() < b.y(); });
        QCOMPARE(got, labels);
    }

    void waterfall_data()
    {
        QTest::addColumn<int>("band");
        QTest::addColumn<int>("layout");
        QTest::addColumn<int>("lastIdx");
        QTest::addColumn<int>("rows");
        QTest::addColumn<int>("columns");
        QTest::newRow("ten sweeps") << 0 << int(SpectralOnly) << 10 << 10 << 211;
        QTest::newRow("single holds 150") << 0 << int(SpectralOnly) << 3597 << 150 << 211;
        QTest::newRow("stacked holds 50") << 0 << int(ViewAll) << 3597 << 50 << 211;
        QTest::newRow("5 GHz filling") << 1 << int(ViewAll) << 40 << 40 << 227;
        QTest::newRow("5 GHz single") << 1 << int(SpectralOnly) << 200 << 150 << 227;
        QTest::newRow("one sweep: nothing") << 0 << int(SpectralOnly) << 0 << 0 << 211;
        QTest::newRow("empty") << 0 << int(ViewAll) << -1 << 0 << 211;
    }
    void waterfall()
    {
        QFETCH(int, band);
        QFETCH(int, layout);
        QFETCH(int, lastIdx);
        QFETCH(int, rows);
        QFETCH(int, columns);
        useLayout(m_wsa.get(), band, layout);
        nLastIdx = lastIdx;
        const QRect rc = spectralRect();
        for (int run = 0; run < 4; ++run) {
            bReferencePainting = run & 1;
            const QImage image = paint(
                [&](QPainter* p) {
                    m_wsa->onPaint_SpectralView(p);
                    lcdShowWaterfull(p);
                },
                run & 2 ? QImage::Format_RGB16 : QImage::Format_ARGB32_Premultiplied);
            // Every second entry, newest row first, each doubled; entry 0 black.
            for (int r = 0; r < rows; ++r)
                for (int c = 0; c < columns; ++c)
                    for (int d = 0; d < 4; ++d)
                        QCOMPARE(image.pixel(rc.left() + 1 + 2 * c + d % 2,
                                             rc.top() + 1 + 2 * r + d / 2),
                                 c ? through16(historyColor[lastIdx - r].color[2 * c]) : kBlack);
            // It ends left of the frame and, until full, above the black area.
            QCOMPARE(image.pixel(rc.left() + 1 + 2 * columns, rc.top() + 1), kBlack);
            QCOMPARE(image.pixel(rc.right() + 1, rc.top() + 1), qRgb(255, 255, 255));
            if (rc.top() + 1 + 2 * rows < rc.bottom())
                QCOMPARE(image.pixel(rc.left() + 9, rc.top() + 1 + 2 * rows), kBlack);
        }
    }

    // The label column is cleared to the window background even with nothing to label.
    void labelColumn_data()
    {
        QTest::addColumn<int>("layout");
        QTest::addColumn<int>("lastIdx");
        QTest::addColumn<int>("baseline"); // 0: no label
        QTest::newRow("empty") << int(ViewAll) << -1 << 0;
        QTest::newRow("one sweep") << int(SpectralOnly) << 0 << 0;
        QTest::newRow("ten sweeps: entry 0") << int(SpectralOnly) << 10 << 24 + 22;
    }
    void labelColumn()
    {
        QFETCH(int, layout);
        QFETCH(int, lastIdx);
        QFETCH(int, baseline);
        useLayout(m_wsa.get(), 0, layout);
        nLastIdx = lastIdx;
        const QRect rc = spectralRect();
        const QImage image = paint([&](QPainter* p) { m_wsa->drawSpectralTime(p); });
        const QImage want = paint([&](QPainter* p) {
            p->fillRect(rc.left() - 50, rc.top(), 50, rc.height() + 9, viewBackground());
            p->setPen(Qt::white);
            if (baseline)
                p->drawText(rc.left() - 40, baseline, QString(historyTime[0] + 3));
        });
        QCOMPARE(image, want);
    }

    // In the analyzer's repaint: a per-sample pass adds the waterfall, a plain repaint does not.
    void widgetPass()
    {
        useLayout(m_wsa.get(), 0, SpectralOnly);
        nLastIdx = 10;
        currentDatatmp = wsatest::makeSweep(300, -60);
        const QRect rc = spectralRect();
        for (bool pass : {true, false}) {
            m_wsa->m_bUpdate = pass;
            const QImage image = m_wsa->grab().toImage();
            const int x = rc.left() + 3;
            QCOMPARE(image.pixel(x, rc.top() + 1),
                     pass ? through16(historyColor[10].color[2]) : kBlack);
            QCOMPARE(image.pixel(x, rc.top() + 20),
                     pass ? through16(historyColor[1].color[2]) : kBlack);
            QCOMPARE(image.pixel(x, rc.top() + 21), kBlack);
        }
    }

    // In the analyzer's repaint, both views, dense counts at several peaks: a redraw pass, and
    // new sweeps, the first lifting the density peak to 25 and so repainting the density view in
    // the middle of the pass.
    void widgetFastPaintMatchesReference()
    {
        const struct {
            long peak;
            bool newSweep;
        } scenarios[] = {{24, true}, {24, false}, {300, false}, {3000, true}};
        for (int band : {0, 1})
            for (int layout : {ViewAll, TopoOnly, SpectralOnly})
                for (const auto& scenario : scenarios) {
                    useLayout(m_wsa.get(), band, layout);
                    const int samples = band ? 452 : 423;
                    QImage images[2];
                    for (bool reference : {true, false}) {
                        quint32 seed = 5;
                        auto next = [&seed] { return (seed = seed * 1664525u + 1013904223u) >> 8; };
                        stSweep sweep = wsatest::makeSweep(samples, 0);
                        for (int i = 0; i < samples; ++i)
                            sweep.data[i] = nMinDraw - 5 + int(next() % (nMaxDraw - nMinDraw + 10));
                        for (int i = 0; i < SA_MAX_SAMPLES; ++i)
                            for (int j = 0; j < WSA_DENSITY_LEVELS; ++j)
                                popularity[i][j] = int(next() % (scenario.peak + 1));
                        popularity[1][qBound(-nMaxDraw, -sweep.data[1], -nMinDraw)] = scenario.peak;
                        sweep_peak_max = scenario.peak;
                        maxData.num_samples = samples;
                        nLastIdx = 3000;
                        nDataCount = nLastIdx + 1;
                        currentData = currentDatatmp = sweep;
                        bReferencePainting = reference;
                        bReceivedData = scenario.newSweep;
                        m_wsa->m_bUpdate = !scenario.newSweep;
                        images[reference] = m_wsa->grab().toImage();
                        QCOMPARE(sweep_peak_max, scenario.peak + scenario.newSweep);
                    }
                    QList<QRect> views;
                    if (bTopographicView)
                        views << topoRect();
                    if (bSpectralView)
                        views << spectralRect();
                    for (const QRect& view : views)
                        QCOMPARE(images[0].copy(0, view.top() - 14, 800, view.height() + 16),
                                 images[1].copy(0, view.top() - 14, 800, view.height() + 16));
                }
    }

private:
    std::unique_ptr<wsatest::AnalyzerEnv> m_env;
    std::unique_ptr<CWsa> m_wsa;
};

QTEST_MAIN(TestSpectral)
#include "tst_spectral.moc"
