// The live analysis stage inside the engine: its Analysis objects and its JSON Lines file on a
// simulated world whose emitters are known, and the simulated probe's emitter scene.
#include <QtTest>
#include <set>

#include "analysisstage.h"
#include "enginecore.h"
#include "enginerun.h"
#include "registry.h"
#include "world.h"

namespace
{

QJsonObject parse(const std::string& text)
{
    return QJsonDocument::fromJson(QByteArray::fromStdString(text)).object();
}

// A Wi-Fi access point throughout and a narrow carrier that stops a third of the way through.
std::vector<wsa::TruthEmitter> cast(const wsa::Band& band, int wifiWidth, int wifiChannel,
                                    double seconds)
{
    const wsa::Channel& c = *band.channel(wifiWidth, wifiChannel);
    const double carrierMHz = band.grid.binHz(band.grid.shown * 9 / 10) / 1e6;
    return {{wsa::EmitterKind::WifiOfdm, c.centerMHz, double(c.widthMHz), c.number, 0, seconds, 0.5,
             -60},
            {wsa::EmitterKind::Narrowband, carrierMHz, 0.05, -1, 0, seconds / 3, 1, -65}};
}

// The channels the analysis follows, of one width or (0) of every width up to 160 MHz.
std::size_t channelCount(const wsa::Band& band, int onlyWidth = 0)
{
    // Those reaching a megahertz or more into the band: the outer one of each side is roll-off.
    std::size_t n = 0;
    for (int w : band.widthsMHz)
        for (const wsa::Channel& c : band.channels(w))
            n += (onlyWidth ? w == onlyWidth : w <= 160) &&
                 (c.highMHz() - 1) * 1e6 > band.grid.lowEdgeHz() &&
                 (c.lowMHz() + 1) * 1e6 < band.grid.highEdgeHz();
    return n;
}

std::vector<float> simLevels(const QStringList& settings)
{
    Settings s;
    s.set("WSA_SIM_RATE", "1000");
    s.set("WSA_SIM_SWEEPS", "30");
    for (const QString& setting : settings)
        s.set(setting.section('=', 0, 0).toStdString(), setting.section('=', 1).toStdString());
    const wsa::Band& band = *wsa::findBand("5g");
    ScriptClock clock(5000000); // coarse, so the last record's wait passes in a few readings
    SweepLog observer;
    Engine engine(band, clock, Detector::Peak, 8);
    engine.addObserver(&observer);
    findSource("sim")->make(s, band)->run(engine);
    return observer.levels;
}

} // namespace

class TestAnalysisStage : public QObject
{
    Q_OBJECT

private slots:

    void liveAnalysis_data()
    {
        QTest::addColumn<QString>("band");
        QTest::addColumn<int>("wifiWidth");
        QTest::addColumn<int>("wifiChannel");
        QTest::addColumn<bool>("writable");
        QTest::newRow("2.4 GHz") << "2g4" << 20 << 6 << true;
        QTest::newRow("5 GHz, 80 MHz") << "5g" << 80 << 42 << true;
        QTest::newRow("6 GHz, 40 MHz") << "6g" << 40 << 59 << true;
        QTest::newRow("file cannot be created") << "2g4" << 20 << 11 << false;
    }

