// The window's engine link against a stand-in engine: this very program, started again with
// STANDIN_MODE set, which connects to WSA_FRONT_SOCKET and plays one engine behaviour.
#include <QLocalSocket>
#include <QLabel>
#include <QSignalSpy>
#include <QtTest>
#include <csignal>
#include <unistd.h>

#include "acquisition.h"
#include "enginelink.h"
#include "instrumentwindow.h"
#include "markers.h"
#include "messagebar.h"
#include "replaybar.h"
#include "sweepfeed.h"

using namespace wsa;
using namespace wsa::desktop;

namespace standin
{

QLocalSocket* g_link = nullptr;

void send(const std::vector<char>& bytes)
{
    g_link->write(bytes.data(), qint64(bytes.size()));
    g_link->waitForBytesWritten(1000);
}

bool connectTo(const QString& path)
{
    for (int i = 0; i < 50 && g_link->state() != QLocalSocket::ConnectedState; ++i) {
        g_link->connectToServer(path);
        if (!g_link->waitForConnected(100))
            ::usleep(100000);
    }
    return g_link->state() == QLocalSocket::ConnectedState;
}

// Waits up to ms for the link's bytes; false once it has closed.
bool readControls(int ms, const FrameReader::Handlers& handlers)
{
    static FrameReader reader(handlers);
    if (!g_link->bytesAvailable() && !g_link->waitForReadyRead(ms))
        return g_link->state() == QLocalSocket::ConnectedState;
    const QByteArray bytes = g_link->readAll();
    reader.feed(bytes.constData(), std::size_t(bytes.size()));
    return true;
}

// The Configured frame names what the engine was given: source, -r value and output rate.
void configure(const Band& band, const char* engineArgument)
{
    ConfiguredFrame f;
    f.firstHz = band.grid.startHz;
    f.stepHz = band.grid.stepHz;
    f.bins = band.grid.shown;
    f.band = int(band.id);
    f.source = qgetenv("WSA_SOURCE").toStdString() + ':' + engineArgument + ':' +
               qgetenv("WSA_OUTPUT_RATE").toStdString() + ':' +
               qgetenv("WSA_SIM_SCENE").toStdString() + ':' + qgetenv("WSA_SIM_RATE").toStdString();
    std::vector<char> out;
    encodeConfigured(out, f);
    send(out);
}

int run(int argc, char** argv)
{
    const QByteArray mode = qgetenv("STANDIN_MODE");
    const char* r = argc > 2 ? argv[2] : "1";
    const Band* band = &allBands()[0];
    for (const Band& b : allBands())
        band = b.engineNumber == std::atoi(r) ? &b : band;
    if (mode == "late")
        ::usleep(800000);
    if (mode == "mute")
        ::sleep(30);
    QLocalSocket link;
    g_link = &link;
    if (!connectTo(qEnvironmentVariable("WSA_FRONT_SOCKET")))
        return 5;
    std::vector<char> out;
    if (mode == "exit") {
        std::fputs("wsa_raw: the radio thread died\n", stderr);
        return 3;
    }
    if (mode == "status") {
        const int code = qEnvironmentVariableIntValue("STANDIN_CODE");
        encodeStatus(out, StatusCode(code), "cause-text");
        send(out);
        if (LinkMessages::endsSource(StatusCode(code)))
            return 0;
    }
    if (mode == "stream") {
        // Sweeps at the asked rate until the link closes: the window's load for a benchmark.
        configure(*band, r);
        const double rate = std::max(1.0, qEnvironmentVariable("WSA_OUTPUT_RATE").toDouble());
        std::vector<float> levels(std::size_t(band->grid.shown));
        for (int n = 0;; ++n) {
            for (std::size_t i = 0; i < levels.size(); ++i)
                levels[i] = -95.0f + float((i * 7919u + unsigned(n) * 104729u) % 97u) / 10.0f;
            levels[std::size_t(n) % levels.size()] = -40;
            out.clear();
            encodeSweep(out, n / rate, levels.data(), int(levels.size()));
            send(out);
            if (!readControls(int(1000 / rate), {}))
                return 0;
        }
    }
    if (mode == "sweeps" || mode == "late") {
        configure(*band, r);
        for (int i = 0; i < 3; ++i) {
            std::vector<float> levels(std::size_t(band->grid.shown), -90.0f - float(i));
            encodeSweep(out, 0.1 * i, levels.data(), int(levels.size()));
        }
        send(out);
    }
    // Answers controls as a replay would, until the link closes.
    FrameReader::Handlers h;
    h.control = [](ControlCommand c, double v) {
        std::vector<char> reply;
        if (c == ControlCommand::Seek)
            encodeReplay(reply, ReplayFrame{v, 60, 1, false, false});
        if (c == ControlCommand::Record)
            encodeRecording(reply, v > 0 ? 100 : 0, v > 0 ? "/rec/a.csv" : "");
        send(reply);
    };
    const std::vector<char> garbage(64, 'x');
    while (readControls(100, h)) {
        if (mode == "garbage")
            send(garbage);
    }
    return 0;
}

} // namespace standin

