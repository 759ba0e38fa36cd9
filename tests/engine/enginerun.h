// What the engine tests share: a band from the band plan, one engine run against the analyzer's
// end of its link, and the stand-in sweep program.
#ifndef TESTS_ENGINE_ENGINERUN_H
#define TESTS_ENGINE_ENGINERUN_H

#include <QtTest>
#include <cmath>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "bandplan.h"
#include "halbrin_sa.h"

inline const QString kStandIn = WSA_SOURCE_DIR "/tests/stand-ins/hackrf_sweep";

// A band's grid as the band plan has it; `high` is the 5 GHz band, else `id` chooses.
struct Band {
    bool high;
    wsa::BandId id = high ? wsa::BandId::Ghz5 : wsa::BandId::Ghz24;
    const wsa::Band& plan() const { return *wsa::findBand(id); }
    double startMHz() const { return plan().grid.startHz / 1e6; }
    double stepMHz() const { return plan().grid.stepHz / 1e6; }
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

// An engine run with no analyzer: nobody listens on its SERVERSOCK.
struct Detached {
    QTemporaryDir dir;
    QProcess proc;
    explicit Detached(const QStringList& env)
    {
        QProcessEnvironment e = QProcessEnvironment::systemEnvironment();
        for (const QString& key : e.keys())
            if (key.startsWith("WSA_"))
                e.remove(key);
        for (const QString& setting : env)
            e.insert(setting.section('=', 0, 0), setting.section('=', 1));
        proc.setProcessEnvironment(e);
        proc.setWorkingDirectory(dir.path());
        QFile::link(WSA_ENGINE_BIN, dir.filePath("engine"));
        proc.start(dir.filePath("engine"), {});
    }
    ~Detached() { proc.kill(), proc.waitForFinished(); }
    // The rows recorded, in the one file expected.
    QStringList rows() const
    {
        const QDir rec(dir.filePath("rec"));
        const QStringList files = rec.entryList(QDir::Files);
        QFile f(files.size() == 1 ? rec.filePath(files[0]) : QString());
        if (!f.open(QIODevice::ReadOnly))
            return {};
        return QString(f.readAll()).split('\n', Qt::SkipEmptyParts);
    }
};

// One engine and the analyzer's end of its link. Only the given WSA_* and STANDIN_* settings
// reach it. Every wait is bounded.
struct Run {
    QTemporaryDir dir;
    QProcess proc;
    int listener = socket(AF_UNIX, SOCK_STREAM, 0);
    int link = -1;

    explicit Run(const QStringList& env, const QStringList& args = {})
    {
        QProcessEnvironment e = QProcessEnvironment::systemEnvironment();
        for (const QString& key : e.keys())
            if (key.startsWith("WSA_") || key.startsWith("STANDIN_"))
                e.remove(key);
        for (const QString& setting : env)
            e.insert(setting.section('=', 0, 0), setting.section('=', 1));
        proc.setProcessEnvironment(e);
        proc.setWorkingDirectory(dir.path());
        sockaddr_un addr{AF_UNIX, {}};
        qstrncpy(addr.sun_path, qPrintable(dir.filePath("SERVERSOCK")), sizeof addr.sun_path);
        bind(listener, reinterpret_cast<sockaddr*>(&addr), sizeof addr);
        listen(listener, 1);
        // Under a name of its own: analyzers in concurrent tests kill engines by name.
        QFile::link(WSA_ENGINE_BIN, dir.filePath("engine"));
        proc.start(dir.filePath("engine"), args);
        pollfd p{listener, POLLIN, 0};
        if (poll(&p, 1, 5000) == 1)
            link = accept(listener, nullptr, nullptr);
        const timeval timeout{5, 0};
        setsockopt(link, SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof timeout);
    }
    ~Run()
    {
        close(link), close(listener);
        proc.kill(), proc.waitForFinished();
    }

    // The next record; type 0 when none came within timeoutMs, -1 when the link closed.
    stSweep next(int timeoutMs = 5000)
    {
        stSweep r{};
        pollfd p{link, POLLIN, 0};
        if (poll(&p, 1, timeoutMs) != 1)
            return r;
        const ssize_t n = recv(link, &r, sizeof r, MSG_WAITALL);
        if (n != ssize_t(sizeof r))
            r.type = -1;
        return r;
    }
    // The next sweep, skipping nothing: anything else fails the caller's check.
    bool nextSweep(stSweep& r, int samples)
    {
        r = next();
        return r.type == SA_MSG_SWEEP && r.num_samples == samples;
    }
    // Lines the engine itself wrote to stderr, once it has ended; every line in `all`.
    QStringList complaints(QStringList* all = nullptr)
    {
        proc.waitForFinished(5000);
        const QStringList lines =
            QString(proc.readAllStandardError()).split('\n', Qt::SkipEmptyParts);
        if (all)
            *all = lines;
        return lines.filter(QRegularExpression("^wsa_raw: "));
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
           r.data[2] == std::lround(band.stepMHz() * 1000);
}

#endif
