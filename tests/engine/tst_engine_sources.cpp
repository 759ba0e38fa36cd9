// The engine's sources as the analyzer sees them, each engine in its own directory and read on
// its ./SERVERSOCK: the sweep program sources fed by a stand-in hackrf_sweep (tests/stand-ins),
// recordings made and played back, saved sweep program output played back, and the headless
// engine that records and analyses with no analyzer at all.
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

    // The stand-in reads -70 dB everywhere but in the 1 MHz bin from signalMHz, where it alternates
    // -30 and -50 dB from sweep to sweep; the offset is -20 dB. Two records a second, so that each
    // combines many sweeps even on a busy machine. Whether the engine is killed, as killall -9
    // does, or the analyzer leaves, the sweep program ends with it.
    void hackrfLevels_data()
    {
        QTest::addColumn<Band>("band");
        QTest::addColumn<QStringList>("env");
        QTest::addColumn<int>("signalMHz");
        QTest::addColumn<int>("lowest"); // of the signal bins, after the detector
        QTest::addColumn<int>("highest");
        QTest::addColumn<bool>("killed");
        const Band b24{false}, b5{true};
        QTest::newRow("2.4 GHz, peak") << b24 << QStringList() << 2437 << -50 << -50 << true;
        // Mean power of a mix of -30 and -50 dB sweeps, minus 20: within -56..-51.
        QTest::newRow("2.4 GHz, average")
            << b24 << QStringList{"WSA_DETECTOR=average"} << 2437 << -56 << -51 << false;
        QTest::newRow("2.4 GHz, five sweeps per write, band edge")
            << b24 << QStringList{"STANDIN_BURST=5", "STANDIN_RATE=8", "STANDIN_SIGNAL_MHZ=2489"}
            << 2489 << -50 << -50 << false;
        QTest::newRow("5 GHz, peak")
            << b5 << QStringList{"STANDIN_SIGNAL_MHZ=5500"} << 5500 << -50 << -50 << true;
        // The same program through the general source, its range from the placeholders.
        QTest::newRow("any program, 5 GHz")
            << b5
            << QStringList{"STANDIN_SIGNAL_MHZ=5500", "WSA_SOURCE=program",
                           "WSA_SWEEP_PROGRAM=" + kStandIn + " -f {low_mhz}:{high_mhz} -w 1000000"}
            << 5500 << -50 << -50 << true;
        QTest::newRow("6 GHz, peak")
            << kBand6 << QStringList{"STANDIN_SIGNAL_MHZ=6500"} << 6500 << -50 << -50 << false;
    }

    void hackrfLevels()
    {
        QFETCH(Band, band);
        QFETCH(QStringList, env);
        QFETCH(int, signalMHz);
        QFETCH(int, lowest);
        QFETCH(int, highest);
        QFETCH(bool, killed);
        Run run(standIn(QStringList{"WSA_OUTPUT_RATE=2", "STANDIN_PIDFILE={dir}/pid", "STANDIN_STUBBORN=1"} + env),
                band.args());
        QVERIFY(isConfigured(run.next(), band));
        // The first record may hold a single sweep; the later ones combine several.
        stSweep r;
        QVERIFY(run.nextSweep(r, band.raw()));
        for (int k = 0; k < 3; ++k) {
            QVERIFY(run.nextSweep(r, band.raw()));
            int signalBins = 0;
            for (int i = 0; i < band.raw(); ++i) {
                const bool inBand = i < band.shown();
                const bool inSignal =
                    inBand && band.mhz(i) >= signalMHz && band.mhz(i) < signalMHz + 1;
                signalBins += inSignal;
                if (inSignal)
                    QVERIFY2(r.data[i] >= lowest && r.data[i] <= highest,
                             qPrintable(QString::number(r.data[i])));
                else
                    QCOMPARE(r.data[i], inBand ? -90 : band.floor());
            }
            QVERIFY(signalBins >= 1);
        }
        const pid_t sweeper = fileLines(run.dir.filePath("pid")).value(0).toInt();
        QVERIFY(sweeper > 0 && kill(sweeper, 0) == 0);
        if (killed)
            run.proc.kill();
        else
            shutdown(run.link, SHUT_RDWR);
        QVERIFY(run.proc.waitForFinished(5000));
        // It outlives a broken pipe, so only the engine can end it; as our orphan it would never
        // end, ended it is ours to collect.
        QTRY_VERIFY_WITH_TIMEOUT(waitpid(sweeper, nullptr, WNOHANG) != 0, 3000);
        QVERIFY(kill(sweeper, 0) == -1 && errno == ESRCH);
    }

    // At most WSA_OUTPUT_RATE records a second however fast the sweeps come; while the analyzer
    // does not read, at most one record waits, and reading resumes with a current one.
    void paceAndNeverQueue()
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

    void recordAndReplay_data()
    {
        QTest::addColumn<Band>("band");
        QTest::addColumn<bool>("cut");
        QTest::newRow("2.4 GHz") << Band{false} << false;
        QTest::newRow("5 GHz") << Band{true} << false;
        QTest::newRow("6 GHz") << kBand6 << false;
        QTest::newRow("2.4 GHz, last row cut") << Band{false} << true;
    }

    // What the simulated probe sent while recording comes back from the recording, sweep for sweep;
    // a comment line and a last row cut in half cost nothing else. At its end the replay stays.
    void recordAndReplay()
    {
        QFETCH(Band, band);
        QFETCH(bool, cut);
        QTemporaryDir tmp;
        const QString recordings = tmp.filePath("rec/dings");
        QList<QVector<int>> sent;
        {
            Run run({"WSA_SIM_RATE=20", "WSA_OUTPUT_RATE=20", "WSA_SIM_SWEEPS=12",
                     "WSA_RECORD_DIR=" + recordings},
                    band.args());
            QCOMPARE(run.next().type, char(SA_MSG_CONFIGURED));
            for (stSweep r = run.next(1000); r.type == SA_MSG_SWEEP; r = run.next(1000))
                sent << QVector<int>(r.data, r.data + band.shown());
        }
        QVERIFY(sent.size() >= 10);
        const QStringList files = QDir(recordings).entryList(QDir::Files);
        QCOMPARE(files.size(), 1);
        QVERIFY(files[0].endsWith(QString("-%1.csv").arg(band.plan().key)));
        QString file = QDir(recordings).filePath(files[0]);
        if (cut) {
            QStringList lines = fileLines(file);
            lines.last().truncate(lines.last().size() / 2);
            file = tmp.filePath("cut.csv");
            QFile out(file);
            QVERIFY(out.open(QIODevice::WriteOnly) &&
                    out.write(("# a comment line\n" + lines.join('\n')).toLatin1()) > 0);
            sent.removeLast();
        }

        Run replay({"WSA_SOURCE=replay", "WSA_REPLAY_FILE=" + file, "WSA_OUTPUT_RATE=100"},
                   band.args());
        const QList<QVector<int>> played = replayed(replay, band);
        QCOMPARE(played.size(), sent.size());
        for (int k = 0; k < sent.size(); ++k) {
            QCOMPARE(played[k].mid(0, band.shown()), sent[k]);
            QCOMPARE(played[k].mid(band.shown()),
                     QVector<int>(band.raw() - band.shown(), band.floor()));
        }
        QVERIFY(!replay.proc.waitForFinished(100));
    }

    // hackrf_sweep output saved to a file: many rows per sweep, out of order, a cut last line. Each
    // sweep comes back on its own, with the signal bins at -50 and -70 dBm in turn.
    void replaysSavedSweeperOutput()
    {
        QTemporaryDir tmp;
        QProcess sweeper;
        sweeper.setStandardOutputFile(tmp.filePath("saved.csv"));
        QProcessEnvironment e = QProcessEnvironment::systemEnvironment();
        e.insert("STANDIN_SWEEPS", "6");
        sweeper.setProcessEnvironment(e);
        const Band band{false};
        const wsa::SourceGrid& grid = band.plan().grid;
        sweeper.start(kStandIn, {"-f",
                                 QString("%1:%2")
                                     .arg(std::floor(grid.lowEdgeHz() / 1e6))
                                     .arg(std::ceil(grid.highEdgeHz() / 1e6)),
                                 "-w", "1000000"});
        QVERIFY(sweeper.waitForFinished(10000));

        Run run({"WSA_SOURCE=replay", "WSA_REPLAY_FILE=" + tmp.filePath("saved.csv"),
                 "WSA_LEVEL_OFFSET_DB=-20", "WSA_OUTPUT_RATE=200", "WSA_REPLAY_SPEED=0.5"});
        const QList<QVector<int>> played = replayed(run, band);
        QCOMPARE(played.size(), 6);
        for (int k = 0; k < 6; ++k)
            for (int i = 0; i < band.raw(); ++i) {
                const bool signal = band.mhz(i) >= 2437 && band.mhz(i) < 2438;
                QCOMPARE(played[k].value(i), signal ? (k % 2 ? -70 : -50) : -90);
            }
    }

    // A 512 MB line (a sparse file: no disk needed) ahead of a good row costs the engine no more
    // than a few MB: the line is skipped as it is read, and the row still plays.
    void replayHugeLineInBoundedMemory()
    {
        QTemporaryDir tmp;
        QFile f(tmp.filePath("huge.csv"));
        QVERIFY(f.open(QIODevice::WriteOnly) && f.resize(512LL << 20) && f.seek(512LL << 20));
        f.write("\n" + csvRow(std::llround(band24().grid.lowEdgeHz()), {-40}));
        f.close();
        Run run({"WSA_SOURCE=replay", "WSA_REPLAY_FILE=" + f.fileName()});
        const QList<QVector<int>> played = replayed(run, Band{false}, 10000);
        QCOMPARE(played.size(), 1);
        QCOMPARE(played[0].value(0), -40);
        const QStringList status = fileLines(QString("/proc/%1/status").arg(run.proc.processId()));
        const QRegularExpressionMatch m =
            QRegularExpression("VmHWM:\\s+(\\d+) kB").match(status.join('\n'));
        QVERIFY(m.hasMatch());
        QVERIFY2(m.captured(1).toInt() < 16 * 1024, qPrintable(m.captured(0)));
    }

    // The README shows a line of hackrf_sweep output; replayed as it stands, each analyzer bin
    // whose centre lies in one of its bins reads that bin's level, whole dBm.
    void documentedSampleLineParses()
    {
        // Whole sample lines; elided ones ("...") only illustrate.
        const QStringList samples =
            fileLines(WSA_SOURCE_DIR "/README.md")
                .filter(QRegularExpression("^\\d{4}-\\d\\d-\\d\\d, (?!.*\\.\\.\\.)"));
        QVERIFY(!samples.isEmpty());
        for (const QString& line : samples) {
            QTemporaryDir tmp;
            QFile f(tmp.filePath("sample.csv"));
            QVERIFY(f.open(QIODevice::WriteOnly) && f.write((line + "\n").toLatin1()) > 0);
            f.close();
            const QStringList fields = line.split(',');
            const double lowMHz = fields[2].toDouble() / 1e6, binMHz = fields[4].toDouble() / 1e6;
            Band band{false};
            for (const wsa::Band& b : wsa::allBands())
                if (lowMHz * 1e6 >= b.lowHz && lowMHz * 1e6 < b.highHz)
                    band.id = b.id;
            Run run({"WSA_SOURCE=replay", "WSA_REPLAY_FILE=" + f.fileName()}, band.args());
            const QList<QVector<int>> played = replayed(run, band);
            QCOMPARE(played.size(), 1);
            int matched = 0;
            for (int i = 0; i < band.shown(); ++i) {
                const int k = int(std::floor((band.mhz(i) - lowMHz) / binMHz));
                if (k < 0 || 6 + k >= fields.size())
                    continue;
                QCOMPARE(played[0].value(i), int(std::lround(fields[6 + k].toDouble())));
                ++matched;
            }
            QVERIFY(matched > 0);
        }
    }

    // WSA_RECORD_ONLY=1 records and analyses with no analyzer at all, until the source ends or it
    // is told to stop; however it stops cleanly, the analysis file ends with the channels and the
    // summary. Without a directory there is nothing to do; an analysis file that cannot be made
    // leaves the recording going.
    void headless_data()
    {
        QTest::addColumn<QStringList>("env");
        QTest::addColumn<int>(
            "terminateMs"); // SIGTERM after this long, else (0) it ends on its own
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<int>("stderrLines");
        QTest::addColumn<int>("minRows");
        QTest::addColumn<int>("maxRows");
        QTest::addColumn<bool>("analysed"); // the analysis file is whole
        const QStringList fast{"WSA_RECORD_ONLY=1", "WSA_SIM_RATE=40", "WSA_OUTPUT_RATE=40"};
        const QStringList analyse{"WSA_RECORD_ONLY=1", "WSA_SIM_SCENE=emitters", "WSA_SIM_RATE=200",
                                  "WSA_OUTPUT_RATE=8", "WSA_ANALYSIS_FILE=analysis.jsonl"};
        const QStringList rec{"WSA_RECORD_DIR=rec"}, sweeps300{"WSA_SIM_SWEEPS=300"};
        QTest::newRow("source ends")
            << fast + rec + QStringList{"WSA_SIM_SWEEPS=6"} << 0 << 0 << 0 << 3 << 6 << false;
        QTest::newRow("stopped by SIGTERM") << fast + rec << 1000 << 0 << 0 << 10 << 60 << false;
        QTest::newRow("nowhere to record") << fast << 0 << 2 << 1 << 0 << 0 << false;
        QTest::newRow("analysis, source ends")
            << analyse + sweeps300 << 0 << 0 << 0 << 0 << 0 << true;
        QTest::newRow("analysis, stopped by SIGTERM")
            << analyse << 2000 << 0 << 0 << 0 << 0 << true;
        QTest::newRow("analysis beside a recording")
            << analyse + sweeps300 + rec << 0 << 0 << 0 << 1 << 300 << true;
        QTest::newRow("analysis file cannot be created")
            << QStringList{"WSA_RECORD_ONLY=1", "WSA_SIM_SWEEPS=20", "WSA_RECORD_DIR=rec",
                           "WSA_ANALYSIS_FILE=missing/analysis.jsonl"}
            << 0 << 0 << 1 << 1 << 20 << false;
    }

    void headless()
    {
        QFETCH(QStringList, env);
        QFETCH(int, terminateMs);
        QFETCH(int, exitCode);
        QFETCH(int, stderrLines);
        QFETCH(int, minRows);
        QFETCH(int, maxRows);
        QFETCH(bool, analysed);
        Run run(env, {}, Run::Nobody);
        QVERIFY(run.proc.waitForStarted());
        if (terminateMs) {
            QVERIFY(!run.proc.waitForFinished(terminateMs));
            run.proc.terminate();
        }
        QVERIFY(run.proc.waitForFinished(10000));
        QCOMPARE(run.proc.exitStatus(), QProcess::NormalExit);
        QCOMPARE(run.proc.exitCode(), exitCode);
        QCOMPARE(run.said().size(), stderrLines);
        const QStringList rows = run.rows();
        QVERIFY2(rows.size() >= minRows && rows.size() <= maxRows,
                 qPrintable(QString::number(rows.size())));
        for (const QString& row : rows)
            QCOMPARE(row.count(','), 5 + Band{false}.shown());
        const QStringList lines = fileLines(run.dir.filePath("analysis.jsonl"));
        QCOMPARE(lines.isEmpty(), !analysed);
        if (!analysed)
            return;
        QVERIFY(lines.size() > int(band24().channels(20).size()));
        const QJsonObject summary = QJsonDocument::fromJson(lines.last().toUtf8()).object();
        QCOMPARE(summary["type"].toString(), QString("summary"));
        QVERIFY(summary["sweeps"].toInt() >= 250);
        QVERIFY(std::any_of(lines.begin(), lines.end(),
                            [](const QString& l) { return l.contains("\"type\":\"emitter\""); }));
    }
};

QTEST_GUILESS_MAIN(TestEngineSources)
#include "tst_engine_sources.moc"
