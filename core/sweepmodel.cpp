#include "sweepmodel.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace wsa
{

void fillColorMap(Rgb* map)
{
    // Dark blue to grey-blue, to green, to yellow, to red. Each segment stores the running colour
    // before updating it, so its first entry repeats the previous segment's last colour; the dips
    // at 121 and 182 come from that and belong to the map.
    const int n = kColorMapSize / 4;
    auto rgb = [](int r, int g, int b) {
        return Rgb{static_cast<unsigned char>(r), static_cast<unsigned char>(g),
                   static_cast<unsigned char>(b)};
    };
    int r = 0;
    int g = 0;
    int b = 128;
    for (int i = 0; i < n; ++i) {
        map[i] = rgb(r, g, b);
        r = i;
        g = i;
        b = b + 1;
    }
    const int g0 = g;
    const int b0 = b;
    for (int i = 0; i < n; ++i) {
        map[n + i] = rgb(r, g, b);
        g = static_cast<int>(g0 + i * (255.0 - g0) / n);
        b = static_cast<int>(b0 - i * static_cast<double>(b0) / n);
    }
    for (int i = 0; i < n; ++i) {
        map[2 * n + i] = rgb(r, g, b);
        r = (i * 255) / n;
    }
    for (int i = 0; i < n; ++i) {
        map[3 * n + i] = rgb(r, g, b);
        g = 255 - (i * 255) / n;
    }
}

int waterfallColorIndex(int level, int minDbm, int maxDbm)
{
    const int span = std::abs(minDbm) - std::abs(maxDbm);
    if (span == 0)
        return 0;
    // Position of the level in the display range, 0 (strongest) to 240 (weakest).
    const int c = static_cast<int>(static_cast<double>(std::abs(level) + maxDbm) / span * 240.0);
    int d = 310 - c;
    d = (d / 5) * 5;
    // Weak levels drop straight into the blue end, so the noise floor stays dark.
    if (d < 105)
        d -= 80;
    return std::clamp(d, 0, kColorMapSize - 1);
}

void elapsedText(long long elapsed, char* text, std::size_t size)
{
    // A wall clock set back during the recording must not produce "-1" parts.
    if (elapsed < 0)
        elapsed = 0;
    const long long parts[3] = {elapsed / 3600, (elapsed % 3600) / 60, elapsed % 60};
    char part[3][24];
    for (int k = 0; k < 3; ++k)
        std::snprintf(part[k], sizeof part[k], parts[k] > 9 ? "%lld" : "0%lld", parts[k]);
    std::snprintf(text, size, "%s:%s:%s", part[0], part[1], part[2]);
}

void copyTimeText(char* row, std::size_t rowSize, const char* text)
{
    if (rowSize == 0)
        return;
    std::size_t k = 0;
    for (; k + 1 < rowSize && text[k] != '\0'; ++k)
        row[k] = text[k];
    std::memset(row + k, 0, rowSize - k);
}

// ---- SweepStore

namespace
{

int densityRowsOf(const SweepStoreConfig& c)
{
    return int(std::ceil((c.maxDbm - c.minDbm) / c.densityStepDb)) + 1;
}

float receivable(float level, float missing = kLowestLevelDbm)
{
    if (std::isnan(level))
        return missing;
    return clampLevel(level, float(kLowestLevelDbm), float(kHighestLevelDbm));
}

float receivable(int level, float = kLowestLevelDbm)
{
    return float(clampLevel(level, int(kLowestLevelDbm), int(kHighestLevelDbm)));
}

} // namespace

SweepStore::SweepStore(const SweepStoreConfig& config)
{
    configure(config);
}

bool SweepStore::valid(const SweepStoreConfig& c)
{
    const bool finite =
        std::isfinite(c.minDbm) && std::isfinite(c.maxDbm) && std::isfinite(c.densityStepDb);
    return finite && std::isfinite(c.missingDbm) && c.bins >= 1 && c.bins <= kMaxBins && c.minDbm < c.maxDbm &&
           c.densityStepDb > 0 && densityRowsOf(c) <= kMaxDensityRows && c.historyRows >= 0 &&
           c.historyRows <= kMaxHistory && (long long)c.historyRows * c.bins <= kMaxHistoryCells &&
           c.averaging >= 0;
}

bool SweepStore::configure(const SweepStoreConfig& config)
{
    const bool ok = valid(config);
    m_config = ok ? config : SweepStoreConfig{};
    const size_t bins = size_t(m_config.bins);
    m_current.assign(bins, 0);
    m_average.assign(bins, 0);
    m_max.assign(bins, 0);
    m_min.assign(bins, 0);
    m_history.assign(bins * size_t(m_config.historyRows), 0);
    m_historyStamps.assign(size_t(m_config.historyRows), 0);
    m_densityRows = ok ? densityRowsOf(m_config) : 0;
    m_density.assign(bins * size_t(m_densityRows), 0);
    clear();
    return ok;
}

void SweepStore::resetDensity()
{
    std::fill(m_density.begin(), m_density.end(), 0u);
    m_densityPeak = 0;
    m_densitySweeps = 0;
    ++m_generation;
}

void SweepStore::clear()
{
    std::fill(m_current.begin(), m_current.end(), float(kLowestLevelDbm));
    resetDensity();
    m_historyNewest = -1;
    m_historyCount = 0;
    m_sweeps = 0;
    resetHolds();
}

void SweepStore::resetHolds()
{
    std::fill(m_average.begin(), m_average.end(), float(kLowestLevelDbm));
    std::fill(m_max.begin(), m_max.end(), float(kLowestLevelDbm));
    std::fill(m_min.begin(), m_min.end(), float(kHighestLevelDbm));
    m_holdSweeps = 0;
    ++m_generation;
}

void SweepStore::setAveraging(int sweeps)
{
    m_config.averaging = std::max(sweeps, 0);
}

bool SweepStore::setDisplayRange(float minDbm, float maxDbm)
{
    SweepStoreConfig c = m_config;
    c.minDbm = minDbm;
    c.maxDbm = maxDbm;
    if (!valid(c))
        return false;
    m_config = c;
    m_densityRows = densityRowsOf(c);
    m_density.assign(size_t(c.bins) * size_t(m_densityRows), 0);
    m_densityPeak = 0;
    m_densitySweeps = 0;
    ++m_generation;
    return true;
}

int SweepStore::densityRow(float level) const
{
    if (m_densityRows == 0)
        return 0;
    const float row = std::round((receivable(level) - m_config.minDbm) / m_config.densityStepDb);
    return int(clampLevel(row, 0.0f, float(m_densityRows - 1)));
}

std::uint32_t SweepStore::density(int bin, int row) const
{
    if (bin < 0 || bin >= bins() || row < 0 || row >= m_densityRows)
        return 0;
    return m_density[size_t(row) * size_t(bins()) + size_t(bin)];
}

const std::uint32_t* SweepStore::densityCells(int row) const
{
    if (row < 0 || row >= m_densityRows)
        return nullptr;
    return m_density.data() + size_t(row) * size_t(bins());
}

int SweepStore::historySlot(int age) const
{
    if (age < 0 || age >= m_historyCount)
        return -1;
    const int rows = m_config.historyRows;
    return (m_historyNewest - age + rows) % rows;
}

const float* SweepStore::historyRow(int age) const
{
    const int row = historySlot(age);
    return row < 0 ? nullptr : m_history.data() + size_t(row) * size_t(bins());
}

std::int64_t SweepStore::historyStamp(int age) const
{
    const int row = historySlot(age);
    return row < 0 ? 0 : m_historyStamps[size_t(row)];
}

void SweepStore::addSweep(const float* levels, int n, std::int64_t stamp)
{
    count(levels, n, stamp);
}

void SweepStore::addSweep(const int* levels, int n, std::int64_t stamp)
{
    count(levels, n, stamp);
}

template <class T> void SweepStore::count(const T* levels, int n, std::int64_t stamp)
{
    if (bins() == 0)
        return;
    const int used = levels ? std::clamp(n, 0, bins()) : 0;
    ++m_sweeps;
    ++m_holdSweeps;
    ++m_densitySweeps;
    const long long window = m_config.averaging > 0
                                 ? std::min<long long>(m_holdSweeps, m_config.averaging)
                                 : m_holdSweeps;
    const float weight = 1.0f / float(window);
    float* history = nullptr;
    if (m_config.historyRows > 0) {
        m_historyNewest = (m_historyNewest + 1) % m_config.historyRows;
        m_historyCount = std::min(m_historyCount + 1, m_config.historyRows);
        history = m_history.data() + size_t(m_historyNewest) * size_t(bins());
        m_historyStamps[size_t(m_historyNewest)] = stamp;
        std::fill(history + used, history + bins(), float(kLowestLevelDbm));
    }
    const float lo = float(kLowestLevelDbm), hi = float(kHighestLevelDbm);
    const float missing = clampLevel(m_config.missingDbm, lo, hi);
    const std::size_t rowStride = size_t(bins());
    for (int i = 0; i < used; ++i) {
        const float v = receivable(levels[i], missing);
        m_current[size_t(i)] = v;
        float& average = m_average[size_t(i)];
        average = m_holdSweeps == 1 ? v : average + (v - average) * weight;
        holdExtremes(v, m_max[size_t(i)], m_min[size_t(i)], lo, hi);
        std::uint32_t& cell = m_density[size_t(densityRow(v)) * rowStride + size_t(i)];
        raiseDensityPeak(long(++cell), m_densityPeak);
        if (history)
            history[i] = v;
    }
    ++m_generation;
    notify();
}

int SweepStore::subscribe(Observer observer)
{
    m_observers.list.push_back({m_observers.nextId, std::move(observer), true});
    return m_observers.nextId++;
}

void SweepStore::unsubscribe(int id)
{
    auto& list = m_observers.list;
    for (auto it = list.begin(); it != list.end(); ++it) {
        if (it->id != id || !it->live)
            continue;
        // Inside a notification the entry is only marked: it may be the one running.
        if (m_observers.notifying > 0)
            it->live = false;
        else
            list.erase(it);
        return;
    }
}

void SweepStore::notify()
{
    auto& list = m_observers.list;
    if (list.empty())
        return;
    ++m_observers.notifying;
    // Observers subscribed meanwhile wait for the next sweep; a list keeps every entry in place.
    const auto last = std::prev(list.end());
    for (auto it = list.begin();; ++it) {
        if (it->live)
            it->observer(*this);
        if (it == last)
            break;
    }
    if (--m_observers.notifying == 0)
        list.remove_if([](const Observers::Subscription& s) { return !s.live; });
}

} // namespace wsa
