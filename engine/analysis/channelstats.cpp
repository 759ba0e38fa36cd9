#include "channelstats.h"

#include <algorithm>
#include <cmath>

#include "axis.h"

namespace wsa
{

ChannelStats::ChannelStats(const Band& band)
    : m_litPrefix(std::size_t(band.grid.shown) + 1), m_mwPrefix(m_litPrefix.size())
{
    const Axis axis(band.grid);
    for (int width : band.widthsMHz) {
        for (const Channel& c : band.channels(width)) {
            // The outer MHz of each side is the roll-off of the transmitter's own spectrum.
            const double inset = 1.0e6;
            const int lo = int(std::ceil(axis.binOfHz(c.lowMHz() * 1e6 + inset)));
            const int hi = int(std::floor(axis.binOfHz(c.highMHz() * 1e6 - inset)));
            Tracked t{c, std::max(lo, 0), std::min(hi, band.grid.shown - 1)};
            if (t.lo <= t.hi)
                m_channels.push_back(t);
        }
    }
}

void ChannelStats::take(const float* dbm, const std::uint8_t* lit)
{
    const std::size_t n = m_litPrefix.size() - 1;
    for (std::size_t i = 0; i < n; ++i) {
        m_litPrefix[i + 1] = m_litPrefix[i] + lit[i];
        m_mwPrefix[i + 1] = m_mwPrefix[i] + std::exp(dbm[i] * 0.2302585f);
    }
    for (Tracked& t : m_channels) {
        const double count = t.hi - t.lo + 1;
        t.litSum += (m_litPrefix[std::size_t(t.hi) + 1] - m_litPrefix[std::size_t(t.lo)]) / count;
        t.mwSum += (m_mwPrefix[std::size_t(t.hi) + 1] - m_mwPrefix[std::size_t(t.lo)]) / count;
        for (int i = t.lo; i <= t.hi; ++i)
            t.maxDbm = std::max(t.maxDbm, dbm[i]);
    }
    ++m_sweeps;
}

std::vector<ChannelReport> ChannelStats::reports(int widthMHz) const
{
    std::vector<ChannelReport> out;
    for (const Tracked& t : m_channels) {
        if (t.channel.widthMHz != widthMHz)
            continue;
        ChannelReport r;
        r.channel = t.channel;
        if (m_sweeps > 0) {
            r.occupancy = t.litSum / double(m_sweeps);
            r.meanDbm = 10 * std::log10(std::max(t.mwSum / double(m_sweeps), 1e-30));
            r.maxDbm = t.maxDbm;
        }
        out.push_back(r);
    }
    return out;
}

} // namespace wsa
