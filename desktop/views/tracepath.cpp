#include "tracepath.h"

#include <algorithm>
#include <cmath>

namespace wsa::desktop
{

void buildTracePath(QPolygonF& out, const float* levels, const Axis& axis, const LevelMapping& m,
                    qreal dpr)
{
    out.resize(0);
    if (!levels)
        return;
    const int bins = axis.bins();
    const double span = m.topDbm - m.bottomDbm > 0 ? m.topDbm - m.bottomDbm : 1;
    const double scale = m.plot.height() / span;
    // Levels far outside the range are held just outside the plot, where the clip hides them.
    const double yLow = m.plot.top() - 2;
    const double yHigh = m.plot.bottom() + 2;
    auto y = [&](float dbm) {
        return std::clamp(m.plot.bottom() - (double(dbm) - m.bottomDbm) * scale, yLow, yHigh);
    };
    const int columns = std::max(1, int(std::lround(m.plot.width() * dpr)));
    // The visible cells and one beyond each edge, so that the line runs out of the plot.
    const int first = std::max(0, axis.binOfColumn(m.plot.left()) - 1);
    const int last = std::min(bins - 1, axis.binOfColumn(m.plot.right()) + 1);
    if (last - first + 1 <= columns) {
        out.reserve(last - first + 1);
        for (int i = first; i <= last; ++i)
            out.append(QPointF(axis.columnOfBin(i), y(levels[i])));
        return;
    }
    out.reserve(2 * columns);
    const double tiny = 1e-6 / dpr;
    for (int c = 0; c < columns; ++c) {
        const double x0 = m.plot.left() + c / dpr;
        const int end = axis.binOfColumn(x0 + 1 / dpr - tiny);
        int i = axis.binOfColumn(x0 + tiny);
        float lo = levels[i];
        float hi = levels[i];
        for (++i; i <= end; ++i) {
            lo = std::min(lo, levels[i]);
            hi = std::max(hi, levels[i]);
        }
        const double x = x0 + 0.5 / dpr;
        // Alternate the order so consecutive columns join at the nearer end.
        if (c % 2 == 0) {
            out.append(QPointF(x, y(lo)));
            out.append(QPointF(x, y(hi)));
        } else {
            out.append(QPointF(x, y(hi)));
            out.append(QPointF(x, y(lo)));
        }
    }
}

} // namespace wsa::desktop
