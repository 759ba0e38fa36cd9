// Planar view: levels against frequency. A blue band from the lowest to the highest level seen,
// green bars from the average down to the lowest level, the newest sweep as a yellow line.
//
// Inside the paint handler the view's interior is mirrored in an image: the band and the traces
// are written into its scanlines with the exact pixels Qt's one-pixel pen would set (lineSpan),
// and the image reaches the frame once, after the per-sample pass. Everywhere else, and while
// bReferencePainting is set, every line is drawn with the painter.
#include <QPainter>
#include <cstdio>
#include <cstring>

#include "views.h"
#include "wsa_p.h"

bool bCurrent = true;
bool bAverage = true;
bool bMax = true;
bool bPrevCurrent;
bool bRefreshPlanarView;

namespace
{

const QRgb kBlue = qRgb(0, 0, 255);
const QRgb kGreen = qRgb(0, 255, 0);
const QRgb kYellow = qRgb(255, 255, 0);
const QRgb kBlack = qRgb(0, 0, 0);

// The frame's planar interior: rows top + 1 .. bottom - 1, columns from left + 1 to the last
// column a trace can reach (sample 1023 or the device edge).
struct PlanarMirror {
    QImage image;   // what plain drawing would have left in `area`
    QImage base;    // the interior as drawGrid leaves it, columns 0 .. gridColumns - 1
    QRect area;     // widget pixels the image stands for
    QRect gridRect; // with the cell sizes and background: the key of `base`
    int cellW = 0, cellH = 0;
    QRgb background = 0;
    int gridColumns = 0;  // columns up to the frame's right edge, which drawGrid repaints
    int validColumns = 0; // columns kept up to date; beyond them the frame shows background
    int serial = -1;      // frame whose interior the image mirrors; -1 when none
    QPainter* painter = nullptr;
    bool bPass = false; // drawGraphic's per-sample pass is under way
    int dirtyLeft = 0, dirtyRight = -1, dirtyTop = 0, dirtyBottom = -1; // not drawn to the frame
    QRgb pen = 0;             // the pen plain drawing would have left on the painter
    bool bPenPending = false; // ... still to be set there
};

PlanarMirror mirror;

int boundedCount(int n)
{
    return qBound(0, n, int(SA_MAX_SAMPLES));
}

bool mirrorActive(const QPainter* pPainter)
{
    return mirror.serial == frameSerial() && mirror.painter == pPainter &&
           framePainter() == pPainter;
}

void markDirty(int left, int right, int top, int bottom)
{
    if (mirror.dirtyLeft > mirror.dirtyRight) {
        mirror.dirtyLeft = left;
        mirror.dirtyRight = right;
        mirror.dirtyTop = top;
        mirror.dirtyBottom = bottom;
        return;
    }
    mirror.dirtyLeft = qMin(mirror.dirtyLeft, left);
    mirror.dirtyRight = qMax(mirror.dirtyRight, right);
    mirror.dirtyTop = qMin(mirror.dirtyTop, top);
    mirror.dirtyBottom = qMax(mirror.dirtyBottom, bottom);
}

// The grid interior, drawn the way drawGrid draws it (fill, frame, dotted lines; the labels lie
// outside), with a margin so that no line is clipped by the image edge.
void renderBase(const QRect& rect)
{
    const QRect kept(mirror.area.topLeft(), QSize(mirror.gridColumns, mirror.area.height()));
    const QRect canvas = kept.adjusted(-4, -4, 4, 4);
    QImage full(canvas.size(), QImage::Format_RGB32);
    full.fill(mirror.background);
    QPainter painter(&full);
    painter.translate(-canvas.topLeft());
    const int L = rect.left(), T = rect.top(), R = rect.right(), B = rect.bottom();
    painter.fillRect(L, T, R - L + 1, B - T + 1, QBrush(Qt::black, Qt::SolidPattern));
    painter.setPen(Qt::white);
    painter.drawRect(rect);
    QPen dotted(Qt::lightGray);
    dotted.setStyle(Qt::DotLine);
    painter.setPen(dotted);
    for (int k = 1; mirror.cellW > 0 && k <= (R - L) / mirror.cellW - 1; ++k)
        painter.drawLine(L + k * mirror.cellW, T + 1, L + k * mirror.cellW, B);
    for (int k = 1; mirror.cellH > 0 && k <= (B - T) / mirror.cellH - 1; ++k)
        painter.drawLine(L + 1, T + k * mirror.cellH, R, T + k * mirror.cellH);
    painter.end();
    mirror.base = full.copy(QRect(kept.topLeft() - canvas.topLeft(), kept.size()));
}

// The pixels a mirror of the grid rectangle holds on the painter's device.
QRect mirrorArea(const QPainter* pPainter, const QRect& rect)
{
    const int deviceRight = pPainter->device() ? pPainter->device()->width() - 1 : rect.right();
    const int right = qMin(deviceRight, rect.left() + SA_MAX_SAMPLES + 1);
    return QRect(QPoint(rect.left() + 1, rect.top() + 1), QPoint(right, rect.bottom() - 1));
}

// Starts the mirror for a frame, or restarts it after drawGrid repainted the grid in the middle
// of one; a restart keeps the columns beyond the frame, which drawGrid does not touch.
void resetMirror(QPainter* pPainter, const QRect& rect)
{
    const QRect area = mirrorArea(pPainter, rect);
    const QRgb background = viewBackground().rgb();
    const bool bRestart =
        mirror.serial == frameSerial() && mirror.painter == pPainter && mirror.area == area;
    mirror.serial = -1;
    if (area.isEmpty())
        return;
    if (mirror.base.isNull() || mirror.area != area || mirror.gridRect != rect ||
        mirror.cellW != nCellWidth || mirror.cellH != nCellHeight ||
        mirror.background != background) {
        mirror.area = area;
        mirror.gridRect = rect;
        mirror.cellW = nCellWidth;
        mirror.cellH = nCellHeight;
        mirror.background = background;
        mirror.gridColumns = qBound(0, rect.right() + 2 - area.left(), area.width());
        renderBase(rect);
        mirror.image = QImage(area.size(), QImage::Format_RGB32);
    }
    const size_t bytes = size_t(mirror.gridColumns) * sizeof(QRgb);
    for (int y = 0; y < area.height(); ++y)
        std::memcpy(mirror.image.scanLine(y), mirror.base.constScanLine(y), bytes);
    if (!bRestart) {
        mirror.validColumns = mirror.gridColumns;
        mirror.bPass = false;
        mirror.bPenPending = false;
    }
    mirror.dirtyLeft = 0;
    mirror.dirtyRight = -1;
    mirror.serial = frameSerial();
    mirror.painter = pPainter;
}

// Columns beyond the frame come into use only for sweeps wider than the grid.
void extendMirror(int column)
{
    const int last = qMin(column, mirror.area.width() - 1);
    if (last < mirror.validColumns)
        return;
    for (int y = 0; y < mirror.area.height(); ++y) {
        QRgb* row = reinterpret_cast<QRgb*>(mirror.image.scanLine(y));
        std::fill(row + mirror.validColumns, row + last + 1, mirror.background);
    }
    mirror.validColumns = last + 1;
}

// drawLine(x, y, x + dx, y + dy) with a one-pixel pen of `color`, into the mirror.
void mirrorLine(int x, int y, int dx, int dy, QRgb color)
{
    mirror.pen = color;
    mirror.bPenPending = true;
    const int ix = x - mirror.area.left();
    const int iy = y - mirror.area.top();
    if (ix + dx >= mirror.validColumns)
        extendMirror(ix + dx);
    stLineSpan span;
    if (!lineSpan(dx, dy, span)) {
        QPainter painter(&mirror.image);
        painter.setPen(QColor::fromRgb(color));
        painter.drawLine(ix, iy, ix + dx, iy + dy);
        markDirty(qMax(0, ix), qMin(mirror.image.width() - 1, ix + dx), 0,
                  mirror.image.height() - 1);
        return;
    }
    const int width = mirror.area.width();
    const int height = mirror.area.height();
    const qsizetype stride = mirror.image.bytesPerLine() / qsizetype(sizeof(QRgb));
    QRgb* bits = reinterpret_cast<QRgb*>(mirror.image.bits());
    for (int c = 0; c <= dx; ++c) {
        const int column = ix + c;
        const int top = qMax(0, iy + span.first[c]);
        const int bottom = qMin(height - 1, iy + span.last[c]);
        if (column < 0 || column >= width || top > bottom)
            continue;
        QRgb* p = bits + top * stride + column;
        for (int row = top; row <= bottom; ++row, p += stride)
            *p = color;
        markDirty(column, column, top, bottom);
    }
}

void flushMirror(QPainter* pPainter)
{
    if (!mirrorActive(pPainter))
        return;
    if (mirror.dirtyLeft <= mirror.dirtyRight) {
        const QRect dirty(QPoint(mirror.dirtyLeft, mirror.dirtyTop),
                          QPoint(mirror.dirtyRight, mirror.dirtyBottom));
        pPainter->drawImage(mirror.area.topLeft() + dirty.topLeft(), mirror.image, dirty);
    }
    if (mirror.bPenPending)
        pPainter->setPen(QColor::fromRgb(mirror.pen));
    mirror.dirtyLeft = 0;
    mirror.dirtyRight = -1;
    mirror.bPenPending = false;
}

// One line of the view: into the mirror during a pass of this frame, else with the painter.
void line(QPainter* pPainter, int x0, int y0, int x1, int y1, QRgb color)
{
    if (mirrorActive(pPainter)) {
        mirrorLine(x0, y0, x1 - x0, y1 - y0, color);
        return;
    }
    pPainter->setPen(QColor::fromRgb(color));
    pPainter->drawLine(x0, y0, x1, y1);
}

// The segment of sample i, from (L + i, row of sample i - 1) to (L + i + 1, row of sample i).
void segment(QPainter* pPainter, const QRect& rect, const stSweep& sweep, int i, QRgb color)
{
    line(pPainter, rect.left() + i, clampedRow(rect, sweep.data[i - 1]), rect.left() + i + 1,
         clampedRow(rect, sweep.data[i]), color);
}

// Vertical line at x between two magnitude offsets; skipped when either lies below nMinDraw.
void bar(QPainter* pPainter, const QRect& rect, int x, long long highOffset, long long lowOffset,
         QRgb color)
{
    if (highOffset < 0 || lowOffset < 0)
        return;
    int yHigh = offsetToRow(rect, highOffset);
    int yLow = offsetToRow(rect, lowOffset) - 1;
    __validate_and_correct_position(rect, x, yHigh);
    __validate_and_correct_position(rect, x, yLow);
    line(pPainter, x, yHigh, x, yLow, color);
}

} // namespace

