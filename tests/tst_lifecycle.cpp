// Analyzer lifecycle: construction, probe look-up, refresh timer, message box, close request.
#include <QAbstractButton>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QSignalSpy>
#include <QtTest>
#include <memory>
#include <sys/ioctl.h>
#include <unistd.h>

#include "cmessagebox.h"
#include "cutilwindow.h"
#include "cwidgetstyle.h"
#include "wsa_p.h"
#include "wsatestsupport.h"

using wsatest::AnalyzerEnv;
using wsatest::captureStdout;

namespace
{

// Records, for each tick of the analyzer's refresh timer, when it came and how many bytes were
// still waiting on the engine link just before the tick was handled.
class TickRecorder : public QObject
{
public:
    QList<qint64> at;
    QList<int> waiting;
    QElapsedTimer clock;
    int timerId = -1;

    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() != QEvent::Timer)
            return false;
        const int id = static_cast<QTimerEvent*>(event)->timerId();
        if (timerId == -1)
            timerId = id;
        if (id == timerId) {
            int bytes = -1;
            ioctl(sockFd, FIONREAD, &bytes);
            at << clock.elapsed();
            waiting << bytes;
        }
        return false;
    }
};

} // namespace

class TestLifecycle : public QObject
{
    Q_OBJECT

private slots:
    void constructionSetsInitialState();
    void probeLookUp_data();
    void probeLookUp();
    void timerReadsOneRecordPerTick();
    void messageBoxAnsweredOk();
    void closeRequestReachesHostWindow();
};

void TestLifecycle::constructionSetsInitialState()
{
    AnalyzerEnv env;
    const QString resultDir = env.path() + "/not/yet/there";
    qputenv("WSA_RESULT_DIR", resultDir.toLocal8Bit());
    // Leftovers of an earlier analyzer that the constructor must reset.
    s_band = 1;
    nMinDraw = nMaxDraw = 0;
    bPlanarView = bSpectralView = bTopographicView = false;
    bCurrent = bAverage = bMax = bInspector = bFrequency = false;
    bSignatures = bRefreshPlanarView = true;

    std::unique_ptr<CWsa> w;
    const QString out = captureStdout([&w] { w.reset(new CWsa); });
    QVERIFY(!out.contains("***get"));
    QVERIFY(w->m_pUsbWifiSpy);
    QVERIFY(w->m_pE2promserv);
    QVERIFY(!w->m_pMsg && !w->m_pSignature);
    QVERIFY(w->m_bInspector);
    QVERIFY(!w->m_bInspectorUpdate && !w->m_bFrequency && !w->m_bSignature);
    QVERIFY(!w->m_bSignatureUpdate && !w->m_bUpdate);
    QCOMPARE(w->m_eSignatureType, SIGNATURE_80211BG);
    QCOMPARE(s_band, 0);
    QCOMPARE(nMinDraw, -110);
    QCOMPARE(nMaxDraw, -10);
    QVERIFY(bPlanarView && bSpectralView && bTopographicView && !bRefreshPlanarView);
    QVERIFY(bCurrent && bAverage && bMax && bInspector && bFrequency && !bSignatures);
    QCOMPARE(w->focusPolicy(), Qt::StrongFocus);
    QCOMPARE(w->backgroundColor(), CWidgetStyle::getColor(CWidgetStyle::COLOR_BACKGROUND));
    QVERIFY(QFileInfo(resultDir).isDir());
    QVERIFY(sockFd >= 0);
}

void TestLifecycle::probeLookUp_data()
{
    QTest::addColumn<QByteArray>("variable");
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("absentLine");
    QTest::newRow("no bus") << QByteArray("WSA_HAL_NO_BUS") << "***get UsbBus error***\n"
                            << "***get UsbWifiSpy error***";
    QTest::newRow("no device") << QByteArray("WSA_HAL_NO_DEVICE") << "***get UsbWifiSpy error***\n"
                               << "***get UsbBus error***";
}

