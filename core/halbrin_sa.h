// Record protocol between the acquisition engine (wsa_raw) and the analyzer.
// Records travel as their in-memory image in host byte order; both programs run on one unit.
#ifndef HALBRIN_SA_H
#define HALBRIN_SA_H

#include <cstddef>

enum {
    SA_MSG_DISCONNECT = 100, // 'd': probe lost
    SA_MSG_SWEEP = 101,      // 'e': num_samples levels in data, dBm
    SA_MSG_CONFIGURED = 102, // 'f': data[0] start MHz, data[1] end MHz, data[2] step kHz
    SA_MSG_NO_DEVICE = 103   // 'g': no probe at engine start
};

enum { SA_MAX_SAMPLES = 1024 };

struct stSweep {
    char type;
    int num_samples;
    int data[SA_MAX_SAMPLES];
};

enum { SA_RECORD_SIZE = 4104 };

static_assert(sizeof(stSweep) == SA_RECORD_SIZE, "record is 4104 bytes on the wire");
static_assert(offsetof(stSweep, type) == 0, "type at offset 0");
static_assert(offsetof(stSweep, num_samples) == 4, "num_samples at offset 4");
static_assert(offsetof(stSweep, data) == 8, "data at offset 8");

#endif
