// Hands sweeps to the store and tells the views. While paused the views see a frozen copy of the
// store taken at the pause, and the live store goes on counting every sweep.
#ifndef DESKTOP_SWEEPFEED_H
#define DESKTOP_SWEEPFEED_H

#include <QObject>
#include <memory>

#include "sweepstore.h"

namespace wsa::desktop
{

class SweepFeed : public QObject
{
    Q_OBJECT
public:
    explicit SweepFeed(const Band& band, int historyDepth = 1024, QObject* parent = nullptr);

    // What the views show: the live store, or the frozen copy while paused.
    const SweepStore& shown() const;
    const SweepStore& live() const { return m_live; }
    bool isPaused() const { return m_frozen != nullptr; }

public slots:
    void configure(const Band& band);
    // False (and nothing changes) for a sweep shorter than the band's grid.
    bool addSweep(const float* dbm, int count, qint64 timeMs);
    void setPaused(bool paused);
    void resetHolds();
    void resetDensity();
    void setAveragingLength(int n);

signals:
    // One more sweep is shown: views update incrementally.
    void sweepShown();
    // What is shown changed as a whole (band, reset, pause, resume): views rebuild.
    void shownReset();

private:
    SweepStore m_live;
    std::unique_ptr<SweepStore> m_frozen;
};

} // namespace wsa::desktop

#endif
