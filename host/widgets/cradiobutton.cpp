#include "cradiobutton.h"

// Plain on purpose: radio buttons sit on dark boxes and on light panels alike, so their text
// colour comes from the container.
CRadioButton::CRadioButton(const QString& text, QWidget* parent) : QRadioButton(text, parent)
{
    setAutoExclusive(true);
}

CRadioButton::~CRadioButton() = default;
