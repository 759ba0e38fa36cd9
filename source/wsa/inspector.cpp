// PLACEHOLDER: to be written (Inspector).
#include "wsa_p.h"

char strInspector[5][80];

void CWsa::mousePressEvent(QMouseEvent*) {}
void CWsa::procInspector(QPainter*) {}
