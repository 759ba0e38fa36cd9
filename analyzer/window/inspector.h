// Inspector readouts as plain computations on the view geometry and the sweep store, so that
// they can be checked without a painter. Frequencies are MHz, levels dBm (negative).
#ifndef INSPECTOR_H
#define INSPECTOR_H

#include <QRect>

enum eInspectorView {
    INSPECTOR_NONE = 0,
    INSPECTOR_PLANAR = 1,
    INSPECTOR_TOPOGRAPHIC = 2,
    INSPECTOR_SPECTRAL = 3
};

enum { INSPECTOR_LINES = 5, INSPECTOR_LINE_SIZE = 80 };

// The readout the side bar shows.
extern char strInspector[5][80];

// The view whose grid holds (x, y) strictly inside, under the current view flags, and its grid
// rectangle; INSPECTOR_NONE for a tap outside every grid or on a border line.
eInspectorView inspectorHitView(int x, int y, QRect& grid);

// Frequency under window column x of the grid, truncated toward zero.
int inspectorFrequency(const QRect& grid, int x);
// Level at window row y: nMaxDraw on the top edge down to nMinDraw on the bottom edge.
int inspectorLevel(const QRect& grid, int y);
// Index into the 1024-entry per-column tables for window column x.
int inspectorColumn(const QRect& grid, int x);
// Newest-first history row under window row y of the Spectral grid; -1 when no stored sweep
// lies there.
int inspectorHistoryRow(const QRect& grid, int y);

// Empties lines 0 to 3 and writes the readout of a tap at (x, y) on the given view.
void inspectorReadout(eInspectorView view, const QRect& grid, int x, int y,
                      char lines[INSPECTOR_LINES][INSPECTOR_LINE_SIZE]);

#endif
