#include "noisefloor.h"

#include <algorithm>
#include <cmath>

namespace wsa
{

namespace
{
constexpr float kQuantile = 0.1f;
constexpr float kSlowStep = 0.05f; // dB per sweep once settled
constexpr float kMargin = 2.0f;    // how far a bin may sit above its neighbourhood's floor
constexpr int kBlocks = 12;
// The tracked low quantile lies this far below the median of the averaged detector's noise.
constexpr float kMedianAboveQuantile = 2.2f;
} // namespace

NoiseFloor::NoiseFloor(int bins)
    : m_track(std::size_t(std::max(bins, 1))), m_floor(m_track.size()), m_scratch(m_track.size()),
      m_blockRef(kBlocks), m_blockBins(std::max(1, (bins + kBlocks - 1) / kBlocks))
{
}

void NoiseFloor::take(const float* dbm)
{
    const std::size_t n = m_track.size();
    if (m_sweeps == 0) {
        std::copy(dbm, dbm + n, m_track.begin());
    } else {
        // Large steps at first so the floor settles within a second or two, then slow ones.
        const float step = std::max(kSlowStep, 2.0f * std::exp(-float(m_sweeps) / 15.0f));
        const float up = step * kQuantile;
        const float down = step * (1 - kQuantile);
        for (std::size_t i = 0; i < n; ++i)
            m_track[i] += dbm[i] > m_track[i] ? up : -down;
    }
    ++m_sweeps;
    clampToNeighbourhood();
}

void NoiseFloor::clampToNeighbourhood()
{
    const int n = int(m_track.size());
    const int blocks = std::min(kBlocks, (n + m_blockBins - 1) / m_blockBins);
    for (int b = 0; b < blocks; ++b) {
        const int lo = b * m_blockBins;
        const int hi = std::min(n, lo + m_blockBins);
        auto first = m_scratch.begin() + lo;
        std::copy(m_track.begin() + lo, m_track.begin() + hi, first);
        auto nth = first + (hi - lo) * 3 / 10;
        std::nth_element(first, nth, m_scratch.begin() + hi);
        m_blockRef[std::size_t(b)] = *nth;
    }
    for (int b = 0; b < blocks; ++b) {
        // The lowest of five neighbouring blocks: an emitter that fills one or two blocks
        // cannot lift the floor under itself.
        float ref = m_blockRef[std::size_t(b)];
        for (int k = std::max(0, b - 2); k <= std::min(blocks - 1, b + 2); ++k)
            ref = std::min(ref, m_blockRef[std::size_t(k)]);
        const int hi = std::min(n, (b + 1) * m_blockBins);
        for (int i = b * m_blockBins; i < hi; ++i)
            m_floor[std::size_t(i)] = std::min(m_track[std::size_t(i)], ref + kMargin);
    }
    std::copy(m_floor.begin(), m_floor.end(), m_scratch.begin());
    auto mid = m_scratch.begin() + n / 2;
    std::nth_element(m_scratch.begin(), mid, m_scratch.begin() + n);
    m_bandLevel = *mid + kMedianAboveQuantile;
}

} // namespace wsa
