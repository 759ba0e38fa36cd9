// Cost of taking one sweep into the store: the record's dispatch from a plain buffer (band
// adjustment, saved copy, history row, time text) and the statistics over its samples, as the
// next paint runs them. Prints the median per sweep and the memory the store holds.
#include <QApplication>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

#include "cutilwindow.h"
#include "link.h"
#include "store.h"
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

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && qEnvironmentVariableIsEmpty("DISPLAY") &&
        qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
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
    printMemory();
    return 0;
}
