// The analyzer's controls and the side-bar flags set at construction.
#ifndef CONTROLS_H
#define CONTROLS_H

class CCheckBox;
class CGroupBoxWidget;
class CPushButton;
class CRadioButton;

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
