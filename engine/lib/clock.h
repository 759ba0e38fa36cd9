// Where the engine's time comes from. The real clock is monotonic; tests drive a fake one, so
// pacing is checked without sleeping.
#ifndef ENGINE_CLOCK_H
#define ENGINE_CLOCK_H

#include <ctime>

class Clock
{
public:
    virtual ~Clock() = default;
    // Nanoseconds on a clock that never steps back.
    virtual long long nowNs() const = 0;
};

class MonotonicClock : public Clock
{
public:
    long long nowNs() const override
    {
        timespec ts;
        clock_gettime(CLOCK_MONOTONIC, &ts);
        return ts.tv_sec * 1000000000LL + ts.tv_nsec;
    }
};

#endif
