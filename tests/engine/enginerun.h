// What the engine tests share: a band from the band plan, one engine process and the ends of its
// sockets, the window's end of a front-end stream, a scripted clock, a sink and an observer that
// keep all.
#ifndef TESTS_ENGINE_ENGINERUN_H
#define TESTS_ENGINE_ENGINERUN_H

#include <QtTest>
#include <atomic>
#include <cmath>
#include <functional>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "bandplan.h"
#include "clock.h"
#include "enginecore.h"
#include "frontstream.h"
#include "halbrin_sa.h"

inline const QString kStandIn = WSA_SOURCE_DIR "/tests/stand-ins/hackrf_sweep";

inline const wsa::Band& band24()
{
    return *wsa::findBand(wsa::BandId::Ghz24);
}

// A band's grid as the band plan has it; `high` is the 5 GHz band, else `id` chooses.
struct Band {
    bool high;
    wsa::BandId id = high ? wsa::BandId::Ghz5 : wsa::BandId::Ghz24;
    const wsa::Band& plan() const { return *wsa::findBand(id); }
    int shown() const { return plan().grid.shown; }
    int raw() const { return plan().grid.raw; }
    int floor() const { return plan().grid.floorDbm; }
    double mhz(int bin) const { return plan().grid.binHz(bin) / 1e6; }
    QStringList args() const
    {
        return id == wsa::BandId::Ghz24 ? QStringList()
                                        : QStringList{"-r " + QString::number(plan().engineNumber)};
    }
};

inline const Band kBand6{false, wsa::BandId::Ghz6};

Q_DECLARE_METATYPE(Band)

// A row of sweep program output: 1 MHz bins from lowHz, one level each, at 12:00 plus `s`.
inline QByteArray csvRow(qint64 lowHz, const QList<double>& dbm, double s = 0)
{
    QString row = QString("2024-03-01, 12:%1:%2, %3, %4, 1000000.00, 20")
                      .arg(int(s) / 60, 2, 10, QChar('0'))
                      .arg(std::fmod(s, 60.0), 9, 'f', 6, QChar('0'))
                      .arg(lowHz)
                      .arg(lowHz + 1000000 * dbm.size());
    for (double level : dbm)
        row += ", " + QString::number(level);
    return (row + "\n").toLatin1();
}

inline QStringList fileLines(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? QString(f.readAll()).split('\n', Qt::SkipEmptyParts)
                                       : QStringList();
}

// The window's end of a front-end socket: a socket pair whose far end is read into a log of
// frames.
class FrontPeer
{
public:
    struct Log {
        std::string kinds; // C configured, S sweep, T status, A analysis, R recording, P replay
        std::vector<wsa::ConfiguredFrame> configured;
        std::vector<std::vector<float>> sweeps;
        std::vector<std::pair<wsa::StatusCode, std::string>> statuses;
        std::vector<std::pair<std::int64_t, std::string>> recordings;
        std::vector<wsa::ReplayFrame> replays;
        bool eof = false;
    };
    // Runs for every Replay frame as it is read.
    std::function<void(const wsa::ReplayFrame&)> onReplay;

