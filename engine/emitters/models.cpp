#include "models.h"

#include <algorithm>
#include <cmath>

#include "splitmix.h"

namespace wsa
{

namespace
{

constexpr double kPi = 3.14159265358979323846;

double fromDb(double db) { return std::pow(10.0, db / 10); }

// Falls linearly in dB from `fromDb` at a0 to `toDb` at a1.
double ramp(double a, double a0, double a1, double db0, double db1)
{
    return fromDb(db0 + (db1 - db0) * (a - a0) / (a1 - a0));
}

double gauss(double offsetMHz, double sigmaMHz)
{
    const double x = offsetMHz / sigmaMHz;
    return std::max(std::exp(-x * x / 2), 1e-5);
}

// Small per-burst level changes, as fading and rate adaptation give.
double fade(std::uint64_t seed, std::int64_t slot)
{
    return fromDb((hashUniform(seed ^ 0x5eed, std::uint64_t(slot)) - 0.5) * 3);
}

bool slotOn(std::uint64_t seed, std::int64_t slot, double duty)
{
    return hashUniform(seed, std::uint64_t(slot)) < duty;
}

} // namespace

double ofdmShape(double offsetMHz, double widthMHz)
{
    const double a = std::fabs(offsetMHz);
    const double half = widthMHz / 2;
    if (a <= half - 0.6)
        return 1;
    if (a <= half + 0.5)
        return ramp(a, half - 0.6, half + 0.5, 0, -22);
    if (a <= widthMHz)
        return ramp(a, half + 0.5, widthMHz, -22, -30);
    if (a <= 1.5 * widthMHz)
        return ramp(a, widthMHz, 1.5 * widthMHz, -30, -42);
    return fromDb(-50);
}

double dsssShape(double offsetMHz)
{
    // Barker-spread 11 Mchip/s: a sinc-squared main lobe, the side lobes filtered away.
    const double a = std::fabs(offsetMHz);
    if (a < 11) {
        const double x = kPi * a / 11;
        const double s = a < 1e-9 ? 1 : std::sin(x) / x;
        return std::max(s * s, fromDb(-30));
    }
    return a < 22 ? ramp(a, 11, 22, -30, -50) : fromDb(-50);
}

EmitterModel::EmitterModel(const TruthEmitter& truth) : m_t(truth) {}

double EmitterModel::shape(double d, double binMHz) const
{
    const double a = std::fabs(d);
    switch (m_t.kind) {
    case EmitterKind::WifiOfdm:
    case EmitterKind::FixedWireless:
        return ofdmShape(d, m_t.widthMHz);
    case EmitterKind::WifiDsss:
        return dsssShape(d);
    case EmitterKind::Zigbee: {
        // O-QPSK with half-sine chips at 2 Mchip/s: a main lobe of +-1.5 MHz.
        if (a < 1.5) {
            const double c = std::cos(kPi * a / 3);
            return std::max(c * c, fromDb(-25));
        }
        return a < 4 ? fromDb(-25 - (a - 1.5) * 6) : fromDb(-45);
    }
    case EmitterKind::AvTransmitter: {
        // FM video: a bell some 18 MHz wide, the carrier line and the sound subcarrier.
        const double line = std::max(0.3, binMHz / 2);
        double p = 0.45 * gauss(d, 4.2);
        if (std::fabs(d + 1) < line)
            p += 0.55;
        if (std::fabs(d - 6.5) < line)
            p += 0.12;
        return p;
    }
    case EmitterKind::WirelessAudio: {
        const double half = m_t.widthMHz / 2;
        if (a <= half - 0.3)
            return 1;
        return a <= half + 0.4 ? ramp(a, half - 0.3, half + 0.4, 0, -25) : fromDb(-45);
    }
    case EmitterKind::Narrowband:
        if (a <= binMHz / 2)
            return 1;
        return a <= binMHz ? fromDb(-15) : 0;
    default:
        return 0;
    }
}

double EmitterModel::slotted(double t0, double t1, double f, double binMHz) const
{
    const double s = shape(f - m_t.centerMHz, binMHz);
    if (s <= 0)
        return 0;
    const double slot = m_t.slotS;
    double sum = 0;
    const auto first = std::int64_t(std::floor(t0 / slot));
    for (std::int64_t k = first; k < first + 64 && k * slot < t1; ++k) {
        if (!slotOn(m_t.seed, k, m_t.duty))
            continue;
        const double overlap = std::min(t1, (k + 1) * slot) - std::max(t0, k * slot);
        if (overlap > 0)
            sum += overlap * fade(m_t.seed, k);
    }
    return s * sum / (t1 - t0);
}

double EmitterModel::hopping(double t0, double t1, double f) const
{
    const bool bluetooth = m_t.kind == EmitterKind::Bluetooth;
    const double dwell = m_t.slotS;
    double sum = 0;
    const auto first = std::int64_t(std::floor(t0 / dwell));
    for (std::int64_t k = first; k < first + 64 && k * dwell < t1; ++k) {
        // Bluetooth transmits in a slot or not at all; a cordless phone's base and handset share
        // each hop's frame, on the air for its first `duty` part.
        double on0 = k * dwell;
        double on1 = (k + 1) * dwell;
        if (bluetooth) {
            if (!slotOn(m_t.seed, k, m_t.duty))
                continue;
        } else {
            on1 = on0 + m_t.duty * dwell;
        }
        const double overlap = std::min(t1, on1) - std::max(t0, on0);
        if (overlap <= 0)
            continue;
        const std::uint64_t hop = splitmixHash(m_t.seed * 31 + std::uint64_t(k));
        const double fc = bluetooth ? 2402.0 + double(hop % 79) : 2401.5 + 1.728 * double(hop % 45);
        const double s = bluetooth ? gauss(f - fc, 0.2) : gauss(f - fc, 0.4);
        sum += overlap * s * fade(m_t.seed, k);
    }
    return sum / (t1 - t0);
}

double EmitterModel::oven(double t0, double t1, double f) const
{
    // The magnetron runs on one half-wave of the mains; its frequency wanders with the load and
    // moves within each half-cycle as the anode voltage rises and falls.
    const double period = 1.0 / m_t.mainsHz;
    const double phase = hashUniform(m_t.seed, 7) * period;
    auto onUpTo = [&](double t) {
        const double u = (t + phase) / period;
        const double whole = std::floor(u);
        return whole * period / 2 + std::min((u - whole) * period, period / 2);
    };
    const double onTime = onUpTo(t1) - onUpTo(t0);
    if (onTime <= 0)
        return 0;
    const double mid = (t0 + t1) / 2;
    const double inCycle = std::fmod(mid + phase, period) / (period / 2); // 0..1 while on
    const double drift = 4 * std::sin(2 * kPi * mid / 37 + hashUniform(m_t.seed, 9) * 6.28);
    const double centre = m_t.centerMHz + drift + (std::min(inCycle, 1.0) - 0.5) * 6;
    const double half = m_t.widthMHz / 2;
    const double a = std::fabs(f - centre);
    double s;
    if (a <= half)
        s = fromDb(-6 * (a / half) * (a / half));
    else
        s = a < half + 6 ? ramp(a, half, half + 6, -6, -35) : fromDb(-45);
    return s * onTime / (t1 - t0);
}

double EmitterModel::continuous(double t0, double, double f, double binMHz) const
{
    double s = shape(f - m_t.centerMHz, binMHz);
    if (m_t.kind == EmitterKind::AvTransmitter) // picture content moves the level frame by frame
        s *= fade(m_t.seed, std::int64_t(std::floor(t0 / 0.04))) * 0.5 + 0.5;
    return s;
}

double EmitterModel::power(double t0, double t1, double fMHz, double binMHz) const
{
    if (t1 <= m_t.startS || t0 >= m_t.stopS || t1 <= t0)
        return 0;
    const double a = std::max(t0, m_t.startS);
    const double b = std::min(t1, m_t.stopS);
    const double active = (b - a) / (t1 - t0);
    switch (m_t.kind) {
    case EmitterKind::Bluetooth:
    case EmitterKind::CordlessPhone:
        return hopping(a, b, fMHz) * active;
    case EmitterKind::MicrowaveOven:
        return oven(a, b, fMHz) * active;
    case EmitterKind::AvTransmitter:
    case EmitterKind::FixedWireless:
    case EmitterKind::Narrowband:
        return continuous(a, b, fMHz, binMHz) * active;
    default:
        return slotted(a, b, fMHz, binMHz) * active;
    }
}

} // namespace wsa
