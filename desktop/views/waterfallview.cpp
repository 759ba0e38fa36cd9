#include "waterfallview.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

#include "colormap.h"
#include "scalelegend.h"

namespace wsa::desktop
{

WaterfallView::WaterfallView(SweepFeed* feed, QWidget* parent) : PlotView(feed, parent) {}

QString WaterfallView::describePoint(const QPointF& pos) const
{
    const PlotLayout l = plotLayout();
    if (!l.plot.contains(pos) || m_ring.isNull())
        return {};
    const int age = int((pos.y() - l.plot.top()) * m_ring.devicePixelRatio());
    if (age >= model().historyRows())
        return describeFrequency(pos.x());
    const double seconds = (model().historyTimeMs(0) - model().historyTimeMs(age)) / 1000.0;
    const QString ago = age == 1 ? tr("1 sweep ago") : tr("%1 sweeps ago").arg(age);
    return tr("%1, %2 (%3 s)").arg(describeFrequency(pos.x()), ago).arg(seconds, 0, 'f', 1);
}

void WaterfallView::rebuildData(const PlotLayout& l, qreal dpr)
{
    const QSize px = (l.plot.size() * dpr).toSize().expandedTo(QSize(1, 1));
    if (m_ring.size() != px) {
        m_ring = QImage(px, QImage::Format_RGB32);
    }
    m_ring.setDevicePixelRatio(dpr);
    m_ring.fill(colorScale()[0]);
    m_head = 0;
    m_bottomDbm = settings().bottomDbm;
    m_scale = 255.0 / std::max(1e-6, settings().topDbm - settings().bottomDbm);

    // Each device column shows the strongest of the cells it touches.
    const Axis a = spanAxis(model().grid(), settings(), 0, px.width());
    m_columnFirst.resize(std::size_t(px.width()));
    m_columnEnd.resize(std::size_t(px.width()));
    for (int c = 0; c < px.width(); ++c) {
        m_columnFirst[std::size_t(c)] = a.binOfColumn(c + 1e-6);
        m_columnEnd[std::size_t(c)] = a.binOfColumn(c + 1 - 1e-6) + 1;
    }
    const int rows = std::min(model().historyRows(), px.height());
    for (int age = rows - 1; age >= 0; --age) {
        m_head = (m_head - 1 + px.height()) % px.height();
        writeRow(m_head, model().historyRow(age));
    }
}

void WaterfallView::appendSweep()
{
    if (m_ring.isNull())
        return;
    m_head = (m_head - 1 + m_ring.height()) % m_ring.height();
    writeRow(m_head, model().historyRow(0));
}

void WaterfallView::writeRow(int row, const float* levels)
{
    auto* line = reinterpret_cast<QRgb*>(m_ring.scanLine(row));
    const int width = m_ring.width();
    if (!levels) {
        std::fill(line, line + width, colorScale()[0]);
        return;
    }
    const auto& scale = colorScale();
    for (int c = 0; c < width; ++c) {
        const int end = m_columnEnd[std::size_t(c)];
        int i = m_columnFirst[std::size_t(c)];
        float hi = levels[i];
        for (++i; i < end; ++i)
            hi = std::max(hi, levels[i]);
        const int k = int(std::clamp((double(hi) - m_bottomDbm) * m_scale, 0.0, 255.0));
        line[c] = scale[std::size_t(k)];
    }
}

void WaterfallView::paintData(QPainter& p, const PlotLayout& l)
{
    if (m_ring.isNull())
        return;
    // Each sweep moves the head up a row, so older rows follow below it: blit head..end, then
    // the rows that wrapped round to the start of the ring.
    const qreal dpr = m_ring.devicePixelRatio();
    const int h = m_ring.height();
    const int upper = h - m_head;
    p.drawImage(l.plot.topLeft(), m_ring, QRect(0, m_head, m_ring.width(), upper));
    if (m_head > 0)
        p.drawImage(l.plot.topLeft() + QPointF(0, upper / dpr), m_ring,
                    QRect(0, 0, m_ring.width(), m_head));
}

void WaterfallView::paintLevelAxis(QPainter& p, const PlotLayout& l)
{
    // Rows are sweeps: one device pixel each, newest on top.
    const QFontMetricsF fm(p.font());
    const qreal dpr = p.device()->devicePixelRatioF();
    const double rows = l.plot.height() * dpr;
    const double minRows = fm.height() * 2.5 * dpr;
    double step = 1;
    for (double base = 1; step < minRows; base *= 10) {
        for (double m : {1.0, 2.0, 5.0}) {
            step = m * base;
            if (step >= minRows)
                break;
        }
    }
    p.setPen(colors::text());
    for (double age = 0; age <= rows; age += step) {
        const double y = l.plot.top() + age / dpr;
        p.drawText(
            QRectF(l.levelLabels.left(), y - fm.height() / 2, l.levelLabels.width(), fm.height()),
            Qt::AlignRight | Qt::AlignVCenter, QString::number(age));
    }
    p.setPen(colors::dimText());
    p.drawText(QRectF(4, 0, l.plot.left() + 40, fm.height() + 2), Qt::AlignLeft | Qt::AlignVCenter,
               tr("sweeps"));
}

void WaterfallView::paintLegend(QPainter& p, const QRectF& legend)
{
    const double bottom = settings().bottomDbm;
    const double top = settings().topDbm;
    std::vector<std::pair<double, QString>> ticks;
    const double step = top - bottom > 60 ? 20 : 10;
    for (double v = std::ceil(bottom / step) * step; v <= top; v += step)
        ticks.push_back({(v - bottom) / (top - bottom), QString::number(v)});
    paintScaleLegend(p, legend, tr("dBm"), ticks);
}

} // namespace wsa::desktop