// Without the probe the analyzer still starts its engine, which reports the probe itself.
void TestLifecycle::probeLookUp()
{
    QFETCH(QByteArray, variable);
    QFETCH(QString, line);
    QFETCH(QString, absentLine);
    AnalyzerEnv env;
    qputenv(variable.constData(), "1");
    std::unique_ptr<CWsa> w;
    const QString out = captureStdout([&w] { w.reset(new CWsa); });
    qunsetenv(variable.constData());
    QVERIFY2(out.contains(line), qPrintable(out));
    QVERIFY(!out.contains(absentLine));
    QVERIFY(!w->m_pUsbWifiSpy);
    QCOMPARE(env.engineLaunches().size(), 1);
    QVERIFY(sockFd >= 0);
}

void TestLifecycle::timerReadsOneRecordPerTick()
{
    AnalyzerEnv env;
    CWsa w;
    const int peer = wsatest::takeOverLink();
    QVERIFY(peer >= 0);
    TickRecorder ticks;
    const int records = 8;
    for (int i = 0; i < records; ++i)
        QVERIFY(wsatest::sendRecord(peer, wsatest::makeSweep(100, -60)));
    ticks.clock.start();
    w.installEventFilter(&ticks);
    QTRY_VERIFY_WITH_TIMEOUT(ticks.at.size() >= 6, 5000);
    w.removeEventFilter(&ticks);
    for (int k = 0; k < 6; ++k)
        QCOMPARE(ticks.waiting[k], ticks.waiting[0] - k * SA_RECORD_SIZE);
    // Five intervals of 100 ms; coarse timers may fire up to 5 % early.
    QVERIFY(ticks.at[5] - ticks.at[0] >= 450);
    close(peer);
}

void TestLifecycle::messageBoxAnsweredOk()
{
    AnalyzerEnv env;
    CWsa w;
    QWidget* shown = nullptr;
    QSize size;
    QString title;
    auto answer = [&](QWidget* modal) {
        shown = modal;
        size = modal->size();
        title = static_cast<CMessageBox*>(modal)->title();
        for (QAbstractButton* b : modal->findChildren<QAbstractButton*>())
            if (b->text() == "OK")
                b->click();
    };

    wsatest::onNextModal(answer);
    QCOMPARE(w.popMsgBox(&w, "Error", "first", QMessageBox::Ok), QMessageBox::Ok);
    QVERIFY(shown && shown == w.m_pMsg);
    QCOMPARE(shown->parentWidget(), &w);
    QCOMPARE(size, QSize(450, 270));
    QCOMPARE(title, QStringLiteral("Error"));

    // An existing box is used again as it is; the callers delete it after each answer.
    CMessageBox* const first = w.m_pMsg;
    wsatest::onNextModal(answer);
    QCOMPARE(w.popMsgBox(&w, "Information", "second", QMessageBox::Ok), QMessageBox::Ok);
    QCOMPARE(w.m_pMsg, first);

    QVERIFY(!w.m_bUpdate);
    w.msgUpdate();
    QVERIFY(w.m_bUpdate);
    QPointer<CMessageBox> box(first);
    w.deleteMsgBox();
    QVERIFY(!w.m_pMsg && box.isNull());
}

void TestLifecycle::closeRequestReachesHostWindow()
{
    AnalyzerEnv env;
    {
        CUtilWindow frame;
        auto* w = new CWsa(&frame);
        QSignalSpy spy(&frame, &CUtilWindow::requestToClose);
        emit w->sigClose();
        QCOMPARE(spy.count(), 1);
    }
    // Parents without the signal get no connection, and no warning about a missing one.
    QTest::failOnWarning(QRegularExpression("connect"));
    {
        CWsa bare;
    }
    QWidget plain;
    delete new CWsa(&plain);
}

QTEST_MAIN(TestLifecycle)
#include "tst_lifecycle.moc"
