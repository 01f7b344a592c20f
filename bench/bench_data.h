#pragma once
// The benchmark data: SplitMix64 (Steele, Lea and Flood 2014) uniforms
// (k + 0.5) 2^-53 from the top 53 bits, a stream that the peer scripts
// reproduce bit for bit with NumPy (peer_tests.py), so both sides time
// identical samples.

#include <cmath>
#include <cstdint>
#include <numbers>

#include "statkit/Array.h"

namespace bench {

/// The uniforms of the stream \p seed, one per call.
class Uniforms {
public:
  explicit Uniforms(std::uint64_t seed) : state_(seed) {}
  double operator()() {
    std::uint64_t z = (state_ += 0x9E3779B97F4A7C15ull);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return (double((z ^ (z >> 31)) >> 11) + 0.5) * 0x1p-53;
  }

private:
  std::uint64_t state_;
};

/// n uniforms of the stream \p seed, each mapped through \p law.
template <class Law>
statkit::TVec Draws(std::uint64_t seed, int n, Law law) {
  Uniforms uniform(seed);
  statkit::TVec x;
  x.Size(n);
  for (int i = 0; i < n; ++i) x.data()[i] = law(uniform());
  return x;
}

/// n standard normals of the stream \p seed, one Box-Muller value per pair of uniforms.
inline statkit::TVec Normals(std::uint64_t seed, int n) {
  Uniforms uniform(seed);
  statkit::TVec x;
  x.Size(n);
  for (int i = 0; i < n; ++i) {
    const double u1 = uniform(), u2 = uniform();
    x.data()[i] = std::sqrt(-2.0 * std::log(u1)) * std::cos(2.0 * std::numbers::pi * u2);
  }
  return x;
}

}  // namespace bench
