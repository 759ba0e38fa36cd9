// The recent sweeps as rows of colour, newest on top. The picture is a ring of device-pixel rows:
// a sweep writes one row and moves the ring's head, and painting blits the ring in two parts.
#ifndef DESKTOP_WATERFALLVIEW_H
#define DESKTOP_WATERFALLVIEW_H

#include <vector>

#include "plotview.h"

namespace wsa::desktop
{

class WaterfallView : public PlotView
{
    Q_OBJECT
public:
    explicit WaterfallView(SweepFeed* feed, QWidget* parent = nullptr);
    QString describePoint(const QPointF& pos) const override;

protected:
    void paintLevelAxis(QPainter& p, const PlotLayout& l) override;
    void paintLegend(QPainter& p, const QRectF& legend) override;
    bool levelGrid() const override { return false; }
    void rebuildData(const PlotLayout& l, qreal dpr) override;
    void appendSweep() override;
    void paintData(QPainter& p, const PlotLayout& l) override;

private:
    void writeRow(int row, const float* levels);

    QImage m_ring;                  // plot size in device pixels
    int m_head = 0;                 // ring row of the newest sweep
    std::vector<int> m_columnFirst; // per device column, its first cell
    std::vector<int> m_columnEnd;   // and one past its last
    double m_bottomDbm = 0;
    double m_scale = 1; // colour steps per dB
};

} // namespace wsa::desktop

#endif
