// Cost of the analysis per sweep, fed at the radio's full rate, for each band: sweeps of a busy
// simulated scene are made first, then only the analysis is timed. Also the time the analysis
// alone needs for an hour of recording at 20 sweeps a second, and the time wsa-analyze's reading
// and analysis take for such a recording written as our recorder writes it.
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>
#include <vector>

#include "analyzer.h"
#include "offline.h"
#include "scenario.h"
#include "sweepcsv.h"
#include "world.h"

namespace
{

using Clock = std::chrono::steady_clock;

double seconds(Clock::time_point a, Clock::time_point b)
{
    return std::chrono::duration<double>(b - a).count();
}

// `count` sweeps of a scene with four emitters, back to back at 20 sweeps a second.
std::vector<float> record(const wsa::Band& band, int count)
{
    wsa::ScenarioOptions options;
    options.minEmitters = 4;
    options.durationS = count * 0.05;
    wsa::World world(band, 3, wsa::randomScenario(band, 3, options));
    std::vector<float> out(std::size_t(count) * std::size_t(world.bins()));
    for (int k = 0; k < count; ++k)
        world.sweep(k * 0.05, out.data() + std::size_t(k) * std::size_t(world.bins()));
    return out;
}

// Feeds the recording `rounds` times; returns seconds per sweep.
double perSweep(const wsa::Band& band, const std::vector<float>& sweeps, int rounds)
{
    const int bins = band.grid.shown;
    const int count = int(sweeps.size() / std::size_t(bins));
    wsa::Analyzer analyzer(band);
    const Clock::time_point start = Clock::now();
    for (int r = 0; r < rounds; ++r) {
        for (int k = 0; k < count; ++k)
            analyzer.take(sweeps.data() + std::size_t(k) * std::size_t(bins), bins, (r * count + k) * 0.05);
    }
    const double s = seconds(start, Clock::now());
    std::printf("  %zu emitters named, %zu ended\n", analyzer.current().size(), analyzer.ended().size());
    return s / (double(rounds) * count);
}

// Writes an hour of the recording's sweeps, repeated, as rows of our recorder; returns the path.
std::string writeHour(const wsa::Band& band, const std::vector<float>& sweeps)
{
    char path[] = "/tmp/wsa-bench-XXXXXX";
    const int fd = mkstemp(path);
    std::FILE* f = fd >= 0 ? fdopen(fd, "w") : nullptr;
    if (!f)
        return {};
    const wsa::SourceGrid& g = band.grid;
    const int count = int(sweeps.size() / std::size_t(g.shown));
    std::vector<int> levels(std::size_t(g.shown));
    std::vector<char> row(std::size_t(13 * g.shown + 200));
    for (int k = 0; k < 72000; ++k) {
        const float* s = sweeps.data() + std::size_t(k % count) * std::size_t(g.shown);
        for (int i = 0; i < g.shown; ++i)
            levels[std::size_t(i)] = int(std::lround(s[i]));
        char* p = row.data() + std::snprintf(row.data(), 200, "2024-03-01, %02d:%02d:%02d.%06d, %.0f, %.0f, %.2f, %d",
                                             12 + k / 72000, (k / 1200) % 60, (k / 20) % 60, (k % 20) * 50000,
                                             g.lowEdgeHz(), g.lowEdgeHz() + g.shown * g.stepHz, g.stepHz, g.shown);
        p = wsa::appendLevels(p, levels.data(), g.shown);
        *p++ = '\n';
        std::fwrite(row.data(), 1, std::size_t(p - row.data()), f);
    }
    std::fclose(f);
    return path;
}

} // namespace

int main()
{
    std::printf("analysis cost per sweep (a scene of four emitters)\n");
    for (const wsa::Band& band : wsa::allBands()) {
        const std::vector<float> sweeps = record(band, 1200);
        const double t = perSweep(band, sweeps, 5);
        std::printf("%-4s %5d bins: %7.1f us per sweep\n", band.key, band.grid.shown, t * 1e6);
    }
    const wsa::Band& band = *wsa::findBand("2g4");
    const std::vector<float> sweeps = record(band, 1200);
    const Clock::time_point start = Clock::now();
    perSweep(band, sweeps, 60); // 72000 sweeps: one hour at 20 sweeps a second
    std::printf("one hour of 2g4 sweeps (72000): %.2f s of analysis\n", seconds(start, Clock::now()));
    const std::string path = writeHour(band, sweeps);
    if (path.empty()) {
        std::printf("cannot write a recording in /tmp\n");
        return 0;
    }
    wsa::Analyzer analyzer(band);
    wsa::ReadCounts counts;
    std::string error;
    const Clock::time_point read = Clock::now();
    wsa::analyzeFile(path, 0, analyzer, counts, error);
    std::printf("one-hour recording read and analysed (wsa-analyze): %.2f s for %ld sweeps\n",
                seconds(read, Clock::now()), counts.sweeps);
    std::remove(path.c_str());
    return 0;
}
