// The desktop instrument: the spectrum, density and waterfall views stacked in adjustable
// splitters (or one at a time), the controls beside them and the marker table below. It shows
// whatever the feed it is given holds; acquisition is someone else's.
#ifndef DESKTOP_INSTRUMENTWINDOW_H
#define DESKTOP_INSTRUMENTWINDOW_H

#include <QMainWindow>

#include "controlpanel.h"
#include "plotframe.h"
#include "report.h"

class QDockWidget;
class QLabel;
class QTimer;
class QMenu;
class QSettings;
class QSplitter;

namespace wsa::desktop
{

class Acquisition;
class AnalysisModel;
class ChannelTable;
class EngineLink;
struct EngineSetup;
class DensityView;
class EmitterList;
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
    // Feeds the window from this engine link (Source menu, replay bar, recording, messages) and
    // starts the engine; null until then.
    void attachEngine(EngineLink* link, const EngineSetup& setup);
    Acquisition* acquisition() const { return m_acquisition; }

    // The picture of the views as shown, and the shown traces as CSV; false and a message
    // naming the file and the cause when the file cannot be written.
    bool exportPicture(const QString& path, QString* error);
    bool exportTraces(const QString& path, QString* error);
    // Window layout, display settings, averaging, view mode, markers, source and band, kept
    // between runs.
    void saveSettings(QSettings& settings) const;
    void restoreSettings(QSettings& settings);

public slots:
    void setSettings(const wsa::desktop::DisplaySettings& s);
    void setViewMode(wsa::desktop::ViewMode mode);
    void setPaused(bool paused);
    // Shows these frequencies in every view (clamped into the band); both 0 for the whole band.
    void setSpan(double lowHz, double highHz);
    // Shows these levels in every view, within the density table's range and at least 1 dB.
    void setLevelRange(double bottomDbm, double topDbm);
    // Narrows (factor < 1) or widens the span about its centre.
    void zoom(double factor);

private:
    void connectControls();
    void createMenus();
    static QString keysAndMouse();
    QMenu* createFileMenu();
    QMenu* createViewMenu();
    QMenu* createMeasureMenu();
    void createStatusBar();
    void updateStatus();
    void askAndExport(bool picture);
    void showError(const QString& text);
    void onShownReset();
    void syncMarkerControls();
    void saveMarkers(QSettings& settings) const;
    void restoreMarkers(QSettings& settings);

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
    QLabel* m_bandLabel = nullptr;
    QLabel* m_countLabel = nullptr;
    QLabel* m_pausedLabel = nullptr;
    QLabel* m_pointerLabel = nullptr;
    QTimer* m_statusTimer = nullptr;
    quint64 m_lastCount = 0;
    qint64 m_lastCountMs = 0;
    Acquisition* m_acquisition = nullptr;

    // ---- The analysis: channel and emitter docks, emitter marks, the report (windowanalysis.cpp)
public:
    AnalysisModel* analysis() const { return m_analysis; }
    ChannelTable* channelTable() const { return m_channelTable; }
    EmitterList* emitterList() const { return m_emitterList; }
    // Everything the report shows, as the window shows it now.
    ReportContent reportContent() const;
    bool saveReport(const QString& path, QString* error);

public slots:
    // The source the sweeps come from, as the report names it.
    void setSourceName(const QString& name) { m_sourceName = name; }

private:
    void createAnalysisDocks();
    void addReportAction(QMenu* file);
    void addAnalysisViewActions(QMenu* view);
    void updateEmitterMarks();
    // The channel table shows the channels of the overlay's width.
    void setAnalysisWidth(int widthMHz);
    void askAndSaveReport();

    AnalysisModel* m_analysis = nullptr;
    ChannelTable* m_channelTable = nullptr;
    EmitterList* m_emitterList = nullptr;
    QDockWidget* m_channelDock = nullptr;
    QDockWidget* m_emitterDock = nullptr;
    const Band* m_analysisBand = nullptr;
    QString m_sourceName;
};

} // namespace wsa::desktop

#endif
