#include "replaysource.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "enginecore.h"
#include "resample.h"
#include "sweepcsv.h"

namespace
{

// A pause in the file (a stopped and restarted capture) is played as at most this long.
constexpr double kMaxGapSeconds = 5.0;

class LineFile
{
public:
    explicit LineFile(const char* path) : m_file(std::fopen(path, "re")) {}
    ~LineFile()
    {
        if (m_file)
            std::fclose(m_file);
        std::free(m_line);
    }
    LineFile(const LineFile&) = delete;
    LineFile& operator=(const LineFile&) = delete;

    bool isOpen() const { return m_file != nullptr; }
    void rewind() { std::rewind(m_file); }
    // The next whole line; a last line without its newline was cut short and is skipped.
    const char* next()
    {
        const ssize_t n = getline(&m_line, &m_size, m_file);
        if (n <= 0 || m_line[n - 1] != '\n')
            return nullptr;
        m_line[n - 1] = '\0';
        return m_line;
    }

private:
    std::FILE* m_file;
    char* m_line = nullptr;
    std::size_t m_size = 0;
};

struct ReplaySettings {
    std::string file;
    double speed;
    double offsetDb;
};

class ReplaySource : public Source
{
public:
    ReplaySource(const ReplaySettings& settings, const wsa::Band& band)
        : m_settings(settings), m_sweeps(band.grid, settings.offsetDb)
    {
    }

    int run(Engine& engine) override;

private:
    // Whether any row of the file has bins in the band.
    bool hasUsableRow(LineFile& file, const wsa::SourceGrid& grid);
    int play(Engine& engine, LineFile& file);

    ReplaySettings m_settings;
    wsa::SweepAssembler m_sweeps;
    wsa::CsvRow m_row;
    double m_levels[SA_MAX_SAMPLES];
};

bool ReplaySource::hasUsableRow(LineFile& file, const wsa::SourceGrid& grid)
{
    wsa::Resampler probe(grid);
    while (const char* line = file.next()) {
        if (wsa::parseCsvRow(line, m_row) &&
            probe.add(m_row.lowHz, m_row.binHz, m_row.levels.data(), int(m_row.levels.size())))
            return true;
    }
    return false;
}

int ReplaySource::run(Engine& engine)
{
    const std::string& path = m_settings.file;
    if (path.empty())
        return noProbe(engine, StatusReason::FileUnusable, "nothing to replay",
                       "WSA_REPLAY_FILE is not set");
    LineFile file(path.c_str());
    if (!file.isOpen())
        return noProbe(engine, StatusReason::FileUnusable, "cannot open " + path,
                       std::strerror(errno));
    if (!hasUsableRow(file, engine.grid()))
        return noProbe(engine, StatusReason::NotInBand, path + " has no sweep in this band");
    file.rewind();
    const SinkResult announced = engine.announce(engine.band().gridAnnouncement());
    if (announced != SinkResult::Ok)
        return 1;
    // The recording starts when the analyzer shows it, not while its Configured box is open.
    const WaitResult ready = engine.waitForReader();
    if (ready != WaitResult::Deadline)
        return ready == WaitResult::Closed ? 0 : 1;
    return play(engine, file);
}

int ReplaySource::play(Engine& engine, LineFile& file)
{
    bool first = true;
    double lastSeconds = 0;
    long long dueNs = engine.nowNs();
    // One sweep is complete when the next begins, or at the end of the file.
    for (bool more = true; more;) {
        const char* line = file.next();
        more = line != nullptr;
        const bool complete =
            more ? wsa::parseCsvRow(line, m_row) && m_sweeps.feed(m_row) : m_sweeps.finish();
        if (!complete)
            continue;
        const double seconds = m_sweeps.take(m_levels);
        const double gap = first ? 0.0 : std::clamp(seconds - lastSeconds, 0.0, kMaxGapSeconds);
        first = false;
        lastSeconds = seconds;
        dueNs += (long long)(gap / m_settings.speed * 1e9);
        const WaitResult waited = engine.waitFor(-1, dueNs);
        if (waited == WaitResult::Closed)
            return 0;
        if (waited == WaitResult::Failed)
            return 1;
        engine.offer(m_levels, seconds);
    }
    // The end of the recording: the last picture stays until the analyzer goes.
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
