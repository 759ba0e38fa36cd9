// View geometry and view flags: which views are shown, where each lies, the cell sizes and the
// band's frequency span, and the mapping of levels to rows. Levels are dBm (negative);
// magnitudes are |dBm|.
#ifndef GEOMETRY_H
#define GEOMETRY_H

#include <QRect>
#include <climits>

#include "bandplan.h"

extern bool bPlanarView;
extern bool bTopographicView;
extern bool bSpectralView;
extern QRect grid_rect_maximize;
extern QRect grid_rect_planar;
extern QRect grid_rect_topographic;
extern QRect grid_rect_spectral;
extern QRect sidebar_rect;
extern QRect toolbox_rect;
extern int nCellWidth;
extern int nCellHeight;
extern int nStartFreq;
extern int nEndFreq;

// All three views shown, stacked.
inline bool isViewAll()
{
    return bPlanarView && bTopographicView && bSpectralView;
}

// (x, y) lies inside r and not on its border line.
inline bool strictlyInside(const QRect& r, int x, int y)
{
    return r.left() < x && x < r.right() && r.top() < y && y < r.bottom();
}

// The selected band's mapping as laid out now: cell width and frequency span of the last layout.
wsa::HandheldMapping shownMapping();

// Rectangle of each view under the current view flags.
QRect planarRect();
QRect topoRect();
QRect spectralRect();
QRect frequencyRect();

// |level| in dB; saturates instead of overflowing for the most negative int.
inline int levelMagnitude(int level)
{
    return level == INT_MIN ? INT_MAX : (level < 0 ? -level : level);
}

// Row of a magnitude offset (|nMinDraw| - |level|) in rect: bottom - gridH * offset / displayRange,
// truncated toward zero, without overflow and saturated to int. Not clamped into the rect.
int offsetToRow(const QRect& rect, long long offset);

// Row of a level in a view rectangle, before the clamp.
int levelToRow(const QRect& rect, int level);

// Moves y one row inside rect when it lies on or beyond the top or bottom edge; 1 if it moved.
int __validate_and_correct_position(QRect rect, int& x, int& y);

// Row of a traced level in rect: levelToRow, then the clamp one row inside the frame.
int clampedRow(const QRect& rect, int level);

#endif