class TestDesktopLink : public QObject
{
    Q_OBJECT
private:
    QTemporaryDir m_dir;

    EngineSetup setup(const char* mode, BandId band = BandId::Ghz24)
    {
        qputenv("STANDIN_MODE", mode);
        EngineSetup s;
        s.enginePath = QCoreApplication::applicationFilePath();
        s.socketDir = m_dir.path();
        s.source = QStringLiteral("sim");
        s.band = findBand(band);
        s.recordDir = m_dir.path();
        return s;
    }

    static QStringList texts(const QSignalSpy& spy)
    {
        QStringList out;
        for (const QList<QVariant>& args : spy)
            out << args[0].value<LinkMessage>().text;
        return out;
    }

private slots:
    void initTestCase()
    {
        qRegisterMetaType<LinkMessage>();
        qRegisterMetaType<StatusCode>();
    }

    void sweepsReachTheFeedAndControlsTheEngine()
    {
        EngineLink link;
        SweepFeed feed(*findBand(BandId::Ghz24));
        QString announced;
        connect(&link, &EngineLink::configured, &feed, [&](const Band& b, const QString& source) {
            feed.configure(b);
            announced = source;
        });
        connect(&link, &EngineLink::sweep, &feed, &SweepFeed::addSweep);
        QSignalSpy messages(&link, &EngineLink::message);
        QVERIFY(link.start(setup("sweeps", BandId::Ghz5)));
        QTRY_COMPARE(feed.shown().sweepCount(), 3u);
        QCOMPARE(feed.shown().band().id, BandId::Ghz5);
        QCOMPARE(announced, QStringLiteral("sim:2:50:emitters:20"));

        QSignalSpy replay(&link, &EngineLink::replay), recording(&link, &EngineLink::recording);
        link.sendControl(ControlCommand::Seek, 12.5);
        link.setRecording(true);
        QTRY_COMPARE(replay.count(), 1);
        QCOMPARE(replay[0][0].value<ReplayFrame>().position, 12.5);
        QTRY_COMPARE(recording.count(), 1);
        QCOMPARE(recording[0][1].toString(), QStringLiteral("/rec/a.csv"));

        const qint64 pid = link.enginePid();
        link.stop();
        QVERIFY(::kill(pid_t(pid), 0) != 0);
        QVERIFY2(messages.isEmpty(), qPrintable(texts(messages).join('\n')));
    }

