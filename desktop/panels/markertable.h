// The readings of the four markers: frequency, channel, level, trace and the difference to
// marker 1. Refreshed at most ten times a second, so a fast sweep rate costs no text per sweep.
#ifndef DESKTOP_MARKERTABLE_H
#define DESKTOP_MARKERTABLE_H

#include <QTableWidget>
#include <QTimer>

namespace wsa::desktop
{

class Markers;
class SweepFeed;

class MarkerTable : public QTableWidget
{
    Q_OBJECT
public:
    enum Column { Number, Frequency, Channel, Level, TraceColumn, DeltaFrequency, DeltaLevel };

    MarkerTable(SweepFeed* feed, Markers* markers, QWidget* parent = nullptr);
    void setChannelWidth(int widthMHz);

public slots:
    // Brings every cell up to date now.
    void refresh();

private:
    void schedule();

    SweepFeed* m_feed;
    Markers* m_markers;
    int m_channelWidth = 20;
    QTimer m_timer;
};

} // namespace wsa::desktop

#endif
