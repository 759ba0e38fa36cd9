#include "emitterscene.h"

#include <algorithm>

#include "scenario.h"

namespace
{

// However slowly sweeps are asked for, one still crosses the band this fast: a bin is seen for a
// dwell of this over the bin count, which is what makes bursts and hoppers look as they do.
constexpr double kCrossingS = 0.05;

wsa::WorldOptions worldOptions(double periodS)
{
    wsa::WorldOptions options;
    options.sweepSeconds = std::min(kCrossingS, periodS);
    return options;
}

} // namespace

EmitterScene::EmitterScene(const wsa::Band& band, std::uint64_t seed, double sweepsPerSecond)
    : m_band(band), m_seed(seed), m_periodS(sweepsPerSecond > 0 ? 1 / sweepsPerSecond : 1),
      m_world(band, seed, wsa::liveScenario(band, seed, 0, kStretchS), worldOptions(m_periodS)),
      m_sweep(std::size_t(band.grid.shown)), m_jitter(wsa::splitmixHash(seed ^ 0xc10c))
{
}

void EmitterScene::nextSweep(double* levels, int samples)
{
    // A receiver's retuning makes its sweep clock a little irregular.
    const double t = double(m_sweeps++) * m_periodS + m_jitter.uniform(0, 1e-3);
    const long stretch = long(t / kStretchS);
    if (stretch != m_stretch) {
        m_stretch = stretch;
        m_world.setEmitters(wsa::liveScenario(m_band, m_seed, stretch, kStretchS));
    }
    m_world.sweep(t, m_sweep.data());
    const int shown = std::min(samples, m_band.grid.shown);
    for (int i = 0; i < shown; ++i)
        levels[i] = double(m_sweep[std::size_t(i)]);
    std::fill(levels + shown, levels + samples, double(m_band.grid.floorDbm));
}
