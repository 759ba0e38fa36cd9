#include "sweepcsv.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <ctime>

namespace wsa
{

namespace
{

const char* skipSpace(const char* p)
{
    while (*p == ' ' || *p == '\t')
        ++p;
    return p;
}

// Moves past the separator after a field; false at the end of the line or on anything else.
bool nextField(const char*& p)
{
    p = skipSpace(p);
    if (*p != ',')
        return false;
    p = skipSpace(p + 1);
    return true;
}

bool readNumber(const char*& p, double& value)
{
    char* end = nullptr;
    value = std::strtod(p, &end);
    if (end == p || !std::isfinite(value))
        return false;
    p = end;
    return true;
}

bool readInt(const char*& p, int digits, int& value)
{
    value = 0;
    for (int i = 0; i < digits; ++i, ++p) {
        if (*p < '0' || *p > '9')
            return false;
        value = value * 10 + (*p - '0');
    }
    return true;
}

// "YYYY-MM-DD, HH:MM:SS[.ffffff]"
bool readStamp(const char*& p, double& seconds)
{
    int y, mo, d, h, mi, s;
    if (!readInt(p, 4, y) || *p++ != '-' || !readInt(p, 2, mo) || *p++ != '-' ||
        !readInt(p, 2, d) || !nextField(p) || !readInt(p, 2, h) || *p++ != ':' ||
        !readInt(p, 2, mi) || *p++ != ':' || !readInt(p, 2, s))
        return false;
    if (mo < 1 || mo > 12 || d < 1 || d > 31 || h > 23 || mi > 59 || s > 60)
        return false;
    double fraction = 0;
    if (*p == '.') {
        double scale = 0.1;
        for (++p; *p >= '0' && *p <= '9'; ++p, scale /= 10)
            fraction += (*p - '0') * scale;
    }
    tm civil{};
    civil.tm_year = y - 1900;
    civil.tm_mon = mo - 1;
    civil.tm_mday = d;
    civil.tm_hour = h;
    civil.tm_min = mi;
    civil.tm_sec = s;
    seconds = double(timegm(&civil)) + fraction;
    return true;
}

} // namespace

bool parseCsvRow(const char* line, CsvRow& row)
{
    const char* p = skipSpace(line);
    double samples = 0;
    if (!readStamp(p, row.seconds) || !nextField(p) || !readNumber(p, row.lowHz) || !nextField(p) ||
        !readNumber(p, row.highHz) || !nextField(p) || !readNumber(p, row.binHz) || !nextField(p) ||
        !readNumber(p, samples))
        return false;
    if (!(row.binHz > 0) || row.highHz <= row.lowHz)
        return false;
    row.levels.clear();
    if (row.levels.capacity() == 0)
        row.levels.reserve(4096);
    while (nextField(p)) {
        double level = 0;
        // No receiver reads a kilo-dB: such a number is damage, not a level.
        if (!readNumber(p, level) || std::fabs(level) > 1000 ||
            row.levels.size() == std::size_t(kMaxRowBins))
            return false;
        row.levels.push_back(float(level));
    }
    if (*skipSpace(p) != '\0' && *skipSpace(p) != '\r')
        return false;
    // The bins must fill the row's span; a row cut short does not.
    const double expected = (row.highHz - row.lowHz) / row.binHz;
    return !row.levels.empty() && std::fabs(double(row.levels.size()) - expected) < 1.0;
}

char* appendLevels(char* out, const int* levels, int count)
{
    for (int i = 0; i < count; ++i) {
        *out++ = ',';
        *out++ = ' ';
        out = std::to_chars(out, out + 11, levels[i]).ptr;
    }
    return out;
}

} // namespace wsa
