// Stand-alone analyzer: the analyzer window without the host; in the desktop build the
// instrument window, with the analyzer as its handheld view.
//
// The analyzer starts its engine with a fixed command line, so the options here only set the
// engine's environment (WSA_SOURCE, WSA_REPLAY_FILE, WSA_RECORD_DIR), which it inherits. They are
// read before any window system is opened, so --help and --version work without a display.
#include <QApplication>
#include <QCommandLineParser>
#include <QFileInfo>
#include <QSocketNotifier>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

#include "bandplan.h"
#include "paths.h"
#include "sources.h"
#include "wsa.h"

#ifndef WSA_INSTRUMENT
#define WSA_INSTRUMENT 0
#endif
#if WSA_INSTRUMENT
#include "instrumentmain.h"
#include "statuslistener.h"
#else
namespace standalone
{
struct Choice {
};
} // namespace standalone
#endif

#ifndef WSA_VERSION
#define WSA_VERSION "unknown"
#endif

namespace standalone
{

// Exit status of a command line that cannot be used.
constexpr int kUsageError = 2;

// The band plan's keys for a message: "2g4, 5g or 6g".
[[maybe_unused]] QString bandKeys(const QString& orWord)
{
    QStringList keys;
    for (const wsa::Band& b : wsa::allBands())
        keys << QString::fromUtf8(b.key);
    const QString last = keys.takeLast();
    return keys.join(", ") + orWord + last;
}

int usageError(const QString& message)
{
    std::fprintf(stderr, "wsa: %s\nTry 'wsa --help'.\n", qPrintable(message));
    return kUsageError;
}

// Puts the options into the environment. Returns -1 to go on and show the analyzer, else the
// exit status (after --help, --version or a mistake). Without options nothing changes. With a
// `choice` (the desktop build) it also takes the window's options and refuses an unusable
// recording before any window opens.
int applyOptions(const QStringList& arguments, [[maybe_unused]] Choice* choice = nullptr)
{
    const QString keys = wsa::desktop::sourceKeys();
    QCommandLineParser parser;
    parser.setApplicationDescription(
        "Wi-Fi spectrum analyzer. Its engine, wsa_raw, measures with a simulated probe, a HackRF "
        "(hackrf_sweep) or a recording, and can record what it sends.");
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();
    const QCommandLineOption source("source", "Where sweeps come from: " + keys + ".",
                                    QString(keys).replace(", ", "|").replace(" or ", "|"));
    const QCommandLineOption replay("replay", "Replay a recording (implies --source replay).",
                                    "FILE");
    const QCommandLineOption record("record", "Record every sweep shown into a new file in DIR.",
                                    "DIR");
    const QCommandLineOption noRecord("no-record", "Do not record.");
    parser.addOptions({source, replay, record, noRecord});
    const QCommandLineOption band("band", "The band to measure: " + bandKeys(" or ") + ".",
                                  bandKeys("|").replace(", ", "|"));
    const QCommandLineOption handheld(
        "handheld", "Show the handheld analyzer instead of the instrument window.");
    if (choice)
        parser.addOptions({band, handheld});

    if (!parser.parse(arguments))
        return usageError(parser.errorText());
    if (parser.isSet(help)) {
        // Read before the application object exists, which is where the parser finds our name.
        std::fputs(qPrintable(parser.helpText().replace(
                       "<executable_name>", QFileInfo(arguments.value(0, "wsa")).fileName())),
                   stdout);
        return 0;
    }
    if (parser.isSet(version)) {
        std::printf("%s %s\n", qPrintable(QCoreApplication::applicationName()),
                    qPrintable(QCoreApplication::applicationVersion()));
        return 0;
    }
    if (!parser.positionalArguments().isEmpty())
        return usageError("unexpected argument: " + parser.positionalArguments().first());

    QString sourceName = parser.value(source);
    if (parser.isSet(source) && !wsa::desktop::findSourceKind(sourceName))
        return usageError("unknown source: " + sourceName + " (use " + keys + ")");
    if (parser.isSet(replay)) {
        if (parser.isSet(source) && sourceName != "replay")
            return usageError("--replay plays a recording; it cannot go with --source " +
                              sourceName);
        sourceName = "replay";
    }
    if (parser.isSet(record) && parser.isSet(noRecord))
        return usageError("--record and --no-record exclude each other");
#if WSA_INSTRUMENT
    if (parser.isSet(replay)) {
        const QString problem = wsa::desktop::recordingProblem(parser.value(replay));
        if (!problem.isEmpty())
            return usageError("cannot replay " + parser.value(replay) + ": it " + problem);
    }
    if (parser.isSet(band) && !wsa::findBand(parser.value(band).toStdString()))
        return usageError("unknown band: " + parser.value(band) + " (use " + bandKeys(" or ") +
                          ")");
    if (parser.isSet(band) && parser.isSet(handheld))
        return usageError("--band is for the instrument window; the handheld view has its own");
    choice->handheld = parser.isSet(handheld);
    choice->source = sourceName;
    choice->replayFile = parser.value(replay);
    choice->band = parser.value(band);
    choice->recordDir = parser.value(record);
    choice->record = parser.isSet(record);
    choice->noRecord = parser.isSet(noRecord);
#endif

    // Paths are made absolute: the engine runs in the analyzer's working directory.
    if (!sourceName.isEmpty())
        qputenv("WSA_SOURCE", sourceName.toLocal8Bit());
    if (parser.isSet(replay))
        qputenv("WSA_REPLAY_FILE",
                QFileInfo(parser.value(replay)).absoluteFilePath().toLocal8Bit());
    if (parser.isSet(record))
        qputenv("WSA_RECORD_DIR", QFileInfo(parser.value(record)).absoluteFilePath().toLocal8Bit());
    // Set but empty: a desktop build fills in a default only when the variable is unset.
    if (parser.isSet(noRecord))
        qputenv("WSA_RECORD_DIR", QByteArray(""));
    return -1;
}

// Logging out ends a desktop's programs with SIGTERM (and a terminal with SIGINT): the analyzer
// then closes as if its window were closed, so it stops its engine. The handler only writes a
// byte; the event loop does the rest.
int signalPipe[2] = {-1, -1};

void onQuitSignal(int)
{
    const char byte = 1;
    (void)!write(signalPipe[1], &byte, 1);
}

void quitOnSignals()
{
    if (signalPipe[0] >= 0 || pipe2(signalPipe, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    auto* notifier = new QSocketNotifier(signalPipe[0], QSocketNotifier::Read, qApp);
    QObject::connect(notifier, &QSocketNotifier::activated, [] {
        char byte;
        while (read(signalPipe[0], &byte, 1) > 0) {
        }
        QCoreApplication::quit();
    });
    struct sigaction action = {};
    action.sa_handler = onQuitSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(SIGTERM, &action, nullptr);
    sigaction(SIGINT, &action, nullptr);
}

// Shows the analyzer until its window is closed. Without a host to receive its request to
// close (no probe, or the probe lost), the program ends instead, with status 1.
int showAnalyzer()
{
    CWsa w;
    QObject::connect(&w, &CWsa::sigClose, [] {
        std::puts("wsa: closing: the analyzer asked to close because it has no probe to measure "
                  "with (none found, or the probe was lost)");
        QCoreApplication::exit(1);
    });
    w.setGeometry(0, 60, 800, 400);
    w.show();
    return QApplication::exec();
}

int runAnalyzer()
{
    wsaInstallTranslator();
    wsaExportEngineDefaults();
    if (!wsaDesktopPaths())
        return showAnalyzer();
    // Never the start directory instead: others may be able to write there.
    const QString workDir = wsaEnterDesktopWorkDir();
    if (workDir.isEmpty())
        return 1;
    quitOnSignals();
#if WSA_INSTRUMENT
    // Its engine's reasons reach the handheld view only here.
    auto* listener = new StatusListener(workDir);
#endif
    const int status = showAnalyzer();
#if WSA_INSTRUMENT
    delete listener; // its socket goes before the directory
#endif
    // Once the analyzer has removed its socket; kept while another instance still uses it.
    (void)rmdir(QFile::encodeName(workDir).constData());
    return status;
}

} // namespace standalone

#ifndef WSA_STANDALONE_NO_MAIN
int main(int argc, char** argv)
{
    // Console diagnostics should show as they happen, also when the output goes to a log file.
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    QCoreApplication::setApplicationName("wsa");
    QCoreApplication::setApplicationVersion(WSA_VERSION);
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    standalone::Choice choice;
    const int status = standalone::applyOptions(arguments, WSA_INSTRUMENT ? &choice : nullptr);
    if (status >= 0)
        return status;
    QApplication a(argc, argv);
#if WSA_INSTRUMENT
    if (!choice.handheld)
        return standalone::runInstrument(choice);
#endif
    return standalone::runAnalyzer();
}
#endif
