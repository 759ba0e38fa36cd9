// The sweep model in-process: the one-sample statistics, and SweepStore's traces, density,
// waterfall, generation and notifications, with configurations and levels no front-end should
// send.
#include <QtTest>
#include <climits>
#include <cmath>
#include <vector>

#include "sweepmodel.h"

namespace
{

wsa::SweepStoreConfig config(int bins, int history = 4, int averaging = 0)
{
    wsa::SweepStoreConfig c;
    c.bins = bins;
    c.minDbm = -100;
    c.maxDbm = -20;
    c.historyRows = history;
    c.averaging = averaging;
    return c;
}

QList<float> trace(const float* p, int n)
{
    return p ? QList<float>(p, p + n) : QList<float>();
}

} // namespace

Q_DECLARE_METATYPE(wsa::SweepStoreConfig)

class TestSweepModel : public QObject
{
    Q_OBJECT

private slots:
    void holdsSettleIntoTheRange()
    {
        // A hold seeded unclamped (above and below the range) settles on its first update.
        int max = 7, min = -500;
        const auto hold = [&](int level) {
            wsa::holdExtremes(level, max, min, -100, -20);
            return QList<int>({max, min});
        };
        QCOMPARE(hold(-60), QList<int>({-20, -100}));
        hold(-30);
        QCOMPARE(hold(-90), QList<int>({-20, -100}));
        max = min = -60;
        hold(-30);
        QCOMPARE(hold(-90), QList<int>({-30, -90}));
    }

    // The handheld's two ranges are checked colour by colour with its store; here the narrowest
    // range, and an empty one, which must not divide by zero.
    void waterfallIndexCoversTheMap()
    {
        QCOMPARE(wsa::waterfallColorIndex(-89, -90, -89), wsa::kColorMapSize - 1);
        QCOMPARE(wsa::waterfallColorIndex(-90, -90, -89), 0);
        QCOMPARE(wsa::waterfallColorIndex(-50, -50, -50), 0);
    }

    void unusableConfigurationsAreRefused_data()
    {
        QTest::addColumn<wsa::SweepStoreConfig>("c");
        auto with = [](auto change) {
            wsa::SweepStoreConfig c = config(100);
            change(c);
            return c;
        };
        QTest::newRow("no bins") << with([](auto& c) { c.bins = 0; });
        QTest::newRow("too many bins") << with([](auto& c) { c.bins = 100000; });
        QTest::newRow("empty range") << with([](auto& c) { c.maxDbm = c.minDbm; });
        QTest::newRow("NaN range") << with([](auto& c) { c.minDbm = NAN; });
        QTest::newRow("density step 0") << with([](auto& c) { c.densityStepDb = 0; });
        QTest::newRow("too many density rows") << with([](auto& c) { c.densityStepDb = 1e-3f; });
        QTest::newRow("negative history") << with([](auto& c) { c.historyRows = -1; });
        QTest::newRow("history too large")
            << with([](auto& c) { c.bins = 8000, c.historyRows = 90000; });
        QTest::newRow("negative averaging") << with([](auto& c) { c.averaging = -2; });
    }
    void unusableConfigurationsAreRefused()
    {
        QFETCH(wsa::SweepStoreConfig, c);
        wsa::SweepStore store(config(10));
        QVERIFY(!store.configure(c));
        const float levels[3] = {-50, -50, -50};
        store.addSweep(levels, 3);
        QCOMPARE(QList<long long>({store.bins(), store.sweeps(), store.historyCount()}),
                 QList<long long>({0, 0, 0}));
        QCOMPARE(store.historyRow(0), nullptr);
    }

