#include "frontstream.h"

#include <algorithm>
#include <cstring>

namespace wsa
{

namespace
{

constexpr char kMagic0 = 'W';
constexpr char kMagic1 = '2';

template <typename T> void put(std::vector<char>& out, const T& value)
{
    const char* p = reinterpret_cast<const char*>(&value);
    out.insert(out.end(), p, p + sizeof value);
}

template <typename T> T get(const char* p)
{
    T value;
    std::memcpy(&value, p, sizeof value);
    return value;
}

// Appends a header and leaves room for the payload; returns where the payload starts.
bool begin(std::vector<char>& out, FrameKind kind, std::size_t payload, std::size_t& at)
{
    if (payload > kMaxFramePayload)
        return false;
    at = out.size();
    const char header[4] = {kMagic0, kMagic1, char(kind), 0};
    out.insert(out.end(), header, header + 4);
    put(out, std::uint32_t(payload));
    return true;
}

bool encodeText(std::vector<char>& out, FrameKind kind, const char* prefix, std::size_t prefixSize,
                const std::string& text)
{
    std::size_t at = 0;
    if (!begin(out, kind, prefixSize + text.size(), at))
        return false;
    out.insert(out.end(), prefix, prefix + prefixSize);
    out.insert(out.end(), text.begin(), text.end());
    return true;
}

} // namespace

bool encodeConfigured(std::vector<char>& out, const ConfiguredFrame& frame)
{
    char prefix[24];
    std::memcpy(prefix, &frame.firstHz, 8);
    std::memcpy(prefix + 8, &frame.stepHz, 8);
    const std::int32_t ints[2] = {frame.bins, frame.band};
    std::memcpy(prefix + 16, ints, 8);
    return encodeText(out, FrameKind::Configured, prefix, sizeof prefix, frame.source);
}

bool encodeSweep(std::vector<char>& out, double seconds, const float* dbm, int bins)
{
    if (bins < 0 || bins > kMaxStreamBins)
        return false;
    std::size_t at = 0;
    if (!begin(out, FrameKind::Sweep, 16 + 4 * std::size_t(bins), at))
        return false;
    put(out, seconds);
    put(out, std::int32_t(bins));
    put(out, std::int32_t(0));
    const char* p = reinterpret_cast<const char*>(dbm);
    out.insert(out.end(), p, p + 4 * std::size_t(bins));
    return true;
}

bool encodeStatus(std::vector<char>& out, StatusCode code, const std::string& text)
{
    const std::int32_t c = std::int32_t(code);
    return encodeText(out, FrameKind::Status, reinterpret_cast<const char*>(&c), 4, text);
}

bool encodeAnalysis(std::vector<char>& out, const std::string& json)
{
    return encodeText(out, FrameKind::Analysis, nullptr, 0, json);
}

bool encodeRecording(std::vector<char>& out, std::int64_t bytes, const std::string& path)
{
    return encodeText(out, FrameKind::Recording, reinterpret_cast<const char*>(&bytes), 8, path);
}

FrameReader::FrameReader(Handlers handlers) : m_handlers(std::move(handlers))
{
    m_buffer.reserve(kFrameHeaderSize + kMaxFramePayload);
    m_levels.reserve(kMaxStreamBins);
}

void FrameReader::reset()
{
    m_buffer.clear();
    m_start = 0;
    m_resynchronising = false;
}

void FrameReader::damaged(const char* what)
{
    if (!m_resynchronising && m_handlers.damage)
        m_handlers.damage(what);
    m_resynchronising = true;
    // Drop the byte that looked like a start and look for the next magic.
    ++m_start;
    while (m_start < m_buffer.size() && m_buffer[m_start] != kMagic0)
        ++m_start;
}

void FrameReader::feed(const char* bytes, std::size_t size)
{
    while (size > 0) {
        // Whole frames are taken as they complete, so the buffer never holds more than one
        // frame and the next piece of input.
        const std::size_t room = kFrameHeaderSize + kMaxFramePayload;
        const std::size_t take = std::min(size, room);
        m_buffer.insert(m_buffer.end(), bytes, bytes + take);
        bytes += take;
        size -= take;
        for (;;) {
            const std::size_t have = m_buffer.size() - m_start;
            if (have < kFrameHeaderSize) {
                // A damaged stretch may end in a lone 'W': it waits for more bytes.
                if (have > 0 && m_buffer[m_start] != kMagic0)
                    m_start = m_buffer.size();
                break;
            }
            const char* p = m_buffer.data() + m_start;
            const std::uint32_t length = get<std::uint32_t>(p + 4);
            if (p[0] != kMagic0 || p[1] != kMagic1 || p[3] != 0 || length > kMaxFramePayload) {
                damaged("bad frame header");
                continue;
            }
            if (have < kFrameHeaderSize + length)
                break;
            if (takeFrame(std::uint8_t(p[2]), p + kFrameHeaderSize, length)) {
                m_resynchronising = false;
                m_start += kFrameHeaderSize + length;
            } else {
                damaged("frame payload does not match its kind");
            }
        }
        m_buffer.erase(m_buffer.begin(), m_buffer.begin() + std::ptrdiff_t(m_start));
        m_start = 0;
    }
}

bool FrameReader::takeFrame(std::uint8_t kind, const char* p, std::uint32_t size)
{
    switch (FrameKind(kind)) {
    case FrameKind::Configured: {
        if (size < 24)
            return false;
        ConfiguredFrame f;
        f.firstHz = get<double>(p);
        f.stepHz = get<double>(p + 8);
        f.bins = get<std::int32_t>(p + 16);
        f.band = get<std::int32_t>(p + 20);
        if (!(f.stepHz > 0) || f.bins <= 0 || f.bins > kMaxStreamBins || !(f.firstHz > 0))
            return false;
        f.source.assign(p + 24, size - 24);
        if (m_handlers.configured)
            m_handlers.configured(f);
        return true;
    }
    case FrameKind::Sweep: {
        if (size < 16)
            return false;
        const std::int32_t bins = get<std::int32_t>(p + 8);
        if (bins < 0 || bins > kMaxStreamBins || size != 16 + 4 * std::uint32_t(bins))
            return false;
        m_levels.resize(std::size_t(bins));
        std::memcpy(m_levels.data(), p + 16, 4 * std::size_t(bins));
        // A level no receiver can measure (or not a number) is damage, not a sweep.
        for (float v : m_levels) {
            if (!(v >= -250.0f && v <= 100.0f))
                return false;
        }
        if (m_handlers.sweep)
            m_handlers.sweep({get<double>(p), bins, m_levels.data()});
        return true;
    }
    case FrameKind::Status:
        if (size < 4)
            return false;
        if (m_handlers.status)
            m_handlers.status(StatusCode(get<std::int32_t>(p)), std::string(p + 4, size - 4));
        return true;
    case FrameKind::Analysis:
        if (m_handlers.analysis)
            m_handlers.analysis(std::string(p, size));
        return true;
    case FrameKind::Recording:
        if (size < 8)
            return false;
        if (m_handlers.recording)
            m_handlers.recording(get<std::int64_t>(p), std::string(p + 8, size - 8));
        return true;
    }
    return true; // a kind this reader does not know: skipped whole
}

} // namespace wsa
