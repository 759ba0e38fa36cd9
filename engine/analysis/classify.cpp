#include "classify.h"

#include <algorithm>
#include <cmath>

namespace wsa
{

namespace
{
constexpr double kPi = 3.14159265358979323846;
constexpr double kMinOccupancy = 0.03; // a bin belongs to a stationary emitter above this
constexpr double kMinLit = 1.5;        // ... and when lit at least this often in the window
constexpr double kContinuous = 0.9;
constexpr double kValleyDb = 6;
// At most this much is a young emitter's occupancy raised for its short time on the air: a
// couple of stray bursts in a fresh region must not read as a busy emitter.
constexpr double kYoungScaleMax = 2;
// A hop's burst lands where nothing else was lit for seconds: another lit sweep of its bin, decayed,
// weighs at least this (lit within about 3.5 s). Counted in sweeps, not as a share, so one burst
// is judged alike at every sweep rate.
constexpr double kOtherLit = 0.17;

double clamp01(double v) { return std::min(1.0, std::max(0.0, v)); }
} // namespace

Classifier::Classifier(const Band& band)
    : m_band(&band), m_stepMHz(band.grid.stepHz / 1e6)
{
    m_regions.reserve(256);
    m_scratch.reserve(std::size_t(band.grid.shown));
    m_blipCentres.reserve(8192);
    m_blipWidths.reserve(8192);
    m_cells.resize(std::size_t((band.grid.endHz - band.grid.startHz) / 1e6) + 2);
}

double Classifier::mhzOf(double bin) const
{
    return (m_band->grid.startHz / 1e6) + bin * m_stepMHz;
}

void Classifier::findRegions(const Activity& a)
{
    m_regions.clear();
    const int n = a.bins();
    // Averaged over a few neighbours, so a bursty emitter seen for a second already forms one
    // region rather than fragments.
    auto member = [&](int i) {
        double lit = 0, seen = 0;
        for (int k = std::max(0, i - 2); k <= std::min(n - 1, i + 2); ++k) {
            lit += a.litCount(k);
            seen += a.seen(k);
        }
        const int count = std::min(n - 1, i + 2) - std::max(0, i - 2) + 1;
        return (lit / count >= kMinLit && lit / seen >= kMinOccupancy) ||
               (a.litCount(i) >= kMinLit && a.occupancy(i) >= kMinOccupancy);
    };
    int i = 0;
    while (i < n && m_regions.size() < m_regions.capacity()) {
        if (!member(i)) {
            ++i;
            continue;
        }
        int hi = i;
        while (hi + 1 < n && (member(hi + 1) || (hi + 2 < n && member(hi + 2))))
            ++hi;
        addSplit(a, i, hi, 0);
        i = hi + 1;
    }
}

// Two emitters side by side form one run of active bins, joined by their skirts; a valley in
// the level they show when on, between two stronger parts, separates them.
void Classifier::addSplit(const Activity& a, int lo, int hi, int depth)
{
    auto level = [&](int i) {
        double sum = 0;
        int count = 0;
        for (int k = std::max(lo, i - 1); k <= std::min(hi, i + 1); ++k, ++count)
            sum += a.litExcess(k);
        return sum / count;
    };
    int valley = -1;
    double deepest = 0;
    double leftMax = -1e9;
    for (int v = lo; v <= hi && depth < 8; ++v) {
        const double p = level(v);
        leftMax = std::max(leftMax, p);
        if (v == lo || v == hi || leftMax - p < kValleyDb)
            continue;
        double rightMax = -1e9;
        for (int k = v + 1; k <= hi; ++k)
            rightMax = std::max(rightMax, level(k));
        const double d = std::min(leftMax, rightMax) - p;
        if (d >= kValleyDb && d > deepest) {
            deepest = d;
            valley = v;
        }
    }
    if (valley >= 0) {
        addSplit(a, lo, valley - 1, depth + 1);
        addSplit(a, valley + 1, hi, depth + 1);
        return;
    }
    if (m_regions.size() < m_regions.capacity()) {
        Region r{};
        r.lo = lo;
        r.hi = hi;
        m_regions.push_back(r);
    }
}

void Classifier::describe(Region& r, const Activity& a, double nowS, double dwellS, int sweepsInWindow)
{
    m_scratch.clear();
    double occMax = 0;
    for (int i = r.lo; i <= r.hi; ++i) {
        if (a.litCount(i) > 0.5)
            m_scratch.push_back(float(a.litExcess(i)));
        occMax = std::max(occMax, a.occupancy(i));
    }
    if (m_scratch.empty())
        m_scratch.push_back(0);
    auto nth = m_scratch.begin() + std::ptrdiff_t(m_scratch.size() * 8 / 10);
    std::nth_element(m_scratch.begin(), nth, m_scratch.end());
    r.plateau = *nth;
    auto inCore = [&](int i) { return a.litExcess(i) >= r.plateau - 10 && a.occupancy(i) >= 0.2 * occMax; };
    r.coreLo = r.lo;
    while (r.coreLo < r.hi && !inCore(r.coreLo))
        ++r.coreLo;
    r.coreHi = r.hi;
    while (r.coreHi > r.coreLo && !inCore(r.coreHi))
        --r.coreHi;

    const int len = r.coreHi - r.coreLo + 1;
    const double mid = (r.coreLo + r.coreHi) / 2.0;
    double occ = 0, cond = 0, condMax = -1e9, lit = 0, peak = -999;
    double occMid = 0, occEdge = 0, condMid = 0, condShoulder = 0;
    int nMid = 0, nEdge = 0, nCentre = 0, nShoulder = 0;
    for (int i = r.coreLo; i <= r.coreHi; ++i) {
        const double c = a.litExcess(i);
        const double o = a.occupancy(i);
        occ += o;
        cond += c;
        condMax = std::max(condMax, c);
        lit += a.litCount(i);
        peak = std::max(peak, double(a.recentMax(i)));
        const double rel = len > 1 ? std::fabs(i - mid) / len : 0; // 0 centre .. 0.5 edge
        if (rel <= 0.25) {
            occMid += o;
            ++nMid;
        } else if (rel >= 0.35) {
            occEdge += o;
            ++nEdge;
        }
        if (rel <= 0.1) {
            condMid += c;
            ++nCentre;
        } else if (rel >= 0.3 && rel <= 0.45) {
            condShoulder += c;
            ++nShoulder;
        }
    }
    r.occupancy = occ / len;
    r.flatness = condMax - cond / len;
    r.edgeRatio = nMid && nEdge && occMid > 0 ? (occEdge / nEdge) / (occMid / nMid) : 1;
    r.shoulderDb = nCentre && nShoulder ? condMid / nCentre - condShoulder / nShoulder : 0;
    r.litPerBin = lit / len;
    r.peakOccupancy = 0;
    for (int i = r.coreLo; i <= r.coreHi; ++i)
        r.peakOccupancy = std::max(r.peakOccupancy, a.occupancy(i));
    r.peakDbm = peak;
    measureRuns(r, a, nowS, dwellS, sweepsInWindow);
}

void Classifier::measureRuns(Region& r, const Activity& a, double nowS, double dwellS, int sweepsInWindow)
{
    // Whole-core sweeps are counted over the part well above the threshold, so a continuous
    // emitter's weak skirts, lit now and then, do not make it look bursty.
    double occMax = 0;
    for (int i = r.coreLo; i <= r.coreHi; ++i)
        occMax = std::max(occMax, a.occupancy(i));
    int strongLo = r.coreLo, strongHi = r.coreHi;
    while (strongLo < strongHi && a.occupancy(strongLo) < 0.8 * occMax)
        ++strongLo;
    while (strongHi > strongLo && a.occupancy(strongHi) < 0.8 * occMax)
        --strongHi;
    const int strongLen = strongHi - strongLo + 1;
    const double sweepS = dwellS * a.bins();
    long lastFull = -1;
    int full = 0, runs = 0, recent = 0;
    double runBins = 0, firstS = nowS;
    double bornS = 1e300; // first lit in the longer look-back: when the emitter came on
    a.forEachSegment(nowS - kHopperWindowS, [&](const Segment& s) {
        const int lo = std::max(s.lo, r.coreLo);
        const int hi = std::min(s.hi, r.coreHi);
        if (hi < lo)
            return;
        if (hi > lo) // a lone lit bin is as likely the noise's tail
            bornS = std::min(bornS, s.timeS);
        if (s.timeS < nowS - kWindowS)
            return;
        if (s.timeS >= nowS - kRecentS)
            ++recent;
        firstS = std::min(firstS, s.timeS);
        const int strong = std::min(s.hi, strongHi) - std::max(s.lo, strongLo) + 1;
        if (strong >= 0.85 * strongLen && s.sweep != lastFull) {
            ++full;
            lastFull = s.sweep;
        }
        if (hi - lo >= 1) {
            ++runs;
            runBins += hi - lo + 1;
        }
    });
    // Out of the sweeps since the emitter was first seen in the window, so one that has just
    // come on is judged on its own time.
    const double sweeps = std::min(double(sweepsInWindow), std::round((nowS - firstS) / sweepS) + 1);
    r.continuity = sweeps > 0 ? std::min(1.0, full / sweeps) : 0;
    r.runMs = runs ? runBins / runs * dwellS * 1e3 : 0;
    r.recentRuns = recent;
    // The history weighs the seconds before an emitter came on as dark ones; an emitter younger
    // than the look-back is judged on its own time, as the full-window figure would show it.
    r.windowOccupancy = r.occupancy;
    if (bornS <= nowS && bornS > nowS - kHopperWindowS + 0.5) {
        const double age = nowS - bornS + sweepS;
        const int mid = (r.coreLo + r.coreHi) / 2;
        const double filled = std::min(1.0, a.seen(mid) / a.settledCount());
        const double scale = std::min(kYoungScaleMax, filled / (1 - std::exp(-age / kWindowS)));
        r.occupancy = std::min(1.0, r.occupancy * scale);
        r.peakOccupancy = std::min(1.0, r.peakOccupancy * scale);
    }
    // Only a wide emitter at 2.4 GHz could be an oven.
    r.mainsLock = 0;
    r.runStarts = 0;
    if (m_band->id == BandId::Ghz24 && (r.coreHi - r.coreLo + 1) * m_stepMHz >= 10)
        measureMainsLock(r, a, nowS, dwellS);
}

void Classifier::measureMainsLock(Region& r, const Activity& a, double nowS, double dwellS)
{
    long lastStart = -1;
    int starts = 0;
    double inTime[2][2] = {}, inPlace[2][2] = {}, atStart[2][2] = {};
    a.forEachSegment(nowS - kHopperWindowS, [&](const Segment& s) {
        // A run that starts inside the core started in time, not at the emitter's edge. One
        // per sweep: the runs of one sweep lie within milliseconds of each other.
        if (s.lo <= r.coreLo + 1 || s.lo > r.coreHi || s.hi - s.lo < 2 || s.sweep == lastStart)
            return;
        lastStart = s.sweep;
        const double t = s.timeS + s.lo * dwellS;
        const double inSweep = s.lo * dwellS;
        for (int m = 0; m < 2; ++m) {
            const double w = 2 * kPi * (m ? 60 : 50);
            inTime[m][0] += std::cos(w * t);
            inTime[m][1] += std::sin(w * t);
            inPlace[m][0] += std::cos(w * inSweep);
            inPlace[m][1] += std::sin(w * inSweep);
            atStart[m][0] += std::cos(w * s.timeS);
            atStart[m][1] += std::sin(w * s.timeS);
        }
        ++starts;
    });
    r.runStarts = starts;
    // Starts in step with the mains in absolute time, but not merely because they fall at the
    // same place of every sweep. The more sweeps start in step with the mains themselves (a
    // commensurate sweep rate), the more the two phases are one, and the less place may explain.
    r.mainsLock = 0;
    r.mainsHz = 50;
    for (int m = 0; m < 2 && starts > 0; ++m) {
        const double lock = std::hypot(inTime[m][0], inTime[m][1]) / starts;
        const double place = std::hypot(inPlace[m][0], inPlace[m][1]) / starts;
        const double commensurate = std::hypot(atStart[m][0], atStart[m][1]) / starts;
        const double score = lock - std::max(0.0, place - 0.5 + 0.3 * commensurate);
        if (score > r.mainsLock) {
            r.mainsLock = score;
            r.mainsHz = m ? 60 : 50;
        }
    }
}

bool Classifier::fitWifi(const Region& r, Detection& d) const
{
    const double lo = mhzOf(r.coreLo - 0.5);
    const double hi = mhzOf(r.coreHi + 0.5);
    const double tol = std::max(2.5, 2 * m_stepMHz);
    double best = tol;
    const Channel* fit = nullptr;
    for (std::size_t k = 0; k < m_band->widthsMHz.size(); ++k) {
        if (m_band->widthsMHz[k] > 160)
            continue;
        for (const Channel& c : m_band->plans[k]) {
            const double err = std::max(std::fabs(lo - c.lowMHz()), std::fabs(hi - c.highMHz()));
            if (err < best) {
                best = err;
                fit = &c;
            }
        }
    }
    if (!fit)
        return false;
    d.kind = EmitterKind::WifiOfdm;
    d.centerMHz = fit->centerMHz;
    d.widthMHz = fit->widthMHz;
    d.channel = fit->number;
    d.add("edge_error_mhz", best);
    d.confidence = 1 - 0.5 * best / tol;
    return true;
}

bool Classifier::classify(const Region& r, Detection& d) const
{
    // History fades over seconds; an emitter that has gone quiet is not described by its echo.
    if (r.litPerBin < 1.5 || r.recentRuns == 0)
        return false;
    const double width = (r.coreHi - r.coreLo + 1) * m_stepMHz;
    d = Detection{};
    d.centerMHz = mhzOf((r.coreLo + r.coreHi) / 2.0);
    d.widthMHz = width;
    d.duty = r.occupancy;
    d.peakDbm = r.peakDbm;
    d.add("width_mhz", width);
    d.add("occupancy", r.occupancy);
    d.add("continuity", r.continuity);
    d.add("flatness_db", r.flatness);
    d.add("level_db", r.plateau);
    double match;
    if (width <= std::max(0.6, 2.5 * m_stepMHz) && r.peakOccupancy >= 0.85) {
        d.kind = EmitterKind::Narrowband;
        match = 0.9;
    } else if (r.continuity >= kContinuous) {
        match = nameSteady(r, d);
    } else if (width <= 6) {
        match = nameNarrow(r, d);
    } else {
        match = nameWide(r, d);
    }
    if (match < 0)
        return false;
    d.confidence = clamp01((1 - std::exp(-r.litPerBin / 3)) * match);
    return true;
}

// Names a region lit whole in nearly every sweep; returns how well it fits.
double Classifier::nameSteady(const Region& r, Detection& d) const
{
    const double width = d.widthMHz;
    if (width <= 6) {
        d.kind = EmitterKind::WirelessAudio;
        return 0.7;
    }
    if (width >= 8 && width <= 28 && (r.flatness >= 4.5 || r.shoulderDb >= 1.5 || m_band->id == BandId::Ghz24)) {
        // Analog video: a bell with the carrier on top, where a fixed link is flat. Fixed links
        // are not expected at 2.4 GHz, where weak video shows only its flat-looking top.
        d.kind = EmitterKind::AvTransmitter;
        d.add("shoulder_db", r.shoulderDb);
        return clamp01(0.6 + std::max(r.flatness - 4.5, r.shoulderDb - 1.5) / 5);
    }
    d.kind = EmitterKind::FixedWireless;
    return 0.7;
}

// Names a narrow bursty region; negative when it is better not named at all.
double Classifier::nameNarrow(const Region& r, Detection& d) const
{
    // A hopper's visits pile up on a few bins now and then; a strong neighbour's skirt lights
    // bins beside it.
    if ((r.windowOccupancy < 0.15 && m_hopperSeen) || r.shadowed)
        return -1;
    if (r.occupancy >= 0.7) {
        d.kind = EmitterKind::WirelessAudio;
        return 0.7;
    }
    const double width = d.widthMHz;
    const double centre = d.centerMHz;
    const double zigbee = std::round((centre - 2405) / 5) * 5 + 2405;
    if (m_band->id == BandId::Ghz24 && width >= 1.0 && width <= 4.5 && r.occupancy >= 0.1 &&
        std::fabs(centre - zigbee) <= 0.8 && zigbee >= 2405 && zigbee <= 2480) {
        d.kind = EmitterKind::Zigbee;
        d.channel = 11 + int(std::lround((zigbee - 2405) / 5));
        d.centerMHz = zigbee;
        return 0.9 - std::fabs(centre - zigbee) / 2;
    }
    if (r.coreHi - r.coreLo >= 2 && width >= 1.0 && r.litPerBin >= 4 && r.occupancy >= 0.2) {
        d.kind = EmitterKind::Unknown;
        return 0.3;
    }
    return -1; // a few bins lit now and then: the noise's own tail
}

// Names a wide bursty region; negative when it is better not named at all.
double Classifier::nameWide(const Region& r, Detection& d) const
{
    const double width = d.widthMHz;
    const bool g24 = m_band->id == BandId::Ghz24;
    if (width >= 8 && width <= 28 && r.occupancy >= 0.8 && r.flatness >= 4.5) {
        // Continuous but for dips of its picture content or a skirt now and then.
        d.kind = EmitterKind::AvTransmitter;
        return 0.6;
    }
    if (g24 && width >= 10 && r.mainsLock >= 0.35 && r.runStarts >= 24) {
        d.kind = EmitterKind::MicrowaveOven;
        d.add("mains_lock", r.mainsLock);
        d.add("mains_hz", r.mainsHz);
        return clamp01(r.mainsLock + 0.1);
    }
    // DSSS uses the 20 MHz plan's centres but channel 14's (a Japanese-only special case).
    double dsss = 0;
    for (const Channel& c : m_band->channels(20)) {
        if (c.number <= 13 && std::fabs(d.centerMHz - c.centerMHz) < std::fabs(d.centerMHz - dsss))
            dsss = c.centerMHz;
    }
    const bool dsssPlace = g24 && std::fabs(d.centerMHz - dsss) <= 1.5 && width >= 6 && width <= 26;
    Detection w = d;
    const bool wifi = fitWifi(r, w);
    if (!(wifi && r.edgeRatio >= 0.6) && g24 && width >= 8 && width <= 28 && r.plateau < 12 &&
        r.occupancy >= 0.3 && r.shoulderDb < 2.5) {
        // Lit about as often as its level clears the threshold: a steady signal barely above
        // the noise, at 2.4 GHz the top of an analog video bell.
        d.kind = EmitterKind::AvTransmitter;
        d.add("shoulder_db", r.shoulderDb);
        return 0.4;
    }
    if (dsssPlace && (r.shoulderDb >= 2.5 || !wifi)) {
        d.kind = EmitterKind::WifiDsss;
        d.centerMHz = dsss;
        d.widthMHz = 22;
        d.add("shoulder_db", r.shoulderDb);
        d.add("mains_lock", r.mainsLock);
        return clamp01(0.5 + r.shoulderDb / 10);
    }
    if (wifi && r.edgeRatio >= 0.6) {
        d = w;
        d.add("edge_ratio", r.edgeRatio);
        return w.confidence * clamp01(r.edgeRatio);
    }
    if (r.occupancy >= 0.1 && r.litPerBin >= 3) {
        d.kind = EmitterKind::Unknown;
        d.add("run_ms", r.runMs);
        d.add("mains_lock", r.mainsLock);
        return 0.3;
    }
    return -1; // skirts of a strong neighbour, lit now and then
}

void Classifier::findHoppers(const Activity& a, double nowS, int sweepsInWindow, std::vector<Detection>& out)
{
    m_blipCentres.clear();
    m_blipWidths.clear();
    // The hoppers named here share the 2.4 GHz band; elsewhere scattered short bursts are the
    // short frames of wide channels.
    if (m_band->id != BandId::Ghz24)
        return;
    std::fill(m_cells.begin(), m_cells.end(), 0);
    const int maxWidth = std::max(2, int(2.5 / m_stepMHz));
    const int maxLen = std::max(3, int(4.0 / m_stepMHz));
    double peak = -999;
    a.forEachSegment(nowS - kHopperWindowS, [&](const Segment& s) {
        if (s.width6 > maxWidth || s.hi - s.lo + 1 > maxLen || s.peakExcess < 9)
            return;
        // A burst where something steady was on is that emitter's own (a short frame, its skirt),
        // also once it has stopped and the history of its bins has faded.
        if (a.litCount(s.peak) - 1 >= kOtherLit || s.busyBefore >= kMinOccupancy ||
            m_blipCentres.size() == m_blipCentres.capacity())
            return;
        const double f = mhzOf(s.peak);
        m_blipCentres.push_back(f);
        m_blipWidths.push_back(s.width6);
        ++m_cells[std::size_t(std::min(int(m_cells.size()) - 1, int((f - mhzOf(0)))))];
        peak = std::max(peak, double(a.recentMax(s.peak)));
    });
    const int n = int(m_blipCentres.size());
    if (n < 4)
        return;
    int distinct = 0, most = 0;
    for (int c : m_cells) {
        distinct += c > 0;
        most = std::max(most, c);
    }
    std::sort(m_blipCentres.begin(), m_blipCentres.end());
    const double p10 = m_blipCentres[std::size_t(n / 10)];
    const double p90 = m_blipCentres[std::size_t(n - 1 - n / 10)];
    if (distinct < 4 || p90 - p10 < 25 || most > 0.35 * n)
        return;
    auto mid = m_blipWidths.begin() + n / 2;
    std::nth_element(m_blipWidths.begin(), mid, m_blipWidths.end());
    const double widthMHz = *mid * m_stepMHz;
    Detection d;
    d.kind = widthMHz <= 1.0 ? EmitterKind::Bluetooth : EmitterKind::CordlessPhone;
    d.centerMHz = (m_blipCentres.front() + m_blipCentres.back()) / 2;
    d.widthMHz = m_blipCentres.back() - m_blipCentres.front() + 1;
    // An averaging receiver meets a hopper about duty * (1 + crossing time / (span * dwell))
    // times a sweep; with the sweep crossing the span in a few dwells, blips per sweep / 2.
    d.duty = clamp01(double(n) / std::max(1, sweepsInWindow) / 2);
    d.peakDbm = peak;
    d.confidence = clamp01((1 - std::exp(-n / 12.0)) * (0.6 + 0.4 * clamp01((p90 - p10) / 60)));
    d.add("bursts", n);
    d.add("burst_width_mhz", widthMHz);
    d.add("hop_span_mhz", p90 - p10);
    d.add("frequencies", distinct);
    out.push_back(d);
}

void Classifier::run(const Activity& activity, double nowS, double dwellS, int sweepsInWindow,
                     std::vector<Detection>& out)
{
    out.clear();
    findRegions(activity);
    for (Region& r : m_regions)
        describe(r, activity, nowS, dwellS, sweepsInWindow);
    for (std::size_t k = 0; k < m_regions.size(); ++k) {
        Region& r = m_regions[k];
        r.shadowed = false;
        for (std::size_t j = k > 0 ? k - 1 : 0; j <= k + 1 && j < m_regions.size(); ++j) {
            const Region& o = m_regions[j];
            const int gap = j < k ? r.lo - o.hi : o.lo - r.hi;
            if (j != k && gap <= 3 && o.plateau >= r.plateau + 3)
                r.shadowed = true;
        }
        Detection d;
        if (classify(r, d))
            out.push_back(d);
    }
    const std::size_t before = out.size();
    findHoppers(activity, nowS, sweepsInWindow, out);
    m_hopperSeen = out.size() > before;
}

} // namespace wsa
