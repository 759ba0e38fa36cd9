// Replay of a recording in the sweep CSV layout, ours or saved sweep program output, at the
// pace of its time stamps, resampled onto the band asked for.
#ifndef ENGINE_REPLAY_REPLAYSOURCE_H
#define ENGINE_REPLAY_REPLAYSOURCE_H

#include <memory>
#include <vector>

#include "options.h"
#include "source.h"

const std::vector<Variable>& replayVariables();
std::unique_ptr<Source> makeReplaySource(const Settings& settings, const wsa::Band& band);

#endif
