// The engine's settings: its command line and the WSA_* variables. Every variable the engine
// reads is one row of a table (name, accepted values, default, meaning); parsing, the help
// listing and the documentation check all read those rows.
#ifndef ENGINE_OPTIONS_H
#define ENGINE_OPTIONS_H

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "bandplan.h"

struct Variable {
    enum class Kind { Number, Count, Seed, Flag, Text, Choice };
    const char* name;
    Kind kind;
    double min;         // Number, Count: the accepted range, both ends included
    double max;
    bool zeroAllowed;   // Number: 0 is accepted besides the range (it means "none")
    const char* unit;   // Number, Count: "records per second"; Choice: "peak|average"
    const char* fallback; // the default, as documented
    const char* meaning;

    // "records per second, 0.1 to 1000" and the like, for messages and the help listing.
    std::string accepted() const;
};

Variable number(const char* name, const char* unit, double min, double max, const char* fallback,
                const char* meaning, bool zeroAllowed = false);
Variable count(const char* name, const char* meaning);
Variable flag(const char* name, const char* meaning);
Variable text(const char* name, const char* fallback, const char* meaning);
Variable choice(const char* name, const char* values, const char* fallback, const char* meaning);
Variable seed(const char* name, const char* fallback, const char* meaning);

// The variables every source shares.
const std::vector<Variable>& commonVariables();
// Every variable the engine reads: the common ones, then each registered source's.
std::vector<Variable> allVariables();

// Accepted values by name. Reading a name that is in no table is a programming error.
class Settings
{
public:
    bool has(const std::string& name) const { return m_values.count(name) != 0; }
    // The value as given, or the table's default.
    double number(const std::string& name) const;
    long count(const std::string& name) const; // -1 when unset: never
    bool flag(const std::string& name) const;
    std::string text(const std::string& name) const;
    std::uint64_t seed(const std::string& name) const;

    void set(const std::string& name, const std::string& value) { m_values[name] = value; }

private:
    std::map<std::string, std::string> m_values;
};

struct Options {
    const wsa::Band* band = nullptr;
    std::string source = "sim";
    Settings settings;
    bool help = false;
};

// Reads argv and the environment. Anything it cannot use is reported on stderr and left at its
// default, so a mistyped setting never stops the engine.
Options parseOptions(int argc, char* const argv[]);

// The usage text: bands, sources and every variable with its values, default and meaning.
std::string helpText();

#endif
