// Sweep store: the newest sweep, per-bin statistics, the density table, the recording with its
// time stamps and waterfall colour rows, and the colour map; and the analyzer's reset and clock,
// which use them. Levels are dBm (negative); magnitudes are |dBm|.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "store.h"
#include "sweepmodel.h"
#include "wsa_p.h"

stSweep currentData;
stSweep currentDatatmp;
stSweep maxData;
stSweep minData;
int sumData[SA_MAX_SAMPLES];
int nDataCount;
int nLastIdx = -1;
stSweep historyData[WSA_HISTORY_ROWS];
char historyTime[WSA_HISTORY_ROWS][WSA_TIME_TEXT];
stColorLine historyColor[WSA_HISTORY_ROWS];
int popularity[SA_MAX_SAMPLES][WSA_DENSITY_LEVELS];
long sweep_peak_max = 1;
stRgb colormap[WSA_COLORMAP_SIZE];
// Until the first reset: the display range of the first band.
int nMinDraw = wsa::handheldBand(int(wsa::BandId::Ghz24)).handheld->minDbm;
int nMaxDraw = wsa::handheldBand(int(wsa::BandId::Ghz24)).handheld->maxDbm;
time_t startTime;
bool bReceivedData;

namespace
{
unsigned storeGeneration = 0;
}

unsigned wsaStoreGeneration()
{
    return storeGeneration;
}

void wsaResetStore(int band, time_t now)
{
    const wsa::HandheldMapping& mapping = *wsa::handheldBand(band).handheld;
    nMinDraw = mapping.minDbm;
    nMaxDraw = mapping.maxDbm;
    maxData.type = 0;
    nDataCount = 0;
    nLastIdx = -1;
    for (int i = 0; i < SA_MAX_SAMPLES; ++i) {
        maxData.data[i] = nMinDraw;
        minData.data[i] = nMaxDraw;
        sumData[i] = 0;
        std::memset(popularity[i], 0, sizeof popularity[i]);
    }
    sweep_peak_max = 1;
    startTime = now;
    bReceivedData = false;
    std::memset(historyTime, 0, sizeof historyTime);
    for (stColorLine& row : historyColor)
        std::fill(std::begin(row.color), std::end(row.color), qRgb(0, 0, 0));
    ++storeGeneration;
}

int CWsa::initData()
{
    wsaResetStore(int(wsaSelectedBand().id), time(nullptr));
    // A new recording shows all three views again; the constructor has set them already, and
    // sets them again here on purpose.
    bPlanarView = true;
    bSpectralView = true;
    bTopographicView = true;
    std::memset(strInspector, 0, sizeof strInspector);
    bPrevCurrent = false;
    return 0;
}

void wsaElapsedText(long long elapsed, char* text, size_t size)
{
    wsa::elapsedText(elapsed, text, size);
}

char* CWsa::getTime()
{
    static char strTime[256];
    wsaElapsedText(static_cast<long long>(time(nullptr) - startTime), strTime, sizeof strTime);
    return strTime;
}

void wsaCopyTimeText(char* row, const char* text)
{
    // 100 hours and more need more than the row holds; the text is cut, the row stays a string.
    wsa::copyTimeText(row, WSA_TIME_TEXT, text);
}

void fillColormap()
{
    static_assert(int(WSA_COLORMAP_SIZE) == int(wsa::kColorMapSize), "one colour map");
    wsa::Rgb map[wsa::kColorMapSize];
    wsa::fillColorMap(map);
    for (int k = 0; k < WSA_COLORMAP_SIZE; ++k)
        colormap[k] = {map[k].r, map[k].g, map[k].b};
}

int waterfallColorIndex(int level)
{
    return wsa::waterfallColorIndex(level, nMinDraw, nMaxDraw);
}

int wsaTakeSample(int i, bool& rescaleTopo)
{
    rescaleTopo = false;
    // Sample 0 takes no part in the statistics.
    if (i < 1 || i >= SA_MAX_SAMPLES)
        return 0;
    const int level = wsa::clampLevel(currentData.data[i], nMinDraw, nMaxDraw);
    currentData.data[i] = level;
    // The seed copy of the first sweep is unclamped: the holds settle on their first update.
    wsa::holdExtremes(level, maxData.data[i], minData.data[i], nMinDraw, nMaxDraw);

    const int magnitude = std::abs(level);
    sumData[i] += magnitude;
    const int m = std::min(magnitude, WSA_DENSITY_LEVELS - 1);
    rescaleTopo = wsa::raiseDensityPeak(++popularity[i][m], sweep_peak_max);

    const int row = nLastIdx + 1;
    if (i < WSA_COLOR_LINE && row >= 0 && row < WSA_HISTORY_ROWS) {
        const stRgb& c = colormap[waterfallColorIndex(level)];
        historyColor[row].color[i] = qRgb(c.r, c.g, c.b);
    }
    return magnitude;
}
