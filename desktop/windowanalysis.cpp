// The window's part of the analysis: the channel table and emitter list docks, the emitters'
// marks over the spectrum, and the report.
#include <QAction>
#include <QDateTime>
#include <QDir>
#include <QDockWidget>
#include <QFileDialog>
#include <QMenu>
#include <QSplitter>
#include <QStandardPaths>

#include "analysismodel.h"
#include "channeltable.h"
#include "colormap.h"
#include "emitterlist.h"
#include "instrumentwindow.h"
#include "markers.h"
#include "spectrumview.h"
#include "sweepfeed.h"

namespace wsa::desktop
{

void InstrumentWindow::createAnalysisDocks()
{
    m_analysis = new AnalysisModel(this);
    m_channelTable = new ChannelTable(m_analysis);
    m_channelTable->setWidth(m_settings.channelWidthMHz);
    m_emitterList = new EmitterList(m_analysis);
    auto dock = [this](QDockWidget*& d, const QString& title, const char* name, QWidget* w) {
        d = new QDockWidget(title);
        d->setObjectName(QLatin1String(name));
        d->setWidget(w);
        d->setFeatures(QDockWidget::DockWidgetMovable | QDockWidget::DockWidgetFloatable |
                       QDockWidget::DockWidgetClosable);
        addDockWidget(Qt::BottomDockWidgetArea, d);
    };
    dock(m_channelDock, tr("Channels"), "channels", m_channelTable);
    dock(m_emitterDock, tr("Emitters"), "emitters", m_emitterList);
    // One table at a time leaves the views their room and paints half the cells.
    tabifyDockWidget(m_channelDock, m_emitterDock);
    m_channelDock->raise();
    connect(m_analysis, &AnalysisModel::changed, this, &InstrumentWindow::updateEmitterMarks);
    // What the analysis said of one band means nothing on another.
    m_analysisBand = &m_feed->shown().band();
    connect(m_feed, &SweepFeed::shownReset, this, [this] {
        if (&m_feed->shown().band() != m_analysisBand) {
            m_analysisBand = &m_feed->shown().band();
            m_analysis->clear();
        }
    });
}

void InstrumentWindow::addAnalysisViewActions(QMenu* view)
{
    view->addSeparator();
    view->addAction(m_channelDock->toggleViewAction());
    view->addAction(m_emitterDock->toggleViewAction());
}

void InstrumentWindow::addReportAction(QMenu* file)
{
    QAction* report = file->addAction(tr("Save &report..."));
    report->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_P));
    connect(report, &QAction::triggered, this, &InstrumentWindow::askAndSaveReport);
}

void InstrumentWindow::setAnalysisWidth(int widthMHz)
{
    m_channelTable->setWidth(widthMHz);
}

void InstrumentWindow::updateEmitterMarks()
{
    std::vector<EmitterMark> marks;
    for (const EmitterRow& e : m_analysis->emitters()) {
        if (!e.active)
            continue;
        QString label = emitterKindText(e.kind);
        if (e.channel > 0)
            label = tr("%1 ch %2").arg(label).arg(e.channel);
        marks.push_back({(e.centerMHz - e.widthMHz / 2) * 1e6, (e.centerMHz + e.widthMHz / 2) * 1e6,
                         label});
    }
    m_spectrum->setEmitterMarks(std::move(marks));
}

ReportContent InstrumentWindow::reportContent() const
{
    const SweepStore& model = m_feed->shown();
    ReportContent c;
    c.picture = m_views->grab().toImage();
    c.band = QString::fromUtf8(model.band().name);
    c.source = m_sourceName;
    c.time = QDateTime::currentDateTime();
    c.sweeps = m_analysis->sweeps();
    c.noiseFloorDbm = m_analysis->noiseFloorDbm();
    for (int i = 0; i < Markers::kCount; ++i) {
        const MarkerReading r = m_markers->reading(model, i, m_settings.channelWidthMHz);
        if (r.valid)
            c.markers.append({i + 1, r.hz, r.channel, double(r.dbm),
                              traceName(m_markers->marker(i).trace)});
    }
    c.channelWidthMHz = m_settings.channelWidthMHz;
    c.channels = m_analysis->channels(c.channelWidthMHz);
    c.freestChannel = m_analysis->freestChannel(c.channelWidthMHz);
    c.emitters = m_analysis->emitters();
    return c;
}

bool InstrumentWindow::saveReport(const QString& path, QString* error)
{
    return wsa::desktop::saveReport(reportContent(), path, error);
}

void InstrumentWindow::askAndSaveReport()
{
    const QString dir = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    const QString stamp = QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    const QString suggested = QDir(dir).filePath(
        QStringLiteral("wsa-report-%1-%2.html").arg(QString::fromUtf8(m_feed->shown().band().key), stamp));
    const QString path = QFileDialog::getSaveFileName(this, tr("Save report"), suggested,
                                                      tr("HTML files (*.html)"));
    if (path.isEmpty())
        return;
    QString error;
    if (!saveReport(path, &error))
        showError(error);
}

} // namespace wsa::desktop
