// Functions shared by the view painters: the window background and text font, level arithmetic that
// is safe for any value a record may carry, the frame being composed, and the pixels of Qt's
// one-pixel aliased lines for painters that write image scanlines.
#ifndef WSA_VIEWS_H
#define WSA_VIEWS_H

#include <QColor>
#include <QFont>
#include <QRect>
#include <climits>

class QPainter;

// Window background behind every view: the host style's colour code 0.
QColor viewBackground();

// Font of every view text: the application font at 12 pixels.
QFont viewFont();

// |level| in dB; saturates instead of overflowing for the most negative int.
inline int levelMagnitude(int level)
{
    return level == INT_MIN ? INT_MAX : (level < 0 ? -level : level);
}

// Row of a magnitude offset (|nMinDraw| - |level|) in rect: bottom - gridH * offset / displayRange,
// truncated toward zero, without overflow and saturated to int. Not clamped into the rect.
int offsetToRow(const QRect& rect, long long offset);

// Row of a traced level in rect: levelToRow, then the clamp one row inside the frame.
int clampedRow(const QRect& rect, int level);

// The frame the paint handler is composing. Cached and scanline paths stand in for plain drawing
// only on this painter; null outside the paint handler and while bReferencePainting is set.
QPainter* framePainter();
// Serial number of that frame, distinct for every repaint.
int frameSerial();
// True while the frame painter lays down the three views over the freshly filled background.
bool frameViewPass(const QPainter* pPainter);
// True while the frame's views are being laid down over the freshly filled background when
// `area` has not been drawn on yet in this frame; the area then counts as drawn on. A cached
// image rendered over the background may replace plain drawing in such an area.
bool claimFrameBackground(const QPainter* pPainter, const QRect& area);

// drawGrid from the cached image of the grid over the background, leaving out `hole` (part of
// the interior that another image will cover), when the frame painter's area there has not been
// drawn on yet. False when it drew nothing; then call drawGrid.
bool drawGridAround(QPainter* pPainter, const QRect& rect, int cell_w, int cell_h,
                    const QRect& hole);

// Pixels Qt's aliased one-pixel pen sets for drawLine(x, y, x + dx, y + dy), dx 0 or 1: rows
// y + first[c] .. y + last[c] of column x + c (none when first[c] > last[c]). Learned from
// QPainter itself on first use, so scanline writers match it pixel for pixel. False when the
// line is outside the learned range (|dy| > 320); draw such a line with a QPainter.
struct stLineSpan {
    int first[2];
    int last[2];
};
bool lineSpan(int dx, int dy, stLineSpan& span);

// Bracket of drawGraphic's per-sample pass: the Planar view collects the pass's traces and
// draws them to the frame at the end.
void planarPassBegin(QPainter* pPainter);
void planarPassEnd(QPainter* pPainter);

#endif
