// Engine process control: command lines, socket handling, time-out, kill and collection.
#include <QtTest>
#include <csignal>
#include <sys/socket.h>
#include <sys/wait.h>

#include "wsa_p.h"
#include "wsatestsupport.h"

class TestEngineControl : public QObject
{
    Q_OBJECT
    std::unique_ptr<CWsa> w;

    QString construct()
    {
        return wsatest::captureStdout([this] { w.reset(new CWsa); });
    }
    static pid_t peerPid(int fd)
    {
        ucred cred{};
        socklen_t len = sizeof cred;
        return getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &cred, &len) == 0 ? cred.pid : -1;
    }
    // Ended and collected: a zombie still answers kill 0.
    static bool isGone(pid_t pid) { return kill(pid, 0) == -1 && errno == ESRCH; }
    // What a descriptor is open on ("socket:[inode]"): numbers are reused at once, inodes not.
    static QString target(int fd)
    {
        return QFile::symLinkTarget(QString("/proc/self/fd/%1").arg(fd));
    }
    static bool isOpen(const QString& file)
    {
        const QStringList fds =
            QDir("/proc/self/fd").entryList(QDir::System | QDir::NoDotAndDotDot);
        return std::any_of(fds.begin(), fds.end(),
                           [&](const QString& fd) { return target(fd.toInt()) == file; });
    }

private slots:
    // No ended engine may be left uncollected.
    void cleanup()
    {
        w.reset();
        QVERIFY(waitpid(-1, nullptr, WNOHANG) <= 0);
    }

    void startRestartAndDelete()
    {
        wsatest::AnalyzerEnv env;
        QString out = construct();
        QVERIFY2(out.contains(QStringLiteral("unlink fail: %1\n").arg(ENOENT)), qPrintable(out));
        const pid_t first = peerPid(sockFd);
        const QString listener = target(mainEngineSock), link = target(sockFd);
        QVERIFY(first > 0 && isOpen(listener) && isOpen(link));

        // 2.4 GHz: the name alone; 5 GHz: "-r 2" as one argument.
        s_band = 1;
        w->RestartAppEngines();
        s_band = 0;
        QCOMPARE(env.engineLaunches(), (QStringList{"wsa_raw", "wsa_raw|-r 2"}));
        const pid_t second = peerPid(sockFd);
        QVERIFY(second > 0 && second != first && isGone(first));
        QVERIFY(!isOpen(listener) && !isOpen(link));

        out = wsatest::captureStdout([this] { w.reset(); });
        QVERIFY(out.contains("~CWsa\n") && isGone(second));

        // The socket file is left behind, as after a crash; the next analyzer removes it.
        QVERIFY(QFile::exists("SERVERSOCK"));
        out = construct();
        QVERIFY2(!out.contains("unlink fail") && !out.contains("bind fail"), qPrintable(out));
        QVERIFY(sockFd >= 0);
    }

    // The engine path names no file, so execl fails and the shell finds the engine through
    // PATH. The shell splits "-r 2" into two words, which tells its command line apart.
    void missingProgramFallsBackToShell()
    {
        wsatest::AnalyzerEnv env;
        const QByteArray oldPath = qgetenv("PATH");
        qputenv("PATH", QFileInfo(WSA_FAKE_ENGINE_BIN).path().toLocal8Bit() + ':' + oldPath);
        qputenv("WSA_ENGINE_PATH", "wsa_raw");
        const QString out = construct();
        s_band = 1;
        w->RestartAppEngines();
        s_band = 0;
        qputenv("PATH", oldPath);
        QVERIFY2(out.contains(QStringLiteral("errno=%1\n").arg(ENOENT)), qPrintable(out));
        QCOMPARE(env.engineLaunches(), (QStringList{"wsa_raw", "wsa_raw|-r|2"}));
        QVERIFY(sockFd >= 0);
    }

    void silentEngineTimesOut()
    {
        wsatest::AnalyzerEnv env;
        qputenv("FAKE_ENGINE_MODE", "noconnect");
        qputenv("WSA_ENGINE_TIMEOUT_MS", "500");
        QElapsedTimer clock;
        clock.start();
        const QString out = construct();
        QVERIFY(clock.elapsed() < 6000); // far below the 10 s default: the bound was used
        QVERIFY(out.contains(QStringLiteral("main accept sock fail: %1\n").arg(ETIMEDOUT)));
        QCOMPARE(sockFd, -1);
        QCOMPARE(env.engineLaunches().size(), 1);
    }
};

QTEST_MAIN(TestEngineControl)
#include "tst_engine_control.moc"
