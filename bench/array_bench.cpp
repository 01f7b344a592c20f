// Reductions of the array layer over 10^7 doubles, beside a plain read loop
// with four independent accumulators: the memory bandwidth that bounds them.

#include <benchmark/benchmark.h>

#include <random>

#include "statkit/Array.h"

namespace {

const statkit::TVec& data() {
  static statkit::TVec x = [] {
    statkit::TVec v;
    v.Size(10000000);
    std::mt19937_64 gen(7);
    std::normal_distribution<double> normal(3.0, 2.0);
    for (double& e : v) e = normal(gen);
    return v;
  }();
  return x;
}

void ReadLoop4(benchmark::State& state) {
  data();
  const double* x = data().data();
  const long n = data().Length();
  for (auto _ : state) {
    double s0 = 0, s1 = 0, s2 = 0, s3 = 0;
    for (long i = 0; i + 4 <= n; i += 4) {
      s0 += x[i];
      s1 += x[i + 1];
      s2 += x[i + 2];
      s3 += x[i + 3];
    }
    benchmark::DoNotOptimize(s0 + s1 + s2 + s3);
  }
  state.SetBytesProcessed(state.iterations() * n * sizeof(double));
}

void Mean(benchmark::State& state) {
  data();
  for (auto _ : state) benchmark::DoNotOptimize(data().Mean());
  state.SetBytesProcessed(state.iterations() * data().Length() * sizeof(double));
}

void StdDev(benchmark::State& state) {
  data();
  for (auto _ : state) benchmark::DoNotOptimize(data().StdDev());
  state.SetBytesProcessed(state.iterations() * data().Length() * sizeof(double));
}

}  // namespace

BENCHMARK(ReadLoop4)->Unit(benchmark::kMillisecond);
BENCHMARK(Mean)->Unit(benchmark::kMillisecond);
BENCHMARK(StdDev)->Unit(benchmark::kMillisecond);
