#include "peaks.h"

namespace wsa::desktop::peaks
{

namespace
{

// Whether the level falls by the excursion walking from `at` in direction `dir` before anything
// rises above it.
bool fallsAway(const float* levels, int count, int at, int dir, float excursionDb)
{
    const float top = levels[at];
    for (int i = at + dir; i >= 0 && i < count; i += dir) {
        if (levels[i] > top)
            return false;
        if (top - levels[i] >= excursionDb)
            return true;
    }
    return false;
}

} // namespace

int highest(const float* levels, int count)
{
    if (!levels || count <= 0)
        return -1;
    int best = 0;
    for (int i = 1; i < count; ++i) {
        if (levels[i] > levels[best])
            best = i;
    }
    return best;
}

bool isPeak(const float* levels, int count, int at, float excursionDb)
{
    if (!levels || at < 0 || at >= count)
        return false;
    return fallsAway(levels, count, at, -1, excursionDb) &&
           fallsAway(levels, count, at, +1, excursionDb);
}

int nextLeft(const float* levels, int count, int from, float excursionDb)
{
    if (!levels || count <= 0)
        return -1;
    int i = (from > count ? count : from) - 1;
    // Stepping off a flat top the marker sits on, not onto its next cell.
    while (from < count && i >= 0 && levels[i] == levels[from])
        --i;
    for (; i >= 0; --i) {
        if (isPeak(levels, count, i, excursionDb))
            return i;
    }
    return -1;
}

int nextRight(const float* levels, int count, int from, float excursionDb)
{
    if (!levels || count <= 0)
        return -1;
    int i = (from < -1 ? -1 : from) + 1;
    while (from >= 0 && i < count && levels[i] == levels[from])
        ++i;
    for (; i < count; ++i) {
        if (isPeak(levels, count, i, excursionDb))
            return i;
    }
    return -1;
}

} // namespace wsa::desktop::peaks
