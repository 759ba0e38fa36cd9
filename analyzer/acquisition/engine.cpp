// Engine process control: the engine runs as our child and connects back over ./SERVERSOCK.
#include <cerrno>
#include <climits>
#include <cstdio>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <QtGlobal>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include "engine.h"
#include "wsa_p.h"

// imagePath is refreshed from wsaEnginePath() at every start, so WSA_ENGINE_PATH takes effect.
stModuleImage moduleImage[1] = {{"/usr/local/tessa/bin/wsa_raw", "wsa_raw"}};
int s_band = 0;

const wsa::Band& wsaSelectedBand()
{
    const wsa::Band& band = wsa::handheldBand(s_band);
    // Refused once, with handheldBand's console line; from then on the band shown is the band.
    s_band = int(band.id);
    return band;
}
int mainEngineSock = -1;
int sockFd = -1;

namespace
{

const char kSocketPath[] = "SERVERSOCK";
// After SIGKILL an engine ends within milliseconds; this only bounds a pathological case.
const int kReapWaitMs = 500;
// How often the wait for the connection looks whether the engine has ended.
const int kExitCheckMs = 50;

// Engines we forked and have not yet collected. Only these are waited for: the host may own
// children of its own, so never waitpid(-1).
pid_t enginePids[16];
int enginePidCount = 0;

WsaStartResult lastStart = WSA_START_NO_SOCKET;
// Absolute path of the socket file we bound, so that it is removed even if the host has changed
// its working directory since.
char boundSocketPath[PATH_MAX];

long long monotonicMs()
{
    timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return ts.tv_sec * 1000LL + ts.tv_nsec / 1000000;
}

// Collects ended engines; waits up to waitMs for the rest. A pid we cannot wait for (ECHILD:
// the host ignores SIGCHLD, or someone else collected it) is forgotten.
void reapEngines(int waitMs)
{
    const long long deadline = monotonicMs() + waitMs;
    for (;;) {
        int kept = 0;
        for (int i = 0; i < enginePidCount; ++i) {
            const pid_t r = waitpid(enginePids[i], nullptr, WNOHANG);
            if (r == 0 || (r < 0 && errno == EINTR))
                enginePids[kept++] = enginePids[i];
        }
        enginePidCount = kept;
        if (enginePidCount == 0 || monotonicMs() >= deadline)
            return;
        usleep(5 * 1000);
    }
}

// A desktop installation may run several analyzers, of several users: each stops the engines
// it started, by their process groups (an engine the shell fallback started is a member of its
// starter's group), never every engine by name.
void stopOwnEngines()
{
    reapEngines(0);
    for (int i = 0; i < enginePidCount; ++i) {
        (void)kill(-enginePids[i], SIGKILL);
        (void)kill(enginePids[i], SIGKILL);
    }
    reapEngines(kReapWaitMs);
}

void rememberEngine(pid_t pid)
{
    if (enginePidCount == int(sizeof enginePids / sizeof enginePids[0]))
        reapEngines(0);
    if (enginePidCount == int(sizeof enginePids / sizeof enginePids[0])) {
        // Still full: forget the oldest rather than lose the newest.
        std::memmove(enginePids, enginePids + 1, sizeof enginePids - sizeof enginePids[0]);
        --enginePidCount;
    }
    enginePids[enginePidCount++] = pid;
}

bool anyRunning(const pid_t* pids, int count)
{
    reapEngines(0);
    for (int i = 0; i < count; ++i)
        for (int j = 0; j < enginePidCount; ++j)
            if (enginePids[j] == pids[i])
                return true;
    return false;
}

// Only a process of our own user may feed the analyzer: another user's process could show its
// own sweeps or close the analyzer with a Disconnect.
bool peerIsOurUser(int fd)
{
    ucred cred;
    socklen_t length = sizeof cred;
    if (getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &cred, &length) != 0) {
        std::printf("main engine peer unknown: %d\n", errno);
        return false;
    }
    if (cred.uid == geteuid())
        return true;
    std::printf("main engine connection from user %u refused\n", unsigned(cred.uid));
    return false;
}

