// The front-end stream: frames survive any split of the byte stream, damage costs only the
// damaged stretch, and nothing a reader cannot trust reaches a handler.
#include <QtTest>

#include <cmath>

#include "frontstream.h"

using namespace wsa;

namespace
{

// Everything a reader handed out, in order, as text.
struct Log {
    QStringList events;
    FrameReader reader{{
        [this](const ConfiguredFrame& f) {
            events << QString("configured %1 %2 %3 %4 %5")
                          .arg(f.firstHz, 0, 'f', 1)
                          .arg(f.stepHz, 0, 'f', 3)
                          .arg(f.bins)
                          .arg(f.band)
                          .arg(QString::fromStdString(f.source));
        },
        [this](const SweepFrame& s) {
            events << QString("sweep %1 %2 %3 %4")
                          .arg(s.seconds)
                          .arg(s.bins)
                          .arg(s.bins ? s.dbm[0] : 0)
                          .arg(s.bins ? s.dbm[s.bins - 1] : 0);
        },
        [this](StatusCode c, const std::string& text) {
            events << QString("status %1 %2").arg(int(c)).arg(QString::fromStdString(text));
        },
        [this](const std::string& json) { events << "analysis " + QString::fromStdString(json); },
        [this](std::int64_t bytes, const std::string& path) {
            events << QString("recording %1 %2").arg(bytes).arg(QString::fromStdString(path));
        },
        [this](const char* what) { events << QString("damage ") + what; },
        [this](const ReplayFrame& r) {
            events << QString("replay %1/%2 x%3 %4 %5")
                          .arg(r.position)
                          .arg(r.duration)
                          .arg(r.speed)
                          .arg(r.paused)
                          .arg(r.loop);
        },
        [this](ControlCommand c, double v) {
            events << QString("control %1 %2").arg(int(c)).arg(v);
        },
    }};
};

std::vector<char> sampleStream(QStringList& expected)
{
    std::vector<char> out;
    encodeConfigured(out, {2400e6, 212765.957, 423, 0, "sim"});
    expected << "configured 2400000000.0 212765.957 423 0 sim";
    std::vector<float> levels(423);
    for (int k = 0; k < 3; ++k) {
        for (int i = 0; i < 423; ++i)
            levels[i] = -95.5f + i % 7 + k;
        encodeSweep(out, 0.125 * k, levels.data(), 423);
        expected << QString("sweep %1 423 %2 %3").arg(0.125 * k).arg(-95.5 + k).arg(levels[422]);
    }
    encodeStatus(out, StatusCode::ProgramMissing, "hackrf_sweep: not found");
    expected << "status 1 hackrf_sweep: not found";
    encodeAnalysis(out, R"({"type":"summary","sweeps":3})");
    expected << R"(analysis {"type":"summary","sweeps":3})";
    encodeRecording(out, 123456789012LL, "/tmp/rec ording.csv");
    expected << "recording 123456789012 /tmp/rec ording.csv";
    encodeReplay(out, {12.5, 3600, 4, true, false});
    expected << "replay 12.5/3600 x4 1 0";
    encodeControl(out, ControlCommand::Seek, 42.25);
    expected << "control 3 42.25";
    return out;
}

} // namespace

class TestFrontStream : public QObject
{
    Q_OBJECT

private slots:
    // Frames survive any split of the stream, and damage costs only the damaged stretch: garbage
    // between frames, a header claiming a huge payload, a sweep whose count disagrees with its
    // length or that carries a level no receiver measures are each reported once and the frames
    // around them arrive intact.
    void damageCostsOnlyTheDamagedStretch()
    {
        QStringList expected;
        const std::vector<char> good = sampleStream(expected);
        std::vector<char> bad;
        const char garbage[] = "WW2\x01garbage W2\x02\x00\xff\xff\xff\x7f";
        bad.insert(bad.end(), garbage, garbage + sizeof garbage - 1);
        float nan = std::nanf("");
        encodeSweep(bad, 1.0, &nan, 1);
        std::vector<float> loud(4, 500.0f);
        encodeSweep(bad, 1.0, loud.data(), 4);
        std::vector<char> shortSweep;
        encodeSweep(shortSweep, 1.0, loud.data(), 4);
        shortSweep[8 + 8] = 9; // claims 9 bins in a payload of 4
        bad.insert(bad.end(), shortSweep.begin(), shortSweep.end());

        std::vector<char> stream = good;
        stream.insert(stream.end(), bad.begin(), bad.end());
        stream.insert(stream.end(), good.begin(), good.end());
        QStringList want = expected;
        want << "damage bad frame header";
        want += expected;
        // Every alignment of small pieces (a damaged stretch may end anywhere inside one), frames
        // whole in a piece, and the stream at once.
        std::vector<std::size_t> pieces = {900, stream.size()};
        for (std::size_t piece = 1; piece <= 17; ++piece)
            pieces.push_back(piece);
        for (std::size_t piece : pieces) {
            Log log;
            for (std::size_t at = 0; at < stream.size(); at += piece)
                log.reader.feed(stream.data() + at, std::min(piece, stream.size() - at));
            QCOMPARE(log.events, want);
            QCOMPARE(log.reader.pending(), std::size_t(0));
        }
    }

    void unknownKindsAreSkippedWhole()
    {
        std::vector<char> stream;
        const char header[8] = {'W', '2', 42, 0, 3, 0, 0, 0};
        stream.insert(stream.end(), header, header + 8);
        stream.insert(stream.end(), {'W', '2', 'x'}); // a payload that looks like a start
        encodeStatus(stream, StatusCode::Ended, "");
        Log log;
        log.reader.feed(stream.data(), stream.size());
        QCOMPARE(log.events, QStringList({"status 0 "}));
    }

    void encodersRefuseWhatNoReaderTakes()
    {
        std::vector<char> out;
        std::vector<float> wide(kMaxStreamBins + 1, -90.0f);
        QVERIFY(!encodeSweep(out, 0, wide.data(), kMaxStreamBins + 1));
        QVERIFY(!encodeSweep(out, 0, wide.data(), -1));
        QVERIFY(!encodeAnalysis(out, std::string(kMaxFramePayload + 1, 'x')));
        QVERIFY(out.empty());
        QVERIFY(encodeSweep(out, 0, wide.data(), kMaxStreamBins));
        Log log;
        log.reader.feed(out.data(), out.size());
        QCOMPARE(log.events.size(), 1);
    }
};

QTEST_APPLESS_MAIN(TestFrontStream)
#include "tst_frontstream.moc"
