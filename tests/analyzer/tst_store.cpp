// Sweep store: colour map, waterfall colours, time text, reset and the per-sample statistics.
// Plain functions on the store's globals: no window and no engine.
#include <QtTest>
#include <algorithm>

#include "engine.h"
#include "store.h"
#include "wsatestsupport.h"

class TestStore : public QObject
{
    Q_OBJECT

    static QRgb colourOf(int i) { return qRgb(colormap[i].r, colormap[i].g, colormap[i].b); }
    template <class T> bool all(const T* p, int n, T v) { return std::count(p, p + n, v) == n; }

private slots:
    void initTestCase() { fillColormap(); }
    void init() { wsaResetStore(0, 0); }

    void colourMap()
    {
        QString got;
        for (int i : {0, 1, 2, 59, 60, 61, 62, 119, 120, 121, 122, 179, 180, 181, 182, 238, 239})
            got +=
                QString::asprintf(" %d=(%d,%d,%d)", i, colormap[i].r, colormap[i].g, colormap[i].b);
        QCOMPARE(got, " 0=(0,0,128) 1=(0,0,129) 2=(1,1,130) 59=(58,58,187) 60=(59,59,188) "
                      "61=(59,59,188) 62=(59,62,184) 119=(59,248,6) 120=(59,251,3) 121=(0,251,3) "
                      "122=(4,251,3) 179=(246,251,3) 180=(250,251,3) 181=(250,255,3) "
                      "182=(250,251,3) 238=(250,13,3) 239=(250,9,3)");
    }

    void timeText_data()
    {
        QTest::addColumn<long long>("elapsed");
        QTest::addColumn<QString>("text");
        QTest::newRow("seconds") << 7LL << "00:00:07";
        QTest::newRow("all parts") << 3725LL << "01:02:05";
        QTest::newRow("two digits each") << 36610LL << "10:10:10";
        QTest::newRow("100 hours") << 360000LL << "100:00:00";
        QTest::newRow("clock set back") << -5LL << "00:00:00";
    }
    void timeText()
    {
        QFETCH(long long, elapsed);
        QFETCH(QString, text);
        char got[32];
        wsaElapsedText(elapsed, got, sizeof got);
        QCOMPARE(QString(got), text);
        // A history row keeps what fits, always a string.
        char row[WSA_TIME_TEXT + 1];
        std::memset(row, 'x', sizeof row);
        wsaCopyTimeText(row, got);
        QCOMPARE(QString(row), text.left(WSA_TIME_TEXT - 1));
        QCOMPARE(row[WSA_TIME_TEXT], 'x');
    }

    void resetSetsTheBandsRange()
    {
        // {level, waterfall colour index}; the weak end drops into the blue at -96 and -93 dBm.
        const std::vector<std::pair<int, int>> colours24 = {
            {-10, 239}, {-39, 239}, {-40, 235}, {-41, 235}, {-50, 210}, {-52, 210}, {-75, 150},
            {-77, 150}, {-94, 105}, {-95, 105}, {-96, 20},  {-97, 20},  {-98, 15},  {-99, 15},
            {-100, 10}, {-102, 10}, {-103, 5},  {-104, 5},  {-105, 0},  {-110, 0}};
        const std::vector<std::pair<int, int>> colours5 = {{-50, 239}, {-64, 239}, {-65, 235},
                                                           {-70, 210}, {-71, 210}, {-92, 105},
                                                           {-93, 20},  {-98, 0},   {-100, 0}};
        const int n = SA_MAX_SAMPLES;
        for (const int band : {0, 1}) {
            wsatest::fillFullState(n);
            bReceivedData = true;
            wsaResetStore(band, 1234);
            QCOMPARE(QList<int>({nMinDraw, nMaxDraw, nLastIdx, nDataCount, int(sweep_peak_max)}),
                     QList<int>({band ? -100 : -110, band ? -50 : -10, -1, 0, 1}));
            QVERIFY(all(maxData.data, n, nMinDraw) && all(minData.data, n, nMaxDraw));
            QVERIFY(all(sumData, n, 0) && all(popularity[0], n * WSA_DENSITY_LEVELS, 0));
            QVERIFY(all(historyColor[0].color, WSA_HISTORY_ROWS * WSA_COLOR_LINE, qRgb(0, 0, 0)));
            QVERIFY(all(historyTime[0], WSA_HISTORY_ROWS * WSA_TIME_TEXT, '\0'));
            QVERIFY(!bReceivedData && startTime == 1234);
            for (const auto& [level, index] : band ? colours5 : colours24)
                QCOMPARE(QList<int>({level, waterfallColorIndex(level)}),
                         QList<int>({level, index}));
        }
    }

