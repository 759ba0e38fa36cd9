// The simulated probe: a deterministic synthetic radio scene, one sweep at a time.
#ifndef ENGINE_SCENE_H
#define ENGINE_SCENE_H

#include <cstdint>

#include "halbrin_sa.h"

enum class Band { Ghz24, Ghz5 };

// Sweep geometry as announced in the Configured record. Bin i lies at
// startMHz + i * stepKHz / 1000; endMHz is the last bin's frequency rounded to whole MHz.
//
// 2.4 GHz: 423 bins of 213 kHz from 2400 MHz; the last lands at 2489.886 MHz, announced as 2490.
// 5 GHz: 1024 bins of 747 kHz from 5160 MHz. The analyzer shows the first 904 (452 pairs), which
// end at 5834.541 MHz, i.e. its 5160..5835 MHz view; the last raw bin lies at 5924.181 MHz,
// announced as 5924. 747 kHz is 675 MHz / 903 intervals rounded down to whole kHz.
struct BandLayout {
    int startMHz;
    int endMHz;
    int stepKHz;
    int samples;
};

BandLayout bandLayout(Band band);

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

// One sweep fills levels[0 .. layout().samples - 1] in whole dBm. The sources are summed as
// power (mW), so overlapping carriers behave as they would at the antenna.
class Scene
{
public:
    Scene(Band band, std::uint64_t seed);

    const BandLayout& layout() const { return m_layout; }
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

    BandLayout m_layout;
    Band m_band;
    Rng m_rng;
    long m_sweep = 0;
    double m_milliwatts[SA_MAX_SAMPLES];
};

#endif
