#include "registry.h"

#include "sources/replay/replaysource.h"
#include "sources/sim/simsource.h"
#include "sources/sweepprogram/sweepprogram.h"

const std::vector<SourceEntry>& sourceTable()
{
    static const std::vector<SourceEntry> table = {
        {"sim", "the simulated probe: a seeded radio scene with fault knobs", simVariables,
         makeSimSource},
        {"hackrf", "a HackRF through hackrf_sweep, read live", hackRfVariables, makeHackRfSource},
        {"replay", "a recording in the sweep CSV layout, at the pace of its time stamps",
         replayVariables, makeReplaySource},
    };
    return table;
}

const SourceEntry* findSource(const std::string& name)
{
    for (const SourceEntry& entry : sourceTable())
        if (name == entry.name)
            return &entry;
    return nullptr;
}

std::string sourceNames()
{
    const std::vector<SourceEntry>& table = sourceTable();
    std::string names;
    for (std::size_t i = 0; i < table.size(); ++i) {
        names += i == 0 ? "" : i + 1 == table.size() ? " or " : ", ";
        names += table[i].name;
    }
    return names;
}
