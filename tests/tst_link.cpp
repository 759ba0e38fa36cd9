// Engine link: records fed tick by tick through a socketpair, their effect on the store, the
// boxes and console lines they cause, and records that are cut, malformed or never end.
#include <QtTest>
#include <cstring>
#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include "cmessagebox.h"
#include "cpushbutton.h"
#include "cutilwindow.h"
#include "link.h"
#include "wsa_p.h"
#include "wsatestsupport.h"

namespace
{

const QString kProbeGoneText = QStringLiteral("No WIFI SA USB is detected!\nPlease make sure your "
                                              "WIFI SA USB is properly\nconnected to the unit.");

// Keeps the refresh timer from reading records behind the test's back.
class TimerBlocker : public QObject
{
protected:
    bool eventFilter(QObject*, QEvent* event) override { return event->type() == QEvent::Timer; }
};

// Counts the analyzer's paint events and the area they cover.
class PaintWatch : public QObject
{
public:
    int count = 0;
    QRegion region;

protected:
    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::Paint) {
            ++count;
            region += static_cast<QPaintEvent*>(event)->region();
        }
        return false;
    }
};

// While it exists, answers every modal box that opens, by its OK button or by closing it, and
// notes title and text.
class BoxWatch : public QObject
{
public:
    enum Answer { ClickOk, CloseBox };
    explicit BoxWatch(Answer answer = ClickOk) : m_answer(answer)
    {
        connect(&m_timer, &QTimer::timeout, this, &BoxWatch::poll);
        m_timer.start(10);
    }
    QStringList titles;
    QStringList texts;

private:
    void poll()
    {
        QWidget* modal = QApplication::activeModalWidget();
        if (!modal || !modal->isVisible())
            return;
        auto* box = qobject_cast<CMessageBox*>(modal);
        titles << (box ? box->title() : modal->windowTitle());
        texts << (box ? box->text() : QString());
        if (m_answer == ClickOk) {
            for (QAbstractButton* b : modal->findChildren<QAbstractButton*>()) {
                if (b->text() == QLatin1String("OK")) {
                    b->click();
                    return;
                }
            }
        }
        modal->close();
    }
    Answer m_answer;
    QTimer m_timer;
};

stSweep patternSweep(int n)
{
    stSweep s = wsatest::makeSweep(n, 0);
    for (int i = 0; i < SA_MAX_SAMPLES; ++i)
        s.data[i] = -5 - (i * 7) % 110; // also outside the display range: stored unclamped
    return s;
}

bool sameSamples(const int* a, const int* b, int n)
{
    return std::memcmp(a, b, sizeof(int) * size_t(n)) == 0;
}

} // namespace

class TestLink : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void init();

    void sweepIn24GhzIsStoredUnchanged();
    void sweepIn5GhzIsReducedPairwise();
    void sampleCounts_data();
    void sampleCounts();
    void repaintRequests();
    void recordingLimitRestartsTheRecording();
    void configured_data();
    void configured();
    void probeGone_data();
    void probeGone();
    void unknownTypeIsOnlyLogged();
    void partialRecordsAreCollected();
    void burstIsTakenOnePerTick();
    void randomRecordsStayInBounds();
    void closedConnection_data();
    void closedConnection();
    void foreignDescriptorIsNotClosed();
    void realEngineStreamsSweeps();

private:
    void tick() { m_wsa->wsaDataParse(); }
    wsatest::AnalyzerEnv* m_env = nullptr;
    CUtilWindow* m_window = nullptr;
    CWsa* m_wsa = nullptr;
    TimerBlocker m_blocker;
    int m_peer = -1;
};

void TestLink::initTestCase()
{
    m_env = new wsatest::AnalyzerEnv;
    m_window = new CUtilWindow;
    m_wsa = new CWsa(m_window);
    m_wsa->installEventFilter(&m_blocker);
}

void TestLink::cleanupTestCase()
{
    if (m_peer >= 0)
        close(m_peer);
    delete m_window;
    delete m_env;
}

