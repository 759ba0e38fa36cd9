#include "reportfiles.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "engine.h"

namespace
{

// Closes fd keeping the errno that explains why it is given up.
int giveUp(int fd, int error)
{
    close(fd);
    errno = error;
    return -1;
}

bool ownRegular(const struct stat& st)
{
    return S_ISREG(st.st_mode) && st.st_uid == geteuid() && st.st_nlink == 1;
}

} // namespace

void wsaShellMakeDirs(const char* path)
{
    char quoted[4 * PATH_MAX + 8];
    char command[sizeof quoted + 16];
    if (!wsaShellQuote(path, quoted, sizeof quoted))
        return;
    const int n = std::snprintf(command, sizeof command, "mkdir -p %s", quoted);
    if (n > 0 && std::size_t(n) < sizeof command)
        (void)std::system(command);
}

int wsaOpenResultDir(const char* path)
{
    wsaShellMakeDirs(path);
    return open(path, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

int wsaOpenOwnDir(int dirFd, const char* name)
{
    (void)mkdirat(dirFd, name, 0777);
    const int fd = openat(dirFd, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0)
        return -1;
    struct stat st;
    if (fstat(fd, &st) != 0)
        return giveUp(fd, errno);
    if (st.st_uid != geteuid())
        return giveUp(fd, EPERM);
    return fd;
}

FILE* wsaCreateOwnFile(int dirFd, const char* name)
{
    // Not truncated before it is known to be ours; non-blocking so a FIFO cannot hold us.
    const int fd = openat(
        dirFd, name, O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0666);
    if (fd < 0)
        return nullptr;
    struct stat st;
    if (fstat(fd, &st) != 0) {
        giveUp(fd, errno);
        return nullptr;
    }
    if (!ownRegular(st)) {
        giveUp(fd, EEXIST);
        return nullptr;
    }
    const int flags = fcntl(fd, F_GETFL);
    if (ftruncate(fd, 0) != 0 || flags < 0 || fcntl(fd, F_SETFL, flags & ~O_NONBLOCK) != 0) {
        giveUp(fd, errno);
        return nullptr;
    }
    FILE* stream = fdopen(fd, "w");
    if (!stream)
        giveUp(fd, errno);
    return stream;
}

FILE* wsaOpenRegularFile(const char* path)
{
    const int fd = open(path, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (fd < 0)
        return nullptr;
    struct stat st;
    if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        giveUp(fd, EINVAL);
        return nullptr;
    }
    FILE* stream = fdopen(fd, "r");
    if (!stream)
        giveUp(fd, errno);
    return stream;
}
