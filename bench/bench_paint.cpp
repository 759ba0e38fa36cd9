// Prints the cost of painting one analyzer frame with a full recording (3598 sweeps, every
// history and colour row filled) and a full density table, in each layout, for the fast paint
// paths and for the plain point-by-point drawing; and the cost per sweep of parse, statistics
// and paint.
//
// A frame is the analyzer's own paint handler run by QWidget::render into an 800 x 400 QImage
// (ARGB32 premultiplied, the raster format of the window), child widgets not included. Frames
// redraw the current sweep (as after a control change), so every frame paints the same store.
#include <QApplication>
#include <QElapsedTimer>
#include <QImage>
#include <QRandomGenerator>
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <vector>

#include "wsa_p.h"
#include "wsatestsupport.h"

namespace
{

using Layout = void (CWsa::*)();

void fillFullState(int samples)
{
    QRandomGenerator rng(42);
    const int range = nMaxDraw - nMinDraw;
    nLastIdx = WSA_RECORDING_LIMIT - 1;
    nDataCount = nLastIdx + 1;
    for (int k = 0; k <= nLastIdx; ++k) {
        historyData[k].type = SA_MSG_SWEEP;
        historyData[k].num_samples = samples;
        for (int i = 0; i < samples; ++i)
            historyData[k].data[i] = nMinDraw + int(rng.bounded(range + 1));
        for (int c = 1; c < WSA_COLOR_LINE; ++c) {
            const stRgb& m = colormap[rng.bounded(WSA_COLORMAP_SIZE)];
            historyColor[k + 1].color[c] = qRgb(m.r, m.g, m.b);
        }
        const int t = k / 10; // ten sweeps a second
        const char text[] = {'0',
                             '0',
                             ':',
                             char('0' + t / 600 % 6),
                             char('0' + t / 60 % 10),
                             ':',
                             char('0' + t % 60 / 10),
                             char('0' + t % 10),
                             0};
        std::memcpy(historyTime[k], text, sizeof text);
    }
    sweep_peak_max = 5000;
    for (int i = 0; i < SA_MAX_SAMPLES; ++i) {
        for (int m = 0; m < WSA_DENSITY_LEVELS; ++m)
            popularity[i][m] = 1 + int(rng.bounded(5000));
        const int a = nMinDraw + int(rng.bounded(range + 1));
        const int b = nMinDraw + int(rng.bounded(range + 1));
        maxData.data[i] = std::max(a, b);
        minData.data[i] = std::min(a, b);
        sumData[i] = -(a + b) / 2 * nDataCount;
    }
    maxData.num_samples = samples;
    currentDatatmp = historyData[nLastIdx];
    currentData = currentDatatmp;
}

double medianMs(std::vector<qint64>& ns)
{
    std::sort(ns.begin(), ns.end());
    return ns[ns.size() / 2] / 1e6;
}

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
    return medianMs(ns);
}

// Sweeps through the link: each tick's parse, then the frame that counts and draws the sweep.
double sweepMs(CWsa& w, QImage& target, int link, int sweeps)
{
    std::vector<qint64> ns;
    QElapsedTimer timer;
    QRandomGenerator rng(7);
    stSweep record = wsatest::makeSweep(423, -80);
    nLastIdx = 3000;
    for (int s = 0; s < sweeps; ++s) {
        for (int i = 0; i < record.num_samples; ++i)
            record.data[i] = -105 + int(rng.bounded(90));
        wsatest::sendRecord(link, record);
        timer.start();
        w.wsaDataParse();
        w.render(&target, QPoint(), QRegion(), QWidget::DrawWindowBackground);
        ns.push_back(timer.nsecsElapsed());
    }
    return medianMs(ns);
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    wsatest::AnalyzerEnv env;
    CWsa w;
    w.setSize(QSize(800, 400));
    const int link = wsatest::takeOverLink();
    QImage target(800, 400, QImage::Format_ARGB32_Premultiplied);

    // --profile: fast View All frames only, long enough for a profiler to sample.
    if (app.arguments().contains(QStringLiteral("--profile"))) {
        fillFullState(423);
        w.procViewAll();
        std::printf("View All, fast: %.3f ms\n", frameMs(w, target, 20000));
        return 0;
    }

    std::printf("Frame with a full recording and density table, 2.4 GHz, median of N frames\n");
    std::printf("%-12s %12s %14s %8s\n", "layout", "fast (ms)", "reference (ms)", "ratio");
    const struct {
        const char* name;
        Layout layout;
    } layouts[] = {{"View All", &CWsa::procViewAll},
                   {"Planar", &CWsa::procPlanar},
                   {"Topographic", &CWsa::procTopographic},
                   {"Spectral", &CWsa::procSpectral}};
    for (const auto& l : layouts) {
        fillFullState(423);
        (w.*l.layout)();
        bReferencePainting = false;
        frameMs(w, target, 20); // warm caches and learned tables
        const double fast = frameMs(w, target, 300);
        bReferencePainting = true;
        const double reference = frameMs(w, target, 15);
        bReferencePainting = false;
        std::printf("%-12s %12.3f %14.3f %7.1fx\n", l.name, fast, reference, reference / fast);
    }

    std::printf("\nPer sweep: parse + statistics + paint, View All, median of N sweeps\n");
    w.procViewAll();
    fillFullState(423);
    bReferencePainting = false;
    const double fastSweep = sweepMs(w, target, link, 300);
    fillFullState(423);
    bReferencePainting = true;
    const double referenceSweep = sweepMs(w, target, link, 30);
    bReferencePainting = false;
    std::printf("%-12s %12.3f %14.3f %7.1fx\n", "View All", fastSweep, referenceSweep,
                referenceSweep / fastSweep);
    return 0;
}
