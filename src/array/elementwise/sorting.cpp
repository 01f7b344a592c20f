// Ascending sorts of real vectors, with or without the permutation.
//
// NaNs go last (they are moved aside first, so the comparison sort never sees
// an unordered pair). Large inputs are sorted by a least-significant-digit
// radix sort on the order-preserving integer image of the doubles (flip all
// bits of negatives, the sign bit of positives): 11-bit digits, one counting
// pass for all digits, passes over constant digits skipped. It is stable, so
// tied elements keep their order and their original positions ascend.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <numeric>
#include <vector>

#include "array/checks.h"
#include "array/elementwise/order_statistics.h"
#include "statkit/array/Kalpa.h"

namespace statkit {

namespace {

constexpr int kRadixThreshold = 2048;  // below it std::sort wins
constexpr int kDigitBits = 11;
constexpr int kBuckets = 1 << kDigitBits;
constexpr int kDigits = (64 + kDigitBits - 1) / kDigitBits;

/// Stable LSD radix sort of keys, carrying idx along when it is not empty.
void radixSort(std::vector<std::uint64_t>& keys, std::vector<std::int32_t>& idx) {
  const std::size_t n = keys.size();
  const bool carry = !idx.empty();
  std::vector<std::uint32_t> counts(static_cast<std::size_t>(kDigits) * kBuckets, 0);
  for (std::uint64_t k : keys)
    for (int d = 0; d < kDigits; ++d) ++counts[d * kBuckets + ((k >> (d * kDigitBits)) & (kBuckets - 1))];

  std::vector<std::uint64_t> keys2(n);
  std::vector<std::int32_t> idx2(carry ? n : 0);
  for (int d = 0; d < kDigits; ++d) {
    std::uint32_t* c = &counts[d * kBuckets];
    // A digit that is the same in every key would only copy the data.
    if (std::any_of(c, c + kBuckets, [n](std::uint32_t v) { return v == n; })) continue;
    std::uint32_t sum = 0;
    for (int b = 0; b < kBuckets; ++b) {
      std::uint32_t t = c[b];
      c[b] = sum;
      sum += t;
    }
    const int shift = d * kDigitBits;
    for (std::size_t i = 0; i < n; ++i) {
      std::uint32_t pos = c[(keys[i] >> shift) & (kBuckets - 1)]++;
      keys2[pos] = keys[i];
      if (carry) idx2[pos] = idx[i];
    }
    keys.swap(keys2);
    if (carry) idx.swap(idx2);
  }
}

/// Sorts x[0..n) ascending (no NaNs present).
void sortValues(double* x, int n) {
  if (n < kRadixThreshold) {
    std::sort(x, x + n);
    return;
  }
  std::vector<std::uint64_t> keys(n);
  for (int i = 0; i < n; ++i) keys[i] = detail::OrderKey(x[i]);
  std::vector<std::int32_t> none;
  radixSort(keys, none);
  for (int i = 0; i < n; ++i) x[i] = detail::FromOrderKey(keys[i]);
}

/// Sorts x[0..n) ascending and reorders pos alongside (no NaNs present; stable).
void sortValuesWithPositions(double* x, std::int32_t* pos, int n) {
  if (n < kRadixThreshold) {
    std::vector<std::pair<double, std::int32_t>> pairs(n);
    for (int i = 0; i < n; ++i) pairs[i] = {x[i], pos[i]};
    std::stable_sort(pairs.begin(), pairs.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    for (int i = 0; i < n; ++i) x[i] = pairs[i].first, pos[i] = pairs[i].second;
    return;
  }
  std::vector<std::uint64_t> keys(n);
  std::vector<std::int32_t> idx(pos, pos + n);
  for (int i = 0; i < n; ++i) keys[i] = detail::OrderKey(x[i]);
  radixSort(keys, idx);
  for (int i = 0; i < n; ++i) x[i] = detail::FromOrderKey(keys[i]), pos[i] = idx[i];
}

}  // namespace

void TVec::SortAscend() {
  detail::RequireReal(*this);
  double* x = data();
  int n = Length();
  int finite = static_cast<int>(std::partition(x, x + n, [](double v) { return !std::isnan(v); }) - x);
  sortValues(x, finite);
}

void TVec::SortAscend(TVec& IndexVec) {
  detail::RequireReal(*this);
  if (&IndexVec == this) ERaise(msg::SizeMismatch);
  int n = Length();
  double* x = data();
  std::vector<std::int32_t> pos(n);
  std::iota(pos.begin(), pos.end(), 0);
  // NaNs to the end, in their original order, with their positions.
  std::vector<double> nanValues;
  std::vector<std::int32_t> nanPos;
  int kept = 0;
  for (int i = 0; i < n; ++i) {
    if (std::isnan(x[i])) {
      nanValues.push_back(x[i]);
      nanPos.push_back(i);
    } else {
      x[kept] = x[i];
      pos[kept++] = i;
    }
  }
  for (std::size_t j = 0; j < nanPos.size(); ++j) x[kept + j] = nanValues[j], pos[kept + j] = nanPos[j];
  sortValuesWithPositions(x, pos.data(), kept);
  IndexVec.Size(n);
  double* d = IndexVec.data();
  for (int i = 0; i < n; ++i) d[i] = pos[i];
}

}  // namespace statkit
