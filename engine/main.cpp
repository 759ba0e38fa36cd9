// wsa_raw, the acquisition engine. It connects to ./SERVERSOCK in its working directory,
// announces its band with a Configured record and streams sweeps until the analyzer goes away.
//
// Usage: wsa_raw [-r 1 | -r 2]
//   -r 2 selects the 5 GHz band, -r 1 or nothing the 2.4 GHz band. The value may come in the
//   same argument ("-r 2", as the analyzer passes it) or in the next one (its shell fallback).
//
// The analyzer's command line is fixed, so everything else comes from the environment.
// A value that cannot be used is reported on stderr and ignored.
//
//   WSA_SOURCE=sim|hackrf|replay  where sweeps come from, default sim. Any other value: a line
//                            on stderr and a No-probe record.
//   WSA_OUTPUT_RATE=R        records per second at most, above 0 up to 1000, default 8. Sweeps
//                            arriving between two records are combined (see output.h).
//   WSA_DETECTOR=peak|average  how they are combined: the maximum per bin (default), or the
//                            mean power.
//   WSA_RECORD_DIR=DIR       append every sweep sent to a new CSV file in DIR (see recorder.h).
//                            Unset or empty: no recording.
//   WSA_LEVEL_OFFSET_DB=D    added to measured levels (hackrf default -20, replay default 0).
//
// hackrf: runs hackrf_sweep over the band and reads its CSV output.
//   WSA_HACKRF_SWEEP=PATH    the program, default hackrf_sweep found on PATH.
//   WSA_HACKRF_BIN_HZ=W      its bin width (-w), 2445 to 5000000 Hz, default 250000.
//   The program missing, ending before its first row three times, or silent for 10 s: No probe.
//   Its end or the end of its output later: Disconnect. It dies with the engine.
//
// replay: plays a file in the sweep CSV layout, ours or hackrf_sweep's.
//   WSA_REPLAY_FILE=FILE     the recording. Missing, or without a row in the band: No probe.
//   WSA_REPLAY_SPEED=F       a factor on the pace of its time stamps, default 1; pauses longer
//                            than 5 s play as 5 s. At its end the engine stays connected and
//                            sends nothing.
//
// sim: the simulated probe. Counts N are whole numbers >= 0 and count sweeps made, short ones
// included.
//   WSA_SIM_SEED=S           seed of the scene, decimal or 0x-hex; the same seed and settings
//                            give the same sweeps. Default 20240611.
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
//   The first count knob reached wins. With rate 0 no sweep is ever due, so none of them fires.
//   Damaged records bypass the output stage; with WSA_SIM_RATE above WSA_OUTPUT_RATE sweeps are
//   combined like any source's.
//
// Exit status: 0 when the analyzer closed the connection or the source ended the stream; 1 when
// the analyzer could not be reached or a write failed.
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>
#include <unistd.h>

#include "link.h"
#include "options.h"
#include "output.h"
#include "recorder.h"
#include "sources.h"

namespace
{

// The analyzer sleeps a second after starting us before it accepts; connect() already succeeds
// once it listens, so five seconds of retries cover a slow start.
constexpr int kConnectAttempts = 100;
constexpr int kConnectIntervalMs = 50;

} // namespace

int main(int argc, char* argv[])
{
    const Options options = parseOptions(argc, argv);
    const int fd = connectToAnalyzer("SERVERSOCK", kConnectAttempts, kConnectIntervalMs);
    if (fd < 0) {
        std::fprintf(stderr, "wsa_raw: cannot connect to ./SERVERSOCK: %s\n", std::strerror(errno));
        return 1;
    }
    const Grid grid = bandGrid(options.band);
    std::unique_ptr<Recorder> recorder;
    if (!options.recordDir.empty() && options.source != Source::Unknown)
        recorder = std::make_unique<Recorder>(options.recordDir.c_str(), options.band);
    Output output(fd, grid, options.detector, options.outputRate, recorder.get());

    int status = 0;
    switch (options.source) {
    case Source::Sim:
        status = runSim(fd, options, output);
        break;
    case Source::HackRf:
        status = runHackRf(fd, options, output);
        break;
    case Source::Replay:
        status = runReplay(fd, options, output);
        break;
    case Source::Unknown:
        status = noProbe(output, ("unknown WSA_SOURCE=" + options.sourceName).c_str(),
                         "use sim, hackrf or replay");
        break;
    }
    close(fd);
    return status;
}
