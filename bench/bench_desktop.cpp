// Prints the cost of painting the desktop instrument window at 1920 x 1080 with a full state:
// every row of the waterfall filled, a density table of over a thousand sweeps, and an analysis
// of every channel and a dozen emitters, per band and device pixel ratio, into a 32-bit (ARGB32
// premultiplied) image.
//
// Without a display the offscreen platform is used. --png DIR also saves each band's picture.
#include <QApplication>
#include <QElapsedTimer>
#include <QImage>
#include <algorithm>
#include <cstdio>
#include <vector>

#include "analysismodel.h"
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

// An analysis object as the engine sends it: every channel of every width, and emitters on the
// first channels of 20 MHz, the older half ended.
QByteArray analysisOf(const wsa::Band& band)
{
    QByteArray channels, emitters;
    int k = 0;
    for (int width : band.widthsMHz) {
        for (const wsa::Channel& c : band.channels(width)) {
            channels += QStringLiteral("%1{\"type\":\"channel\",\"channel\":%2,\"width_mhz\":%3,"
                                       "\"center_mhz\":%4,\"occupancy\":%5,\"mean_dbm\":-80.5,"
                                       "\"max_dbm\":-45.0}")
                            .arg(channels.isEmpty() ? "" : ",")
                            .arg(c.number)
                            .arg(width)
                            .arg(c.centerMHz)
                            .arg((k++ % 10) / 10.0)
                            .toUtf8();
        }
    }
    const auto& twenty = band.channels(band.widthsMHz.front());
    for (int e = 0; e < 12 && e < int(twenty.size()); ++e) {
        emitters += QStringLiteral("%1{\"type\":\"emitter\",\"id\":%2,\"kind\":\"wifi-ofdm\","
                                   "\"center_mhz\":%3,\"width_mhz\":18,\"channel\":%4,"
                                   "\"first_s\":1.5,\"last_s\":60.0,\"duty\":0.3,"
                                   "\"peak_dbm\":-50,\"confidence\":0.9,\"active\":%5,"
                                   "\"features\":{\"flatness\":0.9}}")
                        .arg(emitters.isEmpty() ? "" : ",")
                        .arg(e)
                        .arg(twenty[std::size_t(e)].centerMHz)
                        .arg(twenty[std::size_t(e)].number)
                        .arg(e >= 6 ? "true" : "false")
                        .toUtf8();
    }
    return "{\"type\":\"analysis\",\"seconds\":60,\"sweeps\":1100,\"noise_floor_dbm\":-95,"
           "\"channels\":[" + channels + "],\"emitters\":[" + emitters + "]}";
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
    if (!w.analysis()->takeJson(analysisOf(band)))
        std::printf("the analysis object was refused\n");

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
