// The sweep CSV layout that hackrf_sweep writes and our recordings use:
//   date, time, hz_low, hz_high, hz_bin_width, num_samples, dB, dB, ...
// e.g. "2024-03-01, 12:30:05.250113, 2400000000, 2405000000, 1000000.00, 20, -71.23, -70.9, ..."
// Each dB value is the level of one bin of hz_bin_width Hz, the first starting at hz_low. One
// sweep may span many rows, which need not come in frequency order.
#ifndef CORE_SWEEPCSV_H
#define CORE_SWEEPCSV_H

#include <vector>

namespace wsa
{

struct CsvRow {
    double seconds = 0; // time stamp, seconds since 1970 read as UTC
    double lowHz = 0;
    double highHz = 0;
    double binHz = 0;
    std::vector<float> levels; // reserved once, reused for every row
};

// Rows wider than this many bins are refused; hackrf_sweep's narrowest bins give some 2000.
constexpr int kMaxRowBins = 65536;

// Parses one line (without its newline). False, leaving `row` unspecified, for anything that is
// not a whole row: a header, a comment, a damaged or cut line, bins that do not fill
// hz_low..hz_high.
bool parseCsvRow(const char* line, CsvRow& row);

// Writes ", v" for each level into `out`, which must hold 13 bytes per level; returns the end.
char* appendLevels(char* out, const int* levels, int count);

} // namespace wsa

#endif