    FrontPeer()
    {
        socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, m_fds);
        m_reader = std::make_unique<wsa::FrameReader>(wsa::FrameReader::Handlers{
            [this](const wsa::ConfiguredFrame& f) { note('C').configured.push_back(f); },
            [this](const wsa::SweepFrame& f) {
                note('S').sweeps.emplace_back(f.dbm, f.dbm + f.bins);
            },
            [this](wsa::StatusCode c, const std::string& t) {
                note('T').statuses.emplace_back(c, t);
            },
            [this](const std::string&) { note('A'); },
            [this](std::int64_t b, const std::string& p) {
                note('R').recordings.emplace_back(b, p);
            },
            {},
            [this](const wsa::ReplayFrame& f) {
                note('P').replays.push_back(f);
                if (onReplay)
                    onReplay(f);
            },
            {}});
    }
    ~FrontPeer()
    {
        close(m_fds[1]);
        if (!m_taken)
            close(m_fds[0]);
    }

    // The engine's end, for a sink to take over.
    int engineEnd() { return m_taken = true, m_fds[0]; }
    int windowEnd() const { return m_fds[1]; }
    // A connection accepted on `listener` within 5 s becomes the window's end.
    bool acceptFrom(int listener)
    {
        pollfd p{listener, POLLIN, 0};
        const int fd = poll(&p, 1, 5000) == 1 ? accept(listener, nullptr, nullptr) : -1;
        const bool taken = fd >= 0 && dup2(fd, m_fds[1]) >= 0;
        close(fd);
        return taken;
    }
    // Reads what is there within timeoutMs; false at the end of the stream.
    bool readOnce(int timeoutMs)
    {
        pollfd p{m_fds[1], POLLIN, 0};
        if (::poll(&p, 1, timeoutMs) != 1)
            return true;
        char bytes[65536];
        const ssize_t n = recv(m_fds[1], bytes, sizeof bytes, MSG_DONTWAIT);
        if (n > 0)
            m_reader->feed(bytes, std::size_t(n));
        m_log.eof = n == 0;
        return n > 0 || (n < 0 && errno == EAGAIN);
    }
    // Reads until `done` holds of the log, the stream ends or 5 s pass; whether `done` holds.
    bool readUntil(const std::function<bool(const Log&)>& done)
    {
        QElapsedTimer t;
        t.start();
        while (!done(m_log) && !m_log.eof && t.elapsed() < 5000)
            readOnce(50);
        return done(m_log);
    }
    // Reads what has come, without waiting.
    const Log& log()
    {
        for (pollfd p{m_fds[1], POLLIN, 0}; !m_log.eof && ::poll(&p, 1, 0) == 1 && readOnce(0);) {
        }
        return m_log;
    }
    void send(wsa::ControlCommand command, double value) const
    {
        std::vector<char> frame;
        wsa::encodeControl(frame, command, value);
        sendRaw(frame.data(), frame.size());
    }
    void sendRaw(const char* bytes, std::size_t size) const
    {
        QCOMPARE(::send(m_fds[1], bytes, size, MSG_NOSIGNAL), ssize_t(size));
    }

private:
    Log& note(char kind) { return m_log.kinds += kind, m_log; }

    int m_fds[2] = {-1, -1};
    bool m_taken = false;
    std::unique_ptr<wsa::FrameReader> m_reader;
    Log m_log;
};

// One engine process in its own directory. Only the given WSA_* and STANDIN_* settings reach it;
// "{dir}" in a setting stands for the directory. Every wait is bounded.
struct Run {
    enum Listen {
        Analyzer, // at ./SERVERSOCK from the start
        Late,     // at ./SERVERSOCK only a while after the start, as the analyzer: it must retry
        Window,   // at WSA_FRONT_SOCKET=<dir>/front, into `peer`; ./SERVERSOCK listens unasked
        Status,   // at ./SERVERSOCK and at WSA_STATUS_SOCKET=<dir>/status, into `peer`
        Nobody,
    };
    QTemporaryDir dir;
    QProcess proc;
    int listener = -1;
    int link = -1;
    FrontPeer peer;
    bool peerTaken = false;

