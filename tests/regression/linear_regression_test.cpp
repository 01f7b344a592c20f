// Linear least squares and regression statistics: NIST StRD linear sets, R's
// lm/summary.lm (weighted or not, with or without intercept), and the edges of
// RegressTest (no residual degrees of freedom, exact fits, scaled weights).

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>

#include "statkit/Regress.h"
#include "support/expect.h"
#include "support/fixture.h"
#include "support/nist.h"

namespace statkit::Regress {
namespace {

using test::kEps;

struct Fit {
  TVec B, YCalc, Residuals, BStdErr;
  TMtx V;
  TRegStats stats{};
};

// MulLinRegress (LinRegress when line, A then one column), then RegressTest.
Fit fitAndTest(const TVec& y, const TMtx& A, bool constant, const TVec* w, bool line = false) {
  Fit f;
  if (line) LinRegress(TVec(std::vector<double>(A.data(), A.data() + A.Rows())), y, f.B, w, &f.YCalc, &f.V);
  else if (w) MulLinRegress(y, A, f.B, *w, constant, &f.YCalc, &f.V);
  else MulLinRegress(y, A, f.B, constant, &f.YCalc, &f.V);
  RegressTest(y, f.YCalc, f.V, f.stats, f.Residuals, f.BStdErr, constant, w);
  return f;
}

// LRE >= 9 everywhere but Filip (>= 7): its design has condition 1.8e15, so a
// backward-stable QR keeps about 16 - 8.3 digits there.
TEST(LinearRegressionNist, CertifiedFitStandardErrorsAndRSquared) {
  if (test::StrdDir().empty()) GTEST_SKIP() << "NIST StRD not found beside the project";
  std::printf("  %-14s %6s %6s %6s %6s\n", "LRE", "B", "sd(B)", "resSD", "R^2");
  for (std::string name : {"Norris", "Pontius", "NoInt1", "NoInt2", "Filip", "Longley", "Wampler1",
                           "Wampler2", "Wampler3", "Wampler4", "Wampler5"}) {
    const test::StrdSet set = test::ReadStrd("lls/" + name);
    for (int pass = 0; pass < (name == "Norris" ? 2 : 1); ++pass) {
      const bool line = pass == 1;
      const Fit f =
          fitAndTest(set.Column(0), test::StrdDesign(set, false), set.params.at(0) == "B0", nullptr, line);
      double lre[4] = {16, 16, test::LRE(std::sqrt(f.stats.ResidualVar), set.Values("Standard Deviation")[0]),
                       test::LRE(f.stats.R2, set.Values("R-Squared")[0])};
      for (int j = 0; j < f.B.Length(); ++j) {
        lre[0] = std::min(lre[0], test::LRE(f.B[j], set.estimates.at(j)));
        lre[1] = std::min(lre[1], test::LRE(f.BStdErr[j], set.Values(set.params[j])[1]));
      }
      std::printf("  %-14s %6.1f %6.1f %6.1f %6.1f\n", (name + (line ? " (line)" : "")).c_str(), lre[0],
                  lre[1], lre[2], lre[3]);
      for (double l : lre) EXPECT_GE(l, name == "Filip" ? 7 : 9) << name;
    }
  }
}

// 1e-12: R's lm solves by unrefined Householder QR, leaving cond(D) eps in its
// last digits; the designs here have cond below 100.
TEST(LinearRegression, MatchesRLinearModelSummary) {
  for (const test::Record& r : test::LoadFixture("regression_r.txt")) {
    if (r.Str("kind") != "lm") continue;
    SCOPED_TRACE(r.Str("name"));
    const bool constant = r.Num("constant") != 0, weighted = r.Num("weighted") != 0;
    const TVec y = r.Vec("y"), w = r.Vec("w");
    const TMtx A = r.Mtx("A");
    for (int pass = 0; pass < (constant && A.Cols() == 1 ? 2 : 1); ++pass) {
      const bool line = pass == 1;
      const Fit f = fitAndTest(y, A, constant, weighted ? &w : nullptr, line);
      const auto coef = r.Nums("coef"), se = r.Nums("se"), fitted = r.Nums("fitted");
      ASSERT_EQ(f.B.Length(), static_cast<int>(coef.size()));
      for (int j = 0; j < f.B.Length(); ++j) {
        EXPECT_REL(f.B[j], coef[j], 1e-12);
        EXPECT_REL(f.BStdErr[j], se[j], 1e-12);
      }
      for (int i = 0; i < y.Length(); ++i) {
        EXPECT_REL(f.YCalc[i], fitted[i], 1e-12);
        EXPECT_EQ(f.Residuals[i], y[i] - f.YCalc[i]);  // unweighted also with weights
      }
      const TRegStats& s = f.stats;
      // Without an intercept R adjusts by n / (n - p); statkit by (n - 1) / (n - p) always.
      const double n = y.Length(), p = f.B.Length(),
                   got[] = {s.ResidualVar, s.R2, s.AdjustedR2, s.F, s.SignifProb};
      const double adjusted = constant ? r.Num("adjr2") : 1 - (1 - r.Num("r2")) * (n - 1) / (n - p);
      const double want[] = {r.Num("resvar"), r.Num("r2"), adjusted, r.Num("F"), r.Num("p")};
      for (int k = 0; k < 5; ++k) EXPECT_REL(got[k], want[k], 1e-12) << k;
      if (!weighted || line) continue;
      // Weights times m: the same B and statistics; V of the fit divided by m, scaled V the same.
      // Rounding of the scaled weights moves the last bits only: 64 eps.
      TVec wm(w);
      wm.Mul(1024.0 / 3.0);
      Fit g;
      MulLinRegress(y, A, g.B, wm, constant, &g.YCalc, &g.V);
      EXPECT_REL(g.V(0, 0) * (1024.0 / 3.0), f.V(0, 0) / s.ResidualVar, 64 * kEps);
      RegressTest(y, g.YCalc, g.V, g.stats, constant, &wm);
      EXPECT_REL(g.B[0], f.B[0], 64 * kEps);
      EXPECT_REL(g.V(0, 0), f.V(0, 0), 64 * kEps);
      EXPECT_REL(g.stats.R2, s.R2, 64 * kEps);
      EXPECT_REL(g.stats.F, s.F, 64 * kEps);
      EXPECT_REL(g.stats.ResidualVar, s.ResidualVar * (1024.0 / 3.0), 64 * kEps);
    }
  }
}

TEST(RegressTest, NoResidualDegreesOfFreedomAndExactFits) {
  const struct {
    const char* label;
    TVec x, y;
    TRegStats want;
  } cases[] = {
      {"n = p: no residual degrees of freedom", TVec{1, 2}, TVec{3, 7}, {0, 1, 0, 0, 1}},
      {"SSE = 0 with n > p", TVec{1, 2, 3, 4}, TVec{3, 5, 7, 9}, {0, 1, 1, INF, 0}},
      // S0 Sxx - Sx^2 would cancel every digit here; centred sums keep the fit exact.
      {"offset 1e9", TVec{1e9, 1e9 + 1, 1e9 + 2, 1e9 + 3}, TVec{1, 3, 5, 7}, {0, 1, 1, INF, 0}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.label);
    test::PoolBalance balance;
    Fit g;
    LinRegress(c.x, c.y, g.B, nullptr, &g.YCalc, &g.V);
    RegressTest(c.y, g.YCalc, g.V, g.stats, g.Residuals, g.BStdErr, true);
    const TRegStats& s = g.stats;
    EXPECT_TRUE(s.ResidualVar == c.want.ResidualVar && s.R2 == c.want.R2 &&
                s.AdjustedR2 == c.want.AdjustedR2 && s.F == c.want.F && s.SignifProb == c.want.SignifProb);
    EXPECT_TRUE(g.BStdErr[0] == 0 && g.BStdErr[1] == 0);  // V scaled to zero
    EXPECT_REL(g.B[1], (c.y[1] - c.y[0]) / (c.x[1] - c.x[0]), 4 * kEps);
  }
}

}  // namespace
}  // namespace statkit::Regress
