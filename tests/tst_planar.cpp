// Planar view pixels: the Max band, Average bars and Current line of a known two-sweep sequence
// fed through the engine link, in both bands; the erase segment; the trace switches with the
// refresh they request and its console lines.
#include <QtTest>

#include "views.h"
#include "wsa_p.h"
#include "wsatestsupport.h"

namespace
{

const QRgb kBlue = qRgb(0, 0, 255), kGreen = qRgb(0, 255, 0), kYellow = qRgb(255, 255, 0);
const QRgb kBlack = qRgb(0, 0, 0), kWhite = qRgb(255, 255, 255);
const QRgb kDot = QColor(Qt::lightGray).rgb();

// Levels that both bands put on the same rows of the single view (3 pixels per dB in 2.4 GHz,
// 6 in 5 GHz): the first sweep on row 174, the second on 234, their average on 204.
struct BandLevels {
    int first, second;
    int above, below; // outside the range: drawn one row inside the top and bottom edges
    int sampleZero;   // below the range: the maximum it seeds skips band column 51
    int row84;        // on the dotted row 84
    int samples;      // displayed samples per sweep
};
const BandLevels kBands[2] = {{-60, -80, -5, -115, -120, -30, 423},
                              {-75, -85, -45, -105, -105, -60, 452}};

struct Probe {
    int x, y;
    QRgb color;
};

} // namespace

Q_DECLARE_METATYPE(QList<Probe>)

class TstPlanar : public QObject
{
    Q_OBJECT

    wsatest::AnalyzerEnv* m_env = nullptr;
    CWsa* m_wsa = nullptr;
    int m_link = -1;

    QImage paint() { return m_wsa->grab().toImage().convertToFormat(QImage::Format_RGB32); }

    // A fresh recording in the band, Planar view alone, all traces on; then `sweeps` sweeps,
    // each painted.
    void start(int band, int sweeps)
    {
        s_band = band;
        m_wsa->initData();
        m_wsa->resizeGrid();
        m_wsa->procPlanar();
        bCurrent = bAverage = bMax = true;
        bRefreshPlanarView = false;
        for (int k = 0; k < sweeps; ++k) {
            feed(kBands[band], k == 0 ? kBands[band].first : kBands[band].second);
            paint();
        }
    }

    // One sweep through the link; a 5 GHz record carries each displayed sample twice and 60
    // extra pairs, which the link reduces.
    void feed(const BandLevels& levels, int level)
    {
        stSweep shown = wsatest::makeSweep(levels.samples, level);
        shown.data[0] = levels.sampleZero;
        shown.data[200] = levels.above;
        shown.data[300] = levels.below;
        stSweep record = shown;
        if (s_band != 0) {
            record.num_samples = 2 * (levels.samples + 60);
            for (int i = 0; i < record.num_samples / 2; ++i)
                record.data[2 * i] = record.data[2 * i + 1] = shown.data[i];
        }
        QVERIFY(wsatest::sendRecord(m_link, record));
        m_wsa->wsaDataParse();
        QVERIFY(bReceivedData);
        QCOMPARE(currentData.num_samples, levels.samples);
    }

    static void checkProbes(const QImage& image, const QList<Probe>& probes)
    {
        for (const Probe& p : probes) {
            QVERIFY2(image.pixel(p.x, p.y) == p.color,
                     qPrintable(QString("(%1, %2) is #%3, expected #%4")
                                    .arg(p.x)
                                    .arg(p.y)
                                    .arg(image.pixel(p.x, p.y) & 0xffffff, 6, 16, QChar('0'))
                                    .arg(p.color & 0xffffff, 6, 16, QChar('0'))));
        }
    }

private slots:
    void initTestCase()
    {
        m_env = new wsatest::AnalyzerEnv;
        m_wsa = new CWsa;
        m_wsa->setSize(QSize(800, 400));
        m_wsa->m_bInspector = false;
        m_link = wsatest::takeOverLink();
        QVERIFY(m_link >= 0);
    }
    void cleanupTestCase()
    {
        delete m_wsa;
        delete m_env;
    }

