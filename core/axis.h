// Frequency axes: bin <-> Hz <-> column for any grid and any pixel width. Columns are continuous
// (pixel x + 0.5 is the centre of pixel x): a front-end rounds as it draws.
#ifndef CORE_AXIS_H
#define CORE_AXIS_H

#include "bandplan.h"

namespace wsa
{

// A uniform grid of `bins` cells of width stepHz, cell i centred on firstHz + i * stepHz, laid
// over `width` pixels from `left`: the first cell's lower edge at left, the last cell's upper
// edge at left + width.
class Axis
{
public:
    Axis(double firstHz, double stepHz, int bins, double left = 0, double width = 1);
    Axis(const SourceGrid& grid, double left = 0, double width = 1);

    double hzOfBin(double bin) const { return m_firstHz + bin * m_stepHz; }
    double binOfHz(double hz) const { return (hz - m_firstHz) / m_stepHz; }
    // The nearest bin, clamped into the grid.
    int nearestBin(double hz) const;
    double columnOfHz(double hz) const;
    double hzOfColumn(double x) const;
    double columnOfBin(double bin) const { return columnOfHz(hzOfBin(bin)); }
    // The bin under column x, clamped into the grid.
    int binOfColumn(double x) const;

    double lowHz() const { return m_firstHz - m_stepHz / 2; }
    double highHz() const { return lowHz() + m_bins * m_stepHz; }
    int bins() const { return m_bins; }
    double stepHz() const { return m_stepHz; }

private:
    double m_firstHz;
    double m_stepHz;
    int m_bins;
    double m_left;
    double m_width;
};

// The handheld analyzer's mapping, a named special case: bins are pixel columns from the grid's
// left frame line, labels and Inspector readings come from HandheldMapping's whole-MHz figures.
namespace handheld
{
// Frequency label k (1-based) of a grid of `gridWidth` pixels: its MHz and its x offset from the
// grid's left line. labelCount is how many fit.
int labelCount(const HandheldMapping& m, int gridWidth);
int labelMHz(const HandheldMapping& m, int k);
int labelOffset(const HandheldMapping& m, int k);
// The Inspector's frequency of a tap `dx` pixels right of the left line of a grid `span` pixels
// between its frame lines: integer interpolation of startMHz..endMHz, truncated.
int inspectorMHz(const HandheldMapping& m, int dx, int span);
} // namespace handheld

} // namespace wsa

#endif
