// Spectral view: the waterfall of the recording's colour rows, newest on top, two pixels per sweep,
// with elapsed-time labels beside it and the colour legend above it.
#include "spectral.h"

#include <QImage>
#include <QPainter>
#include <cstring>

#include "framecache.h"
#include "views.h"
#include "wsa_p.h"

namespace
{

const int kMaxTimeLabels = 256;

// How Qt stores a colour in a 5-6-5 pixel and how it shows that pixel again, per channel, taken
// from Qt itself so that the fast image matches the reference image bit for bit.
struct Rgb16Tables {
    quint16 stored[3][256]; // channel value -> its bits in the 16-bit pixel
    QRgb shown[3][256];     // channel value -> its quantised value, in place in a 32-bit pixel

    Rgb16Tables()
    {
        QImage probe(256, 3, QImage::Format_RGB16);
        for (int v = 0; v < 256; ++v) {
            probe.setPixel(v, 0, qRgb(v, 0, 0));
            probe.setPixel(v, 1, qRgb(0, v, 0));
            probe.setPixel(v, 2, qRgb(0, 0, v));
        }
        const QImage back = probe.convertToFormat(QImage::Format_RGB32);
        for (int ch = 0; ch < 3; ++ch) {
            const auto* bits16 = reinterpret_cast<const quint16*>(probe.constScanLine(ch));
            const auto* bits32 = reinterpret_cast<const QRgb*>(back.constScanLine(ch));
            const QRgb mask = 0xff0000u >> (8 * ch);
            for (int v = 0; v < 256; ++v) {
                stored[ch][v] = bits16[v];
                shown[ch][v] = bits32[v] & mask;
            }
        }
    }
};

void paintWaterfallPlain(QPainter* pPainter, const QRect& rc, int columns, int rows)
{
    QImage image(columns, rows, QImage::Format_RGB16);
    for (int c = 0; c < columns; ++c)
        for (int r = 0; r < rows; ++r)
            image.setPixel(c, r, historyColor[nLastIdx - r].color[2 * c]);
    const QImage doubled =
        image.scaled(2 * columns, 2 * rows, Qt::IgnoreAspectRatio, Qt::FastTransformation);
    pPainter->drawImage(QPointF(rc.left() + 1, rc.top() + 1), doubled, QRectF(doubled.rect()),
                        Qt::AutoColor);
}

// Builds the doubled image directly: each sample converted once, written twice, each line copied.
void paintWaterfallFast(CFrameCache& cache, QPainter* pPainter, const QRect& rc, int columns,
                        int rows)
{
    static const Rgb16Tables tables;
    const bool rgb16 = cache.rgb16();
    const int width = 2 * columns;
    const int height = 2 * rows;

    // Grows only when a larger view needs it.
    QImage& image = cache.waterfall;
    if (image.format() != cache.format() || image.height() < height)
        image = QImage(WSA_COLOR_LINE, qMax(height, image.height()), cache.format());
    if (image.isNull())
        return;

    const size_t lineBytes = size_t(width) * (rgb16 ? sizeof(quint16) : sizeof(QRgb));
    for (int r = 0; r < rows; ++r) {
        const QRgb* source = historyColor[nLastIdx - r].color;
        uchar* line = image.scanLine(2 * r);
        if (rgb16) {
            auto* out = reinterpret_cast<quint16*>(line);
            for (int c = 0; c < columns; ++c) {
                const QRgb s = source[2 * c];
                const quint16 v = tables.stored[0][qRed(s)] | tables.stored[1][qGreen(s)] |
                                  tables.stored[2][qBlue(s)];
                out[2 * c] = v;
                out[2 * c + 1] = v;
            }
        } else {
            auto* out = reinterpret_cast<QRgb*>(line);
            for (int c = 0; c < columns; ++c) {
                const QRgb s = source[2 * c];
                const QRgb v = 0xff000000u | tables.shown[0][qRed(s)] | tables.shown[1][qGreen(s)] |
                               tables.shown[2][qBlue(s)];
                out[2 * c] = v;
                out[2 * c + 1] = v;
            }
        }
        std::memcpy(image.scanLine(2 * r + 1), line, lineBytes);
    }
    pPainter->drawImage(QPointF(rc.left() + 1, rc.top() + 1), image, QRectF(0, 0, width, height),
                        Qt::AutoColor);
}

// The MM:SS part of an entry's HH:MM:SS text; empty when the entry has no time yet.
QString timeLabelText(int entry)
{
    const char* text = historyTime[entry];
    const size_t length = strnlen(text, WSA_TIME_TEXT);
    return length > 3 ? QString::fromLatin1(text + 3, int(length - 3)) : QString();
}

} // namespace

