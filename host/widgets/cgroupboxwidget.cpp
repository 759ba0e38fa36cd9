#include "cgroupboxwidget.h"

#include <QGroupBox>
#include <QVBoxLayout>

#include "cwidgetstyle.h"

CGroupBoxWidget::CGroupBoxWidget(const QString& title, QWidget* parent)
    : CWidget(parent), m_box(new QGroupBox(title)), m_layout(new QVBoxLayout(m_box))
{
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->addWidget(m_box);
    // Compact: the analyzer fits a title and two rows into 100 pixels.
    m_layout->setContentsMargins(6, 2, 6, 4);
    m_layout->setSpacing(2);
    const QColor text = CWidgetStyle::getColor(CWidgetStyle::COLOR_FOREGROUND);
    const QColor border = CWidgetStyle::getColor(CWidgetStyle::COLOR_BORDER);
    m_box->setStyleSheet(
        QStringLiteral("QGroupBox { color: %1; border: 1px solid %2; border-radius: 4px;"
                       " margin-top: 1.2em; padding-top: 4px; }"
                       "QGroupBox::title { subcontrol-origin: margin; padding: 0 4px; }"
                       "QRadioButton, QCheckBox, QLabel { color: %1; }")
            .arg(text.name(), border.name()));
}

CGroupBoxWidget::~CGroupBoxWidget() = default;

void CGroupBoxWidget::setAlignment(Qt::Alignment alignment)
{
    m_box->setAlignment(alignment);
}

void CGroupBoxWidget::addWidget(QWidget* widget)
{
    if (!widget)
        return;
    m_layout->addWidget(widget);
}

void CGroupBoxWidget::setText(const QString& title)
{
    m_box->setTitle(title);
}

QString CGroupBoxWidget::text() const
{
    return m_box->title();
}
