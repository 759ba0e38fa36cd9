// Radio button of the host widget library; buttons with the same parent exclude each other.
#ifndef CRADIOBUTTON_H
#define CRADIOBUTTON_H

#include <QRadioButton>

class CRadioButton : public QRadioButton
{
    Q_OBJECT

public:
    explicit CRadioButton(const QString& text, QWidget* parent = nullptr);
    ~CRadioButton() override;
};

#endif
