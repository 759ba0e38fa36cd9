// A desktop front-end's end of the engine: the framed stream of core/frontstream.h on a local
// stream socket, with the Control frames the front-end sends back on the same socket. In
// status-only mode (a handheld's host beside the record socket) only Status and Recording
// frames go out and nothing is read.
#ifndef ENGINE_FRONTSOCKET_H
#define ENGINE_FRONTSOCKET_H

#include <cstddef>
#include <string>
#include <vector>

#include "clock.h"
#include "frontstream.h"
#include "halbrin_sa.h"
#include "sink.h"

// The code a front-end chooses its remedy by.
wsa::StatusCode statusCode(StatusReason reason);
wsa::StatusCode statusCode(Fault fault);

class FrontSocketSink : public Sink
{
public:
    enum class Mode { Full, StatusOnly };

    // Takes over the connected descriptor. `source` names the source in Configured frames;
    // seconds in Sweep frames count from this construction on `clock`.
    FrontSocketSink(int fd, Mode mode, const wsa::Band& band, const std::string& source,
                    const Clock& clock);
    ~FrontSocketSink() override;
    FrontSocketSink(const FrontSocketSink&) = delete;
    FrontSocketSink& operator=(const FrontSocketSink&) = delete;

    bool ready() const override;
    // Status-only: not watched, its reader going never stops the engine.
    int watchFd() const override { return m_mode == Mode::Full ? m_fd : -1; }
    // Takes what the front-end sent (Control frames to the engine); true once it went.
    bool closed() override;

    void attached(Engine& engine) override { m_engine = &engine; }
    SinkResult announce(const wsa::Announcement& announcement) override;
    SinkResult sweep(const int* levels, int count) override;
    SinkResult sweepDbm(const float* dbm, const int* levels, int count) override;
    SinkResult fault(Fault fault) override;
    void reason(StatusReason reason, const std::string& text) override;
    void analysis(const std::string& json) override;
    void recording(std::int64_t bytes, const std::string& path) override;
    void replay(const wsa::ReplayFrame& frame) override;

private:
    enum class Urgency { Always, IfRoom };
    // Sends m_out whole; frames that may be dropped go only while the reader keeps up.
    SinkResult send(Urgency urgency);
    // Sends the latest Recording and Replay state held back while the reader was behind.
    void sendHeld();
    void status(wsa::StatusCode code, const std::string& text, bool ends);

    int m_fd;
    Mode m_mode;
    const wsa::Band& m_band;
    std::string m_source;
    const Clock& m_clock;
    long long m_startNs;
    Engine* m_engine = nullptr;
    wsa::FrameReader m_reader;
    bool m_gone = false;
    bool m_ended = false;      // a Status ended the source: the engine is to stop
    bool m_statusSent = false; // a reason came before its fault: one Status, not two
    std::vector<char> m_out;
    std::vector<char> m_heldRecording;
    std::vector<char> m_heldReplay;
    float m_levels[SA_MAX_SAMPLES];
};

#endif
