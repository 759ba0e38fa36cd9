// The desktop instrument: the spectrum, density and waterfall views stacked in adjustable
// splitters (or one at a time), the controls beside them and the marker table below. It shows
// whatever the feed it is given holds; acquisition is someone else's.
#ifndef DESKTOP_INSTRUMENTWINDOW_H
#define DESKTOP_INSTRUMENTWINDOW_H

#include <QMainWindow>

#include "controlpanel.h"
#include "plotframe.h"

class QSplitter;

namespace wsa::desktop
{

class DensityView;
class MarkerTable;
class Markers;
class SpectrumView;
class SweepFeed;
class WaterfallView;

class InstrumentWindow : public QMainWindow
{
    Q_OBJECT
public:
    explicit InstrumentWindow(SweepFeed* feed, QWidget* parent = nullptr);

    SpectrumView* spectrum() const { return m_spectrum; }
    DensityView* density() const { return m_density; }
    WaterfallView* waterfall() const { return m_waterfall; }
    Markers* markers() const { return m_markers; }
    ControlPanel* controls() const { return m_controls; }
    MarkerTable* markerTable() const { return m_table; }
    const DisplaySettings& settings() const { return m_settings; }

public slots:
    void setSettings(const wsa::desktop::DisplaySettings& s);
    void setViewMode(wsa::desktop::ViewMode mode);
    void setPaused(bool paused);

private:
    void connectControls();
    void createActions();
    void onShownReset();
    void syncMarkerControls();

    SweepFeed* m_feed;
    Markers* m_markers;
    QSplitter* m_views;
    SpectrumView* m_spectrum;
    DensityView* m_density;
    WaterfallView* m_waterfall;
    ControlPanel* m_controls;
    MarkerTable* m_table;
    DisplaySettings m_settings;
    const Band* m_band = nullptr;
};

} // namespace wsa::desktop

#endif
