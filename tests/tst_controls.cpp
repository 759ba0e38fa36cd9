// Window controls: the tool box, the trace check boxes, the band buttons, re-labelling in another
// language, the F1 key and where everything stands.
#include <QApplication>
#include <QTest>
#include <QTimer>
#include <QTranslator>
#include <memory>
#include <unistd.h>

#include "ccheckbox.h"
#include "cgroupboxwidget.h"
#include "cmessagebox.h"
#include "cpushbutton.h"
#include "cradiobutton.h"
#include "wsa_p.h"
#include "wsatestsupport.h"

namespace
{

const QRgb kYellow = qRgb(255, 255, 0);

int yellowPixels(const QImage& image, const QRect& area)
{
    int n = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x)
            n += image.pixel(x, y) == kYellow;
    }
    return n;
}

bool shown(const QWidget* widget)
{
    return widget->isVisible();
}

} // namespace

class TestControls : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void init();

    void viewButtons_data();
    void viewButtons();
    void modeButtons();
    void traceCheckBoxes();
    void currentTraceOnScreen();
    void bandButtonsRestartEngine();
    void translateRelabels();
    void translateRelabelsOpenMessageBox();
    void f1SavesInEveryMode_data();
    void f1SavesInEveryMode();
    void otherKeysDoNothing();
    void layout();

private:
    void press(QAbstractButton* button) { QTest::mouseClick(button, Qt::LeftButton); }
    // On the indicator: a check box takes clicks only on its indicator and label.
    void press(CCheckBox* box) { QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(6, 5)); }
    void enterSignatureMode();
    void retakeLink()
    {
        close(m_link);
        m_link = wsatest::takeOverLink();
    }
    // Presses the key and returns how many modal windows opened (each is cancelled).
    int modalsOpenedBy(Qt::Key key);

    std::unique_ptr<wsatest::AnalyzerEnv> m_env;
    CWsa* w = nullptr;
    int m_link = -1;
};

void TestControls::initTestCase()
{
    m_env = std::make_unique<wsatest::AnalyzerEnv>();
    w = new CWsa;
    // Our own link: engines are killed by name, so the fake engine may go at any time.
    m_link = wsatest::takeOverLink();
    QVERIFY(m_link >= 0);
    w->setSize(QSize(800, 400));
    w->show();
    QVERIFY(QTest::qWaitForWindowExposed(w));

    // Inspector mode, all views and traces, the 2.4 GHz band.
    QVERIFY(w->m_bInspector && !w->m_bFrequency && !w->m_bSignature);
    QVERIFY(!shown(pGbFrequency));
    QVERIFY(!shown(pBtSignatures));
    for (CCheckBox* box : {pCbCurrent, pCbAverage, pCbMax}) {
        QVERIFY(shown(box));
        QCOMPARE(box->checkState(), Qt::Checked);
    }
    QVERIFY(bCurrent && bAverage && bMax);
    QVERIFY(pRb2D5G->isChecked() && !pRb5G->isChecked());
    for (CPushButton* b : {pBtViewAll, pBtPlaner, pBtTopographic, pBtSpectral})
        QCOMPARE(b->buttonStyle(), CPushButton::STYLE_TOOL);
    for (CPushButton* b : {pBtInspector, pBtFrequency, pBtSignatures})
        QCOMPARE(b->buttonStyle(), CPushButton::STYLE_MODE);
}

void TestControls::cleanupTestCase()
{
    delete w;
    if (m_link >= 0)
        close(m_link);
    m_env.reset();
}

void TestControls::init()
{
    press(pBtInspector);
    press(pBtViewAll);
    QCoreApplication::processEvents();
}

void TestControls::enterSignatureMode()
{
    press(pBtTopographic);
    QCoreApplication::processEvents();
    press(pBtSignatures);
    QVERIFY(w->m_bSignature);
    // The selection dialog is not under test here.
    if (w->m_pSignature)
        w->deleteSignatureSetDia();
}

void TestControls::viewButtons_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<bool>("planar");
    QTest::addColumn<bool>("topographic");
    QTest::addColumn<bool>("spectral");
    QTest::addColumn<int>("cellHeight");
    QTest::addColumn<bool>("traceBoxes");
    QTest::newRow("View All") << "View All" << true << true << true << 10 << true;
    QTest::newRow("Planar") << "Planar" << true << false << false << 30 << true;
    QTest::newRow("Topographic") << "Topographic" << false << true << false << 30 << false;
    QTest::newRow("Spectral") << "Spectral" << false << false << true << 30 << false;
}

