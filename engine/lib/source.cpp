// What every source shares: its report of a missing probe and its exit status.
#include "source.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "enginecore.h"

int noProbe(Engine& engine, StatusReason reason, const std::string& why, const std::string& detail)
{
    const std::string text = detail.empty() ? why : why + ": " + detail;
    std::fprintf(stderr, "wsa_raw: no probe: %s\n", text.c_str());
    engine.reason(reason, text);
    return engine.fault(Fault::NoProbe) == SinkResult::Ok ? 0 : 1;
}

int exitStatus(SinkResult result)
{
    if (result != SinkResult::Failed)
        return 0;
    std::fprintf(stderr, "wsa_raw: write to the analyzer failed: %s\n", std::strerror(errno));
    return 1;
}
