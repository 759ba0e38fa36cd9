// The engine's radio and recording sources as the analyzer sees them: a stand-in hackrf_sweep
// (tests/stand-ins) feeds the hackrf source; recordings are made with the simulated probe and
// played back. Every engine runs in its own directory and is read on its ./SERVERSOCK.
#include <QtTest>
#include <cmath>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include "bandplan.h"
#include "halbrin_sa.h"

namespace
{

const QString kStandIn = WSA_SOURCE_DIR "/tests/stand-ins/hackrf_sweep";

// A band's grid as the band plan has it; `high` is the 5 GHz band, else `id` chooses.
struct Band {
    bool high;
    wsa::BandId id = high ? wsa::BandId::Ghz5 : wsa::BandId::Ghz24;
    const wsa::Band& plan() const { return *wsa::findBand(id); }
    double startMHz() const { return plan().grid.startHz / 1e6; }
    double stepMHz() const { return plan().grid.stepHz / 1e6; }
    int shown() const { return plan().grid.shown; }
    int raw() const { return plan().grid.raw; }
    int floor() const { return plan().grid.floorDbm; }
    double mhz(int bin) const { return plan().grid.binHz(bin) / 1e6; }
    QStringList args() const
    {
        return id == wsa::BandId::Ghz24 ? QStringList()
                                        : QStringList{"-r " + QString::number(plan().engineNumber)};
    }
};

const Band kBand6{false, wsa::BandId::Ghz6};

} // namespace

Q_DECLARE_METATYPE(Band)

namespace
{

// An engine run with no analyzer: nobody listens on its SERVERSOCK.
struct Detached {
    QTemporaryDir dir;
    QProcess proc;
    explicit Detached(const QStringList& env)
    {
        QProcessEnvironment e = QProcessEnvironment::systemEnvironment();
        for (const QString& key : e.keys())
            if (key.startsWith("WSA_"))
                e.remove(key);
        for (const QString& setting : env)
            e.insert(setting.section('=', 0, 0), setting.section('=', 1));
        proc.setProcessEnvironment(e);
        proc.setWorkingDirectory(dir.path());
        QFile::link(WSA_ENGINE_BIN, dir.filePath("engine"));
        proc.start(dir.filePath("engine"), {});
    }
    ~Detached() { proc.kill(), proc.waitForFinished(); }
    // The rows recorded, in the one file expected.
    QStringList rows() const
    {
        const QDir rec(dir.filePath("rec"));
        const QStringList files = rec.entryList(QDir::Files);
        QFile f(files.size() == 1 ? rec.filePath(files[0]) : QString());
        if (!f.open(QIODevice::ReadOnly))
            return {};
        return QString(f.readAll()).split('\n', Qt::SkipEmptyParts);
    }
};

} // namespace

namespace
{

// One engine and the analyzer's end of its link. Only the given WSA_* and STANDIN_* settings
// reach it. Every wait is bounded.
struct Run {
    QTemporaryDir dir;
    QProcess proc;
    int listener = socket(AF_UNIX, SOCK_STREAM, 0);
    int link = -1;

    explicit Run(const QStringList& env, const QStringList& args = {})
    {
        QProcessEnvironment e = QProcessEnvironment::systemEnvironment();
        for (const QString& key : e.keys())
            if (key.startsWith("WSA_") || key.startsWith("STANDIN_"))
                e.remove(key);
        for (const QString& setting : env)
            e.insert(setting.section('=', 0, 0), setting.section('=', 1));
        proc.setProcessEnvironment(e);
        proc.setWorkingDirectory(dir.path());
        sockaddr_un addr{AF_UNIX, {}};
        qstrncpy(addr.sun_path, qPrintable(dir.filePath("SERVERSOCK")), sizeof addr.sun_path);
        bind(listener, reinterpret_cast<sockaddr*>(&addr), sizeof addr);
        listen(listener, 1);
        // Under a name of its own: analyzers in concurrent tests kill engines by name.
        QFile::link(WSA_ENGINE_BIN, dir.filePath("engine"));
        proc.start(dir.filePath("engine"), args);
        pollfd p{listener, POLLIN, 0};
        if (poll(&p, 1, 5000) == 1)
            link = accept(listener, nullptr, nullptr);
        const timeval timeout{5, 0};
        setsockopt(link, SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof timeout);
    }
    ~Run()
    {
        close(link), close(listener);
        proc.kill(), proc.waitForFinished();
    }

