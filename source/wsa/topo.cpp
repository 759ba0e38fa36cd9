// PLACEHOLDER: to be written (topographic view).
#include "wsa_p.h"

int CWsa::onPaint_TopoView(QPainter*) { return 0; }
void CWsa::drawTopoSample(QPainter*, int, int) {}
