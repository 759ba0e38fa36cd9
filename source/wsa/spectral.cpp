// PLACEHOLDER: to be written (spectral view).
#include "wsa_p.h"

int CWsa::onPaint_SpectralView(QPainter*) { return 0; }
void lcdShowWaterfull(QPainter*) {}
void CWsa::drawSpectralTime(QPainter*) {}
