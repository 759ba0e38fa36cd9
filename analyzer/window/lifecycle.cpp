// The analyzer's life: construction, the refresh timer, message boxes, destruction, and the reset
// and clock of each new recording.
#include <QMetaObject>
#include <QPointer>
#include <QTimer>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "halboard.h"
#include "ccheckbox.h"
#include "cmessagebox.h"
#include "cwidgetstyle.h"
#include "engine.h"
#include "plate2promserv.h"
#include "reportfiles.h"
#include "wsa_p.h"

namespace
{

void createResultDir()
{
    // A directory that cannot be made shows when a report is saved there.
    wsaShellMakeDirs(wsaResultDir());
}

template <typename T> void deleteAndClear(T*& p)
{
    delete p;
    p = nullptr;
}

} // namespace

CWsa::CWsa(QWidget* parent)
    : CWidget(parent), m_pUsbWifiSpy(nullptr), m_pMsg(nullptr), m_pSignature(nullptr),
      m_clickxPos(0), m_bInspector(false), m_bInspectorUpdate(false), m_bFrequency(false),
      m_bSignature(false), m_bSignatureUpdate(false), m_bUpdate(false),
      m_eSignatureType(SIGNATURE_80211BG), m_SignaturePoint{0, 0}, m_pE2promserv(nullptr)
{
    const QRect toolRegion = CWidgetStyle::getScreenRegion(CWidgetStyle::REGION_TOOL_BOX);
    m_pE2promserv = new halmanager::PlatE2PromServ;

    // Set again after the initialiser list on purpose: this is the order of construction.
    m_pSignature = nullptr;
    m_bInspector = true;
    m_bInspectorUpdate = false;
    m_bFrequency = false;
    m_bSignature = false;
    m_bSignatureUpdate = false;
    m_bUpdate = false;
    m_eSignatureType = SIGNATURE_80211BG;

    createResultDir();

    s_band = 0;
    // Set here and again by initData, on purpose.
    nMinDraw = -110;
    nMaxDraw = -10;
    bPlanarView = true;
    bSpectralView = true;
    bTopographicView = true;
    bRefreshPlanarView = false;
    initData();
    resizeGrid();

    // Set before the controls are built and again after, on purpose.
    bCurrent = bAverage = bMax = true;
    bSignatures = false;
    buildControls(toolRegion);
    // The controls' set-up may have touched the trace switches; the analyzer starts with all on.
    bCurrent = bAverage = bMax = true;
    bSignatures = false;
    bInspector = true;
    bFrequency = true;

    fillColormap();
    startTimer(100);
    setBackgroundColor(CWidgetStyle::getColor(CWidgetStyle::COLOR_BACKGROUND));

    // Only the presence of the probe is checked here; the engine reports whether it works.
    halmanager::CBoardSpec* board = halmanager::CBoardSpec::GetInstance();
    auto* usbBus = board ? dynamic_cast<halmanager::CUsbBus*>(board->getBus("UsbBus")) : nullptr;
    if (!usbBus) {
        std::puts("***get UsbBus error***");
    } else {
        m_pUsbWifiSpy = dynamic_cast<halmanager::CUsbWifiSpy*>(usbBus->getDevice("USB_WIFI_SPY"));
        if (!m_pUsbWifiSpy)
            std::puts("***get UsbWifiSpy error***");
    }
    std::fflush(stdout);

    startAppEngines();
    reportEngineStart();

    // The host frame closes us on its requestToClose(); a bare analyzer has no such frame.
    if (parent && parent->metaObject()->indexOfSignal("requestToClose()") >= 0)
        connect(this, SIGNAL(sigClose()), parent, SIGNAL(requestToClose()));
    setFocusPolicy(Qt::StrongFocus);
}

CWsa::~CWsa()
{
    stopAppEngines();
    wsaCloseEngineSocket();
    deleteAndClear(pCbCurrent);
    deleteAndClear(pCbAverage);
    deleteAndClear(pCbMax);
    deleteAndClear(m_pE2promserv);
    std::puts("~CWsa");
    std::fflush(stdout);
}

void CWsa::timerEvent(QTimerEvent*)
{
    wsaReapEngines();
    wsaDataParse();
}

void CWsa::msgUpdate()
{
    m_bUpdate = true;
    update();
}

QMessageBox::StandardButton CWsa::popMsgBox(QWidget* parent, const QString& title,
                                            const QString& text,
                                            QMessageBox::StandardButtons buttons)
{
    if (!m_pMsg) {
        m_pMsg = new CMessageBox(parent);
        m_pMsg->setMsgTextColor(Qt::blue);
        m_pMsg->setAlignment(Qt::AlignHCenter | Qt::AlignVCenter);
        m_pMsg->setFixedSize(450, 270);
        m_pMsg->setTitleBackgroundColor(Qt::green);
        m_pMsg->setButtonText(QMessageBox::Ok, tr("OK"));
        m_pMsg->setTitle(title);
        m_pMsg->setText(text);
        CWidgetStyle::moveToWorkingAreaCenter(m_pMsg);
    }
    return m_pMsg->information(parent, title, text, buttons);
}

bool CWsa::showMsgBox(const QString& title, const QString& text)
{
    const QPointer<CWsa> alive(this);
    const QMessageBox::StandardButton answer = popMsgBox(this, title, text, QMessageBox::Ok);
    if (!alive)
        return false;
    if (answer == QMessageBox::Ok)
        msgUpdate();
    deleteMsgBox();
    return true;
}

void CWsa::reportEngineStart()
{
    if (wsaLastStartResult() != WSA_START_NO_ENGINE)
        return;
    const QString text = tr("The acquisition engine could not be started.\nProgram tried: %1")
                             .arg(QString::fromLocal8Bit(moduleImage[0].imagePath));
    QTimer::singleShot(0, this, [this, text]() { showMsgBox(tr("Error"), text); });
}

void CWsa::deleteMsgBox()
{
    deleteAndClear(m_pMsg);
}

void CWsa::setSize(const QSize& size)
{
    setFixedSize(size);
}

// A new recording: the store emptied for the selected band, the views and readout as at start.
int CWsa::initData()
{
    wsaResetStore(int(wsaSelectedBand().id), time(nullptr));
    // A new recording shows all three views again; the constructor has set them already, and
    // sets them again here on purpose.
    bPlanarView = true;
    bSpectralView = true;
    bTopographicView = true;
    std::memset(strInspector, 0, sizeof strInspector);
    bPrevCurrent = false;
    return 0;
}

char* CWsa::getTime()
{
    static char strTime[256];
    wsaElapsedText(static_cast<long long>(time(nullptr) - startTime), strTime, sizeof strTime);
    return strTime;
}
