#include "sweepprogram.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <unistd.h>

#include "child.h"
#include "enginecore.h"
#include "resample.h"
#include "sweepcsv.h"

namespace
{

// Opening the device and the first tuning take well under a second.
constexpr long long kFirstRowNs = 10 * 1000000000LL;
// A band change kills the previous engine, and with it its sweep program, just before this one
// starts: the device may not be free yet at the first attempt.
constexpr int kStartAttempts = 3;
constexpr int kRetryPauseMs = 500;
constexpr std::size_t kBufferBytes = 256 * 1024;
// Once measuring, a program that gives no valid row for this long (or five sweep periods, if
// longer, up to the cap) has lost its device, whether it says nothing or only garbage.
constexpr long long kMinSilenceNs = 2 * 1000000000LL;
constexpr long long kMaxSilenceNs = 60 * 1000000000LL;
constexpr int kSilencePeriods = 5;

class SweepProgramSource : public Source
{
public:
    SweepProgramSource(const SweepCommand& command, const wsa::Band& band)
        : m_command(command), m_sweeps(band.grid, command.offsetDb), m_buffer(kBufferBytes)
    {
    }

    int run(Engine& engine) override;

private:
    int cannotRun(Engine& engine, int error);
    // Takes the whole lines in the buffer; false when a sink failed or went.
    bool takeLines(Engine& engine, SinkResult& result);
    // The program stopped delivering: says why once and reports the device lost.
    int lost(Engine& engine, const std::string& why);
    long long silenceLimitNs() const;

    SweepCommand m_command;
    wsa::SweepAssembler m_sweeps;
    wsa::CsvRow m_row;
    double m_levels[SA_MAX_SAMPLES];
    std::vector<char> m_buffer;
    std::size_t m_used = 0;
    bool m_configured = false;
    long long m_lastRowNs = 0;
    long long m_lastSweepNs = 0;
    long long m_sweepPeriodNs = 0; // between the last two sweeps completed
    Child m_child;
};

long long SweepProgramSource::silenceLimitNs() const
{
    return std::min(kMaxSilenceNs, std::max(kMinSilenceNs, kSilencePeriods * m_sweepPeriodNs));
}

int SweepProgramSource::lost(Engine& engine, const std::string& why)
{
    const std::string& program = m_command.argv[0];
    const std::string said = m_child.lastErrLine();
    const std::string text = program + " " + why + (said.empty() ? "" : " (" + said + ")");
    std::fprintf(stderr, "wsa_raw: %s: the radio was lost\n", text.c_str());
    engine.reason(StatusReason::DeviceLost, text);
    return engine.fault(Fault::Disconnect) == SinkResult::Ok ? 0 : 1;
}

int SweepProgramSource::cannotRun(Engine& engine, int error)
{
    const std::string& program = m_command.argv[0];
    const StatusReason reason =
        error == ENOENT || error == EACCES ? StatusReason::ProgramMissing : StatusReason::NoDevice;
    if (reason == StatusReason::ProgramMissing && !m_command.installHint.empty())
        engine.reason(reason, program + " is not installed: " + m_command.installHint);
    std::fprintf(stderr, "wsa_raw: no probe: cannot run %s: %s\n", program.c_str(),
                 std::strerror(error));
    return engine.fault(Fault::NoProbe) == SinkResult::Ok ? 0 : 1;
}

bool SweepProgramSource::takeLines(Engine& engine, SinkResult& result)
{
    char* const buffer = m_buffer.data();
    char* line = buffer;
    while (char* end = static_cast<char*>(std::memchr(line, '\n', m_used - (line - buffer)))) {
        *end = '\0';
        if (wsa::parseCsvRow(line, m_row)) {
            m_lastRowNs = engine.nowNs();
            if (!m_configured) {
                result = engine.announce(engine.band().gridAnnouncement());
                if (result != SinkResult::Ok)
                    return false;
            }
            m_configured = true;
            if (m_sweeps.feed(m_row)) {
                if (m_lastSweepNs > 0)
                    m_sweepPeriodNs = m_lastRowNs - m_lastSweepNs;
                m_lastSweepNs = m_lastRowNs;
                const double seconds = m_sweeps.take(m_levels);
                engine.offer(m_levels, seconds);
            }
        }
        line = end + 1;
    }
    // Keep the unfinished line; one that fills the whole buffer is not a row.
    m_used -= std::size_t(line - buffer);
    if (m_used == m_buffer.size() - 1)
        m_used = 0;
    std::memmove(buffer, line, m_used);
    return true;
}

int SweepProgramSource::run(Engine& engine)
{
    const std::string& program = m_command.argv[0];
    Child& child = m_child;
    if (const int error = child.start(m_command.argv))
        return cannotRun(engine, error);

    int attempts = 0;
    const long long firstRowDeadline = engine.nowNs() + kFirstRowNs;
    for (;;) {
        const long long deadline =
            m_configured ? m_lastRowNs + silenceLimitNs() : firstRowDeadline;
        const WaitResult waited = engine.waitFor(child.fd(), deadline, child.errFd());
        if (waited == WaitResult::Closed)
            return 0;
        if (waited == WaitResult::Failed)
            return 1;
        child.drainErr();
        if (waited == WaitResult::Deadline && m_configured) {
            child.stop();
            char seconds[32];
            std::snprintf(seconds, sizeof seconds, "%.1f", silenceLimitNs() / 1e9);
            return lost(engine, std::string("gave no valid row for ") + seconds + " s");
        }
        if (waited == WaitResult::Deadline) {
            child.stop();
            return noProbe(engine, StatusReason::NoDevice, program + " gave no sweep within 10 s");
        }
        const ssize_t n = read(child.fd(), m_buffer.data() + m_used, m_buffer.size() - 1 - m_used);
        if (n < 0 && (errno == EINTR || errno == EAGAIN))
            continue;
        if (n <= 0) {
            const std::string status = describeStatus(child.stop());
            if (!m_configured && ++attempts < kStartAttempts) {
                usleep(kRetryPauseMs * 1000);
                if (const int error = child.start(m_command.argv))
                    return cannotRun(engine, error);
                m_used = 0;
                continue;
            }
            if (m_configured)
                return lost(engine, "ended (" + status + ")");
            const std::string said = child.lastErrLine();
            return noProbe(engine, StatusReason::NoDevice, program + " ended before measuring",
                           status + (said.empty() ? "" : " (" + said + ")"));
        }
        m_used += std::size_t(n);
        m_buffer[m_used] = '\0';
        SinkResult result = SinkResult::Ok;
        if (!takeLines(engine, result))
            return exitStatus(result);
    }
}

} // namespace

