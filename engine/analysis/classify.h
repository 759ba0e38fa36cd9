// Turns the last seconds of activity into named emitters. Stationary emitters show as regions
// of bins that are lit often; their width, edges, shape over frequency and pattern in time decide
// the kind. Hoppers light each frequency rarely, so they are found from the narrow bursts that
// fall outside every region instead.
#ifndef ANALYSIS_CLASSIFY_H
#define ANALYSIS_CLASSIFY_H

#include <vector>

#include "activity.h"
#include "bandplan.h"
#include "emitterkind.h"

namespace wsa
{

struct Feature {
    const char* name;
    double value;
};

struct Detection {
    static constexpr int kMaxFeatures = 8;

    EmitterKind kind = EmitterKind::Unknown;
    double centerMHz = 0;
    double widthMHz = 0;
    int channel = -1;
    double duty = 0;
    double peakDbm = -999;
    double confidence = 0;
    int featureCount = 0;
    Feature features[kMaxFeatures] = {};

    void add(const char* name, double value)
    {
        if (featureCount < kMaxFeatures)
            features[featureCount++] = {name, value};
    }
};

class Classifier
{
public:
    explicit Classifier(const Band& band);

    static constexpr double kWindowS = 2.0;
    // Hoppers light few bins a sweep; they are judged over a longer stretch.
    static constexpr double kHopperWindowS = 4.0;
    static constexpr double kRecentS = 1.0;

    // Replaces `out` with what the activity of the last kWindowS seconds shows. dwellS is the
    // time the receiver spends on one bin; sweepsInWindow how many sweeps the window holds.
    void run(const Activity& activity, double nowS, double dwellS, int sweepsInWindow,
             std::vector<Detection>& out);

private:
    struct Region {
        int lo, hi;         // bins lit often
        int coreLo, coreHi; // within 10 dB of the region's plateau
        double plateau;     // dB above the floor when lit
        double flatness;    // plateau minus the core's mean, dB
        double occupancy;   // mean over the core, over the emitter's own time in the window
        double windowOccupancy; // ... over the whole window
        double edgeRatio;   // occupancy at the core's edges over that at its middle
        double continuity;  // share of sweeps that found the whole core lit
        double runMs;       // mean length of a lit run inside the core, in time
        double shoulderDb;  // the core's middle over its shoulders, dB: peaked spectra
        double mainsLock;   // how well the starts of lit runs keep step with 50 or 60 Hz, 0..1
        double mainsHz;
        int runStarts;
        int recentRuns; // runs within the core in the last kRecentS: is it still on the air?
        bool shadowed;  // next to a stronger region: may be nothing but its skirt
        double litPerBin;   // evidence: lit sweeps per core bin in the window
        double peakOccupancy;
        double peakDbm;
    };

    void findRegions(const Activity& a);
    void addSplit(const Activity& a, int lo, int hi, int depth);
    void describe(Region& r, const Activity& a, double nowS, double dwellS, int sweepsInWindow);
    void measureRuns(Region& r, const Activity& a, double nowS, double dwellS, int sweepsInWindow);
    void measureMainsLock(Region& r, const Activity& a, double nowS, double dwellS);
    bool classify(const Region& r, Detection& d) const;
    double nameSteady(const Region& r, Detection& d) const;
    double nameNarrow(const Region& r, Detection& d) const;
    double nameWide(const Region& r, Detection& d) const;
    bool fitWifi(const Region& r, Detection& d) const;
    void findHoppers(const Activity& a, double nowS, int sweepsInWindow, std::vector<Detection>& out);
    double mhzOf(double bin) const;

    const Band* m_band;
    double m_stepMHz;
    std::vector<Region> m_regions;
    std::vector<float> m_scratch;
    std::vector<double> m_blipCentres;
    std::vector<int> m_blipWidths;
    std::vector<int> m_cells;
    bool m_hopperSeen = false; // at the previous look
};

} // namespace wsa

#endif
