// Bad calls of NLinRegress, NumericDerive, LogisticRegress and RidgeRegress: the exact message of each,
// raised before any output is written and with every pool temporary given back.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "statkit/Regress.h"
#include "support/expect.h"

namespace statkit::Regress {
namespace {

double line(std::span<const double> b, double x) { return b[0] + b[1] * x; }
double throwing(std::span<const double>, double) { ERaise("model failed"); }

TEST(RegressionFitErrors, EachBadCallRaisesItsMessage) {
  const TVec x{1, 2, 3, 4}, y{1, 3, 2, 5}, x3{1, 2, 3}, n{5, 5, 5, 5}, w3{1, 1, 1};
  const TMtx A{{1, 0}, {1, 1}, {1, 2}, {1, 3}}, A3{{1}, {2}, {3}}, constCol{{1, 2}, {1, 3}, {1, 1}, {1, 5}};
  const TVec cats{1, 2, 2, 3}, halfCat{1, 2.5, 2, 3};
  TVec B{0.5, 0.5}, Bs{1.0, 2.0}, out, theta, se, grad(1), grad2(2), cx, empty;
  cx.Size(4, true);  // complex
  TOptStopReason why{};
  double fmin = 0;
  auto nlin = [&](const TVec& X, const TVec& Y, const TVec* W, TRegressFun f, TVec& b) {
    return NLinRegress(X, Y, f, nullptr, b, optMarquardt, why, W, nullptr, false, 50, 1e-10, 1e-10);
  };
  auto ordinal = [&](const TVec& c, const TMtx& a, bool i) {
    LogisticRegress(c, a, Bs, theta, se, fmin, why, 9, 0, i);
  };
  auto binomial = [&](const TVec& k, const TVec& t, const TMtx* a) {
    LogisticRegress(k, t, out, a, 0, {}, {}, 0);
  };
  const TMtx oneCol{{1}, {2}, {4}, {3}};
  const std::string range = "LogisticRegress: 0 <= y <= n and n > 0 required", lr = "LogisticRegress: ";
  // clang-format off
  const std::vector<test::RaiseCase> cases = {
      {"NLinRegress: X.Length <> Y.Length", [&] { nlin(x3, y, nullptr, line, B); }},
      {"NLinRegress: Weights.Length <> Y.Length", [&] { nlin(x, y, &w3, line, B); }},
      {"NLinRegress: X.Length <> Y.Length",
       [&] { NLinRegress(x3, y, TRegressFunction(line), {}, B, optSimplex, why, {}, {}, 0, 9, 0, 0); }},
      {"NLinRegress : model failed", [&] { nlin(x, y, nullptr, throwing, B); }, "prefixed"},
      {"NLinRegress : Invalid parameter", [&] { nlin(x, y, nullptr, nullptr, B); }, "no model"},
      {"NLinRegress : Empty vector", [&] { nlin(x, y, nullptr, line, empty); }, "no coefficients"},
      {"NLinRegress : Complex data not supported", [&] { nlin(cx, y, nullptr, line, B); }},
      {"model failed", [&] { NumericDerive(throwing, 1.0, 0.0, B, grad2); }, "no frame"},
      {"Size mismatch", [&] { NumericDerive(line, 1.0, 0.0, B, grad); }, "Grad shorter than B"},
      {"LogisticRegress: (y.Complex) or (n.Complex)", [&] { binomial(y, cx, nullptr); }},
      {"LogisticRegress: A.Rows <> y.Length", [&] { binomial(y, n, &A3); }},
      {"LogisticRegress: n.Length <> y.Length", [&] { binomial(y, x3, &A); }},
      {range, [&] { binomial(TVec{1, 6, 2, 0}, n, &A); }, "y > n"},
      {range, [&] { binomial(TVec{0, 0, 0, 0}, {1, 0, 1, 1}, &A); }},
      {range, [&] { binomial(TVec{1, NAN, 2, -1}, n, &A); }, "NaN"},
      {"LogisticRegress: A.Rows <> y.Length", [&] { ordinal(cats, A3, true); }, "ordinal"},
      {"LogisticRegress: y must hold whole numbers", [&] { ordinal(halfCat, oneCol, true); }},
      {lr + "y must hold whole numbers", [&] { ordinal(TVec{1, 2, INF, 3}, oneCol, true); }},
      {"LogisticRegress: constant column in A", [&] { ordinal(cats, constCol, true); }},
      {lr + "Theta.Length <> number of cut-points", [&] { ordinal(cats, oneCol, (theta = {0.0}, false)); }},
      {"RidgeRegress: (y.Complex) or (A.Complex)", [&] { RidgeRegress(cx, A, 1, out); }},
      {"RidgeRegress: y.Length <> A.Rows", [&] { RidgeRegress(y, A3, 1, out); }},
      {"RidgeRegress: k < 0", [&] { RidgeRegress(y, A, -1e-300, out); }},
      {"RidgeRegress : Singular matrix", [&] { RidgeRegress(y, constCol, 0, out); }, "k = 0, constant"},
  };
  // clang-format on
  test::ExpectEachRaises(cases, [&](const test::RaiseCase&) { EXPECT_EQ(out.Length(), 0); });
}

}  // namespace
}  // namespace statkit::Regress
