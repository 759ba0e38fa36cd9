// Arithmetic of the spectral (waterfall) view.
#ifndef SPECTRAL_H
#define SPECTRAL_H

#include <QRect>

class QPainter;

// History rows shown: two pixel rows each, at most as many as the view holds, never more than
// the newest history index (colour row 0 stays black and is never shown).
int waterfallRows(const QRect& view, int lastIdx);

// Columns of the half-resolution image: every second sample, inside the frame, within a colour row.
int waterfallColumns(const QRect& view);

// A time label: text baseline and the history entry whose time it shows.
struct stTimeLabel {
    int y;
    int entry;
};

// Time labels left of the view, every twelve entries, none in the lowest rows. Fills at most
// maxLabels and returns how many; entries outside 0 .. lastIdx (and the history) are left out.
int spectralTimeLabels(const QRect& view, int lastIdx, stTimeLabel* labels, int maxLabels);

// The waterfall of the newest history rows, when a fresh colour row is ready.
void lcdShowWaterfull(QPainter* pPainter);

#endif
