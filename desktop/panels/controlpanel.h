// The instrument's controls beside the views: which traces show, the averaging, the level range,
// the channel plan, the marker tools, the view layout, pause and the resets.
#ifndef DESKTOP_CONTROLPANEL_H
#define DESKTOP_CONTROLPANEL_H

#include <QWidget>

#include "plotframe.h"

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QPushButton;
class QSpinBox;

namespace wsa::desktop
{

enum class ViewMode { All, Spectrum, Density, Waterfall };

class ControlPanel : public QWidget
{
    Q_OBJECT
public:
    explicit ControlPanel(QWidget* parent = nullptr);

    // Offers the band's channel widths, keeping the chosen one where the band has it.
    void setBand(const Band& band);
    void setSettings(const DisplaySettings& s);
    DisplaySettings settings() const;
    void setPaused(bool paused);
    void setAveraging(int sweeps);
    int averaging() const;
    void setViewMode(ViewMode mode);
    ViewMode viewMode() const;
    void setActiveMarker(int index, Trace trace, bool followsPeak);

signals:
    void settingsChanged(const wsa::desktop::DisplaySettings& s);
    void viewModeChanged(wsa::desktop::ViewMode mode);
    void averagingChanged(int sweeps);
    void resetHolds();
    void resetDensity();
    void pauseToggled(bool paused);
    void activeMarkerChanged(int index);
    void markerTraceChanged(wsa::desktop::Trace trace);
    void peakSearch();
    void nextPeakLeft();
    void nextPeakRight();
    void markerOff();
    void followPeakToggled(bool follow);

private:
    QWidget* traceGroup();
    QWidget* levelGroup();
    QWidget* markerGroup();
    QWidget* viewGroup();
    void emitSettings();

    QCheckBox* m_traces[kTraceCount] = {};
    QSpinBox* m_averaging = nullptr;
    QDoubleSpinBox* m_top = nullptr;
    QDoubleSpinBox* m_bottom = nullptr;
    QCheckBox* m_channels = nullptr;
    QComboBox* m_width = nullptr;
    QComboBox* m_marker = nullptr;
    QComboBox* m_markerTrace = nullptr;
    QCheckBox* m_follow = nullptr;
    QComboBox* m_viewMode = nullptr;
    QPushButton* m_pause = nullptr;
    bool m_updating = false;
};

} // namespace wsa::desktop

#endif
