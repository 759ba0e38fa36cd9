// The analyzer module's shared state and helpers. Each global is defined in the file of the
// concern that owns it (named beside it); there is one analyzer at a time.
#ifndef WSA_P_H
#define WSA_P_H

#include <QRect>
#include <ctime>

#include "halbrin_sa.h"
#include "views.h"
#include "wsa.h"

class CCheckBox;
class CGroupBoxWidget;
class CPushButton;
class CRadioButton;

enum {
    WSA_HISTORY_ROWS = 3600,
    WSA_RECORDING_LIMIT = 3598, // the sweep that would take this history index restarts
    WSA_TIME_TEXT = 10,
    WSA_DENSITY_LEVELS = 111, // magnitudes 0 .. 110 dB
    WSA_COLORMAP_SIZE = 240
};

// ---- engine.cpp: engine process and its socket
struct stModuleImage {
    const char* imagePath;
    const char* imageName;
};
extern stModuleImage moduleImage[1];
extern int s_band; // 0 = 2.4 GHz, 1 = 5 GHz
extern int mainEngineSock;
extern int sockFd;
void startAppEngines();
void stopAppEngines();

// ---- paths.cpp: compiled-in paths, overridable from the environment
const char* wsaEnginePath();     // WSA_ENGINE_PATH
const char* wsaResultDir();      // WSA_RESULT_DIR
const char* wsaVendorInfoPath(); // WSA_VENDOR_INFO

// ---- store.cpp: sweep store and statistics
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
void fillColormap();
// Waterfall colour index (0 .. 239) of a level already clamped to [nMinDraw, nMaxDraw].
int waterfallColorIndex(int level);
// Statistics update of sample i (1 <= i < currentData.num_samples) of the newest sweep: clamps it,
// updates max, min, sum, density and peak, writes its waterfall colour. Returns |level|; sets
// rescaleTopo when the density peak has just grown to a multiple of 25 below 400.
int wsaTakeSample(int i, bool& rescaleTopo);

// ---- grid.cpp: view geometry
extern bool bPlanarView;
extern bool bTopographicView;
extern bool bSpectralView;
extern QRect grid_rect_maximize;
extern QRect grid_rect_planar;
extern QRect grid_rect_topographic;
extern QRect grid_rect_spectral;
extern QRect sidebar_rect;
extern QRect toolbox_rect;
extern int nCellWidth;
extern int nCellHeight;
extern int nStartFreq;
extern int nEndFreq;
// Row of a level in a view rectangle, before the clamp.
int levelToRow(const QRect& rect, int level);
int __validate_and_correct_position(QRect rect, int& x, int& y);
// Rectangle of each view under the current view flags.
QRect planarRect();
QRect topoRect();
QRect spectralRect();
QRect frequencyRect();

// ---- spectral.cpp
void lcdShowWaterfull(QPainter* pPainter);

// ---- inspector.cpp
extern char strInspector[5][80];

// ---- controls.cpp: control pointers and the side-bar globals set at construction
extern CCheckBox* pCbCurrent;
extern CCheckBox* pCbAverage;
extern CCheckBox* pCbMax;
extern CGroupBoxWidget* pGbFrequency;
extern CRadioButton* pRb2D5G;
extern CRadioButton* pRb5G;
extern CPushButton* pBtViewAll;
extern CPushButton* pBtPlaner;
extern CPushButton* pBtTopographic;
extern CPushButton* pBtSpectral;
extern CPushButton* pBtInspector;
extern CPushButton* pBtFrequency;
extern CPushButton* pBtSignatures;
extern bool bSignatures;
extern bool bInspector;
extern bool bFrequency;

#endif
