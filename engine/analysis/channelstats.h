// Occupancy and levels of every Wi-Fi channel of the band plan, at every width.
#ifndef ANALYSIS_CHANNELSTATS_H
#define ANALYSIS_CHANNELSTATS_H

#include <cstdint>
#include <vector>

#include "bandplan.h"

namespace wsa
{

struct ChannelReport {
    Channel channel;
    double occupancy = 0; // fraction of time the channel carries energy clearly above the floor
    double meanDbm = 0;   // power mean over the channel and the time
    double maxDbm = 0;    // highest level of any of its bins
};

class ChannelStats
{
public:
    explicit ChannelStats(const Band& band);

    // One sweep: levels (dBm) and which bins are lit.
    void take(const float* dbm, const std::uint8_t* lit);

    // Every channel of that width, in band-plan order; empty for a width the plan lacks.
    std::vector<ChannelReport> reports(int widthMHz) const;
    long sweeps() const { return m_sweeps; }

private:
    struct Tracked {
        Channel channel;
        int lo; // bins inside the channel, its edges' roll-off left out
        int hi;
        double litSum = 0; // sum over sweeps of the lit fraction of its bins
        double mwSum = 0;  // sum over sweeps of the mean power of its bins
        float maxDbm = -999;
    };

    std::vector<Tracked> m_channels;
    std::vector<double> m_litPrefix; // per-sweep prefix sums over bins
    std::vector<double> m_mwPrefix;
    long m_sweeps = 0;
};

} // namespace wsa

#endif
