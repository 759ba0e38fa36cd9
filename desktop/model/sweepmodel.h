// What the desktop window's views read: the traces, the density table and the waterfall history
// of one band's sweeps. A small interface, so that any store holding these (ours, or a shared one)
// can stand behind the views. Levels are dBm; frequencies come from the band's grid.
#ifndef DESKTOP_SWEEPMODEL_H
#define DESKTOP_SWEEPMODEL_H

#include <cstdint>

#include "axis.h"
#include "bandplan.h"

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

class SweepModel
{
public:
    virtual ~SweepModel() = default;

    virtual const Band& band() const = 0;
    virtual SweepGrid grid() const = 0;
    // Changes with every change of the content: a sweep, a reset, a new band.
    virtual std::uint64_t generation() const = 0;
    // Sweeps counted since the band was configured; hold resets do not clear it.
    virtual std::uint64_t sweepCount() const = 0;

    // grid().bins levels, or null before the first sweep (and after a reset, for the holds).
    virtual const float* trace(Trace t) const = 0;

    // Density: how often each level was seen in each cell. Row r, counted from the top, holds
    // the levels in [densityTopDbm() - r - 1, densityTopDbm() - r), one count per cell; null for
    // a row out of range.
    virtual int densityRows() const = 0;
    virtual int densityTopDbm() const = 0;
    virtual const std::uint32_t* densityRow(int row) const = 0;
    virtual std::uint64_t densitySweeps() const = 0;

    // Waterfall history, newest first: age 0 is the latest sweep. Times are milliseconds of a
    // monotonic clock, as given with the sweep.
    virtual int historyDepth() const = 0;
    virtual int historyRows() const = 0;
    virtual const float* historyRow(int age) const = 0;
    virtual std::int64_t historyTimeMs(int age) const = 0;
};

} // namespace wsa::desktop

#endif
