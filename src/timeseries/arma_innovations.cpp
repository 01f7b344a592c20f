// One-step prediction of an ARMA series by the innovations algorithm on the
// ARMA-transformed process (Ansley 1979; Brockwell and Davis 1991, 5.3):
// banded after the first max(p, q) rows, so O(N q^2) time and O(m^2) memory.

#include "timeseries/arma_innovations.h"

#include <algorithm>
#include <cstdlib>

namespace statkit::StatTimeSerAnalysis::detail {

ArmaInnovations::ArmaInnovations(std::span<const double> phi, std::span<const double> theta,
                                 std::span<const double> rho, double maScale)
    : phi_(phi.begin(), phi.end()),
      rho_(rho.begin(), rho.end()),
      m_(static_cast<int>(std::max(phi.size(), theta.size()))),
      q_(static_cast<int>(theta.size())) {
  const int p = static_cast<int>(phi.size());
  // MA(q) autocovariances of phi(B) x_t = theta(B) e_t, theta(B) = 1 - theta_1 B - ...
  std::vector<double> c(static_cast<std::size_t>(q_) + 1, 1.0);
  for (int j = 1; j <= q_; ++j) c[j] = -theta[j - 1];
  ma_.assign(static_cast<std::size_t>(q_) + 1, 0.0);
  for (int h = 0; h <= q_; ++h) {
    double s = 0.0;
    for (int r = 0; r + h <= q_; ++r) s += c[r] * c[r + h];
    ma_[h] = s * maScale;
  }
  // cov(phi(B) x_i, x_j) at lag h = i - j: needed for j < m <= i, where h <= q.
  mixed_.assign(static_cast<std::size_t>(q_) + 1, 0.0);
  if (static_cast<int>(rho_.size()) > m_)
    for (int h = 0; h <= q_; ++h) {
      double s = rho_[h];
      for (int r = 1; r <= p; ++r) s -= phi_[r - 1] * rho_[std::abs(r - h)];
      mixed_[h] = s;
    }
  th_.assign(static_cast<std::size_t>(m_ + 1) * std::max(m_, 1), 0.0);
  v_.assign(static_cast<std::size_t>(m_) + 1, 0.0);
}

double ArmaInnovations::kappa(long i, long j) const {
  const long h = i - j;
  if (i < m_) return rho_[h];
  if (h > q_) return 0.0;
  return j < m_ ? mixed_[h] : ma_[h];
}

void ArmaInnovations::Next() {
  const long t = ++t_;
  const int w = window(t);
  double* tht = &th_[slot(t) * m_];
  // theta_(t,t-k) for k = t-w .. t-1, each from the rows before it (Brockwell and Davis (5.3.5))
  for (long k = t - w; k < t; ++k) {
    const double* thk = &th_[slot(k) * m_];
    double s = kappa(t, k);
    for (long l = std::max(t - w, k - window(k)); l < k; ++l)
      s -= thk[k - l - 1] * tht[t - l - 1] * v_[slot(l)];
    tht[t - k - 1] = s / v_[slot(k)];
  }
  double v = kappa(t, t);
  for (long l = t - w; l < t; ++l) v -= tht[t - l - 1] * tht[t - l - 1] * v_[slot(l)];
  v_[slot(t)] = v;
}

}  // namespace statkit::StatTimeSerAnalysis::detail
