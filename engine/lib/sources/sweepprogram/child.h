// A sweep program run as our child, its standard output read through a pipe.
#ifndef ENGINE_SWEEPPROGRAM_CHILD_H
#define ENGINE_SWEEPPROGRAM_CHILD_H

#include <string>
#include <sys/types.h>
#include <vector>

class Child
{
public:
    Child() = default;
    ~Child() { stop(); }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    // Starts argv[0] (looked up on PATH) with stdout and stderr into non-blocking pipes.
    // Returns 0, or the errno of a failed start.
    int start(const std::vector<std::string>& argv);
    int fd() const { return m_fd; }
    // Its stderr, until that ends (then -1).
    int errFd() const { return m_errFd; }
    // Reads what it wrote to stderr so far; keeps the last few KiB. Closes errFd at its end.
    void drainErr();
    // The last line of its stderr that reports a failure, else its last non-empty one.
    std::string lastErrLine() const;
    // Ends the program (politely first, so it can release the device) and collects it.
    // Returns its wait status, or -1.
    int stop();

private:
    pid_t m_pid = -1;
    int m_fd = -1;
    int m_errFd = -1;
    std::string m_errTail;
};

// "exit status 1", "signal 9"
std::string describeStatus(int status);

#endif
