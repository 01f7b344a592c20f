// WilcoxonSign against R's wilcox.test (exact below 15 untied differences,
// normal approximation with the tie correction from 15 on) and against a
// brute-force enumeration of the sign patterns where ranks are tied;
// SpearmanRankCorr against exact rational ranks, mpmath and scipy.
#include "support/hypothesis.h"

namespace statkit::test {
namespace {
using namespace statkit::Statistics;

// Exact significances are multiples of 2^-n; the normal branch and Spearman's
// t and Fisher interval go through one or two distribution functions.
constexpr double kTol = 64 * kEps;

void CheckWilcoxon(const std::string& fixture) {
  for (const auto& r : LoadFixture(fixture)) {
    const TVec x = r.Vec("x");
    const double alpha = r.Num("alpha");
    SCOPED_TRACE(fixture + " " + r.Str("kind") + " n = " + std::to_string(x.Length()));
    if (r.Str("kind") == "one")
      CheckAlternatives(r, "", kTol, [&](auto h, auto& res, double& p, double* ci) {
        WilcoxonSign(x, r.Num("median"), res, p, ci, h, alpha);
      });
    else
      CheckAlternatives(r, "", kTol, [&, y = r.Vec("y")](auto h, auto& res, double& p, double* ci) {
        WilcoxonSign(x, y, res, p, ci, h, alpha);
      });
  }
}

TEST(WilcoxonSign, MatchesRWhereDefinitionsAgree) { CheckWilcoxon("wilcoxon.txt"); }
TEST(WilcoxonSign, MatchesEnumerationWithTiesAndZeros) { CheckWilcoxon("wilcoxon_exact.txt"); }

TEST(WilcoxonSign, SignificanceEqualToAlphaRejects) {
  // Five positive differences: two-sided 2 P(S <= 0) = 2/32 exactly.
  const TVec x{0.5, 1.5, 2.5, 3.5, 4.5};
  const struct { double alpha; THypothesisResult expected; } cases[] = {
      {0.0625, hrReject}, {std::nextafter(0.0625, 0.0), hrNotReject}};
  for (const auto& c : cases) {
    THypothesisResult res = hrNan;
    double p = NAN, ci[2];
    WilcoxonSign(x, 0.0, res, p, ci, htTwoTailed, c.alpha);
    EXPECT_EQ(p, 0.0625);
    EXPECT_EQ(res, c.expected) << c.alpha;
  }
}

TEST(SpearmanRankCorr, MatchesExactRanksAndScipy) {
  for (const auto& r : LoadFixture("spearman.txt")) {
    const TVec x = r.Vec("x"), y = r.Vec("y");
    SCOPED_TRACE("n = " + std::to_string(x.Length()));
    CheckAlternatives(r, "", kTol, [&](auto h, auto& res, double& p, double* ci) {
      double rs = NAN;
      SpearmanRankCorr(x, y, rs, res, p, ci, h, r.Num("alpha"));
      EXPECT_REL(rs, r.Num("rs"), 4 * kEps);
    });
  }
}

}  // namespace
}  // namespace statkit::test
