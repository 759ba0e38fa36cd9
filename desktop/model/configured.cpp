#include "configured.h"

namespace wsa::desktop
{

namespace
{

bool same(const Announcement& a, const Announcement& b)
{
    return a.startMHz == b.startMHz && a.endMHz == b.endMHz && a.stepKHz == b.stepKHz &&
           a.samples == b.samples;
}

} // namespace

const Band* bandOfAnnouncement(const Announcement& a)
{
    for (const Band& b : allBands()) {
        if (same(a, b.simAnnouncement) || same(a, b.gridAnnouncement()))
            return &b;
    }
    return nullptr;
}

} // namespace wsa::desktop
