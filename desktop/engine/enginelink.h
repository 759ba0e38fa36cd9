// The window's link to its engine, wsa_raw: a private listening socket, the engine started with
// the socket's path, exactly one connection from that very process, its frames turned into
// signals and the window's controls sent back. Stops only the engine it started.
#ifndef DESKTOP_ENGINELINK_H
#define DESKTOP_ENGINELINK_H

#include <QObject>
#include <QProcess>
#include <memory>
#include <vector>

#include "bandplan.h"
#include "frontstream.h"
#include "linkmessages.h"

class QLocalServer;
class QLocalSocket;
class QTimer;

namespace wsa::desktop
{

struct EngineSetup {
    QString enginePath;
    QString socketDir;  // private (0700) directory of the session
    QString source;     // a key of sourceKinds()
    QString replayFile; // the replay source's recording
    const Band* band = nullptr;
    QString recordDir; // empty: recording cannot be turned on
    bool record = true;
    double outputRate = 50; // sweeps per second the window takes
};

class EngineLink : public QObject
{
    Q_OBJECT
public:
    explicit EngineLink(QObject* parent = nullptr);
    ~EngineLink() override;

    static constexpr int kSimulatedRate = 20; // sweeps per second of the simulated probe

    // Stops any engine, then listens and starts one for this setup. False (and a message) when
    // the socket cannot be made.
    bool start(const EngineSetup& setup);
    // SIGTERM to the engine's process group, SIGKILL after a grace period; bounded.
    void stop();
    const EngineSetup& setup() const { return m_setup; }
    bool isRunning() const;
    bool isConnected() const { return m_socket != nullptr; }
    qint64 enginePid() const;
    QString socketPath() const { return m_socketPath; }
    // Milliseconds without a valid frame before the link says so; and before the engine must
    // have connected.
    void setTimeouts(int silenceMs, int connectMs);

public slots:
    void sendControl(wsa::ControlCommand command, double value);
    void setRecording(bool on) { sendControl(ControlCommand::Record, on ? 1 : 0); }

signals:
    void configured(const wsa::Band& band, const QString& source);
    void sweep(const float* dbm, int bins, qint64 ms);
    void status(wsa::StatusCode code, const QString& text);
    void analysis(const QByteArray& json);
    void recording(qint64 bytes, const QString& path);
    void replay(const wsa::ReplayFrame& state);
    void message(const wsa::desktop::LinkMessage& message);
    void connected();
    // The engine process is gone (after stop() too).
    void ended();

private:
    bool listen();
    void startProcess();
    void onNewConnection();
    bool isOurEngine(QLocalSocket* socket, qint64* peerPid) const;
    void onReadable();
    void onStderr();
    void onFinished(int exitCode, QProcess::ExitStatus status);
    void concludeExit();
    void onQuiet();
    void validFrame();
    void closeSocket();
    FrameReader::Handlers handlers();

    EngineSetup m_setup;
    QProcess* m_process = nullptr;
    QLocalServer* m_server = nullptr;
    QLocalSocket* m_socket = nullptr;
    QTimer* m_quiet;
    QTimer* m_exitWait; // bounds the wait for the last bytes of an engine that has exited
    FrameReader m_reader;
    QString m_socketPath;
    QByteArray m_stderr;
    QString m_lastLine;
    qint64 m_pid = 0; // kept past the engine's exit, for a connection still pending
    int m_silenceMs = 5000;
    int m_connectMs = 10000;
    bool m_sourceEnded = false; // a Status said why the engine stops
    bool m_damaged = false;     // damage since the last valid frame
    bool m_quietReported = false;
    bool m_stopping = false;
    bool m_exited = false;
    int m_exitCode = 0;
    bool m_crashed = false;
    std::vector<char> m_out;
};

} // namespace wsa::desktop

Q_DECLARE_METATYPE(wsa::desktop::LinkMessage)
Q_DECLARE_METATYPE(wsa::ReplayFrame)
Q_DECLARE_METATYPE(wsa::StatusCode)
Q_DECLARE_METATYPE(wsa::ControlCommand)

#endif
