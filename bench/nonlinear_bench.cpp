// Logistic (binomial by IRLS, ordinal through Marquardt) and nonlinear least-squares fits at the sizes that
// decide their cost; bench/peer_nonlinear.py runs the same fits on the same data through statsmodels and
// SciPy.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <fstream>
#include <sstream>
#include <string>

#include "bench_data.h"
#include "statkit/Regress.h"

namespace {
using namespace statkit::Regress;

TVec uniforms(std::uint64_t seed, int n) { return bench::Draws(seed, n, [](double u) { return u; }); }

// An intercept and p - 1 covariates uniform on (-1, 1); eta = A beta with beta_j = 0.3 (-1)^j.
void design(int n, int p, TMtx& A, TVec& eta) {
  const TVec u = uniforms(7, n * p);
  A.Size(n, p);
  eta.Size(n);
  for (int i = 0; i < n; ++i) {
    eta[i] = 0;
    for (int j = 0; j < p; ++j) {
      A(i, j) = j == 0 ? 1.0 : 2 * u[i * p + j] - 1;
      eta[i] += A(i, j) * 0.3 * (j % 2 ? -1 : 1);
    }
  }
}

void BM_LogisticBinomial_1e5x20(benchmark::State& state) {
  TMtx A;
  TVec eta, B, se;
  design(100000, 20, A, eta);
  const TVec u = uniforms(11, 100000);
  TVec y(100000), n(100000);
  for (int i = 0; i < 100000; ++i) n[i] = 10, y[i] = std::floor(10 / (1 + std::exp(-eta[i])) + u[i]);
  for (auto _ : state) LogisticRegress(y, n, B, &A, 0.0, nullptr, &se, 1e-8);
}
BENCHMARK(BM_LogisticBinomial_1e5x20)->Unit(benchmark::kMillisecond);

void BM_LogisticOrdinal_1e4x5(benchmark::State& state) {
  TMtx A, X(10000, 5);
  TVec eta, B, theta, se;
  design(10000, 6, A, eta);  // the intercept column is left out: the cut-points take its place
  for (int i = 0; i < 10000; ++i)
    for (int j = 0; j < 5; ++j) X(i, j) = A(i, j + 1);
  const TVec u = uniforms(13, 10000);
  TVec y(10000);
  for (int i = 0; i < 10000; ++i) {
    const double latent = eta[i] + std::log(u[i] / (1 - u[i]));
    y[i] = (latent > -1.0) + (latent > 0.0) + (latent > 1.0) + (latent > 2.0);
  }
  double fmin;
  TOptStopReason why;
  for (auto _ : state) LogisticRegress(y, X, B, theta, se, fmin, why, 100, 1e-8, true);
}
BENCHMARK(BM_LogisticOrdinal_1e4x5)->Unit(benchmark::kMillisecond);

// NIST's Thurber (cubic over cubic) from its first start values, with exact derivatives.
double thurber(std::span<const double> b, double x) {
  return (b[0] + x * (b[1] + x * (b[2] + x * b[3]))) / (1 + x * (b[4] + x * (b[5] + x * b[6])));
}
void thurberDeriv(TRegressFun, double x, double, std::span<const double> b, TVec& g) {
  const double num = b[0] + x * (b[1] + x * (b[2] + x * b[3])), den = 1 + x * (b[4] + x * (b[5] + x * b[6]));
  for (int j = 0; j < 4; ++j) g[j] = std::pow(x, j) / den;
  for (int j = 4; j < 7; ++j) g[j] = -num * std::pow(x, j - 3) / (den * den);
}

void BM_NLinRegressThurber(benchmark::State& state) {
  std::ifstream in(std::string(__FILE__).substr(0, std::string(__FILE__).rfind("/bench/")) +
                   "/../shared/strd/nls/Thurber.dat");
  std::string line;
  while (std::getline(in, line) && line.rfind("Data:   y", 0) != 0) {
  }
  std::vector<double> xs, ys;
  for (double x, y; in >> y >> x;) xs.push_back(x), ys.push_back(y);
  if (xs.empty()) return state.SkipWithError("NIST StRD Thurber.dat not found");
  const TVec X(xs), Y(ys);
  TOptStopReason why;
  for (auto _ : state) {
    TVec B{1000, 1000, 400, 40, 0.7, 0.3, 0.03};
    NLinRegress(X, Y, thurber, thurberDeriv, B, optMarquardt, why, nullptr, nullptr, false, 1000, 1e-8, 1e-8);
  }
}
BENCHMARK(BM_NLinRegressThurber)->Unit(benchmark::kMicrosecond);

}  // namespace
