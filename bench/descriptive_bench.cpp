// Descriptive statistics on large inputs: percentile by selection, histogram,
// ranks, distinct values, covariance matrix and autocorrelation. The data
// come from a splitmix64 stream through Box-Muller, which
// bench/peer_descriptive.py reproduces bit for bit in NumPy, so statkit and
// its peers work on the same numbers.

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <map>

#include "statkit/Statistics.h"

namespace {

using namespace statkit::Statistics;

// Vigna's splitmix64, element i of the stream seeded with `seed`.
std::uint64_t splitmix64(std::uint64_t seed, std::uint64_t i) {
  std::uint64_t z = seed + (i + 1) * 0x9E3779B97F4A7C15ULL;
  z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
  z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
  return z ^ (z >> 31);
}

double uniform(std::uint64_t seed, std::uint64_t i) { return static_cast<double>(splitmix64(seed, i) >> 11) * 0x1p-53; }

// n standard normal values: element i from uniforms 2i and 2i + 1 (the cosine branch).
const TVec& normals(int n, std::uint64_t seed) {
  static std::map<std::pair<int, std::uint64_t>, TVec> cache;
  auto [it, fresh] = cache.try_emplace({n, seed});
  if (fresh) {
    it->second.Size(n);
    for (int i = 0; i < n; ++i) {
      const double u1 = 1.0 - uniform(seed, 2 * static_cast<std::uint64_t>(i));
      const double u2 = uniform(seed, 2 * static_cast<std::uint64_t>(i) + 1);
      it->second[i] = std::sqrt(-2.0 * std::log(u1)) * std::cos(2.0 * M_PI * u2);
    }
  }
  return it->second;
}

void Percentile_1e7(benchmark::State& state) {
  const TVec& x = normals(10000000, 1);
  for (auto _ : state) benchmark::DoNotOptimize(Percentile(x, 0.3, pctMethodNMinus));
}

void Histogram_1e7_100(benchmark::State& state) {
  const TVec& x = normals(10000000, 1);
  TVec counts, edges;
  for (auto _ : state) Histogram(x, 100, counts, edges, false);
}

void TiedRanks_1e6(benchmark::State& state) {
  const TVec& x = normals(1000000, 2);
  TVec ranks;
  double tieSum;
  for (auto _ : state) TiedRanks(x, ranks, tieSum);
}

void Unique_1e7(benchmark::State& state) {
  const TVec& x = normals(10000000, 1);
  TVec distinct;
  for (auto _ : state) Unique(x, distinct);
}

void Covariance_1e6x10(benchmark::State& state) {
  const TVec& v = normals(10000000, 3);
  TMtx x(1000000, 10), c;
  std::copy(v.begin(), v.end(), x.data());  // row by row
  for (auto _ : state) Covariance(x, c, false);
}

void ACF_1e5_50(benchmark::State& state) {
  const TVec& x = normals(100000, 4);
  TVec r;
  for (auto _ : state) ACF(x, r, 50);
}

}  // namespace

BENCHMARK(Percentile_1e7)->Unit(benchmark::kMillisecond);
BENCHMARK(Histogram_1e7_100)->Unit(benchmark::kMillisecond);
BENCHMARK(TiedRanks_1e6)->Unit(benchmark::kMillisecond);
BENCHMARK(Unique_1e7)->Unit(benchmark::kMillisecond);
BENCHMARK(Covariance_1e6x10)->Unit(benchmark::kMillisecond);
BENCHMARK(ACF_1e5_50)->Unit(benchmark::kMillisecond);
