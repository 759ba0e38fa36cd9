#include "cpushbutton.h"

#include "cwidgetstyle.h"

namespace
{

// Seven tool-box buttons and their spacings must fit the 400-px working area.
constexpr int kButtonHeight = 36;
constexpr int kMinWidth = 80;
constexpr int kMaxWidth = 200;

QString buttonSheet(const QColor& face, const QColor& text, const QColor& down, int radius)
{
    const QColor disabled = CWidgetStyle::getColor(CWidgetStyle::COLOR_DISABLED);
    return QStringLiteral("QPushButton { background-color: %1; color: %2; border: 1px solid %3;"
                          " border-radius: %4px; padding: 2px 6px; }"
                          "QPushButton:pressed, QPushButton:checked { background-color: %5; }"
                          "QPushButton:disabled { color: %6; }")
        .arg(face.name(), text.name(), face.lighter(150).name(), QString::number(radius),
             down.name(), disabled.name());
}

} // namespace

CPushButton::CPushButton(QWidget* parent) : QPushButton(parent)
{
    applyLook();
}

CPushButton::~CPushButton() = default;

void CPushButton::setStyle(ButtonStyle style, bool bToggle)
{
    m_style = style;
    setCheckable(bToggle);
    applyLook();
}

CPushButton::ButtonStyle CPushButton::buttonStyle() const
{
    return m_style;
}

void CPushButton::setBackgroundColor(const QColor& color)
{
    m_background = color;
    applyLook();
}

QColor CPushButton::backgroundColor() const
{
    return m_background;
}

void CPushButton::applyLook()
{
    const QColor highlight = CWidgetStyle::getColor(CWidgetStyle::COLOR_HIGHLIGHT);
    QColor face;
    QColor text;
    int radius = 3;
    switch (m_style) {
    case STYLE_MODE:
        face = CWidgetStyle::getColor(CWidgetStyle::COLOR_MODE_BUTTON);
        text = CWidgetStyle::getColor(CWidgetStyle::COLOR_MODE_BUTTON_TEXT);
        radius = 8;
        break;
    case STYLE_TOOL:
    case STYLE_PLAIN:
        face = CWidgetStyle::getColor(CWidgetStyle::COLOR_BUTTON);
        text = CWidgetStyle::getColor(CWidgetStyle::COLOR_BUTTON_TEXT);
        break;
    }
    if (m_background.isValid())
        face = m_background;
    setStyleSheet(buttonSheet(face, text, highlight, radius));
    if (m_style == STYLE_PLAIN)
        setMinimumHeight(kButtonHeight);
    else
        setFixedHeight(kButtonHeight);
    // Fills a tool box column, yet stays a button when a dialog centres it in a wide row.
    setMinimumWidth(kMinWidth);
    setMaximumWidth(kMaxWidth);
}
