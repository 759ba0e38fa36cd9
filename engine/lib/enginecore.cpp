#include "enginecore.h"

#include <algorithm>
#include <cerrno>
#include <poll.h>

namespace
{

// How often waitForReader looks whether the reader has caught up.
constexpr int kReaderRecheckMs = 10;

// Calls every sink in order, stopping at the first that does not take it.
template <typename Call> SinkResult toAll(const std::vector<Sink*>& sinks, Call call)
{
    for (Sink* sink : sinks) {
        const SinkResult result = call(*sink);
        if (result != SinkResult::Ok)
            return result;
    }
    return SinkResult::Ok;
}

WaitResult toWait(SinkResult result)
{
    return result == SinkResult::Closed ? WaitResult::Closed : WaitResult::Failed;
}

} // namespace

Engine::Engine(const wsa::Band& band, const Clock& clock, Detector detector, double outputRate)
    : m_band(band), m_clock(clock), m_pacer(band.grid, detector, outputRate, clock)
{
}

SinkResult Engine::announce(const wsa::Announcement& announcement)
{
    return toAll(m_sinks, [&](Sink& s) { return s.announce(announcement); });
}

SinkResult Engine::fault(Fault fault)
{
    return toAll(m_sinks, [&](Sink& s) { return s.fault(fault); });
}

SinkResult Engine::damaged(Damage damage, const int* levels, int count)
{
    return toAll(m_sinks, [&](Sink& s) { return s.damaged(damage, levels, count); });
}

void Engine::reason(StatusReason reason, const std::string& text)
{
    for (Sink* sink : m_sinks)
        sink->reason(reason, text);
}

void Engine::analysis(const std::string& json)
{
    for (Sink* sink : m_sinks)
        sink->analysis(json);
}

void Engine::recording(std::int64_t bytes, const std::string& path)
{
    for (Sink* sink : m_sinks)
        sink->recording(bytes, path);
}

void Engine::replay(const wsa::ReplayFrame& frame)
{
    for (Sink* sink : m_sinks)
        sink->replay(frame);
}

void Engine::control(wsa::ControlCommand command, double value)
{
    for (Sink* sink : m_sinks)
        sink->control(command, value);
    // A copy: a handler may end its scope in reply.
    const std::vector<ControlHandler*> handlers = m_handlers;
    for (ControlHandler* handler : handlers)
        m_controlWake = handler->control(command, value) || m_controlWake;
}

Engine::ControlScope::ControlScope(Engine& engine, ControlHandler* handler)
    : m_engine(engine), m_handler(handler)
{
    m_engine.m_handlers.push_back(handler);
}

Engine::ControlScope::~ControlScope()
{
    auto& handlers = m_engine.m_handlers;
    handlers.erase(std::remove(handlers.begin(), handlers.end(), m_handler), handlers.end());
}

void Engine::offer(const double* levels, double timeSeconds)
{
    if (!m_observers.empty()) {
        const int bins = grid().shown;
        std::copy(levels, levels + bins, m_observed);
        const double seconds = timeSeconds >= 0 ? timeSeconds : m_clock.nowNs() / 1e9;
        for (SweepObserver* observer : m_observers)
            observer->take(m_observed, bins, seconds);
    }
    m_pacer.offer(levels);
}

bool Engine::hasFrontEnd() const
{
    return std::any_of(m_sinks.begin(), m_sinks.end(),
                       [](const Sink* s) { return s->watchFd() >= 0; });
}

WaitResult Engine::poll(int sourceFd, int otherFd, int timeoutMs)
{
    // Members reused from call to call: a wait costs no allocation.
    std::vector<pollfd>& fds = m_fds;
    std::vector<Sink*>& watched = m_watched;
    fds.clear();
    watched.clear();
    for (Sink* sink : m_sinks) {
        if (sink->watchFd() >= 0) {
            fds.push_back({sink->watchFd(), POLLIN, 0});
            watched.push_back(sink);
        }
    }
    const std::size_t sinkFds = fds.size();
    if (m_stopFd >= 0)
        fds.push_back({m_stopFd, POLLIN, 0});
    const std::size_t sourceFds = fds.size();
    if (sourceFd >= 0)
        fds.push_back({sourceFd, POLLIN, 0});
    if (otherFd >= 0)
        fds.push_back({otherFd, POLLIN, 0});
    const int ready = ::poll(fds.data(), fds.size(), timeoutMs);
    if (ready < 0)
        return errno == EINTR ? WaitResult::Deadline : WaitResult::Failed;
    for (std::size_t i = 0; i < sinkFds; ++i) {
        if (fds[i].revents && watched[i]->closed())
            return WaitResult::Closed;
    }
    if (m_stopFd >= 0 && fds[sinkFds].revents)
        return WaitResult::Closed;
    for (std::size_t i = sourceFds; i < fds.size(); ++i)
        if (fds[i].revents)
            return WaitResult::SourceReady;
    return WaitResult::Deadline;
}

WaitResult Engine::waitForReader()
{
    while (!std::all_of(m_sinks.begin(), m_sinks.end(), [](const Sink* s) { return s->ready(); })) {
        const WaitResult result = poll(-1, -1, kReaderRecheckMs);
        if (result != WaitResult::Deadline)
            return result;
    }
    return WaitResult::Deadline;
}

WaitResult Engine::flush(long long boundNs)
{
    const long long endNs = m_clock.nowNs() + boundNs;
    while (m_pacer.pending() && m_clock.nowNs() < endNs) {
        const WaitResult result = waitFor(-1, m_clock.nowNs() + kReaderRecheckMs * 1000000LL);
        if (result == WaitResult::Closed || result == WaitResult::Failed)
            return result;
    }
    return WaitResult::Deadline;
}

WaitResult Engine::waitFor(int sourceFd, long long deadlineNs, int otherFd)
{
    const bool endless = sourceFd < 0 && otherFd < 0 && deadlineNs < 0 && !hasFrontEnd();
    for (;;) {
        const Pacer::Step step = m_pacer.service(m_sinks);
        if (step.result != SinkResult::Ok)
            return toWait(step.result);
        const long long now = m_clock.nowNs();
        long long wakeNs = deadlineNs;
        if (step.wakeNs >= 0)
            wakeNs = wakeNs < 0 ? step.wakeNs : std::min(wakeNs, step.wakeNs);
        if (deadlineNs >= 0 && now >= deadlineNs)
            return WaitResult::Deadline;
        // Nothing could ever end this wait: the source has no more to give.
        if (endless && !m_pacer.pending())
            return WaitResult::Closed;
        const long long waitNs = wakeNs < 0 ? -1 : std::max(0LL, wakeNs - now);
        const int timeoutMs = waitNs < 0 ? -1 : int((waitNs + 999999) / 1000000);
        if (m_controlWake) {
            m_controlWake = false;
            return WaitResult::Control;
        }
        const WaitResult result = poll(sourceFd, otherFd, timeoutMs);
        if (result != WaitResult::Deadline)
            return result;
    }
}
