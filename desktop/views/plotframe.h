// Geometry every view shares: where the plot, the axes and the legend sit in a widget, and where
// frequency ticks, Wi-Fi channels and level ticks fall. All in logical pixels; frequencies map to
// columns only through the grid's Axis, so the three views line up column for column.
#ifndef DESKTOP_PLOTFRAME_H
#define DESKTOP_PLOTFRAME_H

#include <QFontMetricsF>
#include <QRectF>
#include <QString>
#include <vector>

#include "sweepmodel.h"

namespace wsa::desktop
{

// What the user chose for every view.
struct DisplaySettings {
    double bottomDbm = -120;
    double topDbm = -10;
    int channelWidthMHz = 20;
    bool showChannels = true;
    bool traceShown[kTraceCount] = {true, true, true, false};

    bool operator==(const DisplaySettings& o) const;
    bool operator!=(const DisplaySettings& o) const { return !(*this == o); }
};

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
std::vector<Tick> frequencyTicks(const Axis& axis, double minGapPx);
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

// The band's channels of that width inside the axis' span, labels centred under their centres
// in `row`; overlapping labels are left out from left to right.
std::vector<ChannelMark> channelMarks(const Band& band, int widthMHz, const Axis& axis,
                                      const QRectF& row, const QFontMetricsF& fm);
// True when no channel of the plan overlaps the next (then boundaries mean something).
bool channelsDisjoint(const std::vector<Channel>& channels);

} // namespace wsa::desktop

#endif
