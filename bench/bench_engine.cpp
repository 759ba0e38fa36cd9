// The HackRF source's cost and latency: the benchmark plays hackrf_sweep (a stand-in that copies
// a FIFO to the engine) and the analyzer (the socket's reader) around a real wsa_raw.
//   1. CPU: a minute of input at 40 sweeps/s over the 2.4 GHz band, written as fast as the engine
//      takes it; the engine's CPU time per second of input is its load on one core at 40/s.
//   2. Latency: five seconds written at the real pace, each sweep's rows spread over its 25 ms
//      as a device delivers them; from the last row of a sweep to the record that carries it.
//      The engine's CPU load over these seconds includes a wake-up per row.
//   3. CPU at the real pace with a sweep per write, as a buffered writer delivers them.
// The 100 kHz run is repeated with the live analysis stage writing its file, whose cost is then
// part of each CPU figure.
// A marker bin carries each sweep's number, so a record tells which sweep is the newest in it.
#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <string>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include "bandplan.h"
#include "halbrin_sa.h"

namespace
{

constexpr int kSweepsPerSecond = 40;
constexpr int kCpuSeconds = 60;
constexpr int kLatencySeconds = 5;
constexpr double kOutputPeriodMs = 125; // the engine's default rate, 8 records/s
const wsa::SourceGrid& grid24()
{
    return wsa::findBand(wsa::BandId::Ghz24)->grid;
}
// Rows of 5 MHz over 100 MHz from the whole MHz below the 2.4 GHz grid, each 20 MHz step out of
// order, as hackrf_sweep prints them; the marker bin is 2 MHz up.
const int kLowMHz = int(std::floor(grid24().lowEdgeHz() / 1e6));
const int kHighMHz = kLowMHz + 100;
const int kMarkerMHz = kLowMHz + 2;
constexpr int kMarkerSpan = 100; // marker levels -69 .. +30 dB, then they wrap

long long nowNs()
{
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

void fail(const char* what)
{
    std::fprintf(stderr, "bench_engine: %s: %s\n", what, std::strerror(errno));
    std::exit(1);
}

// The rows of sweep k; the noise depends on bin and sweep, the marker bin on k alone.
std::vector<std::string> sweepRows(long k, long binHz)
{
    std::vector<std::string> rows;
    const int bins = int(5000000 / binHz);
    char level[16];
    for (int g = kLowMHz; g < kHighMHz; g += 20) {
        for (int off : {0, 10, 5, 15}) {
            const long long low = (g + off) * 1000000LL;
            std::string row = "2024-03-01, 12:30:05.250113, " + std::to_string(low) + ", " +
                              std::to_string(low + 5000000) + ", " + std::to_string(binHz) +
                              ".00, 20";
            for (int b = 0; b < bins; ++b) {
                const long long f = low + b * binHz;
                const bool marker =
                    f <= kMarkerMHz * 1000000LL && kMarkerMHz * 1000000LL < f + binHz;
                const unsigned noise = unsigned(b * 2654435761u + unsigned(k) * 40503u) % 300;
                const double dB = marker ? -69.0 + double(k % kMarkerSpan) : -75.0 + noise / 100.0;
                std::snprintf(level, sizeof level, ", %.2f", dB);
                row += level;
            }
            rows.push_back(row + "\n");
        }
    }
    return rows;
}

bool writeAll(int fd, const std::string& text)
{
    const char* p = text.data();
    std::size_t left = text.size();
    while (left > 0) {
        const ssize_t n = write(fd, p, left);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        p += n;
        left -= std::size_t(n);
    }
    return true;
}

// The engine's time on a CPU so far, from the scheduler's own account.
long long cpuNs(pid_t pid)
{
    char path[64];
    std::snprintf(path, sizeof path, "/proc/%d/schedstat", int(pid));
    FILE* f = std::fopen(path, "r");
    long long ns = -1;
    if (f) {
        if (std::fscanf(f, "%lld", &ns) != 1)
            ns = -1;
        std::fclose(f);
    }
    return ns;
}

struct Arrival {
    long long ns;
    int marker;
};

class Rig
{
public:
    Rig(long binHz, bool analysis) : m_binHz(binHz)
    {
        char tmpl[] = "/tmp/bench-engine-XXXXXX";
        if (!mkdtemp(tmpl))
            fail("mkdtemp");
        m_dir = tmpl;
        const std::string fifo = m_dir + "/rows", script = m_dir + "/sweeper";
        if (mkfifo(fifo.c_str(), 0600) != 0)
            fail("mkfifo");
        FILE* s = std::fopen(script.c_str(), "w");
        if (!s)
            fail("sweeper script");
        std::fprintf(s, "#!/bin/sh\nexec cat '%s'\n", fifo.c_str());
        std::fclose(s);
        chmod(script.c_str(), 0700);

        const int listener = socket(AF_UNIX, SOCK_STREAM, 0);
        sockaddr_un addr{};
        addr.sun_family = AF_UNIX;
        std::snprintf(addr.sun_path, sizeof addr.sun_path, "%s/SERVERSOCK", m_dir.c_str());
        if (bind(listener, reinterpret_cast<sockaddr*>(&addr), sizeof addr) != 0 ||
            listen(listener, 1) != 0)
            fail("listen");
        m_engine = fork();
        if (m_engine == 0) {
            if (chdir(m_dir.c_str()) != 0)
                _exit(127);
            setenv("WSA_SOURCE", "hackrf", 1);
            setenv("WSA_HACKRF_SWEEP", script.c_str(), 1);
            setenv("WSA_LEVEL_OFFSET_DB", "0", 1);
            unsetenv("WSA_RECORD_DIR");
            if (analysis)
                setenv("WSA_ANALYSIS_FILE", (m_dir + "/analysis.jsonl").c_str(), 1);
            else
                unsetenv("WSA_ANALYSIS_FILE");
            unsetenv("WSA_OUTPUT_RATE");
            unsetenv("WSA_DETECTOR");
            execl(WSA_ENGINE_BIN, "wsa_raw", static_cast<char*>(nullptr));
            _exit(127);
        }
        m_link = accept(listener, nullptr, nullptr);
        close(listener);
        if (m_link < 0)
            fail("accept");
        m_rows = open(fifo.c_str(), O_WRONLY); // once the sweeper reads
        if (m_rows < 0)
            fail("open rows");
        m_reader = std::thread([this] { read(); });
    }

    ~Rig()
    {
        close(m_rows);
        kill(m_engine, SIGKILL);
        waitpid(m_engine, nullptr, 0);
        m_reader.join();
        close(m_link);
        const std::string rm = "rm -rf '" + m_dir + "'";
        (void)std::system(rm.c_str());
    }

    pid_t engine() const { return m_engine; }
    int rows() const { return m_rows; }
    std::vector<Arrival> arrivals() const
    {
        return std::vector<Arrival>(m_arrivals.begin(), m_arrivals.begin() + m_count.load());
    }

private:
    // The analyzer's end: takes every record at once.
    void read()
    {
        m_arrivals.resize(100000);
        // The analyzer bin holding the marker bin's centre.
        const double markerMHz = kMarkerMHz + m_binHz / 2e6;
        const int markerBin =
            int(std::lround((markerMHz * 1e6 - grid24().startHz) / grid24().stepHz));
        for (;;) {
            stSweep r;
            if (recv(m_link, &r, sizeof r, MSG_WAITALL) != ssize_t(sizeof r))
                return;
            if (r.type != SA_MSG_SWEEP || m_count.load() == int(m_arrivals.size()))
                continue;
            m_arrivals[std::size_t(m_count.load())] = {nowNs(), r.data[markerBin] + 69};
            ++m_count;
        }
    }

    long m_binHz;
    std::string m_dir;
    pid_t m_engine = -1;
    int m_link = -1;
    int m_rows = -1;
    std::thread m_reader;
    std::vector<Arrival> m_arrivals;
    std::atomic<int> m_count{0};
};

// Sweeps prepared ahead, so that writing them costs the benchmark little.
std::vector<std::string> prepare(long binHz)
{
    std::vector<std::string> sweeps;
    for (long k = 0; k < kMarkerSpan; ++k) {
        std::string text;
        for (const std::string& row : sweepRows(k, binHz))
            text += row;
        sweeps.push_back(text);
    }
    return sweeps;
}

void measure(long binHz, bool analysis = false)
{
    const std::vector<std::string> sweeps = prepare(binHz);
    Rig rig(binHz, analysis);

    // 1. CPU per second of input.
    const long long cpuBefore = cpuNs(rig.engine());
    for (long k = 0; k < long(kCpuSeconds) * kSweepsPerSecond; ++k)
        if (!writeAll(rig.rows(), sweeps[std::size_t(k % kMarkerSpan)]))
            fail("write rows");
    // Until the engine has taken it all: its CPU time stops growing.
    long long cpu = cpuNs(rig.engine()), last = -1;
    while (cpu != last) {
        last = cpu;
        usleep(300 * 1000);
        cpu = cpuNs(rig.engine());
    }
    const double load = double(cpu - cpuBefore) / 1e9 / kCpuSeconds;

    // 2. Latency at the real pace.
    std::vector<long long> lastRowNs;
    const std::size_t before = rig.arrivals().size();
    const long long period = 1000000000LL / kSweepsPerSecond;
    const long long paceCpu = cpuNs(rig.engine());
    const long long paceStart = nowNs();
    std::vector<std::string> rows;
    for (long k = 0; k < long(kLatencySeconds) * kSweepsPerSecond; ++k) {
        rows = sweepRows(k, binHz);
        for (std::size_t i = 0; i < rows.size(); ++i) {
            const long long due = paceStart + k * period + long(i) * period / long(rows.size());
            const long long wait = due - nowNs();
            if (wait > 0)
                usleep(useconds_t(wait / 1000));
            writeAll(rig.rows(), rows[i]);
        }
        lastRowNs.push_back(nowNs());
    }
    const double paceLoad = double(cpuNs(rig.engine()) - paceCpu) / double(nowNs() - paceStart);
    usleep(300 * 1000);
    const std::vector<Arrival> got = rig.arrivals();

    // 3. CPU at the real pace, each sweep in one write, as a buffered writer delivers it.
    const long long sweepCpu = cpuNs(rig.engine());
    const long long sweepStart = nowNs();
    for (long k = 0; k < long(kLatencySeconds) * kSweepsPerSecond; ++k) {
        const long long wait = sweepStart + k * period - nowNs();
        if (wait > 0)
            usleep(useconds_t(wait / 1000));
        writeAll(rig.rows(), sweeps[std::size_t(k % kMarkerSpan)]);
    }
    const double sweepLoad = double(cpuNs(rig.engine()) - sweepCpu) / double(nowNs() - sweepStart);

    std::vector<double> latencies;
    long newest = -1;
    for (std::size_t i = before; i < got.size(); ++i) {
        // The newest sweep in the record: the latest written whose number matches the marker.
        long k = -1;
        for (long c = long(lastRowNs.size()) - 1; c >= 0; --c) {
            if (lastRowNs[std::size_t(c)] <= got[i].ns && c % kMarkerSpan == got[i].marker) {
                k = c;
                break;
            }
        }
        // Around a wrap of the marker the maximum is an older sweep: not a measurement.
        if (k <= newest || k < 0)
            continue;
        newest = k;
        latencies.push_back(double(got[i].ns - lastRowNs[std::size_t(k)]) / 1e6);
    }
    std::sort(latencies.begin(), latencies.end());
    const auto at = [&](double q) {
        return latencies.empty() ? 0.0 : latencies[std::size_t(q * (latencies.size() - 1))];
    };
    if (analysis)
        std::printf("with the analysis stage:\n");
    std::printf("%8ld Hz bins, %d per sweep. CPU, %% of one core at %d sweeps/s: %.2f %% fed at "
                "once, %.2f %% at the real pace a sweep per write, %.2f %% a row per write\n",
                binHz, 20 * int(5000000 / binHz), kSweepsPerSecond, 100 * load, 100 * sweepLoad,
                100 * paceLoad);
    std::printf("%20s latency last row -> record: median %.1f ms, 90 %% %.1f ms, max %.1f ms "
                "(%zu records; output period %.0f ms)\n",
                "", at(0.5), at(0.9), at(1.0), latencies.size(), kOutputPeriodMs);
}

} // namespace

int main()
{
    signal(SIGPIPE, SIG_IGN);
    std::printf("HackRF source, %s band, %d sweeps/s of hackrf_sweep CSV rows\n",
                wsa::findBand(wsa::BandId::Ghz24)->name, kSweepsPerSecond);
    measure(1000000);
    measure(100000);
    measure(100000, true);
    return 0;
}
