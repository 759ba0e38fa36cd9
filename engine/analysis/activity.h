// What each sweep shows above the floor, and its recent history: per bin, decayed counts of
// sweeps seen and lit and the mean excess when lit; per sweep, the runs of lit bins
// ("segments") kept in a ring for a few seconds.
#ifndef ANALYSIS_ACTIVITY_H
#define ANALYSIS_ACTIVITY_H

#include <cstdint>
#include <vector>

namespace wsa
{

struct Segment {
    long sweep;
    double timeS;
    int lo;          // first and last lit bin
    int hi;
    int peak;
    float peakExcess; // dB above the floor
    int width6;       // bins within 6 dB of the peak, contiguous around it
    float busyBefore; // the peak bin's occupancy before this sweep: was something steady there?
};

class Activity
{
public:
    explicit Activity(int bins);

    // levels and floor in dBm; decay is the factor the history keeps from one sweep to the next.
    void take(const float* dbm, const float* floor, double timeS, double decay);

    int bins() const { return int(m_lit.size()); }
    bool lit(int i) const { return m_lit[std::size_t(i)] != 0; }
    const std::uint8_t* litMask() const { return m_lit.data(); }
    float excess(int i) const { return m_excess[std::size_t(i)]; }
    double seen(int i) const { return m_seen[std::size_t(i)]; }
    double litCount(int i) const { return m_litCount[std::size_t(i)]; }
    // Mean dB above the floor over the sweeps in which bin i was lit.
    double litExcess(int i) const
    {
        const double n = m_litCount[std::size_t(i)];
        return n > 0 ? m_litExcessSum[std::size_t(i)] / n : 0;
    }
    double occupancy(int i) const
    {
        const double n = m_seen[std::size_t(i)];
        return n > 0 ? m_litCount[std::size_t(i)] / n : 0;
    }
    // The sweeps a bin's history holds once it has filled, at the present sweep rate.
    double settledCount() const { return m_settled; }
    // Mean dB above the floor over all recent sweeps, lit or not: a smooth profile of activity.
    double meanExcess(int i) const
    {
        const double n = m_seen[std::size_t(i)];
        return n > 0 ? m_excessSum[std::size_t(i)] / n : 0;
    }
    // Highest level of bin i over the last seconds (dBm).
    float recentMax(int i) const { return m_max[std::size_t(i)]; }

    // Segments newer than sinceS, oldest first: visit(segment) for each.
    // (timeS of successive takes must not decrease.)
    template <typename F> void forEachSegment(double sinceS, F visit) const
    {
        const std::size_t cap = m_ring.size();
        const std::size_t count = std::min<std::size_t>(m_ringCount, cap);
        auto at = [&](std::size_t k) -> const Segment& { return m_ring[(m_ringNext + cap - count + k) % cap]; };
        // Times never decrease along the ring: find the first recent one by bisection.
        std::size_t lo = 0, hi = count;
        while (lo < hi) {
            const std::size_t mid = (lo + hi) / 2;
            if (at(mid).timeS < sinceS)
                lo = mid + 1;
            else
                hi = mid;
        }
        for (std::size_t k = lo; k < count; ++k)
            visit(at(k));
    }
    long sweeps() const { return m_sweep; }

    static constexpr float kLitDb = 7.0f; // "clearly above the floor"

private:
    void findSegments(double timeS);

    std::vector<std::uint8_t> m_lit;
    std::vector<float> m_excess;
    std::vector<double> m_seen;
    std::vector<double> m_litCount;
    std::vector<double> m_litExcessSum;
    std::vector<double> m_excessSum;
    std::vector<float> m_max;
    std::vector<Segment> m_ring;
    std::size_t m_ringNext = 0;
    std::size_t m_ringCount = 0;
    long m_sweep = 0;
    double m_settled = 1; // sweeps a history holds once it has filled
};

} // namespace wsa

#endif
