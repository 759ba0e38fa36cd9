// The desktop window's sweep store and feed: the core store seen through the views' interface
// (traces, density rows from the top, history order and times), holds, averaging, refusals of
// bad sweeps, and pause (the picture frozen while the store keeps counting).
#include <QSignalSpy>
#include <QtTest>
#include <algorithm>
#include <cmath>
#include <limits>

#include "desktoptestsupport.h"
#include "sweepfeed.h"
#include "sweepstore.h"

using namespace wsa::desktop;

namespace
{

const wsa::Band& band24()
{
    return *wsa::findBand(wsa::BandId::Ghz24);
}

std::vector<float> flat(const wsa::Band& band, float level)
{
    return std::vector<float>(std::size_t(band.grid.shown), level);
}

} // namespace

class TestDesktopModel : public QObject
{
    Q_OBJECT
private slots:
    // Whatever the band, the views read exactly what the core store counted: traces as they are,
    // density rows flipped to count from the top, history newest first with its times.
    void viewsReadTheCoreStore()
    {
        for (const wsa::Band& b : wsa::allBands()) {
            SweepStore store(b, 8);
            wsa::SweepStore plain(SweepStore::configFor(b, 8, store.averagingLength()));
            desktoptest::BusyBand busy(b, 7);
            const int bins = b.grid.shown;
            for (int s = 0; s < 20; ++s) {
                const std::vector<float>& sweep = busy.next();
                QVERIFY(store.addSweep(sweep.data(), int(sweep.size()), 100 * s));
                plain.addSweep(sweep.data(), bins);
            }
            const float* plainTraces[] = {plain.current(), plain.average(), plain.maxHold(),
                                          plain.minHold()};
            for (int t = 0; t < kTraceCount; ++t)
                QVERIFY(std::equal(plainTraces[t], plainTraces[t] + bins, store.trace(Trace(t))));
            const int rows = store.densityRows();
            for (int r = 0; r < rows; ++r)
                for (int i = 0; i < bins; ++i)
                    QCOMPARE(store.densityRow(r)[i], plain.density(i, rows - 1 - r));
            // The newest level is counted in the row the interface names for it.
            const float* current = store.trace(Trace::Current);
            for (int i = 0; i < bins; ++i) {
                const int r = std::clamp(int(std::ceil(-current[i])) - 1, 0, rows - 1);
                QVERIFY2(store.densityRow(r)[i] > 0, qPrintable(QString::number(current[i])));
            }
            QCOMPARE(store.historyRows(), 8);
            for (int age = 0; age < 8; ++age) {
                QVERIFY(std::equal(store.historyRow(age), store.historyRow(age) + bins,
                                   plain.historyRow(age)));
                QCOMPARE(store.historyTimeMs(age), qint64(100 * (19 - age)));
            }
        }
    }

    void holdsFollowTheSweeps()
    {
        SweepStore store(band24());
        QVERIFY(!store.trace(Trace::Current));
        for (float level : {-80.0f, -60.0f, -90.0f})
            QVERIFY(store.addSweep(flat(band24(), level).data(), band24().grid.shown, 0));
        QCOMPARE(store.trace(Trace::Current)[5], -90.0f);
        QCOMPARE(store.trace(Trace::Maximum)[5], -60.0f);
        QCOMPARE(store.trace(Trace::Minimum)[5], -90.0f);
        // Within the averaging length the average is the plain mean.
        QCOMPARE(store.trace(Trace::Average)[5], float((-80.0 - 60.0 - 90.0) / 3));

        store.resetHolds();
        QVERIFY(store.trace(Trace::Current));
        QVERIFY(!store.trace(Trace::Maximum));
        QVERIFY(store.addSweep(flat(band24(), -100).data(), band24().grid.shown, 0));
        QCOMPARE(store.trace(Trace::Maximum)[0], -100.0f);
        QCOMPARE(store.trace(Trace::Average)[0], -100.0f);
        QCOMPARE(store.sweepCount(), 4u);
    }

    void averagingLengthWeighsOlderSweepsOut()
    {
        SweepStore store(band24());
        store.setAveragingLength(2);
        for (float level : {-80.0f, -60.0f, -60.0f})
            store.addSweep(flat(band24(), level).data(), band24().grid.shown, 0);
        // -80, then the mean -70, then -70 + (-60 - -70) / 2.
        QCOMPARE(store.trace(Trace::Average)[0], -65.0f);
        store.setAveragingLength(0);
        QCOMPARE(store.averagingLength(), 1);
        store.setAveragingLength(1 << 20);
        QCOMPARE(store.averagingLength(), SweepStore::kMaxAveraging);
    }

    void badSweepsAreRefusedOrContained()
    {
        SweepStore store(band24());
        const auto before = store.generation();
        std::vector<float> shortSweep(std::size_t(band24().grid.shown - 1), -50);
        QVERIFY(!store.addSweep(shortSweep.data(), int(shortSweep.size()), 0));
        QVERIFY(!store.addSweep(nullptr, band24().grid.shown, 0));
        QCOMPARE(store.generation(), before);
        QCOMPARE(store.sweepCount(), 0u);

        // A longer record is fine: the cells past the grid are the source's padding.
        std::vector<float> sweep(std::size_t(band24().grid.raw + 10), -70);
        sweep[0] = std::numeric_limits<float>::quiet_NaN();
        sweep[1] = std::numeric_limits<float>::infinity();
        sweep[2] = 1e30f;
        sweep[3] = -1e30f;
        QVERIFY(store.addSweep(sweep.data(), int(sweep.size()), 0));
        // No reading shows as the band's floor; the rest is clamped to what receivers report.
        const float* current = store.trace(Trace::Current);
        QCOMPARE(QList<float>(current, current + 4),
                 QList<float>({float(band24().grid.floorDbm), wsa::kHighestLevelDbm,
                               wsa::kHighestLevelDbm, wsa::kLowestLevelDbm}));
        // Huge levels land in the outermost density rows.
        QCOMPARE(store.densityRow(0)[2], 1u);
        QCOMPARE(store.densityRow(store.densityRows() - 1)[3], 1u);
        QVERIFY(!store.densityRow(-1) && !store.densityRow(store.densityRows()));
    }

