// Scoring the analysis against the simulator's ground truth: which reported emitter stands for
// which simulated one, and the figures the evaluation prints.
#ifndef TOOLS_SCORING_H
#define TOOLS_SCORING_H

#include <cstdio>
#include <string>
#include <vector>

#include "analyzer.h"
#include "truth.h"

namespace wsa
{

struct KindScore {
    int truths = 0;   // simulated emitters of this kind
    int found = 0;    // ... named correctly (Wi-Fi: channel and width exact; ZigBee: channel)
    int reports = 0;  // reports of this kind, duplicates of a found emitter left out
    int correct = 0;  // ... that named a simulated emitter correctly
    std::vector<double> delays; // seconds from an emitter's start to its first correct report

    double recall() const { return truths ? double(found) / truths : 1; }
    double precision() const { return reports ? double(correct) / reports : 1; }
};

class Score
{
public:
    // One recording: what was simulated, what the analysis reported over durationS seconds. A
    // clean recording (noise only, or Wi-Fi only) also counts towards the false-emitter rate.
    void add(const Band& band, const std::vector<TruthEmitter>& truth,
             const std::vector<EmitterReport>& reports, const std::vector<ChannelReport>& channels,
             double durationS, bool clean);

    const KindScore& kind(EmitterKind k) const { return m_kinds[int(k)]; }
    int confusion(int truthKind, int reportedKind) const { return m_confusion[truthKind][reportedKind]; }
    int falseEmitters() const { return m_false; }
    double cleanSeconds() const { return m_cleanSeconds; }
    double falsePerTenMinutes() const { return m_cleanSeconds > 0 ? m_false * 600.0 / m_cleanSeconds : 0; }
    const std::vector<double>& occupancyErrors() const { return m_occupancyErrors; }
    int duplicates() const { return m_duplicates; }

    // Prints the tables; returns whether every target is met, naming each one missed.
    bool report(std::FILE* out) const;
    // Whether the figures stay above the floors a change must never push them under (looser
    // than the targets, so a small sample's chance does not trip them); names each one missed.
    bool aboveFloors(std::FILE* out) const;

    // Rows and columns of the confusion matrix: the kinds, then "none" (a report with no
    // simulated emitter under it) as a row and "missed" as a column.
    static constexpr int kNone = kEmitterKindCount;
    static constexpr int kMissed = kEmitterKindCount;

private:
    void scoreOccupancy(const std::vector<TruthEmitter>& truth, const std::vector<ChannelReport>& channels,
                        double durationS);

    KindScore m_kinds[kEmitterKindCount];
    int m_confusion[kEmitterKindCount + 1][kEmitterKindCount + 1] = {};
    int m_false = 0;
    int m_duplicates = 0;
    double m_cleanSeconds = 0;
    std::vector<double> m_occupancyErrors;
};

// Whether a report and a simulated emitter overlap in time and frequency at all, and whether
// the report names it correctly.
bool overlaps(const TruthEmitter& t, const EmitterReport& r);
bool namesCorrectly(const TruthEmitter& t, const EmitterReport& r);

} // namespace wsa

#endif
