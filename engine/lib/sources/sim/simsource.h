// The simulated probe: a seeded radio scene, and knobs that play every fault a real probe and
// link can show.
#ifndef ENGINE_SIM_SIMSOURCE_H
#define ENGINE_SIM_SIMSOURCE_H

#include <memory>
#include <vector>

#include "options.h"
#include "source.h"

const std::vector<Variable>& simVariables();
std::unique_ptr<Source> makeSimSource(const Settings& settings, const wsa::Band& band);

#endif
