// Analysis of variance: NIST StRD one-way sets against the digits their stored
// doubles allow, R's aov, layouts offset by 10^6 against exact fractions, and
// the exact branches of zero sums of squares.

#include <gtest/gtest.h>

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

// Floors by difficulty (SiRstv, SmLs01-03: 12; AtmWtAg, SmLs04-06: 9; SmLs07-09: 3.5),
// and never half a digit below what the stored doubles allow.
TEST(AnovaNist, OneWayReachesTheDigitsTheStoredDataAllow) {
  if (test::StrdDir().empty()) GTEST_SKIP() << "NIST StRD not found beside the project";
  std::printf("  %-8s  LRE (best the doubles allow): SS_B, SS_W, MS_B, MS_W, F, R^2\n", "set");
  for (const test::Record& r : test::LoadFixture("anova_exact.txt")) {
    if (r.Str("kind") != "nist") continue;
    const std::string name = r.Str("name");
    const test::StrdSet set = test::ReadStrd("anova/" + name);
    TVec group = set.Column(0);
    group.Sub(1.0);  // treatments are numbered from 1
    double signif = 0;
    const TANOVA1Table t = ANOVA1(set.Column(1), group, signif, 0.05);
    const auto &between = set.Values("Between"), &within = set.Values("Within"), best = r.Nums("floor");
    EXPECT_TRUE(t[3] == between[0] && t[4] == within[0]) << name;
    const double got[] = {t[0], t[1], t[6], t[7], t[8], t[0] / t[2]};
    const double certified[] = {between[1], within[1],  between[2],
                                within[2],  between[3], set.Values("Certified R-Squared")[0]};
    const double floor = name == "AtmWtAg" ? 9 : name < "SmLs04" ? 12 : name < "SmLs07" ? 9 : 3.5;
    std::printf("  %-8s", name.c_str());
    for (int k = 0; k < 6; ++k) {
      const double lre = test::LRE(got[k], certified[k]);
      std::printf(" %5.1f (%4.1f)", lre, best[k]);
      EXPECT_GE(lre, std::max(floor, best[k] - 0.5)) << name << " " << k;
    }
    std::printf("\n");
  }
}

// aov's row: SS, df, MS, F, p (F and p NaN on the residual row).
void expectRow(const std::vector<double>& row, double ss, double df, double ms, double F, double p) {
  EXPECT_EQ(df, row[1]);
  const double got[] = {ss, ms, F, p}, want[] = {row[0], row[2], row[3], row[4]};
  for (int k = 0; k < 4; ++k) EXPECT_REL(got[k], want[k], 1e-12) << k;
}

// R's aov, and layouts offset by 10^6 in exact fractions: there the deviations keep
// only 10 of the 16 digits, so 1e-12 holds only through the shift and centred sums.
TEST(Anova, MatchesRAovExactFractionsAndBothOneWayFormsAgree) {
  std::vector<test::Record> records = test::LoadFixture("regression_r.txt"),
                            exact = test::LoadFixture("anova_exact.txt");
  records.insert(records.end(), exact.begin(), exact.end());
  for (const test::Record& r : records) {
    const std::string kind = r.Str("kind");
    if (kind != "aov1" && kind != "aov2") continue;
    SCOPED_TRACE(r.Str("name"));
    double sR = -1, sC = -1, sI = -1;
    if (kind == "aov1") {
      const TVec y = r.Vec("y"), g = r.Vec("group");
      TANOVA1Table t = ANOVA1(y, g, sR, 0.05);
      expectRow(r.Nums("between"), t[0], t[3], t[6], t[8], sR);
      expectRow(r.Nums("within"), t[1], t[4], t[7], NAN, NAN);
      EXPECT_TRUE(t[5] == y.Length() - 1 && t[9] == FCDFInv(0.95, int(t[3]), int(t[4])));
      if (r.Num("equal") == 0) continue;
      const int k = int(g[g.Length() - 1]) + 1, n = y.Length() / k;  // the groups as columns
      TMtx m(n, k);
      for (int i = 0; i < y.Length(); ++i) m(i % n, i / n) = y[i];
      const TANOVA1Table tm = ANOVA1(m, sC, 0.05);
      for (int j = 0; j < 10; ++j) EXPECT_REL(tm[j], t[j], 8 * kEps) << j;
      continue;
    }
    const int reps = r.Int("replications");
    const TANOVA2Table t = ANOVA2(r.Mtx("data"), sR, sC, sI, reps, 0.05);
    expectRow(r.Nums("rows"), t[0], t[5], t[10], t[14], sR);
    expectRow(r.Nums("cols"), t[1], t[6], t[11], t[15], sC);
    expectRow(r.Nums("error"), t[3], t[8], t[13], NAN, NAN);
    EXPECT_EQ(t[17], FCDFInv(0.95, int(t[5]), int(t[8])));
    if (reps > 1) expectRow(r.Nums("interaction"), t[2], t[7], t[12], t[16], sI);
    for (int j : {2, 7, 12, 16, 19}) EXPECT_EQ(std::isnan(t[j]), reps == 1) << j;
    EXPECT_REL(t[4], r.Has("total") ? r.Num("total") : t[4], 1e-12);
    EXPECT_TRUE(reps > 1 || sI == -1) << "SignifInteract is written only with replications";
  }
}

