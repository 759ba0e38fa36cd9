// Everything the fast paint paths keep between frames, in one object with one invalidation point.
//
// Once per frame the paint handler asks the cache whether the fast paths may run: only on a
// QImage-backed target of 32 or 16 bits per pixel, drawn 1:1, and not while plain drawing is
// requested. The cached images are rendered in that target's own pixel format, so copying them
// leaves exactly the pixels plain drawing would have left. Everything cached is dropped on its own
// when anything it was rendered from differs at the start of a frame: the layout, the band, the
// store's reset count, the display range, the colour map, or the frame's format, font,
// background or language.
#ifndef FRAMECACHE_H
#define FRAMECACHE_H

#include <QFont>
#include <QImage>
#include <QRect>
#include <QString>

#include "store.h"

class QPainter;

// Pixels Qt's aliased one-pixel pen sets for drawLine(x, y, x + dx, y + dy), dx 0 or 1: rows
// y + first[c] .. y + last[c] of column x + c (none when first[c] > last[c]).
struct stLineSpan {
    int first[2];
    int last[2];
};

class CFrameCache
{
public:
    // Starts a frame on `pPainter`: decides the path and drops what no longer matches.
    void beginFrame(QPainter* pPainter);
    void endFrame();

    // True when `pPainter` composes the current frame on a fast path.
    bool fast(const QPainter* pPainter) const { return m_painter && pPainter == m_painter; }
    // True while the views are laid down over the freshly filled background.
    bool viewPass(const QPainter* pPainter) const { return fast(pPainter) && m_bViewPass; }
    void setViewPass(bool bOn) { m_bViewPass = bOn; }
    // Claims `area` of the view pass if nothing has been drawn there yet in this frame; an image
    // rendered over the bare background may then replace plain drawing there.
    bool claimBackground(const QPainter* pPainter, const QRect& area);
    int serial() const { return m_serial; }
    bool rgb16() const { return m_format == QImage::Format_RGB16; }
    QImage::Format format() const { return m_format; }
    // `color` as stored in one pixel of the frame format (low bits used for 16-bit pixels).
    quint32 pixel(QRgb color) const;
    // The colour map as pixels of the frame format.
    const quint32* colormapPixels();
    // Pixels of a one-pixel line, learned from QPainter itself on first use; false beyond the
    // learned range (|dy| > 320), where the line is drawn with a QPainter.
    bool lineSpan(int dx, int dy, stLineSpan& span);

    // Grids rendered over the background, for the stacked and maximized views.
    struct Grid {
        QImage image;
        QPoint origin;
        QRect rect;
        int cellW = 0, cellH = 0;
    };
    Grid grids[4];
    int nextGrid = 0;
    const Grid* findGrid(const QRect& rect, int cellW, int cellH) const
    {
        for (const Grid& g : grids) {
            if (!g.image.isNull() && g.rect == rect && g.cellW == cellW && g.cellH == cellH)
                return &g;
        }
        return nullptr;
    }

    // The colour legend bar, opaque over its own frame.
    QImage legend;

    // Density points of one repaint: over the grid's interior in the frame format, or, for a sweep
    // wider than the grid, 32-bit and transparent where no point lies.
    QImage densityLayer;

    // The waterfall at two pixels per entry.
    QImage waterfall;

    // The Planar interior of this frame: traces are written into its scanlines and the image
    // reaches the frame once, after the per-sample pass.
    struct Planar {
        QImage image;
        QRect area;           // frame pixels the image stands for
        int serial = -1;      // frame whose interior it holds; -1 when none
        int gridColumns = 0;  // columns up to the grid's right frame line
        int validColumns = 0; // columns holding the frame; beyond them it shows background
        bool bPass = false;   // drawGraphic's per-sample pass is under way
        int dirtyLeft = 0, dirtyRight = -1, dirtyTop = 0, dirtyBottom = -1;
        quint32 background = 0;
        quint32 colors[4] = {}; // the trace colours as frame pixels
    } planar;

private:
    struct Key {
        unsigned storeGeneration = 0;
        int band = -1;
        int minDraw = 0, maxDraw = 0;
        stRgb colormap[WSA_COLORMAP_SIZE] = {};
        bool views[3] = {};
        int cellW = 0, cellH = 0;
        QRect maximized, stacked;
        QImage::Format format = QImage::Format_Invalid;
        QFont font;
        QRgb background = 0;
        QString unit;
        bool operator==(const Key& o) const;
    };
    // Fills everything of the key but the frame's own properties.
    static void readState(Key& key);
    void clear();

    QPainter* m_painter = nullptr;
    int m_serial = 0;
    bool m_bViewPass = false;
    QRect m_claimed[8];
    int m_nClaimed = 0;
    QImage::Format m_format = QImage::Format_RGB32;
    Key m_key;
    quint32 m_colormap[WSA_COLORMAP_SIZE] = {};
    bool m_bColormap = false;
    static constexpr int kSpanReach = 320;
    struct SpanTable {
        stLineSpan span[2][2 * kSpanReach + 1];
        bool bValid[2][2 * kSpanReach + 1];
        bool bLearned = false;
    } m_spans;
    static void learnSpans(SpanTable& table);
};

// The analyzer's one cache.
CFrameCache& frameCache();
// The cache when `pPainter` composes the frame on a fast path, else null.
CFrameCache* fastFrame(const QPainter* pPainter);

#endif
