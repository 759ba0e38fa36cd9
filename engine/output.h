// The one pacing stage every source goes through. Sources hand in sweeps as fast as they come;
// the analyzer reads one record per 100 ms tick and may not read at all for minutes while it
// shows a message box. So sweeps are combined by a detector and sent at most `rate` times a
// second, and only when the analyzer has taken the previous record: nothing ever queues in the
// socket, and what it reads next is at most one output period old.
#ifndef ENGINE_OUTPUT_H
#define ENGINE_OUTPUT_H

#include "grid.h"
#include "link.h"

class Recorder;

enum class Detector { Peak, Average };

enum class WaitResult { Deadline, SourceReady, PeerGone, Failed };

long long monotonicNs();

class Output
{
public:
    Output(int fd, const Grid& grid, Detector detector, double rate, Recorder* recorder);

    // One sweep of `grid.raw` levels in dBm.
    void offer(const double* levels);
    // Sends what is pending whenever a slot is due and the analyzer has read the last record,
    // until monotonicNs() reaches deadlineNs (< 0: no deadline), sourceFd (>= 0) is readable or
    // the analyzer has gone. Returns which came first.
    WaitResult waitFor(int sourceFd, long long deadlineNs);
    // Waits until the analyzer has read everything sent so far (it reads nothing while a message
    // box is open); Deadline once it has.
    WaitResult waitForReader();
    // Sends a status record at once, ahead of anything pending.
    bool sendStatus(char type);
    long sent() const { return m_sent; }

private:
    bool analyzerHasRead() const;
    SendResult sendPending();

    int m_fd;
    Grid m_grid;
    Detector m_detector;
    long long m_periodNs;
    Recorder* m_recorder;
    // The combination in progress: peak levels, or the sum of powers (mW) for the average.
    double m_combined[SA_MAX_SAMPLES];
    int m_count = 0;
    // A slot passed while the analyzer was not reading: the next sweep starts a fresh
    // combination, so that the screen is current when reading resumes.
    bool m_stale = false;
    long long m_nextSlotNs = 0;
    long long m_staleAtNs = 0;
    long m_sent = 0;
};

#endif