TEST(Anova, ZeroSumsOfSquaresDecideWithoutDividing) {
  const struct {
    const char* label;
    TVec data, group;
    double F, signif;
  } oneWay[] = {
      {"equal means, no spread", TVec{2, 2, 2, 2}, TVec{0, 0, 1, 1}, 0, 1},
      {"equal means with spread", TVec{1, 3, 2, 2}, TVec{0, 0, 1, 1}, 0, 1},
      {"different means, no spread", TVec{1, 1, 4, 4, 4}, TVec{0, 0, 1, 1, 1}, INF, 0},
      {"group numbers truncated", TVec{1, 1, 4, 4}, TVec{0.2, 0.9, 1.5, 1.99}, INF, 0},
  };
  for (const auto& c : oneWay) {
    double signif = -1;
    EXPECT_EQ(ANOVA1(c.data, c.group, signif, 0.05)[8], c.F) << c.label;
    EXPECT_EQ(signif, c.signif) << c.label;
  }
  // Additive without replication (SS_E = 0): rows differ (F = INF), columns do not (F = 0).
  double sR = -1, sC = -1, sI = -1;
  TANOVA2Table t = ANOVA2(TMtx{{1, 1}, {3, 3}, {7, 7}}, sR, sC, sI, 1, 0.05);
  EXPECT_TRUE(t[3] == 0 && t[14] == INF && sR == 0 && t[15] == 0 && sC == 1 && t[9] == 5 && sI == -1);
  // Replicated cells without spread, with an interaction: every effect infinite.
  t = ANOVA2(TMtx{{1, 2}, {1, 2}, {5, 3}, {5, 3}}, sR, sC, sI, 2, 0.05);
  EXPECT_TRUE(t[3] == 0 && t[16] == INF && sI == 0 && t[9] == 7);
  // Complex data: |z|^2 = re^2 + im^2, so the sums of squares add over the parts.
  const TVec re{1.5, 2, 4, 3.25, 6, 7.5}, im{0.5, -1, 2, 1, 0, 3}, g{0, 0, 1, 1, 2, 2};
  TVec z;
  z.Size(6, true);
  for (int i = 0; i < 6; ++i) z.CValues(i) = TCplx(re[i], im[i]);
  const TANOVA1Table tz = ANOVA1(z, g, sR, 0.05), tr = ANOVA1(re, g, sR, 0.05), ti = ANOVA1(im, g, sR, 0.05);
  for (int j : {0, 1, 2}) EXPECT_REL(tz[j], tr[j] + ti[j], 4 * kEps) << j;
}

}  // namespace
}  // namespace statkit::Regress
