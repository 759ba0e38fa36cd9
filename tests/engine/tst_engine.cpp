// The wsa_raw engine as the analyzer sees it, record by record, whatever its source does: the
// simulated probe's bands and faults, a sweep program that fails or goes, recordings that cannot
// be played or made; what it says on stderr and, when asked, on a status socket. With a desktop
// window's socket: what the window receives and controls, and who may listen at either socket.
#include <QtTest>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include "enginerun.h"

namespace
{

// Reads the link as the records of `kinds` (see TestEngine::stream_data).
struct Reader {
    Run& run;
    const Band band;
    std::vector<int> levels; // of every sweep read so far

    int samples() const { return band.plan().simAnnouncement.samples; }

    // The kinds up to the first that did not come; empty when all came.
    QString mismatch(const QString& kinds)
    {
        for (int i = 0; i < kinds.size(); ++i) {
            stSweep r{};
            int bytes = read(kinds[i].toLatin1(), r);
            if (kinds[i] == '*') { // sweeps, as many as come, up to what the next letter names
                while (bytes == SA_RECORD_SIZE && r.type == SA_MSG_SWEEP)
                    bytes = read('S', r);
                ++i;
            }
            if (i == kinds.size() || !meets(kinds[i].toLatin1(), r, bytes))
                return kinds.left(i + 1);
        }
        return {};
    }
    int read(char kind, stSweep& r)
    {
        const int flags = kind == 'X' ? 0 : kind == 'Q' ? MSG_PEEK | MSG_DONTWAIT : MSG_WAITALL;
        QTest::qWait(kind == 'Q' ? 500 : 0);
        const int bytes = kind == 'L' ? 0 : int(recv(run.link, &r, sizeof r, flags));
        if (kind == 'S')
            levels.insert(levels.end(), r.data, r.data + samples());
        std::sort(levels.begin(), levels.end());
        return bytes;
    }
    bool meets(char kind, const stSweep& r, int bytes) const
    {
        const bool whole = bytes == SA_RECORD_SIZE;
        // The probe's bins start at the grid's first cell and its shown ones end at the last.
        const wsa::SourceGrid& g = band.plan().grid;
        const int lastShownKHz = r.data[0] * 1000 + (g.shown - 1) * r.data[2];
        switch (kind) {
        case 'C':
            return whole && r.type == SA_MSG_CONFIGURED && r.num_samples == samples() &&
                   r.data[0] == std::lround(g.startHz / 1e6) &&
                   qAbs(lastShownKHz - g.endHz / 1e3) <= 1000;
        case 'S':
            return whole && r.type == SA_MSG_SWEEP && r.num_samples == samples();
        case 'X':
            return bytes > 8 && bytes < SA_RECORD_SIZE && r.type == SA_MSG_SWEEP;
        case 'B':
            return whole && r.type == SA_MSG_SWEEP && uint(r.num_samples) > SA_MAX_SAMPLES;
        case 'U':
            return whole && (r.type < SA_MSG_DISCONNECT || r.type > SA_MSG_NO_DEVICE);
        case 'D':
            return whole && r.type == SA_MSG_DISCONNECT;
        case 'N':
            return whole && r.type == SA_MSG_NO_DEVICE;
        case 'E':
        case 'K':
            return bytes == 0;
        case 'Q':
            return bytes < 0 && run.proc.state() == QProcess::Running;
        case 'L':
            return !levels.empty() && qAbs(levels[levels.size() / 2] + 93) <= 4 &&
                   levels.back() > -60 && levels.back() < 0;
        }
        return false;
    }
};

} // namespace

class TestEngine : public QObject
{
    Q_OBJECT

private slots:

