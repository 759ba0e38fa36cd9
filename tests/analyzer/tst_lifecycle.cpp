// Analyzer lifecycle: probe look-up, refresh timer, message box, close request.
#include <QtTest>
#include <sys/ioctl.h>
#include <unistd.h>

#include "cmessagebox.h"
#include "cutilwindow.h"
#include "wsa_p.h"
#include "wsatestsupport.h"

class TestLifecycle : public QObject
{
    Q_OBJECT

private slots:
    // A bare analyzer has no host frame to connect to, and must not warn about it.
    void init() { QTest::failOnWarning(QRegularExpression("connect")); }

    void probeLookUp_data()
    {
        QTest::addColumn<QByteArray>("variable");
        QTest::addColumn<QString>("line");
        QTest::newRow("probe present") << QByteArray("WSA_HAL_UNUSED") << "";
        QTest::newRow("no bus") << QByteArray("WSA_HAL_NO_BUS") << "***get UsbBus error***\n";
        QTest::newRow("no device")
            << QByteArray("WSA_HAL_NO_DEVICE") << "***get UsbWifiSpy error***\n";
    }

    // Without the probe the analyzer goes on and starts its engine, which reports the probe.
    void probeLookUp()
    {
        QFETCH(QByteArray, variable);
        QFETCH(QString, line);
        wsatest::AnalyzerEnv env;
        const QString resultDir = env.path() + "/not/yet/there";
        qputenv("WSA_RESULT_DIR", resultDir.toLocal8Bit());
        qputenv(variable.constData(), "1");
        std::unique_ptr<CWsa> w;
        const QString out = wsatest::captureStdout([&w] { w.reset(new CWsa); });
        qunsetenv(variable.constData());
        QVERIFY2(out.contains(line) && out.count("***get") == int(!line.isEmpty()),
                 qPrintable(out));
        QCOMPARE(!w->m_pUsbWifiSpy, !line.isEmpty());
        QCOMPARE(env.engineLaunches().size(), 1);
        QVERIFY(sockFd >= 0 && QFileInfo(resultDir).isDir());
    }

    // Each tick takes exactly one record off the link, so the bytes waiting on it fall one
    // record at a time, about every 100 ms.
    void timerReadsOneRecordPerTick()
    {
        wsatest::AnalyzerEnv env;
        CWsa w;
        const int peer = wsatest::takeOverLink();
        for (int i = 0; i < 8; ++i)
            QVERIFY(wsatest::sendRecord(peer, wsatest::makeSweep(100, -60)));
        QElapsedTimer clock;
        clock.start();
        int waiting = 8 * SA_RECORD_SIZE;
        while (waiting > 3 * SA_RECORD_SIZE && clock.elapsed() < 5000) {
            QTest::qWait(5);
            int now = -1;
            ioctl(sockFd, FIONREAD, &now);
            QVERIFY(now == waiting || now == waiting - SA_RECORD_SIZE);
            waiting = now;
        }
        close(peer);
        QCOMPARE(waiting, 3 * SA_RECORD_SIZE);
        // The first tick is overdue (construction waits for the engine); four intervals follow.
        QVERIFY(clock.elapsed() >= 300);
    }

    // In the host's frame: a message box answered OK, then a close request.
    void inHostWindow()
    {
        wsatest::AnalyzerEnv env;
        CUtilWindow frame;
        auto* w = new CWsa(&frame);
        // Our end of the link: a lost engine would open a box of its own.
        const int peer = wsatest::takeOverLink();
        wsatest::answerModal("OK");
        QCOMPARE(w->popMsgBox(w, "Error", "text", QMessageBox::Ok), QMessageBox::Ok);
        QVERIFY(w->m_pMsg && w->m_pMsg->parentWidget() == w && !w->m_bUpdate);
        w->msgUpdate();
        QVERIFY(w->m_bUpdate);
        w->deleteMsgBox();
        QVERIFY(!w->m_pMsg);

        QSignalSpy spy(&frame, &CUtilWindow::requestToClose);
        emit w->sigClose();
        QCOMPARE(spy.count(), 1);
        close(peer);
    }
};

QTEST_MAIN(TestLifecycle)
#include "tst_lifecycle.moc"
