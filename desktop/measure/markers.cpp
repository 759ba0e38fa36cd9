#include "markers.h"

#include <algorithm>
#include <cmath>

#include "peaks.h"

namespace wsa::desktop
{

int channelAt(const Band& band, int widthMHz, double hz)
{
    const double mhz = hz / 1e6;
    int best = 0;
    double bestDistance = 1e300;
    for (const Channel& c : band.channels(widthMHz)) {
        const double d = std::abs(c.centerMHz - mhz);
        if (mhz >= c.lowMHz() && mhz <= c.highMHz() && d < bestDistance) {
            best = c.number;
            bestDistance = d;
        }
    }
    return best;
}

Markers::Markers(QObject* parent) : QObject(parent) {}

const Marker& Markers::marker(int index) const
{
    return m_markers[std::size_t(std::clamp(index, 0, kCount - 1))];
}

int Markers::binOf(int index, const SweepStore& model) const
{
    return model.grid().axis(0, 1).nearestBin(marker(index).hz);
}

MarkerReading Markers::reading(const SweepStore& model, int index, int channelWidthMHz) const
{
    MarkerReading r;
    const Marker& m = marker(index);
    const float* levels = model.trace(m.trace);
    if (!m.on || !levels || model.grid().bins <= 0)
        return r;
    r.valid = true;
    r.bin = binOf(index, model);
    r.hz = model.grid().axis(0, 1).hzOfBin(r.bin);
    r.dbm = levels[r.bin];
    r.channel = channelAt(model.band(), channelWidthMHz, r.hz);
    if (index > 0) {
        const MarkerReading ref = reading(model, 0, channelWidthMHz);
        if (ref.valid) {
            r.hasDelta = true;
            r.deltaHz = r.hz - ref.hz;
            r.deltaDb = r.dbm - ref.dbm;
        }
    }
    return r;
}

void Markers::setActive(int index)
{
    if (index < 0 || index >= kCount || index == m_active)
        return;
    m_active = index;
    emit changed();
}

void Markers::place(int index, const SweepStore& model, double hz)
{
    if (index < 0 || index >= kCount || !std::isfinite(hz))
        return;
    const Axis a = model.grid().axis(0, 1);
    Marker& m = m_markers[std::size_t(index)];
    m.on = true;
    m.hz = a.hzOfBin(a.nearestBin(hz));
    emit changed();
}

void Markers::setTrace(int index, Trace trace)
{
    if (index < 0 || index >= kCount)
        return;
    m_markers[std::size_t(index)].trace = trace;
    emit changed();
}

void Markers::setOn(int index, bool on)
{
    if (index < 0 || index >= kCount)
        return;
    m_markers[std::size_t(index)].on = on;
    // A marker switched off stays off: it no longer follows a peak back on.
    if (!on)
        m_markers[std::size_t(index)].followsPeak = false;
    emit changed();
}

bool Markers::toBin(int index, const SweepStore& model, int bin)
{
    if (bin < 0 || index < 0 || index >= kCount)
        return false;
    Marker& m = m_markers[std::size_t(index)];
    m.on = true;
    m.hz = model.grid().axis(0, 1).hzOfBin(bin);
    emit changed();
    return true;
}

void Markers::step(int index, const SweepStore& model, int cells)
{
    if (index < 0 || index >= kCount || !marker(index).on)
        return;
    const int bins = model.grid().bins;
    toBin(index, model, std::clamp(binOf(index, model) + cells, 0, bins - 1));
}

bool Markers::toHighest(int index, const SweepStore& model)
{
    const float* levels = model.trace(marker(index).trace);
    return toBin(index, model, peaks::highest(levels, levels ? model.grid().bins : 0));
}

bool Markers::toNextLeft(int index, const SweepStore& model)
{
    const float* levels = model.trace(marker(index).trace);
    if (!levels)
        return false;
    const int from = marker(index).on ? binOf(index, model) : model.grid().bins;
    return toBin(index, model, peaks::nextLeft(levels, model.grid().bins, from));
}

bool Markers::toNextRight(int index, const SweepStore& model)
{
    const float* levels = model.trace(marker(index).trace);
    if (!levels)
        return false;
    const int from = marker(index).on ? binOf(index, model) : -1;
    return toBin(index, model, peaks::nextRight(levels, model.grid().bins, from));
}

void Markers::setFollowsPeak(int index, bool follow)
{
    if (index < 0 || index >= kCount)
        return;
    m_markers[std::size_t(index)].followsPeak = follow;
    emit changed();
}

void Markers::followPeaks(const SweepStore& model)
{
    for (int i = 0; i < kCount; ++i) {
        const Marker& m = m_markers[std::size_t(i)];
        const float* levels = m.followsPeak ? model.trace(m.trace) : nullptr;
        const int bin = peaks::highest(levels, levels ? model.grid().bins : 0);
        // Quietly, unless it moved: a steady peak costs no repaint of the table.
        if (bin >= 0 && (bin != binOf(i, model) || !m.on))
            toBin(i, model, bin);
    }
}

void Markers::clear()
{
    m_markers = {};
    m_active = 0;
    emit changed();
}

} // namespace wsa::desktop
