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

    // Starts argv[0] (looked up on PATH) with stdout into a non-blocking pipe. Returns 0, or
    // the errno of a failed start.
    int start(const std::vector<std::string>& argv);
    int fd() const { return m_fd; }
    // Ends the program (politely first, so it can release the device) and collects it.
    // Returns its wait status, or -1.
    int stop();

private:
    pid_t m_pid = -1;
    int m_fd = -1;
};

// "exit status 1", "signal 9"
std::string describeStatus(int status);

#endif
