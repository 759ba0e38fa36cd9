// wsa_raw with a desktop window's socket: what the window receives and controls, and who may
// listen at either of the engine's sockets.
#include <QtTest>
#include <pwd.h>
#include <sys/wait.h>

#include "enginerun.h"

using Log = FrontPeer::Log;

class TestEngineFront : public QObject
{
    Q_OBJECT

private slots:
    void windowStream();
    void replayRecordedWhenAsked();
    void refusesForeignListener_data();
    void refusesForeignListener();
};

// Configured, sweeps and the recording's state reach the window; Record 0 stops the file; the
// window closing its socket ends the engine with status 0. ./SERVERSOCK is never tried.
void TestEngineFront::windowStream()
{
    Run run({"WSA_SIM_RATE=20", "WSA_OUTPUT_RATE=20", "WSA_RECORD_DIR={dir}/rec"}, {}, Run::Window);
    QVERIFY(run.peerTaken);
    QVERIFY(run.peer.readUntil(
        [](const Log& l) { return l.sweeps.size() >= 3 && !l.recordings.empty(); }));
    const Log log = run.peer.log();
    QCOMPARE(log.kinds.front(), 'C');
    QCOMPARE(log.configured[0].source, std::string("sim"));
    QVERIFY(QString::fromStdString(log.recordings[0].second).startsWith(run.dir.filePath("rec/")));
    run.peer.send(wsa::ControlCommand::Record, 0);
    QVERIFY(run.peer.readUntil(
        [](const Log& l) { return !l.recordings.empty() && l.recordings.back().second.empty(); }));
    QVERIFY(shutdown(run.peer.windowEnd(), SHUT_RDWR) == 0);
    QVERIFY(run.proc.waitForFinished(5000));
    QCOMPARE(run.proc.exitCode(), 0);
    pollfd p{run.listener, POLLIN, 0};
    QCOMPARE(poll(&p, 1, 0), 0);
}

// With a window, a replay is not recorded again until the window asks; then at once.
void TestEngineFront::replayRecordedWhenAsked()
{
    QTemporaryDir dir;
    QFile rec(dir.filePath("played.csv"));
    QVERIFY(rec.open(QIODevice::WriteOnly));
    for (int i = 0; i < 300; ++i)
        rec.write(csvRow(2430000000, {-60, -61, -62, -63, -64}, i / 50.0));
    rec.close();
    Run run({"WSA_SOURCE=replay", "WSA_OUTPUT_RATE=50", "WSA_REPLAY_FILE=" + rec.fileName(),
             "WSA_RECORD_DIR={dir}/rec"},
            {}, Run::Window);
    QVERIFY(run.peerTaken);
    QVERIFY(run.peer.readUntil([](const Log& l) { return l.sweeps.size() >= 5; }));
    QVERIFY(run.peer.log().recordings.empty());
    QVERIFY(!QDir(run.dir.filePath("rec")).exists());
    run.peer.send(wsa::ControlCommand::Record, 1);
    QVERIFY(run.peer.readUntil([](const Log& l) { return !l.recordings.empty(); }));
    QVERIFY(QFile::exists(QString::fromStdString(run.peer.log().recordings[0].second)));
}

// A listener that did not start the engine, another user's or a stranger's of our own, at
// ./SERVERSOCK or at the window's socket, gets nothing: the engine says why and ends with 1.
void TestEngineFront::refusesForeignListener_data()
{
    QTest::addColumn<bool>("otherUser");
    QTest::addColumn<QString>("socket");
    QTest::newRow("another user") << true << "SERVERSOCK";
    QTest::newRow("our user, not an ancestor") << false << "SERVERSOCK";
    QTest::newRow("window's socket, not an ancestor") << false << "front";
}

void TestEngineFront::refusesForeignListener()
{
    QFETCH(bool, otherUser);
    QFETCH(QString, socket);
    const passwd* nobody = getpwnam("nobody");
    if (otherUser && (geteuid() != 0 || !nobody))
        QSKIP("needs root and the user nobody to listen as another user");
    // The engine retries its connection for seconds: time enough for the stranger to listen.
    const bool window = socket == "front";
    Run run(window ? QStringList{"WSA_FRONT_SOCKET={dir}/front"} : QStringList(), {}, Run::Nobody);
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
    QStringList all;
    const QStringList lines = run.complaints(&all);
    QCOMPARE(all, lines);
    QCOMPARE(lines.size(), 1);
    const QString shown = window ? run.dir.filePath("front") : "./SERVERSOCK";
    const QString why = otherUser
                            ? "it is user " + QString::number(nobody->pw_uid) + "'s"
                            : "its process " + QString::number(stranger) + " did not start us";
    QVERIFY2(lines[0].startsWith("wsa_raw: refusing " + shown + ": ") && lines[0].endsWith(why),
             qPrintable(lines[0]));
}

QTEST_GUILESS_MAIN(TestEngineFront)
#include "tst_engine_front.moc"
