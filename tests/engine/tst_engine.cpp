// The wsa_raw engine as the analyzer sees it: started in a directory where the test listens on
// ./SERVERSOCK, read record by record.
#include <QtTest>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "bandplan.h"
#include "halbrin_sa.h"

// One engine in its own directory and the analyzer's end of its link; every wait is bounded.
struct Engine {
    QTemporaryDir dir;
    QProcess proc;
    int listener = socket(AF_UNIX, SOCK_STREAM, 0);
    int link = -1;
    const wsa::Band& band;
    int samples;
    std::vector<int> levels; // of every sweep read so far

    // Fast sweeps, each sent as it comes, unless `env` ("NAME=value ...") sets the rates.
    // Listens only a while after the start, as the analyzer does: the engine has to retry.
    Engine(const QStringList& args, const QString& env = {})
        : band(bandOf(args)), samples(band.simAnnouncement.samples)
    {
        proc.setEnvironment(QProcess::systemEnvironment()
                            << "WSA_SIM_RATE=200"
                            << "WSA_OUTPUT_RATE=200" << env.split(' '));
        proc.setWorkingDirectory(dir.path());
        // Under a name of its own: analyzers in concurrent tests kill engines by name.
        QFile::link(WSA_ENGINE_BIN, dir.filePath("engine"));
        proc.start(dir.filePath("engine"), args);
        QTest::qWait(300);
        sockaddr_un addr{AF_UNIX, {}};
        qstrncpy(addr.sun_path, qPrintable(dir.filePath("SERVERSOCK")), sizeof addr.sun_path);
        const timeval timeout{5, 0}; // bounds accept and every recv
        setsockopt(listener, SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof timeout);
        bind(listener, reinterpret_cast<sockaddr*>(&addr), sizeof addr);
        listen(listener, 1);
        link = accept(listener, nullptr, nullptr); // -1 if anything failed
        setsockopt(link, SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof timeout);
    }

    ~Engine() { close(link), close(listener), proc.kill(), proc.waitForFinished(); }

    // The band of "-r N" in one word or two; the first band without.
    static const wsa::Band& bandOf(const QStringList& args)
    {
        const QString n = args.join(' ').mid(3);
        for (const wsa::Band& b : wsa::allBands())
            if (n == QString::number(b.engineNumber))
                return b;
        return wsa::allBands().front();
    }

    // Whether what comes next on the link is of `kind` (see TestEngine::stream_data).
    bool expect(char kind)
    {
        stSweep r{};
        const int flags = kind == 'X' ? 0 : kind == 'Q' ? MSG_PEEK | MSG_DONTWAIT : MSG_WAITALL;
        QTest::qWait(kind == 'Q' ? 500 : 0);
        const int bytes = kind == 'L' ? 0 : int(recv(link, &r, sizeof r, flags));
        if (kind == 'S')
            levels.insert(levels.end(), r.data, r.data + samples);
        std::sort(levels.begin(), levels.end());
        const bool whole = bytes == SA_RECORD_SIZE;
        // The probe's bins start at the grid's first cell and its shown ones end at the last.
        const wsa::SourceGrid& g = band.grid;
        const int lastShownKHz = r.data[0] * 1000 + (g.shown - 1) * r.data[2];
        const QHash<char, bool> meets{
            {'C', whole && r.type == SA_MSG_CONFIGURED && r.num_samples == samples &&
                      r.data[0] == std::lround(g.startHz / 1e6) &&
                      qAbs(lastShownKHz - g.endHz / 1e3) <= 1000},
            {'S', whole && r.type == SA_MSG_SWEEP && r.num_samples == samples},
            {'X', bytes > 8 && bytes < SA_RECORD_SIZE && r.type == SA_MSG_SWEEP},
            {'B', whole && r.type == SA_MSG_SWEEP && uint(r.num_samples) > SA_MAX_SAMPLES},
            {'U', whole && (r.type < SA_MSG_DISCONNECT || r.type > SA_MSG_NO_DEVICE)},
            {'D', whole && r.type == SA_MSG_DISCONNECT},
            {'N', whole && r.type == SA_MSG_NO_DEVICE},
            {'E', bytes == 0},
            {'K', bytes == 0},
            {'Q', bytes < 0 && proc.state() == QProcess::Running},
            {'L', !levels.empty() && qAbs(levels[levels.size() / 2] + 93) <= 4 &&
                      levels.back() > -60 && levels.back() < 0}};
        return meets.value(kind);
    }
};

