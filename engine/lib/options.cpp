#include "options.h"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

#include "registry.h"

namespace
{

// Counts of sweeps: far beyond any run, far below any overflow.
constexpr double kMaxCount = 1e9;

// A set, non-empty variable, or null.
const char* envValue(const char* name)
{
    const char* value = std::getenv(name);
    return value && *value ? value : nullptr;
}

std::string shortNumber(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.15g", value);
    return text;
}

bool wholeNumber(const char* value, double& number)
{
    char* end = nullptr;
    errno = 0;
    const long long n = std::strtoll(value, &end, 10);
    number = double(n);
    return errno == 0 && end != value && *end == '\0';
}

bool realNumber(const char* value, double& number)
{
    char* end = nullptr;
    number = std::strtod(value, &end);
    return end != value && *end == '\0' && std::isfinite(number);
}

bool oneOf(const char* values, const char* value)
{
    const std::string list = std::string("|") + values + "|";
    return !std::strchr(value, '|') &&
           list.find("|" + std::string(value) + "|") != std::string::npos;
}

bool valid(const Variable& v, const char* value)
{
    double n = 0;
    switch (v.kind) {
    case Variable::Kind::Number:
        return realNumber(value, n) && ((v.zeroAllowed && n == 0) || (n >= v.min && n <= v.max));
    case Variable::Kind::Count:
        return wholeNumber(value, n) && n >= v.min && n <= v.max;
    case Variable::Kind::Seed: {
        char* end = nullptr;
        errno = 0;
        std::strtoull(value, &end, 0);
        return errno == 0 && end != value && *end == '\0' && !std::strchr(value, '-');
    }
    case Variable::Kind::Flag:
        return std::strcmp(value, "0") == 0 || std::strcmp(value, "1") == 0;
    case Variable::Kind::Choice:
        return oneOf(v.unit, value);
    case Variable::Kind::Text:
        return true;
    }
    return false;
}

Variable find(const std::string& name)
{
    for (const Variable& v : allVariables())
        if (name == v.name)
            return v;
    throw std::logic_error("the engine reads " + name + ", which no variable table holds");
}

const char* valueOf(const std::map<std::string, std::string>& values, const std::string& name)
{
    const Variable v = find(name);
    const auto it = values.find(name);
    return it != values.end() ? it->second.c_str() : v.fallback;
}

bool parseBand(const char* value, Options& options)
{
    for (const wsa::Band& band : wsa::allBands()) {
        if (value == std::to_string(band.engineNumber)) {
            options.band = &band;
            return true;
        }
    }
    return false;
}

std::string padded(const std::string& text, std::size_t width)
{
    return text + std::string(text.size() < width ? width - text.size() : 1, ' ');
}

std::string bandChoices()
{
    std::string text;
    const auto& bands = wsa::allBands();
    for (std::size_t i = 0; i < bands.size(); ++i) {
        text += (i == 0 ? "" : i + 1 == bands.size() ? " or " : ", ");
        text += "-r " + std::to_string(bands[i].engineNumber);
    }
    return text;
}

} // namespace

std::string Variable::accepted() const
{
    switch (kind) {
    case Kind::Number:
    case Kind::Count:
        return std::string(unit) + ", " + (zeroAllowed ? "0 or " : "") + shortNumber(min) + " to " +
               shortNumber(max);
    case Kind::Seed:
        return "an unsigned 64-bit number";
    case Kind::Flag:
        return "0 or 1";
    case Kind::Choice: {
        std::string values = unit;
        const std::size_t bar = values.rfind('|');
        for (std::size_t at; (at = values.find('|')) != std::string::npos;)
            values.replace(at, 1, at == bar ? " or " : ", ");
        return values;
    }
    case Kind::Text:
        break;
    }
    return unit ? unit : "any text";
}

Variable number(const char* name, const char* unit, double min, double max, const char* fallback,
                const char* meaning, bool zeroAllowed)
{
    return {name, Variable::Kind::Number, min, max, zeroAllowed, unit, fallback, meaning};
}

Variable count(const char* name, const char* meaning)
{
    return {name, Variable::Kind::Count, 0, kMaxCount, false, "a whole number", "", meaning};
}

Variable flag(const char* name, const char* meaning)
{
    return {name, Variable::Kind::Flag, 0, 1, false, nullptr, "0", meaning};
}

Variable text(const char* name, const char* fallback, const char* meaning)
{
    return {name, Variable::Kind::Text, 0, 0, false, nullptr, fallback, meaning};
}

Variable choice(const char* name, const char* values, const char* fallback, const char* meaning)
{
    return {name, Variable::Kind::Choice, 0, 0, false, values, fallback, meaning};
}

Variable seed(const char* name, const char* fallback, const char* meaning)
{
    return {name, Variable::Kind::Seed, 0, 0, false, nullptr, fallback, meaning};
}

