#include "recorder.h"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

// mkdir -p
bool makeDirs(const std::string& dir)
{
    struct stat st;
    if (stat(dir.c_str(), &st) == 0)
        return S_ISDIR(st.st_mode) || (errno = ENOTDIR, false);
    const std::size_t slash = dir.find_last_of('/');
    if (slash != std::string::npos && slash > 0 && !makeDirs(dir.substr(0, slash)))
        return false;
    return mkdir(dir.c_str(), 0777) == 0 || errno == EEXIST;
}

char* putInt(char* p, long long v)
{
    char digits[24];
    int n = 0;
    const bool negative = v < 0;
    unsigned long long u = negative ? 0ULL - (unsigned long long)v : (unsigned long long)v;
    do {
        digits[n++] = char('0' + u % 10);
        u /= 10;
    } while (u);
    if (negative)
        *p++ = '-';
    while (n)
        *p++ = digits[--n];
    return p;
}

} // namespace

Recorder::Recorder(const char* dir, Band band) : m_grid(bandGrid(band)), m_dir(dir)
{
    const time_t now = time(nullptr);
    tm local;
    localtime_r(&now, &local);
    char name[64];
    strftime(name, sizeof name, "wsa-%Y%m%d-%H%M%S", &local);
    m_base = m_dir + "/" + name + (band == Band::Ghz5 ? "-5g" : "-2g4");
}

bool Recorder::create()
{
    m_failed = true;
    if (!makeDirs(m_dir)) {
        std::fprintf(stderr, "wsa_raw: not recording, cannot create %s: %s\n", m_dir.c_str(),
                     std::strerror(errno));
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

Recorder::~Recorder()
{
    if (m_fd >= 0)
        close(m_fd);
}

void Recorder::append(const int* levels)
{
    if (m_failed || (m_fd < 0 && !create()))
        return;
    timespec now;
    clock_gettime(CLOCK_REALTIME, &now);
    tm local;
    localtime_r(&now.tv_sec, &local);
    char* p = m_row + strftime(m_row, 32, "%Y-%m-%d, %H:%M:%S", &local);
    // The bins are cells centred on the grid's frequencies.
    const double lowHz = m_grid.startHz - m_grid.stepHz / 2;
    p += std::snprintf(p, 96, ".%06ld, %lld, %lld, %.2f, %d", now.tv_nsec / 1000,
                       std::llround(lowHz), std::llround(lowHz + m_grid.shown * m_grid.stepHz),
                       m_grid.stepHz, m_grid.shown);
    for (int i = 0; i < m_grid.shown; ++i) {
        *p++ = ',';
        *p++ = ' ';
        p = putInt(p, levels[i]);
    }
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
            return;
        }
        out += n;
    }
}
