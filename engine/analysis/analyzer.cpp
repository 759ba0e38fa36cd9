#include "analyzer.h"

#include <algorithm>
#include <cmath>

namespace wsa
{

namespace
{
constexpr double kDefaultInterval = 0.05;
constexpr long kWarmUpSweeps = 16; // the floor settles before anything is named

bool isHopper(EmitterKind k)
{
    return k == EmitterKind::Bluetooth || k == EmitterKind::CordlessPhone;
}

double overlapShare(double lo1, double hi1, double lo2, double hi2)
{
    const double overlap = std::min(hi1, hi2) - std::max(lo1, lo2);
    const double smaller = std::max(1e-3, std::min(hi1 - lo1, hi2 - lo2));
    return overlap / smaller;
}
} // namespace

Analyzer::Analyzer(const Band& band)
    : m_band(&band), m_floor(band.grid.shown), m_activity(band.grid.shown), m_channels(band),
      m_classifier(band), m_clean(std::size_t(band.grid.shown))
{
    m_detections.reserve(300); // at most one a region (256) and the hoppers
    m_tracks.reserve(256);
    m_current.reserve(256);
    m_ended.reserve(kEndedKept);
}

void Analyzer::take(const float* dbm, int bins, double timeSeconds)
{
    if (!dbm || bins != m_band->grid.shown || !std::isfinite(timeSeconds)) {
        ++m_refused;
        return;
    }
    const float bottom = float(m_band->grid.floorDbm);
    for (int i = 0; i < bins; ++i) {
        const float v = dbm[i];
        m_clean[std::size_t(i)] = std::isfinite(v) ? std::min(50.0f, std::max(-200.0f, v)) : bottom;
    }
    if (m_sweeps == 0) {
        m_firstTime = timeSeconds;
        m_lastTime = timeSeconds;
    }
    double dt = timeSeconds - m_lastTime;
    if (m_sweeps == 0 || !(dt > 0 && dt < 10))
        dt = m_interval > 0 ? m_interval : kDefaultInterval; // a gap or a step back in time
    m_interval = m_sweeps < 2 ? dt : 0.9 * m_interval + 0.1 * dt;
    m_lastTime = std::max(m_lastTime, timeSeconds);
    const double now = m_lastTime - m_firstTime;

    m_floor.take(m_clean.data());
    m_activity.take(m_clean.data(), m_floor.data(), now, std::exp(-dt / Classifier::kWindowS));
    m_channels.take(m_clean.data(), m_activity.litMask());
    ++m_sweeps;
    // A look is due when the next sweep would be nearer its time than this one.
    if (m_sweeps >= kWarmUpSweeps && now - m_lastLook >= kLookEveryS - 0.5 * m_interval) {
        m_lastLook = now;
        look(now);
    }
}

void Analyzer::look(double now)
{
    const int inWindow = int(std::min<double>(double(m_sweeps), std::round(Classifier::kWindowS / m_interval)));
    m_classifier.run(m_activity, now, m_interval / m_band->grid.shown, inWindow, m_detections);
    for (const Detection& d : m_detections)
        merge(d, now);
    endStale(now);
    m_current.clear();
    for (const Track& t : m_tracks) {
        if (t.confirmed)
            m_current.push_back(t.report);
    }
    // One notification a look, once the snapshots are consistent.
    if (m_changed) {
        m_changed = false;
        ++m_generation;
        if (m_onChange)
            m_onChange();
    }
}

void Analyzer::merge(const Detection& d, double now)
{
    const bool hopper = isHopper(d.kind);
    auto matches = [&](const Track& t) {
        const EmitterReport& r = t.report;
        return t.hopper == hopper &&
               (hopper || overlapShare(r.centerMHz - r.widthMHz / 2, r.centerMHz + r.widthMHz / 2,
                                       d.centerMHz - d.widthMHz / 2, d.centerMHz + d.widthMHz / 2) >= 0.5);
    };
    auto first = std::find_if(m_tracks.begin(), m_tracks.end(), matches);
    // Pieces of one emitter seen before its whole shape had formed join the track of the whole.
    if (first != m_tracks.end()) {
        for (auto it = first + 1; it != m_tracks.end();) {
            if (!matches(*it)) {
                ++it;
                continue;
            }
            for (int k = 0; k < kEmitterKindCount; ++k)
                first->votes[k] += it->votes[k];
            first->report.firstS = std::min(first->report.firstS, it->report.firstS);
            first->hits = std::max(first->hits, it->hits);
            if (it->confirmed && !first->confirmed) {
                first->confirmed = true;
                first->report.id = it->report.id;
                first->report.reportedS = it->report.reportedS;
            }
            it = m_tracks.erase(it);
            changed();
        }
    }
    Track* track = first != m_tracks.end() ? &*first : nullptr;
    if (!track) {
        if (m_tracks.size() >= 256)
            return; // a bound on a pathological stream; the regions it would add are noise
        m_tracks.push_back(Track{});
        track = &m_tracks.back();
        track->hopper = hopper;
        track->report.firstS = now;
        track->report.duty = d.duty;
        track->report.confidence = d.confidence;
    }
    Track& t = *track;
    EmitterReport& r = t.report;
    const EmitterKind before = r.kind;
    t.votes[int(d.kind)] += 0.2 + d.confidence;
    const int winner = int(std::max_element(t.votes, t.votes + kEmitterKindCount) - t.votes);
    r.kind = EmitterKind(winner);
    // Place and width come from the surest look of the winning kind, so the fading echo of an
    // emitter that stopped does not rewrite them.
    if (d.kind == r.kind && (d.confidence >= 0.8 * t.best || r.kind != before)) {
        t.best = std::max(d.confidence, r.kind != before ? d.confidence : t.best);
        r.centerMHz = d.centerMHz;
        r.widthMHz = d.widthMHz;
        r.channel = d.channel;
        r.featureCount = d.featureCount;
        std::copy(d.features, d.features + d.featureCount, r.features);
    }
    if (d.kind == r.kind)
        r.confidence += 0.3 * (d.confidence - r.confidence);
    r.lastS = now;
    r.duty += 0.2 * (d.duty - r.duty);
    r.peakDbm = std::max(r.peakDbm, d.peakDbm);
    ++t.hits;
    // A hopper is named from one look, but only a sure one: the bursts a network scatters while
    // its region forms or fades make a faint, short-lived hopper.
    const bool named = t.hopper ? d.confidence >= kHopperConfidence : t.hits >= kConfirmHits;
    if (!t.confirmed && named) {
        t.confirmed = true;
        r.id = m_nextId++;
        r.reportedS = now;
        changed();
    } else if (t.confirmed && r.kind != before) {
        changed();
    }
}

void Analyzer::endStale(double now)
{
    for (auto it = m_tracks.begin(); it != m_tracks.end();) {
        if (now - it->report.lastS <= (it->hopper ? 2 * kHoldS : kHoldS)) {
            ++it;
            continue;
        }
        if (it->confirmed) {
            if (m_ended.size() >= kEndedKept)
                m_ended.erase(m_ended.begin());
            it->report.active = false;
            m_ended.push_back(it->report);
            changed();
        }
        it = m_tracks.erase(it);
    }
}

void Analyzer::finish()
{
    endStale(1e300);
    m_current.clear();
    if (m_changed) {
        m_changed = false;
        ++m_generation;
        if (m_onChange)
            m_onChange();
    }
}

void Analyzer::changed()
{
    m_changed = true;
}

} // namespace wsa
