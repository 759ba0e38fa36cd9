// The desktop window's sweep store and feed: the core store seen through the views' interface
// (traces, density rows from the top, history order and times), refusals of bad sweeps, and
// pause (the picture frozen while the store keeps counting); the statistics themselves are the
// core store's and tested with it. Peak search and markers on known sweeps: which cell each
// search lands on, how markers snap, step and read, the delta against marker 1, and the channel
// a frequency lies in.
#include <QSignalSpy>
#include <QtTest>
#include <algorithm>
#include <cmath>
#include <limits>

#include "desktoptestsupport.h"
#include "peaks.h"

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

// A floor of -90 dBm with peaks of the given height at the given cells.
std::vector<float> withPeaks(int n, std::initializer_list<std::pair<int, float>> peaks)
{
    std::vector<float> v(std::size_t(n), -90.0f);
    for (auto [at, level] : peaks)
        v[std::size_t(at)] = level;
    return v;
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

    // From the left cell of a flat top the next peak right is past the top, not its twin; 3 dB
    // above the floor is no peak at the 6 dB excursion but is at 2 dB; from outside the trace the
    // search starts at its edge.
    void peakSearchOnKnownTraces()
    {
        const auto v = withPeaks(100, {{10, -50}, {40, -30}, {41, -30}, {70, -60}, {90, -87}});
        const float* t = v.data();
        QCOMPARE(QList<int>({peaks::highest(t, 100), peaks::nextLeft(t, 100, 40),
                             peaks::nextRight(t, 100, 10), peaks::nextRight(t, 100, 40),
                             peaks::nextLeft(t, 100, 41), peaks::nextRight(t, 100, 70),
                             peaks::nextRight(t, 100, 70, 2.0f), peaks::nextLeft(t, 100, 10),
                             peaks::nextLeft(t, 100, 1000), peaks::nextRight(t, 100, -50)}),
                 QList<int>({40, 10, 40, 70, 10, -1, 90, -1, 70, 10}));

        // No trace, a flat one; a peak at the very edge cannot fall away on its outer side.
        const std::vector<float> flat(50, -80.0f);
        QCOMPARE(QList<int>({peaks::highest(nullptr, 10), peaks::highest(nullptr, 0),
                             peaks::highest(flat.data(), 50), peaks::nextRight(flat.data(), 50, 0),
                             peaks::nextLeft(flat.data(), 50, 49)}),
                 QList<int>({-1, -1, 0, -1, -1}));
        auto edge = withPeaks(20, {{0, -40}, {19, -40}});
        QVERIFY(!peaks::isPeak(edge.data(), 20, 0) && !peaks::isPeak(edge.data(), 20, 19));
        QVERIFY(!peaks::isPeak(edge.data(), 20, 25));
        // A shoulder on the flank of a higher peak is not a peak of its own.
        const std::vector<float> shoulder = {-90, -90, -60, -60, -50, -30, -90, -90};
        QCOMPARE(peaks::nextRight(shoulder.data(), 8, 0), 5);
    }

    void channelOfAFrequency()
    {
        const auto& b24 = band(wsa::BandId::Ghz24);
        const auto& b5 = band(wsa::BandId::Ghz5);
        const auto& b6 = band(wsa::BandId::Ghz6);
        // Overlapping channels: the nearest centre (2439 MHz); none outside the band, in the gap
        // between the 5 GHz sub-bands, or for a width the plan does not have.
        QCOMPARE(QList<int>({channelAt(b24, 20, 2437e6), channelAt(b24, 20, 2439e6),
                             channelAt(b24, 20, 2484e6), channelAt(b24, 20, 2300e6)}),
                 QList<int>({6, 6, 14, 0}));
        QCOMPARE(QList<int>({channelAt(b5, 20, 5180e6), channelAt(b5, 80, 5180e6),
                             channelAt(b5, 160, 5500e6), channelAt(b5, 20, 5400e6)}),
                 QList<int>({36, 42, 114, 0}));
        QCOMPARE(QList<int>({channelAt(b6, 20, 5955e6), channelAt(b6, 160, 6265e6),
                             channelAt(b6, 30, 6000e6)}),
                 QList<int>({1, 47, 0}));
    }

    void markersSnapStepAndRead()
    {
        const auto& b = band(wsa::BandId::Ghz5);
        SweepStore store(b);
        addSignal(store, 5500e6, -42, -90);
        Markers markers;
        QSignalSpy changed(&markers, &Markers::changed);
        QVERIFY(!markers.reading(store, 0, 20).valid);

        markers.place(0, store, 5500.2e6);
        const int cell = cellOf(b, 5500e6);
        const MarkerReading r = markers.reading(store, 0, 20);
        QVERIFY(r.valid && !r.hasDelta);
        QCOMPARE(QList<int>({r.bin, r.channel}), QList<int>({cell, 100}));
        QCOMPARE(r.hz, b.grid.binHz(cell));
        QCOMPARE(r.dbm, -42.0f);

        // Steps stop at the grid's edges; a placement at no frequency moves nothing.
        QList<int> bins;
        for (int step : {-3, -100000, 100000}) {
            markers.step(0, store, step);
            bins << markers.reading(store, 0, 20).bin;
        }
        markers.place(0, store, std::nan(""));
        bins << markers.reading(store, 0, 20).bin;
        QCOMPARE(bins, QList<int>({cell - 3, 0, b.grid.shown - 1, b.grid.shown - 1}));
        markers.place(7, store, 5500e6); // no such marker: ignored
        QVERIFY(changed.count() >= 4);
    }

    void peakMarkersAndDeltaAgainstMarkerOne()
    {
        const auto& b = band(wsa::BandId::Ghz24);
        SweepStore store(b);
        auto sweep = sweepWithSignal(b, 2437e6, -40, -90, 9);
        const int strong = cellOf(b, 2437e6);
        const int weak = cellOf(b, 2462e6);
        sweep[std::size_t(weak)] = -65;
        store.addSweep(sweep.data(), int(sweep.size()), 0);
        sweep[std::size_t(weak)] = -90;
        store.addSweep(sweep.data(), int(sweep.size()), 1);

        Markers markers;
        auto read = [&](int m) { return markers.reading(store, m, 20); };
        QVERIFY(markers.toHighest(0, store));
        QCOMPARE(read(0).channel, 6);
        QVERIFY(std::abs(read(0).bin - strong) <= 4);
        // The weak signal is gone from the current sweep but held in the maximum.
        markers.setTrace(1, Trace::Maximum);
        QVERIFY(markers.toNextRight(1, store)); // an unplaced marker searches from the left edge
        QCOMPARE(read(1).bin, read(0).bin);
        QVERIFY(markers.toNextRight(1, store));
        markers.setTrace(2, Trace::Current);
        markers.place(2, store, 2462e6);
        QVERIFY(!markers.toNextRight(2, store));
        const MarkerReading r = read(1);
        QVERIFY(r.hasDelta);
        QCOMPARE(QList<int>({r.bin, r.channel}), QList<int>({weak, 11}));
        QCOMPARE(QList<float>({r.dbm, r.deltaDb}), QList<float>({-65, -25}));
        QCOMPARE(r.deltaHz, b.grid.binHz(weak) - read(0).hz);
        // Without marker 1 there is no reference; a marker on a held trace reads nothing once
        // the holds are reset.
        markers.setOn(0, false);
        QVERIFY(!read(1).hasDelta);
        store.resetHolds();
        QVERIFY(!read(1).valid && !markers.toHighest(1, store));
    }

    void followingMarkersTrackTheirTracesPeak()
    {
        const auto& b = band(wsa::BandId::Ghz6);
        SweepStore store(b);
        Markers markers;
        markers.setTrace(1, Trace::Maximum);
        markers.setFollowsPeak(1, true);
        markers.setFollowsPeak(2, true); // on the current trace
        markers.place(0, store, 6000e6); // placed, not following
        for (double hz : {6100e6, 6900e6, 6300e6}) {
            addSignal(store, hz, -40 - (hz - 6100e6) / 1e8, -95);
            markers.followPeaks(store);
            QCOMPARE(markers.reading(store, 2, 20).bin, cellOf(b, hz));
        }
        // The maximum still holds the first, strongest signal.
        QCOMPARE(markers.reading(store, 1, 20).bin, cellOf(b, 6100e6));
        QCOMPARE(markers.reading(store, 0, 20).bin, cellOf(b, 6000e6));
        markers.setOn(2, false);
        markers.followPeaks(store);
        QVERIFY(!markers.marker(2).on && !markers.marker(2).followsPeak);
    }
};

QTEST_GUILESS_MAIN(TestDesktopModel)
#include "tst_desktop_model.moc"
