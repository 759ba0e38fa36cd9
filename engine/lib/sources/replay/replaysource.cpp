#include "replaysource.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "enginecore.h"
#include "resample.h"
#include "sweepcsv.h"

namespace
{

// A pause in the file (a stopped and restarted capture) is played as at most this long.
constexpr double kMaxGapSeconds = 5.0;

// The lines of a recording, each at most kMaxLine bytes: a longer one is skipped as it is read,
// never held, so a file without newlines costs no more memory than a short one.
class LineFile
{
public:
    LineFile() : m_buffer(kMaxLine + 1) {}
    ~LineFile()
    {
        if (m_fd >= 0)
            close(m_fd);
    }
    LineFile(const LineFile&) = delete;
    LineFile& operator=(const LineFile&) = delete;

    // Opens a regular file: 0, or the errno (EINVAL: not a regular file). Opening does not
    // block, as it would on a FIFO without a writer.
    int open(const char* path)
    {
        m_fd = ::open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
        if (m_fd < 0)
            return errno;
        struct stat st;
        if (fstat(m_fd, &st) != 0 || !S_ISREG(st.st_mode))
            return EINVAL;
        m_size = st.st_size;
        fcntl(m_fd, F_SETFL, fcntl(m_fd, F_GETFL) & ~O_NONBLOCK);
        return 0;
    }
    long long size() const { return m_size; }
    void rewind()
    {
        lseek(m_fd, 0, SEEK_SET);
        m_start = m_end = 0;
        m_skipping = false;
    }
    // The next whole line; a last line without its newline was cut short and is skipped.
    const char* next()
    {
        for (;;) {
            char* begin = m_buffer.data() + m_start;
            char* newline = static_cast<char*>(std::memchr(begin, '\n', m_end - m_start));
            if (newline) {
                *newline = '\0';
                m_start = std::size_t(newline - m_buffer.data()) + 1;
                if (!m_skipping)
                    return begin;
                m_skipping = false;
                continue;
            }
            // Keep the unfinished line at the front; one longer than kMaxLine is dropped.
            std::memmove(m_buffer.data(), begin, m_end - m_start);
            m_end -= m_start;
            m_start = 0;
            if (m_end == kMaxLine) {
                m_skipping = true;
                m_end = 0;
            }
            const ssize_t n = read(m_fd, m_buffer.data() + m_end, kMaxLine - m_end);
            if (n < 0 && errno == EINTR)
                continue;
            if (n <= 0)
                return nullptr;
            m_end += std::size_t(n);
        }
    }

private:
    static constexpr std::size_t kMaxLine = 1024 * 1024;
    int m_fd = -1;
    long long m_size = 0;
    std::vector<char> m_buffer;
    std::size_t m_start = 0;
    std::size_t m_end = 0;
    bool m_skipping = false; // inside a line too long to keep
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
    LineFile file;
    if (const int error = file.open(path.c_str()))
        return noProbe(engine, StatusReason::FileUnusable,
                       error == EINVAL ? path + " is not a regular file" : "cannot open " + path,
                       error == EINVAL ? std::string() : std::strerror(error));
    if (file.size() == 0)
        return noProbe(engine, StatusReason::FileUnusable, path + " is empty");
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
