// Modal message box of the host widget library: a title bar, a text and standard buttons.
#ifndef CMESSAGEBOX_H
#define CMESSAGEBOX_H

#include <QMap>
#include <QMessageBox>

#include "cdialog.h"

class QLabel;
class QHBoxLayout;

class CMessageBox : public CDialog
{
    Q_OBJECT

public:
    explicit CMessageBox(QWidget* parent = nullptr);
    ~CMessageBox() override;

    void setMsgTextColor(const QColor& color);
    void setAlignment(Qt::Alignment alignment);
    void setTitleBackgroundColor(const QColor& color);
    void setButtonText(QMessageBox::StandardButton button, const QString& text);
    void setTitle(const QString& title);
    QString title() const;
    void setText(const QString& text);
    QString text() const;

    // Shows the box modally with the given title, text and buttons; returns the button pressed,
    // or QMessageBox::NoButton when the box was closed otherwise (Escape).
    QMessageBox::StandardButton information(QWidget* parent, const QString& title,
                                            const QString& text,
                                            QMessageBox::StandardButtons buttons);

private:
    QLabel* m_title;
    QLabel* m_text;
    QHBoxLayout* m_buttonRow;
    QMap<QMessageBox::StandardButton, QString> m_buttonTexts;
    QMessageBox::StandardButton m_answer = QMessageBox::NoButton;
};

#endif
