// ZTest, tTest and SignTest against R (t.test, binom.test) and the normal
// formulas, on samples of 3 to 5000 values: normal, skewed, heavy-tailed,
// tied; hypothesised locations near the data and far out in the tails.
#include "support/hypothesis.h"

namespace statkit::test {
namespace {
using namespace statkit::Statistics;

// R accumulates means in long double and its pt/pbinom/pnorm differ from the
// array layer's in the last bits; through t = (m - mu)/se into a tail of
// 1e-30 the relative error grows like |t|^2 times that (about 10 eps here).
constexpr double kTol = 200 * kEps;

TEST(LocationTests, MatchReferenceForEveryAlternative) {
  for (const auto& r : LoadFixture("location_tests.txt")) {
    const double alpha = r.Num("alpha");
    const TVec x = r.Vec("x");
    SCOPED_TRACE(r.Str("kind") + " n = " + std::to_string(x.Length()));
    if (r.Str("kind") == "one") {
      const double mu = r.Num("mu");
      CheckAlternatives(r, "z_", kTol, [&](auto h, auto& res, double& p, double* ci) {
        ZTest(x, mu, r.Num("sigma"), res, p, ci, h, alpha);
      });
      if (r.Has("t_p"))
        CheckAlternatives(r, "t_", kTol, [&](auto h, auto& res, double& p, double* ci) { tTest(x, mu, res, p, ci, h, alpha); });
      // the sign test has no interval: CheckAlternatives holds it untouched
      CheckAlternatives(r, "sign_", kTol, [&](auto h, auto& res, double& p, double* ci) {
        SignTest(x, mu, res, p, ci, h, alpha);
      });
    } else {
      const TVec y = r.Vec("y");
      CheckAlternatives(r, "t_", kTol, [&](auto h, auto& res, double& p, double* ci) {
        tTest(x, y, res, p, ci, false, h, alpha);
      });
      if (!r.Has("pt_p")) continue;
      CheckAlternatives(r, "pt_", kTol, [&](auto h, auto& res, double& p, double* ci) {
        tTest(x, y, res, p, ci, true, h, alpha);
      });
      CheckAlternatives(r, "psign_", kTol, [&](auto h, auto& res, double& p, double* ci) {
        SignTest(x, y, res, p, ci, h, alpha);
      });
    }
  }
}

}  // namespace
}  // namespace statkit::test
