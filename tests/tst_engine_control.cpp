// Engine process control: command lines, socket handling, time-out, kill and collection.
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QtTest>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <memory>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include "wsa_p.h"
#include "wsatestsupport.h"

using wsatest::AnalyzerEnv;
using wsatest::captureStdout;

namespace
{

pid_t peerPid(int fd)
{
    ucred cred{};
    socklen_t len = sizeof cred;
    return getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &cred, &len) == 0 ? cred.pid : -1;
}

// True once the process has ended and been collected (a zombie still answers kill 0).
bool isGone(pid_t pid)
{
    return kill(pid, 0) == -1 && errno == ESRCH;
}

ino_t inodeOf(int fd)
{
    struct stat st;
    return fstat(fd, &st) == 0 ? st.st_ino : 0;
}

bool socketStillOpen(ino_t inode)
{
    const QByteArray target = "socket:[" + QByteArray::number(quint64(inode)) + ']';
    const QStringList fds =
        QDir("/proc/self/fd").entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
    for (const QString& fd : fds) {
        char link[64] = {};
        if (readlink(qPrintable("/proc/self/fd/" + fd), link, sizeof link - 1) > 0 &&
            target == link)
            return true;
    }
    return false;
}

int zombieChildren()
{
    int zombies = 0;
    const QStringList procs = QDir("/proc").entryList(QDir::Dirs);
    for (const QString& p : procs) {
        QFile f("/proc/" + p + "/stat");
        if (!f.open(QIODevice::ReadOnly))
            continue;
        // "pid (comm) state ppid ...": comm may contain blanks, so parse after the last ')'.
        const QByteArray stat = f.readAll();
        const QList<QByteArray> rest = stat.mid(stat.lastIndexOf(')') + 2).split(' ');
        if (rest.size() > 1 && rest[0] == "Z" && rest[1].toInt() == getpid())
            ++zombies;
    }
    return zombies;
}

std::unique_ptr<CWsa> construct(QString* output = nullptr)
{
    std::unique_ptr<CWsa> w;
    const QString out = captureStdout([&w] { w.reset(new CWsa); });
    if (output)
        *output = out;
    return w;
}

} // namespace

class TestEngineControl : public QObject
{
    Q_OBJECT

private slots:
    void commandLineFollowsBand();
    void restartReplacesEngineAndSockets();
    void staleSocketFileIsRemoved();
    void missingProgramFallsBackToShell();
    void silentEngineTimesOut();
};

void TestEngineControl::commandLineFollowsBand()
{
    AnalyzerEnv env;
    auto w = construct();
    QCOMPARE(env.engineLaunches(), QStringList{"wsa_raw"});
    s_band = 1;
    w->RestartAppEngines();
    QCOMPARE(env.engineLaunches(), (QStringList{"wsa_raw", "wsa_raw|-r 2"}));
    s_band = 0;
    w->RestartAppEngines();
    QCOMPARE(env.engineLaunches().last(), QStringLiteral("wsa_raw"));
}

void TestEngineControl::restartReplacesEngineAndSockets()
{
    AnalyzerEnv env;
    auto w = construct();
    QVERIFY(sockFd >= 0);
    const pid_t firstEngine = peerPid(sockFd);
    const ino_t firstListener = inodeOf(mainEngineSock);
    const ino_t firstLink = inodeOf(sockFd);
    QVERIFY(firstEngine > 0);

    for (int i = 0; i < 4; ++i)
        w->RestartAppEngines();
    QCOMPARE(env.engineLaunches().size(), 5);
    const pid_t engine = peerPid(sockFd);
    QVERIFY(engine > 0 && engine != firstEngine);
    QVERIFY(isGone(firstEngine));
    QVERIFY(!socketStillOpen(firstListener));
    QVERIFY(!socketStillOpen(firstLink));
    QCOMPARE(zombieChildren(), 0);

    // A stop forgets the closed connection, so a second stop cannot close a reused number.
    stopAppEngines();
    QCOMPARE(sockFd, -1);
    QVERIFY(fcntl(mainEngineSock, F_GETFD) != -1);
    const int unrelated = open("/dev/null", O_RDONLY);
    QVERIFY(unrelated >= 0);

    const QString out = captureStdout([&w] { w.reset(); });
    QVERIFY(out.contains("~CWsa\n"));
    QVERIFY(fcntl(unrelated, F_GETFD) != -1);
    close(unrelated);
    QVERIFY(isGone(engine));
    QCOMPARE(zombieChildren(), 0);
}

void TestEngineControl::staleSocketFileIsRemoved()
{
    AnalyzerEnv env;
    QString out;
    auto w = construct(&out);
    QVERIFY(out.contains(QStringLiteral("unlink fail: %1\n").arg(ENOENT)));
    w.reset();
    QVERIFY(QFile::exists("SERVERSOCK")); // left behind, as after a crash

    w = construct(&out);
    QVERIFY(!out.contains("unlink fail"));
    QVERIFY(!out.contains("bind fail"));
    QVERIFY(sockFd >= 0);
}

// The engine path names no file, so execl fails; the shell finds the engine through PATH.
// The shell splits "-r 2" into two words, which proves the fallback started that engine.
void TestEngineControl::missingProgramFallsBackToShell()
{
    AnalyzerEnv env;
    const QByteArray oldPath = qgetenv("PATH");
    qputenv("PATH", QFileInfo(WSA_FAKE_ENGINE_BIN).absolutePath().toLocal8Bit() + ':' + oldPath);
    qputenv("WSA_ENGINE_PATH", "wsa_raw");

    QString out;
    auto w = construct(&out);
    QVERIFY2(out.contains(QStringLiteral("errno=%1\n").arg(ENOENT)), qPrintable(out));
    QCOMPARE(env.engineLaunches(), QStringList{"wsa_raw"});
    QVERIFY(sockFd >= 0);

    s_band = 1;
    w->RestartAppEngines();
    QCOMPARE(env.engineLaunches().last(), QStringLiteral("wsa_raw|-r|2"));
    w.reset();
    s_band = 0;
    qputenv("PATH", oldPath);
}

void TestEngineControl::silentEngineTimesOut()
{
    AnalyzerEnv env;
    qputenv("FAKE_ENGINE_MODE", "noconnect");
    qputenv("WSA_ENGINE_TIMEOUT_MS", "500");
    QElapsedTimer clock;
    clock.start();
    QString out;
    auto w = construct(&out);
    // Well under the 10 s default: the configured bound was used.
    QVERIFY(clock.elapsed() < 6000);
    QVERIFY(out.contains(QStringLiteral("main accept sock fail: %1\n").arg(ETIMEDOUT)));
    QCOMPARE(sockFd, -1);
    QCOMPARE(env.engineLaunches().size(), 1);
    w.reset();
    QCOMPARE(zombieChildren(), 0);
}

QTEST_MAIN(TestEngineControl)
#include "tst_engine_control.moc"
