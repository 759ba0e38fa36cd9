// Sweep store: the newest sweep, per-bin statistics, the density table, the recording with its
// time stamps and waterfall colour rows, and the colour map. Levels are dBm (negative);
// magnitudes are |dBm|. Everything here is plain data and arithmetic: no window needed.
#ifndef STORE_H
#define STORE_H

#include <cstddef>
#include <ctime>

#include "halbrin_sa.h"
#include "wsa.h"

enum {
    WSA_HISTORY_ROWS = 3600,
    WSA_RECORDING_LIMIT = 3598, // the sweep that would take this history index restarts
    WSA_TIME_TEXT = 10,
    WSA_DENSITY_LEVELS = 111, // magnitudes 0 .. 110 dB
    WSA_COLORMAP_SIZE = 240
};

extern stSweep currentData;
extern stSweep currentDatatmp;
extern stSweep maxData;
extern stSweep minData;
extern int sumData[SA_MAX_SAMPLES];
extern int nDataCount;
extern int nLastIdx;
extern stSweep historyData[WSA_HISTORY_ROWS];
extern char historyTime[WSA_HISTORY_ROWS][WSA_TIME_TEXT];
extern stColorLine historyColor[WSA_HISTORY_ROWS];
extern int popularity[SA_MAX_SAMPLES][WSA_DENSITY_LEVELS];
extern long sweep_peak_max;
extern stRgb colormap[WSA_COLORMAP_SIZE];
extern int nMinDraw;
extern int nMaxDraw;
extern time_t startTime;
extern bool bReceivedData;

// Counts the resets of the store: a painter that keeps pictures of it compares the count.
unsigned wsaStoreGeneration();

// Fills the colour map: dark blue to green, yellow and red.
void fillColormap();

// Empties the store for a new recording in the handheld band `band` (wsa::BandId): the band's
// display range, no sweeps, no statistics, black colour rows, empty time texts, started at `now`.
void wsaResetStore(int band, time_t now);

// "HH:MM:SS" of `elapsed` seconds (at least two digits each, hours unbounded; negative counts
// as 0) into `text` of `size` bytes.
void wsaElapsedText(long long elapsed, char* text, size_t size);

// Copies a time text into a history row of WSA_TIME_TEXT bytes, cutting it so that the
// terminating zero always fits.
void wsaCopyTimeText(char* row, const char* text);

// Waterfall colour index (0 .. 239) of a level already clamped to [nMinDraw, nMaxDraw].
int waterfallColorIndex(int level);

// Statistics update of sample i (1 <= i < currentData.num_samples) of the newest sweep: clamps it,
// updates max, min, sum, density and peak, writes its waterfall colour. Returns |level|; sets
// rescaleTopo when the density peak has just grown to a multiple of 25 below 400.
int wsaTakeSample(int i, bool& rescaleTopo);

#endif
