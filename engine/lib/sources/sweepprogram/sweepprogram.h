// Any program that writes the sweep CSV layout to its standard output, read live; HackRF's
// hackrf_sweep is one preset. The text layout is used rather than a binary one: it is the
// documented one, the same parser then replays saved output and our own recordings, and at a
// few thousand bins per sweep parsing costs little (bench_engine).
#ifndef ENGINE_SWEEPPROGRAM_H
#define ENGINE_SWEEPPROGRAM_H

#include <memory>
#include <string>
#include <vector>

#include "options.h"
#include "source.h"

struct SweepCommand {
    std::vector<std::string> argv; // argv[0] is looked up on PATH
    double offsetDb;               // added to the program's levels to give dBm
    std::string installHint;       // what to do when the program is missing
};

std::unique_ptr<Source> makeSweepProgramSource(const SweepCommand& command, const wsa::Band& band);

// The HackRF preset: hackrf_sweep -f LOW:HIGH -w BIN over the band, in whole MHz.
const std::vector<Variable>& hackRfVariables();
std::unique_ptr<Source> makeHackRfSource(const Settings& settings, const wsa::Band& band);
SweepCommand hackRfCommand(const Settings& settings, const wsa::Band& band);

#endif
