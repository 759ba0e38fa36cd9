// Frame composition: every repaint draws the background, the three views, the per-sample pass
// that counts a new sweep into the store while the views add it, the overlays and the frequency
// labels, in that order.
#include <QApplication>
#include <QPaintEvent>
#include <QPainter>
#include <cstring>

#include "axis.h"
#include "cwidgetstyle.h"
#include "framecache.h"
#include "views.h"
#include "wsa_p.h"

bool bReferencePainting = wsaPlainPaintingRequested();

bool wsaPlainPaintingRequested()
{
    const QByteArray value = qgetenv("WSA_PLAIN_PAINT").trimmed();
    return !value.isEmpty() && value != "0";
}

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

void drawOutline(QPainter* pPainter, const QRect& r, const QColor& color)
{
    const int w = r.width() + 1, h = r.height() + 1;
    pPainter->fillRect(QRect(r.left(), r.top(), w, 1), color);
    pPainter->fillRect(QRect(r.left(), r.top() + h - 1, w, 1), color);
    pPainter->fillRect(QRect(r.left(), r.top() + 1, 1, h - 2), color);
    pPainter->fillRect(QRect(r.left() + w - 1, r.top() + 1, 1, h - 2), color);
}

void CWsa::paintEvent(QPaintEvent* event)
{
    const QRect area = rect();
    QPainter painter(this);
    painter.setFont(viewFont());
    painter.fillRect(area, QBrush(viewBackground(), Qt::SolidPattern));

    CFrameCache& cache = frameCache();
    cache.beginFrame(&painter);
    cache.setViewPass(true);
    onPaint_PlanarView(&painter);
    onPaint_TopoView(&painter);
    onPaint_SpectralView(&painter);
    cache.setViewPass(false);

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
    cache.endFrame();
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
    const wsa::HandheldMapping mapping = shownMapping();
    const int labels = wsa::handheld::labelCount(mapping, rect.right() - rect.left());
    for (int k = 1; k <= labels; ++k) {
        pPainter->drawText(rect.left() + wsa::handheld::labelOffset(mapping, k) - 15,
                           rect.bottom() + 20,
                           QString::number(wsa::handheld::labelMHz(mapping, k)));
    }
}
