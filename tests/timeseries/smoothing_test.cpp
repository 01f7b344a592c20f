// Exponential smoothing against the recursions of gen_smoothing.py, whose
// constants were minimised there to 1e-12.

#include <gtest/gtest.h>

#include "statkit/StatTimeSerAnalysis.h"
#include "support/expect.h"
#include "support/fixture.h"

namespace statkit::StatTimeSerAnalysis {
namespace {

TEST(ExpSmooth, MatchesTheReferenceFits) {
  int cases = 0;
  for (const test::Record& r : test::LoadFixture("smoothing.txt")) {
    SCOPED_TRACE(++cases);
    const std::string kind = r.Str("kind");
    const TVec data = r.Vec("data");
    std::vector<double> c = r.Nums("start");
    c.resize(3);
    TVec smooth;
    test::PoolBalance balance;
    double mse = NAN;
    if (kind == "single") mse = SingleExpSmooth(data, smooth, c[0], r.Int("init"));
    if (kind == "holt") DoubleExpSmooth(data, smooth, c[0], c[1]);
    if (kind == "holtwinters") TripleExpSmooth(data, smooth, c[0], c[1], c[2], r.Int("period"));
    const std::vector<double> fitted = r.Nums("fitted"), expected = r.Nums("smooth");
    // Marquardt stops at 1e-8 in the constants and the gradient: the constants agree to 1e-5 and
    // the mean squared error, quadratic at its minimum, to 1e-9.
    for (std::size_t j = 0; j < fitted.size(); ++j)
      EXPECT_NEAR(c[j], fitted[j], 1e-5 * std::max(1.0, std::fabs(fitted[j])));
    ASSERT_EQ(smooth.Length(), static_cast<int>(expected.size()));
    double ss = 0.0;
    for (int i = 0; i < smooth.Length(); ++i) {
      const double y = data[data.Length() - smooth.Length() + i];
      ss += (smooth[i] - y) * (smooth[i] - y);
      EXPECT_NEAR(smooth[i], expected[i], 1e-4 * std::max(1.0, std::fabs(expected[i])));
    }
    EXPECT_REL(ss / smooth.Length(), r.Num("mse"), 1e-9);  // Smooth is at the returned constants
    if (kind == "single") {
      EXPECT_REL(mse, r.Num("mse"), 1e-9);
    }
  }
  EXPECT_EQ(cases, 8);
}

// The mean of the first four values starts the smoothing only from five values on; any other
// InitMethod starts from Data[0].
TEST(ExpSmooth, InitMethodTwoNeedsFiveValues) {
  for (const TVec& x : {TVec{3, 1, 4, 1}, TVec{3, 1, 4, 1, 5, 9, 2, 6}}) {
    TVec s1, s2;
    double a1 = 0.4, a2 = 0.4, a0 = 0.4, a3 = 0.4;
    const double mse1 = SingleExpSmooth(x, s1, a1, 1), mse2 = SingleExpSmooth(x, s2, a2, 2);
    EXPECT_EQ(s1.Length(), x.Length() - 1);
    EXPECT_EQ(mse1 == mse2, x.Length() == 4);
    EXPECT_EQ(s2[0], x.Length() == 4 ? 3.0 : 2.25);
    EXPECT_EQ(SingleExpSmooth(x, s2, a0, 0), mse1);
    EXPECT_EQ(SingleExpSmooth(x, s2, a3, 3), mse1);
  }
}

}  // namespace
}  // namespace statkit::StatTimeSerAnalysis
