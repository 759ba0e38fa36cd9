#include "colormap.h"

#include <QCoreApplication>
#include <cmath>

namespace wsa::desktop
{

namespace
{

std::array<QRgb, 256> makeScale()
{
    // Control points chosen to rise monotonically in lightness, so that order reads at a glance
    // also in grey.
    struct Stop {
        double at;
        int r, g, b;
    };
    static const Stop stops[] = {{0.00, 0x0b, 0x0d, 0x12}, {0.08, 0x1c, 0x10, 0x5a},
                                 {0.30, 0x1a, 0x4c, 0xc0}, {0.50, 0x10, 0xa8, 0xb0},
                                 {0.68, 0x60, 0xd0, 0x40}, {0.84, 0xf0, 0xd0, 0x20},
                                 {0.94, 0xff, 0x70, 0x20}, {1.00, 0xff, 0xf0, 0xe0}};
    std::array<QRgb, 256> scale{};
    for (int i = 0; i < 256; ++i) {
        const double t = i / 255.0;
        int k = 0;
        while (k + 2 < int(std::size(stops)) && stops[k + 1].at < t)
            ++k;
        const Stop& a = stops[k];
        const Stop& b = stops[k + 1];
        const double f = (t - a.at) / (b.at - a.at);
        auto mix = [f](int x, int y) { return int(std::lround(x + (y - x) * f)); };
        scale[std::size_t(i)] = qRgb(mix(a.r, b.r), mix(a.g, b.g), mix(a.b, b.b));
    }
    return scale;
}

} // namespace

const std::array<QRgb, 256>& colorScale()
{
    static const std::array<QRgb, 256> scale = makeScale();
    return scale;
}

QColor traceColor(Trace t)
{
    switch (t) {
    case Trace::Current:
        return QColor(0xf2, 0xd0, 0x3a);
    case Trace::Average:
        return QColor(0x3c, 0xd6, 0x7e);
    case Trace::Maximum:
        return QColor(0xff, 0x5a, 0x4c);
    case Trace::Minimum:
        return QColor(0x56, 0xa4, 0xff);
    }
    return Qt::white;
}

QString traceName(Trace t)
{
    switch (t) {
    case Trace::Current:
        return QCoreApplication::translate("Trace", "Current");
    case Trace::Average:
        return QCoreApplication::translate("Trace", "Average");
    case Trace::Maximum:
        return QCoreApplication::translate("Trace", "Maximum");
    case Trace::Minimum:
        return QCoreApplication::translate("Trace", "Minimum");
    }
    return {};
}

} // namespace wsa::desktop
