// A simulated radio scene as a sweeping receiver sees it: a noise floor near -95 dBm with its
// per-bin spread, ripple and slow drift, and any number of emitters whose ground truth is kept.
// Deterministic for a seed.
#ifndef EMITTERS_WORLD_H
#define EMITTERS_WORLD_H

#include <cstdint>
#include <vector>

#include "bandplan.h"
#include "models.h"
#include "splitmix.h"
#include "truth.h"

namespace wsa
{

struct WorldOptions {
    double sweepSeconds = 0.05; // one sweep of the whole band; bin i is seen for sweepSeconds / bins
    double floorDbm = -95;
};

class World
{
public:
    World(const Band& band, std::uint64_t seed, std::vector<TruthEmitter> emitters,
          WorldOptions options = {});

    int bins() const { return m_band->grid.shown; }
    const Band& band() const { return *m_band; }
    const WorldOptions& options() const { return m_options; }
    const std::vector<TruthEmitter>& truth() const { return m_truth; }

    // Another cast on the same receiver: its floor, ripple and noise go on undisturbed.
    void setEmitters(std::vector<TruthEmitter> emitters);

    // One sweep starting at t seconds: out[0 .. bins() - 1] in dBm.
    void sweep(double t, float* out);

private:
    const Band* m_band;
    WorldOptions m_options;
    std::vector<TruthEmitter> m_truth;
    std::vector<EmitterModel> m_models;
    std::vector<float> m_ripple;    // dB, fixed per bin: the receiver's frequency response
    std::vector<float> m_noiseDb;   // a table of the averaged detector's spread, dB
    std::uint64_t m_seed;
    SplitMix m_rng;
};

} // namespace wsa

#endif
