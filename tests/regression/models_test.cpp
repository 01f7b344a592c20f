// The predefined regression models: derivatives against central differences,
// linearised fits on exact curves, with dropped points and whole-number weights
// (weight 2 = the point taken twice), and the multiple linear evaluations.

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
  } models[] = {
      {LineEval, LineDeriv, LineEval}, {PowerEval, PowerDeriv, PowerEval}, {ExpEval, ExpDeriv, ExpEval}};
  const std::vector<double> B{1.7, -0.6};
  const TVec xs{0.25, 1.0, 2.5, 7.0};
  for (const auto& m : models) {
    TVec y, grad, same(xs);
    m.eval(B, xs, y);
    m.eval(B, same, same);  // the output may be the input
    for (int i = 0; i < xs.Length(); ++i) {
      EXPECT_TRUE(y[i] == m.f(B, xs[i]) && same[i] == y[i]);
      m.d(m.f, xs[i], y[i], B, grad);
      ASSERT_EQ(grad.Length(), 2);
      for (int j = 0; j < 2; ++j) {
        // h = 1e-5: truncation h^2 f''' and rounding eps / h both near 1e-10.
        std::vector<double> up(B), down(B);
        up[j] += 1e-5, down[j] -= 1e-5;
        const double numeric = (m.f(up, xs[i]) - m.f(down, xs[i])) / 2e-5;
        EXPECT_NEAR(grad[j], numeric, 1e-8 * (1 + std::fabs(numeric))) << "x " << xs[i] << " j " << j;
      }
    }
  }
}

TEST(RegressionModels, LinearisedFitsRecoverCurvesDropPointsAndHonourWeights) {
  const struct {
    void (*fit)(TVec&, const TVec&, const TVec&, const TVec*);
    TRegressFun f;
    std::vector<double> b, bad;  // bad: (x, y) pairs the fit must drop
  } cases[] = {{PowerFit, PowerEval, {3, 2}, {-1, 4, 0, 5, 2, -3, 3, 0, 4, NAN}},
               {ExpFit, ExpEval, {2, 0.5}, {-1, -4, 0, 0, 2, -3, 3, NAN}}};
  for (const auto& c : cases) {
    std::vector<double> x{0.5, 1, 1.5, 2.25, 3, 4.5}, y, xd, yd, w;
    for (double xi : x) y.push_back(c.f(c.b, xi));
    TVec B, Bw, Bd, untouched{9, 9};
    c.fit(B, TVec(x), TVec(y), nullptr);
    EXPECT_REL(B[0], c.b[0], 64 * kEps);  // exact curves: the rounding of logarithms only
    EXPECT_REL(B[1], c.b[1], 64 * kEps);
    for (std::size_t i = 0; i < x.size(); ++i) y[i] *= 1 + 0.05 * std::sin(3.0 * i);
    for (std::size_t i = 0; i < c.bad.size(); i += 2) x.push_back(c.bad[i]), y.push_back(c.bad[i + 1]);
    for (std::size_t i = 0; i < x.size(); ++i) {
      w.push_back(i % 3 == 0 ? 2 : 1);
      for (int t = 0; t < w.back(); ++t) xd.push_back(x[i]), yd.push_back(y[i]);
    }
    const TVec W(w);
    c.fit(Bw, TVec(x), TVec(y), &W);
    c.fit(Bd, TVec(xd), TVec(yd), nullptr);
    EXPECT_REL(Bw[0], Bd[0], 64 * kEps);
    EXPECT_REL(Bw[1], Bd[1], 64 * kEps);
    c.fit(untouched, TVec{-1, -2}, TVec{-1, 0}, nullptr);  // nothing admissible: B left alone
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
        const TVec obs = constant ? TVec{NAN, A(i, 0), A(i, 1)} : TVec{A(i, 0), A(i, 1)};
        EXPECT_REL(MulLinEval(b, obs, constant), Y[i], 8 * kEps);
        EXPECT_REL(fitted[i], Y[i], 8 * kEps);
      }
    }
  EXPECT_EQ(TRegressionModelNames[rmExp], "rmExp");
}

}  // namespace
}  // namespace statkit::RegModels
