#include "spectrumview.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>

#include "colormap.h"
#include "markers.h"
#include "tracepath.h"

namespace wsa::desktop
{

SpectrumView::SpectrumView(SweepFeed* feed, Markers* markers, QWidget* parent)
    : PlotView(feed, parent), m_markers(markers)
{
    connect(markers, &Markers::changed, this, qOverload<>(&QWidget::update));
}

void SpectrumView::rebuildData(const PlotLayout& l, qreal dpr)
{
    m_layout = l;
    m_dpr = dpr;
    buildPaths();
}

void SpectrumView::appendSweep()
{
    buildPaths();
}

void SpectrumView::buildPaths()
{
    const Axis a = axisFor(m_layout);
    const LevelMapping map{m_layout.plot, settings().bottomDbm, settings().topDbm};
    for (int t = 0; t < kTraceCount; ++t) {
        const float* levels = settings().traceShown[t] ? model().trace(Trace(t)) : nullptr;
        buildTracePath(m_paths[t], levels, a, map, m_dpr);
    }
}

void SpectrumView::paintData(QPainter& p, const PlotLayout&)
{
    // Minimum and maximum first, so the current sweep and the average stay on top.
    for (Trace t : {Trace::Minimum, Trace::Maximum, Trace::Average, Trace::Current}) {
        const QPolygonF& path = m_paths[int(t)];
        if (path.isEmpty())
            continue;
        p.setPen(QPen(traceColor(t), 0));
        p.drawPolyline(path);
    }
}

void SpectrumView::paintLegend(QPainter& p, const QRectF& legend)
{
    const QFontMetricsF fm(p.font());
    double y = legend.top();
    for (int t = 0; t < kTraceCount; ++t) {
        if (!settings().traceShown[t])
            continue;
        p.setPen(QPen(traceColor(Trace(t)), 2));
        p.drawLine(QPointF(legend.left(), y + fm.height() / 2),
                   QPointF(legend.left() + 10, y + fm.height() / 2));
        p.setPen(colors::text());
        const QRectF text(legend.left() + 13, y, legend.width() - 13, fm.height());
        p.drawText(text, Qt::AlignLeft | Qt::AlignVCenter,
                   fm.elidedText(traceName(Trace(t)), Qt::ElideRight, text.width()));
        y += fm.height() + 2;
    }
}

void SpectrumView::setEmitterMarks(std::vector<EmitterMark> marks)
{
    std::sort(marks.begin(), marks.end(),
              [](const EmitterMark& x, const EmitterMark& y) { return x.lowHz < y.lowHz; });
    m_emitterMarks = std::move(marks);
    m_placedFor = {};
    update();
}

void SpectrumView::placeEmitterMarks(const PlotLayout& l, const Axis& a, const QFontMetricsF& fm)
{
    // Overlapping emitters (Bluetooth hopping across a Wi-Fi channel) take lanes downwards.
    constexpr int kLanes = 3;
    const double laneHeight = std::ceil(fm.height()) + 6;
    double laneEnd[kLanes] = {-1e9, -1e9, -1e9};
    m_placed.clear();
    for (const EmitterMark& m : m_emitterMarks) {
        const double x0 = std::max(a.columnOfHz(m.lowHz), l.plot.left());
        const double x1 = std::min(a.columnOfHz(m.highHz), l.plot.right());
        if (!(x0 <= x1))
            continue; // outside the span shown, or nonsense
        int lane = 0;
        while (lane < kLanes - 1 && x0 <= laneEnd[lane] + 2)
            ++lane;
        laneEnd[lane] = std::max(laneEnd[lane], x1);
        // Half a pixel in, so that the lines fill whole device pixels at ratio 1.
        const double y = std::floor(l.plot.top() + 2 + lane * laneHeight) + 0.5;
        m_placed.push_back({x0, x1, y, fm.elidedText(m.label, Qt::ElideRight, x1 - x0 - 4)});
    }
}

void SpectrumView::paintEmitterMarks(QPainter& p, const PlotLayout& l, const Axis& a)
{
    // Placed again only when the plot, the span or the font moved: painting allocates nothing.
    const QFontMetricsF fm(p.font());
    const Span s = span();
    const PlacedKey key{l.plot, s.lowHz, s.highHz, fm.height()};
    if (!(key == m_placedFor)) {
        placeEmitterMarks(l, a, fm);
        m_placedFor = key;
    }
    p.setPen(QPen(colors::emitter(), 0));
    for (const PlacedMark& m : m_placed) {
        p.drawLine(QPointF(m.x0, m.y), QPointF(m.x1, m.y));
        p.drawLine(QPointF(m.x0, m.y), QPointF(m.x0, m.y + 5));
        p.drawLine(QPointF(m.x1, m.y), QPointF(m.x1, m.y + 5));
        if (!m.text.isEmpty())
            p.drawText(QRectF(m.x0 + 2, m.y + 1, m.x1 - m.x0 - 4, fm.height()), Qt::AlignCenter,
                       m.text);
    }
}

void SpectrumView::paintForeground(QPainter& p, const PlotLayout& l)
{
    const Axis a = axisFor(l);
    paintEmitterMarks(p, l, a);
    const QFontMetricsF fm(p.font());
    p.setRenderHint(QPainter::Antialiasing);
    for (int i = 0; i < Markers::kCount; ++i) {
        const MarkerReading r = m_markers->reading(model(), i, settings().channelWidthMHz);
        if (!r.valid)
            continue;
        const double x = a.columnOfBin(r.bin);
        if (x < l.plot.left() || x > l.plot.right())
            continue; // outside the span shown
        const double y =
            std::clamp(yOfLevel(l.plot, settings().bottomDbm, settings().topDbm, r.dbm),
                       l.plot.top(), l.plot.bottom());
        const QColor c = i == m_markers->active() ? colors::marker() : colors::dimText();
        const QPointF tri[3] = {{x, y}, {x - 5, y - 9}, {x + 5, y - 9}};
        p.setPen(QPen(Qt::black, 1));
        p.setBrush(c);
        p.drawPolygon(tri, 3);
        p.setPen(c);
        static const QString numbers[Markers::kCount] = {QStringLiteral("1"), QStringLiteral("2"),
                                                         QStringLiteral("3"), QStringLiteral("4")};
        p.drawText(QRectF(x - 10, y - 10 - fm.height(), 20, fm.height()), Qt::AlignCenter,
                   numbers[i]);
    }
}

void SpectrumView::placeActive(double x)
{
    const Axis a = axis();
    m_markers->place(m_markers->active(), model(), a.hzOfColumn(x));
}

int SpectrumView::markerNear(double x) const
{
    // Within a few pixels of a shown marker: that one is picked up rather than the active one
    // moved there.
    const Axis a = axis();
    int best = -1;
    double bestDistance = 6;
    for (int i = 0; i < Markers::kCount; ++i) {
        const MarkerReading r = m_markers->reading(model(), i, settings().channelWidthMHz);
        const double d = r.valid ? std::abs(a.columnOfBin(r.bin) - x) : 1e9;
        if (d <= bestDistance) {
            best = i;
            bestDistance = d;
        }
    }
    return best;
}

void SpectrumView::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || !plotLayout().plot.contains(event->position()))
        return;
    const int near = markerNear(event->position().x());
    if (near >= 0)
        m_markers->setActive(near);
    else
        placeActive(event->position().x());
}

void SpectrumView::mouseMoveEvent(QMouseEvent* event)
{
    PlotView::mouseMoveEvent(event);
    if (event->buttons() & Qt::LeftButton) {
        const QRectF plot = plotLayout().plot;
        placeActive(std::clamp(event->position().x(), plot.left(), plot.right()));
    }
}

void SpectrumView::keyPressEvent(QKeyEvent* event)
{
    const int active = m_markers->active();
    const int cells = event->modifiers() & Qt::ShiftModifier ? 10 : 1;
    switch (event->key()) {
    case Qt::Key_Left:
        m_markers->step(active, model(), -cells);
        break;
    case Qt::Key_Right:
        m_markers->step(active, model(), cells);
        break;
    case Qt::Key_1:
    case Qt::Key_2:
    case Qt::Key_3:
    case Qt::Key_4:
        m_markers->setActive(event->key() - Qt::Key_1);
        break;
    default:
        PlotView::keyPressEvent(event);
    }
}

} // namespace wsa::desktop
