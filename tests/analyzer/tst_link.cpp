// Engine link: records fed tick by tick through the test's own end of the link, their effect on
// the store, the boxes and console lines they cause, and records that are cut or malformed.
#include <QtTest>
#include <algorithm>
#include <cstring>
#include <optional>
#include <unistd.h>

#include "cmessagebox.h"
#include "cpushbutton.h"
#include "wsa_p.h"
#include "wsatestsupport.h"

struct PaintCount : QObject {
    int n = 0;
    bool eventFilter(QObject*, QEvent* e) override { return n += e->type() == QEvent::Paint, 0; }
};

class TestLink : public QObject
{
    Q_OBJECT

    wsatest::AnalyzerFixture f;
    // Sends the record, if any, and runs one refresh tick. Returns what the tick printed, then
    // "title: text" of each box it opened, answered with OK or, if ok is false, closed.
    QStringList tick(std::optional<stSweep> record = {}, bool ok = true)
    {
        if (record && !wsatest::sendRecord(f.link, *record))
            return {"not sent"};
        QStringList boxes;
        QTimer timer;
        connect(&timer, &QTimer::timeout, [&] {
            if (auto* box = qobject_cast<CMessageBox*>(QApplication::activeModalWidget())) {
                boxes << box->title() + ": " + box->text();
                ok ? box->findChild<QAbstractButton*>()->click() : void(box->close());
            }
        });
        timer.start(10);
        return QStringList(wsatest::captureStdout([this] { f.w->wsaDataParse(); })) + boxes;
    }
    static QByteArray recordBytes(const stSweep& r)
    {
        return QByteArray(reinterpret_cast<const char*>(&r), SA_RECORD_SIZE);
    }
    // A whole sweep of the band's raw sample count.
    static QByteArray sweepBytes(int band, int level)
    {
        return recordBytes(wsatest::makeSweep(wsa::handheldBand(band).grid.raw, level));
    }
    // Level of each stored sweep, oldest first.
    static QList<int> storedLevels()
    {
        QList<int> levels;
        for (int i = 0; i <= nLastIdx; ++i)
            levels << historyData[i].data[1];
        return levels;
    }
    // Newest history index, sweep count, newest stored sample count, the maximum's sample count.
    static QList<int> counts()
    {
        return {nLastIdx, nDataCount, historyData[qMax(0, nLastIdx)].num_samples,
                maxData.num_samples};
    }

private slots:
    void initTestCase() { QVERIFY(f.start()); }
    void init()
    {
        s_band = 0, f.w->initData();
        close(f.link);
        f.link = wsatest::takeOverLink();
    }

    void sweeps()
    {
        // 2.4 GHz: stored as received, unclamped; the first sweep after a reset seeds the
        // maximum. The time text of a recording past 100 hours is cut to its row.
        maxData.num_samples = 999;
        startTime = time(nullptr) - 1000 * 3600;
        stSweep sent = wsatest::makeSweep(423, 0);
        for (int i = 0; i < SA_MAX_SAMPLES; ++i)
            sent.data[i] = -5 - i * 7 % 110;
        QCOMPARE(tick(sent), QStringList(""));
        QVERIFY(!std::memcmp(&historyData[0], &sent, SA_RECORD_SIZE) &&
                !std::memcmp(&maxData, &sent, SA_RECORD_SIZE));
        QCOMPARE(QByteArray(historyTime[0], WSA_TIME_TEXT), QByteArray("1000:00:0", WSA_TIME_TEXT));
        tick(wsatest::makeSweep(300, -50));
        QCOMPARE(counts(), QList<int>({1, 2, 300, 423}));
        // An empty tick empties the sweep's type and count, nothing else, and paints nothing.
        QTRY_VERIFY(!bReceivedData); // the sweep's paint
        PaintCount paints;
        f.w->installEventFilter(&paints);
        tick();
        QTest::qWait(200);
        QCOMPARE(
            QList<int>({paints.n, currentData.type, currentData.num_samples, currentData.data[5]}),
            QList<int>({0, 0, 0, -50}));
        // 5 GHz: the larger of each pair, the last 60 pairs dropped.
        s_band = 1, f.w->initData();
        stSweep raw = wsatest::makeSweep(SA_MAX_SAMPLES, -100);
        for (int i = 0; i < 452; ++i)
            raw.data[2 * i + i % 2] = -40 - i % 50;
        tick(raw);
        for (int i = 0; i < 452; ++i)
            QCOMPARE(historyData[0].data[i], -40 - i % 50);
        QCOMPARE(counts(), QList<int>({0, 1, 452, 452}));
    }

