#include "enginelink.h"

#include <QDir>
#include <QLocalServer>
#include <QLocalSocket>
#include <QTimer>
#include <csignal>
#include <cstdio>
#include <sys/socket.h>
#include <unistd.h>

namespace wsa::desktop
{

namespace
{

// Sent before the SIGKILL; the engine closes its recording within it.
constexpr int kGraceMs = 2000;

void signalGroup(qint64 pid, int signal)
{
    // The engine leads its own process group (it and the sweep program it runs); if it could
    // not make one, only the engine itself.
    if (pid > 0 && ::kill(-pid_t(pid), signal) != 0)
        ::kill(pid_t(pid), signal);
}

} // namespace

EngineLink::EngineLink(QObject* parent)
    : QObject(parent), m_quiet(new QTimer(this)), m_exitWait(new QTimer(this)), m_reader(handlers())
{
    m_quiet->setSingleShot(true);
    connect(m_quiet, &QTimer::timeout, this, &EngineLink::onQuiet);
    m_exitWait->setSingleShot(true);
    m_exitWait->setInterval(1000);
    connect(m_exitWait, &QTimer::timeout, this, &EngineLink::concludeExit);
}

EngineLink::~EngineLink()
{
    stop();
}

void EngineLink::setTimeouts(int silenceMs, int connectMs)
{
    m_silenceMs = silenceMs;
    m_connectMs = connectMs;
}

bool EngineLink::isRunning() const
{
    return m_process && m_process->state() != QProcess::NotRunning;
}

qint64 EngineLink::enginePid() const
{
    return m_process ? m_pid : 0;
}

bool EngineLink::start(const EngineSetup& setup)
{
    stop();
    m_setup = setup;
    m_sourceEnded = m_damaged = m_quietReported = m_stopping = m_exited = false;
    m_lastLine.clear();
    m_stderr.clear();
    m_reader.reset();
    if (!listen())
        return false;
    startProcess();
    return true;
}

bool EngineLink::listen()
{
    // A name of this instance and start: two windows, or a restart, never share a socket.
    static int serial = 0;
    m_socketPath =
        QDir(m_setup.socketDir).filePath(QStringLiteral("front-%1-%2").arg(getpid()).arg(++serial));
    m_server = new QLocalServer(this);
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    m_server->setMaxPendingConnections(4);
    QLocalServer::removeServer(m_socketPath);
    if (m_setup.socketDir.isEmpty() || !m_server->listen(m_socketPath)) {
        emit message(LinkMessages::socketFailed(m_socketPath, m_setup.socketDir.isEmpty()
                                                                  ? tr("no directory")
                                                                  : m_server->errorString()));
        delete m_server;
        m_server = nullptr;
        return false;
    }
    connect(m_server, &QLocalServer::newConnection, this, &EngineLink::onNewConnection);
    return true;
}

void EngineLink::startProcess()
{
    m_process = new QProcess(this);
    m_process->setChildProcessModifier([] { ::setpgid(0, 0); });
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("WSA_FRONT_SOCKET"), m_socketPath);
    env.insert(QStringLiteral("WSA_SOURCE"), m_setup.source);
    env.insert(QStringLiteral("WSA_OUTPUT_RATE"), QString::number(m_setup.outputRate));
    env.insert(QStringLiteral("WSA_RECORD_DIR"), m_setup.recordDir);
    if (m_setup.source == QLatin1String("replay"))
        env.insert(QStringLiteral("WSA_REPLAY_FILE"), m_setup.replayFile);
    else
        env.remove(QStringLiteral("WSA_REPLAY_FILE"));
    // The handheld host's channel, never this window's engine.
    env.remove(QStringLiteral("WSA_STATUS_SOCKET"));
    // The simulated probe plays its changing cast of every kind the band carries, so that the
    // analysis is seen naming them; WSA_SIM_SCENE chooses the fixed scene instead.
    if (!env.contains(QStringLiteral("WSA_SIM_SCENE")))
        env.insert(QStringLiteral("WSA_SIM_SCENE"), QStringLiteral("emitters"));
    // ... at a fast receiver's pace: at the handheld probe's 8 sweeps a second the analysis needs
    // 2 to 3 s to name what 20 sweeps a second show it in 1 to 1.5 s.
    if (!env.contains(QStringLiteral("WSA_SIM_RATE")))
        env.insert(QStringLiteral("WSA_SIM_RATE"), QString::number(kSimulatedRate));
    m_process->setProcessEnvironment(env);
    QStringList args;
    if (m_setup.band)
        args << QStringLiteral("-r") << QString::number(m_setup.band->engineNumber);
    connect(m_process, &QProcess::readyReadStandardError, this, &EngineLink::onStderr);
    connect(m_process, &QProcess::finished, this, &EngineLink::onFinished);
    connect(m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart) {
            emit message(
                LinkMessages::engineNotStarted(m_setup.enginePath, m_process->errorString()));
            m_quiet->stop();
        }
    });
    m_quiet->start(m_connectMs);
    // Known from the fork on: the engine may connect before QProcess reports it started.
    m_process->start(m_setup.enginePath, args);
    m_pid = m_process->processId();
}

