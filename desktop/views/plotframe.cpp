#include "plotframe.h"

#include <algorithm>
#include <cmath>

namespace wsa::desktop
{

bool DisplaySettings::operator==(const DisplaySettings& o) const
{
    return bottomDbm == o.bottomDbm && topDbm == o.topDbm && channelWidthMHz == o.channelWidthMHz &&
           showChannels == o.showChannels && spanLowHz == o.spanLowHz &&
           spanHighHz == o.spanHighHz &&
           std::equal(traceShown, traceShown + kTraceCount, o.traceShown);
}

Span visibleSpan(const SweepGrid& grid, const DisplaySettings& s)
{
    const Axis whole = grid.axis(0, 1);
    const Span full{whole.lowHz(), whole.highHz()};
    if (!(s.spanHighHz > s.spanLowHz) || !std::isfinite(s.spanLowHz) ||
        !std::isfinite(s.spanHighHz))
        return full;
    const double least = std::min(full.widthHz(), kMinSpanCells * grid.stepHz);
    const double width = std::clamp(s.spanHighHz - s.spanLowHz, least, full.widthHz());
    const double centre = std::clamp((s.spanLowHz + s.spanHighHz) / 2, full.lowHz + width / 2,
                                     full.highHz - width / 2);
    return {centre - width / 2, centre + width / 2};
}

Axis spanAxis(const SweepGrid& grid, const DisplaySettings& s, double left, double width)
{
    // Stretch the whole grid so that the span's edges land on left and left + width.
    const Span span = visibleSpan(grid, s);
    const Axis whole = grid.axis(0, 1);
    const double scale = width / span.widthHz();
    return grid.axis(left - (span.lowHz - whole.lowHz()) * scale,
                     (whole.highHz() - whole.lowHz()) * scale);
}

PlotLayout plotLayout(const QSizeF& size, const QFontMetricsF& fm)
{
    // Whole logical pixels, so that the plot's edges fall on device pixels at any ratio.
    const double line = std::ceil(fm.height());
    const double left = std::ceil(fm.horizontalAdvance(QStringLiteral("-100 "))) + 10;
    // Room for the legend's longest words, and a line above the plot for the unit titles.
    const double right = std::ceil(std::max(fm.horizontalAdvance(QStringLiteral("Maximum")),
                                            fm.horizontalAdvance(QStringLiteral("-120 ")))) +
                         30;
    const double top = line + 4;
    const double bottom = 2 * line + 8;
    PlotLayout l;
    l.plot = QRectF(left, top, std::max(1.0, std::floor(size.width() - left - right)),
                    std::max(1.0, std::floor(size.height() - top - bottom)));
    l.frequencyLabels = QRectF(l.plot.left(), l.plot.bottom() + 3, l.plot.width(), line);
    l.channelLabels = QRectF(l.plot.left(), l.frequencyLabels.bottom() + 2, l.plot.width(), line);
    l.levelLabels = QRectF(0, l.plot.top(), left - 6, l.plot.height());
    l.legend = QRectF(l.plot.right() + 8, l.plot.top(), right - 10, l.plot.height());
    return l;
}

namespace
{

// The smallest of 1, 2, 5 times a power of ten not below `raw`.
double niceStep(double raw)
{
    if (!(raw > 0))
        return 1;
    const double p = std::pow(10.0, std::floor(std::log10(raw)));
    for (double m : {1.0, 2.0, 5.0, 10.0}) {
        if (m * p >= raw * (1 - 1e-9))
            return m * p;
    }
    return 10 * p;
}

// As many decimals as the tick step needs, and no more.
QString mhzText(double hz, double stepHz)
{
    const int decimals = std::clamp(int(std::ceil(-std::log10(stepHz / 1e6) - 1e-9)), 0, 3);
    return QString::number(hz / 1e6, 'f', decimals);
}

} // namespace

double frequencyTickGap(const QFontMetricsF& fm)
{
    return fm.horizontalAdvance(QStringLiteral("0000.0")) + 24;
}

std::vector<Tick> frequencyTicks(const Axis& axis, const Span& span, double minGapPx)
{
    std::vector<Tick> ticks;
    const double x0 = axis.columnOfHz(span.lowHz);
    const double x1 = axis.columnOfHz(span.highHz);
    if (!(x1 > x0) || !(minGapPx > 0))
        return ticks;
    const double hzPerPx = span.widthHz() / (x1 - x0);
    const double step = niceStep(minGapPx * hzPerPx / 1e6) * 1e6;
    for (double k = std::ceil(span.lowHz / step); k * step <= span.highHz; ++k)
        ticks.push_back({k * step, axis.columnOfHz(k * step), mhzText(k * step, step)});
    return ticks;
}

double yOfLevel(const QRectF& plot, double bottomDbm, double topDbm, double dbm)
{
    const double span = topDbm - bottomDbm;
    if (!(span > 0))
        return plot.bottom();
    return plot.bottom() - (dbm - bottomDbm) / span * plot.height();
}

double levelOfY(const QRectF& plot, double bottomDbm, double topDbm, double y)
{
    if (!(plot.height() > 0))
        return bottomDbm;
    return bottomDbm + (plot.bottom() - y) / plot.height() * (topDbm - bottomDbm);
}

std::vector<Tick> levelTicks(const QRectF& plot, double bottomDbm, double topDbm, double minGapPx)
{
    std::vector<Tick> ticks;
    const double span = topDbm - bottomDbm;
    if (!(span > 0) || !(plot.height() > 0) || !(minGapPx > 0))
        return ticks;
    double step = 20;
    for (double s : {1.0, 2.0, 5.0, 10.0, 20.0}) {
        if (s / span * plot.height() >= minGapPx) {
            step = s;
            break;
        }
    }
    for (double v = std::ceil(bottomDbm / step) * step; v <= topDbm + 1e-9; v += step)
        ticks.push_back({v, yOfLevel(plot, bottomDbm, topDbm, v), QString::number(v)});
    return ticks;
}

bool channelsDisjoint(const std::vector<Channel>& channels)
{
    for (std::size_t i = 1; i < channels.size(); ++i) {
        if (channels[i].lowMHz() < channels[i - 1].highMHz() - 1e-9)
            return false;
    }
    return true;
}

std::vector<ChannelMark> channelMarks(const Band& band, int widthMHz, const Axis& axis,
                                      const Span& span, const QRectF& row, const QFontMetricsF& fm)
{
    std::vector<ChannelMark> marks;
    double lastRight = -1e300;
    for (const Channel& c : band.channels(widthMHz)) {
        const double hz = c.centerMHz * 1e6;
        if (hz < span.lowHz || hz > span.highHz)
            continue;
        ChannelMark m;
        m.number = c.number;
        m.centerX = axis.columnOfHz(hz);
        m.lowX = axis.columnOfHz(std::max(c.lowMHz() * 1e6, span.lowHz));
        m.highX = axis.columnOfHz(std::min(c.highMHz() * 1e6, span.highHz));
        const QString text = QString::number(c.number);
        const double w = fm.horizontalAdvance(text);
        m.labelRect = QRectF(m.centerX - w / 2, row.top(), w, row.height());
        m.labelled = m.labelRect.left() > lastRight + 3;
        if (m.labelled)
            lastRight = m.labelRect.right();
        marks.push_back(m);
    }
    return marks;
}

} // namespace wsa::desktop
