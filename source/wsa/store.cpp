// PLACEHOLDER: to be written (sweep store and statistics).
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

void fillColormap() {}
int waterfallColorIndex(int) { return 0; }
int wsaTakeSample(int, bool& rescaleTopo)
{
    rescaleTopo = false;
    return 0;
}
int CWsa::initData() { return 0; }
char* CWsa::getTime()
{
    static char strTime[256];
    return strTime;
}