void TestControls::viewButtons()
{
    QFETCH(QString, button);
    QFETCH(bool, planar);
    QFETCH(bool, topographic);
    QFETCH(bool, spectral);
    QFETCH(int, cellHeight);
    QFETCH(bool, traceBoxes);
    const QHash<QString, CPushButton*> buttons = {{"View All", pBtViewAll},
                                                  {"Planar", pBtPlaner},
                                                  {"Topographic", pBtTopographic},
                                                  {"Spectral", pBtSpectral}};

    // From a single view with a cursor and a placed outline, in Frequency mode.
    press(pBtFrequency);
    press(button == "Topographic" ? pBtSpectral : pBtTopographic);
    w->m_bInspectorUpdate = true;
    w->m_bSignatureUpdate = true;
    w->m_bUpdate = false;

    press(buttons.value(button));
    QCOMPARE(bPlanarView, planar);
    QCOMPARE(bTopographicView, topographic);
    QCOMPARE(bSpectralView, spectral);
    QCOMPARE(nCellHeight, cellHeight);
    for (CCheckBox* box : {pCbCurrent, pCbAverage, pCbMax})
        QCOMPARE(shown(box), traceBoxes);
    QCOMPARE(shown(pBtSignatures), button == "Topographic");
    QVERIFY(!w->m_bInspectorUpdate);
    QVERIFY(!w->m_bSignatureUpdate);
    QVERIFY(!w->m_bSignature);
    QVERIFY(w->m_bUpdate);
    // The side-bar mode is not the view buttons' business.
    QVERIFY(w->m_bFrequency);
    QVERIFY(!w->m_bInspector);
    QVERIFY(shown(pGbFrequency));
}

void TestControls::modeButtons()
{
    QTest::mouseClick(w, Qt::LeftButton, {}, QPoint(200, 74));
    QVERIFY(w->m_bInspectorUpdate);

    press(pBtFrequency);
    QVERIFY(!w->m_bInspector && w->m_bFrequency && !w->m_bSignature);
    QVERIFY(shown(pGbFrequency));
    QVERIFY(w->m_bUpdate);

    press(pBtInspector);
    QVERIFY(w->m_bInspector && !w->m_bFrequency && !w->m_bSignature);
    QVERIFY(!shown(pGbFrequency));
    QVERIFY(!w->m_bInspectorUpdate);

    enterSignatureMode();
    QVERIFY(!w->m_bInspector && !w->m_bFrequency && w->m_bSignature);
    QVERIFY(!shown(pGbFrequency));
    QVERIFY(shown(pBtSignatures));

    // A placed outline goes with a mode change.
    w->m_bSignatureUpdate = true;
    press(pBtFrequency);
    QVERIFY(!w->m_bSignatureUpdate && !w->m_bSignature && w->m_bFrequency);
    QVERIFY(shown(pBtSignatures));

    // A view button in Signature mode leaves no side-bar mode until a mode button is pressed.
    enterSignatureMode();
    press(pBtPlaner);
    QVERIFY(!w->m_bInspector && !w->m_bFrequency && !w->m_bSignature);
    press(pBtViewAll);
    QVERIFY(!w->m_bInspector && !w->m_bFrequency);
    press(pBtInspector);
    QVERIFY(w->m_bInspector);
}

void TestControls::traceCheckBoxes()
{
    // The flags as the handler leaves them: the check box's own repaint paints the analyzer
    // beneath it, which already takes them before the click returns.
    bool refresh = false;
    bool redraw = false;
    const QList<std::pair<CCheckBox*, bool*>> boxes = {
        {pCbCurrent, &bCurrent}, {pCbAverage, &bAverage}, {pCbMax, &bMax}};
    QList<QMetaObject::Connection> probes;
    for (const auto& [box, flag] : boxes) {
        probes << connect(box, &QCheckBox::stateChanged, this, [&] {
            refresh = bRefreshPlanarView;
            redraw = w->m_bUpdate;
        });
    }
    auto pressAndSee = [&](CCheckBox* box) {
        bRefreshPlanarView = false;
        w->m_bUpdate = false;
        refresh = redraw = false;
        press(box);
        return refresh && redraw;
    };

    for (const auto& [box, flag] : boxes) {
        QVERIFY(pressAndSee(box));
        QCOMPARE(box->checkState(), Qt::Unchecked);
        QVERIFY(!*flag);
        for (const auto& [other, otherFlag] : boxes) {
            if (other != box)
                QVERIFY(*otherFlag);
        }
        QVERIFY(pressAndSee(box));
        QVERIFY(*flag);
    }

    // A partial state counts as checked.
    pCbAverage->setTristate(true);
    pCbAverage->setCheckState(Qt::PartiallyChecked);
    QVERIFY(bAverage);
    pCbAverage->setCheckState(Qt::Checked);
    pCbAverage->setTristate(false);
    for (const auto& c : probes)
        disconnect(c);
}

