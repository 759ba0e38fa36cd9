// Peak search over one trace of levels (dBm). A peak is a cell that stands out by at least the
// excursion on both sides: walking away from it, the level falls that far before it rises above
// the peak or the trace ends. Plain C++, no Qt.
#ifndef DESKTOP_PEAKS_H
#define DESKTOP_PEAKS_H

namespace wsa::desktop::peaks
{

constexpr float kDefaultExcursionDb = 6.0f;

// The highest cell (the leftmost of equals), or -1 for an empty trace.
int highest(const float* levels, int count);
// The nearest peak strictly left / right of `from`, or -1 when there is none.
int nextLeft(const float* levels, int count, int from, float excursionDb = kDefaultExcursionDb);
int nextRight(const float* levels, int count, int from, float excursionDb = kDefaultExcursionDb);
bool isPeak(const float* levels, int count, int at, float excursionDb = kDefaultExcursionDb);

} // namespace wsa::desktop::peaks

#endif
