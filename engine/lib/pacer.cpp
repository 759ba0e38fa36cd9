#include "pacer.h"

#include <algorithm>
#include <cmath>

namespace
{

// While a sink is not ready, look again this often, so that a record follows soon after the
// reader resumes.
constexpr long long kRecheckNs = 10 * 1000000LL;
// Levels in records are whole dBm; this keeps absurd input (a wrong offset) printable, and
// within what a front-end stream's reader accepts.
constexpr long kMinDbm = -200;
constexpr long kMaxDbm = 50;

bool allReady(const std::vector<Sink*>& sinks)
{
    return std::all_of(sinks.begin(), sinks.end(), [](const Sink* s) { return s->ready(); });
}

} // namespace

Pacer::Pacer(const wsa::SourceGrid& grid, Detector detector, double rate, const Clock& clock)
    : m_grid(grid), m_detector(detector), m_periodNs((long long)(1e9 / rate)), m_clock(clock)
{
}

void Pacer::offer(const double* levels)
{
    if (m_stale) {
        m_count = 0;
        m_stale = false;
    }
    const int n = m_grid.raw;
    if (m_detector == Detector::Peak) {
        if (m_count == 0)
            std::copy(levels, levels + n, m_combined);
        else
            for (int i = 0; i < n; ++i)
                m_combined[i] = std::max(m_combined[i], levels[i]);
    } else {
        if (m_count == 0)
            std::fill(m_combined, m_combined + n, 0.0);
        for (int i = 0; i < n; ++i)
            m_combined[i] += std::pow(10.0, levels[i] / 10);
    }
    ++m_count;
}

SinkResult Pacer::deliver(const std::vector<Sink*>& sinks)
{
    for (int i = 0; i < m_grid.raw; ++i) {
        const double level =
            m_detector == Detector::Peak ? m_combined[i] : 10 * std::log10(m_combined[i] / m_count);
        m_levels[i] = int(std::clamp(std::lround(level), kMinDbm, kMaxDbm));
        m_dbm[i] = float(std::clamp(level, double(kMinDbm), double(kMaxDbm)));
    }
    m_count = 0;
    m_stale = false;
    // In order: a recording holds what the analyzer was sent.
    for (Sink* sink : sinks) {
        const SinkResult result = sink->sweepDbm(m_dbm, m_levels, m_grid.raw);
        if (result != SinkResult::Ok)
            return result;
    }
    return SinkResult::Ok;
}

Pacer::Step Pacer::service(const std::vector<Sink*>& sinks)
{
    const long long now = m_clock.nowNs();
    long long wakeNs = -1;
    if (m_count > 0 && now >= m_nextSlotNs) {
        if (allReady(sinks)) {
            const SinkResult result = deliver(sinks);
            if (result != SinkResult::Ok)
                return {result, -1};
            // Late by more than a period (the reader was away): start a new grid of slots
            // rather than catch up with a burst.
            m_nextSlotNs =
                now - m_nextSlotNs > m_periodNs ? now + m_periodNs : m_nextSlotNs + m_periodNs;
            m_staleAtNs = m_nextSlotNs;
        } else {
            if (now >= m_staleAtNs) {
                m_stale = true;
                m_staleAtNs = now + m_periodNs;
            }
            wakeNs = now + kRecheckNs;
        }
    }
    if (m_count > 0 && m_nextSlotNs > now)
        wakeNs = wakeNs < 0 ? m_nextSlotNs : std::min(wakeNs, m_nextSlotNs);
    return {SinkResult::Ok, wakeNs};
}
