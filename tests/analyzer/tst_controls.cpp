// Window controls: the tool box and the keys in each mode, the "Current" check box, the band
// buttons and re-labelling in another language.
#include <QTest>
#include <QTranslator>
#include <unistd.h>

#include "ccheckbox.h"
#include "cgroupboxwidget.h"
#include "cpushbutton.h"
#include "cradiobutton.h"
#include "wsa_p.h"
#include "cmessagebox.h"
#include "wsatestsupport.h"

class TestControls : public QObject
{
    Q_OBJECT

    wsatest::AnalyzerFixture f;
    int modals = 0;

    // Presses the tool-box buttons named in `labels` ("A,B"); the dialog of "Signature" is
    // dismissed, it is not under test here.
    void pressAll(const QString& labels)
    {
        for (const QString& label : labels.split(',')) {
            for (CPushButton* b : f.w->findChildren<CPushButton*>())
                if (b->text() == label)
                    QTest::mouseClick(b, Qt::LeftButton);
            f.w->deleteSignatureSetDia();
        }
    }

private slots:
    void initTestCase() { QVERIFY(f.start()); }

    void toolBoxAndKeys()
    {
        // After "Topographic" and "Signature", the button: views shown (Planar, Topographic,
        // Spectral), modes on (Inspector, Frequency, Signature), shown (trace boxes, group box,
        // "Signature" button).
        const char* const rows[] = {"",          "010 001 001", "View All",    "111 000 100",
                                    "Planar",    "100 000 100", "Topographic", "010 000 001",
                                    "Spectral",  "001 000 000", "Frequency",   "010 010 011",
                                    "Inspector", "010 100 001"};
        for (int row = 0; row < 14; row += 2) {
            pressAll(QString("Inspector,View All,Topographic,Signature,") + rows[row]);
            QCOMPARE(QString::asprintf("%s: %d%d%d %d%d%d %d%d%d", rows[row], bPlanarView,
                                       bTopographicView, bSpectralView, f.w->m_bInspector,
                                       f.w->m_bFrequency, f.w->m_bSignature,
                                       pCbCurrent->isVisible() && pCbMax->isVisible(),
                                       pGbFrequency->isVisible(), pBtSignatures->isVisible()),
                     QString(rows[row]) + ": " + rows[row + 1]);

            // F1 opens the report's name prompt in every mode; no other key opens anything.
            wsatest::onNextModal([this](QWidget* modal) { modals += modal->close(); });
            for (Qt::Key key : {Qt::Key_F2, Qt::Key_A, Qt::Key_Return, Qt::Key_Escape})
                QTest::keyClick(f.w, key);
            QCOMPARE(modals, row / 2);
            QTest::keyClick(f.w, Qt::Key_F1);
            QCOMPARE(modals, row / 2 + 1);
        }
    }

    void currentTraceBox()
    {
        // Yellow pixels of the current trace on screen once the next sweep is drawn.
        const auto yellowAfterSweep = [this] {
            wsatest::sendRecord(f.link, wsatest::makeSweep(424, -60));
            f.w->wsaDataParse();
            const QImage image = f.w->grab().toImage().convertToFormat(QImage::Format_RGB32);
            const auto* p = reinterpret_cast<const QRgb*>(image.constBits());
            return int(std::count(p, p + image.width() * image.height(), qRgb(255, 255, 0)));
        };
        pressAll("Inspector,Planar");
        const int shown = yellowAfterSweep();
        QVERIFY2(shown > 300, qPrintable(QString::number(shown)));
        for (bool on : {false, true}) {
            bRefreshPlanarView = f.w->m_bUpdate = false;
            // The box's own repaint would let the analyzer consume the request at once.
            f.w->setUpdatesEnabled(false);
            QTest::mouseClick(pCbCurrent, Qt::LeftButton, {}, QPoint(6, 5)); // on the indicator
            f.w->setUpdatesEnabled(true);
            QVERIFY(bRefreshPlanarView && f.w->m_bUpdate && bCurrent == on && bAverage && bMax);
            QCOMPARE(yellowAfterSweep(), on ? shown : 0);
        }
    }

    void bandButtonsRestartEngine()
    {
        pressAll("Frequency");
        // The band already selected starts a fresh recording all the same.
        for (CRadioButton* radio : {pRb5G, pRb5G, pRb2D5G}) {
            nLastIdx = nDataCount = 5;
            const int launches = f.env->engineLaunches().size();
            QTest::mouseClick(radio, Qt::LeftButton);
            close(f.link);
            f.link = wsatest::takeOverLink();
            const QStringList log = f.env->engineLaunches();
            const bool five = radio == pRb5G;
            QVERIFY(log.size() == launches + 1 && log.last().endsWith(five ? "|-r 2" : "wsa_raw"));
            QVERIFY(s_band == int(five) && nLastIdx == -1 && nDataCount == 0);
            QCOMPARE(grid_rect_maximize.right(), five ? 505 : 473);
        }
    }

    void translateRelabels()
    {
        QTranslator german;
        QVERIFY(german.load(QStringLiteral(":/i18n/wsa_de.qm")));
        // The group-box title, then every button in the order it was built: the check boxes,
        // the radios, the four view buttons and the three mode buttons.
        const auto labels = [this] {
            QStringList out = {pGbFrequency->text()};
            for (QAbstractButton* b : f.w->findChildren<QAbstractButton*>())
                out << b->text();
            return out;
        };
        const QStringList english = labels();
        QCoreApplication::installTranslator(&german);
        f.w->translate();
        QCoreApplication::removeTranslator(&german);
        const QStringList shown = labels();
        // All take the translation but the mode buttons, which keep the labels they were built
        // with though the translation has them too.
        for (int i = 0; i < english.size(); ++i) {
            const QString de = german.translate("QObject", qPrintable(english[i]));
            QVERIFY2(de != english[i] && shown[i] == (i < 10 ? de : english[i]), qPrintable(de));
        }
        // A box open at that moment is relabelled with the probe error.
        QString title, text;
        wsatest::onNextModal([&](QWidget* box) {
            f.w->translate();
            title = f.w->m_pMsg->title();
            text = f.w->m_pMsg->text();
            box->close();
        });
        f.w->popMsgBox(f.w, "Information", "Reach the max recording time", QMessageBox::Ok);
        f.w->deleteMsgBox();
        QCOMPARE(title, QString("Error"));
        QVERIFY(text.startsWith("No WIFI SA USB is detected!\nPlease make sure"));
    }
};

QTEST_MAIN(TestControls)
#include "tst_controls.moc"
