// Command line and environment of the engine.
#ifndef ENGINE_OPTIONS_H
#define ENGINE_OPTIONS_H

#include <cstdint>
#include <string>

#include "output.h"
#include "scene.h"

enum class Source { Sim, HackRf, Replay, Unknown };

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

    Source source = Source::Sim;
    std::string sourceName; // as given, for the message about an unknown one
    Detector detector = Detector::Peak;
    double outputRate = 8.0; // records per second at most
    bool offsetSet = false;
    double offsetDb = 0;   // added to measured levels when offsetSet
    std::string recordDir; // empty: no recording
    std::string replayFile;
    double replaySpeed = 1.0;
    std::string hackrfSweep = "hackrf_sweep";
    long hackrfBinHz = 250000;
};

// Reads argv and the WSA_* variables. Anything it cannot use is reported on stderr and left
// at its default, so a mistyped setting never stops the engine.
Options parseOptions(int argc, char* const argv[]);

#endif
