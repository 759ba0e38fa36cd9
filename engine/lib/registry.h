// The table of sources. Adding a source is one folder under sources/ and one row here; option
// parsing, the help listing and the message about an unknown source all read this table.
#ifndef ENGINE_REGISTRY_H
#define ENGINE_REGISTRY_H

#include <memory>
#include <string>
#include <vector>

#include "options.h"
#include "source.h"

struct SourceEntry {
    const char* name;    // the value of WSA_SOURCE
    const char* summary; // one line for the help listing
    // The variables only this source reads.
    const std::vector<Variable>& (*variables)();
    std::unique_ptr<Source> (*make)(const Settings& settings, const wsa::Band& band);
};

const std::vector<SourceEntry>& sourceTable();
// The source of that name, or null.
const SourceEntry* findSource(const std::string& name);
// "sim, hackrf or replay"
std::string sourceNames();

#endif
