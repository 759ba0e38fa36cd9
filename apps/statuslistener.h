// The handheld view's second ear on its engine (desktop build): a socket named by
// WSA_STATUS_SOCKET on which the engine says why a source stopped, shown as a console line and a
// non-modal box beside the analyzer, which never receives these frames.
#ifndef APPS_STATUSLISTENER_H
#define APPS_STATUSLISTENER_H

#include <QObject>
#include <QString>

class QLocalServer;

namespace standalone
{

class StatusListener : public QObject
{
    Q_OBJECT
public:
    // Listens in `dir` and exports WSA_STATUS_SOCKET for the engines started from now on; a
    // console line, and nothing exported, when the socket cannot be made.
    explicit StatusListener(const QString& dir, QObject* parent = nullptr);
    ~StatusListener() override;
    QString path() const { return m_path; }

signals:
    void statusShown(const QString& text);

private:
    void accept();

    QLocalServer* m_server;
    QString m_path;
};

// Whether `ancestor` is pid's parent, grandparent or further up.
bool isAncestorOf(qint64 ancestor, qint64 pid);

} // namespace standalone

#endif
