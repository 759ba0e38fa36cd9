#include "world.h"

#include <algorithm>
#include <cmath>

namespace wsa
{

namespace
{
constexpr int kNoiseTable = 4096;
constexpr int kAveraged = 8; // detector samples averaged per bin
} // namespace

World::World(const Band& band, std::uint64_t seed, std::vector<TruthEmitter> emitters,
             WorldOptions options)
    : m_band(&band), m_options(options), m_truth(std::move(emitters)), m_seed(seed),
      m_rng(splitmixHash(seed ^ 0xf100d))
{
    setEmitters(std::move(m_truth));
    const int n = bins();
    m_ripple.resize(std::size_t(n));
    const double p1 = hashUniform(seed, 1) * 6.28;
    const double p2 = hashUniform(seed, 2) * 6.28;
    for (int i = 0; i < n; ++i)
        m_ripple[std::size_t(i)] = float(0.8 * std::sin(i * 0.05 + p1) + 0.5 * std::sin(i * 0.013 + p2));
    // An averaging power detector: the mean of a few exponential samples, in dB, so the spread
    // has the long upper tail real noise has.
    m_noiseDb.resize(kNoiseTable);
    for (float& v : m_noiseDb) {
        double sum = 0;
        for (int k = 0; k < kAveraged; ++k)
            sum += m_rng.exponential();
        v = float(10 * std::log10(sum / kAveraged));
    }
}

void World::setEmitters(std::vector<TruthEmitter> emitters)
{
    m_truth = std::move(emitters);
    m_models.clear();
    for (const TruthEmitter& t : m_truth)
        m_models.emplace_back(t);
}

void World::sweep(double t, float* out)
{
    const int n = bins();
    const SourceGrid& g = m_band->grid;
    const double binMHz = g.stepHz / 1e6;
    const double dwell = m_options.sweepSeconds / n;
    // The floor drifts by a dB or two over minutes, as a receiver warms up and the room changes.
    const double drift = 1.0 * std::sin(2 * 3.14159265 * t / 400 + hashUniform(m_seed, 3) * 6.28);
    for (int i = 0; i < n; ++i) {
        const double t0 = t + i * dwell;
        const double f = g.binHz(i) / 1e6;
        double mw = std::pow(10.0, (m_options.floorDbm + m_ripple[std::size_t(i)] + drift) / 10);
        for (std::size_t e = 0; e < m_models.size(); ++e) {
            const double rel = m_models[e].power(t0, t0 + dwell, f, binMHz);
            if (rel > 0)
                mw += rel * std::pow(10.0, m_truth[e].levelDbm / 10);
        }
        const float spread = m_noiseDb[m_rng.next() % kNoiseTable];
        out[i] = float(10 * std::log10(mw)) + spread;
    }
}

} // namespace wsa
