// The window's side of acquisition: which source and band the engine measures, the Source menu,
// the replay bar, recording, the status bar's source, recording and offset fields, and the
// messages about the engine. Changing source or band restarts the engine.
#ifndef DESKTOP_ACQUISITION_H
#define DESKTOP_ACQUISITION_H

#include <QObject>

#include "enginelink.h"

class QAction;
class QActionGroup;
class QLabel;
class QMainWindow;
class QMenu;
class QSettings;
class QToolButton;

namespace wsa::desktop
{

class MessageBar;
class ReplayBar;
class SweepFeed;

class Acquisition : public QObject
{
    Q_OBJECT
public:
    Acquisition(QMainWindow* window, SweepFeed* feed, EngineLink* link);

    // The source as the user chose it: its title, or a recording's file name.
    QString sourceText() const;
    EngineLink* link() const { return m_link; }
    const EngineSetup& setup() const { return m_setup; }
    QMenu* menu() const { return m_menu; }
    MessageBar* messageBar() const { return m_messages; }
    ReplayBar* replayBar() const { return m_replay; }
    // "HackRF, 5 GHz"; a replay names its file.
    QString description() const;

    // Source, band, recording file and wish, kept between runs.
    void saveSettings(QSettings& settings) const;
    // What the settings hold, applied over `setup` (a recording only while it can be read).
    static EngineSetup restoreSetup(QSettings& settings, EngineSetup setup);

public slots:
    void start(const wsa::desktop::EngineSetup& setup);
    void chooseSource(const QString& key, const QString& file = QString());
    // Refused, with the reason, for a recording of another band.
    void chooseBand(const wsa::Band& band);
    void setRecordingWanted(bool on);
    void openRecording();
    void showMessage(const wsa::desktop::LinkMessage& message);

signals:
    void descriptionChanged(const QString& text);

private:
    void createMenu();
    void createStatusWidgets();
    void connectLink();
    void onStatus(StatusCode code, const QString& text);
    void onRecording(qint64 bytes, const QString& path);
    void syncControls();
    void openHandheld();

    QMainWindow* m_window;
    SweepFeed* m_feed;
    EngineLink* m_link;
    EngineSetup m_setup;
    const Band* m_replayBand = nullptr; // the band a recording announced
    QMenu* m_menu = nullptr;
    QActionGroup* m_sources = nullptr;
    QActionGroup* m_bands = nullptr;
    QAction* m_record = nullptr;
    MessageBar* m_messages;
    ReplayBar* m_replay;
    QLabel* m_sourceLabel = nullptr;
    QToolButton* m_recordButton = nullptr;
    QToolButton* m_fileButton = nullptr;
    QLabel* m_offsetLabel = nullptr;
    QString m_recordingPath;
    bool m_liveRecord = true; // the wish for live sources; a replay starts unrecorded
};

} // namespace wsa::desktop

#endif
