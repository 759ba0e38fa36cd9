// PLACEHOLDER: to be written (frame composition).
#include "wsa_p.h"

bool bReferencePainting = false;

void CWsa::paintEvent(QPaintEvent*) {}
void CWsa::drawGraphic(QPainter*, bool) {}
void CWsa::drawFrequency(QPainter*) {}
