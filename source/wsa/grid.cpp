// PLACEHOLDER: to be written (view geometry and grid).
#include "wsa_p.h"

bool bPlanarView = true;
bool bTopographicView = true;
bool bSpectralView = true;
QRect grid_rect_maximize;
QRect grid_rect_planar;
QRect grid_rect_topographic;
QRect grid_rect_spectral;
QRect sidebar_rect;
QRect toolbox_rect;
int nCellWidth = 47;
int nCellHeight = 10;
int nStartFreq = 2400;
int nEndFreq = 2490;

int levelToRow(const QRect& rect, int) { return rect.bottom(); }
int __validate_and_correct_position(QRect, int&, int&) { return 0; }
QRect planarRect() { return grid_rect_planar; }
QRect topoRect() { return grid_rect_topographic; }
QRect spectralRect() { return grid_rect_spectral; }
QRect frequencyRect() { return grid_rect_spectral; }
int CWsa::resizeGrid() { return 0; }
void CWsa::procViewAll() {}
void CWsa::procPlanar() {}
void CWsa::procTopographic() {}
void CWsa::procSpectral() {}
void CWsa::drawGrid(QPainter*, QRect, int, int) {}
