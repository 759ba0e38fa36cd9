#include "textreport.h"

#include <cstdio>

namespace wsa
{

namespace
{

template <typename... Args> std::string format(const char* fmt, Args... args)
{
    char buf[256];
    std::snprintf(buf, sizeof buf, fmt, args...);
    return buf;
}

std::string emitterLine(const EmitterReport& e)
{
    std::string s = format("%-15s %8.1f MHz %6.1f MHz wide", kindName(e.kind), e.centerMHz, e.widthMHz);
    s += e.channel >= 0 ? format("  ch %3d", e.channel) : std::string("        ");
    s += format("  %7.1f-%7.1f s  duty %3.0f %%  peak %6.1f dBm  confidence %.2f", e.firstS, e.lastS,
                100 * e.duty, e.peakDbm, e.confidence);
    for (int k = 0; k < e.featureCount; ++k)
        s += format(k ? ", %s %.2f" : "  (%s %.2f", e.features[k].name, e.features[k].value);
    return s + (e.featureCount ? ")\n" : "\n");
}

} // namespace

std::string textReport(const Analyzer& a)
{
    std::string s = format("%s band: %ld sweeps over %.1f s, noise floor %.1f dBm\n\n", a.band().name, a.sweeps(),
                           a.seconds(), a.noiseFloorDbm());
    s += "channel  centre MHz  occupancy  mean dBm  max dBm\n";
    for (const ChannelReport& c : a.channels(20))
        s += format("%7d  %10.1f  %8.1f %%  %8.1f  %7.1f\n", c.channel.number, c.channel.centerMHz,
                    100 * c.occupancy, c.meanDbm, c.maxDbm);
    const std::size_t count = a.ended().size() + a.current().size();
    s += count ? "\nemitters:\n" : "\nno emitters\n";
    for (const EmitterReport& e : a.ended())
        s += emitterLine(e);
    for (const EmitterReport& e : a.current())
        s += emitterLine(e);
    return s;
}

} // namespace wsa
