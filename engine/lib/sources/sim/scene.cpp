#include "scene.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <vector>

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
constexpr Shape kWifi80{{{39, 0}, {41, -24}, {80, -38}, {120, -55}}, 4};
constexpr Shape kWifi160{{{79, 0}, {81, -24}, {160, -38}, {240, -55}}, 4};
constexpr Shape kBluetooth{{{0.4, 0}, {1.0, -20}, {2.0, -38}}, 3};
// A magnetron's broad hump, some 40 MHz wide at 20 dB down.
constexpr Shape kOven{{{3, 0}, {10, -8}, {20, -22}, {30, -45}}, 4};
// Sensor networks: 2 MHz O-QPSK channels at 2.4 GHz, 1 MHz channels in the 5.8 GHz ISM band.
constexpr Shape kSensor24{{{0.7, 0}, {1.5, -18}, {3.0, -35}}, 3};
constexpr Shape kSensor5{{{0.3, 0}, {0.8, -18}, {2.0, -35}}, 3};

// An access point, by the 20 MHz channels at the edges of its channel: one for a 20 MHz
// channel, the outer two of the bonded ones otherwise; it is centred between them.
struct WifiChannel {
    int first;
    int last;
    int widthMHz;
    double levelDbm; // flat top when transmitting
    double duty;     // chance that a sweep catches a burst
};

// A nearby access point on the first channel of each band, busier and weaker ones further off.
constexpr WifiChannel kWifi24[] = {
    {1, 1, 20, -36, 0.45}, {6, 6, 20, -47, 0.25},   {11, 11, 20, -58, 0.20},
    {5, 9, 40, -66, 0.10}, {13, 13, 20, -74, 0.08},
};
// Access points at 5 GHz are further off or behind walls in a survey: their levels stay inside
// the analyzer's -100..-50 dBm range for the band.
constexpr WifiChannel kWifi5[] = {
    {36, 36, 20, -56, 0.50},   {44, 48, 40, -63, 0.35},   {60, 60, 20, -74, 0.20},
    {100, 100, 20, -68, 0.25}, {112, 116, 40, -80, 0.15}, {132, 132, 20, -86, 0.10},
    {149, 149, 20, -59, 0.40}, {157, 161, 40, -66, 0.30}, {165, 165, 20, -83, 0.12},
};
// 6 GHz reaches less far through walls still: distant access points, among them the wide
// channels the band was opened for (80 MHz channel 39, 160 MHz channel 79).
constexpr WifiChannel kWifi6[] = {
    {5, 5, 20, -74, 0.30},     {33, 45, 80, -68, 0.45},   {53, 53, 20, -82, 0.15},
    {65, 93, 160, -76, 0.35},  {117, 117, 20, -86, 0.10}, {161, 165, 40, -80, 0.20},
    {197, 197, 20, -72, 0.25},
};

// Sensor networks: 802.15.4 channels 15, 20, 25, 26 at 2.4 GHz; 1 MHz channels in the 5.8 GHz
// ISM band.
constexpr double kSensors24[] = {2425, 2450, 2475, 2480};
constexpr double kSensors5[] = {5728, 5733};
// Bluetooth's 79 hop channels of 1 MHz from here.
constexpr double kBluetoothFirstMHz = 2402;
constexpr int kBluetoothChannels = 79;
// The oven's magnetron wanders between these with its load.
constexpr double kOvenLowMHz = 2451;
constexpr double kOvenDriftMHz = 8;

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

template <typename T, std::size_t N> constexpr int countOf(const T (&)[N])
{
    return int(N);
}

} // namespace

// What a band's scene holds besides its noise floor.
struct SceneRecipe {
    wsa::BandId band;
    const WifiChannel* wifi;
    int wifiCount;
    const double* sensors;
    int sensorCount;
    const Shape* sensorShape;
    double sensorLevelDbm;
    bool ism; // Bluetooth and a microwave oven share the band
};

