#include "axis.h"

#include <algorithm>
#include <cmath>

namespace wsa
{

Axis::Axis(double firstHz, double stepHz, int bins, double left, double width)
    : m_firstHz(firstHz), m_stepHz(stepHz > 0 ? stepHz : 1), m_bins(std::max(bins, 1)),
      m_left(left), m_width(width > 0 ? width : 1)
{
}

Axis::Axis(const SourceGrid& grid, double left, double width)
    : Axis(grid.startHz, grid.stepHz, grid.shown, left, width)
{
}

int Axis::nearestBin(double hz) const
{
    const double bin = std::round(binOfHz(hz));
    return int(std::clamp(bin, 0.0, double(m_bins - 1)));
}

double Axis::columnOfHz(double hz) const
{
    return m_left + (hz - lowHz()) / (highHz() - lowHz()) * m_width;
}

double Axis::hzOfColumn(double x) const
{
    return lowHz() + (x - m_left) / m_width * (highHz() - lowHz());
}

int Axis::binOfColumn(double x) const
{
    const double bin = std::floor((hzOfColumn(x) - lowHz()) / m_stepHz);
    return int(std::clamp(bin, 0.0, double(m_bins - 1)));
}

namespace handheld
{

int labelCount(const HandheldMapping& m, int gridWidth)
{
    return m.cellWidth > 0 ? gridWidth / m.cellWidth - 1 : 0;
}

int labelMHz(const HandheldMapping& m, int k)
{
    return m.startMHz + k * m.labelStepMHz;
}

int labelOffset(const HandheldMapping& m, int k)
{
    return k * m.cellWidth;
}

int inspectorMHz(const HandheldMapping& m, int dx, int span)
{
    if (span <= 0)
        return m.startMHz;
    return dx * (m.endMHz - m.startMHz) / span + m.startMHz;
}

} // namespace handheld

} // namespace wsa
