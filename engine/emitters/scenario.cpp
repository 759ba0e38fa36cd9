#include "scenario.h"

#include <algorithm>

namespace wsa
{

namespace
{

bool isHopper(EmitterKind k)
{
    return k == EmitterKind::Bluetooth || k == EmitterKind::CordlessPhone;
}

template <typename T> T pick(SplitMix& rng, const std::vector<T>& from)
{
    return from[std::size_t(rng.below(int(from.size())))];
}

void placeWifi(const Band& band, TruthEmitter& e, SplitMix& rng)
{
    std::vector<int> widths;
    for (int w : band.widthsMHz) {
        if (w <= 160)
            widths.push_back(w);
    }
    const int width = pick(rng, widths);
    std::vector<Channel> fits;
    for (const Channel& c : band.channels(width)) {
        if (c.lowMHz() * 1e6 >= band.grid.lowEdgeHz() && c.highMHz() * 1e6 <= band.grid.highEdgeHz())
            fits.push_back(c);
    }
    const Channel c = pick(rng, fits);
    e.channel = c.number;
    e.centerMHz = c.centerMHz;
    e.widthMHz = width;
}

void placeTimes(TruthEmitter& e, SplitMix& rng, double duration)
{
    e.startS = rng.uniform() < 0.5 ? 0 : rng.uniform(0, 0.4 * duration);
    e.stopS = rng.uniform() < 0.5 ? duration : rng.uniform(e.startS + 0.3 * duration, duration);
}

double pickCentre(SplitMix& rng, double lo, double hi, double step)
{
    const int steps = int((hi - lo) / step);
    return lo + step * rng.below(steps + 1);
}

} // namespace

std::vector<EmitterKind> kindsInBand(const Band& band)
{
    using K = EmitterKind;
    switch (band.id) {
    case BandId::Ghz24:
        return {K::WifiOfdm,      K::WifiDsss,      K::Bluetooth,     K::Zigbee,    K::MicrowaveOven,
                K::AvTransmitter, K::CordlessPhone, K::WirelessAudio, K::Narrowband};
    case BandId::Ghz5:
        return {K::WifiOfdm, K::AvTransmitter, K::WirelessAudio, K::FixedWireless, K::Narrowband};
    default:
        return {K::WifiOfdm, K::Narrowband};
    }
}

TruthEmitter makeEmitter(const Band& band, EmitterKind kind, SplitMix& rng,
                         const ScenarioOptions& options)
{
    TruthEmitter e;
    e.kind = kind;
    e.seed = rng.next();
    e.levelDbm = options.floorDbm + rng.uniform(options.minExcessDb, options.maxExcessDb);
    placeTimes(e, rng, options.durationS);
    const bool g24 = band.id == BandId::Ghz24;
    const double bandLo = band.grid.lowEdgeHz() / 1e6;
    const double bandHi = band.grid.highEdgeHz() / 1e6;
    switch (kind) {
    case EmitterKind::WifiOfdm:
        placeWifi(band, e, rng);
        e.duty = rng.uniform(0.1, 0.85);
        e.slotS = rng.uniform(0.3e-3, 2.5e-3);
        break;
    case EmitterKind::WifiDsss:
        e.centerMHz = band.channels(20)[std::size_t(rng.below(13))].centerMHz; // channels 1-13
        e.widthMHz = 22;
        e.duty = rng.uniform(0.1, 0.7);
        e.slotS = rng.uniform(0.4e-3, 1.5e-3);
        break;
    case EmitterKind::Bluetooth:
        e.centerMHz = 2441;
        e.widthMHz = 79;
        e.duty = rng.uniform(0.15, 0.8);
        e.slotS = 625e-6;
        break;
    case EmitterKind::CordlessPhone:
        e.centerMHz = 2401.5 + 1.728 * 22;
        e.widthMHz = 1.728 * 45;
        e.duty = rng.uniform(0.35, 0.5);
        e.slotS = 10e-3;
        break;
    case EmitterKind::Zigbee:
        e.channel = 11 + rng.below(16);
        e.centerMHz = 2405 + 5 * (e.channel - 11);
        e.widthMHz = 2;
        e.duty = rng.uniform(0.15, 0.5);
        e.slotS = rng.uniform(1e-3, 4e-3);
        break;
    case EmitterKind::MicrowaveOven:
        e.centerMHz = rng.uniform(2445, 2465);
        e.widthMHz = rng.uniform(15, 30);
        e.duty = 0.5;
        e.mainsHz = rng.uniform() < 0.5 ? 50 : 60;
        break;
    case EmitterKind::AvTransmitter:
        e.centerMHz = g24 ? pick(rng, std::vector<double>{2414, 2432, 2450, 2468})
                          : pickCentre(rng, 5740, 5820, 5);
        e.widthMHz = 18;
        break;
    case EmitterKind::WirelessAudio:
        e.widthMHz = rng.uniform(2, 4);
        e.centerMHz = g24 ? rng.uniform(2404, 2478) : rng.uniform(5730, 5830);
        e.duty = rng.uniform(0.9, 0.98);
        e.slotS = rng.uniform(1e-3, 2e-3);
        break;
    case EmitterKind::FixedWireless:
        e.widthMHz = pick(rng, std::vector<double>{10, 20, 40});
        e.centerMHz = rng.uniform() < 0.5 ? pickCentre(rng, 5740, 5815 - e.widthMHz / 2, 5)
                                          : pickCentre(rng, 5260, 5320, 5);
        break;
    default: // narrowband and anything without a model of its own
        e.kind = EmitterKind::Narrowband;
        e.centerMHz = rng.uniform(bandLo + 2, bandHi - 2);
        e.widthMHz = 0.05;
        break;
    }
    return e;
}

namespace
{

// Adds emitters until `out` holds `count`, keeping them apart as randomScenario does.
void addApart(const Band& band, SplitMix& rng, const std::vector<EmitterKind>& kinds, std::size_t count,
              const ScenarioOptions& options, std::vector<TruthEmitter>& out)
{
    bool hopper = std::any_of(out.begin(), out.end(), [](const TruthEmitter& o) { return isHopper(o.kind); });
    for (int attempt = 0; attempt < 200 && out.size() < count; ++attempt) {
        const EmitterKind kind = pick(rng, kinds);
        if (isHopper(kind) && hopper)
            continue;
        TruthEmitter e = makeEmitter(band, kind, rng, options);
        // Keep emitters apart (with a guard), so each can be scored on its own.
        const bool clash = !isHopper(kind) && std::any_of(out.begin(), out.end(), [&](const TruthEmitter& o) {
            return !isHopper(o.kind) && e.lowMHz() - 3 < o.highMHz() && o.lowMHz() - 3 < e.highMHz();
        });
        if (clash)
            continue;
        hopper = hopper || isHopper(kind);
        out.push_back(e);
    }
}

} // namespace

std::vector<TruthEmitter> randomScenario(const Band& band, std::uint64_t seed,
                                         const ScenarioOptions& options)
{
    SplitMix rng(splitmixHash(seed));
    const std::vector<EmitterKind> kinds = options.kinds.empty() ? kindsInBand(band) : options.kinds;
    const int count = options.minEmitters +
                      rng.below(options.maxEmitters - options.minEmitters + 1);
    std::vector<TruthEmitter> out;
    addApart(band, rng, kinds, std::size_t(count), options, out);
    return out;
}

std::vector<TruthEmitter> liveScenario(const Band& band, std::uint64_t seed, long stretch, double segmentS)
{
    constexpr double kForever = 1e12;
    ScenarioOptions options;
    options.durationS = segmentS;
    options.minExcessDb = 15; // plain to see on a display
    SplitMix residentRng(splitmixHash(seed ^ 0x5e7711e));
    std::vector<TruthEmitter> out;
    addApart(band, residentRng, {EmitterKind::WifiOfdm}, 2, options, out);
    for (TruthEmitter& e : out) {
        e.startS = 0;
        e.stopS = kForever;
    }
    const std::size_t residents = out.size();
    SplitMix rng(splitmixHash(seed ^ splitmixHash(std::uint64_t(stretch) + 1)));
    addApart(band, rng, kindsInBand(band), residents + 2 + std::size_t(rng.below(3)), options, out);
    for (std::size_t k = residents; k < out.size(); ++k) {
        out[k].startS += double(stretch) * segmentS;
        out[k].stopS += double(stretch) * segmentS;
    }
    return out;
}

} // namespace wsa
