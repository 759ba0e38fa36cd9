// The host widget library as the analyzer relies on it.
#include <QApplication>
#include <QImage>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

#include "cgroupboxwidget.h"
#include "ckeypadfactory.h"
#include "clabel.h"
#include "cmessagebox.h"
#include "cpushbutton.h"
#include "cradiobutton.h"
#include "cutilwindow.h"
#include "cwidget.h"
#include "cwidgetstyle.h"
#include "wsatestsupport.h"

namespace
{

QStringList buttonTexts(QWidget* modal)
{
    QStringList texts;
    for (QPushButton* b : modal->findChildren<QPushButton*>())
        texts << b->text();
    return texts;
}

} // namespace

class TestHostWidgets : public QObject
{
    Q_OBJECT

private slots:
    void messageBoxIsReusable();
    void keyPad_data();
    void keyPad();
    void groupBoxMakesItsRadiosExclusive();
    void utilWindowFrame();
    void borderIsPaintedInside_data();
    void borderIsPaintedInside();
    void labelAndButtonLooks();
    void styleRegionsAndPlacement();
};

void TestHostWidgets::messageBoxIsReusable()
{
    QWidget owner;
    auto* box = new CMessageBox(&owner);
    box->setFixedSize(450, 270);
    box->setButtonText(QMessageBox::Ok, "Fine");

    QString seenTitle, seenText;
    QStringList seenButtons;
    wsatest::onNextModal([&](QWidget* modal) {
        auto* shown = qobject_cast<CMessageBox*>(modal);
        QVERIFY(shown);
        seenTitle = shown->title();
        seenText = shown->text();
        seenButtons = buttonTexts(modal);
        QTest::keyClick(modal, Qt::Key_Escape);
    });
    QCOMPARE(box->information(&owner, "First", "one", QMessageBox::Ok | QMessageBox::Cancel),
             QMessageBox::NoButton);
    QCOMPARE(seenTitle, QString("First"));
    QCOMPARE(seenText, QString("one"));
    QCOMPARE(seenButtons, QStringList({"Fine", "Cancel"}));

    // Second use: new texts, and the buttons of the first use are gone.
    wsatest::onNextModal([&](QWidget* modal) {
        seenTitle = static_cast<CMessageBox*>(modal)->title();
        seenButtons = buttonTexts(modal);
        wsatest::answerModal("Yes");
    });
    QCOMPARE(box->information(&owner, "Second", "two", QMessageBox::Yes | QMessageBox::No),
             QMessageBox::Yes);
    QCOMPARE(seenTitle, QString("Second"));
    QCOMPARE(box->text(), QString("two"));
    QCOMPARE(seenButtons, QStringList({"Yes", "No"}));

    wsatest::answerModal("Cancel");
    QCOMPARE(box->information(&owner, "Third", "three", QMessageBox::Ok | QMessageBox::Cancel),
             QMessageBox::Cancel);
    QVERIFY(!box->isVisible());
}

void TestHostWidgets::keyPad_data()
{
    QTest::addColumn<QString>("initial");
    QTest::addColumn<int>("maxLength");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("press"); // empty: Escape
    QTest::addColumn<QString>("expected");
    QTest::addColumn<bool>("expectNull");

    QTest::newRow("entered") << "old" << 100 << "Lab 3 / bench"
                             << "OK"
                             << "Lab 3 / bench" << false;
    QTest::newRow("empty accepted") << "old" << 100 << ""
                                    << "OK"
                                    << "" << false;
    QTest::newRow("bounded length") << "" << 4 << "abcdefgh"
                                    << "OK"
                                    << "abcd" << false;
    QTest::newRow("cancel") << "old" << 100 << "new"
                            << "Cancel" << QString() << true;
    QTest::newRow("escape") << "old" << 100 << "new" << QString() << QString() << true;
}

void TestHostWidgets::keyPad()
{
    QFETCH(QString, initial);
    QFETCH(int, maxLength);
    QFETCH(QString, typed);
    QFETCH(QString, press);
    QFETCH(QString, expected);
    QFETCH(bool, expectNull);

    QWidget parent;
    QString seenInitial;
    wsatest::onNextModal([&](QWidget* modal) {
        auto* edit = modal->findChild<QLineEdit*>();
        QVERIFY(edit);
        seenInitial = edit->text();
        edit->clear();
        QTest::keyClicks(edit, typed);
        if (press.isEmpty()) {
            QTest::keyClick(modal, Qt::Key_Escape);
            return;
        }
        for (QPushButton* b : modal->findChildren<QPushButton*>()) {
            if (b->text() == press)
                b->click();
        }
    });
    const QString result = CKeyPadFactory::accessKeyPad(
        "Title", initial, CKeyPadFactory::KEYPAD_FULL, 0, maxLength, &parent);
    QCOMPARE(seenInitial, initial);
    QCOMPARE(result.isNull(), expectNull);
    QCOMPARE(result, expected);
}

void TestHostWidgets::groupBoxMakesItsRadiosExclusive()
{
    // Built as the analyzer builds it: every control a child of the window, then moved in.
    QWidget window;
    auto* box = new CGroupBoxWidget("Frequency", &window);
    auto* low = new CRadioButton("2.4 GHz Band", &window);
    auto* high = new CRadioButton("5 GHz Band", &window);
    auto* outside = new CRadioButton("elsewhere", &window);
    box->addWidget(low);
    box->addWidget(high);
    box->setFixedSize(130, 100);
    box->setText("Band");
    window.show();

    outside->setChecked(true);
    low->setChecked(true);
    QVERIFY(outside->isChecked()); // no longer a sibling of the two
    high->setChecked(true);
    QVERIFY(!low->isChecked());
    QVERIFY(box->isAncestorOf(low) && box->isAncestorOf(high));
    QCOMPARE(box->size(), QSize(130, 100));
    QCOMPARE(box->text(), QString("Band"));
}

