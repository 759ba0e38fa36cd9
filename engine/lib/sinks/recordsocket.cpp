#include "recordsocket.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <linux/sockios.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace
{

constexpr int kBadSampleCount = 5000;
constexpr char kUnknownType = 'z';

} // namespace

int connectToAnalyzer(const char* path, int attempts, int intervalMs)
{
    sockaddr_un addr{};
    if (std::strlen(path) >= sizeof addr.sun_path) {
        errno = ENAMETOOLONG;
        return -1;
    }
    addr.sun_family = AF_UNIX;
    std::strncpy(addr.sun_path, path, sizeof addr.sun_path - 1);
    int lastErrno = 0;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        if (attempt > 0)
            usleep(useconds_t(intervalMs) * 1000);
        const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        if (fd < 0)
            return -1;
        if (connect(fd, reinterpret_cast<const sockaddr*>(&addr), sizeof addr) == 0)
            return fd;
        lastErrno = errno;
        close(fd);
    }
    errno = lastErrno;
    return -1;
}

namespace
{

// The parent of `pid` from /proc, or -1.
pid_t parentOf(pid_t pid)
{
    char path[64];
    std::snprintf(path, sizeof path, "/proc/%d/stat", int(pid));
    std::FILE* f = std::fopen(path, "re");
    if (!f)
        return -1;
    char text[512];
    const std::size_t n = std::fread(text, 1, sizeof text - 1, f);
    std::fclose(f);
    text[n] = '\0';
    // "pid (name) state ppid ...": the name may hold anything, so look after its last ')'.
    const char* close = std::strrchr(text, ')');
    char state = 0;
    int ppid = -1;
    if (!close || std::sscanf(close + 1, " %c %d", &state, &ppid) != 2)
        return -1;
    return pid_t(ppid);
}

} // namespace

bool listenerIsOurs(int fd, std::string& why)
{
    ucred peer{};
    socklen_t size = sizeof peer;
    if (getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0) {
        why = std::string("cannot tell who listens: ") + std::strerror(errno);
        return false;
    }
    if (peer.uid != geteuid()) {
        why = "it is user " + std::to_string(peer.uid) + "'s";
        return false;
    }
    // Bounded: a loop in a process tree cannot happen, a damaged /proc should not hang us.
    pid_t pid = getppid();
    for (int depth = 0; depth < 256 && pid > 0; ++depth) {
        if (pid == peer.pid)
            return true;
        pid = parentOf(pid);
    }
    why = "its process " + std::to_string(peer.pid) + " did not start us";
    return false;
}

RecordSocketSink::~RecordSocketSink()
{
    close(m_fd);
}

// The bytes the analyzer has not read yet; unknown counts as read, which at worst queues a
// record.
bool RecordSocketSink::ready() const
{
    int unread = 0;
    return ioctl(m_fd, SIOCOUTQ, &unread) != 0 || unread == 0;
}

// The analyzer never writes to us, so anything readable means it closed or reset the link.
bool RecordSocketSink::closed()
{
    char scratch[64];
    for (;;) {
        const ssize_t n = recv(m_fd, scratch, sizeof scratch, MSG_DONTWAIT);
        if (n > 0)
            continue;
        if (n == 0)
            return true;
        if (errno == EINTR)
            continue;
        return errno != EAGAIN && errno != EWOULDBLOCK;
    }
}

SinkResult RecordSocketSink::send(const stSweep& record, std::size_t bytes)
{
    const char* p = reinterpret_cast<const char*>(&record);
    while (bytes > 0) {
        const ssize_t n = ::send(m_fd, p, bytes, MSG_NOSIGNAL);
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return errno == EPIPE || errno == ECONNRESET ? SinkResult::Closed : SinkResult::Failed;
        }
        p += n;
        bytes -= std::size_t(n);
    }
    return SinkResult::Ok;
}

SinkResult RecordSocketSink::announce(const wsa::Announcement& announcement)
{
    m_record = stSweep{};
    m_record.type = SA_MSG_CONFIGURED;
    m_record.num_samples = announcement.samples;
    m_record.data[0] = announcement.startMHz;
    m_record.data[1] = announcement.endMHz;
    m_record.data[2] = announcement.stepKHz;
    return send(m_record);
}

SinkResult RecordSocketSink::sweep(const int* levels, int count)
{
    m_record = stSweep{};
    m_record.type = SA_MSG_SWEEP;
    m_record.num_samples = count;
    std::copy(levels, levels + count, m_record.data);
    return send(m_record);
}

SinkResult RecordSocketSink::fault(Fault fault)
{
    m_record = stSweep{};
    m_record.type = fault == Fault::NoProbe ? SA_MSG_NO_DEVICE : SA_MSG_DISCONNECT;
    return send(m_record);
}

// Each carries the levels given, as a real damaged record carries whatever was in its buffer.
SinkResult RecordSocketSink::damaged(Damage damage, const int* levels, int count)
{
    m_record = stSweep{};
    m_record.type = damage == Damage::UnknownType ? kUnknownType : char(SA_MSG_SWEEP);
    m_record.num_samples = damage == Damage::BadCount ? kBadSampleCount : count;
    std::copy(levels, levels + count, m_record.data);
    return send(m_record, damage == Damage::ShortRecord ? SA_RECORD_SIZE / 2 : SA_RECORD_SIZE);
}
