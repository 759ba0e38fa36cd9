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

// A number in [min, max] (above min when openMin).
bool readNumber(const char* name, double& target, double min, double max, bool openMin,
                const char* expected)
{
    const char* value = envValue(name);
    if (!value)
        return false;
    char* end = nullptr;
    const double number = std::strtod(value, &end);
    if (*end != '\0' || !std::isfinite(number) || number < min || number > max ||
        (openMin && number == min)) {
        warnIgnored(name, value, expected);
        return false;
    }
    target = number;
    return true;
}

void readString(const char* name, std::string& target)
{
    if (const char* value = envValue(name))
        target = value;
}

void readSource(Options& options)
{
    const char* value = envValue("WSA_SOURCE");
    if (!value)
        return;
    options.sourceName = value;
    if (std::strcmp(value, "sim") == 0)
        options.source = Source::Sim;
    else if (std::strcmp(value, "hackrf") == 0)
        options.source = Source::HackRf;
    else if (std::strcmp(value, "replay") == 0)
        options.source = Source::Replay;
    else
        options.source = Source::Unknown;
}

void readDetector(Detector& target)
{
    const char* value = envValue("WSA_DETECTOR");
    if (!value)
        return;
    if (std::strcmp(value, "peak") == 0)
        target = Detector::Peak;
    else if (std::strcmp(value, "average") == 0)
        target = Detector::Average;
    else
        warnIgnored("WSA_DETECTOR", value, "peak or average");
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
    readNumber("WSA_SIM_RATE", options.rate, 0, kMaxRate, false, "sweeps per second, 0 to 1000");
    readFlag("WSA_SIM_NO_PROBE", options.noProbe);
    readCount("WSA_SIM_LOSE_AFTER", options.loseAfter);
    readCount("WSA_SIM_DIE_AFTER", options.dieAfter);
    readCount("WSA_SIM_SHORT_AFTER", options.shortAfter);
    readCount("WSA_SIM_CORRUPT_AFTER", options.corruptAfter);
    readCount("WSA_SIM_SWEEPS", options.sweeps);

    readSource(options);
    readDetector(options.detector);
    readNumber("WSA_OUTPUT_RATE", options.outputRate, 0, kMaxRate, true,
               "records per second, above 0 up to 1000");
    options.offsetSet =
        readNumber("WSA_LEVEL_OFFSET_DB", options.offsetDb, -200, 200, false, "dB, -200 to 200");
    // Set but empty means "do not record" (getenv of an empty value gives no directory).
    readString("WSA_RECORD_DIR", options.recordDir);
    readString("WSA_REPLAY_FILE", options.replayFile);
    readNumber("WSA_REPLAY_SPEED", options.replaySpeed, 0, kMaxRate, true,
               "a factor above 0 up to 1000");
    readString("WSA_HACKRF_SWEEP", options.hackrfSweep);
    double binHz = double(options.hackrfBinHz);
    if (readNumber("WSA_HACKRF_BIN_HZ", binHz, 2445, 5000000, false, "Hz, 2445 to 5000000"))
        options.hackrfBinHz = std::lround(binHz);
    return options;
}