    // The records in order (C configured, S sweep, X a sweep cut short, B a sweep with an
    // impossible count, U an unknown type, D disconnect, N no device, E end of stream, K end by a
    // crash, * any number of sweeps), Q for nothing during half a second, L for a noise floor near
    // -95 dBm and a strong signal in the sweeps so far. Then the test hangs up and the engine must
    // leave. The one line on stderr, if any, holds `said`; a status socket, when a code is given,
    // gets that code and `told` in one Status. {file} is a recording of `content`: none if null, a
    // FIFO for "fifo".
    void stream_data()
    {
        QTest::addColumn<QStringList>("env");
        QTest::addColumn<Band>("band");
        QTest::addColumn<QString>("content");
        QTest::addColumn<QString>("records");
        QTest::addColumn<QString>("said");
        QTest::addColumn<int>("code"); // -1: no status socket
        QTest::addColumn<QString>("told");
        const QStringList sim{"WSA_SIM_RATE=200", "WSA_OUTPUT_RATE=200"};
        const QString levels = "C" + QString(20, 'S') + "L";
        const auto row = [](const char* name, const QStringList& env, const QString& records,
                            const QString& said = {}, int code = -1, const QString& told = {},
                            const QString& content = {}, const Band& band = Band{false}) {
            QTest::newRow(name) << env << band << content << records << said << code << told;
        };
        using C = wsa::StatusCode;
        row("2.4 GHz", sim, levels);
        row("-r 2", sim, levels, {}, -1, {}, {}, Band{true});
        // Distant access points: a floor near -95 dBm, no signal as strong as at 2.4 or 5 GHz.
        row("-r 3", sim, "C" + QString(20, 'S'), {}, -1, {}, {}, kBand6);
        row("rate 0", sim + QStringList{"WSA_SIM_RATE=0"}, "CQ");
        row("sweep limit", sim + QStringList{"WSA_SIM_SWEEPS=3"}, "CSSSQ");
        row("no probe", sim + QStringList{"WSA_SIM_NO_PROBE=1"}, "NE", {}, int(C::NoDevice));
        row("lose after 3", sim + QStringList{"WSA_SIM_LOSE_AFTER=3"}, "CSSSDE", {},
            int(C::DeviceLost));
        row("die after 3", sim + QStringList{"WSA_SIM_DIE_AFTER=3"}, "CSSSK");
        // Slow enough that the cut sweep arrives on its own.
        row("short after 2", sim + QStringList{"WSA_SIM_RATE=5", "WSA_SIM_SHORT_AFTER=2"}, "CSSXS");
        row("corrupt after 2", sim + QStringList{"WSA_SIM_CORRUPT_AFTER=2", "WSA_SIM_SWEEPS=4"},
            "CSSBUSSQ");
        // Measuring goes on without the recording.
        row("recording directory is a file",
            sim + QStringList{"WSA_SIM_RATE=20", "WSA_SIM_SWEEPS=3", "WSA_RECORD_DIR={file}"},
            "CSSSQ", "not recording", int(C::RecordingFailed), "{file}", "");

        const QString noProgram = "/nonexistent/hackrf_sweep";
        row("program missing", {"WSA_SOURCE=hackrf", "WSA_HACKRF_SWEEP=" + noProgram}, "NE",
            "No such file", int(C::ProgramMissing),
            noProgram + " is not installed: install the hackrf");
        row("program not executable", {"WSA_SOURCE=hackrf", "WSA_HACKRF_SWEEP={file}"}, "NE",
            "Permission denied", int(C::ProgramMissing), "{file} is not installed", "");
        row("no program given", {"WSA_SOURCE=program"}, "NE", "WSA_SWEEP_PROGRAM is not set",
            int(C::ProgramMissing), "WSA_SWEEP_PROGRAM");
        // Three attempts, each ending in the program's usage text: only its failure, once.
        row("device fails to open", standIn({"STANDIN_FAIL=1"}), "NE",
            "ended before measuring: exit status 1 (hackrf_open() failed: HACKRF_ERROR_NOT_FOUND",
            int(C::NoDevice), kStandIn + " ended before measuring");
        row("ends before its first row", standIn({"STANDIN_SWEEPS=0"}), "NE", "ended");
        // Still held by the engine a band change just killed.
        row("device busy at the first attempt",
            standIn({"STANDIN_BUSY_ONCE=busy", "STANDIN_SWEEPS=40"}), "CSSSS*DE", "lost");
        row("lost mid-run, last line cut", standIn({"STANDIN_SWEEPS=40", "STANDIN_RATE=40"}),
            "CSSSS*DE", "lost", int(C::DeviceLost), kStandIn);
        // The program still runs but delivers nothing usable: lost after two seconds.
        row("hangs after its first rows", standIn({"STANDIN_SWEEPS=40", "STANDIN_THEN=hang"}),
            "CSSSS*DE", "gave no valid row for 2.0 s");
        row("garbage after its first rows", standIn({"STANDIN_SWEEPS=40", "STANDIN_THEN=garbage"}),
            "CSSSS*DE", "gave no valid row for 2.0 s");
        row("unknown source", {"WSA_SOURCE=radio"}, "NE",
            "unknown WSA_SOURCE=radio: use sim, hackrf, program or replay", int(C::BadSetting),
            "unknown WSA_SOURCE=radio");

        // Five 1 MHz bins at the bottom of the 2.4 GHz band.
        const qint64 low = qint64(band24().lowHz);
        const QString good = csvRow(low, {-70, -71, -72, -73, -74}, 5.25);
        const QStringList replay{"WSA_SOURCE=replay", "WSA_REPLAY_FILE={file}"};
        row("recording missing", replay, "NE", "cannot open {file}", int(C::FileMissing), "{file}");
        row("no usable row", replay, "NE", "{file} has no sweep in this band",
            int(C::NoSweepInBand), "{file} has no sweep in this band",
            "date, time, hz_low\nnonsense\n" + good.left(good.lastIndexOf(", -72")) + "\n");
        row("only a cut row", replay, "NE", "{file} has no sweep in this band", -1, {},
            good.left(60));
        row("other band", replay, "NE", "{file} has no sweep in this band", -1, {}, good,
            Band{true});
        row("empty file", replay, "NE", "{file} is empty", int(C::FileEmpty), "{file}", "");
        // Neither may be read as a recording: one never ends, the other may wait for ever.
        row("device", {"WSA_SOURCE=replay", "WSA_REPLAY_FILE=/dev/zero"}, "NE",
            "/dev/zero is not a regular file", int(C::FileUnreadable),
            "/dev/zero is not a regular file");
        row("FIFO without a writer", replay, "NE", "{file} is not a regular file", -1, {}, "fifo");
    }

