// The stand-alone program: its options set the engine's environment, its command line is read
// before any window system is opened, and it ends with a failure status when the analyzer asks
// to close with no host to receive the request.
#include <QtTest>

#define WSA_STANDALONE_NO_MAIN
#include "../../apps/main.cpp"
#include "wsatestsupport.h"

#include <QProcess>
#include <signal.h>
#include <sys/stat.h>

namespace
{

// The stand-alone program as a desktop installation builds it.
QString desktopProgram()
{
    return QFileInfo(WSA_ENGINE_BIN).dir().filePath("../apps/wsa-desktop-variant");
}

// The fields of /proc/<pid>/stat after the command's name (state first), empty for no process.
QList<QByteArray> statFields(const QString& pid)
{
    QFile stat("/proc/" + pid + "/stat");
    if (!stat.open(QIODevice::ReadOnly))
        return {};
    const QByteArray text = stat.readAll();
    return text.mid(text.lastIndexOf(')') + 2).split(' ');
}

// Permission bits of a file, -1 when it cannot be examined.
int modeOf(const QString& path)
{
    struct stat st;
    return ::stat(QFile::encodeName(path), &st) == 0 ? int(st.st_mode & 07777) : -1;
}

// Neither gone nor a zombie.
bool running(qint64 pid)
{
    const QList<QByteArray> fields = statFields(QString::number(pid));
    return fields.size() > 1 && fields[0] != "Z";
}

// The running engine (a process named wsa_raw) whose parent is `parent`, or 0.
qint64 engineOf(qint64 parent)
{
    for (const QString& entry : QDir("/proc").entryList(QDir::Dirs)) {
        QFile comm("/proc/" + entry + "/comm");
        const QList<QByteArray> fields = statFields(entry);
        if (comm.open(QIODevice::ReadOnly) && comm.readAll() == "wsa_raw\n" && fields.size() > 1 &&
            fields[1].toLongLong() == parent && running(entry.toLongLong()))
            return entry.toLongLong();
    }
    return 0;
}

// A desktop login of its own: a private runtime directory and home, the fake engine, the
// handheld view (the desktop build opens the instrument window by default).
struct DesktopLogin {
    QTemporaryDir root;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    QString runtime() const { return root.path() + "/run"; }
    DesktopLogin()
    {
        QDir().mkpath(runtime());
        QFile::setPermissions(runtime(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        QDir().mkpath(root.path() + "/start");
        env.insert("XDG_RUNTIME_DIR", runtime());
        env.insert("HOME", root.path());
        env.insert("QT_QPA_PLATFORM", "offscreen");
        env.insert("WSA_ENGINE_PATH", WSA_FAKE_ENGINE_BIN);
        env.insert("WSA_ENGINE_TIMEOUT_MS", "5000");
        env.insert("WSA_RECORD_DIR", "");
        env.remove("FAKE_ENGINE_MODE");
        env.remove("WSA_RESULT_DIR");
    }
    // Starts an instance in the start directory and waits for its engine; 0 when none came.
    qint64 start(QProcess& p)
    {
        p.setProcessEnvironment(env);
        p.setWorkingDirectory(root.path() + "/start");
        p.setProcessChannelMode(QProcess::MergedChannels);
        p.start(desktopProgram(), {"--handheld"});
        if (!p.waitForStarted(5000))
            return 0;
        QDeadlineTimer deadline(15000);
        qint64 engine = 0;
        while ((engine = engineOf(p.processId())) == 0 && !deadline.hasExpired())
            QTest::qWait(50);
        return engine;
    }
    // Closes an instance as logging out does, with SIGTERM; true when it ended by itself.
    static bool close(QProcess& p)
    {
        ::kill(pid_t(p.processId()), SIGTERM);
        return p.waitForFinished(10000) && p.exitStatus() == QProcess::NormalExit;
    }
};

const char* const kVariables[] = {"WSA_SOURCE", "WSA_REPLAY_FILE", "WSA_RECORD_DIR"};

// A variable's state: "<unset>", or its value.
QString state(const char* name)
{
    return qEnvironmentVariableIsSet(name) ? qEnvironmentVariable(name) : QString("<unset>");
}

} // namespace

class TestStandalone : public QObject
{
    Q_OBJECT
    QTemporaryDir m_dir;

private slots:
    void init()
    {
        for (const char* name : kVariables)
            qunsetenv(name);
    }

