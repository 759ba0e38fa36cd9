#include "emitterkind.h"

namespace wsa
{

namespace
{
const char* const kNames[kEmitterKindCount] = {
    "wifi-ofdm",     "wifi-dsss",      "bluetooth",      "zigbee",
    "microwave-oven", "av-transmitter", "cordless-phone", "wireless-audio",
    "fixed-wireless", "narrowband",     "unknown"};
}

const char* kindName(EmitterKind kind)
{
    const int k = int(kind);
    return k >= 0 && k < kEmitterKindCount ? kNames[k] : "unknown";
}

bool kindFromName(const std::string& name, EmitterKind* kind)
{
    for (int k = 0; k < kEmitterKindCount; ++k) {
        if (name == kNames[k]) {
            *kind = EmitterKind(k);
            return true;
        }
    }
    return false;
}

} // namespace wsa
