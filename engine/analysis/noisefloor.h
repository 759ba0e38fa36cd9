// The noise floor of every bin: a low-quantile tracker per bin that follows slow changes, held
// down to its neighbourhood's floor so an emitter that never pauses is not taken for noise.
#ifndef ANALYSIS_NOISEFLOOR_H
#define ANALYSIS_NOISEFLOOR_H

#include <vector>

namespace wsa
{

class NoiseFloor
{
public:
    explicit NoiseFloor(int bins);

    // Levels in dBm, one per bin.
    void take(const float* dbm);
    // The floor under bin i (dBm): the level noise alone stays below most of the time.
    float at(int i) const { return m_floor[std::size_t(i)]; }
    const float* data() const { return m_floor.data(); }
    // The typical noise level over the band (dBm), for reports.
    float bandLevel() const { return m_bandLevel; }
    long sweeps() const { return m_sweeps; }

private:
    void clampToNeighbourhood();

    std::vector<float> m_track;  // per-bin low quantile
    std::vector<float> m_floor;  // what the analysis uses
    std::vector<float> m_scratch;
    std::vector<float> m_blockRef;
    int m_blockBins;
    long m_sweeps = 0;
    float m_bandLevel = 0;
};

} // namespace wsa

#endif