    // The next record; type 0 when none came within timeoutMs, -1 when the link closed.
    stSweep next(int timeoutMs = 5000)
    {
        stSweep r{};
        pollfd p{link, POLLIN, 0};
        if (poll(&p, 1, timeoutMs) != 1)
            return r;
        const ssize_t n = recv(link, &r, sizeof r, MSG_WAITALL);
        if (n != ssize_t(sizeof r))
            r.type = -1;
        return r;
    }
    // The next sweep, skipping nothing: anything else fails the caller's check.
    bool nextSweep(stSweep& r, int samples)
    {
        r = next();
        return r.type == SA_MSG_SWEEP && r.num_samples == samples;
    }
    // Lines the engine itself wrote to stderr, once it has ended; every line in `all`.
    QStringList complaints(QStringList* all = nullptr)
    {
        proc.waitForFinished(5000);
        const QStringList lines =
            QString(proc.readAllStandardError()).split('\n', Qt::SkipEmptyParts);
        if (all)
            *all = lines;
        return lines.filter(QRegularExpression("^wsa_raw: "));
    }
};

QStringList standIn(const QStringList& more = {})
{
    return QStringList{"WSA_SOURCE=hackrf", "WSA_HACKRF_SWEEP=" + kStandIn,
                       "WSA_HACKRF_BIN_HZ=1000000", "WSA_LEVEL_OFFSET_DB=-20"} +
           more;
}

bool isConfigured(const stSweep& r, const Band& band)
{
    // The grid's first and last cell centres in whole MHz, its step in whole kHz.
    const wsa::SourceGrid& g = band.plan().grid;
    return r.type == SA_MSG_CONFIGURED && r.num_samples == band.raw() &&
           r.data[0] == std::lround(g.startHz / 1e6) && r.data[1] == std::lround(g.endHz / 1e6) &&
           r.data[2] == std::lround(band.stepMHz() * 1000);
}

} // namespace

class TestEngineSources : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        // Children of ended engines come to us, so we can tell that they end and collect them.
        prctl(PR_SET_CHILD_SUBREAPER, 1);
    }

    void hackrfLevels_data();
    void hackrfLevels();
    void hackrfFaults_data();
    void hackrfFaults();
    void paceAndNeverQueue();
    void noOrphanSweeper_data();
    void noOrphanSweeper();
    void recordAndReplay_data();
    void recordAndReplay();
    void replaysSavedSweeperOutput();
    void replayRefuses_data();
    void replayRefuses();
    void replayHugeLineInBoundedMemory();
    void recordingFailureKeepsMeasuring();
    void documentedSampleLineParses();
    void recordOnly_data();
    void recordOnly();
};

// The stand-in reads -70 dB everywhere but in the 1 MHz bin from signalMHz, where it alternates
// -30 and -50 dB from sweep to sweep; the offset is -20 dB. Two records a second, so that each
// combines many sweeps even on a busy machine.
void TestEngineSources::hackrfLevels_data()
{
    QTest::addColumn<Band>("band");
    QTest::addColumn<QStringList>("env");
    QTest::addColumn<int>("signalMHz");
    QTest::addColumn<int>("lowest"); // of the signal bins, after the detector
    QTest::addColumn<int>("highest");
    const Band b24{false}, b5{true};
    QTest::newRow("2.4 GHz, peak") << b24 << QStringList() << 2437 << -50 << -50;
    // Mean power of a mix of -30 and -50 dB sweeps, minus 20: within -56..-51.
    QTest::newRow("2.4 GHz, average")
        << b24 << QStringList{"WSA_DETECTOR=average"} << 2437 << -56 << -51;
    QTest::newRow("2.4 GHz, five sweeps per write, band edge")
        << b24 << QStringList{"STANDIN_BURST=5", "STANDIN_RATE=8", "STANDIN_SIGNAL_MHZ=2489"}
        << 2489 << -50 << -50;
    QTest::newRow("5 GHz, peak") << b5 << QStringList{"STANDIN_SIGNAL_MHZ=5500"} << 5500 << -50
                                 << -50;
    QTest::newRow("6 GHz, peak") << kBand6 << QStringList{"STANDIN_SIGNAL_MHZ=6500"} << 6500
                                 << -50 << -50;
}

