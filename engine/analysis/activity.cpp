#include "activity.h"

#include <algorithm>

namespace wsa
{

Activity::Activity(int bins)
    : m_lit(std::size_t(std::max(bins, 1))), m_excess(m_lit.size()), m_seen(m_lit.size()),
      m_litCount(m_lit.size()), m_litExcessSum(m_lit.size()), m_excessSum(m_lit.size()), m_max(m_lit.size(), -200.0f),
      m_ring(16384)
{
}

void Activity::take(const float* dbm, const float* floor, double timeS, double decay)
{
    const std::size_t n = m_lit.size();
    const float maxFall = float(60.0 * (1 - decay)); // the held maximum fades over the window
    m_settled = decay < 1 ? 1 / (1 - decay) : 1;
    for (std::size_t i = 0; i < n; ++i) {
        const float ex = dbm[i] - floor[i];
        const bool on = ex > kLitDb;
        m_excess[i] = ex;
        m_lit[i] = on;
        m_seen[i] = m_seen[i] * decay + 1;
        m_litCount[i] = m_litCount[i] * decay + (on ? 1 : 0);
        m_litExcessSum[i] = m_litExcessSum[i] * decay + (on ? ex : 0);
        m_excessSum[i] = m_excessSum[i] * decay + ex;
        m_max[i] = std::max(dbm[i], m_max[i] - maxFall);
    }
    findSegments(timeS);
    ++m_sweep;
}

void Activity::findSegments(double timeS)
{
    const int n = bins();
    int i = 0;
    while (i < n) {
        if (!m_lit[std::size_t(i)]) {
            ++i;
            continue;
        }
        // A run of lit bins; one dark bin inside a run does not split it.
        int hi = i;
        while (hi + 1 < n && (m_lit[std::size_t(hi + 1)] || (hi + 2 < n && m_lit[std::size_t(hi + 2)])))
            ++hi;
        Segment s{m_sweep, timeS, i, hi, i, m_excess[std::size_t(i)], 1, 0};
        for (int k = i; k <= hi; ++k) {
            if (m_excess[std::size_t(k)] > s.peakExcess) {
                s.peakExcess = m_excess[std::size_t(k)];
                s.peak = k;
            }
        }
        int a = s.peak;
        int b = s.peak;
        while (a > i && m_excess[std::size_t(a - 1)] >= s.peakExcess - 6)
            --a;
        while (b < hi && m_excess[std::size_t(b + 1)] >= s.peakExcess - 6)
            ++b;
        s.width6 = b - a + 1;
        const std::size_t p = std::size_t(s.peak);
        // Over a filled history's worth of sweeps: in the first sweeps after a start one earlier
        // burst would otherwise make a bin look busy.
        s.busyBefore = float((m_litCount[p] - 1) / std::max(m_seen[p], m_settled));
        m_ring[m_ringNext] = s;
        m_ringNext = (m_ringNext + 1) % m_ring.size();
        ++m_ringCount;
        i = hi + 1;
    }
}

} // namespace wsa
