// Arithmetic of the topographic (density) view, and the colour legend it shares with the spectral
// view.
#ifndef TOPO_H
#define TOPO_H

#include <QRect>

class QPainter;

// Scale factor of the density colours: the top colour is reached at about 4 %, 2 % or 1 % of the
// peak count, depending on how large the peak has grown.
int topoScale(long peak);

// Colour index (0 .. 239) of a density count for the full repaint: count × K first, then the
// division, in integers.
int topoColorIndex(long count, long peak);

// Colour index (0 .. 239) of a density count for the point of the sample in hand: the ratio first,
// in floating point, then truncated toward zero.
int topoColorIndexF(long count, long peak);

// Frame of the colour legend above a view: 241 pixels wide, centred, from 12 to 4 pixels above the
// view top.
QRect legendRect(const QRect& view);

// Legend frame in black and the 240 colours of the colour map inside it (texts not included).
void drawColorLegend(QPainter* pPainter, const QRect& view);

#endif
