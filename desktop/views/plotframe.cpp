#include "plotframe.h"

#include <algorithm>
#include <cmath>

namespace wsa::desktop
{

bool DisplaySettings::operator==(const DisplaySettings& o) const
{
    return bottomDbm == o.bottomDbm && topDbm == o.topDbm && channelWidthMHz == o.channelWidthMHz &&
           showChannels == o.showChannels &&
           std::equal(traceShown, traceShown + kTraceCount, o.traceShown);
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

QString mhzText(double hz)
{
    const double mhz = hz / 1e6;
    const bool whole = std::abs(mhz - std::round(mhz)) < 1e-6;
    return QString::number(mhz, 'f', whole ? 0 : 1);
}

} // namespace

double frequencyTickGap(const QFontMetricsF& fm)
{
    return fm.horizontalAdvance(QStringLiteral("0000.0")) + 24;
}

std::vector<Tick> frequencyTicks(const Axis& axis, double minGapPx)
{
    std::vector<Tick> ticks;
    const double x0 = axis.columnOfHz(axis.lowHz());
    const double x1 = axis.columnOfHz(axis.highHz());
    if (!(x1 > x0) || !(minGapPx > 0))
        return ticks;
    const double hzPerPx = (axis.highHz() - axis.lowHz()) / (x1 - x0);
    const double step = niceStep(minGapPx * hzPerPx / 1e6) * 1e6;
    for (double hz = std::ceil(axis.lowHz() / step) * step; hz <= axis.highHz(); hz += step)
        ticks.push_back({hz, axis.columnOfHz(hz), mhzText(hz)});
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
                                      const QRectF& row, const QFontMetricsF& fm)
{
    std::vector<ChannelMark> marks;
    double lastRight = -1e300;
    for (const Channel& c : band.channels(widthMHz)) {
        const double hz = c.centerMHz * 1e6;
        if (hz < axis.lowHz() || hz > axis.highHz())
            continue;
        ChannelMark m;
        m.number = c.number;
        m.centerX = axis.columnOfHz(hz);
        m.lowX = axis.columnOfHz(std::max(c.lowMHz() * 1e6, axis.lowHz()));
        m.highX = axis.columnOfHz(std::min(c.highMHz() * 1e6, axis.highHz()));
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