class TestEngine : public QObject
{
    Q_OBJECT

private slots:
    void stream_data();
    void stream();
    void sameSeedSameBytes();
};

// The records in order (C configured, S sweep, X a sweep cut short, B a sweep with an impossible
// count, U an unknown type, D disconnect, N no device, E end of stream, K end by a crash), Q for
// nothing during half a second, L for a noise floor near -95 dBm and a strong signal in the
// sweeps so far. Then the test hangs up and the engine must leave.
void TestEngine::stream_data()
{
    QTest::addColumn<QString>("env");
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<QString>("records");
    const QString levels = "C" + QString(20, 'S') + "L";
    const QStringList none;
    QTest::newRow("2.4 GHz") << "" << none << levels;
    QTest::newRow("-r 2 in one word") << "" << QStringList{"-r 2"} << levels;
    QTest::newRow("-r 2 in two words") << "" << QStringList{"-r", "2"} << levels;
    // Distant access points: a floor near -95 dBm, no signal as strong as at 2.4 or 5 GHz.
    QTest::newRow("-r 3") << "" << QStringList{"-r 3"} << "C" + QString(20, 'S');
    QTest::newRow("rate 0") << "WSA_SIM_RATE=0" << none << "CQ";
    QTest::newRow("sweep limit") << "WSA_SIM_SWEEPS=3" << none << "CSSSQ";
    QTest::newRow("no probe") << "WSA_SIM_NO_PROBE=1" << none << "NE";
    QTest::newRow("lose after 3") << "WSA_SIM_LOSE_AFTER=3" << none << "CSSSDE";
    QTest::newRow("die after 3") << "WSA_SIM_DIE_AFTER=3" << none << "CSSSK";
    // Slow enough that the cut sweep arrives on its own.
    QTest::newRow("short after 2") << "WSA_SIM_RATE=5 WSA_SIM_SHORT_AFTER=2" << none << "CSSXS";
    QTest::newRow("corrupt after 2")
        << "WSA_SIM_CORRUPT_AFTER=2 WSA_SIM_SWEEPS=4" << none << "CSSBUSSQ";
}

void TestEngine::stream()
{
    QFETCH(QString, env);
    QFETCH(QStringList, args);
    QFETCH(QString, records);
    Engine e(args, env);
    for (int i = 0; i < records.size(); ++i)
        QVERIFY2(e.expect(records[i].toLatin1()), qPrintable(records.left(i + 1)));
    shutdown(e.link, SHUT_RDWR); // the analyzer leaves, and the engine quietly unless it crashed
    QVERIFY(e.proc.waitForFinished(5000) || e.proc.state() == QProcess::NotRunning);
    QCOMPARE(e.proc.exitStatus() == QProcess::NormalExit && e.proc.exitCode() == 0,
             !records.endsWith('K'));
}

void TestEngine::sameSeedSameBytes()
{
    QByteArray runs[3];
    for (int i = 0; i < 3; ++i) {
        // Slow enough that a busy machine never makes the output stage combine two sweeps.
        Engine e({"-r 2"},
                 QString("WSA_SIM_RATE=50 WSA_OUTPUT_RATE=50 WSA_SIM_SEED=%1").arg(i < 2 ? 7 : 8));
        runs[i].resize(20 * SA_RECORD_SIZE);
        QCOMPARE(recv(e.link, runs[i].data(), size_t(runs[i].size()), MSG_WAITALL),
                 ssize_t(runs[i].size()));
    }
    QVERIFY(runs[0] == runs[1] && runs[0] != runs[2]);
}

QTEST_GUILESS_MAIN(TestEngine)
#include "tst_engine.moc"