namespace
{

constexpr SceneRecipe kScenes[] = {
    {wsa::BandId::Ghz24, kWifi24, countOf(kWifi24), kSensors24, countOf(kSensors24), &kSensor24,
     -70, true},
    {wsa::BandId::Ghz5, kWifi5, countOf(kWifi5), kSensors5, countOf(kSensors5), &kSensor5, -78,
     false},
    {wsa::BandId::Ghz6, kWifi6, countOf(kWifi6), nullptr, 0, nullptr, 0, false},
};

// A band without a scene of its own shows its noise floor only, never another band's emitters.
const SceneRecipe& sceneOf(wsa::BandId band)
{
    static constexpr SceneRecipe kQuiet{
        wsa::BandId::Ghz24, nullptr, 0, nullptr, 0, nullptr, 0, false};
    for (const SceneRecipe& recipe : kScenes)
        if (recipe.band == band)
            return recipe;
    return kQuiet;
}

const Shape& wifiShape(int widthMHz)
{
    return widthMHz >= 160  ? kWifi160
           : widthMHz >= 80 ? kWifi80
           : widthMHz >= 40 ? kWifi40
                            : kWifi20;
}

} // namespace

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

Scene::Scene(const wsa::Band& band, std::uint64_t seed)
    : m_layout(band.simAnnouncement), m_recipe(sceneOf(band.id)), m_rng(seed)
{
    std::fill(std::begin(m_milliwatts), std::end(m_milliwatts), 0.0);
    for (int k = 0; k < m_recipe.wifiCount; ++k) {
        const wsa::Channel* first = band.channel(20, m_recipe.wifi[k].first);
        const wsa::Channel* last = band.channel(20, m_recipe.wifi[k].last);
        m_wifiCentresMHz.push_back(first && last ? (first->centerMHz + last->centerMHz) / 2 : 0.0);
    }
}

void Scene::nextSweep(int* levels)
{
    addNoiseFloor();
    addWifi();
    if (m_recipe.ism) {
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
    for (int k = 0; k < m_recipe.wifiCount; ++k) {
        const WifiChannel& ch = m_recipe.wifi[k];
        const double centreMHz = m_wifiCentresMHz[std::size_t(k)];
        if (m_rng.uniform() >= ch.duty)
            continue;
        int from = 0;
        int to = m_layout.samples - 1;
        // The burst started or ended while the sweep was crossing the channel.
        if (m_rng.uniform() < 0.35) {
            const double half = ch.widthMHz / 2.0;
            const int lo = binAtOrAbove(centreMHz - half);
            const int hi = binAtOrBelow(centreMHz + half);
            const int cut = lo + m_rng.below(std::max(1, hi - lo + 1));
            if (m_rng.uniform() < 0.5)
                to = cut;
            else
                from = cut;
        }
        addCarrier(wifiShape(ch.widthMHz), centreMHz, ch.levelDbm + 2.0 * m_rng.gauss(), 0.8, from,
                   to);
    }
}

void Scene::addBluetooth()
{
    // 1600 hops per second over 79 channels of 1 MHz: a sweep catches a handful.
    const int hops = 1 + m_rng.below(6);
    for (int h = 0; h < hops; ++h) {
        const double centre = kBluetoothFirstMHz + m_rng.below(kBluetoothChannels);
        addCarrier(kBluetooth, centre, -52 + 4.0 * m_rng.gauss(), 0.5);
    }
}

void Scene::addOven()
{
    const int pos = int(m_sweep % kOvenPeriodSweeps) - kOvenStartSweep;
    if (pos < 0)
        return;
    // The frequency wanders with the load: a triangle across the drift range.
    const double drift = std::fabs((pos % 40) / 20.0 - 1.0);
    const double centre = kOvenLowMHz + kOvenDriftMHz * drift;
    const double level = -44 + 1.5 * m_rng.gauss();
    const int phase = m_rng.below(2 * kOvenStripeBins);
    for (int first = -phase; first < m_layout.samples; first += 2 * kOvenStripeBins)
        addCarrier(kOven, centre, level, 3.0, std::max(0, first), first + kOvenStripeBins - 1);
}

void Scene::addSensors()
{
    for (int k = 0; k < m_recipe.sensorCount; ++k) {
        if (m_rng.uniform() < 0.2)
            addCarrier(*m_recipe.sensorShape, m_recipe.sensors[k],
                       m_recipe.sensorLevelDbm + 3.0 * m_rng.gauss(), 0.5);
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
