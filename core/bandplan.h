// The band plan: the one table of every band the system knows. Each band carries its edges, the
// frequency grid the engine's sources produce for it, the Wi-Fi channel plan inside it and, for
// the bands the handheld analyzer offers, that analyzer's own screen mapping. Nothing else in
// the tree writes a band's frequencies, bin counts or channel numbers.
#ifndef CORE_BANDPLAN_H
#define CORE_BANDPLAN_H

#include <string>
#include <vector>

namespace wsa
{

// Stable identifiers; the values are the handheld's band index (s_band) where it has one.
enum class BandId { Ghz24 = 0, Ghz5 = 1, Ghz6 = 2 };

// The grid every engine source resamples onto: `shown` cells of width stepHz centred on
// startHz + i * stepHz (the last at endHz), sent in records of `raw` levels; raw cells past the
// shown ones carry floorDbm, the bottom of the band's display range.
struct SourceGrid {
    double startHz;
    double endHz;
    double stepHz;
    int shown;
    int raw;
    int floorDbm;

    double binHz(int bin) const { return startHz + bin * stepHz; }
    // The span the shown cells cover, from the first cell's lower edge to the last one's upper.
    double lowEdgeHz() const { return startHz - stepHz / 2; }
    double highEdgeHz() const { return endHz + stepHz / 2; }
};

// What a Configured record announces for a band: start and end in MHz, step in kHz, and the
// sample count. The simulated probe announces its own raw layout, whose figures are rounded from
// a grid of whole kHz; sources that measure on the SourceGrid announce that grid rounded.
struct Announcement {
    int startMHz;
    int endMHz;
    int stepKHz;
    int samples;
};

// The handheld analyzer's screen mapping, kept exactly as that analyzer shows it. Its bins are
// pixel columns; its frequency labels step labelStepMHz every cellWidth pixels from startMHz; its
// Inspector interpolates startMHz..endMHz over the grid's width. At 5 GHz the two disagree with
// each other and with the data by up to some 22 MHz, and must stay so.
struct HandheldMapping {
    const char* engineArgument; // "-r 2", or null for the engine's default band
    int gridWidth;              // pixels between the grid's left and right frame lines
    int cellWidth;              // pixels per grid cell and per label step
    int startMHz;               // nStartFreq
    int endMHz;                 // nEndFreq
    int labelStepMHz;
    int minDbm; // bottom of the display range (nMinDraw)
    int maxDbm; // top of the display range (nMaxDraw)
    // 5 GHz records are reduced pairwise (the higher of samples 2i and 2i + 1) and the last
    // droppedPairs pairs, which lie past the view, are dropped.
    bool pairReduction;
    int droppedPairs;

    // Samples left of a record of `raw` samples, or -1 when it has too few to show anything.
    int reducedCount(int raw) const;
};

struct Channel {
    int number;
    double centerMHz;
    int widthMHz;
    double lowMHz() const { return centerMHz - widthMHz / 2.0; }
    double highMHz() const { return centerMHz + widthMHz / 2.0; }
};

struct Band {
    BandId id;
    const char* key;  // "2g4", "5g", "6g": file names, options, JSON
    const char* name; // "2.4 GHz"
    int engineNumber; // the engine's -r value: 1, 2, 3
    double lowHz;     // edges of the band the front-ends show
    double highHz;
    SourceGrid grid;
    Announcement simAnnouncement; // what the simulated probe's Configured record says
    const HandheldMapping* handheld; // null where the handheld offers no such band
    std::vector<int> widthsMHz;      // channel widths of the Wi-Fi plan, narrowest first

    // The Wi-Fi channels of the given width (empty for a width the plan does not have).
    const std::vector<Channel>& channels(int widthMHz) const;
    // The channel of that width with this number, or null.
    const Channel* channel(int widthMHz, int number) const;
    // The grid rounded into a Configured record.
    Announcement gridAnnouncement() const;

    std::vector<std::vector<Channel>> plans; // one per entry of widthsMHz
};

// Every band, in BandId order.
const std::vector<Band>& allBands();

// The band with this id, key or handheld index; null for one the plan does not know. The
// checked forms print "<who>: unknown band <value>" on standard output when they refuse.
const Band* findBand(BandId id);
const Band* findBand(const std::string& key);
const Band* findBandIndex(int index);
const Band* checkedBand(int index, const char* who);
const Band* checkedBand(const std::string& key, const char* who);

// The band of the handheld's index, which must be known; falls back to 2.4 GHz with a console
// line rather than taking an unknown value for another band.
const Band& handheldBand(int index);

} // namespace wsa

#endif
