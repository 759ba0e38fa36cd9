// The window's menus, shortcuts, status bar, exports and kept settings.
#include <QActionGroup>
#include <QDateTime>
#include <QDir>
#include <QFileDialog>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QSettings>
#include <QSplitter>
#include <QStandardPaths>
#include <QStatusBar>
#include <QTimer>

#include "instrumentwindow.h"
#include "acquisition.h"
#include "densityview.h"
#include "markers.h"
#include "spectrumview.h"
#include "waterfallview.h"
#include "sweepfeed.h"
#include "traceexport.h"

namespace wsa::desktop
{

void InstrumentWindow::createMenus()
{
    menuBar()->addMenu(createFileMenu());
    menuBar()->addMenu(createViewMenu());
    menuBar()->addMenu(createMeasureMenu());
    QMenu* help = menuBar()->addMenu(tr("&Help"));
    connect(help->addAction(tr("&Keys and mouse")), &QAction::triggered, this, [this] {
        auto* box = new QMessageBox(QMessageBox::Information, windowTitle(), keysAndMouse(),
                                    QMessageBox::Close, this);
        box->setAttribute(Qt::WA_DeleteOnClose);
        box->setModal(false);
        box->show();
    });
}

QString InstrumentWindow::keysAndMouse()
{
    return tr(
        "<table>"
        "<tr><td>Click, drag</td><td>place the active marker, or pick up a marker</td></tr>"
        "<tr><td>1 to 4</td><td>choose the active marker</td></tr>"
        "<tr><td>Left, Right</td><td>move it by one cell (Shift: ten)</td></tr>"
        "<tr><td>P, Ctrl+Left, Ctrl+Right</td><td>highest peak, next peak left, right</td></tr>"
        "<tr><td>Delete</td><td>switch the active marker off</td></tr>"
        "<tr><td>Wheel on a view</td><td>zoom about the pointer (Shift: pan)</td></tr>"
        "<tr><td>Wheel on the level axis</td><td>shift the levels (Ctrl: zoom)</td></tr>"
        "<tr><td>Ctrl+0</td><td>whole band</td></tr>"
        "<tr><td>Space</td><td>pause the picture; acquisition goes on</td></tr>"
        "<tr><td>Ctrl+R</td><td>reset average, maximum and minimum</td></tr>"
        "<tr><td>Ctrl+1 to Ctrl+4</td><td>all views, spectrum, density, waterfall</td></tr>"
        "<tr><td>Ctrl+S, Ctrl+Shift+S</td><td>export the picture, the traces</td></tr>"
        "<tr><td>Ctrl+P</td><td>save a report: picture, markers, channels, emitters</td></tr>"
        "<tr><td>F11, Ctrl+Q</td><td>full screen, quit</td></tr>"
        "</table>");
}

QMenu* InstrumentWindow::createFileMenu()
{
    auto* menu = new QMenu(tr("&File"), this);
    QAction* picture = menu->addAction(tr("Export &picture..."));
    picture->setShortcut(QKeySequence::Save);
    connect(picture, &QAction::triggered, this, [this] { askAndExport(true); });
    QAction* csv = menu->addAction(tr("Export &traces (CSV)..."));
    csv->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S));
    connect(csv, &QAction::triggered, this, [this] { askAndExport(false); });
    addReportAction(menu);
    menu->addSeparator();
    QAction* quit = menu->addAction(tr("&Quit"));
    quit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
    connect(quit, &QAction::triggered, this, &QWidget::close);
    return menu;
}

