// Topographic view: how often each sample has been seen at each level (|dBm|), coloured by the
// density colour scale relative to the highest count.
#include "topo.h"

#include <QImage>
#include <QPainter>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "framecache.h"
#include "views.h"
#include "wsa_p.h"

namespace
{

const int kTopIndex = WSA_COLORMAP_SIZE - 1;

int clampIndex(long long index)
{
    return index < 0 ? 0 : index > kTopIndex ? kTopIndex : int(index);
}

QRgb mapRgb(int index)
{
    const stRgb& c = colormap[index];
    return qRgb(c.r, c.g, c.b);
}

// Levels |nMinDraw| and |nMaxDraw| themselves are left out of the full repaint.
int densityHighLevel()
{
    return qMin(std::abs(nMinDraw) - 1, WSA_DENSITY_LEVELS - 1);
}

int densityLowLevel()
{
    return std::abs(nMaxDraw);
}

int densityRow(const QRect& rc, int level)
{
    int x = rc.left();
    int y = levelToRow(rc, -level);
    __validate_and_correct_position(rc, x, y);
    return y;
}

void paintDensityPlain(QPainter* pPainter, const QRect& rc, int samples)
{
    const int jHigh = densityHighLevel();
    const int jLow = densityLowLevel();
    for (int i = 0; i < samples; ++i) {
        for (int j = jHigh; j > jLow; --j) {
            const int count = popularity[i][j];
            if (count <= 0)
                continue;
            pPainter->setPen(QColor(mapRgb(topoColorIndex(count, sweep_peak_max))));
            int x = rc.left() + i;
            int y = levelToRow(rc, -j);
            __validate_and_correct_position(rc, x, y);
            pPainter->drawPoint(x, y);
        }
    }
}

// Layer pixels of the counts below saturation; every larger count takes the top colour. A peak
// beyond what the table covers (never reached by a real recording) falls back to the direct
// computation.
class DensityColors
{
public:
    // `map`: the colour map as pixels of the layer.
    void build(long peak, const quint32* map)
    {
        m_map = map;
        m_peak = peak;
        m_end = kSize;
        for (int count = 1; count < kSize; ++count) {
            const int index = topoColorIndex(count, peak);
            m_pixel[count] = map[index];
            if (index == kTopIndex) {
                m_end = count;
                m_saturates = true;
                return;
            }
        }
        m_saturates = false;
    }
    quint32 operator()(int count) const
    {
        if (count < m_end)
            return m_pixel[count];
        return m_map[m_saturates ? kTopIndex : topoColorIndex(count, m_peak)];
    }

private:
    static const int kSize = 4096;
    quint32 m_pixel[kSize] = {};
    const quint32* m_map = nullptr;
    long m_peak = 1;
    int m_end = 0;
    bool m_saturates = false;
};

// Blocks of samples keep both the counts read and the pixels written in cache. Within a sample
// the levels go downward, as in the plain drawing, so a later level wins a shared row.
template <typename Pixel>
void writeDensity(QImage& layer, const int* rowOf, int jHigh, int jLow, int samples,
                  const DensityColors& colors)
{
    uchar* bits = layer.bits();
    const qsizetype stride = layer.bytesPerLine();
    const int block = 16;
    for (int first = 0; first < samples; first += block) {
        const int end = qMin(first + block, samples);
        for (int j = jHigh; j > jLow; --j) {
            Pixel* line = reinterpret_cast<Pixel*>(bits + rowOf[j] * stride);
            for (int i = first; i < end; ++i) {
                const int count = popularity[i][j];
                if (count > 0)
                    line[i] = Pixel(colors(count));
            }
        }
    }
}

// Writes the points straight into a layer and draws it once. Within the grid the layer starts as
// the cached grid's interior and is opaque; a sweep wider than the grid reaches beyond what the
// cache knows, so its layer is transparent where no point lies. Either way the result equals the
// point-by-point drawing.
void paintDensityFast(CFrameCache& cache, QPainter* pPainter, const QRect& rc, int samples)
{
    const int jHigh = densityHighLevel();
    const int jLow = densityLowLevel();
    if (samples <= 0 || jHigh <= jLow)
        return;

    int rowOf[WSA_DENSITY_LEVELS];
    int yMin = INT_MAX;
    int yMax = INT_MIN;
    for (int j = jHigh; j > jLow; --j) {
        rowOf[j] = densityRow(rc, j);
        yMin = qMin(yMin, rowOf[j]);
        yMax = qMax(yMax, rowOf[j]);
    }
    const int height = yMax - yMin + 1;
    for (int j = jHigh; j > jLow; --j)
        rowOf[j] -= yMin;

    const CFrameCache::Grid* grid = cache.findGrid(rc, nCellWidth, nCellHeight);
    const bool bOpaque = grid && rc.left() + samples - 1 <= rc.right() + 1;
    const QImage::Format format = bOpaque ? cache.format() : QImage::Format_ARGB32_Premultiplied;
    // Grows only when the layout needs more rows than ever before. The padding keeps the line
    // length off a multiple of 4 KiB, so that a column's pixels do not share one cache set.
    QImage& layer = cache.densityLayer;
    if (layer.format() != format || layer.height() < height)
        layer = QImage(SA_MAX_SAMPLES + 16, height, format);
    if (layer.isNull())
        return;
    const size_t bytes = size_t(samples) * size_t(layer.depth() / 8);
    for (int y = 0; y < height; ++y) {
        uchar* line = layer.scanLine(y);
        if (bOpaque) {
            const QPoint from = QPoint(rc.left(), yMin + y) - grid->origin;
            std::memcpy(line, grid->image.constScanLine(from.y()) + from.x() * layer.depth() / 8,
                        bytes);
        } else {
            std::memset(line, 0, bytes);
        }
    }
    quint32 argb[WSA_COLORMAP_SIZE];
    if (!bOpaque) {
        for (int k = 0; k < WSA_COLORMAP_SIZE; ++k)
            argb[k] = 0xff000000u | mapRgb(k);
    }
    DensityColors colors;
    colors.build(sweep_peak_max, bOpaque ? cache.colormapPixels() : argb);
    if (layer.depth() == 16)
        writeDensity<quint16>(layer, rowOf, jHigh, jLow, samples, colors);
    else
        writeDensity<quint32>(layer, rowOf, jHigh, jLow, samples, colors);
    pPainter->drawImage(QPoint(rc.left(), yMin), layer, QRect(0, 0, samples, height));
}

} // namespace

