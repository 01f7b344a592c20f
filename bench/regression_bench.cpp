// Linear regression and analysis of variance at sizes where the work shows;
// bench/peer_regression.py runs the same workloads on the same data through
// NumPy, SciPy and statsmodels.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <numbers>

#include "bench_data.h"
#include "statkit/Regress.h"

namespace {
using namespace statkit::Regress;

TVec normals(std::uint64_t seed, int n) { return bench::Normals(seed, n); }

TMtx matrix(std::uint64_t seed, int rows, int cols) {
  const TVec v = normals(seed, rows * cols);
  TMtx m(rows, cols);
  std::copy(v.begin(), v.end(), m.data());
  return m;
}

void BM_MulLinRegressAndTest1e5x50(benchmark::State& state) {
  const TMtx A = matrix(11, 100000, 50);
  const TVec y = normals(12, 100000);
  TVec B, YCalc, residuals, se;
  TMtx V;
  TRegStats stats;
  for (auto _ : state) {
    MulLinRegress(y, A, B, true, &YCalc, &V);
    RegressTest(y, YCalc, V, stats, residuals, se, true);
    benchmark::DoNotOptimize(stats.F);
  }
}
BENCHMARK(BM_MulLinRegressAndTest1e5x50)->Unit(benchmark::kMillisecond);
// The same workload again, timed against statsmodels' OLS fit (peer.py takes one peer per name).
void BM_MulLinRegressAndTest1e5x50VsOLS(benchmark::State& state) { BM_MulLinRegressAndTest1e5x50(state); }
BENCHMARK(BM_MulLinRegressAndTest1e5x50VsOLS)->Unit(benchmark::kMillisecond);

void BM_ANOVA1Vector1e6In10Groups(benchmark::State& state) {
  const TVec data = normals(13, 1000000);
  TVec group;
  group.Size(data.Length());
  for (int i = 0; i < data.Length(); ++i) group[i] = i % 10;
  double p;
  for (auto _ : state) benchmark::DoNotOptimize(ANOVA1(data, group, p, 0.05));
}
BENCHMARK(BM_ANOVA1Vector1e6In10Groups)->Unit(benchmark::kMillisecond);

void anova2(benchmark::State& state, int a, int b) {
  const TMtx data = matrix(14, a * 5, b);
  double pr, pc, pi;
  for (auto _ : state) benchmark::DoNotOptimize(ANOVA2(data, pr, pc, pi, 5, 0.05));
}
void BM_ANOVA2_1000x20x5(benchmark::State& state) { anova2(state, 1000, 20); }
void BM_ANOVA2_20x10x5(benchmark::State& state) { anova2(state, 20, 10); }
BENCHMARK(BM_ANOVA2_1000x20x5)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ANOVA2_20x10x5)->Unit(benchmark::kMillisecond);

}  // namespace
