// Filling 10^7 values from the variate procedures; bench/peer_random.py runs
// the same draws through numpy.random.default_rng() for the ratio statkit/peer.

#include <benchmark/benchmark.h>

#include "statkit/Statistics.h"

namespace {

using namespace statkit::Statistics;

constexpr int kValues = 10000000;

template <class Fill>
void fillValues(benchmark::State& state, Fill fill) {
  TVec x;
  x.Size(kValues);
  RandSeed(12345);
  for (auto _ : state) {
    fill(x);
    benchmark::DoNotOptimize(x.data());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * kValues);
}

void Uniform(benchmark::State& s) { fillValues(s, [](TVec& x) { RandomUniform(0.0, 1.0, x); }); }
void Normal(benchmark::State& s) { fillValues(s, [](TVec& x) { RandomNormal(0.0, 1.0, x); }); }
void Gamma(benchmark::State& s, double shape) { fillValues(s, [=](TVec& x) { RandomGamma(shape, 1.0, x); }); }
void Poisson(benchmark::State& s, double mean) { fillValues(s, [=](TVec& x) { RandomPoisson(mean, x); }); }
void Binom(benchmark::State& s, int n, double p) { fillValues(s, [=](TVec& x) { RandomBinom(n, p, x); }); }

}  // namespace

BENCHMARK(Uniform)->Unit(benchmark::kMillisecond);
BENCHMARK(Normal)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Gamma, shape_0_5, 0.5)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Gamma, shape_2_5, 2.5)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Poisson, mean_3, 3.0)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Poisson, mean_300, 300.0)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Binom, n_20_p_0_3, 20, 0.3)->Unit(benchmark::kMillisecond);
