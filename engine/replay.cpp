// Replay of a recording in the sweep CSV layout, ours or saved hackrf_sweep output, at the pace
// of its time stamps.
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "output.h"
#include "sources.h"
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

// Whether any row of the file has bins in the band.
bool hasUsableRow(LineFile& file, const Grid& grid)
{
    Resampler probe(grid);
    CsvRow row;
    while (const char* line = file.next()) {
        if (parseCsvRow(line, row) &&
            probe.add(row.lowHz, row.binHz, row.levels.data(), int(row.levels.size())))
            return true;
    }
    return false;
}

} // namespace

int runReplay(int fd, const Options& options, Output& output)
{
    const Grid grid = bandGrid(options.band);
    const char* path = options.replayFile.c_str();
    if (options.replayFile.empty())
        return noProbe(output, "nothing to replay", "WSA_REPLAY_FILE is not set");
    LineFile file(path);
    if (!file.isOpen())
        return noProbe(output, ("cannot open " + options.replayFile).c_str(), std::strerror(errno));
    if (!hasUsableRow(file, grid))
        return noProbe(output, (options.replayFile + " has no sweep in this band").c_str());
    file.rewind();
    if (!sendConfigured(fd, grid))
        return 1;
    // The recording starts when the analyzer shows it, not while its Configured box is open.
    const WaitResult ready = output.waitForReader();
    if (ready != WaitResult::Deadline)
        return ready == WaitResult::PeerGone ? 0 : 1;

    SweepAssembler sweeps(grid, options.offsetSet ? options.offsetDb : 0.0);
    CsvRow row;
    double levels[SA_MAX_SAMPLES];
    bool first = true;
    double lastSeconds = 0;
    long long dueNs = monotonicNs();
    // One sweep is complete when the next begins, or at the end of the file.
    for (bool more = true; more;) {
        const char* line = file.next();
        more = line != nullptr;
        const bool complete = more ? parseCsvRow(line, row) && sweeps.feed(row) : sweeps.finish();
        if (!complete)
            continue;
        const double seconds = sweeps.take(levels);
        const double gap = first ? 0.0 : std::clamp(seconds - lastSeconds, 0.0, kMaxGapSeconds);
        first = false;
        lastSeconds = seconds;
        dueNs += (long long)(gap / options.replaySpeed * 1e9);
        const WaitResult waited = output.waitFor(-1, dueNs);
        if (waited == WaitResult::PeerGone)
            return 0;
        if (waited == WaitResult::Failed)
            return 1;
        output.offer(levels);
    }
    // The end of the recording: the last picture stays until the analyzer goes.
    return output.waitFor(-1, -1) == WaitResult::Failed ? 1 : 0;
}
