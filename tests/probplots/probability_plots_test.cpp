// Probability plots against their definitions written out with mpmath
// quantiles (gen_probability_plots.py).
#include "statkit/StatProbPlots.h"
#include "support/hypothesis.h"

namespace statkit::test {
namespace {
using namespace statkit::StatProbPlots;

// The normal quantile and ln(-ln(1 - p)) to a few eps; the quartiles and the line
// add a few roundings. Values near 0 are held to the largest |y| of their plot.
constexpr double kTol = 32 * kEps;

TEST(ProbabilityPlots, MatchDefinitions) {
  for (const auto& r : LoadFixture("probability_plots.txt")) {
    const std::string kind = r.Str("kind");
    const TVec x = r.Vec("x");
    SCOPED_TRACE(kind + " n = " + std::to_string(x.Length()));
    PoolBalance balance;
    TVec xOut, yOut;
    double ends[4];
    if (kind == "normal") StatNormalPlot(x, xOut, yOut, ends[0], ends[1], ends[2], ends[3], false);
    else if (kind == "weibull") StatWeibullPlot(x, xOut, yOut, ends[0], ends[1], ends[2], ends[3], false);
    else StatQQPlot(x, r.Vec("y"), xOut, yOut, ends[0], ends[1], ends[2], ends[3], false, false);
    const auto xs = r.Nums("xout"), ys = r.Nums("yout"), expected = r.Nums("ends");
    ASSERT_TRUE(xOut.Length() == x.Length() && yOut.Length() == x.Length());
    double scale = 0.0;
    for (double v : ys) scale = std::fmax(scale, std::fabs(v));
    for (int i = 0; i < x.Length(); ++i) {
      EXPECT_EQ(xOut[i], xs[i]) << i;
      EXPECT_TRUE(NearScaled(yOut[i], ys[i], kTol, scale)) << i;
    }
    for (int k = 0; k < 4; ++k) EXPECT_TRUE(NearScaled(ends[k], expected[k], kTol, scale)) << "end " << k;
  }
}

// Sorted = true trusts the caller: the order is kept. The outputs may be the inputs.
TEST(ProbabilityPlots, SortedFlagAndAliasing) {
  const TVec data{3.0, 1.0, 2.0, 7.0, 4.0};
  TVec xOut, yOut;
  double x1, x2, y1, y2;
  StatNormalPlot(data, xOut, yOut, x1, x2, y1, y2, true);
  for (int i = 0; i < data.Length(); ++i) EXPECT_EQ(xOut[i], data[i]);
  EXPECT_TRUE(x1 == 3.0 && x2 == 4.0);
  TVec a = data, b{5.0, 4.0, 3.0, 2.0, 1.0};
  StatQQPlot(a, b, b, a, x1, x2, y1, y2, false, false);  // XOut is YData, YOut is XData
  EXPECT_TRUE(b[0] == 1.0 && b[4] == 7.0 && a[0] == 1.0 && a[4] == 5.0);
}

}  // namespace
}  // namespace statkit::test
