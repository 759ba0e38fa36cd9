#include "plotview.h"

#include <QEvent>
#include <QMouseEvent>
#include <QWheelEvent>
#include <cmath>
#include <QPaintEngine>
#include <QPainter>

#include "colormap.h"
#include "markers.h"
#include "sweepfeed.h"

namespace wsa::desktop
{

PlotView::PlotView(SweepFeed* feed, QWidget* parent) : QWidget(parent), m_feed(feed)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    connect(feed, &SweepFeed::sweepShown, this, &PlotView::onSweepShown);
    connect(feed, &SweepFeed::shownReset, this, &PlotView::onShownReset);
}

const SweepStore& PlotView::model() const
{
    return m_feed->shown();
}

void PlotView::setSettings(const DisplaySettings& settings)
{
    if (settings == m_settings)
        return;
    m_settings = settings;
    update();
}

PlotLayout PlotView::plotLayout() const
{
    return desktop::plotLayout(QSizeF(size()), QFontMetricsF(font()));
}

Axis PlotView::axis() const
{
    return axisFor(plotLayout());
}

Axis PlotView::axisFor(const PlotLayout& l) const
{
    return spanAxis(model().grid(), m_settings, l.plot.left(), l.plot.width());
}

Span PlotView::span() const
{
    return visibleSpan(model().grid(), m_settings);
}

void PlotView::onSweepShown()
{
    // A layer built for another band or layout is rebuilt at the next paint instead.
    // A hidden view catches up in one rebuild when shown. Otherwise only the data area changes,
    // and its place is known from the last paint.
    if (!isVisible()) {
        m_dataValid = false;
        return;
    }
    if (m_dataValid && m_key.band == &model().band() && m_key.size == size()) {
        appendSweep();
        update(m_plotRect);
    } else {
        m_dataValid = false;
        update();
    }
}

void PlotView::onShownReset()
{
    m_dataValid = false;
    update();
}

QString PlotView::describeFrequency(double x) const
{
    const double hz = axis().hzOfColumn(x);
    const int channel = channelAt(model().band(), m_settings.channelWidthMHz, hz);
    const QString mhz = tr("%1 MHz").arg(hz / 1e6, 0, 'f', 3);
    return channel ? tr("%1, channel %2").arg(mhz).arg(channel) : mhz;
}

QString PlotView::describePoint(const QPointF& pos) const
{
    const PlotLayout l = plotLayout();
    if (m_settings.showChannels && l.channelLabels.contains(pos)) {
        // Over the channel numbers: the channel's edges, which the numbers alone do not tell.
        const double hz = axis().hzOfColumn(pos.x());
        const Channel* c = model().band().channel(
            m_settings.channelWidthMHz, channelAt(model().band(), m_settings.channelWidthMHz, hz));
        if (!c)
            return {};
        return tr("Channel %1: %2 to %3 MHz")
            .arg(c->number)
            .arg(c->lowMHz(), 0, 'f', 0)
            .arg(c->highMHz(), 0, 'f', 0);
    }
    if (!l.plot.contains(pos))
        return {};
    const double dbm = levelOfY(l.plot, m_settings.bottomDbm, m_settings.topDbm, pos.y());
    return tr("%1, %2 dBm").arg(describeFrequency(pos.x())).arg(dbm, 0, 'f', 1);
}

void PlotView::mouseMoveEvent(QMouseEvent* event)
{
    emit pointerMoved(describePoint(event->position()));
    QWidget::mouseMoveEvent(event);
}

void PlotView::leaveEvent(QEvent* event)
{
    emit pointerMoved(QString());
    QWidget::leaveEvent(event);
}

void PlotView::wheelEvent(QWheelEvent* event)
{
    const PlotLayout l = plotLayout();
    const QPoint delta = event->angleDelta();
    if (levelWheel(event, l))
        return;
    if (!l.plot.contains(event->position()) || delta.isNull()) {
        QWidget::wheelEvent(event);
        return;
    }
    const Span s = span();
    const bool pan = (event->modifiers() & Qt::ShiftModifier) || delta.x() != 0;
    // One notch (120) zooms by a fifth or pans by a tenth of the span.
    const double notches = (delta.x() != 0 ? delta.x() : delta.y()) / 120.0;
    if (pan) {
        const double shift = -notches * s.widthHz() / 10;
        emit spanRequested(s.lowHz + shift, s.highHz + shift);
    } else {
        const double hz = axisFor(l).hzOfColumn(event->position().x());
        const double factor = std::pow(0.8, notches);
        emit spanRequested(hz - (hz - s.lowHz) * factor, hz + (s.highHz - hz) * factor);
    }
    event->accept();
}

