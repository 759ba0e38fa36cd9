// The engine's end of the desktop window's stream, in-process on socket pairs and fake clocks:
// frames and their order, the status codes, controls from a window that may send garbage or
// go, the replay's answers to pause, speed, seek and loop; and the recorder under the window's
// control: a new file per start, rollover, the disk's free space, files that cannot be written.
#include <QtTest>
#include <csignal>
#include <sys/resource.h>
#include <thread>

#include "csvrecorder.h"
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

// A literal's bytes, zeros included.
template <std::size_t N> QByteArray bytes(const char (&text)[N])
{
    return QByteArray(text, N - 1);
}

// An engine whose recorder and a spy on its reports share the engine's controls.
struct Rig {
    ScriptClock clock{1};
    Engine engine{band24(), clock, Detector::Peak, 8};
    MemorySink spy;
    CsvRecorderSink recorder;
    std::vector<int> levels = std::vector<int>(SA_MAX_SAMPLES, -70);

    Rig(const QString& dir, bool startNow, RecorderPolicy policy = {})
        : recorder(dir.toStdString(), band24(), startNow, std::move(policy))
    {
        engine.addSink(&spy);
        engine.addSink(&recorder);
    }
    void sweeps(int n)
    {
        for (int i = 0; i < n; ++i)
            QCOMPARE(recorder.sweep(levels.data(), band24().grid.raw), SinkResult::Ok);
    }
    void record(bool on) { engine.control(wsa::ControlCommand::Record, on ? 1 : 0); }
};

// The size of one row as the recorder writes it.
std::int64_t rowBytes()
{
    QTemporaryDir dir;
    Rig rig(dir.path(), true);
    rig.sweeps(1);
    return QFileInfo(rig.recorder.path().c_str()).size();
}

// Rows per file, in the order the files were made: names sort by start, and within a second
// a numbered name follows the plain one.
QList<int> rowsPerFile(const QString& dir)
{
    QList<int> rows;
    QStringList names = QDir(dir).entryList(QDir::Files);
    std::sort(names.begin(), names.end(), [](const QString& a, const QString& b) {
        return a.size() != b.size() ? a.size() < b.size() : a < b;
    });
    for (const QString& name : names) {
        QFile f(QDir(dir).filePath(name));
        rows << (f.open(QIODevice::ReadOnly) ? int(f.readAll().count('\n')) : -1);
    }
    return rows;
}

} // namespace

class TestFrontStream : public QObject
{
    Q_OBJECT

private slots:

    // Each reason and fault has its code; only one Status per failure, after which the engine is to
    // stop, while the recording's troubles leave it running. Status-only sinks say the same.
    void statusCodes_data()
    {
        QTest::addColumn<int>("reason"); // -1: a fault instead
        QTest::addColumn<int>("fault");
        QTest::addColumn<int>("code");
        QTest::addColumn<bool>("ends");
        using C = wsa::StatusCode;
        // The code of each reason, in the order of their declaration.
        const C codes[] = {C::ProgramMissing, C::NoDevice,       C::DeviceLost,
                           C::FileUnreadable, C::NoSweepInBand,  C::BadSetting,
                           C::FileMissing,    C::FileEmpty,      C::Ended,
                           C::DiskAlmostFull, C::RecordingFailed};
        for (int reason = 0; reason <= int(StatusReason::RecordingFailed); ++reason)
            QTest::addRow("reason %d", reason)
                << reason << -1 << int(codes[reason]) << endsSource(StatusReason(reason));
        QTest::newRow("no probe") << -1 << int(Fault::NoProbe) << int(C::NoDevice) << true;
        QTest::newRow("disconnect") << -1 << int(Fault::Disconnect) << int(C::DeviceLost) << true;
    }

