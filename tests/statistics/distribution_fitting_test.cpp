// Distribution fits against SciPy: the maximum-likelihood fits against the exact
// roots of the likelihood equations and the intervals of the analytic scores;
// the closed forms against the quantiles of the estimators' laws; the messages.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "statkit/Statistics.h"
#include "support/expect.h"
#include "support/fixture.h"

namespace statkit::test {
namespace {
using namespace statkit::Statistics;

using MlFit = std::function<void(const TVec&, double&, double&, double*, double*, int, double, double)>;
const std::map<std::string, MlFit> kMlFits = {
    {"Gamma", [](auto&&... a) { GammaFit(a...); }},
    {"Weibull", [](auto&&... a) { WeibullFit(a...); }},
    {"Beta", [](auto&&... a) { BetaFit(a...); }},
};

void ExpectInterval(const double* ci, const std::vector<double>& ref, double tol, const char* what) {
  const double scale = std::max(ref[1] - ref[0], std::fabs(ref[0]));
  for (int k = 0; k < 2; ++k) EXPECT_NEAR(ci[k], ref[k], tol * scale) << what << " limit " << k;
}

TEST(MaximumLikelihoodFit, ReachesTheLikelihoodRootAndScoreIntervals) {
  double worst = 0;
  for (const auto& r : LoadFixture("distribution_fitting.txt")) {
    if (r.Str("kind") != "ml") continue;
    const TVec x = r.Vec("x");
    SCOPED_TRACE(r.Str("dist") + " n = " + std::to_string(x.Length()));
    PoolBalance balance;
    double a = 0, b = 0, cia[2], cib[2];
    kMlFits.at(r.Str("dist"))(x, a, b, cia, cib, 5000, 1e-10, r.Num("alpha"));
    // The simplex stops when the log-likelihood, of size n, is flat to 1e-10 n: the estimates are then
    // within about sqrt(1e-10) of their curvature scale, well inside 1e-6.
    EXPECT_REL(a, r.Num("a"), 1e-6);
    EXPECT_REL(b, r.Num("b"), 1e-6);
    worst = std::max({worst, std::fabs(a / r.Num("a") - 1), std::fabs(b / r.Num("b") - 1)});
    // Forward-difference scores with h = 1.5e-8 carry a relative error of order h / theta.
    ExpectInterval(cia, r.Nums("cia"), 1e-5, "a");
    ExpectInterval(cib, r.Nums("cib"), 1e-5, "b");
  }
  std::printf("maximum-likelihood estimates: worst relative error %.2g\n", worst);
}

// Quantiles of the t, chi-square and gamma laws here and in SciPy agree to a few hundred eps.
constexpr double kQuantileTol = 1000 * kEps;

void ExpectPair(double lo, double hi, const std::vector<double>& ref, const std::string& what) {
  EXPECT_REL(lo, ref[0], kQuantileTol) << what;
  EXPECT_REL(hi, ref[1], kQuantileTol) << what;
}

TEST(ClosedFormFit, MatchesTheEstimatorsLaws) {
  for (const auto& r : LoadFixture("distribution_fitting.txt")) {
    if (r.Str("kind") != "closed") continue;
    const TVec x = r.Vec("x");
    const double alpha = r.Num("alpha");
    SCOPED_TRACE("n = " + std::to_string(x.Length()) + ", x0 = " + std::to_string(x[0]));
    PoolBalance balance;
    double e1, e2, ci1[2], ci2[2];
    NormalFit(x, e1, e2, ci1, ci2, alpha);
    ExpectPair(e1, e2, r.Nums("normal"), "normal");
    ExpectPair(ci1[0], ci1[1], r.Nums("normalmu"), "normal mu");
    ExpectPair(ci2[0], ci2[1], r.Nums("normalsigma"), "normal sigma");
    if (r.Has("lognormal")) {
      LogNormalFit(x, e1, e2, ci1, ci2, alpha);
      ExpectPair(e1, e2, r.Nums("lognormal"), "log-normal");
      ExpectPair(ci1[0], ci1[1], r.Nums("lognormalmu"), "log-normal mu");
      ExpectPair(ci2[0], ci2[1], r.Nums("lognormalsigma"), "log-normal sigma");
      ExponentFit(x, e1, ci1, alpha);
      EXPECT_REL(e1, r.Num("exponent"), kQuantileTol);
      ExpectPair(ci1[0], ci1[1], r.Nums("exponentci"), "exponential");
      RayleighFit(x, e1, ci1, alpha);
      EXPECT_REL(e1, r.Num("rayleigh"), kQuantileTol);
      ExpectPair(ci1[0], ci1[1], r.Nums("rayleighci"), "Rayleigh");
    }
    if (r.Has("poisson")) {
      PoissonFit(x, e1, ci1, alpha);
      EXPECT_REL(e1, r.Num("poisson"), kQuantileTol);
      ExpectPair(ci1[0], ci1[1], r.Nums("poissonci"), "Poisson");
      GeometricFit(x, e1, ci1, alpha);
      EXPECT_REL(e1, r.Num("geometric"), kQuantileTol);
      ExpectPair(ci1[0], ci1[1], r.Nums("geometricci"), "geometric");
    }
    UniformFit(x, e1, e2, ci1, ci2, alpha);
    ExpectPair(e1, e2, r.Nums("uniform"), "uniform");
    ExpectPair(ci1[0], ci1[1], r.Nums("uniformcia"), "uniform a");
    ExpectPair(ci2[0], ci2[1], r.Nums("uniformcib"), "uniform b");
    int N = 0;
    UniformDFit(x, N, ci1, alpha);
    EXPECT_EQ(N, r.Num("uniformd"));
    ExpectPair(ci1[0], ci1[1], r.Nums("uniformdci"), "discrete uniform");
    if (r.Has("trials")) {
      // The outputs are the input itself: every count is read before any estimate is written.
      TVec p = x, lo, hi;
      BinomFit(p, r.Num("trials"), p, lo, hi, alpha);
      const auto P = r.Nums("binom"), L = r.Nums("binomlo"), H = r.Nums("binomhi");
      for (int i = 0; i < x.Length(); ++i) {
        EXPECT_REL(p[i], P[i], kQuantileTol) << "binomial " << i;
        EXPECT_REL(lo[i], L[i], kQuantileTol) << "binomial lower " << i;
        EXPECT_REL(hi[i], H[i], kQuantileTol) << "binomial upper " << i;
      }
    }
  }
}

// Data outside a law's support, or without any value, end in bounded time with an error or
// whatever estimates the optimiser reached; never a crash.
TEST(MaximumLikelihoodFit, EndsOnDataOutsideTheSupport) {
  const std::vector<TVec> samples = {TVec{-1.0, 2.0, 3.0}, TVec{0.0, 0.5, 1.0}, TVec{NAN, 1.0},
                                     TVec{INF, 1.0, 2.0}, TVec{1.0, 1.0, 1.0}, TVec{1e-300, 1e300}};
  for (const auto& [name, fit] : kMlFits)
    for (const auto& x : samples) {
      PoolBalance balance;
      double a = 0, b = 0, cia[2], cib[2];
      try {
        fit(x, a, b, cia, cib, 300, 1e-8, 0.05);
      } catch (const EArrayError&) {
      }
    }
}

TEST(DistributionFit, RejectsBadCalls) {
  TVec c;
  c.Size(3, true);
  const TVec x{1.0, 2.0}, n3{3.0, 4.0, 5.0};
  TVec P, lo, hi;
  double a, b, ci[2], ci2[2];
  int N;
  const RaiseCase table[] = {
      {"BetaFit: X.Complex=True", [&] { BetaFit(c, a, b, 10, 1e-8); }},
      {"BetaFit: X.Complex=True", [&] { BetaFit(c, a, b, ci, ci2, 10, 1e-8, 0.05); }},
      {"BinomFit: n cannot be zero!", [&] { BinomFit(x, 0.0, P); }},
      {"BinomFit: X.Complex=True", [&] { BinomFit(c, 3.0, P); }},
      {"BinomFit: X and n must match in size!", [&] { BinomFit(x, n3, P); }},
      {"BinomFit: X and n must match in size!", [&] { BinomFit(c, n3, P); }},
      {"BinomFit : BinomFit: n cannot be zero!", [&] { BinomFit(x, 0.0, P, lo, hi, 0.05); }},
      {"BinomFit : BinomFit: X.Complex=True", [&] { BinomFit(c, 3.0, P, lo, hi, 0.05); }},
      {"ExponentFit: X.Complex=True", [&] { ExponentFit(c, a); }},
      {"ExponentFit: A.Complex=True", [&] { ExponentFit(c, a, ci, 0.05); }},
      {"GammaFit: X.Complex=True", [&] { GammaFit(c, a, b, 10, 1e-8); }},
      {"GammaFit: X.Complex=True", [&] { GammaFit(c, a, b, ci, ci2, 10, 1e-8, 0.05); }},
      {"GeometricFit: X.Complex=True", [&] { GeometricFit(c, a); }},
      {"GeometricFit: X.Complex=True", [&] { GeometricFit(c, a, ci, 0.05); }},
      {"LogNormalFit: X.Complex=True", [&] { LogNormalFit(c, a, b); }},
      {"LogNormalFit: X.Complex=True", [&] { LogNormalFit(c, a, b, ci, ci2, 0.05); }},
      {"NormalFit: X.Complex=True", [&] { NormalFit(c, a, b); }},
      {"NormalFit: X.Complex=True", [&] { NormalFit(c, a, b, ci, ci2, 0.05); }},
      {"PoissonFit: X.Complex=True", [&] { PoissonFit(c, a); }},
      {"PoissonFit: X.Complex=True", [&] { PoissonFit(c, a, ci, 0.05); }},
      {"RayleighFit: X.Complex=True", [&] { RayleighFit(c, a); }},
      {"RayleighFit: X.Complex=True", [&] { RayleighFit(c, a, ci, 0.05); }},
      {"UniformDFit: X.Complex=True", [&] { UniformDFit(c, N); }},
      {"UniformDFit: X.Complex=True", [&] { UniformDFit(c, N, ci, 0.05); }},
      {"UniformFit: X.Complex=True", [&] { UniformFit(c, a, b); }},
      {"UniformFit: X.Complex=True", [&] { UniformFit(c, a, b, ci, ci2, 0.05); }},
      {"WeibullFit: X.Complex=True", [&] { WeibullFit(c, a, b, ci, ci2, 10, 1e-8, 0.05); }},
      // Errors that arise while fitting carry the fit's prefix, once per protected block passed.
      {"WeibullFit : Complex data not supported", [&] { WeibullFit(c, a, b, 10, 1e-8); }},
      {"UniformDFit : Integer overflow", [&] { UniformDFit(TVec{1e10}, N); }},
      {"GammaFit : GammaFit : Empty vector", [&] { GammaFit(TVec{}, a, b, ci, ci2, 10, 1e-8, 0.05); }},
      {"Empty vector", [&] { NormalFit(TVec{}, a, b); }},
  };
  ExpectEachRaises(table);
}

}  // namespace
}  // namespace statkit::test
