// The analyzer module's shared state. Each concern declares its globals in its own header, beside
// the file that defines them; this header gathers them for the files that use several. There is
// one analyzer at a time.
#ifndef WSA_P_H
#define WSA_P_H

#include "controls.h"
#include "engine.h"
#include "geometry.h"
#include "halbrin_sa.h"
#include "inspector.h"
#include "paths.h"
#include "spectral.h"
#include "store.h"
#include "views.h"
#include "wsa.h"

#endif
