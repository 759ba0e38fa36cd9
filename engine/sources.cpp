// What every source shares: its announcement and its report of a missing probe.
#include <cmath>
#include <cstdio>

#include "link.h"
#include "output.h"
#include "sources.h"

bool sendConfigured(int fd, const Grid& grid)
{
    stSweep record{};
    record.type = SA_MSG_CONFIGURED;
    record.num_samples = grid.raw;
    record.data[0] = int(std::lround(grid.startHz / 1e6));
    record.data[1] = int(std::lround(grid.endHz / 1e6));
    record.data[2] = int(std::lround(grid.stepHz / 1e3));
    return sendRecord(fd, record) == SendResult::Sent;
}

int noProbe(Output& output, const char* why, const char* detail)
{
    if (detail)
        std::fprintf(stderr, "wsa_raw: no probe: %s: %s\n", why, detail);
    else
        std::fprintf(stderr, "wsa_raw: no probe: %s\n", why);
    return output.sendStatus(SA_MSG_NO_DEVICE) ? 0 : 1;
}
