// Compiled-in defaults: the test set's fixed paths, or a desktop installation's per-user
// directories, and what the stand-alone program hands its engine.
#include <QtTest>
#include <memory>

#include "paths.h"
#include "wsa_p.h"

class TestPackage : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void desktopDirectories();
    void environmentWins_data();
    void environmentWins();
    void recordingDefault_data();
    void recordingDefault();
    void desktopWorkDir();

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    QDir m_home;
};

// Every case in a fresh home without user directory settings.
void TestPackage::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
    m_home.setPath(m_dir->path());
    qputenv("HOME", QFile::encodeName(m_home.path()));
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_home.filePath("config")));
    qunsetenv("XDG_DATA_HOME");
    for (const char* name :
         {"WSA_ENGINE_PATH", "WSA_RESULT_DIR", "WSA_VENDOR_INFO", "WSA_RECORD_DIR"})
        qunsetenv(name);
}

// Reports go under the user's documents, recordings under the user's data; both exist after the
// first look-up, also when their parents did not.
void TestPackage::desktopDirectories()
{
    const QString results = m_home.filePath("Documents/wsa");
    const QString recordings = m_home.filePath(".local/share/wsa/recordings");
    QVERIFY(!QFileInfo::exists(results) && !QFileInfo::exists(recordings));
    QCOMPARE(wsaDesktopResultDir(), results);
    QCOMPARE(wsaDesktopRecordDir(), recordings);
    QVERIFY(QFileInfo(results).isDir() && QFileInfo(recordings).isDir());

    qputenv("XDG_DATA_HOME", QFile::encodeName(m_home.filePath("data")));
    QCOMPARE(wsaDesktopRecordDir(), m_home.filePath("data/wsa/recordings"));
}

void TestPackage::environmentWins_data()
{
    QTest::addColumn<QString>("variable");
    QTest::addColumn<QString>("testSetDefault");
    QTest::addColumn<QString>("desktopDefault"); // a wildcard pattern
    QTest::newRow("engine") << "WSA_ENGINE_PATH"
                            << "/usr/local/tessa/bin/wsa_raw"
                            << "/usr/lib/*/wsa/wsa_raw";
    QTest::newRow("results") << "WSA_RESULT_DIR"
                             << "/home/root/tessa-rslt/wsa"
                             << "<home>/Documents/wsa";
    QTest::newRow("vendor") << "WSA_VENDOR_INFO"
                            << "/usr/local/tessa/lib/vendor-info.txt"
                            << "/usr/share/wsa/vendor-info.txt";
}

// Unset or empty, the compiled-in default of the build; set, the variable's value.
void TestPackage::environmentWins()
{
    QFETCH(QString, variable);
    QFETCH(QString, testSetDefault);
    QFETCH(QString, desktopDefault);
    const QByteArray name = variable.toLatin1();
    auto current = [&]() -> QString {
        if (name == "WSA_ENGINE_PATH")
            return wsaEnginePath();
        if (name == "WSA_RESULT_DIR")
            return wsaResultDir();
        return wsaVendorInfoPath();
    };
    QString expected = wsaDesktopPaths() ? desktopDefault : testSetDefault;
    expected.replace("<home>", m_home.path());
    const QRegularExpression pattern(QRegularExpression::wildcardToRegularExpression(expected));
    QVERIFY2(pattern.match(current()).hasMatch(), qPrintable(current()));
    qputenv(name.constData(), "");
    QVERIFY2(pattern.match(current()).hasMatch(), qPrintable(current()));
    qputenv(name.constData(), "/elsewhere/x");
    QCOMPARE(current(), QString("/elsewhere/x"));
}

void TestPackage::recordingDefault_data()
{
    QTest::addColumn<bool>("set");
    QTest::addColumn<QString>("value");
    QTest::newRow("unset") << false << QString();
    QTest::newRow("empty: do not record") << true << QString("");
    QTest::newRow("chosen directory") << true << QString("/data/rec");
}

// A desktop session records into the user's recording directory unless told otherwise; the test
// set's build leaves the engine's environment alone.
void TestPackage::recordingDefault()
{
    QFETCH(bool, set);
    QFETCH(QString, value);
    if (set)
        qputenv("WSA_RECORD_DIR", value.toUtf8());
    wsaExportEngineDefaults();
    const bool exported = wsaDesktopPaths() && !set;
    QCOMPARE(qEnvironmentVariableIsSet("WSA_RECORD_DIR"), set || exported);
    const QString expected = exported ? m_home.filePath(".local/share/wsa/recordings") : value;
    QCOMPARE(qEnvironmentVariable("WSA_RECORD_DIR"), expected);
    QCOMPARE(QFileInfo(expected).isDir(), exported);
}

// A desktop session keeps its engine socket in a private directory of the user's session, not in
// the directory it was started from; the test set's build stays where it was started.
void TestPackage::desktopWorkDir()
{
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(m_home.filePath("run")));
    QDir(m_home.path()).mkdir("run");
    QFile::setPermissions(m_home.filePath("run"),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    const QString before = QDir::currentPath();
    const QString dir = wsaEnterDesktopWorkDir();
    const QString now = QDir::currentPath();
    QDir::setCurrent(before);
    if (!wsaDesktopPaths()) {
        QVERIFY(dir.isEmpty());
        QCOMPARE(now, before);
        return;
    }
    QCOMPARE(dir, m_home.filePath("run/wsa"));
    QCOMPARE(now, dir);
    QCOMPARE(QFileInfo(dir).permissions() & 0x0077, QFile::Permissions());
}

QTEST_GUILESS_MAIN(TestPackage)
#include "tst_package.moc"
