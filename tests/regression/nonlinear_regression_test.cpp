// NLinRegress and NumericDerive: the extrapolated differences against exact derivatives, and the
// contracts of the fit (derivative choice, weights, YCalc, the optimiser table).

#include <gtest/gtest.h>

#include <cmath>
#include <utility>
#include <vector>

#include "statkit/Regress.h"
#include "support/expect.h"

namespace statkit::Regress {
namespace {

// b0 (1 - e^(-b1 x)) on noisy data (Misra1a's shape); its exact derivative.
double growth(std::span<const double> b, double x) { return b[0] * (1 - std::exp(-b[1] * x)); }
void growthDeriv(TRegressFun, double x, double, std::span<const double> b, TVec& g) {
  g[0] = 1 - std::exp(-b[1] * x), g[1] = b[0] * x * std::exp(-b[1] * x);
}
void failingDeriv(TRegressFun, double, double, std::span<const double>, TVec&) {
  ERaise("derivative called");
}
// Degree 5 in b0 (the extrapolation is exact up to rounding); differentiated by b1 at b1 = 0 only with an
// absolute step (a relative one would be 0).
double quintic(std::span<const double> b, double x) { return std::pow(b[0], 5) * x * std::exp(b[1] * x); }

const TVec kX{1, 2, 3, 4, 5, 6, 7, 8, 9, 10}, kY{0.9, 1.8, 2.4, 3.1, 3.5, 4.1, 4.4, 4.8, 5.1, 5.3};

TEST(NumericDerive, RichardsonExtrapolationIsExactForQuinticsAndUsesAnAbsoluteStepAtZero) {
  const std::pair<double, double> cases[] = {{3.0, 2.0}, {-0.7, 1.5}, {0.5, 4.0}, {2.0, -3.0}};  // b0, x
  for (const auto& [b0, x] : cases) {
    const double b[2] = {b0, 0.0};
    TVec g(2);
    NumericDerive(quintic, x, 0.0, b, g);
    // rounding of the differences: about eps |f| / h with h = 1e-4 |b0|, a few 1e-11 relative
    EXPECT_REL(g[0], 5 * std::pow(b0, 4) * x, 1e-10) << b0;
    EXPECT_REL(g[1], std::pow(b0, 5) * x * x, 1e-10) << "absolute step at b1 = 0";
  }
}

TEST(NLinRegress, DerivativeChoiceWeightsYCalcAndOptimiserTable) {
  test::PoolBalance balance;
  TOptStopReason why{};
  // a fit from (4, 0.2); the weight or point 4 zeroed or dropped, the simplex's flag and GradTol changed
  auto fit = [&](TDeriveProc d, TOptMethod m, int drop = -1, bool weighted = false, bool flag = false,
                 double gtol = 1e-14) {
    std::vector<double> x, y, w;
    for (int i = 0; i < 10; ++i)
      if (i != drop || weighted) x.push_back(kX[i]), y.push_back(kY[i]), w.push_back(i == drop ? 0.0 : 1.0);
    TVec B{4.0, 0.2}, W(w);
    NLinRegress(TVec(x), TVec(y), growth, d, B, m, why, weighted ? &W : nullptr, nullptr, flag, 2000, 1e-14,
                gtol);
    return std::vector<double>(B.begin(), B.end());
  };
  // nil derivative = NumericDerive passed by name, to the last bit; the exact derivative to rounding; a zero
  // weight = the point removed
  const auto exact = fit(growthDeriv, optMarquardt), nil = fit(nullptr, optMarquardt);
  EXPECT_EQ(nil, fit(NumericDerive, optMarquardt));
  const auto dropped = fit(growthDeriv, optMarquardt, 4),
             zeroWeight = fit(growthDeriv, optMarquardt, 4, true);
  for (int j = 0; j < 2; ++j) {
    EXPECT_REL(nil[j], exact[j], 1e-9);
    EXPECT_REL(zeroWeight[j], dropped[j], 1e-10);
    EXPECT_GT(std::fabs(dropped[j] - exact[j]), 1e-6 * std::fabs(exact[j]));  // the point matters
  }
  // the simplex never asks for derivatives, nor reads GradTol or the line-search flag
  EXPECT_EQ(fit(failingDeriv, optSimplex), fit(failingDeriv, optSimplex, -1, false, true, 0.5));
  // YCalc holds the model at the parameters of the last objective evaluation (recorded by the model)
  std::vector<double> last;
  TRegressFunction recording = [&](auto b, double x) {
    return last.assign(b.begin(), b.end()), growth(b, x);
  };
  TVec B{4.0, 0.2}, yc;
  NLinRegress(kX, kY, recording, TDeriveFunction(), B, optSimplex, why, nullptr, &yc, false, 500, 1e-10, 0);
  ASSERT_EQ(yc.Length(), 10);
  for (int i = 0; i < 10; ++i) EXPECT_EQ(yc[i], growth(last, kX[i]));
  // a method beyond the table: result 0, B untouched
  TVec b{4.0, 0.2};
  const int result =
      NLinRegress(kX, kY, growth, nullptr, b, TOptMethod(6), why, nullptr, nullptr, 0, 10, 0, 0);
  EXPECT_TRUE(result == 0 && b[0] == 4.0 && b[1] == 0.2);
}

}  // namespace
}  // namespace statkit::Regress