int waterfallRows(const QRect& view, int lastIdx)
{
    const int fit = view.height() / 2;
    return qMax(0, fit < lastIdx ? fit : lastIdx);
}

int waterfallColumns(const QRect& view)
{
    return qBound(0, view.width() / 2 - 1, WSA_COLOR_LINE / 2);
}

int spectralTimeLabels(const QRect& view, int lastIdx, stTimeLabel* labels, int maxLabels)
{
    const int top = view.top();
    const int bottom = view.bottom();
    const int gridH = bottom - top;
    if (gridH <= 0 || lastIdx < 0 || lastIdx >= WSA_HISTORY_ROWS)
        return 0;

    // While the waterfall is still filling the oldest label is entry 0; once full, the labels
    // move down with the rows and wrap every gridH entries.
    int ypos = 2 * (lastIdx % gridH);
    if (gridH / 2 <= lastIdx)
        ypos += gridH;
    int entry = lastIdx - ypos / 2;
    int count = 0;
    for (; ypos > 0 && count < maxLabels; ypos -= 24, entry += 12) {
        if (top + ypos < bottom - 5 && entry >= 0 && entry <= lastIdx)
            labels[count++] = {top + ypos + 2, entry};
    }
    return count;
}

int CWsa::onPaint_SpectralView(QPainter* pPainter)
{
    if (!bSpectralView)
        return 0;
    const QRect rc = spectralRect();
    pPainter->fillRect(rc, Qt::black);
    pPainter->setPen(Qt::white);
    // A brush left by a grid could only fill the black again.
    if (fastFrame(pPainter))
        drawOutline(pPainter, rc, Qt::white);
    else
        pPainter->drawRect(rc);

    drawColorLegend(pPainter, rc);
    const QRect legend = legendRect(rc);
    pPainter->setPen(Qt::black);
    const QString unit = tr("dBm");
    pPainter->drawText(legend.left() - 75, legend.top() + 10,
                       QStringLiteral("%1 %2").arg(nMinDraw).arg(unit));
    pPainter->drawText(legend.right() + 7, legend.top() + 10,
                       QStringLiteral("%1 %2").arg(nMaxDraw).arg(unit));
    return 0;
}

void lcdShowWaterfull(QPainter* pPainter)
{
    if (nLastIdx >= WSA_HISTORY_ROWS)
        return;
    const QRect rc = spectralRect();
    const int rows = waterfallRows(rc, nLastIdx);
    const int columns = waterfallColumns(rc);
    if (rows <= 0 || columns <= 0)
        return;
    if (CFrameCache* cache = fastFrame(pPainter))
        paintWaterfallFast(*cache, pPainter, rc, columns, rows);
    else
        paintWaterfallPlain(pPainter, rc, columns, rows);
}

void CWsa::drawSpectralTime(QPainter* pPainter)
{
    if (!bSpectralView)
        return;
    const QRect rc = spectralRect();
    pPainter->setPen(Qt::white);
    const int gridH = rc.bottom() - rc.top();
    pPainter->fillRect(QRect(rc.left() - 50, rc.top(), 50, gridH + 10), viewBackground());

    stTimeLabel labels[kMaxTimeLabels];
    const int count = spectralTimeLabels(rc, nLastIdx, labels, kMaxTimeLabels);
    for (int k = 0; k < count; ++k) {
        const QString text = timeLabelText(labels[k].entry);
        if (!text.isEmpty())
            pPainter->drawText(rc.left() - 40, labels[k].y, text);
    }
}
