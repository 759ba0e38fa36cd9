// How often each level was seen at each frequency. The picture is kept at the store's own
// resolution (a cell per frequency cell and dB) and refreshed per sweep; painting scales it into
// the plot.
#ifndef DESKTOP_DENSITYVIEW_H
#define DESKTOP_DENSITYVIEW_H

#include <array>

#include "plotview.h"

namespace wsa::desktop
{

class DensityView : public PlotView
{
    Q_OBJECT
public:
    explicit DensityView(SweepFeed* feed, QWidget* parent = nullptr);

    // The colour index (0..255) of a count out of `sweeps`: 0 for never, rising with the square
    // root of the share so that rare levels stay visible.
    static int shade(std::uint32_t count, std::uint64_t sweeps);

protected:
    void paintLegend(QPainter& p, const QRectF& legend) override;
    void rebuildData(const PlotLayout& l, qreal dpr) override;
    void appendSweep() override;
    void paintData(QPainter& p, const PlotLayout& l) override;

private:
    void refresh();

    QImage m_table;                  // bins x density rows
    std::array<QRgb, 4097> m_shades; // by share of sweeps in 1/4096
};

} // namespace wsa::desktop

#endif
