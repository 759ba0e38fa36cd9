// PLACEHOLDER: to be written (window controls).
#include "wsa_p.h"

CCheckBox* pCbCurrent;
CCheckBox* pCbAverage;
CCheckBox* pCbMax;
CGroupBoxWidget* pGbFrequency;
CRadioButton* pRb2D5G;
CRadioButton* pRb5G;
CPushButton* pBtViewAll;
CPushButton* pBtPlaner;
CPushButton* pBtTopographic;
CPushButton* pBtSpectral;
CPushButton* pBtInspector;
CPushButton* pBtFrequency;
CPushButton* pBtSignatures;
bool bSignatures;
bool bInspector;
bool bFrequency;

void CWsa::buildControls(const QRect&) {}
void CWsa::onBtnClicked() {}
void CWsa::onCbClicked() {}
void CWsa::onRbClicked() {}
void CWsa::translate() {}
void CWsa::keyPressEvent(QKeyEvent*) {}
void wsaInstallTranslator() {}
