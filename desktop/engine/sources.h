// The sources the window offers, in one table: the command line, its help, the Source menu and
// the title all read it. Keys are the engine's WSA_SOURCE values.
#ifndef DESKTOP_SOURCES_H
#define DESKTOP_SOURCES_H

#include <QString>
#include <vector>

namespace wsa::desktop
{

struct SourceKind {
    const char* key;   // "sim", "hackrf", "replay"
    const char* title; // menu text, translated in the "Sources" context
    bool takesFile;    // a recording: it covers only the band it was recorded in
};

const std::vector<SourceKind>& sourceKinds();
// The source with that key, or null.
const SourceKind* findSourceKind(const QString& key);
// The keys for a message: "sim, hackrf or replay".
QString sourceKeys();
QString sourceTitle(const SourceKind& kind);
// Why a recording cannot be replayed ("does not exist", "is empty", ...), or empty when it can:
// refused before an engine is started for it.
QString recordingProblem(const QString& path);

} // namespace wsa::desktop

#endif
