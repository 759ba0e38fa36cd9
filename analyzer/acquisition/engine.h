// Engine process control: the engine program table, the band it is started for, its socket, start
// and stop, the outcome of a start, prompt collection of ended engines, the listening socket's
// end, and shell quoting of paths.
#ifndef ENGINE_H
#define ENGINE_H

#include <cstddef>

#include "bandplan.h"

struct stModuleImage {
    const char* imagePath;
    const char* imageName;
};
extern stModuleImage moduleImage[1];
extern int s_band; // the selected band, a wsa::BandId of a band the handheld offers
extern int mainEngineSock;
extern int sockFd;
// The band of s_band. An index the band plan does not offer the handheld is refused with a
// console line and s_band falls back to 2.4 GHz.
const wsa::Band& wsaSelectedBand();
void startAppEngines();
void stopAppEngines();

// Bounds of WSA_ENGINE_TIMEOUT_MS, the wait for the engine's connection, in milliseconds; a value
// outside them (or not a whole number) falls back to the default with a console line.
enum {
    WSA_ENGINE_TIMEOUT_MIN_MS = 100,
    WSA_ENGINE_TIMEOUT_MAX_MS = 60000,
    WSA_ENGINE_TIMEOUT_DEFAULT_MS = 10000
};

// The wait for the engine's connection that WSA_ENGINE_TIMEOUT_MS asks for, validated.
int wsaEngineTimeoutMs();

// How the last startAppEngines ended.
enum WsaStartResult {
    WSA_START_CONNECTED, // an engine of our own user is connected
    WSA_START_NO_SOCKET, // socket creation or bind failed: console lines only
    WSA_START_NO_ENGINE  // no engine connected: it could not be started, ended, or timed out
};
WsaStartResult wsaLastStartResult();

// Collects engines of ours that have ended, without waiting; run on every refresh tick so that
// none stays a zombie.
void wsaReapEngines();

// Closes the listening socket and removes its socket file (the one this process created).
void wsaCloseEngineSocket();

// Writes `text` into out as one single-quoted shell word that the shell takes literally. Returns
// false (out then holds an empty string) when it does not fit outSize bytes with its NUL.
bool wsaShellQuote(const char* text, char* out, std::size_t outSize);

#endif
