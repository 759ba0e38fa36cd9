#include "child.h"

#include <cctype>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

constexpr int kStopWaitMs = 1000;
// A usage text is some 3 KiB; the failure it follows is in here.
constexpr std::size_t kErrTailBytes = 16 * 1024;

} // namespace

int Child::start(const std::vector<std::string>& args)
{
    // Built before the fork: the child may only make async-signal-safe calls.
    std::vector<char*> argv;
    for (const std::string& arg : args)
        argv.push_back(const_cast<char*>(arg.c_str()));
    argv.push_back(nullptr);
    // out: its stdout; log: its stderr; err: the errno of a failed exec.
    int out[2], log[2], err[2];
    if (pipe2(out, O_CLOEXEC) != 0)
        return errno;
    if (pipe2(log, O_CLOEXEC) != 0) {
        const int e = errno;
        close(out[0]), close(out[1]);
        return e;
    }
    if (pipe2(err, O_CLOEXEC) != 0) {
        const int e = errno;
        close(out[0]), close(out[1]), close(log[0]), close(log[1]);
        return e;
    }
    m_errTail.clear();
    const pid_t parent = getpid();
    m_pid = fork();
    if (m_pid == 0) {
        // Dies with the engine, also by SIGKILL, so no sweep program outlives us; its own group
        // lets stop() reach anything it starts.
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (getppid() != parent)
            _exit(127);
        setpgid(0, 0);
        signal(SIGPIPE, SIG_DFL);
        dup2(out[1], STDOUT_FILENO);
        dup2(log[1], STDERR_FILENO);
        execvp(argv[0], argv.data());
        const int e = errno;
        (void)!write(err[1], &e, sizeof e);
        _exit(127);
    }
    const int forkErrno = errno;
    close(out[1]);
    close(log[1]);
    close(err[1]);
    if (m_pid < 0) {
        close(out[0]), close(log[0]), close(err[0]);
        return forkErrno;
    }
    setpgid(m_pid, m_pid); // either side may win the race
    int execErrno = 0;
    ssize_t n;
    while ((n = read(err[0], &execErrno, sizeof execErrno)) < 0 && errno == EINTR) {
    }
    close(err[0]);
    m_fd = out[0];
    m_errFd = log[0];
    if (n == ssize_t(sizeof execErrno)) {
        stop();
        return execErrno;
    }
    fcntl(m_fd, F_SETFL, O_NONBLOCK);
    fcntl(m_errFd, F_SETFL, O_NONBLOCK);
    return 0;
}

void Child::drainErr()
{
    char chunk[4096];
    while (m_errFd >= 0) {
        const ssize_t n = read(m_errFd, chunk, sizeof chunk);
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0 && errno == EAGAIN)
            return;
        if (n <= 0) {
            close(m_errFd);
            m_errFd = -1;
            return;
        }
        m_errTail.append(chunk, std::size_t(n));
        if (m_errTail.size() > kErrTailBytes)
            m_errTail.erase(0, m_errTail.size() - kErrTailBytes);
    }
}

std::string Child::lastErrLine() const
{
    std::string last, failure;
    std::size_t start = 0;
    while (start < m_errTail.size()) {
        std::size_t end = m_errTail.find('\n', start);
        if (end == std::string::npos)
            end = m_errTail.size();
        std::string line = m_errTail.substr(start, end - start);
        start = end + 1;
        while (!line.empty() && std::isspace(static_cast<unsigned char>(line.back())))
            line.pop_back();
        line.erase(0, line.find_first_not_of(" \t"));
        if (line.empty())
            continue;
        last = line;
        std::string lower = line;
        for (char& c : lower)
            c = char(std::tolower(static_cast<unsigned char>(c)));
        if (lower.find("fail") != std::string::npos || lower.find("error") != std::string::npos)
            failure = line;
    }
    return failure.empty() ? last : failure;
}

int Child::stop()
{
    if (m_fd >= 0)
        close(m_fd), m_fd = -1;
    if (m_pid <= 0) {
        if (m_errFd >= 0)
            close(m_errFd), m_errFd = -1;
        return -1;
    }
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
    // Its last words, for the report of why it ended.
    drainErr();
    if (m_errFd >= 0)
        close(m_errFd), m_errFd = -1;
    return status;
}

std::string describeStatus(int status)
{
    if (status >= 0 && WIFEXITED(status))
        return "exit status " + std::to_string(WEXITSTATUS(status));
    if (status >= 0 && WIFSIGNALED(status))
        return "signal " + std::to_string(WTERMSIG(status));
    return "unknown status";
}
