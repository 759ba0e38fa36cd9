// PLACEHOLDER: to be written (planar view).
#include "wsa_p.h"

bool bCurrent = true;
bool bAverage = true;
bool bMax = true;
bool bPrevCurrent;
bool bRefreshPlanarView;

int CWsa::onPaint_PlanarView(QPainter*) { return 0; }
void CWsa::drawPlanarSample(QPainter*, int) {}
