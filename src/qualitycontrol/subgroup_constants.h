#pragma once
// The constants of subgroups of n normal values that the control charts share,
// computed from their definitions for any n (no table), and the normal
// quantiles that set the width of the limits.

#include <cmath>

#include "statkit/Array.h"

namespace statkit::qc {

/// c4(n) = E[s] / sigma = sqrt(2 / (n - 1)) Gamma(n / 2) / Gamma((n - 1) / 2), the gamma
/// ratio taken as a difference of logarithms: Gamma(n / 2) overflows from n = 344 on.
/// n < 2 has no spread: NaN, the value of the formula at n = 1 (infinity times 0).
inline double c4(int n) {
  if (n < 2) return NAN;
  const double h = 0.5 * n;
  return std::sqrt(2.0 / (n - 1.0)) * std::exp(GammaLn(h) - GammaLn(h - 0.5));
}

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
