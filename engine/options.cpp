#include "options.h"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace
{

constexpr double kMaxRate = 1000.0;

void warnIgnored(const char* name, const char* value, const char* expected)
{
    std::fprintf(stderr, "wsa_raw: ignoring %s=%s (expected %s)\n", name, value, expected);
}

// A set, non-empty variable, or null.
const char* envValue(const char* name)
{
    const char* value = std::getenv(name);
    return value && *value ? value : nullptr;
}

void readCount(const char* name, long& target)
{
    const char* value = envValue(name);
    if (!value)
        return;
    char* end = nullptr;
    errno = 0;
    const long n = std::strtol(value, &end, 10);
    if (errno != 0 || *end != '\0' || n < 0) {
        warnIgnored(name, value, "a whole number >= 0");
        return;
    }
    target = n;
}

void readSeed(std::uint64_t& target)
{
    const char* value = envValue("WSA_SIM_SEED");
    if (!value)
        return;
    char* end = nullptr;
    errno = 0;
    const unsigned long long n = std::strtoull(value, &end, 0);
    if (errno != 0 || *end != '\0' || std::strchr(value, '-')) {
        warnIgnored("WSA_SIM_SEED", value, "an unsigned 64-bit number");
        return;
    }
    target = n;
}

void readRate(double& target)
{
    const char* value = envValue("WSA_SIM_RATE");
    if (!value)
        return;
    char* end = nullptr;
    const double rate = std::strtod(value, &end);
    if (*end != '\0' || !std::isfinite(rate) || rate < 0 || rate > kMaxRate) {
        warnIgnored("WSA_SIM_RATE", value, "sweeps per second, 0 to 1000");
        return;
    }
    target = rate;
}

void readFlag(const char* name, bool& target)
{
    const char* value = envValue(name);
    if (!value)
        return;
    if (std::strcmp(value, "1") == 0 || std::strcmp(value, "0") == 0)
        target = value[0] == '1';
    else
        warnIgnored(name, value, "0 or 1");
}

// "1" or "2", the value of -r.
bool bandFromValue(const char* value, Band& band)
{
    if (std::strcmp(value, "1") == 0)
        band = Band::Ghz24;
    else if (std::strcmp(value, "2") == 0)
        band = Band::Ghz5;
    else
        return false;
    return true;
}

} // namespace

Options parseOptions(int argc, char* const argv[])
{
    Options options;
    // The analyzer passes "-r 2" as one argument; its shell fallback splits it into "-r" "2".
    for (int i = 1; i < argc; ++i) {
        const char* arg = argv[i];
        if (std::strncmp(arg, "-r", 2) == 0) {
            const char* value = arg + 2;
            while (*value == ' ')
                ++value;
            if (*value == '\0' && arg[2] == '\0' && i + 1 < argc)
                value = argv[++i];
            if (bandFromValue(value, options.band))
                continue;
            std::fprintf(stderr, "wsa_raw: unknown band '%s' (use -r 1 or -r 2)\n", value);
            continue;
        }
        std::fprintf(stderr, "wsa_raw: ignoring unknown argument '%s'\n", arg);
    }

    readSeed(options.seed);
    readRate(options.rate);
    readFlag("WSA_SIM_NO_PROBE", options.noProbe);
    readCount("WSA_SIM_LOSE_AFTER", options.loseAfter);
    readCount("WSA_SIM_DIE_AFTER", options.dieAfter);
    readCount("WSA_SIM_SHORT_AFTER", options.shortAfter);
    readCount("WSA_SIM_CORRUPT_AFTER", options.corruptAfter);
    readCount("WSA_SIM_SWEEPS", options.sweeps);
    return options;
}