void TestEngineSources::hackrfLevels()
{
    QFETCH(Band, band);
    QFETCH(QStringList, env);
    QFETCH(int, signalMHz);
    QFETCH(int, lowest);
    QFETCH(int, highest);
    Run run(standIn(QStringList{"WSA_OUTPUT_RATE=2"} + env), band.args());
    QVERIFY(isConfigured(run.next(), band));
    // The first record may hold a single sweep; the later ones combine several.
    stSweep r;
    QVERIFY(run.nextSweep(r, band.raw()));
    for (int k = 0; k < 3; ++k) {
        QVERIFY(run.nextSweep(r, band.raw()));
        int signalBins = 0;
        for (int i = 0; i < band.raw(); ++i) {
            const double mhz = band.mhz(i);
            const bool inSignal = i < band.shown() && mhz >= signalMHz && mhz < signalMHz + 1;
            const bool inBand = i < band.shown();
            const int level = r.data[i];
            signalBins += inSignal;
            if (inSignal)
                QVERIFY2(level >= lowest && level <= highest, qPrintable(QString::number(level)));
            else
                QCOMPARE(level, inBand ? -90 : band.floor());
        }
        QVERIFY(signalBins >= 1);
    }
}

void TestEngineSources::hackrfFaults_data()
{
    QTest::addColumn<QStringList>("env");
    QTest::addColumn<QString>("records"); // C configured, S sweep, D disconnect, N no probe
    QTest::addColumn<QString>("reason");  // in the one line on stderr
    QTest::newRow("program missing")
        << QStringList{"WSA_SOURCE=hackrf", "WSA_HACKRF_SWEEP=/nonexistent/hackrf_sweep"} << "N"
        << "No such file";
    // Three attempts, each ending in the program's usage text: only its failure, once.
    QTest::newRow("device fails to open")
        << standIn({"STANDIN_FAIL=1"}) << "N" << "ended before measuring: exit status 1 "
                                                "(hackrf_open() failed: HACKRF_ERROR_NOT_FOUND";
    QTest::newRow("ends before its first row") << standIn({"STANDIN_SWEEPS=0"}) << "N" << "ended";
    // Still held by the engine a band change just killed.
    QTest::newRow("device busy at the first attempt")
        << standIn({"STANDIN_BUSY_ONCE=busy", "STANDIN_SWEEPS=40"}) << "CSSSSD" << "lost";
    QTest::newRow("lost mid-run, last line cut")
        << standIn({"STANDIN_SWEEPS=40", "STANDIN_RATE=40"}) << "CSSSSD" << "lost";
    // The program still runs but delivers nothing usable: lost after two seconds.
    QTest::newRow("hangs after its first rows")
        << standIn({"STANDIN_SWEEPS=40", "STANDIN_THEN=hang"}) << "CSSSSD"
        << "gave no valid row for 2.0 s";
    QTest::newRow("garbage after its first rows")
        << standIn({"STANDIN_SWEEPS=40", "STANDIN_THEN=garbage"}) << "CSSSSD"
        << "gave no valid row for 2.0 s";
    QTest::newRow("unknown source") << QStringList{"WSA_SOURCE=radio"} << "N"
                                    << "unknown WSA_SOURCE=radio: use sim, hackrf or replay";
}

void TestEngineSources::hackrfFaults()
{
    QFETCH(QStringList, env);
    QFETCH(QString, records);
    QFETCH(QString, reason);
    Run run(env);
    const QHash<QChar, int> types{{'C', SA_MSG_CONFIGURED},
                                  {'S', SA_MSG_SWEEP},
                                  {'D', SA_MSG_DISCONNECT},
                                  {'N', SA_MSG_NO_DEVICE}};
    QString seen;
    // Longer than the engine waits for a silent program.
    for (stSweep r = run.next(); r.type > 0; r = run.next(4000)) {
        const QChar kind = types.key(r.type, '?');
        // A second of sweeps makes about 8 records; the test needs only a few.
        if (!(kind == 'S' && seen.endsWith("SSSS")))
            seen += kind;
    }
    QCOMPARE(seen, records);
    // The engine ends after a fault record, saying why in one line, and nothing else is said.
    QStringList all;
    const QStringList lines = run.complaints(&all);
    QCOMPARE(run.proc.state(), QProcess::NotRunning);
    QCOMPARE(lines.size(), 1);
    QCOMPARE(all, lines);
    QVERIFY2(lines[0].contains(reason), qPrintable(lines[0]));
}

