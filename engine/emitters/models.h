// How each kind of emitter looks to a swept receiver: its spectral shape and its time pattern.
// Every pattern is a stateless function of time (slots keyed by a hash), so a bin can be
// evaluated over its own short dwell without replaying the emitter's history.
#ifndef EMITTERS_MODELS_H
#define EMITTERS_MODELS_H

#include "truth.h"

namespace wsa
{

class EmitterModel
{
public:
    explicit EmitterModel(const TruthEmitter& truth);

    // Mean power over the dwell [t0, t1) seen by a bin centred at fMHz and binMHz wide,
    // relative to the emitter's level (1 = its strongest part, continuously on).
    double power(double t0, double t1, double fMHz, double binMHz) const;

private:
    double slotted(double t0, double t1, double fMHz, double binMHz) const;
    double hopping(double t0, double t1, double fMHz) const;
    double oven(double t0, double t1, double fMHz) const;
    double continuous(double t0, double t1, double fMHz, double binMHz) const;
    double shape(double offsetMHz, double binMHz) const;

    TruthEmitter m_t;
};

// Spectral shapes, relative power at an offset from the centre (MHz).
double ofdmShape(double offsetMHz, double widthMHz);
double dsssShape(double offsetMHz);

} // namespace wsa

#endif
