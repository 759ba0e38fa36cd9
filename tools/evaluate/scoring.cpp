#include "scoring.h"

#include <algorithm>
#include <cmath>

namespace wsa
{

namespace
{

bool isHopper(EmitterKind k)
{
    return k == EmitterKind::Bluetooth || k == EmitterKind::CordlessPhone;
}

// The kinds the targets hold for.
const EmitterKind kTargetKinds[] = {EmitterKind::WifiOfdm, EmitterKind::Bluetooth, EmitterKind::MicrowaveOven,
                                    EmitterKind::AvTransmitter, EmitterKind::Zigbee};

double percentile(std::vector<double> v, double p)
{
    if (v.empty())
        return 0;
    std::sort(v.begin(), v.end());
    return v[std::size_t(std::min<double>(double(v.size() - 1), std::floor(p * double(v.size()))))];
}

} // namespace

bool overlaps(const TruthEmitter& t, const EmitterReport& r)
{
    // Reports lag the air by the analysis window and end a hold time after the last sighting.
    if (r.lastS < t.startS - 1 || r.firstS > t.stopS + 1)
        return false;
    if (isHopper(t.kind) && isHopper(r.kind))
        return true;
    const double lo = std::max(t.lowMHz(), r.centerMHz - r.widthMHz / 2);
    const double hi = std::min(t.highMHz(), r.centerMHz + r.widthMHz / 2);
    return hi > lo || std::fabs(t.centerMHz - r.centerMHz) <= std::max(1.5, t.widthMHz / 2);
}

bool namesCorrectly(const TruthEmitter& t, const EmitterReport& r)
{
    if (t.kind != r.kind || !overlaps(t, r))
        return false;
    if (t.kind == EmitterKind::WifiOfdm)
        return r.channel == t.channel && std::lround(r.widthMHz) == std::lround(t.widthMHz);
    if (t.kind == EmitterKind::Zigbee)
        return r.channel == t.channel;
    return true;
}

void Score::add(const Band&, const std::vector<TruthEmitter>& truth, const std::vector<EmitterReport>& reports,
                const std::vector<ChannelReport>& channels, double durationS, bool clean)
{
    std::vector<int> firstCorrect(truth.size(), -1);
    for (std::size_t k = 0; k < reports.size(); ++k) {
        const EmitterReport& r = reports[k];
        int named = -1;
        bool near = false;
        for (std::size_t e = 0; e < truth.size(); ++e) {
            near = near || overlaps(truth[e], r);
            if (named < 0 && namesCorrectly(truth[e], r))
                named = int(e);
        }
        if (named >= 0 && firstCorrect[std::size_t(named)] >= 0) {
            ++m_duplicates; // the same emitter reported twice: neither right nor wrong again
            continue;
        }
        KindScore& ks = m_kinds[int(r.kind)];
        ++ks.reports;
        if (named >= 0) {
            ++ks.correct;
            firstCorrect[std::size_t(named)] = int(k);
        } else if (!near) {
            ++m_confusion[kNone][int(r.kind)];
            if (clean)
                ++m_false;
        }
    }
    for (std::size_t e = 0; e < truth.size(); ++e) {
        const TruthEmitter& t = truth[e];
        KindScore& ks = m_kinds[int(t.kind)];
        ++ks.truths;
        int column = kMissed;
        if (firstCorrect[e] >= 0) {
            ++ks.found;
            column = int(t.kind);
            double first = 1e300;
            for (const EmitterReport& r : reports) {
                if (namesCorrectly(t, r))
                    first = std::min(first, r.reportedS);
            }
            ks.delays.push_back(std::max(0.0, first - t.startS));
        } else {
            for (const EmitterReport& r : reports) {
                if (overlaps(t, r)) {
                    column = int(r.kind);
                    break;
                }
            }
        }
        ++m_confusion[int(t.kind)][column];
    }
    if (clean)
        m_cleanSeconds += durationS;
    scoreOccupancy(truth, channels, durationS);
}

void Score::scoreOccupancy(const std::vector<TruthEmitter>& truth, const std::vector<ChannelReport>& channels,
                           double durationS)
{
    // Only where the sweep can tell one emitter's airtime: channels under a single Wi-Fi
    // emitter and nothing else, or under nothing at all; a hopper anywhere muddles every channel.
    if (std::any_of(truth.begin(), truth.end(), [](const TruthEmitter& t) { return isHopper(t.kind); }))
        return;
    for (const ChannelReport& c : channels) {
        const TruthEmitter* under = nullptr;
        int touching = 0;
        for (const TruthEmitter& t : truth) {
            if (t.lowMHz() < c.channel.highMHz() && c.channel.lowMHz() < t.highMHz()) {
                ++touching;
                under = &t;
            }
        }
        double airtime = 0;
        if (touching == 1) {
            if (under->kind != EmitterKind::WifiOfdm || c.channel.lowMHz() < under->lowMHz() - 0.5 ||
                c.channel.highMHz() > under->highMHz() + 0.5)
                continue;
            airtime = under->duty * (std::min(under->stopS, durationS) - under->startS) / durationS;
        } else if (touching > 1) {
            continue;
        }
        m_occupancyErrors.push_back(c.occupancy - airtime);
    }
}

bool Score::report(std::FILE* out) const
{
    std::fprintf(out, "Confusion (rows: simulated, columns: reported)\n%-15s", "");
    for (int c = 0; c <= kEmitterKindCount; ++c)
        std::fprintf(out, " %6.6s", c == kMissed ? "missed" : kindName(EmitterKind(c)));
    std::fprintf(out, "\n");
    for (int r = 0; r <= kEmitterKindCount; ++r) {
        int total = 0;
        for (int c = 0; c <= kEmitterKindCount; ++c)
            total += m_confusion[r][c];
        if (!total)
            continue;
        std::fprintf(out, "%-15s", r == kNone ? "(nothing)" : kindName(EmitterKind(r)));
        for (int c = 0; c <= kEmitterKindCount; ++c)
            std::fprintf(out, " %6d", m_confusion[r][c]);
        std::fprintf(out, "\n");
    }
    std::fprintf(out, "\n%-15s %6s %7s %7s %9s %8s %8s %8s\n", "kind", "truth", "recall", "reports",
                 "precision", "delay50", "delay90", "<=2s");
    for (int k = 0; k < kEmitterKindCount; ++k) {
        const KindScore& s = m_kinds[k];
        if (!s.truths && !s.reports)
            continue;
        const double within = s.delays.empty() ? 1
                              : double(std::count_if(s.delays.begin(), s.delays.end(), [](double d) { return d <= 2; })) /
                                    double(s.delays.size());
        std::fprintf(out, "%-15s %6d %6.1f%% %7d %8.1f%% %7.2fs %7.2fs %7.0f%%\n", kindName(EmitterKind(k)), s.truths,
                     100 * s.recall(), s.reports, 100 * s.precision(), percentile(s.delays, 0.5),
                     percentile(s.delays, 0.9), 100 * within);
    }
    std::vector<double> absErr;
    for (double e : m_occupancyErrors)
        absErr.push_back(std::fabs(e));
    const double within = absErr.empty() ? 1
                          : double(std::count_if(absErr.begin(), absErr.end(), [](double e) { return e <= 0.1; })) /
                                double(absErr.size());
    std::fprintf(out, "\nOccupancy: %zu channels, error median %.3f, 90%% %.3f, max %.3f, within 0.1: %.1f%%\n",
                 absErr.size(), percentile(absErr, 0.5), percentile(absErr, 0.9), percentile(absErr, 1.0), 100 * within);
    std::fprintf(out, "False emitters: %d in %.1f min of clean recording = %.2f per 10 min; duplicates %d\n\n", m_false,
                 m_cleanSeconds / 60, falsePerTenMinutes(), m_duplicates);

    bool ok = true;
    for (EmitterKind k : kTargetKinds) {
        const KindScore& s = m_kinds[int(k)];
        if (s.recall() < 0.95 || s.precision() < 0.95) {
            std::fprintf(out, "target missed: %s precision %.1f%% recall %.1f%% (95%% each)\n", kindName(k),
                         100 * s.precision(), 100 * s.recall());
            ok = false;
        }
        if (percentile(s.delays, 0.9) > 2) {
            std::fprintf(out, "target missed: %s reported %.2f s after its start (90%%; 2 s)\n", kindName(k),
                         percentile(s.delays, 0.9));
            ok = false;
        }
    }
    if (falsePerTenMinutes() > 1) {
        std::fprintf(out, "target missed: %.2f false emitters per 10 min of clean recording (1)\n", falsePerTenMinutes());
        ok = false;
    }
    if (within < 0.95) {
        std::fprintf(out, "target missed: occupancy within 0.1 for %.1f%% of channels (95%%)\n", 100 * within);
        ok = false;
    }
    if (ok)
        std::fprintf(out, "all targets met\n");
    return ok;
}

bool Score::aboveFloors(std::FILE* out) const
{
    bool ok = true;
    for (EmitterKind k : kTargetKinds) {
        const KindScore& s = m_kinds[int(k)];
        if (s.recall() < 0.85 || s.precision() < 0.95 || percentile(s.delays, 0.5) > 1.5) {
            std::fprintf(out, "below the floor: %s precision %.1f%% (95%%) recall %.1f%% (85%%) delay %.2f s (1.5 s)\n",
                         kindName(k), 100 * s.precision(), 100 * s.recall(), percentile(s.delays, 0.5));
            ok = false;
        }
    }
    if (falsePerTenMinutes() > 1) {
        std::fprintf(out, "below the floor: %.2f false emitters per 10 min (1)\n", falsePerTenMinutes());
        ok = false;
    }
    std::vector<double> absErr;
    for (double e : m_occupancyErrors)
        absErr.push_back(std::fabs(e));
    if (percentile(absErr, 0.9) > 0.1) {
        std::fprintf(out, "below the floor: occupancy error %.3f for 90%% of channels (0.1)\n", percentile(absErr, 0.9));
        ok = false;
    }
    return ok;
}

} // namespace wsa
