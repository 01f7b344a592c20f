// GOFChi2Test (frequencies) and GOFKolmogorov against SciPy (chisquare, chi2, kstest exact,
// special.smirnov) and, above 140 values, Durbin's matrix in long double; the bad calls; the edges
// of the tabulated reference and of undecidable samples.
#include <algorithm>
#include <cstdio>
#include <functional>

#include "support/hypothesis.h"

namespace statkit::test {
namespace {
using namespace statkit::Statistics;

TEST(GoodnessOfFit, MatchesReference) {
  double worstOne = 0.0, worstTwo = 0.0;
  for (const auto& r : LoadFixture("goodness_of_fit.txt")) {
    if (r.Str("kind") == "chi2") {
      const TVec O = r.Vec("O"), E = r.Vec("E");
      SCOPED_TRACE("chi-square over " + std::to_string(O.Length()) + " cells");
      // The statistic summed in another order, then a chi-square tail: a few tens of eps.
      CheckAlternatives(r, "", 100 * kEps, [&](auto h, auto& res, double& p, double*) {
        GOFChi2Test(O, E, 0, r.Int("df"), res, p, h, 0.05);
      });
      continue;
    }
    const TVec x = r.Vec("x");
    const bool table = r.Has("cdfx");
    const TVec cx = table ? r.Vec("cdfx") : TVec{}, cy = table ? r.Vec("cdfy") : TVec{};
    const auto expected = r.Nums("p");
    SCOPED_TRACE("Kolmogorov n = " + std::to_string(x.Length()) + (table ? " tabulated" : " normal"));
    for (int h = 0; h < 3; ++h) {
      PoolBalance balance;
      THypothesisResult res = hrNan;
      double p = -1.0;
      GOFKolmogorov(x, res, p, table ? &cx : nullptr, table ? &cy : nullptr, kAlternatives[h], 0.05);
      const double err = std::fabs(p - expected[h]);
      if (h == 0) {
        // Two-sided: SciPy's 1 - P for the smaller values of n D^2 holds about 1e-16 absolute, and its
        // twice-the-one-sided tail beyond n D^2 = 4 omits the chance of crossing both lines (< 4e-11).
        EXPECT_LE(err, 1e-10 * expected[h] + 1e-15) << "two-sided " << p << " vs " << expected[h];
        worstTwo = std::max(worstTwo, err / (1e-10 * expected[h] + 1e-15));
      } else {
        // One-sided: a sum of positive terms each to a few eps, against SciPy's exact sum.
        EXPECT_REL(p, expected[h], 1e-12);
        worstOne = std::max(worstOne, err / expected[h]);
      }
      EXPECT_EQ(res, ExpectedDecision(expected[h], 0.05));
    }
  }
  std::printf("Kolmogorov: worst one-sided relative error %.2g; worst two-sided error %.2g of its tolerance\n",
              worstOne, worstTwo);
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
      {"GOFKolmogorov: Data.Complex", [&] { GOFKolmogorov(c3, h, p, nullptr, nullptr, tt, 0.05); }},
      {"GOFKolmogorov: Data.Complex", [&] { GOFKolmogorov(c3, h, p, &three, &four, tt, 0.05); }},  // before
      {"GOFKolmogorov : GOFKolmogorov: CDFx.Length <> CDFy.Length",
       [&] { GOFKolmogorov(four, h, p, &three, &four, tt, 0.05); }},
      {"GOFKolmogorov : GOFKolmogorov: CDFx.Length <> CDFy.Length",
       [&] { GOFKolmogorov(empty, h, p, &four, &empty, tt, 0.05); }},
      {"GOFKolmogorov : Empty vector", [&] { GOFKolmogorov(empty, h, p, nullptr, nullptr, tt, 0.05); }},
      {"GOFKolmogorov : Empty vector", [&] { GOFKolmogorov(three, h, p, &empty, &empty, tt, 0.05); }},
      {"GOFKolmogorov : Complex data not supported", [&] { GOFKolmogorov(three, h, p, &c3, &three, tt, 0.05); }},
  };
  ExpectEachRaises(cases, [&](const RaiseCase&) { EXPECT_TRUE(h == hrNotReject && p == 0.25) << "output written"; });
}

// What the tests decide where the reference cannot say: a missing table half, a step in the table,
// NaNs, empty cells, and the level that neither test checks.
TEST(GoodnessOfFit, EdgesOfTheReferenceAndUndecidableSamples) {
  const TVec x{-0.3, 1.2, 0.4, -1.9, 0.05}, flat{0.0, 1.0}, stepX{0.0, 0.5, 0.5, 1.0}, stepY{0.0, 0.2, 0.8, 1.0};
  const TVec half{0.5}, withNaN{0.1, NAN, 0.3}, tableNaN{0.0, NAN, 0.7, 1.0}, O{4.0, 0.0, 6.0}, E{5.0, 0.0, 5.0};
  double normal = 0.0;
  THypothesisResult hn = hrNan;
  GOFKolmogorov(x, hn, normal, nullptr, nullptr, htTwoTailed, 0.05);
  struct Case {
    const char* label;
    std::function<void(THypothesisResult&, double&)> call;
    THypothesisResult result;
    double signif;  // NaN: NaN
  };
  const Case cases[] = {
      // CDFy without CDFx (and the reverse) is ignored: the standard normal, not a fitted one.
      {"table half missing", [&](auto& h, double& p) { GOFKolmogorov(x, h, p, nullptr, &flat, htTwoTailed, 0.05); },
       hn, normal},
      {"table half missing", [&](auto& h, double& p) { GOFKolmogorov(x, h, p, &flat, nullptr, htTwoTailed, 0.05); },
       hn, normal},
      // A repeated abscissa is a step; at it the last of its points holds: F(0.5) = 0.8, D+ = 0.2, D- = 0.8,
      // and for one value P(D+ >= d) = 1 - d.
      {"step right", [&](auto& h, double& p) { GOFKolmogorov(half, h, p, &stepX, &stepY, htRightTailed, 0.05); },
       hrNotReject, 0.8},
      {"step left", [&](auto& h, double& p) { GOFKolmogorov(half, h, p, &stepX, &stepY, htLeftTailed, 0.05); },
       hrNotReject, 0.2},
      {"NaN sample", [&](auto& h, double& p) { GOFKolmogorov(withNaN, h, p, nullptr, nullptr, htTwoTailed, 0.05); },
       hrNan, NAN},
      {"NaN in table", [&](auto& h, double& p) { GOFKolmogorov(x, h, p, &tableNaN, &stepY, htLeftTailed, 0.05); },
       hrNan, NAN},
      // Level unchecked: Signif 1 <= 2 rejects.
      {"level 2", [&](auto& h, double& p) { GOFChi2Test(x, x, 0, 4, h, p, htRightTailed, 2.0); }, hrReject, 1.0},
      // An empty expected cell with no count: 0/0, a NaN statistic.
      {"empty cell", [&](auto& h, double& p) { GOFChi2Test(O, E, 10, 1, h, p, htRightTailed, 0.05); }, hrNan, NAN},
      {"no degrees of freedom", [&](auto& h, double& p) { GOFChi2Test(x, x, 0, 0, h, p, htRightTailed, 0.05); },
       hrNan, NAN},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.label);
    PoolBalance balance;
    THypothesisResult h = hrReject;
    double p = -1.0;
    c.call(h, p);
    EXPECT_EQ(h, c.result);
    EXPECT_TRUE(NearRel(p, c.signif, 4 * kEps));
  }
}

}  // namespace
}  // namespace statkit::test
