// Tools of the desktop window's tests: synthetic sweeps on a band's grid and offscreen renders.
#ifndef DESKTOPTESTSUPPORT_H
#define DESKTOPTESTSUPPORT_H

#include <QImage>
#include <QtGlobal>
#include <QWidget>
#include <vector>

#include "bandplan.h"

namespace desktoptest
{

// A sweep on the band's grid: `floorDbm` everywhere with one rectangular signal of `level` dBm,
// `cells` cells wide, centred on the cell nearest `hz`.
std::vector<float> sweepWithSignal(const wsa::Band& band, double hz, float level,
                                   float floorDbm = -95, int cells = 1);
// The cell of the band's grid nearest hz.
int cellOf(const wsa::Band& band, double hz);

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

// The widget resized to `size` and rendered into an image of that logical size at `dpr`.
QImage render(QWidget& w, const QSize& size, qreal dpr);

// Whether any pixel in the device-pixel rectangle differs from `background`.
bool hasInk(const QImage& image, const QRect& devicePixels, QRgb background);

} // namespace desktoptest

#endif
