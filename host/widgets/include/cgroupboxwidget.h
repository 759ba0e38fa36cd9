// Titled group box of the host widget library; added widgets stack vertically inside it.
#ifndef CGROUPBOXWIDGET_H
#define CGROUPBOXWIDGET_H

#include "cwidget.h"

class QGroupBox;
class QVBoxLayout;

class CGroupBoxWidget : public CWidget
{
    Q_OBJECT

public:
    explicit CGroupBoxWidget(const QString& title, QWidget* parent = nullptr);
    ~CGroupBoxWidget() override;

    void setAlignment(Qt::Alignment alignment);
    // Reparents the widget into the box.
    void addWidget(QWidget* widget);
    void setText(const QString& title);
    QString text() const;

private:
    QGroupBox* m_box;
    QVBoxLayout* m_layout;
};

#endif
