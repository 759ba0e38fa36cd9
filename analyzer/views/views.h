// The paint side of the analyzer: the plain drawing switch, the trace switches, and the functions
// the view painters share (window background and font, level arithmetic safe for any value a
// record may carry, the grid from the frame cache, the colour legend).
#ifndef WSA_VIEWS_H
#define WSA_VIEWS_H

#include <QColor>
#include <QFont>
#include <QRect>

class QPainter;

// ---- frame.cpp
// Draw every view point by point, without the frame cache: the reference the fast paths are
// checked against, and a way round a fast path that misbehaves on an unusual display. Starts
// from the environment (WSA_PLAIN_PAINT set and not "0"), read once at start-up.
extern bool bReferencePainting;
bool wsaPlainPaintingRequested();

// Window background behind every view: the host style's colour code 0.
QColor viewBackground();

// Font of every view text: the application font at 12 pixels.
QFont viewFont();

// The pixels of drawRect(r) with a one-pixel aliased pen of an opaque `color` and no brush (the
// edges left, top, right + 1 and bottom + 1), as four fills: a stroked outline costs far more,
// most of all on a 16-bit target.
void drawOutline(QPainter* pPainter, const QRect& r, const QColor& color);

// ---- planar.cpp: trace switches
extern bool bCurrent;
extern bool bAverage;
extern bool bMax;
extern bool bPrevCurrent;
extern bool bRefreshPlanarView;

// Bracket of drawGraphic's per-sample pass: the Planar view collects the pass's traces and
// draws them to the frame at the end.
void planarPassBegin(QPainter* pPainter);
void planarPassEnd(QPainter* pPainter);

// ---- grid.cpp
// drawGrid from the frame cache, leaving out `hole` (part of the interior another image will
// cover), when the frame's area there has not been drawn on yet. False when it drew nothing;
// then call drawGrid.
bool drawGridAround(QPainter* pPainter, const QRect& rect, int cell_w, int cell_h,
                    const QRect& hole);

// ---- legend.cpp: the colour legend above the Topographic and the Spectral view
// Frame of the legend: 241 pixels wide, centred, from 12 to 4 pixels above the view top.
QRect legendRect(const QRect& view);

// Legend frame in black and the 240 colours of the colour map inside it (texts not included).
void drawColorLegend(QPainter* pPainter, const QRect& view);

#endif
