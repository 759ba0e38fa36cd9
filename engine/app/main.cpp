// wsa_raw, the acquisition engine: the environment chooses a source from the registry, its
// sweeps go through pacing to the sinks. Its variables are listed by `wsa_raw --help` (the
// table in the engine library); the analyzer starts it as `wsa_raw [-r N]` in the directory of
// its socket ./SERVERSOCK; a desktop front-end names its own socket in WSA_FRONT_SOCKET.
//
// Exit status: 0 when the front-end closed the connection or the source ended the stream; 1 when
// the front-end could not be reached or a write failed; 2 for a setting that leaves nothing to do.
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <unistd.h>

#include "analysisstage.h"
#include "csvrecorder.h"
#include "enginecore.h"
#include "frontsocket.h"
#include "options.h"
#include "recordsocket.h"
#include "registry.h"

namespace
{

// The analyzer sleeps a second after starting us before it accepts; connect() already succeeds
// once it listens, so five seconds of retries cover a slow start.
constexpr int kConnectAttempts = 100;
constexpr int kConnectIntervalMs = 50;

// Recording on its own ends at SIGTERM or SIGINT; the signal only marks the pipe, and the
// engine's next wait sees it.
int s_stopPipe[2] = {-1, -1};

void onStopSignal(int)
{
    const char byte = 0;
    (void)!write(s_stopPipe[1], &byte, 1);
}

int stopFdOnSignals()
{
    if (pipe2(s_stopPipe, O_CLOEXEC | O_NONBLOCK) != 0)
        return -1;
    struct sigaction action {
    };
    action.sa_handler = onStopSignal;
    sigaction(SIGTERM, &action, nullptr);
    sigaction(SIGINT, &action, nullptr);
    return s_stopPipe[0];
}

// A connection to a front-end's socket that proved to be the front-end's that started us, or -1
// after a line on stderr.
int connectChecked(const std::string& path, const std::string& shown)
{
    const int fd = connectToAnalyzer(path.c_str(), kConnectAttempts, kConnectIntervalMs);
    if (fd < 0) {
        std::fprintf(stderr, "wsa_raw: cannot connect to %s: %s\n", shown.c_str(),
                     std::strerror(errno));
        return -1;
    }
    std::string why;
    if (!listenerIsOurs(fd, why)) {
        std::fprintf(stderr, "wsa_raw: refusing %s: %s\n", shown.c_str(), why.c_str());
        close(fd);
        return -1;
    }
    return fd;
}

RecorderPolicy recorderPolicy(const Settings& settings)
{
    RecorderPolicy policy;
    policy.limitBytes = std::int64_t(settings.number("WSA_RECORD_LIMIT_MB") * 1024 * 1024);
    return policy;
}

} // namespace

int main(int argc, char* argv[])
{
    const Options options = parseOptions(argc, argv);
    if (options.help) {
        std::fputs(helpText().c_str(), stdout);
        return 0;
    }
    const Settings& settings = options.settings;
    const wsa::Band& band = *options.band;
    const bool recordOnly = settings.flag("WSA_RECORD_ONLY");
    const std::string recordDir = settings.text("WSA_RECORD_DIR");
    const std::string analysisFile = settings.text("WSA_ANALYSIS_FILE");
    if (recordOnly && recordDir.empty() && analysisFile.empty()) {
        std::fprintf(stderr, "wsa_raw: WSA_RECORD_ONLY=1 needs WSA_RECORD_DIR or WSA_ANALYSIS_FILE: "
                             "nothing to do\n");
        return 2;
    }
    const SourceEntry* entry = findSource(options.source);

    const MonotonicClock clock;
    const std::string frontPath = settings.text("WSA_FRONT_SOCKET");
    const std::string statusPath = settings.text("WSA_STATUS_SOCKET");
    std::unique_ptr<RecordSocketSink> analyzer;
    std::unique_ptr<FrontSocketSink> front;
    std::unique_ptr<FrontSocketSink> status;
    if (!recordOnly && !frontPath.empty()) {
        const int fd = connectChecked(frontPath, frontPath);
        if (fd < 0)
            return 1;
        front = std::make_unique<FrontSocketSink>(fd, FrontSocketSink::Mode::Full, band,
                                                  options.source, clock);
    } else if (!recordOnly) {
        const int fd = connectChecked("SERVERSOCK", "./SERVERSOCK");
        if (fd < 0)
            return 1;
        analyzer = std::make_unique<RecordSocketSink>(fd);
    }
    if (!front && !statusPath.empty()) {
        const int fd = connectChecked(statusPath, statusPath);
        if (fd < 0)
            return 1;
        status = std::make_unique<FrontSocketSink>(fd, FrontSocketSink::Mode::StatusOnly, band,
                                                   options.source, clock);
    }
    // A front-end starts and stops recording at will; a replay is recorded only when it asks.
    std::unique_ptr<CsvRecorderSink> recorder;
    if (entry && (!recordDir.empty() || front)) {
        const bool startNow = !recordDir.empty() && !(front && options.source == "replay");
        recorder =
            std::make_unique<CsvRecorderSink>(recordDir, band, startNow, recorderPolicy(settings));
    }

    const Detector detector =
        settings.text("WSA_DETECTOR") == "average" ? Detector::Average : Detector::Peak;
    Engine engine(band, clock, detector, settings.number("WSA_OUTPUT_RATE"));
    for (Sink* sink :
         std::initializer_list<Sink*>{analyzer.get(), front.get(), recorder.get(), status.get()})
        if (sink)
            engine.addSink(sink);
    if (recordOnly)
        engine.setStopFd(stopFdOnSignals());

    // The analysis runs only for someone who reads it.
    std::unique_ptr<AnalysisStage> analysis;
    if (entry && (!analysisFile.empty() || front)) {
        analysis = std::make_unique<AnalysisStage>(engine, analysisFile, bool(front));
        engine.addObserver(analysis.get());
    }

    if (!entry)
        return noProbe(engine, StatusReason::UnknownSource, "unknown WSA_SOURCE=" + options.source,
                       "use " + sourceNames());
    const int exitCode = entry->make(settings, band)->run(engine);
    if (analysis)
        analysis->finish();
    return exitCode;
}
