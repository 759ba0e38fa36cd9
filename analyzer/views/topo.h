// Arithmetic of the topographic (density) view.
#ifndef TOPO_H
#define TOPO_H

#include <QRect>

// Scale factor of the density colours: the top colour is reached at about 4 %, 2 % or 1 % of the
// peak count, depending on how large the peak has grown.
int topoScale(long peak);

// Colour index (0 .. 239) of a density count for the full repaint: count × K first, then the
// division, in integers.
int topoColorIndex(long count, long peak);

// Colour index (0 .. 239) of a density count for the point of the sample in hand: the ratio first,
// in floating point, then truncated toward zero.
int topoColorIndexF(long count, long peak);

#endif