    void statusCodes()
    {
        QFETCH(int, reason);
        QFETCH(int, fault);
        QFETCH(int, code);
        QFETCH(bool, ends);
        for (const auto mode : {FrontSocketSink::Mode::Full, FrontSocketSink::Mode::StatusOnly}) {
            FrontPeer peer;
            ScriptClock clock;
            FrontSocketSink sink(peer.engineEnd(), mode, band24(), "sim", clock);
            if (reason >= 0)
                sink.reason(StatusReason(reason), "the cause");
            // The fault a failed source sends after its reason adds nothing.
            if (reason < 0 || ends)
                QCOMPARE(sink.fault(reason < 0 ? Fault(fault) : Fault::NoProbe), SinkResult::Ok);
            const FrontPeer::Log log = peer.log();
            QCOMPARE(log.kinds, std::string("T"));
            QCOMPARE(int(log.statuses[0].first), code);
            if (reason >= 0)
                QCOMPARE(log.statuses[0].second, std::string("the cause"));
            QCOMPARE(sink.closed(), ends && mode == FrontSocketSink::Mode::Full);
        }
    }

    // Controls reach the engine's handlers through damage and in pieces; a window that goes is
    // seen. A socket path the address cannot hold is refused, not cut short.
    void windowInput_data()
    {
        QTest::addColumn<QByteArray>("before"); // sent ahead of a Record 1 control
        QTest::addColumn<int>("piece");         // bytes per write
        QTest::newRow("whole") << QByteArray() << 1000;
        QTest::newRow("byte by byte") << QByteArray() << 1;
        QTest::newRow("garbage") << bytes("\x01garbage W2\x10\0\xff\xff\xff\xff") << 1000;
        QTest::newRow("unknown kind") << bytes("W2\x7f\0\x04\0\0\0abcd") << 3;
        QTest::newRow("wrong size") << bytes("W2\x10\0\x04\0\0\0\x05\0\0\0") << 1000;
    }

    void windowInput()
    {
        QFETCH(QByteArray, before);
        QFETCH(int, piece);
        FrontPeer peer;
        ScriptClock clock;
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
        QCOMPARE(handler.seen,
                 (std::vector<std::pair<wsa::ControlCommand, double>>{
                     {wsa::ControlCommand::Record, 1}, {wsa::ControlCommand::Seek, 12.5}}));
        shutdown(peer.windowEnd(), SHUT_WR);
        QVERIFY(sink.closed());
        QCOMPARE(engine.waitFor(-1, -1), WaitResult::Closed);
        QCOMPARE(connectToAnalyzer(std::string(200, 'x').c_str(), 1, 0), -1);
        QCOMPARE(errno, ENAMETOOLONG);
    }

    // A replay does what the window asks when its script says: at the times of its recording on the
    // real clock, which the script also follows.
    void replayControls_data()
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

