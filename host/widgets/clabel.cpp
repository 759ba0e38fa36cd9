#include "clabel.h"

#include <QHBoxLayout>
#include <QLabel>

#include "cwidgetstyle.h"

CLabel::CLabel(const QString& text, QWidget* parent) : CWidget(parent), m_label(new QLabel(text))
{
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(4, 0, 4, 0);
    layout->addWidget(m_label);
    m_label->setWordWrap(false);
    setTextColor(CWidgetStyle::getColor(CWidgetStyle::COLOR_FOREGROUND));
}

CLabel::~CLabel() = default;

void CLabel::setText(const QString& text)
{
    m_label->setText(text);
}

QString CLabel::text() const
{
    return m_label->text();
}

void CLabel::setTextColor(const QColor& color)
{
    QPalette pal = m_label->palette();
    pal.setColor(QPalette::WindowText, color);
    pal.setColor(QPalette::Text, color);
    m_label->setPalette(pal);
}

QColor CLabel::textColor() const
{
    return m_label->palette().color(QPalette::WindowText);
}

void CLabel::setTextSize(int pixelSize)
{
    if (pixelSize <= 0)
        return;
    QFont font = m_label->font();
    font.setPixelSize(pixelSize);
    m_label->setFont(font);
}

void CLabel::setAlignment(Qt::Alignment alignment)
{
    m_label->setAlignment(alignment);
}

Qt::Alignment CLabel::alignment() const
{
    return m_label->alignment();
}
