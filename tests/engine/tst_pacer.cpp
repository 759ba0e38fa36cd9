// The engine library in-process: the pacing stage on a fake clock, the per-sweep observers,
// and two engines side by side in one process.
#include <QtTest>
#include <atomic>
#include <cmath>
#include <thread>

#include "enginecore.h"
#include "pacer.h"
#include "registry.h"
#include "sources/sweepprogram/sweepprogram.h"

namespace
{

class FakeClock : public Clock
{
public:
    // Each reading moves the clock on by `tick`: a source's loop then runs in fake time.
    explicit FakeClock(long long tickNs = 0) : m_tickNs(tickNs) {}
    long long nowNs() const override { return m_nowNs += m_tickNs; }
    void advanceMs(double ms) { m_nowNs += (long long)(ms * 1e6); }

private:
    long long m_tickNs;
    mutable std::atomic<long long> m_nowNs{1000000000LL};
};

class MemorySink : public Sink
{
public:
    bool isReady = true;
    SinkResult answer = SinkResult::Ok;
    std::vector<std::vector<int>> sweeps;
    std::string events; // C configured, S sweep, N no probe, D disconnect, X damaged

    bool ready() const override { return isReady; }
    SinkResult announce(const wsa::Announcement&) override { return note('C'); }
    SinkResult sweep(const int* levels, int count) override
    {
        sweeps.emplace_back(levels, levels + count);
        return note('S');
    }
    SinkResult fault(Fault f) override { return note(f == Fault::NoProbe ? 'N' : 'D'); }
    SinkResult damaged(Damage, const int*, int) override { return note('X'); }
    void reason(StatusReason r, const std::string& text) override { reasons.emplace_back(r, text); }
    std::vector<std::pair<StatusReason, std::string>> reasons;

private:
    SinkResult note(char c)
    {
        events += c;
        return answer;
    }
};

class CountingObserver : public SweepObserver
{
public:
    int sweeps = 0;
    int bins = 0;
    void take(const float*, int n, double) override
    {
        ++sweeps;
        bins = n;
    }
};

const wsa::Band& band24()
{
    return *wsa::findBand(wsa::BandId::Ghz24);
}

std::vector<double> flat(double dbm)
{
    return std::vector<double>(SA_MAX_SAMPLES, dbm);
}

// What one engine delivers from a source run to its end.
struct Outcome {
    int status = -1;
    std::string events;
    std::vector<std::vector<int>> sweeps;
    int observed = 0;
};

Outcome runSource(const wsa::Band& band, Source& source, const Clock& clock, double rate)
{
    MemorySink sink;
    CountingObserver observer;
    Engine engine(band, clock, Detector::Peak, rate);
    engine.addSink(&sink);
    engine.addObserver(&observer);
    Outcome out;
    out.status = source.run(engine);
    out.events = sink.events;
    out.sweeps = sink.sweeps;
    out.observed = observer.sweeps;
    return out;
}

Settings simSettings(const char* seed, const char* sweeps)
{
    Settings s;
    s.set("WSA_SIM_SEED", seed);
    s.set("WSA_SIM_SWEEPS", sweeps);
    s.set("WSA_SIM_RATE", "1000");
    return s;
}

} // namespace

class TestPacer : public QObject
{
    Q_OBJECT

private slots:
    void outputRate();
    void detectors();
    void neverQueuesBehindSlowReader();
    void resumesWithoutBurst();
    void sinkFailureStops();
    void observersSeeEverySweep();
    void twoEnginesInOneProcess();
    void failuresCarryTheirReason_data();
    void failuresCarryTheirReason();
};

// Sweeps every 10 ms for a second reach the sinks ten times at 10 records a second.
void TestPacer::outputRate()
{
    FakeClock clock;
    MemorySink sink;
    Pacer pacer(band24().grid, Detector::Peak, 10, clock);
    const std::vector<double> sweep = flat(-80);
    for (int k = 0; k < 100; ++k) {
        pacer.offer(sweep.data());
        const Pacer::Step step = pacer.service({&sink});
        QCOMPARE(step.result, SinkResult::Ok);
        // Between slots it asks to be woken for the next one, never later.
        QVERIFY(!pacer.pending() ||
                (step.wakeNs > clock.nowNs() - 1 && step.wakeNs <= clock.nowNs() + 100000000LL));
        clock.advanceMs(10);
    }
    QVERIFY2(sink.sweeps.size() >= 10 && sink.sweeps.size() <= 11,
             qPrintable(QString::number(sink.sweeps.size())));
    QCOMPARE(sink.sweeps[0].size(), std::size_t(band24().grid.raw));
}

