// The simulation the analysis is scored against: each kind's pattern in time and shape in
// frequency as a swept receiver meets them, the scenes it draws, and the per-sweep runs of lit
// bins the analysis builds on.
#include <QTest>
#include <algorithm>
#include <cmath>
#include <vector>

#include "activity.h"
#include "models.h"
#include "scenario.h"

namespace
{

wsa::TruthEmitter make(wsa::EmitterKind kind, double centre, double width, double duty, double slotS)
{
    wsa::TruthEmitter e;
    e.kind = kind;
    e.centerMHz = centre;
    e.widthMHz = width;
    e.duty = duty;
    e.slotS = slotS;
    e.startS = 0;
    e.stopS = 1e9;
    e.seed = 1234;
    return e;
}

// Mean relative power at fMHz over many short dwells spread across `seconds`.
double airtime(const wsa::EmitterModel& m, double fMHz, double seconds, double dwell = 100e-6)
{
    double sum = 0;
    int n = 0;
    for (double t = 0.0123; t < seconds; t += 0.0137, ++n)
        sum += m.power(t, t + dwell, fMHz, 0.2);
    return sum / n;
}

} // namespace

class TestAnalysisSimulation : public QObject
{
    Q_OBJECT

private slots:
    void timePatternsKeepTheirDuty()
    {
        // Bursty kinds: on for their duty, within the fading of each burst (+-1.5 dB).
        const wsa::EmitterModel wifi(make(wsa::EmitterKind::WifiOfdm, 2437, 20, 0.3, 1e-3));
        QVERIFY(std::fabs(airtime(wifi, 2437, 60) - 0.3) < 0.05);
        // An oven is on for half of each mains cycle: a dwell inside the off half sees nothing.
        wsa::TruthEmitter oven = make(wsa::EmitterKind::MicrowaveOven, 2455, 20, 0.5, 0);
        const wsa::EmitterModel ovenModel(oven);
        int dark = 0, lit = 0;
        for (int k = 0; k < 2000; ++k) {
            const double p = ovenModel.power(k * 1e-3, k * 1e-3 + 50e-6, 2455, 0.2);
            dark += p == 0;
            lit += p > 0.1;
        }
        QVERIFY(dark > 900 && dark < 1100);
        QVERIFY(lit > 700);
        // Over a whole cycle half of the time is on, wherever the window starts.
        QVERIFY(ovenModel.power(0.003, 0.003 + 1.0 / 50, 2455, 0.2) > 0);
        // Nothing before its start or after its stop.
        wsa::TruthEmitter brief = make(wsa::EmitterKind::AvTransmitter, 2432, 18, 1, 0);
        brief.startS = 1;
        brief.stopS = 2;
        const wsa::EmitterModel av(brief);
        QCOMPARE(av.power(0.5, 0.6, 2432, 0.2), 0.0);
        QVERIFY(av.power(1.5, 1.6, 2432, 0.2) > 0.3);
        QCOMPARE(av.power(2.5, 2.6, 2432, 0.2), 0.0);
        QVERIFY(std::fabs(av.power(1.9, 2.1, 2432, 0.2) - av.power(1.5, 1.7, 2432, 0.2) / 2) < 0.2);
    }

    void hoppersVisitTheWholeBand()
    {
        const wsa::EmitterModel bt(make(wsa::EmitterKind::Bluetooth, 2441, 79, 0.5, 625e-6));
        int visited = 0;
        for (int ch = 0; ch < 79; ++ch)
            visited += airtime(bt, 2402 + ch, 20, 625e-6) > 0;
        QCOMPARE(visited, 79);
        QVERIFY(airtime(bt, 2490, 20, 625e-6) < 1e-4); // beyond its 2402-2480 MHz channels
        // Each hop is about 1 MHz wide: half a MHz off the centre of a channel is 5 dB down.
        QVERIFY(airtime(bt, 2440.5, 40, 625e-6) < 0.5 * airtime(bt, 2440, 40, 625e-6));
    }

    void spectralShapes()
    {
        // OFDM: flat across the occupied width, 20 dB down half a MHz past the channel's edge.
        QCOMPARE(wsa::ofdmShape(0, 20), 1.0);
        QCOMPARE(wsa::ofdmShape(9.3, 20), 1.0);
        QVERIFY(wsa::ofdmShape(10.5, 20) < 0.01);
        QVERIFY(wsa::ofdmShape(-30, 40) < wsa::ofdmShape(-21, 40));
        // DSSS: sinc-squared main lobe, some 4 dB down at 5 MHz, its side lobes filtered away.
        const double at5 = 10 * std::log10(wsa::dsssShape(5));
        QVERIFY(at5 < -3 && at5 > -6);
        QVERIFY(wsa::dsssShape(15) <= 0.001);
        QCOMPARE(wsa::dsssShape(-7), wsa::dsssShape(7));
    }

