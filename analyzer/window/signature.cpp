#include "signature.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include "clabel.h"
#include "cpushbutton.h"
#include "cradiobutton.h"
#include "cwidgetstyle.h"

// Kept across dialogs: the owner hears of it only at OK.
eSignatureType CWSASignature::m_eSignatureType = SIGNATURE_80211BG;

CWSASignature::CWSASignature(QWidget* parent) : CDialog(parent)
{
    setSize(450, 300);
    setWindowFlags(Qt::FramelessWindowHint | Qt::Dialog);
    setWindowModality(Qt::ApplicationModal);

    const QColor dialogColor = CWidgetStyle::getColor(CWidgetStyle::COLOR_DIALOG);
    setBorderWidth(2);
    setBorderColor(dialogColor);
    setBackgroundColor(dialogColor);

    QFont font = QApplication::font();
    font.setPixelSize(15);

    QVBoxLayout* playout = new QVBoxLayout(this);
    playout->setSpacing(0);
    playout->setAlignment(Qt::AlignTop);
    playout->setContentsMargins(2, 2, 2, 2);

    m_pTitle = new CLabel(tr("Signature Select"), this);
    m_pTitle->setTextColor(Qt::white);
    m_pTitle->setBackgroundColor(Qt::green);
    m_pTitle->setTextSize(20);
    m_pTitle->setHeight(38);
    m_pTitle->setAlignment(Qt::AlignHCenter | Qt::AlignVCenter);
    playout->addWidget(m_pTitle);

    CWidget* pWidget = new CWidget(this);
    pWidget->setBackgroundColor(Qt::white);
    pWidget->setBorderWidth(0);
    pWidget->setSize(446, 254 - m_pTitle->height());
    QVBoxLayout* pWidgetLayout = new QVBoxLayout(pWidget);
    pWidgetLayout->setContentsMargins(50, 10, 0, 10);
    pWidgetLayout->setSpacing(2);

    // Two columns: values 0..4 on the left, 5..9 on the right, top to bottom.
    auto addRow = [&](CRadioButton*& left, const QString& leftText, CRadioButton*& right,
                      const QString& rightText) {
        QHBoxLayout* phLayout = new QHBoxLayout;
        phLayout->setContentsMargins(0, 0, 0, 0);
        left = new CRadioButton(leftText, this);
        left->setFont(font);
        right = new CRadioButton(rightText, this);
        right->setFont(font);
        phLayout->addWidget(left);
        phLayout->addWidget(right);
        pWidgetLayout->addLayout(phLayout);
    };
    addRow(m_p2g4And40Mhz, tr("2g4And40Mhz"), m_pCordlessPhone, tr("CordlessPhone"));
    addRow(m_p80211n, tr("80211n"), m_pMotoralaCanopy, tr("MotoralaCanopy"));
    addRow(m_p80211bg, tr("80211bg"), m_pErpOfdm, tr("ErpOfdm"));
    addRow(m_pAvTransmitter, tr("AvTransmitter"), m_pWirelessAudio, tr("WirelessAudio"));
    addRow(m_pBluetooth, tr("Bluetooth"), m_pZigBee, tr("ZigBee"));

    // Show the kept choice, so that the checked button is what OK reports.
    CRadioButton* const buttons[SIGNATURE_NUM] = {
        m_p2g4And40Mhz,   m_p80211n,         m_p80211bg, m_pAvTransmitter, m_pBluetooth,
        m_pCordlessPhone, m_pMotoralaCanopy, m_pErpOfdm, m_pWirelessAudio, m_pZigBee};
    const int kept = m_eSignatureType;
    buttons[kept >= 0 && kept < SIGNATURE_NUM ? kept : SIGNATURE_80211BG]->setChecked(true);

    CLabel* plabel = new CLabel(
        tr("Please tap on the screen to match the selected\nsignature with the spectrum"), this);
    plabel->setBackgroundColor(Qt::white);
    plabel->setTextColor(Qt::blue);
    pWidgetLayout->addWidget(plabel);
    playout->addWidget(pWidget);

    m_pBtnOK = new CPushButton(this);
    m_pBtnOK->setText(tr("OK"));
    m_pBtnOK->setStyle(CPushButton::STYLE_TOOL, false);
    m_pBtnOK->setBackgroundColor(backgroundColor());
    QHBoxLayout* phLayout = new QHBoxLayout;
    phLayout->setAlignment(Qt::AlignCenter);
    phLayout->setContentsMargins(0, 0, 0, 0);
    phLayout->addWidget(m_pBtnOK);
    playout->addLayout(phLayout);

    connect(m_pBtnOK, &QAbstractButton::clicked, this, &CWSASignature::handDialog);
    for (CRadioButton* button : buttons)
        connect(button, &QAbstractButton::clicked, this, &CWSASignature::onBtnClicked);
}

CWSASignature::~CWSASignature() = default;

eSignatureType CWSASignature::getSignatureType()
{
    return m_eSignatureType;
}

void CWSASignature::handDialog()
{
    // The owner's reaction to the second signal closes us; the choice must reach it first.
    emit signatureTypechange(getSignatureType());
    emit signatureDialogClose();
}

void CWSASignature::onBtnClicked()
{
    CRadioButton* pButton = qobject_cast<CRadioButton*>(sender());
    if (pButton == m_p2g4And40Mhz)
        m_eSignatureType = SIGNATURE_2G4AND40MHZ;
    else if (pButton == m_p80211n)
        m_eSignatureType = SIGNATURE_80211N;
    else if (pButton == m_p80211bg)
        m_eSignatureType = SIGNATURE_80211BG;
    else if (pButton == m_pAvTransmitter)
        m_eSignatureType = SIGNATURE_AVTRANSMITTER;
    else if (pButton == m_pBluetooth)
        m_eSignatureType = SIGNATURE_BLUETOOTH;
    else if (pButton == m_pCordlessPhone)
        m_eSignatureType = SIGNATURE_CORDLESSPHONE;
    else if (pButton == m_pMotoralaCanopy)
        m_eSignatureType = SIGNATURE_MOTORALACANOPY;
    else if (pButton == m_pErpOfdm)
        m_eSignatureType = SIGNATURE_ERPOFDM;
    else if (pButton == m_pWirelessAudio)
        m_eSignatureType = SIGNATURE_WIRELESSAUDIO;
    else if (pButton == m_pZigBee)
        m_eSignatureType = SIGNATURE_ZIGBEE;
    else
        m_eSignatureType = SIGNATURE_80211BG;
}
