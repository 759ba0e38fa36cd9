#include "offline.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <sys/stat.h>
#include <vector>

#include "resample.h"
#include "sweepcsv.h"

namespace wsa
{

namespace
{

struct FileCloser {
    void operator()(std::FILE* f) const { std::fclose(f); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

struct LineBuffer {
    char* data = nullptr;
    std::size_t size = 0;
    ~LineBuffer() { std::free(data); }
};

// Reads one line without its newline; false at the end of the file or on an error.
bool readLine(std::FILE* f, LineBuffer& line)
{
    const ssize_t n = getline(&line.data, &line.size, f);
    if (n < 0)
        return false;
    if (n > 0 && line.data[n - 1] == '\n')
        line.data[n - 1] = '\0';
    if (n > 1 && line.data[n - 2] == '\r')
        line.data[n - 2] = '\0';
    return true;
}

} // namespace

std::string unusableFile(const std::string& path)
{
    struct stat st;
    if (stat(path.c_str(), &st) != 0)
        return std::strerror(errno);
    if (!S_ISREG(st.st_mode))
        return "not a regular file";
    File f(std::fopen(path.c_str(), "r"));
    if (!f)
        return std::strerror(errno);
    return {};
}

const Band* guessBand(const std::string& path)
{
    const std::string name = path.substr(path.find_last_of('/') + 1);
    for (const Band& b : allBands()) {
        const std::string tag = std::string("-") + b.key;
        const std::size_t at = name.find(tag);
        if (at != std::string::npos && (at + tag.size() == name.size() || name[at + tag.size()] == '.' ||
                                        name[at + tag.size()] == '-'))
            return &b;
    }
    File f(std::fopen(path.c_str(), "r"));
    if (!f)
        return nullptr;
    std::vector<long> votes(allBands().size());
    LineBuffer line;
    CsvRow row;
    for (int n = 0; n < 2000 && readLine(f.get(), line); ++n) {
        if (!parseCsvRow(line.data, row))
            continue;
        const double mid = (row.lowHz + row.highHz) / 2;
        for (std::size_t k = 0; k < allBands().size(); ++k) {
            const SourceGrid& g = allBands()[k].grid;
            votes[k] += mid >= g.lowEdgeHz() && mid <= g.highEdgeHz();
        }
    }
    std::size_t best = 0;
    for (std::size_t k = 1; k < votes.size(); ++k)
        best = votes[k] > votes[best] ? k : best;
    return votes[best] > 0 ? &allBands()[best] : nullptr;
}

bool analyzeFile(const std::string& path, double offsetDb, Analyzer& analyzer, ReadCounts& counts,
                 std::string& error)
{
    File f(std::fopen(path.c_str(), "r"));
    if (!f) {
        error = std::strerror(errno);
        return false;
    }
    const SourceGrid& grid = analyzer.band().grid;
    SweepAssembler assembler(grid, offsetDb);
    std::vector<double> raw(std::size_t(grid.raw));
    std::vector<float> sweep(std::size_t(grid.shown));
    auto deliver = [&] {
        const double t = assembler.take(raw.data());
        for (int i = 0; i < grid.shown; ++i)
            sweep[std::size_t(i)] = float(raw[std::size_t(i)]);
        analyzer.take(sweep.data(), grid.shown, t);
        ++counts.sweeps;
    };
    LineBuffer line;
    CsvRow row;
    while (readLine(f.get(), line)) {
        if (!parseCsvRow(line.data, row)) {
            ++counts.rejected;
            continue;
        }
        ++counts.rows;
        if (assembler.feed(row))
            deliver();
    }
    if (std::ferror(f.get())) {
        error = std::strerror(errno);
        return false;
    }
    if (assembler.finish())
        deliver();
    analyzer.finish();
    return true;
}

} // namespace wsa
