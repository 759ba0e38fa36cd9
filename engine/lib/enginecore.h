// What a source works with: the band, the clock, the observers that see every sweep, the pacing
// stage and the sinks behind it. One Engine per acquisition; nothing in it is process-wide, so
// several can run side by side.
#ifndef ENGINE_ENGINECORE_H
#define ENGINE_ENGINECORE_H

#include <string>
#include <vector>
#include <poll.h>

#include "bandplan.h"
#include "clock.h"
#include "pacer.h"
#include "sink.h"

// Sees every sweep at the radio's rate, before pacing combines them.
class SweepObserver
{
public:
    virtual ~SweepObserver() = default;
    // `bins` levels in dBm on the band's grid; timeSeconds is the sweep's own time stamp where
    // the source has one (a recording's), else the engine clock's seconds.
    virtual void take(const float* dbm, int bins, double timeSeconds) = 0;
};

enum class WaitResult {
    Deadline,    // the deadline passed, or (waitForReader) every sink is ready
    SourceReady, // the source's descriptor is readable
    Closed,      // the front-end went, a stop was asked for, or nothing can happen any more
    Failed,      // a sink failed
    Control,     // a control handler asked to act on a control at once (waitFor only)
};

class Engine
{
public:
    Engine(const wsa::Band& band, const Clock& clock, Detector detector, double outputRate);

    void addSink(Sink* sink)
    {
        m_sinks.push_back(sink);
        sink->attached(*this);
    }
    void addObserver(SweepObserver* observer) { m_observers.push_back(observer); }
    // A descriptor that turns readable when the engine is to stop (a signal's self-pipe).
    void setStopFd(int fd) { m_stopFd = fd; }

    const wsa::Band& band() const { return m_band; }
    const wsa::SourceGrid& grid() const { return m_band.grid; }
    long long nowNs() const { return m_clock.nowNs(); }

    // Immediately to every sink, ahead of anything pending.
    SinkResult announce(const wsa::Announcement& announcement);
    SinkResult fault(Fault fault);
    SinkResult damaged(Damage damage, const int* levels, int count);
    void reason(StatusReason reason, const std::string& text);
    void analysis(const std::string& json);
    void recording(std::int64_t bytes, const std::string& path);
    void replay(const wsa::ReplayFrame& frame);

    // Controls from a front-end go to every handler; those that do not apply are ignored.
    // A handler stays registered while its ControlScope lives.
    void control(wsa::ControlCommand command, double value);
    class ControlScope
    {
    public:
        ControlScope(Engine& engine, ControlHandler* handler);
        ~ControlScope();
        ControlScope(const ControlScope&) = delete;
        ControlScope& operator=(const ControlScope&) = delete;

    private:
        Engine& m_engine;
        ControlHandler* m_handler;
    };

    // One sweep of `grid().raw` levels in dBm: to the observers, then into the pacing stage.
    // timeSeconds < 0: stamped with the engine clock.
    void offer(const double* levels, double timeSeconds = -1);

    // Delivers what is pending whenever a slot is due, until the clock reaches deadlineNs
    // (< 0: no deadline), sourceFd or otherFd (>= 0) is readable, the front-end goes, or a
    // control handler asks for its source to act.
    // Without a front-end to wait for, a wait with neither deadline nor source ends (Closed)
    // once everything pending is delivered.
    WaitResult waitFor(int sourceFd, long long deadlineNs, int otherFd = -1);
    // Waits until every sink can take a record (a reader has taken everything so far).
    WaitResult waitForReader();
    // Delivers what the pacing stage holds, waiting for its slot and the reader, at most
    // boundNs: a source's last sweep goes out before the word that it ended.
    WaitResult flush(long long boundNs);

private:
    bool hasFrontEnd() const;
    // Polls the sinks' and the source's descriptors; Deadline on a time-out.
    WaitResult poll(int sourceFd, int otherFd, int timeoutMs);

    const wsa::Band& m_band;
    const Clock& m_clock;
    Pacer m_pacer;
    std::vector<Sink*> m_sinks;
    std::vector<SweepObserver*> m_observers;
    std::vector<ControlHandler*> m_handlers;
    bool m_controlWake = false;
    int m_stopFd = -1;
    float m_observed[SA_MAX_SAMPLES];
    std::vector<pollfd> m_fds;
    std::vector<Sink*> m_watched;
};

#endif
