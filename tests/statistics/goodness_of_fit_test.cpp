// GOFChi2Test (frequencies) and GOFKolmogorov against SciPy and, above 140 values, Durbin's matrix in
// long double; GOFChi2Test of fitted laws against the test's steps in SciPy; the bad calls; the edges of
// the tabulated reference and undecidable samples.
#include <cstdio>
#include <functional>

#include "support/hypothesis.h"

namespace statkit::test {
namespace {
using namespace statkit::Statistics;

TEST(GoodnessOfFit, MatchesReference) {
  double worstOne = 0.0, worstTwo = 0.0;
  for (const auto& r : LoadFixture("goodness_of_fit.txt")) {
    if (r.Str("kind") == "chi2") {  // the statistic summed in another order, then its tail: tens of eps
      CheckAlternatives(r, "", 100 * kEps, [&](auto h, auto& res, double& p, double*) {
        GOFChi2Test(r.Vec("O"), r.Vec("E"), 0, r.Int("df"), res, p, h, 0.05);
      });
      continue;
    }
    // A spread sample (i - 1/2)/n + delta against the uniform table, else the record's sample.
    const bool spread = r.Str("kind") == "spread", table = spread || r.Has("cdfx");
    TVec x = spread ? TVec(r.Int("n")) : r.Vec("x"), cx = spread  ? TVec{0.0, 1.0}
                                                          : table ? r.Vec("cdfx")
                                                                  : TVec{};
    const TVec cy = spread ? cx : table ? r.Vec("cdfy") : TVec{};
    for (int i = 0; spread && i < x.Length(); ++i) x[i] = (i + 0.5) / x.Length() + r.Num("delta");
    const auto expected = r.Nums("p");
    SCOPED_TRACE("Kolmogorov n = " + std::to_string(x.Length()) + (table ? " tabulated" : " normal"));
    for (int h = 0; h < 3; ++h) {
      PoolBalance balance;
      THypothesisResult res = hrNan;
      double p = -1.0;
      GOFKolmogorov(x, res, p, table ? &cx : nullptr, table ? &cy : nullptr, kAlternatives[h], 0.05);
      EXPECT_EQ(res, ExpectedDecision(expected[h], 0.05));
      // Two-sided: 1 - P holds about 1e-16 absolute, and twice the one-sided tail beyond n D^2 = 4 omits
      // the chance of crossing both lines (below 4e-11 of it). One-sided: positive terms, each to a few eps.
      const double err = std::fabs(p - expected[h]),
                   tol = h == 0 ? 1e-10 * expected[h] + 1e-15 : 1e-12 * expected[h];
      EXPECT_LE(err, tol) << THypothesisTypeNames[h] << " " << p << " vs " << expected[h];
      (h == 0 ? worstTwo : worstOne) = std::max(h == 0 ? worstTwo : worstOne, err / tol);
    }
  }
  std::printf("Kolmogorov: worst error %.2g of the tolerance one-sided, %.2g two-sided\n", worstOne,
              worstTwo);
}

// The law fitted to the sample, binned over the sample's range: the iterative fits stop within about
// 1e-8 of the likelihood's maximum, which moves the expected counts and the tail by up to 1e-6.
TEST(GoodnessOfFit, ChiSquareOfFittedLawsMatchesItsSteps) {
  for (const auto& r : LoadFixture("distribution_fitting.txt")) {
    if (r.Str("kind") != "gof") continue;
    SCOPED_TRACE(r.Str("dist") + " " + std::to_string(r.Int("bins")) + " bins");
    int dist = 0;
    while (TTestDistributionNames[dist] != r.Str("dist")) ++dist;
    PoolBalance balance;
    THypothesisResult res;
    double p;
    GOFChi2Test(r.Vec("x"), TTestDistribution(dist), r.Int("bins"), res, p, htRightTailed, 0.05);
    EXPECT_REL(p, r.Num("signif"), 1e-6);
    EXPECT_EQ(res, ExpectedDecision(r.Num("signif"), 0.05));
  }
}

TEST(GoodnessOfFit, BadCallsRaiseExactMessages) {
  TVec three{1.0, 2.0, 3.0}, four{1.0, 2.0, 3.0, 4.0}, empty, c3, c4;
  c3.Size(3, true);
  c4.Size(4, true);
  THypothesisResult h = hrNotReject;
  double p = 0.25;
  const THypothesisType tt = htTwoTailed;
  const RaiseCase cases[] = {
      {"GOFChi2Test: O.Length <> E.Length", [&] { GOFChi2Test(three, four, 7, 2, h, p, tt, 0.05); }},
      {"GOFChi2Test: O.Length <> E.Length", [&] { GOFChi2Test(c4, three, 7, 2, h, p, tt, 0.05); }},  // first
      {"GOFChi2Test: O.Complex or E.Complex", [&] { GOFChi2Test(three, c3, 7, 2, h, p, tt, 0.05); }},
      {"GOFChi2Test: O.Complex or E.Complex", [&] { GOFChi2Test(c4, four, 7, 2, h, p, tt, 0.05); }},
      {"GOFChi2Test: Data.Complex", [&] { GOFChi2Test(c4, distNormal, 3, h, p, tt, 0.05); }},
      // The fitted form adds no prefix: the fit's and the histogram's own messages pass through.
      {"Histogram : NumBins <= 0", [&] { GOFChi2Test(four, distNormal, 0, h, p, tt, 0.05); }},
      {"GammaFit : Empty vector", [&] { GOFChi2Test(empty, distGamma, 3, h, p, tt, 0.05); }},
      {"GOFKolmogorov: Data.Complex", [&] { GOFKolmogorov(c3, h, p, nullptr, nullptr, tt, 0.05); }},
      {"GOFKolmogorov: Data.Complex", [&] { GOFKolmogorov(c3, h, p, &three, &four, tt, 0.05); }},  // before
      {"GOFKolmogorov : GOFKolmogorov: CDFx.Length <> CDFy.Length",
       [&] { GOFKolmogorov(empty, h, p, &three, &four, tt, 0.05); }},
      {"GOFKolmogorov : Empty vector", [&] { GOFKolmogorov(empty, h, p, nullptr, nullptr, tt, 0.05); }},
      {"GOFKolmogorov : Empty vector", [&] { GOFKolmogorov(three, h, p, &empty, &empty, tt, 0.05); }},
      {"GOFKolmogorov : Complex data not supported",
       [&] { GOFKolmogorov(three, h, p, &c3, &three, tt, 0.05); }},
  };
  ExpectEachRaises(cases,
                   [&](const RaiseCase&) { EXPECT_TRUE(h == hrNotReject && p == 0.25) << "output written"; });
}

// Where the reference cannot say: half a table (ignored: the standard normal, not a fitted law), a step
// in the table (at a repeated abscissa its last point holds: F(0.5) = 0.8; for one value P(D+ >= d) is
// 1 - d), NaNs, an empty expected cell without a count (0/0), no degrees of freedom, an unchecked level.
TEST(GoodnessOfFit, EdgesOfTheReferenceAndUndecidableSamples) {
  const TVec x{-0.3, 1.2, 0.4, -1.9, 0.05}, flat{0.0, 1.0}, stepX{0.0, 0.5, 0.5, 1.0},
      stepY{0.0, 0.2, 0.8, 1.0};
  const TVec half{0.5}, withNaN{0.1, NAN, 0.3}, tableNaN{0.0, NAN, 0.7, 1.0}, O{4.0, 0.0, 6.0},
      E{5.0, 0.0, 5.0};
  double normal = 0.0;
  THypothesisResult hn = hrNan;
  GOFKolmogorov(x, hn, normal, nullptr, nullptr, htTwoTailed, 0.05);
  using Call = std::function<void(THypothesisResult&, double&)>;
  const std::tuple<Call, THypothesisResult, double> cases[] = {
      {[&](auto& h, double& p) { GOFKolmogorov(x, h, p, nullptr, &flat, htTwoTailed, 0.05); }, hn, normal},
      {[&](auto& h, double& p) { GOFKolmogorov(x, h, p, &flat, nullptr, htTwoTailed, 0.05); }, hn, normal},
      {[&](auto& h, double& p) { GOFKolmogorov(half, h, p, &stepX, &stepY, htRightTailed, 0.05); },
       hrNotReject, 0.8},
      {[&](auto& h, double& p) { GOFKolmogorov(half, h, p, &stepX, &stepY, htLeftTailed, 0.05); },
       hrNotReject, 0.2},
      {[&](auto& h, double& p) { GOFKolmogorov(withNaN, h, p, nullptr, nullptr, htTwoTailed, 0.05); }, hrNan,
       NAN},
      {[&](auto& h, double& p) { GOFKolmogorov(x, h, p, &tableNaN, &stepY, htLeftTailed, 0.05); }, hrNan,
       NAN},
      {[&](auto& h, double& p) { GOFChi2Test(O, E, 10, 1, h, p, htRightTailed, 0.05); }, hrNan, NAN},
      {[&](auto& h, double& p) { GOFChi2Test(x, x, 0, 0, h, p, htRightTailed, 0.05); }, hrNan, NAN},
      {[&](auto& h, double& p) { GOFChi2Test(x, x, 0, 4, h, p, htRightTailed, 2.0); }, hrReject, 1.0},
  };
  int row = 0;
  for (const auto& [call, result, signif] : cases) {
    SCOPED_TRACE("row " + std::to_string(row++));
    PoolBalance balance;
    THypothesisResult h = hrReject;
    double p = -1.0;
    call(h, p);
    EXPECT_EQ(h, result);
    EXPECT_TRUE(NearRel(p, signif, 4 * kEps));
  }
}

}  // namespace
}  // namespace statkit::test
