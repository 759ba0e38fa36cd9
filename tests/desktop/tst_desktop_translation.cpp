// The desktop window under a German locale: its catalogue answers for every text in its sources,
// keeping each text's placeholders, mnemonic and markup, and the window shows it in every context
// its texts are looked up in.
#include <QMenuBar>
#include <QtTest>

#include "catalogue.h"

#include "acquisition.h"
#include "desktoptestsupport.h"
#include "messagebar.h"
#include "translation.h"

using namespace desktoptest;

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
        const wsatest::CatalogueCheck c = wsatest::checkCatalogue(
            WSA_SOURCE_DIR "/translations/wsa_desktop_de.ts", {WSA_SOURCE_DIR "/desktop"},
            m_dir.filePath("wsa_desktop_de.ts"));
        QVERIFY2(c.error.isEmpty(), qPrintable(c.error));
        QVERIFY2(c.messages > 200,
                 qPrintable(QString::number(c.messages))); // lupdate found our texts
        QVERIFY2(c.faults.isEmpty(), qPrintable(c.faults.join('\n')));
    }

    // The menus, the message bar, an export's error and the report each look their texts up in a
    // context of their own; a context the catalogue names otherwise would stay English here.
    void windowSpeaksGerman()
    {
        Window t(wsa::BandId::Ghz5);
        InstrumentWindow& w = t.w;
        EngineLink link;
        EngineSetup setup;
        setup.source = "sim";
        setup.band = &t.feed.shown().band();
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
        const QString page = html.readAll();
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
