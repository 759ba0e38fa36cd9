// View geometry: where each view lies, its grid with ticks and amplitude labels, the mapping of a
// level to a row and the clamp that keeps traced points inside a view. Levels are dBm (negative);
// magnitudes are |dBm|.
#include <QImage>
#include <QPainter>
#include <algorithm>

#include "ccheckbox.h"
#include "framecache.h"
#include "views.h"
#include "wsa_p.h"

bool bPlanarView = true;
bool bTopographicView = true;
bool bSpectralView = true;
QRect grid_rect_maximize;
QRect grid_rect_planar;
QRect grid_rect_topographic;
QRect grid_rect_spectral;
QRect sidebar_rect;
QRect toolbox_rect;
// Until resizeGrid lays out the selected band: the first band's mapping.
int nCellWidth = wsa::handheldBand(int(wsa::BandId::Ghz24)).handheld->cellWidth;
int nCellHeight = 10;
int nStartFreq = wsa::handheldBand(int(wsa::BandId::Ghz24)).handheld->startMHz;
int nEndFreq = wsa::handheldBand(int(wsa::BandId::Ghz24)).handheld->endMHz;

namespace
{

constexpr int kGridLeft = 50;
constexpr int kGridTop = 24;
constexpr int kMaximizedHeight = 300;
constexpr int kStackedHeight = 100;
constexpr int kStackGap = 22; // 21 free rows between stacked views hold the colour legends
constexpr int kSidebarLeft = 508;
constexpr int kSidebarWidth = 148;
constexpr int kToolboxGap = 10;
constexpr int kToolboxWidth = 140;

QRect fromEdges(int left, int top, int right, int bottom)
{
    return QRect(QPoint(left, top), QPoint(right, bottom));
}

void showTraceBoxes(bool bVisible)
{
    // The controls may not exist yet while the window is being built.
    for (CCheckBox* box : {pCbCurrent, pCbAverage, pCbMax}) {
        if (box)
            box->setVisible(bVisible);
    }
}

void setViewFlags(bool bPlanar, bool bTopographic, bool bSpectral)
{
    bPlanarView = bPlanar;
    bTopographicView = bTopographic;
    bSpectralView = bSpectral;
    nCellHeight = isViewAll() ? 10 : 30;
}

// Text of amplitude label i (0 = the row under the top edge), or empty where none is drawn.
QString amplitudeLabel(int i, int step)
{
    if (isViewAll() && i % 2 == 0)
        return QString(); // View All labels every second row only
    return QString::number(nMaxDraw - (i + 1) * step);
}

void paintGridPlain(QPainter* pPainter, const QRect& rect, int cell_w, int cell_h)
{
    const int L = rect.left(), T = rect.top(), R = rect.right(), B = rect.bottom();
    pPainter->fillRect(L, T, R - L + 1, B - T + 1, QBrush(Qt::black, Qt::SolidPattern));
    pPainter->setPen(Qt::white);
    pPainter->drawRect(rect);
    const int rowLines = cell_h > 0 ? (B - T) / cell_h - 1 : 0;
    const int columnLines = cell_w > 0 ? (R - L) / cell_w - 1 : 0;
    for (int k = 1; k <= rowLines; ++k)
        pPainter->drawLine(L - 3, T + k * cell_h, L - 1, T + k * cell_h);
    for (int k = 1; k <= columnLines; ++k)
        pPainter->drawLine(L + k * cell_w, B + 1, L + k * cell_w, B + 3);

    QPen dotted(Qt::lightGray);
    dotted.setStyle(Qt::DotLine);
    pPainter->setPen(dotted);
    for (int k = 1; k <= columnLines; ++k)
        pPainter->drawLine(L + k * cell_w, T + 1, L + k * cell_w, B);
    for (int k = 1; k <= rowLines; ++k)
        pPainter->drawLine(L + 1, T + k * cell_h, R, T + k * cell_h);

    pPainter->setPen(Qt::white);
    pPainter->setBrush(QBrush(Qt::black, Qt::SolidPattern));
    pPainter->drawText(L - 40, T + 7, CWsa::tr("dBm"));
    if (cell_h <= 0)
        return;
    const int rows = (B - T + 1) / cell_h;
    const int displayRange = levelMagnitude(nMinDraw) - levelMagnitude(nMaxDraw);
    const int step = rows > 0 ? displayRange / rows : 0;
    for (int i = 0; i <= rows - 2; ++i) {
        const QString label = amplitudeLabel(i, step);
        if (!label.isEmpty())
            pPainter->drawText(L - 40, T + (i + 1) * cell_h + 7, label);
    }
}

// Every pixel drawGrid may touch: frame, ticks and the label texts with room for their edges.
QRect gridFootprint(const QRect& rect, int cell_h, const QFont& font)
{
    QRect area = fromEdges(rect.left() - 3, rect.top(), rect.right() + 1, rect.bottom() + 3);
    const QFontMetrics metrics(font);
    area |= metrics.boundingRect(CWsa::tr("dBm")).translated(rect.left() - 40, rect.top() + 7);
    if (cell_h > 0) {
        const int rows = (rect.bottom() - rect.top() + 1) / cell_h;
        const int displayRange = levelMagnitude(nMinDraw) - levelMagnitude(nMaxDraw);
        for (int i = 0; i <= rows - 2; ++i) {
            const QRect text =
                metrics.boundingRect(amplitudeLabel(i, rows > 0 ? displayRange / rows : 0));
            area |= text.translated(rect.left() - 40, rect.top() + (i + 1) * cell_h + 7);
        }
    }
    return area.adjusted(-3, -3, 3, 3);
}

// The grid of `rect` rendered over the background in the frame's format.
const CFrameCache::Grid& cachedGrid(CFrameCache& cache, const QPainter* p, const QRect& rect,
                                    int cell_w, int cell_h)
{
    if (const CFrameCache::Grid* found = cache.findGrid(rect, cell_w, cell_h))
        return *found;
    CFrameCache::Grid& g = cache.grids[cache.nextGrid];
    cache.nextGrid = (cache.nextGrid + 1) % 4;
    const QRect area = gridFootprint(rect, cell_h, p->font());
    g.image = QImage(area.size(), cache.format());
    g.image.fill(viewBackground());
    QPainter painter(&g.image);
    painter.setRenderHints(p->renderHints());
    painter.setFont(p->font());
    painter.translate(-area.topLeft());
    paintGridPlain(&painter, rect, cell_w, cell_h);
    painter.end();
    g.origin = area.topLeft();
    g.rect = rect;
    g.cellW = cell_w;
    g.cellH = cell_h;
    return g;
}

} // namespace