// At most WSA_OUTPUT_RATE records a second however fast the sweeps come; while the analyzer
// does not read, at most one record waits, and reading resumes with a current one.
void TestEngineSources::paceAndNeverQueue()
{
    Run run(standIn({"STANDIN_RATE=50", "WSA_OUTPUT_RATE=5"}));
    QVERIFY(isConfigured(run.next(), Band{false}));
    stSweep r;
    QVERIFY(run.nextSweep(r, Band{false}.raw()));
    QElapsedTimer clock;
    clock.start();
    int records = 0;
    while (clock.elapsed() < 2000)
        records += run.next(2000 - int(clock.elapsed())).type == SA_MSG_SWEEP;
    QVERIFY2(records >= 8 && records <= 11, qPrintable(QString::number(records)));

    QTest::qWait(1500); // a message box is open
    int waiting = 0;
    ioctl(run.link, FIONREAD, &waiting);
    QVERIFY2(waiting <= SA_RECORD_SIZE, qPrintable(QString::number(waiting)));
    QVERIFY(run.nextSweep(r, Band{false}.raw()));
    clock.restart();
    QVERIFY(run.nextSweep(r, Band{false}.raw()));
    QVERIFY2(clock.elapsed() <= 300, qPrintable(QString::number(clock.elapsed())));
}

void TestEngineSources::noOrphanSweeper_data()
{
    QTest::addColumn<bool>("killed");
    QTest::newRow("engine killed") << true;
    QTest::newRow("analyzer leaves") << false;
}

void TestEngineSources::noOrphanSweeper()
{
    QFETCH(bool, killed);
    QTemporaryDir tmp;
    const QString pidFile = tmp.filePath("pid");
    Run run(standIn({"STANDIN_PIDFILE=" + pidFile}));
    QVERIFY(isConfigured(run.next(), Band{false}));
    QFile f(pidFile);
    QVERIFY(f.open(QIODevice::ReadOnly));
    const pid_t sweeper = f.readAll().trimmed().toInt();
    QVERIFY(sweeper > 0 && kill(sweeper, 0) == 0);
    if (killed)
        run.proc.kill(); // as killall -9 wsa_raw does
    else
        shutdown(run.link, SHUT_RDWR);
    QVERIFY(run.proc.waitForFinished(5000));
    // As our orphan it would never end; ended, it is ours to collect.
    QDeadlineTimer deadline(3000);
    pid_t reaped = 0;
    while (reaped == 0 && !deadline.hasExpired()) {
        reaped = waitpid(sweeper, nullptr, WNOHANG);
        QTest::qWait(reaped == 0 ? 20 : 0);
    }
    QVERIFY(kill(sweeper, 0) == -1 && errno == ESRCH);
}

void TestEngineSources::recordAndReplay_data()
{
    QTest::addColumn<Band>("band");
    QTest::addColumn<bool>("cut");
    QTest::newRow("2.4 GHz") << Band{false} << false;
    QTest::newRow("5 GHz") << Band{true} << false;
    QTest::newRow("6 GHz") << kBand6 << false;
    QTest::newRow("2.4 GHz, last row cut") << Band{false} << true;
}

