// The analyzer under a German locale: our catalogue for the analyzer's texts, Qt's own for the
// standard buttons, and no text of ours left without a German entry.
#include <QtTest>
#include <QtWidgets>

#include "ckeypadfactory.h"
#include "cmessagebox.h"
#include "wsa.h"
#include "wsatestsupport.h"

class TestTranslation : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QCOMPARE(QLocale::system().language(), QLocale::German);
        wsaInstallTranslator();
    }

    // Our keypad and message box take Qt's own German for the standard buttons.
    void germanLabels()
    {
        QWidget owner;
        QStringList seen;
        const auto buttons = [&seen](QWidget* modal) {
            seen.clear();
            for (const QPushButton* button : modal->findChildren<QPushButton*>())
                seen << button->text();
            QTest::keyClick(modal, Qt::Key_Escape);
        };
        wsatest::onNextModal(buttons);
        CKeyPadFactory::accessKeyPad("Name", "x", CKeyPadFactory::KEYPAD_FULL, 0, 100, &owner);
        QCOMPARE(seen, QStringList({"OK", "Abbrechen"}));
        wsatest::onNextModal(buttons);
        CMessageBox box(&owner);
        box.information(&owner, "Information", "text", QMessageBox::Ok);
        QCOMPARE(seen, QStringList({"OK"}));
        QDialogButtonBox standard(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
        QCOMPARE(QStringList({standard.button(QDialogButtonBox::Ok)->text(),
                              standard.button(QDialogButtonBox::Cancel)->text()}),
                 QStringList({"OK", "Abbrechen"}));
    }

    // Runs lupdate over the analyzer's sources into a copy of the German catalogue: a text that is
    // new in the code, or still marked unfinished, or translated as nothing, fails here.
    void everyTextHasGermanEntry()
    {
        const QString lupdate = QLibraryInfo::path(QLibraryInfo::BinariesPath) + "/lupdate";
        QVERIFY2(QFileInfo(lupdate).isExecutable(), qPrintable(lupdate + " is missing"));
        QTemporaryDir dir;
        const QString ts = dir.filePath("wsa_de.ts");
        QVERIFY(QFile::copy(WSA_SOURCE_DIR "/translations/wsa_de.ts", ts));
        QFile::setPermissions(ts, QFile::ReadOwner | QFile::WriteOwner);

        const QDir root(WSA_SOURCE_DIR);
        QStringList args{"-silent", "-no-obsolete", "-locations", "none"};
        for (const char* dir : {"apps", "analyzer", "include"}) {
            QDirIterator it(root.filePath(dir), {"*.cpp", "*.h"}, QDir::Files,
                            QDirIterator::Subdirectories);
            while (it.hasNext())
                args << it.next();
        }
        args << "-ts" << ts;
        QProcess run;
        run.start(lupdate, args);
        QVERIFY(run.waitForFinished(60000));
        QVERIFY2(run.exitStatus() == QProcess::NormalExit && run.exitCode() == 0,
                 run.readAllStandardError().constData());

        QFile file(ts);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QXmlStreamReader xml(&file);
        QString context, source;
        QStringList missing;
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
                if (!type.isEmpty() || text.trimmed().isEmpty())
                    missing << QString("%1: \"%2\" (%3)").arg(context, source, type);
            }
        }
        QVERIFY2(!xml.hasError(), qPrintable(xml.errorString()));
        QVERIFY2(messages > 40, qPrintable(QString::number(messages))); // lupdate found our texts
        QVERIFY2(missing.isEmpty(), qPrintable("no German entry: " + missing.join("; ")));
    }
};

int main(int argc, char** argv)
{
    // The system locale is read once, when the application starts.
    qputenv("LC_ALL", "de_DE.UTF-8");
    qputenv("LANGUAGE", "de_DE");
    QApplication app(argc, argv);
    TestTranslation test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_translation.moc"
