// The engine's end of the desktop window's stream, in-process on socket pairs and fake clocks:
// frames and their order, the status codes, controls from a window that may send garbage or
// go, the replay's answers to pause, speed, seek and loop.
#include <QtTest>
#include <cmath>

#include "enginecore.h"
#include "enginerun.h"
#include "frontsocket.h"
#include "recordsocket.h"
#include "registry.h"

namespace
{

class ControlLog : public ControlHandler
{
public:
    std::vector<std::pair<wsa::ControlCommand, double>> seen;
    bool control(wsa::ControlCommand command, double value) override
    {
        seen.emplace_back(command, value);
        return false;
    }
};

// Records the time stamp of every sweep the source offers, and counts them for other threads.
class Stamps : public SweepObserver
{
public:
    std::vector<double> seconds;
    std::vector<long long> atNs;
    std::atomic<int> offered{0};
    const ScriptClock* clock = nullptr;
    void take(const float*, int, double timeSeconds) override
    {
        seconds.push_back(timeSeconds);
        atNs.push_back(clock->peekNs());
        ++offered;
    }
};

// A recording of `rows` one-row sweeps, `spacingMs` apart, from second 0 of a minute.
QString writeRecording(const QTemporaryDir& dir, int rows, int spacingMs)
{
    const QString path = dir.filePath("rec.csv");
    QFile f(path);
    f.open(QIODevice::WriteOnly);
    for (int i = 0; i < rows; ++i)
        f.write(csvRow(2430000000, {-60.25, -61, -62, -63, -64}, i * spacingMs / 1000.0));
    return path;
}

// A literal's bytes, zeros included.
template <std::size_t N> QByteArray bytes(const char (&text)[N])
{
    return QByteArray(text, N - 1);
}

} // namespace

class TestFrontStream : public QObject
{
    Q_OBJECT

private slots:
    void statusCodes_data();
    void statusCodes();
    void windowInput_data();
    void windowInput();
    void replayControls_data();
    void replayControls();
    void longSocketPath();
};

// Each reason and fault has its code; only one Status per failure, after which the engine is to
// stop, while the recording's troubles leave it running. Status-only sinks say the same.
void TestFrontStream::statusCodes_data()
{
    QTest::addColumn<int>("reason"); // -1: a fault instead
    QTest::addColumn<int>("fault");
    QTest::addColumn<int>("code");
    QTest::addColumn<bool>("ends");
    using C = wsa::StatusCode;
    const std::vector<std::pair<StatusReason, C>> reasons = {
        {StatusReason::ProgramMissing, C::ProgramMissing},
        {StatusReason::NoDevice, C::NoDevice},
        {StatusReason::DeviceLost, C::DeviceLost},
        {StatusReason::FileUnusable, C::FileUnreadable},
        {StatusReason::NotInBand, C::NoSweepInBand},
        {StatusReason::UnknownSource, C::BadSetting},
        {StatusReason::FileMissing, C::FileMissing},
        {StatusReason::FileEmpty, C::FileEmpty},
        {StatusReason::Ended, C::Ended},
        {StatusReason::DiskAlmostFull, C::DiskAlmostFull},
        {StatusReason::RecordingFailed, C::RecordingFailed},
    };
    for (const auto& [reason, code] : reasons)
        QTest::addRow("reason %d", int(reason))
            << int(reason) << -1 << int(code) << endsSource(reason);
    QTest::newRow("no probe") << -1 << int(Fault::NoProbe) << int(C::NoDevice) << true;
    QTest::newRow("disconnect") << -1 << int(Fault::Disconnect) << int(C::DeviceLost) << true;
}

void TestFrontStream::statusCodes()
{
    QFETCH(int, reason);
    QFETCH(int, fault);
    QFETCH(int, code);
    QFETCH(bool, ends);
    for (const auto mode : {FrontSocketSink::Mode::Full, FrontSocketSink::Mode::StatusOnly}) {
        FrontPeer peer;
        ScriptClock clock(0);
        FrontSocketSink sink(peer.engineEnd(), mode, band24(), "sim", clock);
        if (reason >= 0) {
            sink.reason(StatusReason(reason), "the cause");
            // The fault a failed source sends after its reason adds nothing.
            if (ends)
                QCOMPARE(sink.fault(Fault::NoProbe), SinkResult::Ok);
        } else {
            QCOMPARE(sink.fault(Fault(fault)), SinkResult::Ok);
        }
        peer.stop();
        const FrontPeer::Log log = peer.log();
        QCOMPARE(log.kinds, std::string("T"));
        QCOMPARE(int(log.statuses[0].first), code);
        if (reason >= 0)
            QCOMPARE(log.statuses[0].second, std::string("the cause"));
        QCOMPARE(sink.closed(), ends && mode == FrontSocketSink::Mode::Full);
    }
}

