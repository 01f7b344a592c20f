// The regularised incomplete gamma and beta functions with their densities, and the
// quantiles built on them: Boost.Math for small shapes (its only translation unit here),
// double-double prefixes around Stirling's series with the classical series and
// continued fractions for large ones, Temme's uniform expansion for huge gamma shapes
// (Numerical Recipes 6.2 and 6.4; DLMF 8.9.2, 8.11, 8.12 and 8.17.22; DiDonato and
// Morris 1992). Arguments derived from the inputs carry their rounding error in a low
// part, removed by a first-order step along the derivative. Also the inverse error
// function, Boost's rational approximations.

#include "statkit/array/Probability.h"

#include "array/probability/boost_policy.h"
#include "array/probability/double_double.h"
#include "array/probability/internal.h"

#include <boost/math/distributions/students_t.hpp>
#include <boost/math/special_functions/beta.hpp>
#include <boost/math/special_functions/erf.hpp>
#include <boost/math/special_functions/gamma.hpp>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <limits>
#include <numbers>
#include <utility>

namespace statkit::detail::prob {

using detail::DD;
using detail::FastPolicy;
using detail::PrecisePolicy;
using detail::twoProd;
using detail::twoSum;
namespace bm = boost::math;

constexpr double kHalfLn2Pi = 0.9189385332046728;

// Some Boost.Math root finders throw whatever the policy says (seen: the F quantile at
// p = 1e-300); nothing may escape a probability function, so any throw is a NaN.
template <class F>
double noThrow(F&& f) noexcept {
  try {
    return f();
  } catch (...) {
    return kNaN;
  }
}

double lnGamma(double a) {
  return noThrow([&] { return bm::lgamma(a, FastPolicy()); });
}

double betaFunction(double a, double b) {
  return noThrow([&] { return bm::beta(a, b, FastPolicy()); });
}

// From this shape on, Boost's power prefixes (pow of a rounded ratio to the shape)
// would cost more than 30 eps; below it they are within a few eps.
constexpr double kLargeShape = 30.0;

// mu(a) = ln Gamma(a) - [(a - 1/2) ln a - a + ln(2 pi)/2], Stirling's series; from
// a = 10 on, the terms to a^-13 leave an error below 1e-17 (DLMF 5.11.1).
double stirlingCorrection(double a) {
  double r = 1.0 / (a * a);
  return (1.0 / 12 - r * (1.0 / 360 - r * (1.0 / 1260 - r * (1.0 / 1680 - r * (1.0 / 1188 - r * (691.0 / 360360 - r / 156)))))) / a;
}

// ln Gamma(s) for 0 < s < 10 as ln Gamma(1 + s) - ln s, the logarithm in double-double:
// ln Gamma(1e-300) = 690.8 would otherwise carry 690 eps into every prefix built on it.
DD lnGammaOfSmall(double s) { return DD{std::log(std::tgamma(1.0 + s)), 0.0} - detail::logDD(DD{s, 0.0}); }

// ln(z^a e^-z / Gamma(a)) for a >= 10 as a ln(z/a) - (z - a) + ln(a)/2 - ln(2 pi)/2 - mu(a).
// The first two terms are large and cancel to -a D(z/a), D(l) = l - 1 - ln l.
DD lnGammaPrefix(double a, double z) {
  DD t = detail::logDD(DD{z, 0.0} / a) * a;
  return (t - twoSum(z, -a)) + DD{0.5 * std::log(a) - kHalfLn2Pi - stirlingCorrection(a), 0.0};
}

// sum_{n>=0} z^n / (a (a+1) ... (a+n)), so that P(a, z) = z^a e^-z/Gamma(a) times it (z < a).
double lowerGammaSeries(double a, double z) {
  double term = 1.0 / a, sum = term;
  // Terms fall off within a few sqrt(a) steps for the z < a < 1e6 it is used at.
  for (double n = a + 1.0; term > sum * 1e-17 && n < a + 1e6; n += 1.0) {
    term *= z / n;
    sum += term;
  }
  return sum;
}

// Legendre's continued fraction 1/(z+1-a- 1(1-a)/(z+3-a- 2(2-a)/(z+5-a- ...))), so that
// Q(a, z) = z^a e^-z/Gamma(a) times it (z >= a), by the modified Lentz method.
double upperGammaFraction(double a, double z) {
  constexpr double kTiny = 1e-300;
  double b = z + 1.0 - a, c = 1.0 / kTiny, d = 1.0 / b, h = d;
  for (int i = 1; i < 1000000; ++i) {
    double an = -i * (i - a);
    b += 2.0;
    d = an * d + b;
    if (std::fabs(d) < kTiny) d = kTiny;
    c = b + an / c;
    if (std::fabs(c) < kTiny) c = kTiny;
    d = 1.0 / d;
    double delta = d * c;
    h *= delta;
    if (std::fabs(delta - 1.0) <= 1e-16) break;
  }
  return h;
}

// Temme's uniform asymptotic expansion for large a (DLMF 8.12.3, 8.12.4, 8.12.8):
// with lambda = z/a, D = lambda - 1 - ln lambda, eta = sign(lambda - 1) sqrt(2D),
// Q(a, z) = erfc(eta sqrt(a/2))/2 + R and P(a, z) = erfc(-eta sqrt(a/2))/2 - R,
// R = exp(-a D)/sqrt(2 pi a) (C0(eta) + C1(eta)/a + O(a^-2)). From a = 1e6 on the
// omitted terms stay below 1e-15 relative; Boost's own version of it drifts with
// a (3e-14 at 1e6, 1e-12 at 1e9, 0.34 for 0.5 at 1e12). Near eta = 0 the closed
// forms of C0 and C1 cancel; their Taylor coefficients there come from reverting
// eta^2/2 = mu - ln(1 + mu), mu = lambda - 1, in exact rational arithmetic.
constexpr double kTemmeFrom = 1e6;

double temmeC0(double eta, double mu) {
  static constexpr double c[] = {-0.3333333333333333, 0.08333333333333333, -0.014814814814814815,
                                 0.0011574074074074073, 0.0003527336860670194, -0.0001787551440329218,
                                 3.919263178522438e-05, -2.185448510679992e-06, -1.85406221071516e-06,
                                 8.296711340953087e-07, -1.7665952736826078e-07, 6.707853543401498e-09,
                                 1.0261809784240309e-08, -4.382036018453353e-09, 9.14769958223679e-10,
                                 -2.5514193994946248e-11, -5.830772132550426e-11};
  if (std::fabs(eta) > 0.5) return 1.0 / mu - 1.0 / eta;
  double v = 0.0;
  for (int k = 16; k >= 0; --k) v = v * eta + c[k];
  return v;
}

double temmeC1(double eta, double mu) {
  static constexpr double c[] = {-0.001851851851851852, -0.003472222222222222, 0.0026455026455026454,
                                 -0.0009902263374485596, 0.00020576131687242798, -4.018775720164609e-07,
                                 -1.8098550334489977e-05, 7.64916091608111e-06, -1.6120900894563446e-06,
                                 4.647127802807434e-09, 1.378633446915721e-07, -5.752545603517705e-08,
                                 1.1951628599778148e-08};
  if (std::fabs(eta) > 0.5) return 1.0 / (eta * eta * eta) - 1.0 / (mu * mu * mu) - 1.0 / (mu * mu) - 1.0 / (12.0 * mu);
  double v = 0.0;
  for (int k = 12; k >= 0; --k) v = v * eta + c[k];
  return v;
}

// erfc(s)/2 for s = s.hi + s.lo >= 0, the low part through erfc's logarithmic
// derivative as in halfErfcCorrected.
double halfErfc(DD s) {
  double e = 0.5 * std::erfc(s.hi);
  if (!(s.hi > 1.0) || s.lo == 0.0) return e;
  return e - e * (s.hi + std::sqrt(s.hi * s.hi + 2.0)) * s.lo;
}

Tails gammaTemme(double a, double z, double density) {
  DD zma = twoSum(z, -a);
  DD aD = zma - detail::logDD(DD{z, 0.0} / a) * a;  // a D(lambda) >= 0, cancelling terms in double-double
  double mu = zma.hi / a;
  double eta = std::copysign(std::sqrt(2.0 * std::max(aD.hi, 0.0) / a), mu);
  double sh = std::sqrt(std::max(aD.hi, 0.0));
  DD s{sh, sh > 0.0 ? (std::fma(-sh, sh, aD.hi) + aD.lo) / (2.0 * sh) : 0.0};
  double r = detail::expDD(-aD) / std::sqrt(2.0 * std::numbers::pi * a) * (temmeC0(eta, mu) + temmeC1(eta, mu) / a);
  if (z > a) return fromUpper(halfErfc(s) + r, density);
  return fromLower(halfErfc(s) - r, density);
}

// Density z^(a-1) e^-z / Gamma(a) of the regularised incomplete gamma function.
double gammaDensityAt(double a, double z) {
  if (a >= kLargeShape) {
    // z below the normal range: z^(a-1)/Gamma(a) underflows (the prefix's z/a would be 0).
    if (z < DBL_MIN) return 0.0;
    return detail::expDD(lnGammaPrefix(a, z)) / z;
  }
  return noThrow([&] { return bm::gamma_p_derivative(a, z, FastPolicy()); });
}

// P(a, z) and Q(a, z) for finite z > 0.
Tails gammaTails(double a, double z) {
  if (a >= kTemmeFrom) return gammaTemme(a, z, gammaDensityAt(a, z));
  double sigma = (z - a) / a;
  // Small shapes, and the centre of large ones, where Boost switches to Temme's
  // uniform expansion (a > 200, sigma^2 < 20/a), whose error does not grow with a.
  if (a < kLargeShape || (a > 200.0 && sigma * sigma < 20.0 / a)) {
    double dens = gammaDensityAt(a, z);
    if (z < a) {
      double p = noThrow([&] { return bm::gamma_p(a, z, FastPolicy()); });
      if (p <= 0.5) return fromLower(p, dens);
    }
    double q = noThrow([&] { return bm::gamma_q(a, z, FastPolicy()); });
    if (q <= 0.5 || z < a) return fromUpper(q, dens);
    return fromLower(noThrow([&] { return bm::gamma_p(a, z, FastPolicy()); }), dens);
  }
  // z below the normal range: P(a, z) = z^a/Gamma(a + 1) (1 + O(z)) underflows.
  if (z < DBL_MIN) return fromLower(0.0, 0.0);
  double w = detail::expDD(lnGammaPrefix(a, z));
  // A prefix that underflows leaves the smaller tail 0 (and spares the million
  // steps of a fraction that does not settle at z = 1e308).
  if (w == 0.0) return z < a ? fromLower(0.0, 0.0) : fromUpper(0.0, 0.0);
  if (z < a) return fromLower(w * lowerGammaSeries(a, z), w / z);
  return fromUpper(w * upperGammaFraction(a, z), w / z);
}

// ln(x^a y^b / B(a, b)), y = 1 - x exactly, for max(a, b) >= kLargeShape. With c = a + b:
// a ln(x c/a) + b ln(y c/b), large terms that cancel (double-double), plus the moderate
// a ln(a/c) + b ln(b/c) - ln B(a, b) from Stirling's series (a shape below 10 by its gamma function).
DD lnBetaPrefix(double a, double b, double x) {
  DD y = twoSum(1.0, -x);
  DD c = twoSum(a, b);
  DD ta = detail::logDD((c * x) / a) * a;
  DD tb = detail::logDD((c * y) / b) * b;
  double k;
  if (a >= 10.0 && b >= 10.0) {
    k = 0.5 * (std::log(a) + std::log(b) - std::log(c.hi)) - kHalfLn2Pi - stirlingCorrection(a) -
        stirlingCorrection(b) + stirlingCorrection(c.hi);
  } else {
    double s = std::min(a, b), l = std::max(a, b);
    k = s * std::log(s) - s - 0.5 * std::log1p(s / l) - stirlingCorrection(l) + stirlingCorrection(c.hi);
    return (ta + tb) + (DD{k, 0.0} - lnGammaOfSmall(s));
  }
  return (ta + tb) + DD{k, 0.0};
}

// The continued fraction 1 + d1/(1 + d2/(1 + ...)) of DLMF 8.17.22, so that
// I_x(a, b) = x^a (1-x)^b / (a B(a, b)) divided by it; modified Lentz method,
// converging for x < (a + 1)/(a + b + 2) within O(sqrt(max(a, b))) steps. Near that
// bound the fraction is small against its terms (6e-6 for a = 5e5, b = 1/2 at x =
// 1 - 5.4e-6): it cancels, and in double precision it loses both the digits and the
// argument's last bits (1 - x stands for a small exact complement). It runs in
// double-double with x given exactly as x.hi + x.lo.
double betaFraction(double a, double b, DD x) {
  constexpr double kTiny = 1e-300;
  const DD one{1.0, 0.0};
  const DD ab = twoSum(a, b);
  DD f = one, c = one, d{0.0, 0.0};
  for (int m = 1; m < 2000000; ++m) {
    double k = m / 2;
    DD coeff = (m & 1) ? -(((ab + DD{k, 0.0}) * (a + k)) * x) / twoProd(a + 2.0 * k, a + 2.0 * k + 1.0)
                       : ((x * k) * (b - k)) / twoProd(a + 2.0 * k - 1.0, a + 2.0 * k);
    d = one + coeff * d;
    if (std::fabs(d.hi) < kTiny) d = {kTiny, 0.0};
    c = one + coeff / c;
    if (std::fabs(c.hi) < kTiny) c = {kTiny, 0.0};
    d = one / d;
    DD delta = c * d;
    f = f * delta;
    // A small fraction magnifies the neglected tail as it magnifies rounding: stop
    // far below double precision (1e-17 left 2e-13 in the example above).
    if (std::fabs((delta.hi - 1.0) + delta.lo) <= 1e-25) return f.hi;
  }
  return kNaN;  // not converged: a NaN, not a guess
}

// Density x^(a-1) (1-x)^(b-1) / B(a, b) of the regularised incomplete beta function, 0 < x < 1.
// Small shapes by the powers themselves (Boost's route through logarithms loses 700
// eps at x = 1e-300), 1 - x exact in double-double; large ones by the prefix above.
double betaDensityAt(double a, double b, double x) {
  if (std::max(a, b) >= kLargeShape) return detail::expDD(lnBetaPrefix(a, b, x)) / (x * (1.0 - x));
  DD y = twoSum(1.0, -x);
  double px = std::pow(x, a - 1.0), py = std::pow(y.hi, b - 1.0);
  py += py * (b - 1.0) * (y.lo / y.hi);
  double beta = noThrow([&] { return bm::beta(a, b, FastPolicy()); });
  double f = px * py / beta;
  if (std::isnormal(px) && std::isnormal(py) && std::isnormal(f)) return f;
  // Boost's derivative divides by x: +Inf for I'_x(2, 1) at x = 5e-324, where the product is right.
  double g = noThrow([&] { return bm::ibeta_derivative(a, b, x, FastPolicy()); });
  return std::isfinite(g) || !std::isfinite(f) ? g : f;
}

// Beyond this shape the continued fraction's steps a + k lose their resolution.
constexpr double kHugeShape = 1e10;

// I_x(a, b) with one shape huge and the other at most 1e3: the gamma limit
// I_x(a, b) = Q(b, -T ln x), T = a + (b - 1)/2, for a huge, with a relative error
// O(b^3/T^2) below 1e-11 x 1e-9 (DiDonato and Morris 1992, the leading term of
// BGRAT); by symmetry P(a, -T' ln(1 - x)), T' = b + (a - 1)/2, for b huge. The
// argument is formed in double-double and its low part corrected as elsewhere.
// Two huge shapes are out of reach of both methods: NaN.
Tails betaTailsOneHugeShape(double a, double b, double x) {
  double dens = betaDensityAt(a, b, x);
  bool aHuge = a >= b;
  double small = aHuge ? b : a;
  if (small > 1e3) return {kNaN, kNaN, kNaN};
  DD ln = aHuge ? detail::logDD(DD{x, 0.0}) : detail::logDD(twoSum(1.0, -x));
  DD u = -(ln * (twoSum(aHuge ? a : b, 0.5 * (small - 1.0))));
  if (!(u.hi < kInf)) return aHuge ? fromLower(0.0, dens) : fromLower(1.0, dens);
  Tails g = gammaTails(small, u.hi);
  double du = g.density * u.lo;
  // a huge: I = Q(b, u); b huge: I = P(a, u).
  double lower = unitClamp(g.lower + du), upper = unitClamp(g.upper - du);
  return aHuge ? Tails{upper, lower, dens} : Tails{lower, upper, dens};
}

// I_x(a, b) and 1 - I_x(a, b) for 0 < x < 1.
Tails betaTails(double a, double b, double x) {
  if (std::max(a, b) > kHugeShape) return betaTailsOneHugeShape(a, b, x);
  // Two vanishing shapes: all the mass sits at 0 (b/(a + b) of it) and at 1, up to
  // O(max(a, b) ln x); Boost returns 0 or 1 there (shapes 1e-200 and 3e-200).
  if (std::max(a, b) < 1e-20) return {b / (a + b), a / (a + b), betaDensityAt(a, b, x)};
  if (std::max(a, b) < kLargeShape) {
    // The smaller tail directly: Boost's ibetac(1/2, 1/2, 1e-20) returns 1, not 1 - 6e-11.
    double dens = betaDensityAt(a, b, x);
    if (x < a / (a + b)) {
      double lo = noThrow([&] { return bm::ibeta(a, b, x, FastPolicy()); });
      if (lo <= 0.5) return fromLower(lo, dens);
      return fromUpper(noThrow([&] { return bm::ibetac(a, b, x, FastPolicy()); }), dens);
    }
    double up = noThrow([&] { return bm::ibetac(a, b, x, FastPolicy()); });
    if (up <= 0.5) return fromUpper(up, dens);
    return fromLower(noThrow([&] { return bm::ibeta(a, b, x, FastPolicy()); }), dens);
  }
  double prefix = detail::expDD(lnBetaPrefix(a, b, x));
  DD y = twoSum(1.0, -x);
  double dens = prefix / (x * y.hi);
  bool lowerSide = x * (a + b + 2.0) < a + 1.0;
  if (prefix == 0.0) return lowerSide ? fromLower(0.0, dens) : fromUpper(0.0, dens);
  if (lowerSide) return fromLower(prefix / (a * betaFraction(a, b, DD{x, 0.0})), dens);
  return fromUpper(prefix / (b * betaFraction(b, a, y)), dens);
}

// Newton's method for tail(x) = q on the logarithms, ln tail against ln x, from a
// starting point that may be far off: Boost's ibeta_inv loses the far tails (4e-51
// instead of 2.6e-151 for p = 1e-300 with shapes 2 and 5), where ln tail is nearly
// linear in ln x. Stepping x by the factor exp(dt) keeps its full precision.
// tailAt(x) gives {tail, d tail/dx}; xMax bounds the support; preciseStart: x0 is a
// root from Boost's promoted inverse, not an approximation. At most 200 steps.
template <class TailAt>
double refineQuantile(double x0, double q, double xMax, TailAt tailAt, bool preciseStart = true) {
  double lnq = std::log(q);
  if (x0 == 0.0) {
    // A start at 0: the quantile may lie below the smallest double (gamma shape 1e-5
    // at p = 1/2: 0.5^100000), which the lower tail there decides.
    if (tailAt(std::numeric_limits<double>::denorm_min()).first >= q) return 0.0;
  }
  double x = x0 > 0.0 && x0 < xMax ? x0 : std::min(1.0, 0.5 * xMax);
  double best = kNaN, bestErr = kInf;
  for (int i = 0; i < 200; ++i) {
    auto [tail, slope] = tailAt(x);
    double dt;
    if (!(tail > 0.0) || !(tail < 1.0)) {
      // The tail has run out of range: walk back geometrically.
      bool tooFarOut = !(tail > 0.0) == (slope >= 0.0);
      dt = tooFarOut ? 2.0 : -2.0;
      if (!(slope == slope)) return best;
    } else {
      double g = std::log(tail) - lnq;
      if (std::fabs(g) < bestErr) bestErr = std::fabs(g), best = x;
      double dg = slope * x / tail;
      if (!(dg != 0.0) || !std::isfinite(dg)) return best;
      dt = std::clamp(-g / dg, -50.0, 50.0);
      // A start that our tail confirms to 1e-14 is kept: Boost's promoted root is then
      // the more precise one (our tails are within 1e-13, not exact).
      if (i == 0 && preciseStart && std::fabs(dt) <= 1e-14) return x;
    }
    double next = x * std::exp(dt);
    if (next >= xMax) next = 0.5 * (x + xMax);
    if (std::fabs(dt) <= 2e-16 || next == x) return next;
    x = next;
  }
  return best;
}

// The x with Q(A, x) = q (upper) or P(A, x) = q, 0 < q <= 1/2: Boost's inverse, refined
// on that tail (Boost's is off by 3e-9 relative at A = 1e15, where its incomplete
// gamma function drifts). From A = 1e6 on the start is Wilson and Hilferty's
// A (1 - 1/(9A) + z/(3 sqrt(A)))^3, z the normal quantile, within O(1/A) relative:
// Boost's root finder is kept to the shapes where it was seen to return.
double gammaTailQuantile(double q, double A, bool upper) {
  double x0;
  const bool approximate = A >= kTemmeFrom;
  if (approximate) {
    double z = upper ? -standardNormalQuantile(q) : standardNormalQuantile(q);
    double c = 1.0 - 1.0 / (9.0 * A) + z / (3.0 * std::sqrt(A));
    x0 = A * c * c * c;
  } else {
    x0 = noThrow([&] {
      return upper ? bm::gamma_q_inv(A, q, PrecisePolicy()) : bm::gamma_p_inv(A, q, PrecisePolicy());
    });
  }
  return refineQuantile(
      x0, q, kInf,
      [&](double x) {
        Tails t = gammaTails(A, x);
        return upper ? std::pair{t.upper, -t.density} : std::pair{t.lower, t.density};
      },
      !approximate);
}

// P(A, x) = p.
double gammaQuantile(double p, double A) {
  if (p == 0.0) return 0.0;
  if (p == 1.0) return kInf;
  return p > 0.5 ? gammaTailQuantile(1.0 - p, A, true) : gammaTailQuantile(p, A, false);
}

double studentQuantile(double p, double nu) {
  if (p == 0.0) return -kInf;
  if (p == 1.0) return kInf;
  auto quantile = [nu](double q) {
    return bm::quantile(bm::students_t_distribution<double, PrecisePolicy>(nu), q);
  };
  if (p <= 0.5) return noThrow([&] { return quantile(p); });
  return -noThrow([&] { return quantile(1.0 - p); });
}

// I_x(a, b) = p from Boost's inverse, refined on the smaller tail (the upper one at
// q = 1 - p when p > 1/2, so that a small x stays accurate also there).
double betaQuantile(double p, double a, double b) {
  if (std::max(a, b) < 1e-20) return p <= b / (a + b) ? 0.0 : 1.0;  // the two-point limit of betaTails
  bool upper = p > 0.5;
  double q = upper ? 1.0 - p : p;
  if (std::max(a, b) > kHugeShape) {
    // The gamma limit of betaTailsOneHugeShape inverted: I_x(a, b) = Q(b, -T ln x) for a
    // huge, P(a, -T' ln(1 - x)) for b huge. Boost's inverse never returns there
    // (shapes 2.8125 and 1.8e308: its bracketing search runs on a wrapped count).
    if (std::min(a, b) > 1e3) return kNaN;  // two huge shapes, see betaTailsOneHugeShape
    bool aHuge = a >= b;
    double small = aHuge ? b : a;
    double t = (aHuge ? a : b) + 0.5 * (small - 1.0);
    double u = gammaTailQuantile(q, small, aHuge != upper);
    return aHuge ? std::exp(-u / t) : -std::expm1(-u / t);
  }
  double x0 = noThrow([&] {
    return upper ? bm::ibetac_inv(a, b, q, PrecisePolicy()) : bm::ibeta_inv(a, b, q, PrecisePolicy());
  });
  return refineQuantile(x0, q, 1.0, [&](double x) {
    Tails t = betaTails(a, b, x);
    return upper ? std::pair{t.upper, -t.density} : std::pair{t.lower, t.density};
  });
}

double fQuantile(double p, double n1, double n2) {
  if (p == 0.0) return 0.0;
  if (p == 1.0) return kInf;
  bool upper = p > 0.5;
  double q = upper ? 1.0 - p : p;
  // Start from x = n2 z/(n1 (1 - z)), z the inverse of I_z(n1/2, n2/2) (1 - z comes with it).
  double y = kNaN;
  double z = noThrow([&] {
    return upper ? bm::ibetac_inv(0.5 * n1, 0.5 * n2, q, &y, PrecisePolicy())
                 : bm::ibeta_inv(0.5 * n1, 0.5 * n2, q, &y, PrecisePolicy());
  });
  return refineQuantile(n2 * z / (n1 * y), q, kInf, [&](double x) {
    double f = fDensity(x, n1, n2);
    return std::pair{fTail(x, n1, n2, upper), upper ? -f : f};
  });
}

}  // namespace statkit::detail::prob

namespace statkit {

using namespace detail::prob;

double GammaLn(double x) { return lnGamma(x); }

double ErfInv(double x) noexcept {
  if (!(x >= -1.0 && x <= 1.0)) return kNaN;
  if (x == 1.0) return kInf;
  if (x == -1.0) return -kInf;
  return noThrow([&] { return bm::erf_inv(x, PrecisePolicy()); });
}

}  // namespace statkit