    explicit Run(QStringList env, const QStringList& args = {}, Listen how = Analyzer)
    {
        QProcessEnvironment e = QProcessEnvironment::systemEnvironment();
        for (const QString& key : e.keys())
            if (key.startsWith("WSA_") || key.startsWith("STANDIN_"))
                e.remove(key);
        if (how == Window || how == Status)
            env << (how == Window ? "WSA_FRONT_SOCKET={dir}/front"
                                  : "WSA_STATUS_SOCKET={dir}/status");
        for (const QString& setting : env)
            e.insert(setting.section('=', 0, 0),
                     setting.section('=', 1).replace("{dir}", dir.path()));
        proc.setProcessEnvironment(e);
        proc.setWorkingDirectory(dir.path());
        const int front = how == Window   ? listenAt("front")
                          : how == Status ? listenAt("status")
                                          : -1;
        if (how != Late && how != Nobody)
            listener = listenAt("SERVERSOCK");
        // Under a name of its own: analyzers in concurrent tests kill engines by name.
        QFile::link(WSA_ENGINE_BIN, dir.filePath("engine"));
        proc.start(dir.filePath("engine"), args);
        if (how == Late) {
            QTest::qWait(300);
            listener = listenAt("SERVERSOCK");
        }
        if (how != Window && how != Nobody) {
            pollfd p{listener, POLLIN, 0};
            if (poll(&p, 1, 5000) == 1)
                link = accept(listener, nullptr, nullptr);
            const timeval timeout{5, 0};
            setsockopt(link, SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof timeout);
        }
        if (front >= 0)
            peerTaken = peer.acceptFrom(front), close(front);
    }
    ~Run()
    {
        close(link), close(listener);
        proc.kill(), proc.waitForFinished();
    }

    int listenAt(const QString& name) const
    {
        const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_un addr{AF_UNIX, {}};
        qstrncpy(addr.sun_path, qPrintable(dir.filePath(name)), sizeof addr.sun_path);
        bind(fd, reinterpret_cast<sockaddr*>(&addr), sizeof addr);
        listen(fd, 1);
        return fd;
    }
    // The next record; type 0 when none came within timeoutMs, -1 when the link closed.
    stSweep next(int timeoutMs = 5000)
    {
        stSweep r{};
        pollfd p{link, POLLIN, 0};
        if (poll(&p, 1, timeoutMs) == 1 &&
            recv(link, &r, sizeof r, MSG_WAITALL) != ssize_t(sizeof r))
            r.type = -1;
        return r;
    }
    // The next sweep, skipping nothing: anything else fails the caller's check.
    bool nextSweep(stSweep& r, int samples)
    {
        r = next();
        return r.type == SA_MSG_SWEEP && r.num_samples == samples;
    }
    // What the engine wrote to stderr, once it has ended.
    QStringList said()
    {
        proc.waitForFinished(5000);
        return QString(proc.readAllStandardError()).split('\n', Qt::SkipEmptyParts);
    }
    // The rows recorded, in the one file expected in `sub`.
    QStringList rows(const QString& sub = "rec") const
    {
        const QDir rec(dir.filePath(sub));
        const QStringList files = rec.entryList(QDir::Files);
        return files.size() == 1 ? fileLines(rec.filePath(files[0])) : QStringList();
    }
};

inline QStringList standIn(const QStringList& more = {})
{
    return QStringList{"WSA_SOURCE=hackrf", "WSA_HACKRF_SWEEP=" + kStandIn,
                       "WSA_HACKRF_BIN_HZ=1000000", "WSA_LEVEL_OFFSET_DB=-20"} +
           more;
}

inline bool isConfigured(const stSweep& r, const Band& band)
{
    // The grid's first and last cell centres in whole MHz, its step in whole kHz.
    const wsa::SourceGrid& g = band.plan().grid;
    return r.type == SA_MSG_CONFIGURED && r.num_samples == band.raw() &&
           r.data[0] == std::lround(g.startHz / 1e6) && r.data[1] == std::lround(g.endHz / 1e6) &&
           r.data[2] == std::lround(g.stepHz / 1e3);
}