    void densityCountsEachLevelInItsRow()
    {
        SweepStore store(band24());
        const int bins = band24().grid.shown;
        QCOMPARE(store.densityRows(), SweepStore::kDensityTopDbm - SweepStore::kDensityBottomDbm);
        auto sweep = flat(band24(), -70.5f);
        sweep[10] = -40.0f;
        for (int s = 0; s < 3; ++s)
            store.addSweep(sweep.data(), bins, s);
        const auto count = [&](int dbmLow, int bin) {
            return store.densityRow(store.densityTopDbm() - dbmLow - 1)[bin];
        };
        QCOMPARE(count(-71, 0), 3u); // -70.5 lies in [-71, -70)
        QCOMPARE(count(-70, 0), 0u);
        QCOMPARE(count(-40, 10), 3u);
        QCOMPARE(store.densitySweeps(), 3u);
        store.resetDensity();
        QCOMPARE(count(-71, 0), 0u);
        QCOMPARE(store.densitySweeps(), 0u);
        QCOMPARE(store.sweepCount(), 3u);
    }

    void historyRingKeepsTheNewestFirst()
    {
        SweepStore store(band24(), 4);
        for (int s = 0; s < 6; ++s)
            store.addSweep(flat(band24(), -100.0f + s).data(), band24().grid.shown, 1000 + s);
        QCOMPARE(store.historyRows(), 4);
        for (int age = 0; age < 4; ++age) {
            QCOMPARE(store.historyRow(age)[0], -100.0f + 5 - age);
            QCOMPARE(store.historyTimeMs(age), qint64(1005 - age));
        }
        QVERIFY(!store.historyRow(4));
        QVERIFY(!store.historyRow(-1));
        QCOMPARE(store.historyTimeMs(7), qint64(0));
    }

    void configureTakesTheBandsGrid()
    {
        SweepStore store(band24());
        store.addSweep(flat(band24(), -60).data(), band24().grid.shown, 0);
        const wsa::Band& b6 = *wsa::findBand(wsa::BandId::Ghz6);
        store.configure(b6);
        QCOMPARE(store.grid().bins, b6.grid.shown);
        QCOMPARE(store.grid().firstHz, b6.grid.startHz);
        QCOMPARE(store.sweepCount(), 0u);
        QCOMPARE(store.historyRows(), 0);
        QVERIFY(!store.trace(Trace::Current));
        // A 2.4 GHz sweep is too short for 6 GHz.
        QVERIFY(!store.addSweep(flat(band24(), -60).data(), band24().grid.shown, 0));
    }

    void pauseFreezesThePictureWhileCountingGoesOn()
    {
        SweepFeed feed(band24(), 16);
        QSignalSpy shown(&feed, &SweepFeed::sweepShown);
        QSignalSpy counted(&feed, &SweepFeed::sweepCounted);
        QSignalSpy reset(&feed, &SweepFeed::shownReset);
        const int n = band24().grid.shown;
        feed.addSweep(flat(band24(), -80).data(), n, 0);
        feed.setPaused(true);
        QVERIFY(feed.isPaused());
        QCOMPARE(reset.count(), 1);
        const auto frozenGeneration = feed.shown().generation();
        for (int s = 1; s <= 5; ++s)
            QVERIFY(feed.addSweep(flat(band24(), -80.0f + 5 * s).data(), n, s));
        QCOMPARE(shown.count(), 1);
        QCOMPARE(counted.count(), 6);
        QCOMPARE(counted.last().at(0).toULongLong(), 6u);
        QCOMPARE(feed.live().sweepCount(), 6u);
        QCOMPARE(feed.shown().sweepCount(), 1u);
        QCOMPARE(feed.shown().generation(), frozenGeneration);
        QCOMPARE(feed.shown().trace(Trace::Current)[0], -80.0f);
        QCOMPARE(feed.shown().densityRow(79)[0], 1u); // -80 lies in [-80, -79)
        QCOMPARE(feed.shown().densitySweeps(), 1u);
        QCOMPARE(feed.shown().historyRows(), 1);
        QCOMPARE(feed.shown().historyRow(0)[0], -80.0f);
        QCOMPARE(feed.live().historyRow(0)[0], -55.0f);
        QCOMPARE(feed.live().historyTimeMs(4), qint64(1));
        // A hold reset reaches the live store, not the frozen picture.
        feed.resetHolds();
        QVERIFY(feed.shown().trace(Trace::Maximum));
        QVERIFY(!feed.live().trace(Trace::Maximum));

        feed.setPaused(false);
        QCOMPARE(feed.shown().sweepCount(), 6u);
        QCOMPARE(feed.shown().trace(Trace::Current)[0], -55.0f);
        feed.addSweep(flat(band24(), -90).data(), n, 7);
        QCOMPARE(shown.count(), 2);
    }

    void aNewBandEndsThePause()
    {
        SweepFeed feed(band24());
        feed.setPaused(true);
        feed.configure(*wsa::findBand(wsa::BandId::Ghz5));
        QVERIFY(!feed.isPaused());
        QCOMPARE(feed.shown().band().id, wsa::BandId::Ghz5);
    }
};

QTEST_GUILESS_MAIN(TestDesktopModel)
#include "tst_desktop_model.moc"
