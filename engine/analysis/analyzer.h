// The analysis of a sweep stream: fed every sweep at the radio's own rate, it keeps the noise
// floor, the occupancy of every Wi-Fi channel and the emitters it can name. Nothing is allocated
// per sweep once it has warmed up.
#ifndef ANALYSIS_ANALYZER_H
#define ANALYSIS_ANALYZER_H

#include <cstdint>
#include <functional>
#include <vector>

#include "activity.h"
#include "bandplan.h"
#include "channelstats.h"
#include "classify.h"
#include "noisefloor.h"

namespace wsa
{

struct EmitterReport {
    int id = 0;
    EmitterKind kind = EmitterKind::Unknown;
    double centerMHz = 0;
    double widthMHz = 0;
    int channel = -1; // set for wifi-ofdm and zigbee
    double firstS = 0; // seconds from the first sweep
    double lastS = 0;
    double reportedS = 0; // when the analysis first named it
    double duty = 0;
    double peakDbm = -999;
    double confidence = 0;
    bool active = true;
    // The features that decided the kind, from the latest look at it.
    int featureCount = 0;
    Feature features[Detection::kMaxFeatures] = {};
};

class Analyzer
{
public:
    explicit Analyzer(const Band& band);

    // One sweep: band.grid.shown levels in dBm, at timeSeconds (any origin, increasing). A sweep
    // of another length is refused and counted; non-finite levels count as the floor's bottom.
    void take(const float* dbm, int bins, double timeSeconds);
    // Ends every emitter still active, at the end of a recording.
    void finish();

    const Band& band() const { return *m_band; }
    std::vector<ChannelReport> channels(int widthMHz = 20) const { return m_channels.reports(widthMHz); }
    // Emitters seen now, and those that have ended (the newest last; at most kEndedKept).
    const std::vector<EmitterReport>& current() const { return m_current; }
    const std::vector<EmitterReport>& ended() const { return m_ended; }
    // Changes whenever an emitter appears, ends or is named differently.
    std::uint64_t generation() const { return m_generation; }
    void onChange(std::function<void()> handler) { m_onChange = std::move(handler); }

    long sweeps() const { return m_sweeps; }
    long refused() const { return m_refused; }
    double seconds() const { return m_sweeps ? m_lastTime - m_firstTime : 0; }
    double noiseFloorDbm() const { return m_floor.bandLevel(); }
    const NoiseFloor& floor() const { return m_floor; }

    static constexpr std::size_t kEndedKept = 1024;
    static constexpr double kHoldS = 3.0;  // an emitter not seen for this long has ended
    static constexpr double kLookEveryS = 0.2; // between looks at the activity, at any sweep rate
    static constexpr int kConfirmHits = 3;   // looks that must agree before an emitter is named
    static constexpr double kHopperConfidence = 0.3; // the least a look naming a hopper needs

private:
    struct Track {
        EmitterReport report;
        int hits = 0;
        bool confirmed = false;
        bool hopper = false;
        double best = 0; // confidence of the look that gave the report its place and width
        double votes[kEmitterKindCount] = {}; // the kind is the one most looks named
    };

    void look(double now);
    void merge(const Detection& d, double now);
    void endStale(double now);
    void changed();

    const Band* m_band;
    NoiseFloor m_floor;
    Activity m_activity;
    ChannelStats m_channels;
    Classifier m_classifier;
    std::vector<float> m_clean;
    std::vector<Detection> m_detections;
    std::vector<Track> m_tracks;
    std::vector<EmitterReport> m_current;
    std::vector<EmitterReport> m_ended;
    std::function<void()> m_onChange;
    std::uint64_t m_generation = 0;
    bool m_changed = false;
    long m_sweeps = 0;
    long m_refused = 0;
    double m_firstTime = 0;
    double m_lastTime = 0;
    double m_interval = 0; // seconds between sweeps, smoothed
    double m_lastLook = -1e300;
    int m_nextId = 1;
};

} // namespace wsa

#endif
