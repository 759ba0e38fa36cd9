// Interference signature overlay on the maximised Topographic view, and the analyzer's side of
// the selection dialog.
#include <QPainter>
#include <QPainterPath>
#include <cstdio>

#include "cwidgetstyle.h"
#include "wsa_p.h"

// Points are pixels relative to the anchor, y upward; x rises strictly in every row.
const stPoint signatureLine[SIGNATURE_NUM][20] = {
    // SIGNATURE_2G4AND40MHZ
    {{0, 0},    {20, 46},  {30, 66},  {35, 55},  {40, 65},  {54, 65},  {61, 59},
     {68, 65},  {79, 65},  {90, 47},  {104, 65}, {138, 65}, {143, 54}, {150, 65},
     {155, 55}, {160, 64}, {165, 50}, {173, 33}, {178, 20}, {180, 2}},
    // SIGNATURE_80211N
    {{10, 24},  {19, 59},  {25, 67},  {38, 60},  {52, 62},  {62, 63},  {73, 65},
     {81, 63},  {90, 55},  {98, 63},  {110, 60}, {119, 58}, {130, 58}, {140, 59},
     {145, 61}, {150, 63}, {157, 52}, {164, 42}, {170, 29}, {180, 2}},
    // SIGNATURE_80211BG
    {{5, 5},   {10, 10}, {15, 21}, {20, 36}, {25, 43}, {30, 52}, {35, 55},
     {40, 59}, {45, 59}, {50, 60}, {55, 59}, {60, 59}, {65, 55}, {70, 52},
     {75, 43}, {80, 36}, {85, 21}, {90, 10}, {95, 5},  {100, 0}},
    // SIGNATURE_AVTRANSMITTER
    {{3, 10},  {5, 22},  {10, 40},  {11, 58},  {15, 49}, {19, 40}, {25, 31},
     {30, 31}, {38, 75}, {40, 120}, {41, 120}, {42, 75}, {50, 31}, {55, 31},
     {61, 40}, {65, 49}, {69, 58},  {70, 40},  {75, 22}, {77, 10}},
    // SIGNATURE_BLUETOOTH
    {{6, 120}, {12, 0},   {18, 0},   {24, 120}, {30, 0},    {36, 0},   {42, 120},
     {48, 0},  {54, 0},   {60, 120}, {66, 0},   {72, 0},    {78, 120}, {84, 0},
     {90, 0},  {96, 120}, {102, 0},  {108, 0},  {114, 120}, {120, 0}},
    // SIGNATURE_CORDLESSPHONE
    {{4, 2},   {8, 8},   {10, 13}, {12, 18}, {15, 25}, {18, 36}, {19, 42},
     {20, 47}, {21, 53}, {24, 58}, {27, 61}, {29, 61}, {31, 57}, {33, 53},
     {35, 44}, {38, 35}, {41, 26}, {43, 20}, {46, 14}, {55, 2}},
    // SIGNATURE_MOTORALACANOPY
    {{4, 38},  {7, 48},  {11, 60}, {13, 80},  {14, 94},  {17, 104}, {21, 110},
     {27, 78}, {31, 51}, {39, 34}, {45, 33},  {55, 36},  {68, 37},  {76, 31},
     {81, 32}, {90, 35}, {98, 33}, {108, 17}, {110, 10}, {114, 2}},
    // SIGNATURE_ERPOFDM
    {{5, 19},  {11, 38}, {13, 62}, {15, 70}, {21, 72}, {27, 70}, {34, 63},
     {39, 62}, {43, 65}, {47, 64}, {50, 58}, {54, 66}, {58, 69}, {61, 69},
     {65, 66}, {75, 69}, {84, 68}, {89, 58}, {94, 28}, {100, 4}},
    // SIGNATURE_WIRELESSAUDIO
    {{2, 13},  {4, 20},  {10, 16}, {11, 26}, {15, 23}, {17, 28}, {21, 26},
     {24, 30}, {31, 22}, {35, 28}, {38, 28}, {42, 33}, {45, 28}, {48, 31},
     {51, 24}, {54, 28}, {57, 16}, {61, 20}, {65, 14}, {68, 6}},
    // SIGNATURE_ZIGBEE
    {{7, 9},   {11, 17}, {15, 25}, {17, 30}, {18, 36}, {21, 42}, {23, 50},
     {24, 58}, {25, 64}, {26, 67}, {28, 68}, {30, 68}, {32, 67}, {34, 63},
     {37, 54}, {40, 46}, {42, 38}, {43, 34}, {45, 29}, {49, 22}},
};

// (dx, dy) per kind; deliberately not always half the outline's width.
const stPoint signatureAnchorOffset[SIGNATURE_NUM] = {
    {90, 20}, {100, 20}, {50, 20}, {40, 20}, {60, 60},
    {30, 20}, {57, 40},  {50, 20}, {40, 15}, {30, 30},
};

namespace
{

// Outline of `type` placed by a tap at `tap`, in window pixels; false for a kind with no row.
bool signatureOutline(int type, const stPoint& tap, QPainterPath& path)
{
    if (type < 0 || type >= SIGNATURE_NUM)
        return false;
    const stPoint& offset = signatureAnchorOffset[type];
    const int ax = tap.x - offset.x;
    const int ay = tap.y + offset.y;
    path.moveTo(double(ax), double(ay));
    for (const stPoint& p : signatureLine[type])
        path.lineTo(double(ax + p.x), double(ay - p.y));
    return true;
}

} // namespace

bool CWsa::placeSignature(int x, int y)
{
    if (!m_bSignature || !bTopographicView || bPlanarView || bSpectralView)
        return false;
    const QRect& r = grid_rect_maximize;
    // A tap on the grid's border line is outside.
    if (!strictlyInside(r, x, y))
        return false;
    m_SignaturePoint.x = x;
    m_SignaturePoint.y = y;
    m_bUpdate = true;
    m_bSignatureUpdate = true;
    update(r.adjusted(1, 1, 0, 0));
    return true;
}

void CWsa::drawSignature(QPainter* pPainter)
{
    QPainterPath path;
    if (!signatureOutline(m_eSignatureType, m_SignaturePoint, path))
        return;
    pPainter->setPen(QPen(Qt::green));
    pPainter->setBrush(Qt::NoBrush);
    pPainter->drawPath(path);
}

void CWsa::createSignatureSetDia()
{
    // Reuse a dialog that is still ours (one dismissed with Escape is only hidden) rather than
    // orphan it.
    if (m_pSignature) {
        m_pSignature->show();
        m_pSignature->raise();
        m_pSignature->activateWindow();
        return;
    }
    m_pSignature = new CWSASignature(nullptr);
    CWidgetStyle::moveToScreenCenter(m_pSignature);
    connect(m_pSignature, &CWSASignature::signatureTypechange, this, &CWsa::onSelectSignature);
    connect(m_pSignature, &CWSASignature::signatureDialogClose, this, &CWsa::deleteSignatureSetDia);
    // Top-level without a parent: it would otherwise outlive an analyzer closed under it.
    connect(this, &QObject::destroyed, m_pSignature, &QObject::deleteLater);
    m_pSignature->show();
}

void CWsa::onSelectSignature(eSignatureType signatureType)
{
    m_eSignatureType = signatureType;
}

void CWsa::deleteSignatureSetDia()
{
    std::puts("receive close sig ");
    if (m_pSignature) {
        std::puts("receive close sig 1");
        m_pSignature->accept();
        m_pSignature->deleteLater();
        m_pSignature = nullptr;
    }
    update();
}
