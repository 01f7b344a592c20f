#pragma once
// Order statistics without a sort: the extremes in one read, and any one or two
// adjacent ranks by radix selection on the order-preserving integer image of
// the doubles. NaNs rank after +INF, as TVec::SortAscend orders them.

#include <bit>
#include <cstddef>
#include <cstdint>

namespace statkit::detail {

/// \brief Unsigned key whose ascending order is that of the doubles: -0 just below +0,
/// NaNs of either sign after +INF. Branch-free: the sign of data is a coin toss that a
/// branch would mispredict half the time.
inline std::uint64_t OrderKey(double v) {
  constexpr std::uint64_t sign = 0x8000000000000000ULL;
  std::uint64_t b = std::bit_cast<std::uint64_t>(v);
  const std::uint64_t isNan = (b & ~sign) > 0x7FF0000000000000ULL;
  b &= ~(isNan << 63);  // a NaN of either sign ranks last
  // negative: all bits flipped; positive: the sign bit set
  return b ^ ((0 - (b >> 63)) | sign);
}

/// \brief The double whose key is \p k (a NaN comes back with its sign cleared).
inline double FromOrderKey(std::uint64_t k) {
  constexpr std::uint64_t sign = 0x8000000000000000ULL;
  return std::bit_cast<double>(k ^ (((k >> 63) - 1) | sign));
}

/// \brief The smallest and the largest of \p x[0..n), n >= 1; both NaN when a NaN is present.
void MinMax(const double* x, std::size_t n, double& lo, double& hi);

/// \brief out[i] = the (k + i)-th smallest element of \p x[0..n) (0-based) for i < m;
/// requires 1 <= m and k + m <= n. \p x is not modified.
void SelectRanks(const double* x, std::size_t n, std::size_t k, std::size_t m, double* out);

}  // namespace statkit::detail
