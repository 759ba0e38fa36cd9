// Check box of the host widget library.
#ifndef CCHECKBOX_H
#define CCHECKBOX_H

#include <QCheckBox>

class CCheckBox : public QCheckBox
{
    Q_OBJECT

public:
    explicit CCheckBox(const QString& text, QWidget* parent = nullptr);
    ~CCheckBox() override;

    void setBorderVisible(bool bVisible);
    bool isBorderVisible() const;
    // Where the indicator box is drawn, in widget coordinates.
    QRect indicatorRect() const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void applyLook();
    bool m_borderVisible = true;
};

#endif
