// Cost of taking one sweep into the store: the record's dispatch from a plain buffer (band
// adjustment, saved copy, history row, time text) and the statistics over its samples, as the
// next paint runs them. Prints the median per sweep and the memory the store holds.
#include <QApplication>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

#include "benchsupport.h"
#include "cutilwindow.h"
#include "link.h"
#include "store.h"
#include "sweepmodel.h"
#include "wsa_p.h"
#include "wsatestsupport.h"

namespace
{

long long medianNanoseconds(CWsa& wsa, int band, int rawSamples, int rounds)
{
    s_band = band;
    wsa.initData();
    stSweep record = wsatest::makeSweep(rawSamples, 0);
    std::vector<long long> times;
    times.reserve(size_t(rounds));
    for (int round = 0; round < rounds; ++round) {
        // A fresh recording before the limit, so no round restarts the engine.
        if (nLastIdx >= WSA_RECORDING_LIMIT - 2)
            wsa.initData();
        // A moving scene, so the density table spreads as it does with real data.
        for (int i = 0; i < SA_MAX_SAMPLES; ++i)
            record.data[i] = -20 - (i * 13 + round * 7) % 95;

        const auto start = std::chrono::steady_clock::now();
        wsaDispatchRecord(wsa, &record);
        for (int i = 1; i < currentData.num_samples; ++i) {
            bool rescale = false;
            wsaTakeSample(i, rescale);
        }
        const auto end = std::chrono::steady_clock::now();
        times.push_back(std::chrono::duration_cast<std::chrono::nanoseconds>(end - start).count());
        bReceivedData = false;
    }
    std::nth_element(times.begin(), times.begin() + rounds / 2, times.end());
    return times[size_t(rounds / 2)];
}

void printMemory()
{
    struct Item {
        const char* name;
        size_t bytes;
    };
    const Item items[] = {{"currentData", sizeof currentData},
                          {"currentDatatmp", sizeof currentDatatmp},
                          {"maxData", sizeof maxData},
                          {"minData", sizeof minData},
                          {"sumData", sizeof sumData},
                          {"historyData", sizeof historyData},
                          {"historyTime", sizeof historyTime},
                          {"historyColor", sizeof historyColor},
                          {"popularity", sizeof popularity},
                          {"colormap", sizeof colormap},
                          {"counters and flags", sizeof nDataCount + sizeof nLastIdx +
                                                     sizeof sweep_peak_max + sizeof nMinDraw +
                                                     sizeof nMaxDraw + sizeof startTime +
                                                     sizeof bReceivedData}};
    size_t total = 0;
    std::printf("\nmemory held by the store\n");
    for (const Item& item : items) {
        std::printf("  %-20s %10zu bytes\n", item.name, item.bytes);
        total += item.bytes;
    }
    std::printf("  %-20s %10zu bytes (%.1f MiB)\n", "total", total, total / (1024.0 * 1024.0));
}

// The core store a desktop window owns: one sweep of `bins` float levels counted into every trace,
// the density and the waterfall.
long long coreStoreNanoseconds(int bins, int rounds)
{
    wsa::SweepStoreConfig config;
    config.bins = bins;
    config.historyRows = WSA_HISTORY_ROWS;
    config.averaging = 16;
    wsa::SweepStore store(config);
    std::vector<float> sweep(static_cast<size_t>(bins));
    std::vector<long long> times;
    times.reserve(size_t(rounds));
    for (int round = 0; round < rounds; ++round) {
        for (int i = 0; i < bins; ++i)
            sweep[size_t(i)] = -20.0f - float((i * 13 + round * 7) % 95);
        const auto start = std::chrono::steady_clock::now();
        store.addSweep(sweep.data(), bins);
        const auto end = std::chrono::steady_clock::now();
        times.push_back(std::chrono::duration_cast<std::chrono::nanoseconds>(end - start).count());
    }
    std::nth_element(times.begin(), times.begin() + rounds / 2, times.end());
    return times[size_t(rounds / 2)];
}

} // namespace

int main(int argc, char** argv)
{
    bench::offscreenWithoutDisplay();
    QApplication app(argc, argv);
    wsatest::AnalyzerEnv env;
    CUtilWindow window;
    auto* wsa = new CWsa(&window);
    // No event loop runs, so the analyzer's refresh timer never reads the link meanwhile.
    const int rounds = 20000;

    std::printf("taking one sweep into the store (dispatch + statistics), median of %d\n", rounds);
    for (const wsa::Band& band : wsa::allBands()) {
        if (!band.handheld)
            continue;
        const int id = int(band.id);
        // The band's own records, and the longest a record can be.
        std::vector<int> raws = {band.grid.raw};
        if (band.grid.raw != SA_MAX_SAMPLES)
            raws.push_back(SA_MAX_SAMPLES);
        for (const int raw : raws) {
            const QString label = QString::asprintf("%s, %d raw (%d kept)", band.name, raw,
                                                    band.handheld->reducedCount(raw));
            std::printf("  %-28s %8lld ns per sweep\n", qPrintable(label),
                        medianNanoseconds(*wsa, id, raw, rounds));
        }
    }
    std::printf("\ncounting one sweep into the core store (float dBm, %d waterfall rows), median\n",
                int(WSA_HISTORY_ROWS));
    for (const int bins : {423, 1000, 4096})
        std::printf("  %5d bins %27lld ns per sweep\n", bins, coreStoreNanoseconds(bins, rounds));
    printMemory();
    return 0;
}
