#include "frontsocket.h"

#include <cerrno>
#include <cstdio>
#include <linux/sockios.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include "enginecore.h"

namespace
{

// Frames that a newer one replaces (analysis, progress) wait while this much is unread, so a
// window that stops reading never makes the engine block.
constexpr int kMaxBacklogBytes = 64 * 1024;
// A window that takes nothing for this long has hung; a frame cut short there would damage the
// stream, so the window is given up.
constexpr timeval kSendTimeout{2, 0};
constexpr int kMaxReadsPerWake = 16;

int unreadBytes(int fd)
{
    int unread = 0;
    return ioctl(fd, SIOCOUTQ, &unread) == 0 ? unread : 0;
}

} // namespace

wsa::StatusCode statusCode(StatusReason reason)
{
    using wsa::StatusCode;
    switch (reason) {
    case StatusReason::ProgramMissing:
        return StatusCode::ProgramMissing;
    case StatusReason::NoDevice:
        return StatusCode::NoDevice;
    case StatusReason::DeviceLost:
        return StatusCode::DeviceLost;
    case StatusReason::FileUnusable:
        return StatusCode::FileUnreadable;
    case StatusReason::NotInBand:
        return StatusCode::NoSweepInBand;
    case StatusReason::UnknownSource:
        return StatusCode::BadSetting;
    case StatusReason::FileMissing:
        return StatusCode::FileMissing;
    case StatusReason::FileEmpty:
        return StatusCode::FileEmpty;
    case StatusReason::Ended:
        return StatusCode::Ended;
    case StatusReason::DiskAlmostFull:
        return StatusCode::DiskAlmostFull;
    case StatusReason::RecordingFailed:
        return StatusCode::RecordingFailed;
    }
    return StatusCode::Other;
}

wsa::StatusCode statusCode(Fault fault)
{
    return fault == Fault::NoProbe ? wsa::StatusCode::NoDevice : wsa::StatusCode::DeviceLost;
}

FrontSocketSink::FrontSocketSink(int fd, Mode mode, const wsa::Band& band,
                                 const std::string& source, const Clock& clock)
    : m_fd(fd), m_mode(mode), m_band(band), m_source(source), m_clock(clock),
      m_startNs(clock.nowNs()), m_reader({})
{
    setsockopt(m_fd, SOL_SOCKET, SO_SNDTIMEO, &kSendTimeout, sizeof kSendTimeout);
    wsa::FrameReader::Handlers handlers;
    handlers.control = [this](wsa::ControlCommand command, double value) {
        if (m_engine)
            m_engine->control(command, value);
    };
    handlers.damage = [](const char* what) {
        std::fprintf(stderr, "wsa_raw: damaged data from the front-end: %s\n", what);
    };
    m_reader = wsa::FrameReader(handlers);
    m_out.reserve(wsa::kFrameHeaderSize + wsa::kMaxFramePayload);
}

FrontSocketSink::~FrontSocketSink()
{
    close(m_fd);
}

bool FrontSocketSink::ready() const
{
    return m_mode == Mode::StatusOnly || m_gone || unreadBytes(m_fd) == 0;
}

bool FrontSocketSink::closed()
{
    if (m_gone || m_ended)
        return true;
    char bytes[4096];
    // Bounded, so that a window sending without pause cannot hold the engine here; the rest
    // is read at the next wait.
    for (int reads = 0; reads < kMaxReadsPerWake; ++reads) {
        const ssize_t n = recv(m_fd, bytes, sizeof bytes, MSG_DONTWAIT);
        if (n > 0) {
            m_reader.feed(bytes, std::size_t(n));
            if (m_ended)
                return true;
            continue;
        }
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0 && (errno == EAGAIN || errno == EWOULDBLOCK))
            return false;
        m_gone = true;
        return true;
    }
    return false;
}

