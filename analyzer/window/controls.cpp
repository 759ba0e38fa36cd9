// Window controls: the trace check boxes, the band group box, the tool box with its view and
// mode buttons, the F1 shortcut and the labels in the current language.
#include <QCoreApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>
#include <QVBoxLayout>

#include "ccheckbox.h"
#include "cgroupboxwidget.h"
#include "cmessagebox.h"
#include "cpushbutton.h"
#include "cradiobutton.h"
#include "cwidgetstyle.h"
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

void CWsa::buildControls(const QRect& toolRegion)
{
    // Set at the start and again at the end, on purpose.
    bCurrent = true;
    bAverage = true;
    bMax = true;

    // Trace strip above the Planar grid, placed absolutely so the layout below leaves it alone.
    const int stripLeft = grid_rect_planar.left() + 100;
    const int stripTop = rect().top();
    int offset = 0;
    auto addTraceBox = [&](const QString& label) {
        auto* box = new CCheckBox(label, this);
        box->setBorderVisible(false);
        box->setGeometry(stripLeft + offset, stripTop, 100, 10);
        box->setChecked(true);
        connect(box, &QCheckBox::stateChanged, this, &CWsa::onCbClicked);
        offset += 100;
        return box;
    };
    pCbCurrent = addTraceBox(QObject::tr("Current"));
    pCbAverage = addTraceBox(QObject::tr("Average"));
    pCbMax = addTraceBox(QObject::tr("Max"));

    pGbFrequency = new CGroupBoxWidget(QObject::tr("Frequency"), this);
    pGbFrequency->move(sidebar_rect.left() + 15, sidebar_rect.top() + 250);
    pGbFrequency->setAlignment(Qt::AlignLeft);
    pGbFrequency->setFixedSize(130, 100);
    pGbFrequency->setVisible(m_bFrequency);

    pRb2D5G = new CRadioButton(QObject::tr("2.4 GHz Band"), this);
    pRb2D5G->setChecked(true);
    pGbFrequency->addWidget(pRb2D5G);
    connect(pRb2D5G, &QAbstractButton::clicked, this, &CWsa::onRbClicked);
    pRb5G = new CRadioButton(QObject::tr("5 GHz Band"), this);
    pRb5G->setChecked(false);
    pGbFrequency->addWidget(pRb5G);
    connect(pRb5G, &QAbstractButton::clicked, this, &CWsa::onRbClicked);

    // The tool box keeps its fixed width at the right edge, over the full height.
    auto* column = new QHBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->setAlignment(Qt::AlignRight);

    auto* toolBox = new CWidget(this);
    toolBox->setBackgroundColor(CWidgetStyle::getColor(CWidgetStyle::COLOR_BACKGROUND));
    toolBox->setBorderColor(Qt::white);
    toolBox->setBorderWidth(1, 0, 0, 0); // the separator from the graph area
    toolBox->setFixedWidth(toolRegion.width());

    auto makeButton = [this](const QString& label, CPushButton::ButtonStyle style) {
        auto* button = new CPushButton(this);
        button->setText(label);
        button->setStyle(style, false);
        return button;
    };
    pBtViewAll = makeButton(QObject::tr("View All"), CPushButton::STYLE_TOOL);
    pBtPlaner = makeButton(QObject::tr("Planar"), CPushButton::STYLE_TOOL);
    pBtTopographic = makeButton(QObject::tr("Topographic"), CPushButton::STYLE_TOOL);
    pBtSpectral = makeButton(QObject::tr("Spectral"), CPushButton::STYLE_TOOL);
    pBtInspector = makeButton(QObject::tr("Inspector"), CPushButton::STYLE_MODE);
    pBtFrequency = makeButton(QObject::tr("Frequency"), CPushButton::STYLE_MODE);
    pBtSignatures = makeButton(QObject::tr("Signature"), CPushButton::STYLE_MODE);
    // Offered only while the Topographic view is shown alone.
    pBtSignatures->setVisible(m_bFrequency);
    for (CPushButton* button : {pBtViewAll, pBtPlaner, pBtTopographic, pBtSpectral, pBtInspector,
                                pBtFrequency, pBtSignatures})
        connect(button, &QAbstractButton::clicked, this, &CWsa::onBtnClicked);

    auto* buttons = new QVBoxLayout(toolBox);
    buttons->setContentsMargins(1, 1, 1, 1);
    buttons->setAlignment(Qt::AlignHCenter);
    buttons->addSpacing(20);
    for (CPushButton* button : {pBtViewAll, pBtPlaner, pBtTopographic, pBtSpectral})
        buttons->addWidget(button);
    buttons->addSpacing(30);
    for (CPushButton* button : {pBtInspector, pBtFrequency, pBtSignatures})
        buttons->addWidget(button);
    buttons->addStretch();
    column->addWidget(toolBox);

    bCurrent = true;
    bAverage = true;
    bMax = true;
}

