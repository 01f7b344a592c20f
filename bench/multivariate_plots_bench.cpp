// Principal components of 10^5 observations of 50 variables (covariance mode) and a
// normal probability plot of 10^6 values. Timing only: the data are standard normal
// draws of statkit's own generator; bench/peer_multivariate_plots.py times its peers
// on NumPy draws of the same law.

#include <benchmark/benchmark.h>

#include "statkit/StatProbPlots.h"
#include "statkit/Statistics.h"

namespace {

using namespace statkit::Statistics;

TMtx normalMatrix(int rows, int cols) {
  statkit::RandSeed(20261125);
  TMtx x(rows, cols);
  RandomNormal(0.0, 1.0, x);
  return x;
}

// The same run is set against three NumPy paths to the same components.
void PCACovMat_1e5x50(benchmark::State& state) {
  const TMtx x = normalMatrix(100000, 50);
  TMtx pc, scores;
  TVec eigen;
  for (auto _ : state) PCA(x, pc, scores, eigen, nullptr, PCACovMat);
}

void StatNormalPlot_1e6(benchmark::State& state) {
  const TMtx x = normalMatrix(1000000, 1);
  TVec data, xOut, yOut;
  data.Copy(x);
  double x1, x2, y1, y2;
  for (auto _ : state) statkit::StatProbPlots::StatNormalPlot(data, xOut, yOut, x1, x2, y1, y2, false);
}

}  // namespace

BENCHMARK(PCACovMat_1e5x50)->Unit(benchmark::kMillisecond);
BENCHMARK(PCACovMat_1e5x50)->Name("PCACovMat_1e5x50_vs_Gram")->Unit(benchmark::kMillisecond);
BENCHMARK(PCACovMat_1e5x50)->Name("PCACovMat_1e5x50_vs_QR")->Unit(benchmark::kMillisecond);
BENCHMARK(StatNormalPlot_1e6)->Unit(benchmark::kMillisecond);
