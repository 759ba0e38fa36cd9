#include "resample.h"

#include <algorithm>
#include <cmath>

namespace wsa
{

void Resampler::clear()
{
    m_touched = 0;
    std::fill(m_set, m_set + SA_MAX_SAMPLES, false);
}

void Resampler::raise(int bin, double level)
{
    if (!m_set[bin]) {
        m_set[bin] = true;
        m_levels[bin] = level;
        ++m_touched;
    } else if (level > m_levels[bin]) {
        m_levels[bin] = level;
    }
}

bool Resampler::add(double lowHz, double binHz, const float* levels, int count)
{
    if (count <= 0 || !(binHz > 0))
        return false;
    bool hit = false;
    const double cellLow = m_grid.lowEdgeHz();
    const double highHz = lowHz + count * binHz;
    for (int k = 0; k < count; ++k) {
        const double centre = lowHz + (k + 0.5) * binHz;
        const double cell = std::floor((centre - cellLow) / m_grid.stepHz);
        if (cell >= 0 && cell < m_grid.shown) {
            raise(int(cell), levels[k]);
            hit = true;
        }
    }
    // Grid cells whose centre lies in this run: the measured bin under that centre. Bounds are
    // clamped as doubles: a damaged row may hold any frequency.
    const double first = std::max(0.0, std::ceil((lowHz - m_grid.startHz) / m_grid.stepHz));
    const double last =
        std::min(m_grid.shown - 1.0, std::floor((highHz - m_grid.startHz) / m_grid.stepHz));
    for (int i = int(std::min(first, double(m_grid.shown))); i <= last; ++i) {
        const double k = std::floor((m_grid.binHz(i) - lowHz) / binHz);
        if (k >= 0 && k < count) {
            raise(i, levels[int(k)]);
            hit = true;
        }
    }
    return hit;
}

void Resampler::result(double* levels, double offsetDb) const
{
    for (int i = 0; i < m_grid.raw; ++i)
        levels[i] = i < m_grid.shown && m_set[i] ? m_levels[i] + offsetDb : m_grid.floorDbm;
}

bool SweepAssembler::complete()
{
    if (m_sweep.empty())
        return false;
    m_sweep.result(m_done, m_offsetDb);
    m_doneSeconds = m_seconds;
    return true;
}

bool SweepAssembler::feed(const CsvRow& row)
{
    bool done = false;
    if (m_started && row.lowHz <= m_startHz) {
        done = complete();
        m_started = false;
    }
    if (!m_started) {
        m_sweep.clear();
        m_started = true;
        m_startHz = row.lowHz;
        m_seconds = row.seconds;
    }
    m_sweep.add(row.lowHz, row.binHz, row.levels.data(), int(row.levels.size()));
    return done;
}

bool SweepAssembler::finish()
{
    const bool done = m_started && complete();
    m_started = false;
    m_sweep.clear();
    return done;
}

double SweepAssembler::take(double* levels) const
{
    std::copy(m_done, m_done + m_grid.raw, levels);
    return m_doneSeconds;
}

} // namespace wsa
