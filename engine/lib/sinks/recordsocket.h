// The analyzer's end of the engine: 4104-byte records on a local stream socket.
#ifndef ENGINE_RECORDSOCKET_H
#define ENGINE_RECORDSOCKET_H

#include <cstddef>

#include "halbrin_sa.h"
#include "sink.h"

// Connects to the listening socket at `path`, trying every intervalMs while it is not listening
// yet. Returns the descriptor, or -1 with errno of the last attempt.
int connectToAnalyzer(const char* path, int attempts, int intervalMs);

class RecordSocketSink : public Sink
{
public:
    // Takes over the connected descriptor.
    explicit RecordSocketSink(int fd) : m_fd(fd) {}
    ~RecordSocketSink() override;
    RecordSocketSink(const RecordSocketSink&) = delete;
    RecordSocketSink& operator=(const RecordSocketSink&) = delete;

    // Only once the analyzer has read everything sent: its unread bytes are checked.
    bool ready() const override;
    int watchFd() const override { return m_fd; }
    bool closed() override;

    SinkResult announce(const wsa::Announcement& announcement) override;
    SinkResult sweep(const int* levels, int count) override;
    SinkResult fault(Fault fault) override;
    SinkResult damaged(Damage damage, const int* levels, int count) override;

private:
    SinkResult send(const stSweep& record, std::size_t bytes = SA_RECORD_SIZE);

    int m_fd;
    stSweep m_record;
};

#endif