    // Counted when added: traces, holds and their reset, the average over a length.
    void traces()
    {
        wsa::SweepStore store(config(3, 4, 2));
        QVERIFY(!store.hasTraces());
        const float a[3] = {-50, -60, -70}, b[3] = {-40, -80, -70}, c[3] = {-60, -60, -90};
        for (const float* s : {a, b, c})
            store.addSweep(s, 3);
        QCOMPARE(store.sweeps(), 3LL);
        QCOMPARE(trace(store.current(), 3), trace(c, 3));
        QCOMPARE(trace(store.maxHold(), 3), QList<float>({-40, -60, -70}));
        QCOMPARE(trace(store.minHold(), 3), QList<float>({-60, -80, -90}));
        // Averaging over 2: the third sweep weighs one half.
        QCOMPARE(trace(store.average(), 3), QList<float>({-52.5f, -65, -80}));
        store.resetHolds();
        store.addSweep(b, 3);
        QCOMPARE(trace(store.maxHold(), 3), trace(b, 3));
        QCOMPARE(trace(store.minHold(), 3), trace(b, 3));
        QCOMPARE(trace(store.average(), 3), trace(b, 3));
        // Averaging everything since the reset.
        store.setAveraging(0);
        store.addSweep(a, 3);
        store.addSweep(c, 3);
        QCOMPARE(store.average()[0], -50.0f);
    }

    // Levels no receiver reports, and sweeps longer or shorter than the store.
    void hostileLevels()
    {
        wsa::SweepStore store(config(4));
        const float wild[5] = {NAN, INFINITY, -INFINITY, 1e30f, -30};
        store.addSweep(wild, 5);
        QCOMPARE(trace(store.current(), 4), QList<float>({-200, 50, -200, 50}));
        const int ints[2] = {INT_MIN, INT_MAX};
        store.addSweep(ints, 2);
        QCOMPARE(trace(store.current(), 4), QList<float>({-200, 50, -200, 50}));
        store.addSweep(ints, -7);
        store.addSweep(static_cast<const int*>(nullptr), 3);
        QCOMPARE(store.sweeps(), 4LL);
        // Bins past a short sweep keep their traces; its waterfall row shows nothing there.
        const float one[1] = {-44};
        store.addSweep(one, 1);
        QCOMPARE(trace(store.current(), 4), QList<float>({-44, 50, -200, 50}));
        QCOMPARE(trace(store.historyRow(0), 4), QList<float>({-44, -200, -200, -200}));
    }

    void densityAndWaterfall()
    {
        wsa::SweepStoreConfig c = config(2, 3);
        c.densityStepDb = 10; // rows at -100, -90, ..., -20
        wsa::SweepStore store(c);
        QCOMPARE(store.densityRows(), 9);
        for (int k = 0; k < 5; ++k) {
            const float s[2] = {-96.0f + k, -500};
            store.addSweep(s, 2);
        }
        // -96 rounds to row 0, -95 .. -92 to row 1; the level below the range to row 0.
        QCOMPARE(QList<quint32>({store.density(0, 0), store.density(0, 1), store.density(1, 0)}),
                 QList<quint32>({1, 4, 5}));
        QCOMPARE(store.densityPeak(), 5L);
        QCOMPARE(QList<quint32>({store.density(-1, 0), store.density(0, 9), store.density(2, 0)}),
                 QList<quint32>({0, 0, 0}));
        // The ring keeps the last three, newest first.
        QCOMPARE(store.historyCount(), 3);
        QCOMPARE(
            QList<float>({store.historyRow(0)[0], store.historyRow(1)[0], store.historyRow(2)[0]}),
            QList<float>({-92, -93, -94}));
        QCOMPARE(store.historyRow(3), nullptr);
        // A new range drops the density and nothing else.
        QVERIFY(store.setDisplayRange(-120, -60));
        QVERIFY(!store.setDisplayRange(-60, -120));
        QCOMPARE(
            QList<long>({long(store.density(0, 0)), store.densityPeak(), store.historyCount()}),
            QList<long>({0, 0, 3}));
        store.clear();
        QCOMPARE(QList<long long>({store.sweeps(), store.historyCount()}),
                 QList<long long>({0, 0}));
    }

