#include "ccheckbox.h"

#include "cwidgetstyle.h"

CCheckBox::CCheckBox(const QString& text, QWidget* parent) : QCheckBox(text, parent)
{
    applyLook();
}

CCheckBox::~CCheckBox() = default;

void CCheckBox::setBorderVisible(bool bVisible)
{
    m_borderVisible = bVisible;
    applyLook();
}

bool CCheckBox::isBorderVisible() const
{
    return m_borderVisible;
}

void CCheckBox::applyLook()
{
    const QColor text = CWidgetStyle::getColor(CWidgetStyle::COLOR_FOREGROUND);
    const QString border = m_borderVisible
                               ? QStringLiteral("1px solid %1")
                                     .arg(CWidgetStyle::getColor(CWidgetStyle::COLOR_BORDER).name())
                               : QStringLiteral("none");
    // Compact: the analyzer's trace switches stand in a strip only 10 pixels high.
    setStyleSheet(QStringLiteral("QCheckBox { color: %1; border: %2; padding: 0px; spacing: 4px;"
                                 " font-size: 10px; }"
                                 "QCheckBox::indicator { width: 9px; height: 9px; }")
                      .arg(text.name(), border));
}
