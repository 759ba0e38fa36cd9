#include "acquisition.h"

#include <QActionGroup>
#include <QDesktopServices>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QLocale>
#include <QMainWindow>
#include <QMenu>
#include <QProcess>
#include <QSettings>
#include <QStatusBar>
#include <QToolButton>
#include <QUrl>

#include "messagebar.h"
#include "replaybar.h"
#include "sources.h"
#include "sweepfeed.h"

namespace wsa::desktop
{

Acquisition::Acquisition(QMainWindow* window, SweepFeed* feed, EngineLink* link)
    : QObject(window), m_window(window), m_feed(feed), m_link(link), m_messages(new MessageBar),
      m_replay(new ReplayBar)
{
    createMenu();
    createStatusWidgets();
    connectLink();
    m_replay->setVisible(false);
}

void Acquisition::createMenu()
{
    m_menu = new QMenu(tr("&Source"), m_window);
    m_sources = new QActionGroup(m_menu);
    for (const SourceKind& kind : sourceKinds()) {
        QAction* a =
            m_menu->addAction(kind.takesFile ? tr("Open &recording...") : sourceTitle(kind));
        a->setCheckable(true);
        a->setData(QString::fromLatin1(kind.key));
        m_sources->addAction(a);
        if (kind.takesFile) {
            a->setShortcut(QKeySequence::Open);
            connect(a, &QAction::triggered, this, &Acquisition::openRecording);
        } else {
            connect(a, &QAction::triggered, this,
                    [this, key = QString::fromLatin1(kind.key)] { chooseSource(key); });
        }
    }
    m_menu->addSeparator();
    m_bands = new QActionGroup(m_menu);
    for (const Band& band : allBands()) {
        QAction* a = m_menu->addAction(QString::fromUtf8(band.name));
        a->setCheckable(true);
        a->setData(int(band.id));
        m_bands->addAction(a);
        connect(a, &QAction::triggered, this, [this, b = &band] { chooseBand(*b); });
    }
    m_menu->addSeparator();
    m_record = m_menu->addAction(tr("&Record"));
    m_record->setCheckable(true);
    m_record->setToolTip(tr("Record every sweep shown into a new file"));
    connect(m_record, &QAction::triggered, this, &Acquisition::setRecordingWanted);
    m_menu->addSeparator();
    connect(m_menu->addAction(tr("Open &handheld view")), &QAction::triggered, this,
            &Acquisition::openHandheld);
}

void Acquisition::createStatusWidgets()
{
    m_sourceLabel = new QLabel;
    m_recordButton = new QToolButton;
    m_recordButton->setDefaultAction(m_record);
    m_recordButton->setAutoRaise(true);
    m_fileButton = new QToolButton;
    m_fileButton->setAutoRaise(true);
    m_fileButton->setToolTip(tr("Open the recording's folder"));
    connect(m_fileButton, &QToolButton::clicked, this, [this] {
        if (!m_recordingPath.isEmpty())
            QDesktopServices::openUrl(
                QUrl::fromLocalFile(QFileInfo(m_recordingPath).absolutePath()));
    });
    const QString offset = qEnvironmentVariable("WSA_LEVEL_OFFSET_DB");
    m_offsetLabel = new QLabel(offset.isEmpty() ? tr("Level offset: the source's own")
                                                : tr("Level offset: %1 dB").arg(offset));
    m_offsetLabel->setToolTip(tr("Set with WSA_LEVEL_OFFSET_DB"));
    QStatusBar* bar = m_window->statusBar();
    bar->insertWidget(0, m_sourceLabel);
    bar->addPermanentWidget(m_offsetLabel);
    bar->addPermanentWidget(m_recordButton);
    bar->addPermanentWidget(m_fileButton);
}

void Acquisition::connectLink()
{
    connect(m_link, &EngineLink::configured, this, [this](const Band& band, const QString&) {
        if (m_setup.source == QLatin1String("replay"))
            m_replayBand = &band;
        m_feed->configure(band);
        syncControls();
    });
    connect(m_link, &EngineLink::sweep, m_feed, &SweepFeed::addSweep);
    connect(m_link, &EngineLink::status, this, &Acquisition::onStatus);
    connect(m_link, &EngineLink::recording, this, &Acquisition::onRecording);
    connect(m_link, &EngineLink::replay, m_replay, &ReplayBar::setState);
    connect(m_link, &EngineLink::message, this, &Acquisition::showMessage);
    connect(m_link, &EngineLink::ended, this, [this] { onRecording(0, QString()); });
    connect(m_replay, &ReplayBar::control, m_link, &EngineLink::sendControl);
}

void Acquisition::start(const EngineSetup& setup)
{
    m_setup = setup;
    if (setup.source != QLatin1String("replay"))
        m_liveRecord = setup.record;
    m_replayBand = nullptr;
    m_messages->clear();
    m_link->start(m_setup);
    syncControls();
}

void Acquisition::chooseSource(const QString& key, const QString& file)
{
    const SourceKind* kind = findSourceKind(key);
    if (!kind)
        return;
    EngineSetup s = m_setup;
    s.source = key;
    s.replayFile = kind->takesFile ? file : QString();
    // A replay is recorded only when asked; a live source as the user last chose.
    s.record = !kind->takesFile && m_liveRecord;
    start(s);
}

void Acquisition::chooseBand(const Band& band)
{
    if (m_setup.source == QLatin1String("replay")) {
        if (m_replayBand && m_replayBand != &band)
            showMessage(LinkMessages::bandOfRecording(QString::fromUtf8(m_replayBand->name)));
        syncControls();
        return;
    }
    if (m_setup.band == &band && m_link->isRunning())
        return;
    EngineSetup s = m_setup;
    s.band = &band;
    start(s);
}

void Acquisition::setRecordingWanted(bool on)
{
    m_setup.record = on;
    if (m_setup.source != QLatin1String("replay"))
        m_liveRecord = on;
    m_link->setRecording(on);
    syncControls();
}

void Acquisition::openRecording()
{
    const QString dir = m_setup.recordDir.isEmpty() ? QString() : m_setup.recordDir;
    const QString file = QFileDialog::getOpenFileName(
        m_window, tr("Open recording"), dir, tr("Sweep recordings (*.csv);;All files (*)"));
    syncControls();
    if (file.isEmpty())
        return;
    const QString problem = recordingProblem(file);
    if (!problem.isEmpty()) {
        showMessage({LinkMessage::Severity::Error,
                     tr("The recording %1 %2.").arg(QFileInfo(file).fileName(), problem)});
        return;
    }
    chooseSource(QStringLiteral("replay"), file);
}

void Acquisition::showMessage(const LinkMessage& message)
{
    m_messages->showMessage(message);
}

void Acquisition::onStatus(StatusCode code, const QString& text)
{
    const Band* band = m_setup.band;
    showMessage(LinkMessages::status(code, text, band ? QString::fromUtf8(band->name) : QString()));
}

void Acquisition::onRecording(qint64 bytes, const QString& path)
{
    m_recordingPath = path;
    m_fileButton->setVisible(!path.isEmpty());
    m_fileButton->setText(tr("%1, %2").arg(
        QFileInfo(path).fileName(), QLocale().formattedDataSize(std::max<qint64>(bytes, 0))));
    m_record->setChecked(!path.isEmpty());
}

QString Acquisition::sourceText() const
{
    const SourceKind* kind = findSourceKind(m_setup.source);
    return !kind             ? m_setup.source
           : kind->takesFile ? QFileInfo(m_setup.replayFile).fileName()
                             : sourceTitle(*kind);
}

QString Acquisition::description() const
{
    const QString source = sourceText();
    const Band* band = m_replayBand ? m_replayBand : m_setup.band;
    return band ? tr("%1, %2").arg(source, QString::fromUtf8(band->name)) : source;
}

void Acquisition::syncControls()
{
    for (QAction* a : m_sources->actions())
        a->setChecked(a->data().toString() == m_setup.source);
    const Band* band = m_replayBand ? m_replayBand : m_setup.band;
    for (QAction* a : m_bands->actions())
        a->setChecked(band && a->data().toInt() == int(band->id));
    m_record->setEnabled(!m_setup.recordDir.isEmpty());
    m_record->setChecked(!m_recordingPath.isEmpty());
    m_replay->setVisible(m_setup.source == QLatin1String("replay"));
    m_sourceLabel->setText(sourceText()); // the band label beside it names the band
    emit descriptionChanged(description());
}

void Acquisition::openHandheld()
{
    // A process of its own: the handheld analyzer keeps its process-wide state and its own
    // engine, and closing either window leaves the other.
    QStringList args{QStringLiteral("--handheld"), QStringLiteral("--source"), m_setup.source};
    if (!m_setup.replayFile.isEmpty())
        args << QStringLiteral("--replay") << m_setup.replayFile;
    if (!QProcess::startDetached(QCoreApplication::applicationFilePath(), args))
        showMessage({LinkMessage::Severity::Error, tr("The handheld view could not be started.")});
}

void Acquisition::saveSettings(QSettings& s) const
{
    s.beginGroup(QStringLiteral("source"));
    s.setValue(QStringLiteral("key"), m_setup.source);
    s.setValue(QStringLiteral("band"), m_setup.band ? QString::fromUtf8(m_setup.band->key) : "");
    s.setValue(QStringLiteral("recording"), m_setup.replayFile);
    s.setValue(QStringLiteral("record"), m_liveRecord);
    s.endGroup();
}

EngineSetup Acquisition::restoreSetup(QSettings& s, EngineSetup setup)
{
    s.beginGroup(QStringLiteral("source"));
    const QString key = s.value(QStringLiteral("key")).toString();
    const QString file = s.value(QStringLiteral("recording")).toString();
    const SourceKind* kind = findSourceKind(key);
    if (kind && (!kind->takesFile || recordingProblem(file).isEmpty())) {
        setup.source = key;
        setup.replayFile = kind->takesFile ? file : QString();
    }
    if (const Band* band = findBand(s.value(QStringLiteral("band")).toString().toStdString()))
        setup.band = band;
    setup.record = s.value(QStringLiteral("record"), setup.record).toBool();
    s.endGroup();
    if (setup.source == QLatin1String("replay"))
        setup.record = false;
    return setup;
}

} // namespace wsa::desktop
