// Engine process control: the engine runs as our child and connects back over ./SERVERSOCK.
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include "wsa_p.h"

// imagePath is refreshed from wsaEnginePath() at every start, so WSA_ENGINE_PATH takes effect.
stModuleImage moduleImage[1] = {{"/usr/local/tessa/bin/wsa_raw", "wsa_raw"}};
int s_band = 0;
int mainEngineSock = -1;
int sockFd = -1;

namespace
{

const char kSocketPath[] = "SERVERSOCK";
const int kDefaultConnectTimeoutMs = 10000;
// After SIGKILL an engine ends within milliseconds; this only bounds a pathological case.
const int kReapWaitMs = 500;

// Engines we forked and have not yet collected. Only these are waited for: the host may own
// children of its own, so never waitpid(-1).
pid_t enginePids[16];
int enginePidCount = 0;

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

int connectTimeoutMs()
{
    const char* text = std::getenv("WSA_ENGINE_TIMEOUT_MS");
    if (!text || !*text)
        return kDefaultConnectTimeoutMs;
    char* end = nullptr;
    const long ms = std::strtol(text, &end, 10);
    if (*end != '\0' || ms < 0 || ms > INT_MAX)
        return kDefaultConnectTimeoutMs;
    return int(ms);
}

// Waits for the engine to connect, at most the configured time: an engine that cannot start
// (failed fork, missing program) must not hang the GUI. Returns 0, or an errno value.
int waitForConnection()
{
    const long long deadline = monotonicMs() + connectTimeoutMs();
    pollfd pfd = {mainEngineSock, POLLIN, 0};
    for (;;) {
        const long long left = deadline - monotonicMs();
        const int r = poll(&pfd, 1, left > 0 ? int(left) : 0);
        if (r > 0)
            return 0;
        if (r == 0)
            return ETIMEDOUT;
        if (errno != EINTR)
            return errno;
    }
}

[[noreturn]] void runEngine(const stModuleImage& image)
{
    if (s_band)
        execl(image.imagePath, image.imageName, "-r 2", static_cast<char*>(nullptr));
    else
        execl(image.imagePath, image.imageName, static_cast<char*>(nullptr));
    std::printf("errno=%d\n", errno);
    std::fflush(stdout);
    errno = 0;
    char command[PATH_MAX + 16];
    const int n =
        std::snprintf(command, sizeof command, s_band ? "%s -r 2&" : "%s &", image.imagePath);
    if (n > 0 && size_t(n) < sizeof command)
        (void)std::system(command);
    std::fflush(stdout);
    // _exit, not exit: this is a copy of the GUI process, whose exit handlers and static
    // destructors (Qt, the host's) belong to the parent and must not run twice.
    _exit(0);
}

} // namespace

void startAppEngines()
{
    reapEngines(0);
    std::fflush(stdout);
    (void)std::system("mount -t usbfs none /proc/bus/usb");

    // The previous listening socket is never used again once a new one exists.
    if (mainEngineSock >= 0)
        close(mainEngineSock);
    // Close-on-exec: the engine has no business holding the analyzer's sockets.
    mainEngineSock = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
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
    if (bind(mainEngineSock, reinterpret_cast<sockaddr*>(&addr), sizeof addr) != 0) {
        std::puts("main engine socket bind fail ! ");
        std::fflush(stdout);
        return;
    }
    (void)listen(mainEngineSock, 1);

    moduleImage[0].imagePath = wsaEnginePath();
    for (const stModuleImage& image : moduleImage) {
        std::fflush(stdout); // the child must not inherit unwritten output and print it again
        const pid_t pid = fork();
        if (pid == -1) {
            std::puts("fork failed ! terminating ");
            std::fflush(stdout);
        } else if (pid == 0) {
            runEngine(image);
        } else {
            rememberEngine(pid);
        }
    }

    sleep(1);
    int error = waitForConnection();
    if (error == 0) {
        sockFd = accept4(mainEngineSock, nullptr, nullptr, SOCK_CLOEXEC);
        if (sockFd == -1)
            error = errno;
    } else {
        sockFd = -1;
    }
    if (sockFd == -1) {
        std::printf("main accept sock fail: %d\n", error);
        std::fflush(stdout);
    }
}

void stopAppEngines()
{
    // Forget the descriptor once closed: its number may be reused by anyone.
    if (sockFd >= 0) {
        close(sockFd);
        sockFd = -1;
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
    return 0;
}
