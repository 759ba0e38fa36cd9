#include "scalelegend.h"

#include <QImage>

#include "colormap.h"

namespace wsa::desktop
{

void paintScaleLegend(QPainter& p, const QRectF& area, const QString& unit,
                      const std::vector<std::pair<double, QString>>& ticks)
{
    const QFontMetricsF fm(p.font());
    // The unit sits in the line above the plot, beside the other views' titles.
    p.setPen(colors::dimText());
    p.drawText(QRectF(area.left(), area.top() - fm.height() - 3, area.width() + 4, fm.height()),
               Qt::AlignLeft | Qt::AlignVCenter, unit);
    const QRectF bar(area.left(), area.top() + fm.height() / 2, 10,
                     std::max(1.0, area.height() - fm.height()));
    QImage scale(1, 256, QImage::Format_RGB32);
    for (int i = 0; i < 256; ++i)
        scale.setPixel(0, 255 - i, colorScale()[std::size_t(i)]);
    p.drawImage(bar, scale);
    p.setPen(QPen(colors::frame(), 0));
    p.drawRect(bar);
    p.setPen(colors::text());
    for (const auto& [fraction, label] : ticks) {
        const double y = bar.bottom() - fraction * bar.height();
        p.drawLine(QPointF(bar.right(), y), QPointF(bar.right() + 3, y));
        p.drawText(QRectF(bar.right() + 5, y - fm.height() / 2, area.right() - bar.right() - 5,
                          fm.height()),
                   Qt::AlignLeft | Qt::AlignVCenter, label);
    }
}

} // namespace wsa::desktop
