// The test result report: the page byte for byte, the file names, failures, the picture, and
// the page as a browser shows it.
#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QLineEdit>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QUrl>
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>
#include <utility>
#include <unistd.h>

#include "cmessagebox.h"
#include "report.h"
#include "wsa_p.h"
#include "wsatestsupport.h"

namespace
{

const QDateTime kNameTime(QDate(2026, 11, 16), QTime(19, 14, 30));
int clockCalls = 0;

// The first reading proposes the name; every later one is 11 s on, as if the user had spent
// that long on the keypad.
QDateTime fixedClock()
{
    return kNameTime.addSecs(clockCalls++ == 0 ? 0 : 11);
}

QByteArray row(const char* label, const QByteArray& value)
{
    char line[512];
    std::snprintf(line, sizeof line,
                  "\t<tr><font size=\"%d\"> <td>%s</td><td>%s</td></font></tr>\n", 4, label,
                  value.constData());
    return line;
}

// A null mac or serial leaves its row out.
QByteArray expectedPage(const QByteArray& fileName, const QByteArray& version,
                        const QByteArray& mac, const QByteArray& serial)
{
    QByteArray page = "<html>\n<head><title>content type: wifi spy result</title></head>\n<body>"
                      "\n<br><font size=4> <a  style=\"color:blue;\"> General Information </a> "
                      "</font> </br>\n<table border=\"1\">\n";
    page += row("Date and Time Results Were Saved:", "Monday November 2026 19:14:41");
    page += row("Software Version:", version);
    if (!mac.isNull())
        page += row("MAC Address of Test Port:", mac);
    if (!serial.isNull())
        page += row("Serial Number of Test Set:", serial);
    page += "</table><br\n><img src=\"" + fileName + "_files/wsa.bmp\"/>\n</body>\n</html>";
    return page;
}

QByteArray readFile(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

void writeFile(const QString& path, const QByteArray& content)
{
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    f.write(content);
}

bool near(QRgb a, QRgb b, int tolerance = 3)
{
    return qAbs(qRed(a) - qRed(b)) <= tolerance && qAbs(qGreen(a) - qGreen(b)) <= tolerance &&
           qAbs(qBlue(a) - qBlue(b)) <= tolerance;
}

} // namespace

class TestReport : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void init();
    void cleanup() { QVERIFY2(m_unexpected.isEmpty(), qPrintable(m_unexpected.join(", "))); }

    void pageByteForByte();
    void fileNames_data();
    void fileNames();
    void longNamesAreShortened();
    void nameWithoutLettersOrDigitsIsRefused_data();
    void nameWithoutLettersOrDigitsIsRefused();
    void cancelSavesNothing();
    void missingInformation_data();
    void missingInformation();
    void resultDirectoryNotWritable();
    void pictureIsTheAnalyzerScreen_data();
    void pictureIsTheAnalyzerScreen();
    void f1KeySaves();
    void getVersion_data();
    void getVersion();
    void nameFilterBounds();
    void browserShowsTableAndPicture();

private:
    enum class Keypad { Ok, Cancel };
    // Saves through the keypad: its text replaced by `entry` unless that is null, then answered;
    // `next` answers the window that opens after it. Returns what was printed.
    QString save(const QString& entry = QString(), Keypad answer = Keypad::Ok,
                 std::function<void(QWidget*)> next = nullptr, bool byKey = false);
    QStringList results(const QString& dir = QString()) const;
    QString resultFile(const QString& name) const { return m_env->resultDir() + "/" + name; }

    std::unique_ptr<wsatest::AnalyzerEnv> m_env;
    CWsa* w = nullptr;
    QString m_keypadTitle;
    QString m_keypadText;
    int m_link = -1;
    QStringList m_unexpected; // windows that opened when none was expected
};

void TestReport::initTestCase()
{
    m_env = std::make_unique<wsatest::AnalyzerEnv>();
    w = new CWsa;
    // Records come from this test alone; a stopped engine opens no box.
    m_link = wsatest::takeOverLink();
    QVERIFY(m_link >= 0);
    w->setSize(QSize(800, 400));
    w->show();
    QVERIFY(QTest::qWaitForWindowExposed(w));
    wsaReportClock = fixedClock;
}

void TestReport::cleanupTestCase()
{
    delete w;
    ::close(m_link);
    m_env.reset();
}

