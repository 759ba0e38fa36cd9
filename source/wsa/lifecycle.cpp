// PLACEHOLDER: to be written (analyzer lifecycle).
#include "wsa_p.h"

CWsa::CWsa(QWidget* parent) : CWidget(parent), m_pUsbWifiSpy(nullptr), m_pMsg(nullptr),
    m_pSignature(nullptr), m_clickxPos(0), m_bInspector(true), m_bInspectorUpdate(false),
    m_bFrequency(false), m_bSignature(false), m_bSignatureUpdate(false), m_bUpdate(false),
    m_eSignatureType(SIGNATURE_80211BG), m_SignaturePoint{0, 0}, m_pE2promserv(nullptr)
{
}
CWsa::~CWsa() {}
void CWsa::timerEvent(QTimerEvent*) { wsaDataParse(); }
void CWsa::msgUpdate() {}
QMessageBox::StandardButton CWsa::popMsgBox(QWidget*, const QString&, const QString&,
                                            QMessageBox::StandardButtons)
{
    return QMessageBox::NoButton;
}
void CWsa::deleteMsgBox() {}
void CWsa::setSize(const QSize& size) { setFixedSize(size); }
