#include "csvrecorder.h"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <sys/statvfs.h>
#include <unistd.h>

#include "enginecore.h"
#include "sweepcsv.h"

namespace
{

constexpr long long kReportEveryNs = 1000000000LL;

std::int64_t statvfsFree(const std::string& path)
{
    struct statvfs fs;
    if (statvfs(path.c_str(), &fs) != 0)
        return -1;
    return std::int64_t(fs.f_bavail) * std::int64_t(fs.f_frsize);
}

std::string megabytes(std::int64_t bytes)
{
    return std::to_string(bytes >> 20) + " MB";
}

} // namespace

CsvRecorderSink::CsvRecorderSink(const std::string& dir, const wsa::Band& band, bool startNow,
                                 RecorderPolicy policy)
    : m_grid(band.grid), m_bandKey(band.key), m_dir(dir), m_policy(std::move(policy))
{
    if (!m_policy.freeBytes)
        m_policy.freeBytes = statvfsFree;
    if (startNow) {
        newBase();
        m_armed = true;
    }
}

CsvRecorderSink::~CsvRecorderSink()
{
    if (m_fd >= 0)
        close(m_fd);
}

void CsvRecorderSink::newBase()
{
    const time_t now = time(nullptr);
    tm local;
    localtime_r(&now, &local);
    char name[64];
    strftime(name, sizeof name, "wsa-%Y%m%d-%H%M%S", &local);
    m_base = m_dir + "/" + name + "-" + m_bandKey;
}

void CsvRecorderSink::fail(const std::string& text)
{
    std::fprintf(stderr, "wsa_raw: %s\n", text.c_str());
    if (m_engine)
        m_engine->reason(StatusReason::RecordingFailed, text);
}

bool CsvRecorderSink::create()
{
    m_armed = false;
    std::error_code error;
    std::filesystem::create_directories(m_dir, error);
    if (!error && !std::filesystem::is_directory(m_dir, error))
        error = std::make_error_code(std::errc::not_a_directory);
    if (error) {
        fail("not recording, cannot create " + m_dir + ": " + error.message());
        return false;
    }
    // Two starts within a second get a numbered name rather than sharing a file.
    for (int n = 0; n < 100 && m_fd < 0; ++n) {
        m_path = m_base + (n ? "-" + std::to_string(n) : std::string()) + ".csv";
        m_fd = open(m_path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_APPEND | O_CLOEXEC, 0666);
        if (m_fd < 0 && errno != EEXIST)
            break;
    }
    if (m_fd < 0) {
        fail("not recording, cannot create " + m_path + ": " + std::strerror(errno));
        return false;
    }
    m_bytes = 0;
    m_checkedAt = 0;
    if (!roomOnDisk())
        return false;
    report(true);
    return true;
}

void CsvRecorderSink::start()
{
    if (isRecording())
        return;
    if (m_dir.empty()) {
        fail("not recording: no directory for recordings (WSA_RECORD_DIR is not set)");
        return;
    }
    newBase();
    create();
}

void CsvRecorderSink::stop()
{
    m_armed = false;
    if (m_fd < 0)
        return;
    close(m_fd);
    m_fd = -1;
    if (m_engine)
        m_engine->recording(m_bytes, std::string());
}

void CsvRecorderSink::control(wsa::ControlCommand command, double value)
{
    if (command != wsa::ControlCommand::Record)
        return;
    if (value != 0)
        start();
    else
        stop();
}

// Stops recording, with the reserve left, when the disk is nearly full.
bool CsvRecorderSink::roomOnDisk()
{
    m_checkedAt = m_bytes;
    const std::int64_t free = m_policy.freeBytes(m_path);
    if (free < 0)
        return true;
    if (free < m_policy.reserveFreeBytes) {
        fail("recording stopped, only " + megabytes(free) + " left on the disk of " + m_path);
        const bool empty = m_bytes == 0;
        stop();
        if (empty)
            unlink(m_path.c_str());
        return false;
    }
    const bool low = free < m_policy.warnFreeBytes;
    if (low && !m_warned) {
        const std::string text = "the disk of " + m_path + " is almost full: " + megabytes(free) +
                                 " left; recording stops at " +
                                 megabytes(m_policy.reserveFreeBytes);
        std::fprintf(stderr, "wsa_raw: %s\n", text.c_str());
        if (m_engine)
            m_engine->reason(StatusReason::DiskAlmostFull, text);
    }
    m_warned = low;
    return true;
}

void CsvRecorderSink::report(bool now)
{
    if (!m_engine)
        return;
    const long long at = m_engine->nowNs();
    if (!now && at - m_reportedNs < kReportEveryNs)
        return;
    m_reportedNs = at;
    m_engine->recording(m_bytes, m_path);
}

bool CsvRecorderSink::writeRow(const char* row, std::size_t size)
{
    while (size > 0) {
        const ssize_t n = write(m_fd, row, size);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0) {
            const std::string why = n < 0 ? std::strerror(errno) : "nothing written";
            fail("recording stopped, cannot write " + m_path + ": " + why);
            stop();
            return false;
        }
        row += n;
        size -= std::size_t(n);
        m_bytes += n;
    }
    return true;
}

SinkResult CsvRecorderSink::sweep(const int* levels, int /*count*/)
{
    if (m_fd < 0 && !(m_armed && create()))
        return SinkResult::Ok;
    timespec now;
    clock_gettime(CLOCK_REALTIME, &now);
    tm local;
    localtime_r(&now.tv_sec, &local);
    char* p = m_row + strftime(m_row, 32, "%Y-%m-%d, %H:%M:%S", &local);
    // The cells are centred on the grid's frequencies.
    const double lowHz = m_grid.lowEdgeHz();
    p += std::snprintf(p, 96, ".%06ld, %lld, %lld, %.2f, %d", now.tv_nsec / 1000,
                       std::llround(lowHz), std::llround(lowHz + m_grid.shown * m_grid.stepHz),
                       m_grid.stepHz, m_grid.shown);
    p = wsa::appendLevels(p, levels, m_grid.shown);
    *p++ = '\n';
    const std::size_t size = std::size_t(p - m_row);
    if (m_policy.limitBytes > 0 && m_bytes > 0 &&
        m_bytes + std::int64_t(size) > m_policy.limitBytes) {
        close(m_fd);
        m_fd = -1;
        newBase();
        if (!create())
            return SinkResult::Ok;
    }
    if (m_bytes - m_checkedAt >= m_policy.checkEveryBytes && !roomOnDisk())
        return SinkResult::Ok;
    if (writeRow(m_row, size))
        report(false);
    return SinkResult::Ok;
}
