#include "scene.h"

#include <algorithm>
#include <cmath>
#include <iterator>

// A carrier's power spectrum relative to its flat top (dB) at a distance from its centre (MHz),
// piecewise linear between the points; nothing beyond the last point.
struct Shape {
    struct Point {
        double offsetMHz;
        double relDb;
    };
    Point points[4];
    int count;

    double reachMHz() const { return points[count - 1].offsetMHz; }
    double relDb(double offsetMHz) const
    {
        if (offsetMHz <= points[0].offsetMHz)
            return points[0].relDb;
        for (int k = 1; k < count; ++k) {
            const Point& a = points[k - 1];
            const Point& b = points[k];
            if (offsetMHz <= b.offsetMHz)
                return a.relDb + (b.relDb - a.relDb) * (offsetMHz - a.offsetMHz) /
                                     (b.offsetMHz - a.offsetMHz);
        }
        return -200.0;
    }
};

namespace
{

// OFDM: flat across the occupied subcarriers, steep edges, then the transmitter's shoulders
// a little better than the regulatory mask.
constexpr Shape kWifi20{{{9, 0}, {11, -24}, {20, -38}, {30, -55}}, 4};
constexpr Shape kWifi40{{{19, 0}, {21, -24}, {40, -38}, {60, -55}}, 4};
constexpr Shape kBluetooth{{{0.4, 0}, {1.0, -20}, {2.0, -38}}, 3};
// A magnetron's broad hump, some 40 MHz wide at 20 dB down.
constexpr Shape kOven{{{3, 0}, {10, -8}, {20, -22}, {30, -45}}, 4};
// Sensor networks: 2 MHz O-QPSK channels at 2.4 GHz, 1 MHz channels in the 5.8 GHz ISM band.
constexpr Shape kSensor24{{{0.7, 0}, {1.5, -18}, {3.0, -35}}, 3};
constexpr Shape kSensor5{{{0.3, 0}, {0.8, -18}, {2.0, -35}}, 3};

struct WifiChannel {
    double centreMHz;
    int widthMHz;
    double levelDbm; // flat top when transmitting
    double duty;     // chance that a sweep catches a burst
};

// A nearby access point on the first channel of each band, busier and weaker ones further off.
constexpr WifiChannel kWifi24[] = {
    {2412, 20, -36, 0.45}, // channel 1
    {2437, 20, -47, 0.25}, // channel 6
    {2462, 20, -58, 0.20}, // channel 11
    {2442, 40, -66, 0.10}, // channels 5+9
    {2472, 20, -74, 0.08}, // channel 13
};
// Access points at 5 GHz are further off or behind walls in a survey: their levels stay inside
// the analyzer's -100..-50 dBm range for the band.
constexpr WifiChannel kWifi5[] = {
    {5180, 20, -56, 0.50}, // channel 36
    {5230, 40, -63, 0.35}, // channels 44+48
    {5300, 20, -74, 0.20}, // channel 60
    {5500, 20, -68, 0.25}, // channel 100
    {5570, 40, -80, 0.15}, // channels 112+116
    {5660, 20, -86, 0.10}, // channel 132
    {5745, 20, -59, 0.40}, // channel 149
    {5795, 40, -66, 0.30}, // channels 157+161
    {5825, 20, -83, 0.12}, // channel 165
};

constexpr double kSensors24[] = {2425, 2450, 2475, 2480}; // 802.15.4 channels 15, 20, 25, 26
constexpr double kSensors5[] = {5728, 5733};

constexpr double kNoiseFloorDbm = -95;
constexpr int kProbeMinDbm = -110; // the probe's measuring range
constexpr int kProbeMaxDbm = -20;

// The oven runs in the last 20 s of every minute at the default 8 sweeps per second, so a
// recording starts calm. Its magnetron fires on one half of each mains cycle only, so a sweep
// crossing it sees stripes of about 10 ms.
constexpr int kOvenPeriodSweeps = 480;
constexpr int kOvenStartSweep = 320;
constexpr int kOvenStripeBins = 34;

double toMilliwatts(double dbm)
{
    return std::pow(10.0, dbm / 10.0);
}

} // namespace

BandLayout bandLayout(Band band)
{
    const bool high = band == Band::Ghz5;
    const int start = high ? 5160 : 2400;
    const int step = high ? 747 : 213;
    const int samples = high ? 1024 : 423;
    const long lastKHz = start * 1000L + long(samples - 1) * step;
    return {start, int((lastKHz + 500) / 1000), step, samples};
}

std::uint64_t Rng::next()
{
    std::uint64_t z = (m_state += 0x9E3779B97F4A7C15ULL);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
    return z ^ (z >> 31);
}

double Rng::gauss()
{
    // Irwin-Hall with four terms: mean 2, variance 1/3.
    const double sum = uniform() + uniform() + uniform() + uniform();
    return (sum - 2.0) * 1.7320508075688772;
}

