// The predefined regression models: derivatives against central differences of
// the model values, the linearised fits on exact curves, with dropped points and
// with whole-number weights (a weight of 2 is the point taken twice), and the
// multiple linear model's evaluations against its fit.

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "statkit/RegModels.h"
#include "statkit/Regress.h"
#include "support/expect.h"

namespace statkit::RegModels {
namespace {

using test::kEps;

TEST(RegressionModels, DerivativesMatchCentralDifferencesAndVectorsMatchScalars) {
  const struct {
    TRegressFun f;
    TDeriveProc d;
    void (*eval)(std::span<const double>, const TVec&, TVec&);
  } models[] = {{LineEval, LineDeriv, LineEval}, {PowerEval, PowerDeriv, PowerEval}, {ExpEval, ExpDeriv, ExpEval}};
  const std::vector<double> B{1.7, -0.6};
  TVec xs{0.25, 1.0, 2.5, 7.0};
  for (const auto& m : models) {
    TVec y, grad, same(xs);
    m.eval(B, xs, y);
    m.eval(B, same, same);  // the output may be the input
    for (int i = 0; i < xs.Length(); ++i) {
      const double x = xs[i];
      EXPECT_EQ(y[i], m.f(B, x));
      EXPECT_EQ(same[i], y[i]);
      m.d(m.f, x, m.f(B, x), B, grad);
      ASSERT_EQ(grad.Length(), 2);
      for (int j = 0; j < 2; ++j) {
        // Central difference with h = 1e-5: truncation h^2 f''' and rounding eps/h, both near 1e-10.
        std::vector<double> up(B), down(B);
        up[j] += 1e-5, down[j] -= 1e-5;
        const double numeric = (m.f(up, x) - m.f(down, x)) / 2e-5;
        EXPECT_NEAR(grad[j], numeric, 1e-8 * (1 + std::fabs(numeric))) << "x " << x << " j " << j;
      }
    }
  }
}

TEST(RegressionModels, LinearisedFitsRecoverCurvesDropPointsAndHonourWeights) {
  using Fit = void (*)(TVec&, const TVec&, const TVec&, const TVec*);
  const struct {
    const char* label;
    Fit fit;
    TRegressFun f;
    std::vector<double> b;
    TVec bad;  // abscissa, ordinate pairs the fit must drop
  } cases[] = {{"power", PowerFit, PowerEval, {3, 2}, TVec{-1, 4, 0, 5, 2, -3, 3, 0, 4, NAN}},
               {"exp", ExpFit, ExpEval, {2, 0.5}, TVec{-1, -4, 0, 0, 2, -3, 3, NAN}}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.label);
    std::vector<double> x{0.5, 1, 1.5, 2.25, 3, 4.5}, y;
    for (double xi : x) y.push_back(c.f(c.b, xi));
    TVec B;
    c.fit(B, TVec(x), TVec(y), nullptr);
    EXPECT_REL(B[0], c.b[0], 64 * kEps);  // exact curves: rounding of logs and exp only
    EXPECT_REL(B[1], c.b[1], 64 * kEps);
    // Inadmissible points are dropped silently; noisy data, weight 2 = the point twice.
    std::vector<double> xn(x), yn, xd, yd, w;
    for (std::size_t i = 0; i < x.size(); ++i) yn.push_back(y[i] * (1 + 0.05 * std::sin(3.0 * i)));
    for (int i = 0; i + 1 < c.bad.Length(); i += 2) xn.push_back(c.bad[i]), yn.push_back(c.bad[i + 1]);
    for (std::size_t i = 0; i < xn.size(); ++i) {
      w.push_back(i % 3 == 0 ? 2 : 1);
      for (int t = 0; t < w.back(); ++t) xd.push_back(xn[i]), yd.push_back(yn[i]);
    }
    TVec Bw, Bd, W(w);
    c.fit(Bw, TVec(xn), TVec(yn), &W);
    c.fit(Bd, TVec(xd), TVec(yd), nullptr);
    EXPECT_REL(Bw[0], Bd[0], 64 * kEps);
    EXPECT_REL(Bw[1], Bd[1], 64 * kEps);
    // Nothing admissible: B is left alone.
    TVec untouched{9, 9};
    c.fit(untouched, TVec{-1, -2}, TVec{-1, 0}, nullptr);
    EXPECT_EQ(untouched[0], 9.0);
  }
}

TEST(RegressionModels, MultipleLinearEvaluationsAgreeWithTheFit) {
  const TMtx A{{1, 0.5}, {2, -1}, {3, 4}, {4, 2.5}, {5, 1}};
  const TVec y{3.1, 1.7, 9.4, 8.8, 7.2}, w{1, 2, 0.5, 1, 3};
  for (bool constant : {true, false})
    for (const TVec* weights : {static_cast<const TVec*>(nullptr), &w}) {
      TVec B, Bf, fitted, Y;
      MulLinFit(B, A, y, constant, weights);
      if (weights) Regress::MulLinRegress(y, A, Bf, *weights, constant, &fitted);
      else Regress::MulLinRegress(y, A, Bf, constant, &fitted);
      const std::vector<double> b(B.begin(), B.end());
      MulLinEval(b, A, Y, constant);
      ASSERT_EQ(Y.Length(), A.Rows());
      for (int i = 0; i < A.Rows(); ++i) {
        // One observation is laid out like B: with an intercept X[0] is a placeholder, never read.
        TVec obs = constant ? TVec{NAN, A(i, 0), A(i, 1)} : TVec{A(i, 0), A(i, 1)};
        EXPECT_REL(MulLinEval(b, obs, constant), Y[i], 8 * kEps);
        EXPECT_REL(fitted[i], Y[i], 8 * kEps);
      }
    }
  EXPECT_EQ(TRegressionModelNames[rmExp], "rmExp");
}

}  // namespace
}  // namespace statkit::RegModels
