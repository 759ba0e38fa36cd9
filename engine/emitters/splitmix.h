// splitmix64: a tiny generator that gives the same stream for a seed on every platform, which
// the std distributions do not promise. hash() makes time-slotted processes stateless, so any
// instant of an emitter's life can be evaluated without replaying what came before.
#ifndef EMITTERS_SPLITMIX_H
#define EMITTERS_SPLITMIX_H

#include <cmath>
#include <cstdint>

namespace wsa
{

inline std::uint64_t splitmixHash(std::uint64_t x)
{
    x += 0x9e3779b97f4a7c15ULL;
    x = (x ^ (x >> 30)) * 0xbf58476d1ce4e5b9ULL;
    x = (x ^ (x >> 27)) * 0x94d049bb133111ebULL;
    return x ^ (x >> 31);
}

// Uniform in [0, 1) from a key.
inline double hashUniform(std::uint64_t a, std::uint64_t b)
{
    return double(splitmixHash(a ^ splitmixHash(b)) >> 11) * 0x1.0p-53;
}

class SplitMix
{
public:
    explicit SplitMix(std::uint64_t seed) : m_state(seed) {}
    std::uint64_t next()
    {
        m_state += 0x9e3779b97f4a7c15ULL;
        return splitmixHash(m_state - 0x9e3779b97f4a7c15ULL);
    }
    double uniform() { return double(next() >> 11) * 0x1.0p-53; }
    double uniform(double lo, double hi) { return lo + (hi - lo) * uniform(); }
    int below(int n) { return n > 0 ? int(uniform() * n) : 0; }
    // Exponential with mean 1.
    double exponential() { return -std::log1p(-uniform()); }

private:
    std::uint64_t m_state;
};

} // namespace wsa

#endif