void TestPacer::detectors()
{
    FakeClock clock;
    const double levels[] = {-50, -30, -40};
    for (Detector detector : {Detector::Peak, Detector::Average}) {
        MemorySink sink;
        Pacer pacer(band24().grid, detector, 10, clock);
        pacer.offer(flat(-90).data());
        pacer.service({&sink}); // the first slot is due at once
        for (double level : levels)
            pacer.offer(flat(level).data());
        clock.advanceMs(100);
        pacer.service({&sink});
        QCOMPARE(sink.sweeps.size(), std::size_t(2));
        // Mean power of 10 uW, 1 mW and 100 uW is 370 uW: -4.3 dBm below -30.
        QCOMPARE(sink.sweeps[1][5], detector == Detector::Peak ? -30 : -34);
    }
    // Absurd levels stay printable whole dBm.
    MemorySink sink;
    Pacer pacer(band24().grid, Detector::Peak, 10, clock);
    pacer.offer(flat(-1e6).data());
    pacer.service({&sink});
    QCOMPARE(sink.sweeps.at(0)[0], -200);
}

// While the reader does not read nothing is delivered, however much time passes; once it reads,
// it gets one record holding only the sweeps of the last period, not the stale ones.
void TestPacer::neverQueuesBehindSlowReader()
{
    FakeClock clock;
    MemorySink sink;
    Pacer pacer(band24().grid, Detector::Peak, 10, clock);
    pacer.offer(flat(-90).data());
    pacer.service({&sink});
    sink.isReady = false;
    pacer.offer(flat(-20).data()); // a strong sweep while the reader is away
    for (int k = 0; k < 50; ++k) {
        clock.advanceMs(100);
        const Pacer::Step step = pacer.service({&sink});
        QVERIFY(step.wakeNs >= 0); // it keeps looking
    }
    QCOMPARE(sink.sweeps.size(), std::size_t(1));
    pacer.offer(flat(-70).data());
    sink.isReady = true;
    clock.advanceMs(1);
    pacer.service({&sink});
    QCOMPARE(sink.sweeps.size(), std::size_t(2));
    QCOMPARE(sink.sweeps[1][0], -70);
}

// After a pause the slots start afresh: two sweeps right after each other give one record, the
// next a period later.
void TestPacer::resumesWithoutBurst()
{
    FakeClock clock;
    MemorySink sink;
    Pacer pacer(band24().grid, Detector::Peak, 10, clock);
    pacer.offer(flat(-90).data());
    pacer.service({&sink});
    clock.advanceMs(5000);
    for (int k = 0; k < 3; ++k) {
        pacer.offer(flat(-90).data());
        pacer.service({&sink});
        clock.advanceMs(30);
    }
    QCOMPARE(sink.sweeps.size(), std::size_t(2));
    clock.advanceMs(20);
    pacer.service({&sink});
    QCOMPARE(sink.sweeps.size(), std::size_t(3));
}

void TestPacer::sinkFailureStops()
{
    FakeClock clock;
    MemorySink first, second;
    first.answer = SinkResult::Closed;
    Pacer pacer(band24().grid, Detector::Peak, 10, clock);
    pacer.offer(flat(-90).data());
    QCOMPARE(pacer.service({&first, &second}).result, SinkResult::Closed);
    QVERIFY(second.sweeps.empty()); // a recording holds only what the analyzer was sent
}

// The simulated probe at 1000 sweeps a second, paced to 8 records a second: the sinks get few,
// the observers every one.
void TestPacer::observersSeeEverySweep()
{
    for (const wsa::Band& band : wsa::allBands()) {
        FakeClock clock(2000000); // 2 ms a reading: no real waiting
        auto source = findSource("sim")->make(simSettings("5", "200"), band);
        const Outcome out = runSource(band, *source, clock, 8);
        QCOMPARE(out.status, 0);
        QCOMPARE(out.observed, 200);
        QVERIFY2(out.sweeps.size() >= 2 && out.sweeps.size() < 20,
                 qPrintable(QString::number(out.sweeps.size())));
        QCOMPARE(out.events.substr(0, 2), std::string("CS"));
    }
}

