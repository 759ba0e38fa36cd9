// A HackRF through hackrf_sweep, read live. Its CSV output is used rather than its binary -B
// form: the text layout is the documented one, the same parser then replays saved output and
// our own recordings, and at a few thousand bins per sweep parsing costs little (bench_engine).
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "output.h"
#include "sources.h"
#include "sweepcsv.h"

namespace
{

// Levels of hackrf_sweep are dB relative to full scale; this lifts its typical noise floor at
// the default gains and bin width to about -95 dBm. A starting point, not a calibration.
constexpr double kDefaultOffsetDb = -20.0;
// Opening the device and the first tuning take well under a second.
constexpr long long kFirstRowNs = 10 * 1000000000LL;
constexpr int kStopWaitMs = 1000;
// A band change kills the previous engine, and with it its sweep program, just before this one
// starts: the device may not be free yet at the first attempt.
constexpr int kStartAttempts = 3;
constexpr int kRetryPauseMs = 500;

class Child
{
public:
    ~Child() { stop(); }

    // Starts the program with stdout into a pipe. Returns 0, or the errno of a failed start.
    int start(const std::string& program, char* const argv[])
    {
        int out[2], err[2];
        if (pipe2(out, O_CLOEXEC) != 0)
            return errno;
        if (pipe2(err, O_CLOEXEC) != 0) {
            const int e = errno;
            close(out[0]), close(out[1]);
            return e;
        }
        const pid_t parent = getpid();
        m_pid = fork();
        if (m_pid == 0) {
            // Dies with the engine, also by SIGKILL, so no sweep program outlives us; its own
            // group lets stop() reach anything it starts.
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            if (getppid() != parent)
                _exit(127);
            setpgid(0, 0);
            signal(SIGPIPE, SIG_DFL);
            dup2(out[1], STDOUT_FILENO);
            execvp(program.c_str(), argv);
            const int e = errno;
            (void)!write(err[1], &e, sizeof e);
            _exit(127);
        }
        const int forkErrno = errno;
        close(out[1]);
        close(err[1]);
        if (m_pid < 0) {
            close(out[0]), close(err[0]);
            return forkErrno;
        }
        setpgid(m_pid, m_pid); // either side may win the race
        int execErrno = 0;
        ssize_t n;
        while ((n = read(err[0], &execErrno, sizeof execErrno)) < 0 && errno == EINTR) {
        }
        close(err[0]);
        m_fd = out[0];
        if (n == ssize_t(sizeof execErrno)) {
            stop();
            return execErrno;
        }
        fcntl(m_fd, F_SETFL, O_NONBLOCK);
        return 0;
    }

    int fd() const { return m_fd; }

    // Ends the program (politely first, so it can release the device) and collects it.
    // Returns its wait status, or -1.
    int stop()
    {
        if (m_fd >= 0)
            close(m_fd), m_fd = -1;
        if (m_pid <= 0)
            return -1;
        int status = -1;
        if (waitpid(m_pid, &status, WNOHANG) == 0) {
            kill(-m_pid, SIGTERM);
            kill(m_pid, SIGTERM);
            for (int waited = 0; waited < kStopWaitMs; waited += 10) {
                if (waitpid(m_pid, &status, WNOHANG) != 0)
                    break;
                usleep(10 * 1000);
            }
            if (waitpid(m_pid, &status, WNOHANG) == 0) {
                kill(-m_pid, SIGKILL);
                kill(m_pid, SIGKILL);
                waitpid(m_pid, &status, 0);
            }
        }
        kill(-m_pid, SIGKILL); // anything it left behind in its group
        m_pid = -1;
        return status;
    }

private:
    pid_t m_pid = -1;
    int m_fd = -1;
};

std::string describe(int status)
{
    if (status >= 0 && WIFEXITED(status))
        return "exit status " + std::to_string(WEXITSTATUS(status));
    if (status >= 0 && WIFSIGNALED(status))
        return "signal " + std::to_string(WTERMSIG(status));
    return "unknown status";
}

} // namespace

int runHackRf(int fd, const Options& options, Output& output)
{
    const Grid grid = bandGrid(options.band);
    // Whole MHz around the grid's outer cells.
    const long lowMHz = long(std::floor((grid.startHz - grid.stepHz / 2) / 1e6));
    const long highMHz = long(std::ceil((grid.endHz + grid.stepHz / 2) / 1e6));
    std::string range = std::to_string(lowMHz) + ":" + std::to_string(highMHz);
    std::string bin = std::to_string(options.hackrfBinHz);
    std::string program = options.hackrfSweep;
    char fArg[] = "-f", wArg[] = "-w";
    char* argv[] = {program.data(), fArg, range.data(), wArg, bin.data(), nullptr};

    Child child;
    if (const int error = child.start(program, argv))
        return noProbe(output, ("cannot run " + program).c_str(), std::strerror(error));

    SweepAssembler sweeps(grid, options.offsetSet ? options.offsetDb : kDefaultOffsetDb);
    CsvRow row;
    double levels[SA_MAX_SAMPLES];
    static char buffer[256 * 1024];
    std::size_t used = 0;
    bool configured = false;
    int attempts = 0;
    const long long firstRowDeadline = monotonicNs() + kFirstRowNs;
    for (;;) {
        const WaitResult waited = output.waitFor(child.fd(), configured ? -1 : firstRowDeadline);
        if (waited == WaitResult::PeerGone)
            return 0;
        if (waited == WaitResult::Failed)
            return 1;
        if (waited == WaitResult::Deadline) {
            child.stop();
            return noProbe(output, (program + " gave no sweep within 10 s").c_str());
        }
        const ssize_t n = read(child.fd(), buffer + used, sizeof buffer - 1 - used);
        if (n < 0 && (errno == EINTR || errno == EAGAIN))
            continue;
        if (n <= 0) {
            const std::string status = describe(child.stop());
            if (!configured && ++attempts < kStartAttempts) {
                usleep(kRetryPauseMs * 1000);
                if (const int error = child.start(program, argv))
                    return noProbe(output, ("cannot run " + program).c_str(), std::strerror(error));
                used = 0;
                continue;
            }
            if (!configured)
                return noProbe(output, (program + " ended before measuring").c_str(),
                               status.c_str());
            std::fprintf(stderr, "wsa_raw: %s ended (%s): the radio was lost\n", program.c_str(),
                         status.c_str());
            return output.sendStatus(SA_MSG_DISCONNECT) ? 0 : 1;
        }
        used += std::size_t(n);
        buffer[used] = '\0';
        char* line = buffer;
        while (char* end = static_cast<char*>(std::memchr(line, '\n', used - (line - buffer)))) {
            *end = '\0';
            if (parseCsvRow(line, row)) {
                if (!configured && !sendConfigured(fd, grid))
                    return 1;
                configured = true;
                if (sweeps.feed(row)) {
                    sweeps.take(levels);
                    output.offer(levels);
                }
            }
            line = end + 1;
        }
        // Keep the unfinished line; one that fills the whole buffer is not a row.
        used -= std::size_t(line - buffer);
        if (used == sizeof buffer - 1)
            used = 0;
        std::memmove(buffer, line, used);
    }
}
