// PLACEHOLDER: to be written (signature overlay).
#include "wsa_p.h"

const stPoint signatureLine[SIGNATURE_NUM][20] = {};
const stPoint signatureAnchorOffset[SIGNATURE_NUM] = {};

bool CWsa::placeSignature(int, int) { return false; }
void CWsa::drawSignature(QPainter*) {}
void CWsa::createSignatureSetDia() {}
void CWsa::onSelectSignature(eSignatureType signatureType) { m_eSignatureType = signatureType; }
void CWsa::deleteSignatureSetDia() {}
