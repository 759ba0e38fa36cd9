// The desktop build's entry: the instrument window by default, the handheld view on request.
#ifndef APPS_INSTRUMENTMAIN_H
#define APPS_INSTRUMENTMAIN_H

#include <QString>

namespace standalone
{

// What the command line chose beyond the engine's environment.
struct Choice {
    bool handheld = false;
    QString source; // empty: as last time
    QString replayFile;
    QString band;
    QString recordDir;
    bool record = false;   // --record
    bool noRecord = false; // --no-record
};

// Shows the instrument window fed by its own engine until it is closed.
int runInstrument(const Choice& choice);

} // namespace standalone

#endif
