// Background and border painting shared by the library's widgets and dialogs.
#ifndef FRAMEPAINT_H
#define FRAMEPAINT_H

#include <QColor>
#include <QMargins>
#include <QPainter>
#include <QRect>

// Fills r with background (when valid) and lays border strips of the given widths inside r.
// Filled strips rather than stroked lines: exact pixels at any width.
inline void paintFrame(QPainter& painter, const QRect& r, const QColor& background,
                       const QColor& border, const QMargins& widths)
{
    if (background.isValid())
        painter.fillRect(r, background);
    if (!border.isValid())
        return;
    if (widths.left() > 0)
        painter.fillRect(QRect(r.left(), r.top(), widths.left(), r.height()), border);
    if (widths.right() > 0)
        painter.fillRect(QRect(r.right() - widths.right() + 1, r.top(), widths.right(), r.height()),
                         border);
    if (widths.top() > 0)
        painter.fillRect(QRect(r.left(), r.top(), r.width(), widths.top()), border);
    if (widths.bottom() > 0)
        painter.fillRect(
            QRect(r.left(), r.bottom() - widths.bottom() + 1, r.width(), widths.bottom()), border);
}

#endif
