// Numeric gradient and Hessian by central differences with Richardson extrapolation.

#include <algorithm>
#include <cmath>
#include <vector>

#include "../checks.h"
#include "statkit/array/Optim.h"

namespace statkit {

std::atomic<double> GradStepSize{1e-4};

namespace {

// Two levels of Richardson extrapolation of central differences at h, 2h, 4h
// whose error series holds only even powers of h: removes the h^2 and h^4 terms.
double Extrapolate(double d1, double d2, double d3) {
  return d1 + 0.4 * (d1 - d2) + ((d1 - d2) - (d2 - d3)) / 45.0;
}

}  // namespace

void NumericGradHess(TOptObjective Fun, std::span<const double> Pars, std::span<const double> Consts,
                     std::span<TObject* const> Objects, TVec& Grad, TMtx& Hess) {
  const double step = GradStepSize.load(std::memory_order_relaxed);
  if (Fun == nullptr || !(step > 0 && std::isfinite(step))) ERaise(msg::InvalidParameter);
  if (Pars.empty()) ERaise(msg::EmptyVector);
  const int n = static_cast<int>(Pars.size());
  std::vector<double> x, h, g, H;
  detail::RaisingOutOfMemory([&] {
    x.assign(Pars.begin(), Pars.end());
    h.resize(n);
    g.resize(n);
    H.resize(static_cast<std::size_t>(n) * n);
  });
  for (int i = 0; i < n; ++i) {
    // The step is rounded so that x_i + h is exact: the difference quotient then divides by the true step.
    const double hi = step * std::max(std::fabs(Pars[i]), 1.0);
    h[i] = (Pars[i] + hi) - Pars[i];
  }
  const double f0 = Fun(x, Consts, Objects);
  auto at = [&](int i, double di, int j = -1, double dj = 0) {
    x[i] = Pars[i] + di;
    if (j >= 0) x[j] = Pars[j] + dj;
    const double f = Fun(x, Consts, Objects);
    x[i] = Pars[i];
    if (j >= 0) x[j] = Pars[j];
    return f;
  };
  for (int i = 0; i < n; ++i) {
    double d[3], s[3];
    for (int k = 0; k < 3; ++k) {
      const double hk = h[i] * (1 << k);
      const double fm = at(i, -hk), fp = at(i, hk);
      d[k] = (fp - fm) / (2 * hk);
      s[k] = ((fp - f0) + (fm - f0)) / (hk * hk);
    }
    g[i] = Extrapolate(d[0], d[1], d[2]);
    H[static_cast<std::size_t>(i) * n + i] = Extrapolate(s[0], s[1], s[2]);
  }
  for (int i = 0; i < n; ++i)
    for (int j = i + 1; j < n; ++j) {
      const double v = ((at(i, h[i], j, h[j]) - at(i, h[i], j, -h[j])) -
                        (at(i, -h[i], j, h[j]) - at(i, -h[i], j, -h[j]))) /
                       (4 * h[i] * h[j]);
      H[static_cast<std::size_t>(i) * n + j] = v;
      H[static_cast<std::size_t>(j) * n + i] = v;
    }
  Grad.Size(n);
  Hess.Size(n, n);
  std::copy(g.begin(), g.end(), Grad.data());
  std::copy(H.begin(), H.end(), Hess.data());
}

}  // namespace statkit
