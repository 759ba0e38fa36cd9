#include "ccheckbox.h"

#include <QPainter>
#include <QStyleOptionButton>

#include "cwidgetstyle.h"

namespace
{

// Square side of the indicator: the analyzer's trace switches stand in a strip 10 pixels high.
constexpr int kIndicatorSize = 10;

} // namespace

CCheckBox::CCheckBox(const QString& text, QWidget* parent) : QCheckBox(text, parent)
{
    applyLook();
}

CCheckBox::~CCheckBox() = default;

void CCheckBox::setBorderVisible(bool bVisible)
{
    m_borderVisible = bVisible;
    applyLook();
}

bool CCheckBox::isBorderVisible() const
{
    return m_borderVisible;
}

QRect CCheckBox::indicatorRect() const
{
    QStyleOptionButton option;
    initStyleOption(&option);
    return style()->subElementRect(QStyle::SE_CheckBoxIndicator, &option, this);
}

void CCheckBox::paintEvent(QPaintEvent* event)
{
    QCheckBox::paintEvent(event);
    // The style's own tick is a few grey pixels at this size; paint a white box with a black
    // two-pixel tick over it, legible on the host background and on a black grid alike.
    const QRect box = indicatorRect();
    QPainter painter(this);
    painter.setPen(QPen(QColor(Qt::black), 1));
    painter.setBrush(isEnabled() ? QColor(Qt::white)
                                 : CWidgetStyle::getColor(CWidgetStyle::COLOR_DISABLED));
    painter.drawRect(box.adjusted(0, 0, -1, -1));
    if (checkState() == Qt::Unchecked)
        return;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(Qt::black), 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    const QRectF r = QRectF(box).adjusted(2, 2, -2, -2);
    if (checkState() == Qt::PartiallyChecked) {
        painter.drawLine(QPointF(r.left(), r.center().y()), QPointF(r.right(), r.center().y()));
        return;
    }
    const QPointF tick[] = {{r.left(), r.top() + r.height() * 0.55},
                            {r.left() + r.width() * 0.4, r.bottom()},
                            {r.right(), r.top()}};
    painter.drawPolyline(tick, 3);
}

void CCheckBox::applyLook()
{
    const QColor text = CWidgetStyle::getColor(CWidgetStyle::COLOR_FOREGROUND);
    const QString border = m_borderVisible
                               ? QStringLiteral("1px solid %1")
                                     .arg(CWidgetStyle::getColor(CWidgetStyle::COLOR_BORDER).name())
                               : QStringLiteral("none");
    setStyleSheet(QStringLiteral("QCheckBox { color: %1; border: %2; padding: 0px; spacing: 4px;"
                                 " font-size: 10px; }"
                                 "QCheckBox::indicator { width: %3px; height: %3px; }")
                      .arg(text.name(), border)
                      .arg(kIndicatorSize));
}