QMenu* InstrumentWindow::createViewMenu()
{
    auto* menu = new QMenu(tr("&View"), this);
    auto* group = new QActionGroup(menu);
    const std::pair<ViewMode, QString> modes[] = {{ViewMode::All, tr("&All views")},
                                                  {ViewMode::Spectrum, tr("&Spectrum")},
                                                  {ViewMode::Density, tr("&Density")},
                                                  {ViewMode::Waterfall, tr("&Waterfall")}};
    int key = Qt::Key_1;
    for (const auto& [mode, text] : modes) {
        QAction* a = menu->addAction(text);
        a->setCheckable(true);
        a->setChecked(mode == ViewMode::All);
        a->setShortcut(QKeySequence(Qt::CTRL | Qt::Key(key++)));
        group->addAction(a);
        connect(a, &QAction::triggered, this, [this, m = mode] { m_controls->setViewMode(m); });
        connect(m_controls, &ControlPanel::viewModeChanged, a,
                [a, m = mode](ViewMode now) { a->setChecked(now == m); });
    }
    menu->addSeparator();
    QAction* in = menu->addAction(tr("Zoom &in"));
    in->setShortcut(QKeySequence::ZoomIn);
    connect(in, &QAction::triggered, this, [this] { zoom(0.5); });
    QAction* out = menu->addAction(tr("Zoom &out"));
    out->setShortcut(QKeySequence::ZoomOut);
    connect(out, &QAction::triggered, this, [this] { zoom(2); });
    QAction* whole = menu->addAction(tr("Whole &band"));
    whole->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_0));
    connect(whole, &QAction::triggered, this, [this] { setSpan(0, 0); });
    addAnalysisViewActions(menu);
    menu->addSeparator();
    QAction* full = menu->addAction(tr("&Full screen"));
    full->setShortcut(QKeySequence(Qt::Key_F11));
    connect(full, &QAction::triggered, this,
            [this] { setWindowState(windowState() ^ Qt::WindowFullScreen); });
    return menu;
}

QMenu* InstrumentWindow::createMeasureMenu()
{
    auto* menu = new QMenu(tr("&Measure"), this);
    QAction* pause = menu->addAction(tr("&Pause"));
    pause->setCheckable(true);
    pause->setShortcut(QKeySequence(Qt::Key_Space));
    connect(pause, &QAction::toggled, this, &InstrumentWindow::setPaused);
    connect(m_controls, &ControlPanel::pauseToggled, pause, &QAction::setChecked);
    menu->addSeparator();
    auto add = [&](const QString& text, const QKeySequence& key, void (ControlPanel::*sig)()) {
        QAction* a = menu->addAction(text);
        a->setShortcut(key);
        connect(a, &QAction::triggered, m_controls, sig);
    };
    add(tr("Peak &search"), QKeySequence(Qt::Key_P), &ControlPanel::peakSearch);
    add(tr("Next peak &left"), QKeySequence(Qt::CTRL | Qt::Key_Left), &ControlPanel::nextPeakLeft);
    add(tr("Next peak &right"), QKeySequence(Qt::CTRL | Qt::Key_Right),
        &ControlPanel::nextPeakRight);
    add(tr("Marker &off"), QKeySequence(Qt::Key_Delete), &ControlPanel::markerOff);
    menu->addSeparator();
    add(tr("Reset &holds"), QKeySequence(Qt::CTRL | Qt::Key_R), &ControlPanel::resetHolds);
    add(tr("&Clear density"), QKeySequence(), &ControlPanel::resetDensity);
    return menu;
}

void InstrumentWindow::createStatusBar()
{
    m_bandLabel = new QLabel;
    m_countLabel = new QLabel;
    m_pausedLabel = new QLabel(tr("Paused: the picture is frozen, acquisition goes on"));
    m_pausedLabel->setVisible(false);
    m_pointerLabel = new QLabel;
    for (PlotView* v : {static_cast<PlotView*>(m_spectrum), static_cast<PlotView*>(m_density),
                        static_cast<PlotView*>(m_waterfall)})
        connect(v, &PlotView::pointerMoved, m_pointerLabel, &QLabel::setText);
    statusBar()->addWidget(m_bandLabel);
    statusBar()->addWidget(m_countLabel);
    statusBar()->addWidget(m_pointerLabel, 1);
    statusBar()->addPermanentWidget(m_pausedLabel);
    // Twice a second rather than per sweep: text costs more than a sweep's pixels.
    m_statusTimer = new QTimer(this);
    m_statusTimer->setInterval(500);
    connect(m_statusTimer, &QTimer::timeout, this, &InstrumentWindow::updateStatus);
    m_statusTimer->start();
    updateStatus();
}

void InstrumentWindow::updateStatus()
{
    const SweepStore& model = m_feed->live();
    const SweepGrid grid = model.grid();
    m_bandLabel->setText(tr("%1: %2 cells of %3 kHz")
                             .arg(QString::fromUtf8(model.band().name))
                             .arg(grid.bins)
                             .arg(grid.stepHz / 1e3, 0, 'f', 1));
    const quint64 count = model.sweepCount();
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    QString rate;
    if (m_lastCountMs > 0 && now > m_lastCountMs && count >= m_lastCount)
        rate =
            tr(", %1 per second")
                .arg(double(count - m_lastCount) * 1000 / double(now - m_lastCountMs), 0, 'f', 1);
    m_countLabel->setText((count == 1 ? tr("1 sweep") : tr("%1 sweeps").arg(count)) + rate);
    m_lastCount = count;
    m_lastCountMs = now;
    m_pausedLabel->setVisible(m_feed->isPaused());
}

