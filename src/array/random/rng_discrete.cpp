// The discrete laws of a stream: binomial (inversion below n min(p, 1 - p) = 10,
// BTRD above), Poisson (inversion below a mean of 10, PTRS above), negative
// binomial (a Poisson with a gamma mean) and hypergeometric (inversion for a
// variance below 10, HRUA above). Inversion uses a guide table built once per
// call, since every value of a call shares the parameters.

#include <cmath>

#include "array/random/philox.h"
#include "array/random/rng_samplers.h"
#include "statkit/array/Errors.h"
#include "statkit/array/Math.h"
#include "statkit/array/Random.h"

namespace statkit {

using rng::BitSource;

namespace {
void fill(double* out, int n, double value) {
  for (int i = 0; i < n; ++i) out[i] = value;
}
// Below this variance a guide table is cheaper than a rejection method and small.
constexpr double kTableVariance = 10.0;
}  // namespace

void TRngStream::RandomBinomial(TKalpa& Dst, int Trials, double P) {
  double* out = rng::RealDestination(Dst);
  rng::Require(Trials >= 0 && P >= 0.0 && P <= 1.0);
  int count = Dst.Length();
  BitSource bits(key_, counter_);
  double n = Trials;
  if (Trials == 0 || P == 0.0 || P == 1.0) return fill(out, count, P == 1.0 ? n : 0.0);
  // Both methods work with p <= 1/2: X(n, p) = n - X(n, 1 - p).
  bool flip = P > 0.5;
  double p = flip ? 1.0 - P : P, q = 1.0 - p;
  auto place = [&](int i, double k) { out[i] = flip ? n - k : k; };
  if (n * p < kTableVariance) {
    rng::GuideTable table;
    double odds = p / q;
    table.Build(0.0, n, std::floor((n + 1.0) * p), [&](double k) { return (n - k) / (k + 1.0) * odds; });
    for (int i = 0; i < count; ++i) place(i, table(bits.U01()));
    return;
  }
  rng::BinomialBTRD btrd(n, p, count);
  for (int i = 0; i < count; ++i) place(i, btrd(bits));
}

void TRngStream::RandomPoisson(TKalpa& Dst, double Lambda, TPoissonRandMethod Method) {
  double* out = rng::RealDestination(Dst);
  rng::Require(Method == pmPTRS && std::isfinite(Lambda) && Lambda >= 0.0);
  int count = Dst.Length();
  BitSource bits(key_, counter_);
  if (Lambda == 0.0) return fill(out, count, 0.0);
  if (Lambda < kTableVariance) {
    rng::GuideTable table;
    table.Build(0.0, INF, std::floor(Lambda), [&](double k) { return Lambda / (k + 1.0); });
    for (int i = 0; i < count; ++i) out[i] = table(bits.U01());
    return;
  }
  rng::PoissonPTRS ptrs(Lambda, count);
  for (int i = 0; i < count; ++i) out[i] = ptrs(bits);
}

void TRngStream::RandomNegbinomial(TKalpa& Dst, double R, double P) {
  double* out = rng::RealDestination(Dst);
  rng::Require(std::isfinite(R) && R > 0.0 && P >= 0.0 && P <= 1.0);
  int count = Dst.Length();
  BitSource bits(key_, counter_);
  if (P == 0.0) return fill(out, count, INF);  // no success ever: infinitely many failures
  if (P == 1.0) return fill(out, count, 0.0);
  double scale = (1.0 - P) / P;
  if (!std::isfinite(scale)) return fill(out, count, INF);  // P so small that the mean overflows
  // A Poisson variate whose mean is a gamma variate of shape R and scale (1 - P)/P
  // (Devroye, Non-Uniform Random Variate Generation, 1986, X.4.7).
  const auto& zig = rng::Ziggurat();
  rng::GammaMT gamma(R);
  for (int i = 0; i < count; ++i) out[i] = rng::PoissonAny(bits, gamma(bits, zig) * scale);
}

void TRngStream::RandomHypergeometric(TKalpa& Dst, int Population, int Marked, int Sample) {
  double* out = rng::RealDestination(Dst);
  rng::Require(Population >= 0 && Marked >= 0 && Sample >= 0 && Marked <= Population && Sample <= Population);
  int count = Dst.Length();
  BitSource bits(key_, counter_);
  double N = Population, M = Marked, n = Sample;
  // Reduce to at most half the population marked and sampled: the unsampled items
  // hold the marked ones that the sample misses, and unmarked items are marked
  // items of the complementary marking.
  bool flipSample = n > N / 2.0, flipMarked = M > N / 2.0;
  double n1 = flipSample ? N - n : n, M1 = flipMarked ? N - M : M;
  auto place = [&](int i, double y) {
    double x = flipMarked ? n1 - y : y;
    out[i] = flipSample ? M - x : x;
  };
  if (n1 == 0.0 || M1 == 0.0) {
    for (int i = 0; i < count; ++i) place(i, 0.0);
    return;
  }
  double var = n1 * (M1 / N) * (1.0 - M1 / N) * (N - n1) / (N - 1.0);
  if (var < kTableVariance) {
    rng::GuideTable table;
    double rest = N - M1 - n1;
    double mode = std::floor((n1 + 1.0) * (M1 + 1.0) / (N + 2.0));
    table.Build(std::fmax(0.0, -rest), std::fmin(n1, M1), mode,
                [&](double k) { return (M1 - k) * (n1 - k) / ((k + 1.0) * (rest + k + 1.0)); });
    for (int i = 0; i < count; ++i) place(i, table(bits.U01()));
    return;
  }
  rng::HypergeometricHRUA hrua(N, M1, n1, count);
  for (int i = 0; i < count; ++i) place(i, hrua(bits));
}

}  // namespace statkit
