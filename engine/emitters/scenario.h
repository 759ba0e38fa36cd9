// Random but plausible scenes for scoring the analysis: which kinds a band carries, and one to a
// few emitters placed where they do not cover each other (a hopper may overlay the rest).
#ifndef EMITTERS_SCENARIO_H
#define EMITTERS_SCENARIO_H

#include <cstdint>
#include <vector>

#include "bandplan.h"
#include "splitmix.h"
#include "truth.h"

namespace wsa
{

struct ScenarioOptions {
    double durationS = 60;
    int minEmitters = 1;
    int maxEmitters = 4;
    double floorDbm = -95;
    double minExcessDb = 10; // peak level above the floor
    double maxExcessDb = 40;
    std::vector<EmitterKind> kinds; // empty: every kind the band carries
};

// The kinds that occur in a band.
std::vector<EmitterKind> kindsInBand(const Band& band);

// One emitter of `kind` with plausible parameters, active within [0, options.durationS].
TruthEmitter makeEmitter(const Band& band, EmitterKind kind, SplitMix& rng,
                         const ScenarioOptions& options);

// A scene of options.minEmitters to options.maxEmitters emitters, deterministic for the seed.
std::vector<TruthEmitter> randomScenario(const Band& band, std::uint64_t seed,
                                         const ScenarioOptions& options);

// An endless scene for the simulated probe, one stretch of segmentS seconds at a time: a few
// emitters that stay throughout (Wi-Fi where the band has it), and visitors of every kind the
// band carries that come and go within the stretch. Times are seconds from the scene's start;
// deterministic for the seed and the stretch's number.
std::vector<TruthEmitter> liveScenario(const Band& band, std::uint64_t seed, long stretch,
                                       double segmentS = 60);

} // namespace wsa

#endif
