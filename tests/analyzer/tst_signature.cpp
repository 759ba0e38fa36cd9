// The signature selection dialog: the choice it keeps, what OK reports and how it is laid out.
#include <QTest>

#include "cpushbutton.h"
#include "cradiobutton.h"
#include "signature.h"

class TestSignature : public QObject
{
    Q_OBJECT

    // Button labels in the order of their values.
    const QStringList labels = {"2g4And40Mhz",   "80211n",        "80211bg",        "AvTransmitter",
                                "Bluetooth",     "CordlessPhone", "MotoralaCanopy", "ErpOfdm",
                                "WirelessAudio", "ZigBee"};
    CWSASignature dialog{nullptr};

    // On the indicator: a radio button takes clicks only on its indicator and label.
    void click(const QString& label)
    {
        for (CRadioButton* b : dialog.findChildren<CRadioButton*>())
            if (b->text() == label)
                QTest::mouseClick(b, Qt::LeftButton, {}, {8, 8});
    }

private slots:
    void initTestCase() { dialog.show(); }

    void choiceReportedAndKept()
    {
        CPushButton* ok = dialog.findChild<CPushButton*>();
        QStringList events;
        connect(&dialog, &CWSASignature::signatureTypechange, this,
                [&](eSignatureType t) { events << QString::number(t); });
        connect(&dialog, &CWSASignature::signatureDialogClose, this, [&] { events << "close"; });
        // Before any click: the choice the program starts with.
        QTest::mouseClick(ok, Qt::LeftButton);
        click("ZigBee");
        click("Bluetooth");
        QTest::mouseClick(ok, Qt::LeftButton);
        disconnect(&dialog, nullptr, this, nullptr);
        QCOMPARE(events, (QStringList{"2", "close", "4", "close"}));

        // A click takes effect at once, each button its own value whatever came before; no sender
        // falls back to 80211bg.
        for (int value = 0; value < SIGNATURE_NUM; ++value) {
            click(labels[value]);
            QCOMPARE(int(CWSASignature::getSignatureType()), value);
        }
        QVERIFY(QMetaObject::invokeMethod(&dialog, "onBtnClicked"));
        QCOMPARE(CWSASignature::getSignatureType(), SIGNATURE_80211BG);

        // A new dialog shows the kept choice.
        click("WirelessAudio");
        CWSASignature next(nullptr);
        for (CRadioButton* b : next.findChildren<CRadioButton*>())
            QCOMPARE(b->isChecked(), b->text() == "WirelessAudio");
    }

    void readingOrderOnScreen()
    {
        QMap<QPair<int, int>, int> values; // keyed by (y, x) on screen
        for (CRadioButton* b : dialog.findChildren<CRadioButton*>())
            values[{b->mapTo(&dialog, QPoint()).y(), b->mapTo(&dialog, QPoint()).x()}] =
                int(labels.indexOf(b->text()));
        QCOMPARE(values.values(), (QList<int>{0, 5, 1, 6, 2, 7, 3, 8, 4, 9}));
    }
};

QTEST_MAIN(TestSignature)
#include "tst_signature.moc"
