// Fuzz target: arbitrary byte streams, split at arbitrary points, through the engine link's
// record reader and the store into paints of every layout in both bands, with Inspector taps.
//
// Input: byte 0 picks the band (bit 0) and the layout (bits 1-2); byte 1 seeds the piece sizes
// the rest of the input is fed in; byte 2 seeds the tap positions. The rest is the stream.
//
// The analyzer is built once, as the host would build it; its engine start fails (the engine
// path is /bin/true, which ends at once) in a temporary working directory. Every modal window
// (the failed start's box, the boxes records open) is rejected from its own event loop by an
// application event filter, so nothing blocks and no production code knows about fuzzing.
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QImage>
#include <QMouseEvent>
#include <QTemporaryDir>
#include <cstdint>
#include <cstdlib>

#include "link.h"
#include "wsa_p.h"

namespace
{

class RejectModals : public QObject
{
public:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Show)
            if (auto* dialog = qobject_cast<QDialog*>(watched))
                QMetaObject::invokeMethod(dialog, "reject", Qt::QueuedConnection);
        return false;
    }
};

CWsa* analyzer = nullptr;
QImage* canvas = nullptr;

void selectLayout(int band, int layout)
{
    s_band = band;
    const wsa::HandheldMapping& mapping = *wsa::handheldBand(band).handheld;
    nMinDraw = mapping.minDbm;
    nMaxDraw = mapping.maxDbm;
    analyzer->initData();
    analyzer->resizeGrid();
    switch (layout) {
    case 0:
        analyzer->procViewAll();
        break;
    case 1:
        analyzer->procPlanar();
        break;
    case 2:
        analyzer->procTopographic();
        break;
    default:
        analyzer->procSpectral();
        break;
    }
}

void paint()
{
    canvas->fill(Qt::black);
    analyzer->render(canvas, QPoint(), QRegion(), QWidget::DrawWindowBackground);
}

void tap(uint32_t& seed)
{
    seed = seed * 1103515245u + 12345u;
    const QPointF at(int(seed >> 8) % 800, int(seed >> 20) % 400);
    QMouseEvent press(QEvent::MouseButtonPress, at, at, Qt::LeftButton, Qt::LeftButton,
                      Qt::NoModifier);
    QCoreApplication::sendEvent(analyzer, &press);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    setenv("WSA_ENGINE_PATH", "/bin/true", 1);
    setenv("WSA_ENGINE_TIMEOUT_MS", "100", 1);
    static QTemporaryDir workDir;
    setenv("WSA_RESULT_DIR", QFile::encodeName(workDir.path() + "/results").constData(), 1);
    QDir::setCurrent(workDir.path());
    // Never destroyed: libFuzzer ends the process with exit(), and a static application's
    // teardown would run after the platform it needs is gone.
    auto* app = new QApplication(*argc, *argv);
    app->installEventFilter(new RejectModals);
    analyzer = new CWsa;
    analyzer->setSize(QSize(800, 400));
    canvas = new QImage(800, 400, QImage::Format_ARGB32_Premultiplied);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 3)
        return 0;
    selectLayout(data[0] & 1, (data[0] >> 1) & 3);
    analyzer->m_bInspector = true;
    wsaResetRecordReader();
    uint32_t pieces = data[1] + 1u;
    uint32_t taps = data[2] + 1u;
    data += 3;
    size -= 3;
    while (size > 0) {
        pieces = pieces * 1664525u + 1013904223u;
        size_t piece = std::min<size_t>(size, 1 + (pieces >> 16) % 6000);
        while (piece > 0) {
            const size_t taken = wsaTakeBytes(*analyzer, data, piece);
            data += taken, size -= taken, piece -= taken;
            if (bReceivedData) {
                tap(taps);
                paint();
            }
        }
    }
    paint();
    return 0;
}