    void stream()
    {
        QFETCH(QStringList, env);
        QFETCH(Band, band);
        QFETCH(QString, content);
        QFETCH(QString, records);
        QFETCH(QString, said);
        QFETCH(int, code);
        QFETCH(QString, told);
        QTemporaryDir tmp;
        const QString file = tmp.filePath("recording.csv");
        if (content == "fifo") {
            QCOMPARE(mkfifo(qPrintable(file), 0600), 0);
        } else if (!content.isNull()) {
            QFile f(file);
            QVERIFY(f.open(QIODevice::WriteOnly) && f.write(content.toLatin1()) >= 0);
        }
        env.replaceInStrings("{file}", file);
        Run run(env, band.args(), code >= 0 ? Run::Status : Run::Late);
        Reader reader{run, band, {}};
        const QString mismatch = reader.mismatch(records);
        QVERIFY2(mismatch.isEmpty(), qPrintable(mismatch));
        shutdown(run.link,
                 SHUT_RDWR); // the analyzer leaves, and the engine quietly unless it crashed
        QVERIFY(run.proc.waitForFinished(5000) || run.proc.state() == QProcess::NotRunning);
        QCOMPARE(run.proc.exitStatus() == QProcess::NormalExit && run.proc.exitCode() == 0,
                 !records.endsWith('K'));
        // Nothing but the engine's own line, if any: no usage text of a program that failed.
        const QStringList lines = run.said();
        QCOMPARE(lines.filter(QRegularExpression("^wsa_raw: ")), lines);
        QCOMPARE(lines.size(), int(!said.isEmpty()));
        QVERIFY2(lines.join("").contains(said.replace("{file}", file)), qPrintable(lines.join("")));
        if (code < 0)
            return;
        QVERIFY(run.peerTaken);
        QVERIFY(run.peer.readUntil([](const FrontPeer::Log& l) { return l.eof; }));
        const FrontPeer::Log log = run.peer.log();
        QCOMPARE(log.kinds, std::string("T"));
        QCOMPARE(int(log.statuses[0].first), code);
        QVERIFY2(
            QString::fromStdString(log.statuses[0].second).contains(told.replace("{file}", file)),
            log.statuses[0].second.c_str());
    }

    void sameSeedSameBytes()
    {
        QByteArray runs[3];
        for (int i = 0; i < 3; ++i) {
            // Slow enough that a busy machine never makes the output stage combine two sweeps.
            Run run({"WSA_SIM_RATE=50", "WSA_OUTPUT_RATE=50",
                     "WSA_SIM_SEED=" + QString::number(i < 2 ? 7 : 8)},
                    {"-r 2"});
            runs[i].resize(20 * SA_RECORD_SIZE);
            QCOMPARE(recv(run.link, runs[i].data(), size_t(runs[i].size()), MSG_WAITALL),
                     ssize_t(runs[i].size()));
        }
        QVERIFY(runs[0] == runs[1] && runs[0] != runs[2]);
    }

    // Configured, sweeps and the recording's state reach the window: the simulated probe records
    // from the start, a replay only once the window asks, and then at once; Record 0 closes the
    // file. The window closing its socket ends the engine with status 0. ./SERVERSOCK is never
    // tried.
    void windowStream_data()
    {
        QTest::addColumn<QString>("source");
        QTest::newRow("sim") << "sim";
        QTest::newRow("replay") << "replay";
    }

