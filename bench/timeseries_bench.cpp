// The exact ARIMA likelihood, its maximisation and forecasts at the sizes that
// decide their cost; bench/peer_timeseries.py runs the same workloads through
// statsmodels' ARIMA. The series is ARMA(2,1) from a SplitMix64 normal stream.
#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <cmath>
#include <cstdint>
#include <numbers>
#include <vector>

#include "statkit/StatTimeSerAnalysis.h"

namespace {
using namespace statkit::StatTimeSerAnalysis;

const TVec kP{0.5, -0.3}, kT{-0.4};  // x_t = 0.5 x_(t-1) - 0.3 x_(t-2) + e_t + 0.4 e_(t-1)

// SplitMix64 uniforms (Steele, Lea and Flood 2014), one Box-Muller normal per pair, through the
// ARMA(2,1) recursion from zeros, plus 10: a series NumPy reproduces bit for bit.
TVec series(int n) {
  std::uint64_t state = 7;
  auto uniform = [&state]() {
    std::uint64_t z = (state += 0x9E3779B97F4A7C15ull);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return (double((z ^ (z >> 31)) >> 11) + 0.5) * 0x1p-53;
  };
  std::vector<double> e(n), x(n);
  for (int i = 0; i < n; ++i) {
    const double u1 = uniform(), u2 = uniform();
    e[i] = std::sqrt(-2.0 * std::log(u1)) * std::cos(2.0 * std::numbers::pi * u2);
  }
  for (int t = 0; t < n; ++t)
    x[t] = e[t] + (t > 0 ? 0.5 * x[t - 1] + 0.4 * e[t - 1] : 0.0) + (t > 1 ? -0.3 * x[t - 2] : 0.0);
  TVec out(x);
  out.Offset(10.0);
  return out;
}

void BM_ArimaLike(benchmark::State& state) {
  const TVec x = series(static_cast<int>(state.range(0)));
  const double pars[3] = {0.5, -0.3, -0.4}, consts[2] = {0, 2};
  TVec w, acf, ar, ma;
  TMtx m5, m6, m7;
  TObject* const objects[8] = {const_cast<TVec*>(&x), &w, &acf, &ar, &ma, &m5, &m6, &m7};
  for (auto _ : state) benchmark::DoNotOptimize(ArimaLike(pars, consts, objects));
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  state.counters["peak_rss_MB"] = usage.ru_maxrss / 1024.0;
}
BENCHMARK(BM_ArimaLike)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

void BM_ArimaMLE(benchmark::State& state) {
  const TVec x = series(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    TVec P{0.0, 0.0}, T{0.0}, aux;
    benchmark::DoNotOptimize(ArimaMLE(x, P, T, 0, aux));
  }
}
BENCHMARK(BM_ArimaMLE)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

void BM_PredictArima20(benchmark::State& state) {
  const TVec x = series(static_cast<int>(state.range(0)));
  TVec f, se;
  for (auto _ : state) {
    PredictArima(x, kP, kT, 0, 20, f, se);
    benchmark::DoNotOptimize(f.data());
  }
}
BENCHMARK(BM_PredictArima20)->Arg(10000)->Unit(benchmark::kMillisecond);

}  // namespace
