// The Wi-Fi spectrum analyzer window.
//
// One analyzer exists at a time: the sweep store, the view geometry and the control pointers are
// file-scope globals of the analyzer module (declared for the module in analyzer/window/wsa_p.h).
// Levels are dBm (negative); magnitudes are |dBm|.
#ifndef WSA_H
#define WSA_H

#include <QMessageBox>
#include <QRect>
#include <QRgb>
#include <QString>
#include <cstdio>

#include "cwidget.h"
#include "signature.h"

class CMessageBox;
class QPainter;

namespace halmanager
{
class CUsbWifiSpy;
class PlatE2PromServ;
} // namespace halmanager

struct stPoint {
    int x;
    int y;
};

struct stRgb {
    unsigned char r;
    unsigned char g;
    unsigned char b;
};

enum { WSA_COLOR_LINE = 512 };

struct stColorLine {
    QRgb color[WSA_COLOR_LINE];
};

// Outline of each signature kind: 20 points relative to the anchor, y upward.
extern const stPoint signatureLine[SIGNATURE_NUM][20];
// The anchor lies dx left of and dy below the tapped point.
extern const stPoint signatureAnchorOffset[SIGNATURE_NUM];

class CWsa : public CWidget
{
    Q_OBJECT

public:
    explicit CWsa(QWidget* parent = nullptr);
    ~CWsa() override;

    halmanager::CUsbWifiSpy* m_pUsbWifiSpy;
    CMessageBox* m_pMsg;
    CWSASignature* m_pSignature;
    QRect ToolBoxRect, WorkingContentRect;
    QRect m_clickRect;
    int m_clickxPos;
    bool m_bInspector;
    bool m_bInspectorUpdate;
    bool m_bFrequency;
    bool m_bSignature;
    bool m_bSignatureUpdate;
    bool m_bUpdate;
    eSignatureType m_eSignatureType;
    stPoint m_SignaturePoint;
    halmanager::PlatE2PromServ* m_pE2promserv;

    void setSize(const QSize& size) override;
    void translate() override;

    // Engine link and store
    void wsaDataParse();
    int RestartAppEngines();
    int initData();
    char* getTime();

    // Message boxes
    QMessageBox::StandardButton popMsgBox(QWidget* parent, const QString& title,
                                          const QString& text,
                                          QMessageBox::StandardButtons buttons);
    void deleteMsgBox();
    // The whole sequence of one box with an Ok button: popMsgBox, msgUpdate on Ok,
    // deleteMsgBox. Returns false when the analyzer was deleted while the box was open (the host
    // may stop the plug-in at any moment); the caller must then not touch it again.
    bool showMsgBox(const QString& title, const QString& text);
    // After a start that left no engine connected, one Error box naming the program tried. It
    // opens from the event loop, so no caller returns into an analyzer deleted under the box.
    void reportEngineStart();

    // Geometry and views
    int resizeGrid();
    void procViewAll();
    void procPlanar();
    void procTopographic();
    void procSpectral();
    void drawGrid(QPainter* pPainter, QRect rect, int cell_w, int cell_h);
    int onPaint_PlanarView(QPainter* pPainter);
    int onPaint_TopoView(QPainter* pPainter);
    int onPaint_SpectralView(QPainter* pPainter);
    void drawSpectralTime(QPainter* pPainter);
    void drawGraphic(QPainter* pPainter, bool bIsNewData);
    void drawFrequency(QPainter* pPainter);
    // Per-sample steps of the frame pass (sample i of currentData).
    void drawTopoSample(QPainter* pPainter, int i, int absDbm);
    void drawPlanarSample(QPainter* pPainter, int i);

    // Inspector and signatures
    void procInspector(QPainter* pPainter);
    bool placeSignature(int x, int y);
    void drawSignature(QPainter* pPainter);
    void createSignatureSetDia();

    // Test result report
    void saveTestResult();
    QString getKeyboard(const QString& title, const QString& text);
    void saveGeneralInfoOfSet(FILE* pfOutput, int font_size);

signals:
    void sigClose();

public slots:
    void onBtnClicked();
    void onCbClicked();
    void onRbClicked();
    void msgUpdate();
    void onSelectSignature(eSignatureType signatureType);
    void deleteSignatureSetDia();

protected:
    void timerEvent(QTimerEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void buildControls(const QRect& toolRegion);
    void setViewLayout(bool bPlanar, bool bTopographic, bool bSpectral);
    void selectSideBar(bool bInspectorMode, bool bFrequencyMode, bool bSignatureMode);
};

int GetVersion(const char* sPath, char* pOut, size_t nOutLength);

// Installs the translation of the analyzer's texts for the system locale, once per application.
void wsaInstallTranslator();

#endif
