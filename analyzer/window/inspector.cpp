// Inspector: a tap on a view fills the side-bar readout; each frame paints the panel and the
// cursor line over the tapped column.
#include <QMouseEvent>
#include <QPainter>
#include <cstdio>
#include <cstdlib>

#include "axis.h"
#include "framecache.h"
#include "inspector.h"
#include "wsa_p.h"

char strInspector[5][80];

static_assert(INSPECTOR_LINES == 5 && INSPECTOR_LINE_SIZE == 80, "readout buffer shape");

namespace
{

// The readout labels stay in English whatever language the controls speak.
void writeNumber(char* line, const char* label, int value)
{
    std::snprintf(line, INSPECTOR_LINE_SIZE, "%s :  %d", label, value);
}

void writeText(char* line, const char* label, const char* text)
{
    // Time stamps are fixed-size fields; never read past one.
    std::snprintf(line, INSPECTOR_LINE_SIZE, "%s :  %.*s", label, int(WSA_TIME_TEXT), text);
}

} // namespace

eInspectorView inspectorHitView(int x, int y, QRect& grid)
{
    // A tap on the border line belongs to no view.
    if (isViewAll()) {
        if (strictlyInside(grid_rect_planar, x, y)) {
            grid = grid_rect_planar;
            return INSPECTOR_PLANAR;
        }
        if (strictlyInside(grid_rect_topographic, x, y)) {
            grid = grid_rect_topographic;
            return INSPECTOR_TOPOGRAPHIC;
        }
        if (strictlyInside(grid_rect_spectral, x, y)) {
            grid = grid_rect_spectral;
            return INSPECTOR_SPECTRAL;
        }
        return INSPECTOR_NONE;
    }
    if (!strictlyInside(grid_rect_maximize, x, y))
        return INSPECTOR_NONE;
    eInspectorView view = INSPECTOR_NONE;
    if (bPlanarView)
        view = INSPECTOR_PLANAR;
    if (bTopographicView)
        view = INSPECTOR_TOPOGRAPHIC;
    if (bSpectralView)
        view = INSPECTOR_SPECTRAL;
    if (view != INSPECTOR_NONE)
        grid = grid_rect_maximize;
    return view;
}

int inspectorFrequency(const QRect& grid, int x)
{
    return wsa::handheld::inspectorMHz(shownMapping(), x - grid.left(), grid.right() - grid.left());
}

int inspectorLevel(const QRect& grid, int y)
{
    const int height = grid.bottom() - grid.top();
    if (height <= 0)
        return nMaxDraw;
    return nMaxDraw - (y - grid.top()) * (std::abs(nMinDraw) - std::abs(nMaxDraw)) / height;
}

int inspectorColumn(const QRect& grid, int x)
{
    // Every band's grid is narrower than a record, so a tap inside one lands in the tables.
    const int column = x - grid.left();
    Q_ASSERT(column >= 0 && column < SA_MAX_SAMPLES);
    return qBound(0, column, SA_MAX_SAMPLES - 1);
}

int inspectorHistoryRow(const QRect& grid, int y)
{
    // Two pixel rows per stored sweep, the newest on top.
    const int row = nLastIdx - (y - grid.top()) / 2;
    if (row < 0 || row > nLastIdx || row >= WSA_HISTORY_ROWS)
        return -1;
    return row;
}

void inspectorReadout(eInspectorView view, const QRect& grid, int x, int y,
                      char lines[INSPECTOR_LINES][INSPECTOR_LINE_SIZE])
{
    for (int i = 0; i < 4; ++i)
        lines[i][0] = '\0';
    if (view == INSPECTOR_NONE)
        return;

    const int column = inspectorColumn(grid, x);
    writeNumber(lines[0], "Freq", inspectorFrequency(grid, x));

    switch (view) {
    case INSPECTOR_PLANAR: {
        writeNumber(lines[1], "Current", inspectorLevel(grid, y));
        // The mean magnitude, shown with its minus sign.
        const int mean = nDataCount >= 1 ? sumData[column] / nDataCount : 0;
        std::snprintf(lines[2], INSPECTOR_LINE_SIZE, "%s :  -%d", "Average", mean);
        writeNumber(lines[3], "Maximum", maxData.data[column]);
        break;
    }
    case INSPECTOR_TOPOGRAPHIC: {
        const int level = inspectorLevel(grid, y);
        const int bin = qMin(std::abs(level), 109);
        const float density =
            nDataCount >= 1 ? float(popularity[column][bin] * 100.0 / nDataCount) : 0.0f;
        writeNumber(lines[1], "Amp", level);
        std::snprintf(lines[2], INSPECTOR_LINE_SIZE, "%s :  %.2f", "Density", double(density));
        break;
    }
    case INSPECTOR_SPECTRAL: {
        const int row = inspectorHistoryRow(grid, y);
        if (row < 0) {
            // Nothing recorded under the finger: say so rather than leave the lines blank, which
            // would read as a missing label.
            writeText(lines[1], "Amp", "--");
            writeText(lines[2], "Time", "--");
            break;
        }
        writeNumber(lines[1], "Amp", historyData[row].data[column]);
        writeText(lines[2], "Time", historyTime[row]);
        break;
    }
    case INSPECTOR_NONE:
        break;
    }
}

void CWsa::mousePressEvent(QMouseEvent* event)
{
    const QPoint pos = event->position().toPoint();
    if (placeSignature(pos.x(), pos.y()))
        return;

    QRect grid;
    const eInspectorView view = inspectorHitView(pos.x(), pos.y(), grid);
    if (view == INSPECTOR_NONE)
        return;
    if (m_bInspector) {
        m_clickRect = grid;
        m_clickxPos = pos.x();
        m_bInspectorUpdate = true;
        m_bUpdate = true;
    }

    // Outside Inspector mode the lines are still refreshed, to show when the mode returns.
    inspectorReadout(view, grid, pos.x(), pos.y(), strInspector);

    if (m_bInspector && m_bUpdate)
        update();
    update(sidebar_rect);
}

void CWsa::procInspector(QPainter* pPainter)
{
    const QRect& s = sidebar_rect;
    const int x = s.left() + 15;

    pPainter->setPen(Qt::white);
    pPainter->drawText(x, s.top() + 20, QObject::tr("Hover over view"));
    pPainter->drawText(x, s.top() + 40, QObject::tr("for frequency"));
    pPainter->drawText(x, s.top() + 60, QObject::tr("and amplitude"));
    pPainter->drawText(x, s.top() + 80, QObject::tr("information"));

    // The frame's last pixels lie on right - 5 and top + 220, both inclusive.
    const int boxTop = s.top() + 100;
    pPainter->setPen(Qt::black);
    pPainter->setBrush(QBrush(Qt::transparent, Qt::SolidPattern));
    // The transparent fill changes no pixel.
    const QRect box(x, boxTop, (s.right() - 5) - x, 120);
    if (fastFrame(pPainter))
        drawOutline(pPainter, box, Qt::black);
    else
        pPainter->drawRect(box);

    pPainter->setPen(Qt::white);
    for (int i = 0; i < 4; ++i) {
        const char* line = strInspector[i];
        pPainter->drawText(s.left() + 20, s.top() + 140 + 20 * i,
                           QString::fromUtf8(line, int(qstrnlen(line, INSPECTOR_LINE_SIZE))));
    }

    if (m_bInspectorUpdate) {
        pPainter->setPen(Qt::red);
        pPainter->drawLine(m_clickxPos, m_clickRect.top() + 1, m_clickxPos, m_clickRect.bottom());
    }
}
