// The colour scale of the density and waterfall views and the trace colours: one place, so the
// legends and the pictures cannot disagree.
#ifndef DESKTOP_COLORMAP_H
#define DESKTOP_COLORMAP_H

#include <QColor>
#include <QRgb>
#include <QString>
#include <array>

#include "sweepstore.h"

namespace wsa::desktop
{

// 256 colours from "nothing" (dark) to "most" (bright); entry 0 is the plot background.
const std::array<QRgb, 256>& colorScale();
QColor traceColor(Trace t);
// The trace's name as the user reads it, translated.
QString traceName(Trace t);

namespace colors
{
inline QColor window()
{
    return QColor(0x14, 0x17, 0x1c);
}
inline QColor plot()
{
    return QColor(0x0b, 0x0d, 0x12);
}
inline QColor grid()
{
    return QColor(0x2c, 0x33, 0x3d);
}
inline QColor frame()
{
    return QColor(0x5a, 0x64, 0x70);
}
inline QColor text()
{
    return QColor(0xd0, 0xd6, 0xde);
}
inline QColor dimText()
{
    return QColor(0x8a, 0x94, 0xa0);
}
inline QColor channel()
{
    return QColor(0x50, 0x80, 0xa0);
}
inline QColor marker()
{
    return QColor(0xff, 0xff, 0xff);
}
inline QColor emitter()
{
    return QColor(0xe8, 0x8a, 0xf0);
}
} // namespace colors

} // namespace wsa::desktop

#endif
