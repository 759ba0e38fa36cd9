// The wsa_raw engine as the analyzer sees it: started in a directory where the test listens on
// ./SERVERSOCK, read record by record.
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>
#include <algorithm>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <vector>

#include "halbrin_sa.h"

namespace
{

using Env = QList<QPair<QString, QString>>;

// One engine in its own directory, and the analyzer's end of its connection.
class EngineRun
{
public:
    ~EngineRun()
    {
        closeLink();
        if (m_listener >= 0)
            close(m_listener);
        if (m_process.state() != QProcess::NotRunning) {
            m_process.kill();
            m_process.waitForFinished(3000);
        }
    }

    // Fast sweeps unless the test sets its own rate; nothing inherited from the caller.
    void start(const QStringList& args, const Env& env = {})
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const QString& key : environment.keys()) {
            if (key.startsWith("WSA_SIM_"))
                environment.remove(key);
        }
        environment.insert("WSA_SIM_RATE", "200");
        for (const auto& [key, value] : env)
            environment.insert(key, value);
        m_process.setProcessEnvironment(environment);
        m_process.setWorkingDirectory(m_dir.path());
        m_process.start(WSA_ENGINE_BIN, args);
        m_process.waitForStarted();
    }

    // Starts the engine, listens after `listenDelayMs` and accepts its connection.
    bool connect(const QStringList& args, const Env& env = {}, int listenDelayMs = 0)
    {
        start(args, env);
        QTest::qWait(listenDelayMs);
        m_listener = socket(AF_UNIX, SOCK_STREAM, 0);
        sockaddr_un addr{};
        addr.sun_family = AF_UNIX;
        const QByteArray path = QFile::encodeName(m_dir.filePath("SERVERSOCK"));
        std::strncpy(addr.sun_path, path.constData(), sizeof addr.sun_path - 1);
        if (bind(m_listener, reinterpret_cast<sockaddr*>(&addr), sizeof addr) != 0 ||
            listen(m_listener, 1) != 0)
            return false;
        pollfd pfd{m_listener, POLLIN, 0};
        if (poll(&pfd, 1, 6000) != 1)
            return false;
        m_link = accept(m_listener, nullptr, nullptr);
        return m_link >= 0;
    }

    // One recv of at most `size` bytes: the count, 0 at the end of the stream, -1 on time-out.
    int readOnce(void* buffer, int size, int timeoutMs = 5000, int flags = 0)
    {
        pollfd pfd{m_link, POLLIN, 0};
        if (poll(&pfd, 1, timeoutMs) != 1)
            return -1;
        return int(recv(m_link, buffer, size_t(size), flags));
    }

    bool read(stSweep& record, int timeoutMs = 5000)
    {
        char* p = reinterpret_cast<char*>(&record);
        for (int got = 0; got < SA_RECORD_SIZE;) {
            const int n = readOnce(p + got, SA_RECORD_SIZE - got, timeoutMs);
            if (n <= 0)
                return false;
            got += n;
        }
        return true;
    }

    // -1: nothing for `ms`, 0: end of stream, 1: data waiting.
    int peek(int ms)
    {
        char byte;
        return readOnce(&byte, 1, ms, MSG_PEEK);
    }

    void closeLink()
    {
        if (m_link >= 0)
            close(m_link);
        m_link = -1;
    }

    QProcess& process() { return m_process; }

private:
    QTemporaryDir m_dir;
    QProcess m_process;
    int m_listener = -1;
    int m_link = -1;
};

bool isSweep(const stSweep& record, int samples)
{
    return record.type == SA_MSG_SWEEP && record.num_samples == samples &&
           *std::max_element(record.data, record.data + samples) < 0;
}

} // namespace

class TestEngine : public QObject
{
    Q_OBJECT

private slots:
    void configured_data();
    void configured();
    void levels_data();
    void levels();
    void determinism_data();
    void determinism();
    void stream_data();
    void stream();
    void pacing();
    void connection();
};

void TestEngine::configured_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<bool>("high");
    QTest::addColumn<bool>("warns");
    QTest::newRow("no option") << QStringList() << false << false;
    QTest::newRow("-r 1 in one word") << QStringList{"-r 1"} << false << false;
    QTest::newRow("-r 1 in two words") << QStringList{"-r", "1"} << false << false;
    QTest::newRow("-r 2 in one word") << QStringList{"-r 2"} << true << false;
    QTest::newRow("-r 2 in two words") << QStringList{"-r", "2"} << true << false;
    QTest::newRow("unknown argument") << QStringList{"--bogus"} << false << true;
    QTest::newRow("unknown band") << QStringList{"-r 3"} << false << true;
}

