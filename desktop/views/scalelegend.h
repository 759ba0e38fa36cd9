// The colour bar right of the density and waterfall views, with its unit on top.
#ifndef DESKTOP_SCALELEGEND_H
#define DESKTOP_SCALELEGEND_H

#include <QPainter>
#include <QString>
#include <utility>
#include <vector>

namespace wsa::desktop
{

// ticks: (fraction of the scale 0..1, label), bottom to top.
void paintScaleLegend(QPainter& p, const QRectF& area, const QString& unit,
                      const std::vector<std::pair<double, QString>>& ticks);

} // namespace wsa::desktop

#endif
