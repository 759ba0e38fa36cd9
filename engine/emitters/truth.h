// One simulated emitter: what it is, where, when and how strong, which is also what a run of the
// analysis is scored against.
#ifndef EMITTERS_TRUTH_H
#define EMITTERS_TRUTH_H

#include <cstdint>

#include "emitterkind.h"

namespace wsa
{

struct TruthEmitter {
    EmitterKind kind = EmitterKind::Unknown;
    double centerMHz = 0;
    double widthMHz = 0; // occupied width; for hoppers the span they hop over
    int channel = -1;    // Wi-Fi or ZigBee channel; -1 for kinds without one
    double startS = 0;   // on the air from startS to stopS (seconds of the recording)
    double stopS = 0;
    double duty = 1;     // fraction of its active time it transmits
    double levelDbm = -60; // level of its strongest part while it transmits
    std::uint64_t seed = 1;
    double slotS = 1e-3;   // burst length, or a hopper's dwell on one frequency
    double mainsHz = 50;   // a microwave oven's supply

    double lowMHz() const { return centerMHz - widthMHz / 2; }
    double highMHz() const { return centerMHz + widthMHz / 2; }
};

} // namespace wsa

#endif
