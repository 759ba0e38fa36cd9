#include "child.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

constexpr int kStopWaitMs = 1000;

} // namespace

int Child::start(const std::vector<std::string>& args)
{
    // Built before the fork: the child may only make async-signal-safe calls.
    std::vector<char*> argv;
    for (const std::string& arg : args)
        argv.push_back(const_cast<char*>(arg.c_str()));
    argv.push_back(nullptr);
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
        // Dies with the engine, also by SIGKILL, so no sweep program outlives us; its own group
        // lets stop() reach anything it starts.
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (getppid() != parent)
            _exit(127);
        setpgid(0, 0);
        signal(SIGPIPE, SIG_DFL);
        dup2(out[1], STDOUT_FILENO);
        execvp(argv[0], argv.data());
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

int Child::stop()
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

std::string describeStatus(int status)
{
    if (status >= 0 && WIFEXITED(status))
        return "exit status " + std::to_string(WEXITSTATUS(status));
    if (status >= 0 && WIFSIGNALED(status))
        return "signal " + std::to_string(WTERMSIG(status));
    return "unknown status";
}
