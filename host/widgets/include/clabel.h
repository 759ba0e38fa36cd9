// Text label of the host widget library.
#ifndef CLABEL_H
#define CLABEL_H

#include "cwidget.h"

class QLabel;

class CLabel : public CWidget
{
    Q_OBJECT

public:
    explicit CLabel(const QString& text = QString(), QWidget* parent = nullptr);
    ~CLabel() override;

    void setText(const QString& text);
    QString text() const;
    void setTextColor(const QColor& color);
    QColor textColor() const;
    // Text size in pixels.
    void setTextSize(int pixelSize);
    void setAlignment(Qt::Alignment alignment);
    Qt::Alignment alignment() const;

private:
    QLabel* m_label;
};

#endif
