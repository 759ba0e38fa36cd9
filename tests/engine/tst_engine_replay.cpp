// Recordings as the analyzer sees them: made with the simulated probe, with no analyzer at all,
// and played back; saved sweep program output played back.
#include <QtTest>

#include "enginerun.h"

class TestEngineReplay : public QObject
{
    Q_OBJECT

private slots:
    void recordAndReplay_data();
    void recordAndReplay();
    void replaysSavedSweeperOutput();
    void replayHugeLineInBoundedMemory();
    void documentedSampleLineParses();
    void recordOnly_data();
    void recordOnly();
};

void TestEngineReplay::recordAndReplay_data()
{
    QTest::addColumn<Band>("band");
    QTest::addColumn<bool>("cut");
    QTest::newRow("2.4 GHz") << Band{false} << false;
    QTest::newRow("5 GHz") << Band{true} << false;
    QTest::newRow("6 GHz") << kBand6 << false;
    QTest::newRow("2.4 GHz, last row cut") << Band{false} << true;
}

void TestEngineReplay::recordAndReplay()
{
    QFETCH(Band, band);
    QFETCH(bool, cut);
    const QStringList bandArgs = band.args();
    QTemporaryDir tmp;
    const QString recordings = tmp.filePath("rec/dings");
    QList<QVector<int>> sent;
    {
        Run run({"WSA_SIM_RATE=20", "WSA_OUTPUT_RATE=20", "WSA_SIM_SWEEPS=12",
                 "WSA_RECORD_DIR=" + recordings},
                bandArgs);
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
        QFile f(file);
        QVERIFY(f.open(QIODevice::ReadOnly));
        QByteArray text = f.readAll();
        // Half of the last row, without its end.
        const int lastRow = int(text.lastIndexOf('\n', text.size() - 2)) + 1;
        text.truncate(lastRow + (text.size() - lastRow) / 2);
        file = tmp.filePath("cut.csv");
        QFile out(file);
        QVERIFY(out.open(QIODevice::WriteOnly) && out.write("# a comment line\n" + text) > 0);
        sent.removeLast();
    }

    Run replay({"WSA_SOURCE=replay", "WSA_REPLAY_FILE=" + file, "WSA_OUTPUT_RATE=100"}, bandArgs);
    const QList<QVector<int>> played = replayed(replay, band);
    QCOMPARE(played.size(), sent.size());
    for (int k = 0; k < sent.size(); ++k) {
        QCOMPARE(played[k].mid(0, band.shown()), sent[k]);
        QCOMPARE(played[k].mid(band.shown()),
                 QVector<int>(band.raw() - band.shown(), band.floor()));
    }
    // At its end the replay stays connected.
    QVERIFY(!replay.proc.waitForFinished(100));
}

// hackrf_sweep output saved to a file: many rows per sweep, out of order, a cut last line. Each
// sweep comes back on its own, with the signal bins at -50 and -70 dBm in turn.
void TestEngineReplay::replaysSavedSweeperOutput()
{
    QTemporaryDir tmp;
    QProcess sweeper;
    sweeper.setStandardOutputFile(tmp.filePath("saved.csv"));
    QProcessEnvironment e = QProcessEnvironment::systemEnvironment();
    e.insert("STANDIN_SWEEPS", "6");
    sweeper.setProcessEnvironment(e);
    const wsa::SourceGrid& grid = Band{false}.plan().grid;
    sweeper.start(kStandIn, {"-f",
                             QString("%1:%2")
                                 .arg(std::floor(grid.lowEdgeHz() / 1e6))
                                 .arg(std::ceil(grid.highEdgeHz() / 1e6)),
                             "-w", "1000000"});
    QVERIFY(sweeper.waitForFinished(10000));

    const Band band{false};
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
void TestEngineReplay::replayHugeLineInBoundedMemory()
{
    QTemporaryDir tmp;
    const wsa::SourceGrid& grid = Band{false}.plan().grid;
    QFile f(tmp.filePath("huge.csv"));
    QVERIFY(f.open(QIODevice::WriteOnly) && f.resize(512LL << 20) && f.seek(512LL << 20));
    f.write("\n" + csvRow(std::llround(grid.lowEdgeHz()), {-40}));
    f.close();
    Run run({"WSA_SOURCE=replay", "WSA_REPLAY_FILE=" + f.fileName()});
    const QList<QVector<int>> played = replayed(run, Band{false}, 10000);
    QCOMPARE(played.size(), 1);
    QCOMPARE(played[0].value(0), -40);
    QFile status(QString("/proc/%1/status").arg(run.proc.processId()));
    QVERIFY(status.open(QIODevice::ReadOnly));
    const QString text = status.readAll();
    const QRegularExpressionMatch m = QRegularExpression("VmHWM:\\s+(\\d+) kB").match(text);
    QVERIFY(m.hasMatch());
    QVERIFY2(m.captured(1).toInt() < 16 * 1024, qPrintable(m.captured(0)));
}

// The README shows a line of hackrf_sweep output; replayed as it stands, each analyzer bin whose
// centre lies in one of its bins reads that bin's level, whole dBm.
void TestEngineReplay::documentedSampleLineParses()
{
    QFile readme(WSA_SOURCE_DIR "/README.md");
    QVERIFY(readme.open(QIODevice::ReadOnly));
    // Whole sample lines; elided ones ("...") only illustrate.
    const QStringList samples =
        QString(readme.readAll())
            .split('\n')
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

// WSA_RECORD_ONLY=1 records with no analyzer at all, until the source ends or it is told to stop;
// without a directory there is nothing to do.
void TestEngineReplay::recordOnly_data()
{
    QTest::addColumn<QStringList>("env");
    QTest::addColumn<bool>("terminate"); // by SIGTERM after a second, else on its own
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<int>("minRows");
    QTest::addColumn<int>("maxRows");
    const QStringList fast{"WSA_RECORD_ONLY=1", "WSA_SIM_RATE=40", "WSA_OUTPUT_RATE=40"};
    QTest::newRow("source ends") << fast + QStringList{"WSA_SIM_SWEEPS=6", "WSA_RECORD_DIR=rec"}
                                 << false << 0 << 3 << 6;
    QTest::newRow("stopped by SIGTERM")
        << fast + QStringList{"WSA_RECORD_DIR=rec"} << true << 0 << 10 << 60;
    QTest::newRow("nowhere to record") << fast << false << 2 << 0 << 0;
}

void TestEngineReplay::recordOnly()
{
    QFETCH(QStringList, env);
    QFETCH(bool, terminate);
    QFETCH(int, exitCode);
    QFETCH(int, minRows);
    QFETCH(int, maxRows);
    Run run(env, {}, Run::Nobody);
    QVERIFY(run.proc.waitForStarted());
    if (terminate) {
        QVERIFY(!run.proc.waitForFinished(1000));
        run.proc.terminate();
    }
    QVERIFY(run.proc.waitForFinished(5000));
    QCOMPARE(run.proc.exitStatus(), QProcess::NormalExit);
    QCOMPARE(run.proc.exitCode(), exitCode);
    const QStringList lines =
        QString(run.proc.readAllStandardError()).split('\n', Qt::SkipEmptyParts);
    QCOMPARE(lines.size(), exitCode == 0 ? 0 : 1);
    const QStringList rows = run.rows();
    QVERIFY2(rows.size() >= minRows && rows.size() <= maxRows,
             qPrintable(QString::number(rows.size())));
    for (const QString& row : rows)
        QCOMPARE(row.count(','), 5 + Band{false}.shown());
}

QTEST_GUILESS_MAIN(TestEngineReplay)
#include "tst_engine_replay.moc"
