// Where the engine's output goes: the analyzer's record socket, a CSV recording, and later
// other front-ends. Sources never write to a sink themselves; the engine hands everything over.
#ifndef ENGINE_SINK_H
#define ENGINE_SINK_H

#include <string>

#include "bandplan.h"

enum class SinkResult { Ok, Closed, Failed };

// What a probe can report instead of sweeps.
enum class Fault { NoProbe, Disconnect };

// Damaged records the simulated probe plays to exercise a reader's resynchronisation.
enum class Damage {
    ShortRecord, // the first half of a sweep record
    BadCount,    // a sweep record claiming more samples than a record holds
    UnknownType, // a record of a type no reader knows
};

// Why a source cannot deliver, for front-ends that explain it; the handheld analyzer has only
// its fixed boxes and never sees these.
enum class StatusReason {
    ProgramMissing, // the sweep program is not installed or cannot run
    NoDevice,       // the program runs but finds no device
    DeviceLost,     // the device stopped delivering
    FileUnusable,   // a recording is missing, unreadable, empty or not a regular file
    NotInBand,      // a recording has no sweep in the band asked for
    UnknownSource,  // WSA_SOURCE names no source
};

class Sink
{
public:
    virtual ~Sink() = default;

    // Whether a record can go out now without queueing behind a slow reader.
    virtual bool ready() const { return true; }
    // A descriptor that turns readable when the reader has gone (then closed() tells), or -1.
    virtual int watchFd() const { return -1; }
    virtual bool closed() { return false; }

    virtual SinkResult announce(const wsa::Announcement&) { return SinkResult::Ok; }
    // One paced sweep: `count` whole dBm levels on the band's grid (count = grid.raw).
    virtual SinkResult sweep(const int* levels, int count) = 0;
    virtual SinkResult fault(Fault) { return SinkResult::Ok; }
    virtual SinkResult damaged(Damage, const int* /*levels*/, int /*count*/)
    {
        return SinkResult::Ok;
    }
    virtual void reason(StatusReason, const std::string& /*text*/) {}
    // The analysis of the stream as one JSON object, about once a second; only front-ends that
    // show it take it (never the handheld's record socket).
    virtual void analysis(const std::string& /*json*/) {}
};

#endif
