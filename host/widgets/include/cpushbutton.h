// Push button of the host widget library, in one of the host's button looks.
#ifndef CPUSHBUTTON_H
#define CPUSHBUTTON_H

#include <QPushButton>

class CPushButton : public QPushButton
{
    Q_OBJECT

public:
    enum ButtonStyle {
        STYLE_PLAIN = 0,
        STYLE_TOOL = 1, // view buttons of a tool box, dialog buttons
        STYLE_MODE = 2  // mode buttons of a tool box
    };

    explicit CPushButton(QWidget* parent = nullptr);
    ~CPushButton() override;

    // bToggle: the button stays down while checked.
    void setStyle(ButtonStyle style, bool bToggle);
    ButtonStyle buttonStyle() const;
    void setBackgroundColor(const QColor& color);
    QColor backgroundColor() const;

private:
    void applyLook();
    ButtonStyle m_style = STYLE_PLAIN;
    QColor m_background;
};

#endif