// Waits for our engine to connect: at most the configured time, and no longer than one of the
// engines started here (or its shell fallback) is still running. Foreign connections are closed
// and the wait goes on. Returns the connection, or -errno.
int waitForEngine(const pid_t* started, int startedCount)
{
    const long long deadline = monotonicMs() + wsaEngineTimeoutMs();
    pollfd pfd = {mainEngineSock, POLLIN, 0};
    bool lastLook = false;
    for (;;) {
        const long long left = deadline - monotonicMs();
        const int slice = lastLook ? 0 : int(qBound(0LL, left, (long long)kExitCheckMs));
        const int r = poll(&pfd, 1, slice);
        if (r < 0 && errno != EINTR)
            return -errno;
        if (r > 0) {
            const int fd = accept4(mainEngineSock, nullptr, nullptr, SOCK_CLOEXEC);
            if (fd >= 0 && peerIsOurUser(fd))
                return fd;
            if (fd >= 0)
                close(fd);
            else if (errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR &&
                     errno != ECONNABORTED)
                return -errno;
            continue;
        }
        if (lastLook) {
            std::puts("main engine ended before connecting");
            return -ECHILD;
        }
        if (left <= 0)
            return -ETIMEDOUT;
        // An engine that ended may still have connected just before: look once more.
        if (!anyRunning(started, startedCount))
            lastLook = true;
    }
}

// `argument` is the band's engine argument, or null for the engine's default band.
[[noreturn]] void runEngine(const stModuleImage& image, const char* argument)
{
    execl(image.imagePath, image.imageName, argument, static_cast<char*>(nullptr));
    std::printf("errno=%d\n", errno);
    std::fflush(stdout);
    errno = 0;
    char path[PATH_MAX + 8];
    char command[sizeof path + 16];
    if (wsaShellQuote(image.imagePath, path, sizeof path)) {
        const int n = argument
                          ? std::snprintf(command, sizeof command, "%s %s&", path, argument)
                          : std::snprintf(command, sizeof command, "%s &", path);
        // The shell leaves the engine in the background; as its reaper this process stays until
        // that engine ends, so the analyzer sees the fallback end as it sees an engine end.
        (void)prctl(PR_SET_CHILD_SUBREAPER, 1);
        if (n > 0 && size_t(n) < sizeof command)
            (void)std::system(command);
        while (waitpid(-1, nullptr, 0) > 0 || errno == EINTR) {
        }
    }
    std::fflush(stdout);
    // _exit, not exit: this is a copy of the GUI process, whose exit handlers and static
    // destructors (Qt, the host's) belong to the parent and must not run twice.
    _exit(0);
}

// Binds with a mode of 0600 whatever the umask: only our own user may connect.
int bindOwnerOnly(int fd, const sockaddr_un& addr)
{
    const mode_t old = umask(0177);
    const int r = bind(fd, reinterpret_cast<const sockaddr*>(&addr), sizeof addr);
    umask(old);
    return r;
}

void rememberSocketPath()
{
    char cwd[PATH_MAX];
    if (!getcwd(cwd, sizeof cwd) || std::snprintf(boundSocketPath, sizeof boundSocketPath, "%s/%s",
                                                  cwd, kSocketPath) >= int(sizeof boundSocketPath))
        boundSocketPath[0] = '\0';
}

} // namespace

int wsaEngineTimeoutMs()
{
    const char* text = std::getenv("WSA_ENGINE_TIMEOUT_MS");
    if (!text || !*text)
        return WSA_ENGINE_TIMEOUT_DEFAULT_MS;
    char* end = nullptr;
    errno = 0;
    const long ms = std::strtol(text, &end, 10);
    if (errno != 0 || *end != '\0' || ms < WSA_ENGINE_TIMEOUT_MIN_MS ||
        ms > WSA_ENGINE_TIMEOUT_MAX_MS) {
        std::printf("WSA_ENGINE_TIMEOUT_MS=%s is not a whole number of milliseconds from %d to "
                    "%d; using %d\n",
                    text, int(WSA_ENGINE_TIMEOUT_MIN_MS), int(WSA_ENGINE_TIMEOUT_MAX_MS),
                    int(WSA_ENGINE_TIMEOUT_DEFAULT_MS));
        return WSA_ENGINE_TIMEOUT_DEFAULT_MS;
    }
    return int(ms);
}

WsaStartResult wsaLastStartResult()
{
    return lastStart;
}

void wsaReapEngines()
{
    reapEngines(0);
}

