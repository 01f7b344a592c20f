#pragma once
// The innovations algorithm on the ARMA-transformed process (Ansley 1979;
// Brockwell and Davis, Time Series: Theory and Methods, 1991, section 5.3),
// shared by the exact likelihood and the forecasts.

#include <span>
#include <vector>

#include "statkit/Array.h"

namespace statkit::StatTimeSerAnalysis::detail {

/// The one-step predictors of an ARMA(p, q) series with the autocorrelations \p rho (lags 0..m,
/// m = max(p, q); fewer when the series is shorter) and the MA autocovariances scaled by \p maScale
/// (1 / gamma(0), so that every covariance is in correlation units). The process is transformed
/// to w_t = x_t for t < m and w_t = phi(B) x_t after, whose covariances vanish beyond lag q
/// from t = m on; so the innovation coefficients of row t >= m are theta_(t,1..q) only, each row
/// costs O(q^2) and only the last m + 1 rows are kept: O(N q^2) time and O(m^2) memory for a
/// series of N values. The variances v_t are those of the Cholesky factor of the N x N
/// correlation matrix (R = L D L' with L unit lower triangular), so ln det R = sum ln v_t.
class ArmaInnovations {
public:
  ArmaInnovations(std::span<const double> phi, std::span<const double> theta, std::span<const double> rho,
                  double maScale);
  /// Computes row t (rows come in order 0, 1, ...): v_t and theta_(t,1..Window(t)).
  void Next();
  int Row() const { return t_; }
  double Var() const { return v_[slot(t_)]; }
  /// theta_(t,j) at index j - 1, j = 1..Window(t), of the latest row.
  std::span<const double> Coeffs() const {
    return {&th_[slot(t_) * m_], static_cast<std::size_t>(window(t_))};
  }
  /// The number of past innovations that predict row t: t below m, q from m on.
  int window(long t) const { return t < m_ ? static_cast<int>(t) : q_; }
  int m() const { return m_; }
  int p() const { return static_cast<int>(phi_.size()); }
  const std::vector<double>& phi() const { return phi_; }

private:
  std::size_t slot(long t) const { return static_cast<std::size_t>(t % (m_ + 1)); }
  double kappa(long i, long j) const;  // covariance of w_i and w_j, i >= j

  std::vector<double> phi_, rho_, mixed_, ma_;
  int m_, q_;
  long t_ = -1;
  std::vector<double> th_, v_;  // ring of m + 1 rows
};

/// One-step prediction error (innovation) U_t = y(t) - yhat_t of a series y under the model of
/// \p inn, from the innovation coefficients of row t and the past values y(t - i) and errors
/// U[t - j] (indexed from 0); \p y maps an index to a value.
template <class Series>
double PredictionError(const ArmaInnovations& inn, long t, Series y, const double* U) {
  double pred = 0.0;
  if (t >= inn.m()) {
    const auto& phi = inn.phi();
    for (std::size_t i = 0; i < phi.size(); ++i) pred += phi[i] * y(t - 1 - static_cast<long>(i));
  }
  const auto c = inn.Coeffs();
  for (std::size_t j = 0; j < c.size(); ++j) pred += c[j] * U[t - 1 - static_cast<long>(j)];
  return y(t) - pred;
}

}  // namespace statkit::StatTimeSerAnalysis::detail
