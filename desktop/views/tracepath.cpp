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
    if (bins <= columns) {
        out.reserve(bins);
        for (int i = 0; i < bins; ++i)
            out.append(QPointF(axis.columnOfBin(i), y(levels[i])));
        return;
    }
    out.reserve(2 * columns);
    int bin = 0;
    for (int c = 0; c < columns && bin < bins; ++c) {
        const double rightX = m.plot.left() + (c + 1) / dpr;
        const int end =
            c + 1 == columns ? bins : std::clamp(axis.binOfColumn(rightX), bin + 1, bins);
        float lo = levels[bin];
        float hi = levels[bin];
        for (int i = bin + 1; i < end; ++i) {
            lo = std::min(lo, levels[i]);
            hi = std::max(hi, levels[i]);
        }
        const double x = m.plot.left() + (c + 0.5) / dpr;
        // Alternate the order so consecutive columns join at the nearer end.
        if (c % 2 == 0) {
            out.append(QPointF(x, y(lo)));
            out.append(QPointF(x, y(hi)));
        } else {
            out.append(QPointF(x, y(hi)));
            out.append(QPointF(x, y(lo)));
        }
        bin = end;
    }
}

} // namespace wsa::desktop
