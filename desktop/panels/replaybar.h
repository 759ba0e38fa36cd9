// The controls of a replay: pause, speed, a position slider that seeks, loop. It shows what
// the engine last reported and asks for changes; the engine's next report confirms them.
#ifndef DESKTOP_REPLAYBAR_H
#define DESKTOP_REPLAYBAR_H

#include <QToolBar>

#include "frontstream.h"

class QAction;
class QComboBox;
class QLabel;
class QSlider;

namespace wsa::desktop
{

class ReplayBar : public QToolBar
{
    Q_OBJECT
public:
    explicit ReplayBar(QWidget* parent = nullptr);
    const ReplayFrame& state() const { return m_state; }

public slots:
    void setState(const wsa::ReplayFrame& state);

signals:
    void control(wsa::ControlCommand command, double value);

private:
    QAction* m_pause;
    QAction* m_loop;
    QComboBox* m_speed;
    QSlider* m_position;
    QLabel* m_time;
    ReplayFrame m_state;
    bool m_updating = false;
};

} // namespace wsa::desktop

#endif
