// wsa_raw with a desktop window's socket, and with a status socket beside the analyzer's: what
// each end receives, who may listen, and how the engine ends.
#include <QtTest>
#include <csignal>
#include <sys/wait.h>

#include "enginerun.h"
#include "frontpeer.h"

namespace
{

int listenAt(const QString& path)
{
    const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un addr{AF_UNIX, {}};
    qstrncpy(addr.sun_path, qPrintable(path), sizeof addr.sun_path);
    bind(fd, reinterpret_cast<sockaddr*>(&addr), sizeof addr);
    listen(fd, 1);
    return fd;
}

// The engine's connection, taken over as the window's end of `peer`.
bool acceptInto(FrontPeer& peer, int listener)
{
    pollfd p{listener, POLLIN, 0};
    const int fd = poll(&p, 1, 5000) == 1 ? accept(listener, nullptr, nullptr) : -1;
    const bool taken = fd >= 0 && dup2(fd, peer.windowEnd()) >= 0;
    close(fd);
    return taken;
}

// An engine whose front-end socket is `path`, nothing else of the caller's environment.
void startEngine(QProcess& proc, const QTemporaryDir& dir, const QStringList& env)
{
    QProcessEnvironment e;
    for (const QString& setting : env)
        e.insert(setting.section('=', 0, 0), setting.section('=', 1));
    proc.setProcessEnvironment(e);
    proc.setWorkingDirectory(dir.path());
    QFile::link(WSA_ENGINE_BIN, dir.filePath("engine"));
    proc.start(dir.filePath("engine"), {});
}

// Reads frames from `fd` into `peer`'s log until `done` says so or 5 s pass.
template <typename Done> bool readUntil(FrontPeer& peer, Done done)
{
    QElapsedTimer t;
    t.start();
    while (!done(peer.log()) && !peer.log().eof && t.elapsed() < 5000)
        peer.readOnce(50);
    return done(peer.log());
}

} // namespace

class TestEngineFront : public QObject
{
    Q_OBJECT

private slots:
    void windowStream();
    void replayRecordedWhenAsked();
    void statusEndsTheStream();
    void refusesStrangeListener();
    void statusBesideRecords();
};

// Configured, sweeps and the recording's state reach the window; Record 0 stops the file; the
// window closing its socket ends the engine with status 0. ./SERVERSOCK is never tried.
void TestEngineFront::windowStream()
{
    QTemporaryDir dir;
    const QString path = dir.filePath("front");
    const int listener = listenAt(path);
    QProcess proc;
    startEngine(proc, dir,
                {"WSA_FRONT_SOCKET=" + path, "WSA_SIM_RATE=20", "WSA_OUTPUT_RATE=20",
                 "WSA_RECORD_DIR=" + dir.filePath("rec")});
    FrontPeer peer;
    QVERIFY(acceptInto(peer, listener));
    QVERIFY(readUntil(peer, [](const FrontPeer::Log& l) {
        return l.sweeps.size() >= 3 && !l.recordings.empty();
    }));
    FrontPeer::Log log = peer.log();
    QCOMPARE(log.kinds.front(), 'C');
    QCOMPARE(log.configured[0].source, std::string("sim"));
    QVERIFY(QString::fromStdString(log.recordings[0].second).startsWith(dir.filePath("rec/")));
    peer.send(wsa::ControlCommand::Record, 0);
    QVERIFY(readUntil(peer, [](const FrontPeer::Log& l) {
        return !l.recordings.empty() && l.recordings.back().second.empty();
    }));
    QVERIFY(shutdown(peer.windowEnd(), SHUT_RDWR) == 0);
    QVERIFY(proc.waitForFinished(5000));
    QCOMPARE(proc.exitCode(), 0);
    QVERIFY(!QFile::exists(dir.filePath("SERVERSOCK")));
    close(listener);
}

