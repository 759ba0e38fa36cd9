// Tools of the desktop window's tests: synthetic sweeps on a band's grid, the views and the
// window on a feed, offscreen renders and what to look for in them.
#ifndef DESKTOPTESTSUPPORT_H
#define DESKTOPTESTSUPPORT_H

#include <QImage>
#include <QWidget>
#include <array>
#include <functional>
#include <vector>

#include "bandplan.h"
#include "densityview.h"
#include "instrumentwindow.h"
#include "markers.h"
#include "spectrumview.h"
#include "sweepfeed.h"
#include "waterfallview.h"

namespace desktoptest
{

using namespace wsa::desktop;

inline const wsa::Band& band(wsa::BandId id)
{
    return *wsa::findBand(id);
}

// A sweep on the band's grid: `floorDbm` everywhere with one rectangular signal of `level` dBm,
// `cells` cells wide, centred on the cell nearest `hz`.
std::vector<float> sweepWithSignal(const wsa::Band& band, double hz, float level,
                                   float floorDbm = -95, int cells = 1);
// The cell of the band's grid nearest hz.
int cellOf(const wsa::Band& band, double hz);

// Adds such a sweep to a feed or store.
template <class Sink>
void addSignal(Sink& sink, double hz, float level, float floorDbm = -95, int cells = 1,
               qint64 timeMs = 0)
{
    const auto sweep = sweepWithSignal(sink.band(), hz, level, floorDbm, cells);
    sink.addSweep(sweep.data(), int(sweep.size()), timeMs);
}
inline void addSignal(SweepFeed& feed, double hz, float level, float floorDbm = -95, int cells = 1,
                      qint64 timeMs = 0)
{
    const auto sweep = sweepWithSignal(feed.shown().band(), hz, level, floorDbm, cells);
    feed.addSweep(sweep.data(), int(sweep.size()), timeMs);
}

// Sweeps that look like a busy band: a noise floor near -95 dBm and bursts of 20 MHz Wi-Fi
// channels at -45..-70 dBm on a few of the band's channels. Deterministic for a seed.
class BusyBand
{
public:
    explicit BusyBand(const wsa::Band& band, quint32 seed = 1);
    const std::vector<float>& next();

private:
    const wsa::Band& m_band;
    std::vector<float> m_sweep;
    std::vector<wsa::Channel> m_busy;
    std::vector<float> m_levels;
    quint32 m_state;
};

// The three views on one feed.
struct Views {
    explicit Views(const wsa::Band& band, int historyDepth = 1024)
        : feed(band, historyDepth), spectrum(&feed, &markers), density(&feed), waterfall(&feed)
    {
    }
    std::array<PlotView*, 3> all() { return {&spectrum, &density, &waterfall}; }
    void setSettings(const DisplaySettings& s)
    {
        for (PlotView* v : all())
            v->setSettings(s);
    }
    SweepFeed feed;
    Markers markers;
    SpectrumView spectrum;
    DensityView density;
    WaterfallView waterfall;
};

// The window on its own feed.
struct Window {
    explicit Window(wsa::BandId id) : feed(band(id)), w(&feed) {}
    MarkerReading reading(int marker = 0) const
    {
        return w.markers()->reading(feed.shown(), marker, 20);
    }
    SweepFeed feed;
    InstrumentWindow w;
};

// Settings that show the current trace alone (or the one given).
DisplaySettings onlyTrace(Trace t = Trace::Current);

// Runs `check` at three sizes, from small to large, each at device pixel ratios 1 and 2.
void atEverySize(const std::function<void(const QSize&, qreal)>& check);

// The widget resized to `size` and rendered into an image of that logical size at `dpr`.
QImage render(QWidget& w, const QSize& size, qreal dpr);
// A logical rectangle in device pixels.
QRect devicePixels(const QRectF& r, qreal dpr);
// The pixel's colour without alpha, and a colour's.
inline QRgb rgbAt(const QImage& image, double x, double y)
{
    return image.pixel(int(x), int(y)) & 0xffffff;
}
inline QRgb rgb(QRgb c)
{
    return c & 0xffffff;
}

// Whether any pixel in the device-pixel rectangle differs from `background`.
bool hasInk(const QImage& image, const QRect& devicePixels, QRgb background);
// The first device pixel of this colour in the rectangle scanning rows from the top (or from
// the bottom), or (-1, -1).
QPoint firstOf(const QImage& image, const QRect& area, QRgb color, bool fromTop = true);

// The first child of this type whose text() is `text`.
template <class T> T* childWithText(const QObject* parent, const QString& text)
{
    for (T* c : parent->findChildren<T*>()) {
        if (c->text() == text)
            return c;
    }
    return nullptr;
}

} // namespace desktoptest

#endif
