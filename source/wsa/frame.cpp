// Frame composition: every repaint draws the background, the three views, the per-sample pass
// that counts a new sweep into the store while the views add it, the overlays and the frequency
// labels, in that order.
#include <QApplication>
#include <QImage>
#include <QPaintEvent>
#include <QPainter>
#include <cstring>

#include "cwidgetstyle.h"
#include "views.h"
#include "wsa_p.h"

bool bReferencePainting = false;

namespace
{

// The frame being composed by paintEvent.
struct FrameState {
    QPainter* painter = nullptr;
    int serial = 0;
    bool bViewPass = false; // the views are being laid down over the filled background
    QRect claimed[8];       // areas drawn on so far in the view pass
    int nClaimed = 0;
};

FrameState frame;

constexpr int kSpanReach = 320;
constexpr int kSpanCount = 2 * kSpanReach + 1;

struct SpanTable {
    stLineSpan span[2][kSpanCount];
    bool bValid[2][kSpanCount];
};

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

// Draws every line of the table with QPainter, three columns apart, and records its pixels.
void learnSpans(SpanTable& table)
{
    constexpr int kChunk = 64;
    const int origin = kSpanReach + 2;
    QImage image(3 * kChunk + 3, kSpanCount + 4, QImage::Format_RGB32);
    for (int dx = 0; dx <= 1; ++dx) {
        for (int start = 0; start < kSpanCount; start += kChunk) {
            image.fill(qRgb(0, 0, 0));
            QPainter painter(&image);
            painter.setPen(Qt::white);
            for (int k = 0; k < kChunk && start + k < kSpanCount; ++k) {
                const int x = 3 * k + 1;
                painter.drawLine(x, origin, x + dx, origin + start + k - kSpanReach);
            }
            painter.end();
            for (int k = 0; k < kChunk && start + k < kSpanCount; ++k) {
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
}

} // namespace

QColor viewBackground()
{
    return CWidgetStyle::getColor(CWidgetStyle::COLOR_BACKGROUND);
}

QFont viewFont()
{
    QFont font = QApplication::font();
    font.setPixelSize(12);
    return font;
}

QPainter* framePainter()
{
    return frame.painter;
}

int frameSerial()
{
    return frame.serial;
}

bool frameViewPass(const QPainter* pPainter)
{
    return frame.painter && pPainter == frame.painter && frame.bViewPass;
}

bool claimFrameBackground(const QPainter* pPainter, const QRect& area)
{
    if (!frameViewPass(pPainter))
        return false;
    if (frame.nClaimed == int(sizeof frame.claimed / sizeof frame.claimed[0]))
        return false;
    for (int k = 0; k < frame.nClaimed; ++k) {
        if (frame.claimed[k].intersects(area))
            return false;
    }
    frame.claimed[frame.nClaimed++] = area;
    return true;
}

bool lineSpan(int dx, int dy, stLineSpan& span)
{
    static SpanTable* table = nullptr;
    if (dx < 0 || dx > 1 || dy < -kSpanReach || dy > kSpanReach)
        return false;
    if (!table) {
        static SpanTable learned;
        learnSpans(learned);
        table = &learned;
    }
    if (!table->bValid[dx][dy + kSpanReach])
        return false;
    span = table->span[dx][dy + kSpanReach];
    return true;
}

void CWsa::paintEvent(QPaintEvent* event)
{
    const QRect area = rect();
    QPainter painter(this);
    painter.setFont(viewFont());
    painter.fillRect(area, QBrush(viewBackground(), Qt::SolidPattern));

    frame.serial++;
    // Cached images are blended in 32 bits; a shallower surface gets the plain drawing.
    const bool bFast = !bReferencePainting && painter.device()->depth() >= 24;
    frame.painter = bFast ? &painter : nullptr;
    frame.bViewPass = true;
    frame.nClaimed = 0;
    onPaint_PlanarView(&painter);
    onPaint_TopoView(&painter);
    onPaint_SpectralView(&painter);
    frame.bViewPass = false;

    if (bReceivedData) {
        bReceivedData = false;
        drawGraphic(&painter, true);
    }
    // A repaint behind a child control (a check box changing state) is clipped away from the
    // views; it must not use up the redraw the control has just asked for.
    if (m_bUpdate && event->region().intersects(grid_rect_maximize.united(grid_rect_spectral))) {
        m_bUpdate = false;
        drawGraphic(&painter, false);
    }
    planarPassEnd(&painter); // the planar interior, when no pass has drawn it yet
    if (m_bInspector)
        procInspector(&painter);
    if (m_bSignatureUpdate)
        drawSignature(&painter);
    drawFrequency(&painter);
    frame.painter = nullptr;
}

void CWsa::drawGraphic(QPainter* pPainter, bool bIsNewData)
{
    // Magnitude of the last sample counted; a redraw pass colours its density points by it.
    static int abs_dBm;
    if (!bIsNewData) {
        currentData.num_samples = currentDatatmp.num_samples;
        const int n = qBound(0, currentDatatmp.num_samples, int(SA_MAX_SAMPLES));
        std::memcpy(currentData.data, currentDatatmp.data, sizeof(int) * size_t(n));
    }
    planarPassBegin(pPainter);
    // The count is read again every round, bounded by the record's size.
    for (int i = 1; i < qMin(currentData.num_samples, int(SA_MAX_SAMPLES)); ++i) {
        if (bIsNewData) {
            bool bRescaleTopo = false;
            abs_dBm = wsaTakeSample(i, bRescaleTopo);
            if (bRescaleTopo && bTopographicView)
                onPaint_TopoView(pPainter);
        }
        const int last = qMin(currentData.num_samples, int(SA_MAX_SAMPLES)) - 1;
        if (bSpectralView && nLastIdx <= WSA_HISTORY_ROWS - 1 && i == last) {
            lcdShowWaterfull(pPainter);
            drawSpectralTime(pPainter);
        }
        if (bTopographicView)
            drawTopoSample(pPainter, i, abs_dBm);
        if (bPlanarView)
            drawPlanarSample(pPainter, i);
    }
    planarPassEnd(pPainter);
}

void CWsa::drawFrequency(QPainter* pPainter)
{
    const QRect rect = frequencyRect();
    pPainter->setPen(Qt::white);
    pPainter->setBrush(QBrush(Qt::black, Qt::SolidPattern));
    if (nCellWidth <= 0)
        return;
    const int step = s_band != 0 ? 100 : 10;
    const int labels = (rect.right() - rect.left()) / nCellWidth - 1;
    for (int k = 1; k <= labels; ++k) {
        pPainter->drawText(rect.left() + k * nCellWidth - 15, rect.bottom() + 20,
                           QString::number(nStartFreq + k * step));
    }
}
