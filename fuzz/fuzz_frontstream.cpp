// libFuzzer target over the front-end stream reader: any bytes, split at arbitrary points, must
// only ever produce frames whose sizes and levels a front-end can index without checking again.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "frontstream.h"

namespace
{

void require(bool condition)
{
    if (!condition)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    wsa::FrameReader reader({
        [](const wsa::ConfiguredFrame& f) {
            require(f.bins > 0 && f.bins <= wsa::kMaxStreamBins && f.stepHz > 0);
        },
        [](const wsa::SweepFrame& s) {
            require(s.bins >= 0 && s.bins <= wsa::kMaxStreamBins);
            for (int i = 0; i < s.bins; ++i)
                require(s.dbm[i] >= -250.0f && s.dbm[i] <= 100.0f);
        },
        [](wsa::StatusCode, const std::string& text) { require(text.size() <= wsa::kMaxFramePayload); },
        [](const std::string& json) { require(json.size() <= wsa::kMaxFramePayload); },
        [](std::int64_t, const std::string& path) { require(path.size() <= wsa::kMaxFramePayload); },
        [](const char*) {},
    });
    // The first byte chooses the piece size, so one input is read in many splits.
    const std::size_t piece = size > 0 ? 1 + data[0] % 64 : 1;
    for (std::size_t at = size > 0 ? 1 : 0; at < size; at += piece)
        reader.feed(reinterpret_cast<const char*>(data) + at, size - at < piece ? size - at : piece);
    require(reader.pending() <= 2 * (wsa::kFrameHeaderSize + wsa::kMaxFramePayload));
    return 0;
}
