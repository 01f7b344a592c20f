// Tour: one hypothesis test of each family on two small embedded samples.

#include <algorithm>
#include <cstdio>

#include "statkit/Statistics.h"
#include "tour.h"

namespace {
using namespace statkit::Statistics;

void report(const char* what, THypothesisResult hRes, double signif, const double* ci = nullptr) {
  std::printf("  %-44s %-12s p = %-11.4g", what, THypothesisResultNames[hRes].data(), signif);
  if (ci) std::printf(" interval [%.4g, %.4g]", ci[0], ci[1]);
  std::printf("\n");
}

void run() {
  // Tensile strengths of two batches (MPa).
  const TVec a{512.1, 498.7, 505.3, 520.9, 509.8, 501.2, 515.6, 507.4, 499.9, 511.3, 503.8, 518.2};
  const TVec b{506.4, 495.2, 500.1, 514.8, 502.7, 497.9, 509.3, 501.6, 494.8, 505.5, 498.1, 512.6};
  THypothesisResult hRes;
  double p, ci[2];

  std::printf("batch A against a nominal 500 MPa, then A against B (alpha 0.05):\n");
  tTest(a, 500.0, hRes, p, ci, htTwoTailed, 0.05);
  report("t test, mean of A = 500 (interval: mean)", hRes, p, ci);
  tTest(a, b, hRes, p, ci, true, htRightTailed, 0.05);
  report("paired t test, A > B (interval: upper bound)", hRes, p, ci);
  FTest(a, b, hRes, p, ci, htTwoTailed, 0.05);
  report("F test, var(B) / var(A) = 1", hRes, p, ci);
  WilcoxonSign(a, b, hRes, p, ci, htTwoTailed, 0.05);
  report("Wilcoxon signed ranks, A - B centred on 0", hRes, p, ci);
  std::printf("    (the interval is the accepted range of the signed-rank sum)\n");
  TVec sorted = a;
  std::sort(sorted.begin(), sorted.end());
  ShapiroWilks(sorted, hRes, p, htRightTailed, 0.05);
  report("Shapiro-Wilk, A is normal", hRes, p);
}

TOUR_SECTION(40, "Hypothesis tests", run);
}  // namespace
