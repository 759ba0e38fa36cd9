// A bar above the views that says what went wrong and what to do, without stopping anything:
// the newest message stays until it is closed or the fault is over.
#ifndef DESKTOP_MESSAGEBAR_H
#define DESKTOP_MESSAGEBAR_H

#include <QFrame>

#include "linkmessages.h"

class QLabel;

namespace wsa::desktop
{

class MessageBar : public QFrame
{
    Q_OBJECT
public:
    explicit MessageBar(QWidget* parent = nullptr);
    QString text() const;

public slots:
    void showMessage(const wsa::desktop::LinkMessage& message);
    void clear();

private:
    QLabel* m_text;
};

} // namespace wsa::desktop

#endif
