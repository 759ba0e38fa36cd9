// Command line and environment of the engine.
#ifndef ENGINE_OPTIONS_H
#define ENGINE_OPTIONS_H

#include <cstdint>

#include "scene.h"

struct Options {
    Band band = Band::Ghz24;
    std::uint64_t seed = 20240611;
    double rate = 8.0; // sweeps per second; 0 = none
    bool noProbe = false;
    // Sweep counts at which a fault is played; -1 = never.
    long loseAfter = -1;
    long dieAfter = -1;
    long shortAfter = -1;
    long corruptAfter = -1;
    long sweeps = -1;
};

// Reads argv and the WSA_SIM_* variables. Anything it cannot use is reported on stderr and left
// at its default, so a mistyped setting never stops the engine.
Options parseOptions(int argc, char* const argv[]);

#endif