    void options_data();
    void options();
    void desktopEntryWithoutDisplay_data();
    void desktopEntryWithoutDisplay();
    void versionIsTheProjects();
    void endsWithFailureWhenTheAnalyzerAsksToClose();
    void desktopInstanceStopsOnlyItsOwnEngine();
    void desktopRuntimeDirectory_data();
    void desktopRuntimeDirectory();
};

void TestStandalone::options_data()
{
    const QString here = QDir::currentPath();
    const QString unset = "<unset>";
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<int>("status");      // -1: go on and show the analyzer
    QTest::addColumn<QStringList>("env"); // WSA_SOURCE, WSA_REPLAY_FILE, WSA_RECORD_DIR
    QTest::newRow("none") << QStringList{} << -1 << QStringList{unset, unset, unset};
    QTest::newRow("hackrf") << QStringList{"--source", "hackrf"} << -1
                            << QStringList{"hackrf", unset, unset};
    QTest::newRow("replay implies its source") << QStringList{"--replay", "rec/a.csv"} << -1
                                               << QStringList{"replay", here + "/rec/a.csv", unset};
    QTest::newRow("replay with its source") << QStringList{"--source=replay", "--replay=/x.csv"}
                                            << -1 << QStringList{"replay", "/x.csv", unset};
    QTest::newRow("record") << QStringList{"--record", "out"} << -1
                            << QStringList{unset, unset, here + "/out"};
    QTest::newRow("no record leaves it set but empty")
        << QStringList{"--no-record"} << -1 << QStringList{unset, unset, ""};
    QTest::newRow("unknown source")
        << QStringList{"--source", "radio"} << 2 << QStringList{unset, unset, unset};
    QTest::newRow("replay with another source")
        << QStringList{"--source", "sim", "--replay", "a.csv"} << 2
        << QStringList{unset, unset, unset};
    QTest::newRow("record and no record")
        << QStringList{"--record", "d", "--no-record"} << 2 << QStringList{unset, unset, unset};
    QTest::newRow("stray argument") << QStringList{"file"} << 2 << QStringList{unset, unset, unset};
    QTest::newRow("help") << QStringList{"--help"} << 0 << QStringList{unset, unset, unset};
}

void TestStandalone::options()
{
    QFETCH(QStringList, args);
    QFETCH(int, status);
    QFETCH(QStringList, env);
    int result = 0;
    const QString out = wsatest::captureStdout(
        [&] { result = standalone::applyOptions(QStringList{"wsa"} + args); });
    QCOMPARE(result, status);
    QCOMPARE(QStringList({state("WSA_SOURCE"), state("WSA_REPLAY_FILE"), state("WSA_RECORD_DIR")}),
             env);
    if (args.contains("--help"))
        QVERIFY(out.contains("--no-record") && out.contains("--replay <FILE>"));
}

void TestStandalone::desktopEntryWithoutDisplay_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("output"); // on stdout for 0, stderr's first line otherwise
    QFile(m_dir.filePath("empty.csv")).open(QIODevice::WriteOnly);
    const QString none = m_dir.filePath("none.csv");
    QTest::newRow("help") << QStringList{"--help"} << 0 << "Usage: wsa-desktop-variant";
    QTest::newRow("version") << QStringList{"--version"} << 0 << "wsa ";
    QTest::newRow("missing recording") << QStringList{"--replay", none} << 2 << "it does not exist";
    QTest::newRow("empty recording")
        << QStringList{"--replay", m_dir.filePath("empty.csv")} << 2 << "it is empty";
    QTest::newRow("directory as recording")
        << QStringList{"--replay", m_dir.path()} << 2 << "it is not a regular file";
    QTest::newRow("handheld replay of a missing file")
        << QStringList{"--handheld", "--replay", none} << 2 << "it does not exist";
    QTest::newRow("unknown band") << QStringList{"--band", "3g"} << 2 << "unknown band: 3g";
    QTest::newRow("band for the handheld view")
        << QStringList{"--handheld", "--band", "5g"} << 2 << "--band is for the instrument";
}

// No display and no platform chosen: a window system opened here would end the program with
// another status and a Qt message.
void TestStandalone::desktopEntryWithoutDisplay()
{
    QFETCH(QStringList, args);
    QFETCH(int, status);
    QFETCH(QString, output);
    QVERIFY2(QFileInfo::exists(desktopProgram()), "build the wsa_desktop_variant target");
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"})
        env.remove(name);
    QProcess wsa;
    wsa.setProcessEnvironment(env);
    wsa.start(desktopProgram(), args);
    QVERIFY(wsa.waitForFinished(10000));
    QCOMPARE(wsa.exitStatus(), QProcess::NormalExit);
    QCOMPARE(wsa.exitCode(), status);
    const QString out = status == 0 ? wsa.readAllStandardOutput() : wsa.readAllStandardError();
    QVERIFY2(out.contains(output), qPrintable(out));
    if (status != 0)
        QCOMPARE(out.count('\n'), 2); // the cause, and where to look
}

// The program as built prints the version of the project.
void TestStandalone::versionIsTheProjects()
{
    QFile cmake(WSA_SOURCE_DIR "/CMakeLists.txt");
    QVERIFY(cmake.open(QIODevice::ReadOnly));
    const QRegularExpressionMatch project =
        QRegularExpression("project\\(wsa VERSION ([0-9.]+)").match(cmake.readAll());
    QVERIFY(project.hasMatch());
    const QString program = QFileInfo(WSA_ENGINE_BIN).dir().filePath("../apps/wsa");
    QVERIFY2(QFileInfo::exists(program), "build the wsa_standalone target");
    QProcess wsa;
    wsa.start(program, {"--version"});
    QVERIFY(wsa.waitForFinished(10000));
    QCOMPARE(wsa.exitCode(), 0);
    QCOMPARE(QString(wsa.readAllStandardOutput()), "wsa " + project.captured(1) + "\n");
}

// No probe: the analyzer shows its box and asks to close; the program ends once the box is
// answered, with status 1 and a line saying why.
void TestStandalone::endsWithFailureWhenTheAnalyzerAsksToClose()
{
    wsatest::AnalyzerEnv env;
    qputenv("WSA_ENGINE_PATH", WSA_ENGINE_BIN);
    qputenv("WSA_SIM_NO_PROBE", "1");
    bool boxShown = false;
    wsatest::onNextModal([&](QWidget* box) {
        boxShown = true;
        box->close();
    });
    QTimer::singleShot(20000, [] { QCoreApplication::exit(99); }); // bounds a hang
    int status = 0;
    const QString out = wsatest::captureStdout([&] { status = standalone::runAnalyzer(); });
    qunsetenv("WSA_SIM_NO_PROBE");
    QVERIFY(boxShown);
    QCOMPARE(status, 1);
    QVERIFY2(out.contains("wsa: closing: the analyzer asked to close"), qPrintable(out));
}

// Two desktop instances of one user: closing one stops its own engine and leaves the other's.
void TestStandalone::desktopInstanceStopsOnlyItsOwnEngine()
{
    QVERIFY2(QFileInfo::exists(desktopProgram()), "build the wsa_desktop_variant target");
    DesktopLogin login;
    QProcess first, second;
    const qint64 firstEngine = login.start(first);
    const qint64 secondEngine = login.start(second);
    QVERIFY(firstEngine && secondEngine && firstEngine != secondEngine);
    QVERIFY2(DesktopLogin::close(first), first.readAll().constData());
    QCOMPARE(first.exitCode(), 0);
    QTRY_VERIFY(!running(firstEngine));
    QTest::qWait(300);
    QVERIFY(running(secondEngine));
    QVERIFY(DesktopLogin::close(second));
    QTRY_VERIFY(!running(secondEngine));
}

// The runtime directory is used only when it is a directory of our own; anything else planted
// at its name is refused with a line, and a fresh private directory holds the socket instead.
void TestStandalone::desktopRuntimeDirectory_data()
{
    QTest::addColumn<QString>("plant");
    QTest::addColumn<QString>("refusal"); // empty: the directory is used
    QTest::newRow("own directory, too open") << QString("own") << QString();
    QTest::newRow("symbolic link") << QString("link") << QString("is a symbolic link");
    QTest::newRow("file") << QString("file") << QString("is not a directory");
    QTest::newRow("another user's directory")
        << QString("foreign") << QString("belongs to another user");
}

void TestStandalone::desktopRuntimeDirectory()
{
    QFETCH(QString, plant);
    QFETCH(QString, refusal);
    if (plant == "foreign" && geteuid() != 0)
        QSKIP("only root can give a directory to another user");
    DesktopLogin login;
    const QString named = login.runtime() + "/wsa", elsewhere = login.root.path() + "/target";
    QVERIFY(QDir().mkpath(elsewhere) && ::chmod(QFile::encodeName(elsewhere), 0755) == 0);
    const QByteArray path = QFile::encodeName(named);
    bool planted = false;
    if (plant == "own")
        planted = ::mkdir(path, 0755) == 0;
    else if (plant == "link")
        planted = ::symlink(QFile::encodeName(elsewhere), path) == 0;
    else if (plant == "file")
        planted = QFile(named).open(QIODevice::WriteOnly);
    else
        planted = ::mkdir(path, 0755) == 0 && ::chown(path, 4321, 4321) == 0;
    QVERIFY(planted);

    QProcess wsa;
    QVERIFY(login.start(wsa));
    QString used = named;
    if (!refusal.isEmpty()) {
        QTRY_VERIFY(wsa.canReadLine());
        const QString line = QString::fromLocal8Bit(wsa.readLine()).trimmed();
        const QString expected = "wsa: " + named + ' ' + refusal + "; using ";
        QVERIFY2(line.startsWith(expected), qPrintable(line));
        used = line.mid(expected.size()).remove(QRegularExpression(" instead$"));
    }
    QFileInfo dir(used);
    QVERIFY(dir.isDir() && !dir.isSymLink() && dir.ownerId() == geteuid());
    QCOMPARE(modeOf(used), 0700);
    QVERIFY(QFileInfo::exists(used + "/SERVERSOCK"));
    QVERIFY(!QFileInfo::exists(login.root.path() + "/start/SERVERSOCK"));
    QVERIFY(DesktopLogin::close(wsa));
    QCOMPARE(modeOf(elsewhere), 0755);
    QCOMPARE(QDir(elsewhere).entryList(QDir::NoDotAndDotDot | QDir::AllEntries), {});
}

QTEST_MAIN(TestStandalone)
#include "tst_standalone.moc"
