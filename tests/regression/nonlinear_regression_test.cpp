// NLinRegress and NumericDerive: the extrapolated differences against exact derivatives, and the
// contracts of the fit (derivative choice, weights, YCalc, the optimiser table).

#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>

#include "statkit/Regress.h"
#include "support/expect.h"

namespace statkit::Regress {
namespace {

// b0 (1 - e^(-b1 x)) on noisy data (Misra1a's shape); its exact derivative.
double growth(std::span<const double> b, double x) { return b[0] * (1 - std::exp(-b[1] * x)); }
void growthDeriv(TRegressFun, double x, double, std::span<const double> b, TVec& g) {
  g[0] = 1 - std::exp(-b[1] * x);
  g[1] = b[0] * x * std::exp(-b[1] * x);
}
// Degree 5 in b0 (the extrapolation is exact up to rounding); differentiated by b1 at b1 = 0 only with an
// absolute step (a relative one would be 0).
double quintic(std::span<const double> b, double x) { return std::pow(b[0], 5) * x * std::exp(b[1] * x); }

const TVec kX{1, 2, 3, 4, 5, 6, 7, 8, 9, 10}, kY{0.9, 1.8, 2.4, 3.1, 3.5, 4.1, 4.4, 4.8, 5.1, 5.3};

TEST(NumericDerive, RichardsonExtrapolationIsExactForQuinticsAndUsesAnAbsoluteStepAtZero) {
  const struct {
    double b0, b1, x;
  } cases[] = {{3.0, 0.0, 2.0}, {-0.7, 0.0, 1.5}, {0.5, 0.0, 4.0}, {2.0, 0.0, -3.0}};
  for (const auto& c : cases) {
    const double b[2] = {c.b0, c.b1};
    TVec g(2);
    NumericDerive(quintic, c.x, 0.0, b, g);
    // rounding of the differences: about eps |f| / h with h = 1e-4 |b0|, a few 1e-11 relative
    EXPECT_REL(g[0], 5 * std::pow(c.b0, 4) * c.x, 1e-10) << c.b0;
    EXPECT_REL(g[1], std::pow(c.b0, 5) * c.x * c.x, 1e-10) << "absolute step at b1 = 0";
  }
}

TEST(NLinRegress, DerivativeChoiceWeightsYCalcAndOptimiserTable) {
  test::PoolBalance balance;
  TOptStopReason why{};
  auto fit = [&](TDeriveProc d, TOptMethod m, const TVec* w = nullptr, TVec* yc = nullptr, bool flag = false,
                 double gradTol = 1e-14) {
    TVec B{4.0, 0.2};
    NLinRegress(kX, kY, growth, d, B, m, why, w, yc, flag, 2000, 1e-14, gradTol);
    return B;
  };
  // nil derivative = NumericDerive passed by name, to the last bit; and close to the exact derivative
  const TVec nil = fit(nullptr, optMarquardt), named = fit(NumericDerive, optMarquardt),
             exact = fit(growthDeriv, optMarquardt);
  for (int j = 0; j < 2; ++j) {
    EXPECT_EQ(nil[j], named[j]);
    EXPECT_REL(nil[j], exact[j], 1e-9);
  }
  // every optimiser reaches the same least-squares point
  for (TOptMethod m : {optSimplex, optBFGS, optDFP, optConjGradFR, optConjGradPR}) {
    const TVec b = fit(growthDeriv, m);
    for (int j = 0; j < 2; ++j) EXPECT_REL(b[j], exact[j], 1e-5) << TOptMethodNames[m];
  }
  // the simplex never asks for derivatives, nor reads GradTol or the line-search flag
  auto failing = [](TRegressFun, double, double, std::span<const double>, TVec&) {
    throw std::runtime_error("derivative called");
  };
  const TVec s1 = fit(failing, optSimplex, nullptr, nullptr, false, 1e-14),
             s2 = fit(failing, optSimplex, nullptr, nullptr, true, 0.5);
  EXPECT_EQ(s1[0], s2[0]);
  EXPECT_EQ(s1[1], s2[1]);
  // a weight of 0 removes the point: the same fit as without it
  TVec w(10), x9(9), y9(9);
  for (int i = 0; i < 10; ++i) w[i] = i == 4 ? 0.0 : 1.0;
  for (int i = 0, k = 0; i < 10; ++i)
    if (i != 4) x9[k] = kX[i], y9[k++] = kY[i];
  const TVec weighted = fit(growthDeriv, optMarquardt, &w);
  TVec B9{4.0, 0.2};
  NLinRegress(x9, y9, growth, growthDeriv, B9, optMarquardt, why, nullptr, nullptr, false, 2000, 1e-14, 1e-14);
  EXPECT_REL(weighted[0], B9[0], 1e-10);
  EXPECT_REL(weighted[1], B9[1], 1e-10);
  // YCalc holds the model at the parameters of the last objective evaluation (recorded by the model)
  std::vector<double> last;
  TRegressFunction recording = [&](std::span<const double> b, double x) {
    last.assign(b.begin(), b.end());
    return growth(b, x);
  };
  TVec B{4.0, 0.2}, yc;
  NLinRegress(kX, kY, recording, TDeriveFunction(), B, optSimplex, why, nullptr, &yc, false, 500, 1e-10, 0);
  ASSERT_EQ(yc.Length(), 10);
  for (int i = 0; i < 10; ++i) EXPECT_EQ(yc[i], growth(last, kX[i]));
  // a method beyond the table: result 0, B untouched
  TVec b{4.0, 0.2};
  EXPECT_EQ(NLinRegress(kX, kY, growth, nullptr, b, static_cast<TOptMethod>(6), why, nullptr, nullptr, false, 10,
                        1e-8, 1e-8),
            0);
  EXPECT_EQ(b[0], 4.0);
  EXPECT_EQ(b[1], 0.2);
}

}  // namespace
}  // namespace statkit::Regress
