// What the benchmark programs share: a platform without a display, and the median of timings.
#ifndef BENCHSUPPORT_H
#define BENCHSUPPORT_H

#include <QtGlobal>
#include <algorithm>
#include <vector>

namespace bench
{

// Over SSH and in CI there is no display: choose Qt's offscreen platform before the application
// is made, unless one was asked for.
inline void offscreenWithoutDisplay()
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && qEnvironmentVariableIsEmpty("DISPLAY") &&
        qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
}

// Median of nanosecond timings, in milliseconds; sorts them.
inline double medianMs(std::vector<qint64>& ns)
{
    std::sort(ns.begin(), ns.end());
    return ns[ns.size() / 2] / 1e6;
}

} // namespace bench

#endif
