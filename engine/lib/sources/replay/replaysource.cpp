#include "replaysource.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <vector>

#include "enginecore.h"
#include "linefile.h"
#include "resample.h"
#include "sweepcsv.h"

namespace
{

// A pause in the file (a stopped and restarted capture) is played as at most this long.
constexpr double kMaxGapSeconds = 5.0;
// Where a replay stands goes to the front-ends this often, besides every change.
constexpr long long kReportEveryNs = 1000000000LL;
// A seek bisects the file by time stamps down to this many bytes, then reads on.
constexpr long long kScanBytes = 64 * 1024;
// Rows tried after a bisection's probe before the probe counts as past every row.
constexpr int kProbeLines = 16;
constexpr double kMinSpeed = 0.1;
constexpr double kMaxSpeed = 100;

// The time stamp of the first row at or after `offset` and where its line begins.
bool rowAfter(LineFile& file, long long offset, wsa::CsvRow& row, long long& at)
{
    file.seek(offset, true);
    for (int i = 0; i < kProbeLines; ++i) {
        const char* line = file.next();
        if (!line)
            return false;
        if (wsa::parseCsvRow(line, row)) {
            at = file.lineOffset();
            return true;
        }
    }
    return false;
}

// The last row's time stamp, from the file's tail; NaN when the tail has none.
double lastSeconds(LineFile& file, wsa::CsvRow& row)
{
    double seconds = NAN;
    for (long long tail = kScanBytes; std::isnan(seconds); tail *= 4) {
        const long long from = std::max(0LL, file.size() - tail);
        file.seek(from, true);
        while (const char* line = file.next())
            if (wsa::parseCsvRow(line, row))
                seconds = row.seconds;
        if (from == 0)
            break;
    }
    return seconds;
}

struct ReplaySettings {
    std::string file;
    double speed;
    double offsetDb;
};

// What the front-end asked for and the source has not acted on yet.
struct Wanted {
    bool changed = false;
    double seek = -1;
    double speed = 0;
    int paused = -1;
    int loop = -1;
};

class ReplaySource : public Source, public ControlHandler
{
public:
    ReplaySource(const ReplaySettings& settings, const wsa::Band& band)
        : m_settings(settings), m_grid(band.grid), m_sweeps(band.grid, settings.offsetDb)
    {
        m_state.speed = settings.speed;
    }

    int run(Engine& engine) override;
    bool control(wsa::ControlCommand command, double value) override;

private:
    // Whether any row of the file has bins in the band; notes the first row's time stamp.
    bool hasUsableRow(LineFile& file, const wsa::SourceGrid& grid);
    int play(Engine& engine, LineFile& file);
    // The next whole sweep into m_levels with its time stamp; false at the end of the file.
    bool nextSweep(LineFile& file, double& seconds);
    // Reads on from the first row at `position` seconds into the recording.
    void seek(LineFile& file, double position);
    // Acts on what the front-end asked for; `due` is the waiting sweep's time, if any.
    void apply(LineFile& file, long long now, long long& dueNs, bool& waiting);
    void report(Engine& engine) { engine.replay(m_state); }

