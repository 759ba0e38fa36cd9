// The window's sweep store: the core's wsa::SweepStore behind the views' SweepModel interface,
// configured from the band plan. It adds what the window asks of a sweep beyond the core's
// statistics: refusing sweeps shorter than the band's grid, the band's floor for readings that
// are not numbers, and null traces where there is nothing to show yet.
#ifndef DESKTOP_SWEEPSTORE_H
#define DESKTOP_SWEEPSTORE_H

#include "sweepmodel.h"

// The core header of the same name as the views' interface beside this one.
#include "../../core/sweepmodel.h"

namespace wsa::desktop
{

class SweepStore : public SweepModel
{
public:
    // Density rows are 1 dB high and cover kDensityBottomDbm..kDensityTopDbm; levels outside
    // count in the nearest row.
    static constexpr int kDensityTopDbm = 0;
    static constexpr int kDensityBottomDbm = -130;
    static constexpr int kMaxAveraging = 1000;

    explicit SweepStore(const Band& band, int historyDepth = 1024);
    // A copy is a picture of everything counted so far; later sweeps to the original miss it.
    SweepStore(const SweepStore& other);
    SweepStore& operator=(const SweepStore&) = delete;

    // Forgets everything and takes the band's grid.
    void configure(const Band& band);
    // Counts one sweep of `count` levels in dBm, of which the first grid().bins are the band's
    // cells (sources may send more, which are ignored). A shorter sweep is refused: false, and
    // nothing changes.
    bool addSweep(const float* dbm, int count, std::int64_t timeMs);
    // The holds (average, maximum, minimum) start again with the next sweep.
    void resetHolds();
    void resetDensity();
    // Sweeps the average runs over, clamped to 1..kMaxAveraging: a true mean of the first n,
    // then exponential with weight 1/n.
    void setAveragingLength(int n);
    int averagingLength() const { return m_averaging; }

    // The store itself, for whoever wants its notifications or its statistics.
    const wsa::SweepStore& core() const { return m_core; }

    const Band& band() const override { return *m_band; }
    SweepGrid grid() const override { return m_grid; }
    std::uint64_t generation() const override { return m_core.generation(); }
    std::uint64_t sweepCount() const override { return std::uint64_t(m_core.sweeps()); }
    const float* trace(Trace t) const override;
    int densityRows() const override { return m_core.densityRows(); }
    int densityTopDbm() const override { return kDensityTopDbm; }
    const std::uint32_t* densityRow(int row) const override;
    std::uint64_t densitySweeps() const override { return std::uint64_t(m_core.densitySweeps()); }
    int historyDepth() const override { return m_core.config().historyRows; }
    int historyRows() const override { return m_core.historyCount(); }
    const float* historyRow(int age) const override { return m_core.historyRow(age); }
    std::int64_t historyTimeMs(int age) const override { return m_core.historyStamp(age); }

    // The core configuration the window uses for a band's grid.
    static wsa::SweepStoreConfig configFor(const Band& band, int historyDepth, int averaging);

private:
    const Band* m_band;
    SweepGrid m_grid;
    int m_depth; // asked for; the core bounds it per band
    int m_averaging = 10;
    wsa::SweepStore m_core;
};

} // namespace wsa::desktop

#endif
