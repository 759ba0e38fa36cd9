// The sweep model: the statistics of one sample, the colour map, the waterfall colour index and
// the elapsed-time text as plain functions, and SweepStore, the store a front-end owns. Levels
// are dBm.
#ifndef CORE_SWEEPMODEL_H
#define CORE_SWEEPMODEL_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <vector>

namespace wsa
{

struct Rgb {
    unsigned char r;
    unsigned char g;
    unsigned char b;
};

enum { kColorMapSize = 240 };

// Levels a receiver can report, in dBm. The engine clamps what it sends to this range.
enum { kLowestLevelDbm = -200, kHighestLevelDbm = 50 };

// Dark blue to green, yellow and red, kColorMapSize entries.
void fillColorMap(Rgb* map);

// The handheld's waterfall colour index (0 .. kColorMapSize - 1) of a level already clamped to
// the display range [minDbm, maxDbm]: strong levels red, the noise floor dark blue.
int waterfallColorIndex(int level, int minDbm, int maxDbm);

// "HH:MM:SS" of `elapsed` seconds (at least two digits each, hours unbounded; negative counts as
// 0) into `text` of `size` bytes.
void elapsedText(long long elapsed, char* text, std::size_t size);

// Copies a time text into a row of `rowSize` bytes, cut so that its terminating zero always fits;
// the rest of the row is zero.
void copyTimeText(char* row, std::size_t rowSize, const char* text);

// ---- statistics of one sample

template <class T> T clampLevel(T level, T lo, T hi)
{
    return level < lo ? lo : (level > hi ? hi : level);
}

// Max and min hold of a level clamped to [lo, hi]. The holds are compared before they are
// clamped, so a hold seeded from an unclamped sweep settles into the range on its first update.
template <class T> void holdExtremes(T level, T& max, T& min, T lo, T hi)
{
    if (level > max)
        max = level;
    if (max > hi)
        max = hi;
    if (level <= min)
        min = level;
    if (min < lo)
        min = lo;
}

// A density cell has reached `count`: raises the peak and returns true when a display scaled by
// the peak should rescale now (in steps of 25 while the peak is below 400 and the picture changes
// visibly).
inline bool raiseDensityPeak(long count, long& peak)
{
    if (count <= peak)
        return false;
    peak = count;
    return count <= 399 && count % 25 == 0;
}

// ---- the store

struct SweepStoreConfig {
    int bins = 0;        // 1 .. SweepStore::kMaxBins
    float minDbm = -110; // display range: density rows and waterfall colours
    float maxDbm = -10;
    int historyRows = 0;     // waterfall length in sweeps, 0 .. kMaxHistory
    int averaging = 0;       // sweeps in the running average; 0 averages everything since reset
    float densityStepDb = 1; // height of one density row
    // Counted for a level that is not a number: a front-end may prefer its band's floor to the
    // lowest level a receiver reports.
    float missingDbm = kLowestLevelDbm;
};

// Everything a front-end shows of a stream of sweeps: current, average, max and min traces, the
// density of levels per bin and a waterfall of the last sweeps. A sweep is counted when it is
// added, whether or not anything paints it. Storage is allocated when the store is configured,
// never per sweep. Not thread-safe: one thread adds and reads.
class SweepStore
{
public:
    enum { kMaxBins = 8192, kMaxHistory = 100000, kMaxDensityRows = 1000 };
    // Bound of historyRows x bins: 64 MiB of waterfall.
    static constexpr long long kMaxHistoryCells = 1LL << 24;
    using Observer = std::function<void(const SweepStore&)>;

    // An unusable configuration (see valid()) leaves an empty store that counts nothing.
    explicit SweepStore(const SweepStoreConfig& config = {});

    // Takes a new configuration; everything counted is dropped.
    bool configure(const SweepStoreConfig& config);
    static bool valid(const SweepStoreConfig& config);
    const SweepStoreConfig& config() const { return m_config; }