void planarPassBegin(QPainter* pPainter)
{
    if (mirrorActive(pPainter))
        mirror.bPass = true;
}

void planarPassEnd(QPainter* pPainter)
{
    flushMirror(pPainter);
    mirror.bPass = false;
}

int CWsa::onPaint_PlanarView(QPainter* pPainter)
{
    if (!bPlanarView)
        return 0;
    const QRect rect = planarRect();
    // The grid goes over the interior, so the frame must show the mirror's content first.
    flushMirror(pPainter);
    const QRect interior(QPoint(rect.left() + 1, rect.top() + 1),
                         QPoint(rect.right() + 1, rect.bottom() - 1));
    if (!mirrorArea(pPainter, rect).isEmpty() &&
        drawGridAround(pPainter, rect, nCellWidth, nCellHeight, interior)) {
        // The interior comes from the mirror, drawn once after the traces.
        resetMirror(pPainter, rect);
        markDirty(0, mirror.gridColumns - 1, 0, mirror.area.height() - 1);
    } else {
        drawGrid(pPainter, rect, nCellWidth, nCellHeight);
        if (framePainter() == pPainter)
            resetMirror(pPainter, rect);
    }
    if (!(nLastIdx >= 1 && bMax))
        return 0;
    const long long floorMagnitude = levelMagnitude(nMinDraw);
    const int n = boundedCount(maxData.num_samples);
    if (mirrorActive(pPainter)) {
        mirror.pen = kBlue;
        mirror.bPenPending = true;
    } else {
        pPainter->setPen(Qt::blue);
    }
    for (int i = 0; i < n; ++i) {
        bar(pPainter, rect, rect.left() + i + 1, floorMagnitude - levelMagnitude(maxData.data[i]),
            floorMagnitude - levelMagnitude(minData.data[i]), kBlue);
    }
    // Laid down with the views, the band reaches the frame with the traces after the pass.
    if (!mirror.bPass && !frameViewPass(pPainter))
        flushMirror(pPainter);
    return 0;
}

