// Laws with closed forms: Weibull F(x) = 1 - exp(-A x^B), exponential by its mean and
// Rayleigh by its scale, through expm1 and log1p so that both tails keep their digits;
// the densities carry the rounding error of their exponent in double-double.

#include "statkit/array/Probability.h"

#include "array/probability/double_double.h"
#include "array/probability/internal.h"

#include <cmath>

namespace statkit {

using namespace detail::prob;
using detail::DD;

// Weibull, F(x) = 1 - exp(-A x^B): closed forms.

double WeibullCDF(double x, double A, double B) noexcept {
  if (!validGamma(A, B) || std::isnan(x)) return kNaN;
  if (x <= 0.0) return 0.0;
  return -std::expm1(-A * std::pow(x, B));
}

// A B x^(B-1) exp(-A x^B). The exponent's relative rounding error (pow and the
// product, about 1.5 eps) returns as A x^B times that in the density: 1e-14 at
// A x^B = 50, 2e-13 in the far tail at 700.
double WeibullPDF(double x, double A, double B) noexcept {
  if (!validGamma(A, B) || std::isnan(x)) return kNaN;
  if (x < 0.0 || x == kInf) return 0.0;
  if (x == 0.0) return B < 1.0 ? kInf : (B == 1.0 ? A : 0.0);
  double u = A * std::pow(x, B);
  double f = A * B * std::pow(x, B - 1.0) * std::exp(-u);
  if (std::isfinite(f) && (f > 0.0 || u > 745.0)) return f;
  // A power that overflows or underflows on its own: combine in logarithms.
  return std::exp(std::log(A * B) + (B - 1.0) * std::log(x) - u);
}

double WeibullCDFInv(double p, double A, double B) noexcept {
  if (!validGamma(A, B) || !validProb(p)) return kNaN;
  if (p == 1.0) return kInf;
  return std::pow(-std::log1p(-p) / A, 1.0 / B);
}

// Exponential with mean Mu

double ExpCDF(double x, double Mu) noexcept {
  if (!positiveFinite(Mu) || std::isnan(x)) return kNaN;
  if (x <= 0.0) return 0.0;
  return -std::expm1(-x / Mu);
}

double ExpPDF(double x, double Mu) noexcept {
  if (!positiveFinite(Mu) || std::isnan(x)) return kNaN;
  if (x < 0.0) return 0.0;
  // exp(-(u.hi + u.lo)) with the quotient's rounding error removed.
  DD u = DD{x, 0.0} / Mu;
  double v = std::exp(-u.hi);
  if (v > 0.0) v -= v * u.lo;
  return v / Mu;
}

double ExpCDFInv(double p, double Mu) noexcept {
  if (!positiveFinite(Mu) || !validProb(p)) return kNaN;
  return -Mu * std::log1p(-p);
}

// Rayleigh with scale B: F(x) = 1 - exp(-x^2/(2 B^2))

double RayleighCDF(double x, double B) noexcept {
  if (!positiveFinite(B) || std::isnan(x)) return kNaN;
  if (x <= 0.0) return 0.0;
  double r = x / B;
  return -std::expm1(-0.5 * r * r);
}

double RayleighPDF(double x, double B) noexcept {
  if (!positiveFinite(B) || std::isnan(x)) return kNaN;
  if (x <= 0.0 || x == kInf) return 0.0;
  DD r = DD{x, 0.0} / B;
  double uh = 0.5 * r.hi * r.hi;
  if (!(uh < 750.0)) return 0.0;
  double ul = 0.5 * std::fma(r.hi, r.hi, -r.hi * r.hi) + r.hi * r.lo;
  double v = std::exp(-uh);
  v -= v * ul;
  return v * (r.hi / B);
}

double RayleighCDFInv(double p, double B) noexcept {
  if (!positiveFinite(B) || !validProb(p)) return kNaN;
  return B * std::sqrt(-2.0 * std::log1p(-p));
}

}  // namespace statkit