std::unique_ptr<Source> makeSweepProgramSource(const SweepCommand& command, const wsa::Band& band)
{
    return std::make_unique<SweepProgramSource>(command, band);
}

const std::vector<Variable>& hackRfVariables()
{
    static const std::vector<Variable> table = {
        text("WSA_HACKRF_SWEEP", "hackrf_sweep", "the sweep program of the hackrf source, found "
                                                 "on PATH unless a path is given"),
        number("WSA_HACKRF_BIN_HZ", "Hz", 2445, 5000000, "250000",
               "the bin width hackrf_sweep is asked for (-w)"),
    };
    return table;
}

SweepCommand hackRfCommand(const Settings& settings, const wsa::Band& band)
{
    // Levels of hackrf_sweep are dB relative to full scale; this lifts its typical noise floor
    // at the default gains and bin width to about -95 dBm. A starting point, not a calibration.
    constexpr double kDefaultOffsetDb = -20.0;
    // Whole MHz around the grid's outer cells.
    const long lowMHz = long(std::floor(band.grid.lowEdgeHz() / 1e6));
    const long highMHz = long(std::ceil(band.grid.highEdgeHz() / 1e6));
    const long binHz = std::lround(settings.number("WSA_HACKRF_BIN_HZ"));
    const double offsetDb = settings.has("WSA_LEVEL_OFFSET_DB")
                                ? settings.number("WSA_LEVEL_OFFSET_DB")
                                : kDefaultOffsetDb;
    return {{settings.text("WSA_HACKRF_SWEEP"), "-f",
             std::to_string(lowMHz) + ":" + std::to_string(highMHz), "-w", std::to_string(binHz)},
            offsetDb,
            "install the hackrf package"};
}

std::unique_ptr<Source> makeHackRfSource(const Settings& settings, const wsa::Band& band)
{
    return makeSweepProgramSource(hackRfCommand(settings, band), band);
}
