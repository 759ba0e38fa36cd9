// The kinds of emitter the analysis names, and their words in every output.
#ifndef ANALYSIS_EMITTERKIND_H
#define ANALYSIS_EMITTERKIND_H

#include <string>

namespace wsa
{

enum class EmitterKind {
    WifiOfdm,
    WifiDsss,
    Bluetooth,
    Zigbee,
    MicrowaveOven,
    AvTransmitter,
    CordlessPhone,
    WirelessAudio,
    FixedWireless,
    Narrowband,
    Unknown
};
constexpr int kEmitterKindCount = 11;

// "wifi-ofdm", "bluetooth", ...: the words of the JSON output and the command lines.
const char* kindName(EmitterKind kind);
// False (and *kind untouched) for a word that names no kind.
bool kindFromName(const std::string& name, EmitterKind* kind);

} // namespace wsa

#endif
