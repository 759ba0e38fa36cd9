#include "cmessagebox.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPointer>
#include <QVBoxLayout>

#include "cpushbutton.h"
#include "cwidgetstyle.h"

namespace
{

// Left-to-right order of the buttons in the row.
const QMessageBox::StandardButton kButtonOrder[] = {
    QMessageBox::Ok,      QMessageBox::Save,
    QMessageBox::SaveAll, QMessageBox::Open,
    QMessageBox::Yes,     QMessageBox::YesToAll,
    QMessageBox::No,      QMessageBox::NoToAll,
    QMessageBox::Retry,   QMessageBox::Ignore,
    QMessageBox::Abort,   QMessageBox::Apply,
    QMessageBox::Reset,   QMessageBox::RestoreDefaults,
    QMessageBox::Discard, QMessageBox::Help,
    QMessageBox::Close,   QMessageBox::Cancel};

constexpr int kTitleHeight = 40;

// Title text that stays readable on whatever bar colour the caller picks.
QColor textOn(const QColor& background)
{
    const double luma =
        0.299 * background.redF() + 0.587 * background.greenF() + 0.114 * background.blueF();
    return luma > 0.55 ? QColor(Qt::black) : QColor(Qt::white);
}
constexpr int kButtonWidth = 110;

} // namespace

CMessageBox::CMessageBox(QWidget* parent)
    : CDialog(parent), m_title(new QLabel), m_text(new QLabel), m_buttonRow(new QHBoxLayout)
{
    setWindowFlags(Qt::Dialog | Qt::FramelessWindowHint);
    setModal(true);
    setBorderWidth(2);

    m_title->setFixedHeight(kTitleHeight);
    m_title->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    m_title->setContentsMargins(12, 0, 12, 0);
    m_title->setAutoFillBackground(true);
    QFont titleFont = m_title->font();
    titleFont.setBold(true);
    m_title->setFont(titleFont);
    setTitleBackgroundColor(CWidgetStyle::getColor(CWidgetStyle::COLOR_TITLE));

    // A light message panel, so that the strong text colours callers use stay legible.
    m_text->setWordWrap(true);
    m_text->setAlignment(Qt::AlignCenter);
    m_text->setContentsMargins(16, 8, 16, 8);
    m_text->setAutoFillBackground(true);
    QPalette textPal = m_text->palette();
    textPal.setColor(QPalette::Window, QColor(0xf4, 0xf6, 0xf8));
    textPal.setColor(QPalette::WindowText, QColor(0x1c, 0x26, 0x30));
    m_text->setPalette(textPal);

    m_buttonRow->setContentsMargins(16, 12, 16, 12);
    m_buttonRow->setSpacing(12);

    auto* layout = new QVBoxLayout(this);
    // Inside the painted border.
    layout->setContentsMargins(2, 2, 2, 2);
    layout->setSpacing(0);
    layout->addWidget(m_title);
    layout->addWidget(m_text, 1);
    layout->addLayout(m_buttonRow);

    m_buttonTexts.insert(QMessageBox::Ok, tr("OK"));
    m_buttonTexts.insert(QMessageBox::Cancel, tr("Cancel"));
    m_buttonTexts.insert(QMessageBox::Yes, tr("Yes"));
    m_buttonTexts.insert(QMessageBox::No, tr("No"));
    m_buttonTexts.insert(QMessageBox::Save, tr("Save"));
    m_buttonTexts.insert(QMessageBox::SaveAll, tr("Save All"));
    m_buttonTexts.insert(QMessageBox::Open, tr("Open"));
    m_buttonTexts.insert(QMessageBox::YesToAll, tr("Yes to All"));
    m_buttonTexts.insert(QMessageBox::NoToAll, tr("No to All"));
    m_buttonTexts.insert(QMessageBox::Retry, tr("Retry"));
    m_buttonTexts.insert(QMessageBox::Ignore, tr("Ignore"));
    m_buttonTexts.insert(QMessageBox::Abort, tr("Abort"));
    m_buttonTexts.insert(QMessageBox::Apply, tr("Apply"));
    m_buttonTexts.insert(QMessageBox::Reset, tr("Reset"));
    m_buttonTexts.insert(QMessageBox::RestoreDefaults, tr("Restore Defaults"));
    m_buttonTexts.insert(QMessageBox::Discard, tr("Discard"));
    m_buttonTexts.insert(QMessageBox::Help, tr("Help"));
    m_buttonTexts.insert(QMessageBox::Close, tr("Close"));
}

CMessageBox::~CMessageBox() = default;

void CMessageBox::setMsgTextColor(const QColor& color)
{
    QPalette pal = m_text->palette();
    pal.setColor(QPalette::WindowText, color);
    m_text->setPalette(pal);
}

void CMessageBox::setAlignment(Qt::Alignment alignment)
{
    m_text->setAlignment(alignment);
}

void CMessageBox::setTitleBackgroundColor(const QColor& color)
{
    QPalette pal = m_title->palette();
    pal.setColor(QPalette::Window, color);
    pal.setColor(QPalette::WindowText, textOn(color));
    m_title->setPalette(pal);
}

void CMessageBox::setButtonText(QMessageBox::StandardButton button, const QString& text)
{
    m_buttonTexts.insert(button, text);
}

void CMessageBox::setTitle(const QString& title)
{
    m_title->setText(title);
    setWindowTitle(title);
}

QString CMessageBox::title() const
{
    return m_title->text();
}

void CMessageBox::setText(const QString& text)
{
    m_text->setText(text);
}

QString CMessageBox::text() const
{
    return m_text->text();
}

QMessageBox::StandardButton CMessageBox::information(QWidget* parent, const QString& title,
                                                     const QString& text,
                                                     QMessageBox::StandardButtons buttons)
{
    if (parent && parent != parentWidget() && parent != this)
        setParent(parent, windowFlags());
    setTitle(title);
    setText(text);

    // The box may be shown again with other buttons: rebuild the row each time.
    while (QLayoutItem* item = m_buttonRow->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    m_buttonRow->addStretch(1);
    bool first = true;
    for (QMessageBox::StandardButton which : kButtonOrder) {
        if (!buttons.testFlag(which))
            continue;
        auto* button = new CPushButton(this);
        button->setStyle(CPushButton::STYLE_TOOL, false);
        button->setText(m_buttonTexts.value(which));
        button->setFixedWidth(kButtonWidth);
        if (first) {
            button->setDefault(true);
            first = false;
        }
        connect(button, &QPushButton::clicked, this, [this, which]() {
            m_answer = which;
            accept();
        });
        m_buttonRow->addWidget(button);
    }
    m_buttonRow->addStretch(1);

    m_answer = QMessageBox::NoButton;
    // Callers usually place the box themselves before showing it.
    if (!testAttribute(Qt::WA_Moved))
        CWidgetStyle::moveToScreenCenter(this);
    // The owner may delete the box (with itself) while it is open; the answer then is no button.
    const QPointer<CMessageBox> alive(this);
    exec();
    return alive ? m_answer : QMessageBox::NoButton;
}
