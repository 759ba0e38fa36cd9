// The analyzer module's shared state. Each concern declares its globals in its own header, beside
// the file that defines them; this header gathers them for the files that use several, and still
// declares the engine process and the paths. There is one analyzer at a time.
#ifndef WSA_P_H
#define WSA_P_H

#include <QRect>
#include <ctime>

#include "controls.h"
#include "geometry.h"
#include "halbrin_sa.h"
#include "inspector.h"
#include "spectral.h"
#include "store.h"
#include "views.h"
#include "wsa.h"

// ---- engine.cpp: engine process and its socket
struct stModuleImage {
    const char* imagePath;
    const char* imageName;
};
extern stModuleImage moduleImage[1];
extern int s_band; // 0 = 2.4 GHz, 1 = 5 GHz
extern int mainEngineSock;
extern int sockFd;
void startAppEngines();
void stopAppEngines();

// ---- paths.cpp: compiled-in paths, overridable from the environment
const char* wsaEnginePath();     // WSA_ENGINE_PATH
const char* wsaResultDir();      // WSA_RESULT_DIR
const char* wsaVendorInfoPath(); // WSA_VENDOR_INFO

#endif
