// Planar view: levels against frequency. A blue band from the lowest to the highest level seen,
// green bars from the average down to the lowest level, the newest sweep as a yellow line.
//
// On a fast frame the view's interior is mirrored in an image of the frame's format, starting
// from the cached grid: the band and the traces are written into its scanlines with the exact
// pixels Qt's one-pixel pen would set, and the image reaches the frame once, after the
// per-sample pass. Everywhere else every line is drawn with the painter.
#include <QPainter>
#include <cstdio>
#include <cstring>

#include "framecache.h"
#include "views.h"
#include "wsa_p.h"

bool bCurrent = true;
bool bAverage = true;
bool bMax = true;
bool bPrevCurrent;
bool bRefreshPlanarView;

namespace
{

enum eTrace { TRACE_BLUE, TRACE_GREEN, TRACE_YELLOW, TRACE_BLACK };
const QRgb kTraceRgb[4] = {qRgb(0, 0, 255), qRgb(0, 255, 0), qRgb(255, 255, 0), qRgb(0, 0, 0)};

using Mirror = CFrameCache::Planar;

int boundedCount(int n)
{
    return qBound(0, n, int(SA_MAX_SAMPLES));
}

// The mirror of the frame `pPainter` composes, or null when this frame draws plainly.
Mirror* activeMirror(const QPainter* pPainter)
{
    CFrameCache* cache = fastFrame(pPainter);
    return cache && cache->planar.serial == cache->serial() ? &cache->planar : nullptr;
}

void markDirty(Mirror& m, int left, int right, int top, int bottom)
{
    if (m.dirtyLeft > m.dirtyRight) {
        m.dirtyLeft = left;
        m.dirtyRight = right;
        m.dirtyTop = top;
        m.dirtyBottom = bottom;
        return;
    }
    m.dirtyLeft = qMin(m.dirtyLeft, left);
    m.dirtyRight = qMax(m.dirtyRight, right);
    m.dirtyTop = qMin(m.dirtyTop, top);
    m.dirtyBottom = qMax(m.dirtyBottom, bottom);
}

// Frame pixels a mirror of the grid rectangle holds: the interior and, beyond the right frame
// line, every column a trace can reach (sample 1023 or the device edge).
QRect mirrorArea(const QPainter* pPainter, const QRect& rect)
{
    const int deviceRight = pPainter->device() ? pPainter->device()->width() - 1 : rect.right();
    const int right = qMin(deviceRight, rect.left() + SA_MAX_SAMPLES + 1);
    return QRect(QPoint(rect.left() + 1, rect.top() + 1), QPoint(right, rect.bottom() - 1));
}

// Starts the frame's mirror with the cached grid's interior; false when there is none.
bool startMirror(QPainter* pPainter, const QRect& rect)
{
    CFrameCache* cache = fastFrame(pPainter);
    const CFrameCache::Grid* grid =
        cache ? cache->findGrid(rect, nCellWidth, nCellHeight) : nullptr;
    const QRect area = mirrorArea(pPainter, rect);
    if (!grid || area.isEmpty())
        return false;
    Mirror& m = cache->planar;
    if (m.image.isNull() || m.area != area) {
        m.area = area;
        m.image = QImage(area.size(), cache->format());
        m.gridColumns = qBound(0, rect.right() + 2 - area.left(), area.width());
        m.background = cache->pixel(viewBackground().rgb());
        for (int k = 0; k < 4; ++k)
            m.colors[k] = cache->pixel(kTraceRgb[k]);
    }
    const int depth = m.image.depth() / 8;
    const QPoint from = area.topLeft() - grid->origin;
    for (int y = 0; y < area.height(); ++y) {
        std::memcpy(m.image.scanLine(y), grid->image.constScanLine(from.y() + y) + from.x() * depth,
                    size_t(m.gridColumns * depth));
    }
    m.validColumns = m.gridColumns;
    m.bPass = false;
    m.dirtyLeft = 0;
    m.dirtyRight = -1;
    m.serial = cache->serial();
    markDirty(m, 0, m.gridColumns - 1, 0, area.height() - 1);
    return true;
}

// Rows top .. bottom of one image column in one frame pixel value.
void fillColumn(Mirror& m, int column, int top, int bottom, quint32 value)
{
    const qsizetype stride = m.image.bytesPerLine();
    uchar* p = m.image.bits() + top * stride;
    if (m.image.depth() == 16) {
        for (int row = top; row <= bottom; ++row, p += stride)
            reinterpret_cast<quint16*>(p)[column] = quint16(value);
    } else {
        for (int row = top; row <= bottom; ++row, p += stride)
            reinterpret_cast<quint32*>(p)[column] = value;
    }
}

// Columns beyond the frame line come into use only for sweeps wider than the grid.
void extendMirror(Mirror& m, int column)
{
    const int last = qMin(column, m.area.width() - 1);
    for (int c = m.validColumns; c <= last; ++c)
        fillColumn(m, c, 0, m.area.height() - 1, m.background);
    m.validColumns = qMax(m.validColumns, last + 1);
}

// drawLine(x, y, x + dx, y + dy) with a one-pixel pen of `trace`'s colour, into the mirror.
void mirrorLine(Mirror& m, int x, int y, int dx, int dy, eTrace trace)
{
    const int ix = x - m.area.left();
    const int iy = y - m.area.top();
    if (ix + dx >= m.validColumns)
        extendMirror(m, ix + dx);
    stLineSpan span;
    if (!frameCache().lineSpan(dx, dy, span)) {
        QPainter painter(&m.image);
        painter.setPen(QColor::fromRgb(kTraceRgb[trace]));
        painter.drawLine(ix, iy, ix + dx, iy + dy);
        markDirty(m, qMax(0, ix), qMin(m.image.width() - 1, ix + dx), 0, m.image.height() - 1);
        return;
    }
    for (int c = 0; c <= dx; ++c) {
        const int column = ix + c;
        const int top = qMax(0, iy + span.first[c]);
        const int bottom = qMin(m.area.height() - 1, iy + span.last[c]);
        if (column < 0 || column >= m.area.width() || top > bottom)
            continue;
        fillColumn(m, column, top, bottom, m.colors[trace]);
        markDirty(m, column, column, top, bottom);
    }
}

void flushMirror(QPainter* pPainter)
{
    Mirror* m = activeMirror(pPainter);
    if (!m || m->dirtyLeft > m->dirtyRight)
        return;
    const QRect dirty(QPoint(m->dirtyLeft, m->dirtyTop), QPoint(m->dirtyRight, m->dirtyBottom));
    pPainter->drawImage(m->area.topLeft() + dirty.topLeft(), m->image, dirty);
    m->dirtyLeft = 0;
    m->dirtyRight = -1;
}

// Brings the frame up to date and draws plainly for the rest of it.
void stopMirror(QPainter* pPainter)
{
    flushMirror(pPainter);
    if (Mirror* m = activeMirror(pPainter))
        m->serial = -1;
}

// One line of the view: into the mirror during a pass of this frame, else with the painter.
void line(QPainter* pPainter, int x0, int y0, int x1, int y1, eTrace trace)
{
    if (Mirror* m = activeMirror(pPainter)) {
        mirrorLine(*m, x0, y0, x1 - x0, y1 - y0, trace);
        return;
    }
    pPainter->setPen(QColor::fromRgb(kTraceRgb[trace]));
    pPainter->drawLine(x0, y0, x1, y1);
}

// The segment of sample i, from (L + i, row of sample i - 1) to (L + i + 1, row of sample i).
void segment(QPainter* pPainter, const QRect& rect, const stSweep& sweep, int i, eTrace trace)
{
    line(pPainter, rect.left() + i, clampedRow(rect, sweep.data[i - 1]), rect.left() + i + 1,
         clampedRow(rect, sweep.data[i]), trace);
}

// Vertical line at x between two magnitude offsets; skipped when either lies below nMinDraw.
void bar(QPainter* pPainter, const QRect& rect, int x, long long highOffset, long long lowOffset,
         eTrace trace)
{
    if (highOffset < 0 || lowOffset < 0)
        return;
    int yHigh = offsetToRow(rect, highOffset);
    int yLow = offsetToRow(rect, lowOffset) - 1;
    __validate_and_correct_position(rect, x, yHigh);
    __validate_and_correct_position(rect, x, yLow);
    line(pPainter, x, yHigh, x, yLow, trace);
}

} // namespace

