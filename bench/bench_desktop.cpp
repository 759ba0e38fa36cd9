// Prints the cost of painting the desktop instrument window at 1920 x 1080 with a full state:
// every row of the waterfall filled and a density table of over a thousand sweeps, per band and
// device pixel ratio, into a 32-bit (ARGB32 premultiplied) image.
//
// Without a display the offscreen platform is used. --png DIR also saves each band's picture.
#include <QApplication>
#include <QElapsedTimer>
#include <QImage>
#include <algorithm>
#include <cstdio>
#include <vector>

#include "benchsupport.h"
#include "desktoptestsupport.h"
#include "densityview.h"
#include "instrumentwindow.h"
#include "markers.h"
#include "spectrumview.h"
#include "sweepfeed.h"
#include "waterfallview.h"

using namespace wsa::desktop;

namespace
{

void renderDataAreas(InstrumentWindow& w, QImage& target)
{
    for (PlotView* v : {static_cast<PlotView*>(w.spectrum()), static_cast<PlotView*>(w.density()),
                        static_cast<PlotView*>(w.waterfall())}) {
        const QRect r = v->plotLayout().plot.toAlignedRect();
        v->render(&target, v->mapTo(&w, r.topLeft()), QRegion(r), QWidget::RenderFlags());
    }
}

void benchBand(const wsa::Band& band, qreal dpr, const QString& pngDir)
{
    SweepFeed feed(band, 1024);
    InstrumentWindow w(&feed);
    w.resize(1920, 1080);
    w.show();
    desktoptest::BusyBand busy(band, 11);
    for (int s = 0; s < 1100; ++s)
        feed.addSweep(busy.next().data(), band.grid.shown, s * 50);
    w.markers()->toHighest(0, feed.shown());
    w.markers()->setTrace(1, Trace::Maximum);
    w.markers()->toNextRight(1, feed.shown());

    QImage target((QSizeF(1920, 1080) * dpr).toSize(), QImage::Format_ARGB32_Premultiplied);
    target.setDevicePixelRatio(dpr);
    w.render(&target);
    if (!pngDir.isEmpty()) {
        target.save(QStringLiteral("%1/desktop-%2-%3x.png").arg(pngDir, band.key).arg(dpr));
        w.zoom(0.1);
        w.render(&target);
        target.save(QStringLiteral("%1/desktop-%2-%3x-zoom.png").arg(pngDir, band.key).arg(dpr));
        w.setSpan(0, 0);
    }

    std::vector<qint64> full, views, relayout, perSweep;
    QElapsedTimer timer;
    for (int f = 0; f < 40; ++f) {
        timer.start();
        w.render(&target);
        full.push_back(timer.nsecsElapsed());
    }
    QWidget* stack = w.spectrum()->parentWidget();
    for (int f = 0; f < 40; ++f) {
        timer.start();
        stack->render(&target);
        views.push_back(timer.nsecsElapsed());
    }
    for (int f = 0; f < 10; ++f) {
        w.resize(1920 - 1 + (f % 2), 1080);
        timer.start();
        w.render(&target);
        relayout.push_back(timer.nsecsElapsed());
    }
    for (int s = 0; s < 300; ++s) {
        const std::vector<float>& sweep = busy.next();
        timer.start();
        feed.addSweep(sweep.data(), band.grid.shown, 60000 + s * 50);
        renderDataAreas(w, target);
        perSweep.push_back(timer.nsecsElapsed());
    }
    std::printf("%-8s dpr %.0f %5d cells  %6.2f  %6.2f  %6.2f  %6.2f\n", band.name, dpr,
                band.grid.shown, bench::medianMs(full), bench::medianMs(views), bench::medianMs(relayout),
                bench::medianMs(perSweep));
}

} // namespace

int main(int argc, char** argv)
{
    bench::offscreenWithoutDisplay();
    QApplication app(argc, argv);
    const QStringList args = app.arguments();
    const int png = int(args.indexOf(QStringLiteral("--png")));
    const QString pngDir = png >= 0 && png + 1 < args.size() ? args[png + 1] : QString();
    std::printf("desktop window at 1920 x 1080, median ms of:\n"
                "  window: the whole window repainted, no cached layer invalid\n"
                "  views: the three views alone, likewise\n"
                "  relayout: the whole window after a resize (every layer rebuilt)\n"
                "  sweep: one sweep into the store and every view, data areas repainted\n"
                "%-8s %5s %5s  %6s  %6s  %6s  %6s\n",
                "band", "", "", "window", "views", "relay.", "sweep");
    for (qreal dpr : {1.0, 2.0}) {
        for (const wsa::Band& band : wsa::allBands())
            benchBand(band, dpr, pngDir);
    }
    return 0;
}
