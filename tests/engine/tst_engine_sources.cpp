// The engine's sweep program sources as the analyzer sees them: a stand-in hackrf_sweep
// (tests/stand-ins) feeds them. Every engine runs in its own directory and is read on its
// ./SERVERSOCK.
#include <QtTest>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/wait.h>

#include "enginerun.h"

class TestEngineSources : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        // Children of ended engines come to us, so we can tell that they end and collect them.
        prctl(PR_SET_CHILD_SUBREAPER, 1);
    }

    void hackrfLevels_data();
    void hackrfLevels();
    void paceAndNeverQueue();
    void noOrphanSweeper_data();
    void noOrphanSweeper();
};

// The stand-in reads -70 dB everywhere but in the 1 MHz bin from signalMHz, where it alternates
// -30 and -50 dB from sweep to sweep; the offset is -20 dB. Two records a second, so that each
// combines many sweeps even on a busy machine.
void TestEngineSources::hackrfLevels_data()
{
    QTest::addColumn<Band>("band");
    QTest::addColumn<QStringList>("env");
    QTest::addColumn<int>("signalMHz");
    QTest::addColumn<int>("lowest"); // of the signal bins, after the detector
    QTest::addColumn<int>("highest");
    const Band b24{false}, b5{true};
    QTest::newRow("2.4 GHz, peak") << b24 << QStringList() << 2437 << -50 << -50;
    // Mean power of a mix of -30 and -50 dB sweeps, minus 20: within -56..-51.
    QTest::newRow("2.4 GHz, average")
        << b24 << QStringList{"WSA_DETECTOR=average"} << 2437 << -56 << -51;
    QTest::newRow("2.4 GHz, five sweeps per write, band edge")
        << b24 << QStringList{"STANDIN_BURST=5", "STANDIN_RATE=8", "STANDIN_SIGNAL_MHZ=2489"}
        << 2489 << -50 << -50;
    QTest::newRow("5 GHz, peak") << b5 << QStringList{"STANDIN_SIGNAL_MHZ=5500"} << 5500 << -50
                                 << -50;
    // The same program through the general source, its range from the placeholders.
    QTest::newRow("any program, 5 GHz")
        << b5
        << QStringList{"STANDIN_SIGNAL_MHZ=5500", "WSA_SOURCE=program",
                       "WSA_SWEEP_PROGRAM=" + kStandIn + " -f {low_mhz}:{high_mhz} -w 1000000"}
        << 5500 << -50 << -50;
    QTest::newRow("6 GHz, peak") << kBand6 << QStringList{"STANDIN_SIGNAL_MHZ=6500"} << 6500 << -50
                                 << -50;
}

void TestEngineSources::hackrfLevels()
{
    QFETCH(Band, band);
    QFETCH(QStringList, env);
    QFETCH(int, signalMHz);
    QFETCH(int, lowest);
    QFETCH(int, highest);
    Run run(standIn(QStringList{"WSA_OUTPUT_RATE=2"} + env), band.args());
    QVERIFY(isConfigured(run.next(), band));
    // The first record may hold a single sweep; the later ones combine several.
    stSweep r;
    QVERIFY(run.nextSweep(r, band.raw()));
    for (int k = 0; k < 3; ++k) {
        QVERIFY(run.nextSweep(r, band.raw()));
        int signalBins = 0;
        for (int i = 0; i < band.raw(); ++i) {
            const double mhz = band.mhz(i);
            const bool inSignal = i < band.shown() && mhz >= signalMHz && mhz < signalMHz + 1;
            const bool inBand = i < band.shown();
            const int level = r.data[i];
            signalBins += inSignal;
            if (inSignal)
                QVERIFY2(level >= lowest && level <= highest, qPrintable(QString::number(level)));
            else
                QCOMPARE(level, inBand ? -90 : band.floor());
        }
        QVERIFY(signalBins >= 1);
    }
}

// At most WSA_OUTPUT_RATE records a second however fast the sweeps come; while the analyzer
// does not read, at most one record waits, and reading resumes with a current one.
void TestEngineSources::paceAndNeverQueue()
{
    Run run(standIn({"STANDIN_RATE=50", "WSA_OUTPUT_RATE=5"}));
    QVERIFY(isConfigured(run.next(), Band{false}));
    stSweep r;
    QVERIFY(run.nextSweep(r, Band{false}.raw()));
    QElapsedTimer clock;
    clock.start();
    int records = 0;
    while (clock.elapsed() < 2000)
        records += run.next(2000 - int(clock.elapsed())).type == SA_MSG_SWEEP;
    QVERIFY2(records >= 8 && records <= 11, qPrintable(QString::number(records)));

    QTest::qWait(1500); // a message box is open
    int waiting = 0;
    ioctl(run.link, FIONREAD, &waiting);
    QVERIFY2(waiting <= SA_RECORD_SIZE, qPrintable(QString::number(waiting)));
    QVERIFY(run.nextSweep(r, Band{false}.raw()));
    clock.restart();
    QVERIFY(run.nextSweep(r, Band{false}.raw()));
    QVERIFY2(clock.elapsed() <= 300, qPrintable(QString::number(clock.elapsed())));
}

void TestEngineSources::noOrphanSweeper_data()
{
    QTest::addColumn<bool>("killed");
    QTest::newRow("engine killed") << true;
    QTest::newRow("analyzer leaves") << false;
}

void TestEngineSources::noOrphanSweeper()
{
    QFETCH(bool, killed);
    QTemporaryDir tmp;
    const QString pidFile = tmp.filePath("pid");
    Run run(standIn({"STANDIN_PIDFILE=" + pidFile}));
    QVERIFY(isConfigured(run.next(), Band{false}));
    QFile f(pidFile);
    QVERIFY(f.open(QIODevice::ReadOnly));
    const pid_t sweeper = f.readAll().trimmed().toInt();
    QVERIFY(sweeper > 0 && kill(sweeper, 0) == 0);
    if (killed)
        run.proc.kill(); // as killall -9 wsa_raw does
    else
        shutdown(run.link, SHUT_RDWR);
    QVERIFY(run.proc.waitForFinished(5000));
    // As our orphan it would never end; ended, it is ours to collect.
    QTRY_VERIFY_WITH_TIMEOUT(waitpid(sweeper, nullptr, WNOHANG) != 0, 3000);
    QVERIFY(kill(sweeper, 0) == -1 && errno == ESRCH);
}

QTEST_GUILESS_MAIN(TestEngineSources)
#include "tst_engine_sources.moc"
