// ChiSquareTest and FTest against R (pchisq, var.test(Data2, Data1), quantiles
// refined by Newton steps), BarlettTest against Bartlett's statistic on R's
// symmetric eigenvalues.
#include "support/hypothesis.h"

namespace statkit::test {
namespace {
using namespace statkit::Statistics;

// Variances of up to 1200 values summed in different orders, then the tails
// and quantiles of chi-square and F: a few tens of eps.
constexpr double kTol = 100 * kEps;

TEST(VarianceTests, ChiSquareFAndBartlettMatchReference) {
  for (const auto& r : LoadFixture("variance_tests.txt")) {
    const double alpha = r.Num("alpha");
    if (r.Str("kind") == "chi") {
      const TVec x = r.Vec("x");
      SCOPED_TRACE("chi-square n = " + std::to_string(x.Length()));
      CheckAlternatives(r, "", kTol, [&](auto h, auto& res, double& p, double* ci) {
        ChiSquareTest(x, r.Num("sigma"), res, p, ci, h, alpha);
      });
    } else if (r.Str("kind") == "F") {
      const TVec x = r.Vec("x"), y = r.Vec("y");
      SCOPED_TRACE("F n1 = " + std::to_string(x.Length()) + " n2 = " + std::to_string(y.Length()));
      CheckAlternatives(r, "", kTol, [&](auto h, auto& res, double& p, double* ci) { FTest(x, y, res, p, ci, h, alpha); });
    } else {  // Bartlett
      const TMtx X = r.Mtx("X");
      const auto expected = r.Nums("sig");
      SCOPED_TRACE(r.Str("mode") + " " + std::to_string(X.Rows()) + " x " + std::to_string(X.Cols()));
      PoolBalance balance;
      int numComp = -1;
      TVec signif{9.0, 9.0, 9.0, 9.0, 9.0, 9.0, 9.0, 9.0, 9.0};  // resized by the test
      BarlettTest(X, numComp, signif, r.Str("mode") == "PCACorrMat" ? PCACorrMat : PCACovMat, alpha);
      EXPECT_EQ(numComp, r.Int("numcomp"));
      ASSERT_EQ(signif.Length(), static_cast<int>(expected.size()));
      // The eigenvalues come from an SVD here and from a symmetric QR iteration
      // in R; the smallest agree to about lambda_max / lambda_min eps relative
      // (a few hundred eps on these matrices). The statistic q ln A - G is small
      // against its terms when the remaining eigenvalues are nearly equal, which
      // magnifies that error up to a hundredfold before the chi-square tail does.
      for (int k = 0; k < signif.Length(); ++k)
        EXPECT_REL(signif[k], expected[k], TailTol(1e4 * kEps, expected[k])) << "k = " << k;
    }
  }
}

}  // namespace
}  // namespace statkit::test
