// Nelder-Mead simplex minimisation with adaptive coefficients.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numeric>
#include <vector>

#include "../checks.h"
#include "statkit/array/Optim.h"

namespace statkit {

namespace {

// NaN counts as +INF, so a vertex where the objective is undefined is always the worst.
double Eval(TOptObjective Fun, const std::vector<double>& x, std::span<const double> Consts,
            std::span<TObject* const> Objects) {
  const double f = Fun(x, Consts, Objects);
  return std::isnan(f) ? INFINITY : f;
}

void Note(std::vector<std::string>* Log, const char* what, int iter, double f) {
  if (Log == nullptr) return;
  char line[96];
  std::snprintf(line, sizeof line, "Simplex %s: iteration %d, f = %.17g", what, iter, f);
  Log->emplace_back(line);
}

}  // namespace

int Simplex(TOptObjective Fun, std::span<double> Pars, std::span<const double> Consts,
            std::span<TObject* const> Objects, double& FMin, TOptStopReason& StopReason, int MaxIter,
            double Tol, std::vector<std::string>* Log) {
  if (Fun == nullptr || MaxIter < 0 || !(Tol >= 0)) ERaise(msg::InvalidParameter);
  if (Pars.empty()) ERaise(msg::EmptyVector);
  const std::size_t n = Pars.size();
  const double dn = static_cast<double>(n);
  // Gao and Han (2012) from n = 2 on, where they equal the classic 1, 2, 1/2, 1/2; at n = 1 their
  // shrink factor would be 0, so one dimension keeps the classic ones.
  const double m = std::max(dn, 2.0);
  const double rho = 1, chi = 1 + 2 / m, gamma = 0.75 - 1 / (2 * m), sigma = 1 - 1 / m;
  std::vector<std::vector<double>> v;
  std::vector<double> f, centroid, xr, xe, xc;
  std::vector<std::size_t> order;
  detail::RaisingOutOfMemory([&] {
    v.assign(n + 1, std::vector<double>(Pars.begin(), Pars.end()));
    f.assign(n + 1, INFINITY);  // only the start is evaluated when MaxIter is 0
    centroid.resize(n);
    xr.resize(n);
    xe.resize(n);
    xc.resize(n);
    order.resize(n + 1);
  });
  auto start = [&](std::size_t best) {  // a fresh simplex around vertex `best`, which keeps index 0
    if (best != 0) {
      std::swap(v[0], v[best]);
      std::swap(f[0], f[best]);
    }
    for (std::size_t j = 1; j <= n; ++j) {
      v[j] = v[0];
      v[j][j - 1] = v[0][j - 1] != 0 ? 1.05 * v[0][j - 1] : 0.00025;
      f[j] = Eval(Fun, v[j], Consts, Objects);
    }
  };
  f[0] = Eval(Fun, v[0], Consts, Objects);
  int iter = 0;
  StopReason = osMaxIterations;
  double lastStart = f[0];
  if (MaxIter > 0) start(0);
  while (iter < MaxIter) {
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return f[a] < f[b]; });
    const std::size_t best = order[0], worst = order[n], second = order[n - 1];
    // Converged: the simplex is small in every coordinate and flat in value.
    bool small = true;
    for (std::size_t j = 0; j <= n && small; ++j) {
      small = std::fabs(f[j] - f[best]) <= Tol * std::max(std::fabs(f[best]), 1.0);
      for (std::size_t i = 0; i < n && small; ++i)
        small = std::fabs(v[j][i] - v[best][i]) <= Tol * std::max(std::fabs(v[best][i]), 1.0);
    }
    if (small) {
      // Restart from the best vertex while restarting still pays: a collapsed simplex may stall short of the minimum.
      if (!(f[best] < lastStart)) {
        StopReason = osSmallStep;
        break;
      }
      ++iter;  // a restart counts as an iteration, so MaxIter bounds the restarts too
      Note(Log, "restart", iter, f[best]);
      lastStart = f[best];
      start(best);
      continue;
    }
    ++iter;
    std::fill(centroid.begin(), centroid.end(), 0.0);
    for (std::size_t j = 0; j <= n; ++j)
      if (j != worst)
        for (std::size_t i = 0; i < n; ++i) centroid[i] += v[j][i];
    for (std::size_t i = 0; i < n; ++i) centroid[i] /= dn;
    auto along = [&](std::vector<double>& x, double t) {  // centroid + t (centroid - worst)
      for (std::size_t i = 0; i < n; ++i) x[i] = centroid[i] + t * (centroid[i] - v[worst][i]);
      return Eval(Fun, x, Consts, Objects);
    };
    const double fr = along(xr, rho);
    if (fr < f[best]) {
      const double fe = along(xe, rho * chi);
      if (fe < fr) {
        v[worst].swap(xe);
        f[worst] = fe;
      } else {
        v[worst].swap(xr);
        f[worst] = fr;
      }
    } else if (fr < f[second]) {
      v[worst].swap(xr);
      f[worst] = fr;
    } else {
      // Outside contraction when the reflected point beats the worst, inside contraction otherwise.
      const bool outside = fr < f[worst];
      const double fc = along(xc, outside ? rho * gamma : -gamma);
      if (outside ? fc <= fr : fc < f[worst]) {
        v[worst].swap(xc);
        f[worst] = fc;
      } else {
        for (std::size_t j = 0; j <= n; ++j) {
          if (j == best) continue;
          for (std::size_t i = 0; i < n; ++i) v[j][i] = v[best][i] + sigma * (v[j][i] - v[best][i]);
          f[j] = Eval(Fun, v[j], Consts, Objects);
        }
      }
    }
  }
  const std::size_t best = static_cast<std::size_t>(std::min_element(f.begin(), f.end()) - f.begin());
  std::copy(v[best].begin(), v[best].end(), Pars.begin());
  FMin = f[best];
  Note(Log, "stop", iter, FMin);
  return iter;
}

}  // namespace statkit
