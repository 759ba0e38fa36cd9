// The recorder under a front-end's control, in-process: start and stop, a new file per start,
// rollover at the size limit, the disk's free space, and files that cannot be made or written.
#include <QtTest>
#include <csignal>
#include <sys/resource.h>

#include "csvrecorder.h"
#include "enginerun.h"

namespace
{

struct Rig {
    ScriptClock clock{1};
    Engine engine{band24(), clock, Detector::Peak, 8};
    MemorySink spy;
    CsvRecorderSink recorder;
    std::vector<int> levels = std::vector<int>(SA_MAX_SAMPLES, -70);

    Rig(const QString& dir, bool startNow, RecorderPolicy policy = {})
        : recorder(dir.toStdString(), band24(), startNow, std::move(policy))
    {
        engine.addSink(&spy);
        engine.addSink(&recorder);
    }
    void sweeps(int n)
    {
        for (int i = 0; i < n; ++i)
            QCOMPARE(recorder.sweep(levels.data(), band24().grid.raw), SinkResult::Ok);
    }
    void record(bool on) { engine.control(wsa::ControlCommand::Record, on ? 1 : 0); }
};

// The size of one row as the recorder writes it.
std::int64_t rowBytes()
{
    QTemporaryDir dir;
    Rig rig(dir.path(), true);
    rig.sweeps(1);
    return QFileInfo(rig.recorder.path().c_str()).size();
}

// Rows per file, in the order the files were made: names sort by start, and within a second
// a numbered name follows the plain one.
QList<int> rowsPerFile(const QString& dir)
{
    QList<int> rows;
    QDir d(dir);
    QStringList names = d.entryList(QDir::Files);
    std::sort(names.begin(), names.end(), [](const QString& a, const QString& b) {
        return a.size() != b.size() ? a.size() < b.size() : a < b;
    });
    for (const QString& name : names) {
        QFile f(d.filePath(name));
        f.open(QIODevice::ReadOnly);
        rows << f.readAll().count('\n');
    }
    return rows;
}

} // namespace

class TestFrontRecorder : public QObject
{
    Q_OBJECT

private slots:
    void startAndStop();
    void rollsOverAtLimit();
    void diskSpace();
    void cannotRecord_data();
    void cannotRecord();
};

// Nothing is written before Record 1, which makes its file at once; Record 0 closes it with its
// size told; the next start makes a new file.
void TestFrontRecorder::startAndStop()
{
    QTemporaryDir dir;
    Rig rig(dir.path(), false);
    rig.sweeps(2);
    QVERIFY(QDir(dir.path()).entryList(QDir::Files).isEmpty());
    rig.record(true);
    QVERIFY(rig.recorder.isRecording());
    const std::string first = rig.recorder.path();
    QCOMPARE(rig.spy.recordings.back(), std::make_pair(std::int64_t(0), first));
    rig.sweeps(3);
    rig.record(true); // already recording: the same file
    rig.record(false);
    QVERIFY(!rig.recorder.isRecording());
    QCOMPARE(rig.spy.recordings.back().first, QFileInfo(first.c_str()).size());
    QCOMPARE(rig.spy.recordings.back().second, std::string());
    rig.sweeps(2);
    rig.record(true);
    rig.sweeps(1);
    QVERIFY(rig.recorder.path() != first);
    QCOMPARE(rowsPerFile(dir.path()), (QList<int>{3, 1}));
    QVERIFY(rig.spy.reasons.empty());
}

// A file takes whole rows up to the limit; the row that would pass it starts the next file.
void TestFrontRecorder::rollsOverAtLimit()
{
    const std::int64_t row = rowBytes();
    QTemporaryDir dir;
    RecorderPolicy policy;
    policy.limitBytes = 3 * row + row / 2;
    Rig rig(dir.path(), true, policy);
    rig.sweeps(7);
    QCOMPARE(rowsPerFile(dir.path()), (QList<int>{3, 3, 1}));
    // Each new file is told with its path.
    QCOMPARE(std::count_if(rig.spy.recordings.begin(), rig.spy.recordings.end(),
                           [](const auto& r) { return r.first == 0 && !r.second.empty(); }),
             3);
}

// Below the warning: one DiskAlmostFull per crossing; below the reserve: recording stops.
void TestFrontRecorder::diskSpace()
{
    QTemporaryDir dir;
    std::int64_t free = 5000;
    RecorderPolicy policy;
    policy.warnFreeBytes = 1000;
    policy.reserveFreeBytes = 100;
    policy.checkEveryBytes = 1;
    policy.freeBytes = [&free](const std::string&) { return free; };
    Rig rig(dir.path(), true, policy);
    rig.sweeps(2);
    free = 500;
    rig.sweeps(3);
    QCOMPARE(rig.spy.count(StatusReason::DiskAlmostFull), 1);
    free = 5000;
    rig.sweeps(1);
    free = 500;
    rig.sweeps(1);
    QCOMPARE(rig.spy.count(StatusReason::DiskAlmostFull), 2);
    free = 50;
    rig.sweeps(3);
    QCOMPARE(rig.spy.count(StatusReason::RecordingFailed), 1);
    QVERIFY(!rig.recorder.isRecording());
    QCOMPARE(rowsPerFile(dir.path()), QList<int>{7});
    QCOMPARE(rig.spy.recordings.back().second, std::string());
    // Started again while the disk is still full: refused at once, no empty file left.
    rig.record(true);
    QCOMPARE(rig.spy.count(StatusReason::RecordingFailed), 2);
    QCOMPARE(QDir(dir.path()).entryList(QDir::Files).size(), 1);
}

// A directory that cannot be made, none at all, a write that fails: RecordingFailed naming the
// file and the cause, and nothing more is attempted until the next start.
void TestFrontRecorder::cannotRecord_data()
{
    QTest::addColumn<QString>("dir");   // "FILE" stands for a regular file
    QTest::addColumn<int>("fileLimit"); // RLIMIT_FSIZE in rows; 0: none
    QTest::addColumn<QString>("cause");
    QTest::newRow("directory is a file") << "FILE/rec" << 0 << "FILE/rec: Not a directory";
    QTest::newRow("no directory") << "" << 0 << "(WSA_RECORD_DIR is not set)";
    QTest::newRow("write fails") << "rec" << 2 << ".csv: File too large";
}

void TestFrontRecorder::cannotRecord()
{
    QFETCH(QString, dir);
    QFETCH(int, fileLimit);
    QFETCH(QString, cause);
    QTemporaryDir tmp;
    QTemporaryFile file;
    QVERIFY(file.open());
    const QString path =
        dir.isEmpty() ? dir : tmp.filePath(dir).replace(tmp.filePath("FILE"), file.fileName());
    cause.replace("FILE", file.fileName());
    Rig rig(path, false);
    rlimit old{};
    getrlimit(RLIMIT_FSIZE, &old);
    if (fileLimit) {
        const rlim_t row = rlim_t(rowBytes());
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{row * rlim_t(fileLimit) + row / 2, old.rlim_max};
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &limit), 0);
    }
    rig.record(true);
    rig.sweeps(4);
    setrlimit(RLIMIT_FSIZE, &old);
    QCOMPARE(rig.spy.count(StatusReason::RecordingFailed), 1);
    QVERIFY2(QString::fromStdString(rig.spy.reasons[0].second).endsWith(cause),
             rig.spy.reasons[0].second.c_str());
    QVERIFY(!rig.recorder.isRecording());
}

QTEST_GUILESS_MAIN(TestFrontRecorder)
#include "tst_front_recorder.moc"
