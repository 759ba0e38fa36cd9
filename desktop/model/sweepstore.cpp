#include "sweepstore.h"

#include <algorithm>
#include <cmath>

namespace wsa::desktop
{

SweepStore::SweepStore(const Band& band, int historyDepth)
    : m_band(&band), m_depth(std::max(historyDepth, 1))
{
    configure(band);
}

void SweepStore::configure(const Band& band)
{
    m_band = &band;
    m_grid = {band.grid.startHz, band.grid.stepHz, band.grid.shown};
    const auto bins = std::size_t(m_grid.bins);
    for (auto& t : m_traces)
        t.assign(bins, 0.0f);
    m_density.assign(bins * std::size_t(densityRows()), 0);
    m_history.assign(bins * std::size_t(m_depth), 0.0f);
    m_historyTimes.assign(std::size_t(m_depth), 0);
    m_historyHead = 0;
    m_historyRows = 0;
    m_sweeps = m_holdSweeps = m_densitySweeps = 0;
    ++m_generation;
}

bool SweepStore::addSweep(const float* dbm, int count, std::int64_t timeMs)
{
    const int bins = m_grid.bins;
    if (!dbm || count < bins)
        return false;
    m_historyHead = (m_historyHead + 1) % m_depth;
    m_historyRows = std::min(m_historyRows + 1, m_depth);
    m_historyTimes[std::size_t(m_historyHead)] = timeMs;
    float* row = m_history.data() + std::size_t(m_historyHead) * std::size_t(bins);
    float* cur = m_traces[int(Trace::Current)].data();
    float* avg = m_traces[int(Trace::Average)].data();
    float* max = m_traces[int(Trace::Maximum)].data();
    float* min = m_traces[int(Trace::Minimum)].data();
    const bool first = m_holdSweeps == 0;
    const float weight = 1.0f / float(std::min<std::uint64_t>(m_holdSweeps + 1, m_averaging));
    const float floor = float(m_band->grid.floorDbm);
    const int rows = densityRows();
    for (int i = 0; i < bins; ++i) {
        const float v = std::isfinite(dbm[i]) ? dbm[i] : floor;
        row[i] = cur[i] = v;
        if (first) {
            avg[i] = max[i] = min[i] = v;
        } else {
            avg[i] += (v - avg[i]) * weight;
            max[i] = std::max(max[i], v);
            min[i] = std::min(min[i], v);
        }
        const int r = int(std::clamp(std::ceil(kDensityTopDbm - double(v)) - 1, 0.0, rows - 1.0));
        ++m_density[std::size_t(r) * std::size_t(bins) + std::size_t(i)];
    }
    ++m_sweeps;
    ++m_holdSweeps;
    ++m_densitySweeps;
    ++m_generation;
    return true;
}

void SweepStore::resetHolds()
{
    m_holdSweeps = 0;
    ++m_generation;
}

void SweepStore::resetDensity()
{
    std::fill(m_density.begin(), m_density.end(), 0);
    m_densitySweeps = 0;
    ++m_generation;
}

void SweepStore::setAveragingLength(int n)
{
    m_averaging = std::clamp(n, 1, kMaxAveraging);
}

const float* SweepStore::trace(Trace t) const
{
    if (m_sweeps == 0 || (t != Trace::Current && m_holdSweeps == 0))
        return nullptr;
    return m_traces[int(t)].data();
}

int SweepStore::historySlot(int age) const
{
    if (age < 0 || age >= m_historyRows)
        return -1;
    return (m_historyHead - age + m_depth) % m_depth;
}

const float* SweepStore::historyRow(int age) const
{
    const int slot = historySlot(age);
    return slot < 0 ? nullptr : m_history.data() + std::size_t(slot) * std::size_t(m_grid.bins);
}

std::int64_t SweepStore::historyTimeMs(int age) const
{
    const int slot = historySlot(age);
    return slot < 0 ? 0 : m_historyTimes[std::size_t(slot)];
}

} // namespace wsa::desktop
