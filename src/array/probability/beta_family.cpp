// Laws on the incomplete beta function: Student t (I_w(nu/2, 1/2)/2, w = nu/(nu + x^2)),
// F, beta, binomial (P(X <= k) = I_(1-P)(N - k, k + 1)) and negative binomial
// (I_P(R, k + 1)), with the derived argument formed in double-double and the smaller of
// w and 1 - w passed (Abramowitz and Stegun 26.5.27, 26.6.2, 26.7.1; DLMF 8.17).

#include "statkit/array/Probability.h"

#include "array/probability/double_double.h"
#include "array/probability/internal.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <vector>

namespace statkit::detail::prob {

using detail::DD;
using detail::twoProd;
using detail::twoSum;

namespace {

// I_w(a, b) for w = ratio below 1e-30 whose power w^a is known: w^a / (a B(a, b)) (1 + O(w)).
double ibetaLeadingTerm(double wa, double a, double b) {
  return wa / (a * betaFunction(a, b));
}

// c^e x^-f without losing the product to an intermediate overflow or a subnormal factor;
// the fallback power of a rounded ratio costs f eps, harmless where the result is representable.
double scaledPower(double c, double e, double x, double f) {
  double p0 = std::pow(c, e), p1 = std::pow(x, -f);
  if (p1 >= DBL_MIN && std::isfinite(p0)) return p0 * p1;
  return std::pow(std::pow(c, e / f) / x, f);
}

// nu + x^2 in double-double.
DD nuPlusSquare(double nu, double ax) {
  DD t2 = twoProd(ax, ax);
  DD d = twoSum(nu, t2.hi);
  return {d.hi, d.lo + t2.lo};
}

// P(T <= x) for x <= 0, T Student with nu degrees of freedom:
// I_w(nu/2, 1/2)/2, w = nu/(nu + x^2), or through 1 - w = x^2/(nu + x^2) when that is smaller.
double studentLowerTail(double x, double nu) {
  if (std::isnan(x)) return kNaN;
  if (x == 0.0) return 0.5;
  if (x == -kInf) return 0.0;
  double ax = -x, a = 0.5 * nu;
  if (ax > 1e15 * std::sqrt(nu)) return 0.5 * ibetaLeadingTerm(scaledPower(nu, a, ax, nu), a, 0.5);
  DD d = nuPlusSquare(nu, ax);
  if (nu > 2.0 * ax * ax) {
    DD z = twoProd(ax, ax) / d;
    Tails t = betaTails(0.5, a, z.hi);
    return 0.5 * corrected(t.upper, -t.density, z.lo);
  }
  DD w = DD{nu, 0.0} / d;
  Tails t = betaTails(a, 0.5, w.hi);
  return 0.5 * corrected(t.lower, t.density, w.lo);
}

double studentDensity(double x, double nu) {
  if (std::isnan(x)) return kNaN;
  if (std::isinf(x)) return 0.0;
  double e = 0.5 * (nu + 1.0), ax = std::fabs(x);
  double norm = std::sqrt(nu) * betaFunction(0.5 * nu, 0.5);
  if (ax > 1e15 * std::sqrt(nu)) return scaledPower(nu, e, ax, nu + 1.0) / norm;
  // (1 + x^2/nu)^-(nu+1)/2 = w^e with w = nu/(nu + x^2) in double-double; pow is
  // within an ulp for an exact base, and the base's own error costs e w.lo/w.hi.
  DD w = DD{nu, 0.0} / nuPlusSquare(nu, ax);
  double f = std::pow(w.hi, e);
  return (f + f * e * (w.lo / w.hi)) / norm;
}

}  // namespace

// P(F <= x) (or P(F > x) when upper) for F with n1 and n2 degrees of freedom:
// I_z(n1/2, n2/2) with z = n1 x/(n2 + n1 x), or the upper tail I_w(n2/2, n1/2) with
// w = 1 - z = n2/(n2 + n1 x); the smaller of z and w is the argument, formed in double-double.
double fTail(double x, double n1, double n2, bool upper) {
  if (std::isnan(x)) return kNaN;
  if (x <= 0.0) return upper ? 1.0 : 0.0;
  if (x == kInf) return upper ? 0.0 : 1.0;
  double a1 = 0.5 * n1, a2 = 0.5 * n2;
  if (x > 1e30 * (n2 / n1)) {
    double q = ibetaLeadingTerm(scaledPower(n2 / n1, a2, x, a2), a2, a1);
    return upper ? q : 1.0 - q;
  }
  DD p = twoProd(n1, x);
  DD d = p + DD{n2, 0.0};
  if (p.hi > n2) {
    DD w = DD{n2, 0.0} / d;
    Tails t = betaTails(a2, a1, w.hi);
    return upper ? corrected(t.lower, t.density, w.lo) : corrected(t.upper, -t.density, w.lo);
  }
  DD z = p / d;
  Tails t = betaTails(a1, a2, z.hi);
  return upper ? corrected(t.upper, -t.density, z.lo) : corrected(t.lower, t.density, z.lo);
}

double fDensity(double x, double n1, double n2) {
  if (std::isnan(x)) return kNaN;
  if (x < 0.0 || x == kInf) return 0.0;
  if (x == 0.0) return n1 < 2.0 ? kInf : (n1 == 2.0 ? 1.0 : 0.0);
  double a1 = 0.5 * n1, a2 = 0.5 * n2;
  DD p = twoProd(n1, x);
  DD d = p + DD{n2, 0.0};
  if (!std::isfinite(d.hi)) return 0.0;  // x beyond 1e300: the density is below x^-1.5
  // dz/dx = -dw/dx = n1 n2/(n2 + n1 x)^2; the density is that times I'(z) or I'(w),
  // whose logarithmic derivative (a - 1)/u - (b - 1)/(1 - u) corrects the argument's error.
  DD u;
  double a, b;
  if (p.hi > n2) {
    u = DD{n2, 0.0} / d;
    a = a2, b = a1;
  } else {
    u = p / d;
    a = a1, b = a2;
  }
  double f = betaDensityAt(a, b, u.hi);
  if (u.lo != 0.0 && f > 0.0 && std::isfinite(f)) f += f * u.lo * ((a - 1.0) / u.hi - (b - 1.0) / (1.0 - u.hi));
  // Factor by factor: n1 n2/d^2 alone may underflow where the density does not.
  return ((f * (n1 / d.hi)) * (n2 / d.hi)) * (1.0 - 2.0 * d.lo / d.hi);
}

namespace {

// Beta density at an edge of (0, 1), as its limit: the edge's exponent s - 1 (s the
// shape on that side) decides between +Inf, 0 and the constant 1/B(1, other) = other.
double betaEdgeDensity(double s, double other) { return s < 1.0 ? kInf : (s == 1.0 ? other : 0.0); }

}  // namespace
}  // namespace statkit::detail::prob

