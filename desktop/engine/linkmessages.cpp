#include "linkmessages.h"

namespace wsa::desktop
{

namespace
{

using Severity = LinkMessage::Severity;

LinkMessage make(Severity severity, const QString& cause, const QString& remedy)
{
    return {severity, remedy.isEmpty() ? cause : cause + QLatin1Char(' ') + remedy};
}

} // namespace

bool LinkMessages::endsSource(StatusCode code)
{
    return code != StatusCode::RecordingFailed && code != StatusCode::DiskAlmostFull;
}

LinkMessage LinkMessages::status(StatusCode code, const QString& cause, const QString& bandName)
{
    const QString band = bandName.isEmpty() ? tr("chosen") : bandName;
    const QString open = tr("Open another recording with Source > Open recording (Ctrl+O).");
    switch (code) {
    // The engine's text is a clause naming the cause (a file, a program and what it said); the
    // headline says what it means here, the remedy what to do.
    case StatusCode::Ended:
        return make(Severity::Info, tr("Replay finished: %1.").arg(cause),
                    tr("Open another, or turn on Loop to play it again."));
    case StatusCode::ProgramMissing:
        // The engine's own hint after the colon is what the remedy says, in the user's language.
        return make(Severity::Error,
                    tr("The HackRF cannot be used: %1.").arg(cause.section(QLatin1String(": "), 0, 0)),
                    tr("Install the hackrf package, then choose Source > HackRF again."));
    case StatusCode::NoDevice:
        return make(Severity::Error, tr("No HackRF found: %1.").arg(cause),
                    tr("Connect the HackRF, then choose Source > HackRF again."));
    case StatusCode::DeviceLost:
        return make(Severity::Error, tr("The HackRF stopped delivering sweeps: %1.").arg(cause),
                    tr("Check its cable, then choose Source > HackRF again."));
    case StatusCode::FileMissing:
        return make(Severity::Error, tr("The recording does not exist: %1.").arg(cause), open);
    case StatusCode::FileUnreadable:
        return make(Severity::Error, tr("The recording cannot be read: %1.").arg(cause),
                    tr("Check that it is a file you may read, or open another."));
    case StatusCode::FileEmpty:
        return make(Severity::Error, tr("Nothing to replay: %1.").arg(cause), open);
    case StatusCode::NoSweepInBand:
        return make(Severity::Error,
                    tr("The recording holds no sweep in the %1 band: %2.").arg(band, cause), open);
    case StatusCode::BandNotCovered:
        return make(Severity::Error,
                    tr("The source does not cover the %1 band: %2.").arg(band, cause),
                    tr("Choose another band in the Source menu."));
    case StatusCode::RecordingFailed:
        return make(Severity::Warning, tr("Recording stopped: %1.").arg(cause),
                    tr("Free disk space or choose another folder; the measurement goes on."));
    case StatusCode::DiskAlmostFull:
        return make(Severity::Warning,
                    tr("The disk of the recordings is almost full: %1.").arg(cause),
                    tr("Free space; recording stops before the disk is full."));
    case StatusCode::BadSetting:
        return make(Severity::Error, tr("The engine refused a setting: %1.").arg(cause),
                    tr("Correct the WSA_ variable it names, then start again."));
    case StatusCode::Other:
        break;
    }
    return make(Severity::Error, tr("The engine stopped: %1.").arg(cause),
                tr("Choose a source in the Source menu to start again."));
}

LinkMessage LinkMessages::engineEnded(int exitCode, bool crashed, const QString& lastLine)
{
    const QString how =
        crashed ? tr("The engine crashed") : tr("The engine ended with status %1").arg(exitCode);
    const QString said =
        lastLine.isEmpty() ? tr("without a word.") : tr("saying: %1").arg(lastLine);
    return make(Severity::Error, how + QLatin1Char(' ') + said,
                tr("Choose a source in the Source menu to start it again."));
}

LinkMessage LinkMessages::engineNotStarted(const QString& program, const QString& reason)
{
    return make(Severity::Error, tr("The engine %1 could not be started: %2.").arg(program, reason),
                tr("Reinstall the package, or point WSA_ENGINE_PATH at the engine."));
}

LinkMessage LinkMessages::notConnected(int seconds)
{
    return make(Severity::Error, tr("The engine has not connected within %1 s.").arg(seconds),
                tr("It was stopped; choose a source in the Source menu to try again."));
}

LinkMessage LinkMessages::silent(int seconds)
{
    return make(Severity::Warning, tr("The engine has sent nothing for %1 s.").arg(seconds),
                tr("Choose the source again in the Source menu if it stays silent."));
}

LinkMessage LinkMessages::damaged()
{
    return make(Severity::Warning, tr("The engine sends only damaged data."),
                tr("Check that WSA_ENGINE_PATH names this version's engine."));
}

LinkMessage LinkMessages::socketFailed(const QString& path, const QString& reason)
{
    return make(Severity::Error, tr("The engine's socket %1 cannot be made: %2.").arg(path, reason),
                tr("Check that the runtime directory is yours and writable."));
}

LinkMessage LinkMessages::noWorkDir()
{
    return make(Severity::Error, tr("No private directory for the engine's socket could be made."),
                tr("Check that XDG_RUNTIME_DIR or the temporary directory is yours and writable."));
}

LinkMessage LinkMessages::refusedPeer(qint64 pid)
{
    return make(
        Severity::Warning,
        tr("Refused a connection from process %1, which is not this window's engine.").arg(pid),
        QString());
}

LinkMessage LinkMessages::bandOfRecording(const QString& band)
{
    return make(Severity::Info, tr("A recording covers only its own band, %1.").arg(band),
                tr("Choose a live source to measure another band."));
}

} // namespace wsa::desktop