    void recordingLimit()
    {
        const int launches = f.env->engineLaunches().size();
        nLastIdx = WSA_RECORDING_LIMIT - 1;
        startTime = time(nullptr) - 3600;
        historyData[WSA_RECORDING_LIMIT].num_samples = 0;
        QCOMPARE(tick(wsatest::makeSweep(423, -33)),
                 QStringList({"", "Information: Reach the max recording time"}));
        QCOMPARE(f.env->engineLaunches().size(), launches + 1);
        QCOMPARE(QList<int>({nLastIdx, nDataCount, historyData[WSA_RECORDING_LIMIT].num_samples}),
                 QList<int>({-1, 0, 0}));
        init(); // the new engine's link, taken over
        tick(wsatest::makeSweep(423, -44));
        QCOMPARE(counts() << historyData[0].data[1], QList<int>({0, 1, 423, 423, -44}));
        QVERIFY2(QByteArray(historyTime[0]).startsWith("00:00:0"), historyTime[0]);
    }

    void closedConnection()
    {
        const QStringList reported = {"main engine connection closed\n",
                                      "Error: The acquisition engine has stopped.\nSelect a band "
                                      "under Frequency to restart it."};
        for (const bool probeGone : {false, true}) {
            tick(wsatest::makeSweep(423, -50));
            if (probeGone)
                tick(wsatest::makeMessage(SA_MSG_DISCONNECT));
            close(f.link);
            // Reported once, with no box after the probe was reported lost; the state stays.
            QCOMPARE(tick(), probeGone ? reported.mid(0, 1) : reported);
            QCOMPARE(tick(), QStringList(""));
            QCOMPARE(QList<int>({sockFd, nLastIdx, historyData[nLastIdx].data[1]}),
                     QList<int>({-1, int(probeGone), -50}));
            f.link = wsatest::takeOverLink();
        }
    }

    void records()
    {
        const QString gone = "Error: No WIFI SA USB is detected!\nPlease make sure your WIFI SA "
                             "USB is properly\nconnected to the unit.";
        const QString setup =
            "\nmain received: CONFIGURED\n\n2400 MHz - 2490 MHz @ 213 KHz, %1 samples\n";
        const QString configured = "Information: %1 Band Configure Succeed!";
        const QString bad = "main received sweep with bad sample count %1\n";
        // {type, band, count, box answered with OK, what the tick shows, samples stored or -1}
        const std::tuple<char, int, int, bool, QStringList, int> rows[] = {
            {SA_MSG_CONFIGURED, 0, 423, true, {setup.arg(423), configured.arg("2.4G")}, -1},
            {SA_MSG_CONFIGURED, 1, 1024, true, {setup.arg(1024), configured.arg("5G")}, -1},
            {SA_MSG_DISCONNECT, 0, 0, true, {"spy disconnect\n", gone}, -1},
            {SA_MSG_NO_DEVICE, 0, 0, false, {"No WiFi SA USB is detected!\n", gone}, -1},
            {'z', 0, 423, true, {"main received unknown data type\n"}, -1},
            {SA_MSG_SWEEP, 0, -1, true, {bad.arg(-1)}, -1},
            {SA_MSG_SWEEP, 0, 1025, true, {bad.arg(1025)}, -1},
            {SA_MSG_SWEEP, 0, 5000, true, {bad.arg(5000)}, -1},
            {SA_MSG_SWEEP, 1, 119, true, {bad.arg(119)}, -1}, // nothing left after the reduction
            {SA_MSG_SWEEP, 1, 120, true, {""}, 0}};
        for (const auto& [type, band, count, ok, seen, stored] : rows) {
            init(); // a new link: a bad record is reported once per damaged stretch
            s_band = band, f.w->initData();
            pBtSignatures->show();
            QSignalSpy closes(f.w, &CWsa::sigClose);
            stSweep record = wsatest::makeSweep(count, -40);
            record.type = type;
            if (type == SA_MSG_CONFIGURED)
                record.data[0] = 2400, record.data[1] = 2490, record.data[2] = 213;
            QCOMPARE(tick(record, ok), seen);
            QCOMPARE(closes.count(), int(seen.value(1).startsWith("Error")));
            QCOMPARE(pBtSignatures->isHidden(), type == SA_MSG_CONFIGURED);
            QCOMPARE(nLastIdx < 0 ? -1 : historyData[0].num_samples, stored);
        }
    }

