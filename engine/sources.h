// The sources of sweeps. Each runs until the analyzer goes or the source ends, and returns the
// engine's exit status. They send their own Configured or fault record and hand every sweep to
// the output stage.
#ifndef ENGINE_SOURCES_H
#define ENGINE_SOURCES_H

#include "options.h"

class Output;

int runSim(int fd, const Options& options, Output& output);
int runHackRf(int fd, const Options& options, Output& output);
int runReplay(int fd, const Options& options, Output& output);

// Sends the Configured record of a source that measures on the analyzer's grid.
bool sendConfigured(int fd, const Grid& grid);

// Reports on stderr why there is no probe and sends the No-probe record; the exit status.
int noProbe(Output& output, const char* why, const char* detail = nullptr);

#endif
