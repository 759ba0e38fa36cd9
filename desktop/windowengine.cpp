// The window's engine: the acquisition's menu, bars and status fields placed in the window, and
// the markers kept between runs.
#include <QMenuBar>
#include <QSettings>
#include <QVBoxLayout>
#include <cmath>

#include "acquisition.h"
#include "analysismodel.h"
#include "enginelink.h"
#include "instrumentwindow.h"
#include "markers.h"
#include "messagebar.h"
#include "replaybar.h"
#include "sweepfeed.h"

namespace wsa::desktop
{

void InstrumentWindow::attachEngine(EngineLink* link, const EngineSetup& setup)
{
    if (m_acquisition)
        return;
    m_acquisition = new Acquisition(this, m_feed, link);
    // After File, where a desktop program keeps what it opens.
    const QList<QAction*> menus = menuBar()->actions();
    menuBar()->insertMenu(menus.size() > 1 ? menus[1] : nullptr, m_acquisition->menu());
    addToolBar(Qt::BottomToolBarArea, m_acquisition->replayBar());
    // The message bar above the views: seen without covering them.
    auto* central = new QWidget;
    auto* column = new QVBoxLayout(central);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(m_acquisition->messageBar());
    column->addWidget(takeCentralWidget(), 1);
    setCentralWidget(central);
    connect(m_acquisition, &Acquisition::descriptionChanged, this, [this](const QString& text) {
        setWindowTitle(tr("Wi-Fi Spectrum Analyzer - %1").arg(text));
        setSourceName(m_acquisition->sourceText());
    });
    connect(link, &EngineLink::analysis, m_analysis, &AnalysisModel::takeJson);
    m_acquisition->start(setup);
}

void InstrumentWindow::saveMarkers(QSettings& s) const
{
    s.beginWriteArray(QStringLiteral("markers"), Markers::kCount);
    for (int i = 0; i < Markers::kCount; ++i) {
        s.setArrayIndex(i);
        const Marker& m = m_markers->marker(i);
        s.setValue(QStringLiteral("on"), m.on);
        s.setValue(QStringLiteral("hz"), m.hz);
        s.setValue(QStringLiteral("trace"), int(m.trace));
        s.setValue(QStringLiteral("followsPeak"), m.followsPeak);
    }
    s.endArray();
    s.setValue(QStringLiteral("activeMarker"), m_markers->active());
}

void InstrumentWindow::restoreMarkers(QSettings& s)
{
    // Checked as any input: a trace out of range or a frequency outside the band is not taken.
    const int count = std::min(s.beginReadArray(QStringLiteral("markers")), Markers::kCount);
    const SweepStore& model = m_feed->shown();
    for (int i = 0; i < count; ++i) {
        s.setArrayIndex(i);
        const double hz = s.value(QStringLiteral("hz")).toDouble();
        const int trace = s.value(QStringLiteral("trace")).toInt();
        if (!s.value(QStringLiteral("on")).toBool() || !std::isfinite(hz) ||
            hz < model.band().lowHz || hz > model.band().highHz)
            continue;
        m_markers->place(i, model, hz);
        if (trace >= 0 && trace < kTraceCount)
            m_markers->setTrace(i, Trace(trace));
        m_markers->setFollowsPeak(i, s.value(QStringLiteral("followsPeak")).toBool());
    }
    s.endArray();
    const int active = s.value(QStringLiteral("activeMarker"), 0).toInt();
    m_markers->setActive(std::clamp(active, 0, Markers::kCount - 1));
}

} // namespace wsa::desktop