    // Damage in the stream costs at most the damaged record: each whole sweep after it is stored,
    // in order, the damage is reported once, and nothing of it reaches the statistics (a sweep cut
    // inside its levels would bring the next header's bytes: 101, 423, 108288, ...). Sweeps are
    // told apart by their level.
    void damageCostsOnlyTheDamagedRecord_data()
    {
        QTest::addColumn<int>("band");
        QTest::addColumn<QByteArray>("damage");
        QTest::addColumn<QList<int>>("extraStored"); // levels stored from the damage itself
        QTest::addColumn<QString>("line");
        const QString unknown = "main received unknown data type\n";
        stSweep bad = wsatest::makeSweep(5000, -70);
        QTest::newRow("short") << 0 << sweepBytes(0, -70).left(SA_RECORD_SIZE / 2)
                               << QList<int>{-70} << "";
        QTest::newRow("count out of range") << 0 << recordBytes(bad) << QList<int>{}
                                            << "main received sweep with bad sample count 5000\n";
        bad.type = 'z', bad.num_samples = 423;
        QTest::newRow("unknown type") << 0 << recordBytes(bad) << QList<int>{} << unknown;
        QTest::newRow("unknown type cut short")
            << 0 << recordBytes(bad).left(100) << QList<int>{} << unknown;
        QTest::newRow("garbage") << 0 << QByteArray(3000, char(0xa5)) << QList<int>{} << unknown;
        for (const int band : {0, 1})
            for (const int cut : {4, 8, 11, 333, 1003, 1500})
                QTest::addRow("%s, cut at %d", band ? "5 GHz" : "2.4 GHz", cut)
                    << band << sweepBytes(band, -65).left(cut) << QList<int>{}
                    << "main received a record cut short\n";
    }
    void damageCostsOnlyTheDamagedRecord()
    {
        QFETCH(int, band);
        QFETCH(QByteArray, damage);
        QFETCH(QList<int>, extraStored);
        QFETCH(QString, line);
        s_band = band, f.w->initData();
        const QList<int> after = {-61, -62, -63};
        QByteArray stream = sweepBytes(band, -60) + damage;
        for (int level : after)
            stream += sweepBytes(band, level);
        QCOMPARE(write(f.link, stream.constData(), size_t(stream.size())), ssize_t(stream.size()));
        // The refresh timer may read the link while a paint is awaited: its lines count too.
        QString printed;
        printed += wsatest::captureStdout([&] {
            for (int i = 0; i < 12; ++i) {
                printed += tick().join(QString());
                QTRY_VERIFY(!bReceivedData); // each sweep's paint counts it
            }
        });
        QCOMPARE(printed, line);
        QCOMPARE(storedLevels(), QList<int>{-60} + extraStored + after);
        const int n = historyData[nLastIdx].num_samples;
        QCOMPARE(*std::max_element(maxData.data + 1, maxData.data + n), -60);
    }

    // The engine undamaged and with its own damage knobs: a sweep cut in half, then a sweep
    // claiming 5000 samples and a record of unknown type. Every sweep record the engine sends is
    // stored: the whole ones, which its recording lists (sweeps it made while the analyzer was not
    // reading yet are combined into one), and the half sweep, which bypasses the recording.
    void realEngineDamage_data()
    {
        QTest::addColumn<QByteArray>("knob");
        QTest::addColumn<int>("unrecorded");
        QTest::newRow("undamaged") << QByteArray() << 0;
        QTest::newRow("short") << QByteArrayLiteral("WSA_SIM_SHORT_AFTER") << 1;
        QTest::newRow("corrupt") << QByteArrayLiteral("WSA_SIM_CORRUPT_AFTER") << 0;
    }

    void realEngineDamage()
    {
        QFETCH(QByteArray, knob);
        QFETCH(int, unrecorded);
        QTemporaryDir recordings;
        QVERIFY(recordings.isValid());
        qputenv("WSA_ENGINE_PATH", WSA_ENGINE_BIN);
        qputenv("WSA_RECORD_DIR", QFile::encodeName(recordings.path()));
        if (!knob.isEmpty())
            qputenv(knob.constData(), "6");
        qputenv("WSA_SIM_SWEEPS", "12");
        qputenv("WSA_SIM_RATE", "4");
        qputenv("WSA_OUTPUT_RATE", "4");
        wsatest::answerModal(); // its Configured box
        f.w->RestartAppEngines();
        for (const char* name : {"WSA_SIM_SHORT_AFTER", "WSA_SIM_CORRUPT_AFTER", "WSA_SIM_SWEEPS",
                                 "WSA_SIM_RATE", "WSA_OUTPUT_RATE", "WSA_RECORD_DIR"})
            qunsetenv(name);
        auto recorded = [&] {
            const QStringList files = QDir(recordings.path()).entryList({"*.csv"}, QDir::Files);
            if (files.size() != 1)
                return -1;
            QFile file(recordings.filePath(files.first()));
            return file.open(QIODevice::ReadOnly) ? int(file.readAll().count('\n')) : -1;
        };
        // Sweeps 7 .. 12 follow the sixth one record each, at the analyzer's reading pace.
        QTRY_VERIFY_WITH_TIMEOUT(recorded() >= 6 && nLastIdx + 1 == recorded() + unrecorded, 10000);
        QTest::qWait(600); // nothing more arrives
        const int n = recorded() + unrecorded;
        QCOMPARE(counts(), QList<int>({n - 1, n, 423, 423}));
    }
};

QTEST_MAIN(TestLink)
#include "tst_link.moc"
