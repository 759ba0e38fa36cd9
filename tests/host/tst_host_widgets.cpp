// The host widget library as the analyzer relies on it.
#include <QtTest>
#include <QtWidgets>

#include "ccheckbox.h"
#include "cgroupboxwidget.h"
#include "ckeypadfactory.h"
#include "cmessagebox.h"
#include "cradiobutton.h"
#include "cutilwindow.h"
#include "cwidgetstyle.h"
#include "wsatestsupport.h"

namespace
{

// Relative luminance and contrast ratio as WCAG 2 defines them.
double luminance(const QColor& c)
{
    auto channel = [](double v) {
        return v <= 0.03928 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * channel(c.redF()) + 0.7152 * channel(c.greenF()) + 0.0722 * channel(c.blueF());
}

double contrast(const QColor& a, const QColor& b)
{
    const double la = luminance(a), lb = luminance(b);
    return (qMax(la, lb) + 0.05) / (qMin(la, lb) + 0.05);
}

} // namespace

class TestHostWidgets : public QObject
{
    Q_OBJECT

private slots:
    void modalsReturnWhatWasPressed()
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
    void frameAndControls()
    {
        const QColor background = CWidgetStyle::getColor(CWidgetStyle::COLOR_BACKGROUND);
        QVERIFY(background != Qt::black && background != Qt::white); // the views paint those
        QCOMPARE(CWidgetStyle::getScreenRegion(CWidgetStyle::REGION_TOOL_BOX),
                 QRect(660, 60, 140, 400));
        CUtilWindow window;
        window.setWindowSize(CUtilWindow::WINDOW_WORKING_AREA);
        QCOMPARE(window.geometry(), QRect(0, 60, 800, 400));
        QCOMPARE(CWidgetStyle::getScreenRegion(CWidgetStyle::REGION_WORKING_AREA),
                 window.geometry());
        auto* central = new CWidget;
        window.setCentralWidget(central);
        auto* tools = new CWidget(central);
        tools->setGeometry(660, 0, 140, 400);
        tools->setBackgroundColor(background);
        tools->setBorderColor(Qt::white);
        tools->setBorderWidth(1, 0, 0, 0);
        // Built as the analyzer builds it: controls created in the tool box, then moved into the
        // group.
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

        window.closeWindow();
        QVERIFY(!window.isVisible());
        window.show();
        QVERIFY(central->isVisible());
    }

    // The views draw their legend texts in black and their axis labels in white straight onto the
    // host background; the host's own labels use its foreground colour.
    void textLegibleOnBackground()
    {
        const QColor background = CWidgetStyle::getColor(CWidgetStyle::COLOR_BACKGROUND);
        const QColor foreground = CWidgetStyle::getColor(CWidgetStyle::COLOR_FOREGROUND);
        for (const QColor& text : {QColor(Qt::black), QColor(Qt::white), foreground})
            QVERIFY2(contrast(text, background) >= 4.5,
                     qPrintable(text.name() + " on " + background.name()));
    }

    void checkBoxTickVisible_data()
    {
        QTest::addColumn<Qt::CheckState>("state");
        QTest::addColumn<int>("minDark");
        QTest::addColumn<int>("maxDark");
        QTest::newRow("unchecked") << Qt::Unchecked << 0 << 0;
        QTest::newRow("partial") << Qt::PartiallyChecked << 6 << 30;
        QTest::newRow("checked") << Qt::Checked << 10 << 40;
    }

    // A trace switch as the analyzer builds it (100 x 10, no border) on the host background: a
    // light box that stands out, and inside it a dark mark that stands out from the box.
    void checkBoxTickVisible()
    {
        QFETCH(Qt::CheckState, state);
        QFETCH(int, minDark);
        QFETCH(int, maxDark);
        CWidget strip;
        strip.setBackgroundColor(CWidgetStyle::getColor(CWidgetStyle::COLOR_BACKGROUND));
        strip.resize(200, 10);
        auto* box = new CCheckBox("Current", &strip);
        box->setBorderVisible(false);
        box->setTristate(true);
        box->setGeometry(0, 0, 100, 10);
        box->setCheckState(state);
        strip.show();
        QVERIFY(QTest::qWaitForWindowExposed(&strip));
        const QImage image = strip.grab().toImage();
        const QRect indicator = box->indicatorRect();
        QVERIFY(box->rect().contains(indicator) && indicator.height() >= 9);
        const QRect inside = indicator.adjusted(1, 1, -1, -1);
        const QColor fill = image.pixelColor(inside.topLeft());
        QVERIFY(contrast(fill, CWidgetStyle::getColor(CWidgetStyle::COLOR_BACKGROUND)) >= 3.0);
        int dark = 0;
        QSet<int> columns, rows;
        for (int y = inside.top(); y <= inside.bottom(); ++y) {
            for (int x = inside.left(); x <= inside.right(); ++x) {
                if (contrast(image.pixelColor(x, y), fill) >= 4.5) {
                    ++dark;
                    columns.insert(x);
                    rows.insert(y);
                }
            }
        }
        QVERIFY2(dark >= minDark && dark <= maxDark, qPrintable(QString::number(dark)));
        // A tick spans the box; a dash spans its width.
        if (state == Qt::Checked)
            QVERIFY(columns.size() >= inside.width() - 3 && rows.size() >= inside.height() - 3);
        if (state == Qt::PartiallyChecked)
            QVERIFY(columns.size() >= inside.width() - 3 && rows.size() <= 3);
    }
};

QTEST_MAIN(TestHostWidgets)
#include "tst_host_widgets.moc"