int topoScale(long peak)
{
    if (peak <= 199)
        return 6000;
    if (peak <= 399)
        return 12000;
    return 24000;
}

int topoColorIndex(long count, long peak)
{
    if (peak < 1)
        peak = 1;
    return clampIndex(static_cast<long long>(count) * topoScale(peak) / peak);
}

int topoColorIndexF(long count, long peak)
{
    if (peak < 1)
        peak = 1;
    const double index = double(count) / double(peak) * topoScale(peak);
    if (index <= 0)
        return 0;
    if (index >= kTopIndex)
        return kTopIndex;
    return int(index);
}

int CWsa::onPaint_TopoView(QPainter* pPainter)
{
    if (!bTopographicView)
        return 0;
    const QRect rc = topoRect();
    drawGrid(pPainter, rc, nCellWidth, nCellHeight);

    const int samples = qBound(0, maxData.num_samples, int(SA_MAX_SAMPLES));
    if (CFrameCache* cache = fastFrame(pPainter))
        paintDensityFast(*cache, pPainter, rc, samples);
    else
        paintDensityPlain(pPainter, rc, samples);

    drawColorLegend(pPainter, rc);
    const QRect legend = legendRect(rc);
    pPainter->setPen(Qt::black);
    pPainter->drawText(legend.left() - 38, legend.top() + 10, tr("0.0%"));
    pPainter->drawText(legend.right() + 5, legend.top() + 10, tr("2.0%"));
    return 0;
}

void CWsa::drawTopoSample(QPainter* pPainter, int i, int absDbm)
{
    if (i < 0 || i >= SA_MAX_SAMPLES)
        return;
    const QRect rc = topoRect();
    const long count = absDbm >= 0 && absDbm < WSA_DENSITY_LEVELS ? popularity[i][absDbm] : 0;
    const QColor color(mapRgb(topoColorIndexF(count, sweep_peak_max)));
    int x = rc.left() + i;
    int y = levelToRow(rc, currentData.data[i]);
    __validate_and_correct_position(rc, x, y);
    if (fastFrame(pPainter)) {
        // One pixel without a pen change.
        pPainter->fillRect(QRect(x, y, 1, 1), color);
    } else {
        pPainter->setPen(color);
        pPainter->drawPoint(x, y);
    }
}