bool PlotView::levelWheel(QWheelEvent* event, const PlotLayout& l)
{
    const QPointF pos = event->position();
    const QRectF axisArea(0, l.plot.top(), l.plot.left(), l.plot.height());
    if (!levelGrid() || !axisArea.contains(pos) || event->angleDelta().y() == 0)
        return false;
    // One notch shifts the range by 5 dB, or with Ctrl narrows it by a fifth about the pointer.
    const double notches = event->angleDelta().y() / 120.0;
    const double bottom = m_settings.bottomDbm;
    const double top = m_settings.topDbm;
    if (event->modifiers() & Qt::ControlModifier) {
        const double at = levelOfY(l.plot, bottom, top, pos.y());
        const double factor = std::pow(0.8, notches);
        emit levelRangeRequested(at - (at - bottom) * factor, at + (top - at) * factor);
    } else {
        emit levelRangeRequested(bottom + 5 * notches, top + 5 * notches);
    }
    event->accept();
    return true;
}

void PlotView::changeEvent(QEvent* event)
{
    // The font sets the margins, and so the plot every layer is built for.
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        m_frameKey = {};
        m_dataValid = false;
    }
    QWidget::changeEvent(event);
}

void PlotView::paintEvent(QPaintEvent*)
{
    QPainter p(this);
    // The ratio of what is painted on: the screen's, or a rendering target's (which the
    // widget's own devicePixelRatio does not know about).
    const QPaintDevice* target = p.paintEngine() ? p.paintEngine()->paintDevice() : p.device();
    const qreal dpr = target ? target->devicePixelRatioF() : devicePixelRatioF();
    const PlotLayout l = plotLayout();
    const Key key{size(), dpr, &model().band(), m_settings};
    if (!(key == m_frameKey)) {
        buildFrame(l, dpr);
        m_frameKey = key;
    }
    if (!m_dataValid || !(key == m_key)) {
        m_key = key;
        m_plotRect = l.plot.toAlignedRect();
        rebuildData(l, dpr);
        m_dataValid = true;
    }
    p.drawImage(QPointF(0, 0), m_frame);
    p.save();
    p.setClipRect(l.plot);
    paintData(p, l);
    if (gridOverData()) {
        p.setPen(QPen(colors::grid(), 0));
        p.drawLines(m_gridLines);
        p.setPen(QPen(colors::channel(), 0, Qt::DashLine));
        p.drawLines(m_channelLines);
    }
    p.restore();
    if (model().sweepCount() == 0) {
        p.setPen(colors::dimText());
        p.drawText(l.plot, Qt::AlignCenter, tr("Waiting for the first sweep"));
    }
    paintForeground(p, l);
}

void PlotView::buildOverlayLines(const PlotLayout& l, const Axis& a)
{
    const QRectF& r = l.plot;
    const QFontMetricsF fm(font());
    m_gridLines.clear();
    for (const Tick& t : frequencyTicks(a, span(), frequencyTickGap(fm)))
        m_gridLines.append(QLineF(t.pos, r.top(), t.pos, r.bottom()));
    const auto rows = levelGrid()
                          ? levelTicks(r, m_settings.bottomDbm, m_settings.topDbm, fm.height() * 2)
                          : std::vector<Tick>();
    for (const Tick& t : rows)
        m_gridLines.append(QLineF(r.left(), t.pos, r.right(), t.pos));
    m_channelLines.clear();
    const std::vector<Channel> plan = model().band().channels(m_settings.channelWidthMHz);
    if (!m_settings.showChannels || !channelsDisjoint(plan))
        return;
    // Channel edges closer than a label's width would only hatch the plot.
    const double least = fm.horizontalAdvance(QStringLiteral("000"));
    for (const ChannelMark& m :
         channelMarks(model().band(), m_settings.channelWidthMHz, a, span(), l.channelLabels, fm)) {
        if (m.highX - m.lowX < least)
            continue;
        m_channelLines.append(QLineF(m.lowX, r.top(), m.lowX, r.bottom()));
        m_channelLines.append(QLineF(m.highX, r.top(), m.highX, r.bottom()));
    }
}

