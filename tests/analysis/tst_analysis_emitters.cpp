// Emitters named from the simulated air: one scene per kind the analysis must get right, the
// silence of a clean band, the life of a report, the simulation's determinism and the scoring.
#include <QTest>
#include <cmath>
#include <vector>

#include "analyzer.h"
#include "scenario.h"
#include "scoring.h"
#include "world.h"

namespace
{

constexpr double kSweepS = 0.052;

wsa::TruthEmitter emitter(wsa::EmitterKind kind, double centre, double width, double excessDb,
                          double duty = 1, double slotS = 1e-3)
{
    wsa::TruthEmitter e;
    e.kind = kind;
    e.centerMHz = centre;
    e.widthMHz = width;
    e.duty = duty;
    e.slotS = slotS;
    e.levelDbm = -95 + excessDb;
    e.startS = 2;
    e.stopS = 1e9;
    e.seed = 99;
    return e;
}

// Runs the analysis over `seconds` of a scene, a sweep every `everyS` (each crossing the band in
// at most kSweepS, as a receiver does).
void run(wsa::Analyzer& analyzer, const std::vector<wsa::TruthEmitter>& truth, double seconds,
         std::uint64_t seed = 5, double everyS = kSweepS)
{
    wsa::WorldOptions options;
    options.sweepSeconds = std::min(kSweepS, everyS);
    wsa::World world(analyzer.band(), seed, truth, options);
    std::vector<float> s(std::size_t(world.bins()));
    for (int k = 0; k * everyS < seconds; ++k) {
        world.sweep(k * everyS, s.data());
        analyzer.take(s.data(), world.bins(), k * everyS);
    }
}

// The one emitter reported, which must be of the expected kind.
wsa::EmitterReport only(const wsa::Analyzer& analyzer, wsa::EmitterKind kind)
{
    const std::vector<wsa::EmitterReport>& now = analyzer.current();
    if (now.size() != 1 || now[0].kind != kind) {
        for (const wsa::EmitterReport& r : now)
            qWarning("reported %s at %.1f MHz", wsa::kindName(r.kind), r.centerMHz);
        return {};
    }
    return now[0];
}

} // namespace

class TestAnalysisEmitters : public QObject
{
    Q_OBJECT

private slots:
    void wifiChannelAndWidthAreNamed()
    {
        // A weak, lightly used 40 MHz network at 5 GHz: channel 62 (5300-5340 MHz).
        wsa::Analyzer analyzer(*wsa::findBand("5g"));
        run(analyzer, {emitter(wsa::EmitterKind::WifiOfdm, 5310, 40, 12, 0.2)}, 8);
        const wsa::EmitterReport r = only(analyzer, wsa::EmitterKind::WifiOfdm);
        QCOMPARE(r.channel, 62);
        QCOMPARE(r.widthMHz, 40.0);
        QVERIFY(r.reportedS - 2 <= 2.0);
        QVERIFY(std::fabs(r.duty - 0.2) < 0.1);
        QVERIFY(r.featureCount > 0 && r.confidence > 0.5 && r.confidence <= 1);
        // Its two 20 MHz channels carry its airtime; their neighbours carry none.
        for (const wsa::ChannelReport& c : analyzer.channels(20)) {
            const bool inside = c.channel.number == 60 || c.channel.number == 64;
            const double airtime = inside ? 0.2 * 6 / 8 : 0;
            QVERIFY2(std::fabs(c.occupancy - airtime) < 0.1, qPrintable(QString::number(c.channel.number)));
        }
    }