void TestReport::init()
{
    clockCalls = 0;
    m_unexpected.clear();
    QDir(m_env->resultDir()).removeRecursively();
    QDir().mkpath(m_env->resultDir());
    qputenv("WSA_RESULT_DIR", m_env->resultDir().toLocal8Bit());
    qputenv("WSA_MAC_ADDRESS", "00:1b:2c:a0:ff:09");
    qputenv("WSA_SERIAL_NUMBER", "SN4711");
    const QString vendor = m_env->path() + "/vendor-info.txt";
    writeFile(vendor, "Model X Common 2.3.1\nsecond line Common 9\n");
    qputenv("WSA_VENDOR_INFO", vendor.toLocal8Bit());
}

QString TestReport::save(const QString& entry, Keypad answer, std::function<void(QWidget*)> next,
                         bool byKey)
{
    m_keypadTitle.clear();
    m_keypadText.clear();
    bool keypadSeen = false;
    // Lives only as long as this save, and closes what it does not expect, so that a wrong
    // window fails the test instead of blocking it.
    QTimer answerer;
    answerer.setInterval(10);
    connect(&answerer, &QTimer::timeout, [&]() {
        QWidget* modal = QApplication::activeModalWidget();
        if (!modal || !modal->isVisible())
            return;
        auto* edit = modal->findChild<QLineEdit*>();
        if (edit && !keypadSeen) {
            keypadSeen = true;
            m_keypadTitle = modal->windowTitle();
            m_keypadText = edit->text();
            if (!entry.isNull())
                edit->setText(entry);
            const QString button = answer == Keypad::Ok ? "OK" : "Cancel";
            for (auto* b : modal->findChildren<QAbstractButton*>()) {
                if (b->text() == button && b->isEnabled()) {
                    b->click();
                    return;
                }
            }
        } else if (next) {
            std::exchange(next, nullptr)(modal);
            return;
        }
        m_unexpected << modal->windowTitle() + "|" + modal->metaObject()->className();
        modal->close();
    });
    answerer.start();
    return wsatest::captureStdout([this, byKey]() {
        if (byKey)
            QTest::keyClick(w, Qt::Key_F1);
        else
            w->saveTestResult();
    });
}

QStringList TestReport::results(const QString& dir) const
{
    QStringList names = QDir(dir.isNull() ? m_env->resultDir() : dir)
                            .entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::Hidden);
    names.sort();
    return names;
}

void TestReport::pageByteForByte()
{
    // Day and month names stay English under another locale.
    const QLocale saved;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    const QString console = save();
    QLocale::setDefault(saved);

    QCOMPARE(m_keypadTitle, QString("Save Test Result"));
    QCOMPARE(m_keypadText, QString("20261116-191430"));
    QCOMPARE(results(), QStringList({"20261116191430.html", "20261116191430_files"}));
    QCOMPARE(results(resultFile("20261116191430_files")), QStringList("wsa.bmp"));
    QCOMPARE(readFile(resultFile("20261116191430.html")),
             expectedPage("20261116191430", "Common 2.3.1\n", "00:1b:2c:a0:ff:09", "SN4711"));
    QVERIFY2(!console.contains("ERROR"), qPrintable(console));
}

void TestReport::fileNames_data()
{
    QTest::addColumn<QString>("entry");
    QTest::addColumn<QString>("fileName");
    QTest::newRow("signs dropped") << "my test_1.a"
                                   << "mytest1a";
    QTest::newRow("shell") << "$(touch injected);rm -rf x`id`|&>\\'\"*"
                           << "touchinjectedrmrfxid";
    QTest::newRow("path") << "../../etc/passwd"
                          << "etcpasswd";
    QTest::newRow("non-ASCII") << QString::fromUtf8("Stra\u00dfe-5 \u00fc") << "Strae5";
}

void TestReport::fileNames()
{
    QFETCH(QString, entry);
    QFETCH(QString, fileName);
    save(entry);
    QCOMPARE(results(), QStringList({fileName + ".html", fileName + "_files"}));
    QCOMPARE(results(resultFile(fileName + "_files")), QStringList("wsa.bmp"));
    QCOMPARE(readFile(resultFile(fileName + ".html")),
             expectedPage(fileName.toLatin1(), "Common 2.3.1\n", "00:1b:2c:a0:ff:09", "SN4711"));
    QVERIFY(!QFile::exists(m_env->path() + "/injected"));
}

