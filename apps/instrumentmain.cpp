#include "instrumentmain.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QIcon>
#include <QSettings>
#include <unistd.h>

#include "acquisition.h"
#include "instrumentwindow.h"
#include "paths.h"
#include "sweepfeed.h"
#include "translation.h"
#include "wsa.h"

namespace standalone
{

void quitOnSignals();

namespace
{

using namespace wsa::desktop;

// The command line wins over what was kept; recording stays available (into the default
// directory) even when it starts off, so that it can be turned on from the window.
EngineSetup setupFor(const Choice& c, QSettings& settings, const QString& workDir)
{
    EngineSetup s;
    s.enginePath = QString::fromLocal8Bit(wsaEnginePath());
    s.socketDir = workDir;
    s.source = QStringLiteral("sim");
    s.band = &wsa::allBands().front();
    s = Acquisition::restoreSetup(settings, s);
    if (!c.source.isEmpty()) {
        s.source = c.source;
        s.replayFile = QFileInfo(c.replayFile).absoluteFilePath();
        s.record = c.source != QLatin1String("replay");
    }
    if (const wsa::Band* band = wsa::findBand(c.band.toStdString()))
        s.band = band;
    const QByteArray fromEnvironment = qgetenv("WSA_RECORD_DIR");
    s.recordDir = !c.recordDir.isEmpty()       ? QFileInfo(c.recordDir).absoluteFilePath()
                  : !fromEnvironment.isEmpty() ? QFile::decodeName(fromEnvironment)
                                               : wsaDesktopRecordDir();
    // The window takes every sweep offered up to this rate; the environment may ask for another.
    bool ok = false;
    const double rate = qEnvironmentVariable("WSA_OUTPUT_RATE").toDouble(&ok);
    if (ok && rate >= 0.1 && rate <= 1000)
        s.outputRate = rate;
    if (c.record)
        s.record = true;
    if (c.noRecord ||
        (qEnvironmentVariableIsSet("WSA_RECORD_DIR") && fromEnvironment.isEmpty() && !c.record))
        s.record = false;
    return s;
}

} // namespace

int runInstrument(const Choice& choice)
{
    QGuiApplication::setDesktopFileName(QStringLiteral("org.wsa_analyzer.wsa"));
    QApplication::setWindowIcon(QIcon::fromTheme(QStringLiteral("org.wsa_analyzer.wsa")));
    QCoreApplication::setOrganizationName(QStringLiteral("wsa"));
    wsaInstallTranslator();
    installTranslator();
    const QString workDir = wsaEnterDesktopWorkDir();
    QSettings settings;
    const EngineSetup setup = setupFor(choice, settings, workDir);
    SweepFeed feed(*setup.band);
    InstrumentWindow window(&feed);
    window.restoreSettings(settings);
    EngineLink link;
    window.attachEngine(&link, setup);
    if (workDir.isEmpty())
        window.acquisition()->showMessage(LinkMessages::noWorkDir());
    quitOnSignals();
    window.show();
    const int status = QApplication::exec();
    window.saveSettings(settings);
    link.stop();
    if (!workDir.isEmpty())
        (void)rmdir(QFile::encodeName(workDir).constData());
    return status;
}

} // namespace standalone
