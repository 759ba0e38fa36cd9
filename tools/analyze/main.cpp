// wsa-analyze: what was on the air in a recording. Runs the live analysis over a sweep CSV at
// full speed and prints the channel table and the emitters, or JSON Lines with --json. Exit 2
// with one line on standard error when the file cannot be used.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "jsonl.h"
#include "offline.h"
#include "textreport.h"

namespace
{

int refuse(const std::string& what)
{
    std::fprintf(stderr, "wsa-analyze: %s\n", what.c_str());
    return 2;
}

int usage()
{
    return refuse("usage: wsa-analyze [--band 2g4|5g|6g] [--level-offset DB] [--json] FILE");
}

} // namespace

int main(int argc, char** argv)
{
    const wsa::Band* band = nullptr;
    double offset = 0;
    bool json = false;
    std::string path;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--band" && i + 1 < argc) {
            band = wsa::findBand(argv[++i]);
            if (!band)
                return refuse(std::string("unknown band ") + argv[i] + " (2g4, 5g or 6g)");
        } else if (arg == "--level-offset" && i + 1 < argc) {
            char* end = nullptr;
            offset = std::strtod(argv[++i], &end);
            if (end == argv[i] || *end || !(offset > -200 && offset < 200))
                return refuse(std::string("level offset is not a number of dB: ") + argv[i]);
        } else if (arg == "--json") {
            json = true;
        } else if (arg.size() > 1 && arg[0] == '-' && arg != "-") {
            return usage();
        } else if (path.empty()) {
            path = arg;
        } else {
            return usage();
        }
    }
    if (path.empty())
        return usage();
    const std::string why = wsa::unusableFile(path);
    if (!why.empty())
        return refuse(path + ": " + why);
    if (!band)
        band = wsa::guessBand(path);
    if (!band)
        return refuse(path + ": no sweep rows of a known band (2g4, 5g, 6g)");
    wsa::Analyzer analyzer(*band);
    wsa::ReadCounts counts;
    std::string error;
    if (!wsa::analyzeFile(path, offset, analyzer, counts, error))
        return refuse(path + ": " + error);
    if (counts.sweeps == 0)
        return refuse(path + ": no sweep in the " + band->name + " band");
    const std::string out = json ? wsa::analysisJsonLines(analyzer) : wsa::textReport(analyzer);
    std::fwrite(out.data(), 1, out.size(), stdout);
    if (!json && counts.rejected > 0)
        std::printf("\n%ld lines were not sweep rows and were passed over\n", counts.rejected);
    return 0;
}