    void replayControls()
    {
        QFETCH(int, spacingMs);
        QFETCH(int, rows);
        QFETCH(QString, script);
        QTemporaryDir dir;
        QFile rec(dir.filePath("rec.csv"));
        QVERIFY(rec.open(QIODevice::WriteOnly));
        for (int i = 0; i < rows; ++i) // one-row sweeps from second 0 of a minute
            rec.write(csvRow(2430000000, {-60.25, -61, -62, -63, -64}, i * spacingMs / 1000.0));
        rec.close();
        Settings settings;
        settings.set("WSA_REPLAY_FILE", rec.fileName().toStdString());
        FrontPeer peer;
        ScriptClock clock(ScriptClock::kRealTime);
        for (const QString& step : script.split(' ', Qt::SkipEmptyParts)) {
            const QStringList p = step.split(':');
            clock.at(p[0].toDouble(),
                     [&peer, p] { peer.send(wsa::ControlCommand(p[1].toInt()), p[2].toDouble()); });
        }
        // The paused replay waits in real time; the window resumes it once it has been still.
        std::atomic<int> offeredAtPause{-1};
        SweepLog stamps;
        stamps.clock = &clock;
        peer.onReplay = [&](const wsa::ReplayFrame& f) {
            if (f.paused && offeredAtPause < 0) {
                offeredAtPause = int(stamps.sweeps);
                QTest::qSleep(300);
                QCOMPARE(int(stamps.sweeps), int(offeredAtPause));
                peer.send(wsa::ControlCommand::Pause, 0);
            }
        };
        int status = -1;
        std::thread replay([&] {
            FrontSocketSink sink(peer.engineEnd(), FrontSocketSink::Mode::Full, band24(), "replay",
                                 clock);
            Engine engine(band24(), clock, Detector::Peak, 1000);
            engine.addSink(&sink);
            engine.addObserver(&stamps);
            status = findSource("replay")->make(settings, band24())->run(engine);
        });
        const bool ended = peer.readUntil([](const FrontPeer::Log& l) { return l.eof; });
        replay.join();
        QVERIFY(ended);
        QCOMPARE(status, 0);
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
        const wsa::ReplayFrame& end = log.replays.back();
        QVERIFY(std::abs(end.duration - (rows - 1) * spacingMs / 1000.0) < 1e-6);
        QCOMPARE(end.position, end.duration);
        std::vector<double> at; // rows played, by their place in the recording
        for (double s : stamps.seconds)
            at.push_back(std::round((s - stamps.seconds.front()) * 1000.0 / spacingMs));
        const auto told = [&](auto pred) {
            return std::any_of(log.replays.begin(), log.replays.end(), pred);
        };
        const QByteArray tag = QTest::currentDataTag();
        if (tag == "plain") {
            QVERIFY(log.sweeps.size() <= std::size_t(rows));
        } else if (tag == "seek") {
            // Up to the seek in order, then from the row at 0.5 s on, each once.
            const auto jump = std::adjacent_find(at.begin(), at.end(),
                                                 [](double a, double b) { return b != a + 1; });
            QVERIFY(jump != at.end());
            QCOMPARE(*(jump + 1), 100.0);
            QCOMPARE(at.back(), rows - 1.0);
            QCOMPARE(std::size_t(at.end() - jump - 1), std::size_t(rows - 100));
            QVERIFY(told([](const wsa::ReplayFrame& f) { return f.position == 0.5; }));
        } else if (tag == "seek past the end") {
            QVERIFY(at.size() < std::size_t(rows));
        } else if (tag == "loop") {
            QVERIFY2(std::count(at.begin(), at.end(), 0.0) >= 3,
                     qPrintable(QString::number(at.size())));
            QCOMPARE(at.back(), rows - 1.0);
            QVERIFY(told([](const wsa::ReplayFrame& f) { return f.loop; }));
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
            QVERIFY2(std::abs(after - expected) <= 0.2 * expected,
                     qPrintable(QString::number(after)));
            QCOMPARE(end.speed, tag == "speed" ? 4.0 : 1.0);
        } else if (tag == "pause") {
            QVERIFY(offeredAtPause > 0);
            QCOMPARE(at.size(), std::size_t(rows)); // nothing lost across the pause
            QVERIFY(told([](const wsa::ReplayFrame& f) { return f.paused; }));
            QVERIFY(!end.paused);
        }
    }

    // Nothing is written before Record 1, which makes its file at once; Record 0 closes it with its
    // size told; the next start makes a new file. A file takes whole rows up to the limit; the row
    // that would pass it starts the next file, told with its path.
    void recorderStartsAndStops()
    {
        const std::int64_t row = rowBytes();
        QTemporaryDir dir;
        RecorderPolicy policy;
        policy.limitBytes = 3 * row + row / 2;
        Rig rig(dir.path(), false, policy);
        rig.sweeps(2);
        QVERIFY(QDir(dir.path()).entryList(QDir::Files).isEmpty());
        rig.record(true);
        QVERIFY(rig.recorder.isRecording());
        const std::string first = rig.recorder.path();
        QCOMPARE(rig.spy.recordings.back(), std::make_pair(std::int64_t(0), first));
        rig.sweeps(2);
        rig.record(true); // already recording: the same file
        rig.record(false);
        QVERIFY(!rig.recorder.isRecording());
        QCOMPARE(rig.spy.recordings.back(),
                 std::make_pair(std::int64_t(QFileInfo(first.c_str()).size()), std::string()));
        rig.sweeps(2);
        rig.record(true);
        rig.sweeps(7);
        QVERIFY(rig.recorder.path() != first);
        QCOMPARE(rowsPerFile(dir.path()), (QList<int>{2, 3, 3, 1}));
        QCOMPARE(std::count_if(rig.spy.recordings.begin(), rig.spy.recordings.end(),
                               [](const auto& r) { return r.first == 0 && !r.second.empty(); }),
                 4);
        QVERIFY(rig.spy.reasons.empty());
    }

