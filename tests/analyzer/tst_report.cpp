// The test result report: the page byte for byte, file names, failures, the picture, and the
// page as a browser shows it.
#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QtTest>
#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include "cmessagebox.h"
#include "report.h"
#include "wsa_p.h"
#include "wsatestsupport.h"

namespace
{

const QByteArray kMac = "00:1b:2c:a0:ff:09", kSerial = "SN4711";
const QByteArray kVendor = "Model X Common 2.3.1\nnext line Common 9\n";
int clockCalls = 0;

// The first reading proposes the name; the date row comes 11 s later, as if typed meanwhile.
QDateTime fixedClock()
{
    return QDateTime(QDate(2026, 11, 16), QTime(19, 14, 30)).addSecs(clockCalls++ ? 11 : 0);
}

// A null MAC or serial leaves its row out.
QByteArray expectedPage(const QString& name, const QByteArray& version, const QByteArray& mac,
                        const QByteArray& serial)
{
    QByteArray page = "<html>\n<head><title>content type: wifi spy result</title></head>\n<body>\n"
                      "<br><font size=4> <a  style=\"color:blue;\"> General Information </a> "
                      "</font> </br>\n<table border=\"1\">\n";
    const QList<QPair<QByteArray, QByteArray>> rows = {
        {"Date and Time Results Were Saved:", "Monday November 2026 19:14:41"},
        {"Software Version:", version},
        {"MAC Address of Test Port:", mac},
        {"Serial Number of Test Set:", serial}};
    for (const auto& [label, value] : rows)
        if (!value.isNull())
            page += "\t<tr><font size=\"4\"> <td>" + label + "</td><td>" + value +
                    "</td></font></tr>\n";
    return page + "</table><br\n><img src=\"" + name.toLatin1() +
           "_files/wsa.bmp\"/>\n</body>\n</html>";
}

bool near(QRgb a, QRgb b)
{
    return qAbs(qRed(a) - qRed(b)) + qAbs(qGreen(a) - qGreen(b)) + qAbs(qBlue(a) - qBlue(b)) < 8;
}

bool writeFile(const QString& path, const QByteArray& content)
{
    QFile f(path);
    return f.open(QIODevice::WriteOnly) && f.write(content) == content.size();
}

// A directory's entries by their bytes, sorted; Qt skips names that are not UTF-8.
QList<QByteArray> names(const QByteArray& path)
{
    QList<QByteArray> out;
    if (DIR* d = opendir(path.constData())) {
        while (const dirent* e = readdir(d))
            if (std::strcmp(e->d_name, ".") && std::strcmp(e->d_name, ".."))
                out << QByteArray(e->d_name);
        closedir(d);
    }
    std::sort(out.begin(), out.end());
    return out;
}

} // namespace

class TestReport : public QObject
{
    Q_OBJECT
    wsatest::AnalyzerFixture m_f;
    QString m_keypad; // its title and proposed text

