#include "sweepcsv.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace
{

// Rows wider than this many bins are refused; hackrf_sweep's narrowest bins give some 2000.
constexpr std::size_t kMaxRowBins = 65536;

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

// Days from 1970-01-01 to the given civil date (proleptic Gregorian).
long daysFromCivil(int y, int m, int d)
{
    y -= m <= 2;
    const long era = (y >= 0 ? y : y - 399) / 400;
    const long yoe = y - era * 400;
    const long doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    const long doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + doe - 719468;
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
    seconds = daysFromCivil(y, mo, d) * 86400.0 + h * 3600 + mi * 60 + s + fraction;
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
        if (!readNumber(p, level) || std::fabs(level) > 1000 || row.levels.size() == kMaxRowBins)
            return false;
        row.levels.push_back(float(level));
    }
    if (*skipSpace(p) != '\0' && *skipSpace(p) != '\r')
        return false;
    // The bins must fill the row's span; a row cut short does not.
    const double expected = (row.highHz - row.lowHz) / row.binHz;
    return !row.levels.empty() && std::fabs(double(row.levels.size()) - expected) < 1.0;
}

bool SweepAssembler::complete()
{
    if (m_sweep.empty())
        return false;
    m_sweep.result(m_done, m_offsetDb);
    m_doneSeconds = m_seconds;
    return true;
}

bool SweepAssembler::feed(const CsvRow& row)
{
    bool done = false;
    if (m_started && row.lowHz <= m_startHz) {
        done = complete();
        m_started = false;
    }
    if (!m_started) {
        m_sweep.clear();
        m_started = true;
        m_startHz = row.lowHz;
        m_seconds = row.seconds;
    }
    m_sweep.add(row.lowHz, row.binHz, row.levels.data(), int(row.levels.size()));
    return done;
}

bool SweepAssembler::finish()
{
    const bool done = m_started && complete();
    m_started = false;
    m_sweep.clear();
    return done;
}

double SweepAssembler::take(double* levels) const
{
    std::copy(m_done, m_done + m_grid.raw, levels);
    return m_doneSeconds;
}
