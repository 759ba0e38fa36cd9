#include "sweepstore.h"

#include <algorithm>

namespace wsa::desktop
{

namespace
{
// The history ring is bounded by the core store's cell budget for the band's grid.
int boundedDepth(int depth, int bins)
{
    const long long cells = wsa::SweepStore::kMaxHistoryCells / std::max(bins, 1);
    return int(std::clamp<long long>(depth, 1, std::min<long long>(cells, wsa::SweepStore::kMaxHistory)));
}
} // namespace

wsa::SweepStoreConfig SweepStore::configFor(const Band& band, int historyDepth, int averaging)
{
    wsa::SweepStoreConfig c;
    c.bins = band.grid.shown;
    // Rows centred half a dB inside the edges: row r then holds [bottom + r, bottom + r + 1).
    c.minDbm = kDensityBottomDbm + 0.5f;
    c.maxDbm = kDensityTopDbm - 0.5f;
    c.densityStepDb = 1;
    c.historyRows = boundedDepth(historyDepth, c.bins);
    c.averaging = averaging;
    c.missingDbm = float(band.grid.floorDbm);
    return c;
}

SweepStore::SweepStore(const Band& band, int historyDepth)
    : m_band(&band), m_depth(historyDepth), m_core(configFor(band, historyDepth, m_averaging))
{
    configure(band);
}

void SweepStore::configure(const Band& band)
{
    m_band = &band;
    m_grid = {band.grid.startHz, band.grid.stepHz, band.grid.shown};
    m_core.configure(configFor(band, m_depth, m_averaging));
}

bool SweepStore::addSweep(const float* dbm, int count, std::int64_t timeMs)
{
    if (!dbm || count < m_grid.bins)
        return false;
    m_core.addSweep(dbm, m_grid.bins, timeMs);
    return true;
}

void SweepStore::resetHolds()
{
    m_core.resetHolds();
}

void SweepStore::resetDensity()
{
    m_core.resetDensity();
}

void SweepStore::setAveragingLength(int n)
{
    m_averaging = std::clamp(n, 1, kMaxAveraging);
    m_core.setAveraging(m_averaging);
}

const float* SweepStore::trace(Trace t) const
{
    if (!m_core.hasTraces() || (t != Trace::Current && m_core.holdSweeps() == 0))
        return nullptr;
    switch (t) {
    case Trace::Current:
        return m_core.current();
    case Trace::Average:
        return m_core.average();
    case Trace::Maximum:
        return m_core.maxHold();
    case Trace::Minimum:
        return m_core.minHold();
    }
    return nullptr;
}

const std::uint32_t* SweepStore::densityRow(int row) const
{
    // The views count rows from the top, the core from the bottom.
    return m_core.densityCells(m_core.densityRows() - 1 - row);
}

} // namespace wsa::desktop