void planarPassBegin(QPainter* pPainter)
{
    if (Mirror* m = activeMirror(pPainter))
        m->bPass = true;
}

void planarPassEnd(QPainter* pPainter)
{
    flushMirror(pPainter);
    if (Mirror* m = activeMirror(pPainter))
        m->bPass = false;
}

int CWsa::onPaint_PlanarView(QPainter* pPainter)
{
    if (!bPlanarView)
        return 0;
    const QRect rect = planarRect();
    // Entered again within a frame (a refresh from the pass): the grid goes over what the
    // traces have drawn so far, plainly, as does the rest of the frame.
    stopMirror(pPainter);
    const QRect interior(QPoint(rect.left() + 1, rect.top() + 1),
                         QPoint(rect.right() + 1, rect.bottom() - 1));
    // The interior comes from the mirror, drawn once after the traces.
    if (mirrorArea(pPainter, rect).isEmpty() ||
        !drawGridAround(pPainter, rect, nCellWidth, nCellHeight, interior) ||
        !startMirror(pPainter, rect))
        drawGrid(pPainter, rect, nCellWidth, nCellHeight);
    if (!(nLastIdx >= 1 && bMax))
        return 0;
    const long long floorMagnitude = levelMagnitude(nMinDraw);
    const int n = boundedCount(maxData.num_samples);
    for (int i = 0; i < n; ++i) {
        bar(pPainter, rect, rect.left() + i + 1, floorMagnitude - levelMagnitude(maxData.data[i]),
            floorMagnitude - levelMagnitude(minData.data[i]), TRACE_BLUE);
    }
    return 0;
}

