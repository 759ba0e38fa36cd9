// Levels against frequency: the current sweep, the average and the maximum and minimum holds,
// each switchable, with the markers on top. Clicking places the active marker, dragging moves
// it; the arrow keys step it by one cell.
#ifndef DESKTOP_SPECTRUMVIEW_H
#define DESKTOP_SPECTRUMVIEW_H

#include <QPolygonF>

#include "plotview.h"

namespace wsa::desktop
{

class Markers;

class SpectrumView : public PlotView
{
    Q_OBJECT
public:
    SpectrumView(SweepFeed* feed, Markers* markers, QWidget* parent = nullptr);

protected:
    void paintLegend(QPainter& p, const QRectF& legend) override;
    bool gridOverData() const override { return false; }
    void rebuildData(const PlotLayout& l, qreal dpr) override;
    void appendSweep() override;
    void paintData(QPainter& p, const PlotLayout& l) override;
    void paintForeground(QPainter& p, const PlotLayout& l) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void buildPaths();
    void placeActive(double x);
    int markerNear(double x) const;

    Markers* m_markers;
    PlotLayout m_layout;
    qreal m_dpr = 1;
    QPolygonF m_paths[kTraceCount];
};

} // namespace wsa::desktop

#endif