void PlotView::buildFrame(const PlotLayout& l, qreal dpr)
{
    m_frame = QImage((QSizeF(size()) * dpr).toSize(), QImage::Format_RGB32);
    m_frame.setDevicePixelRatio(dpr);
    m_frame.fill(colors::window());
    const Axis a = axisFor(l);
    buildOverlayLines(l, a);

    QPainter p(&m_frame);
    p.setRenderHint(QPainter::TextAntialiasing);
    p.setFont(font());
    p.fillRect(l.plot, colors::plot());
    if (!gridOverData()) {
        p.setPen(QPen(colors::grid(), 0));
        p.drawLines(m_gridLines);
        p.setPen(QPen(colors::channel(), 0, Qt::DashLine));
        p.drawLines(m_channelLines);
    }
    p.setPen(QPen(colors::frame(), 0));
    p.drawRect(l.plot.adjusted(-0.5, -0.5, 0.5, 0.5));
    paintLevelAxis(p, l);
    paintFrequencyAxis(p, l, a);
    paintLegend(p, l.legend);
}

void PlotView::paintLevelAxis(QPainter& p, const PlotLayout& l)
{
    const QFontMetricsF fm(p.font());
    p.setPen(colors::text());
    for (const Tick& t :
         levelTicks(l.plot, m_settings.bottomDbm, m_settings.topDbm, fm.height() * 2)) {
        const QRectF r(l.levelLabels.left(), t.pos - fm.height() / 2, l.levelLabels.width(),
                       fm.height());
        p.drawText(r, Qt::AlignRight | Qt::AlignVCenter, t.label);
    }
    p.setPen(colors::dimText());
    p.drawText(QRectF(4, 0, l.plot.left() + 40, fm.height() + 2), Qt::AlignLeft | Qt::AlignVCenter,
               tr("dBm"));
}

void PlotView::paintFrequencyAxis(QPainter& p, const PlotLayout& l, const Axis& a)
{
    const QFontMetricsF fm(p.font());
    const QRectF& row = l.frequencyLabels;
    p.setPen(QPen(colors::frame(), 0));
    const auto ticks = frequencyTicks(a, span(), frequencyTickGap(fm));
    for (const Tick& t : ticks)
        p.drawLine(QPointF(t.pos, l.plot.bottom()), QPointF(t.pos, l.plot.bottom() + 3));
    p.setPen(colors::text());
    for (const Tick& t : ticks) {
        const double w = fm.horizontalAdvance(t.label);
        const double x = std::clamp(t.pos - w / 2, row.left() - 4, row.right() - w + 4);
        p.drawText(QRectF(x, row.top(), w, row.height()), Qt::AlignCenter, t.label);
    }
    p.setPen(colors::dimText());
    const QRectF corner(0, row.top(), l.levelLabels.right(), row.height());
    p.drawText(corner, Qt::AlignRight | Qt::AlignVCenter, tr("MHz"));
    if (!m_settings.showChannels)
        return;
    const QRectF chRow = l.channelLabels;
    p.drawText(QRectF(0, chRow.top(), l.levelLabels.right(), chRow.height()),
               Qt::AlignRight | Qt::AlignVCenter, tr("Ch"));
    const std::vector<Channel> plan = model().band().channels(m_settings.channelWidthMHz);
    const bool disjoint = channelsDisjoint(plan);
    const auto marks =
        channelMarks(model().band(), m_settings.channelWidthMHz, a, span(), chRow, fm);
    int shade = 0;
    for (const ChannelMark& m : marks) {
        if (disjoint && (shade++ % 2) == 0)
            p.fillRect(QRectF(m.lowX, chRow.top(), m.highX - m.lowX, chRow.height()),
                       QColor(0x22, 0x2a, 0x34));
    }
    for (const ChannelMark& m : marks) {
        p.setPen(QPen(colors::channel(), 0));
        p.drawLine(QPointF(m.centerX, chRow.top() - 2), QPointF(m.centerX, chRow.top()));
        if (!m.labelled)
            continue;
        p.setPen(colors::text());
        p.drawText(m.labelRect, Qt::AlignCenter, QString::number(m.number));
    }
}

} // namespace wsa::desktop
