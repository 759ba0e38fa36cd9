// The analysis of a recording: a sweep CSV (ours, or saved hackrf_sweep output) read row by row,
// assembled into sweeps on a band's grid and fed to the analysis at full speed.
#ifndef TOOLS_OFFLINE_H
#define TOOLS_OFFLINE_H

#include <string>

#include "analyzer.h"
#include "bandplan.h"

namespace wsa
{

struct ReadCounts {
    long rows = 0;     // rows parsed
    long rejected = 0; // lines that were no row: headers, damage, cut lines
    long sweeps = 0;   // sweeps handed to the analysis
};

// Checks that `path` names a readable regular file; otherwise returns why, in a few words.
std::string unusableFile(const std::string& path);

// The band of a recording: from a "-2g4", "-5g" or "-6g" in its file name, else the band whose
// grid most of its first rows fall into; null when neither tells.
const Band* guessBand(const std::string& path);

// Reads the whole file into the analysis (levels plus offsetDb), which is finished at the end.
// False with `error` set when the file cannot be read.
bool analyzeFile(const std::string& path, double offsetDb, Analyzer& analyzer, ReadCounts& counts,
                 std::string& error);

} // namespace wsa

#endif