int offsetToRow(const QRect& rect, long long offset)
{
    const long long gridH = rect.bottom() - rect.top();
    const long long displayRange = levelMagnitude(nMinDraw) - levelMagnitude(nMaxDraw);
    if (displayRange == 0)
        return rect.bottom();
    const long long row = rect.bottom() - gridH * offset / displayRange;
    return int(std::clamp<long long>(row, INT_MIN, INT_MAX));
}

int levelToRow(const QRect& rect, int level)
{
    return offsetToRow(rect, (long long)levelMagnitude(nMinDraw) - levelMagnitude(level));
}

int __validate_and_correct_position(QRect rect, int& x, int& y)
{
    Q_UNUSED(x);
    const int before = y;
    if (y <= rect.top())
        y = rect.top() + 1;
    if (y >= rect.bottom())
        y = rect.bottom() - 1;
    return y != before ? 1 : 0;
}

int clampedRow(const QRect& rect, int level)
{
    int x = 0;
    int y = levelToRow(rect, level);
    __validate_and_correct_position(rect, x, y);
    return y;
}

QRect planarRect()
{
    return bSpectralView ? grid_rect_planar : grid_rect_maximize;
}

QRect topoRect()
{
    return bPlanarView ? grid_rect_topographic : grid_rect_maximize;
}

QRect spectralRect()
{
    return bTopographicView ? grid_rect_spectral : grid_rect_maximize;
}

QRect frequencyRect()
{
    return isViewAll() ? grid_rect_spectral : grid_rect_maximize;
}

