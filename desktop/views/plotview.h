// The base of the three views. Painting is layered: a cached frame (background, axes, labels,
// legend) redrawn only when size, pixel ratio, band or settings change; the view's data layer,
// kept up to date sweep by sweep; vector overlays (grid, channel boundaries, markers) on top.
// paintEvent itself only blits and draws a few dozen lines.
#ifndef DESKTOP_PLOTVIEW_H
#define DESKTOP_PLOTVIEW_H

#include <QImage>
#include <QLineF>
#include <QVector>
#include <QWidget>

#include "plotframe.h"

namespace wsa::desktop
{

class SweepFeed;

class PlotView : public QWidget
{
    Q_OBJECT
public:
    explicit PlotView(SweepFeed* feed, QWidget* parent = nullptr);

    void setSettings(const DisplaySettings& settings);
    const DisplaySettings& settings() const { return m_settings; }
    const SweepStore& model() const;
    // The layout and the frequency axis of the current size, in logical pixels.
    PlotLayout plotLayout() const;
    Axis axis() const;
    Axis axisFor(const PlotLayout& l) const;
    Span span() const;

    QSize minimumSizeHint() const override { return QSize(320, 140); }
    // What the point (logical pixels) of the plot shows, as the user reads it; empty outside.
    virtual QString describePoint(const QPointF& pos) const;

signals:
    // The pointer moved over the plot: its reading, or an empty text when it left.
    void pointerMoved(const QString& reading);
    // The wheel asked for another span of frequencies (zoom about the pointer, or pan with
    // Shift or a horizontal wheel).
    void spanRequested(double lowHz, double highHz);
    // The wheel over the level axis asked for another level range (shift; Ctrl zooms).
    void levelRangeRequested(double bottomDbm, double topDbm);

protected:
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    bool levelWheel(QWheelEvent* event, const PlotLayout& l);
    // "5500.000 MHz, channel 100" at the point's column.
    QString describeFrequency(double x) const;
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

    // The frame's level axis: dBm ticks by default.
    virtual void paintLevelAxis(QPainter& p, const PlotLayout& l);
    virtual void paintLegend(QPainter& p, const QRectF& legend) = 0;
    // The grid goes under the data unless the data is an opaque picture.
    virtual bool gridOverData() const { return true; }
    // Whether the vertical axis is levels, with a grid line per level tick.
    virtual bool levelGrid() const { return true; }
    // Rebuild the data layer from the model for this layout and device pixel ratio.
    virtual void rebuildData(const PlotLayout& l, qreal dpr) = 0;
    // One more sweep is in the model; the layer was built for the current layout.
    virtual void appendSweep() = 0;
    virtual void paintData(QPainter& p, const PlotLayout& l) = 0;
    virtual void paintForeground(QPainter&, const PlotLayout&) {}

private:
    struct Key {
        QSize size;
        qreal dpr = 0;
        const Band* band = nullptr;
        DisplaySettings settings;
        bool operator==(const Key& o) const
        {
            return size == o.size && dpr == o.dpr && band == o.band && settings == o.settings;
        }
    };

    void onSweepShown();
    void onShownReset();
    void buildFrame(const PlotLayout& l, qreal dpr);
    void paintFrequencyAxis(QPainter& p, const PlotLayout& l, const Axis& a);
    void buildOverlayLines(const PlotLayout& l, const Axis& a);

    SweepFeed* m_feed;
    DisplaySettings m_settings;
    Key m_key;      // what the data layer was built for
    Key m_frameKey; // what the frame was built for
    bool m_dataValid = false;
    QRect m_plotRect; // the data area of m_key's layout
    QImage m_frame;
    QVector<QLineF> m_gridLines;
    QVector<QLineF> m_channelLines;
};

} // namespace wsa::desktop

#endif
