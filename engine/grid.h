// The analyzer's frequency bins and the resampling of measured bins onto them.
#ifndef ENGINE_GRID_H
#define ENGINE_GRID_H

#include "halbrin_sa.h"
#include "scene.h"

// The bins the analyzer shows: `shown` equally spaced bins from startHz to endHz, sent in records
// of `raw` levels; raw bins past the shown ones carry floorDbm. Bin i is the cell of width stepHz
// centred on startHz + i * stepHz.
//   2.4 GHz: 423 bins over 2400..2490 MHz, all sent.
//   5 GHz:   904 bins over 5160..5835 MHz, sent as 1024 raw levels (the analyzer reduces pairs
//            and drops the last 120).
struct Grid {
    double startHz;
    double endHz;
    double stepHz;
    int shown;
    int raw;
    int floorDbm; // the bottom of the band's display range
};

Grid bandGrid(Band band);

// Collects measured bins into one sweep on the grid. A grid bin takes the maximum of the measured
// bins whose centres fall into it and of the measured bin covering its own centre, so that bins
// wider than the grid's still fill every cell they cover.
class Resampler
{
public:
    explicit Resampler(const Grid& grid) : m_grid(grid) { clear(); }

    void clear();
    // One run of `count` measured bins of width binHz, the first starting at lowHz; levels in dB.
    // Returns whether any of them touched the grid.
    bool add(double lowHz, double binHz, const float* levels, int count);
    bool empty() const { return m_touched == 0; }
    // The sweep so far, `raw` levels: the measured ones plus offsetDb, the floor where nothing
    // was measured.
    void result(double* levels, double offsetDb) const;

private:
    void raise(int bin, double level);

    Grid m_grid;
    int m_touched = 0;
    double m_levels[SA_MAX_SAMPLES];
    bool m_set[SA_MAX_SAMPLES];
};

#endif
