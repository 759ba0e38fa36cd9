// Turns a trace of cells into the polyline the spectrum draws: one point per cell while cells are
// wider than device pixels, else a low and a high point per device column, so that no narrow
// peak disappears between columns. The buffer is reused; nothing is allocated once it has grown.
#ifndef DESKTOP_TRACEPATH_H
#define DESKTOP_TRACEPATH_H

#include <QPolygonF>
#include <QRectF>

#include "sweepstore.h"

namespace wsa::desktop
{

struct LevelMapping {
    QRectF plot;
    double bottomDbm;
    double topDbm;
};

// levels: axis.bins() values in dBm; dpr: device pixels per logical pixel.
void buildTracePath(QPolygonF& out, const float* levels, const Axis& axis, const LevelMapping& m,
                    qreal dpr);

} // namespace wsa::desktop

#endif
