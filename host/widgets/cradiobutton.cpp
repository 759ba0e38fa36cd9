#include "cradiobutton.h"

#include "cwidgetstyle.h"

CRadioButton::CRadioButton(const QString& text, QWidget* parent) : QRadioButton(text, parent)
{
    setAutoExclusive(true);
    QPalette pal = palette();
    pal.setColor(QPalette::WindowText, CWidgetStyle::getColor(CWidgetStyle::COLOR_FOREGROUND));
    setPalette(pal);
}

CRadioButton::~CRadioButton() = default;