void EngineLink::stop()
{
    m_quiet->stop();
    m_exitWait->stop();
    closeSocket();
    if (m_process) {
        m_stopping = true;
        m_process->disconnect(this);
        if (m_process->state() != QProcess::NotRunning) {
            signalGroup(m_process->processId(), SIGTERM);
            if (!m_process->waitForFinished(kGraceMs)) {
                signalGroup(m_process->processId(), SIGKILL);
                m_process->waitForFinished(1000);
            }
        }
        m_process->deleteLater();
        m_process = nullptr;
        emit ended();
    }
    if (m_server) {
        m_server->close();
        delete m_server;
        m_server = nullptr;
    }
}

void EngineLink::closeSocket()
{
    if (!m_socket)
        return;
    m_socket->disconnect(this);
    m_socket->abort();
    m_socket->deleteLater();
    m_socket = nullptr;
}

bool EngineLink::isOurEngine(QLocalSocket* socket, qint64* peerPid) const
{
    struct ucred peer = {};
    socklen_t size = sizeof peer;
    if (getsockopt(int(socket->socketDescriptor()), SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0)
        return false;
    *peerPid = peer.pid;
    return peer.uid == geteuid() && m_pid > 0 && peer.pid == m_pid;
}

void EngineLink::onNewConnection()
{
    while (QLocalSocket* socket = m_server->nextPendingConnection()) {
        qint64 pid = 0;
        if (m_socket || !isOurEngine(socket, &pid)) {
            // One connection, from the process started here; anyone else's data is not ours.
            emit message(LinkMessages::refusedPeer(pid));
            socket->abort();
            socket->deleteLater();
            continue;
        }
        m_socket = socket;
        connect(m_socket, &QLocalSocket::readyRead, this, &EngineLink::onReadable);
        connect(m_socket, &QLocalSocket::disconnected, this, [this] {
            m_quiet->stop();
            onReadable();
            closeSocket();
            if (m_exited)
                concludeExit();
        });
        m_quiet->start(m_silenceMs);
        // Live sources record from the start, a replay only when asked: say so where the
        // wish differs.
        const bool replaying = m_setup.source == QLatin1String("replay");
        if (!m_setup.recordDir.isEmpty() && m_setup.record == replaying)
            setRecording(m_setup.record);
        emit connected();
        onReadable();
    }
}

void EngineLink::onReadable()
{
    if (!m_socket)
        return;
    char buffer[16384];
    qint64 n;
    // A frame's handler may close the socket (a status that ends the source), and a socket the
    // engine has closed is read only for what it still buffers.
    while (m_socket && m_socket->bytesAvailable() > 0 &&
           (n = m_socket->read(buffer, sizeof buffer)) > 0)
        m_reader.feed(buffer, std::size_t(n));
}

void EngineLink::sendControl(ControlCommand command, double value)
{
    if (!m_socket)
        return;
    m_out.clear();
    if (encodeControl(m_out, command, value))
        m_socket->write(m_out.data(), qint64(m_out.size()));
}

void EngineLink::validFrame()
{
    m_damaged = m_quietReported = false;
    m_quiet->start(m_silenceMs);
}

void EngineLink::onQuiet()
{
    if (!isRunning())
        return;
    if (!m_socket) {
        // Never connected: an engine that cannot reach us is of no use and is stopped.
        emit message(LinkMessages::notConnected((m_connectMs + 999) / 1000));
        stop();
        return;
    }
    if (!m_quietReported)
        emit message(m_damaged ? LinkMessages::damaged()
                               : LinkMessages::silent((m_silenceMs + 999) / 1000));
    m_quietReported = true;
    m_quiet->start(m_silenceMs);
}

void EngineLink::onStderr()
{
    const QByteArray bytes = m_process->readAllStandardError();
    // The engine's own lines stay on the console, where they always were.
    std::fwrite(bytes.constData(), 1, std::size_t(bytes.size()), stderr);
    m_stderr += bytes;
    const QList<QByteArray> lines = m_stderr.split('\n');
    for (const QByteArray& line : lines.mid(0, lines.size() - 1)) {
        if (!line.trimmed().isEmpty())
            m_lastLine = QString::fromLocal8Bit(line.trimmed());
    }
    m_stderr = lines.last().right(4096);
}

void EngineLink::onFinished(int exitCode, QProcess::ExitStatus status)
{
    m_quiet->stop();
    onStderr();
    if (!m_stderr.trimmed().isEmpty())
        m_lastLine = QString::fromLocal8Bit(m_stderr.trimmed());
    m_exited = true;
    m_exitCode = exitCode;
    m_crashed = status == QProcess::CrashExit;
    // An engine that said why and left at once: its connection may still wait to be taken, and
    // its last frames to be read, before we know whether it said why.
    if (!m_socket && m_server)
        onNewConnection();
    if (m_socket)
        m_exitWait->start();
    else
        concludeExit();
}

void EngineLink::concludeExit()
{
    if (!m_exited || !m_process)
        return;
    m_exitWait->stop();
    onReadable();
    closeSocket();
    m_exited = false;
    if (!m_stopping && !m_sourceEnded)
        emit message(LinkMessages::engineEnded(m_exitCode, m_crashed, m_lastLine));
    emit ended();
}

FrameReader::Handlers EngineLink::handlers()
{
    FrameReader::Handlers h;
    h.configured = [this](const ConfiguredFrame& f) {
        validFrame();
        const Band* band = findBand(BandId(f.band));
        if (!band) {
            emit message(LinkMessages::status(
                StatusCode::Other, tr("it announced band %1, which is unknown").arg(f.band),
                QString()));
            return;
        }
        emit configured(*band, QString::fromStdString(f.source));
    };
    h.sweep = [this](const SweepFrame& f) {
        validFrame();
        emit sweep(f.dbm, f.bins, qint64(f.seconds * 1000));
    };
    h.status = [this](StatusCode code, const std::string& text) {
        validFrame();
        if (LinkMessages::endsSource(code))
            m_sourceEnded = true;
        emit status(code, QString::fromStdString(text));
    };
    h.analysis = [this](const std::string& json) {
        validFrame();
        emit analysis(QByteArray::fromStdString(json));
    };
    h.recording = [this](std::int64_t bytes, const std::string& path) {
        validFrame();
        emit recording(bytes, QString::fromStdString(path));
    };
    h.replay = [this](const ReplayFrame& f) {
        validFrame();
        emit replay(f);
    };
    h.damage = [this](const char*) { m_damaged = true; };
    // Control frames go the other way; one coming back is ignored.
    h.control = [](ControlCommand, double) {};
    return h;
}

} // namespace wsa::desktop
