// Sweep store: colour map, waterfall colours, time text, reset and the per-sample statistics.
#include <QtTest>
#include <cstring>
#include <unistd.h>

#include "cutilwindow.h"
#include "wsa_p.h"
#include "wsatestsupport.h"

namespace
{

// Keeps the refresh timer from reading records behind the test's back.
class TimerBlocker : public QObject
{
protected:
    bool eventFilter(QObject*, QEvent* event) override { return event->type() == QEvent::Timer; }
};

// The statistics pass the frame composer runs over a new sweep, without the drawing.
void takeSweepStatistics()
{
    for (int i = 1; i < currentData.num_samples; ++i) {
        bool rescale = false;
        wsaTakeSample(i, rescale);
    }
}

QRgb colourOf(int index)
{
    const stRgb& c = colormap[index];
    return qRgb(c.r, c.g, c.b);
}

bool rowIsBlack(int row, int from = 0, int to = WSA_COLOR_LINE)
{
    for (int k = from; k < to; ++k) {
        if (historyColor[row].color[k] != qRgb(0, 0, 0))
            return false;
    }
    return true;
}

} // namespace

class TestStore : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void init();

    void colormapRows_data();
    void colormapRows();
    void colourIndexByLevel_data();
    void colourIndexByLevel();
    void timeText_data();
    void timeText();
    void longRecordingTimeStaysInItsRow_data();
    void longRecordingTimeStaysInItsRow();
    void resetEmptiesTheStore_data();
    void resetEmptiesTheStore();
    void outOfRangeLevelsCountAsRangeEdges_data();
    void outOfRangeLevelsCountAsRangeEdges();
    void maximumMinimumAndSum();
    void sampleZeroTakesNoPart();
    void colourRowFollowsHistoryIndex();
    void topographicRescaleSteps();
    void colourRowsStayInBounds();

private:
    wsatest::AnalyzerEnv* m_env = nullptr;
    CUtilWindow* m_window = nullptr;
    CWsa* m_wsa = nullptr;
    TimerBlocker m_blocker;
    int m_peer = -1;
};

void TestStore::initTestCase()
{
    m_env = new wsatest::AnalyzerEnv;
    m_window = new CUtilWindow;
    m_wsa = new CWsa(m_window);
    m_wsa->installEventFilter(&m_blocker);
    fillColormap();
}

void TestStore::cleanupTestCase()
{
    if (m_peer >= 0)
        close(m_peer);
    delete m_window;
    delete m_env;
}

void TestStore::init()
{
    s_band = 0;
    m_wsa->initData();
}

void TestStore::colormapRows_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("r");
    QTest::addColumn<int>("g");
    QTest::addColumn<int>("b");
    const int rows[][4] = {{0, 0, 0, 128},     {1, 0, 0, 129},     {2, 1, 1, 130},
                           {59, 58, 58, 187},  {60, 59, 59, 188},  {61, 59, 59, 188},
                           {62, 59, 62, 184},  {119, 59, 248, 6},  {120, 59, 251, 3},
                           {121, 0, 251, 3},   {122, 4, 251, 3},   {179, 246, 251, 3},
                           {180, 250, 251, 3}, {181, 250, 255, 3}, {182, 250, 251, 3},
                           {238, 250, 13, 3},  {239, 250, 9, 3}};
    for (const auto& row : rows)
        QTest::addRow("%d", row[0]) << row[0] << row[1] << row[2] << row[3];
}

void TestStore::colormapRows()
{
    QFETCH(int, index);
    QFETCH(int, r);
    QFETCH(int, g);
    QFETCH(int, b);
    QCOMPARE(int(colormap[index].r), r);
    QCOMPARE(int(colormap[index].g), g);
    QCOMPARE(int(colormap[index].b), b);
}

