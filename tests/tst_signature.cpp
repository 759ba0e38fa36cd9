// The signature selection dialog: the choice it keeps, what OK reports and how it is laid out.
#include <QPointer>
#include <QSignalSpy>
#include <QTest>
#include <algorithm>
#include <memory>
#include <unistd.h>

#include "cpushbutton.h"
#include "cradiobutton.h"
#include "signature.h"
#include "wsa.h"
#include "wsatestsupport.h"

namespace
{

// Button labels in enumeration order.
const char* const kLabels[SIGNATURE_NUM] = {
    "2g4And40Mhz",   "80211n",         "80211bg", "AvTransmitter", "Bluetooth",
    "CordlessPhone", "MotoralaCanopy", "ErpOfdm", "WirelessAudio", "ZigBee"};

int valueOf(const QString& label)
{
    for (int v = 0; v < SIGNATURE_NUM; ++v) {
        if (label == QLatin1String(kLabels[v]))
            return v;
    }
    return -1;
}

CRadioButton* radio(QWidget* dialog, const QString& label)
{
    for (CRadioButton* b : dialog->findChildren<CRadioButton*>()) {
        if (b->text() == label)
            return b;
    }
    return nullptr;
}

QStringList checkedLabels(QWidget* dialog)
{
    QStringList labels;
    for (CRadioButton* b : dialog->findChildren<CRadioButton*>()) {
        if (b->isChecked())
            labels << b->text();
    }
    return labels;
}

void click(QWidget* dialog, const QString& label)
{
    CRadioButton* b = radio(dialog, label);
    QVERIFY2(b, qPrintable(label));
    QTest::mouseClick(b, Qt::LeftButton, {}, QPoint(8, b->height() / 2));
}

void pressOk(QWidget* dialog)
{
    CPushButton* ok = dialog->findChild<CPushButton*>();
    QVERIFY(ok);
    QCOMPARE(ok->text(), QString("OK"));
    QTest::mouseClick(ok, Qt::LeftButton);
}

std::unique_ptr<CWSASignature> openDialog()
{
    auto dialog = std::make_unique<CWSASignature>(nullptr);
    dialog->show();
    return dialog;
}

} // namespace

class TestSignature : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    // Must stay first: it sees the choice as the program starts with it.
    void firstDialogReportsDefaultThenCloses();
    void clickChangesChoiceAtOnceAndOkReportsLast();
    void eachButtonSelectsItsValue_data();
    void eachButtonSelectsItsValue();
    void unknownSenderFallsBackToDefault();
    void readingOrderOnScreen();
    void dialogFrame();
    void newDialogShowsKeptChoice();

private:
    std::unique_ptr<wsatest::AnalyzerEnv> m_env;
    int m_link = -1;
    CWsa* m_wsa = nullptr;
};

void TestSignature::initTestCase()
{
    m_env = std::make_unique<wsatest::AnalyzerEnv>();
    m_wsa = new CWsa;
    // A silent link of our own: no engine message can open a box in the middle of a test.
    m_link = wsatest::takeOverLink();
    QVERIFY(m_link >= 0);
}

void TestSignature::cleanupTestCase()
{
    delete m_wsa;
    close(m_link);
    m_env.reset();
}

void TestSignature::firstDialogReportsDefaultThenCloses()
{
    auto dialog = openDialog();
    QCOMPARE(checkedLabels(dialog.get()), QStringList{"80211bg"});
    QStringList events;
    connect(dialog.get(), &CWSASignature::signatureTypechange, this,
            [&](eSignatureType t) { events << QString("type %1").arg(t); });
    connect(dialog.get(), &CWSASignature::signatureDialogClose, this, [&] { events << "close"; });
    pressOk(dialog.get());
    QCOMPARE(events, (QStringList{"type 2", "close"}));
    QVERIFY(dialog->isVisible()); // closing is the owner's business
}

void TestSignature::clickChangesChoiceAtOnceAndOkReportsLast()
{
    auto dialog = openDialog();
    QSignalSpy spy(dialog.get(), &CWSASignature::signatureTypechange);
    click(dialog.get(), "ZigBee");
    QCOMPARE(CWSASignature::getSignatureType(), SIGNATURE_ZIGBEE);
    click(dialog.get(), "Bluetooth");
    QCOMPARE(CWSASignature::getSignatureType(), SIGNATURE_BLUETOOTH);
    QCOMPARE(checkedLabels(dialog.get()), QStringList{"Bluetooth"});
    QCOMPARE(spy.count(), 0);
    pressOk(dialog.get());
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).value<eSignatureType>(), SIGNATURE_BLUETOOTH);
}

