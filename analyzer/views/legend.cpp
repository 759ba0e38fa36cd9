// The colour legend above the Topographic and the Spectral view: the 240 colours of the colour map
// in a black frame.
#include <QPainter>

#include "framecache.h"
#include "views.h"
#include "wsa_p.h"

namespace
{

// Frame and colour lines; together they cover every pixel from the legend's top-left corner to
// one beyond its bottom-right corner.
void paintLegendBar(QPainter* pPainter, const QRect& legend)
{
    pPainter->setPen(Qt::black);
    pPainter->drawRect(legend);
    for (int k = 0; k < WSA_COLORMAP_SIZE; ++k) {
        const stRgb& c = colormap[k];
        pPainter->setPen(QColor(c.r, c.g, c.b));
        const int x = legend.left() + 1 + k;
        pPainter->drawLine(x, legend.top() + 1, x, legend.bottom());
    }
}

} // namespace

QRect legendRect(const QRect& view)
{
    QRect legend = view;
    legend.setBottom(view.top() - 4);
    legend.setTop(view.top() - 12);
    legend.setLeft(view.left() + (view.right() - view.left() - 240) / 2);
    legend.setRight(legend.left() + 240);
    return legend;
}

void drawColorLegend(QPainter* pPainter, const QRect& view)
{
    const QRect legend = legendRect(view);
    CFrameCache* cache = fastFrame(pPainter);
    if (!cache) {
        paintLegendBar(pPainter, legend);
        return;
    }
    // Opaque over its whole area, so its position is a plain offset.
    if (cache->legend.isNull()) {
        cache->legend = QImage(legend.size() + QSize(1, 1), cache->format());
        QPainter barPainter(&cache->legend);
        paintLegendBar(&barPainter, QRect(QPoint(0, 0), legend.size()));
    }
    pPainter->drawImage(legend.topLeft(), cache->legend);
}