    void eachKindOf24GHzIsTold_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<double>("centre");
        QTest::addColumn<double>("width");
        QTest::addColumn<double>("duty");
        QTest::addColumn<double>("slot");
        QTest::addColumn<double>("every"); // seconds between sweeps
        using K = wsa::EmitterKind;
        QTest::newRow("bluetooth") << int(K::Bluetooth) << 2441.0 << 79.0 << 0.3 << 625e-6 << kSweepS;
        QTest::newRow("bluetooth, 10 sweeps/s") << int(K::Bluetooth) << 2441.0 << 79.0 << 0.3 << 625e-6 << 0.1;
        QTest::newRow("oven") << int(K::MicrowaveOven) << 2455.0 << 20.0 << 0.5 << 0.0 << kSweepS;
        QTest::newRow("video") << int(K::AvTransmitter) << 2432.0 << 18.0 << 1.0 << 0.0 << kSweepS;
        QTest::newRow("zigbee") << int(K::Zigbee) << 2425.0 << 2.0 << 0.2 << 3e-3 << kSweepS;
        QTest::newRow("zigbee, 10 sweeps/s") << int(K::Zigbee) << 2425.0 << 2.0 << 0.2 << 3e-3 << 0.1;
        QTest::newRow("dsss") << int(K::WifiDsss) << 2462.0 << 22.0 << 0.4 << 1e-3 << kSweepS;
        QTest::newRow("narrowband") << int(K::Narrowband) << 2417.3 << 0.05 << 1.0 << 0.0 << kSweepS;
    }

    void eachKindOf24GHzIsTold()
    {
        QFETCH(int, kind);
        QFETCH(double, centre);
        QFETCH(double, width);
        QFETCH(double, duty);
        QFETCH(double, slot);
        QFETCH(double, every);
        wsa::TruthEmitter e = emitter(wsa::EmitterKind(kind), centre, width, 15, duty, slot);
        e.mainsHz = 50;
        wsa::Analyzer analyzer(*wsa::findBand("2g4"));
        run(analyzer, {e}, 10, 5, every);
        const wsa::EmitterReport r = only(analyzer, e.kind);
        QCOMPARE(int(r.kind), kind);
        QVERIFY(std::fabs(r.centerMHz - centre) <= std::max(2.0, width / 4));
        QVERIFY2(r.reportedS - e.startS <= 2, qPrintable(QString::number(r.reportedS - e.startS)));
        if (e.kind == wsa::EmitterKind::Zigbee)
            QCOMPARE(r.channel, 15);
        else
            QCOMPARE(r.channel, -1);
    }

    void networksAreNoHopper_data()
    {
        QTest::addColumn<QString>("band");
        QTest::addColumn<double>("centre");
        QTest::addColumn<double>("width");
        QTest::newRow("2.4 GHz, stopping") << "2g4" << 2427.0 << 20.0;
        QTest::newRow("5 GHz, 160 MHz") << "5g" << 5570.0 << 160.0;
    }

    // Short frames of a lightly used network scatter narrow bursts, over its skirts too, and
    // they stay in the history once it stops. (Its first frames, before its bins have any
    // history, are left to the confidence a hopper needs.)
    void networksAreNoHopper()
    {
        QFETCH(QString, band);
        QFETCH(double, centre);
        QFETCH(double, width);
        for (std::uint64_t seed = 1; seed <= 3; ++seed) {
            wsa::TruthEmitter e =
                emitter(wsa::EmitterKind::WifiOfdm, centre, width, 35, 0.15, 0.4e-3);
            e.seed = seed;
            e.stopS = 14;
            wsa::Analyzer analyzer(*wsa::findBand(band.toLatin1().constData()));
            run(analyzer, {e}, 24, seed);
            analyzer.finish();
            for (const wsa::EmitterReport& r : analyzer.ended()) {
                const bool hopper = r.kind == wsa::EmitterKind::Bluetooth ||
                                    r.kind == wsa::EmitterKind::CordlessPhone;
                QVERIFY2(!hopper || r.firstS < e.startS + wsa::Classifier::kWindowS,
                         wsa::kindName(r.kind));
            }
        }
    }

    void cleanBandStaysSilent()
    {
        for (const char* key : {"2g4", "5g", "6g"}) {
            wsa::Analyzer analyzer(*wsa::findBand(key));
            run(analyzer, {}, 120, 17);
            analyzer.finish();
            QVERIFY2(analyzer.ended().empty(), key);
            QVERIFY(std::fabs(analyzer.noiseFloorDbm() + 95) < 2);
        }
    }

    void reportsAppearEndAndNotify()
    {
        wsa::Analyzer analyzer(*wsa::findBand("2g4"));
        int changes = 0;
        wsa::TruthEmitter e = emitter(wsa::EmitterKind::AvTransmitter, 2414, 18, 25);
        e.stopS = 6;
        // Every notification finds the snapshot already showing what changed.
        std::size_t seenAtLastChange = 0;
        analyzer.onChange([&] {
            ++changes;
            seenAtLastChange = analyzer.current().size();
        });
        run(analyzer, {e}, 14);
        QVERIFY(changes >= 2); // appeared (perhaps renamed as its picture formed), ended
        QCOMPARE(analyzer.generation(), std::uint64_t(changes));
        QCOMPARE(seenAtLastChange, std::size_t(0));
        QVERIFY(analyzer.current().empty());
        QCOMPARE(int(analyzer.ended().size()), 1);
        const wsa::EmitterReport& r = analyzer.ended()[0];
        QCOMPARE(int(r.kind), int(wsa::EmitterKind::AvTransmitter));
        QVERIFY(!r.active);
        QVERIFY(r.firstS >= 2 && r.firstS < 4);
        QVERIFY(r.lastS >= 5.5 && r.lastS < 8);
        const std::uint64_t generation = analyzer.generation();
        analyzer.finish(); // nothing left to end
        QCOMPARE(analyzer.generation(), generation);
    }

    void simulationIsDeterministicPerSeed()
    {
        const wsa::Band& band = *wsa::findBand("2g4");
        wsa::ScenarioOptions options;
        const std::vector<wsa::TruthEmitter> a = wsa::randomScenario(band, 42, options);
        const std::vector<wsa::TruthEmitter> b = wsa::randomScenario(band, 42, options);
        QVERIFY(!a.empty() && a.size() <= 4);
        QCOMPARE(a.size(), b.size());
        for (std::size_t k = 0; k < a.size(); ++k) {
            QCOMPARE(int(a[k].kind), int(b[k].kind));
            QCOMPARE(a[k].centerMHz, b[k].centerMHz);
            QVERIFY(a[k].levelDbm >= -85 && a[k].levelDbm <= -55);
        }
        wsa::World w1(band, 7, a), w2(band, 7, a), w3(band, 8, a);
        std::vector<float> s1(423), s2(423), s3(423);
        w1.sweep(1.5, s1.data());
        w2.sweep(1.5, s2.data());
        w3.sweep(1.5, s3.data());
        QVERIFY(s1 == s2);
        QVERIFY(s1 != s3);
    }

    void scoringDemandsTheExactChannel()
    {
        const wsa::Band& band = *wsa::findBand("5g");
        wsa::TruthEmitter t = emitter(wsa::EmitterKind::WifiOfdm, 5290, 80, 20);
        t.channel = 58;
        t.stopS = 60;
        wsa::EmitterReport right;
        right.kind = wsa::EmitterKind::WifiOfdm;
        right.centerMHz = 5290;
        right.widthMHz = 80;
        right.channel = 58;
        right.firstS = 3;
        right.lastS = 60;
        right.reportedS = 3.5;
        wsa::EmitterReport narrow = right;
        narrow.centerMHz = 5280;
        narrow.widthMHz = 40;
        narrow.channel = 54;
        wsa::EmitterReport ghost = right;
        ghost.kind = wsa::EmitterKind::Narrowband;
        ghost.centerMHz = 5700;
        wsa::Score score;
        score.add(band, {t}, {narrow, ghost}, {}, 60, true);
        score.add(band, {t}, {right}, {}, 60, false);
        const wsa::KindScore& wifi = score.kind(wsa::EmitterKind::WifiOfdm);
        QCOMPARE(wifi.truths, 2);
        QCOMPARE(wifi.found, 1);
        QCOMPARE(wifi.reports, 2);
        QCOMPARE(wifi.correct, 1);
        QCOMPARE(wifi.delays.size(), std::size_t(1));
        QCOMPARE(wifi.delays[0], 1.5);
        QCOMPARE(score.falseEmitters(), 1); // the ghost, in the clean recording
        QCOMPARE(score.confusion(int(wsa::EmitterKind::WifiOfdm), int(wsa::EmitterKind::WifiOfdm)), 2);
    }
};

QTEST_GUILESS_MAIN(TestAnalysisEmitters)
#include "tst_analysis_emitters.moc"