    // Frames come about once a second and soon after a change, carry every channel of every width
    // and the emitters with their numbers; the file gets an emitter's line when it ends and the
    // rest at the stop.
    void liveAnalysis()
    {
        QFETCH(QString, band);
        QFETCH(int, wifiWidth);
        QFETCH(int, wifiChannel);
        QFETCH(bool, writable);
        const wsa::Band& plan = *wsa::findBand(band.toStdString());
        constexpr double kSeconds = 24, kSweepS = 0.05;
        wsa::World world(plan, 7, cast(plan, wifiWidth, wifiChannel, kSeconds));
        QTemporaryDir dir;
        const QString path = dir.filePath(writable ? "analysis.jsonl" : "missing/analysis.jsonl");
        ScriptClock clock;
        MemorySink sink;
        sink.clock = &clock;
        Engine engine(plan, clock, Detector::Peak, 8);
        engine.addSink(&sink);
        AnalysisStage stage(engine, path.toStdString(), true);
        engine.addObserver(&stage);
        QCOMPARE(stage.writing(), writable);

        std::vector<float> sweep(std::size_t(world.bins()));
        std::vector<double> levels(SA_MAX_SAMPLES, plan.grid.floorDbm);
        double changedAt = -1, worstLatency = 0;
        std::uint64_t generation = 0;
        QStringList beforeStop;
        for (int k = 0; k * kSweepS < kSeconds; ++k) {
            world.sweep(k * kSweepS, sweep.data());
            std::copy(sweep.begin(), sweep.end(), levels.begin());
            const std::size_t framesBefore = sink.analyses.size();
            engine.offer(levels.data(), k * kSweepS);
            const bool changed = stage.analyzer().generation() != generation;
            generation = stage.analyzer().generation();
            if (sink.analyses.size() > framesBefore) {
                if (changedAt >= 0)
                    worstLatency = std::max(worstLatency, clock.seconds() - changedAt);
                changedAt = -1;
            } else if (changed && changedAt < 0) {
                changedAt = clock.seconds();
            }
            clock.advanceMs(kSweepS * 1e3);
            if (k * kSweepS < 2 * kSeconds / 3 && (k + 1) * kSweepS >= 2 * kSeconds / 3)
                beforeStop = fileLines(path);
        }
        stage.finish();
        stage.finish();

        QVERIFY(worstLatency <= 0.3 + 1e-9);
        for (std::size_t k = 1; k < sink.analyses.size() - 1; ++k) {
            const double gap = sink.analyses[k].first - sink.analyses[k - 1].first;
            QVERIFY2(gap >= 0.25 - 1e-9 && gap <= 1.0 + kSweepS + 1e-9,
                     qPrintable(QString::number(gap)));
        }
        const QJsonObject last = parse(sink.analyses.back().second);
        QCOMPARE(last["type"].toString(), QString("analysis"));
        QCOMPARE(last["sweeps"].toInt(), int(stage.analyzer().sweeps()));
        QVERIFY(std::fabs(last["seconds"].toDouble() - stage.analyzer().seconds()) <= 0.05);
        QVERIFY(last["noise_floor_dbm"].toDouble() < -85);
        const QJsonArray channels = last["channels"].toArray();
        QCOMPARE(std::size_t(channels.size()), channelCount(plan));
        std::set<int> widths;
        for (const QJsonValue& c : channels)
            widths.insert(c["width_mhz"].toInt());
        QVERIFY(widths.count(wifiWidth));
        // The middle frame still has both emitters; the stop has ended them all.
        const QJsonObject middle = parse(sink.analyses[sink.analyses.size() / 2].second);
        const QJsonArray emitters = middle["emitters"].toArray();
        std::set<int> ids;
        bool wifiFound = false;
        for (const QJsonValue& e : emitters) {
            QVERIFY(e["id"].isDouble());
            ids.insert(e["id"].toInt());
            wifiFound =
                wifiFound || (e["kind"] == "wifi-ofdm" && e["channel"] == wifiChannel &&
                              e["width_mhz"].toDouble() == wifiWidth && e["active"].toBool());
        }
        QVERIFY2(wifiFound, QJsonDocument(emitters).toJson(QJsonDocument::Compact).constData());
        QCOMPARE(ids.size(), std::size_t(emitters.size()));
        // A payload cut to fit drops the oldest emitter and stays whole JSON.
        const std::string full = AnalysisStage::frameJson(stage.analyzer());
        const QJsonArray all = parse(full)["emitters"].toArray();
        const QJsonArray cut =
            parse(AnalysisStage::frameJson(stage.analyzer(), full.size() - 1))["emitters"]
                .toArray();
        QCOMPARE(cut.size(), all.size() - 1);
        QVERIFY(all.size() < 2 || cut.last()["id"] == all.last()["id"]);

        const QStringList lines = fileLines(path);
        if (!writable) {
            QVERIFY(lines.isEmpty());
            return;
        }
        // The carrier ended a third of the way in: its line was there long before the stop.
        QVERIFY(!beforeStop.isEmpty());
        QCOMPARE(parse(beforeStop[0].toStdString())["kind"].toString(), QString("narrowband"));
        const int twenties = int(channelCount(plan, 20));
        QVERIFY(lines.size() >= beforeStop.size() + 1 + twenties + 1);
        for (int k = 0; k < lines.size(); ++k) {
            const QJsonObject o = parse(lines[k].toStdString());
            const QString expected = k == lines.size() - 1              ? "summary"
                                     : k >= lines.size() - 1 - twenties ? "channel"
                                                                        : "emitter";
            QCOMPARE(o["type"].toString(), expected);
            if (expected == "emitter")
                QVERIFY(!o["active"].toBool());
        }
        QCOMPARE(parse(lines.last().toStdString())["sweeps"].toInt(),
                 int(stage.analyzer().sweeps()));
    }

    // The emitter scene is a function of its seed; the fixed scene is untouched unless it is asked
    // for.
    void simEmitterScene()
    {
        const std::vector<float> unset = simLevels({});
        QCOMPARE(unset.size(), std::size_t(30 * wsa::findBand("5g")->grid.shown));
        QVERIFY(simLevels({"WSA_SIM_SCENE=fixed"}) == unset);
        const std::vector<float> emitters = simLevels({"WSA_SIM_SCENE=emitters", "WSA_SIM_SEED=5"});
        QCOMPARE(emitters.size(), unset.size());
        QVERIFY(emitters != unset);
        QVERIFY(simLevels({"WSA_SIM_SCENE=emitters", "WSA_SIM_SEED=5"}) == emitters);
        QVERIFY(simLevels({"WSA_SIM_SCENE=emitters", "WSA_SIM_SEED=6"}) != emitters);
        // Fractional levels, as a measuring probe gives them, inside the probe's range.
        QVERIFY(std::any_of(emitters.begin(), emitters.end(),
                            [](float v) { return v != std::round(v); }));
        const auto [lo, hi] = std::minmax_element(emitters.begin(), emitters.end());
        QVERIFY(*lo >= -110 && *hi <= -20 && *hi > -90);
    }
};

QTEST_GUILESS_MAIN(TestAnalysisStage)
#include "tst_analysis_stage.moc"