void TestEngineSources::recordAndReplay()
{
    QFETCH(Band, band);
    QFETCH(bool, cut);
    const QStringList bandArgs = band.args();
    QTemporaryDir tmp;
    const QString recordings = tmp.filePath("rec/dings");
    QList<QVector<int>> sent;
    {
        Run run({"WSA_SIM_RATE=20", "WSA_OUTPUT_RATE=20", "WSA_SIM_SWEEPS=12",
                 "WSA_RECORD_DIR=" + recordings},
                bandArgs);
        QCOMPARE(run.next().type, char(SA_MSG_CONFIGURED));
        for (stSweep r = run.next(1000); r.type == SA_MSG_SWEEP; r = run.next(1000))
            sent << QVector<int>(r.data, r.data + band.shown());
    }
    QVERIFY(sent.size() >= 10);
    const QStringList files = QDir(recordings).entryList(QDir::Files);
    QCOMPARE(files.size(), 1);
    QVERIFY(files[0].endsWith(QString("-%1.csv").arg(band.plan().key)));
    QString file = QDir(recordings).filePath(files[0]);
    if (cut) {
        QFile f(file);
        QVERIFY(f.open(QIODevice::ReadOnly));
        QByteArray text = f.readAll();
        // Half of the last row, without its end.
        const int lastRow = int(text.lastIndexOf('\n', text.size() - 2)) + 1;
        text.truncate(lastRow + (text.size() - lastRow) / 2);
        file = tmp.filePath("cut.csv");
        QFile out(file);
        QVERIFY(out.open(QIODevice::WriteOnly) && out.write("# a comment line\n" + text) > 0);
        sent.removeLast();
    }

    Run replay({"WSA_SOURCE=replay", "WSA_REPLAY_FILE=" + file, "WSA_OUTPUT_RATE=100"}, bandArgs);
    QVERIFY(isConfigured(replay.next(), band));
    for (const QVector<int>& levels : sent) {
        stSweep r;
        QVERIFY(replay.nextSweep(r, band.raw()));
        QCOMPARE(QVector<int>(r.data, r.data + band.shown()), levels);
        for (int i = band.shown(); i < band.raw(); ++i)
            QCOMPARE(r.data[i], band.floor());
    }
    // At its end the replay stays connected and sends nothing more.
    QCOMPARE(replay.next(700).type, char(0));
    QVERIFY(!replay.proc.waitForFinished(100));
}

// hackrf_sweep output saved to a file: many rows per sweep, out of order, a cut last line. Each
// sweep comes back on its own, with the signal bins at -50 and -70 dBm in turn.
void TestEngineSources::replaysSavedSweeperOutput()
{
    QTemporaryDir tmp;
    QProcess sweeper;
    sweeper.setStandardOutputFile(tmp.filePath("saved.csv"));
    QProcessEnvironment e = QProcessEnvironment::systemEnvironment();
    e.insert("STANDIN_SWEEPS", "6");
    sweeper.setProcessEnvironment(e);
    const wsa::SourceGrid& grid = Band{false}.plan().grid;
    sweeper.start(kStandIn, {"-f",
                             QString("%1:%2")
                                 .arg(std::floor(grid.lowEdgeHz() / 1e6))
                                 .arg(std::ceil(grid.highEdgeHz() / 1e6)),
                             "-w", "1000000"});
    QVERIFY(sweeper.waitForFinished(10000));

    const Band band{false};
    Run run({"WSA_SOURCE=replay", "WSA_REPLAY_FILE=" + tmp.filePath("saved.csv"),
             "WSA_LEVEL_OFFSET_DB=-20", "WSA_OUTPUT_RATE=200", "WSA_REPLAY_SPEED=0.5"});
    QVERIFY(isConfigured(run.next(), band));
    for (int k = 0; k < 6; ++k) {
        stSweep r;
        QVERIFY(run.nextSweep(r, band.raw()));
        for (int i = 0; i < band.raw(); ++i) {
            const bool signal = band.mhz(i) >= 2437 && band.mhz(i) < 2438;
            QCOMPARE(r.data[i], signal ? (k % 2 ? -70 : -50) : -90);
        }
    }
    QCOMPARE(run.next(700).type, char(0));
}

