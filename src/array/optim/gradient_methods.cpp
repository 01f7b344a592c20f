// Quasi-Newton (BFGS, DFP) and nonlinear conjugate-gradient (Fletcher-Reeves, Polak-Ribiere)
// minimisation on one line search for the strong Wolfe conditions (Nocedal and Wright 2006,
// algorithms 3.5, 3.6, 5.4 and section 5.2).

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <numeric>
#include <vector>

#include "../checks.h"
#include "statkit/array/Optim.h"

namespace statkit {

namespace {

using Vec = std::vector<double>;

double Dot(const Vec& a, const Vec& b) { return std::inner_product(a.begin(), a.end(), b.begin(), 0.0); }

// The objective and its gradient at one point: the objective is always evaluated right before the gradient.
struct Problem {
  TOptObjective fun;
  TOptGradProc grad;
  std::span<const double> consts;
  std::span<TObject* const> objects;
  TVec G;

  // f(x) (NaN as +INF) and g(x); false when either is not finite.
  bool At(const Vec& x, double& f, Vec& g) {
    f = fun(x, consts, objects);
    if (std::isnan(f)) f = INFINITY;
    if (!std::isfinite(f)) return false;
    grad(fun, x, consts, objects, G);
    detail::RequireReal(G);
    if (G.Length() != static_cast<int>(x.size())) ERaise(msg::SizeMismatch);
    std::copy(G.data(), G.data() + x.size(), g.begin());
    return std::all_of(g.begin(), g.end(), [](double v) { return std::isfinite(v); });
  }
};

// Line search along p from (x, f, g) for the strong Wolfe conditions with c1 = 1e-4 and c2; on success
// x, f, g hold the new point. At most 40 evaluations; false when no point of sufficient decrease was found.
bool WolfeSearch(Problem& pr, Vec& x, double& f, Vec& g, const Vec& p, double a1, double c2, int& evals) {
  const double c1 = 1e-4, f0 = f, d0 = Dot(g, p);
  const std::size_t n = x.size();
  Vec xt(n), gt(n), gLo = g;
  double ft = 0;
  auto phi = [&](double a, double& d) {
    for (std::size_t i = 0; i < n; ++i) xt[i] = x[i] + a * p[i];
    ++evals;
    d = pr.At(xt, ft, gt) ? Dot(gt, p) : NAN;
    return ft;
  };
  auto accept = [&] {
    x.swap(xt);
    f = ft;
    g.swap(gt);
    return true;
  };
  double lo = 0, fLo = f0, dLo = d0, hi = 0, fHi = 0;
  bool bracketed = false;
  double a = a1;
  for (int k = 0; k < 40; ++k) {
    double d;
    const double fa = phi(a, d);
    if (!std::isfinite(fa) || std::isnan(d) || fa > f0 + c1 * a * d0 ||
        (bracketed ? fa >= fLo : k > 0 && fa >= fLo)) {
      hi = a, fHi = fa, bracketed = true;
    } else {
      if (std::fabs(d) <= -c2 * d0) return accept();
      if (bracketed ? d * (hi - lo) >= 0 : d >= 0) hi = lo, fHi = fLo, bracketed = true;
      lo = a, fLo = fa, dLo = d;
      gLo = gt;
    }
    if (!bracketed) {
      a *= 2;
      continue;
    }
    // Minimum of the quadratic through (lo, fLo, dLo) and (hi, fHi), kept inside the middle 80%.
    const double w = hi - lo, den = 2 * (fHi - fLo - dLo * w);
    double t = std::isfinite(fHi) && den > 0 ? lo - dLo * w * w / den : lo + w / 2;
    const double a0 = std::min(lo, hi) + 0.1 * std::fabs(w), b0 = std::max(lo, hi) - 0.1 * std::fabs(w);
    a = std::clamp(t, a0, b0);
    if (std::fabs(w) <= std::numeric_limits<double>::epsilon() * std::max(std::fabs(lo), std::fabs(hi)))
      break;
  }
  if (lo == 0) return false;
  for (std::size_t i = 0; i < n; ++i) xt[i] = x[i] + lo * p[i];
  // The best point of sufficient decrease: evaluate again so that the gradient follows its objective.
  ++evals;
  pr.At(xt, ft, gt);
  return accept();
}

bool SmallGradient(const Vec& g, const Vec& x, double f, double GradTol) {
  double m = 0;
  for (std::size_t i = 0; i < g.size(); ++i)
    m = std::max(m, std::fabs(g[i]) * std::max(std::fabs(x[i]), 1.0));
  return m <= GradTol * std::max(std::fabs(f), 1.0);
}

bool SmallStep(const Vec& xOld, const Vec& x, double Tol) {
  for (std::size_t i = 0; i < x.size(); ++i)
    if (!(std::fabs(x[i] - xOld[i]) <= Tol * std::max(std::fabs(xOld[i]), 1.0))) return false;
  return true;
}

void Note(std::vector<std::string>* Log, const char* who, int iter, double f) {
  if (Log == nullptr) return;
  char line[96];
  std::snprintf(line, sizeof line, "%s: iteration %d, f = %.17g", who, iter, f);
  Log->emplace_back(line);
}

void Check(TOptObjective Fun, TOptGradProc Grad, std::span<double> Pars, int MaxIter, double Tol,
           double GradTol) {
  if (Fun == nullptr || Grad == nullptr || MaxIter < 0 || !(Tol >= 0) || !(GradTol >= 0))
    ERaise(msg::InvalidParameter);
  if (Pars.empty()) ERaise(msg::EmptyVector);
}

// The common loop: direction(g, p, steepest) gives the search direction (steepest: it is -g, a restart);
// update(s, y, p, restart) learns from the step s = x_new - x, y = g_new - g along p, or restarts the model.
// newtonScaled: the direction carries its own length (quasi-Newton), so the first trial step is 1.
template <class Direction, class Update>
int Descend(Problem& pr, std::span<double> Pars, double& FMin, TOptStopReason& StopReason, int MaxIter,
            double Tol, double GradTol, double c2, bool newtonScaled, const char* who,
            std::vector<std::string>* Log, Direction direction, Update update) {
  const std::size_t n = Pars.size();
  Vec x, g, xOld, gOld, p, s, y;
  detail::RaisingOutOfMemory([&] {
    x.assign(Pars.begin(), Pars.end());
    g.resize(n);
    p.resize(n);
    s.resize(n);
    y.resize(n);
  });
  double f = 0, lastDecrease = 0;  // -g's, the first-order decrease of the last accepted step
  int iter = 0;
  bool ok = pr.At(x, f, g);
  StopReason = osNotFinite;
  while (ok) {
    if (SmallGradient(g, x, f, GradTol)) {
      StopReason = osSmallGradient;
      break;
    }
    if (iter >= MaxIter) {
      StopReason = osMaxIterations;
      break;
    }
    ++iter;
    bool steepest = false;
    direction(g, p, steepest);
    if (!(Dot(g, p) < 0)) {  // not a descent direction: restart along the steepest descent
      for (std::size_t i = 0; i < n; ++i) p[i] = -g[i];
      steepest = true;
    }
    // First trial step: the full quasi-Newton step; along other directions the first step moves by at
    // most 1 and later ones expect the same first-order decrease as the last step (Nocedal and Wright,
    // eq. 3.60).
    double pmax = 0;
    for (double v : p) pmax = std::max(pmax, std::fabs(v));
    const double dp = Dot(g, p);
    double a1 = 1;
    if (steepest || !newtonScaled)
      a1 = lastDecrease > 0 ? std::min(1.01 * lastDecrease / -dp, 1e300) : std::min(1.0, 1 / pmax);
    xOld = x, gOld = g;
    const double fOld = f;
    int evals = 0;
    if (!WolfeSearch(pr, x, f, g, p, a1, c2, evals)) {
      if (!steepest) {  // forget the curvature model and try the steepest descent once
        update(s, y, p, true);
        continue;
      }
      StopReason = osSmallStep;
      break;
    }
    Note(Log, who, iter, f);
    if (!std::isfinite(f) || !std::all_of(g.begin(), g.end(), [](double v) { return std::isfinite(v); })) {
      StopReason = osNotFinite;
      break;
    }
    for (std::size_t i = 0; i < n; ++i) s[i] = x[i] - xOld[i], y[i] = g[i] - gOld[i];
    lastDecrease = -Dot(gOld, s);
    update(s, y, p, false);
    if (SmallStep(xOld, x, Tol)) {
      StopReason = osSmallStep;
      break;
    }
    if (fOld - f <= 4 * std::numeric_limits<double>::epsilon() * std::fabs(f)) {
      StopReason = osSmallChange;
      break;
    }
  }
  std::copy(x.begin(), x.end(), Pars.begin());
  FMin = f;
  return iter;
}

}  // namespace

int BFGS(TOptObjective Fun, TOptGradProc GradProc, std::span<double> Pars, std::span<const double> Consts,
         std::span<TObject* const> Objects, double& FMin, TMtx& InvHess, TOptStopReason& StopReason, bool DFP,
         bool SoftLineSearch, int MaxIter, double Tol, double GradTol, std::vector<std::string>* Log) {
  Check(Fun, GradProc, Pars, MaxIter, Tol, GradTol);
  const std::size_t n = Pars.size();
  Problem pr{Fun, GradProc, Consts, Objects, {}};
  Vec H, Hy;
  detail::RaisingOutOfMemory([&] {
    H.assign(n * n, 0.0);
    Hy.resize(n);
  });
  bool identity = true;
  auto reset = [&] {
    std::fill(H.begin(), H.end(), 0.0);
    for (std::size_t i = 0; i < n; ++i) H[i * n + i] = 1;
    identity = true;
  };
  reset();
  auto direction = [&](const Vec& g, Vec& p, bool& steepest) {
    for (std::size_t i = 0; i < n; ++i)
      p[i] = -std::inner_product(g.begin(), g.end(), H.begin() + i * n, 0.0);
    steepest = identity;
  };
  auto update = [&](const Vec& s, const Vec& y, const Vec&, bool restart) {
    const double sy = Dot(s, y);
    if (restart) return reset();
    if (!(sy > 0)) return;  // curvature condition fails (only possible after a rounding-level step): keep H
    if (identity) {         // scale the first model to the observed curvature (Nocedal and Wright 6.20)
      const double scale = sy / Dot(y, y);
      for (std::size_t i = 0; i < n; ++i) H[i * n + i] = scale;
      identity = false;
    }
    for (std::size_t i = 0; i < n; ++i)
      Hy[i] = std::inner_product(y.begin(), y.end(), H.begin() + i * n, 0.0);
    const double yHy = Dot(y, Hy);
    for (std::size_t i = 0; i < n; ++i)
      for (std::size_t j = 0; j < n; ++j) {
        double& h = H[i * n + j];
        if (DFP)  // H - H y y' H / (y' H y) + s s' / (y' s)
          h += -Hy[i] * Hy[j] / yHy + s[i] * s[j] / sy;
        else  // (I - s y'/sy) H (I - y s'/sy) + s s'/sy, expanded
          h += (-(s[i] * Hy[j] + Hy[i] * s[j]) + (1 + yHy / sy) * s[i] * s[j]) / sy;
      }
  };
  // DFP's update does not correct itself after loose searches as BFGS's does (Byrd, Nocedal and Yuan
  // 1987): its soft search asks for more curvature reduction (seen: c2 = 0.9 stalls DFP on the extended
  // Rosenbrock function and 0.5 ends 2e-6 from Powell's singular minimum; 0.2 reaches both).
  const int iters = Descend(pr, Pars, FMin, StopReason, MaxIter, Tol, GradTol, SoftLineSearch ? (DFP ? 0.2 : 0.9) : 0.01, true,
                            DFP ? "DFP" : "BFGS", Log, direction, update);
  InvHess.Size(static_cast<int>(n), static_cast<int>(n));
  std::copy(H.begin(), H.end(), InvHess.data());
  return iters;
}

int ConjGrad(TOptObjective Fun, TOptGradProc GradProc, std::span<double> Pars, std::span<const double> Consts,
             std::span<TObject* const> Objects, double& FMin, TOptStopReason& StopReason, bool FletcherReeves,
             bool SoftLineSearch, int MaxIter, double Tol, double GradTol, std::vector<std::string>* Log) {
  Check(Fun, GradProc, Pars, MaxIter, Tol, GradTol);
  const std::size_t n = Pars.size();
  Problem pr{Fun, GradProc, Consts, Objects, {}};
  Vec gPrev, pPrev;
  std::size_t sinceRestart = 0;
  bool conjugate = false;  // pPrev and gPrev hold the last direction and the gradient it started from
  auto direction = [&](const Vec& g, Vec& p, bool& steepest) {
    double beta = 0;
    if (conjugate && sinceRestart < n) {
      const double gg = Dot(gPrev, gPrev);
      beta = FletcherReeves ? Dot(g, g) / gg : std::max((Dot(g, g) - Dot(g, gPrev)) / gg, 0.0);
    }
    // n steps span the space: past them the conjugacy of the directions is lost (Powell 1977's restart).
    steepest = !(beta > 0 && std::isfinite(beta));
    for (std::size_t i = 0; i < n; ++i) p[i] = -g[i] + (steepest ? 0 : beta * pPrev[i]);
    sinceRestart = steepest ? 1 : sinceRestart + 1;
    detail::RaisingOutOfMemory([&] { gPrev = g; });
  };
  auto update = [&](const Vec&, const Vec&, const Vec& p, bool restart) {
    conjugate = !restart;
    if (!restart) detail::RaisingOutOfMemory([&] { pPrev = p; });
  };
  // c2 < 1/2 keeps every Fletcher-Reeves direction a descent direction (Nocedal and Wright, lemma 5.6).
  return Descend(pr, Pars, FMin, StopReason, MaxIter, Tol, GradTol, SoftLineSearch ? 0.45 : 0.1, false,
                 FletcherReeves ? "ConjGradFR" : "ConjGradPR", Log, direction, update);
}

}  // namespace statkit
