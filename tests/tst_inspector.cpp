// The Inspector: taps on the views, the readout lines, the side-bar panel and the cursor line.
#include <QTest>
#include <cstdio>
#include <cstring>
#include <memory>
#include <unistd.h>

#include "cpushbutton.h"
#include "cradiobutton.h"
#include "inspector.h"
#include "wsa_p.h"
#include "wsatestsupport.h"

namespace
{

const QRgb kRed = qRgb(255, 0, 0);
const QRgb kBlack = qRgb(0, 0, 0);

QString line(int i)
{
    return QString::fromUtf8(strInspector[i]);
}

QStringList lines()
{
    return {line(0), line(1), line(2), line(3)};
}

bool bright(QRgb c)
{
    return qRed(c) > 160 && qGreen(c) > 160 && qBlue(c) > 160;
}

// Rows of column x, between y0 and y1 inclusive, that hold the cursor colour.
int redRows(const QImage& image, int x, int y0, int y1)
{
    int n = 0;
    for (int y = y0; y <= y1; ++y)
        n += image.pixel(x, y) == kRed;
    return n;
}

// Leftmost column in [x0, x1] of the band of rows that holds a bright (text) pixel, or -1.
int firstBrightColumn(const QImage& image, int x0, int x1, int y0, int y1)
{
    for (int x = x0; x <= x1; ++x) {
        for (int y = y0; y <= y1; ++y) {
            if (bright(image.pixel(x, y)))
                return x;
        }
    }
    return -1;
}

} // namespace

class TestInspector : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void init();

    void frequencyUnderTap_data();
    void frequencyUnderTap();
    void planarReadout();
    void topographicDensity();
    void topographicBinIsBounded();
    void spectralReadsSweepUnderFinger();
    void spectralBelowOldestSweep();
    void fiveGigahertzScale();
    void tapOutsideGridsChangesNothing_data();
    void tapOutsideGridsChangesNothing();
    void cursorSpansTappedGrid_data();
    void cursorSpansTappedGrid();
    void viewChangeDropsCursorKeepsReadout();
    void frequencyModeRefreshesLinesOnly();
    void panelLayout();

private:
    void tap(int x, int y) { QTest::mouseClick(w, Qt::LeftButton, {}, QPoint(x, y)); }
    void press(CPushButton* button) { QTest::mouseClick(button, Qt::LeftButton); }
    // One sweep through the link and one frame, which counts it into the statistics.
    void feedSweep(int level, int samples = 424);
    QImage frame() { return w->grab().toImage(); }

    std::unique_ptr<wsatest::AnalyzerEnv> m_env;
    CWsa* w = nullptr;
    int m_link = -1;
};

void TestInspector::initTestCase()
{
    m_env = std::make_unique<wsatest::AnalyzerEnv>();
    w = new CWsa;
    // Our own link: engines are killed by name, so the fake engine may go at any time.
    m_link = wsatest::takeOverLink();
    QVERIFY(m_link >= 0);
    w->setSize(QSize(800, 400));
    w->show();
    QVERIFY(QTest::qWaitForWindowExposed(w));
}

void TestInspector::cleanupTestCase()
{
    delete w;
    if (m_link >= 0)
        close(m_link);
    m_env.reset();
}

void TestInspector::init()
{
    press(pBtInspector);
    w->initData();
    press(pBtViewAll);
    QCoreApplication::processEvents();
}

void TestInspector::feedSweep(int level, int samples)
{
    QVERIFY(wsatest::sendRecord(m_link, wsatest::makeSweep(samples, level)));
    const int stored = nLastIdx;
    w->wsaDataParse();
    QCOMPARE(nLastIdx, stored + 1);
    w->repaint();
}

void TestInspector::frequencyUnderTap_data()
{
    QTest::addColumn<QString>("view");
    QTest::addColumn<int>("x");
    QTest::addColumn<int>("y");
    QTest::addColumn<int>("mhz");
    // (x - 50) * 90 / 423 + 2400, truncated.
    QTest::newRow("planar middle") << "all" << 50 + 211 << 74 << 2444;
    QTest::newRow("spectral middle") << "all" << 50 + 211 << 318 << 2444;
    QTest::newRow("first column") << "all" << 51 << 74 << 2400;
    QTest::newRow("last column") << "all" << 472 << 74 << 2489;
    QTest::newRow("maximised spectral") << "spectral" << 51 + 47 << 100 << 2410;
}