void CWsa::drawPlanarSample(QPainter* pPainter, int i)
{
    if (i < 1 || i >= SA_MAX_SAMPLES)
        return;
    // Outside drawGraphic's pass nothing would draw the mirror: bring the frame up to date and
    // draw plainly from here on.
    if (mirrorActive(pPainter) && !mirror.bPass) {
        flushMirror(pPainter);
        mirror.serial = -1;
    }
    if (bRefreshPlanarView) {
        puts("start refresh");
        onPaint_PlanarView(pPainter);
        puts("stop refresh");
    }
    const QRect rect = planarRect();
    const int history = qBound(0, nLastIdx, WSA_HISTORY_ROWS - 1);
    if (bCurrent) {
        if (nLastIdx >= 0)
            segment(pPainter, rect, historyData[history], i, bMax ? kBlue : kBlack);
    } else if (bPrevCurrent != bCurrent) {
        if (bRefreshPlanarView)
            puts("clear history");
        if (nLastIdx >= 0)
            segment(pPainter, rect, historyData[history], i, kBlack);
    }
    bPrevCurrent = bCurrent;

    if (bRefreshPlanarView)
        puts("draw average");
    if (bAverage && nDataCount > 0) {
        const long long floorMagnitude = levelMagnitude(nMinDraw);
        const long long average = sumData[i] / nDataCount;
        bar(pPainter, rect, rect.left() + i + 1, floorMagnitude - average,
            floorMagnitude - levelMagnitude(minData.data[i]), kGreen);
    }
    if (bRefreshPlanarView)
        puts("draw current data");
    if (bCurrent)
        segment(pPainter, rect, currentData, i, kYellow);
    if (bRefreshPlanarView) {
        puts("xxx start refresh");
        bRefreshPlanarView = false;
        puts("xxx stop refresh");
    }
}