void TestReport::longNamesAreShortened()
{
    // "mkdir -p <dir>/<name>_files" must fit 128 bytes with its NUL.
    const auto room = [](const QString& dir) {
        return 127 - 9 - int(dir.toLocal8Bit().size()) - 7;
    };
    QString entry;
    for (int i = 0; i < 1000; ++i)
        entry += QChar('a' + i % 26);
    QVERIFY(room(m_env->resultDir()) < 100); // below what the keypad lets through

    QString console = save(entry);
    const QString name = entry.left(room(m_env->resultDir()));
    QCOMPARE(results(), QStringList({name + ".html", name + "_files"}));
    QVERIFY(QFile::exists(resultFile(name + "_files/wsa.bmp")));
    QVERIFY2(console.contains("shortened"), qPrintable(console));

    // A result directory that leaves room for one character, and one that leaves none.
    QString dir = m_env->resultDir() + "/";
    dir += QString(110 - dir.size(), 'd');
    QCOMPARE(room(dir), 1);
    qputenv("WSA_RESULT_DIR", dir.toLocal8Bit());
    save("xyz");
    QCOMPARE(results(dir), QStringList({"x.html", "x_files"}));
    QVERIFY(QFile::exists(dir + "/x_files/wsa.bmp"));

    dir += "e";
    qputenv("WSA_RESULT_DIR", dir.toLocal8Bit());
    console = save("xyz");
    QVERIFY(!QFile::exists(dir));
    QVERIFY2(console.contains("too long"), qPrintable(console));
}

void TestReport::nameWithoutLettersOrDigitsIsRefused_data()
{
    QTest::addColumn<QString>("entry");
    QTest::newRow("empty") << QString("");
    QTest::newRow("signs only") << QString("-_. /");
}

void TestReport::nameWithoutLettersOrDigitsIsRefused()
{
    QFETCH(QString, entry);
    QString title, text;
    w->m_bUpdate = false;
    save(entry, Keypad::Ok, [&title, &text](QWidget* modal) {
        if (auto* box = qobject_cast<CMessageBox*>(modal)) {
            title = box->title();
            text = box->text();
        }
        const auto buttons = modal->findChildren<QAbstractButton*>();
        if (buttons.size() == 1)
            buttons.first()->click();
        else
            modal->close();
    });
    QCOMPARE(title, QString("Error"));
    QCOMPARE(text, QString("The name must contain letters or digits."));
    QCOMPARE(results(), QStringList());
    QVERIFY(w->m_bUpdate);
    QVERIFY(!w->m_pMsg);
}

void TestReport::cancelSavesNothing()
{
    w->m_bUpdate = false;
    const QString console = save("ignored", Keypad::Cancel);
    QCOMPARE(results(), QStringList());
    QVERIFY2(console.contains("cancelled"), qPrintable(console));
    QVERIFY(w->m_bUpdate);
}

void TestReport::missingInformation_data()
{
    QTest::addColumn<QByteArray>("mac");
    QTest::addColumn<QByteArray>("serial");
    QTest::addColumn<QByteArray>("vendorFile"); // null: no such file
    QTest::addColumn<QByteArray>("version");
    const QByteArray mac = "00:1b:2c:a0:ff:09";
    const QByteArray vendor = "Model X Common 2.3.1\n";
    QTest::newRow("MAC unreadable")
        << QByteArray() << QByteArray("SN4711") << vendor << QByteArray("Common 2.3.1\n");
    QTest::newRow("serial unreadable")
        << mac << QByteArray() << vendor << QByteArray("Common 2.3.1\n");
    QTest::newRow("both unreadable")
        << QByteArray() << QByteArray() << vendor << QByteArray("Common 2.3.1\n");
    QTest::newRow("vendor file missing")
        << mac << QByteArray("SN4711") << QByteArray() << QByteArray("");
    QTest::newRow("no version in first line")
        << mac << QByteArray("SN4711") << QByteArray("Model X 2.3.1\nCommon 9\n") << QByteArray("");
}

void TestReport::missingInformation()
{
    QFETCH(QByteArray, mac);
    QFETCH(QByteArray, serial);
    QFETCH(QByteArray, vendorFile);
    QFETCH(QByteArray, version);
    qputenv("WSA_MAC_ADDRESS", mac.isNull() ? "" : mac);
    qputenv("WSA_SERIAL_NUMBER", serial.isNull() ? "" : serial);
    const QString vendor = m_env->path() + "/vendor-info.txt";
    QFile::remove(vendor);
    if (!vendorFile.isNull())
        writeFile(vendor, vendorFile);

    const QString console = save("info");
    QCOMPARE(readFile(resultFile("info.html")), expectedPage("info", version, mac, serial));
    const QRegularExpression error(
        "### ERROR: FILE:report\\.cpp\t Func:saveGeneralInfoOfSet\t\\d+\n");
    QCOMPARE(int(console.count(error)), int(mac.isNull()) + int(serial.isNull()));
}

