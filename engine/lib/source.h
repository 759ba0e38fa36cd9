// A producer of sweeps. Each runs until the front-end goes or the source ends, announcing its
// band or its fault through the engine and handing every sweep to it.
#ifndef ENGINE_SOURCE_H
#define ENGINE_SOURCE_H

#include <string>

#include "sink.h"

class Engine;

class Source
{
public:
    virtual ~Source() = default;
    // The engine's exit status: 0 when the front-end went or the source ended as it should.
    virtual int run(Engine& engine) = 0;
};

// Reports on stderr why there is no probe, tells the front-ends and sinks; the exit status.
int noProbe(Engine& engine, StatusReason reason, const std::string& why,
            const std::string& detail = {});

// 0 when the front-end went or the source ended, 1 after a failed write (said on stderr).
int exitStatus(SinkResult result);

#endif
