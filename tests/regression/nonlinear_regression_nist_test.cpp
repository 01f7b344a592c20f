// NIST StRD nonlinear least squares: all 27 sets by Marquardt from both start values, with exact model
// derivatives (forward-mode automatic differentiation of the model as written) and with NumericDerive;
// the lower-difficulty sets also by Nelder-Mead, BFGS, DFP and both conjugate gradients. Prints the LREs.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <numbers>
#include <string>
#include <vector>

#include "statkit/Regress.h"
#include "support/fixture.h"
#include "support/nist.h"

namespace statkit::Regress {
namespace {

// A number with its derivatives by up to nine parameters (forward-mode automatic differentiation).
struct Dual {
  double v;
  std::array<double, 9> d{};
};
// The value v with the derivatives da a' + db b' (the chain rule through one or two arguments).
Dual lift(double v, double da, const Dual& a, double db = 0, const Dual& b = {}) {
  Dual r{v};
  for (int j = 0; j < 9; ++j) r.d[j] = da * a.d[j] + db * b.d[j];
  return r;
}
Dual operator+(const Dual& a, const Dual& b) { return lift(a.v + b.v, 1, a, 1, b); }
Dual operator*(const Dual& a, const Dual& b) { return lift(a.v * b.v, b.v, a, a.v, b); }
Dual operator-(const Dual& a) { return lift(-a.v, -1, a); }
Dual operator-(const Dual& a, const Dual& b) { return a + -b; }
Dual operator/(const Dual& a, const Dual& b) { return a * lift(1 / b.v, -1 / (b.v * b.v), b); }
Dual operator+(const Dual& a, double c) { return lift(a.v + c, 1, a); }
Dual operator+(double c, const Dual& a) { return a + c; }
Dual operator-(double c, const Dual& a) { return -a + c; }
Dual operator*(const Dual& a, double c) { return lift(a.v * c, c, a); }
Dual operator*(double c, const Dual& a) { return a * c; }
Dual operator/(const Dual& a, double c) { return a * (1 / c); }
Dual operator/(double c, const Dual& a) { return lift(c / a.v, -c / (a.v * a.v), a); }
Dual exp(const Dual& a) { return lift(std::exp(a.v), std::exp(a.v), a); }
Dual log(const Dual& a) { return lift(std::log(a.v), 1 / a.v, a); }
Dual cos(const Dual& a) { return lift(std::cos(a.v), -std::sin(a.v), a); }
Dual sin(const Dual& a) { return lift(std::sin(a.v), std::cos(a.v), a); }
Dual atan(const Dual& a) { return lift(std::atan(a.v), 1 / (1 + a.v * a.v), a); }
Dual pow(const Dual& a, double c) { return lift(std::pow(a.v, c), c * std::pow(a.v, c - 1), a); }
Dual pow(const Dual& a, const Dual& c) { return exp(log(a) * c); }
Dual pow(double a, const Dual& c) { return exp(std::log(a) * c); }
using std::atan, std::cos, std::exp, std::log, std::pow, std::sin;

// The models as NIST writes them, for doubles and duals alike.
constexpr double pi = std::numbers::pi;
// clang-format off
#define NIST_MODEL(name, f) constexpr auto name = [](const auto* b, double x) { return f; };
NIST_MODEL(misra1a, b[0] * (1 - exp(-b[1] * x)))
NIST_MODEL(chwirut, exp(-b[0] * x) / (b[1] + b[2] * x))
NIST_MODEL(lanczos, b[0] * exp(-b[1] * x) + b[2] * exp(-b[3] * x) + b[4] * exp(-b[5] * x))
NIST_MODEL(gauss, b[0] * exp(-b[1] * x) + b[2] * exp(-(x - b[3]) * (x - b[3]) / (b[4] * b[4])) +
                  b[5] * exp(-(x - b[6]) * (x - b[6]) / (b[7] * b[7])))
NIST_MODEL(danwood, b[0] * pow(x, b[1]))
NIST_MODEL(misra1b, b[0] * (1 - pow(1 + b[1] * x / 2, -2.0)))
NIST_MODEL(kirby2, (b[0] + b[1] * x + b[2] * x * x) / (1 + b[3] * x + b[4] * x * x))
NIST_MODEL(cubicRatio, (b[0] + b[1] * x + b[2] * x * x + b[3] * x * x * x) /
                       (1 + b[4] * x + b[5] * x * x + b[6] * x * x * x))
NIST_MODEL(mgh17, b[0] + b[1] * exp(-x * b[3]) + b[2] * exp(-x * b[4]))
NIST_MODEL(misra1c, b[0] * (1 - pow(1 + 2 * b[1] * x, -0.5)))
NIST_MODEL(misra1d, b[0] * b[1] * x / (1 + b[1] * x))
NIST_MODEL(roszman1, b[0] - b[1] * x - atan(b[2] / (x - b[3])) / pi)
NIST_MODEL(enso, b[0] + b[1] * cos(2 * pi * x / 12) + b[2] * sin(2 * pi * x / 12) +
                 b[4] * cos(2 * pi * x / b[3]) + b[5] * sin(2 * pi * x / b[3]) +
                 b[7] * cos(2 * pi * x / b[6]) + b[8] * sin(2 * pi * x / b[6]))
NIST_MODEL(mgh09, b[0] * (x * x + x * b[1]) / (x * x + x * b[2] + b[3]))
NIST_MODEL(rat42, b[0] / (1 + exp(b[1] - b[2] * x)))
NIST_MODEL(mgh10, b[0] * exp(b[1] / (x + b[2])))
NIST_MODEL(eckerle4, (b[0] / b[1]) * exp(-0.5 * ((x - b[2]) / b[1]) * ((x - b[2]) / b[1])))
NIST_MODEL(rat43, b[0] / pow(1 + exp(b[1] - b[2] * x), 1 / b[3]))
NIST_MODEL(bennett5, b[0] * pow(b[1] + x, -1 / b[2]))
#undef NIST_MODEL
// clang-format on

template <const auto& M>
double eval(std::span<const double> B, double X) {
  return M(B.data(), X);
}
template <const auto& M>
void derive(TRegressFun, double X, double, std::span<const double> B, TVec& Grad) {
  Dual b[9];
  for (std::size_t j = 0; j < B.size(); ++j) b[j] = {B[j]}, b[j].d[j] = 1;
  const Dual r = M(b, X);
  for (std::size_t j = 0; j < B.size(); ++j) Grad[static_cast<int>(j)] = r.d[j];
}

// clang-format off
struct NistModel { const char* name; TRegressFun f; TDeriveProc d; bool lowerDifficulty; };
#define MODEL(name, m, low) {name, eval<m>, derive<m>, low}
const NistModel kSets[] = {
    MODEL("Misra1a", misra1a, true),   MODEL("Chwirut2", chwirut, true), MODEL("Chwirut1", chwirut, true),
    MODEL("Lanczos3", lanczos, true),  MODEL("Gauss1", gauss, true),     MODEL("Gauss2", gauss, true),
    MODEL("DanWood", danwood, true),   MODEL("Misra1b", misra1b, true),  MODEL("Kirby2", kirby2, false),
    MODEL("Hahn1", cubicRatio, false), {"Nelson", nullptr, nullptr, false}, MODEL("MGH17", mgh17, false),
    MODEL("Lanczos1", lanczos, false), MODEL("Lanczos2", lanczos, false), MODEL("Gauss3", gauss, false),
    MODEL("Misra1c", misra1c, false),  MODEL("Misra1d", misra1d, false), MODEL("Roszman1", roszman1, false),
    MODEL("ENSO", enso, false),        MODEL("MGH09", mgh09, false),     MODEL("Thurber", cubicRatio, false),
    MODEL("BoxBOD", misra1a, false),   MODEL("Rat42", rat42, false),     MODEL("MGH10", mgh10, false),
    MODEL("Eckerle4", eckerle4, false), MODEL("Rat43", rat43, false),    MODEL("Bennett5", bennett5, false)};
// clang-format on
#undef MODEL

// The smallest LRE of a set's parameters fitted from start 1 or 2. Nelson's capturing model takes the
// observation index as X; the gradient methods fit the parameters divided by their start values (unscaled,
// BFGS and DFP stall on Misra1a and Misra1b, whose parameters differ by six orders of magnitude).
double fitLRE(const NistModel& m, int start, bool numeric, TOptMethod method, int maxIter, double tol) {
  const test::StrdSet set = test::ReadStrd("nls/" + std::string(m.name));
  const int p = static_cast<int>(set.params.size());
  const bool scaled = method != optSimplex && method != optMarquardt;
  TVec B(p), scale(p);
  for (int j = 0; j < p; ++j) scale[j] = scaled ? set.Values(set.params[j])[start - 1] : 1.0;
  for (int j = 0; j < p; ++j) B[j] = set.Values(set.params[j])[start - 1] / scale[j];
  TVec X = set.Column(1), Y = set.Column(0);
  TRegressFunction f = m.f;
  TDeriveFunction d = [&](auto&, double x, double y, auto b, TVec& g) { m.d(m.f, x, y, b, g); };
  TVec x1, x2;
  if (m.f == nullptr) {  // Nelson: log y = b1 - b2 x1 exp(-b3 x2)
    x1 = set.Column(1), x2 = set.Column(2);
    for (int i = 0; i < X.Length(); ++i) X[i] = i, Y[i] = std::log(Y[i]);
    f = [&](auto b, double i) { return b[0] - b[1] * x1[int(i)] * std::exp(-b[2] * x2[int(i)]); };
    d = [&](auto&, double i, double, auto b, TVec& g) {
      const int k = int(i);
      g[0] = 1, g[1] = -x1[k] * std::exp(-b[2] * x2[k]), g[2] = -b[1] * x2[k] * g[1];
    };
  }
  // On the scaled parameters q = b / scale: the model at b, its derivative by the chain rule.
  const auto unscaled = [&](auto q, double* b) {
    for (int j = 0; j < p; ++j) b[j] = q[j] * scale[j];
    return std::span<const double>(b, p);
  };
  const TRegressFunction fs = [&](auto q, double x) {
    double b[9];
    return f(unscaled(q, b), x);
  };
  const TDeriveFunction ds = [&](auto&, double x, double y, auto q, TVec& g) {
    double b[9];
    d(f, x, y, unscaled(q, b), g);
    for (int j = 0; j < p; ++j) g[j] *= scale[j];
  };
  TOptStopReason why{};
  NLinRegress(X, Y, fs, numeric ? TDeriveFunction() : ds, B, method, why, nullptr, nullptr, false, maxIter, tol,
              0);
  std::vector<double> b(p);
  for (int j = 0; j < p; ++j) b[j] = B[j] * scale[j];
  if (std::string(m.name).starts_with("Lanczos")) {
    // A sum of exponentials is the same model with its terms in any order: compare the terms by rate,
    // as the certified values list them.
    std::vector<std::array<double, 2>> terms;  // (rate, amplitude)
    for (int k = 0; k + 1 < p; k += 2) terms.push_back({b[k + 1], b[k]});
    std::sort(terms.begin(), terms.end());
    for (std::size_t k = 0; k < terms.size(); ++k) b[2 * k] = terms[k][1], b[2 * k + 1] = terms[k][0];
  }
  double lre = 99;
  for (int j = 0; j < p; ++j) lre = std::min(lre, test::LRE(b[j], set.estimates[j]));
  return lre;
}

// One row per set: Marquardt from start 1 and 2 (exact, numeric derivatives), then the other optimisers from
// start 2 on the lower-difficulty sets. Lanczos3 (scaled Gauss-Newton condition 6.6e8) is exempt for the
// conjugate gradients, which end far off within 5000 iterations.
TEST(NLinRegressNist, CertifiedValuesByEveryOptimiser) {
  if (test::StrdDir().empty()) GTEST_SKIP() << "NIST StRD folder not present";
  int passedFromStart1[2] = {};
  std::printf("  set       Marquardt s1:exact numeric s2:exact numeric | s2: Simplex BFGS DFP CG-FR CG-PR\n");
  for (const NistModel& m : kSets) {
    std::printf("  %-10s", m.name);
    for (int start : {1, 2})
      for (bool numeric : {false, true}) {
        const double lre = fitLRE(m, start, numeric, optMarquardt, 5000, 1e-15);
        std::printf(" %7.1f", lre);
        passedFromStart1[numeric] += start == 1 && lre >= 6;
        EXPECT_TRUE(start == 1 || lre >= 6) << m.name << (numeric ? " numeric " : " exact ") << lre;
      }
    for (TOptMethod method : {optSimplex, optBFGS, optDFP, optConjGradFR, optConjGradPR}) {
      if (!m.lowerDifficulty) break;
      const bool simplex = method == optSimplex;
      const double lre = fitLRE(m, 2, false, method, simplex ? 20000 : 5000, simplex ? 1e-13 : 1e-15);
      std::printf(" %5.1f", lre);
      const bool exempt = std::string(m.name) == "Lanczos3" && (method == optConjGradFR || method == optConjGradPR);
      EXPECT_TRUE(exempt || lre >= 4) << m.name << " " << TOptMethodNames[method] << " " << lre;
    }
    std::printf("\n");
  }
  EXPECT_GE(passedFromStart1[0], 24);
  EXPECT_GE(passedFromStart1[1], 24);
}

}  // namespace
}  // namespace statkit::Regress
