// The simulated probe and its fault knobs (see main.cpp).
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>

#include "link.h"
#include "output.h"
#include "sources.h"

namespace
{

constexpr int kBadSampleCount = 5000;
constexpr char kUnknownType = 'z';

bool reached(long knob, long made)
{
    return knob >= 0 && made == knob;
}

int finish(bool ok)
{
    if (ok)
        return 0;
    std::fprintf(stderr, "wsa_raw: write to the analyzer failed: %s\n", std::strerror(errno));
    return 1;
}

int finish(WaitResult result)
{
    return finish(result != WaitResult::Failed);
}

} // namespace

int runSim(int fd, const Options& options, Output& output)
{
    if (options.noProbe)
        return finish(output.sendStatus(SA_MSG_NO_DEVICE));

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
        return finish(result != SendResult::Failed);
    if (options.rate <= 0)
        return finish(output.waitFor(-1, -1));

    // Sweep k is due k periods after the start, so rounding never accumulates into drift.
    const long double periodNs = 1e9L / options.rate;
    const long long startNs = monotonicNs();
    double levels[SA_MAX_SAMPLES];
    long made = 0;
    int corruptSent = 0;
    for (long k = 1;; ++k) {
        if (reached(options.sweeps, made))
            return finish(output.waitFor(-1, -1));
        const WaitResult waited = output.waitFor(-1, startNs + (long long)(k * periodNs));
        if (waited != WaitResult::Deadline)
            return finish(waited);
        if (reached(options.dieAfter, made)) {
            raise(SIGKILL);
            return 1;
        }
        if (reached(options.loseAfter, made))
            return finish(output.sendStatus(SA_MSG_DISCONNECT));

        // The damaged records bypass the output stage: they stand for a broken link.
        if (reached(options.corruptAfter, made) && corruptSent < 2) {
            record.type = corruptSent == 0 ? char(SA_MSG_SWEEP) : kUnknownType;
            record.num_samples = corruptSent == 0 ? kBadSampleCount : layout.samples;
            ++corruptSent;
            result = sendRecord(fd, record);
        } else {
            scene.nextSweep(record.data);
            record.type = SA_MSG_SWEEP;
            record.num_samples = layout.samples;
            if (reached(options.shortAfter, made)) {
                result = sendRecord(fd, record, SA_RECORD_SIZE / 2);
            } else {
                for (int i = 0; i < layout.samples; ++i)
                    levels[i] = record.data[i];
                output.offer(levels);
            }
            ++made;
        }
        if (result != SendResult::Sent)
            return finish(result != SendResult::Failed);
    }
}
