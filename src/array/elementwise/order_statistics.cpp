// Order statistics in a few sequential reads instead of a sort.
//
// MinMax keeps four lanes of minima and maxima with branch-free selections and
// counts NaNs apart, so the compiler vectorises the loop to the memory
// bandwidth. SelectRanks is a radix selection (an MSD radix sort that follows
// only the buckets holding the wanted ranks): an 11-bit histogram of the top
// key digit (2048 counters, in L1), a gather of the one or two buckets that
// hold the ranks, and again on the next digit while one bucket still holds
// many keys; the remainder is introselected. Two reads of the data replace
// the copy and introselect of the whole array.

#include "array/elementwise/order_statistics.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <vector>

namespace statkit::detail {

void MinMax(const double* x, std::size_t n, double& lo, double& hi) {
  // GCC/Clang vector extensions, two-lane vectors (native from SSE2 on): the min and
  // max reductions are not vectorised automatically, the compiler having to keep the
  // IEEE semantics of signed zeros and NaNs. NaNs are flagged apart (v != v).
  typedef double Pair __attribute__((vector_size(16)));
  typedef std::int64_t PairMask __attribute__((vector_size(16)));
  Pair mn0 = {x[0], x[0]}, mn1 = mn0, mx0 = mn0, mx1 = mn0;
  PairMask nan = {0, 0};
  std::size_t i = 0;
  for (; i + 4 <= n; i += 4) {
    Pair a, b;
    std::memcpy(&a, x + i, sizeof a);
    std::memcpy(&b, x + i + 2, sizeof b);
    mn0 = a < mn0 ? a : mn0;
    mn1 = b < mn1 ? b : mn1;
    mx0 = a > mx0 ? a : mx0;
    mx1 = b > mx1 ? b : mx1;
    nan |= (a != a) | (b != b);
  }
  double l = std::min({mn0[0], mn0[1], mn1[0], mn1[1]}), h = std::max({mx0[0], mx0[1], mx1[0], mx1[1]});
  bool anyNan = (nan[0] | nan[1]) != 0 || std::isnan(x[0]);
  for (; i < n; ++i) {
    l = x[i] < l ? x[i] : l;
    h = x[i] > h ? x[i] : h;
    anyNan |= std::isnan(x[i]);
  }
  lo = anyNan ? NAN : l;
  hi = anyNan ? NAN : h;
}

namespace {

constexpr int kDigitBits = 11;
constexpr std::size_t kBuckets = std::size_t{1} << kDigitBits;
constexpr std::uint64_t kDigitMask = kBuckets - 1;
// At or below this many candidates an introselect beats another counting read.
constexpr std::size_t kDirect = std::size_t{1} << 14;

// Candidates are keys read through keyAt(0 .. count - 1) that share every digit above
// `shift`. Counts the digit at `shift`, finds the buckets holding the candidate ranks
// k .. k + m - 1 and gathers their keys into `into`; k becomes the rank among them.
// Returns false (nothing gathered) when one bucket holds every candidate.
template <class KeyAt>
bool narrow(KeyAt keyAt, std::size_t count, int shift, std::size_t& k, std::size_t m,
            std::vector<std::uint64_t>& into, bool& straddles) {
  std::array<std::uint32_t, kBuckets> hist{};
  for (std::size_t i = 0; i < count; ++i) ++hist[(keyAt(i) >> shift) & kDigitMask];
  std::size_t below = 0, first = 0;
  while (below + hist[first] <= k) below += hist[first++];
  std::size_t last = first, through = below + hist[first];
  while (through < k + m) through += hist[++last];
  straddles = first != last;
  if (through - below == count) return false;
  into.clear();
  into.reserve(through - below);
  for (std::size_t i = 0; i < count; ++i) {
    const std::uint64_t key = keyAt(i);
    const std::size_t digit = (key >> shift) & kDigitMask;
    if (digit >= first && digit <= last) into.push_back(key);
  }
  k -= below;
  return true;
}

// Partial sort of keys so that ranks r .. r + m - 1 are found; writes them to out.
void selectInKeys(std::vector<std::uint64_t>& keys, std::size_t r, std::size_t m, double* out) {
  auto at = keys.begin() + static_cast<std::ptrdiff_t>(r);
  std::nth_element(keys.begin(), at, keys.end());
  out[0] = FromOrderKey(*at);
  for (std::size_t i = 1; i < m; ++i) {
    // everything after rank r + i - 1 is no smaller: the next rank is the least of the rest
    ++at;
    std::iter_swap(at, std::min_element(at, keys.end()));
    out[i] = FromOrderKey(*at);
  }
}

}  // namespace

void SelectRanks(const double* x, std::size_t n, std::size_t k, std::size_t m, double* out) {
  std::vector<std::uint64_t> keys, next;
  auto fromData = [x](std::size_t i) { return OrderKey(x[i]); };
  int shift = 64 - kDigitBits;
  bool straddles = false;
  if (n <= kDirect || !narrow(fromData, n, shift, k, m, keys, straddles)) {
    keys.resize(n);
    for (std::size_t i = 0; i < n; ++i) keys[i] = fromData(i);
  }
  // Follow the digits down while a single bucket still holds many candidates.
  for (shift -= kDigitBits; shift >= 0 && !straddles && keys.size() > kDirect; shift -= kDigitBits)
    if (narrow([&keys](std::size_t i) { return keys[i]; }, keys.size(), shift, k, m, next, straddles))
      keys.swap(next);
  selectInKeys(keys, k, m, out);
}

}  // namespace statkit::detail
