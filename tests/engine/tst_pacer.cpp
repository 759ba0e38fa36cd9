// The engine library in-process: the pacing stage on a fake clock, the per-sweep observers,
// and two engines side by side in one process.
#include <QtTest>
#include <atomic>
#include <cmath>
#include <thread>

#include "enginerun.h"
#include "pacer.h"
#include "registry.h"
#include "sources/sweepprogram/sweepprogram.h"

namespace
{

// Counts the sweeps it sees and sums their levels, each weighted by its place.
class CountingObserver : public SweepObserver
{
public:
    int sweeps = 0;
    double digest = 0;
    void take(const float* dbm, int n, double) override
    {
        for (int i = 0; i < n; ++i)
            digest += dbm[i] * double(i + 1) * (sweeps + 1);
        ++sweeps;
    }
};

std::vector<double> flat(double dbm)
{
    return std::vector<double>(SA_MAX_SAMPLES, dbm);
}

// A pacer at 10 records a second on a clock that moves only when told, and its one sink.
struct Paced {
    ScriptClock clock{1, 1000000000LL};
    MemorySink sink;
    Pacer pacer;
    explicit Paced(Detector detector = Detector::Peak) : pacer(band24().grid, detector, 10, clock)
    {
    }
    Pacer::Step service() { return pacer.service({&sink}); }
    Pacer::Step offer(double dbm)
    {
        pacer.offer(flat(dbm).data());
        return service();
    }
};

// What one engine delivers from a source run to its end.
struct Outcome {
    int status = -1;
    MemorySink sink;
    CountingObserver seen;
};

void runSource(Outcome& out, const wsa::Band& band, Source& source, const Clock& clock, double rate)
{
    Engine engine(band, clock, Detector::Peak, rate);
    engine.addSink(&out.sink);
    engine.addObserver(&out.seen);
    out.status = source.run(engine);
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
    void enginesSideBySide();
};

// Sweeps every 10 ms for a second reach the sinks ten times at 10 records a second.
void TestPacer::outputRate()
{
    Paced p;
    for (int k = 0; k < 100; ++k) {
        const Pacer::Step step = p.offer(-80);
        QCOMPARE(step.result, SinkResult::Ok);
        // Between slots it asks to be woken for the next one, never later.
        const long long now = p.clock.peekNs();
        QVERIFY(!p.pacer.pending() ||
                (step.wakeNs >= now - 10 && step.wakeNs <= now + 100000000LL));
        p.clock.advanceMs(10);
    }
    QVERIFY2(p.sink.sweeps.size() >= 10 && p.sink.sweeps.size() <= 11,
             qPrintable(QString::number(p.sink.sweeps.size())));
    QCOMPARE(p.sink.sweeps[0].size(), std::size_t(band24().grid.raw));
}

void TestPacer::detectors()
{
    for (Detector detector : {Detector::Peak, Detector::Average}) {
        Paced p(detector);
        p.offer(-90); // the first slot is due at once
        for (double level : {-50, -30, -40})
            p.pacer.offer(flat(level).data());
        p.clock.advanceMs(100);
        p.service();
        QCOMPARE(p.sink.sweeps.size(), std::size_t(2));
        // Mean power of 10 uW, 1 mW and 100 uW is 370 uW: -4.3 dBm below -30.
        QCOMPARE(p.sink.sweeps[1][5], detector == Detector::Peak ? -30 : -34);
    }
    // Absurd levels stay printable whole dBm.
    Paced p;
    p.offer(-1e6);
    QCOMPARE(p.sink.sweeps.at(0)[0], -200);
}

// While the reader does not read nothing is delivered, however much time passes; once it reads,
// it gets one record holding only the sweeps of the last period, not the stale ones.
void TestPacer::neverQueuesBehindSlowReader()
{
    Paced p;
    p.offer(-90);
    p.sink.isReady = false;
    p.pacer.offer(flat(-20).data()); // a strong sweep while the reader is away
    for (int k = 0; k < 50; ++k) {
        p.clock.advanceMs(100);
        QVERIFY(p.service().wakeNs >= 0); // it keeps looking
    }
    QCOMPARE(p.sink.sweeps.size(), std::size_t(1));
    p.pacer.offer(flat(-70).data());
    p.sink.isReady = true;
    p.clock.advanceMs(1);
    p.service();
    QCOMPARE(p.sink.sweeps.size(), std::size_t(2));
    QCOMPARE(p.sink.sweeps[1][0], -70);
}

// After a pause the slots start afresh: two sweeps right after each other give one record, the
// next a period later.
void TestPacer::resumesWithoutBurst()
{
    Paced p;
    p.offer(-90);
    p.clock.advanceMs(5000);
    for (int k = 0; k < 3; ++k) {
        p.offer(-90);
        p.clock.advanceMs(30);
    }
    QCOMPARE(p.sink.sweeps.size(), std::size_t(2));
    p.clock.advanceMs(20);
    p.service();
    QCOMPARE(p.sink.sweeps.size(), std::size_t(3));
}

void TestPacer::sinkFailureStops()
{
    Paced p;
    MemorySink first;
    first.answer = SinkResult::Closed;
    p.pacer.offer(flat(-90).data());
    QCOMPARE(p.pacer.service({&first, &p.sink}).result, SinkResult::Closed);
    QVERIFY(p.sink.sweeps.empty()); // a recording holds only what the analyzer was sent
}

// Engines run at once, each with its own source, give what each gives alone: nothing is shared
// between them. Simulated probes at 1000 sweeps a second, paced to 8 records a second: the sinks
// get few, the observers every one; sweep programs, paced to 1000, give every sweep.
void TestPacer::enginesSideBySide()
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
                f.write(csvRow(qint64(hz), {-60, -61, -62, -63, band == &b5 ? -40. : -50.}, k));
        commands.push_back({{"cat", f.fileName().toStdString()}, 0, {}});
    }
    const int sims = int(wsa::allBands().size());
    const auto runAll = [&](bool together) {
        std::vector<Outcome> out(std::size_t(sims + 2));
        const auto job = [&](int i) {
            const wsa::Band& band = i < sims ? wsa::allBands()[std::size_t(i)]
                                    : i % 2  ? b5
                                             : band24();
            ScriptClock clock(2000000); // 2 ms a reading: no real waiting
            std::unique_ptr<Source> source =
                i < sims ? findSource("sim")->make(simSettings(i % 2 ? "9" : "3", "200"), band)
                         : makeSweepProgramSource(commands[std::size_t(i % 2)], band);
            runSource(out[std::size_t(i)], band, *source, clock, i < sims ? 8 : 1000);
        };
        std::vector<std::thread> threads;
        for (int i = 0; i < sims + 2; ++i)
            if (together)
                threads.emplace_back(job, i);
            else
                job(i);
        for (std::thread& t : threads)
            t.join();
        return out;
    };
    const std::vector<Outcome> alone = runAll(false), together = runAll(true);
    for (std::size_t i = 0; i < alone.size(); ++i) {
        const Outcome& o = together[i];
        QCOMPARE(o.seen.digest, alone[i].seen.digest);
        QCOMPARE(o.sink.events.front(), 'C');
        QCOMPARE(o.status, 0);
        if (int(i) < sims) {
            QCOMPARE(o.sink.sweeps, alone[i].sink.sweeps);
            QCOMPARE(o.seen.sweeps, 200);
            QVERIFY2(o.sink.sweeps.size() >= 2 && o.sink.sweeps.size() < 20,
                     qPrintable(QString::number(o.sink.sweeps.size())));
            continue;
        }
        // A live stream's last sweep is whole only when the next begins, which never comes.
        QCOMPARE(o.seen.sweeps, 49);
        QCOMPARE(o.sink.events.back(), 'D'); // the program ended: the radio is lost
        // A program's sweeps all look alike, however pacing combines them.
        for (const std::vector<int>& sweep : o.sink.sweeps)
            QCOMPARE(sweep, alone[i].sink.sweeps.front());
        const std::vector<int>& first = o.sink.sweeps.front();
        const bool high = i % 2;
        const int shown = (high ? b5 : band24()).grid.shown;
        QCOMPARE(*std::max_element(first.begin(), first.begin() + shown), high ? -40 : -50);
    }
}

QTEST_GUILESS_MAIN(TestPacer)
#include "tst_pacer.moc"
