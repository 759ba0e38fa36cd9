#include "statuslistener.h"

#include <QDir>
#include <QFile>
#include <QLocalServer>
#include <QLocalSocket>
#include <QMessageBox>
#include <cstdio>
#include <memory>
#include <sys/socket.h>
#include <unistd.h>

#include "frontstream.h"
#include "linkmessages.h"

namespace standalone
{

bool isAncestorOf(qint64 ancestor, qint64 pid)
{
    // Bounded: a loop in a damaged table cannot hold us.
    for (int depth = 0; depth < 64 && pid > 1; ++depth) {
        QFile stat(QStringLiteral("/proc/%1/stat").arg(pid));
        if (!stat.open(QIODevice::ReadOnly))
            return false;
        const QByteArray text = stat.readAll();
        const QList<QByteArray> fields = text.mid(text.lastIndexOf(')') + 2).split(' ');
        pid = fields.size() > 1 ? fields[1].toLongLong() : 0;
        if (pid == ancestor)
            return true;
    }
    return false;
}

StatusListener::StatusListener(const QString& dir, QObject* parent)
    : QObject(parent), m_server(new QLocalServer(this))
{
    m_path = QDir(dir).filePath(QStringLiteral("status-%1").arg(getpid()));
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    QLocalServer::removeServer(m_path);
    if (dir.isEmpty() || !m_server->listen(m_path)) {
        std::printf("wsa: no status socket %s: %s\n", qPrintable(m_path),
                    qPrintable(m_server->errorString()));
        m_path.clear();
        return;
    }
    qputenv("WSA_STATUS_SOCKET", QFile::encodeName(m_path));
    connect(m_server, &QLocalServer::newConnection, this, &StatusListener::accept);
}

StatusListener::~StatusListener()
{
    qunsetenv("WSA_STATUS_SOCKET");
}

void StatusListener::accept()
{
    while (QLocalSocket* socket = m_server->nextPendingConnection()) {
        struct ucred peer = {};
        socklen_t size = sizeof peer;
        // Only an engine of ours (the analyzer starts it, so we are its ancestor).
        if (getsockopt(int(socket->socketDescriptor()), SOL_SOCKET, SO_PEERCRED, &peer, &size) !=
                0 ||
            peer.uid != geteuid() || !isAncestorOf(getpid(), peer.pid)) {
            std::printf("wsa: refused a status connection from process %d\n", int(peer.pid));
            socket->abort();
            socket->deleteLater();
            continue;
        }
        wsa::FrameReader::Handlers h;
        h.status = [this](wsa::StatusCode code, const std::string& cause) {
            const auto m =
                wsa::desktop::LinkMessages::status(code, QString::fromStdString(cause), QString());
            std::printf("wsa: %s\n", qPrintable(m.text));
            auto* box = new QMessageBox(m.severity == wsa::desktop::LinkMessage::Severity::Info
                                            ? QMessageBox::Information
                                            : QMessageBox::Warning,
                                        QStringLiteral("wsa"), m.text, QMessageBox::Close);
            box->setAttribute(Qt::WA_DeleteOnClose);
            box->setModal(false);
            box->show();
            emit statusShown(m.text);
        };
        auto reader = std::make_shared<wsa::FrameReader>(h);
        connect(socket, &QLocalSocket::readyRead, socket, [socket, reader] {
            const QByteArray bytes = socket->readAll();
            reader->feed(bytes.constData(), std::size_t(bytes.size()));
        });
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
    }
}

} // namespace standalone