SinkResult FrontSocketSink::send(Urgency urgency)
{
    if (m_gone)
        return m_mode == Mode::Full ? SinkResult::Closed : SinkResult::Ok;
    if (urgency == Urgency::IfRoom && unreadBytes(m_fd) > kMaxBacklogBytes)
        return SinkResult::Ok;
    const char* p = m_out.data();
    std::size_t left = m_out.size();
    while (left > 0) {
        const ssize_t n = ::send(m_fd, p, left, MSG_NOSIGNAL);
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0) {
            const bool went =
                errno == EPIPE || errno == ECONNRESET || errno == EAGAIN || errno == EWOULDBLOCK;
            if (!went && m_mode == Mode::Full)
                return SinkResult::Failed;
            // Wake the engine's wait, which then finds the window gone.
            m_gone = true;
            shutdown(m_fd, SHUT_RD);
            return m_mode == Mode::Full ? SinkResult::Closed : SinkResult::Ok;
        }
        p += n;
        left -= std::size_t(n);
    }
    return SinkResult::Ok;
}

void FrontSocketSink::sendHeld()
{
    for (std::vector<char>* held : {&m_heldRecording, &m_heldReplay}) {
        if (held->empty() || m_gone || unreadBytes(m_fd) > kMaxBacklogBytes)
            continue;
        m_out.swap(*held);
        held->clear();
        send(Urgency::Always);
    }
}

SinkResult FrontSocketSink::announce(const wsa::Announcement&)
{
    if (m_mode != Mode::Full)
        return SinkResult::Ok;
    // The grid every source resamples onto, whatever its own records announce.
    const wsa::SourceGrid& grid = m_band.grid;
    m_out.clear();
    wsa::encodeConfigured(m_out, {grid.startHz, grid.stepHz, grid.shown, int(m_band.id), m_source});
    return send(Urgency::Always);
}

SinkResult FrontSocketSink::sweep(const int* levels, int count)
{
    for (int i = 0; i < count; ++i)
        m_levels[i] = float(levels[i]);
    return sweepDbm(m_levels, levels, count);
}

SinkResult FrontSocketSink::sweepDbm(const float* dbm, const int*, int count)
{
    if (m_mode != Mode::Full)
        return SinkResult::Ok;
    const double seconds = double(m_clock.nowNs() - m_startNs) / 1e9;
    m_out.clear();
    wsa::encodeSweep(m_out, seconds, dbm, std::min(count, m_band.grid.shown));
    const SinkResult result = send(Urgency::Always);
    sendHeld();
    return result;
}

SinkResult FrontSocketSink::fault(Fault fault)
{
    if (m_statusSent)
        return SinkResult::Ok;
    status(statusCode(fault), fault == Fault::NoProbe ? "no probe" : "the probe was lost", true);
    return m_mode == Mode::Full && m_gone ? SinkResult::Closed : SinkResult::Ok;
}

void FrontSocketSink::reason(StatusReason reason, const std::string& text)
{
    status(statusCode(reason), text, endsSource(reason));
}

void FrontSocketSink::status(wsa::StatusCode code, const std::string& text, bool ends)
{
    m_out.clear();
    // A text too long for a frame is cut; the code alone still says what happened.
    wsa::encodeStatus(m_out, code, text.substr(0, wsa::kMaxFramePayload - 4));
    send(Urgency::Always);
    if (!ends)
        return;
    m_statusSent = true;
    if (m_mode == Mode::Full && !m_ended) {
        // The engine is to stop: a wait on this socket ends at once and finds it closed.
        m_ended = true;
        shutdown(m_fd, SHUT_RD);
    }
}

void FrontSocketSink::analysis(const std::string& json)
{
    if (m_mode != Mode::Full)
        return;
    m_out.clear();
    if (wsa::encodeAnalysis(m_out, json))
        send(Urgency::IfRoom);
}

void FrontSocketSink::recording(std::int64_t bytes, const std::string& path)
{
    m_heldRecording.clear();
    wsa::encodeRecording(m_heldRecording, bytes, path);
    sendHeld();
}

void FrontSocketSink::replay(const wsa::ReplayFrame& frame)
{
    if (m_mode != Mode::Full)
        return;
    m_heldReplay.clear();
    wsa::encodeReplay(m_heldReplay, frame);
    sendHeld();
}
