// General optimisers on the Moré-Garbow-Hillstrom (1981) test problems from their
// standard starts, NIST StRD nonlinear sets, a logistic likelihood with a closed-form
// maximum, numeric derivatives against analytic ones, and the error messages.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>
#include <vector>

#include "statkit/Array.h"
#include "support/expect.h"
#include "support/fixture.h"
#include "support/nist.h"

namespace statkit::test {
namespace {

using Objs = std::span<TObject* const>;
using Cs = std::span<const double>;

// Residuals of problem Consts[0]: 0 Rosenbrock, 1 Beale, 2 Wood, 3 helical valley, 4 Powell singular,
// 5 extended Rosenbrock (pairs of Rosenbrock residuals).
std::vector<double> MghResiduals(Cs x, Cs c, Objs) {
  std::vector<double> r;
  switch (static_cast<int>(c[0])) {
    case 0:
      r = {10 * (x[1] - x[0] * x[0]), 1 - x[0]};
      break;
    case 1:
      for (int i = 1; i <= 3; ++i)
        r.push_back(std::vector{1.5, 2.25, 2.625}[i - 1] - x[0] * (1 - std::pow(x[1], i)));
      break;
    case 2:
      r = {10 * (x[1] - x[0] * x[0]),
           1 - x[0],
           std::sqrt(90) * (x[3] - x[2] * x[2]),
           1 - x[2],
           std::sqrt(10) * (x[1] + x[3] - 2),
           (x[1] - x[3]) / std::sqrt(10)};
      break;
    case 3: {
      const double t = std::atan(x[1] / x[0]) / (2 * std::numbers::pi) + (x[0] < 0 ? 0.5 : 0);
      r = {10 * (x[2] - 10 * t), 10 * (std::hypot(x[0], x[1]) - 1), x[2]};
      break;
    }
    case 4:
      r = {x[0] + 10 * x[1], std::sqrt(5) * (x[2] - x[3]), std::pow(x[1] - 2 * x[2], 2),
           std::sqrt(10) * std::pow(x[0] - x[3], 2)};
      break;
    default:
      for (std::size_t i = 0; i + 1 < x.size(); i += 2) {
        r.push_back(10 * (x[i + 1] - x[i] * x[i]));
        r.push_back(1 - x[i]);
      }
  }
  return r;
}

// NIST models y = m(b, x) as residuals y - m, the data x and y as objects, the model in Consts[0].
double NistModel(int model, Cs b, double x) {
  switch (model) {
    case 0: return b[0] * (1 - std::exp(-b[1] * x));                 // Misra1a
    case 1: return std::exp(-b[0] * x) / (b[1] + b[2] * x);          // Chwirut2
    case 2: return b[0] * std::pow(x, b[1]);                         // DanWood
    default:                                                         // Thurber
      return (b[0] + x * (b[1] + x * (b[2] + x * b[3]))) / (1 + x * (b[4] + x * (b[5] + x * b[6])));
  }
}
std::vector<double> NistResiduals(Cs b, Cs c, Objs o) {
  const auto &x = ObjectAs<TVec>(o[0]), &y = ObjectAs<TVec>(o[1]);
  std::vector<double> r;
  for (int i = 0; i < x.Length(); ++i) r.push_back(y[i] - NistModel(static_cast<int>(c[0]), b, x[i]));
  return r;
}

using Residuals = std::vector<double> (*)(Cs, Cs, Objs);
template <Residuals R>
double SumOfSquares(Cs x, Cs c, Objs o) {
  double s = 0;
  for (double v : R(x, c, o)) s += v * v;
  return s;
}
// J'r and J'J, J by central differences (exact for the quadratic residuals of the singular problem).
template <Residuals R>
void GaussNewton(TOptObjective, Cs x, Cs c, Objs o, TVec& g, TMtx& h) {
  const int n = static_cast<int>(x.size());
  const std::vector<double> r = R(x, c, o);
  std::vector<std::vector<double>> jac;
  for (int j = 0; j < n; ++j) {
    std::vector<double> up(x.begin(), x.end()), down = up;
    const double step = 1e-6 * std::max(std::fabs(x[j]), 1.0);
    up[j] += step, down[j] -= step;
    const auto ru = R(up, c, o), rd = R(down, c, o);
    jac.emplace_back();
    for (std::size_t i = 0; i < r.size(); ++i) jac[j].push_back((ru[i] - rd[i]) / (up[j] - down[j]));
  }
  g = TVec(n);
  h.Size(n, n);
  h.SetVal(0.0);
  for (int j = 0; j < n; ++j)
    for (std::size_t i = 0; i < r.size(); ++i) {
      g[j] += jac[j][i] * r[i];
      for (int k = 0; k < n; ++k) h(j, k) += jac[j][i] * jac[k][i];
    }
}
constexpr auto Mgh = SumOfSquares<MghResiduals>;
constexpr auto MghGaussNewton = GaussNewton<MghResiduals>;

struct MghCase {
  const char* name;
  double id;
  std::vector<double> start, argmin;
  double tol;
};
const std::vector<MghCase> kMgh = {
    {"Rosenbrock", 0, {-1.2, 1}, {1, 1}, 1e-8},
    {"Beale", 1, {1, 1}, {3, 0.5}, 1e-8},
    {"Wood", 2, {-3, -1, -3, -1}, {1, 1, 1, 1}, 1e-8},
    {"helical valley", 3, {-1, 0, 0}, {1, 0, 0}, 1e-8},
    {"Powell singular", 4, {3, -1, 0, 1}, {0, 0, 0, 0}, 1e-6},
    {"extended Rosenbrock", 5, {-1.2, 1, -1.2, 1, -1.2, 1, -1.2, 1, -1.2, 1}, std::vector<double>(10, 1.0), 1e-8},
};

void ExpectNear(const std::vector<double>& x, const MghCase& c) {
  for (std::size_t i = 0; i < x.size(); ++i) EXPECT_NEAR(x[i], c.argmin[i], c.tol) << c.name << " x" << i;
}

TEST(Simplex, MinimisesStandardProblems) {
  for (const auto& c : kMgh) {
    std::vector<double> x = c.start, consts = {c.id};
    double fmin = NAN;
    TOptStopReason why{};
    const int iters = Simplex(Mgh, x, consts, {}, fmin, why, 100000, 1e-14);
    EXPECT_EQ(TOptStopReasonNames[why], "osSmallStep") << c.name << " after " << iters;
    EXPECT_EQ(fmin, Mgh(x, consts, {})) << c.name;
    ExpectNear(x, c);
  }
}

void MghGradient(TOptObjective fun, Cs x, Cs c, Objs o, TVec& g) {
  TMtx h;
  MghGaussNewton(fun, x, c, o, g, h);
  for (int i = 0; i < g.Length(); ++i) g[i] *= 2;
}

// Both quasi-Newton updates (BFGS, DFP) and both conjugate-gradient formulas (Fletcher-Reeves,
// Polak-Ribiere), each with the accurate and the soft line search.
TEST(GradientMethods, MinimiseStandardProblems) {
  for (int method = 0; method < 8; ++method)
    for (const auto& c : kMgh) {
      SCOPED_TRACE(std::to_string(method) + " " + c.name);
      std::vector<double> x = c.start, consts = {c.id};
      double fmin = NAN;
      TOptStopReason why{};
      TMtx invHess;
      const bool first = method & 1, soft = method & 2;
      if (method < 4) {
        BFGS(Mgh, MghGradient, x, consts, {}, fmin, invHess, why, first, soft, 20000, 1e-15, 0);
        EXPECT_NE(why, osMaxIterations);
      } else {
        // Near Powell's singular minimum the quartic directions have curvature ~|x|^2 beside constant
        // ones: conjugate gradients creep along them by steps far below any step tolerance, so only the
        // objective's change (or the iteration limit) ends the run.
        ConjGrad(Mgh, MghGradient, x, consts, {}, fmin, why, first, soft, 100000, 0, 0);
      }
      EXPECT_EQ(fmin, Mgh(x, consts, {}));
      ExpectNear(x, c);
    }
}

// Grouped logistic regression on a 0/1 covariate, Consts = {n0, k0, n1, k1}: minus the log-likelihood;
// its derivatives in the likelihood's own sign (score and negative definite Hessian).
double LogitNegLogLik(Cs b, Cs c, Objs) {
  double s = 0;
  for (int x = 0; x < 2; ++x)
    s += c[2 * x] * std::log1p(std::exp(b[0] + b[1] * x)) - c[2 * x + 1] * (b[0] + b[1] * x);
  return s;
}
void LogitScore(TOptObjective, Cs b, Cs c, Objs, TVec& g, TMtx& h) {
  g = TVec{0.0, 0.0};
  h = TMtx{{0, 0}, {0, 0}};
  for (int x = 0; x < 2; ++x) {
    const double p = 1 / (1 + std::exp(-(b[0] + b[1] * x))), w = c[2 * x] * p * (1 - p),
                 z[2] = {1.0, double(x)};
    for (int k = 0; k < 2; ++k) {
      g[k] += (c[2 * x + 1] - c[2 * x] * p) * z[k];
      for (int l = 0; l < 2; ++l) h(k, l) -= w * z[k] * z[l];
    }
  }
}

TEST(Marquardt, MinimisesStandardProblemsAndBothSignConventions) {
  TMtx cov;
  TOptStopReason why{};
  double fmin = NAN;
  // Gauss-Newton, and Newton on the numeric Hessian except where the Hessian vanishes at the minimum
  // (there the O(h^2) error of the numeric cross differences outweighs it).
  for (const TOptGradHessProc proc : {MghGaussNewton, NumericGradHess})
    for (const auto& c : kMgh) {
      if (proc == NumericGradHess && c.id == 4) continue;
      std::vector<double> x = c.start, consts = {c.id};
      Marquardt(Mgh, proc, x, consts, {}, fmin, cov, why, 500, 1e-12, 0, 0.01);
      EXPECT_NE(why, osMaxIterations) << c.name;
      ExpectNear(x, c);
    }
  // NIST sets of lower and higher difficulty from both certified starts (when the sets are beside the project).
  const char* sets[] = {"Misra1a", "Chwirut2", "DanWood", "Thurber"};
  for (int model = 0; model < 4 && !test::StrdDir().empty(); ++model) {
    const StrdSet set = ReadStrd(std::string("nls/") + sets[model]);
    TVec sx = set.Column(1), sy = set.Column(0);
    TObject* objs[] = {&sx, &sy};
    const std::vector<double> consts = {double(model)};
    for (int start = 0; start < 2; ++start) {
      std::vector<double> b;
      for (const auto& p : set.params) b.push_back(set.Values(p)[start]);
      Marquardt(SumOfSquares<NistResiduals>, GaussNewton<NistResiduals>, b, consts, objs, fmin, cov, why, 1000,
                1e-12, 0, 0.01);
      for (std::size_t k = 0; k < b.size(); ++k)
        EXPECT_GE(LRE(b[k], set.estimates[k]), 6) << sets[model] << " start " << start + 1 << " b" << k + 1;
    }
  }
  // Closed form: b0 = logit(3/10), b1 = logit(7/10) - b0; the inverse of the (negative) Hessian is
  // minus the covariance 1 / (n p (1 - p)) per group. A step is taken only when it lowers the objective,
  // which is flat to rounding within about sqrt(eps) of the maximum: hence 1e-9.
  const std::vector<double> counts = {10, 3, 10, 7};
  std::vector<double> beta = {0, 0};
  Marquardt(LogitNegLogLik, LogitScore, beta, counts, {}, fmin, cov, why, 100, 1e-14, 1e-14, 0.01);
  const double v = 1 / 2.1;
  EXPECT_NEAR(beta[0], std::log(3.0 / 7), 1e-9);
  EXPECT_NEAR(beta[1], 2 * std::log(7.0 / 3), 1e-9);
  EXPECT_NEAR(cov(0, 0), -v, 1e-9);
  EXPECT_NEAR(cov(0, 1), v, 1e-9);
  EXPECT_NEAR(cov(1, 1), -2 * v, 1e-9);
}

// exp(a) sin(b) + a^3 b^2 c: the default step gives the gradient to 1e-10 and the Hessian to 1e-6 relative.
double Smooth(Cs x, Cs, Objs) {
  return std::exp(x[0]) * std::sin(x[1]) + x[0] * x[0] * x[0] * x[1] * x[1] * x[2];
}

TEST(NumericGradHess, MatchesAnalyticDerivatives) {
  for (const auto& p : std::vector<std::vector<double>>{{0, 1, 2}, {1.5, -0.5, 0}, {3, 20, -1e3}}) {
    const double a = p[0], b = p[1], c = p[2], e = std::exp(a);
    const double g[3] = {e * std::sin(b) + 3 * a * a * b * b * c, e * std::cos(b) + 2 * a * a * a * b * c,
                         a * a * a * b * b};
    const double h[3][3] = {
        {e * std::sin(b) + 6 * a * b * b * c, e * std::cos(b) + 6 * a * a * b * c, 3 * a * a * b * b},
        {0, -e * std::sin(b) + 2 * a * a * a * c, 2 * a * a * a * b},
        {0, 0, 0}};
    TVec G;
    TMtx H;
    NumericGradHess(Smooth, p, {}, {}, G, H);
    for (int i = 0; i < 3; ++i) {
      EXPECT_NEAR(G[i], g[i], 1e-10 * std::max(std::fabs(g[i]), 1.0)) << i;
      for (int j = i; j < 3; ++j) {
        EXPECT_NEAR(H(i, j), h[i][j], 1e-6 * std::max(std::fabs(h[i][j]), 1.0)) << i << j;
        EXPECT_EQ(H(i, j), H(j, i));
      }
    }
  }
}

double Nan(Cs, Cs, Objs) { return NAN; }
double Linear(Cs x, Cs, Objs) { return x[0] + x[1]; }

// Runs that cannot converge end in bounded time with the reason and the best value seen.
TEST(Optimisers, ReportWhyTheyStop) {
  struct Row {
    const char* label;
    bool simplex;
    TOptObjective fun;
    int maxIter;
    TOptStopReason why;
    double fmin;
    int iters;
  };
  const Row rows[] = {
      {"Simplex, NaN everywhere", true, Nan, 300, osMaxIterations, INF, 300},
      {"Simplex, no iteration", true, Mgh, 0, osMaxIterations, 24.2, 0},
      {"Simplex, unbounded below", true, Linear, 300, osMaxIterations, -INF, 300},
      {"Marquardt, NaN at the start", false, Nan, 300, osNotFinite, NAN, 0},
      {"Marquardt, zero Hessian", false, Linear, 300, osSingularSystem, -0.2, 0},
  };
  const std::vector<double> consts = {0};
  for (const auto& r : rows) {
    std::vector<double> x = {-1.2, 1};
    double f = 0;
    TOptStopReason why{};
    TMtx cov;
    const int iters =
        r.simplex ? Simplex(r.fun, x, consts, {}, f, why, r.maxIter, 1e-8)
                  : Marquardt(r.fun, NumericGradHess, x, consts, {}, f, cov, why, r.maxIter, 1e-8, 0, 0.01);
    EXPECT_EQ(TOptStopReasonNames[why], TOptStopReasonNames[r.why]) << r.label;
    EXPECT_EQ(iters, r.iters) << r.label;
    if (r.fmin == -INF)  // the expanding simplex runs off towards -INF
      EXPECT_LT(f, -1e50) << r.label;
    else if (std::isinf(r.fmin) || std::isnan(r.fmin))
      EXPECT_EQ(std::to_string(f), std::to_string(r.fmin)) << r.label;
    else EXPECT_NEAR(f, r.fmin, 1e-12) << r.label;
  }
}

double Throws(Cs, Cs, Objs) { ERaise("objective failed"); }
void WrongSize(TOptObjective, Cs, Cs, Objs, TVec& g, TMtx& h) {
  g.Size(1);
  h.Size(2, 2);
}
void WrongGrad(TOptObjective, Cs, Cs, Objs, TVec& g) { g.Size(1); }

TEST(Optimisers, RejectBadCalls) {
  std::vector<double> x = {1, 2, 3}, none;
  double f = 0;
  TOptStopReason why{};
  TMtx cov, h;
  TVec g;
  const auto simplex = [&](std::vector<double>& p, TOptObjective fun, int maxIter, double tol) {
    return [&, fun, maxIter, tol] { Simplex(fun, p, {}, {}, f, why, maxIter, tol); };
  };
  const auto marquardt = [&](TOptGradHessProc gh, double tol, double gradTol, double lambda) {
    return [&, gh, tol, gradTol, lambda] {
      Marquardt(Smooth, gh, x, {}, {}, f, cov, why, 10, tol, gradTol, lambda);
    };
  };
  const RaiseCase table[] = {
      {"Invalid parameter", simplex(x, Mgh, -1, 1e-8), "negative MaxIter"},
      {"Invalid parameter", simplex(x, Mgh, 10, NAN), "NaN Tol"},
      {"Invalid parameter", simplex(x, nullptr, 10, 1e-8), "no objective"},
      {"Empty vector", simplex(none, Mgh, 10, 1e-8), "no parameters"},
      {"objective failed", simplex(x, Throws, 10, 1e-8), "objective's error passes through"},
      {"Invalid parameter", marquardt(NumericGradHess, -1, 0, 0.01), "negative Tol"},
      {"Invalid parameter", marquardt(NumericGradHess, 0, NAN, 0.01), "NaN GradTol"},
      {"Invalid parameter", marquardt(NumericGradHess, 0, 0, 0), "zero damping"},
      {"Invalid parameter", marquardt(NumericGradHess, 0, 0, INF), "infinite damping"},
      {"Invalid parameter", marquardt(nullptr, 0, 0, 0.01), "no gradient procedure"},
      {"Size mismatch", marquardt(WrongSize, 0, 0, 0.01), "gradient of the wrong length"},
      {"Invalid parameter", [&] { BFGS(Smooth, nullptr, x, {}, {}, f, cov, why, false, true, 10, 0, 0); },
       "no gradient"},
      {"Invalid parameter", [&] { BFGS(Smooth, WrongGrad, x, {}, {}, f, cov, why, false, true, 10, 0, -1); },
       "BFGS GradTol"},
      {"Size mismatch", [&] { BFGS(Smooth, WrongGrad, x, {}, {}, f, cov, why, false, true, 10, 0, 0); },
       "short gradient"},
      {"Empty vector", [&] { NumericGradHess(Smooth, none, {}, {}, g, h); }, "numeric derivative of nothing"},
      {"Invalid parameter",
       [&] {
         GradStepSize = 0;
         struct Restore {
           ~Restore() { GradStepSize = 1e-4; }
         } restore;
         NumericGradHess(Smooth, x, {}, {}, g, h);
       },
       "zero step"},
  };
  ExpectEachRaises(table);
}

}  // namespace
}  // namespace statkit::test
