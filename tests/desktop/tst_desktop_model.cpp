// The desktop window's sweep store and feed: the core store seen through the views' interface
// (traces, density rows from the top, history order and times), refusals of bad sweeps, and
// pause (the picture frozen while the store keeps counting). The statistics themselves are the
// core store's and tested with it.
#include <QSignalSpy>
#include <QtTest>
#include <algorithm>
#include <cmath>
#include <limits>

#include "desktoptestsupport.h"

using namespace desktoptest;

namespace
{

const wsa::Band& band24()
{
    return band(wsa::BandId::Ghz24);
}

std::vector<float> flat(float level, int extra = 0)
{
    return std::vector<float>(std::size_t(band24().grid.shown + extra), level);
}

} // namespace

class TestDesktopModel : public QObject
{
    Q_OBJECT
private slots:
    // Whatever the band, the views read exactly what the core store counted: traces as they are,
    // density rows flipped to count from the top, history newest first with its times; holds
    // read nothing until a sweep has been counted since their reset.
    void viewsReadTheCoreStore()
    {
        for (const wsa::Band& b : wsa::allBands()) {
            SweepStore store(b, 8);
            store.setAveragingLength(3);
            wsa::SweepStore plain(SweepStore::configFor(b, 8, 3));
            QVERIFY(!store.trace(Trace::Current));
            BusyBand busy(b, 7);
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
            QCOMPARE(rows, SweepStore::kDensityTopDbm - SweepStore::kDensityBottomDbm);
            for (int r = 0; r < rows; ++r)
                for (int i = 0; i < bins; ++i)
                    QCOMPARE(store.densityRow(r)[i], plain.density(i, rows - 1 - r));
            QVERIFY(!store.densityRow(-1) && !store.densityRow(rows));
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
            QVERIFY(!store.historyRow(8) && !store.historyRow(-1));
            QCOMPARE(store.historyTimeMs(8), qint64(0));

            store.resetHolds();
            QVERIFY(store.trace(Trace::Current) && !store.trace(Trace::Maximum));
            QVERIFY(store.addSweep(busy.next().data(), bins, 0));
            QVERIFY(store.trace(Trace::Average) && store.trace(Trace::Minimum));
            QCOMPARE(store.sweepCount(), 21u);
        }
        SweepStore store(band24());
        store.setAveragingLength(0);
        QCOMPARE(store.averagingLength(), 1);
        store.setAveragingLength(1 << 20);
        QCOMPARE(store.averagingLength(), SweepStore::kMaxAveraging);
    }

    void badSweepsAreRefusedOrContained()
    {
        SweepStore store(band24());
        const auto before = store.generation();
        QVERIFY(!store.addSweep(flat(-50, -1).data(), band24().grid.shown - 1, 0));
        QVERIFY(!store.addSweep(nullptr, band24().grid.shown, 0));
        QCOMPARE(store.generation(), before);
        QCOMPARE(store.sweepCount(), 0u);

        // A longer record is fine: the cells past the grid are the source's padding.
        std::vector<float> sweep = flat(-70, band24().grid.raw + 10 - band24().grid.shown);
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

        // A new band forgets everything and takes its grid; a 2.4 GHz sweep is too short for it.
        const wsa::Band& b6 = band(wsa::BandId::Ghz6);
        store.configure(b6);
        QCOMPARE(store.grid().bins, b6.grid.shown);
        QCOMPARE(store.grid().firstHz, b6.grid.startHz);
        QCOMPARE(QList<qint64>({qint64(store.sweepCount()), store.historyRows()}),
                 QList<qint64>({0, 0}));
        QVERIFY(!store.trace(Trace::Current));
        QVERIFY(!store.addSweep(flat(-60).data(), band24().grid.shown, 0));
    }

    void pauseFreezesThePictureWhileCountingGoesOn()
    {
        SweepFeed feed(band24(), 16);
        QSignalSpy shown(&feed, &SweepFeed::sweepShown);
        QSignalSpy counted(&feed, &SweepFeed::sweepCounted);
        QSignalSpy reset(&feed, &SweepFeed::shownReset);
        const int n = band24().grid.shown;
        feed.addSweep(flat(-80).data(), n, 0);
        feed.setPaused(true);
        QVERIFY(feed.isPaused());
        QCOMPARE(reset.count(), 1);
        const auto frozenGeneration = feed.shown().generation();
        for (int s = 1; s <= 5; ++s)
            QVERIFY(feed.addSweep(flat(-80.0f + 5 * s).data(), n, s));
        QCOMPARE(shown.count(), 1);
        QCOMPARE(counted.count(), 6);
        QCOMPARE(counted.last().at(0).toULongLong(), 6u);
        QCOMPARE(feed.live().sweepCount(), 6u);
        QCOMPARE(feed.shown().sweepCount(), 1u);
        QCOMPARE(feed.shown().generation(), frozenGeneration);
        QCOMPARE(feed.shown().trace(Trace::Current)[0], -80.0f);
        QCOMPARE(feed.shown().densityRow(79)[0], 1u); // -80 lies in [-80, -79)
        QCOMPARE(feed.shown().densityRow(78)[0], 0u);
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
        feed.addSweep(flat(-90).data(), n, 7);
        QCOMPARE(shown.count(), 2);
    }
};

QTEST_GUILESS_MAIN(TestDesktopModel)
#include "tst_desktop_model.moc"