void TestInspector::frequencyUnderTap()
{
    QFETCH(QString, view);
    QFETCH(int, x);
    QFETCH(int, y);
    QFETCH(int, mhz);
    if (view == "spectral")
        press(pBtSpectral);
    tap(x, y);
    QCOMPARE(line(0), QString("Freq :  %1").arg(mhz));
}

void TestInspector::planarReadout()
{
    // Before any sweep: the level under the finger, a zero mean and the empty maximum.
    tap(261, 74);
    QCOMPARE(lines(),
             QStringList({"Freq :  2444", "Current :  -60", "Average :  -0", "Maximum :  -110"}));
    // The level follows the finger, not the data: 1 dB per pixel in View All.
    tap(261, 25);
    QCOMPARE(line(1), QString("Current :  -11"));

    feedSweep(-40);
    feedSweep(-61);
    tap(261, 74);
    QCOMPARE(lines(),
             QStringList({"Freq :  2444", "Current :  -60", "Average :  -50", "Maximum :  -40"}));

    // 3 pixels per dB in the maximised view.
    press(pBtPlaner);
    tap(261, 24 + 150);
    QCOMPARE(line(1), QString("Current :  -60"));
    tap(261, 24 + 3);
    QCOMPARE(line(1), QString("Current :  -11"));
}

void TestInspector::topographicDensity()
{
    tap(261, 146 + 50);
    QCOMPARE(lines(), QStringList({"Freq :  2444", "Amp :  -60", "Density :  0.00", ""}));

    feedSweep(-60);
    feedSweep(-80);
    feedSweep(-80);
    tap(261, 146 + 50);
    QCOMPARE(line(1), QString("Amp :  -60"));
    QCOMPARE(line(2), QString("Density :  33.33"));
    tap(261, 146 + 70);
    QCOMPARE(line(2), QString("Density :  66.67"));
    tap(261, 146 + 71);
    QCOMPARE(line(2), QString("Density :  0.00"));
}

void TestInspector::topographicBinIsBounded()
{
    // Taps inside a grid never reach -110; a level on the bottom edge does, and must read the
    // top density row rather than the one past it.
    const QRect grid = grid_rect_topographic;
    const int column = 200;
    nDataCount = 4;
    popularity[column][109] = 1;
    popularity[column][110] = 3;
    char out[INSPECTOR_LINES][INSPECTOR_LINE_SIZE];
    std::memset(out, 'x', sizeof out);
    inspectorReadout(INSPECTOR_TOPOGRAPHIC, grid, grid.left() + column, grid.bottom(), out);
    QCOMPARE(QString(out[1]), QString("Amp :  -110"));
    QCOMPARE(QString(out[2]), QString("Density :  25.00"));
    QCOMPARE(QString(out[3]), QString());
    QCOMPARE(out[4][0], 'x'); // line 4 is never written
}

void TestInspector::spectralReadsSweepUnderFinger()
{
    feedSweep(-30);
    feedSweep(-50);
    feedSweep(-70);
    // Distinct stamps, to tell the rows apart.
    for (int row = 0; row <= nLastIdx; ++row)
        qstrncpy(historyTime[row], QByteArray("00:00:0").append(char('0' + row)), WSA_TIME_TEXT);

    // Two pixel rows per sweep, the newest on top.
    tap(261, 269);
    QCOMPARE(lines(), QStringList({"Freq :  2444", "Amp :  -70", "Time :  00:00:02", ""}));
    tap(261, 270);
    QCOMPARE(line(1), QString("Amp :  -50"));
    tap(261, 271);
    QCOMPARE(line(2), QString("Time :  00:00:01"));
    tap(261, 273);
    QCOMPARE(lines(), QStringList({"Freq :  2444", "Amp :  -30", "Time :  00:00:00", ""}));

    press(pBtSpectral);
    tap(100, 25);
    QCOMPARE(line(1), QString("Amp :  -70"));
    QCOMPARE(line(0), QString("Freq :  2410"));
}