    void twoSweeps_data()
    {
        QTest::addColumn<int>("band");
        QTest::addColumn<int>("stage");
        QTest::addColumn<QList<Probe>>("probes");
        // Sample i ends its segment in column 51 + i and has its bars there: column 151 shows
        // sample 100, 251 the clamp at the top (sample 200), 351 the clamp at the bottom
        // (sample 300); column 51 has no band because sample 0's seeded maximum is too low.
        const QList<Probe> first = {{151, 172, kBlack},  {151, 173, kGreen},  {151, 174, kYellow},
                                    {151, 175, kBlack},  {251, 24, kWhite},   {251, 25, kYellow},
                                    {251, 100, kYellow}, {351, 323, kYellow}, {351, 324, kBlack},
                                    {351, 325, kWhite},  {51, 323, kYellow},  {51, 100, kBlack},
                                    {52, 173, kGreen},   {473, 174, kYellow}};
        // The band stands for the sweeps before the new one; the bars include it.
        const QList<Probe> second = {{151, 172, kBlack}, {151, 173, kBlue},   {151, 174, kBlue},
                                     {151, 175, kBlack}, {151, 203, kBlack},  {151, 204, kGreen},
                                     {151, 233, kGreen}, {151, 234, kYellow}, {151, 235, kBlack},
                                     {52, 173, kBlue},   {51, 173, kBlack},   {51, 300, kYellow},
                                     {251, 25, kYellow}, {351, 323, kYellow}, {351, 324, kBlack}};
        // Redrawn without a new sweep: the band spans both sweeps.
        const QList<Probe> redraw = {{151, 173, kBlack}, {151, 174, kBlue},  {151, 203, kBlue},
                                     {151, 204, kGreen}, {151, 233, kGreen}, {151, 234, kYellow},
                                     {151, 235, kBlack}, {51, 100, kBlack},  {52, 174, kBlue},
                                     {251, 24, kWhite},  {251, 25, kYellow}, {351, 324, kBlack}};
        for (int band = 0; band <= 1; ++band) {
            const char* name = band ? "5 GHz" : "2.4 GHz";
            QTest::addRow("%s, first sweep", name) << band << 1 << first;
            QTest::addRow("%s, second sweep", name) << band << 2 << second;
            QTest::addRow("%s, redraw", name) << band << 3 << redraw;
        }
    }
    void twoSweeps()
    {
        QFETCH(int, band);
        QFETCH(int, stage);
        QFETCH(QList<Probe>, probes);
        start(band, qMin(stage, 2) - 1);
        feed(kBands[band], stage == 1 ? kBands[band].first : kBands[band].second);
        if (stage == 3) {
            paint();
            m_wsa->msgUpdate();
        }
        const QImage image = paint();
        checkProbes(image, probes);
        // With one sweep stored there is no band yet.
        for (int y = 25; stage == 1 && y < 324; ++y) {
            for (int x = 51; x <= grid_rect_maximize.right(); ++x)
                QVERIFY(image.pixel(x, y) != kBlue);
        }
    }

    // The newest stored sweep is drawn under the Current line; where the two differ it shows,
    // blue with Max on, black with Max off. Switching Current off blacks it out once.
    void eraseSegment_data()
    {
        QTest::addColumn<int>("band");
        QTest::addColumn<bool>("max");
        QTest::addColumn<bool>("current");
        QTest::addColumn<QList<Probe>>("probes");
        // Samples 150..169 are changed to row 84, whose dots stand at 51, 54, ..., 207, ...
        const QList<Probe> maxOn = {{206, 84, kBlue},
                                    {207, 84, kBlue},
                                    {231, 84, kDot},
                                    {207, 234, kYellow},
                                    {207, 190, kBlue}};
        const QList<Probe> maxOff = {{206, 84, kBlack},
                                     {207, 84, kBlack},
                                     {231, 84, kDot},
                                     {207, 234, kYellow},
                                     {207, 190, kBlack}};
        // Current switched off: only sample 1 draws the segment, in black; no yellow.
        const QList<Probe> off = {{51, 84, kBlack},   {54, 84, kDot},    {207, 84, kDot},
                                  {206, 234, kBlack}, {207, 190, kBlue}, {207, 204, kGreen}};
        for (int band = 0; band <= 1; ++band) {
            const char* name = band ? "5 GHz" : "2.4 GHz";
            QTest::addRow("%s, Max on", name) << band << true << true << maxOn;
            QTest::addRow("%s, Max off", name) << band << false << true << maxOff;
            QTest::addRow("%s, Current off", name) << band << true << false << off;
        }
    }
    void eraseSegment()
    {
        QFETCH(int, band);
        QFETCH(bool, max);
        QFETCH(bool, current);
        QFETCH(QList<Probe>, probes);
        start(band, 2);
        for (int i = current ? 150 : 0; i < (current ? 170 : kBands[band].samples); ++i)
            historyData[nLastIdx].data[i] = kBands[band].row84;
        bMax = max;
        bCurrent = current;
        bPrevCurrent = true;
        m_wsa->msgUpdate();
        checkProbes(paint(), probes);
        QCOMPARE(bPrevCurrent, current);
    }

    // A trace switch asks for the grid and band again before the next sample, with console
    // lines; the view itself comes out as without it.
    void refreshAfterTraceSwitch()
    {
        start(0, 2);
        m_wsa->msgUpdate();
        const QImage plain = paint();
        bRefreshPlanarView = true;
        m_wsa->msgUpdate();
        QImage refreshed;
        QString out = wsatest::captureStdout([&] { refreshed = paint(); });
        QCOMPARE(out, QString("start refresh\nstop refresh\ndraw average\ndraw current data\n"
                              "xxx start refresh\nxxx stop refresh\n"));
        QVERIFY(!bRefreshPlanarView);
        const QRect view = grid_rect_maximize.adjusted(0, 0, 1, 1);
        QCOMPARE(refreshed.copy(view), plain.copy(view));

        bRefreshPlanarView = true;
        bCurrent = false;
        bPrevCurrent = true;
        m_wsa->msgUpdate();
        out = wsatest::captureStdout([&] { paint(); });
        QCOMPARE(out, QString("start refresh\nstop refresh\nclear history\ndraw average\n"
                              "draw current data\nxxx start refresh\nxxx stop refresh\n"));
    }
};

QTEST_MAIN(TstPlanar)
#include "tst_planar.moc"
