#include "wsatestsupport.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QTest>
#include <QTimer>
#include <QWidget>
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include "wsa_p.h"

namespace wsatest
{

AnalyzerEnv::AnalyzerEnv() : m_oldCwd(QDir::currentPath())
{
    QDir().mkpath(resultDir());
    QDir::setCurrent(m_dir.path());
    qputenv("WSA_ENGINE_PATH", WSA_FAKE_ENGINE_BIN);
    qputenv("WSA_RESULT_DIR", resultDir().toLocal8Bit());
    qputenv("WSA_ENGINE_TIMEOUT_MS", "3000");
    qputenv("FAKE_ENGINE_LOG", engineLogPath().toLocal8Bit());
    qunsetenv("FAKE_ENGINE_MODE");
    qunsetenv("FAKE_ENGINE_RECORDS");
}

AnalyzerEnv::~AnalyzerEnv()
{
    QDir::setCurrent(m_oldCwd);
}

QStringList AnalyzerEnv::engineLaunches() const
{
    QFile f(engineLogPath());
    if (!f.open(QIODevice::ReadOnly))
        return {};
    return QString::fromLocal8Bit(f.readAll()).split('\n', Qt::SkipEmptyParts);
}

int takeOverLink()
{
    int fds[2];
    if (socketpair(AF_UNIX, SOCK_STREAM, 0, fds) != 0)
        return -1;
    if (sockFd >= 0)
        close(sockFd);
    sockFd = fds[0];
    return fds[1];
}

bool sendRecord(int fd, const stSweep& record, int bytes)
{
    const char* p = reinterpret_cast<const char*>(&record);
    int left = bytes;
    while (left > 0) {
        ssize_t n = send(fd, p, left, MSG_NOSIGNAL);
        if (n <= 0)
            return false;
        p += n;
        left -= int(n);
    }
    return true;
}

stSweep makeSweep(int n, int level)
{
    stSweep s;
    std::memset(&s, 0, sizeof s);
    s.type = SA_MSG_SWEEP;
    s.num_samples = n;
    for (int i = 0; i < SA_MAX_SAMPLES; ++i)
        s.data[i] = level;
    return s;
}

stSweep makeMessage(char type)
{
    stSweep s;
    std::memset(&s, 0, sizeof s);
    s.type = type;
    return s;
}

void onNextModal(std::function<void(QWidget*)> action)
{
    auto* timer = new QTimer(qApp);
    timer->setInterval(10);
    QObject::connect(timer, &QTimer::timeout, [timer, action]() {
        QWidget* modal = QApplication::activeModalWidget();
        if (!modal || !modal->isVisible())
            return;
        timer->stop();
        timer->deleteLater();
        action(modal);
    });
    timer->start();
}

void answerModal(const QString& buttonText)
{
    onNextModal([buttonText](QWidget* modal) {
        const auto buttons = modal->findChildren<QAbstractButton*>();
        for (QAbstractButton* b : buttons) {
            if (b->text() == buttonText) {
                b->click();
                return;
            }
        }
        qWarning("answerModal: no button \"%s\"; closing the window", qPrintable(buttonText));
        modal->close();
    });
}

QString captureStdout(const std::function<void()>& body)
{
    std::fflush(stdout);
    char path[] = "/tmp/wsa-stdout-XXXXXX";
    int tmp = mkstemp(path);
    if (tmp < 0) {
        body();
        return QString();
    }
    int saved = dup(1);
    dup2(tmp, 1);
    body();
    std::fflush(stdout);
    dup2(saved, 1);
    close(saved);
    lseek(tmp, 0, SEEK_SET);
    QByteArray out;
    char buf[4096];
    ssize_t n;
    while ((n = read(tmp, buf, sizeof buf)) > 0)
        out.append(buf, int(n));
    close(tmp);
    unlink(path);
    return QString::fromLocal8Bit(out);
}

bool AnalyzerFixture::start()
{
    env = std::make_unique<AnalyzerEnv>();
    w = new CWsa;
    link = takeOverLink();
    w->setSize(QSize(800, 400));
    w->show();
    return link >= 0 && QTest::qWaitForWindowExposed(w);
}

void AnalyzerFixture::stop()
{
    delete w;
    w = nullptr;
    if (link >= 0)
        close(link);
    link = -1;
    env.reset();
}

void selectLayout(CWsa* w, int band, Layout layout)
{
    s_band = band;
    const wsa::HandheldMapping& mapping = *wsa::handheldBand(band).handheld;
    nMinDraw = mapping.minDbm;
    nMaxDraw = mapping.maxDbm;
    w->resizeGrid();
    switch (layout) {
    case ViewAll:
        w->procViewAll();
        break;
    case PlanarOnly:
        w->procPlanar();
        break;
    case TopoOnly:
        w->procTopographic();
        break;
    case SpectralOnly:
        w->procSpectral();
        break;
    }
}

int shownSamples(int band)
{
    const wsa::Band& b = wsa::handheldBand(band);
    return b.handheld->reducedCount(b.grid.raw);
}

void fillFullState(int samples, quint32 seed)
{
    QRandomGenerator rng(seed);
    const int range = nMaxDraw - nMinDraw;
    auto level = [&] { return nMinDraw + int(rng.bounded(range + 1)); };
    nLastIdx = WSA_RECORDING_LIMIT - 1;
    nDataCount = nLastIdx + 1;
    for (int k = 0; k <= nLastIdx; ++k) {
        historyData[k].type = SA_MSG_SWEEP;
        historyData[k].num_samples = samples;
        for (int i = 0; i < samples; ++i)
            historyData[k].data[i] = level();
        for (int c = 1; c < WSA_COLOR_LINE; ++c) {
            const stRgb& m = colormap[rng.bounded(WSA_COLORMAP_SIZE)];
            historyColor[k + 1].color[c] = qRgb(m.r, m.g, m.b);
        }
        const unsigned t = unsigned(k) / 8; // eight sweeps a second
        std::snprintf(historyTime[k], WSA_TIME_TEXT, "%02u:%02u:%02u", t / 3600 % 100, t / 60 % 60,
                      t % 60);
    }
    sweep_peak_max = 5000;
    for (int i = 0; i < SA_MAX_SAMPLES; ++i) {
        for (int m = 0; m < WSA_DENSITY_LEVELS; ++m)
            popularity[i][m] = i < samples ? 1 + int(rng.bounded(5000)) : 0;
        const int a = level(), b = level();
        maxData.data[i] = std::max(a, b);
        minData.data[i] = std::min(a, b);
        sumData[i] = -(a + b) / 2 * nDataCount;
    }
    maxData.num_samples = samples;
    currentDatatmp = historyData[nLastIdx];
    currentData = currentDatatmp;
}

QImage renderAnalyzer(CWsa* w, QImage::Format format)
{
    QImage image(800, 400, format);
    image.fill(Qt::transparent);
    w->render(&image, QPoint(), QRegion(), QWidget::DrawWindowBackground);
    return image;
}

} // namespace wsatest
