// PLACEHOLDER: to be written (signature selection dialog).
#include "signature.h"

eSignatureType CWSASignature::m_eSignatureType = SIGNATURE_80211BG;

CWSASignature::CWSASignature(QWidget* parent) : CDialog(parent) {}
CWSASignature::~CWSASignature() {}
eSignatureType CWSASignature::getSignatureType() { return m_eSignatureType; }
void CWSASignature::handDialog() {}
void CWSASignature::onBtnClicked() {}
