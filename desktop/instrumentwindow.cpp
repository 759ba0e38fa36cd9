#include "instrumentwindow.h"

#include <QAction>
#include <QDockWidget>
#include <QScrollArea>
#include <QSplitter>
#include <cmath>

#include "densityview.h"
#include "markers.h"
#include "markertable.h"
#include "spectrumview.h"
#include "sweepfeed.h"
#include "sweepstore.h"
#include "waterfallview.h"

namespace wsa::desktop
{

InstrumentWindow::InstrumentWindow(SweepFeed* feed, QWidget* parent)
    : QMainWindow(parent), m_feed(feed), m_markers(new Markers(this))
{
    setWindowTitle(tr("Wi-Fi Spectrum Analyzer"));
    m_views = new QSplitter(Qt::Vertical);
    m_spectrum = new SpectrumView(feed, m_markers);
    m_density = new DensityView(feed);
    m_waterfall = new WaterfallView(feed);
    for (QWidget* v : {static_cast<QWidget*>(m_spectrum), static_cast<QWidget*>(m_density),
                       static_cast<QWidget*>(m_waterfall)})
        m_views->addWidget(v);
    m_views->setStretchFactor(0, 3);
    m_views->setStretchFactor(1, 2);
    m_views->setStretchFactor(2, 2);
    m_views->setChildrenCollapsible(false);
    setCentralWidget(m_views);

    m_controls = new ControlPanel;
    auto* scroll = new QScrollArea;
    scroll->setWidget(m_controls);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    auto* controlDock = new QDockWidget(tr("Controls"));
    controlDock->setObjectName(QStringLiteral("controls"));
    controlDock->setWidget(scroll);
    controlDock->setFeatures(QDockWidget::DockWidgetMovable | QDockWidget::DockWidgetFloatable);
    addDockWidget(Qt::RightDockWidgetArea, controlDock);

    m_table = new MarkerTable(feed, m_markers);
    auto* tableDock = new QDockWidget(tr("Markers"));
    tableDock->setObjectName(QStringLiteral("markers"));
    tableDock->setWidget(m_table);
    tableDock->setFeatures(QDockWidget::DockWidgetMovable | QDockWidget::DockWidgetFloatable);
    addDockWidget(Qt::BottomDockWidgetArea, tableDock);

    createAnalysisDocks();
    connectControls();
    createMenus();
    createStatusBar();
    onShownReset();
    resize(1280, 800);
    // Arrow keys and marker numbers go to the spectrum from the start.
    m_spectrum->setFocus();
}

void InstrumentWindow::connectControls()
{
    connect(m_feed, &SweepFeed::shownReset, this, &InstrumentWindow::onShownReset);
    // The panel knows nothing of the span; the views' wheels set it.
    connect(m_controls, &ControlPanel::settingsChanged, this, [this](DisplaySettings s) {
        s.spanLowHz = m_settings.spanLowHz;
        s.spanHighHz = m_settings.spanHighHz;
        setSettings(s);
    });
    for (PlotView* v : {static_cast<PlotView*>(m_spectrum), static_cast<PlotView*>(m_density),
                        static_cast<PlotView*>(m_waterfall)}) {
        connect(v, &PlotView::spanRequested, this, &InstrumentWindow::setSpan);
        connect(v, &PlotView::levelRangeRequested, this, &InstrumentWindow::setLevelRange);
    }
    connect(m_controls, &ControlPanel::viewModeChanged, this, &InstrumentWindow::setViewMode);
    connect(m_controls, &ControlPanel::pauseToggled, this, &InstrumentWindow::setPaused);
    connect(m_controls, &ControlPanel::averagingChanged, m_feed, &SweepFeed::setAveragingLength);
    connect(m_controls, &ControlPanel::resetHolds, m_feed, &SweepFeed::resetHolds);
    connect(m_controls, &ControlPanel::resetDensity, m_feed, &SweepFeed::resetDensity);
    connect(m_controls, &ControlPanel::activeMarkerChanged, m_markers, &Markers::setActive);
    connect(m_controls, &ControlPanel::markerTraceChanged, this,
            [this](Trace t) { m_markers->setTrace(m_markers->active(), t); });
    connect(m_controls, &ControlPanel::peakSearch, this,
            [this] { m_markers->toHighest(m_markers->active(), m_feed->shown()); });
    connect(m_controls, &ControlPanel::nextPeakLeft, this,
            [this] { m_markers->toNextLeft(m_markers->active(), m_feed->shown()); });
    connect(m_controls, &ControlPanel::nextPeakRight, this,
            [this] { m_markers->toNextRight(m_markers->active(), m_feed->shown()); });
    connect(m_controls, &ControlPanel::followPeakToggled, this, [this](bool follow) {
        m_markers->setFollowsPeak(m_markers->active(), follow);
        m_markers->followPeaks(m_feed->shown());
    });
    connect(m_feed, &SweepFeed::sweepShown, this,
            [this] { m_markers->followPeaks(m_feed->shown()); });
    connect(m_controls, &ControlPanel::markerOff, this,
            [this] { m_markers->setOn(m_markers->active(), false); });
    connect(m_markers, &Markers::changed, this, &InstrumentWindow::syncMarkerControls);
}

void InstrumentWindow::onShownReset()
{
    // A new band ends a pause; the controls follow.
    m_controls->setPaused(m_feed->isPaused());
    const Band& band = m_feed->shown().band();
    if (&band == m_band)
        return;
    // Another band: its channel widths, and markers that no longer point into it go.
    m_band = &band;
    m_settings.spanLowHz = m_settings.spanHighHz = 0;
    m_controls->setBand(band);
    m_markers->clear();
}

void InstrumentWindow::setSettings(const DisplaySettings& s)
{
    m_settings = s;
    m_controls->setSettings(s);
    for (PlotView* v : {static_cast<PlotView*>(m_spectrum), static_cast<PlotView*>(m_density),
                        static_cast<PlotView*>(m_waterfall)})
        v->setSettings(s);
    m_table->setChannelWidth(s.channelWidthMHz);
    setAnalysisWidth(s.channelWidthMHz);
}

void InstrumentWindow::setSpan(double lowHz, double highHz)
{
    DisplaySettings s = m_settings;
    s.spanLowHz = lowHz;
    s.spanHighHz = highHz;
    const Span shown = visibleSpan(m_feed->shown().grid(), s);
    const Span whole = visibleSpan(m_feed->shown().grid(), DisplaySettings());
    // The whole band is kept as "no span", so that it stays whole across bands.
    const bool full = shown.lowHz <= whole.lowHz && shown.highHz >= whole.highHz;
    s.spanLowHz = full ? 0 : shown.lowHz;
    s.spanHighHz = full ? 0 : shown.highHz;
    setSettings(s);
}

void InstrumentWindow::setLevelRange(double bottomDbm, double topDbm)
{
    if (!std::isfinite(bottomDbm) || !std::isfinite(topDbm))
        return;
    // A range pushed past an end keeps its width rather than being squeezed.
    const double width =
        std::clamp(topDbm - bottomDbm, 1.0,
                   double(SweepStore::kDensityTopDbm - SweepStore::kDensityBottomDbm));
    const double bottom = std::clamp(bottomDbm, double(SweepStore::kDensityBottomDbm),
                                     SweepStore::kDensityTopDbm - width);
    DisplaySettings s = m_settings;
    s.bottomDbm = std::round(bottom);
    s.topDbm = std::round(bottom + width);
    m_controls->setSettings(s);
    DisplaySettings checked = m_controls->settings();
    checked.spanLowHz = s.spanLowHz;
    checked.spanHighHz = s.spanHighHz;
    setSettings(checked);
}

void InstrumentWindow::zoom(double factor)
{
    const Span s = visibleSpan(m_feed->shown().grid(), m_settings);
    const double centre = (s.lowHz + s.highHz) / 2;
    setSpan(centre - s.widthHz() / 2 * factor, centre + s.widthHz() / 2 * factor);
}

void InstrumentWindow::setViewMode(ViewMode mode)
{
    m_spectrum->setVisible(mode == ViewMode::All || mode == ViewMode::Spectrum);
    m_density->setVisible(mode == ViewMode::All || mode == ViewMode::Density);
    m_waterfall->setVisible(mode == ViewMode::All || mode == ViewMode::Waterfall);
}

void InstrumentWindow::setPaused(bool paused)
{
    m_feed->setPaused(paused);
    m_controls->setPaused(paused);
    updateStatus();
}

void InstrumentWindow::syncMarkerControls()
{
    const int active = m_markers->active();
    const Marker& m = m_markers->marker(active);
    m_controls->setActiveMarker(active, m.trace, m.followsPeak);
}

} // namespace wsa::desktop