    // A band the plan does not offer the handheld is refused with a console line and shown as
    // 2.4 GHz, never taken for another band.
    void unknownBandIsRefused()
    {
        const wsa::Band& first = wsa::handheldBand(0);
        for (const int band : {2, 7, -1}) {
            s_band = band;
            const wsa::Band* chosen = nullptr;
            const QString printed = wsatest::captureStdout([&] { chosen = &wsaSelectedBand(); });
            QCOMPARE(printed, QString("unknown band %1: showing 2.4 GHz\n").arg(band));
            QCOMPARE(QList<int>({int(chosen->id), s_band}), QList<int>({0, 0}));
            QCOMPARE(wsatest::captureStdout([] { wsaSelectedBand(); }), QString());
            wsaResetStore(1, 0);
            wsatest::captureStdout([&] { wsaResetStore(band, 0); });
            QCOMPARE(QList<int>({nMinDraw, nMaxDraw}),
                     QList<int>({first.handheld->minDbm, first.handheld->maxDbm}));
        }
    }

    void statistics()
    {
        // The first sweep of a recording, longer than a colour row, seeds the maximum unclamped.
        // Sample 0 must not count, whatever its level.
        currentData = wsatest::makeSweep(SA_MAX_SAMPLES, -5);
        currentData.data[0] = currentData.data[1] = -120;
        maxData = currentData;
        nLastIdx = 0;
        bool rescale = false;
        for (int i = 0; i < currentData.num_samples; ++i)
            wsaTakeSample(i, rescale);
        auto bin = [](int i) { return QList<int>({maxData.data[i], minData.data[i], sumData[i]}); };
        QCOMPARE(bin(0) + bin(1) + bin(2),
                 QList<int>({-120, -10, 0, -110, -110, 110, -10, -10, 10}));
        QCOMPARE(QList<int>({popularity[1][110], popularity[2][10], popularity[1023][10]}),
                 QList<int>({1, 1, 1}));
        QVERIFY(all(popularity[0], WSA_DENSITY_LEVELS, 0));
        // Sweep k goes to colour row k + 1.
        const QRgb k = qRgb(0, 0, 0), *row = historyColor[1].color;
        QCOMPARE(QList<QRgb>({row[0], row[1], row[2], row[WSA_COLOR_LINE - 1]}),
                 QList<QRgb>({k, colourOf(0), colourOf(239), colourOf(239)}));
        QVERIFY(all(historyColor[0].color, WSA_COLOR_LINE, k) &&
                all(row + WSA_COLOR_LINE, WSA_COLOR_LINE, k));
    }

    void topographicRescaleSteps()
    {
        // Bin 1 leads the density peak; bin 2 only draws level with it and must never trigger.
        currentData = wsatest::makeSweep(3, -50);
        for (int sweep = 1; sweep <= 450; ++sweep) {
            bool lead = false, follow = false;
            wsaTakeSample(1, lead);
            wsaTakeSample(2, follow);
            QVERIFY2(lead == (sweep % 25 == 0 && sweep < 400) && !follow,
                     qPrintable(QString::number(sweep)));
        }
        QCOMPARE(int(sweep_peak_max), 450);
    }
};

QTEST_MAIN(TestStore)
#include "tst_store.moc"
