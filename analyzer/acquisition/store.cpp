// Sweep store: the newest sweep, per-bin statistics, the density table, the recording with its
// time stamps and waterfall colour rows, and the colour map; and the analyzer's reset and clock,
// which use them. Levels are dBm (negative); magnitudes are |dBm|.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "framecache.h"
#include "store.h"
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
int nMinDraw = -110;
int nMaxDraw = -10;
time_t startTime;
bool bReceivedData;

void wsaResetStore(int band, time_t now)
{
    if (band == 0) {
        nMinDraw = -110;
        nMaxDraw = -10;
    } else {
        nMinDraw = -100;
        nMaxDraw = -50;
    }
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
}

int CWsa::initData()
{
    wsaResetStore(s_band, time(nullptr));
    // A new recording shows all three views again; the constructor has set them already, and
    // sets them again here on purpose.
    bPlanarView = true;
    bSpectralView = true;
    bTopographicView = true;
    frameCache().invalidate();
    std::memset(strInspector, 0, sizeof strInspector);
    bPrevCurrent = false;
    return 0;
}

void wsaElapsedText(long long elapsed, char* text, size_t size)
{
    // A wall clock set back during the recording must not produce "-1" parts.
    if (elapsed < 0)
        elapsed = 0;
    const long long parts[3] = {elapsed / 3600, (elapsed % 3600) / 60, elapsed % 60};
    char part[3][24];
    for (int k = 0; k < 3; ++k)
        std::snprintf(part[k], sizeof part[k], parts[k] > 9 ? "%lld" : "0%lld", parts[k]);
    std::snprintf(text, size, "%s:%s:%s", part[0], part[1], part[2]);
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
    int k = 0;
    for (; k < WSA_TIME_TEXT - 1 && text[k] != '\0'; ++k)
        row[k] = text[k];
    std::memset(row + k, 0, WSA_TIME_TEXT - k);
}

void fillColormap()
{
    // Dark blue to grey-blue, to green, to yellow, to red. Each segment stores the running colour
    // before updating it, so its first entry repeats the previous segment's last colour; the dips
    // at 121 and 182 come from that and belong to the map.
    const int n = 60;
    int r = 0;
    int g = 0;
    int b = 128;
    for (int i = 0; i < n; ++i) {
        colormap[i] = {static_cast<unsigned char>(r), static_cast<unsigned char>(g),
                       static_cast<unsigned char>(b)};
        r = i;
        g = i;
        b = b + 1;
    }
    const int g0 = g;
    const int b0 = b;
    for (int i = 0; i < n; ++i) {
        colormap[n + i] = {static_cast<unsigned char>(r), static_cast<unsigned char>(g),
                           static_cast<unsigned char>(b)};
        g = static_cast<int>(g0 + i * (255.0 - g0) / n);
        b = static_cast<int>(b0 - i * static_cast<double>(b0) / n);
    }
    for (int i = 0; i < n; ++i) {
        colormap[2 * n + i] = {static_cast<unsigned char>(r), static_cast<unsigned char>(g),
                               static_cast<unsigned char>(b)};
        r = (i * 255) / n;
    }
    for (int i = 0; i < n; ++i) {
        colormap[3 * n + i] = {static_cast<unsigned char>(r), static_cast<unsigned char>(g),
                               static_cast<unsigned char>(b)};
        g = 255 - (i * 255) / n;
    }
}

int waterfallColorIndex(int level)
{
    const int span = std::abs(nMinDraw) - std::abs(nMaxDraw);
    if (span == 0)
        return 0;
    // Position of the level in the display range, 0 (strongest) to 240 (weakest).
    const int c = static_cast<int>(static_cast<double>(std::abs(level) + nMaxDraw) / span * 240.0);
    int d = 310 - c;
    d = (d / 5) * 5;
    // Weak levels drop straight into the blue end, so the noise floor stays dark.
    if (d < 105)
        d -= 80;
    return std::clamp(d, 0, WSA_COLORMAP_SIZE - 1);
}

int wsaTakeSample(int i, bool& rescaleTopo)
{
    rescaleTopo = false;
    // Sample 0 takes no part in the statistics.
    if (i < 1 || i >= SA_MAX_SAMPLES)
        return 0;
    int level = currentData.data[i];
    if (level < nMinDraw)
        level = nMinDraw;
    if (level > nMaxDraw)
        level = nMaxDraw;
    currentData.data[i] = level;

    // The seed copy of the first sweep is unclamped, hence the clamps after the comparisons.
    if (level > maxData.data[i])
        maxData.data[i] = level;
    if (maxData.data[i] > nMaxDraw)
        maxData.data[i] = nMaxDraw;
    if (level <= minData.data[i])
        minData.data[i] = level;
    if (minData.data[i] < nMinDraw)
        minData.data[i] = nMinDraw;

    const int magnitude = std::abs(level);
    sumData[i] += magnitude;
    const int m = std::min(magnitude, WSA_DENSITY_LEVELS - 1);
    const int count = ++popularity[i][m];
    if (count > sweep_peak_max) {
        sweep_peak_max = count;
        // The topographic colours are scaled by the peak; rescale in steps of 25 while the
        // peak is small and the picture changes visibly.
        rescaleTopo = count <= 399 && count % 25 == 0;
    }

    const int row = nLastIdx + 1;
    if (i < WSA_COLOR_LINE && row >= 0 && row < WSA_HISTORY_ROWS) {
        const stRgb& c = colormap[waterfallColorIndex(level)];
        historyColor[row].color[i] = qRgb(c.r, c.g, c.b);
    }
    return magnitude;
}