    void scenesArePlausible()
    {
        wsa::ScenarioOptions options;
        options.durationS = 60;
        for (const char* key : {"2g4", "5g", "6g"}) {
            const wsa::Band& band = *wsa::findBand(key);
            const std::vector<wsa::EmitterKind> kinds = wsa::kindsInBand(band);
            for (std::uint64_t seed = 0; seed < 200; ++seed) {
                const std::vector<wsa::TruthEmitter> scene = wsa::randomScenario(band, seed, options);
                QVERIFY(!scene.empty() && scene.size() <= 4);
                for (std::size_t a = 0; a < scene.size(); ++a) {
                    const wsa::TruthEmitter& e = scene[a];
                    QVERIFY(std::find(kinds.begin(), kinds.end(), e.kind) != kinds.end());
                    QVERIFY(e.lowMHz() * 1e6 >= band.grid.lowEdgeHz() - 1e6);
                    QVERIFY(e.highMHz() * 1e6 <= band.grid.highEdgeHz() + 1e6);
                    QVERIFY(e.startS >= 0 && e.stopS <= 60 && e.stopS - e.startS >= 10);
                    QVERIFY(e.levelDbm >= -85 && e.levelDbm <= -55);
                    if (e.kind == wsa::EmitterKind::WifiOfdm)
                        QVERIFY(band.channel(int(e.widthMHz), e.channel));
                    if (e.kind == wsa::EmitterKind::Zigbee)
                        QCOMPARE(e.centerMHz, 2405.0 + 5 * (e.channel - 11));
                    // Apart by a guard, hoppers excepted.
                    for (std::size_t b = 0; b < a; ++b) {
                        const wsa::TruthEmitter& o = scene[b];
                        const bool hopper = e.kind == wsa::EmitterKind::Bluetooth || e.kind == wsa::EmitterKind::CordlessPhone ||
                                            o.kind == wsa::EmitterKind::Bluetooth || o.kind == wsa::EmitterKind::CordlessPhone;
                        QVERIFY(hopper || e.highMHz() + 3 <= o.lowMHz() || o.highMHz() + 3 <= e.lowMHz());
                    }
                }
            }
        }
    }

    void segmentsAreRunsOfLitBins()
    {
        wsa::Activity activity(40);
        std::vector<float> floor(40, -100.0f);
        std::vector<float> levels(40, -100.0f);
        // Bins 5-9 lit with one dark bin at 7 (bridged), a peak at 8; bins 20-21 and 24, two
        // dark bins apart; the last bin lit at the edge.
        for (int i : {5, 6, 8, 9, 20, 21, 24, 39})
            levels[std::size_t(i)] = -80;
        levels[8] = -70;
        for (int k = 0; k < 3; ++k)
            activity.take(levels.data(), floor.data(), k * 1.0, 0.5);
        std::vector<wsa::Segment> seen;
        activity.forEachSegment(1.0, [&](const wsa::Segment& s) { seen.push_back(s); });
        QCOMPARE(int(seen.size()), 8); // four a sweep, the first sweep's too old
        QCOMPARE(seen[0].timeS, 1.0);
        QCOMPARE(seen[0].lo, 5);
        QCOMPARE(seen[0].hi, 9);
        QCOMPARE(seen[0].peak, 8);
        QCOMPARE(seen[0].width6, 1); // only the peak lies within 6 dB of itself
        QCOMPARE(seen[1].lo, 20);
        QCOMPARE(seen[1].hi, 21);
        QCOMPARE(seen[2].lo, 24);
        QCOMPARE(seen[3].lo, 39);
        QCOMPARE(seen[3].hi, 39);
        // Decayed counts: three sweeps lit, kept by halves.
        QCOMPARE(activity.litCount(8), 1.75);
        QCOMPARE(activity.seen(8), 1.75);
        QCOMPARE(activity.occupancy(7), 0.0);
        QCOMPARE(activity.litExcess(8), 30.0);
    }
};

QTEST_GUILESS_MAIN(TestAnalysisSimulation)
#include "tst_analysis_simulation.moc"
