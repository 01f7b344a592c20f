#pragma once
// The benchmark data: SplitMix64 (Steele, Lea and Flood 2014) uniforms
// (k + 0.5) 2^-53 from the top 53 bits, a stream that the peer scripts
// reproduce bit for bit with NumPy, so both sides time identical samples.

#include <cstdint>

#include "statkit/Array.h"

namespace bench {

/// n uniforms in (0, 1) of the stream \p seed, each mapped through \p law.
template <class Law>
statkit::TVec Draws(std::uint64_t seed, int n, Law law) {
  std::uint64_t state = seed;
  statkit::TVec x;
  x.Size(n);
  for (int i = 0; i < n; ++i) {
    std::uint64_t z = (state += 0x9E3779B97F4A7C15ull);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    x.data()[i] = law((double((z ^ (z >> 31)) >> 11) + 0.5) * 0x1p-53);
  }
  return x;
}

}  // namespace bench