// Controls reach the engine's handlers through damage and in pieces; a window that goes is seen.
void TestFrontStream::windowInput_data()
{
    QTest::addColumn<QByteArray>("before"); // sent ahead of a Record 1 control
    QTest::addColumn<int>("piece");         // bytes per write
    QTest::newRow("whole") << QByteArray() << 1000;
    QTest::newRow("byte by byte") << QByteArray() << 1;
    QTest::newRow("garbage") << bytes("\x01garbage W2\x10\0\xff\xff\xff\xff") << 1000;
    QTest::newRow("unknown kind") << bytes("W2\x7f\0\x04\0\0\0abcd") << 3;
    QTest::newRow("wrong size") << bytes("W2\x10\0\x04\0\0\0\x05\0\0\0") << 1000;
}

void TestFrontStream::windowInput()
{
    QFETCH(QByteArray, before);
    QFETCH(int, piece);
    FrontPeer peer;
    ScriptClock clock(0);
    FrontSocketSink sink(peer.engineEnd(), FrontSocketSink::Mode::Full, band24(), "sim", clock);
    Engine engine(band24(), clock, Detector::Peak, 8);
    engine.addSink(&sink);
    ControlLog handler;
    const Engine::ControlScope scope(engine, &handler);
    std::vector<char> bytes(before.begin(), before.end());
    wsa::encodeControl(bytes, wsa::ControlCommand::Record, 1);
    wsa::encodeControl(bytes, wsa::ControlCommand::Seek, 12.5);
    for (std::size_t at = 0; at < bytes.size(); at += std::size_t(piece)) {
        peer.sendRaw(bytes.data() + at, std::min(bytes.size() - at, std::size_t(piece)));
        QVERIFY(!sink.closed());
    }
    QCOMPARE(handler.seen.size(), std::size_t(2));
    QCOMPARE(handler.seen[0].first, wsa::ControlCommand::Record);
    QCOMPARE(handler.seen[1].second, 12.5);
    shutdown(peer.windowEnd(), SHUT_WR);
    QVERIFY(sink.closed());
    QCOMPARE(engine.waitFor(-1, -1), WaitResult::Closed);
}

// A replay does what the window asks when its script says: at the times of its recording on the
// real clock, which the script also follows.
void TestFrontStream::replayControls_data()
{
    QTest::addColumn<int>("spacingMs");
    QTest::addColumn<int>("rows");
    QTest::addColumn<QString>("script"); // "ms:command:value ..."
    QTest::newRow("plain") << 5 << 20 << "";
    QTest::newRow("seek") << 5 << 200 << "50:3:0.5";
    QTest::newRow("seek past the end") << 5 << 40 << "50:3:99";
    QTest::newRow("loop") << 5 << 20 << "0:4:1 300:4:0";
    QTest::newRow("speed") << 20 << 40 << "200:2:4";
    QTest::newRow("speed refused") << 20 << 20 << "200:2:1000";
    QTest::newRow("pause") << 5 << 40 << "50:1:1";
}

