// Shared tools of the analyzer tests.
#ifndef WSATESTSUPPORT_H
#define WSATESTSUPPORT_H

#include <QImage>
#include <QString>
#include <QTemporaryDir>
#include <functional>
#include <memory>

#include "halbrin_sa.h"

class CWsa;

namespace wsatest
{

// Prepares the process for constructing an analyzer: an own temporary working directory (the
// engine socket is ./SERVERSOCK), the fake engine as WSA_ENGINE_PATH logging its command lines,
// results under <dir>/results, and a short bound on the engine's connection. Restores the
// working directory on destruction.
class AnalyzerEnv
{
public:
    AnalyzerEnv();
    ~AnalyzerEnv();
    QString path() const { return m_dir.path(); }
    QString resultDir() const { return m_dir.path() + "/results"; }
    QString engineLogPath() const { return m_dir.path() + "/engine.log"; }
    // Command lines the fake engine was started with, one per start ("wsa_raw|-r 2").
    QStringList engineLaunches() const;

private:
    QTemporaryDir m_dir;
    QString m_oldCwd;
};

// Replaces the analyzer's engine connection (sockFd) by one end of a socketpair and returns the
// other end, on which the test writes records. The fake engine sees its connection close and ends.
int takeOverLink();

// Writes the first `bytes` bytes of the record; false if not all were written.
bool sendRecord(int fd, const stSweep& record, int bytes = SA_RECORD_SIZE);

// A sweep record of n samples, all at `level` dBm.
stSweep makeSweep(int n, int level);
stSweep makeMessage(char type);

// Answers the next modal window that opens (message box, dialog, keypad) by clicking its
// button with this text, or by calling `action` on it when given. Polls the event loop, so it
// must be armed before the code that opens the modal window runs.
void answerModal(const QString& buttonText = QStringLiteral("OK"));
void onNextModal(std::function<void(QWidget*)> action);

// Runs `body` with standard output captured and returns what it printed.
QString captureStdout(const std::function<void()>& body);

// One analyzer for a test program: environment, analyzer, and the test's own end of the engine
// link (engines are killed by name, so the fake engine may go at any time; records come from the
// test alone). start() shows the analyzer at 800 x 400 and waits until it is exposed.
class AnalyzerFixture
{
public:
    ~AnalyzerFixture() { stop(); }
    bool start();
    void stop();
    CWsa* w = nullptr;
    int link = -1;
    std::unique_ptr<AnalyzerEnv> env;
};

enum Layout { ViewAll, PlanarOnly, TopoOnly, SpectralOnly };

// Switches band geometry and display range (without restarting the engine) and the layout.
void selectLayout(CWsa* w, int band, Layout layout);

// Samples a sweep of the handheld band shows: the band's raw record after its reduction.
int shownSamples(int band);

// A full recording (3597 stored sweeps, every colour row filled) and a full density table of
// `samples` samples per sweep, with random levels inside the band's display range.
void fillFullState(int samples, quint32 seed = 42);

// The analyzer's own paint (child widgets excluded) into an 800 x 400 image of `format`.
QImage renderAnalyzer(CWsa* w, QImage::Format format = QImage::Format_ARGB32_Premultiplied);

} // namespace wsatest

#endif