void TestReport::resultDirectoryNotWritable()
{
    // Below a regular file nothing can be created, even by root.
    const QString blocker = m_env->path() + "/plain-file";
    writeFile(blocker, "x");
    qputenv("WSA_RESULT_DIR", (blocker + "/results").toLocal8Bit());
    w->m_bUpdate = false;
    const QString console = save("blocked");
    QVERIFY2(console.contains("crate file " + blocker + "/results/blocked.html failed\n"),
             qPrintable(console));
    QVERIFY(w->m_bUpdate);
}

void TestReport::pictureIsTheAnalyzerScreen_data()
{
    QTest::addColumn<bool>("shown");
    QTest::addColumn<bool>("inHostWindow");
    QTest::newRow("own window") << true << false;
    QTest::newRow("below a host title bar") << true << true;
    // Nothing to read back from the screen: the analyzer's own rendering stands in.
    QTest::newRow("not on screen") << false << false;
}

void TestReport::pictureIsTheAnalyzerScreen()
{
    QFETCH(bool, shown);
    QFETCH(bool, inHostWindow);
    QWidget host;
    if (inHostWindow) {
        // The host's title bar is white, so a picture taken from the window's origin differs.
        host.setFixedSize(800, 480);
        auto* titleBar = new QWidget(&host);
        titleBar->setGeometry(0, 0, 800, 60);
        QPalette white;
        white.setColor(QPalette::Window, Qt::white);
        titleBar->setPalette(white);
        titleBar->setAutoFillBackground(true);
        w->setParent(&host);
        w->move(0, 60);
        host.show();
        QVERIFY(QTest::qWaitForWindowExposed(&host));
    }
    w->setVisible(shown);
    save("picture");
    if (inHostWindow)
        w->setParent(nullptr);
    w->show();
    QVERIFY(QTest::qWaitForWindowExposed(w));
    QImageReader reader(resultFile("picture_files/wsa.bmp"));
    QCOMPARE(reader.format(), QByteArray("bmp"));
    const QImage picture = reader.read().convertToFormat(QImage::Format_RGB32);
    QCOMPARE(picture.size(), QSize(658, 400));

    const QImage screen = w->grab().toImage().convertToFormat(QImage::Format_RGB32);
    QSet<QRgb> colours;
    for (int y = 0; y < 400; y += 19) {
        for (int x = 0; x < 658; x += 23) {
            QCOMPARE(picture.pixel(x, y), screen.pixel(x, y));
            colours.insert(picture.pixel(x, y));
        }
    }
    QCOMPARE(picture.pixel(657, 399), screen.pixel(657, 399));
    QVERIFY(colours.size() >= 3); // the views, not an empty picture
}

void TestReport::f1KeySaves()
{
    save(QString(), Keypad::Ok, nullptr, true);
    QCOMPARE(results(), QStringList({"20261116191430.html", "20261116191430_files"}));
    QVERIFY(QFile::exists(resultFile("20261116191430_files/wsa.bmp")));
}

void TestReport::getVersion_data()
{
    QTest::addColumn<QByteArray>("content"); // null: no such file
    QTest::addColumn<int>("length");
    QTest::addColumn<int>("result");
    QTest::addColumn<QByteArray>("version"); // null: not looked at
    QTest::newRow("from Common on")
        << QByteArray("Model X Common 2.3.1\nl2\n") << 128 << 0 << QByteArray("Common 2.3.1\n");
    QTest::newRow("no final line feed")
        << QByteArray("Model X Common 2.3.1") << 128 << 0 << QByteArray("Common 2.3.1");
    QTest::newRow("first line only")
        << QByteArray("Model X\nCommon 2\n") << 128 << 0 << QByteArray("");
    QTest::newRow("empty file") << QByteArray("") << 128 << 0 << QByteArray("");
    QTest::newRow("cut to the buffer")
        << QByteArray("Common 2.3.1\n") << 8 << 0 << QByteArray("Common ");
    QTest::newRow("missing file") << QByteArray() << 128 << -1 << QByteArray();
    QTest::newRow("no room") << QByteArray("Common 2.3.1\n") << 0 << -2 << QByteArray();
}