wsa::HandheldMapping shownMapping()
{
    wsa::HandheldMapping mapping = *wsaSelectedBand().handheld;
    mapping.cellWidth = nCellWidth;
    mapping.startMHz = nStartFreq;
    mapping.endMHz = nEndFreq;
    return mapping;
}

int CWsa::resizeGrid()
{
    const wsa::HandheldMapping& mapping = *wsaSelectedBand().handheld;
    const int grid_width = mapping.gridWidth;
    nCellWidth = mapping.cellWidth;
    nStartFreq = mapping.startMHz;
    nEndFreq = mapping.endMHz;
    nCellHeight = isViewAll() ? 10 : 30;
    const int right = grid_width + kGridLeft;
    grid_rect_maximize = fromEdges(kGridLeft, kGridTop, right, kGridTop + kMaximizedHeight);
    grid_rect_planar = fromEdges(kGridLeft, kGridTop, right, kGridTop + kStackedHeight);
    const int topoTop = grid_rect_planar.bottom() + kStackGap;
    grid_rect_topographic = fromEdges(kGridLeft, topoTop, right, topoTop + kStackedHeight);
    const int spectralTop = grid_rect_topographic.bottom() + kStackGap;
    grid_rect_spectral = fromEdges(kGridLeft, spectralTop, right, spectralTop + kStackedHeight);
    sidebar_rect = fromEdges(kSidebarLeft, grid_rect_maximize.top(), kSidebarLeft + kSidebarWidth,
                             grid_rect_maximize.bottom());
    const QRect own = rect();
    const int toolboxLeft = sidebar_rect.right() + kToolboxGap;
    toolbox_rect = fromEdges(toolboxLeft, own.top(), toolboxLeft + kToolboxWidth, own.bottom());
    return 0;
}

// The layout handlers change only flags and the cell height: the rectangles of every layout are
// laid out once by resizeGrid. The trace check boxes belong to the Planar view.
void CWsa::setViewLayout(bool bPlanar, bool bTopographic, bool bSpectral)
{
    setViewFlags(bPlanar, bTopographic, bSpectral);
    showTraceBoxes(bPlanar);
    m_bInspectorUpdate = false;
    update();
}

void CWsa::procViewAll()
{
    setViewLayout(true, true, true);
}

void CWsa::procPlanar()
{
    setViewLayout(true, false, false);
}

void CWsa::procTopographic()
{
    setViewLayout(false, true, false);
}

void CWsa::procSpectral()
{
    setViewLayout(false, false, true);
}

bool drawGridAround(QPainter* pPainter, const QRect& rect, int cell_w, int cell_h,
                    const QRect& hole)
{
    // Labels are anti-aliased text, so the cached image stands in only where the frame still
    // shows the bare background it was rendered over.
    CFrameCache* cache = fastFrame(pPainter);
    if (!cache || !cache->viewPass(pPainter))
        return false;
    const CFrameCache::Grid& g = cachedGrid(*cache, pPainter, rect, cell_w, cell_h);
    const QRect area(g.origin, g.image.size());
    if (!cache->claimBackground(pPainter, area))
        return false;
    const QRect h = hole & area;
    if (h.isEmpty()) {
        pPainter->drawImage(g.origin, g.image);
    } else {
        const QRect parts[4] = {
            QRect(area.topLeft(), QPoint(area.right(), h.top() - 1)),
            QRect(QPoint(area.left(), h.bottom() + 1), area.bottomRight()),
            QRect(QPoint(area.left(), h.top()), QPoint(h.left() - 1, h.bottom())),
            QRect(QPoint(h.right() + 1, h.top()), QPoint(area.right(), h.bottom()))};
        for (const QRect& part : parts) {
            if (!part.isEmpty())
                pPainter->drawImage(part.topLeft(), g.image, part.translated(-g.origin));
        }
    }
    pPainter->setPen(Qt::white);
    pPainter->setBrush(QBrush(Qt::black, Qt::SolidPattern));
    return true;
}

void CWsa::drawGrid(QPainter* pPainter, QRect rect, int cell_w, int cell_h)
{
    if (!drawGridAround(pPainter, rect, cell_w, cell_h, QRect()))
        paintGridPlain(pPainter, rect, cell_w, cell_h);
}