    QString dir(const QString& name = "") const { return m_f.env->resultDir() + '/' + name; }
    QString vendorFile() const { return m_f.env->path() + "/vendor-info.txt"; }
    QStringList entries(const QString& name = "") const
    {
        return QDir(dir(name)).entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::Hidden,
                                         QDir::Name);
    }

    // Saves through the keypad: `entry` typed over the proposal, or Cancel when null. Any
    // window that follows is closed and its text appended to the console text.
    QString save(const QString& entry, bool byKey = false)
    {
        m_keypad.clear();
        QString windows;
        QTimer answerer;
        connect(&answerer, &QTimer::timeout, [&]() {
            QWidget* modal = QApplication::activeModalWidget();
            auto* edit = modal ? modal->findChild<QLineEdit*>() : nullptr;
            if (edit && m_keypad.isEmpty()) {
                m_keypad = modal->windowTitle() + '|' + edit->text();
                edit->setText(entry);
                entry.isNull() ? qobject_cast<QDialog*>(modal)->reject()
                               : qobject_cast<QDialog*>(modal)->accept();
            } else if (modal && modal->isVisible()) {
                auto* box = qobject_cast<CMessageBox*>(modal);
                windows += "[window] " + (box ? box->title() + ": " + box->text() : "?") + '\n';
                modal->close();
            }
        });
        answerer.start(10);
        const QString out = wsatest::captureStdout(
            [&]() { byKey ? QTest::keyClick(m_f.w, Qt::Key_F1) : m_f.w->saveTestResult(); });
        return out + windows;
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_f.start());
        wsaReportClock = fixedClock;
        // Day and month names must stay English under another locale.
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    }

    void init()
    {
        clockCalls = 0;
        QVERIFY(QDir(dir()).removeRecursively() && QDir().mkpath(dir()));
        qputenv("WSA_RESULT_DIR", m_f.env->resultDir().toLocal8Bit());
        qputenv("WSA_VENDOR_INFO", vendorFile().toLocal8Bit());
    }

    // The platform's texts reach the page escaped; bytes that are not UTF-8 (nor text at all)
    // pass unchanged.
    void saves_data()
    {
        QTest::addColumn<QString>("entry"); // null: cancelled
        QTest::addColumn<QString>("name");  // empty: nothing saved
        QTest::addColumn<QString>("console");
        QTest::addColumn<QByteArray>("mac");       // null: unreadable
        QTest::addColumn<QByteArray>("serial");    // null: unreadable
        QTest::addColumn<QByteArray>("vendor");    // null: no such file
        QTest::addColumn<QByteArrayList>("cells"); // version and serial as the page shows them
        const auto row = [](const char* tag, const QString& entry, const QString& name,
                            const QString& console = "", const QByteArray& mac = kMac,
                            const QByteArray& serial = kSerial, const QByteArray& vendor = kVendor,
                            const QByteArrayList& cells = {}) {
            QTest::newRow(tag) << entry << name << console << mac << serial << vendor
                               << (cells.isEmpty() ? QByteArrayList{"Common 2.3.1\n", serial}
                                                   : cells);
        };
        row("proposed name", "20261116-191430", "20261116191430");
        row("signs dropped", "my test_1.a", "mytest1a");
        row("shell characters", "$(touch injected);rm -rf x`id`|&>\\'\"*", "touchinjectedrmrfxid");
        row("non-ASCII", QString::fromUtf8("Stra\u00dfe-5 \u00fc"), "Strae5");
        // "mkdir -p '<dir>/<name>_files'" must fit 128 bytes with its NUL.
        const QString long1000 =
            QString("abcdefghijklmnopqrstuvwxyz0123456789").repeated(28).left(1000);
        const int room = 127 - int(("mkdir -p '" + dir() + "_files'").toLocal8Bit().size());
        row("1000 characters", long1000, long1000.left(room), "shortened");
        row("no letters or digits", "-_. /", "",
            "[window] Error: The name must contain letters or digits.");
        row("cancelled", QString(), "", "cancelled");
        row("MAC unreadable", "info", "info", "", QByteArray());
        row("serial unreadable", "info", "info", "", kMac, QByteArray(), kVendor,
            {"Common 2.3.1\n", QByteArray()});
        row("vendor file missing", "info", "info", "", kMac, kSerial, QByteArray(), {"", kSerial});
        row("no Common in first line", "info", "info", "", kMac, kSerial, "Model 2\nCommon 9\n",
            {"", kSerial});
        row("platform texts escaped", "info", "info", "", kMac, "S<1>&\"2'",
            "X Common <b>&amp;\"v\" 'x' \xff\xc3\x28\x01\n",
            {"Common &lt;b&gt;&amp;amp;&quot;v&quot; &#39;x&#39; \xff\xc3\x28\x01\n",
             "S&lt;1&gt;&amp;&quot;2&#39;"});
    }

    void saves()
    {
        QFETCH(QString, entry);
        QFETCH(QString, name);
        QFETCH(QString, console);
        QFETCH(QByteArray, mac);
        QFETCH(QByteArray, serial);
        QFETCH(QByteArray, vendor);
        QFETCH(QByteArrayList, cells);
        qputenv("WSA_MAC_ADDRESS", mac);
        qputenv("WSA_SERIAL_NUMBER", serial);
        QFile::remove(vendorFile());
        QVERIFY(vendor.isNull() || writeFile(vendorFile(), vendor));
        m_f.w->m_bUpdate = false;

        const QString out = save(entry);
        QVERIFY2(out.contains(console) && out.count("[window]") == console.count("[window]"),
                 qPrintable(out));
        QCOMPARE(int(out.count("### ERROR: FILE:report.cpp\t Func:saveGeneralInfoOfSet\t")),
                 int(mac.isNull()) + int(serial.isNull()));
        QCOMPARE(m_keypad, QStringLiteral("Save Test Result|20261116-191430"));
        QVERIFY(m_f.w->m_bUpdate && !m_f.w->m_pMsg &&
                !QFile::exists(m_f.env->path() + "/injected"));
        QCOMPARE(entries(),
                 name.isEmpty() ? QStringList() : QStringList({name + ".html", name + "_files"}));
        if (name.isEmpty())
            return;
        QCOMPARE(entries(name + "_files"), QStringList("wsa.bmp"));
        QFile page(dir(name + ".html"));
        QVERIFY(page.open(QIODevice::ReadOnly));
        QCOMPARE(page.readAll(), expectedPage(name, cells[0], mac, cells[1]));
    }

    // Result directories whose names a shell would act on, or that are not UTF-8: created by
    // their bytes, nothing runs.
    void resultDirIsQuoted_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::newRow("blanks") << QByteArray("with  two blanks");
        QTest::newRow("semicolon") << QByteArray("a;touch INJ");
        QTest::newRow("substitution") << QByteArray("$(touch INJ)");
        QTest::newRow("backticks") << QByteArray("`touch INJ`");
        QTest::newRow("single quote") << QByteArray("it's';touch INJ;'");
        QTest::newRow("double quote") << QByteArray("say \"hi\";touch INJ");
        QTest::newRow("not UTF-8") << QByteArray("r\xff\xfe-\xc3(");
    }
    void resultDirIsQuoted()
    {
        QFETCH(QByteArray, name);
        const QByteArray out = QFile::encodeName(m_f.env->path() + "/out");
        qputenv("WSA_RESULT_DIR", out + '/' + name);
        const QString printed = save("quoted");
        QVERIFY2(!printed.contains("[window]") && !printed.contains("crate file"),
                 qPrintable(printed));
        QCOMPARE(names(out), QList<QByteArray>{name});
        QCOMPARE(names(out + '/' + name), QList<QByteArray>({"quoted.html", "quoted_files"}));
        QCOMPARE(names(out + '/' + name + "/quoted_files"), QList<QByteArray>{"wsa.bmp"});
        QVERIFY(!QFile::exists(m_f.env->path() + "/INJ") && !QFile::exists("INJ"));
        QDir(QFile::decodeName(out)).removeRecursively();
    }

    // Result directories that cannot take the page, and names planted where the report's files
    // go: nobody else's file is written, nothing waits, and when no page can be written the user
    // is told where and why, besides the console line. The vendor file is read only when it is
    // a regular file: a FIFO in its place would hold F1 forever.
    void refusals_data()
    {
        QTest::addColumn<QString>("plant");
        QTest::addColumn<QString>("resultDir"); // below the test's directory, empty: the usual
        QTest::addColumn<QString>("console");   // first line, %1 the result directory
        QTest::addColumn<QString>("reason");    // the box's text after its first line, or empty
        QTest::addColumn<bool>("pageWritten");
        const QString failed = "crate file %1/%2 failed";
        const auto row = [&](const char* tag, const QString& resultDir, const QString& refused,
                             int error, bool written = false) {
            const QString path = "%1/" + refused;
            QTest::newRow(tag) << QString(tag) << resultDir
                               << (refused.isEmpty() ? QString() : failed.arg("%1", refused))
                               << (error ? path + '\n' + strerror(error) : QString()) << written;
        };
        // Below a regular file nothing can be created, even by root.
        row("below a file", "plain-file/results", "planted.html", ENOTDIR);
        row("read-only", "read-only", "planted.html", EACCES);
        QTest::newRow("too long") << "too long"
                                  << "d" + QString("x").repeated(120)
                                  << "Test result not saved: result directory path too long: %1"
                                  << "%1\nThe path is too long." << false;
        row("page is a link", "", "planted.html", ELOOP);
        row("page is a hard link", "", "planted.html", EEXIST);
        row("page of another user", "", "planted.html", EEXIST);
        row("page is a FIFO", "", "planted.html", ENXIO);
        row("picture directory is a link", "", "planted_files", ENOTDIR);
        row("picture directory is a file", "", "planted_files", ENOTDIR);
        row("picture directory of another user", "", "planted_files", EPERM);
        row("picture is a link", "", "planted_files/wsa.bmp", 0, true);
        row("own earlier report", "", "", 0, true);
        row("vendor file is a FIFO", "", "", 0, true);
    }
    void refusals()
    {
        QFETCH(QString, plant);
        QFETCH(QString, resultDir);
        QFETCH(QString, console);
        QFETCH(QString, reason);
        QFETCH(bool, pageWritten);
        if (plant.contains("another user") && geteuid() != 0)
            QSKIP("only root can give a file to another user");
        if (plant == "read-only" && geteuid() == 0)
            QSKIP("root writes into read-only directories");
        qputenv("WSA_MAC_ADDRESS", kMac);
        qputenv("WSA_SERIAL_NUMBER", kSerial);
        QVERIFY(writeFile(vendorFile(), kVendor));
        const QString base = m_f.env->path(), outside = base + "/outside";
        const QString outsideDir = outside + "-dir";
        const QString results = resultDir.isEmpty() ? m_f.env->resultDir() : base + '/' + resultDir;
        qputenv("WSA_RESULT_DIR", QFile::encodeName(results));
        QVERIFY(QDir(outsideDir).removeRecursively() && QDir().mkpath(outsideDir));
        QVERIFY(writeFile(outside, "keep") && writeFile(base + "/plain-file", "x"));
        QDir().mkpath(base + "/read-only");
        const auto own = QFile::ReadOwner | QFile::ExeOwner;
        QFile::setPermissions(base + "/read-only", own);
        const QByteArray page = QFile::encodeName(dir("planted.html"));
        const QByteArray pictures = QFile::encodeName(dir("planted_files"));
        const QByteArray target = QFile::encodeName(outside);
        bool planted = true;
        if (plant == "page is a link")
            planted = symlink(target, page) == 0;
        else if (plant == "page is a hard link")
            planted = link(target, page) == 0;
        else if (plant == "page of another user")
            planted = writeFile(dir("planted.html"), "keep") && chown(page, 4321, 4321) == 0;
        else if (plant == "page is a FIFO")
            planted = mkfifo(page, 0600) == 0;
        else if (plant == "picture directory is a link")
            planted = symlink(QFile::encodeName(outsideDir), pictures) == 0;
        else if (plant == "picture directory is a file")
            planted = writeFile(dir("planted_files"), "keep");
        else if (plant == "picture directory of another user")
            planted = mkdir(pictures, 0777) == 0 && chown(pictures, 4321, 4321) == 0;
        else if (plant == "picture is a link")
            planted = mkdir(pictures, 0777) == 0 && symlink(target, pictures + "/wsa.bmp") == 0;
        else if (plant == "own earlier report")
            planted = writeFile(dir("planted.html"), "an earlier page, longer than the new one " +
                                                         QByteArray(20000, 'x'));
        else if (plant == "vendor file is a FIFO")
            planted =
                QFile::remove(vendorFile()) && mkfifo(QFile::encodeName(vendorFile()), 0600) == 0;
        QVERIFY(planted);

        const QString out = save("planted");
        QFile::remove(vendorFile());
        QFile::setPermissions(base + "/read-only", own | QFile::WriteOwner);
        QCOMPARE(out.count("crate file") + out.count("not saved"), int(!console.isEmpty()));
        QVERIFY2(console.isEmpty() || out.startsWith(console.arg(results) + '\n'), qPrintable(out));
        QCOMPARE(out.count("[window]"), int(!reason.isEmpty()));
        QVERIFY2(reason.isEmpty() || out.contains("[window] Error: The test result could not be "
                                                  "saved.\n" +
                                                  reason.arg(results) + '\n'),
                 qPrintable(out));
        QVERIFY(!m_f.w->m_pMsg);
        QFile kept(outside);
        QVERIFY(kept.open(QIODevice::ReadOnly));
        QCOMPARE(kept.readAll(), QByteArray("keep"));
        QCOMPARE(QDir(outsideDir).entryList(QDir::NoDotAndDotDot | QDir::AllEntries), {});
        QFile written(dir("planted.html"));
        const QByteArray version = plant.startsWith("vendor") ? "" : "Common 2.3.1\n";
        const bool open = QFileInfo(written).isFile() && written.open(QIODevice::ReadOnly);
        const QByteArray content = open ? written.readAll() : QByteArray();
        QCOMPARE(content == expectedPage("planted", version, kMac, kSerial), pageWritten);
        if (plant == "page of another user")
            QCOMPARE(content, QByteArray("keep"));
    }

    void f1SavesTheScreenAsABrowserShowsIt()
    {
        save("picture", true);
        const QImage picture =
            QImage(dir("picture_files/wsa.bmp"), "bmp").convertToFormat(QImage::Format_RGB32);
        QCOMPARE(picture.size(), QSize(658, 400));
        const QImage screen = m_f.w->grab().toImage().convertToFormat(QImage::Format_RGB32);
        QList<QPoint> probes;
        QSet<QRgb> colours;
        for (int y = 3; y < 400; y += 37) {
            for (int x = 5; x < 658; x += 41) {
                QCOMPARE(picture.pixel(x, y), screen.pixel(x, y));
                colours << picture.pixel(x, y);
                probes << QPoint(x, y);
            }
        }
        QVERIFY(colours.size() >= 3); // the views, not an empty picture

        const QString chromium = "/usr/bin/chromium";
        QVERIFY2(QFileInfo(chromium).isExecutable(),
                 "chromium is missing: install it with scripts/setup.sh --test");
        QTemporaryDir profile;
        const QString shotPath = profile.path() + "/shot.png";
        QProcess browser;
        browser.setProcessChannelMode(QProcess::MergedChannels);
        browser.start(chromium, {"--headless", "--no-sandbox", "--disable-gpu", "--no-first-run",
                                 "--disable-background-networking", "--window-size=1000,800",
                                 "--user-data-dir=" + profile.path(), "--screenshot=" + shotPath,
                                 QUrl::fromLocalFile(dir("picture.html")).toString()});
        if (!browser.waitForFinished(120000)) {
            browser.kill();
            browser.waitForFinished(5000);
            QFAIL("chromium did not finish within two minutes; killed");
        }
        const QImage shot = QImage(shotPath).convertToFormat(QImage::Format_RGB32);
        QVERIFY2(!shot.isNull(), browser.readAll().constData());

        // Where the picture stands, every probe of it matches, give or take rounding.
        const auto pictureAt = [&](const QPoint& origin) {
            return std::all_of(probes.begin(), probes.end(), [&](const QPoint& p) {
                return near(shot.pixel(origin + p), picture.pixel(p));
            });
        };
        QPoint at(-1, -1);
        for (int y = 0; at.y() < 0 && y + 400 <= shot.height(); ++y)
            for (int x = 0; at.y() < 0 && x + 658 <= shot.width(); ++x)
                at = pictureAt(QPoint(x, y)) ? QPoint(x, y) : at;
        QVERIFY2(at.y() > 0, "the picture is not in the browser's rendering");

        // Above it the table: dark text and the blue heading.
        int dark = 0, blue = 0;
        for (int y = 0; y < at.y(); ++y) {
            for (int x = 0; x < shot.width(); ++x) {
                const QRgb c = shot.pixel(x, y);
                dark += qGray(c) < 80;
                blue += qBlue(c) > 200 && qRed(c) < 60;
            }
        }
        QVERIFY2(dark > 300 && blue > 30,
                 qPrintable(QString("dark %1, blue %2").arg(dark).arg(blue)));
    }
};

QTEST_MAIN(TestReport)
#include "tst_report.moc"
