// Engine process control: command lines, socket handling, time-out, kill and collection.
#include <QAbstractButton>
#include <QtTest>
#include <csignal>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>

#include "cmessagebox.h"
#include "engine.h"
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

    // "title: text" of every box that opens within ms, each answered with its button.
    static QStringList boxesWithin(int ms)
    {
        QStringList boxes;
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, [&boxes] {
            if (auto* box = qobject_cast<CMessageBox*>(QApplication::activeModalWidget())) {
                boxes << box->title() + ": " + box->text();
                box->findChild<QAbstractButton*>()->click();
            }
        });
        timer.start(10);
        QTest::qWait(ms);
        return boxes;
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

        // Deleting closes the listening socket and removes its file, also when the working
        // directory has changed since.
        const QString listener2 = target(mainEngineSock);
        QVERIFY(QDir::setCurrent(QDir::tempPath()));
        out = wsatest::captureStdout([this] { w.reset(); });
        QVERIFY(QDir::setCurrent(env.path()));
        QVERIFY(out.contains("~CWsa\n") && isGone(second));
        QVERIFY(!QFile::exists("SERVERSOCK") && !isOpen(listener2));

        out = construct();
        QVERIFY2(!out.contains("bind fail"), qPrintable(out));
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

    // A start that leaves no engine connected ends as soon as the engine (or its shell
    // fallback) has ended, else at the time-out, and then says so once, naming the program.
    void failedStartIsReported_data()
    {
        QTest::addColumn<QByteArray>("program");
        QTest::addColumn<QByteArray>("mode");
        QTest::addColumn<QByteArray>("timeout");
        QTest::addColumn<int>("error");
        QTest::addColumn<int>("maxMs"); // well below the start's second plus the time-out
        QTest::newRow("missing program") << QByteArray("/nonexistent/wsa_raw") << QByteArray()
                                         << QByteArray("6000") << int(ECHILD) << 4000;
        QTest::newRow("ends at once")
            << QByteArray("/bin/true") << QByteArray() << QByteArray("6000") << int(ECHILD) << 4000;
        QTest::newRow("never connects")
            << QByteArray(WSA_FAKE_ENGINE_BIN) << QByteArray("noconnect") << QByteArray("1500")
            << int(ETIMEDOUT) << 5000;
    }

    void failedStartIsReported()
    {
        QFETCH(QByteArray, program);
        QFETCH(QByteArray, mode);
        QFETCH(QByteArray, timeout);
        QFETCH(int, error);
        QFETCH(int, maxMs);
        wsatest::AnalyzerEnv env;
        qputenv("WSA_ENGINE_PATH", program);
        qputenv("FAKE_ENGINE_MODE", mode);
        qputenv("WSA_ENGINE_TIMEOUT_MS", timeout);
        QElapsedTimer clock;
        clock.start();
        const QString out = construct();
        QVERIFY2(clock.elapsed() >= 1000 && clock.elapsed() < maxMs,
                 qPrintable(QString::number(clock.elapsed())));
        QVERIFY2(out.contains(QStringLiteral("main accept sock fail: %1\n").arg(error)),
                 qPrintable(out));
        QCOMPARE(sockFd, -1);
        QCOMPARE(boxesWithin(300),
                 QStringList("Error: The acquisition engine could not be started.\nProgram "
                             "tried: " +
                             program));
        // A working engine after a band change: no box.
        qputenv("WSA_ENGINE_PATH", WSA_FAKE_ENGINE_BIN);
        qunsetenv("FAKE_ENGINE_MODE");
        w->RestartAppEngines();
        QVERIFY(sockFd >= 0);
        QCOMPARE(boxesWithin(200), QStringList());
    }

    void timeoutBounds_data()
    {
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<int>("ms");
        const int fallback = WSA_ENGINE_TIMEOUT_DEFAULT_MS;
        QTest::newRow("unset") << QByteArray() << fallback;
        QTest::newRow("lowest") << QByteArray("100") << 100;
        QTest::newRow("highest") << QByteArray("60000") << 60000;
        QTest::newRow("too short") << QByteArray("99") << -fallback;
        QTest::newRow("too long") << QByteArray("60001") << -fallback;
        QTest::newRow("negative") << QByteArray("-5") << -fallback;
        QTest::newRow("overflow") << QByteArray("99999999999999999999") << -fallback;
        QTest::newRow("not a number") << QByteArray("3s") << -fallback;
    }

    // Negative ms: the default, with a console line.
    void timeoutBounds()
    {
        QFETCH(QByteArray, value);
        QFETCH(int, ms);
        qputenv("WSA_ENGINE_TIMEOUT_MS", value);
        int got = 0;
        const QString out = wsatest::captureStdout([&got] { got = wsaEngineTimeoutMs(); });
        QCOMPARE(got, qAbs(ms));
        QCOMPARE(out.contains("WSA_ENGINE_TIMEOUT_MS=" + value + " is not"), ms < 0);
    }

    // The socket is the owner's alone, whatever the umask, and a connection of another user is
    // refused while the wait for our engine goes on.
    void foreignPeerRefused()
    {
        if (geteuid() != 0)
            QSKIP("needs root to connect as another user");
        wsatest::AnalyzerEnv env;
        qputenv("FAKE_ENGINE_DELAY_MS", "400");
        const mode_t oldMask = umask(0);
        const pid_t intruder = fork();
        if (intruder == 0) {
            // Opens the socket to all once it exists, then connects as nobody and holds on.
            struct stat st;
            for (int i = 0; i < 500 && stat("SERVERSOCK", &st) != 0; ++i)
                usleep(2000);
            const bool ownerOnly = (st.st_mode & 0777) == 0600;
            chmod("SERVERSOCK", 0777);
            chmod(".", 0711);
            if (setgid(65534) != 0 || setuid(65534) != 0)
                _exit(2);
            sockaddr_un addr{};
            addr.sun_family = AF_UNIX;
            std::strcpy(addr.sun_path, "SERVERSOCK");
            const int fd = socket(AF_UNIX, SOCK_STREAM, 0);
            if (::connect(fd, reinterpret_cast<sockaddr*>(&addr), sizeof addr) != 0)
                _exit(3);
            sleep(3);
            _exit(ownerOnly ? 0 : 4);
        }
        const QString out = construct();
        umask(oldMask);
        int status = 0;
        QCOMPARE(waitpid(intruder, &status, 0), intruder);
        QCOMPARE(WEXITSTATUS(status), 0); // it saw mode 0600 and got its connection in
        qunsetenv("FAKE_ENGINE_DELAY_MS");
        QVERIFY2(out.contains("main engine connection from user 65534 refused\n"), qPrintable(out));
        ucred cred{};
        socklen_t len = sizeof cred;
        QVERIFY(getsockopt(sockFd, SOL_SOCKET, SO_PEERCRED, &cred, &len) == 0);
        QCOMPARE(cred.uid, uid_t(0));
    }

    // An engine that dies is collected within a few ticks, not at the next start or stop.
    void deadEngineIsCollected()
    {
        wsatest::AnalyzerEnv env;
        construct();
        const pid_t engine = peerPid(sockFd);
        QVERIFY(engine > 0);
        ::kill(engine, SIGKILL);
        // Its lost connection is reported; the box is answered meanwhile.
        QCOMPARE(boxesWithin(600).size(), 1);
        QVERIFY(isGone(engine));
    }

    // Neither a path with shell syntax nor one with blanks is interpreted by the fallback's
    // shell: a program that execl cannot run (a script without an interpreter line) is found
    // under its literal path and started, and nothing else runs.
    void fallbackPathIsQuoted()
    {
        wsatest::AnalyzerEnv env;
        const QString dir = env.path() + "/a b;touch INJ1;$(touch INJ2)`touch INJ3`'q\"d";
        QVERIFY(QDir().mkpath(dir));
        QFile script(dir + "/wsa_raw");
        QVERIFY(script.open(QIODevice::WriteOnly));
        script.write("exec '" WSA_FAKE_ENGINE_BIN "' \"$@\"\n");
        script.close();
        script.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
        qputenv("WSA_ENGINE_PATH", QFile::encodeName(script.fileName()));
        const QString out = construct();
        QVERIFY2(out.contains(QStringLiteral("errno=%1\n").arg(ENOEXEC)), qPrintable(out));
        QVERIFY(sockFd >= 0);
        QCOMPARE(QDir(env.path()).entryList({"INJ*"}), QStringList());
        QCOMPARE(QDir(dir).entryList({"INJ*"}), QStringList());
    }

    void shellQuote_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("plain") << QByteArray("/usr/local/bin/wsa_raw");
        QTest::newRow("blanks") << QByteArray("a b\tc");
        QTest::newRow("syntax") << QByteArray("x;y|z&$(id)`id`>w<v*?~#!{a,b}\\");
        QTest::newRow("quotes") << QByteArray("it's \"q\" ''");
        QTest::newRow("empty") << QByteArray();
    }

    // The shell gives back exactly the text, as one word.
    void shellQuote()
    {
        QFETCH(QByteArray, text);
        char quoted[256];
        QVERIFY(wsaShellQuote(text.constData(), quoted, sizeof quoted));
        QProcess sh;
        sh.start("/bin/sh", {"-c", QStringLiteral("printf '%s|' %1").arg(quoted)});
        QVERIFY(sh.waitForFinished());
        QCOMPARE(sh.readAllStandardOutput(), text + '|');
        // Too small a buffer: refused, never cut.
        QVERIFY(!wsaShellQuote(text.constData(), quoted, size_t(qstrlen(quoted))));
        QCOMPARE(quoted[0], '\0');
    }
};

QTEST_MAIN(TestEngineControl)
#include "tst_engine_control.moc"
