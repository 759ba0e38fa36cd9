// Interference signature kinds and the dialog in which the user picks one.
#ifndef SIGNATURE_H
#define SIGNATURE_H

#include <QMetaType>

#include "cdialog.h"

class CLabel;
class CPushButton;
class CRadioButton;

enum eSignatureType {
    SIGNATURE_2G4AND40MHZ = 0,
    SIGNATURE_80211N = 1,
    SIGNATURE_80211BG = 2,
    SIGNATURE_AVTRANSMITTER = 3,
    SIGNATURE_BLUETOOTH = 4,
    SIGNATURE_CORDLESSPHONE = 5,
    SIGNATURE_MOTORALACANOPY = 6,
    SIGNATURE_ERPOFDM = 7,
    SIGNATURE_WIRELESSAUDIO = 8,
    SIGNATURE_ZIGBEE = 9,
    SIGNATURE_NUM = 10
};
Q_DECLARE_METATYPE(eSignatureType)

class CWSASignature : public CDialog
{
    Q_OBJECT

public:
    explicit CWSASignature(QWidget* parent);
    ~CWSASignature() override;

    static eSignatureType getSignatureType();

signals:
    void signatureTypechange(eSignatureType signatureType);
    void signatureDialogClose();

protected slots:
    void handDialog();
    void onBtnClicked();

private:
    CLabel* m_pTitle;
    CRadioButton* m_p2g4And40Mhz;
    CRadioButton* m_p80211n;
    CRadioButton* m_p80211bg;
    CRadioButton* m_pAvTransmitter;
    CRadioButton* m_pBluetooth;
    CRadioButton* m_pCordlessPhone;
    CRadioButton* m_pMotoralaCanopy;
    CRadioButton* m_pErpOfdm;
    CRadioButton* m_pWirelessAudio;
    CRadioButton* m_pZigBee;
    CPushButton* m_pBtnOK;
    static eSignatureType m_eSignatureType;
};

#endif
