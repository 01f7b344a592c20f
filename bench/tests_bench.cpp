// Hypothesis tests at the sizes that decide their cost; bench/peer_tests.py
// runs the same tests on the same data through SciPy.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>

#include "bench_data.h"
#include "statkit/Statistics.h"

namespace {
using namespace statkit::Statistics;

TVec normals(std::uint64_t seed, int n) { return bench::Normals(seed, n); }

void BM_ShapiroWilks5000(benchmark::State& state) {
  TVec x = normals(1, 5000);
  std::sort(x.data(), x.data() + x.Length());
  THypothesisResult res;
  double p;
  for (auto _ : state) {
    ShapiroWilks(x, res, p, htRightTailed, 0.05);
    benchmark::DoNotOptimize(p);
  }
}
BENCHMARK(BM_ShapiroWilks5000);

void BM_tTestTwoSamples1e7(benchmark::State& state) {
  const TVec x = normals(2, 10000000);
  TVec y = normals(3, 10000000);
  y.Add(0.001);
  THypothesisResult res;
  double p, ci[2];
  for (auto _ : state) {
    tTest(x, y, res, p, ci, false, htTwoTailed, 0.05);
    benchmark::DoNotOptimize(p);
  }
}
BENCHMARK(BM_tTestTwoSamples1e7)->Unit(benchmark::kMillisecond);

// Small samples: the cost a binding adds shows against these (bench/python_bench.py).
void BM_tTestOneSample10(benchmark::State& state) {
  const TVec x = normals(21, 10);
  THypothesisResult res;
  double p, ci[2];
  for (auto _ : state) {
    tTest(x, 0.0, res, p, ci, htTwoTailed, 0.05);
    benchmark::DoNotOptimize(p);
  }
}
BENCHMARK(BM_tTestOneSample10);

void BM_PercentileEDF10(benchmark::State& state) {
  const TVec x = normals(21, 10);
  for (auto _ : state) benchmark::DoNotOptimize(Percentile(x, 0.5, pctMethodEDF));
}
BENCHMARK(BM_PercentileEDF10);

void BM_SpearmanRankCorr1e6(benchmark::State& state) {
  const TVec x = normals(4, 1000000);
  TVec y = normals(5, 1000000);
  y.Add(x);
  THypothesisResult res;
  double rs, p, ci[2];
  for (auto _ : state) {
    SpearmanRankCorr(x, y, rs, res, p, ci, htTwoTailed, 0.05);
    benchmark::DoNotOptimize(p);
  }
}
BENCHMARK(BM_SpearmanRankCorr1e6)->Unit(benchmark::kMillisecond);

void BM_WilcoxonSignExact14(benchmark::State& state) {
  TVec d = normals(6, 14);
  d.Add(0.3);
  THypothesisResult res;
  double p, ci[2];
  for (auto _ : state) {
    WilcoxonSign(d, 0.0, res, p, ci, htTwoTailed, 0.05);
    benchmark::DoNotOptimize(p);
  }
}
BENCHMARK(BM_WilcoxonSignExact14);

// Kolmogorov's test with its exact two-sided law: at 100 values against SciPy's exact one; at 10^4
// and 10^5 SciPy is asymptotic and the exact law costs about n (n D) L (Durbin's matrix by products,
// band L about 22), or the one-sided sum once n D^2 >= 4 (the shifted sample).
void kolmogorov(benchmark::State& state, std::uint64_t seed, int n, double shift) {
  TVec x = normals(seed, n);
  x.Add(shift);
  THypothesisResult res;
  double p;
  for (auto _ : state) {
    GOFKolmogorov(x, res, p, nullptr, nullptr, htTwoTailed, 0.05);
    benchmark::DoNotOptimize(p);
  }
}
void BM_GOFKolmogorov100(benchmark::State& state) { kolmogorov(state, 7, 100, 0.0); }
BENCHMARK(BM_GOFKolmogorov100);
void BM_GOFKolmogorov1e4(benchmark::State& state) { kolmogorov(state, 8, 10000, 0.0); }
BENCHMARK(BM_GOFKolmogorov1e4)->Unit(benchmark::kMillisecond);
void BM_GOFKolmogorov1e5(benchmark::State& state) { kolmogorov(state, 9, 100000, 0.0); }
BENCHMARK(BM_GOFKolmogorov1e5)->Unit(benchmark::kMillisecond);
void BM_GOFKolmogorovShifted1e5(benchmark::State& state) { kolmogorov(state, 9, 100000, 0.02); }
BENCHMARK(BM_GOFKolmogorovShifted1e5)->Unit(benchmark::kMillisecond);

}  // namespace
