// Geometry every view shares: where the plot, the axes and the legend sit in a widget, and where
// frequency ticks, Wi-Fi channels and level ticks fall. All in logical pixels; frequencies map to
// columns only through the grid's Axis, so the three views line up column for column.
#ifndef DESKTOP_PLOTFRAME_H
#define DESKTOP_PLOTFRAME_H

#include <QFontMetricsF>
#include <QRectF>
#include <QString>
#include <vector>

#include "sweepstore.h"

namespace wsa::desktop
{

// What the user chose for every view.
struct DisplaySettings {
    double bottomDbm = -120;
    double topDbm = -10;
    int channelWidthMHz = 20;
    bool showChannels = true;
    bool traceShown[kTraceCount] = {true, true, true, false};
    // The frequencies shown, in Hz; both 0 for the whole grid.
    double spanLowHz = 0;
    double spanHighHz = 0;

    bool operator==(const DisplaySettings& o) const;
    bool operator!=(const DisplaySettings& o) const { return !(*this == o); }
};

struct Span {
    double lowHz;
    double highHz;
    double widthHz() const { return highHz - lowHz; }
};

// The narrowest span a user can zoom to, in cells of the grid.
constexpr int kMinSpanCells = 8;

// The settings' span clamped into the grid's edges and at least kMinSpanCells wide; the whole
// grid when the settings name none or nonsense.
Span visibleSpan(const SweepGrid& grid, const DisplaySettings& s);
// The axis that lays the visible span over [left, left + width].
Axis spanAxis(const SweepGrid& grid, const DisplaySettings& s, double left, double width);

struct PlotLayout {
    QRectF plot;
    QRectF frequencyLabels; // tick labels under the plot
    QRectF channelLabels;   // channel numbers under the tick labels
    QRectF levelLabels;     // left of the plot
    QRectF legend;          // right of the plot
};

PlotLayout plotLayout(const QSizeF& size, const QFontMetricsF& fm);

struct Tick {
    double value; // Hz or dBm
    double pos;   // x or y
    QString label;
};

// The least distance between frequency labels in this font.
double frequencyTickGap(const QFontMetricsF& fm);
// Round-numbered frequency ticks (1, 2 or 5 times a power of ten MHz) at least minGapPx apart.
std::vector<Tick> frequencyTicks(const Axis& axis, const Span& span, double minGapPx);
// Level ticks every 1, 2, 5, 10 or 20 dB, at least minGapPx apart, y growing downwards.
std::vector<Tick> levelTicks(const QRectF& plot, double bottomDbm, double topDbm, double minGapPx);
double yOfLevel(const QRectF& plot, double bottomDbm, double topDbm, double dbm);
double levelOfY(const QRectF& plot, double bottomDbm, double topDbm, double y);

struct ChannelMark {
    int number;
    double centerX;
    double lowX;
    double highX;
    QRectF labelRect;
    bool labelled; // false where the label would run into its left neighbour's
};

// The band's channels of that width centred inside the span, labels centred under their centres
// in `row`; overlapping labels are left out from left to right.
std::vector<ChannelMark> channelMarks(const Band& band, int widthMHz, const Axis& axis,
                                      const Span& span, const QRectF& row, const QFontMetricsF& fm);
// True when no channel of the plan overlaps the next (then boundaries mean something).
bool channelsDisjoint(const std::vector<Channel>& channels);

} // namespace wsa::desktop

#endif