void TestEngine::configured()
{
    QFETCH(QStringList, args);
    QFETCH(bool, high);
    QFETCH(bool, warns);
    EngineRun run;
    QVERIFY(run.connect(args));
    stSweep record;
    QVERIFY(run.read(record));
    QCOMPARE(int(record.type), int(SA_MSG_CONFIGURED));
    const int samples = high ? 1024 : 423;
    QCOMPARE(record.num_samples, samples);
    QCOMPARE(record.data[0], high ? 5160 : 2400);
    // The bins the analyzer shows (all 423, or the first 904 raw ones) end at its view's edge.
    const long startKHz = record.data[0] * 1000L;
    const long lastShownKHz = startKHz + (high ? 903 : 422) * long(record.data[2]);
    QVERIFY(qAbs(lastShownKHz - (high ? 5835000 : 2490000)) <= 1000);
    // The announced end is the last bin, in whole MHz.
    const long lastKHz = startKHz + (samples - 1) * long(record.data[2]);
    QCOMPARE(record.data[1], int((lastKHz + 500) / 1000));

    QVERIFY(run.read(record));
    QVERIFY(isSweep(record, samples));
    run.closeLink();
    QVERIFY(run.process().waitForFinished(3000));
    QCOMPARE(run.process().readAllStandardError().isEmpty(), !warns);
}

void TestEngine::levels_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<int>("samples");
    QTest::newRow("2.4 GHz") << QStringList() << 423;
    QTest::newRow("5 GHz") << QStringList{"-r 2"} << 1024;
}

void TestEngine::levels()
{
    QFETCH(QStringList, args);
    QFETCH(int, samples);
    EngineRun run;
    QVERIFY(run.connect(args));
    stSweep record;
    QVERIFY(run.read(record));
    std::vector<int> all;
    std::vector<std::vector<int>> perBin(static_cast<size_t>(samples));
    for (int s = 0; s < 40; ++s) {
        QVERIFY(run.read(record));
        QVERIFY(isSweep(record, samples));
        for (int i = 0; i < samples; ++i) {
            QVERIFY2(record.data[i] >= -120 && record.data[i] <= -20,
                     qPrintable(QString::number(record.data[i])));
            all.push_back(record.data[i]);
            perBin[size_t(i)].push_back(record.data[i]);
        }
    }
    std::sort(all.begin(), all.end());
    const int median = all[all.size() / 2];
    QVERIFY2(median >= -97 && median <= -89, qPrintable(QString::number(median)));
    QVERIFY(all.back() > -60);
    // Bursty: some bin carries a strong signal in a few sweeps and the noise floor in most.
    bool bursty = false;
    for (std::vector<int>& bin : perBin) {
        std::sort(bin.begin(), bin.end());
        bursty = bursty || (bin.back() > -60 && bin[bin.size() / 2] < -85);
    }
    QVERIFY(bursty);
}

void TestEngine::determinism_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<QString>("seed");
    QTest::newRow("2.4 GHz, seed 7") << QStringList() << "7";
    QTest::newRow("5 GHz, seed 7") << QStringList{"-r 2"} << "7";
    QTest::newRow("default seed") << QStringList() << QString();
}

void TestEngine::determinism()
{
    QFETCH(QStringList, args);
    QFETCH(QString, seed);
    const auto firstRecords = [&](const QString& s) {
        EngineRun run;
        QByteArray bytes;
        stSweep record;
        if (run.connect(args, s.isEmpty() ? Env() : Env{{"WSA_SIM_SEED", s}})) {
            while (bytes.size() < 30 * SA_RECORD_SIZE && run.read(record))
                bytes.append(reinterpret_cast<const char*>(&record), SA_RECORD_SIZE);
        }
        return bytes;
    };
    const QByteArray first = firstRecords(seed);
    QCOMPARE(first.size(), 30 * SA_RECORD_SIZE);
    QVERIFY(firstRecords(seed) == first);
    QVERIFY(firstRecords("12345") != first);
}

