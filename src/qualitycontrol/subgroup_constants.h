#pragma once
// The constants of subgroups of n normal values that the control charts share,
// computed from their definitions for any n (no table), and the normal
// quantiles that set the width of the limits.

#include <cmath>

#include "statkit/Array.h"

namespace statkit::qc {

/// ln c4(n), c4(n) = E[s] / sigma = sqrt(2 / (n - 1)) Gamma(n / 2) / Gamma((n - 1) / 2), from
/// the log-gamma difference D(x) = ln Gamma(x + 1/2) - ln Gamma(x), x = (n - 1) / 2: ln c4 =
/// D(x) - ln(x) / 2. Below x = 20 D is the logarithm of the Gamma ratio (a few eps; Gamma(x)
/// overflows only from x = 171.6, n = 344); from 20 on D - ln(x) / 2 is summed from its
/// asymptotic series (DLMF 5.11.8 with the Bernoulli polynomials at 1/2), whose first omitted
/// term is below 1e-17: subtracting the two log-gammas, each near x ln x, would lose digits in
/// proportion to x ln x (1e-11 at n = 20000), and 1 - c4^2 ~ 1/(4x) would magnify that x-fold.
/// n < 2 has no spread: NaN, the value of the formula at n = 1 (infinity times 0).
inline double lnC4(int n) {
  if (n < 2) return NAN;
  const double x = 0.5 * (n - 1.0);
  if (x < 20.0) return std::log(Gamma(x + 0.5) / Gamma(x)) - 0.5 * std::log(x);
  const double u = 1.0 / (x * x);
  return (-1.0 / 8 + u * (1.0 / 192 + u * (-1.0 / 640 + u * (17.0 / 14336 - u * 31.0 / 18432)))) / x;
}

/// c4(n), with ln c4 as above.
inline double c4(int n) { return std::exp(lnC4(n)); }

/// sqrt(1 - c4(n)^2), the standard deviation of s over sigma, without the cancellation of
/// 1 - c4^2 ~ 1 / (2 n).
inline double c4Complement(int n) { return std::sqrt(-std::expm1(2.0 * lnC4(n))); }

/// r(n) = 0.5 sqrt(n ln 2 / ((n - 1) ln n)), which stands in for d3(n) / d2(n), the
/// standard deviation of the range of n normal values over its mean.
inline double rangeFactor(int n) {
  return 0.5 * std::sqrt(n * LN2 / ((n - 1.0) * std::log(static_cast<double>(n))));
}

/// The two-sided quantile of the variables charts: Confidence = 0.9973 gives z = 3.
inline double twoSidedZ(double Confidence) { return NormalCDFInv(0.5 * Confidence + 0.5, 0.0, 1.0); }

/// The one-sided quantile of the attribute and EWMA charts: Confidence = 0.99865 gives z = 3.
inline double oneSidedZ(double Confidence) { return NormalCDFInv(Confidence, 0.0, 1.0); }

}  // namespace statkit::qc
