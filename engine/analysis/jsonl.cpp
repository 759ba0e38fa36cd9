#include "jsonl.h"

#include <cmath>
#include <cstdio>

namespace wsa
{

namespace
{

// A JSON number, or null where there is none to give (JSON has no NaN or infinity).
std::string number(double v, int decimals)
{
    if (!std::isfinite(v))
        return "null";
    char buf[64];
    std::snprintf(buf, sizeof buf, "%.*f", decimals, v);
    return buf;
}

} // namespace

std::string channelJson(const Band& band, const ChannelReport& c)
{
    return std::string("{\"type\":\"channel\",\"band\":\"") + band.key + "\",\"channel\":" +
           std::to_string(c.channel.number) + ",\"width_mhz\":" + std::to_string(c.channel.widthMHz) +
           ",\"center_mhz\":" + number(c.channel.centerMHz, 1) + ",\"occupancy\":" + number(c.occupancy, 3) +
           ",\"mean_dbm\":" + number(c.meanDbm, 1) + ",\"max_dbm\":" + number(c.maxDbm, 1) + "}";
}

std::string emitterJson(const EmitterReport& e, bool withId)
{
    std::string s = std::string("{\"type\":\"emitter\",") + (withId ? "\"id\":" + std::to_string(e.id) + "," : "") +
                    "\"kind\":\"" + kindName(e.kind) +
                    "\",\"center_mhz\":" + number(e.centerMHz, 1) + ",\"width_mhz\":" + number(e.widthMHz, 1) +
                    ",\"channel\":" + (e.channel >= 0 ? std::to_string(e.channel) : "null") +
                    ",\"first_s\":" + number(e.firstS, 1) + ",\"last_s\":" + number(e.lastS, 1) +
                    ",\"duty\":" + number(e.duty, 2) + ",\"peak_dbm\":" + number(e.peakDbm, 1) +
                    ",\"confidence\":" + number(e.confidence, 2) + ",\"active\":" + (e.active ? "true" : "false") +
                    ",\"features\":{";
    // Feature names are our own identifiers, never outside text, so they need no escaping.
    for (int k = 0; k < e.featureCount; ++k) {
        s += (k ? ",\"" : "\"") + std::string(e.features[k].name) + "\":" + number(e.features[k].value, 3);
    }
    return s + "}}";
}

std::string summaryJson(long sweeps, double seconds, double noiseFloorDbm)
{
    return "{\"type\":\"summary\",\"sweeps\":" + std::to_string(sweeps) + ",\"seconds\":" + number(seconds, 1) +
           ",\"noise_floor_dbm\":" + (sweeps > 0 ? number(noiseFloorDbm, 1) : "null") + "}";
}

std::string analysisJsonLines(const Analyzer& a)
{
    std::string out;
    for (const ChannelReport& c : a.channels(20))
        out += channelJson(a.band(), c) + "\n";
    for (const EmitterReport& e : a.ended())
        out += emitterJson(e) + "\n";
    for (const EmitterReport& e : a.current())
        out += emitterJson(e) + "\n";
    return out + summaryJson(a.sweeps(), a.seconds(), a.noiseFloorDbm()) + "\n";
}

} // namespace wsa
