// The engine's end of the record stream to the analyzer.
#ifndef ENGINE_LINK_H
#define ENGINE_LINK_H

#include <cstddef>
#include <ctime>

#include "halbrin_sa.h"

// Connects to the analyzer's listening socket at `path`, trying every intervalMs while it is not
// listening yet. Returns the descriptor, or -1 with errno of the last attempt.
int connectToAnalyzer(const char* path, int attempts, int intervalMs);

enum class SendResult { Sent, PeerGone, Failed };

// Writes the first `bytes` bytes of the record, however many calls that takes.
SendResult sendRecord(int fd, const stSweep& record, std::size_t bytes = SA_RECORD_SIZE);

// Whether the analyzer closed or reset the link; it never writes to us.
bool peerGone(int fd);

// Waits until the monotonic clock reaches `deadline`; false as soon as the peer has closed.
bool waitUntil(int fd, const timespec& deadline);

// Waits until the peer closes the connection.
void waitForPeerClose(int fd);

#endif
