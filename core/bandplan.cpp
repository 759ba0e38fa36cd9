#include "bandplan.h"

#include <cmath>
#include <cstdio>

namespace wsa
{

int HandheldMapping::reducedCount(int raw) const
{
    if (!pairReduction)
        return raw;
    // Fewer raw samples than the dropped pairs hold leave nothing to show.
    const int reduced = raw / 2 - droppedPairs;
    return reduced >= 0 ? reduced : -1;
}

const std::vector<Channel>& Band::channels(int widthMHz) const
{
    static const std::vector<Channel> none;
    for (std::size_t k = 0; k < widthsMHz.size(); ++k) {
        if (widthsMHz[k] == widthMHz)
            return plans[k];
    }
    return none;
}

const Channel* Band::channel(int widthMHz, int number) const
{
    for (std::size_t k = 0; k < widthsMHz.size(); ++k) {
        if (widthsMHz[k] != widthMHz)
            continue;
        for (const Channel& c : plans[k]) {
            if (c.number == number)
                return &c;
        }
    }
    return nullptr;
}

Announcement Band::gridAnnouncement() const
{
    return {int(std::lround(grid.startHz / 1e6)), int(std::lround(grid.endHz / 1e6)),
            int(std::lround(grid.stepHz / 1e3)), grid.raw};
}

namespace
{

// IEEE 802.11 numbering: channel n is centred at base + 5 n MHz.
std::vector<Channel> numbered(double baseMHz, int widthMHz, std::initializer_list<int> numbers)
{
    std::vector<Channel> out;
    for (int n : numbers)
        out.push_back({n, baseMHz + 5.0 * n, widthMHz});
    return out;
}

std::vector<Channel> stepped(double baseMHz, int widthMHz, int first, int last, int step)
{
    std::vector<Channel> out;
    for (int n = first; n <= last; n += step)
        out.push_back({n, baseMHz + 5.0 * n, widthMHz});
    return out;
}

std::vector<Channel> joined(std::vector<Channel> a, const std::vector<Channel>& b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

const HandheldMapping kHandheld24 = {nullptr, 423, 47, 2400, 2490, 10, -110, -10, false, 0};
const HandheldMapping kHandheld5 = {"-r 2", 455, 65, 5160, 5835, 100, -100, -50, true, 60};

std::vector<Band> makeBands()
{
    std::vector<Band> bands;

    // 2.4 GHz: 423 cells over 2400..2490 MHz. Channels 1-13 every 5 MHz from 2412; 14 at 2484.
    Band b24{BandId::Ghz24, "2g4", "2.4 GHz", 1, 2400e6, 2490e6,
             {2400e6, 2490e6, 90e6 / 422, 423, 423, -110},
             {2400, 2490, 213, 423}, &kHandheld24, {20}, {}};
    std::vector<Channel> ch24 = stepped(2407, 20, 1, 13, 1);
    ch24.push_back({14, 2484, 20});
    b24.plans = {ch24};
    bands.push_back(b24);

    // 5 GHz: 904 cells over 5160..5835 MHz sent as 1024 raw levels. The simulated probe's raw
    // layout is 1024 bins of 747 kHz (675 MHz / 903 rounded down), announced up to 5924 MHz.
    Band b5{BandId::Ghz5, "5g", "5 GHz", 2, 5160e6, 5835e6,
            {5160e6, 5835e6, 675e6 / 903, 904, 1024, -100},
            {5160, 5924, 747, 1024}, &kHandheld5, {20, 40, 80, 160}, {}};
    b5.plans = {
        joined(joined(stepped(5000, 20, 36, 64, 4), stepped(5000, 20, 100, 144, 4)),
               stepped(5000, 20, 149, 177, 4)),
        joined(stepped(5000, 40, 38, 142, 8), stepped(5000, 40, 151, 175, 8)),
        numbered(5000, 80, {42, 58, 106, 122, 138, 155, 171}),
        numbered(5000, 160, {50, 114, 163})};
    // 70..94 fall in the gap between the U-NII-2A and U-NII-2C sub-bands.
    std::vector<Channel>& ch40 = b5.plans[1];
    for (auto it = ch40.begin(); it != ch40.end();)
        it = it->number > 62 && it->number < 102 ? ch40.erase(it) : it + 1;
    bands.push_back(b5);

    // 6 GHz: 5925..7125 MHz in 1000 cells of 1.2 MHz. Channels 1-233 at 5950 + 5 n MHz.
    const double step6 = 1.2e6;
    Band b6{BandId::Ghz6, "6g", "6 GHz", 3, 5925e6, 7125e6,
            {5925e6 + step6 / 2, 7125e6 - step6 / 2, step6, 1000, 1000, -110},
            {}, nullptr, {20, 40, 80, 160, 320}, {}};
    b6.simAnnouncement = b6.gridAnnouncement();
    b6.plans = {stepped(5950, 20, 1, 233, 4), stepped(5950, 40, 3, 227, 8),
                stepped(5950, 80, 7, 215, 16), stepped(5950, 160, 15, 207, 32),
                // 320 MHz channels come in two overlapping sets, 320-1 and 320-2.
                numbered(5950, 320, {31, 63, 95, 127, 159, 191})};
    bands.push_back(b6);
    return bands;
}

} // namespace

const std::vector<Band>& allBands()
{
    static const std::vector<Band> bands = makeBands();
    return bands;
}

const Band* findBand(BandId id)
{
    for (const Band& b : allBands()) {
        if (b.id == id)
            return &b;
    }
    return nullptr;
}

const Band* findBand(const std::string& key)
{
    for (const Band& b : allBands()) {
        if (key == b.key)
            return &b;
    }
    return nullptr;
}

const Band* findBandIndex(int index)
{
    for (const Band& b : allBands()) {
        if (int(b.id) == index)
            return &b;
    }
    return nullptr;
}

const Band* checkedBand(int index, const char* who)
{
    const Band* band = findBandIndex(index);
    if (!band)
        std::printf("%s: unknown band %d\n", who, index);
    return band;
}

const Band* checkedBand(const std::string& key, const char* who)
{
    const Band* band = findBand(key);
    if (!band)
        std::printf("%s: unknown band %s\n", who, key.c_str());
    return band;
}

const Band& handheldBand(int index)
{
    const Band* band = findBandIndex(index);
    if (band && band->handheld)
        return *band;
    std::printf("unknown band %d: showing 2.4 GHz\n", index);
    return allBands().front();
}

} // namespace wsa
