// Distribution fits and the goodness-of-fit test built on them, at the sizes
// that decide their cost; bench/peer_fitting.py runs the same workloads on the
// same data through SciPy.
#include <benchmark/benchmark.h>

#include <cmath>

#include "bench_data.h"
#include "statkit/Statistics.h"

namespace {
using namespace statkit::Statistics;

void BM_GammaFit1e5(benchmark::State& state) {
  const TVec x = bench::Draws(11, 100000, [](double u) { return statkit::GammaCDFInv(u, 2.5, 1.7); });
  double a, b;
  for (auto _ : state) {
    GammaFit(x, a, b, 500, 1e-8);
    benchmark::DoNotOptimize(a);
  }
}
BENCHMARK(BM_GammaFit1e5)->Unit(benchmark::kMillisecond);

// Weibull with F(x) = 1 - exp(-a x^b), a = 0.02, b = 1.8, by inversion.
void BM_WeibullFit1e5(benchmark::State& state) {
  const TVec x = bench::Draws(12, 100000, [](double u) { return std::pow(-std::log1p(-u) / 0.02, 1 / 1.8); });
  double a, b;
  for (auto _ : state) {
    WeibullFit(x, a, b, 500, 1e-8);
    benchmark::DoNotOptimize(a);
  }
}
BENCHMARK(BM_WeibullFit1e5)->Unit(benchmark::kMillisecond);

// The normal law fitted to 10^6 values and tested on 20 bins (normals by inversion).
void BM_GOFChi2TestNormal1e6(benchmark::State& state) {
  const TVec x = bench::Draws(13, 1000000, [](double u) { return statkit::NormalCDFInv(u, 10.0, 2.0); });
  THypothesisResult res;
  double p;
  for (auto _ : state) {
    GOFChi2Test(x, distNormal, 20, res, p, htRightTailed, 0.05);
    benchmark::DoNotOptimize(p);
  }
}
BENCHMARK(BM_GOFChi2TestNormal1e6)->Unit(benchmark::kMillisecond);

}  // namespace