// The three side-bar modes exclude each other; each drops a placed outline and asks for the
// traces to be redrawn under the new side bar.
void CWsa::selectSideBar(bool bInspectorMode, bool bFrequencyMode, bool bSignatureMode)
{
    m_bInspector = bInspectorMode;
    m_bFrequency = bFrequencyMode;
    m_bSignature = bSignatureMode;
    m_bSignatureUpdate = false;
    pGbFrequency->setVisible(bFrequencyMode);
    m_bUpdate = true;
}

void CWsa::onBtnClicked()
{
    auto* button = qobject_cast<CPushButton*>(sender());
    if (!button)
        return;

    // A view button leaves Signature mode and drops a placed outline.
    auto leaveSignature = [this](bool offerSignature) {
        pBtSignatures->setVisible(offerSignature);
        m_bSignature = false;
        m_bUpdate = true;
        m_bSignatureUpdate = false;
    };

    if (button == pBtViewAll) {
        leaveSignature(false);
        procViewAll();
    } else if (button == pBtPlaner) {
        leaveSignature(false);
        procPlanar();
    } else if (button == pBtTopographic) {
        leaveSignature(true);
        procTopographic();
    } else if (button == pBtSpectral) {
        leaveSignature(false);
        procSpectral();
    } else if (button == pBtInspector) {
        selectSideBar(true, false, false);
        m_bInspectorUpdate = false;
        update();
    } else if (button == pBtFrequency) {
        selectSideBar(false, true, false);
        update();
    } else if (button == pBtSignatures) {
        selectSideBar(false, false, true);
        createSignatureSetDia();
        update();
    }
}

void CWsa::onCbClicked()
{
    // A partial state counts as checked.
    auto* box = qobject_cast<CCheckBox*>(sender());
    if (box && box == pCbCurrent)
        bCurrent = box->checkState() != Qt::Unchecked;
    else if (box && box == pCbAverage)
        bAverage = box->checkState() != Qt::Unchecked;
    else if (box && box == pCbMax)
        bMax = box->checkState() != Qt::Unchecked;
    bRefreshPlanarView = true;
    m_bUpdate = true;
    update();
}

void CWsa::onRbClicked()
{
    // Every click restarts the engine, also on the band already selected: it is the way to
    // start a fresh recording.
    auto* radio = qobject_cast<CRadioButton*>(sender());
    if (!radio)
        return;
    if (radio == pRb2D5G)
        s_band = 0;
    else if (radio == pRb5G)
        s_band = 1;
    else
        return;
    RestartAppEngines();
    update();
}

void CWsa::translate()
{
    // "Inspector", "Frequency" and "Signature" keep the labels they were built with.
    pCbCurrent->setText(QObject::tr("Current"));
    pCbAverage->setText(QObject::tr("Average"));
    pCbMax->setText(QObject::tr("Max"));
    pGbFrequency->setText(QObject::tr("Frequency"));
    pRb2D5G->setText(QObject::tr("2.4 GHz Band"));
    pRb5G->setText(QObject::tr("5 GHz Band"));
    pBtViewAll->setText(QObject::tr("View All"));
    pBtPlaner->setText(QObject::tr("Planar"));
    pBtTopographic->setText(QObject::tr("Topographic"));
    pBtSpectral->setText(QObject::tr("Spectral"));
    if (m_pMsg) {
        m_pMsg->setTitle(QObject::tr("Error"));
        m_pMsg->setText(QObject::tr("No WIFI SA USB is detected!\nPlease make sure your WIFI SA "
                                    "USB is properly\nconnected to the unit."));
    }
    CWidget::translate();
}

void CWsa::keyPressEvent(QKeyEvent* event)
{
    QWidget::keyPressEvent(event);
    if (event->key() == Qt::Key_F1)
        saveTestResult();
}

void wsaInstallTranslator()
{
    QCoreApplication* app = QCoreApplication::instance();
    if (!app)
        return;
    // Parented to the application, so a later application gets its own; kept also when no
    // translation matches, to mark the look-up as done.
    const QString name = QStringLiteral("wsaTranslator");
    if (app->findChild<QTranslator*>(name, Qt::FindDirectChildrenOnly))
        return;
    const QLocale locale = QLocale::system();
    // Qt's own catalogue first: the translator installed last is asked first, so ours wins where
    // both know a text, and Qt's covers the standard buttons and dialogs.
    auto* qtTranslator = new QTranslator(app);
    if (qtTranslator->load(locale, QStringLiteral("qtbase"), QStringLiteral("_"),
                           QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(qtTranslator);
    auto* translator = new QTranslator(app);
    translator->setObjectName(name);
    if (translator->load(locale, QStringLiteral("wsa"), QStringLiteral("_"),
                         QStringLiteral(":/i18n")))
        QCoreApplication::installTranslator(translator);
}
