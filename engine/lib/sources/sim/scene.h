// The simulated probe: a deterministic synthetic radio scene, one sweep at a time.
#ifndef ENGINE_SIM_SCENE_H
#define ENGINE_SIM_SCENE_H

#include <cstdint>
#include <vector>

#include "bandplan.h"
#include "halbrin_sa.h"

// splitmix64: tiny, fast, and gives the same stream on every platform for a seed, which the
// std distributions do not promise.
class Rng
{
public:
    explicit Rng(std::uint64_t seed) : m_state(seed) {}
    std::uint64_t next();
    double uniform() { return double(next() >> 11) * 0x1.0p-53; } // [0, 1)
    int below(int n) { return int(uniform() * n); }
    double gauss(); // approximately normal, mean 0, sigma 1, bounded to +-3.5

private:
    std::uint64_t m_state;
};

struct Shape;
struct SceneRecipe;

// One sweep fills levels[0 .. layout().samples - 1] in whole dBm on the probe's own raw layout,
// the band's simAnnouncement: bin i at startMHz + i * stepKHz / 1000. The emitters are summed as
// power (mW), so overlapping carriers behave as they would at the antenna.
class Scene
{
public:
    Scene(const wsa::Band& band, std::uint64_t seed);

    const wsa::Announcement& layout() const { return m_layout; }
    void nextSweep(int* levels);

private:
    void addNoiseFloor();
    void addWifi();
    void addBluetooth();
    void addOven();
    void addSensors();
    // Adds a carrier of `shape` centred at centreMHz with its flat top at levelDbm, limited to
    // bins [from, to]; jitterDb is the per-bin spread.
    void addCarrier(const Shape& shape, double centreMHz, double levelDbm, double jitterDb,
                    int from = 0, int to = SA_MAX_SAMPLES - 1);
    int binAtOrAbove(double mhz) const;
    int binAtOrBelow(double mhz) const;
    double binMHz(int bin) const;

    wsa::Announcement m_layout;
    const SceneRecipe& m_recipe;
    std::vector<double> m_wifiCentresMHz; // of m_recipe's access points
    Rng m_rng;
    long m_sweep = 0;
    double m_milliwatts[SA_MAX_SAMPLES];
};

#endif
