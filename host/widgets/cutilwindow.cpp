#include "cutilwindow.h"

#include <QVBoxLayout>

#include "cwidgetstyle.h"

CUtilWindow::CUtilWindow(QWidget* parent) : CWidget(parent)
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    setBackgroundColor(CWidgetStyle::getColor(CWidgetStyle::COLOR_BACKGROUND));
    setWindowSize(WINDOW_WORKING_AREA);
}

CUtilWindow::~CUtilWindow() = default;

void CUtilWindow::setWindowSize(WindowSize size)
{
    m_size = size;
    QRect area = CWidgetStyle::getScreenRegion(CWidgetStyle::REGION_WORKING_AREA);
    if (size == WINDOW_HALF)
        area.setWidth(area.width() / 2);
    setGeometry(area);
}

CUtilWindow::WindowSize CUtilWindow::windowSize() const
{
    return m_size;
}

void CUtilWindow::setCentralWidget(QWidget* widget)
{
    if (widget == m_central)
        return;
    if (m_central) {
        layout()->removeWidget(m_central);
        m_central->hide();
        m_central->setParent(nullptr);
    }
    m_central = widget;
    if (widget) {
        if (widget->parentWidget() != this)
            widget->setParent(this);
        layout()->addWidget(widget);
        widget->show();
    }
}

QWidget* CUtilWindow::centralWidget() const
{
    return m_central;
}

void CUtilWindow::updateWindow(bool bRepaint)
{
    // Repainting the frame repaints the central widget with it; no second pass of its painter.
    CWidget::updateWindow(bRepaint);
}

void CUtilWindow::closeWindow()
{
    hide();
}
