// Prints the cost of painting one analyzer frame with a full recording (3598 sweeps, every
// history and colour row filled) and a full density table, in each layout, for the fast paint
// paths and for the plain point-by-point drawing; and the cost per sweep of parse, statistics
// and paint.
//
// A frame is the analyzer's own paint handler run by QWidget::render into an 800 x 400 QImage,
// child widgets not included: ARGB32 premultiplied (the raster format of a desktop window) and
// RGB16 (the unit's 16-bit screen). Frames redraw the current sweep (as after a control change),
// so every frame paints the same store. Without a display the offscreen platform is used.
#include <QApplication>
#include <QElapsedTimer>
#include <QImage>
#include <QRandomGenerator>
#include <algorithm>
#include <cstdio>
#include <vector>

#include "benchsupport.h"
#include "wsa_p.h"
#include "wsatestsupport.h"

namespace
{

double frameMs(CWsa& w, QImage& target, int frames)
{
    std::vector<qint64> ns;
    QElapsedTimer timer;
    for (int f = 0; f < frames; ++f) {
        w.m_bUpdate = true;
        timer.start();
        w.render(&target, QPoint(), QRegion(), QWidget::DrawWindowBackground);
        ns.push_back(timer.nsecsElapsed());
    }
    return bench::medianMs(ns);
}

// Sweeps through the link: each tick's parse, then the frame that counts and draws the sweep.
double sweepMs(CWsa& w, QImage& target, int link, int sweeps)
{
    std::vector<qint64> ns;
    QElapsedTimer timer;
    QRandomGenerator rng(7);
    stSweep record = wsatest::makeSweep(wsatest::shownSamples(0), nMinDraw);
    nLastIdx = 3000;
    for (int s = 0; s < sweeps; ++s) {
        for (int i = 0; i < record.num_samples; ++i)
            record.data[i] = nMinDraw + 5 + int(rng.bounded(nMaxDraw - nMinDraw - 10));
        wsatest::sendRecord(link, record);
        timer.start();
        w.wsaDataParse();
        w.render(&target, QPoint(), QRegion(), QWidget::DrawWindowBackground);
        ns.push_back(timer.nsecsElapsed());
    }
    return bench::medianMs(ns);
}

} // namespace

int main(int argc, char** argv)
{
    bench::offscreenWithoutDisplay();
    QApplication app(argc, argv);
    wsatest::AnalyzerFixture fixture;
    if (!fixture.start())
        return 1;
    CWsa& w = *fixture.w;
    const int link = fixture.link;
    QImage target(800, 400, QImage::Format_ARGB32_Premultiplied);

    // --profile [--rgb16]: fast View All frames only, long enough for a profiler to sample.
    if (app.arguments().contains(QStringLiteral("--profile"))) {
        wsatest::selectLayout(&w, 0, wsatest::ViewAll);
        wsatest::fillFullState(wsatest::shownSamples(0));
        if (app.arguments().contains(QStringLiteral("--rgb16")))
            target = QImage(800, 400, QImage::Format_RGB16);
        std::printf("View All, fast: %.3f ms\n", frameMs(w, target, 20000));
        return 0;
    }

    std::printf(
        "Frame with a full recording and density table, 2.4 GHz, median of N frames (ms)\n");
    std::printf("%-12s %9s %9s %7s %9s %9s %7s\n", "layout", "RGB32", "plain", "ratio", "RGB16",
                "plain", "ratio");
    const struct {
        const char* name;
        wsatest::Layout layout;
    } layouts[] = {{"View All", wsatest::ViewAll},
                   {"Planar", wsatest::PlanarOnly},
                   {"Topographic", wsatest::TopoOnly},
                   {"Spectral", wsatest::SpectralOnly}};
    QImage target16(800, 400, QImage::Format_RGB16);
    for (const auto& l : layouts) {
        wsatest::selectLayout(&w, 0, l.layout);
        wsatest::fillFullState(wsatest::shownSamples(0));
        std::printf("%-12s", l.name);
        for (QImage* t : {&target, &target16}) {
            bReferencePainting = false;
            frameMs(w, *t, 20); // warm caches and learned tables
            const double fast = frameMs(w, *t, 300);
            bReferencePainting = true;
            const double reference = frameMs(w, *t, 15);
            bReferencePainting = false;
            std::printf(" %9.3f %9.3f %6.1fx", fast, reference, reference / fast);
        }
        std::printf("\n");
    }

    std::printf("\nPer sweep: parse + statistics + paint, View All, median of N sweeps\n");
    wsatest::selectLayout(&w, 0, wsatest::ViewAll);
    wsatest::fillFullState(wsatest::shownSamples(0));
    bReferencePainting = false;
    const double fastSweep = sweepMs(w, target, link, 300);
    wsatest::fillFullState(wsatest::shownSamples(0));
    bReferencePainting = true;
    const double referenceSweep = sweepMs(w, target, link, 30);
    bReferencePainting = false;
    std::printf("%-12s %12.3f %14.3f %7.1fx\n", "View All", fastSweep, referenceSweep,
                referenceSweep / fastSweep);
    return 0;
}