    // Every change moves the generation; observers hear of each sweep as it is counted, and may
    // leave or join from inside a notification.
    void generationAndObservers()
    {
        wsa::SweepStore store(config(2));
        const float s[2] = {-50, -50};
        std::uint64_t seen = store.generation();
        auto moved = [&] {
            const bool m = store.generation() != seen;
            seen = store.generation();
            return m;
        };
        store.addSweep(s, 2);
        QVERIFY(moved());
        store.resetHolds();
        QVERIFY(moved());
        QVERIFY(store.setDisplayRange(-90, -30));
        QVERIFY(moved());
        store.clear();
        QVERIFY(moved());
        QVERIFY(!moved());

        QList<int> heard;
        int second = 0;
        const int first = store.subscribe([&](const wsa::SweepStore& st) {
            heard << int(st.sweeps());
            if (st.sweeps() == 2) {
                store.unsubscribe(second);
                store.subscribe([&](const wsa::SweepStore&) { heard << -1; });
            }
        });
        second = store.subscribe([&](const wsa::SweepStore& st) {
            heard << 100 + int(st.sweeps());
            store.unsubscribe(second); // leaves while it runs
        });
        for (int k = 0; k < 3; ++k)
            store.addSweep(s, 2);
        QCOMPARE(heard, QList<int>({1, 101, 2, 3, -1}));
        store.unsubscribe(first);
        store.unsubscribe(first);
        store.addSweep(s, 2);
        QCOMPARE(heard.last(), -1);
        QCOMPARE(heard.size(), 6);
    }

    // What a front-end keeps beside the statistics: stamps with the waterfall rows, density rows
    // a row at a time, a density reset of its own, a stand-in for missing readings, and a
    // snapshot that neither sees later sweeps nor calls the original's observers.
    void frontEndAdditions()
    {
        wsa::SweepStoreConfig c = config(3, 2);
        c.densityStepDb = 10;
        c.missingDbm = -95;
        wsa::SweepStore store(c);
        int heard = 0;
        store.subscribe([&](const wsa::SweepStore&) { ++heard; });
        const float s[3] = {-100, NAN, -21};
        for (int k = 0; k < 3; ++k)
            store.addSweep(s, 3, 1000 + k);
        QCOMPARE(store.current()[1], -95.0f);
        QCOMPARE(QList<long long>({store.historyStamp(0), store.historyStamp(1),
                                   store.historyStamp(2), store.historyStamp(-1)}),
                 QList<long long>({1002, 1001, 0, 0}));
        for (int row = 0; row < store.densityRows(); ++row)
            for (int bin = 0; bin < 3; ++bin)
                QCOMPARE(store.densityCells(row)[bin], store.density(bin, row));
        QCOMPARE(QList<quint32>({store.densityCells(0)[0], store.densityCells(8)[2]}),
                 QList<quint32>({3, 3}));
        QVERIFY(!store.densityCells(-1) && !store.densityCells(store.densityRows()));

        wsa::SweepStore picture = store.snapshot();
        const float later[3] = {-50, -50, -50};
        store.addSweep(later, 3, 2000);
        QCOMPARE(heard, 4);
        picture.addSweep(later, 3, 3000);
        QCOMPARE(heard, 4);
        QCOMPARE(QList<long long>({store.sweeps(), picture.sweeps(), picture.historyStamp(1)}),
                 QList<long long>({4, 4, 1002}));

        store.resetHolds();
        QCOMPARE(QList<long long>({store.holdSweeps(), store.densitySweeps()}),
                 QList<long long>({0, 4}));
        store.resetDensity();
        QCOMPARE(QList<long long>({store.densitySweeps(), store.densityCells(0)[0],
                                   store.historyCount(), store.sweeps()}),
                 QList<long long>({0, 0, 2, 4}));
        c.missingDbm = NAN;
        QVERIFY(!wsa::SweepStore::valid(c));
    }

    // Storage is allocated with the configuration: a long run of sweeps never moves a trace.
    void storageStaysPut()
    {
        wsa::SweepStore store(config(2000, 100));
        const float* const current = store.current();
        const float* const oldest = store.historyRow(0);
        std::vector<float> sweep(2000, -70);
        for (int k = 0; k < 300; ++k)
            store.addSweep(sweep.data(), 2000);
        QCOMPARE(store.current(), current);
        QVERIFY(oldest == nullptr && store.historyRow(99) != nullptr);
    }
};

QTEST_APPLESS_MAIN(TestSweepModel)
#include "tst_sweepmodel.moc"
