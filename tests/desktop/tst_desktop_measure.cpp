// Peak search and markers on known sweeps: which cell each search lands on, how markers snap,
// step and read, the delta against marker 1, and the channel a frequency lies in.
#include <QSignalSpy>
#include <QtTest>
#include <vector>

#include "desktoptestsupport.h"
#include "markers.h"
#include "peaks.h"
#include "sweepstore.h"

using namespace desktoptest;

namespace
{

// A floor of -90 dBm with peaks of the given height at the given cells.
std::vector<float> withPeaks(int n, std::initializer_list<std::pair<int, float>> peaks)
{
    std::vector<float> v(std::size_t(n), -90.0f);
    for (auto [at, level] : peaks)
        v[std::size_t(at)] = level;
    return v;
}

} // namespace

class TestDesktopMeasure : public QObject
{
    Q_OBJECT
private slots:
    void peakSearchOnKnownTraces()
    {
        const auto v = withPeaks(100, {{10, -50}, {40, -30}, {41, -30}, {70, -60}, {90, -87}});
        QCOMPARE(peaks::highest(v.data(), 100), 40);
        QCOMPARE(peaks::nextLeft(v.data(), 100, 40), 10);
        QCOMPARE(peaks::nextRight(v.data(), 100, 10), 40);
        // From the left cell of a flat top, the next peak right is past the top, not its twin.
        QCOMPARE(peaks::nextRight(v.data(), 100, 40), 70);
        QCOMPARE(peaks::nextLeft(v.data(), 100, 41), 10);
        // 3 dB above the floor is no peak at the 6 dB excursion, but is at 2 dB.
        QCOMPARE(peaks::nextRight(v.data(), 100, 70), -1);
        QCOMPARE(peaks::nextRight(v.data(), 100, 70, 2.0f), 90);
        QCOMPARE(peaks::nextLeft(v.data(), 100, 10), -1);
        // From outside the trace the search starts at its edge.
        QCOMPARE(peaks::nextLeft(v.data(), 100, 1000), 70);
        QCOMPARE(peaks::nextRight(v.data(), 100, -50), 10);
    }

    void peakSearchEdgeCases()
    {
        QCOMPARE(peaks::highest(nullptr, 10), -1);
        QCOMPARE(peaks::highest(nullptr, 0), -1);
        const std::vector<float> flat(50, -80.0f);
        QCOMPARE(peaks::highest(flat.data(), 50), 0);
        QCOMPARE(peaks::nextRight(flat.data(), 50, 0), -1);
        QCOMPARE(peaks::nextLeft(flat.data(), 50, 49), -1);
        // A peak at the very edge cannot fall away on its outer side.
        auto edge = withPeaks(20, {{0, -40}, {19, -40}});
        QVERIFY(!peaks::isPeak(edge.data(), 20, 0));
        QVERIFY(!peaks::isPeak(edge.data(), 20, 19));
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
        QVERIFY(markers.toHighest(0, store));
        QCOMPARE(markers.reading(store, 0, 20).channel, 6);
        QVERIFY(std::abs(markers.reading(store, 0, 20).bin - strong) <= 4);
        // The weak signal is gone from the current sweep but held in the maximum.
        markers.setTrace(1, Trace::Maximum);
        QVERIFY(markers.toNextRight(1, store)); // an unplaced marker searches from the left edge
        QCOMPARE(markers.reading(store, 1, 20).bin, markers.reading(store, 0, 20).bin);
        QVERIFY(markers.toNextRight(1, store));
        markers.setTrace(2, Trace::Current);
        markers.place(2, store, 2462e6);
        QVERIFY(!markers.toNextRight(2, store));
        const MarkerReading r = markers.reading(store, 1, 20);
        QCOMPARE(r.bin, weak);
        QCOMPARE(r.dbm, -65.0f);
        QVERIFY(r.hasDelta);
        QCOMPARE(r.deltaDb, -25.0f);
        QCOMPARE(r.deltaHz, b.grid.binHz(weak) - markers.reading(store, 0, 20).hz);
        QCOMPARE(r.channel, 11);
        // Without marker 1 there is no reference.
        markers.setOn(0, false);
        QVERIFY(!markers.reading(store, 1, 20).hasDelta);
        // A marker on a held trace reads nothing once the holds are reset.
        store.resetHolds();
        QVERIFY(!markers.reading(store, 1, 20).valid);
        QVERIFY(!markers.toHighest(1, store));
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
            const auto sweep = sweepWithSignal(b, hz, -40 - (hz - 6100e6) / 1e8, -95);
            store.addSweep(sweep.data(), int(sweep.size()), 0);
            markers.followPeaks(store);
            QCOMPARE(markers.reading(store, 2, 20).bin, cellOf(b, hz));
        }
        // The maximum still holds the first, strongest signal.
        QCOMPARE(markers.reading(store, 1, 20).bin, cellOf(b, 6100e6));
        QCOMPARE(markers.reading(store, 0, 20).bin, cellOf(b, 6000e6));
        markers.setOn(2, false);
        markers.followPeaks(store);
        QVERIFY(!markers.marker(2).on);
        QVERIFY(!markers.marker(2).followsPeak);
    }
};

QTEST_GUILESS_MAIN(TestDesktopMeasure)
#include "tst_desktop_measure.moc"
