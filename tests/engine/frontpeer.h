// The window's end of a front-end socket, in-process: a socket pair whose far end a thread reads
// into a log of frames, and a clock whose readings advance fake time and play a script of
// controls, so that a source's loop meets them at known moments.
#ifndef TESTS_ENGINE_FRONTPEER_H
#define TESTS_ENGINE_FRONTPEER_H

#include <QtTest>
#include <atomic>
#include <functional>
#include <mutex>
#include <poll.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

#include "clock.h"
#include "frontstream.h"

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
    // Runs on the reading thread for every Replay frame.
    std::function<void(const wsa::ReplayFrame&)> onReplay;

    FrontPeer()
    {
        socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, m_fds);
        wsa::FrameReader::Handlers h;
        h.configured = [this](const wsa::ConfiguredFrame& f) { note('C').configured.push_back(f); };
        h.sweep = [this](const wsa::SweepFrame& f) {
            note('S').sweeps.emplace_back(f.dbm, f.dbm + f.bins);
        };
        h.status = [this](wsa::StatusCode c, const std::string& t) {
            note('T').statuses.emplace_back(c, t);
        };
        h.analysis = [this](const std::string&) { note('A'); };
        h.recording = [this](std::int64_t b, const std::string& p) {
            note('R').recordings.emplace_back(b, p);
        };
        h.replay = [this](const wsa::ReplayFrame& f) {
            note('P').replays.push_back(f);
            if (onReplay)
                onReplay(f);
        };
        m_reader = std::make_unique<wsa::FrameReader>(h);
    }
    ~FrontPeer()
    {
        stop();
        close(m_fds[1]);
        if (!m_taken)
            close(m_fds[0]);
    }

    // The engine's end, for a sink to take over.
    int engineEnd()
    {
        m_taken = true;
        return m_fds[0];
    }
    int windowEnd() const { return m_fds[1]; }
    void start()
    {
        m_thread = std::thread([this] {
            while (!m_stop && readOnce(10)) {
            }
        });
    }
    void stop()
    {
        m_stop = true;
        if (m_thread.joinable())
            m_thread.join();
    }
    // Reads what is there within timeoutMs; false at the end of the stream.
    bool readOnce(int timeoutMs)
    {
        pollfd p{m_fds[1], POLLIN, 0};
        if (::poll(&p, 1, timeoutMs) != 1)
            return true;
        char bytes[65536];
        const ssize_t n = recv(m_fds[1], bytes, sizeof bytes, MSG_DONTWAIT);
        if (n <= 0) {
            std::lock_guard<std::mutex> lock(m_mutex);
            m_log.eof = n == 0;
            return n < 0 && errno == EAGAIN;
        }
        m_reader->feed(bytes, std::size_t(n));
        return true;
    }
    void drain()
    {
        while (!log().eof && readOnce(0)) {
            pollfd p{m_fds[1], POLLIN, 0};
            if (::poll(&p, 1, 0) != 1)
                break;
        }
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
    Log log()
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_log;
    }

private:
    Log& note(char kind)
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_log.kinds += kind;
        return m_log;
    }

    int m_fds[2] = {-1, -1};
    bool m_taken = false;
    std::unique_ptr<wsa::FrameReader> m_reader;
    std::mutex m_mutex;
    Log m_log;
    std::atomic<bool> m_stop{false};
    std::thread m_thread;
};

// Each reading moves fake time on by `tick` and runs the steps that have come due. With no tick,
// time is the real time since the clock's construction: waits then take as long as they say.
class ScriptClock : public Clock
{
public:
    explicit ScriptClock(long long tickNs) : m_tickNs(tickNs), m_real(tickNs == 0) {}
    void at(double ms, std::function<void()> action)
    {
        m_steps.push_back({(long long)(ms * 1e6), std::move(action)});
    }
    long long nowNs() const override
    {
        const long long now = m_real ? m_nowNs = m_elapsed.nsecsElapsed() : m_nowNs += m_tickNs;
        while (m_next < m_steps.size() && now >= m_steps[m_next].atNs)
            m_steps[m_next++].action();
        return now;
    }
    // The time without a reading.
    long long peekNs() const { return m_nowNs; }

private:
    struct Step {
        long long atNs;
        std::function<void()> action;
    };
    long long m_tickNs;
    bool m_real;
    QElapsedTimer m_elapsed = [] {
        QElapsedTimer t;
        t.start();
        return t;
    }();
    mutable std::atomic<long long> m_nowNs{0};
    mutable std::size_t m_next = 0;
    std::vector<Step> m_steps;
};

#endif