void TestControls::currentTraceOnScreen()
{
    w->initData();
    press(pBtPlaner);
    const QRect inside = grid_rect_maximize.adjusted(1, 1, -1, -1);
    // The yellow line in the frame that takes the next sweep.
    auto yellowAfterSweep = [&] {
        wsatest::sendRecord(m_link, wsatest::makeSweep(424, -60));
        w->wsaDataParse();
        return yellowPixels(w->grab().toImage(), inside);
    };
    const int before = yellowAfterSweep();
    QVERIFY2(before > 300, qPrintable(QString("yellow pixels: %1").arg(before)));

    press(pCbCurrent);
    QCOMPARE(yellowAfterSweep(), 0);

    press(pCbCurrent);
    QCOMPARE(yellowAfterSweep(), before);
}

void TestControls::bandButtonsRestartEngine()
{
    press(pBtFrequency);
    QTest::mouseClick(w, Qt::LeftButton, {}, QPoint(200, 74));
    QVERIFY(strInspector[0][0] != '\0');
    const int launches = m_env->engineLaunches().size();

    press(pRb5G);
    retakeLink();
    QCOMPARE(s_band, 1);
    QStringList log = m_env->engineLaunches();
    QCOMPARE(log.size(), launches + 1);
    QVERIFY2(log.last().endsWith("wsa_raw|-r 2"), qPrintable(log.last()));
    QCOMPARE(grid_rect_maximize.right(), 505);
    QCOMPARE(nLastIdx, -1);
    QCOMPARE(nDataCount, 0);
    QCOMPARE(strInspector[0][0], '\0');

    // The selected band again: a fresh start all the same.
    strInspector[0][0] = 'x';
    press(pRb5G);
    retakeLink();
    log = m_env->engineLaunches();
    QCOMPARE(log.size(), launches + 2);
    QVERIFY(log.last().endsWith("wsa_raw|-r 2"));
    QCOMPARE(strInspector[0][0], '\0');

    press(pRb2D5G);
    retakeLink();
    QCOMPARE(s_band, 0);
    log = m_env->engineLaunches();
    QCOMPARE(log.size(), launches + 3);
    QVERIFY(log.last().endsWith("wsa_raw"));
    QCOMPARE(grid_rect_maximize.right(), 473);
}

void TestControls::translateRelabels()
{
    QTranslator german;
    QVERIFY(german.load(QStringLiteral(":/i18n/wsa_de.qm")));
    const auto de = [&german](const char* text) { return german.translate("QObject", text); };
    // The test means something only where the translation differs.
    for (const char* text :
         {"View All", "Planar", "Topographic", "Spectral", "Current", "Average", "Max", "Frequency",
          "2.4 GHz Band", "5 GHz Band", "Inspector", "Signature"})
        QVERIFY2(!de(text).isEmpty() && de(text) != text, text);

    QCoreApplication::installTranslator(&german);
    w->translate();
    QCOMPARE(pBtViewAll->text(), de("View All"));
    QCOMPARE(pBtPlaner->text(), de("Planar"));
    QCOMPARE(pBtTopographic->text(), de("Topographic"));
    QCOMPARE(pBtSpectral->text(), de("Spectral"));
    QCOMPARE(pCbCurrent->text(), de("Current"));
    QCOMPARE(pCbAverage->text(), de("Average"));
    QCOMPARE(pCbMax->text(), de("Max"));
    QCOMPARE(pGbFrequency->text(), de("Frequency"));
    QCOMPARE(pRb2D5G->text(), de("2.4 GHz Band"));
    QCOMPARE(pRb5G->text(), de("5 GHz Band"));
    QCOMPARE(pBtInspector->text(), QString("Inspector"));
    QCOMPARE(pBtFrequency->text(), QString("Frequency"));
    QCOMPARE(pBtSignatures->text(), QString("Signature"));

    QCoreApplication::removeTranslator(&german);
    w->translate();
    QCOMPARE(pBtViewAll->text(), QString("View All"));
    QCOMPARE(pGbFrequency->text(), QString("Frequency"));
    QCOMPARE(pRb5G->text(), QString("5 GHz Band"));
}

