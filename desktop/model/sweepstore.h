// The desktop window's own store: fed sweep by sweep, it keeps the current sweep, the average,
// maximum and minimum holds, a density table and a ring of recent sweeps. Plain C++; every buffer
// is sized when the band is set, so adding a sweep allocates nothing.
#ifndef DESKTOP_SWEEPSTORE_H
#define DESKTOP_SWEEPSTORE_H

#include <vector>

#include "sweepmodel.h"

namespace wsa::desktop
{

class SweepStore : public SweepModel
{
public:
    // Density rows cover kDensityBottomDbm..kDensityTopDbm in 1 dB steps; levels outside count
    // in the nearest row.
    static constexpr int kDensityTopDbm = 0;
    static constexpr int kDensityBottomDbm = -130;
    static constexpr int kMaxAveraging = 1000;

    explicit SweepStore(const Band& band, int historyDepth = 1024);

    // Forgets everything and takes the band's grid.
    void configure(const Band& band);
    // Counts one sweep of `count` levels in dBm, of which the first grid().bins are the band's
    // cells (sources may send more, which are ignored). A shorter sweep is refused: false, and
    // nothing changes. Levels that are not finite count as the band's floor.
    bool addSweep(const float* dbm, int count, std::int64_t timeMs);
    // The holds (average, maximum, minimum) start again with the next sweep.
    void resetHolds();
    void resetDensity();
    // Sweeps the average runs over, clamped to 1..kMaxAveraging: a true mean of the first n,
    // then exponential with weight 1/n.
    void setAveragingLength(int n);
    int averagingLength() const { return m_averaging; }

    const Band& band() const override { return *m_band; }
    SweepGrid grid() const override { return m_grid; }
    std::uint64_t generation() const override { return m_generation; }
    std::uint64_t sweepCount() const override { return m_sweeps; }
    const float* trace(Trace t) const override;
    int densityRows() const override { return kDensityTopDbm - kDensityBottomDbm; }
    int densityTopDbm() const override { return kDensityTopDbm; }
    const std::uint32_t* densityCounts() const override { return m_density.data(); }
    std::uint64_t densitySweeps() const override { return m_densitySweeps; }
    int historyDepth() const override { return m_depth; }
    int historyRows() const override { return m_historyRows; }
    const float* historyRow(int age) const override;
    std::int64_t historyTimeMs(int age) const override;

private:
    int historySlot(int age) const;

    const Band* m_band;
    SweepGrid m_grid;
    int m_depth;
    int m_averaging = 10;
    std::uint64_t m_generation = 0;
    std::uint64_t m_sweeps = 0;
    std::uint64_t m_holdSweeps = 0;
    std::uint64_t m_densitySweeps = 0;
    std::vector<float> m_traces[kTraceCount];
    std::vector<std::uint32_t> m_density;
    std::vector<float> m_history; // m_depth rows of bins levels
    std::vector<std::int64_t> m_historyTimes;
    int m_historyHead = 0; // slot of the newest row
    int m_historyRows = 0;
};

} // namespace wsa::desktop

#endif
