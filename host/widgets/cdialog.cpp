#include "cdialog.h"

#include "framepaint.h"

#include <QPainter>

#include "cwidgetstyle.h"

CDialog::CDialog(QWidget* parent)
    : QDialog(parent), m_background(CWidgetStyle::getColor(CWidgetStyle::COLOR_DIALOG)),
      m_border(CWidgetStyle::getColor(CWidgetStyle::COLOR_BORDER))
{
}

CDialog::~CDialog() = default;

void CDialog::setSize(int w, int h)
{
    resize(w, h);
}

void CDialog::setBackgroundColor(const QColor& color)
{
    m_background = color;
    update();
}

QColor CDialog::backgroundColor() const
{
    return m_background;
}

void CDialog::setBorderColor(const QColor& color)
{
    m_border = color;
    update();
}

QColor CDialog::borderColor() const
{
    return m_border;
}

void CDialog::setBorderWidth(int width)
{
    m_borderWidth = qMax(0, width);
    update();
}

int CDialog::borderWidth() const
{
    return m_borderWidth;
}

void CDialog::paintEvent(QPaintEvent* event)
{
    Q_UNUSED(event);
    QPainter painter(this);
    const int w = m_borderWidth;
    paintFrame(painter, rect(), m_background, m_border, QMargins(w, w, w, w));
}
