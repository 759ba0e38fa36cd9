#include "link.h"

#include <cerrno>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

// The analyzer never writes to us, so anything readable means it closed or reset the link.
bool peerGone(int fd)
{
    char sink[64];
    for (;;) {
        const ssize_t n = recv(fd, sink, sizeof sink, MSG_DONTWAIT);
        if (n > 0)
            continue;
        if (n == 0)
            return true;
        if (errno == EINTR)
            continue;
        return errno != EAGAIN && errno != EWOULDBLOCK;
    }
}

namespace
{

long msUntil(const timespec& deadline)
{
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    const long long ns =
        (deadline.tv_sec - now.tv_sec) * 1000000000LL + (deadline.tv_nsec - now.tv_nsec);
    return ns <= 0 ? 0 : long((ns + 999999) / 1000000);
}

} // namespace

int connectToAnalyzer(const char* path, int attempts, int intervalMs)
{
    sockaddr_un addr{};
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

SendResult sendRecord(int fd, const stSweep& record, std::size_t bytes)
{
    const char* p = reinterpret_cast<const char*>(&record);
    while (bytes > 0) {
        const ssize_t n = send(fd, p, bytes, MSG_NOSIGNAL);
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return errno == EPIPE || errno == ECONNRESET ? SendResult::PeerGone
                                                         : SendResult::Failed;
        }
        p += n;
        bytes -= std::size_t(n);
    }
    return SendResult::Sent;
}

bool waitUntil(int fd, const timespec& deadline)
{
    for (;;) {
        pollfd pfd{fd, POLLIN, 0};
        const int ready = poll(&pfd, 1, int(msUntil(deadline)));
        if (ready > 0 && peerGone(fd))
            return false;
        if (ready == 0 && msUntil(deadline) == 0)
            return true;
    }
}

void waitForPeerClose(int fd)
{
    for (;;) {
        pollfd pfd{fd, POLLIN, 0};
        if (poll(&pfd, 1, -1) > 0 && peerGone(fd))
            return;
    }
}