void TestStore::colourIndexByLevel_data()
{
    QTest::addColumn<int>("band");
    QTest::addColumn<int>("level");
    QTest::addColumn<int>("index");
    const int rows24[][2] = {{-10, 239}, {-39, 239}, {-40, 235}, {-41, 235}, {-50, 210},
                             {-52, 210}, {-75, 150}, {-77, 150}, {-94, 105}, {-95, 105},
                             {-96, 20},  {-97, 20},  {-98, 15},  {-99, 15},  {-100, 10},
                             {-102, 10}, {-103, 5},  {-104, 5},  {-105, 0},  {-110, 0}};
    for (const auto& row : rows24)
        QTest::addRow("2.4G %d dBm", row[0]) << 0 << row[0] << row[1];
    const int rows5[][2] = {{-50, 239}, {-64, 239}, {-65, 235}, {-70, 210}, {-71, 210},
                            {-92, 105}, {-93, 20},  {-98, 0},   {-100, 0}};
    for (const auto& row : rows5)
        QTest::addRow("5G %d dBm", row[0]) << 1 << row[0] << row[1];
}

void TestStore::colourIndexByLevel()
{
    QFETCH(int, band);
    QFETCH(int, level);
    QFETCH(int, index);
    s_band = band;
    m_wsa->initData();
    QCOMPARE(waterfallColorIndex(level), index);
}

void TestStore::timeText_data()
{
    QTest::addColumn<int>("elapsed");
    QTest::addColumn<QString>("text");
    QTest::newRow("start") << 0 << "00:00:00";
    QTest::newRow("7 s") << 7 << "00:00:07";
    QTest::newRow("two digits") << 10 * 3600 + 10 * 60 + 10 << "10:10:10";
    QTest::newRow("3725 s") << 3725 << "01:02:05";
    QTest::newRow("last second of a minute") << 59 * 60 + 59 << "00:59:59";
    QTest::newRow("100 h") << 100 * 3600 << "100:00:00";
    QTest::newRow("clock set back") << -30 << "00:00:00";
}

void TestStore::timeText()
{
    QFETCH(int, elapsed);
    QFETCH(QString, text);
    // Retry when the wall clock ticks between setting the start and reading the text.
    for (int attempt = 0; attempt < 5; ++attempt) {
        const time_t now = time(nullptr);
        startTime = now - elapsed;
        const QString got = QString::fromLatin1(m_wsa->getTime());
        if (time(nullptr) == now) {
            QCOMPARE(got, text);
            return;
        }
    }
    QFAIL("wall clock unstable");
}

void TestStore::longRecordingTimeStaysInItsRow_data()
{
    QTest::addColumn<int>("hours");
    QTest::addColumn<QByteArray>("row");
    QTest::newRow("100 h fits") << 100 << QByteArray("100:00:00");
    QTest::newRow("1000 h is cut") << 1000 << QByteArray("1000:00:0");
}

void TestStore::longRecordingTimeStaysInItsRow()
{
    QFETCH(int, hours);
    QFETCH(QByteArray, row);
    if (m_peer >= 0)
        close(m_peer);
    m_peer = wsatest::takeOverLink();
    QVERIFY(m_peer >= 0);
    std::memset(historyTime[1], 'x', WSA_TIME_TEXT);
    startTime = time(nullptr) - time_t(hours) * 3600;
    QVERIFY(wsatest::sendRecord(m_peer, wsatest::makeSweep(423, -60)));
    m_wsa->wsaDataParse();
    QCOMPARE(nLastIdx, 0);
    QCOMPARE(QByteArray(historyTime[0]), row);
    QCOMPARE(historyTime[0][WSA_TIME_TEXT - 1], '\0');
    QCOMPARE(QByteArray(historyTime[1], WSA_TIME_TEXT), QByteArray(WSA_TIME_TEXT, 'x'));
}

void TestStore::resetEmptiesTheStore_data()
{
    QTest::addColumn<int>("band");
    QTest::addColumn<int>("minDraw");
    QTest::addColumn<int>("maxDraw");
    QTest::newRow("2.4G") << 0 << -110 << -10;
    QTest::newRow("5G") << 1 << -100 << -50;
}

