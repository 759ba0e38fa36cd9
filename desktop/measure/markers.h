// Up to four markers, each on a frequency and a trace, with their readings against a model.
// Marker 1 is the reference of the delta readings.
#ifndef DESKTOP_MARKERS_H
#define DESKTOP_MARKERS_H

#include <QObject>
#include <array>

#include "sweepstore.h"

namespace wsa::desktop
{

struct Marker {
    bool on = false;
    double hz = 0;
    Trace trace = Trace::Current;
    bool followsPeak = false; // moved to its trace's highest cell with every sweep shown
};

struct MarkerReading {
    bool valid = false; // on, and its trace has data
    int bin = -1;
    double hz = 0; // the centre of the marker's cell
    float dbm = 0;
    int channel = 0; // the channel of the chosen width at hz, 0 outside every channel
    bool hasDelta = false;
    double deltaHz = 0; // against marker 1
    float deltaDb = 0;
};

// The channel of the plan of that width whose span holds hz; between overlapping channels the
// one whose centre is nearest. 0 when none holds it.
int channelAt(const Band& band, int widthMHz, double hz);

class Markers : public QObject
{
    Q_OBJECT
public:
    static constexpr int kCount = 4;

    explicit Markers(QObject* parent = nullptr);

    const Marker& marker(int index) const;
    int active() const { return m_active; }
    MarkerReading reading(const SweepStore& model, int index, int channelWidthMHz) const;

public slots:
    void setActive(int index);
    // Places the marker on the cell nearest hz (switching it on).
    void place(int index, const SweepStore& model, double hz);
    void setTrace(int index, Trace trace);
    void setOn(int index, bool on);
    // Moves the marker by `cells` cells of the model's grid, stopping at the edges.
    void step(int index, const SweepStore& model, int cells);
    // Peak search on the marker's own trace; false (and no move) when there is nothing to find.
    bool toHighest(int index, const SweepStore& model);
    bool toNextLeft(int index, const SweepStore& model);
    bool toNextRight(int index, const SweepStore& model);
    void setFollowsPeak(int index, bool follow);
    // Every marker that follows the peak goes to its trace's highest cell.
    void followPeaks(const SweepStore& model);
    void clear();

signals:
    void changed();

private:
    bool toBin(int index, const SweepStore& model, int bin);
    int binOf(int index, const SweepStore& model) const;

    std::array<Marker, kCount> m_markers;
    int m_active = 0;
};

} // namespace wsa::desktop

#endif
