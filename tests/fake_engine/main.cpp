// A stand-in engine for tests. It appends its command line to $FAKE_ENGINE_LOG, then acts as
// $FAKE_ENGINE_MODE says:
//   connect (default)  connect to ./SERVERSOCK, send the records of $FAKE_ENGINE_RECORDS (raw
//                      bytes, if set), then stay until the analyzer closes the connection;
//   noconnect          never connect; sleep until killed (at most a minute).
// $FAKE_ENGINE_DELAY_MS, if set, delays the connection by that many milliseconds.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <signal.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

static void logCommandLine(int argc, char** argv)
{
    const char* path = std::getenv("FAKE_ENGINE_LOG");
    if (!path)
        return;
    FILE* f = std::fopen(path, "a");
    if (!f)
        return;
    for (int i = 0; i < argc; ++i)
        std::fprintf(f, "%s%s", i ? "|" : "", argv[i]);
    std::fputc('\n', f);
    std::fclose(f);
}

static int connectToAnalyzer()
{
    sockaddr_un addr{};
    addr.sun_family = AF_UNIX;
    std::strcpy(addr.sun_path, "SERVERSOCK");
    for (int attempt = 0; attempt < 100; ++attempt) {
        int fd = socket(AF_UNIX, SOCK_STREAM, 0);
        if (fd < 0)
            return -1;
        if (connect(fd, reinterpret_cast<sockaddr*>(&addr), sizeof addr) == 0)
            return fd;
        close(fd);
        usleep(50 * 1000);
    }
    return -1;
}

static void sendFile(int fd, const char* path)
{
    FILE* f = std::fopen(path, "rb");
    if (!f)
        return;
    char buf[4096];
    size_t n;
    while ((n = std::fread(buf, 1, sizeof buf, f)) > 0) {
        if (send(fd, buf, n, MSG_NOSIGNAL) < 0)
            break;
    }
    std::fclose(f);
}

int main(int argc, char** argv)
{
    logCommandLine(argc, argv);
    const char* mode = std::getenv("FAKE_ENGINE_MODE");
    if (mode && std::strcmp(mode, "noconnect") == 0) {
        sleep(60);
        return 0;
    }
    if (const char* delay = std::getenv("FAKE_ENGINE_DELAY_MS"))
        usleep(useconds_t(std::atoi(delay)) * 1000);
    int fd = connectToAnalyzer();
    if (fd < 0)
        return 1;
    if (const char* records = std::getenv("FAKE_ENGINE_RECORDS"))
        sendFile(fd, records);
    char sink[4096];
    while (recv(fd, sink, sizeof sink, 0) > 0) {
    }
    close(fd);
    return 0;
}
