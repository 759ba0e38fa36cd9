// The desktop window under a German locale: its catalogue answers for every text in its sources,
// keeping each text's placeholders, mnemonic and markup, and the window shows it in every context
// its texts are looked up in.
#include <QMenuBar>
#include <QRegularExpression>
#include <QtTest>

#include "acquisition.h"
#include "instrumentwindow.h"
#include "messagebar.h"
#include "sweepfeed.h"
#include "translation.h"

using namespace wsa::desktop;

namespace
{

// What a translation must carry over from its source: the arguments, the one mnemonic, the tags.
QStringList skeleton(const QString& text)
{
    static const QRegularExpression parts(QStringLiteral("%[1-9n]|&[^& ]|<[^>]*>"));
    QStringList out;
    for (auto it = parts.globalMatch(text); it.hasNext();) {
        const QString part = it.next().captured();
        out << (part.startsWith('&') ? QStringLiteral("&") : part);
    }
    if (!text.contains('<'))
        out.sort(); // word order may change; markup order may not
    return out;
}

} // namespace

class TestDesktopTranslation : public QObject
{
    Q_OBJECT
private:
    QTemporaryDir m_dir;

private slots:
    void initTestCase()
    {
        QCOMPARE(QLocale::system().language(), QLocale::German);
        installTranslator();
        installTranslator();
        QCOMPARE(qApp->findChildren<QTranslator*>().size(), 1);
    }

    // lupdate over the window's sources into a copy of the catalogue: a text new in the code, still
    // unfinished, translated as nothing or losing a placeholder, mnemonic or tag fails here.
    void catalogueCoversEveryText()
    {
        const QString lupdate = QLibraryInfo::path(QLibraryInfo::BinariesPath) + "/lupdate";
        QVERIFY2(QFileInfo(lupdate).isExecutable(), qPrintable(lupdate + " is missing"));
        const QString ts = m_dir.filePath("wsa_desktop_de.ts");
        QVERIFY(QFile::copy(WSA_SOURCE_DIR "/translations/wsa_desktop_de.ts", ts));
        QFile::setPermissions(ts, QFile::ReadOwner | QFile::WriteOwner);
        QStringList args{"-silent", "-no-obsolete", "-locations", "none"};
        QDirIterator it(WSA_SOURCE_DIR "/desktop", {"*.cpp", "*.h"}, QDir::Files,
                        QDirIterator::Subdirectories);
        while (it.hasNext())
            args << it.next();
        QProcess run;
        run.start(lupdate, args << "-ts" << ts);
        QVERIFY(run.waitForFinished(60000));
        QVERIFY2(run.exitStatus() == QProcess::NormalExit && run.exitCode() == 0,
                 run.readAllStandardError().constData());

        QFile file(ts);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QXmlStreamReader xml(&file);
        QString context, source;
        QStringList faults;
        int messages = 0;
        while (!xml.atEnd()) {
            if (xml.readNext() != QXmlStreamReader::StartElement)
                continue;
            if (xml.name() == u"name") {
                context = xml.readElementText();
            } else if (xml.name() == u"source") {
                source = xml.readElementText();
            } else if (xml.name() == u"translation") {
                const QString type = xml.attributes().value("type").toString();
                const QString text = xml.readElementText(QXmlStreamReader::IncludeChildElements);
                ++messages;
                if (!type.isEmpty() || text.trimmed().isEmpty() ||
                    skeleton(text) != skeleton(source))
                    faults << QString("%1: \"%2\" -> \"%3\" %4").arg(context, source, text, type);
            }
        }
        QVERIFY2(!xml.hasError(), qPrintable(xml.errorString()));
        QVERIFY2(messages > 200, qPrintable(QString::number(messages))); // lupdate found our texts
        QVERIFY2(faults.isEmpty(), qPrintable(faults.join('\n')));
    }

    // The menus, the message bar, an export's error and the report each look their texts up in a
    // context of their own; a context the catalogue names otherwise would stay English here.
    void windowSpeaksGerman()
    {
        SweepFeed feed(*wsa::findBand(wsa::BandId::Ghz5));
        InstrumentWindow w(&feed);
        EngineLink link;
        EngineSetup setup;
        setup.source = QStringLiteral("sim");
        setup.band = &feed.shown().band();
        w.attachEngine(&link, setup); // no socket directory: a message, and no engine
        QStringList menus;
        for (const QAction* a : w.menuBar()->actions())
            menus << a->text();
        QCOMPARE(menus, QStringList({"&Datei", "&Quelle", "&Ansicht", "&Messen", "&Hilfe"}));
        QVERIFY2(w.acquisition()->messageBar()->text().contains("kein Verzeichnis"),
                 qPrintable(w.acquisition()->messageBar()->text()));
        QVERIFY(w.windowTitle().startsWith("WLAN-Spektrumanalysator"));

        QString error;
        QVERIFY(!w.exportTraces(m_dir.filePath("missing/traces.csv"), &error));
        QVERIFY2(error.contains("konnte nicht geschrieben werden"), qPrintable(error));
        const QString report = m_dir.filePath("report.html");
        QVERIFY2(w.saveReport(report, &error), qPrintable(error));
        QFile html(report);
        QVERIFY(html.open(QIODevice::ReadOnly));
        const QString page = QString::fromUtf8(html.readAll());
        QVERIFY(page.contains("WLAN-Spektrumbericht") && page.contains("Kein Marker"));
    }
};

int main(int argc, char** argv)
{
    // The system locale is read once, when the application starts.
    qputenv("LC_ALL", "de_DE.UTF-8");
    qputenv("LANGUAGE", "de_DE");
    QApplication app(argc, argv);
    TestDesktopTranslation test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_desktop_translation.moc"
