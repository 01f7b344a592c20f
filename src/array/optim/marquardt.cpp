// Levenberg-Marquardt minimisation with the damping scaled by the diagonal of the caller's matrix.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <vector>

#include "../checks.h"
#include "statkit/array/Optim.h"

namespace statkit {

namespace {

using Dense = std::vector<double>;  // n x n, row by row

// Cholesky solve of the symmetric system A x = b in place (A is overwritten by its factor);
// false when A is not numerically positive definite.
bool CholeskySolve(Dense& A, Dense& b, std::size_t n) {
  for (std::size_t j = 0; j < n; ++j) {
    double d = A[j * n + j];
    for (std::size_t k = 0; k < j; ++k) d -= A[j * n + k] * A[j * n + k];
    if (!(d > 0) || !std::isfinite(d)) return false;
    d = std::sqrt(d);
    A[j * n + j] = d;
    for (std::size_t i = j + 1; i < n; ++i) {
      double s = A[i * n + j];
      for (std::size_t k = 0; k < j; ++k) s -= A[i * n + k] * A[j * n + k];
      A[i * n + j] = s / d;
    }
  }
  for (std::size_t i = 0; i < n; ++i) {  // L y = b
    for (std::size_t k = 0; k < i; ++k) b[i] -= A[i * n + k] * b[k];
    b[i] /= A[i * n + i];
  }
  for (std::size_t i = n; i-- > 0;) {  // L' x = y
    for (std::size_t k = i + 1; k < n; ++k) b[i] -= A[k * n + i] * b[k];
    b[i] /= A[i * n + i];
  }
  return true;
}

// Gauss-Jordan inverse with partial pivoting into Inv; NaN everywhere when A is singular
// (a pivot at or below n eps max|A|) or not finite.
void InvertOrNan(Dense A, std::size_t n, Dense& Inv) {
  double scale = 0;
  for (double a : A) scale = std::max(scale, std::fabs(a));
  Inv.assign(n * n, 0.0);
  for (std::size_t i = 0; i < n; ++i) Inv[i * n + i] = 1;
  const double tiny = static_cast<double>(n) * std::numeric_limits<double>::epsilon() * scale;
  for (std::size_t c = 0; c < n; ++c) {
    std::size_t p = c;
    for (std::size_t r = c + 1; r < n; ++r)
      if (std::fabs(A[r * n + c]) > std::fabs(A[p * n + c])) p = r;
    const double pivot = A[p * n + c];
    if (!(std::fabs(pivot) > tiny) || !std::isfinite(scale)) {
      Inv.assign(n * n, NAN);
      return;
    }
    for (std::size_t k = 0; k < n; ++k) {
      std::swap(A[p * n + k], A[c * n + k]);
      std::swap(Inv[p * n + k], Inv[c * n + k]);
    }
    for (std::size_t k = 0; k < n; ++k) {
      A[c * n + k] /= pivot;
      Inv[c * n + k] /= pivot;
    }
    for (std::size_t r = 0; r < n; ++r) {
      const double m = A[r * n + c];
      if (r == c || m == 0) continue;
      for (std::size_t k = 0; k < n; ++k) {
        A[r * n + k] -= m * A[c * n + k];
        Inv[r * n + k] -= m * Inv[c * n + k];
      }
    }
  }
}

// lambda after a refused step: ten times larger, and at least 1e-12. Successes may drive lambda
// far below that (pure Gauss-Newton, which a singular problem needs to converge at its linear rate);
// a failure there must not take dozens of refused steps to matter again.
double Raise(double lambda) { return std::max(10 * lambda, 1e-12); }

}  // namespace

int Marquardt(TOptObjective Fun, TOptGradHessProc GradHess, std::span<double> Pars,
              std::span<const double> Consts, std::span<TObject* const> Objects, double& FMin, TMtx& VarCovar,
              TOptStopReason& StopReason, int MaxIter, double Tol, double GradTol, double Lambda0,
              std::vector<std::string>* Log) {
  if (Fun == nullptr || GradHess == nullptr || MaxIter < 0 || !(Tol >= 0) || !(GradTol >= 0) ||
      !(Lambda0 > 0) || !std::isfinite(Lambda0))
    ERaise(msg::InvalidParameter);
  if (Pars.empty()) ERaise(msg::EmptyVector);
  const std::size_t n = Pars.size();
  Dense x, xt, g, H, A, d, diag, inv;
  TVec G;
  TMtx Hm;
  detail::RaisingOutOfMemory([&] {
    x.assign(Pars.begin(), Pars.end());
    xt.resize(n);
    g.resize(n);
    d.resize(n);
    diag.resize(n);
    H.resize(n * n);
    A.resize(n * n);
  });

  // The derivatives at x (the objective was just evaluated there); false when they are not finite.
  double sign = 0;  // the convention: +1 when the trace of H is positive, -1 when negative, 0 when zero
  auto derive = [&] {
    GradHess(Fun, x, Consts, Objects, G, Hm);
    detail::RequireReal(G, Hm);
    if (G.Length() != static_cast<int>(n) || Hm.Rows() != static_cast<int>(n) ||
        Hm.Cols() != static_cast<int>(n))
      ERaise(msg::SizeMismatch);
    std::copy(G.data(), G.data() + n, g.begin());
    std::copy(Hm.data(), Hm.data() + n * n, H.begin());
    bool finite = true;
    double big = 0, trace = 0;
    for (double v : g) finite = finite && std::isfinite(v);
    for (double v : H) finite = finite && std::isfinite(v);
    for (std::size_t i = 0; i < n; ++i) {
      trace += H[i * n + i];
      big = std::max(big, std::fabs(H[i * n + i]));
    }
    sign = trace > 0 ? 1 : (trace < 0 ? -1 : 0);
    // Damping scale: |diag H|, floored so that a parameter without influence is damped too.
    for (std::size_t i = 0; i < n; ++i) diag[i] = std::max(std::fabs(H[i * n + i]), 1e-12 * big);
    return finite;
  };
  auto note = [&](int iter, double f, double lambda) {
    if (Log == nullptr) return;
    char line[112];
    std::snprintf(line, sizeof line, "Marquardt: iteration %d, f = %.17g, lambda = %.3g", iter, f, lambda);
    Log->emplace_back(line);
  };

  double f = Fun(x, Consts, Objects);
  int iter = 0;
  double lambda = Lambda0;
  bool haveDerivs = std::isfinite(f) && derive();
  bool smallStep = false;
  if (!haveDerivs) StopReason = osNotFinite;
  while (haveDerivs) {
    double gmax = 0;
    for (std::size_t i = 0; i < n; ++i)
      gmax = std::max(gmax, std::fabs(g[i]) * std::max(std::fabs(x[i]), 1.0));
    if (gmax <= GradTol * std::max(std::fabs(f), 1.0)) {
      StopReason = osSmallGradient;
      break;
    }
    if (smallStep || lambda > 1e100) {
      StopReason = osSmallStep;
      break;
    }
    if (sign == 0) {
      StopReason = osSingularSystem;
      break;
    }
    if (iter >= MaxIter) {
      StopReason = osMaxIterations;
      break;
    }
    ++iter;
    // (sign H + lambda diag) d = -sign g: the same step in either sign convention.
    for (std::size_t k = 0; k < n * n; ++k) A[k] = sign * H[k];
    for (std::size_t i = 0; i < n; ++i) {
      A[i * n + i] += lambda * diag[i];
      d[i] = -sign * g[i];
    }
    if (!CholeskySolve(A, d, n)) {
      lambda = Raise(lambda);
      continue;
    }
    bool small = true;
    for (std::size_t i = 0; i < n; ++i) {
      xt[i] = x[i] + d[i];
      small = small && std::fabs(d[i]) <= Tol * std::max(std::fabs(x[i]), 1.0);
    }
    double ft = Fun(xt, Consts, Objects);
    if (std::isnan(ft)) ft = INFINITY;
    if (ft < f) {
      x.swap(xt);
      f = ft;
      lambda = std::max(lambda / 10, std::numeric_limits<double>::min());
      note(iter, f, lambda);
      if (!derive()) {
        StopReason = osNotFinite;
        break;
      }
    } else {
      lambda = Raise(lambda);
    }
    smallStep = small;
  }
  // The caller's matrix at the returned point, inverted as it is (either sign).
  detail::RaisingOutOfMemory([&] {
    if (haveDerivs && std::isfinite(f)) InvertOrNan(H, n, inv);
    else inv.assign(n * n, NAN);
  });
  VarCovar.Size(static_cast<int>(n), static_cast<int>(n));
  std::copy(inv.begin(), inv.end(), VarCovar.data());
  std::copy(x.begin(), x.end(), Pars.begin());
  FMin = f;
  return iter;
}

}  // namespace statkit
