#include "output.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <linux/sockios.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include "link.h"
#include "recorder.h"

namespace
{

// While the analyzer is not reading, look again this often, so that a record follows soon
// after it resumes.
constexpr long long kRecheckNs = 10 * 1000000LL;
// Levels on the wire are whole dBm; this keeps absurd input (a wrong offset) printable.
constexpr long kMinDbm = -200;
constexpr long kMaxDbm = 50;

} // namespace

long long monotonicNs()
{
    timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return ts.tv_sec * 1000000000LL + ts.tv_nsec;
}

Output::Output(int fd, const Grid& grid, Detector detector, double rate, Recorder* recorder)
    : m_fd(fd), m_grid(grid), m_detector(detector), m_periodNs((long long)(1e9 / rate)),
      m_recorder(recorder)
{
}

void Output::offer(const double* levels)
{
    if (m_stale) {
        m_count = 0;
        m_stale = false;
    }
    const int n = m_grid.raw;
    if (m_detector == Detector::Peak) {
        if (m_count == 0)
            std::copy(levels, levels + n, m_combined);
        else
            for (int i = 0; i < n; ++i)
                m_combined[i] = std::max(m_combined[i], levels[i]);
    } else {
        if (m_count == 0)
            std::fill(m_combined, m_combined + n, 0.0);
        for (int i = 0; i < n; ++i)
            m_combined[i] += std::pow(10.0, levels[i] / 10);
    }
    ++m_count;
}

// The bytes the analyzer has not read yet; unknown counts as read, which at worst queues a
// record.
bool Output::analyzerHasRead() const
{
    int unread = 0;
    return ioctl(m_fd, SIOCOUTQ, &unread) != 0 || unread == 0;
}

SendResult Output::sendPending()
{
    stSweep record{};
    record.type = SA_MSG_SWEEP;
    record.num_samples = m_grid.raw;
    for (int i = 0; i < m_grid.raw; ++i) {
        const double level =
            m_detector == Detector::Peak ? m_combined[i] : 10 * std::log10(m_combined[i] / m_count);
        record.data[i] = int(std::clamp(std::lround(level), kMinDbm, kMaxDbm));
    }
    m_count = 0;
    m_stale = false;
    const SendResult result = sendRecord(m_fd, record);
    if (result != SendResult::Sent)
        return result;
    ++m_sent;
    if (m_recorder)
        m_recorder->append(record.data);
    return result;
}

bool Output::sendStatus(char type)
{
    stSweep record{};
    record.type = type;
    return sendRecord(m_fd, record) == SendResult::Sent;
}

WaitResult Output::waitForReader()
{
    while (!analyzerHasRead()) {
        pollfd pfd{m_fd, POLLIN, 0};
        const int ready = poll(&pfd, 1, int(kRecheckNs / 1000000));
        if (ready < 0 && errno != EINTR)
            return WaitResult::Failed;
        if (ready > 0 && peerGone(m_fd))
            return WaitResult::PeerGone;
    }
    return WaitResult::Deadline;
}

WaitResult Output::waitFor(int sourceFd, long long deadlineNs)
{
    for (;;) {
        long long now = monotonicNs();
        long long wakeNs = deadlineNs;
        if (m_count > 0 && now >= m_nextSlotNs) {
            if (analyzerHasRead()) {
                const SendResult result = sendPending();
                if (result != SendResult::Sent)
                    return result == SendResult::PeerGone ? WaitResult::PeerGone
                                                          : WaitResult::Failed;
                // Late by more than a period (the analyzer was not reading): start a new grid
                // of slots rather than catch up with a burst.
                m_nextSlotNs =
                    now - m_nextSlotNs > m_periodNs ? now + m_periodNs : m_nextSlotNs + m_periodNs;
                m_staleAtNs = m_nextSlotNs;
            } else {
                if (now >= m_staleAtNs) {
                    m_stale = true;
                    m_staleAtNs = now + m_periodNs;
                }
                wakeNs = wakeNs < 0 ? now + kRecheckNs : std::min(wakeNs, now + kRecheckNs);
            }
        }
        if (m_count > 0 && m_nextSlotNs > now)
            wakeNs = wakeNs < 0 ? m_nextSlotNs : std::min(wakeNs, m_nextSlotNs);
        if (deadlineNs >= 0 && now >= deadlineNs)
            return WaitResult::Deadline;

        pollfd fds[2] = {{m_fd, POLLIN, 0}, {sourceFd, POLLIN, 0}};
        const long long waitNs = wakeNs < 0 ? -1 : std::max(0LL, wakeNs - now);
        const int timeoutMs = waitNs < 0 ? -1 : int((waitNs + 999999) / 1000000);
        const int ready = poll(fds, sourceFd >= 0 ? 2 : 1, timeoutMs);
        if (ready < 0 && errno != EINTR)
            return WaitResult::Failed;
        if (ready > 0 && fds[0].revents && peerGone(m_fd))
            return WaitResult::PeerGone;
        if (ready > 0 && sourceFd >= 0 && fds[1].revents)
            return WaitResult::SourceReady;
    }
}