namespace statkit {

using namespace detail::prob;

// Student t

double StudentCDF(double x, int Nu) noexcept {
  if (Nu <= 0) return kNaN;
  return x <= 0.0 ? studentLowerTail(x, Nu) : 1.0 - studentLowerTail(-x, Nu);
}

double StudentCDFc(double x, int Nu) noexcept {
  if (Nu <= 0) return kNaN;
  return x >= 0.0 ? studentLowerTail(-x, Nu) : 1.0 - studentLowerTail(x, Nu);
}

double StudentPDF(double x, int Nu) noexcept {
  if (Nu <= 0) return kNaN;
  return studentDensity(x, Nu);
}

double StudentCDFInv(double p, int Nu) noexcept {
  if (Nu <= 0 || !validProb(p)) return kNaN;
  return studentQuantile(p, Nu);
}

// F

double FCDF(double x, int Nu1, int Nu2) noexcept { return Nu1 <= 0 || Nu2 <= 0 ? kNaN : fTail(x, Nu1, Nu2, false); }
double FCDFc(double x, int Nu1, int Nu2) noexcept { return Nu1 <= 0 || Nu2 <= 0 ? kNaN : fTail(x, Nu1, Nu2, true); }
double FPDF(double x, int Nu1, int Nu2) noexcept { return Nu1 <= 0 || Nu2 <= 0 ? kNaN : fDensity(x, Nu1, Nu2); }

double FCDFInv(double p, int Nu1, int Nu2) noexcept {
  if (Nu1 <= 0 || Nu2 <= 0 || !validProb(p)) return kNaN;
  return fQuantile(p, Nu1, Nu2);
}

// Beta, shapes A and B

double BetaCDF(double x, double A, double B) noexcept {
  if (!validBeta(A, B) || std::isnan(x)) return kNaN;
  if (x <= 0.0) return 0.0;
  if (x >= 1.0) return 1.0;
  return betaTails(A, B, x).lower;
}

double BetaPDF(double x, double A, double B) noexcept {
  if (!validBeta(A, B) || std::isnan(x)) return kNaN;
  if (x < 0.0 || x > 1.0) return 0.0;
  if (x == 0.0) return betaEdgeDensity(A, B);
  if (x == 1.0) return betaEdgeDensity(B, A);
  return betaDensityAt(A, B, x);
}

double BetaCDFInv(double p, double A, double B) noexcept {
  if (!validBeta(A, B) || !validProb(p)) return kNaN;
  if (p == 0.0) return 0.0;
  if (p == 1.0) return 1.0;
  return betaQuantile(p, A, B);
}

// Binomial: P(X <= k) = I_(1-P)(N - k, k + 1), taken as ibetac(k + 1, N - k, P) so
// that the exact P is the argument.

double BinomCDF(double x, int N, double P) noexcept {
  if (!validBinom(N, P) || std::isnan(x)) return kNaN;
  if (x < 0.0) return 0.0;
  double k = std::floor(x);
  if (k >= N) return 1.0;
  if (P == 0.0) return 1.0;
  if (P == 1.0) return 0.0;
  return betaTails(k + 1.0, N - k, P).upper;
}

double BinomCDFc(double x, int N, double P) noexcept {
  if (!validBinom(N, P) || std::isnan(x)) return kNaN;
  if (x < 0.0) return 1.0;
  double k = std::floor(x);
  if (k >= N) return 0.0;
  if (P == 0.0) return 0.0;
  if (P == 1.0) return 1.0;
  return betaTails(k + 1.0, N - k, P).lower;
}

double BinomPDF(double x, int N, double P) noexcept {
  if (!validBinom(N, P) || std::isnan(x)) return kNaN;
  if (x < 0.0 || x > N || !isWhole(x)) return 0.0;
  if (P == 0.0) return x == 0.0 ? 1.0 : 0.0;
  if (P == 1.0) return x == N ? 1.0 : 0.0;
  // C(N, k) P^k (1-P)^(N-k) = I'_P(k + 1, N - k + 1)/(N + 1).
  return std::min(betaDensityAt(x + 1.0, N - x + 1.0, P) / (N + 1.0), 1.0);
}

// Negative binomial: failures before the R-th success; P(X <= k) = I_P(R, k + 1).

double NegBinomCDF(double x, int R, double P) noexcept {
  if (!validNegBinom(R, P) || std::isnan(x)) return kNaN;
  if (x < 0.0) return 0.0;
  if (P == 1.0 || x == kInf) return 1.0;
  double k = std::floor(x);
  return betaTails(R, k + 1.0, P).lower;
}

double NegBinomCDFc(double x, int R, double P) noexcept {
  if (!validNegBinom(R, P) || std::isnan(x)) return kNaN;
  if (x < 0.0) return 1.0;
  if (P == 1.0 || x == kInf) return 0.0;
  double k = std::floor(x);
  return betaTails(R, k + 1.0, P).upper;
}

double NegBinomPDF(double x, int R, double P) noexcept {
  if (!validNegBinom(R, P) || std::isnan(x)) return kNaN;
  if (x < 0.0 || !isWhole(x) || x == kInf) return 0.0;
  if (P == 1.0) return x == 0.0 ? 1.0 : 0.0;
  // C(k + R - 1, k) P^R (1-P)^k = P/(R + k) I'_P(R, k + 1).
  return std::min(P / (R + x) * betaDensityAt(R, x + 1.0, P), 1.0);
}

}  // namespace statkit