void TestLink::init()
{
    s_band = 0;
    if (m_peer >= 0)
        close(m_peer);
    m_peer = wsatest::takeOverLink();
    QVERIFY(m_peer >= 0);
    m_wsa->initData();
    m_wsa->m_bSignature = false;
    m_wsa->m_bUpdate = false;
}

void TestLink::sweepIn24GhzIsStoredUnchanged()
{
    maxData.num_samples = 999; // left by the previous recording
    const stSweep sent = patternSweep(423);
    QVERIFY(wsatest::sendRecord(m_peer, sent));
    tick();
    QCOMPARE(nLastIdx, 0);
    QCOMPARE(nDataCount, 1);
    QVERIFY(bReceivedData);
    QCOMPARE(historyData[0].type, char(SA_MSG_SWEEP));
    QCOMPARE(historyData[0].num_samples, 423);
    QVERIFY(sameSamples(historyData[0].data, sent.data, 423));
    QCOMPARE(currentData.num_samples, 423);
    QCOMPARE(currentDatatmp.num_samples, 423);
    QVERIFY(sameSamples(currentDatatmp.data, sent.data, 423));
    // The first sweep seeds the maximum whole, count included.
    QCOMPARE(maxData.num_samples, 423);
    QVERIFY(sameSamples(maxData.data, sent.data, SA_MAX_SAMPLES));

    QVERIFY(wsatest::sendRecord(m_peer, wsatest::makeSweep(300, -5)));
    tick();
    QCOMPARE(nLastIdx, 1);
    QCOMPARE(nDataCount, 2);
    QCOMPARE(historyData[1].num_samples, 300);
    QVERIFY(sameSamples(historyData[0].data, sent.data, 423));
    // Later sweeps reach the maximum only through the statistics of their paint.
    QCOMPARE(maxData.num_samples, 423);
    QVERIFY(sameSamples(maxData.data, sent.data, SA_MAX_SAMPLES));
}

void TestLink::sweepIn5GhzIsReducedPairwise()
{
    s_band = 1;
    m_wsa->initData();
    stSweep raw = wsatest::makeSweep(SA_MAX_SAMPLES, -1); // the unused tail is the strongest
    for (int i = 0; i < 452; ++i) {
        raw.data[2 * i] = -60 - i % 30;
        raw.data[2 * i + 1] = -60 - (i + 15) % 30;
    }
    QVERIFY(wsatest::sendRecord(m_peer, raw));
    tick();
    QCOMPARE(nLastIdx, 0);
    QCOMPARE(historyData[0].num_samples, 452);
    QCOMPARE(currentDatatmp.num_samples, 452);
    QCOMPARE(maxData.num_samples, 452);
    for (int i = 0; i < 452; ++i) {
        const int expected = std::max(raw.data[2 * i], raw.data[2 * i + 1]);
        QCOMPARE(historyData[0].data[i], expected);
        QCOMPARE(currentDatatmp.data[i], expected);
    }
}

void TestLink::sampleCounts_data()
{
    QTest::addColumn<int>("band");
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("stored"); // -1: dropped
    QTest::newRow("2.4G negative") << 0 << -1 << -1;
    QTest::newRow("2.4G 1025") << 0 << 1025 << -1;
    QTest::newRow("2.4G 5000") << 0 << 5000 << -1;
    QTest::newRow("2.4G largest") << 0 << 1024 << 1024;
    QTest::newRow("2.4G empty") << 0 << 0 << 0;
    QTest::newRow("5G negative") << 1 << -300 << -1;
    QTest::newRow("5G 5000") << 1 << 5000 << -1;
    QTest::newRow("5G 119") << 1 << 119 << -1;
    QTest::newRow("5G 120") << 1 << 120 << 0;
    QTest::newRow("5G 123") << 1 << 123 << 1;
}