bool InstrumentWindow::exportPicture(const QString& path, QString* error)
{
    return savePicture(m_views->grab().toImage(), path, error);
}

bool InstrumentWindow::exportTraces(const QString& path, QString* error)
{
    return saveTracesCsv(m_feed->shown(), path, error);
}

void InstrumentWindow::askAndExport(bool picture)
{
    const QString dir = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    const QString stamp = QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    const QString suggested =
        QDir(dir).filePath(QStringLiteral("wsa-%1-%2.%3")
                               .arg(QString::fromUtf8(m_feed->shown().band().key), stamp,
                                    picture ? QStringLiteral("png") : QStringLiteral("csv")));
    const QString path = QFileDialog::getSaveFileName(
        this, picture ? tr("Export picture") : tr("Export traces"), suggested,
        picture ? tr("PNG pictures (*.png)") : tr("CSV files (*.csv)"));
    if (path.isEmpty())
        return;
    QString error;
    if (!(picture ? exportPicture(path, &error) : exportTraces(path, &error)))
        showError(error);
}

void InstrumentWindow::showError(const QString& text)
{
    // Window-modal and non-blocking: no nested event loop that could outlive the window.
    auto* box = new QMessageBox(QMessageBox::Warning, windowTitle(), text, QMessageBox::Ok, this);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

void InstrumentWindow::saveSettings(QSettings& s) const
{
    s.beginGroup(QStringLiteral("window"));
    s.setValue(QStringLiteral("geometry"), saveGeometry());
    s.setValue(QStringLiteral("state"), saveState());
    s.setValue(QStringLiteral("views"), m_views->saveState());
    s.setValue(QStringLiteral("viewMode"), int(m_controls->viewMode()));
    s.endGroup();
    s.beginGroup(QStringLiteral("display"));
    s.setValue(QStringLiteral("topDbm"), m_settings.topDbm);
    s.setValue(QStringLiteral("bottomDbm"), m_settings.bottomDbm);
    s.setValue(QStringLiteral("channelWidthMHz"), m_settings.channelWidthMHz);
    s.setValue(QStringLiteral("showChannels"), m_settings.showChannels);
    for (int t = 0; t < kTraceCount; ++t)
        s.setValue(QStringLiteral("trace%1").arg(t), m_settings.traceShown[t]);
    s.setValue(QStringLiteral("averaging"), m_controls->averaging());
    s.endGroup();
    saveMarkers(s);
    if (m_acquisition)
        m_acquisition->saveSettings(s);
}

void InstrumentWindow::restoreSettings(QSettings& s)
{
    s.beginGroup(QStringLiteral("window"));
    restoreGeometry(s.value(QStringLiteral("geometry")).toByteArray());
    restoreState(s.value(QStringLiteral("state")).toByteArray());
    m_views->restoreState(s.value(QStringLiteral("views")).toByteArray());
    const int mode = s.value(QStringLiteral("viewMode"), 0).toInt();
    m_controls->setViewMode(mode >= 0 && mode <= int(ViewMode::Waterfall) ? ViewMode(mode)
                                                                          : ViewMode::All);
    s.endGroup();
    // Values from the file are checked as any input: the panel clamps and orders the range,
    // and a width the band does not have is not taken.
    s.beginGroup(QStringLiteral("display"));
    DisplaySettings d = m_settings;
    d.topDbm = s.value(QStringLiteral("topDbm"), d.topDbm).toDouble();
    d.bottomDbm = s.value(QStringLiteral("bottomDbm"), d.bottomDbm).toDouble();
    d.channelWidthMHz = s.value(QStringLiteral("channelWidthMHz"), d.channelWidthMHz).toInt();
    d.showChannels = s.value(QStringLiteral("showChannels"), d.showChannels).toBool();
    for (int t = 0; t < kTraceCount; ++t)
        d.traceShown[t] = s.value(QStringLiteral("trace%1").arg(t), d.traceShown[t]).toBool();
    m_controls->setAveraging(s.value(QStringLiteral("averaging"), 10).toInt());
    s.endGroup();
    m_controls->setSettings(d);
    setSettings(m_controls->settings());
    restoreMarkers(s);
}

} // namespace wsa::desktop