    void statusCodes_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("remedy");
        QTest::newRow("ended") << 0 << "Loop";
        QTest::newRow("program missing") << 1 << "install the hackrf package";
        QTest::newRow("no device") << 2 << "Connect the HackRF";
        QTest::newRow("device lost") << 3 << "cable";
        QTest::newRow("file missing") << 4 << "Open another recording";
        QTest::newRow("file unreadable") << 5 << "you may read";
        QTest::newRow("file empty") << 6 << "Nothing to replay";
        QTest::newRow("no sweep in band") << 7 << "no sweep in the 2.4 GHz band";
        QTest::newRow("band not covered") << 8 << "Choose another band";
        QTest::newRow("recording failed") << 9 << "Free disk space";
        QTest::newRow("disk almost full") << 10 << "almost full";
        QTest::newRow("bad setting") << 11 << "WSA_ variable";
        QTest::newRow("other") << 99 << "Choose a source";
    }

    // The engine's text names the cause, the code chooses the remedy; a source that ends takes
    // the engine with it without an "engine ended" message, a recording fault does not.
    void statusCodes()
    {
        QFETCH(int, code);
        QFETCH(QString, remedy);
        qputenv("STANDIN_CODE", QByteArray::number(code));
        EngineLink link;
        QSignalSpy status(&link, &EngineLink::status), messages(&link, &EngineLink::message);
        QVERIFY(link.start(setup("status")));
        QTRY_COMPARE(status.count(), 1);
        const LinkMessage m = LinkMessages::status(StatusCode(code), status[0][1].toString(),
                                                   QString::fromUtf8(link.setup().band->name));
        QVERIFY2(m.text.contains("cause-text") && m.text.contains(remedy, Qt::CaseInsensitive),
                 qPrintable(m.text));
        const bool ends = LinkMessages::endsSource(StatusCode(code));
        if (ends)
            QTRY_VERIFY(!link.isRunning());
        else
            QTest::qWait(300);
        QCOMPARE(link.isRunning(), !ends);
        QVERIFY2(messages.isEmpty(), qPrintable(texts(messages).join('\n')));
    }

    void faults_data()
    {
        QTest::addColumn<QByteArray>("mode");
        QTest::addColumn<QString>("engine");
        QTest::addColumn<QString>("socketDir"); // empty: the test's own
        QTest::addColumn<QStringList>("expected");
        const QString self = QCoreApplication::applicationFilePath();
        QTest::newRow("silent") << QByteArray("silent") << self << ""
                                << QStringList{"sent nothing"};
        QTest::newRow("garbage") << QByteArray("garbage") << self << "" << QStringList{"damaged"};
        QTest::newRow("exit") << QByteArray("exit") << self << ""
                              << QStringList{"status 3", "the radio thread died"};
        QTest::newRow("missing engine") << QByteArray("sweeps") << m_dir.filePath("no-engine") << ""
                                        << QStringList{"could not be started", "no-engine"};
        QTest::newRow("never connects")
            << QByteArray("mute") << self << "" << QStringList{"has not connected"};
        QTest::newRow("socket cannot be made")
            << QByteArray("sweeps") << self << m_dir.filePath("missing/dir")
            << QStringList{"cannot be made"};
    }

    void faults()
    {
        QFETCH(QByteArray, mode);
        QFETCH(QString, engine);
        QFETCH(QString, socketDir);
        QFETCH(QStringList, expected);
        EngineLink link;
        link.setTimeouts(600, 1500);
        QSignalSpy messages(&link, &EngineLink::message);
        EngineSetup s = setup(mode);
        s.enginePath = engine;
        s.socketDir = socketDir.isEmpty() ? s.socketDir : socketDir;
        // Only a link without its socket refuses to start at all.
        QCOMPARE(link.start(s), socketDir.isEmpty());
        if (!socketDir.isEmpty())
            QVERIFY(!link.isRunning());
        QTRY_VERIFY_WITH_TIMEOUT(!messages.isEmpty(), 5000);
        const QString text = texts(messages).first();
        for (const QString& part : expected)
            QVERIFY2(text.contains(part), qPrintable(text));
        // Said once per quiet stretch, not every period.
        QTest::qWait(800);
        QCOMPARE(messages.count(), 1);
    }

    void peerThatIsNotTheEngineIsRefused()
    {
        EngineLink link;
        QSignalSpy messages(&link, &EngineLink::message), sweeps(&link, &EngineLink::sweep);
        QVERIFY(link.start(setup("late")));
        QLocalSocket intruder;
        intruder.connectToServer(link.socketPath());
        QVERIFY(intruder.waitForConnected(2000));
        QTRY_COMPARE(intruder.state(), QLocalSocket::UnconnectedState);
        QCOMPARE(messages.count(), 1);
        QVERIFY(texts(messages).first().contains(QString::number(getpid())));
        QTRY_COMPARE(sweeps.count(), 3);
    }

    // The window shows the engine's reason in its bar and goes on; a recording keeps its band.
    void windowShowsReasonsAndKeepsARecordingsBand()
    {
        SweepFeed feed(*findBand(BandId::Ghz24));
        InstrumentWindow w(&feed);
        EngineLink link;
        qputenv("STANDIN_CODE", "7");
        w.attachEngine(&link, setup("status"));
        w.show();
        QTRY_VERIFY(w.acquisition()->messageBar()->text().contains("cause-text"));
        QVERIFY(w.acquisition()->messageBar()->text().contains("no sweep in the 2.4 GHz band"));
        QTRY_VERIFY(!link.isRunning());
        QVERIFY(w.isVisible());

        EngineSetup s = setup("sweeps", BandId::Ghz5);
        s.source = "replay";
        s.replayFile = m_dir.filePath("x.csv");
        w.acquisition()->start(s);
        QTRY_COMPARE(feed.shown().band().id, BandId::Ghz5);
        QVERIFY(w.windowTitle().contains("x.csv, 5 GHz"));
        const qint64 engine = link.enginePid();
        w.acquisition()->chooseBand(*findBand(BandId::Ghz6));
        QVERIFY(w.acquisition()->messageBar()->text().contains("only its own band, 5 GHz"));
        QCOMPARE(link.enginePid(), engine);
        QCOMPARE(w.acquisition()->setup().band->id, BandId::Ghz5);
    }

    // The bar asks for changes and shows reports without echoing them back as requests, and
    // takes a damaged report without showing nonsense.
    void replayBarAsksButDoesNotEcho()
    {
        ReplayBar bar;
        QSignalSpy asked(&bar, &ReplayBar::control);
        bar.setState(ReplayFrame{30, 60, 2, true, true});
        bar.setState(ReplayFrame{qQNaN(), qInf(), 1, false, false});
        QCOMPARE(asked.count(), 0);
        bar.actions().first()->trigger();
        QCOMPARE(asked.count(), 1);
        QCOMPARE(asked[0][0].value<ControlCommand>(), ControlCommand::Pause);
        QCOMPARE(asked[0][1].toDouble(), 1.0);
        QVERIFY(bar.findChild<QLabel*>()->text().startsWith("0.0 / 0.0"));
    }
};

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsSet("WSA_FRONT_SOCKET")) {
        QCoreApplication app(argc, argv);
        return standin::run(argc, argv);
    }
    QApplication app(argc, argv);
    TestDesktopLink test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_desktop_link.moc"