void TestLink::sampleCounts()
{
    QFETCH(int, band);
    QFETCH(int, count);
    QFETCH(int, stored);
    s_band = band;
    m_wsa->initData();
    const QString out = wsatest::captureStdout([&] {
        QVERIFY(wsatest::sendRecord(m_peer, wsatest::makeSweep(count, -40)));
        tick();
    });
    if (stored < 0) {
        QCOMPARE(out, QString("main received sweep with bad sample count %1\n").arg(count));
        QCOMPARE(nLastIdx, -1);
        QCOMPARE(nDataCount, 0);
        QVERIFY(!bReceivedData);
        QCOMPARE(currentData.num_samples, 0);
    } else {
        QCOMPARE(out, QString());
        QCOMPARE(nLastIdx, 0);
        QCOMPARE(historyData[0].num_samples, stored);
        QCOMPARE(currentData.num_samples, stored);
    }
    // A good sweep after a bad one is taken as usual.
    QVERIFY(wsatest::sendRecord(m_peer, wsatest::makeSweep(band ? 1024 : 423, -40)));
    tick();
    QCOMPARE(historyData[nLastIdx].num_samples, 423 + band * 29);
}

void TestLink::repaintRequests()
{
    m_wsa->setSize(QSize(800, 400));
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window));
    PaintWatch paints;
    m_wsa->installEventFilter(&paints);
    QTest::qWait(100);

    QVERIFY(wsatest::sendRecord(m_peer, patternSweep(423)));
    tick();
    QTest::qWait(100);
    paints.count = 0;
    paints.region = QRegion();
    // An empty tick empties the receive buffer's count and type, nothing else, and paints
    // nothing.
    const stSweep before = currentData;
    tick();
    QTest::qWait(100);
    QCOMPARE(paints.count, 0);
    QCOMPARE(currentData.type, char(0));
    QCOMPARE(currentData.num_samples, 0);
    QVERIFY(sameSamples(currentData.data, before.data, SA_MAX_SAMPLES));

    QVERIFY(wsatest::sendRecord(m_peer, patternSweep(423)));
    tick();
    QTRY_VERIFY(paints.count > 0);
    QCOMPARE(paints.region.boundingRect(), m_wsa->rect());

    // While a signature is being placed only the grid is repainted.
    const QRect grid = grid_rect_maximize.adjusted(1, 1, 0, 0);
    QVERIFY2(!grid.isEmpty(), "grid not laid out");
    m_wsa->m_bSignature = true;
    paints.count = 0;
    paints.region = QRegion();
    QVERIFY(wsatest::sendRecord(m_peer, patternSweep(423)));
    tick();
    QTRY_VERIFY(paints.count > 0);
    QCOMPARE(paints.region, QRegion(grid));

    m_wsa->removeEventFilter(&paints);
    m_wsa->m_bSignature = false;
    m_window->hide();
}

void TestLink::recordingLimitRestartsTheRecording()
{
    const int launches = m_env->engineLaunches().size();
    nLastIdx = WSA_RECORDING_LIMIT - 1;
    nDataCount = WSA_RECORDING_LIMIT;
    startTime = time(nullptr) - 3600; // an hour into the recording
    historyData[WSA_RECORDING_LIMIT] = wsatest::makeMessage(0);
    QVERIFY(wsatest::sendRecord(m_peer, wsatest::makeSweep(423, -33)));
    const time_t restartedAfter = time(nullptr);
    {
        BoxWatch boxes;
        tick();
        QCOMPARE(boxes.titles, QStringList{"Information"});
        QCOMPARE(boxes.texts, QStringList{"Reach the max recording time"});
    }
    QVERIFY(m_wsa->m_bUpdate);
    QCOMPARE(m_env->engineLaunches().size(), launches + 1);
    QCOMPARE(historyData[WSA_RECORDING_LIMIT].num_samples, 0);
    QCOMPARE(nLastIdx, -1);
    QCOMPARE(nDataCount, 0);
    QVERIFY(startTime >= restartedAfter);

    // The new engine's link, taken over by the test.
    close(m_peer);
    m_peer = wsatest::takeOverLink();
    QVERIFY(wsatest::sendRecord(m_peer, wsatest::makeSweep(423, -44)));
    tick();
    QCOMPARE(nLastIdx, 0);
    QCOMPARE(nDataCount, 1);
    QCOMPARE(historyData[0].data[1], -44);
    QVERIFY2(QByteArray(historyTime[0]).startsWith("00:00:"), historyTime[0]);
}

