// The engine library in-process: the pacing stage on a fake clock, the per-sweep observers,
// and two engines side by side in one process.
#include <QtTest>
#include <thread>

#include "enginerun.h"
#include "pacer.h"
#include "registry.h"
#include "sources/sweepprogram/sweepprogram.h"

namespace
{

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
    Pacer::Step offer(double dbm, bool serviced = true)
    {
        pacer.offer(flat(dbm).data());
        return serviced ? service() : Pacer::Step{};
    }
};

// What one engine delivers from a source run to its end.
struct Outcome {
    int status = -1;
    MemorySink sink;
    SweepLog seen;
};

} // namespace

class TestPacer : public QObject
{
    Q_OBJECT

private slots:
    // Sweeps every 10 ms for a second reach the sinks ten times at 10 records a second.
    void outputRate()
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

    void detectors()
    {
        for (Detector detector : {Detector::Peak, Detector::Average}) {
            Paced p(detector);
            p.offer(-90); // the first slot is due at once
            for (double level : {-50, -30, -40})
                p.offer(level, false);
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

    // While the reader does not read nothing is delivered, however much time passes; once it
    // reads, it gets one record holding only the sweeps of the last period, not the stale ones.
    // After such a pause the slots start afresh: two sweeps right after each other give one
    // record, the next a period later.
    void slowReaderAndPauses()
    {
        Paced p;
        p.offer(-90);
        p.sink.isReady = false;
        p.offer(-20, false); // a strong sweep while the reader is away
        for (int k = 0; k < 50; ++k) {
            p.clock.advanceMs(100);
            QVERIFY(p.service().wakeNs >= 0); // it keeps looking
        }
        QCOMPARE(p.sink.sweeps.size(), std::size_t(1));
        p.offer(-70, false);
        p.sink.isReady = true;
        p.clock.advanceMs(1);
        p.service();
        QCOMPARE(p.sink.sweeps.size(), std::size_t(2));
        QCOMPARE(p.sink.sweeps[1][0], -70);

        Paced q;
        q.offer(-90);
        q.clock.advanceMs(5000);
        for (int k = 0; k < 3; ++k) {
            q.offer(-90);
            q.clock.advanceMs(30);
        }
        QCOMPARE(q.sink.sweeps.size(), std::size_t(2));
        q.clock.advanceMs(20);
        q.service();
        QCOMPARE(q.sink.sweeps.size(), std::size_t(3));
        // A sink that fails stops the delivery: a recording holds only what the analyzer was sent.
        MemorySink first;
        first.answer = SinkResult::Closed;
        q.offer(-90, false);
        q.clock.advanceMs(100);
        QCOMPARE(q.pacer.service({&first, &q.sink}).result, SinkResult::Closed);
        QCOMPARE(q.sink.sweeps.size(), std::size_t(3));
    }

    // Engines run at once, each with its own source, give what each gives alone: nothing is
    // shared between them. Simulated probes at 1000 sweeps a second, paced to 8 records a second:
    // the sinks get few, the observers every one; sweep programs, paced to 1000, give every sweep.
    void enginesSideBySide()
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
                Settings s;
                s.set("WSA_SIM_SEED", i % 2 ? "9" : "3");
                s.set("WSA_SIM_SWEEPS", "200");
                s.set("WSA_SIM_RATE", "1000");
                const std::unique_ptr<Source> source =
                    i < sims ? findSource("sim")->make(s, band)
                             : makeSweepProgramSource(commands[std::size_t(i % 2)], band);
                Engine engine(band, clock, Detector::Peak, i < sims ? 8 : 1000);
                engine.addSink(&out[std::size_t(i)].sink);
                engine.addObserver(&out[std::size_t(i)].seen);
                out[std::size_t(i)].status = source->run(engine);
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
            QVERIFY(o.seen.levels == alone[i].seen.levels);
            QCOMPARE(o.sink.events.front(), 'C');
            QCOMPARE(o.status, 0);
            if (int(i) < sims) {
                QCOMPARE(o.sink.sweeps, alone[i].sink.sweeps);
                QCOMPARE(int(o.seen.sweeps), 200);
                QVERIFY2(o.sink.sweeps.size() >= 2 && o.sink.sweeps.size() < 20,
                         qPrintable(QString::number(o.sink.sweeps.size())));
                continue;
            }
            // A live stream's last sweep is whole only when the next begins, which never comes.
            QCOMPARE(int(o.seen.sweeps), 49);
            QCOMPARE(o.sink.events.back(), 'D'); // the program ended: the radio is lost
            // A program's sweeps all look alike, however pacing combines them.
            for (const std::vector<int>& sweep : o.sink.sweeps)
                QCOMPARE(sweep, alone[i].sink.sweeps.front());
            const std::vector<int>& first = o.sink.sweeps.front();
            const int shown = (i % 2 ? b5 : band24()).grid.shown;
            QCOMPARE(*std::max_element(first.begin(), first.begin() + shown), i % 2 ? -40 : -50);
        }
    }
};

QTEST_GUILESS_MAIN(TestPacer)
#include "tst_pacer.moc"
