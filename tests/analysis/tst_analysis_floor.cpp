// The analysis's foundations: the noise floor, channel occupancy, and what it does with input
// that is not a well-formed sweep.
#include <QTest>
#include <cmath>
#include <limits>
#include <vector>

#include "analyzer.h"
#include "axis.h"
#include "channelstats.h"
#include "noisefloor.h"
#include "world.h"

namespace
{

const wsa::Band& band24() { return *wsa::findBand("2g4"); }

// Feeds `sweeps` sweeps of a world to a floor tracker, the world's floor raised by offsetDb.
void feed(wsa::NoiseFloor& floor, wsa::World& world, int sweeps, double offsetDb, double t0 = 0)
{
    std::vector<float> s(std::size_t(world.bins()));
    for (int k = 0; k < sweeps; ++k) {
        world.sweep(t0 + k * 0.05, s.data());
        for (float& v : s)
            v += float(offsetDb);
        floor.take(s.data());
    }
}

double meanFloor(const wsa::NoiseFloor& floor, int from, int to)
{
    double sum = 0;
    for (int i = from; i < to; ++i)
        sum += floor.at(i);
    return sum / (to - from);
}

} // namespace

class TestAnalysisFloor : public QObject
{
    Q_OBJECT

private slots:
    void floorSettlesAndFollowsSlowChanges()
    {
        wsa::World world(band24(), 11, {});
        wsa::NoiseFloor floor(world.bins());
        feed(floor, world, 40, 0);
        // The reported level is the median of the noise, which the world puts near -95 dBm.
        QVERIFY(std::fabs(floor.bandLevel() + 95) < 1.5);
        // A receiver warming up: 4 dB more noise, reached within half a minute at 20 sweeps/s.
        feed(floor, world, 600, 4, 2);
        QVERIFY(std::fabs(floor.bandLevel() + 91) < 1.5);
        // ... and back down.
        feed(floor, world, 600, 0, 40);
        QVERIFY(std::fabs(floor.bandLevel() + 95) < 1.5);
    }

    void continuousEmitterIsNotTakenForNoise()
    {
        wsa::TruthEmitter video;
        video.kind = wsa::EmitterKind::AvTransmitter;
        video.centerMHz = 2450;
        video.widthMHz = 18;
        video.stopS = 1e9;
        video.levelDbm = -60;
        wsa::World world(band24(), 12, {video});
        wsa::NoiseFloor floor(world.bins());
        feed(floor, world, 2000, 0); // 100 s: time enough for a per-bin tracker to creep up
        const wsa::Axis axis(band24().grid);
        const int lo = axis.nearestBin(2446e6);
        const int hi = axis.nearestBin(2454e6);
        // Under the video the floor stays within a couple of dB of the floor beside it (the
        // signal is 35 dB higher).
        const double beside = meanFloor(floor, 0, 40);
        QVERIFY(beside < -95);
        QVERIFY(meanFloor(floor, lo, hi) < beside + 3);
    }

    void occupancyIsTheLitShareOfTheChannel()
    {
        const wsa::Band& band = band24();
        wsa::ChannelStats stats(band);
        const wsa::Axis axis(band.grid);
        std::vector<float> dbm(std::size_t(band.grid.shown), -95.0f);
        std::vector<std::uint8_t> lit(dbm.size(), 0);
        // Channel 6 lit over its whole width in every other sweep; one bin peaks at -40 dBm.
        for (int k = 0; k < 100; ++k) {
            const bool on = k % 2 == 0;
            for (int i = axis.nearestBin(2427e6); i <= axis.nearestBin(2447e6); ++i) {
                lit[std::size_t(i)] = on;
                dbm[std::size_t(i)] = on ? -60.0f : -95.0f;
            }
            if (k == 98)
                dbm[std::size_t(axis.nearestBin(2437e6))] = -40.0f; // once: it sets the maximum
            stats.take(dbm.data(), lit.data());
        }
        const std::vector<wsa::ChannelReport> channels = stats.reports(20);
        QCOMPARE(int(channels.size()), 14);
        const wsa::ChannelReport& six = channels[5];
        QCOMPARE(six.channel.number, 6);
        QVERIFY(std::fabs(six.occupancy - 0.5) < 0.01);
        QCOMPARE(six.maxDbm, -40.0);
        // Half the time about -60 dBm, half -95: the power mean lies 3 dB under -60.
        QVERIFY(six.meanDbm > -64 && six.meanDbm < -62);
        QVERIFY(channels[0].occupancy < 1e-9); // channel 1 ends below channel 6's lit bins
        QVERIFY(channels[13].occupancy < 1e-9);
        QVERIFY(stats.reports(40).empty()); // the 2.4 GHz plan has no 40 MHz channels
    }

    void malformedSweepsHaveADefinedOutcome()
    {
        wsa::Analyzer analyzer(band24());
        std::vector<float> s(423, -95.0f);
        analyzer.take(s.data(), 422, 0); // wrong length
        analyzer.take(nullptr, 423, 0);
        analyzer.take(s.data(), 423, std::numeric_limits<double>::quiet_NaN());
        QCOMPARE(analyzer.refused(), 3L);
        QCOMPARE(analyzer.sweeps(), 0L);
        // Non-finite and absurd levels, and time running backwards, are taken without harm.
        s[10] = std::numeric_limits<float>::quiet_NaN();
        s[11] = std::numeric_limits<float>::infinity();
        s[12] = -1e30f;
        for (int k = 0; k < 200; ++k)
            analyzer.take(s.data(), 423, k % 7 == 0 ? 0.0 : k * 0.05);
        QCOMPARE(analyzer.sweeps(), 200L);
        QVERIFY(std::isfinite(analyzer.noiseFloorDbm()));
        QVERIFY(analyzer.current().empty());
        for (const wsa::ChannelReport& c : analyzer.channels(20))
            QVERIFY(std::isfinite(c.meanDbm) && c.occupancy >= 0 && c.occupancy <= 1);
    }
};

QTEST_GUILESS_MAIN(TestAnalysisFloor)
#include "tst_analysis_floor.moc"