void TestLink::configured_data()
{
    QTest::addColumn<int>("band");
    QTest::addColumn<int>("samples");
    QTest::addColumn<QString>("text");
    QTest::newRow("2.4G") << 0 << 423 << "2.4G Band Configure Succeed!";
    QTest::newRow("5G") << 1 << 1024 << "5G Band Configure Succeed!";
}

void TestLink::configured()
{
    QFETCH(int, band);
    QFETCH(int, samples);
    QFETCH(QString, text);
    s_band = band;
    stSweep record = wsatest::makeMessage(SA_MSG_CONFIGURED);
    record.num_samples = samples;
    record.data[0] = band ? 5160 : 2400;
    record.data[1] = band ? 5835 : 2490;
    record.data[2] = 213;
    if (pBtSignatures)
        pBtSignatures->setHidden(false);
    QVERIFY(wsatest::sendRecord(m_peer, record));
    BoxWatch boxes;
    const QString out = wsatest::captureStdout([&] { tick(); });
    QCOMPARE(out, QString("\nmain received: CONFIGURED\n\n%1 MHz - %2 MHz @ 213 KHz, %3 samples\n")
                      .arg(record.data[0])
                      .arg(record.data[1])
                      .arg(samples));
    QCOMPARE(boxes.titles, QStringList{"Information"});
    QCOMPARE(boxes.texts, QStringList{text});
    QVERIFY(m_wsa->m_bUpdate);
    if (pBtSignatures)
        QVERIFY(pBtSignatures->isHidden());
    else
        qWarning("no Signatures button to check");
    // The count is the engine's set-up, never samples to draw; nothing is stored.
    QCOMPARE(currentData.num_samples, 0);
    QCOMPARE(nLastIdx, -1);
}

void TestLink::probeGone_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("line");
    QTest::addColumn<bool>("answerOk");
    QTest::newRow("disconnect, OK") << int(SA_MSG_DISCONNECT) << "spy disconnect" << true;
    QTest::newRow("disconnect, closed") << int(SA_MSG_DISCONNECT) << "spy disconnect" << false;
    QTest::newRow("no probe, OK") << int(SA_MSG_NO_DEVICE) << "No WiFi SA USB is detected!" << true;
    QTest::newRow("no probe, closed")
        << int(SA_MSG_NO_DEVICE) << "No WiFi SA USB is detected!" << false;
}

void TestLink::probeGone()
{
    QFETCH(int, type);
    QFETCH(QString, line);
    QFETCH(bool, answerOk);
    QSignalSpy closes(m_wsa, &CWsa::sigClose);
    stSweep record = wsatest::makeMessage(char(type));
    record.num_samples = 5000;
    QVERIFY(wsatest::sendRecord(m_peer, record));
    BoxWatch boxes(answerOk ? BoxWatch::ClickOk : BoxWatch::CloseBox);
    const QString out = wsatest::captureStdout([&] { tick(); });
    QCOMPARE(out, line + "\n");
    QCOMPARE(boxes.titles, QStringList{"Error"});
    QCOMPARE(boxes.texts, QStringList{kProbeGoneText});
    QCOMPARE(closes.count(), 1);
    QCOMPARE(m_wsa->m_bUpdate, answerOk);
    QCOMPARE(currentData.num_samples, 0);
}