void TestFrontStream::replayControls()
{
    QFETCH(int, spacingMs);
    QFETCH(int, rows);
    QFETCH(QString, script);
    QTemporaryDir dir;
    Settings settings;
    settings.set("WSA_REPLAY_FILE", writeRecording(dir, rows, spacingMs).toStdString());
    FrontPeer peer;
    ScriptClock clock(0);
    for (const QString& step : script.split(' ', Qt::SkipEmptyParts)) {
        const QStringList p = step.split(':');
        clock.at(p[0].toDouble(),
                 [&peer, p] { peer.send(wsa::ControlCommand(p[1].toInt()), p[2].toDouble()); });
    }
    // The paused replay waits in real time; the window resumes it once it has been still.
    std::atomic<int> offeredAtPause{-1};
    Stamps stamps;
    stamps.clock = &clock;
    peer.onReplay = [&](const wsa::ReplayFrame& f) {
        if (f.paused && offeredAtPause < 0) {
            offeredAtPause = int(stamps.offered);
            QTest::qSleep(300);
            QCOMPARE(int(stamps.offered), int(offeredAtPause));
            peer.send(wsa::ControlCommand::Pause, 0);
        }
    };
    FrontSocketSink sink(peer.engineEnd(), FrontSocketSink::Mode::Full, band24(), "replay", clock);
    Engine engine(band24(), clock, Detector::Peak, 1000);
    engine.addSink(&sink);
    engine.addObserver(&stamps);
    peer.start();
    QCOMPARE(findSource("replay")->make(settings, band24())->run(engine), 0);
    peer.stop();
    // Configured with the grid and the source's name, then sweeps with their fractions of a dB,
    // then the replay's end: a last position and Status Ended.
    const FrontPeer::Log log = peer.log();
    QVERIFY2(QRegularExpression("^CP?(S+P*)+T$").match(log.kinds.c_str()).hasMatch(),
             log.kinds.c_str());
    const wsa::ConfiguredFrame& c = log.configured.at(0);
    const wsa::SourceGrid& grid = band24().grid;
    QVERIFY(c.firstHz == grid.startHz && c.stepHz == grid.stepHz && c.bins == grid.shown);
    QCOMPARE(c.band, int(wsa::BandId::Ghz24));
    QCOMPARE(c.source, std::string("replay"));
    QVERIFY(log.sweeps.size() >= 2);
    for (const std::vector<float>& sweep : log.sweeps) {
        QCOMPARE(int(sweep.size()), grid.shown);
        QCOMPARE(*std::max_element(sweep.begin(), sweep.end()), -60.25f);
    }
    QCOMPARE(log.statuses.back().first, wsa::StatusCode::Ended);
    QVERIFY(QString::fromStdString(log.statuses.back().second).contains("rec.csv"));
    // Time stamps since 1970 in a double: a microsecond is as close as they come.
    QVERIFY(std::abs(log.replays.back().duration - (rows - 1) * spacingMs / 1000.0) < 1e-6);
    QCOMPARE(log.replays.back().position, log.replays.back().duration);
    const double step = spacingMs / 1000.0;
    const double first = stamps.seconds.front();
    std::vector<double> at;
    for (double s : stamps.seconds)
        at.push_back(std::round((s - first) / step));
    const QByteArray tag = QTest::currentDataTag();
    if (tag == "plain") {
        QVERIFY(log.sweeps.size() <= std::size_t(rows));
    } else if (tag == "seek") {
        // Up to the seek in order, then from the row at 0.5 s on, each once.
        const auto jump =
            std::adjacent_find(at.begin(), at.end(), [](double a, double b) { return b != a + 1; });
        QVERIFY(jump != at.end());
        QCOMPARE(*(jump + 1), 100.0);
        QCOMPARE(at.back(), rows - 1.0);
        QCOMPARE(std::size_t(at.end() - jump - 1), std::size_t(rows - 100));
        const auto sought =
            std::find_if(log.replays.begin(), log.replays.end(),
                         [](const wsa::ReplayFrame& f) { return f.position == 0.5; });
        QVERIFY(sought != log.replays.end());
    } else if (tag == "seek past the end") {
        QVERIFY(at.size() < std::size_t(rows));
    } else if (tag == "loop") {
        QVERIFY2(std::count(at.begin(), at.end(), 0.0) >= 3,
                 qPrintable(QString::number(at.size())));
        QCOMPARE(at.back(), rows - 1.0);
        QVERIFY(std::any_of(log.replays.begin(), log.replays.end(),
                            [](const wsa::ReplayFrame& f) { return f.loop; }));
    } else if (tag.startsWith("speed")) {
        // The mean fake time between sweeps before the change and after it: the replay keeps
        // to its schedule, however late a single sweep goes.
        const auto split = std::find_if(stamps.atNs.begin(), stamps.atNs.end(),
                                        [](long long ns) { return ns >= 200000000; });
        const auto meanGapMs = [](auto from, auto to) {
            return (*(to - 1) - *from) / 1e6 / double(to - from - 1);
        };
        const double before = meanGapMs(stamps.atNs.begin(), split);
        const double after = meanGapMs(split, stamps.atNs.end());
        const double expected = tag == "speed" ? spacingMs / 4.0 : spacingMs;
        QVERIFY2(std::abs(before - spacingMs) <= 0.1 * spacingMs,
                 qPrintable(QString::number(before)));
        QVERIFY2(std::abs(after - expected) <= 0.2 * expected, qPrintable(QString::number(after)));
        QCOMPARE(log.replays.back().speed, tag == "speed" ? 4.0 : 1.0);
    } else if (tag == "pause") {
        QVERIFY(offeredAtPause > 0);
        QCOMPARE(at.size(), std::size_t(rows)); // nothing lost across the pause
        QVERIFY(std::any_of(log.replays.begin(), log.replays.end(),
                            [](const wsa::ReplayFrame& f) { return f.paused; }));
        QVERIFY(!log.replays.back().paused);
    }
}

// A path the socket address cannot hold is refused, not cut short.
void TestFrontStream::longSocketPath()
{
    QCOMPARE(connectToAnalyzer(std::string(200, 'x').c_str(), 1, 0), -1);
    QCOMPARE(errno, ENAMETOOLONG);
}

QTEST_GUILESS_MAIN(TestFrontStream)
#include "tst_front_stream.moc"