    // Counts one sweep of n levels (dBm) into every statistic and notifies the observers. Levels
    // past the store's bins are ignored; bins past n keep their traces and take no density.
    // A level that is not a number counts as config().missingDbm.
    // `stamp` is kept with the sweep's waterfall row (the caller's clock, e.g. milliseconds).
    void addSweep(const float* levels, int n, std::int64_t stamp = 0);
    void addSweep(const int* levels, int n, std::int64_t stamp = 0);

    // Drops max, min and average (the holds start again from the next sweep).
    void resetHolds();
    // Drops the density (the holds, traces and waterfall stay).
    void resetDensity();
    // Drops everything counted.
    void clear();
    void setAveraging(int sweeps);
    // A new display range: the density is recounted from the next sweep on.
    bool setDisplayRange(float minDbm, float maxDbm);

    int bins() const { return m_config.bins; }
    long long sweeps() const { return m_sweeps; }
    // Traces, bins() levels each; empty until the first sweep.
    const float* current() const { return m_current.data(); }
    const float* average() const { return m_average.data(); }
    const float* maxHold() const { return m_max.data(); }
    const float* minHold() const { return m_min.data(); }
    bool hasTraces() const { return m_sweeps > 0; }
    // Sweeps in max, min and average since their reset: 0 means the holds hold nothing yet.
    long long holdSweeps() const { return m_holdSweeps; }

    int densityRows() const { return m_densityRows; }
    // Sweeps whose level at `bin` fell into density row `row` (0 = minDbm).
    std::uint32_t density(int bin, int row) const;
    long densityPeak() const { return m_densityPeak; }
    // The density row of a level (clamped into the display range).
    int densityRow(float level) const;
    // The bins() counts of one density row, for painting a row at a time; null out of range.
    const std::uint32_t* densityCells(int row) const;
    // Sweeps counted into the density since it was last dropped.
    long long densitySweeps() const { return m_densitySweeps; }

    // Waterfall: row 0 is the newest sweep; historyCount() rows are held.
    int historyCount() const { return m_historyCount; }
    const float* historyRow(int age) const;
    // The stamp given with that row's sweep; 0 out of range.
    std::int64_t historyStamp(int age) const;

    // A copy of everything counted, without the observers (as any copy): a picture that later
    // sweeps to this store do not touch.
    SweepStore snapshot() const { return *this; }

    // Changes with every sweep counted and every reset or reconfiguration: a painter that keeps
    // a picture of the store compares it to know whether the picture is current.
    std::uint64_t generation() const { return m_generation; }

    // Called after each sweep is counted. The id is for unsubscribe; observers may subscribe and
    // unsubscribe from inside a notification.
    int subscribe(Observer observer);
    void unsubscribe(int id);

private:
    template <class T> void count(const T* levels, int n, std::int64_t stamp);
    int historySlot(int age) const;
    void notify();

    SweepStoreConfig m_config;
    std::vector<float> m_current, m_average, m_max, m_min;
    std::vector<float> m_history;         // historyRows x bins, a ring
    std::vector<std::int64_t> m_historyStamps;
    std::vector<std::uint32_t> m_density; // densityRows x bins, row-major
    int m_densityRows = 0;
    long m_densityPeak = 0;
    long long m_densitySweeps = 0;
    int m_historyNewest = -1;
    int m_historyCount = 0;
    long long m_sweeps = 0;
    long long m_holdSweeps = 0; // sweeps in max, min and average since their reset
    std::uint64_t m_generation = 0;
    // Observers belong to the store they subscribed to: a copy starts without any, and
    // assignment keeps the target's own.
    struct Observers {
        struct Subscription {
            int id;
            Observer observer;
            bool live;
        };
        std::list<Subscription> list;
        int nextId = 1;
        int notifying = 0;

        Observers() = default;
        Observers(const Observers&) {}
        Observers& operator=(const Observers&) { return *this; }
    };
    Observers m_observers;
};

} // namespace wsa

#endif
