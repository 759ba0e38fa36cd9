// Levels against frequency: the current sweep, the average and the maximum and minimum holds,
// each switchable, with the markers on top. Clicking places the active marker, dragging moves
// it; the arrow keys step it by one cell.
#ifndef DESKTOP_SPECTRUMVIEW_H
#define DESKTOP_SPECTRUMVIEW_H

#include <QPolygonF>
#include <vector>

#include "plotview.h"

namespace wsa::desktop
{

class Markers;

// An emitter shown over the spectrum: a bracket over its frequencies, labelled.
struct EmitterMark {
    double lowHz;
    double highHz;
    QString label;
};

class SpectrumView : public PlotView
{
    Q_OBJECT
public:
    SpectrumView(SweepFeed* feed, Markers* markers, QWidget* parent = nullptr);

    void setEmitterMarks(std::vector<EmitterMark> marks);
    const std::vector<EmitterMark>& emitterMarks() const { return m_emitterMarks; }

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
    void placeEmitterMarks(const PlotLayout& l, const Axis& a, const QFontMetricsF& fm);
    void paintEmitterMarks(QPainter& p, const PlotLayout& l, const Axis& a);

    Markers* m_markers;
    PlotLayout m_layout;
    qreal m_dpr = 1;
    QPolygonF m_paths[kTraceCount];
    std::vector<EmitterMark> m_emitterMarks; // by lower edge
    struct PlacedMark {
        double x0, x1, y;
        QString text;
    };
    struct PlacedKey {
        QRectF plot;
        double lowHz = 0, highHz = 0, fontHeight = 0;
        bool operator==(const PlacedKey& o) const
        {
            return plot == o.plot && lowHz == o.lowHz && highHz == o.highHz &&
                   fontHeight == o.fontHeight;
        }
    };
    std::vector<PlacedMark> m_placed;
    PlacedKey m_placedFor;
};

} // namespace wsa::desktop

#endif
