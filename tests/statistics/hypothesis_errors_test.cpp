// Bad calls of the hypothesis tests: the exact messages, raised before or
// inside the protected block as each test places its checks, the checks in
// their order, outputs left alone, and pool temporaries returned. An invalid
// level makes most tests undecidable instead of raising.
#include <functional>

#include "support/hypothesis.h"

namespace statkit::test {
namespace {
using namespace statkit::Statistics;

TEST(HypothesisTestErrors, BadCallsRaiseExactMessages) {
  TVec x{1.0, 2.5, 2.0, 4.0}, x3{1.0, 2.0, 3.0}, one{1.0}, two{1.0, 2.0}, empty, c, c3, big;
  c.Size(4, true);
  c3.Size(3, true);
  big.Size(5001);
  big.Ramp(0.0, 1.0);
  TMtx cm(5, 2, true);
  THypothesisResult h = hrNotReject;
  double p = 0.25, rs = 0.25, ci[2] = {7.0, 7.0};
  int numComp = 3;
  TVec sig;
  const THypothesisType tt = htTwoTailed;
  const RaiseCase cases[] = {
      {"ZTest : ZTest: Data.Complex = true", [&] { ZTest(c, 0, 1, h, p, ci, tt, 0.05); }},
      {"ZTest : ZTest: Data.Complex = true", [&] { ZTest(c, 0, 1, h, p, ci, tt, 7.0); }},  // before the level
      {"ZTest : Empty vector", [&] { ZTest(empty, 0, 1, h, p, ci, tt, 0.05); }},
      {"tTest : tTest: Data.Complex = true", [&] { tTest(c, 0, h, p, ci, tt, 0.05); }},
      {"tTest : tTest: vectors must be real", [&] { tTest(x, c, h, p, ci, false, tt, 0.05); }},
      {"tTest : tTest: vectors must be real", [&] { tTest(c, x3, h, p, ci, true, tt, 0.05); }},
      {"tTest : tTest: Data1.Length <> Data2.Length", [&] { tTest(x, x3, h, p, ci, true, tt, 0.05); }},
      {"tTest : tTest : Empty vector", [&] { tTest(empty, empty, h, p, ci, true, tt, 0.05); }},
      {"SignTest: Data.Complex := true", [&] { SignTest(c, 0, h, p, ci, tt, 0.05); }},
      {"SignTest :(alpha<=0) or (alpha>=1)", [&] { SignTest(x, 0, h, p, ci, tt, 0.0); }},
      {"SignTest :(alpha<=0) or (alpha>=1)", [&] { SignTest(x, 0, h, p, ci, tt, 1.0); }},
      {"SignTest :(alpha<=0) or (alpha>=1)", [&] { SignTest(x, 0, h, p, ci, tt, NAN); }},
      {"SignTest: (Data1.Length <> Data2.Length)", [&] { SignTest(c, x3, h, p, ci, tt, 0.0); }},
      {"SignTest: vectors must be real", [&] { SignTest(x, c, h, p, ci, tt, 0.0); }},
      {"SignTest :(alpha<=0) or (alpha>=1)", [&] { SignTest(x, x, h, p, ci, tt, -0.5); }},
      {"Chi2Test : Chi2Test: Data.Complex = true", [&] { ChiSquareTest(c, 1, h, p, ci, tt, 0.05); }},
      {"Chi2Test : Empty vector", [&] { ChiSquareTest(empty, 1, h, p, ci, tt, 0.05); }},
      {"FTest : FTest: (Data1.Complex) or (Data2.Complex)", [&] { FTest(x, c3, h, p, ci, tt, 0.05); }},
      {"FTest : FTest: (Data1.Complex) or (Data2.Complex)", [&] { FTest(c, one, h, p, ci, tt, 0.05); }},
      {"FTest : FTest: (Data1.Length<2) or (Data2.Length<2)", [&] { FTest(one, x, h, p, ci, tt, 0.05); }},
      {"FTest : FTest: (Data1.Length<2) or (Data2.Length<2)", [&] { FTest(two, empty, h, p, ci, tt, 0.05); }},
      {"BarlettTest : BarlettTest: Data.Complex = True", [&] { BarlettTest(cm, numComp, sig, PCACovMat, 0.05); }},
      {"WilcoxonSign : WilcoxonSign: Data.Complex = true", [&] { WilcoxonSign(c, 0, h, p, ci, tt, 0.0); }},
      {"WilcoxonSign: (Data1.Length <> Data2.Length)", [&] { WilcoxonSign(c, x3, h, p, ci, tt, 0.0); }},
      {"WilcoxonSign: vectors must be real", [&] { WilcoxonSign(c, x, h, p, ci, tt, 0.0); }},
      {"WilcoxonSign :(alpha<=0) or (alpha>=1)", [&] { WilcoxonSign(x, x, h, p, ci, tt, 1.0); }},
      {"SpearmanRankCorr: (X.Complex) or (Y.Complex)", [&] { SpearmanRankCorr(x, c3, rs, h, p, ci, tt, 0.05); }},
      {"SpearmanRankCorr: X.Length <> Y.Length", [&] { SpearmanRankCorr(x, x3, rs, h, p, ci, tt, 0.05); }},
      {"ShapiroWilks: Data.Complex", [&] { ShapiroWilks(c, h, p, tt, 0.05); }},
      {"ShapiroWilks: (Data.Length<3) or (Data.Length>5000)", [&] { ShapiroWilks(two, h, p, tt, 0.05); }},
      {"ShapiroWilks: (Data.Length<3) or (Data.Length>5000)", [&] { ShapiroWilks(big, h, p, tt, 0.05); }},
      {"ShapiroWilks: Data.Complex", [&] { ShapiroFrancia(c, h, p, tt, 0.05); }},
      {"ShapiroWilks : Empty vector", [&] { ShapiroFrancia(empty, h, p, tt, 0.05); }},
  };
  ExpectEachRaises(cases, [&](const RaiseCase&) {
    EXPECT_TRUE(h == hrNotReject && p == 0.25 && rs == 0.25 && ci[0] == 7.0 && numComp == 3) << "output written";
  });
}

// An invalid level, no spread (one value: zero degrees of freedom), no scale
// (a constant sample) or a NaN hypothesised median leave the test undecidable:
// hrNan and a NaN significance, without raising.
TEST(HypothesisTestErrors, UndecidableCallsGiveNaNWithoutRaising) {
  const TVec x{1.0, 2.5, 2.0, 4.0, 3.5}, y{0.5, 2.0, 2.5, 1.0, 6.0}, one{2.0}, flat{3.0, 3.0, 3.0, 3.0, 3.0};
  enum Interval { kNaN, kUntouched, kAny };
  struct Case {
    std::string label;
    std::function<void(THypothesisResult&, double&, double*)> call;
    Interval interval;
  };
  std::vector<Case> cases = {
      {"tTest of one value", [&](auto& h, double& p, double* ci) { tTest(one, 1, h, p, ci, htTwoTailed, 0.05); }, kAny},
      {"tTest of one and one", [&](auto& h, double& p, double* ci) { tTest(one, one, h, p, ci, false, htLeftTailed, 0.05); }, kAny},
      {"ChiSquareTest of one value", [&](auto& h, double& p, double* ci) { ChiSquareTest(one, 1, h, p, ci, htTwoTailed, 0.05); }, kAny},
      {"FTest of constants", [&](auto& h, double& p, double* ci) { FTest(flat, flat, h, p, ci, htRightTailed, 0.05); }, kAny},
      {"ShapiroWilks of a constant", [&](auto& h, double& p, double*) { ShapiroWilks(flat, h, p, htRightTailed, 0.05); }, kAny},
      {"ShapiroFrancia of a constant", [&](auto& h, double& p, double*) { ShapiroFrancia(flat, h, p, htTwoTailed, 0.05); }, kAny},
      // Sigma is used as given: 0 at the sample mean is 0 / 0 (the interval is [3, 3])
      {"ZTest with Sigma 0 at the mean", [&](auto& h, double& p, double* ci) { ZTest(flat, 3, 0, h, p, ci, htTwoTailed, 0.05); }, kAny},
      {"ZTest with NaN Sigma", [&](auto& h, double& p, double* ci) { ZTest(x, 3, NAN, h, p, ci, htTwoTailed, 0.05); }, kNaN},
      {"SignTest with a NaN median", [&](auto& h, double& p, double* ci) { SignTest(TVec{}, NAN, h, p, ci, htTwoTailed, 0.05); }, kUntouched},
      {"WilcoxonSign with a NaN median", [&](auto& h, double& p, double* ci) { WilcoxonSign(x, NAN, h, p, ci, htTwoTailed, 0.05); }, kNaN},
  };
  for (double a : {0.0, 1.0, -0.1, 1.5, double(NAN)}) {
    const std::string at = " at alpha " + std::to_string(a);
    // The one-sample Wilcoxon test leaves the interval alone; the others write NaN limits.
    cases.insert(cases.end(), {
        {"ZTest" + at, [&, a](auto& h, double& p, double* ci) { ZTest(x, 1, 2, h, p, ci, htLeftTailed, a); }, kNaN},
        {"tTest" + at, [&, a](auto& h, double& p, double* ci) { tTest(x, 1, h, p, ci, htTwoTailed, a); }, kNaN},
        {"tTest two" + at, [&, a](auto& h, double& p, double* ci) { tTest(x, y, h, p, ci, false, htTwoTailed, a); }, kNaN},
        {"tTest paired" + at, [&, a](auto& h, double& p, double* ci) { tTest(x, y, h, p, ci, true, htRightTailed, a); }, kNaN},
        {"ChiSquareTest" + at, [&, a](auto& h, double& p, double* ci) { ChiSquareTest(x, 1, h, p, ci, htTwoTailed, a); }, kNaN},
        {"FTest" + at, [&, a](auto& h, double& p, double* ci) { FTest(x, y, h, p, ci, htRightTailed, a); }, kNaN},
        {"WilcoxonSign" + at, [&, a](auto& h, double& p, double* ci) { WilcoxonSign(x, 1, h, p, ci, htTwoTailed, a); }, kUntouched},
    });
  }
  for (const auto& c : cases) {
    SCOPED_TRACE(c.label);
    PoolBalance balance;
    THypothesisResult h = hrReject;
    double p = 0.25, ci[2] = {7.0, 7.0};
    c.call(h, p, ci);
    EXPECT_EQ(h, hrNan);
    EXPECT_TRUE(std::isnan(p));
    if (c.interval == kNaN) {
      EXPECT_TRUE(std::isnan(ci[0]) && std::isnan(ci[1]));
    } else if (c.interval == kUntouched) {
      EXPECT_TRUE(ci[0] == 7.0 && ci[1] == 7.0);
    }
  }
}

}  // namespace
}  // namespace statkit::test