// With a window, a replay is not recorded again until the window asks; then at once.
void TestEngineFront::replayRecordedWhenAsked()
{
    QTemporaryDir dir;
    QFile rec(dir.filePath("played.csv"));
    QVERIFY(rec.open(QIODevice::WriteOnly));
    for (int i = 0; i < 300; ++i)
        rec.write(QString("2024-03-01, 12:00:%1, 2430000000, 2435000000, 1000000.00, 20, -60, "
                          "-61, -62, -63, -64\n")
                      .arg(i / 50.0, 9, 'f', 6, QChar('0'))
                      .toLatin1());
    rec.close();
    const QString path = dir.filePath("front");
    const int listener = listenAt(path);
    QProcess proc;
    startEngine(proc, dir,
                {"WSA_FRONT_SOCKET=" + path, "WSA_SOURCE=replay", "WSA_OUTPUT_RATE=50",
                 "WSA_REPLAY_FILE=" + rec.fileName(), "WSA_RECORD_DIR=" + dir.filePath("rec")});
    FrontPeer peer;
    QVERIFY(acceptInto(peer, listener));
    QVERIFY(readUntil(peer, [](const FrontPeer::Log& l) { return l.sweeps.size() >= 5; }));
    QVERIFY(peer.log().recordings.empty());
    QVERIFY(!QDir(dir.filePath("rec")).exists());
    peer.send(wsa::ControlCommand::Record, 1);
    QVERIFY(readUntil(peer, [](const FrontPeer::Log& l) { return !l.recordings.empty(); }));
    QVERIFY(QFile::exists(QString::fromStdString(peer.log().recordings[0].second)));
    close(listener);
}

// A source that cannot start: its Status is the last frame, and the engine ends with status 0.
void TestEngineFront::statusEndsTheStream()
{
    QTemporaryDir dir;
    const QString path = dir.filePath("front");
    const int listener = listenAt(path);
    QProcess proc;
    startEngine(proc, dir, {"WSA_FRONT_SOCKET=" + path, "WSA_SOURCE=nosuch"});
    FrontPeer peer;
    QVERIFY(acceptInto(peer, listener));
    QVERIFY(readUntil(peer, [](const FrontPeer::Log& l) { return l.eof; }));
    QCOMPARE(peer.log().kinds, std::string("T"));
    QCOMPARE(peer.log().statuses[0].first, wsa::StatusCode::BadSetting);
    QVERIFY(proc.waitForFinished(5000));
    QCOMPARE(proc.exitCode(), 0);
    close(listener);
}

// A listener that did not start the engine (here: its sibling) is refused with one line.
void TestEngineFront::refusesStrangeListener()
{
    QTemporaryDir dir;
    const QString path = dir.filePath("front");
    int ready[2];
    QCOMPARE(pipe(ready), 0);
    const pid_t stranger = fork();
    if (stranger == 0) {
        listenAt(path);
        (void)!write(ready[1], "r", 1);
        pause();
        _exit(0);
    }
    char byte;
    QCOMPARE(read(ready[0], &byte, 1), ssize_t(1));
    QProcess proc;
    startEngine(proc, dir, {"WSA_FRONT_SOCKET=" + path});
    QVERIFY(proc.waitForFinished(10000));
    kill(stranger, SIGKILL);
    waitpid(stranger, nullptr, 0);
    close(ready[0]), close(ready[1]);
    QCOMPARE(proc.exitCode(), 1);
    const QString said = proc.readAllStandardError();
    QVERIFY2(said.startsWith("wsa_raw: refusing " + path + ": its process " +
                             QString::number(stranger) + " did not start us\n"),
             qPrintable(said));
}

// Beside the analyzer's records, a status socket learns why: the analyzer gets its No-probe
// record as ever, the status socket the code and the file's name.
void TestEngineFront::statusBesideRecords()
{
    QTemporaryDir statusDir;
    const QString path = statusDir.filePath("status");
    const int listener = listenAt(path);
    Run run(
        {"WSA_STATUS_SOCKET=" + path, "WSA_SOURCE=replay", "WSA_REPLAY_FILE=/nonexistent/rec.csv"});
    FrontPeer peer;
    QVERIFY(acceptInto(peer, listener));
    QCOMPARE(run.next().type, char(SA_MSG_NO_DEVICE));
    QVERIFY(readUntil(peer, [](const FrontPeer::Log& l) { return l.eof; }));
    const FrontPeer::Log log = peer.log();
    QCOMPARE(log.kinds, std::string("T"));
    QCOMPARE(log.statuses[0].first, wsa::StatusCode::FileMissing);
    QVERIFY(QString::fromStdString(log.statuses[0].second).contains("/nonexistent/rec.csv"));
    QVERIFY(run.proc.waitForFinished(5000));
    QCOMPARE(run.proc.exitCode(), 0);
    close(listener);
}

QTEST_GUILESS_MAIN(TestEngineFront)
#include "tst_engine_front.moc"
