// The normal distribution function over 10^7 points, standard and shifted and
// scaled. The points are the standard normal quantiles at (pi(i) + 1/2)/n for a
// fixed permutation pi, so that they are spread like normal data, in no order,
// and the same in bench/peer_probability.py.

#include <benchmark/benchmark.h>

#include <cstdint>

#include "statkit/Array.h"

namespace {

constexpr std::int64_t kN = 10000000;

const statkit::TVec& points() {
  static statkit::TVec x = [] {
    statkit::TVec p, q;
    p.Size(kN);
    for (std::int64_t i = 0; i < kN; ++i) p[i] = (static_cast<double>((i * 2654435761LL) % kN) + 0.5) / kN;
    statkit::NormalCDFInv(p, 0.0, 1.0, q);
    return q;
  }();
  return x;
}

void NormalCDF(benchmark::State& state) {
  statkit::TVec dst;
  points();
  for (auto _ : state) {
    statkit::NormalCDF(points(), 0.0, 1.0, dst);
    benchmark::DoNotOptimize(dst.data());
  }
  state.SetItemsProcessed(state.iterations() * kN);
}

void NormalCDFMuSigma(benchmark::State& state) {
  statkit::TVec dst;
  points();
  for (auto _ : state) {
    statkit::NormalCDF(points(), 0.5, 1.5, dst);
    benchmark::DoNotOptimize(dst.data());
  }
  state.SetItemsProcessed(state.iterations() * kN);
}

}  // namespace

BENCHMARK(NormalCDF)->Unit(benchmark::kMillisecond);
BENCHMARK(NormalCDFMuSigma)->Unit(benchmark::kMillisecond);
