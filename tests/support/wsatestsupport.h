// Shared tools of the analyzer tests.
#ifndef WSATESTSUPPORT_H
#define WSATESTSUPPORT_H

#include <QString>
#include <QTemporaryDir>
#include <functional>

#include "halbrin_sa.h"

namespace wsatest {

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

} // namespace wsatest

#endif