void TestInspector::spectralBelowOldestSweep()
{
    // No sweep at all.
    tap(261, 269);
    QCOMPARE(lines(), QStringList({"Freq :  2444", "Amp :  --", "Time :  --", ""}));

    feedSweep(-30);
    tap(261, 269);
    QCOMPARE(line(1), QString("Amp :  -30"));
    tap(261, 270);
    QCOMPARE(lines(), QStringList({"Freq :  2444", "Amp :  --", "Time :  --", ""}));
    tap(261, 367);
    QCOMPARE(line(1), QString("Amp :  --"));
}

void TestInspector::fiveGigahertzScale()
{
    press(pBtFrequency);
    QTest::mouseClick(pRb5G, Qt::LeftButton);
    close(m_link);
    m_link = wsatest::takeOverLink();
    QCOMPARE(s_band, 1);
    press(pBtInspector);

    // (227 * 675) / 455 + 5160 = 5496; -50 - 50 * 50 / 100 = -75.
    tap(50 + 227, 74);
    QCOMPARE(line(0), QString("Freq :  5496"));
    QCOMPARE(line(1), QString("Current :  -75"));
    tap(50 + 227, 123);
    QCOMPARE(line(1), QString("Current :  -99"));
    tap(504, 74);
    QCOMPARE(line(0), QString("Freq :  5833"));

    press(pBtFrequency);
    QTest::mouseClick(pRb2D5G, Qt::LeftButton);
    close(m_link);
    m_link = wsatest::takeOverLink();
    QCOMPARE(s_band, 0);
}

void TestInspector::tapOutsideGridsChangesNothing_data()
{
    QTest::addColumn<QString>("view");
    QTest::addColumn<int>("x");
    QTest::addColumn<int>("y");
    QTest::newRow("left border") << "all" << 50 << 74;
    QTest::newRow("right border") << "all" << 473 << 74;
    QTest::newRow("top border") << "all" << 261 << 24;
    QTest::newRow("planar bottom border") << "all" << 261 << 124;
    QTest::newRow("gap under planar") << "all" << 261 << 135;
    QTest::newRow("spectral bottom border") << "all" << 261 << 368;
    QTest::newRow("side bar") << "all" << 560 << 74;
    QTest::newRow("maximised bottom border") << "planar" << 261 << 324;
    QTest::newRow("under maximised grid") << "spectral" << 261 << 340;
}

void TestInspector::tapOutsideGridsChangesNothing()
{
    QFETCH(QString, view);
    QFETCH(int, x);
    QFETCH(int, y);
    if (view == "planar")
        press(pBtPlaner);
    else if (view == "spectral")
        press(pBtSpectral);
    const int grid = view == "all" ? 74 : 174;
    tap(200, grid);
    const QStringList before = lines();
    const QRect rect = w->m_clickRect;
    w->repaint();
    QVERIFY(!w->m_bUpdate);

    tap(x, y);
    QCOMPARE(lines(), before);
    QCOMPARE(w->m_clickxPos, 200);
    QCOMPARE(w->m_clickRect, rect);
    QVERIFY(!w->m_bUpdate);
}

void TestInspector::cursorSpansTappedGrid_data()
{
    QTest::addColumn<QString>("view");
    QTest::addColumn<QPoint>("tap");
    QTest::addColumn<QRect>("grid");
    QTest::newRow("planar of three") << "all" << QPoint(200, 74) << grid_rect_planar;
    QTest::newRow("topographic of three") << "all" << QPoint(200, 196) << grid_rect_topographic;
    QTest::newRow("spectral of three") << "all" << QPoint(300, 300) << grid_rect_spectral;
    QTest::newRow("topographic alone") << "topographic" << QPoint(320, 200) << grid_rect_maximize;
}

