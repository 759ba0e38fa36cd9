// Where the engine's output goes: the analyzer's record socket, a CSV recording, and later
// other front-ends. Sources never write to a sink themselves; the engine hands everything over.
#ifndef ENGINE_SINK_H
#define ENGINE_SINK_H

#include <cstdint>
#include <string>

#include "bandplan.h"
#include "frontstream.h"

class Engine;

enum class SinkResult { Ok, Closed, Failed };

// What a probe can report instead of sweeps.
enum class Fault { NoProbe, Disconnect };

// Damaged records the simulated probe plays to exercise a reader's resynchronisation.
enum class Damage {
    ShortRecord, // the first half of a sweep record
    BadCount,    // a sweep record claiming more samples than a record holds
    UnknownType, // a record of a type no reader knows
};

// Why a source cannot deliver or the recording stopped, for front-ends that explain it; the
// handheld analyzer has only its fixed boxes and never sees these.
enum class StatusReason {
    ProgramMissing,  // the sweep program is not installed or cannot run
    NoDevice,        // the program runs but finds no device
    DeviceLost,      // the device stopped delivering
    FileUnusable,    // a recording is unreadable or not a regular file
    NotInBand,       // a recording has no sweep in the band asked for
    UnknownSource,   // WSA_SOURCE names no source
    FileMissing,     // a recording does not exist, or none was named
    FileEmpty,       // a recording holds nothing
    Ended,           // the source ended as it should (a replay reached its end)
    DiskAlmostFull,  // recording goes on, but the disk will soon be full
    RecordingFailed, // recording stopped: a file could not be created or written
};

// Whether a source is over after this reason; the others concern the recording only.
inline bool endsSource(StatusReason reason)
{
    return reason != StatusReason::DiskAlmostFull && reason != StatusReason::RecordingFailed;
}

class Sink
{
public:
    virtual ~Sink() = default;

    // Whether a record can go out now without queueing behind a slow reader.
    virtual bool ready() const { return true; }
    // A descriptor that turns readable when the reader has gone (then closed() tells), or -1.
    virtual int watchFd() const { return -1; }
    virtual bool closed() { return false; }

    // Called once by Engine::addSink, for sinks that report back or take controls.
    virtual void attached(Engine&) {}

    virtual SinkResult announce(const wsa::Announcement&) { return SinkResult::Ok; }
    // One paced sweep: `count` whole dBm levels on the band's grid (count = grid.raw).
    virtual SinkResult sweep(const int* levels, int count) = 0;
    // The same sweep before rounding, for sinks that keep fractions of a dB; by default the whole
    // levels.
    virtual SinkResult sweepDbm(const float* /*dbm*/, const int* levels, int count)
    {
        return sweep(levels, count);
    }
    virtual SinkResult fault(Fault) { return SinkResult::Ok; }
    virtual SinkResult damaged(Damage, const int* /*levels*/, int /*count*/)
    {
        return SinkResult::Ok;
    }
    virtual void reason(StatusReason, const std::string& /*text*/) {}
    // The analysis of the stream as one JSON object, about once a second; only front-ends that
    // show it take it (never the handheld's record socket).
    virtual void analysis(const std::string& /*json*/) {}
    // The recording's state: bytes written to the current file, its path (empty: not recording).
    virtual void recording(std::int64_t /*bytes*/, const std::string& /*path*/) {}
    // Where a replay stands.
    virtual void replay(const wsa::ReplayFrame&) {}
    // A front-end's control, offered to every sink (the recorder takes Record); the source acts
    // on the others through a ControlHandler.
    virtual void control(wsa::ControlCommand, double /*value*/) {}
};

// Takes the controls a front-end sends (pause, speed, seek, loop, recording). True when the
// source's wait should end now so that it acts on it.
class ControlHandler
{
public:
    virtual ~ControlHandler() = default;
    virtual bool control(wsa::ControlCommand command, double value) = 0;
};

#endif
