#include "desktoptestsupport.h"

#include <QPainter>
#include <algorithm>

#include "axis.h"

namespace desktoptest
{

int cellOf(const wsa::Band& band, double hz)
{
    return wsa::Axis(band.grid).nearestBin(hz);
}

std::vector<float> sweepWithSignal(const wsa::Band& band, double hz, float level, float floorDbm,
                                   int cells)
{
    std::vector<float> sweep(std::size_t(band.grid.shown), floorDbm);
    const int centre = cellOf(band, hz);
    for (int i = centre - cells / 2; i < centre - cells / 2 + cells; ++i) {
        if (i >= 0 && i < band.grid.shown)
            sweep[std::size_t(i)] = level;
    }
    return sweep;
}

BusyBand::BusyBand(const wsa::Band& band, quint32 seed)
    : m_band(band), m_sweep(std::size_t(band.grid.shown)), m_state(seed ? seed : 1)
{
    const std::vector<wsa::Channel> plan = band.channels(20);
    for (std::size_t k = 0; k < plan.size(); k += std::max<std::size_t>(1, plan.size() / 4)) {
        m_busy.push_back(plan[k]);
        m_levels.push_back(-45.0f - 8.0f * float(m_busy.size()));
    }
}

const std::vector<float>& BusyBand::next()
{
    auto random = [this] {
        m_state = m_state * 1664525u + 1013904223u;
        return float(m_state >> 8) / float(1u << 24);
    };
    const wsa::Axis axis(m_band.grid);
    for (std::size_t i = 0; i < m_sweep.size(); ++i)
        m_sweep[i] = -95.0f + 6.0f * (random() + random() - 1.0f);
    for (std::size_t k = 0; k < m_busy.size(); ++k) {
        if (random() > 0.45f)
            continue;
        const wsa::Channel& c = m_busy[k];
        const int lo = axis.nearestBin((c.centerMHz - 9) * 1e6);
        const int hi = axis.nearestBin((c.centerMHz + 9) * 1e6);
        for (int i = lo; i <= hi; ++i)
            m_sweep[std::size_t(i)] =
                std::max(m_sweep[std::size_t(i)], m_levels[k] + 3.0f * (random() - 0.5f));
    }
    return m_sweep;
}

QImage render(QWidget& w, const QSize& size, qreal dpr)
{
    w.resize(size);
    QImage image((QSizeF(size) * dpr).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(dpr);
    image.fill(Qt::magenta);
    w.render(&image);
    return image;
}

DisplaySettings onlyTrace(Trace t)
{
    DisplaySettings s;
    std::fill(std::begin(s.traceShown), std::end(s.traceShown), false);
    s.traceShown[int(t)] = true;
    return s;
}

void atEverySize(const std::function<void(const QSize&, qreal)>& check)
{
    for (const QSize& size : {QSize(520, 260), QSize(1100, 420), QSize(1900, 700)}) {
        for (qreal dpr : {1.0, 2.0})
            check(size, dpr);
    }
}

QRect devicePixels(const QRectF& r, qreal dpr)
{
    return QRectF(r.topLeft() * dpr, r.size() * dpr).toAlignedRect();
}

QPoint firstOf(const QImage& image, const QRect& area, QRgb color, bool fromTop)
{
    const QRect r = area.intersected(image.rect());
    for (int k = 0; k < r.height(); ++k) {
        const int y = fromTop ? r.top() + k : r.bottom() - k;
        for (int x = r.left(); x <= r.right(); ++x) {
            if (rgbAt(image, x, y) == rgb(color))
                return {x, y};
        }
    }
    return {-1, -1};
}

bool hasInk(const QImage& image, const QRect& devicePixels, QRgb background)
{
    const QRect r = devicePixels.intersected(image.rect());
    for (int y = r.top(); y <= r.bottom(); ++y) {
        for (int x = r.left(); x <= r.right(); ++x) {
            if ((image.pixel(x, y) & 0xffffff) != (background & 0xffffff))
                return true;
        }
    }
    return false;
}

} // namespace desktoptest