void TestLink::unknownTypeIsOnlyLogged()
{
    QVERIFY(wsatest::sendRecord(m_peer, patternSweep(423)));
    tick();
    stSweep record = wsatest::makeSweep(5000, -40);
    record.type = 'z';
    QVERIFY(wsatest::sendRecord(m_peer, record));
    BoxWatch boxes;
    const QString out = wsatest::captureStdout([&] { tick(); });
    QCOMPARE(out, QString("main received unknown data type\n"));
    QVERIFY(boxes.titles.isEmpty());
    QCOMPARE(currentData.num_samples, 0);
    QCOMPARE(nLastIdx, 0);
    QCOMPARE(nDataCount, 1);
}

void TestLink::partialRecordsAreCollected()
{
    const stSweep s = wsatest::makeSweep(423, -61);
    const char* bytes = reinterpret_cast<const char*>(&s);
    const int pieces[][2] = {{0, 1}, {1, SA_RECORD_SIZE - 2}, {SA_RECORD_SIZE - 1, 1}};
    for (const auto& piece : pieces) {
        QCOMPARE(nLastIdx, -1);
        QCOMPARE(send(m_peer, bytes + piece[0], size_t(piece[1]), 0), ssize_t(piece[1]));
        tick();
        QCOMPARE(currentData.type,
                 piece[0] + piece[1] == SA_RECORD_SIZE ? char(SA_MSG_SWEEP) : char(0));
    }
    QCOMPARE(nLastIdx, 0);
    QCOMPARE(historyData[0].num_samples, 423);
    QCOMPARE(historyData[0].data[422], -61);

    // Half a record from a connection that then ends is not glued to the next connection's.
    QCOMPARE(send(m_peer, bytes, 100, 0), ssize_t(100));
    tick();
    close(m_peer);
    m_peer = wsatest::takeOverLink();
    QVERIFY(wsatest::sendRecord(m_peer, wsatest::makeSweep(423, -62)));
    tick();
    QCOMPARE(nLastIdx, 1);
    QCOMPARE(historyData[1].num_samples, 423);
    QCOMPARE(historyData[1].data[0], -62);
}

void TestLink::burstIsTakenOnePerTick()
{
    const int burst = 25;
    for (int k = 0; k < burst; ++k)
        QVERIFY(wsatest::sendRecord(m_peer, wsatest::makeSweep(50, -20 - k)));
    for (int k = 0; k < burst; ++k) {
        tick();
        QCOMPARE(nLastIdx, k);
        QCOMPARE(historyData[k].data[1], -20 - k);
    }
    tick();
    QCOMPARE(nLastIdx, burst - 1);
}

void TestLink::randomRecordsStayInBounds()
{
    QRandomGenerator rng(20240611);
    BoxWatch boxes; // none expected: the status types that open one are left out
    const QString out = wsatest::captureStdout([&] {
        for (int round = 0; round < 400; ++round) {
            s_band = round / 200;
            if (round % 200 == 0)
                m_wsa->initData();
            alignas(stSweep) unsigned char bytes[SA_RECORD_SIZE + 4];
            rng.fillRange(reinterpret_cast<quint32*>(bytes), sizeof bytes / 4);
            unsigned char* record = bytes + (round % 2); // also unaligned
            if (record[0] >= SA_MSG_DISCONNECT && record[0] <= SA_MSG_NO_DEVICE)
                record[0] = SA_MSG_SWEEP;
            if (round % 3 == 0) {
                record[0] = SA_MSG_SWEEP;
                const int count = rng.bounded(-8, 1100);
                std::memcpy(record + 4, &count, sizeof count);
            }
            if (round % 4 == 0) {
                QVERIFY(send(m_peer, record, SA_RECORD_SIZE, 0) == SA_RECORD_SIZE);
                tick();
            } else {
                wsaDispatchRecord(*m_wsa, record);
            }
            QVERIFY(currentData.num_samples >= 0 && currentData.num_samples <= SA_MAX_SAMPLES);
            QVERIFY(currentDatatmp.num_samples >= 0 &&
                    currentDatatmp.num_samples <= SA_MAX_SAMPLES);
            QVERIFY(nLastIdx < WSA_RECORDING_LIMIT);
            QCOMPARE(nDataCount, nLastIdx + 1);
            // What the next paint does with it.
            for (int i = 1; i < currentData.num_samples; ++i) {
                bool rescale = false;
                wsaTakeSample(i, rescale);
            }
        }
    });
    QVERIFY(boxes.titles.isEmpty());
    QVERIFY(nLastIdx > 20); // some of the sweeps were good
    QVERIFY(out.contains("bad sample count"));
}