void TestControls::translateRelabelsOpenMessageBox()
{
    QTranslator german;
    QVERIFY(german.load(QStringLiteral(":/i18n/wsa_de.qm")));
    QCoreApplication::installTranslator(&german);
    QString title;
    QString text;
    wsatest::onNextModal([&](QWidget* modal) {
        w->translate();
        title = w->m_pMsg ? w->m_pMsg->title() : QString();
        text = w->m_pMsg ? w->m_pMsg->text() : QString();
        modal->close();
    });
    w->popMsgBox(w, "Information", "something else", QMessageBox::Ok);
    w->deleteMsgBox();
    QCoreApplication::removeTranslator(&german);
    w->translate();

    QCOMPARE(title, german.translate("QObject", "Error"));
    const char* noProbe = "No WIFI SA USB is detected!\nPlease make sure your WIFI SA USB is "
                          "properly\nconnected to the unit.";
    QVERIFY(!german.translate("QObject", noProbe).isEmpty());
    QCOMPARE(text, german.translate("QObject", noProbe));
}

int TestControls::modalsOpenedBy(Qt::Key key)
{
    // A modal window opened by the key runs its loop inside the key handler; this timer answers
    // each one by closing it, so the count is complete when the key click returns.
    int opened = 0;
    QTimer closer;
    closer.setInterval(10);
    connect(&closer, &QTimer::timeout, [&opened] {
        QWidget* modal = QApplication::activeModalWidget();
        if (modal && modal->isVisible()) {
            ++opened;
            modal->close();
        }
    });
    closer.start();
    QTest::keyClick(w, key);
    return opened;
}

void TestControls::f1SavesInEveryMode_data()
{
    QTest::addColumn<QString>("mode");
    QTest::newRow("Inspector") << "Inspector";
    QTest::newRow("Frequency") << "Frequency";
    QTest::newRow("Signature") << "Signature";
    QTest::newRow("Spectral view") << "Spectral";
}

void TestControls::f1SavesInEveryMode()
{
    QFETCH(QString, mode);
    if (mode == "Frequency")
        press(pBtFrequency);
    else if (mode == "Signature")
        enterSignatureMode();
    else if (mode == "Spectral")
        press(pBtSpectral);
    QCOMPARE(modalsOpenedBy(Qt::Key_F1), 1);
}

void TestControls::otherKeysDoNothing()
{
    for (Qt::Key key : {Qt::Key_F2, Qt::Key_A, Qt::Key_Return, Qt::Key_Escape}) {
        const bool inspector = w->m_bInspector;
        QCOMPARE(modalsOpenedBy(key), 0);
        QCOMPARE(w->m_bInspector, inspector);
    }
}

void TestControls::layout()
{
    int x = 150;
    for (CCheckBox* box : {pCbCurrent, pCbAverage, pCbMax}) {
        QCOMPARE(box->parentWidget(), w);
        QCOMPARE(box->geometry(), QRect(x, 0, 100, 10));
        x += 100;
    }
    QCOMPARE(pGbFrequency->parentWidget(), w);
    QCOMPARE(pGbFrequency->geometry(), QRect(523, 274, 130, 100));
    QCOMPARE(pRb2D5G->window(), w);
    QVERIFY(pGbFrequency->isAncestorOf(pRb2D5G) && pGbFrequency->isAncestorOf(pRb5G));

    // The tool box: 140 wide at the right edge, over the full height, a white line on its left.
    QWidget* toolBox = pBtViewAll->parentWidget();
    QCOMPARE(toolBox->parentWidget(), w);
    QCOMPARE(toolBox->geometry(), QRect(w->width() - 140, 0, 140, w->height()));
    for (CPushButton* b :
         {pBtPlaner, pBtTopographic, pBtSpectral, pBtInspector, pBtFrequency, pBtSignatures})
        QCOMPARE(b->parentWidget(), toolBox);
    const QImage image = w->grab().toImage();
    const int edge = toolBox->x();
    for (int y : {5, 200, w->height() - 1})
        QCOMPARE(image.pixel(edge, y), qRgb(255, 255, 255));
    QVERIFY(image.pixel(edge + 1, 5) != qRgb(255, 255, 255));
    QVERIFY(image.pixel(edge - 1, 5) != qRgb(255, 255, 255));

    // Top down: 20 pixels, the view buttons, 30 more, the mode buttons; s is the spacing
    // between buttons.
    press(pBtTopographic);
    QCoreApplication::processEvents();
    const QList<CPushButton*> order = {pBtViewAll,   pBtPlaner,    pBtTopographic, pBtSpectral,
                                       pBtInspector, pBtFrequency, pBtSignatures};
    const int s = pBtPlaner->y() - pBtViewAll->geometry().bottom() - 1;
    QVERIFY(s >= 0);
    QCOMPARE(pBtViewAll->y(), 1 + 20);
    for (int i = 1; i < order.size(); ++i) {
        const int gap = order[i]->y() - order[i - 1]->geometry().bottom() - 1;
        QCOMPARE(gap, i == 4 ? s + 30 : s);
        QCOMPARE(order[i]->x(), pBtViewAll->x());
    }
}

QTEST_MAIN(TestControls)
#include "tst_controls.moc"
