#include "densityview.h"

#include <QPainter>
#include <cmath>

#include "colormap.h"
#include "scalelegend.h"

namespace wsa::desktop
{

namespace
{
constexpr int kShareSteps = 4096;
}

DensityView::DensityView(SweepFeed* feed, QWidget* parent) : PlotView(feed, parent)
{
    for (int q = 0; q <= kShareSteps; ++q)
        m_shades[std::size_t(q)] = colorScale()[std::size_t(shade(std::uint32_t(q), kShareSteps))];
}

int DensityView::shade(std::uint32_t count, std::uint64_t sweeps)
{
    if (count == 0 || sweeps == 0)
        return 0;
    const double share = std::min(1.0, double(count) / double(sweeps));
    return 1 + int(std::lround(std::sqrt(share) * 254));
}

void DensityView::rebuildData(const PlotLayout&, qreal)
{
    const QSize size(std::max(1, model().grid().bins), model().densityRows());
    if (m_table.size() != size)
        m_table = QImage(size, QImage::Format_RGB32);
    refresh();
}

void DensityView::appendSweep()
{
    refresh();
}

void DensityView::refresh()
{
    const int bins = model().grid().bins;
    const std::uint64_t sweeps = model().densitySweeps();
    if (sweeps == 0 || m_table.width() != bins || m_table.height() != model().densityRows()) {
        m_table.fill(colorScale()[0]);
        return;
    }
    // Fixed point share of the sweeps, exact enough for 4096 colour steps and free of divisions.
    const std::uint64_t unit = (std::uint64_t(kShareSteps) << 20) / sweeps;
    for (int r = 0; r < m_table.height(); ++r) {
        auto* line = reinterpret_cast<QRgb*>(m_table.scanLine(r));
        const std::uint32_t* row = model().densityRow(r);
        for (int i = 0; i < bins; ++i) {
            const std::uint64_t q = std::min<std::uint64_t>((row[i] * unit) >> 20, kShareSteps);
            line[i] = row[i] ? m_shades[std::max<std::size_t>(q, 1)] : m_shades[0];
        }
    }
}

void DensityView::paintData(QPainter& p, const PlotLayout& l)
{
    // The rows of the displayed level range, scaled into the plot.
    const double top = model().densityTopDbm() - settings().topDbm;
    const double bottom = model().densityTopDbm() - settings().bottomDbm;
    // The cells of the visible span, in the table's (fractional) cell coordinates.
    const SweepGrid grid = model().grid();
    const Span s = span();
    const double lowEdge = grid.axis(0, 1).lowHz();
    const double left = (s.lowHz - lowEdge) / grid.stepHz;
    const double right = (s.highHz - lowEdge) / grid.stepHz;
    p.drawImage(l.plot, m_table, QRectF(left, top, right - left, bottom - top));
}

void DensityView::paintLegend(QPainter& p, const QRectF& legend)
{
    std::vector<std::pair<double, QString>> ticks;
    for (int percent : {1, 10, 25, 50, 100})
        ticks.push_back({shade(std::uint32_t(percent), 100) / 255.0, QString::number(percent)});
    paintScaleLegend(p, legend, tr("% sweeps"), ticks);
}

} // namespace wsa::desktop
