#include "cwidget.h"

#include "framepaint.h"

#include <QPainter>

CWidget::CWidget(QWidget* parent) : QWidget(parent) {}

CWidget::~CWidget() = default;

int CWidget::type() const
{
    return 0;
}

bool CWidget::apply()
{
    return true;
}

void CWidget::initialize() {}

bool CWidget::load()
{
    return true;
}

bool CWidget::save()
{
    return true;
}

void CWidget::updateParm() {}

void CWidget::setSize(int w, int h)
{
    resize(w, h);
}

void CWidget::setSize(const QSize& size)
{
    resize(size);
}

void CWidget::setFixedSize(int w, int h)
{
    QWidget::setFixedSize(w, h);
}

void CWidget::setWidth(int w)
{
    setFixedWidth(w);
}

void CWidget::setHeight(int h)
{
    setFixedHeight(h);
}

void CWidget::clientWndStateChanged(int state)
{
    Q_UNUSED(state);
}

void CWidget::translate() {}

void CWidget::updateWidgetStyle()
{
    update();
}

void CWidget::updateWindow(bool bRepaint)
{
    if (bRepaint)
        repaint();
    else
        update();
}

void CWidget::closeWindow()
{
    hide();
}

void CWidget::setArrowKeyFocus(bool bFocus)
{
    m_arrowKeyFocus = bFocus;
}

bool CWidget::hasArrowKeyFocus() const
{
    return m_arrowKeyFocus;
}

void CWidget::setBackgroundColor(const QColor& color)
{
    m_background = color;
    update();
}

QColor CWidget::backgroundColor() const
{
    return m_background;
}

void CWidget::setBorderColor(const QColor& color)
{
    m_border = color;
    update();
}

QColor CWidget::borderColor() const
{
    return m_border;
}

void CWidget::setBorderWidth(int left, int top, int right, int bottom)
{
    m_borderWidth = QMargins(qMax(0, left), qMax(0, top), qMax(0, right), qMax(0, bottom));
    update();
}

void CWidget::setBorderWidth(int width)
{
    setBorderWidth(width, width, width, width);
}

QMargins CWidget::borderWidth() const
{
    return m_borderWidth;
}

void CWidget::paintEvent(QPaintEvent* event)
{
    Q_UNUSED(event);
    if (!m_background.isValid() && (!m_border.isValid() || m_borderWidth.isNull()))
        return;
    QPainter painter(this);
    paintFrame(painter, rect(), m_background, m_border, m_borderWidth);
}