// Two engines run at once, each with its own source, give what each gives alone: nothing is
// shared between them. One pair is simulated probes, one pair reads sweep programs.
void TestPacer::twoEnginesInOneProcess()
{
    QTemporaryDir tmp;
    const wsa::Band& b5 = *wsa::findBand(wsa::BandId::Ghz5);
    // A sweep program's output, one sweep of 1 MHz rows per band, 50 times.
    std::vector<SweepCommand> commands;
    for (const wsa::Band* band : {&band24(), &b5}) {
        QFile f(tmp.filePath(band->key));
        QVERIFY(f.open(QIODevice::WriteOnly));
        for (int k = 0; k < 50; ++k)
            for (double hz = band->grid.lowEdgeHz(); hz < band->grid.highEdgeHz(); hz += 5e6)
                f.write(QString("2024-03-01, 12:00:%1, %2, %3, 1000000.00, 20, -60, -61, -62, "
                                "-63, %4\n")
                            .arg(k % 60, 2, 10, QChar('0'))
                            .arg(qint64(hz))
                            .arg(qint64(hz + 5e6))
                            .arg(band == &b5 ? -40 : -50)
                            .toLatin1());
        commands.push_back({{"cat", f.fileName().toStdString()}, 0, {}});
    }
    const auto runBoth = [&](bool together) {
        std::vector<Outcome> out(4);
        const auto job = [&](int i) {
            const wsa::Band& band = i % 2 ? b5 : band24();
            FakeClock clock(2000000);
            std::unique_ptr<Source> source =
                i < 2 ? findSource("sim")->make(simSettings(i ? "9" : "3", "40"), band)
                      : makeSweepProgramSource(commands[std::size_t(i % 2)], band);
            out[std::size_t(i)] = runSource(band, *source, clock, 1000);
        };
        if (together) {
            std::vector<std::thread> threads;
            for (int i = 0; i < 4; ++i)
                threads.emplace_back(job, i);
            for (std::thread& t : threads)
                t.join();
        } else {
            for (int i = 0; i < 4; ++i)
                job(i);
        }
        return out;
    };
    const std::vector<Outcome> alone = runBoth(false), together = runBoth(true);
    for (int i = 0; i < 2; ++i) {
        QCOMPARE(together[i].sweeps, alone[i].sweeps);
        QCOMPARE(together[i].observed, 40);
    }
    // A program's sweeps all look alike, however pacing combines them.
    for (int i = 2; i < 4; ++i) {
        const Outcome& o = together[std::size_t(i)];
        // A live stream's last sweep is whole only when the next begins, which never comes.
        QCOMPARE(o.observed, 49);
        QCOMPARE(o.events.front(), 'C');
        QCOMPARE(o.events.back(), 'D'); // the program ended: the radio is lost
        for (const std::vector<int>& sweep : o.sweeps)
            QCOMPARE(sweep, alone[std::size_t(i)].sweeps.front());
        const std::vector<int>& first = o.sweeps.front();
        const int shown = (i == 3 ? b5 : band24()).grid.shown;
        QCOMPARE(*std::max_element(first.begin(), first.begin() + shown), i == 3 ? -40 : -50);
    }
}

// Front-ends other than the handheld learn why a source cannot deliver, by name.
void TestPacer::failuresCarryTheirReason_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QStringList>("settings");
    QTest::addColumn<int>("reason");
    QTest::addColumn<QString>("text");
    QTest::newRow("program not installed")
        << "hackrf" << QStringList{"WSA_HACKRF_SWEEP=/nonexistent/hackrf_sweep"}
        << int(StatusReason::ProgramMissing) << "install the hackrf package";
    QTest::newRow("no device") << "hackrf" << QStringList{"WSA_HACKRF_SWEEP=false"}
                               << int(StatusReason::NoDevice) << "false ended before measuring";
    QTest::newRow("program not executable")
        << "hackrf" << QStringList{"WSA_HACKRF_SWEEP=" + QString(WSA_SOURCE_DIR) + "/README.md"}
        << int(StatusReason::ProgramMissing) << "README.md is not installed";
    QTest::newRow("recording missing")
        << "replay" << QStringList{"WSA_REPLAY_FILE=/nonexistent/rec.csv"}
        << int(StatusReason::FileMissing) << "/nonexistent/rec.csv";
    QTest::newRow("recording not a file")
        << "replay" << QStringList{"WSA_REPLAY_FILE=/dev/null"} << int(StatusReason::FileUnusable)
        << "/dev/null is not a regular file";
    QTest::newRow("not a recording")
        << "replay" << QStringList{"WSA_REPLAY_FILE=" + QString(WSA_SOURCE_DIR) + "/CMakeLists.txt"}
        << int(StatusReason::NotInBand) << "CMakeLists.txt has no sweep in this band";
    QTest::newRow("no program given")
        << "program" << QStringList{} << int(StatusReason::ProgramMissing) << "WSA_SWEEP_PROGRAM";
}

void TestPacer::failuresCarryTheirReason()
{
    QFETCH(QString, source);
    QFETCH(QStringList, settings);
    QFETCH(int, reason);
    QFETCH(QString, text);
    Settings s;
    for (const QString& setting : settings)
        s.set(setting.section('=', 0, 0).toStdString(), setting.section('=', 1).toStdString());
    FakeClock clock(2000000);
    MemorySink sink;
    Engine engine(band24(), clock, Detector::Peak, 8);
    engine.addSink(&sink);
    QCOMPARE(findSource(source.toStdString())->make(s, band24())->run(engine), 0);
    QCOMPARE(sink.events, std::string("N"));
    QCOMPARE(sink.reasons.size(), std::size_t(1));
    QCOMPARE(int(sink.reasons[0].first), reason);
    QVERIFY2(QString::fromStdString(sink.reasons[0].second).contains(text),
             sink.reasons[0].second.c_str());
}

QTEST_GUILESS_MAIN(TestPacer)
#include "tst_pacer.moc"
