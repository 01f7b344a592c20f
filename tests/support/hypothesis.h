#pragma once
// Checks shared by the hypothesis-test suites: one reference record run
// through all three alternatives, comparing significance, decision and
// interval.

#include <cmath>
#include <string>

#include "statkit/Statistics.h"
#include "support/expect.h"
#include "support/fixture.h"

namespace statkit::test {

using Statistics::THypothesisResult;
using Statistics::THypothesisType;

/// The order of the three values stored per output in the reference fixtures.
inline constexpr THypothesisType kAlternatives[] = {Statistics::htTwoTailed, Statistics::htRightTailed,
                                                     Statistics::htLeftTailed};

/// The decision a reference significance calls for.
inline THypothesisResult ExpectedDecision(double signif, double alpha) {
  if (std::isnan(signif)) return Statistics::hrNan;
  return signif <= alpha ? Statistics::hrReject : Statistics::hrNotReject;
}

/// The tolerance of a tail probability p whose statistic carries a relative
/// error \p tol: a far tail magnifies it by |d ln p / d ln t|, which for the
/// normal, chi-square and t tails stays below 2 |ln p| (z^2 for the normal).
inline double TailTol(double tol, double p) { return tol * std::fmax(1.0, 2.0 * std::fabs(std::log(p))); }

/// |actual - expected| <= tol * max(|expected|, scale): a limit near zero is
/// held to the size of the interval it belongs to, not to its own.
inline ::testing::AssertionResult NearScaled(double actual, double expected, double tol, double scale) {
  if (std::isinf(expected) || std::isnan(expected)) return NearRel(actual, expected, 0.0);
  return NearRel(actual, expected, tol * std::fmax(1.0, scale / std::fabs(expected)));
}

/// Runs \p call(hType, hRes, Signif, ConfInt) for the three alternatives and
/// compares with the record's "<prefix>p" (three significances, to
/// TailTol(tol, p)), the decision at "alpha" (0.05 when absent), and the
/// interval: "<prefix>lo" and "<prefix>hi" (one limit per alternative) or
/// "<prefix>ci" (one interval for all); without them the interval stays untouched.
template <class Call>
void CheckAlternatives(const Record& r, const std::string& prefix, double tol, Call call) {
  const double alpha = r.Has("alpha") ? r.Num("alpha") : 0.05;
  const auto p = r.Nums(prefix + "p");
  std::vector<double> lo(3, NAN), hi(3, NAN);
  if (r.Has(prefix + "lo")) lo = r.Nums(prefix + "lo"), hi = r.Nums(prefix + "hi");
  if (r.Has(prefix + "ci")) lo.assign(3, r.Nums(prefix + "ci")[0]), hi.assign(3, r.Nums(prefix + "ci")[1]);
  double scale = 0.0;
  for (double v : lo) scale = std::isfinite(v) ? std::fmax(scale, std::fabs(v)) : scale;
  for (double v : hi) scale = std::isfinite(v) ? std::fmax(scale, std::fabs(v)) : scale;
  for (int h = 0; h < 3; ++h) {
    SCOPED_TRACE(prefix + std::string(Statistics::THypothesisTypeNames[h]));
    PoolBalance balance;
    THypothesisResult hRes = Statistics::hrNan;
    double signif = -1.0, ci[2] = {7.0, 7.0};
    call(kAlternatives[h], hRes, signif, ci);
    EXPECT_REL(signif, p[h], TailTol(tol, p[h]));
    EXPECT_EQ(hRes, ExpectedDecision(p[h], alpha));
    if (r.Has(prefix + "lo") || r.Has(prefix + "ci")) {
      EXPECT_TRUE(NearScaled(ci[0], lo[h], tol, scale));
      EXPECT_TRUE(NearScaled(ci[1], hi[h], tol, scale));
    } else {
      EXPECT_TRUE(ci[0] == 7.0 && ci[1] == 7.0) << "interval written";
    }
  }
}

}  // namespace statkit::test