    // Below the warning: one DiskAlmostFull per crossing; below the reserve: recording stops.
    void recorderDiskSpace()
    {
        QTemporaryDir dir;
        std::int64_t free = 5000;
        RecorderPolicy policy;
        policy.warnFreeBytes = 1000;
        policy.reserveFreeBytes = 100;
        policy.checkEveryBytes = 1;
        policy.freeBytes = [&free](const std::string&) { return free; };
        Rig rig(dir.path(), true, policy);
        const auto sweeps = [&](std::int64_t freeThen, int n) { free = freeThen, rig.sweeps(n); };
        sweeps(5000, 2);
        sweeps(500, 3);
        QCOMPARE(rig.spy.count(StatusReason::DiskAlmostFull), 1);
        sweeps(5000, 1);
        sweeps(500, 1);
        QCOMPARE(rig.spy.count(StatusReason::DiskAlmostFull), 2);
        sweeps(50, 3);
        QCOMPARE(rig.spy.count(StatusReason::RecordingFailed), 1);
        QVERIFY(!rig.recorder.isRecording());
        QCOMPARE(rowsPerFile(dir.path()), QList<int>{7});
        QCOMPARE(rig.spy.recordings.back().second, std::string());
        // Started again while the disk is still full: refused at once, no empty file left.
        rig.record(true);
        QCOMPARE(rig.spy.count(StatusReason::RecordingFailed), 2);
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files).size(), 1);
    }

    // A directory that cannot be made, none at all, a write that fails: RecordingFailed naming the
    // file and the cause, and nothing more is attempted until the next start.
    void cannotRecord_data()
    {
        QTest::addColumn<QString>("dir");   // "FILE" stands for a regular file
        QTest::addColumn<int>("fileLimit"); // RLIMIT_FSIZE in rows; 0: none
        QTest::addColumn<QString>("cause");
        QTest::newRow("directory is a file") << "FILE/rec" << 0 << "FILE/rec: Not a directory";
        QTest::newRow("no directory") << "" << 0 << "(WSA_RECORD_DIR is not set)";
        QTest::newRow("write fails") << "rec" << 2 << ".csv: File too large";
    }

    void cannotRecord()
    {
        QFETCH(QString, dir);
        QFETCH(int, fileLimit);
        QFETCH(QString, cause);
        QTemporaryDir tmp;
        QTemporaryFile file;
        QVERIFY(file.open());
        const QString path =
            dir.isEmpty() ? dir : tmp.filePath(dir).replace(tmp.filePath("FILE"), file.fileName());
        cause.replace("FILE", file.fileName());
        Rig rig(path, false);
        rlimit old{};
        getrlimit(RLIMIT_FSIZE, &old);
        if (fileLimit) {
            const rlim_t row = rlim_t(rowBytes());
            std::signal(SIGXFSZ, SIG_IGN);
            const rlimit limit{row * rlim_t(fileLimit) + row / 2, old.rlim_max};
            QCOMPARE(setrlimit(RLIMIT_FSIZE, &limit), 0);
        }
        rig.record(true);
        rig.sweeps(4);
        setrlimit(RLIMIT_FSIZE, &old);
        QCOMPARE(rig.spy.count(StatusReason::RecordingFailed), 1);
        QVERIFY2(QString::fromStdString(rig.spy.reasons[0].second).endsWith(cause),
                 rig.spy.reasons[0].second.c_str());
        QVERIFY(!rig.recorder.isRecording());
    }
};

QTEST_GUILESS_MAIN(TestFrontStream)
#include "tst_front_stream.moc"