void wsaCloseEngineSocket()
{
    if (mainEngineSock >= 0) {
        close(mainEngineSock);
        mainEngineSock = -1;
        if (boundSocketPath[0])
            (void)unlink(boundSocketPath);
    }
    boundSocketPath[0] = '\0';
}

bool wsaShellQuote(const char* text, char* out, size_t outSize)
{
    if (!out || outSize == 0)
        return false;
    size_t n = 0;
    auto put = [&](const char* piece) {
        for (; *piece; ++piece) {
            if (n + 1 >= outSize)
                return false;
            out[n++] = *piece;
        }
        return true;
    };
    bool fits = put("'");
    for (const char* p = text ? text : ""; fits && *p; ++p) {
        // Inside single quotes nothing is special except the closing quote itself.
        const char single[2] = {*p, '\0'};
        fits = *p == '\'' ? put("'\\''") : put(single);
    }
    fits = fits && put("'");
    out[fits ? n : 0] = '\0';
    return fits;
}

void startAppEngines()
{
    reapEngines(0);
    lastStart = WSA_START_NO_SOCKET;
    std::fflush(stdout);
    (void)std::system("mount -t usbfs none /proc/bus/usb");

    // The previous listening socket is never used again once a new one exists.
    if (mainEngineSock >= 0)
        close(mainEngineSock);
    // Close-on-exec: the engine has no business holding the analyzer's sockets. Non-blocking:
    // a connection that goes away between poll and accept must not block the GUI.
    mainEngineSock = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (mainEngineSock < 0) {
        std::puts("main engine socket create fail ! ");
        std::fflush(stdout);
        return;
    }
    if (unlink(kSocketPath) != 0) {
        std::printf("unlink fail: %d\n", errno);
        std::fflush(stdout);
    }
    sockaddr_un addr;
    std::memset(&addr, 0, sizeof addr);
    addr.sun_family = AF_UNIX;
    std::memcpy(addr.sun_path, kSocketPath, sizeof kSocketPath);
    if (bindOwnerOnly(mainEngineSock, addr) != 0) {
        std::puts("main engine socket bind fail ! ");
        std::fflush(stdout);
        return;
    }
    rememberSocketPath();
    (void)listen(mainEngineSock, 1);
    lastStart = WSA_START_NO_ENGINE;

    moduleImage[0].imagePath = wsaEnginePath();
    const char* argument = wsaSelectedBand().handheld->engineArgument;
    const bool ownGroups = wsaDesktopPaths();
    pid_t started[sizeof moduleImage / sizeof moduleImage[0]];
    int startedCount = 0;
    for (const stModuleImage& image : moduleImage) {
        std::fflush(stdout); // the child must not inherit unwritten output and print it again
        const pid_t pid = fork();
        if (pid == -1) {
            std::puts("fork failed ! terminating ");
            std::fflush(stdout);
        } else if (pid == 0) {
            if (ownGroups)
                (void)setpgid(0, 0);
            runEngine(image, argument);
        } else {
            // Set on both sides, so the group exists whichever runs first.
            if (ownGroups)
                (void)setpgid(pid, pid);
            rememberEngine(pid);
            started[startedCount++] = pid;
        }
    }

    sleep(1);
    const int fd = startedCount > 0 ? waitForEngine(started, startedCount) : -ECHILD;
    sockFd = fd >= 0 ? fd : -1;
    if (sockFd == -1) {
        std::printf("main accept sock fail: %d\n", -fd);
        std::fflush(stdout);
    } else {
        lastStart = WSA_START_CONNECTED;
    }
}
void stopAppEngines()
{
    // Forget the descriptor once closed: its number may be reused by anyone.
    if (sockFd >= 0) {
        close(sockFd);
        sockFd = -1;
    }
    if (wsaDesktopPaths()) {
        stopOwnEngines();
        return;
    }
    for (const stModuleImage& image : moduleImage) {
        char command[80];
        std::snprintf(command, sizeof command, "killall -9 %s", image.imageName);
        std::fflush(stdout);
        (void)std::system(command);
    }
    reapEngines(kReapWaitMs);
}

int CWsa::RestartAppEngines()
{
    stopAppEngines();
    initData();
    startAppEngines();
    resizeGrid();
    reportEngineStart();
    return 0;
}
