// The host widget library as the analyzer relies on it.
#include <QtTest>
#include <QtWidgets>

#include "cgroupboxwidget.h"
#include "ckeypadfactory.h"
#include "cmessagebox.h"
#include "cradiobutton.h"
#include "cutilwindow.h"
#include "cwidgetstyle.h"
#include "wsatestsupport.h"

class TestHostWidgets : public QObject
{
    Q_OBJECT

private slots:
    void modalsReturnWhatWasPressed();
    void frameAndControls();
};

void TestHostWidgets::modalsReturnWhatWasPressed()
{
    using Box = QMessageBox;
    QWidget owner;
    CMessageBox box(&owner);
    wsatest::onNextModal([](QWidget* modal) { QTest::keyClick(modal, Qt::Key_Escape); });
    QCOMPARE(box.information(&owner, "First", "one", Box::Ok | Box::Cancel), Box::NoButton);
    wsatest::answerModal("No");
    QCOMPARE(box.information(&owner, "Second", "two", Box::Yes | Box::No), Box::No);
    // Reused: the second question's texts and only its buttons.
    QCOMPARE(box.title() + '|' + box.text(), QString("Second|two"));
    QCOMPARE(box.findChildren<QPushButton*>().size(), 2);

    // An accepted empty entry must stay distinguishable from a cancelled one.
    const QPair<QString, QString> entries[] = {{"Lab 3", "OK"}, {"", "OK"}, {"new", "Cancel"}};
    for (const auto& [typed, button] : entries) {
        wsatest::onNextModal([text = typed, button = button](QWidget* modal) {
            modal->findChild<QLineEdit*>()->setText(text);
            wsatest::answerModal(button);
        });
        const QString result = CKeyPadFactory::accessKeyPad(
            "Name", "old", CKeyPadFactory::KEYPAD_FULL, 0, 100, &owner);
        QCOMPARE(result.isNull(), button == "Cancel");
        QCOMPARE(result, button == "OK" ? typed : QString());
    }
}

// The analyzer's frame: a utility window over the working area with its content filling it, and
// the tool box with its band group and one-pixel white separator on the host background.
void TestHostWidgets::frameAndControls()
{
    const QColor background = CWidgetStyle::getColor(CWidgetStyle::COLOR_BACKGROUND);
    QVERIFY(background != Qt::black && background != Qt::white); // the views paint those
    QCOMPARE(CWidgetStyle::getScreenRegion(CWidgetStyle::REGION_TOOL_BOX),
             QRect(660, 60, 140, 400));
    CUtilWindow window;
    window.setWindowSize(CUtilWindow::WINDOW_WORKING_AREA);
    QCOMPARE(window.geometry(), QRect(0, 60, 800, 400));
    QCOMPARE(CWidgetStyle::getScreenRegion(CWidgetStyle::REGION_WORKING_AREA), window.geometry());
    auto* central = new CWidget;
    window.setCentralWidget(central);
    auto* tools = new CWidget(central);
    tools->setGeometry(660, 0, 140, 400);
    tools->setBackgroundColor(background);
    tools->setBorderColor(Qt::white);
    tools->setBorderWidth(1, 0, 0, 0);
    // Built as the analyzer builds it: controls created in the tool box, then moved into the group.
    auto* group = new CGroupBoxWidget("Band", tools);
    auto* low = new CRadioButton("2.4 GHz", tools);
    auto* high = new CRadioButton("5 GHz", tools);
    auto* outside = new CRadioButton("elsewhere", tools);
    group->addWidget(low);
    group->addWidget(high);
    group->setFixedSize(130, 100);
    window.show();
    QCOMPARE(central->geometry(), window.rect());
    QCOMPARE(group->size(), QSize(130, 100));
    for (QRadioButton* radio : {outside, low, high})
        radio->click();
    QVERIFY(outside->isChecked() && !low->isChecked());
    const QImage image = tools->grab().toImage();
    QCOMPARE(image.pixelColor(0, 399), QColor(Qt::white));
    QVERIFY(image.pixelColor(1, 0) == background && image.pixelColor(139, 399) == background);

    QSignalSpy spy(&window, &CUtilWindow::requestToClose);
    QVERIFY(QObject::connect(outside, SIGNAL(clicked()), &window, SIGNAL(requestToClose())));
    outside->click();
    QCOMPARE(spy.count(), 1);
    window.closeWindow();
    QVERIFY(!window.isVisible());
    window.show();
    QVERIFY(central->isVisible());
}

QTEST_MAIN(TestHostWidgets)
#include "tst_host_widgets.moc"