Scene::Scene(Band band, std::uint64_t seed) : m_layout(bandLayout(band)), m_band(band), m_rng(seed)
{
    std::fill(std::begin(m_milliwatts), std::end(m_milliwatts), 0.0);
}

void Scene::nextSweep(int* levels)
{
    addNoiseFloor();
    addWifi();
    if (m_band == Band::Ghz24) {
        addBluetooth();
        addOven();
    }
    addSensors();
    for (int i = 0; i < m_layout.samples; ++i) {
        const long dbm = std::lround(10.0 * std::log10(m_milliwatts[i]));
        levels[i] = int(std::clamp<long>(dbm, kProbeMinDbm, kProbeMaxDbm));
    }
    ++m_sweep;
}

void Scene::addNoiseFloor()
{
    for (int i = 0; i < m_layout.samples; ++i)
        m_milliwatts[i] = toMilliwatts(kNoiseFloorDbm + m_rng.gauss());
}

void Scene::addWifi()
{
    const bool high = m_band == Band::Ghz5;
    const WifiChannel* begin = high ? std::begin(kWifi5) : std::begin(kWifi24);
    const WifiChannel* end = high ? std::end(kWifi5) : std::end(kWifi24);
    for (const WifiChannel* ch = begin; ch != end; ++ch) {
        if (m_rng.uniform() >= ch->duty)
            continue;
        int from = 0;
        int to = m_layout.samples - 1;
        // The burst started or ended while the sweep was crossing the channel.
        if (m_rng.uniform() < 0.35) {
            const double half = ch->widthMHz / 2.0;
            const int lo = binAtOrAbove(ch->centreMHz - half);
            const int hi = binAtOrBelow(ch->centreMHz + half);
            const int cut = lo + m_rng.below(std::max(1, hi - lo + 1));
            if (m_rng.uniform() < 0.5)
                to = cut;
            else
                from = cut;
        }
        const Shape& shape = ch->widthMHz == 40 ? kWifi40 : kWifi20;
        addCarrier(shape, ch->centreMHz, ch->levelDbm + 2.0 * m_rng.gauss(), 0.8, from, to);
    }
}

void Scene::addBluetooth()
{
    // 1600 hops per second over 79 channels of 1 MHz: a sweep catches a handful.
    const int hops = 1 + m_rng.below(6);
    for (int h = 0; h < hops; ++h) {
        const double centre = 2402 + m_rng.below(79);
        addCarrier(kBluetooth, centre, -52 + 4.0 * m_rng.gauss(), 0.5);
    }
}

void Scene::addOven()
{
    const int pos = int(m_sweep % kOvenPeriodSweeps) - kOvenStartSweep;
    if (pos < 0)
        return;
    // The frequency wanders with the load: a triangle between 2451 and 2459 MHz.
    const double drift = std::fabs((pos % 40) / 20.0 - 1.0);
    const double centre = 2451 + 8.0 * drift;
    const double level = -44 + 1.5 * m_rng.gauss();
    const int phase = m_rng.below(2 * kOvenStripeBins);
    for (int first = -phase; first < m_layout.samples; first += 2 * kOvenStripeBins)
        addCarrier(kOven, centre, level, 3.0, std::max(0, first), first + kOvenStripeBins - 1);
}

void Scene::addSensors()
{
    const bool high = m_band == Band::Ghz5;
    const double* begin = high ? std::begin(kSensors5) : std::begin(kSensors24);
    const double* end = high ? std::end(kSensors5) : std::end(kSensors24);
    const Shape& shape = high ? kSensor5 : kSensor24;
    const double level = high ? -78 : -70;
    for (const double* centre = begin; centre != end; ++centre) {
        if (m_rng.uniform() < 0.2)
            addCarrier(shape, *centre, level + 3.0 * m_rng.gauss(), 0.5);
    }
}

void Scene::addCarrier(const Shape& shape, double centreMHz, double levelDbm, double jitterDb,
                       int from, int to)
{
    const int lo = std::max(from, binAtOrAbove(centreMHz - shape.reachMHz()));
    const int hi = std::min(to, binAtOrBelow(centreMHz + shape.reachMHz()));
    for (int i = lo; i <= hi; ++i) {
        const double rel = shape.relDb(std::fabs(binMHz(i) - centreMHz));
        const double jitter = jitterDb > 0 ? jitterDb * m_rng.gauss() : 0.0;
        m_milliwatts[i] += toMilliwatts(levelDbm + rel + jitter);
    }
}

int Scene::binAtOrAbove(double mhz) const
{
    const double bin = std::ceil((mhz - m_layout.startMHz) * 1000.0 / m_layout.stepKHz);
    return int(std::clamp(bin, 0.0, double(m_layout.samples)));
}

int Scene::binAtOrBelow(double mhz) const
{
    const double bin = std::floor((mhz - m_layout.startMHz) * 1000.0 / m_layout.stepKHz);
    return int(std::clamp(bin, -1.0, double(m_layout.samples - 1)));
}

double Scene::binMHz(int bin) const
{
    return m_layout.startMHz + bin * m_layout.stepKHz / 1000.0;
}