void CWsa::drawPlanarSample(QPainter* pPainter, int i)
{
    if (i < 1 || i >= SA_MAX_SAMPLES)
        return;
    // Outside drawGraphic's pass nothing would draw the mirror: bring the frame up to date and
    // draw plainly from here on.
    if (Mirror* m = activeMirror(pPainter); m && !m->bPass)
        stopMirror(pPainter);
    if (bRefreshPlanarView) {
        puts("start refresh");
        onPaint_PlanarView(pPainter);
        puts("stop refresh");
    }
    const QRect rect = planarRect();
    const int history = qBound(0, nLastIdx, WSA_HISTORY_ROWS - 1);
    if (bCurrent) {
        if (nLastIdx >= 0)
            segment(pPainter, rect, historyData[history], i, bMax ? TRACE_BLUE : TRACE_BLACK);
    } else if (bPrevCurrent != bCurrent) {
        if (bRefreshPlanarView)
            puts("clear history");
        if (nLastIdx >= 0)
            segment(pPainter, rect, historyData[history], i, TRACE_BLACK);
    }
    bPrevCurrent = bCurrent;

    if (bRefreshPlanarView)
        puts("draw average");
    if (bAverage && nDataCount > 0) {
        const long long floorMagnitude = levelMagnitude(nMinDraw);
        const long long average = sumData[i] / nDataCount;
        bar(pPainter, rect, rect.left() + i + 1, floorMagnitude - average,
            floorMagnitude - levelMagnitude(minData.data[i]), TRACE_GREEN);
    }
    if (bRefreshPlanarView)
        puts("draw current data");
    if (bCurrent)
        segment(pPainter, rect, currentData, i, TRACE_YELLOW);
    if (bRefreshPlanarView) {
        puts("xxx start refresh");
        bRefreshPlanarView = false;
        puts("xxx stop refresh");
    }
}