    void windowStream()
    {
        QFETCH(QString, source);
        using Log = FrontPeer::Log;
        const bool replay = source == "replay";
        QTemporaryDir dir;
        QFile rec(dir.filePath("played.csv"));
        QVERIFY(rec.open(QIODevice::WriteOnly));
        for (int i = 0; i < 300; ++i)
            rec.write(csvRow(2430000000, {-60, -61, -62, -63, -64}, i / 50.0));
        rec.close();
        Run run({"WSA_SOURCE=" + source, "WSA_REPLAY_FILE=" + rec.fileName(), "WSA_SIM_RATE=20",
                 "WSA_OUTPUT_RATE=50", "WSA_RECORD_DIR={dir}/rec"},
                {}, Run::Window);
        QVERIFY(run.peerTaken);
        QVERIFY(run.peer.readUntil(
            [&](const Log& l) { return l.sweeps.size() >= 5 && l.recordings.empty() == replay; }));
        QCOMPARE(run.peer.log().kinds.front(), 'C');
        QCOMPARE(run.peer.log().configured[0].source, source.toStdString());
        QCOMPARE(QDir(run.dir.filePath("rec")).exists(), !replay);
        run.peer.send(wsa::ControlCommand::Record, 1);
        QVERIFY(run.peer.readUntil([](const Log& l) { return !l.recordings.empty(); }));
        const QString path = QString::fromStdString(run.peer.log().recordings[0].second);
        QVERIFY2(path.startsWith(run.dir.filePath("rec/")) && QFile::exists(path),
                 qPrintable(path));
        run.peer.send(wsa::ControlCommand::Record, 0);
        QVERIFY(run.peer.readUntil([](const Log& l) {
            return !l.recordings.empty() && l.recordings.back().second.empty();
        }));
        QVERIFY(shutdown(run.peer.windowEnd(), SHUT_RDWR) == 0);
        QVERIFY(run.proc.waitForFinished(5000));
        QCOMPARE(run.proc.exitCode(), 0);
        pollfd p{run.listener, POLLIN, 0};
        QCOMPARE(poll(&p, 1, 0), 0);
    }

    // A listener that did not start the engine, another user's or a stranger's of our own, at
    // ./SERVERSOCK or at the window's socket, gets nothing: the engine says why and ends with 1.
    void refusesForeignListener_data()
    {
        QTest::addColumn<bool>("otherUser");
        QTest::addColumn<QString>("socket");
        QTest::newRow("another user") << true << "SERVERSOCK";
        QTest::newRow("our user, not an ancestor") << false << "SERVERSOCK";
        QTest::newRow("window's socket, not an ancestor") << false << "front";
    }

    void refusesForeignListener()
    {
        QFETCH(bool, otherUser);
        QFETCH(QString, socket);
        const passwd* nobody = getpwnam("nobody");
        if (otherUser && (geteuid() != 0 || !nobody))
            QSKIP("needs root and the user nobody to listen as another user");
        // The engine retries its connection for seconds: time enough for the stranger to listen.
        const bool window = socket == "front";
        Run run(window ? QStringList{"WSA_FRONT_SOCKET={dir}/front"} : QStringList(), {},
                Run::Nobody);
        QVERIFY(QFile::setPermissions(run.dir.path(), QFileDevice::Permissions(0x7777)));
        int report[2];
        QCOMPARE(pipe(report), 0);
        const pid_t stranger = fork();
        if (stranger == 0) {
            // Listens, takes one connection and reports how many bytes it got.
            if (otherUser && (setgid(nobody->pw_gid) != 0 || setuid(nobody->pw_uid) != 0))
                _exit(2);
            const int fd = run.listenAt(socket);
            const int link = accept(fd, nullptr, nullptr);
            char buffer[4096];
            long total = 0;
            for (ssize_t n; (n = read(link, buffer, sizeof buffer)) > 0;)
                total += n;
            (void)!write(report[1], &total, sizeof total);
            _exit(0);
        }
        close(report[1]);
        QVERIFY(run.proc.waitForFinished(10000));
        long received = -1;
        QCOMPARE(read(report[0], &received, sizeof received), ssize_t(sizeof received));
        close(report[0]);
        waitpid(stranger, nullptr, 0);
        QCOMPARE(received, 0L);
        QCOMPARE(run.proc.exitCode(), 1);
        const QStringList lines = run.said();
        QCOMPARE(lines.filter(QRegularExpression("^wsa_raw: ")), lines);
        QCOMPARE(lines.size(), 1);
        const QString shown = window ? run.dir.filePath("front") : "./SERVERSOCK";
        const QString why = otherUser
                                ? "it is user " + QString::number(nobody->pw_uid) + "'s"
                                : "its process " + QString::number(stranger) + " did not start us";
        QVERIFY2(lines[0].startsWith("wsa_raw: refusing " + shown + ": ") && lines[0].endsWith(why),
                 qPrintable(lines[0]));
    }
};

QTEST_GUILESS_MAIN(TestEngine)
#include "tst_engine.moc"