    ReplaySettings m_settings;
    wsa::SourceGrid m_grid;
    wsa::SweepAssembler m_sweeps;
    wsa::CsvRow m_row;
    double m_levels[SA_MAX_SAMPLES];
    double m_firstSeconds = NAN;
    double m_skipBefore = -INFINITY; // rows before a seek's target are passed over
    wsa::ReplayFrame m_state;
    Wanted m_wanted;
};

bool ReplaySource::hasUsableRow(LineFile& file, const wsa::SourceGrid& grid)
{
    wsa::Resampler probe(grid);
    while (const char* line = file.next()) {
        if (!wsa::parseCsvRow(line, m_row))
            continue;
        if (std::isnan(m_firstSeconds))
            m_firstSeconds = m_row.seconds;
        if (probe.add(m_row.lowHz, m_row.binHz, m_row.levels.data(), int(m_row.levels.size())))
            return true;
    }
    return false;
}

int ReplaySource::run(Engine& engine)
{
    const std::string& path = m_settings.file;
    if (path.empty())
        return noProbe(engine, StatusReason::FileMissing, "nothing to replay",
                       "WSA_REPLAY_FILE is not set");
    LineFile file;
    if (const int error = file.open(path.c_str()))
        return noProbe(engine,
                       error == ENOENT ? StatusReason::FileMissing : StatusReason::FileUnusable,
                       error == EINVAL ? path + " is not a regular file" : "cannot open " + path,
                       error == EINVAL ? std::string() : std::strerror(error));
    if (file.size() == 0)
        return noProbe(engine, StatusReason::FileEmpty, path + " is empty");
    if (!hasUsableRow(file, engine.grid()))
        return noProbe(engine, StatusReason::NotInBand, path + " has no sweep in this band");
    m_state.duration = std::max(0.0, lastSeconds(file, m_row) - m_firstSeconds);
    file.seek(0);
    // From here on: a window may send its controls as soon as it sees the band.
    const Engine::ControlScope controls(engine, this);
    const SinkResult announced = engine.announce(engine.band().gridAnnouncement());
    if (announced != SinkResult::Ok)
        return 1;
    // The recording starts when the analyzer shows it, not while its Configured box is open.
    const WaitResult ready = engine.waitForReader();
    if (ready != WaitResult::Deadline)
        return ready == WaitResult::Closed ? 0 : 1;
    return play(engine, file);
}

bool ReplaySource::control(wsa::ControlCommand command, double value)
{
    switch (command) {
    case wsa::ControlCommand::Pause:
        m_wanted.paused = value != 0;
        break;
    case wsa::ControlCommand::Speed:
        if (!(value >= kMinSpeed && value <= kMaxSpeed)) {
            std::fprintf(stderr, "wsa_raw: ignoring replay speed %g (0.1 to 100)\n", value);
            return false;
        }
        m_wanted.speed = value;
        break;
    case wsa::ControlCommand::Seek:
        m_wanted.seek = std::clamp(value, 0.0, m_state.duration);
        break;
    case wsa::ControlCommand::Loop:
        m_wanted.loop = value != 0;
        break;
    default:
        return false;
    }
    m_wanted.changed = true;
    return true;
}

bool ReplaySource::nextSweep(LineFile& file, double& seconds)
{
    // One sweep is complete when the next begins, or at the end of the file.
    for (;;) {
        const char* line = file.next();
        if (!line) {
            if (!m_sweeps.finish())
                return false;
            break;
        }
        if (!wsa::parseCsvRow(line, m_row) || m_row.seconds < m_skipBefore)
            continue;
        m_skipBefore = -INFINITY;
        if (m_sweeps.feed(m_row))
            break;
    }
    seconds = m_sweeps.take(m_levels);
    return true;
}

void ReplaySource::seek(LineFile& file, double position)
{
    const double target = m_firstSeconds + position;
    // The rows before lo are all earlier than the target; the first row at or after it lies
    // within kScanBytes past lo.
    long long lo = 0;
    long long hi = file.size();
    while (hi - lo > kScanBytes) {
        const long long mid = lo + (hi - lo) / 2;
        long long at = 0;
        if (rowAfter(file, mid, m_row, at) && at < hi && m_row.seconds < target)
            lo = at;
        else
            hi = mid;
    }
    file.seek(lo);
    m_sweeps = wsa::SweepAssembler(m_grid, m_settings.offsetDb);
    m_skipBefore = target;
    m_state.position = position;
}

void ReplaySource::apply(LineFile& file, long long now, long long& dueNs, bool& waiting)
{
    Wanted wanted = m_wanted;
    m_wanted = Wanted();
    if (wanted.speed > 0) {
        if (waiting && !m_state.paused)
            dueNs = now + (long long)(double(dueNs - now) * m_state.speed / wanted.speed);
        m_state.speed = wanted.speed;
    }
    if (wanted.paused >= 0) {
        // Resumed, the sweep that was due goes at once.
        if (m_state.paused && !wanted.paused)
            dueNs = now;
        m_state.paused = wanted.paused;
    }
    if (wanted.loop >= 0)
        m_state.loop = wanted.loop;
    if (wanted.seek >= 0) {
        seek(file, wanted.seek);
        waiting = false;
    }
}

int ReplaySource::play(Engine& engine, LineFile& file)
{
    bool waiting = false; // a sweep read, to go at dueNs
    bool first = true;    // the next sweep goes at once: the start, a seek or a loop
    bool restarted = false;
    double seconds = 0;
    double lastSeconds = 0;
    long long dueNs = engine.nowNs();
    long long reportNs = dueNs;
    for (;;) {
        if (!waiting && !m_state.paused) {
            if (!nextSweep(file, seconds)) {
                // A loop over a file that no longer yields a sweep would spin.
                if (!m_state.loop || restarted)
                    break;
                seek(file, 0);
                restarted = true;
                first = true;
                continue;
            }
            restarted = false;
            const double gap = first ? 0.0 : std::clamp(seconds - lastSeconds, 0.0, kMaxGapSeconds);
            if (first)
                dueNs = engine.nowNs();
            first = false;
            lastSeconds = seconds;
            dueNs += (long long)(gap / m_state.speed * 1e9);
            waiting = true;
        }
        const long long deadline =
            waiting && !m_state.paused ? std::min(dueNs, reportNs) : reportNs;
        const WaitResult waited = engine.waitFor(-1, deadline);
        if (waited == WaitResult::Closed)
            return 0;
        if (waited == WaitResult::Failed)
            return 1;
        long long now = engine.nowNs();
        if (m_wanted.changed) {
            const bool sought = m_wanted.seek >= 0;
            apply(file, now, dueNs, waiting);
            first = first || sought;
            reportNs = now;
        }
        if (waiting && !m_state.paused && now >= dueNs) {
            engine.offer(m_levels, seconds);
            m_state.position = seconds - m_firstSeconds;
            waiting = false;
        }
        if (now >= reportNs) {
            report(engine);
            reportNs = now + kReportEveryNs;
        }
    }
    m_state.position = m_state.duration;
    report(engine);
    const WaitResult flushed = engine.flush(kReportEveryNs);
    if (flushed == WaitResult::Closed || flushed == WaitResult::Failed)
        return flushed == WaitResult::Closed ? 0 : 1;
    engine.reason(StatusReason::Ended, "the end of " + m_settings.file);
    // The last picture stays until the front-end goes.
    return engine.waitFor(-1, -1) == WaitResult::Failed ? 1 : 0;
}

} // namespace

const std::vector<Variable>& replayVariables()
{
    static const std::vector<Variable> table = {
        text("WSA_REPLAY_FILE", "", "the recording the replay source plays"),
        number("WSA_REPLAY_SPEED", "a factor", 0.01, 1000, "1",
               "on the pace of the recording's time stamps; pauses longer than 5 s play as 5 s"),
    };
    return table;
}

std::unique_ptr<Source> makeReplaySource(const Settings& settings, const wsa::Band& band)
{
    const ReplaySettings replay{
        settings.text("WSA_REPLAY_FILE"), settings.number("WSA_REPLAY_SPEED"),
        settings.has("WSA_LEVEL_OFFSET_DB") ? settings.number("WSA_LEVEL_OFFSET_DB") : 0.0};
    return std::make_unique<ReplaySource>(replay, band);
}
