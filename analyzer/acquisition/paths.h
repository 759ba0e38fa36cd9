// Compiled-in paths, overridable from the environment, and the default locations of a desktop
// installation.
#ifndef WSA_PATHS_H
#define WSA_PATHS_H

#include <QString>

const char* wsaEnginePath();     // WSA_ENGINE_PATH
const char* wsaResultDir();      // WSA_RESULT_DIR
const char* wsaVendorInfoPath(); // WSA_VENDOR_INFO

// True when the compiled-in defaults are those of a desktop installation rather than the test
// set's fixed paths.
bool wsaDesktopPaths();

// The user's report and recording directories of a desktop installation, resolved from the
// user's documents and data directories and created when missing.
QString wsaDesktopResultDir();
QString wsaDesktopRecordDir();

// Desktop build: records every session unless WSA_RECORD_DIR is already set (an empty value
// means "do not record"); sets it to the default recording directory for the engine to inherit.
// The test set's build leaves the environment alone.
void wsaExportEngineDefaults();

// Desktop build: makes a private directory of the user's session ($XDG_RUNTIME_DIR/wsa) the
// working directory, where the engine socket (SERVERSOCK) lives, rather than wherever the program
// was started from (the home directory, from a menu). A link, a file or another user's directory
// at that name is refused with a console line, and a fresh owner-only directory (mkdtemp) is
// used instead. Returns the directory entered, or an empty string when nothing changed: the test
// set's build, or (with a console line) no private directory could be made.
QString wsaEnterDesktopWorkDir();

#endif
