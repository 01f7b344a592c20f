// Every check of linear regression, analysis of variance and the regression
// models, from one table of bad calls: the exact message, prefixed where the
// failure arises inside the operation's work, and the pool given back.

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <typeinfo>

#include "statkit/RegModels.h"
#include "statkit/Regress.h"
#include "support/expect.h"

namespace statkit::Regress {
namespace {

using namespace RegModels;

// PowerFit and ExpFit raise the runtime's base exception class itself: re-raised as
// EArrayError with its message when it is exactly that class, so that one table checks all.
template <class Call>
std::function<void()> baseClassOnly(Call call) {
  return [call] {
    try {
      call();
    } catch (const std::exception& e) {
      ERaise(typeid(e) == typeid(std::runtime_error) ? e.what() : "not std::runtime_error");
    }
  };
}

template <class T, class... Shape>
T complexZeros(Shape... shape) {
  T v;
  v.Size(shape..., true);
  v.SetZero();
  return v;
}

TEST(RegressionErrors, EveryCheckRaisesItsExactMessage) {
  const TVec x3{1, 2, 3}, y3{2, 4, 7}, x2{1, 2}, c3 = complexZeros<TVec>(3), same{2, 2, 2};
  const TVec gNeg{0, -0.5, 1}, gNan{0, NAN, 1}, gInf{0, INF, 1}, gGap{0, 0, 2}, gHuge{0, 1, 1e300},
      gOne{0, 0.5, 0.9};
  const TMtx A3{{1, 2}, {2, 3}, {3, 5}}, collinear{{1, 2}, {2, 4}, {3, 6}}, offset{{1, 2}, {2, 3}, {3, 4}};
  const std::vector<double> b3{1, 2, 3}, b1{1};
  TVec B, YCalc, R, S;
  TMtx V{{1, 0}, {0, 1}};
  TRegStats st;
  double s1, s2, s3;
  const test::RaiseCase cases[] = {
      {"LinRegress : X.Length <> Y.Length", [&] { LinRegress(x2, y3, B); }},
      {"LinRegress : X.Complex or Y.Complex or Weights.Complex", [&] { LinRegress(c3, y3, B); }},
      {"LinRegress : (Weights.Length <> X.Length) or Weights.Complex)", [&] { LinRegress(x3, y3, B, &x2); }},
      {"LinRegress : (Weights.Length <> X.Length) or Weights.Complex)", [&] { LinRegress(x3, y3, B, &c3); },
       "complex weights"},
      {"LinRegress : Singular matrix", [&] { LinRegress(same, y3, B); }, "all x equal"},
      {"LinRegress : Singular matrix", [&] { LineFit(B, same, y3); }, "LineFit passes LinRegress's errors"},
      {"LinRegress : X.Length <> Y.Length", [&] { LineFit(B, x2, y3); }},
      {"MulLinRegress: y.Complex or A.Complex", [&] { MulLinRegress(c3, A3, B, true); }},
      {"MulLinRegress: y.Length <> A.Rows", [&] { MulLinRegress(x2, A3, B, true); }},
      {"MulLinRegress: y.Length <> A.Rows", [&] { MulLinFit(B, A3, x2, true); }, "MulLinFit"},
      {"MulLinRegress : Singular matrix", [&] { MulLinRegress(y3, collinear, B, false); }},
      {"MulLinRegress : Singular matrix", [&] { MulLinRegress(y3, offset, B, true, nullptr, &V); },
       "intercept"},
      {"MulLinRegress: Y.Complex or A.Complex",
       [&] { MulLinRegress(y3, complexZeros<TMtx>(3, 2), B, x3, true); }},
      {"MulLinRegress: Y.Length<>Weights.Length", [&] { MulLinRegress(y3, A3, B, x2, true); }},
      {"MulLinRegress : Size mismatch", [&] { MulLinRegress(x2, A3, B, x2, true); }, "weighted rows differ"},
      {"RegressTest: Y.Length <> YCalc.Length", [&] { RegressTest(y3, x2, V, st, true); }},
      {"RegressTest: Weights.Length <> Y.Length", [&] { RegressTest(y3, x3, V, st, R, S, true, &x2); }},
      {"ANOVA1: Data.Length <> GroupIndex.Length", [&] { ANOVA1(y3, x2, s1, 0.05); }},
      {"ANOVA1: GroupIndex.Complex = true", [&] { ANOVA1(y3, c3, s1, 0.05); }},
      {"ANOVA1: GroupIndex must be finite and >= 0", [&] { ANOVA1(y3, gNeg, s1, 0.05); }},
      {"ANOVA1: GroupIndex must be finite and >= 0", [&] { ANOVA1(y3, gNan, s1, 0.05); }, "NaN"},
      {"ANOVA1: GroupIndex must be finite and >= 0", [&] { ANOVA1(y3, gInf, s1, 0.05); }, "INF"},
      {"ANOVA1: empty group", [&] { ANOVA1(y3, gGap, s1, 0.05); }},
      {"ANOVA1: empty group", [&] { ANOVA1(y3, gHuge, s1, 0.05); }, "beyond int"},
      {"ANOVA1: fewer than two groups", [&] { ANOVA1(y3, gOne, s1, 0.05); }},
      {"ANOVA1: fewer than two groups", [&] { ANOVA1(TVec{}, TVec{}, s1, 0.05); }, "no data"},
      {"ANOVA2: (Data.Rows mod Replications) <> 0", [&] { ANOVA2(A3, s1, s2, s3, 2, 0.05); }},
      {"ANOVA2: (Data.Rows mod Replications) <> 0", [&] { ANOVA2(A3, s1, s2, s3, -2, 0.05); }, "negative"},
      {"ANOVA2: Replications <= 0", [&] { ANOVA2(A3, s1, s2, s3, 0, 0.05); }},
      {"ANOVA2: Replications <= 0", [&] { ANOVA2(A3, s1, s2, s3, -3, 0.05); }, "divisible, negative"},
      {"ANOVA2: Data.Complex = true", [&] { ANOVA2(complexZeros<TMtx>(2, 2), s1, s2, s3, 1, 0.05); }},
      {"Index out of range", [&] { MulLinEval(b3, x2, false); }, "X shorter than B"},
      {"Index out of range", [&] { LineEval(b1, 2.0); }, "B too short"},
      {"X.Lenght <> Y.Length", baseClassOnly([&] { PowerFit(B, x3, x2); })},
      {"X.Lenght <> Y.Length", baseClassOnly([&] { ExpFit(B, x3, x2); })},
      {"Weights.Length < X.Length", baseClassOnly([&] { PowerFit(B, x3, y3, &x2); })},
      {"Weights.Length < X.Length", baseClassOnly([&] { ExpFit(B, x3, y3, &x2); })},
  };
  test::ExpectEachRaises(cases);
}

}  // namespace
}  // namespace statkit::Regress
