// The frame cache: the per-frame choice between fast and plain drawing, the invalidation of
// everything cached, and the learned pixels of Qt's one-pixel lines.
#include "framecache.h"

#include <QPaintEngine>
#include <QPainter>
#include <algorithm>
#include <cstring>

#include "views.h"
#include "wsa_p.h"

namespace
{

// Reads the rows set in `column` of the learning image; false unless they form one run.
bool readRun(const QImage& image, int column, int origin, int& first, int& last)
{
    first = 1;
    last = 0;
    int runs = 0;
    bool bPrevious = false;
    for (int y = 0; y < image.height(); ++y) {
        const bool bSet =
            reinterpret_cast<const QRgb*>(image.constScanLine(y))[column] != 0xff000000u;
        if (bSet && !bPrevious && ++runs == 1)
            first = y - origin;
        if (bSet)
            last = y - origin;
        bPrevious = bSet;
    }
    return runs <= 1;
}

} // namespace

CFrameCache& frameCache()
{
    static CFrameCache cache;
    return cache;
}

CFrameCache* fastFrame(const QPainter* pPainter)
{
    CFrameCache& cache = frameCache();
    return cache.fast(pPainter) ? &cache : nullptr;
}

void CFrameCache::beginFrame(QPainter* pPainter)
{
    ++m_serial;
    m_painter = nullptr;
    m_bViewPass = false;
    m_nClaimed = 0;
    planar.serial = -1;
    planar.bPass = false;
    if (bReferencePainting)
        return;
    // The real target: a widget paints into its backing store's image, render() into the
    // caller's device. Anything scaled or not an image gets the plain drawing.
    const QPaintEngine* engine = pPainter->paintEngine();
    const QPaintDevice* device = engine ? engine->paintDevice() : nullptr;
    if (!device || device->devType() != QInternal::Image || device->devicePixelRatio() != 1 ||
        pPainter->deviceTransform().type() > QTransform::TxTranslate)
        return;
    switch (static_cast<const QImage*>(device)->format()) {
    case QImage::Format_RGB16:
        m_format = QImage::Format_RGB16;
        break;
    case QImage::Format_RGB32:
    case QImage::Format_ARGB32_Premultiplied:
        m_format = QImage::Format_RGB32;
        break;
    default:
        return;
    }
    Key key;
    readState(key);
    key.format = m_format;
    key.font = pPainter->font();
    key.background = viewBackground().rgb();
    key.unit = CWsa::tr("dBm");
    if (!(key == m_key)) {
        clear();
        m_key = key;
    }
    m_painter = pPainter;
}

bool CFrameCache::Key::operator==(const Key& o) const
{
    return storeGeneration == o.storeGeneration && band == o.band && minDraw == o.minDraw &&
           maxDraw == o.maxDraw && !std::memcmp(colormap, o.colormap, sizeof colormap) &&
           std::equal(views, views + 3, o.views) && cellW == o.cellW && cellH == o.cellH &&
           maximized == o.maximized && stacked == o.stacked && format == o.format &&
           font == o.font && background == o.background && unit == o.unit;
}

void CFrameCache::readState(Key& key)
{
    key.storeGeneration = wsaStoreGeneration();
    key.band = s_band;
    key.minDraw = nMinDraw;
    key.maxDraw = nMaxDraw;
    std::memcpy(key.colormap, colormap, sizeof key.colormap);
    key.views[0] = bPlanarView;
    key.views[1] = bTopographicView;
    key.views[2] = bSpectralView;
    key.cellW = nCellWidth;
    key.cellH = nCellHeight;
    key.maximized = grid_rect_maximize;
    key.stacked = grid_rect_planar;
}

void CFrameCache::endFrame()
{
    m_painter = nullptr;
    m_bViewPass = false;
    planar.serial = -1;
}

void CFrameCache::clear()
{
    for (Grid& g : grids)
        g = Grid();
    nextGrid = 0;
    legend = QImage();
    waterfall = QImage();
    planar = Planar();
    m_bColormap = false;
}

const quint32* CFrameCache::colormapPixels()
{
    if (!m_bColormap) {
        QImage probe(WSA_COLORMAP_SIZE, 1, m_format);
        for (int k = 0; k < WSA_COLORMAP_SIZE; ++k)
            probe.setPixel(k, 0, qRgb(colormap[k].r, colormap[k].g, colormap[k].b));
        for (int k = 0; k < WSA_COLORMAP_SIZE; ++k) {
            m_colormap[k] = rgb16() ? reinterpret_cast<const quint16*>(probe.constScanLine(0))[k]
                                    : reinterpret_cast<const quint32*>(probe.constScanLine(0))[k];
        }
        m_bColormap = true;
    }
    return m_colormap;
}

bool CFrameCache::claimBackground(const QPainter* pPainter, const QRect& area)
{
    if (!viewPass(pPainter))
        return false;
    if (m_nClaimed == int(sizeof m_claimed / sizeof m_claimed[0]))
        return false;
    for (int k = 0; k < m_nClaimed; ++k) {
        if (m_claimed[k].intersects(area))
            return false;
    }
    m_claimed[m_nClaimed++] = area;
    return true;
}

quint32 CFrameCache::pixel(QRgb color) const
{
    QImage probe(1, 1, m_format);
    probe.setPixel(0, 0, color);
    return rgb16() ? *reinterpret_cast<const quint16*>(probe.constScanLine(0))
                   : *reinterpret_cast<const quint32*>(probe.constScanLine(0));
}

// Draws every line of the table with QPainter, three columns apart, and records its pixels.
void CFrameCache::learnSpans(SpanTable& table)
{
    constexpr int kCount = 2 * kSpanReach + 1;
    constexpr int kChunk = 64;
    const int origin = kSpanReach + 2;
    QImage image(3 * kChunk + 3, kCount + 4, QImage::Format_RGB32);
    for (int dx = 0; dx <= 1; ++dx) {
        for (int start = 0; start < kCount; start += kChunk) {
            image.fill(qRgb(0, 0, 0));
            QPainter painter(&image);
            painter.setPen(Qt::white);
            for (int k = 0; k < kChunk && start + k < kCount; ++k) {
                const int x = 3 * k + 1;
                painter.drawLine(x, origin, x + dx, origin + start + k - kSpanReach);
            }
            painter.end();
            for (int k = 0; k < kChunk && start + k < kCount; ++k) {
                const int x = 3 * k + 1;
                stLineSpan& s = table.span[dx][start + k];
                int gapFirst, gapLast;
                bool bValid = readRun(image, x, origin, s.first[0], s.last[0]) &&
                              readRun(image, x + 1, origin, s.first[1], s.last[1]);
                for (int gap : {x - 1, x + 2}) {
                    bValid = bValid && readRun(image, gap, origin, gapFirst, gapLast) &&
                             gapFirst > gapLast;
                }
                table.bValid[dx][start + k] = bValid;
            }
        }
    }
    table.bLearned = true;
}

bool CFrameCache::lineSpan(int dx, int dy, stLineSpan& span)
{
    if (dx < 0 || dx > 1 || dy < -kSpanReach || dy > kSpanReach)
        return false;
    if (!m_spans.bLearned)
        learnSpans(m_spans);
    if (!m_spans.bValid[dx][dy + kSpanReach])
        return false;
    span = m_spans.span[dx][dy + kSpanReach];
    return true;
}
