// Linear least squares and regression statistics: NIST StRD linear sets
// (certified coefficients, their standard deviations, residual SD and R^2),
// R's lm/summary.lm (weighted and unweighted, with and without intercept), and
// the edges of RegressTest (no residual degrees of freedom, exact fits, weights
// scaled by a constant).

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

// Fit by MulLinRegress (or LinRegress), then RegressTest: coefficients, standard errors, statistics.
struct Fit {
  TVec B, YCalc, Residuals, BStdErr;
  TMtx V;
  TRegStats stats{};
};

Fit fitAndTest(const TVec& y, const TMtx& A, bool constant, const TVec* w, bool line = false) {
  Fit f;
  if (line) {
    TVec x(std::vector<double>(A.data(), A.data() + A.Rows()));
    LinRegress(x, y, f.B, w, &f.YCalc, &f.V);
  } else if (w) {
    MulLinRegress(y, A, f.B, *w, constant, &f.YCalc, &f.V);
  } else {
    MulLinRegress(y, A, f.B, constant, &f.YCalc, &f.V);
  }
  RegressTest(y, f.YCalc, f.V, f.stats, f.Residuals, f.BStdErr, constant, w);
  return f;
}

// Every certified figure with LRE >= 9, Filip >= 7: its design has condition
// 1.8e15, so a backward-stable QR keeps about 16 - 8.3 digits of it.
TEST(LinearRegressionNist, CertifiedFitStandardErrorsAndRSquared) {
  if (test::StrdDir().empty()) GTEST_SKIP() << "NIST StRD not found beside the project";
  const std::pair<const char*, double> sets[] = {
      {"Norris", 9},   {"Pontius", 9},  {"NoInt1", 9},   {"NoInt2", 9},   {"Filip", 7},   {"Longley", 9},
      {"Wampler1", 9}, {"Wampler2", 9}, {"Wampler3", 9}, {"Wampler4", 9}, {"Wampler5", 9}};
  std::printf("  %-12s %6s %6s %6s %6s\n", "LRE", "B", "sd(B)", "resSD", "R^2");
  for (auto [name, floor] : sets) {
    const test::StrdSet set = test::ReadStrd(std::string("lls/") + name);
    const bool constant = set.params.at(0) == "B0";
    const TMtx A = test::StrdDesign(set, false);
    const TVec y = set.Column(0);
    for (bool line : {false, true}) {
      if (line && std::string(name) != "Norris") break;
      const Fit f = fitAndTest(y, A, constant, nullptr, line);
      double lreB = 16, lreSd = 16;
      for (std::size_t j = 0; j < set.params.size(); ++j) {
        lreB = std::min(lreB, test::LRE(f.B[static_cast<int>(j)], set.estimates[j]));
        lreSd = std::min(lreSd, test::LRE(f.BStdErr[static_cast<int>(j)], set.Values(set.params[j])[1]));
      }
      const double lreS = test::LRE(std::sqrt(f.stats.ResidualVar), set.Values("Standard Deviation")[0]);
      const double lreR2 = test::LRE(f.stats.R2, set.Values("R-Squared")[0]);
      std::printf("  %-12s %6.1f %6.1f %6.1f %6.1f\n", (std::string(name) + (line ? " (line)" : "")).c_str(), lreB,
                  lreSd, lreS, lreR2);
      for (double lre : {lreB, lreSd, lreS, lreR2}) EXPECT_GE(lre, floor) << name;
    }
  }
}