void TestEngineSources::replayRefuses_data()
{
    QTest::addColumn<QString>("content"); // of the file; null: no file; "fifo": a FIFO
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<QString>("reason"); // in the line on stderr
    // Five 1 MHz bins at the bottom of the 2.4 GHz band.
    const qint64 low = qint64(Band{false}.plan().lowHz);
    const QString span = QString("%1, %2").arg(low).arg(low + 5000000);
    const QString row24 = "2024-03-01, 12:30:05.25, " + span + ", 1000000.00, 20, -70, -71, -72, "
                          "-73, -74\n";
    QTest::newRow("missing file") << QString() << QStringList() << "cannot open";
    QTest::newRow("no usable row")
        << "date, time, hz_low\nnonsense\n2024-03-01, 12:30:05, " + span +
               ", 1000000.00, 20, -70, -71\n"
        << QStringList() << "no sweep in this band";
    QTest::newRow("only a cut row") << row24.left(60) << QStringList() << "no sweep in this band";
    QTest::newRow("other band") << row24 << Band{true}.args() << "no sweep in this band";
    QTest::newRow("empty file") << "" << QStringList() << "is empty";
    // Neither may be read as a recording: one never ends, the other may wait for ever.
    QTest::newRow("device") << "/dev/zero" << QStringList() << "not a regular file";
    QTest::newRow("FIFO without a writer") << "fifo" << QStringList() << "not a regular file";
}

void TestEngineSources::replayRefuses()
{
    QFETCH(QString, content);
    QFETCH(QStringList, args);
    QFETCH(QString, reason);
    QTemporaryDir tmp;
    QString file = tmp.filePath("recording.csv");
    if (content == "fifo") {
        QCOMPARE(mkfifo(qPrintable(file), 0600), 0);
    } else if (content.startsWith("/dev/")) {
        file = content;
    } else if (!content.isNull()) {
        QFile f(file);
        QVERIFY(f.open(QIODevice::WriteOnly) && f.write(content.toLatin1()) >= 0);
    }
    Run run({"WSA_SOURCE=replay", "WSA_REPLAY_FILE=" + file}, args);
    QCOMPARE(run.next().type, char(SA_MSG_NO_DEVICE));
    const QStringList lines = run.complaints();
    QCOMPARE(lines.size(), 1);
    QVERIFY2(lines[0].contains(reason) && lines[0].contains(file), qPrintable(lines[0]));
}

// A 512 MB line (a sparse file: no disk needed) ahead of a good row costs the engine no more
// than a few MB: the line is skipped as it is read, and the row still plays.
void TestEngineSources::replayHugeLineInBoundedMemory()
{
    QTemporaryDir tmp;
    const wsa::SourceGrid& grid = Band{false}.plan().grid;
    QFile f(tmp.filePath("huge.csv"));
    QVERIFY(f.open(QIODevice::WriteOnly) && f.resize(512LL << 20) && f.seek(512LL << 20));
    const qint64 low = std::llround(grid.lowEdgeHz());
    f.write(QString("\n2024-03-01, 12:30:05, %1, %2, 1000000.00, 20, -40\n")
                .arg(low)
                .arg(low + 1000000)
                .toLatin1());
    f.close();
    Run run({"WSA_SOURCE=replay", "WSA_REPLAY_FILE=" + f.fileName()});
    QVERIFY(isConfigured(run.next(10000), Band{false}));
    stSweep r;
    QVERIFY(run.nextSweep(r, grid.raw));
    QCOMPARE(r.data[0], -40);
    QFile status(QString("/proc/%1/status").arg(run.proc.processId()));
    QVERIFY(status.open(QIODevice::ReadOnly));
    const QString text = status.readAll();
    const QRegularExpressionMatch m = QRegularExpression("VmHWM:\\s+(\\d+) kB").match(text);
    QVERIFY(m.hasMatch());
    QVERIFY2(m.captured(1).toInt() < 16 * 1024, qPrintable(m.captured(0)));
}

void TestEngineSources::recordingFailureKeepsMeasuring()
{
    QTemporaryDir tmp;
    QFile blocker(tmp.filePath("file"));
    QVERIFY(blocker.open(QIODevice::WriteOnly));
    Run run({"WSA_SIM_RATE=20", "WSA_OUTPUT_RATE=20", "WSA_SIM_SWEEPS=3",
             "WSA_RECORD_DIR=" + blocker.fileName()});
    QCOMPARE(run.next().type, char(SA_MSG_CONFIGURED));
    stSweep r;
    for (int k = 0; k < 3; ++k)
        QVERIFY(run.nextSweep(r, Band{false}.raw()));
    shutdown(run.link, SHUT_RDWR);
    const QStringList lines = run.complaints();
    QCOMPARE(lines.size(), 1);
    QVERIFY2(lines[0].contains("not recording"), qPrintable(lines[0]));
}

