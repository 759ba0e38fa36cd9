#include "replaybar.h"

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QSlider>
#include <cmath>

namespace wsa::desktop
{

namespace
{

// The slider counts tenths of a second: fine enough to find a moment, coarse enough to drag.
constexpr double kTicksPerSecond = 10;

} // namespace

ReplayBar::ReplayBar(QWidget* parent) : QToolBar(tr("Replay"), parent)
{
    setObjectName(QStringLiteral("replay"));
    m_pause = addAction(tr("Pause replay"));
    m_pause->setCheckable(true);
    // Space freezes the picture; the replay itself stops with Shift+Space.
    m_pause->setShortcut(QKeySequence(Qt::SHIFT | Qt::Key_Space));
    connect(m_pause, &QAction::toggled, this, [this](bool on) {
        if (!m_updating)
            emit control(ControlCommand::Pause, on ? 1 : 0);
    });
    m_speed = new QComboBox;
    for (double factor : {0.25, 0.5, 1.0, 2.0, 4.0, 10.0, 100.0})
        m_speed->addItem(tr("%1x").arg(factor), factor);
    m_speed->setCurrentIndex(2);
    m_speed->setToolTip(tr("Replay speed"));
    connect(m_speed, &QComboBox::activated, this,
            [this] { emit control(ControlCommand::Speed, m_speed->currentData().toDouble()); });
    addWidget(m_speed);
    m_position = new QSlider(Qt::Horizontal);
    m_position->setMinimumWidth(240);
    m_position->setToolTip(tr("Position in the recording"));
    // Seek where the slider is let go (or clicked), not at every pixel of a drag.
    connect(m_position, &QSlider::sliderReleased, this,
            [this] { emit control(ControlCommand::Seek, m_position->value() / kTicksPerSecond); });
    connect(m_position, &QSlider::actionTriggered, this, [this](int action) {
        if (action != QAbstractSlider::SliderMove)
            emit control(ControlCommand::Seek, m_position->sliderPosition() / kTicksPerSecond);
    });
    addWidget(m_position);
    m_time = new QLabel;
    addWidget(m_time);
    m_loop = addAction(tr("Loop"));
    m_loop->setCheckable(true);
    connect(m_loop, &QAction::toggled, this, [this](bool on) {
        if (!m_updating)
            emit control(ControlCommand::Loop, on ? 1 : 0);
    });
    setState(m_state);
}

void ReplayBar::setState(const ReplayFrame& state)
{
    m_state = state;
    m_updating = true;
    m_pause->setChecked(state.paused);
    m_loop->setChecked(state.loop);
    const double duration = std::isfinite(state.duration) ? std::max(0.0, state.duration) : 0;
    const double position =
        std::isfinite(state.position) ? std::clamp(state.position, 0.0, duration) : 0;
    m_position->setMaximum(int(std::min(duration * kTicksPerSecond, 1e9)));
    if (!m_position->isSliderDown())
        m_position->setValue(int(position * kTicksPerSecond));
    int nearest = m_speed->currentIndex();
    for (int i = 0; i < m_speed->count(); ++i) {
        if (std::abs(m_speed->itemData(i).toDouble() - state.speed) < 1e-6)
            nearest = i;
    }
    m_speed->setCurrentIndex(nearest);
    m_time->setText(tr("%1 / %2 s").arg(position, 0, 'f', 1).arg(duration, 0, 'f', 1));
    m_updating = false;
}

} // namespace wsa::desktop
