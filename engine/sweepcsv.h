// The sweep CSV layout that hackrf_sweep writes and our recordings use:
//   date, time, hz_low, hz_high, hz_bin_width, num_samples, dB, dB, ...
// e.g. "2024-03-01, 12:30:05.250113, 2400000000, 2405000000, 1000000.00, 20, -71.23, -70.9, ..."
// Each dB value is the level of one bin of hz_bin_width Hz, the first starting at hz_low. One
// sweep may span many rows, which need not come in frequency order; the row that returns to the
// sweep's lowest hz_low begins the next sweep.
#ifndef ENGINE_SWEEPCSV_H
#define ENGINE_SWEEPCSV_H

#include <vector>

#include "grid.h"

struct CsvRow {
    double seconds = 0; // time stamp, seconds since 1970 read as UTC
    double lowHz = 0;
    double highHz = 0;
    double binHz = 0;
    std::vector<float> levels; // reserved once, reused for every row
};

// Parses one line (without its newline). False, leaving `row` unspecified, for anything that is
// not a whole row: a header, a comment, a damaged or cut line, bins that do not fill
// hz_low..hz_high.
bool parseCsvRow(const char* line, CsvRow& row);

// Assembles rows into whole sweeps on the grid.
class SweepAssembler
{
public:
    // offsetDb is added to every measured level.
    SweepAssembler(const Grid& grid, double offsetDb)
        : m_grid(grid), m_sweep(grid), m_offsetDb(offsetDb)
    {
    }

    // Takes one row; true when it completed the previous sweep, which take() then returns.
    // Sweeps that touched none of the grid's bins are passed over.
    bool feed(const CsvRow& row);
    // At the end of input: true when the last sweep had anything for the grid.
    bool finish();
    // The completed sweep, `grid.raw` levels; returns its first row's time stamp.
    double take(double* levels) const;

private:
    bool complete();

    Grid m_grid;
    Resampler m_sweep;
    double m_offsetDb;
    bool m_started = false;
    double m_startHz = 0;
    double m_seconds = 0;
    double m_done[SA_MAX_SAMPLES];
    double m_doneSeconds = 0;
};

#endif
