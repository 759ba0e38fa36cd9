// The one pacing stage every source goes through. Sources hand in sweeps as fast as they come;
// the analyzer reads one record per 100 ms tick and may not read at all for minutes while it
// shows a message box. So sweeps are combined by a detector and delivered at most `rate` times
// a second, and only when every sink can take a record: nothing ever queues behind a reader,
// and what it reads next is at most one output period old.
#ifndef ENGINE_PACER_H
#define ENGINE_PACER_H

#include <vector>

#include "bandplan.h"
#include "clock.h"
#include "halbrin_sa.h"
#include "sink.h"

enum class Detector { Peak, Average };

class Pacer
{
public:
    Pacer(const wsa::SourceGrid& grid, Detector detector, double rate, const Clock& clock);

    // One sweep of `grid.raw` levels in dBm.
    void offer(const double* levels);
    bool pending() const { return m_count > 0; }

    struct Step {
        SinkResult result;
        long long wakeNs; // when to service again; -1: only after the next offer
    };
    // Delivers the combination when its slot is due and every sink is ready.
    Step service(const std::vector<Sink*>& sinks);

private:
    SinkResult deliver(const std::vector<Sink*>& sinks);

    wsa::SourceGrid m_grid;
    Detector m_detector;
    long long m_periodNs;
    const Clock& m_clock;
    // The combination in progress: peak levels, or the sum of powers (mW) for the average.
    double m_combined[SA_MAX_SAMPLES];
    int m_count = 0;
    // A slot passed while a sink was not ready: the next sweep starts a fresh combination, so
    // that the screen is current when reading resumes.
    bool m_stale = false;
    long long m_nextSlotNs = 0;
    long long m_staleAtNs = 0;
    int m_levels[SA_MAX_SAMPLES];
    float m_dbm[SA_MAX_SAMPLES]; // the same before rounding, for sinks that keep fractions
};

#endif