// Tolerance 1e-12: R's lm solves by Householder QR without refinement, so its last digits
// carry cond(D) eps of rounding; the designs here have cond below 100.
TEST(LinearRegression, MatchesRLinearModelSummary) {
  for (const test::Record& r : test::LoadFixture("regression_r.txt")) {
    if (r.Str("kind") != "lm") continue;
    SCOPED_TRACE(r.Str("name"));
    const bool constant = r.Num("constant") != 0, weighted = r.Num("weighted") != 0;
    const TVec y = r.Vec("y"), w = r.Vec("w");
    const TMtx A = r.Mtx("A");
    const bool line = constant && A.Cols() == 1;
    for (bool viaLine : {false, line}) {
      const Fit f = fitAndTest(y, A, constant, weighted ? &w : nullptr, viaLine);
      const auto coef = r.Nums("coef"), se = r.Nums("se"), fitted = r.Nums("fitted");
      ASSERT_EQ(f.B.Length(), static_cast<int>(coef.size()));
      for (int j = 0; j < f.B.Length(); ++j) {
        EXPECT_REL(f.B[j], coef[j], 1e-12);
        EXPECT_REL(f.BStdErr[j], se[j], 1e-12);
      }
      for (int i = 0; i < y.Length(); ++i) EXPECT_REL(f.YCalc[i], fitted[i], 1e-12);
      EXPECT_REL(f.stats.ResidualVar, r.Num("resvar"), 1e-12);
      EXPECT_REL(f.stats.R2, r.Num("r2"), 1e-12);
      EXPECT_REL(f.stats.F, r.Num("F"), 1e-12);
      EXPECT_REL(f.stats.SignifProb, r.Num("p"), 1e-12);
      // R adjusts by n / (n - p) without an intercept; statkit by (n - 1) / (n - p) always.
      const double n = y.Length(), p = f.B.Length();
      const double adjusted = constant ? r.Num("adjr2") : 1 - (1 - r.Num("r2")) * (n - 1) / (n - p);
      EXPECT_REL(f.stats.AdjustedR2, adjusted, 1e-12);
      if (!viaLine) continue;
      // Residuals are the plain differences also when weighted.
      for (int i = 0; i < y.Length(); ++i) EXPECT_EQ(f.Residuals[i], y[i] - f.YCalc[i]);
    }
    if (!weighted) continue;
    // Weights times m: the same fit and statistics, V of the fit divided by m. Rounding of the
    // scaled weights moves the last bits only: 64 eps.
    TVec wm(w);
    wm.Mul(1024.0 / 3.0);
    TVec B1, B2, Y1, Y2;
    TMtx V1, V2;
    MulLinRegress(y, A, B1, w, constant, &Y1, &V1);
    MulLinRegress(y, A, B2, wm, constant, &Y2, &V2);
    for (int j = 0; j < B1.Length(); ++j) {
      EXPECT_REL(B2[j], B1[j], 64 * kEps);
      EXPECT_REL(V2(j, j) * (1024.0 / 3.0), V1(j, j), 64 * kEps);
    }
    TRegStats s1, s2;
    RegressTest(y, Y1, V1, s1, constant, &w);
    RegressTest(y, Y2, V2, s2, constant, &wm);
    EXPECT_REL(s2.R2, s1.R2, 64 * kEps);
    EXPECT_REL(s2.F, s1.F, 64 * kEps);
    EXPECT_REL(s2.ResidualVar, s1.ResidualVar * (1024.0 / 3.0), 64 * kEps);
    EXPECT_REL(V2(0, 0), V1(0, 0), 64 * kEps);
  }
}

TEST(RegressTest, NoResidualDegreesOfFreedomAndExactFits) {
  struct Case {
    const char* label;
    TVec x, y;
    TRegStats want;
  };
  const Case cases[] = {
      // n = p: no residual degrees of freedom, whatever the fit.
      {"two points", TVec{1, 2}, TVec{3, 7}, {0, 1, 0, 0, 1}},
      // SSE = 0 with n > p: F infinite, significance 0.
      {"exact line", TVec{1, 2, 3, 4}, TVec{3, 5, 7, 9}, {0, 1, 1, INF, 0}},
      // Far from the origin: S0 Sxx - Sx^2 would cancel every digit; the fit stays exact.
      {"offset 1e9", TVec{1e9, 1e9 + 1, 1e9 + 2, 1e9 + 3}, TVec{1, 3, 5, 7}, {0, 1, 1, INF, 0}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.label);
    test::PoolBalance balance;
    TVec B, YCalc, Res, SE;
    TMtx V;
    TRegStats s;
    LinRegress(c.x, c.y, B, nullptr, &YCalc, &V);
    RegressTest(c.y, YCalc, V, s, Res, SE, true);
    EXPECT_EQ(s.ResidualVar, c.want.ResidualVar);
    EXPECT_EQ(s.R2, c.want.R2);
    EXPECT_EQ(s.AdjustedR2, c.want.AdjustedR2);
    EXPECT_EQ(s.F, c.want.F);
    EXPECT_EQ(s.SignifProb, c.want.SignifProb);
    for (int j = 0; j < 2; ++j) EXPECT_EQ(SE[j], 0.0);
    EXPECT_REL(B[1], (c.y[1] - c.y[0]) / (c.x[1] - c.x[0]), 4 * kEps);
  }
  // Without an intercept the sums are not centred: y = 2x exactly gives R^2 = 1 and df1 = p.
  TVec B, YCalc;
  TMtx V, A{{1}, {2}, {3}};
  TVec y{2.5, 3.5, 6.5};
  TRegStats s;
  MulLinRegress(y, A, B, false, &YCalc, &V);
  RegressTest(y, YCalc, V, s, false);
  const double sse = std::pow(2.5 - YCalc[0], 2) + std::pow(3.5 - YCalc[1], 2) + std::pow(6.5 - YCalc[2], 2);
  EXPECT_REL(s.R2, 1 - sse / (2.5 * 2.5 + 3.5 * 3.5 + 6.5 * 6.5), 8 * kEps);
  EXPECT_REL(s.F, (2.5 * 2.5 + 3.5 * 3.5 + 6.5 * 6.5 - sse) / (sse / 2), 8 * kEps);
}

}  // namespace
}  // namespace statkit::Regress
