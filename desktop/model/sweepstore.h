// The window's sweep store: the core's wsa::SweepStore, configured from the band plan, read by
// the views, markers and exports. It adds what the window asks of a sweep beyond the core's
// statistics: refusing sweeps shorter than the band's grid, the band's floor for readings that
// are not numbers, and null traces where there is nothing to show yet. Levels are dBm.
#ifndef DESKTOP_SWEEPSTORE_H
#define DESKTOP_SWEEPSTORE_H

#include <cstdint>

#include "axis.h"
#include "bandplan.h"
#include "sweepmodel.h"

namespace wsa::desktop
{

enum class Trace { Current, Average, Maximum, Minimum };
constexpr int kTraceCount = 4;

// The cells of the sweeps: `bins` cells of stepHz centred on firstHz + i * stepHz.
struct SweepGrid {
    double firstHz = 0;
    double stepHz = 1;
    int bins = 0;

    Axis axis(double left, double width) const { return Axis(firstHz, stepHz, bins, left, width); }
};

class SweepStore
{
public:
    // Density rows are 1 dB high and cover kDensityBottomDbm..kDensityTopDbm; levels outside
    // count in the nearest row.
    static constexpr int kDensityTopDbm = 0;
    static constexpr int kDensityBottomDbm = -130;
    static constexpr int kMaxAveraging = 1000;

    explicit SweepStore(const Band& band, int historyDepth = 1024);
    // A copy is a picture of everything counted so far; later sweeps to the original miss it.
    SweepStore(const SweepStore&) = default;
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

    const Band& band() const { return *m_band; }
    SweepGrid grid() const { return m_grid; }
    // Changes with every change of the content: a sweep, a reset, a new band.
    std::uint64_t generation() const { return m_core.generation(); }
    // Sweeps counted since the band was configured; hold resets do not clear it.
    std::uint64_t sweepCount() const { return std::uint64_t(m_core.sweeps()); }
    // grid().bins levels, or null before the first sweep (and after a reset, for the holds).
    const float* trace(Trace t) const;

    // Density: how often each level was seen in each cell. Row r, counted from the top, holds
    // the levels in [densityTopDbm() - r - 1, densityTopDbm() - r), one count per cell; null for
    // a row out of range.
    int densityRows() const { return m_core.densityRows(); }
    int densityTopDbm() const { return kDensityTopDbm; }
    const std::uint32_t* densityRow(int row) const;
    std::uint64_t densitySweeps() const { return std::uint64_t(m_core.densitySweeps()); }

    // Waterfall history, newest first: age 0 is the latest sweep. Times are milliseconds of a
    // monotonic clock, as given with the sweep.
    int historyDepth() const { return m_core.config().historyRows; }
    int historyRows() const { return m_core.historyCount(); }
    const float* historyRow(int age) const { return m_core.historyRow(age); }
    std::int64_t historyTimeMs(int age) const { return m_core.historyStamp(age); }

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
