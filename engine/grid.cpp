#include "grid.h"

#include <algorithm>
#include <cmath>

Grid bandGrid(Band band)
{
    if (band == Band::Ghz5)
        return {5160e6, 5835e6, 675e6 / 903, 904, 1024, -100};
    return {2400e6, 2490e6, 90e6 / 422, 423, 423, -110};
}

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
    const double cellLow = m_grid.startHz - m_grid.stepHz / 2;
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
        const double k = std::floor((m_grid.startHz + i * m_grid.stepHz - lowHz) / binHz);
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
