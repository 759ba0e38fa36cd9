// wsa_raw, the acquisition engine. It connects to ./SERVERSOCK in its working directory,
// announces its band with a Configured record and streams the sweeps of a simulated probe until
// the analyzer goes away.
//
// Usage: wsa_raw [-r 1 | -r 2]
//   -r 2 selects the 5 GHz band, -r 1 or nothing the 2.4 GHz band. The value may come in the
//   same argument ("-r 2", as the analyzer passes it) or in the next one (its shell fallback).
//
// Environment. Counts N are whole numbers >= 0 and count sweeps sent, short ones included.
// A value that cannot be used is reported on stderr and ignored.
//   WSA_SIM_SEED=S           seed of the scene, decimal or 0x-hex; the same seed and settings
//                            give the same byte stream. Default 20240611.
//   WSA_SIM_RATE=R           sweeps per second, fractions allowed, 0 to 1000, default 8. Sweep k
//                            is due k periods after the Configured record. 0: no sweeps; stay
//                            connected until the analyzer closes.
//   WSA_SIM_NO_PROBE=1       send No device (103) instead of Configured, then exit with 0.
//   WSA_SIM_LOSE_AFTER=N     when sweep N+1 is due, send Disconnect (100) instead, exit with 0.
//   WSA_SIM_DIE_AFTER=N      when sweep N+1 is due, die by SIGKILL without a record.
//   WSA_SIM_SHORT_AFTER=N    send only the first 2052 bytes of sweep N+1; the next sweep follows
//                            one period later, whole, so the stream is on record boundaries again.
//   WSA_SIM_CORRUPT_AFTER=N  after sweep N, in the next two periods, send a sweep record claiming
//                            5000 samples and then a record of unknown type 'z' (122); then the
//                            sweeps go on. These two do not count as sweeps.
//   WSA_SIM_SWEEPS=N         stop after sweep N and stay connected until the analyzer closes.
// The first count knob reached wins. With rate 0 no sweep is ever due, so none of them fires.
//
// Exit status: 0 when the analyzer closed the connection or a knob ended the stream; 1 when the
// analyzer could not be reached or a write failed.
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <unistd.h>

#include "link.h"
#include "options.h"
#include "scene.h"

namespace
{

// The analyzer sleeps a second after starting us before it accepts; connect() already succeeds
// once it listens, so five seconds of retries cover a slow start.
constexpr int kConnectAttempts = 100;
constexpr int kConnectIntervalMs = 50;
constexpr int kBadSampleCount = 5000;
constexpr char kUnknownType = 'z';

// Deadlines k periods after a start, so rounding never accumulates into drift.
class Pacer
{
public:
    explicit Pacer(double rate) : m_periodNs(1e9L / rate)
    {
        clock_gettime(CLOCK_MONOTONIC, &m_start);
    }
    timespec next()
    {
        const long long ns = (long long)(++m_count * m_periodNs);
        timespec t = m_start;
        t.tv_sec += time_t(ns / 1000000000LL);
        t.tv_nsec += long(ns % 1000000000LL);
        if (t.tv_nsec >= 1000000000L) {
            t.tv_sec += 1;
            t.tv_nsec -= 1000000000L;
        }
        return t;
    }

private:
    long double m_periodNs;
    timespec m_start;
    long long m_count = 0;
};

bool reached(long knob, long sent)
{
    return knob >= 0 && sent == knob;
}

int finish(SendResult result)
{
    if (result != SendResult::Failed)
        return 0;
    std::fprintf(stderr, "wsa_raw: write to the analyzer failed: %s\n", std::strerror(errno));
    return 1;
}

int sendMessage(int fd, char type)
{
    stSweep message{};
    message.type = type;
    return finish(sendRecord(fd, message));
}

int stream(int fd, const Options& options)
{
    if (options.noProbe)
        return sendMessage(fd, SA_MSG_NO_DEVICE);

    Scene scene(options.band, options.seed);
    const BandLayout& layout = scene.layout();
    stSweep record{};
    record.type = SA_MSG_CONFIGURED;
    record.num_samples = layout.samples;
    record.data[0] = layout.startMHz;
    record.data[1] = layout.endMHz;
    record.data[2] = layout.stepKHz;
    SendResult result = sendRecord(fd, record);
    if (result != SendResult::Sent)
        return finish(result);
    if (options.rate <= 0) {
        waitForPeerClose(fd);
        return 0;
    }

    Pacer pacer(options.rate);
    record = stSweep{};
    stSweep odd{};
    long sent = 0;
    int corruptSent = 0;
    for (;;) {
        if (reached(options.sweeps, sent)) {
            waitForPeerClose(fd);
            return 0;
        }
        if (!waitUntil(fd, pacer.next()))
            return 0;
        if (reached(options.dieAfter, sent)) {
            raise(SIGKILL);
            return 1;
        }
        if (reached(options.loseAfter, sent))
            return sendMessage(fd, SA_MSG_DISCONNECT);

        if (reached(options.corruptAfter, sent) && corruptSent < 2) {
            odd = record;
            odd.type = corruptSent == 0 ? char(SA_MSG_SWEEP) : kUnknownType;
            odd.num_samples = corruptSent == 0 ? kBadSampleCount : layout.samples;
            ++corruptSent;
            result = sendRecord(fd, odd);
        } else {
            scene.nextSweep(record.data);
            record.type = SA_MSG_SWEEP;
            record.num_samples = layout.samples;
            const bool cut = reached(options.shortAfter, sent);
            result = sendRecord(fd, record, cut ? SA_RECORD_SIZE / 2 : SA_RECORD_SIZE);
            ++sent;
        }
        if (result != SendResult::Sent)
            return finish(result);
    }
}

} // namespace

int main(int argc, char* argv[])
{
    const Options options = parseOptions(argc, argv);
    const int fd = connectToAnalyzer("SERVERSOCK", kConnectAttempts, kConnectIntervalMs);
    if (fd < 0) {
        std::fprintf(stderr, "wsa_raw: cannot connect to ./SERVERSOCK: %s\n", std::strerror(errno));
        return 1;
    }
    const int status = stream(fd, options);
    close(fd);
    return status;
}