// The README shows a line of hackrf_sweep output; replayed as it stands, each analyzer bin whose
// centre lies in one of its bins reads that bin's level, whole dBm.
void TestEngineSources::documentedSampleLineParses()
{
    QFile readme(WSA_SOURCE_DIR "/README.md");
    QVERIFY(readme.open(QIODevice::ReadOnly));
    // Whole sample lines; elided ones ("...") only illustrate.
    const QStringList samples =
        QString(readme.readAll())
            .split('\n')
            .filter(QRegularExpression("^\\d{4}-\\d\\d-\\d\\d, (?!.*\\.\\.\\.)"));
    QVERIFY(!samples.isEmpty());
    for (const QString& line : samples) {
        QTemporaryDir tmp;
        QFile f(tmp.filePath("sample.csv"));
        QVERIFY(f.open(QIODevice::WriteOnly) && f.write((line + "\n").toLatin1()) > 0);
        f.close();
        const QStringList fields = line.split(',');
        const double lowMHz = fields[2].toDouble() / 1e6, binMHz = fields[4].toDouble() / 1e6;
        Band band{false};
        for (const wsa::Band& b : wsa::allBands())
            if (lowMHz * 1e6 >= b.lowHz && lowMHz * 1e6 < b.highHz)
                band.id = b.id;
        Run run({"WSA_SOURCE=replay", "WSA_REPLAY_FILE=" + f.fileName()}, band.args());
        QVERIFY(isConfigured(run.next(), band));
        stSweep r;
        QVERIFY(run.nextSweep(r, band.raw()));
        int matched = 0;
        for (int i = 0; i < band.shown(); ++i) {
            const int k = int(std::floor((band.mhz(i) - lowMHz) / binMHz));
            if (k < 0 || 6 + k >= fields.size())
                continue;
            QCOMPARE(r.data[i], int(std::lround(fields[6 + k].toDouble())));
            ++matched;
        }
        QVERIFY(matched > 0);
    }
}

// WSA_RECORD_ONLY=1 records with no analyzer at all, until the source ends or it is told to stop;
// without a directory there is nothing to do.
void TestEngineSources::recordOnly_data()
{
    QTest::addColumn<QStringList>("env");
    QTest::addColumn<bool>("terminate"); // by SIGTERM after a second, else on its own
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<int>("minRows");
    QTest::addColumn<int>("maxRows");
    const QStringList fast{"WSA_RECORD_ONLY=1", "WSA_SIM_RATE=40", "WSA_OUTPUT_RATE=40"};
    QTest::newRow("source ends") << fast + QStringList{"WSA_SIM_SWEEPS=6", "WSA_RECORD_DIR=rec"}
                                 << false << 0 << 3 << 6;
    QTest::newRow("stopped by SIGTERM") << fast + QStringList{"WSA_RECORD_DIR=rec"} << true << 0
                                        << 10 << 60;
    QTest::newRow("nowhere to record") << fast << false << 2 << 0 << 0;
}

void TestEngineSources::recordOnly()
{
    QFETCH(QStringList, env);
    QFETCH(bool, terminate);
    QFETCH(int, exitCode);
    QFETCH(int, minRows);
    QFETCH(int, maxRows);
    Detached run(env);
    QVERIFY(run.proc.waitForStarted());
    if (terminate) {
        QVERIFY(!run.proc.waitForFinished(1000));
        run.proc.terminate();
    }
    QVERIFY(run.proc.waitForFinished(5000));
    QCOMPARE(run.proc.exitStatus(), QProcess::NormalExit);
    QCOMPARE(run.proc.exitCode(), exitCode);
    const QStringList lines = QString(run.proc.readAllStandardError()).split('\n', Qt::SkipEmptyParts);
    QCOMPARE(lines.size(), exitCode == 0 ? 0 : 1);
    const QStringList rows = run.rows();
    QVERIFY2(rows.size() >= minRows && rows.size() <= maxRows,
             qPrintable(QString::number(rows.size())));
    for (const QString& row : rows)
        QCOMPARE(row.count(','), 5 + Band{false}.shown());
}

QTEST_GUILESS_MAIN(TestEngineSources)
#include "tst_engine_sources.moc"