void TestSignature::eachButtonSelectsItsValue_data()
{
    QTest::addColumn<int>("value");
    for (int v = 0; v < SIGNATURE_NUM; ++v)
        QTest::newRow(kLabels[v]) << v;
}

void TestSignature::eachButtonSelectsItsValue()
{
    QFETCH(int, value);
    auto dialog = openDialog();
    // Start from a value that no row of the table selects by accident.
    click(dialog.get(), kLabels[value == SIGNATURE_ZIGBEE ? 0 : SIGNATURE_ZIGBEE]);
    click(dialog.get(), kLabels[value]);
    QCOMPARE(int(CWSASignature::getSignatureType()), value);
}

void TestSignature::unknownSenderFallsBackToDefault()
{
    auto dialog = openDialog();
    click(dialog.get(), "ZigBee");
    QVERIFY(QMetaObject::invokeMethod(dialog.get(), "onBtnClicked"));
    QCOMPARE(CWSASignature::getSignatureType(), SIGNATURE_80211BG);

    // A radio button of another window is none of the ten either.
    click(dialog.get(), "ZigBee");
    CRadioButton stranger("ZigBee");
    connect(&stranger, SIGNAL(clicked()), dialog.get(), SLOT(onBtnClicked()));
    stranger.click();
    QCOMPARE(CWSASignature::getSignatureType(), SIGNATURE_80211BG);
}

void TestSignature::readingOrderOnScreen()
{
    auto dialog = openDialog();
    QVERIFY(QTest::qWaitForWindowExposed(dialog.get()));
    QList<CRadioButton*> buttons = dialog->findChildren<CRadioButton*>();
    QCOMPARE(buttons.size(), int(SIGNATURE_NUM));
    auto at = [&](CRadioButton* b) { return b->mapTo(dialog.get(), QPoint(0, 0)); };
    std::sort(buttons.begin(), buttons.end(), [&](CRadioButton* a, CRadioButton* b) {
        const QPoint pa = at(a), pb = at(b);
        return pa.y() != pb.y() ? pa.y() < pb.y() : pa.x() < pb.x();
    });
    QList<int> order;
    for (CRadioButton* b : buttons)
        order << valueOf(b->text());
    QCOMPARE(order, (QList<int>{0, 5, 1, 6, 2, 7, 3, 8, 4, 9}));
    for (CRadioButton* b : buttons)
        QVERIFY(dialog->rect().contains(QRect(at(b), b->size())));
}

void TestSignature::dialogFrame()
{
    auto dialog = openDialog();
    QVERIFY(QTest::qWaitForWindowExposed(dialog.get()));
    QCOMPARE(dialog->size(), QSize(450, 300));
    QVERIFY(dialog->windowFlags().testFlag(Qt::FramelessWindowHint));
    QCOMPARE(dialog->windowType(), Qt::Dialog);
    QCOMPARE(dialog->windowModality(), Qt::ApplicationModal);
    QCOMPARE(QApplication::activeModalWidget(), dialog.get());
    // The title is a green band across the top, inside the 2-px border (left of its centred text).
    const QImage image = dialog->grab().toImage();
    QCOMPARE(image.pixelColor(12, 20), QColor(Qt::green));
    QCOMPARE(image.pixelColor(1, 10), dialog->backgroundColor());
}

void TestSignature::newDialogShowsKeptChoice()
{
    {
        auto first = openDialog();
        click(first.get(), "WirelessAudio");
    }
    // Opened the way the analyzer opens it, answered by its OK.
    m_wsa->createSignatureSetDia();
    QPointer<CWSASignature> dialog = m_wsa->m_pSignature;
    QVERIFY(dialog);
    QCOMPARE(checkedLabels(dialog), QStringList{"WirelessAudio"});
    pressOk(dialog);
    QCOMPARE(m_wsa->m_eSignatureType, SIGNATURE_WIRELESSAUDIO);
    QVERIFY(!m_wsa->m_pSignature);
}

QTEST_MAIN(TestSignature)
#include "tst_signature.moc"