const std::vector<Variable>& commonVariables()
{
    static const std::vector<Variable> table = {
        {"WSA_SOURCE", Variable::Kind::Text, 0, 0, false, "a source listed above", "sim",
         "where sweeps come from; an unknown one gives a line on stderr and a No-probe record"},
        number("WSA_OUTPUT_RATE", "records per second", 0.1, 1000, "8",
               "records sent per second at most; sweeps arriving between two are combined"),
        choice("WSA_DETECTOR", "peak|average", "peak",
               "how sweeps between two records are combined: the maximum per bin, or the mean "
               "power"),
        text("WSA_RECORD_DIR", "",
             "append every sweep sent to a new CSV file in this directory; unset or empty: no "
             "recording"),
        flag("WSA_RECORD_ONLY",
             "1: connect to no analyzer, only record into WSA_RECORD_DIR (and/or analyse into "
             "WSA_ANALYSIS_FILE) until the source ends "
             "or SIGTERM/SIGINT"),
        number("WSA_RECORD_LIMIT_MB", "MB", 1, 1048576, "0",
               "start a new recording file before one would grow past this size; 0: no limit",
               true),
        text("WSA_FRONT_SOCKET", "",
             "a desktop front-end's socket: the engine connects there instead of ./SERVERSOCK "
             "and speaks the framed front-end stream (sweeps, status, analysis out; controls in)"),
        text("WSA_STATUS_SOCKET", "",
             "beside ./SERVERSOCK: status and recording frames also go to this socket, for a "
             "host that shows what the handheld analyzer cannot"),
        number("WSA_LEVEL_OFFSET_DB", "dB", -200, 200, "the source's own (hackrf -20, replay 0)",
               "calibration offset added to measured levels"),
        text("WSA_ANALYSIS_FILE", "",
             "write the analysis of every sweep as JSON Lines to this file: an emitter's line "
             "when it ends; at the stop the emitters still active, the channels and a summary; "
             "with WSA_RECORD_ONLY=1 it may stand alone"),
    };
    return table;
}

std::vector<Variable> allVariables()
{
    std::vector<Variable> all = commonVariables();
    for (const SourceEntry& source : sourceTable()) {
        for (const Variable& v : source.variables())
            all.push_back(v);
    }
    return all;
}

double Settings::number(const std::string& name) const
{
    return std::strtod(valueOf(m_values, name), nullptr);
}

long Settings::count(const std::string& name) const
{
    return has(name) ? std::strtol(valueOf(m_values, name), nullptr, 10) : -1;
}

bool Settings::flag(const std::string& name) const
{
    return std::strcmp(valueOf(m_values, name), "1") == 0;
}

std::string Settings::text(const std::string& name) const
{
    return has(name) ? m_values.at(name) : std::string(find(name).fallback);
}

std::uint64_t Settings::seed(const std::string& name) const
{
    return std::strtoull(valueOf(m_values, name), nullptr, 0);
}

Options parseOptions(int argc, char* const argv[])
{
    Options options;
    options.band = &wsa::allBands().front();
    // The analyzer passes "-r 2" as one argument; its shell fallback splits it into "-r" "2".
    for (int i = 1; i < argc; ++i) {
        const char* arg = argv[i];
        if (std::strcmp(arg, "--help") == 0 || std::strcmp(arg, "-h") == 0) {
            options.help = true;
            continue;
        }
        if (std::strncmp(arg, "-r", 2) == 0) {
            const char* value = arg + 2;
            while (*value == ' ')
                ++value;
            if (*value == '\0' && arg[2] == '\0' && i + 1 < argc)
                value = argv[++i];
            if (!parseBand(value, options))
                std::fprintf(stderr, "wsa_raw: unknown band '%s' (use %s)\n", value,
                             bandChoices().c_str());
            continue;
        }
        std::fprintf(stderr, "wsa_raw: ignoring unknown argument '%s'\n", arg);
    }

    for (const Variable& v : allVariables()) {
        const char* value = envValue(v.name);
        if (!value)
            continue;
        if (valid(v, value))
            options.settings.set(v.name, value);
        else
            std::fprintf(stderr, "wsa_raw: ignoring %s=%s (expected %s)\n", v.name, value,
                         v.accepted().c_str());
    }
    options.source = options.settings.text("WSA_SOURCE");
    return options;
}

std::string helpText()
{
    std::string text = "Usage: wsa_raw [" + bandChoices() + "]\n\nBands:\n";
    for (const wsa::Band& band : wsa::allBands())
        text += "  -r " + std::to_string(band.engineNumber) + "  " + band.name +
                (&band == &wsa::allBands().front() ? " (default)" : "") + "\n";
    text += "\nSources (WSA_SOURCE):\n";
    for (const SourceEntry& source : sourceTable())
        text += "  " + padded(source.name, 8) + source.summary + "\n";
    text += "\nVariables:\n";
    for (const Variable& v : allVariables()) {
        text += std::string("  ") + v.name + "  " + v.accepted() + "; default " +
                (*v.fallback ? v.fallback : "unset") + "\n      " + v.meaning + "\n";
    }
    return text;
}