void TestStore::resetEmptiesTheStore()
{
    QFETCH(int, band);
    QFETCH(int, minDraw);
    QFETCH(int, maxDraw);
    // Leave traces of a recording everywhere.
    currentData = wsatest::makeSweep(300, -40);
    nLastIdx = 7;
    nDataCount = 8;
    takeSweepStatistics();
    maxData.num_samples = 300;
    historyData[3] = wsatest::makeSweep(300, -40);
    std::strcpy(historyTime[3599], "00:01:00");
    historyColor[3599].color[511] = qRgb(1, 2, 3);
    std::strcpy(strInspector[4], "Level: -40 dBm");
    bPlanarView = bTopographicView = bSpectralView = false;
    bReceivedData = bPrevCurrent = true;
    startTime = 0;

    s_band = band;
    const time_t before = time(nullptr);
    QCOMPARE(m_wsa->initData(), 0);
    QCOMPARE(nMinDraw, minDraw);
    QCOMPARE(nMaxDraw, maxDraw);
    QCOMPARE(nLastIdx, -1);
    QCOMPARE(nDataCount, 0);
    QCOMPARE(sweep_peak_max, 1L);
    for (int i = 0; i < SA_MAX_SAMPLES; ++i) {
        QCOMPARE(maxData.data[i], minDraw);
        QCOMPARE(minData.data[i], maxDraw);
        QCOMPARE(sumData[i], 0);
        for (int m = 0; m < WSA_DENSITY_LEVELS; ++m)
            QCOMPARE(popularity[i][m], 0);
    }
    for (int row = 0; row < WSA_HISTORY_ROWS; ++row) {
        QVERIFY(rowIsBlack(row));
        QCOMPARE(QByteArray(historyTime[row], WSA_TIME_TEXT), QByteArray(WSA_TIME_TEXT, '\0'));
    }
    QVERIFY(bPlanarView && bTopographicView && bSpectralView);
    QVERIFY(!bReceivedData && !bPrevCurrent);
    QCOMPARE(QByteArray(strInspector[4], 80), QByteArray(80, '\0'));
    QVERIFY(startTime >= before && startTime <= time(nullptr));
    // The sweeps themselves and the previous count are left for the next sweep to replace.
    QCOMPARE(maxData.num_samples, 300);
    QCOMPARE(historyData[3].data[5], -40);
}

void TestStore::outOfRangeLevelsCountAsRangeEdges_data()
{
    QTest::addColumn<int>("band");
    QTest::addColumn<int>("level");
    QTest::addColumn<int>("counted");
    QTest::addColumn<int>("colour");
    QTest::newRow("2.4G below") << 0 << -120 << -110 << 0;
    QTest::newRow("2.4G above") << 0 << -5 << -10 << 239;
    QTest::newRow("2.4G inside") << 0 << -50 << -50 << 210;
    QTest::newRow("5G below") << 1 << -105 << -100 << 0;
    QTest::newRow("5G above") << 1 << -20 << -50 << 239;
}

void TestStore::outOfRangeLevelsCountAsRangeEdges()
{
    QFETCH(int, band);
    QFETCH(int, level);
    QFETCH(int, counted);
    QFETCH(int, colour);
    s_band = band;
    m_wsa->initData();
    currentData = wsatest::makeSweep(3, level);
    nLastIdx = 0;
    nDataCount = 1;
    bool rescale = true;
    QCOMPARE(wsaTakeSample(1, rescale), -counted);
    QVERIFY(!rescale);
    QCOMPARE(currentData.data[1], counted);
    QCOMPARE(currentData.data[2], level); // not yet visited
    QCOMPARE(maxData.data[1], counted);
    QCOMPARE(minData.data[1], counted);
    QCOMPARE(sumData[1], -counted);
    QCOMPARE(popularity[1][-counted], 1);
    QCOMPARE(historyColor[1].color[1], colourOf(colour));
}

void TestStore::maximumMinimumAndSum()
{
    // The first sweep of a recording seeds the maximum unclamped.
    maxData.data[1] = -5;
    const int levels[] = {-50, -30, -70, -30};
    for (int k = 0; k < 4; ++k) {
        currentData = wsatest::makeSweep(2, levels[k]);
        nLastIdx = k;
        nDataCount = k + 1;
        takeSweepStatistics();
    }
    QCOMPARE(maxData.data[1], -10);
    QCOMPARE(minData.data[1], -70);
    QCOMPARE(sumData[1], 180);
    QCOMPARE(popularity[1][30], 2);
    QCOMPARE(sweep_peak_max, 2L);
}

