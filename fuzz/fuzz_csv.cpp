// libFuzzer target over the sweep CSV reader, the sweep assembler and the resampler: whatever a
// recording or a sweep program's output holds is read line by line into sweeps of every band.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "bandplan.h"
#include "resample.h"
#include "sweepcsv.h"

namespace
{

struct Band {
    const wsa::Band& band;
    std::unique_ptr<wsa::SweepAssembler> assembler;
};

void check(const double* levels, const wsa::SourceGrid& grid)
{
    for (int i = 0; i < grid.raw; ++i)
        if (std::isnan(levels[i]))
            std::abort(); // a sweep must never carry a level that is not a number
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // The first byte chooses an offset, so the assembler's arithmetic sees odd values too.
    const double offsetDb = size ? double(int(data[0]) - 128) : 0.0;
    std::vector<Band> bands;
    for (const wsa::Band& band : wsa::allBands())
        bands.push_back({band, std::make_unique<wsa::SweepAssembler>(band.grid, offsetDb)});
    wsa::CsvRow row;
    double levels[SA_MAX_SAMPLES];
    const std::string text(reinterpret_cast<const char*>(data), size);
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t end = text.find('\n', start);
        if (end == std::string::npos)
            end = text.size();
        // Lines are C strings to the reader: an embedded NUL ends one early, as in a file.
        const std::string line = text.substr(start, end - start);
        start = end + 1;
        if (!wsa::parseCsvRow(line.c_str(), row))
            continue;
        if (row.levels.empty() || row.levels.size() > std::size_t(wsa::kMaxRowBins))
            std::abort();
        for (Band& b : bands) {
            if (b.assembler->feed(row)) {
                b.assembler->take(levels);
                check(levels, b.band.grid);
            }
        }
    }
    for (Band& b : bands) {
        if (b.assembler->finish()) {
            b.assembler->take(levels);
            check(levels, b.band.grid);
        }
    }
    return 0;
}
