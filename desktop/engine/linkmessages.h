// What the window tells the user about its engine: the cause (a file's name, a program's last
// line) and the remedy, chosen by the engine's status code or by what the link itself saw.
#ifndef DESKTOP_LINKMESSAGES_H
#define DESKTOP_LINKMESSAGES_H

#include <QCoreApplication>
#include <QString>

#include "frontstream.h"

namespace wsa::desktop
{

struct LinkMessage {
    enum class Severity { Info, Warning, Error };
    Severity severity = Severity::Info;
    QString text;
};

class LinkMessages
{
    Q_DECLARE_TR_FUNCTIONS(LinkMessages)
public:
    // True for the codes after which the engine's source has stopped (and the engine exits).
    static bool endsSource(StatusCode code);
    // `cause` is the engine's own text; `band` the band's name ("5 GHz").
    static LinkMessage status(StatusCode code, const QString& cause, const QString& band);
    // The engine ended without saying why: its exit code (or signal) and last stderr line.
    static LinkMessage engineEnded(int exitCode, bool crashed, const QString& lastLine);
    static LinkMessage engineNotStarted(const QString& program, const QString& reason);
    static LinkMessage notConnected(int seconds);
    static LinkMessage silent(int seconds);
    static LinkMessage damaged();
    static LinkMessage socketFailed(const QString& path, const QString& reason);
    static LinkMessage noWorkDir();
    static LinkMessage refusedPeer(qint64 pid);
    static LinkMessage bandOfRecording(const QString& band);
};

} // namespace wsa::desktop

#endif
