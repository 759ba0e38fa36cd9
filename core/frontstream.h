// The front-end stream: what the engine sends to a desktop front-end, beside (never instead of)
// the handheld's fixed records, on a socket the handheld never reads. Frames carry their length,
// so new kinds can be added without breaking old readers: a reader skips kinds it does not know.
//
// A frame is an 8-byte header {magic 'W' '2', kind, 0, payload length (u32)} and its payload, in
// host byte order (both ends run on one machine). Payloads:
//   Configured  f64 firstHz, f64 stepHz, i32 bins, i32 band (BandId), then the source's name
//   Sweep       f64 seconds (since the stream began), i32 bins, i32 0, then bins f32 levels, dBm
//   Status      i32 code (StatusCode), then UTF-8 text naming the cause and the remedy
//   Analysis    one JSON object of the analysis, UTF-8, without a newline
//   Recording   i64 bytes written so far, then the file's path (empty: not recording)
#ifndef CORE_FRONTSTREAM_H
#define CORE_FRONTSTREAM_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace wsa
{

enum class FrameKind : std::uint8_t {
    Configured = 1,
    Sweep = 2,
    Status = 3,
    Analysis = 4,
    Recording = 5,
};

// Why a source stopped or could not start; the text says the rest (a file's name, a program's
// last line). Front-ends choose their remedy text by code.
enum class StatusCode : std::int32_t {
    Ended = 0,          // the source ended normally (a replay reached its end)
    ProgramMissing = 1, // the sweep program is not installed
    NoDevice = 2,       // the program runs but finds no radio
    DeviceLost = 3,     // the radio stopped delivering after it had started
    FileMissing = 4,
    FileUnreadable = 5, // not a regular file, no permission, an I/O error
    FileEmpty = 6,
    NoSweepInBand = 7, // a recording without a sweep in the band asked for
    BandNotCovered = 8,
    RecordingFailed = 9, // the recording could not be created or written (disk full)
    DiskAlmostFull = 10,
    BadSetting = 11,
    Other = 99,
};

constexpr std::size_t kFrameHeaderSize = 8;
// No frame is larger: a sweep of 8192 bins, or a status or analysis text, fits with room to spare.
constexpr std::uint32_t kMaxFramePayload = 64 * 1024;
constexpr int kMaxStreamBins = 8192;

struct ConfiguredFrame {
    double firstHz = 0;
    double stepHz = 0;
    int bins = 0;
    int band = 0;
    std::string source;
};

struct SweepFrame {
    double seconds = 0;
    int bins = 0;
    const float* dbm = nullptr; // valid during the callback only
};

// Encoders append one whole frame to `out` (which is reused, so nothing is allocated once it
// has grown). False, leaving `out` as it was, when the payload would exceed kMaxFramePayload.
bool encodeConfigured(std::vector<char>& out, const ConfiguredFrame& frame);
bool encodeSweep(std::vector<char>& out, double seconds, const float* dbm, int bins);
bool encodeStatus(std::vector<char>& out, StatusCode code, const std::string& text);
bool encodeAnalysis(std::vector<char>& out, const std::string& json);
bool encodeRecording(std::vector<char>& out, std::int64_t bytes, const std::string& path);

// Reads frames from a byte stream in pieces of any size and hands each valid one to its handler.
// A frame with a bad magic, an oversized length or a payload that does not match its kind is
// reported once per damaged stretch through onDamage, and bytes are dropped up to the next magic;
// kinds it does not know are skipped whole.
class FrameReader
{
public:
    struct Handlers {
        std::function<void(const ConfiguredFrame&)> configured;
        std::function<void(const SweepFrame&)> sweep;
        std::function<void(StatusCode, const std::string&)> status;
        std::function<void(const std::string&)> analysis;
        std::function<void(std::int64_t, const std::string&)> recording;
        std::function<void(const char* what)> damage;
    };

    explicit FrameReader(Handlers handlers);
    // Takes the next bytes of the stream, acting on every frame they complete.
    void feed(const char* bytes, std::size_t size);
    // Forget a partial frame: a new connection starts on a frame boundary.
    void reset();
    std::size_t pending() const { return m_buffer.size() - m_start; }

private:
    bool takeFrame(std::uint8_t kind, const char* payload, std::uint32_t size);
    void damaged(const char* what);

    Handlers m_handlers;
    std::vector<char> m_buffer;
    std::size_t m_start = 0;
    bool m_resynchronising = false;
    std::vector<float> m_levels;
};

} // namespace wsa

#endif
