#include "sweepfeed.h"

namespace wsa::desktop
{

SweepFeed::SweepFeed(const Band& band, int historyDepth, QObject* parent)
    : QObject(parent), m_live(band, historyDepth)
{
}

const SweepStore& SweepFeed::shown() const
{
    if (m_frozen)
        return *m_frozen;
    return m_live;
}

void SweepFeed::configure(const Band& band)
{
    m_live.configure(band);
    // A new band makes the frozen picture meaningless.
    m_frozen.reset();
    emit shownReset();
}

bool SweepFeed::addSweep(const float* dbm, int count, qint64 timeMs)
{
    if (!m_live.addSweep(dbm, count, timeMs))
        return false;
    if (!m_frozen)
        emit sweepShown();
    return true;
}

void SweepFeed::setPaused(bool paused)
{
    if (paused == isPaused())
        return;
    if (paused)
        m_frozen = std::make_unique<SweepStore>(m_live);
    else
        m_frozen.reset();
    emit shownReset();
}

// Resets reach the live store only: a paused picture stays as it was until resumed.
void SweepFeed::resetHolds()
{
    m_live.resetHolds();
    if (!m_frozen)
        emit shownReset();
}

void SweepFeed::resetDensity()
{
    m_live.resetDensity();
    if (!m_frozen)
        emit shownReset();
}

void SweepFeed::setAveragingLength(int n)
{
    m_live.setAveragingLength(n);
}

} // namespace wsa::desktop
