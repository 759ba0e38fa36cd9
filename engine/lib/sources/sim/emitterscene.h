// The simulated probe playing a changing cast of emitters of every kind a band carries, as a
// sweeping receiver sees them: each bin is looked at only for its short dwell. Deterministic
// for a seed and a sweep rate.
#ifndef ENGINE_SIM_EMITTERSCENE_H
#define ENGINE_SIM_EMITTERSCENE_H

#include <cstdint>
#include <vector>

#include "bandplan.h"
#include "world.h"

class EmitterScene
{
public:
    EmitterScene(const wsa::Band& band, std::uint64_t seed, double sweepsPerSecond);

    // One sweep: levels[0 .. layout.samples - 1] in dBm, the cells past the band's shown ones at
    // the probe's bottom.
    void nextSweep(double* levels, int samples);

    // Seconds of scene time the cast stays before the next one takes over (residents remain).
    static constexpr double kStretchS = 60;

private:
    const wsa::Band& m_band;
    std::uint64_t m_seed;
    double m_periodS;
    wsa::World m_world;
    std::vector<float> m_sweep;
    wsa::SplitMix m_jitter;
    long m_sweeps = 0;
    long m_stretch = 0;
};

#endif
