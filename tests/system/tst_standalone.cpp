// The stand-alone program: its options set the engine's environment, and it ends with a failure
// status when the analyzer asks to close with no host to receive the request.
#include <QtTest>

#define WSA_STANDALONE_NO_MAIN
#include "../../apps/main.cpp"
#include "wsatestsupport.h"

namespace
{

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

private slots:
    void init()
    {
        for (const char* name : kVariables)
            qunsetenv(name);
    }

    void options_data();
    void options();
    void versionIsTheProjects();
    void endsWithFailureWhenTheAnalyzerAsksToClose();
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

QTEST_MAIN(TestStandalone)
#include "tst_standalone.moc"