void TestInspector::cursorSpansTappedGrid()
{
    QFETCH(QString, view);
    QFETCH(QPoint, tap);
    QFETCH(QRect, grid);
    if (view == "topographic")
        press(pBtTopographic);
    this->tap(tap.x(), tap.y());
    const QImage image = frame();
    const int x = tap.x();
    QCOMPARE(redRows(image, x, grid.top() + 1, grid.bottom()), grid.bottom() - grid.top());
    QCOMPARE(redRows(image, x, 0, grid.top()), 0);
    QCOMPARE(redRows(image, x, grid.bottom() + 1, image.height() - 1), 0);
    QCOMPARE(redRows(image, x - 1, 0, image.height() - 1), 0);
    QCOMPARE(redRows(image, x + 1, 0, image.height() - 1), 0);
}

void TestInspector::viewChangeDropsCursorKeepsReadout()
{
    press(pBtPlaner);
    tap(250, 174);
    const QStringList readout = lines();
    QCOMPARE(readout.at(1), QString("Current :  -60"));
    QVERIFY(redRows(frame(), 250, 0, 399) > 0);

    press(pBtSpectral);
    QVERIFY(!w->m_bInspectorUpdate);
    QCOMPARE(lines(), readout);
    QCOMPARE(redRows(frame(), 250, 0, 399), 0);

    // "Inspector" pressed again drops the cursor as well.
    tap(250, 174);
    QVERIFY(redRows(frame(), 250, 0, 399) > 0);
    press(pBtInspector);
    QCOMPARE(redRows(frame(), 250, 0, 399), 0);
    QCOMPARE(line(0), readout.at(0));
}

void TestInspector::frequencyModeRefreshesLinesOnly()
{
    press(pBtFrequency);
    tap(261, 74);
    QCOMPARE(line(1), QString("Current :  -60"));
    QVERIFY(!w->m_bInspectorUpdate);
    const QImage image = frame();
    QCOMPARE(redRows(image, 261, 0, image.height() - 1), 0);
    // No panel: neither hints nor the readout box.
    QCOMPARE(firstBrightColumn(image, 509, 655, 30, 110), -1);
    QVERIFY(image.pixel(523, 180) != kBlack);
    QVERIFY(image.pixel(587, 124) != kBlack);

    // The lines show when Inspector mode returns.
    press(pBtInspector);
    const QImage back = frame();
    QVERIFY(firstBrightColumn(back, 509, 655, 150, 167) >= 0);
}

void TestInspector::panelLayout()
{
    // After a reset: hints and an empty box.
    QImage image = frame();
    for (int baseline : {44, 64, 84, 104}) {
        const int x = firstBrightColumn(image, 509, 655, baseline - 12, baseline + 3);
        QVERIFY2(x >= 523 && x <= 526,
                 qPrintable(QString("hint at %1: x %2").arg(baseline).arg(x)));
    }
    // Frame from (523, 124) to (651, 244), inclusive.
    for (int y = 124; y <= 244; y += 8) {
        QCOMPARE(image.pixel(523, y), kBlack);
        QCOMPARE(image.pixel(651, y), kBlack);
        QVERIFY(image.pixel(522, y) != kBlack);
        QVERIFY(image.pixel(652, y) != kBlack);
    }
    for (int x = 523; x <= 651; x += 8) {
        QCOMPARE(image.pixel(x, 124), kBlack);
        QCOMPARE(image.pixel(x, 244), kBlack);
        QVERIFY(image.pixel(x, 123) != kBlack);
        QVERIFY(image.pixel(x, 245) != kBlack);
    }
    QCOMPARE(firstBrightColumn(image, 524, 650, 125, 243), -1);

    tap(261, 74);
    image = frame();
    for (int baseline : {164, 184, 204, 224}) {
        const int x = firstBrightColumn(image, 524, 650, baseline - 12, baseline + 3);
        QVERIFY2(x >= 528 && x <= 531,
                 qPrintable(QString("readout at %1: x %2").arg(baseline).arg(x)));
    }
    // Nothing stands below the fourth line.
    QCOMPARE(firstBrightColumn(image, 524, 650, 229, 243), -1);
}

QTEST_MAIN(TestInspector)
#include "tst_inspector.moc"