// The records in order: C configured, S sweep, X a sweep cut short, B a sweep with an impossible
// count, U an unknown type, D disconnect, N no device, Q nothing for a while, E end of stream.
// Unless the stream ends by itself, the test closes the connection and the engine must leave.
void TestEngine::stream_data()
{
    QTest::addColumn<Env>("env");
    QTest::addColumn<QString>("records");
    QTest::addColumn<bool>("crash");
    QTest::newRow("streaming") << Env{{"WSA_SIM_RATE", "8"}} << "CSS" << false;
    QTest::newRow("rate 0") << Env{{"WSA_SIM_RATE", "0"}} << "CQ" << false;
    QTest::newRow("sweep limit") << Env{{"WSA_SIM_SWEEPS", "3"}} << "CSSSQ" << false;
    QTest::newRow("no probe") << Env{{"WSA_SIM_NO_PROBE", "1"}} << "NE" << false;
    QTest::newRow("lose after 3") << Env{{"WSA_SIM_LOSE_AFTER", "3"}} << "CSSSDE" << false;
    QTest::newRow("lose after 0") << Env{{"WSA_SIM_LOSE_AFTER", "0"}} << "CDE" << false;
    QTest::newRow("die after 3") << Env{{"WSA_SIM_DIE_AFTER", "3"}} << "CSSSE" << true;
    QTest::newRow("first knob wins")
        << Env{{"WSA_SIM_DIE_AFTER", "5"}, {"WSA_SIM_LOSE_AFTER", "2"}} << "CSSDE" << false;
    // Slow enough that the cut sweep arrives on its own.
    QTest::newRow("short after 2")
        << Env{{"WSA_SIM_RATE", "5"}, {"WSA_SIM_SHORT_AFTER", "2"}} << "CSSXSS" << false;
    // The odd records do not count as sweeps.
    QTest::newRow("corrupt after 2")
        << Env{{"WSA_SIM_CORRUPT_AFTER", "2"}, {"WSA_SIM_SWEEPS", "4"}} << "CSSBUSSQ" << false;
}

void TestEngine::stream()
{
    QFETCH(Env, env);
    QFETCH(QString, records);
    QFETCH(bool, crash);
    EngineRun run;
    QVERIFY(run.connect({}, env));
    for (const QChar kind : records) {
        stSweep record{};
        switch (kind.toLatin1()) {
        case 'Q':
            QCOMPARE(run.peek(500), -1);
            QCOMPARE(run.process().state(), QProcess::Running);
            continue;
        case 'E':
            QCOMPARE(run.peek(5000), 0);
            continue;
        case 'X': {
            const int bytes = run.readOnce(&record, SA_RECORD_SIZE);
            QVERIFY2(bytes > 8 && bytes < SA_RECORD_SIZE, qPrintable(QString::number(bytes)));
            QCOMPARE(int(record.type), int(SA_MSG_SWEEP));
            continue;
        }
        }
        QVERIFY2(run.read(record), qPrintable(QString(kind)));
        switch (kind.toLatin1()) {
        case 'C':
            QCOMPARE(int(record.type), int(SA_MSG_CONFIGURED));
            break;
        case 'S':
            QVERIFY(isSweep(record, 423));
            break;
        case 'B':
            QCOMPARE(int(record.type), int(SA_MSG_SWEEP));
            QVERIFY(record.num_samples < 0 || record.num_samples > SA_MAX_SAMPLES);
            break;
        case 'U':
            QVERIFY(record.type < SA_MSG_DISCONNECT || record.type > SA_MSG_NO_DEVICE);
            break;
        case 'D':
            QCOMPARE(int(record.type), int(SA_MSG_DISCONNECT));
            break;
        case 'N':
            QCOMPARE(int(record.type), int(SA_MSG_NO_DEVICE));
            break;
        }
    }
    run.closeLink();
    QVERIFY(run.process().waitForFinished(2000));
    QCOMPARE(run.process().exitStatus(), crash ? QProcess::CrashExit : QProcess::NormalExit);
    if (!crash)
        QCOMPARE(run.process().exitCode(), 0);
}

void TestEngine::pacing()
{
    stSweep record;
    {
        EngineRun run;
        QVERIFY(run.connect({}, {{"WSA_SIM_RATE", "40"}}));
        QVERIFY(run.read(record));
        QElapsedTimer clock;
        clock.start();
        for (int i = 0; i < 20; ++i)
            QVERIFY(run.read(record));
        QVERIFY2(clock.elapsed() >= 350 && clock.elapsed() < 5000,
                 qPrintable(QString::number(clock.elapsed())));
    }
    {
        // A fractional rate: one sweep every two seconds.
        EngineRun run;
        QVERIFY(run.connect({}, {{"WSA_SIM_RATE", "0.5"}}));
        QVERIFY(run.read(record));
        QCOMPARE(run.peek(1000), -1);
        QVERIFY(run.read(record, 4000));
        QVERIFY(isSweep(record, 423));
    }
}

void TestEngine::connection()
{
    {
        // The engine is already retrying when the analyzer starts listening.
        EngineRun run;
        QVERIFY(run.connect({}, {}, 300));
        stSweep record;
        QVERIFY(run.read(record));
        QCOMPARE(int(record.type), int(SA_MSG_CONFIGURED));
    }
    {
        EngineRun run;
        run.start({});
        QVERIFY(run.process().waitForFinished(15000));
        QCOMPARE(run.process().exitStatus(), QProcess::NormalExit);
        QCOMPARE(run.process().exitCode(), 1);
        QVERIFY(run.process().readAllStandardError().contains("SERVERSOCK"));
    }
}

QTEST_GUILESS_MAIN(TestEngine)
#include "tst_engine.moc"