void TestLink::closedConnection_data()
{
    QTest::addColumn<bool>("afterProbeLost");
    QTest::newRow("engine ended") << false;
    QTest::newRow("after probe lost") << true;
}

void TestLink::closedConnection()
{
    QFETCH(bool, afterProbeLost);
    QVERIFY(wsatest::sendRecord(m_peer, patternSweep(423)));
    tick();
    if (afterProbeLost) {
        QVERIFY(wsatest::sendRecord(m_peer, wsatest::makeMessage(SA_MSG_DISCONNECT)));
        BoxWatch boxes;
        wsatest::captureStdout([&] { tick(); });
        QCOMPARE(boxes.titles.size(), 1);
    }
    close(m_peer);
    m_peer = -1;
    m_wsa->m_bUpdate = false;
    BoxWatch boxes;
    const QString out = wsatest::captureStdout([&] { tick(); });
    QCOMPARE(out, QString("main engine connection closed\n"));
    QCOMPARE(sockFd, -1);
    if (afterProbeLost) {
        QVERIFY(boxes.titles.isEmpty());
    } else {
        QCOMPARE(boxes.titles, QStringList{"Error"});
        QCOMPARE(boxes.texts.size(), 1);
        QVERIFY(boxes.texts[0].startsWith("The acquisition engine has stopped."));
        QVERIFY(m_wsa->m_bUpdate);
    }
    // Reported once; the last state stays.
    const QString later = wsatest::captureStdout([&] {
        tick();
        tick();
    });
    QCOMPARE(later, QString());
    QCOMPARE(boxes.titles.size(), afterProbeLost ? 0 : 1);
    QCOMPARE(nLastIdx, 0);
    QCOMPARE(historyData[0].num_samples, 423);
}

void TestLink::foreignDescriptorIsNotClosed()
{
    int fds[2];
    QCOMPARE(pipe(fds), 0);
    close(sockFd);
    sockFd = fds[0];
    BoxWatch boxes;
    const QString out = wsatest::captureStdout([&] { tick(); });
    QVERIFY2(out.startsWith(QString("main engine read fail: %1\n").arg(ENOTSOCK)), qPrintable(out));
    QCOMPARE(sockFd, -1);
    QCOMPARE(boxes.titles, QStringList{"Error"});
    QVERIFY(fcntl(fds[0], F_GETFD) != -1);
    close(fds[0]);
    close(fds[1]);
}

void TestLink::realEngineStreamsSweeps()
{
    const QByteArray fakeEngine = qgetenv("WSA_ENGINE_PATH");
    qputenv("WSA_ENGINE_PATH", WSA_ENGINE_BIN);
    m_wsa->removeEventFilter(&m_blocker);
    BoxWatch boxes;
    m_wsa->RestartAppEngines();
    QTRY_VERIFY_WITH_TIMEOUT(nLastIdx >= 8, 8000);
    m_wsa->installEventFilter(&m_blocker);
    qputenv("WSA_ENGINE_PATH", fakeEngine);

    QCOMPARE(boxes.texts.value(0), QString("2.4G Band Configure Succeed!"));
    QCOMPARE(nDataCount, nLastIdx + 1);
    for (int k = 0; k <= nLastIdx; ++k)
        QCOMPARE(historyData[k].num_samples, 423);
    QCOMPARE(maxData.num_samples, 423);
}

QTEST_MAIN(TestLink)
#include "tst_link.moc"
