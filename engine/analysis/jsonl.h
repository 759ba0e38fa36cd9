// The analysis as JSON Lines: one "channel" line per 20 MHz channel of the band, one "emitter"
// line per emitter (ended ones first, in the order they ended), and a closing "summary".
#ifndef ANALYSIS_JSONL_H
#define ANALYSIS_JSONL_H

#include <string>

#include "analyzer.h"

namespace wsa
{

std::string channelJson(const Band& band, const ChannelReport& channel);
// withId: the emitter's number leads, for readers that follow one emitter from object to object.
std::string emitterJson(const EmitterReport& emitter, bool withId = false);
std::string summaryJson(long sweeps, double seconds, double noiseFloorDbm);

// All the lines, each ending in a newline.
std::string analysisJsonLines(const Analyzer& analyzer);

} // namespace wsa

#endif
