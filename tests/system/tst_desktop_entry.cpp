// The desktop build's entry: its command line is read before any window system is opened, and a
// recording it cannot replay is refused with one line before a window opens.
#include <QtTest>

namespace
{

QString desktopProgram()
{
    return QFileInfo(WSA_ENGINE_BIN).dir().filePath("../apps/wsa-desktop-variant");
}

} // namespace

class TestDesktopEntry : public QObject
{
    Q_OBJECT
private:
    QTemporaryDir m_dir;

private slots:
    void withoutDisplay_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("output"); // on stdout for 0, stderr's first line otherwise
        QFile(m_dir.filePath("empty.csv")).open(QIODevice::WriteOnly);
        QTest::newRow("help") << QStringList{"--help"} << 0 << "Usage: wsa-desktop-variant";
        QTest::newRow("version") << QStringList{"--version"} << 0 << "wsa ";
        QTest::newRow("missing recording")
            << QStringList{"--replay", m_dir.filePath("none.csv")} << 2 << "it does not exist";
        QTest::newRow("empty recording")
            << QStringList{"--replay", m_dir.filePath("empty.csv")} << 2 << "it is empty";
        QTest::newRow("directory as recording")
            << QStringList{"--replay", m_dir.path()} << 2 << "it is not a regular file";
        QTest::newRow("handheld replay of a missing file")
            << QStringList{"--handheld", "--replay", m_dir.filePath("none.csv")} << 2
            << "it does not exist";
        QTest::newRow("unknown band") << QStringList{"--band", "3g"} << 2 << "unknown band: 3g";
        QTest::newRow("band for the handheld view")
            << QStringList{"--handheld", "--band", "5g"} << 2 << "--band is for the instrument";
    }

    // No display and no platform chosen: a window system opened here would end the program
    // with another status and a Qt message.
    void withoutDisplay()
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
};

QTEST_MAIN(TestDesktopEntry)
#include "tst_desktop_entry.moc"
