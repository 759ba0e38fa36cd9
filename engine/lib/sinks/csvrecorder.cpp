#include "csvrecorder.h"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

#include "sweepcsv.h"

CsvRecorderSink::CsvRecorderSink(const std::string& dir, const wsa::Band& band)
    : m_grid(band.grid), m_dir(dir)
{
    const time_t now = time(nullptr);
    tm local;
    localtime_r(&now, &local);
    char name[64];
    strftime(name, sizeof name, "wsa-%Y%m%d-%H%M%S", &local);
    m_base = m_dir + "/" + name + "-" + band.key;
}

bool CsvRecorderSink::create()
{
    m_failed = true;
    std::error_code error;
    std::filesystem::create_directories(m_dir, error);
    if (!error && !std::filesystem::is_directory(m_dir, error))
        error = std::make_error_code(std::errc::not_a_directory);
    if (error) {
        std::fprintf(stderr, "wsa_raw: not recording, cannot create %s: %s\n", m_dir.c_str(),
                     error.message().c_str());
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
        std::fprintf(stderr, "wsa_raw: not recording, cannot create %s: %s\n", m_path.c_str(),
                     std::strerror(errno));
        return false;
    }
    m_failed = false;
    return true;
}

CsvRecorderSink::~CsvRecorderSink()
{
    if (m_fd >= 0)
        close(m_fd);
}

SinkResult CsvRecorderSink::sweep(const int* levels, int /*count*/)
{
    if (m_failed || (m_fd < 0 && !create()))
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
    const char* out = m_row;
    while (out < p) {
        const ssize_t n = write(m_fd, out, std::size_t(p - out));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0) {
            std::fprintf(stderr, "wsa_raw: recording stopped, cannot write %s: %s\n",
                         m_path.c_str(), std::strerror(errno));
            close(m_fd);
            m_fd = -1;
            m_failed = true;
            return SinkResult::Ok;
        }
        out += n;
    }
    return SinkResult::Ok;
}
