// VxSyntheticRandom: the one source of randomness of the synthetic patient. The
// engine is std::mt19937, whose output sequence the C++ standard fixes; the
// distributions are written out here because those of the standard library
// differ between implementations, and a case must come out bit for bit the same
// from one seed on every platform. It deliberately offers no normal
// distribution through logarithms or cosines: a sum of uniforms is close enough
// for shape noise and stays exact in plain arithmetic.
#pragma once

#include <cstdint>
#include <random>

class VxSyntheticRandom {
public:
    explicit VxSyntheticRandom(uint32_t seed) : m_engine(seed) {}

    // An independent stream for one part of the case, so that adding draws to one
    // generator does not shift every number another one sees. The mix is
    // splitmix32-like and fixed.
    VxSyntheticRandom Fork(uint32_t salt) {
        uint32_t z = Next() ^ (salt * 0x9E3779B9u);
        z = (z ^ (z >> 16)) * 0x85EBCA6Bu;
        z = (z ^ (z >> 13)) * 0xC2B2AE35u;
        z ^= z >> 16;
        return VxSyntheticRandom(z);
    }

    uint32_t Next() { return static_cast<uint32_t>(m_engine()); }

    // [0, 1) with 53 random bits.
    double Uniform() {
        const uint64_t a = Next() >> 5; // 27 bits
        const uint64_t b = Next() >> 6; // 26 bits
        return static_cast<double>((a << 26) | b) * (1.0 / 9007199254740992.0);
    }
    double Uniform(double lo, double hi) { return lo + (hi - lo) * Uniform(); }
    // Roughly N(0, 1): the Irwin-Hall sum of four uniforms, centred and scaled;
    // bounded by +-3.46.
    double Gaussian() {
        const double s = Uniform() + Uniform() + Uniform() + Uniform();
        return (s - 2.0) * 1.7320508075688772;
    }
    // 0 .. n-1 (n > 0) by rejection, so that every value is equally likely.
    uint32_t Below(uint32_t n) {
        const uint32_t limit = UINT32_MAX - UINT32_MAX % n;
        uint32_t r = Next();
        while (r >= limit) {
            r = Next();
        }
        return r % n;
    }

private:
    std::mt19937 m_engine;
};
