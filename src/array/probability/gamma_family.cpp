// The gamma law (shape and scale), chi-square (gamma with shape nu/2, scale 2) and the
// Poisson law (P(X <= k) = Q(k + 1, lambda)): tails and densities from the incomplete
// gamma function at x/B, whose rounding error is carried in double-double and removed
// along the density (DLMF 8.2; Abramowitz and Stegun 26.4.2 and 26.4.21).

#include "statkit/array/Probability.h"

#include "array/probability/double_double.h"
#include "array/probability/internal.h"

#include <cfloat>
#include <cmath>

namespace statkit::detail::prob {
namespace {

using detail::DD;

// P(X <= x) (or P(X > x) when upper) for X gamma with shape A and scale B.
double gammaTail(double x, double A, double B, bool upper) {
  if (std::isnan(x)) return kNaN;
  if (x <= 0.0) return upper ? 1.0 : 0.0;
  if (x == kInf) return upper ? 0.0 : 1.0;
  DD z = B == 1.0 ? DD{x, 0.0} : DD{x, 0.0} / B;
  if (z.hi == kInf) return upper ? 0.0 : 1.0;
  if (z.hi < DBL_MIN) {
    // x/B below the normal range: P(A, z) = z^A / Gamma(A + 1) (1 + O(z)).
    double lg = lnGamma(A + 1.0);
    double lower = std::exp(A * (std::log(x) - std::log(B)) - lg);
    return upper ? 1.0 - lower : lower;
  }
  Tails t = gammaTails(A, z.hi);
  return upper ? corrected(t.upper, -t.density, z.lo) : corrected(t.lower, t.density, z.lo);
}

// Gamma density at x with shape A and scale B.
double gammaDensity(double x, double A, double B) {
  if (std::isnan(x)) return kNaN;
  if (x < 0.0 || x == kInf) return 0.0;
  if (x == 0.0) return A < 1.0 ? kInf : (A == 1.0 ? 1.0 / B : 0.0);
  DD z = B == 1.0 ? DD{x, 0.0} : DD{x, 0.0} / B;
  if (z.hi == kInf) return 0.0;
  if (z.hi < DBL_MIN) {
    // exp(-z) = 1 there: the density is z^(A-1)/Gamma(A)/B.
    double lg = lnGamma(A);
    return std::exp((A - 1.0) * (std::log(x) - std::log(B)) - lg) / B;
  }
  double f = gammaDensityAt(A, z.hi);
  // d/dz ln f = (A - 1)/z - 1.
  if (z.lo != 0.0 && f > 0.0 && std::isfinite(f)) f += f * z.lo * ((A - 1.0) / z.hi - 1.0);
  return f / B;
}

}  // namespace
}  // namespace statkit::detail::prob

namespace statkit {

using namespace detail::prob;

// Chi-square: the gamma distribution with shape Nu/2 and scale 2.

double ChiSquareCDF(double x, int Nu) noexcept { return Nu <= 0 ? kNaN : gammaTail(x, 0.5 * Nu, 2.0, false); }
double ChiSquareCDFc(double x, int Nu) noexcept { return Nu <= 0 ? kNaN : gammaTail(x, 0.5 * Nu, 2.0, true); }
double ChiSquarePDF(double x, int Nu) noexcept { return Nu <= 0 ? kNaN : gammaDensity(x, 0.5 * Nu, 2.0); }

double ChiSquareCDFInv(double p, int Nu) noexcept {
  if (Nu <= 0 || !validProb(p)) return kNaN;
  return 2.0 * gammaQuantile(p, 0.5 * Nu);
}

// Gamma, shape A and scale B

double GammaCDF(double x, double A, double B) noexcept { return validGamma(A, B) ? gammaTail(x, A, B, false) : kNaN; }
double GammaCDFc(double x, double A, double B) noexcept { return validGamma(A, B) ? gammaTail(x, A, B, true) : kNaN; }
double GammaPDF(double x, double A, double B) noexcept { return validGamma(A, B) ? gammaDensity(x, A, B) : kNaN; }

double GammaCDFInv(double p, double A, double B) noexcept {
  if (!validGamma(A, B) || !validProb(p)) return kNaN;
  return B * gammaQuantile(p, A);
}

// Poisson with mean Lambda (Lambda = 0: all mass at 0): P(X <= k) = Q(k + 1, Lambda).

double PoissonCDF(double x, double Lambda) noexcept {
  if (!validPoisson(Lambda) || std::isnan(x)) return kNaN;
  if (x < 0.0) return 0.0;
  if (Lambda == 0.0 || x == kInf) return 1.0;
  double k = std::floor(x);
  return gammaTails(k + 1.0, Lambda).upper;
}

double PoissonCDFc(double x, double Lambda) noexcept {
  if (!validPoisson(Lambda) || std::isnan(x)) return kNaN;
  if (x < 0.0) return 1.0;
  if (Lambda == 0.0 || x == kInf) return 0.0;
  double k = std::floor(x);
  return gammaTails(k + 1.0, Lambda).lower;
}

double PoissonPDF(double x, double Lambda) noexcept {
  if (!validPoisson(Lambda) || std::isnan(x)) return kNaN;
  if (x < 0.0 || !isWhole(x) || x == kInf) return 0.0;
  if (Lambda == 0.0) return x == 0.0 ? 1.0 : 0.0;
  return std::min(gammaDensityAt(x + 1.0, Lambda), 1.0);
}

}  // namespace statkit
