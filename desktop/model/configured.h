// Which band an engine's Configured record announces. A source announces either the simulated
// probe's raw layout or the band's own grid, in whole MHz and kHz; the window takes the band's
// grid from the band plan, and refuses any other announcement rather than guess at its cells.
#ifndef DESKTOP_CONFIGURED_H
#define DESKTOP_CONFIGURED_H

#include "bandplan.h"

namespace wsa::desktop
{

// The band whose announcement this is, or null.
const Band* bandOfAnnouncement(const Announcement& a);

} // namespace wsa::desktop

#endif