void TestReport::getVersion()
{
    QFETCH(QByteArray, content);
    QFETCH(int, length);
    QFETCH(int, result);
    QFETCH(QByteArray, version);
    const QString path = m_env->path() + "/version.txt";
    QFile::remove(path);
    if (!content.isNull())
        writeFile(path, content);

    // Stale text before, guard bytes after the buffer.
    QByteArray buffer(length + 8, 'X');
    QCOMPARE(GetVersion(qPrintable(path), buffer.data(), size_t(length)), result);
    QCOMPARE(buffer.mid(length), QByteArray(8, 'X'));
    if (!version.isNull()) {
        QCOMPARE(QByteArray(buffer.constData()), version);
        QCOMPARE(buffer.left(length), version + QByteArray(length - version.size(), '\0'));
    }
    QCOMPARE(GetVersion(nullptr, buffer.data(), size_t(length)), -2);
    QCOMPARE(GetVersion(qPrintable(path), nullptr, 128), -2);
}

void TestReport::nameFilterBounds()
{
    QByteArray entry;
    for (int i = 0; i < 1000; ++i)
        entry += "a\xc3\xa9-"[i % 4];
    char name[WSA_REPORT_TEXT];
    std::memset(name, 'X', sizeof name);
    QCOMPARE(wsaFilterName(entry.constData(), name, sizeof name), 250);
    QCOMPARE(QByteArray(name), QByteArray(250, 'a'));

    char small[4];
    QCOMPARE(wsaFilterName("a b-c_d", small, sizeof small), 3);
    QCOMPARE(QByteArray(small), QByteArray("abc"));
    QCOMPARE(wsaFilterName("abc", small, 1), 0);
    QCOMPARE(small[0], '\0');
}

void TestReport::browserShowsTableAndPicture()
{
    const QString chromium = "/usr/bin/chromium";
    QVERIFY2(QFileInfo(chromium).isExecutable(),
             "chromium is missing: install it with scripts/setup.sh --test");
    save("browser");
    const QImage picture =
        QImage(resultFile("browser_files/wsa.bmp")).convertToFormat(QImage::Format_RGB32);
    QVERIFY(!picture.isNull());

    QTemporaryDir profile;
    const QString shotPath = profile.path() + "/shot.png";
    QProcess browser;
    browser.setProcessChannelMode(QProcess::MergedChannels);
    browser.start(chromium, {"--headless", "--no-sandbox", "--disable-gpu", "--disable-quic",
                             "--no-first-run", "--disable-background-networking",
                             "--disable-component-update", "--disable-sync",
                             "--user-data-dir=" + profile.path() + "/profile",
                             "--screenshot=" + shotPath, "--window-size=1000,800",
                             QUrl::fromLocalFile(resultFile("browser.html")).toString()});
    QVERIFY2(browser.waitForStarted(10000), "chromium did not start");
    if (!browser.waitForFinished(120000)) {
        browser.kill();
        browser.waitForFinished(5000);
        QFAIL("chromium took more than two minutes; killed");
    }
    const QImage shot = QImage(shotPath).convertToFormat(QImage::Format_RGB32);
    QVERIFY2(!shot.isNull(), browser.readAll().constData());

    // Where the picture stands: every probe of it matches there.
    QList<QPoint> probes;
    for (int y = 3; y < picture.height(); y += 37) {
        for (int x = 5; x < picture.width(); x += 41)
            probes << QPoint(x, y);
    }
    QPoint at(-1, -1);
    for (int oy = 0; oy + picture.height() <= shot.height() && at.x() < 0; ++oy) {
        for (int ox = 0; ox + picture.width() <= shot.width(); ++ox) {
            const bool all = std::all_of(probes.begin(), probes.end(), [&](const QPoint& p) {
                return near(shot.pixel(p + QPoint(ox, oy)), picture.pixel(p));
            });
            if (all) {
                at = QPoint(ox, oy);
                break;
            }
        }
    }
    QVERIFY2(at.y() > 0, "the picture is not in the browser's rendering");

    // Above it the table: dark text and the blue heading.
    int dark = 0, blue = 0;
    for (int y = 0; y < at.y(); ++y) {
        for (int x = 0; x < shot.width(); ++x) {
            const QRgb c = shot.pixel(x, y);
            dark += qGray(c) < 80;
            blue += qBlue(c) > 200 && qRed(c) < 60 && qGreen(c) < 60;
        }
    }
    QVERIFY2(dark > 300, qPrintable(QString("%1 dark pixels above the picture").arg(dark)));
    QVERIFY2(blue > 30, qPrintable(QString("%1 blue pixels above the picture").arg(blue)));
}

QTEST_MAIN(TestReport)
#include "tst_report.moc"
