// Turning measured bins into sweeps on a band's grid: the resampler places the bins of one run,
// the assembler groups the rows of a sweep CSV into whole sweeps.
#ifndef CORE_RESAMPLE_H
#define CORE_RESAMPLE_H

#include "bandplan.h"
#include "halbrin_sa.h"
#include "sweepcsv.h"

namespace wsa
{

// Collects measured bins into one sweep on the grid. A grid cell takes the maximum of the
// measured bins whose centres fall into it and of the measured bin covering its own centre, so
// that bins wider than the grid's still fill every cell they cover.
class Resampler
{
public:
    explicit Resampler(const SourceGrid& grid) : m_grid(grid) { clear(); }

    void clear();
    // One run of `count` measured bins of width binHz, the first starting at lowHz; levels in dB.
    // Returns whether any of them touched the grid.
    bool add(double lowHz, double binHz, const float* levels, int count);
    bool empty() const { return m_touched == 0; }
    // The sweep so far, `grid.raw` levels: the measured ones plus offsetDb, the floor where
    // nothing was measured.
    void result(double* levels, double offsetDb) const;

private:
    void raise(int bin, double level);

    SourceGrid m_grid;
    int m_touched = 0;
    double m_levels[SA_MAX_SAMPLES];
    bool m_set[SA_MAX_SAMPLES];
};

// Assembles rows into whole sweeps on the grid. A sweep begins with its lowest row; the row that
// returns to (or below) that frequency begins the next one.
class SweepAssembler
{
public:
    // offsetDb is added to every measured level.
    SweepAssembler(const SourceGrid& grid, double offsetDb)
        : m_grid(grid), m_sweep(grid), m_offsetDb(offsetDb)
    {
    }

    // Takes one row; true when it completed the previous sweep, which take() then returns.
    // Sweeps that touched none of the grid's cells are passed over.
    bool feed(const CsvRow& row);
    // At the end of input: true when the last sweep had anything for the grid.
    bool finish();
    // The completed sweep, `grid.raw` levels; returns its first row's time stamp.
    double take(double* levels) const;

private:
    bool complete();

    SourceGrid m_grid;
    Resampler m_sweep;
    double m_offsetDb;
    bool m_started = false;
    double m_startHz = 0;
    double m_seconds = 0;
    double m_done[SA_MAX_SAMPLES];
    double m_doneSeconds = 0;
};

} // namespace wsa

#endif