// What a replay sends after its Configured record until it is quiet for 700 ms: the sweeps, an
// empty one for any other record.
inline QList<QVector<int>> replayed(Run& run, const Band& band, int firstMs = 5000)
{
    if (!isConfigured(run.next(firstMs), band))
        return {{}};
    QList<QVector<int>> sweeps;
    for (stSweep r = run.next(); r.type != 0; r = run.next(700))
        sweeps << (r.type == SA_MSG_SWEEP && r.num_samples == band.raw()
                       ? QVector<int>(r.data, r.data + band.raw())
                       : QVector<int>());
    return sweeps;
}

// Each reading moves fake time on by `tick` and runs the steps that have come due; with no tick
// it moves only when told. kRealTime is the real time since construction: waits take as long as
// they say.
class ScriptClock : public Clock
{
public:
    static constexpr long long kRealTime = -1;
    explicit ScriptClock(long long tickNs = 0, long long startNs = 0)
        : m_tickNs(tickNs), m_nowNs(startNs)
    {
        m_elapsed.start();
    }
    void at(double ms, std::function<void()> action)
    {
        m_steps.push_back({(long long)(ms * 1e6), std::move(action)});
    }
    long long nowNs() const override
    {
        const long long now =
            m_tickNs == kRealTime ? m_nowNs = m_elapsed.nsecsElapsed() : m_nowNs += m_tickNs;
        while (m_next < m_steps.size() && now >= m_steps[m_next].atNs)
            m_steps[m_next++].action();
        return now;
    }
    // The time without a reading.
    long long peekNs() const { return m_nowNs; }
    double seconds() const { return m_nowNs / 1e9; }
    void advanceMs(double ms) { m_nowNs += (long long)(ms * 1e6); }

private:
    struct Step {
        long long atNs;
        std::function<void()> action;
    };
    long long m_tickNs;
    QElapsedTimer m_elapsed;
    mutable std::atomic<long long> m_nowNs;
    mutable std::size_t m_next = 0;
    std::vector<Step> m_steps;
};

// A sink that keeps everything it is given and answers as told.
class MemorySink : public Sink
{
public:
    bool isReady = true;
    SinkResult answer = SinkResult::Ok;
    std::string events; // C configured, S sweep, N no probe, D disconnect
    std::vector<std::vector<int>> sweeps;
    std::vector<std::pair<StatusReason, std::string>> reasons;
    std::vector<std::pair<std::int64_t, std::string>> recordings;
    std::vector<std::pair<double, std::string>> analyses; // clock seconds, object
    const ScriptClock* clock = nullptr;

    bool ready() const override { return isReady; }
    SinkResult announce(const wsa::Announcement&) override { return note('C'); }
    SinkResult sweep(const int* levels, int count) override
    {
        sweeps.emplace_back(levels, levels + count);
        return note('S');
    }
    SinkResult fault(Fault f) override { return note(f == Fault::NoProbe ? 'N' : 'D'); }
    void reason(StatusReason r, const std::string& text) override { reasons.emplace_back(r, text); }
    void recording(std::int64_t bytes, const std::string& path) override
    {
        recordings.emplace_back(bytes, path);
    }
    void analysis(const std::string& json) override
    {
        analyses.emplace_back(clock ? clock->seconds() : 0, json);
    }
    int count(StatusReason reason) const
    {
        return int(std::count_if(reasons.begin(), reasons.end(),
                                 [&](const auto& r) { return r.first == reason; }));
    }

private:
    SinkResult note(char c)
    {
        events += c;
        return answer;
    }
};

// An observer that keeps every sweep it sees, its time stamp and the clock's time then.
class SweepLog : public SweepObserver
{
public:
    std::vector<float> levels; // all sweeps, one after the other
    std::vector<double> seconds;
    std::vector<long long> atNs;
    std::atomic<int> sweeps{0};
    const ScriptClock* clock = nullptr;
    void take(const float* dbm, int bins, double timeSeconds) override
    {
        levels.insert(levels.end(), dbm, dbm + bins);
        seconds.push_back(timeSeconds);
        atNs.push_back(clock ? clock->peekNs() : 0);
        ++sweeps;
    }
};

#endif