void TestHostWidgets::utilWindowFrame()
{
    CUtilWindow window;
    window.setWindowSize(CUtilWindow::WINDOW_WORKING_AREA);
    QCOMPARE(window.geometry(), CWidgetStyle::getScreenRegion(CWidgetStyle::REGION_WORKING_AREA));

    auto* central = new CWidget;
    window.setCentralWidget(central);
    QCOMPARE(central->parentWidget(), &window);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QCOMPARE(central->geometry(), window.rect());

    // The analyzer passes its close request on as the window's signal.
    QSignalSpy spy(&window, &CUtilWindow::requestToClose);
    QPushButton source;
    QVERIFY(QObject::connect(&source, SIGNAL(clicked()), &window, SIGNAL(requestToClose())));
    source.click();
    QCOMPARE(spy.count(), 1);

    QPointer<QWidget> guard(central);
    window.closeWindow();
    QVERIFY(!window.isVisible());
    QVERIFY(guard);
    window.show();
    QVERIFY(central->isVisible());
}

void TestHostWidgets::borderIsPaintedInside_data()
{
    QTest::addColumn<QMargins>("border");
    QTest::newRow("tool box separator") << QMargins(1, 0, 0, 0);
    QTest::newRow("frame of two") << QMargins(2, 2, 2, 2);
    QTest::newRow("top and right") << QMargins(0, 3, 1, 0);
}

void TestHostWidgets::borderIsPaintedInside()
{
    QFETCH(QMargins, border);
    const QColor background = CWidgetStyle::getColor(CWidgetStyle::COLOR_BACKGROUND);
    CWidget widget;
    widget.resize(140, 400);
    widget.setBackgroundColor(background);
    widget.setBorderColor(Qt::white);
    widget.setBorderWidth(border.left(), border.top(), border.right(), border.bottom());
    const QImage image = widget.grab().toImage();
    QCOMPARE(image.size(), QSize(140, 400));

    const int w = image.width(), h = image.height();
    for (int x : {0, 1, 2, 3, 70, w - 4, w - 3, w - 2, w - 1}) {
        for (int y : {0, 1, 2, 3, 4, 200, h - 3, h - 2, h - 1}) {
            const bool inBorder = x < border.left() || y < border.top() ||
                                  x >= w - border.right() || y >= h - border.bottom();
            const QColor expected = inBorder ? QColor(Qt::white) : background;
            QVERIFY2(image.pixelColor(x, y) == expected,
                     qPrintable(QString("pixel %1,%2").arg(x).arg(y)));
        }
    }
}

void TestHostWidgets::labelAndButtonLooks()
{
    CLabel label("Signature Select");
    label.resize(200, 60);
    label.setBackgroundColor(Qt::green);
    label.setHeight(38);
    QCOMPARE(label.height(), 38);
    label.resize(200, 80); // a fixed height survives later resizing
    QCOMPARE(label.height(), 38);
    QCOMPARE(label.grab().toImage().pixelColor(1, 1), QColor(Qt::green));

    auto look = [](CPushButton::ButtonStyle style, QColor background) {
        CPushButton button;
        button.setText("Planar");
        button.setStyle(style, false);
        if (background.isValid())
            button.setBackgroundColor(background);
        button.resize(120, button.sizeHint().height());
        return button.grab().toImage();
    };
    const QImage view = look(CPushButton::STYLE_TOOL, QColor());
    const QImage mode = look(CPushButton::STYLE_MODE, QColor());
    QVERIFY(view != mode);
    // Seven buttons and their gaps must fit the 400-pixel tool box.
    QVERIFY(view.height() * 7 + 20 + 30 + 5 * 8 <= 400);
    const QImage red = look(CPushButton::STYLE_TOOL, Qt::red);
    QCOMPARE(red.pixelColor(red.width() / 2, 4), QColor(Qt::red));
}

void TestHostWidgets::styleRegionsAndPlacement()
{
    const QRect work = CWidgetStyle::getScreenRegion(CWidgetStyle::REGION_WORKING_AREA);
    const QRect tools = CWidgetStyle::getScreenRegion(CWidgetStyle::REGION_TOOL_BOX);
    const QRect screen = CWidgetStyle::getScreenRegion(CWidgetStyle::REGION_SCREEN);
    QCOMPARE(work, QRect(0, 60, 800, 400));
    QCOMPARE(tools, QRect(660, 60, 140, 400));
    QVERIFY(screen.contains(work));
    QCOMPARE(CWidgetStyle::getScreenRegion(CWidgetStyle::REGION_CONTENT).united(tools), work);

    // The views paint black and white; the window background must differ from both.
    const QColor background = CWidgetStyle::getColor(CWidgetStyle::COLOR_BACKGROUND);
    QVERIFY(background != QColor(Qt::black) && background != QColor(Qt::white));
    QVERIFY(background.lightnessF() < 0.3);
    QVERIFY(CWidgetStyle::getColor(CWidgetStyle::COLOR_DIALOG).isValid());

    QWidget widget;
    widget.resize(400, 200);
    CWidgetStyle::moveToScreenCenter(&widget);
    QCOMPARE(widget.geometry().center(), screen.center());
    CWidgetStyle::moveToWorkingAreaCenter(&widget);
    QCOMPARE(widget.geometry().center(), work.center());
    CWidgetStyle::moveToScreenCenter(nullptr); // tolerated
}

QTEST_MAIN(TestHostWidgets)
#include "tst_host_widgets.moc"