void TestStore::sampleZeroTakesNoPart()
{
    currentData = wsatest::makeSweep(4, -5);
    nLastIdx = 0;
    bool rescale = true;
    QCOMPARE(wsaTakeSample(0, rescale), 0);
    QVERIFY(!rescale);
    takeSweepStatistics();
    QCOMPARE(currentData.data[0], -5);
    QCOMPARE(maxData.data[0], nMinDraw);
    QCOMPARE(minData.data[0], nMaxDraw);
    QCOMPARE(sumData[0], 0);
    for (int m = 0; m < WSA_DENSITY_LEVELS; ++m)
        QCOMPARE(popularity[0][m], 0);
    QCOMPARE(historyColor[1].color[0], qRgb(0, 0, 0));
    QCOMPARE(historyColor[1].color[1], colourOf(239));
}

void TestStore::colourRowFollowsHistoryIndex()
{
    // Sweeps through the parser, each followed by its statistics pass as in a paint.
    if (m_peer >= 0)
        close(m_peer);
    m_peer = wsatest::takeOverLink();
    QVERIFY(m_peer >= 0);
    const int levels[] = {-20, -60, -110};
    for (int k = 0; k < 3; ++k) {
        QVERIFY(wsatest::sendRecord(m_peer, wsatest::makeSweep(100, levels[k])));
        m_wsa->wsaDataParse();
        QCOMPARE(nLastIdx, k);
        takeSweepStatistics();
    }
    QVERIFY(rowIsBlack(0));
    for (int k = 0; k < 3; ++k) {
        const QRgb expected = colourOf(waterfallColorIndex(levels[k]));
        QCOMPARE(historyColor[k + 1].color[0], qRgb(0, 0, 0));
        QCOMPARE(historyColor[k + 1].color[1], expected);
        QCOMPARE(historyColor[k + 1].color[99], expected);
        QVERIFY(rowIsBlack(k + 1, 100));
    }
    QVERIFY(rowIsBlack(4));
}

void TestStore::topographicRescaleSteps()
{
    // Bin 1 leads the density peak; bin 2 only ever equals it and must not trigger.
    nLastIdx = 0;
    QList<int> triggeredAt;
    for (int sweep = 1; sweep <= 450; ++sweep) {
        currentData = wsatest::makeSweep(3, -50);
        bool rescale = false;
        wsaTakeSample(1, rescale);
        if (rescale)
            triggeredAt << sweep;
        wsaTakeSample(2, rescale);
        QVERIFY(!rescale);
    }
    QList<int> expected;
    for (int peak = 25; peak <= 375; peak += 25)
        expected << peak;
    QCOMPARE(triggeredAt, expected);
    QCOMPARE(sweep_peak_max, 450L);
}

void TestStore::colourRowsStayInBounds()
{
    for (stColorLine& row : historyColor)
        std::fill(std::begin(row.color), std::end(row.color), qRgb(9, 9, 9));
    currentData = wsatest::makeSweep(SA_MAX_SAMPLES, -50);
    nLastIdx = 5;
    takeSweepStatistics();
    QCOMPARE(historyColor[6].color[0], qRgb(9, 9, 9));
    for (int k = 1; k < WSA_COLOR_LINE; ++k)
        QCOMPARE(historyColor[6].color[k], colourOf(210));
    for (int k = 0; k < WSA_COLOR_LINE; ++k)
        QCOMPARE(historyColor[7].color[k], qRgb(9, 9, 9));
    // Bins past the colour row are still counted.
    QCOMPARE(popularity[SA_MAX_SAMPLES - 1][50], 1);

    // A history index outside the table writes no colour at all.
    for (int last : {WSA_HISTORY_ROWS - 1, -2}) {
        nLastIdx = last;
        currentData = wsatest::makeSweep(600, -20);
        takeSweepStatistics();
    }
    QCOMPARE(historyColor[0].color[1], qRgb(9, 9, 9));
    QCOMPARE(historyColor[WSA_HISTORY_ROWS - 1].color[1], qRgb(9, 9, 9));
    QCOMPARE(popularity[1][20], 2);
}

QTEST_MAIN(TestStore)
#include "tst_store.moc"
