// Distribution functions, upper tails, densities and inverses of the array layer.
// The normal distribution runs on the C library's erfc. The incomplete gamma and beta
// functions behind the others come from Boost.Math for small shapes; for shapes from
// 30 on, Boost's power prefix (a power of a rounded ratio) loses shape x eps, so there
// the prefix z^a e^-z/Gamma(a) or x^a (1-x)^b/B(a, b) is formed in double-double around
// Stirling's series and multiplied by the classical series or continued fraction
// (Numerical Recipes 6.2 and 6.4; DLMF 8.9.2, 8.11 and 8.17.22). Arguments derived from
// the inputs (x/sqrt(2), x/B, nu/(nu + x^2), ...) carry their rounding error in a low
// part, removed by a first-order step along the derivative: a relative error d in the
// argument costs about d times the tail's exponent (x^2 eps for the normal at x = -38).

#include "statkit/array/Probability.h"

#include "array/probability/boost_policy.h"
#include "array/probability/double_double.h"

#include <boost/math/distributions/students_t.hpp>
#include <boost/math/special_functions/beta.hpp>
#include <boost/math/special_functions/erf.hpp>
#include <boost/math/special_functions/gamma.hpp>

#if defined(STATKIT_HAVE_LIBMVEC) && defined(__x86_64__)
#include <immintrin.h>
#endif

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

namespace statkit {

namespace {

using detail::DD;
using detail::FastPolicy;
using detail::PrecisePolicy;
using detail::twoProd;
using detail::twoSum;
namespace bm = boost::math;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

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

bool isWhole(double x) { return std::floor(x) == x; }
bool validProb(double p) { return p >= 0.0 && p <= 1.0; }
bool positiveFinite(double v) { return v > 0.0 && v < kInf; }

// A probability rounded or corrected past an end of [0, 1] (1 + 2e-14 from a prefix
// near 1e-300) is that end; NaN stays NaN.
double unitClamp(double v) { return v < 0.0 ? 0.0 : (v > 1.0 ? 1.0 : v); }

// f(hi + lo) = f(hi) + lo f'(hi): the first-order step that removes an argument's
// rounding error from a tail, which stays a probability.
double corrected(double value, double derivative, double lo) {
  if (lo == 0.0 || !std::isfinite(derivative)) return value;
  return unitClamp(value + lo * derivative);
}

// ---------------------------------------------------------------------------
// Normal distribution.

constexpr double kInvSqrt2Hi = 0.7071067811865476;      // 1/sqrt(2) rounded
constexpr double kInvSqrt2Lo = -4.833646656726457e-17;  // 1/sqrt(2) - kInvSqrt2Hi
constexpr double kSqrt2 = 1.4142135623730951;
constexpr double kInvSqrt2Pi = 0.3989422804014327;
constexpr double kHalfLn2Pi = 0.9189385332046728;

bool validNormal(double Mu, double Sigma) { return std::isfinite(Mu) && positiveFinite(Sigma); }

// z = (x - Mu)/Sigma with its rounding error.
DD standardize(double x, double Mu, double Sigma) {
  if ((Mu == 0.0 && Sigma == 1.0) || !std::isfinite(x)) return {x, 0.0};
  DD d = twoSum(x, -Mu);
  if (Sigma == 1.0) return d;
  return d / Sigma;
}

// Phi(zh + zl) = erfc(t)/2 with t = -(zh + zl)/sqrt(2), given e = erfc(t) for the
// rounded t = -zh/sqrt(2). glibc's erfc is within 2 ulp wherever its result is
// normal, but t carries the rounding of the product: erfc amplifies a relative
// error d of t into about 2 t^2 d. The exact error of t is carried along and erfc
// corrected by its logarithmic derivative -g(t), g(t) = 2 exp(-t^2)/(sqrt(pi) erfc(t)),
// for which t + sqrt(t^2 + 2) is exact to O(t^-3) and within 4% from t = 1 on
// (Abramowitz and Stegun 7.1.13); the correction is below 2 t^2 eps, so that
// suffices. Beyond t = 27 erfc is subnormal or zero.
inline double halfErfcCorrected(double zh, double zl, double t, double e) {
  if (!(t > 1.0 && t < 27.0)) return 0.5 * e;  // also NaN and the infinities
  double tl = std::fma(-zh, kInvSqrt2Hi, -t) - zh * kInvSqrt2Lo - zl * kInvSqrt2Hi;
  double g = t + std::sqrt(t * t + 2.0);
  return 0.5 * e - 0.5 * e * (g * tl);
}

inline double normalLowerTail(double zh, double zl) {
  double t = -zh * kInvSqrt2Hi;
  return halfErfcCorrected(zh, zl, t, std::erfc(t));
}

#if defined(STATKIT_HAVE_LIBMVEC) && defined(__x86_64__)
// glibc's vector erfc (libmvec), within an ulp like the scalar one (measured
// against mpmath over [-6, 27.5], subnormal results included): two lanes in the
// SSE2 ABI that every x86-64 has, four in the AVX2 ABI where the processor has it.
extern "C" __m128d _ZGVbN2v_erfc(__m128d);
extern "C" [[gnu::target("avx2")]] __m256d _ZGVdN4v_erfc(__m256d);

[[gnu::target("avx2")]] void erfcBlockAvx2(const double* in, double* out, int n) {
  int i = 0;
  for (; i + 4 <= n; i += 4) _mm256_storeu_pd(out + i, _ZGVdN4v_erfc(_mm256_loadu_pd(in + i)));
  for (; i < n; ++i) out[i] = std::erfc(in[i]);
}
#endif

// out[i] = erfc(in[i]).
void erfcBlock(const double* in, double* out, int n) {
#if defined(STATKIT_HAVE_LIBMVEC) && defined(__x86_64__)
  if (__builtin_cpu_supports("avx2")) return erfcBlockAvx2(in, out, n);
  int i = 0;
  for (; i + 2 <= n; i += 2) _mm_storeu_pd(out + i, _ZGVbN2v_erfc(_mm_loadu_pd(in + i)));
  for (; i < n; ++i) out[i] = std::erfc(in[i]);
#else
  for (int i = 0; i < n; ++i) out[i] = std::erfc(in[i]);
#endif
}

// The vector form by blocks: the arguments t = -z/sqrt(2), their erfc at once, then
// the far-tail correction for the few elements with t in (1, 27), whose z is formed
// again in double-double (its high part is the z of the first pass). d may be x.
void normalCdfInto(const double* x, double* d, int n, double Mu, double Sigma) {
  constexpr int kBlock = 256;
  double t[kBlock], e[kBlock];
  const bool standard = Mu == 0.0 && Sigma == 1.0;
  for (int b = 0; b < n; b += kBlock) {
    const int m = std::min(kBlock, n - b);
    for (int j = 0; j < m; ++j) t[j] = -(standard ? x[b + j] : (x[b + j] - Mu) / Sigma) * kInvSqrt2Hi;
    erfcBlock(t, e, m);
    for (int j = 0; j < m; ++j) {
      if (t[j] > 1.0 && t[j] < 27.0) {
        DD z = standardize(x[b + j], Mu, Sigma);
        d[b + j] = halfErfcCorrected(z.hi, z.lo, t[j], e[j]);
      } else {
        d[b + j] = 0.5 * e[j];
      }
    }
  }
}

// Standard normal density at zh + zl: exp(-z^2/2) with z^2 exact in double-double,
// since exp turns an absolute error in its argument into the same relative error.
double normalDensity(double zh, double zl) {
  if (std::isnan(zh)) return kNaN;
  double hh = zh * zh;
  if (!(hh < 1500.0)) return 0.0;  // exp(-750) underflows; also the infinities
  double hl = std::fma(zh, zh, -hh) + 2.0 * zh * zl;
  double v = std::exp(-0.5 * hh);
  return (v - v * (0.5 * hl)) * kInvSqrt2Pi;
}

// The standard normal quantile by Wichura's rational approximations (Algorithm
// AS 241, Applied Statistics 37, 1988, pp. 477-484: PPND16, relative error about
// 1e-16): one for |p - 1/2| <= 0.425, two in r = sqrt(-ln(smaller tail)) for the
// tails, which reach the subnormal range. The smaller tail 1 - p is exact for
// p >= 1/2 (Sterbenz). A few products and one logarithm: about a sixth of the cost
// of the extended-precision inverse error function.
template <std::size_t N>
double horner(const double (&c)[N], double x) {
  double v = c[N - 1];
  for (std::size_t i = N - 1; i-- > 0;) v = v * x + c[i];
  return v;
}

double standardNormalQuantile(double p) {
  static constexpr double a[] = {3.3871328727963666080e0, 1.3314166789178437745e2, 1.9715909503065514427e3,
                                 1.3731693765509461125e4, 4.5921953931549871457e4, 6.7265770927008700853e4,
                                 3.3430575583588128105e4, 2.5090809287301226727e3};
  static constexpr double b[] = {1.0,
                                 4.2313330701600911252e1, 6.8718700749205790830e2, 5.3941960214247511077e3,
                                 2.1213794301586595867e4, 3.9307895800092710610e4, 2.8729085735721942674e4,
                                 5.2264952788528545610e3};
  static constexpr double c[] = {1.42343711074968357734e0, 4.63033784615654529590e0, 5.76949722146069140550e0,
                                 3.64784832476320460504e0, 1.27045825245236838258e0, 2.41780725177450611770e-1,
                                 2.27238449892691845833e-2, 7.74545014278341407640e-4};
  static constexpr double d[] = {1.0,
                                 2.05319162663775882187e0, 1.67638483018380384940e0, 6.89767334985100004550e-1,
                                 1.48103976427480074590e-1, 1.51986665636164571966e-2, 5.47593808499534494600e-4,
                                 1.05075007164441684324e-9};
  static constexpr double e[] = {6.65790464350110377720e0, 5.46378491116411436990e0, 1.78482653991729133580e0,
                                 2.96560571828504891230e-1, 2.65321895265761230930e-2, 1.24266094738807843860e-3,
                                 2.71155556874348757815e-5, 2.01033439929228813265e-7};
  static constexpr double f[] = {1.0,
                                 5.99832206555887937690e-1, 1.36929880922735805310e-1, 1.48753612908506148525e-2,
                                 7.86869131145613259100e-4, 1.84631831751005468180e-5, 1.42151175831644588870e-7,
                                 2.04426310338993978564e-15};
  if (p == 0.0) return -kInf;
  if (p == 1.0) return kInf;
  const double q = p - 0.5;
  if (std::fabs(q) <= 0.425) {
    const double r = 0.180625 - q * q;
    return q * horner(a, r) / horner(b, r);
  }
  double r = std::sqrt(-std::log(q < 0.0 ? p : 1.0 - p));
  double z;
  if (r <= 5.0) {
    r -= 1.6;
    z = horner(c, r) / horner(d, r);
  } else {
    r -= 5.0;
    z = horner(e, r) / horner(f, r);
  }
  return q < 0.0 ? -z : z;
}

// ---------------------------------------------------------------------------
// Incomplete gamma and beta functions at an exact argument.

// Both tails and the density (the derivative of the lower tail). The smaller tail is
// computed directly and the other as its complement.
struct Tails {
  double lower, upper, density;
};

Tails fromLower(double lower, double density) {
  lower = unitClamp(lower);
  return {lower, 1.0 - lower, density};
}
Tails fromUpper(double upper, double density) {
  upper = unitClamp(upper);
  return {1.0 - upper, upper, density};
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

// ---------------------------------------------------------------------------
// Gamma family: gamma, chi-square, Poisson.

bool validGamma(double A, double B) { return positiveFinite(A) && positiveFinite(B); }

// P(X <= x) (or P(X > x) when upper) for X gamma with shape A and scale B.
double gammaTail(double x, double A, double B, bool upper) {
  if (std::isnan(x)) return kNaN;
  if (x <= 0.0) return upper ? 1.0 : 0.0;
  if (x == kInf) return upper ? 0.0 : 1.0;
  DD z = B == 1.0 ? DD{x, 0.0} : DD{x, 0.0} / B;
  if (z.hi == kInf) return upper ? 0.0 : 1.0;
  if (z.hi < DBL_MIN) {
    // x/B below the normal range: P(A, z) = z^A / Gamma(A + 1) (1 + O(z)).
    double lg = noThrow([&] { return bm::lgamma(A + 1.0, FastPolicy()); });
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
    double lg = noThrow([&] { return bm::lgamma(A, FastPolicy()); });
    return std::exp((A - 1.0) * (std::log(x) - std::log(B)) - lg) / B;
  }
  double f = gammaDensityAt(A, z.hi);
  // d/dz ln f = (A - 1)/z - 1.
  if (z.lo != 0.0 && f > 0.0 && std::isfinite(f)) f += f * z.lo * ((A - 1.0) / z.hi - 1.0);
  return f / B;
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

// ---------------------------------------------------------------------------
// Beta family: Student t, F (and below: beta, binomial, negative binomial).

// I_w(a, b) for w = ratio below 1e-30 whose power w^a is known: w^a / (a B(a, b)) (1 + O(w)).
double ibetaLeadingTerm(double wa, double a, double b) {
  return wa / (a * noThrow([&] { return bm::beta(a, b, FastPolicy()); }));
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
  double norm = std::sqrt(nu) * noThrow([&] { return bm::beta(0.5 * nu, 0.5, FastPolicy()); });
  if (ax > 1e15 * std::sqrt(nu)) return scaledPower(nu, e, ax, nu + 1.0) / norm;
  // (1 + x^2/nu)^-(nu+1)/2 = w^e with w = nu/(nu + x^2) in double-double; pow is
  // within an ulp for an exact base, and the base's own error costs e w.lo/w.hi.
  DD w = DD{nu, 0.0} / nuPlusSquare(nu, ax);
  double f = std::pow(w.hi, e);
  return (f + f * e * (w.lo / w.hi)) / norm;
}

double studentQuantile(double p, double nu) {
  if (p == 0.0) return -kInf;
  if (p == 1.0) return kInf;
  bm::students_t_distribution<double, PrecisePolicy> dist(nu);
  if (p <= 0.5) return noThrow([&] { return bm::quantile(dist, p); });
  return -noThrow([&] { return bm::quantile(dist, 1.0 - p); });
}

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

bool validBeta(double A, double B) { return positiveFinite(A) && positiveFinite(B); }

// Beta density at an edge of (0, 1), as its limit: the edge's exponent s - 1 (s the
// shape on that side) decides between +Inf, 0 and the constant 1/B(1, other) = other.
double betaEdgeDensity(double s, double other) { return s < 1.0 ? kInf : (s == 1.0 ? other : 0.0); }

// ---------------------------------------------------------------------------
// Discrete inverses.

// The smallest whole k >= 0 with cdf(k) >= p, from a guess (usually exact or off by
// one): gallop away from the guess to a bracket, then bisect. Deciding by the same
// cdf that the library exports keeps the inverse consistent with it at every step.
template <class Cdf>
double smallestWholeAtLeast(double p, double guess, Cdf cdf) {
  constexpr double kLimit = 9007199254740992.0;  // 2^53: beyond it the whole numbers are not all doubles
  double k = std::isfinite(guess) && guess >= 0.0 ? std::floor(std::fmin(guess, kLimit)) : 0.0;
  double lo, hi;  // invariant: cdf(lo) < p (lo = -1: none below), cdf(hi) >= p
  if (cdf(k) >= p) {
    hi = k;
    for (double step = 1.0;; step *= 2.0) {
      lo = hi - step;
      if (lo < 0.0) {
        lo = -1.0;
        if (cdf(0.0) >= p) return 0.0;
        break;
      }
      if (!(cdf(lo) >= p)) break;
      hi = lo;
    }
  } else {
    lo = k;
    for (double step = 1.0;; step *= 2.0) {
      hi = lo + step;
      if (hi > kLimit) return kNaN;
      double c = cdf(hi);
      if (std::isnan(c)) return kNaN;
      if (c >= p) break;
      lo = hi;
    }
  }
  while (hi - lo > 1.0) {
    double mid = std::floor(0.5 * (lo + hi));
    if (cdf(mid) >= p) hi = mid;
    else lo = mid;
  }
  return hi;
}

// Where the inverse of a discrete law starts its search: the Cornish-Fisher
// quantile mean + sd (z + skew (z^2 - 1)/6), z the normal quantile at p. Boost's
// own discrete quantile never returns for a Poisson mean of 1e300.
double cornishFisherGuess(double p, double mean, double sd, double skew) {
  double z = standardNormalQuantile(p);
  return std::floor(mean + sd * (z + skew * (z * z - 1.0) / 6.0));
}

bool validBinom(int N, double P) { return N >= 0 && validProb(P); }
bool validPoisson(double Lambda) { return Lambda >= 0.0 && Lambda < kInf; }
bool validNegBinom(int R, double P) { return R >= 1 && P > 0.0 && P <= 1.0; }

// ---------------------------------------------------------------------------
// Vector forms.

// Dst sized like X, with the storage to read and to write. Dst may be X itself; a
// Dst that only partly overlaps X's storage (two views of one buffer) reads from a
// copy of X, so that every input is read before any output is written.
struct Mapping {
  const double* x;
  double* d;
  int n;
  std::vector<double> copy;
};

Mapping prepareMapping(const TDenseKalpa& X, TDenseKalpa& Dst) {
  if (X.Complex()) ERaise(msg::ComplexNotSupported);
  if (&Dst != &X) Dst.Size(X);
  Mapping m{X.data(), Dst.data(), X.Length(), {}};
  if (m.n > 0 && m.x != m.d && m.x < m.d + m.n && m.d < m.x + m.n) {
    m.copy.assign(m.x, m.x + m.n);
    m.x = m.copy.data();
  }
  return m;
}

// Dst[i] = f(X[i]).
template <class F>
void mapElements(const TDenseKalpa& X, TDenseKalpa& Dst, F f) {
  Mapping m = prepareMapping(X, Dst);
  for (int i = 0; i < m.n; ++i) m.d[i] = f(m.x[i]);
}

}  // namespace

// ===========================================================================
// Normal

double NormalCDF(double x, double Mu, double Sigma) {
  if (!validNormal(Mu, Sigma)) return kNaN;
  DD z = standardize(x, Mu, Sigma);
  return normalLowerTail(z.hi, z.lo);
}

double NormalCDFc(double x, double Mu, double Sigma) {
  if (!validNormal(Mu, Sigma)) return kNaN;
  DD z = standardize(x, Mu, Sigma);
  return normalLowerTail(-z.hi, -z.lo);
}

double NormalPDF(double x, double Mu, double Sigma) {
  if (!validNormal(Mu, Sigma)) return kNaN;
  DD z = standardize(x, Mu, Sigma);
  return normalDensity(z.hi, z.lo) / Sigma;
}

double NormalCDFInv(double p, double Mu, double Sigma) {
  if (!validNormal(Mu, Sigma) || !validProb(p)) return kNaN;
  return std::fma(Sigma, standardNormalQuantile(p), Mu);
}

void NormalCDF(const TDenseKalpa& X, double Mu, double Sigma, TDenseKalpa& Dst) {
  if (!validNormal(Mu, Sigma)) return mapElements(X, Dst, [](double) { return kNaN; });
  Mapping m = prepareMapping(X, Dst);
  normalCdfInto(m.x, m.d, m.n, Mu, Sigma);
}

void NormalCDFInv(const TDenseKalpa& X, double Mu, double Sigma, TDenseKalpa& Dst) {
  mapElements(X, Dst, [=](double p) { return NormalCDFInv(p, Mu, Sigma); });
}

// ===========================================================================
// Student t

double StudentCDF(double x, int Nu) {
  if (Nu <= 0) return kNaN;
  return x <= 0.0 ? studentLowerTail(x, Nu) : 1.0 - studentLowerTail(-x, Nu);
}

double StudentCDFc(double x, int Nu) {
  if (Nu <= 0) return kNaN;
  return x >= 0.0 ? studentLowerTail(-x, Nu) : 1.0 - studentLowerTail(x, Nu);
}

double StudentPDF(double x, int Nu) {
  if (Nu <= 0) return kNaN;
  return studentDensity(x, Nu);
}

double StudentCDFInv(double p, int Nu) {
  if (Nu <= 0 || !validProb(p)) return kNaN;
  return studentQuantile(p, Nu);
}

// ===========================================================================
// Chi-square: the gamma distribution with shape Nu/2 and scale 2.

double ChiSquareCDF(double x, int Nu) { return Nu <= 0 ? kNaN : gammaTail(x, 0.5 * Nu, 2.0, false); }
double ChiSquareCDFc(double x, int Nu) { return Nu <= 0 ? kNaN : gammaTail(x, 0.5 * Nu, 2.0, true); }
double ChiSquarePDF(double x, int Nu) { return Nu <= 0 ? kNaN : gammaDensity(x, 0.5 * Nu, 2.0); }

double ChiSquareCDFInv(double p, int Nu) {
  if (Nu <= 0 || !validProb(p)) return kNaN;
  return 2.0 * gammaQuantile(p, 0.5 * Nu);
}

// ===========================================================================
// F

double FCDF(double x, int Nu1, int Nu2) { return Nu1 <= 0 || Nu2 <= 0 ? kNaN : fTail(x, Nu1, Nu2, false); }
double FCDFc(double x, int Nu1, int Nu2) { return Nu1 <= 0 || Nu2 <= 0 ? kNaN : fTail(x, Nu1, Nu2, true); }
double FPDF(double x, int Nu1, int Nu2) { return Nu1 <= 0 || Nu2 <= 0 ? kNaN : fDensity(x, Nu1, Nu2); }

double FCDFInv(double p, int Nu1, int Nu2) {
  if (Nu1 <= 0 || Nu2 <= 0 || !validProb(p)) return kNaN;
  return fQuantile(p, Nu1, Nu2);
}

void FCDFInv(double p, const TDenseKalpa& Nu1, const TDenseKalpa& Nu2, TDenseKalpa& Dst) {
  if (Nu1.Complex() || Nu2.Complex()) ERaise(msg::ComplexNotSupported);
  if (Nu1.Length() != Nu2.Length()) ERaise(msg::SizeMismatch);
  // Degrees of freedom outside the whole numbers 1 .. INT_MAX are invalid parameters.
  auto df = [](double v) { return v >= 1.0 && v <= 2147483647.0 && isWhole(v) ? static_cast<int>(v) : 0; };
  const int n = Nu1.Length();
  std::vector<double> out(static_cast<std::size_t>(n));
  for (int i = 0; i < n; ++i) out[i] = FCDFInv(p, df(Nu1.data()[i]), df(Nu2.data()[i]));
  if (&Dst != &Nu1) Dst.Size(Nu1);
  for (int i = 0; i < n; ++i) Dst.data()[i] = out[i];
}

// ===========================================================================
// Gamma, shape A and scale B

double GammaCDF(double x, double A, double B) { return validGamma(A, B) ? gammaTail(x, A, B, false) : kNaN; }
double GammaCDFc(double x, double A, double B) { return validGamma(A, B) ? gammaTail(x, A, B, true) : kNaN; }
double GammaPDF(double x, double A, double B) { return validGamma(A, B) ? gammaDensity(x, A, B) : kNaN; }

double GammaCDFInv(double p, double A, double B) {
  if (!validGamma(A, B) || !validProb(p)) return kNaN;
  return B * gammaQuantile(p, A);
}

void GammaCDF(const TDenseKalpa& X, double A, double B, TDenseKalpa& Dst) {
  mapElements(X, Dst, [=](double x) { return GammaCDF(x, A, B); });
}

void GammaPDF(const TDenseKalpa& X, double A, double B, TDenseKalpa& Dst) {
  mapElements(X, Dst, [=](double x) { return GammaPDF(x, A, B); });
}

// ===========================================================================
// Beta, shapes A and B

double BetaCDF(double x, double A, double B) {
  if (!validBeta(A, B) || std::isnan(x)) return kNaN;
  if (x <= 0.0) return 0.0;
  if (x >= 1.0) return 1.0;
  return betaTails(A, B, x).lower;
}

double BetaPDF(double x, double A, double B) {
  if (!validBeta(A, B) || std::isnan(x)) return kNaN;
  if (x < 0.0 || x > 1.0) return 0.0;
  if (x == 0.0) return betaEdgeDensity(A, B);
  if (x == 1.0) return betaEdgeDensity(B, A);
  return betaDensityAt(A, B, x);
}

double BetaCDFInv(double p, double A, double B) {
  if (!validBeta(A, B) || !validProb(p)) return kNaN;
  if (p == 0.0) return 0.0;
  if (p == 1.0) return 1.0;
  return betaQuantile(p, A, B);
}

void BetaCDF(const TDenseKalpa& X, double A, double B, TDenseKalpa& Dst) {
  mapElements(X, Dst, [=](double x) { return BetaCDF(x, A, B); });
}

void BetaPDF(const TDenseKalpa& X, double A, double B, TDenseKalpa& Dst) {
  mapElements(X, Dst, [=](double x) { return BetaPDF(x, A, B); });
}

// ===========================================================================
// Weibull, F(x) = 1 - exp(-A x^B): closed forms.

double WeibullCDF(double x, double A, double B) {
  if (!validGamma(A, B) || std::isnan(x)) return kNaN;
  if (x <= 0.0) return 0.0;
  return -std::expm1(-A * std::pow(x, B));
}

// A B x^(B-1) exp(-A x^B). The exponent's relative rounding error (pow and the
// product, about 1.5 eps) returns as A x^B times that in the density: 1e-14 at
// A x^B = 50, 2e-13 in the far tail at 700.
double WeibullPDF(double x, double A, double B) {
  if (!validGamma(A, B) || std::isnan(x)) return kNaN;
  if (x < 0.0 || x == kInf) return 0.0;
  if (x == 0.0) return B < 1.0 ? kInf : (B == 1.0 ? A : 0.0);
  double u = A * std::pow(x, B);
  double f = A * B * std::pow(x, B - 1.0) * std::exp(-u);
  if (std::isfinite(f) && (f > 0.0 || u > 745.0)) return f;
  // A power that overflows or underflows on its own: combine in logarithms.
  return std::exp(std::log(A * B) + (B - 1.0) * std::log(x) - u);
}

double WeibullCDFInv(double p, double A, double B) {
  if (!validGamma(A, B) || !validProb(p)) return kNaN;
  if (p == 1.0) return kInf;
  return std::pow(-std::log1p(-p) / A, 1.0 / B);
}

void WeibullCDF(const TDenseKalpa& X, double A, double B, TDenseKalpa& Dst) {
  mapElements(X, Dst, [=](double x) { return WeibullCDF(x, A, B); });
}

void WeibullPDF(const TDenseKalpa& X, double A, double B, TDenseKalpa& Dst) {
  mapElements(X, Dst, [=](double x) { return WeibullPDF(x, A, B); });
}

// ===========================================================================
// Exponential with mean Mu

double ExpCDF(double x, double Mu) {
  if (!positiveFinite(Mu) || std::isnan(x)) return kNaN;
  if (x <= 0.0) return 0.0;
  return -std::expm1(-x / Mu);
}

double ExpPDF(double x, double Mu) {
  if (!positiveFinite(Mu) || std::isnan(x)) return kNaN;
  if (x < 0.0) return 0.0;
  // exp(-(u.hi + u.lo)) with the quotient's rounding error removed.
  DD u = DD{x, 0.0} / Mu;
  double v = std::exp(-u.hi);
  if (v > 0.0) v -= v * u.lo;
  return v / Mu;
}

double ExpCDFInv(double p, double Mu) {
  if (!positiveFinite(Mu) || !validProb(p)) return kNaN;
  return -Mu * std::log1p(-p);
}

void ExpCDF(const TDenseKalpa& X, double Mu, TDenseKalpa& Dst) {
  mapElements(X, Dst, [=](double x) { return ExpCDF(x, Mu); });
}

// ===========================================================================
// Rayleigh with scale B: F(x) = 1 - exp(-x^2/(2 B^2))

double RayleighCDF(double x, double B) {
  if (!positiveFinite(B) || std::isnan(x)) return kNaN;
  if (x <= 0.0) return 0.0;
  double r = x / B;
  return -std::expm1(-0.5 * r * r);
}

double RayleighPDF(double x, double B) {
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

double RayleighCDFInv(double p, double B) {
  if (!positiveFinite(B) || !validProb(p)) return kNaN;
  return B * std::sqrt(-2.0 * std::log1p(-p));
}

void RayleighCDF(const TDenseKalpa& X, double B, TDenseKalpa& Dst) {
  mapElements(X, Dst, [=](double x) { return RayleighCDF(x, B); });
}

// ===========================================================================
// Binomial: P(X <= k) = I_(1-P)(N - k, k + 1), taken as ibetac(k + 1, N - k, P) so
// that the exact P is the argument.

double BinomCDF(double x, int N, double P) {
  if (!validBinom(N, P) || std::isnan(x)) return kNaN;
  if (x < 0.0) return 0.0;
  double k = std::floor(x);
  if (k >= N) return 1.0;
  if (P == 0.0) return 1.0;
  if (P == 1.0) return 0.0;
  return betaTails(k + 1.0, N - k, P).upper;
}

double BinomCDFc(double x, int N, double P) {
  if (!validBinom(N, P) || std::isnan(x)) return kNaN;
  if (x < 0.0) return 1.0;
  double k = std::floor(x);
  if (k >= N) return 0.0;
  if (P == 0.0) return 0.0;
  if (P == 1.0) return 1.0;
  return betaTails(k + 1.0, N - k, P).lower;
}

double BinomPDF(double x, int N, double P) {
  if (!validBinom(N, P) || std::isnan(x)) return kNaN;
  if (x < 0.0 || x > N || !isWhole(x)) return 0.0;
  if (P == 0.0) return x == 0.0 ? 1.0 : 0.0;
  if (P == 1.0) return x == N ? 1.0 : 0.0;
  // C(N, k) P^k (1-P)^(N-k) = I'_P(k + 1, N - k + 1)/(N + 1).
  return std::min(betaDensityAt(x + 1.0, N - x + 1.0, P) / (N + 1.0), 1.0);
}

// ===========================================================================
// Poisson with mean Lambda (Lambda = 0: all mass at 0): P(X <= k) = Q(k + 1, Lambda).

double PoissonCDF(double x, double Lambda) {
  if (!validPoisson(Lambda) || std::isnan(x)) return kNaN;
  if (x < 0.0) return 0.0;
  if (Lambda == 0.0 || x == kInf) return 1.0;
  double k = std::floor(x);
  return gammaTails(k + 1.0, Lambda).upper;
}

double PoissonCDFc(double x, double Lambda) {
  if (!validPoisson(Lambda) || std::isnan(x)) return kNaN;
  if (x < 0.0) return 1.0;
  if (Lambda == 0.0 || x == kInf) return 0.0;
  double k = std::floor(x);
  return gammaTails(k + 1.0, Lambda).lower;
}

double PoissonPDF(double x, double Lambda) {
  if (!validPoisson(Lambda) || std::isnan(x)) return kNaN;
  if (x < 0.0 || !isWhole(x) || x == kInf) return 0.0;
  if (Lambda == 0.0) return x == 0.0 ? 1.0 : 0.0;
  return std::min(gammaDensityAt(x + 1.0, Lambda), 1.0);
}

double PoissonCDFInv(double p, double Lambda) {
  if (!validPoisson(Lambda) || !validProb(p)) return kNaN;
  if (Lambda == 0.0 || p == 0.0) return 0.0;
  if (p == 1.0) return kInf;
  double sd = std::sqrt(Lambda);
  return smallestWholeAtLeast(p, cornishFisherGuess(p, Lambda, sd, 1.0 / sd),
                              [&](double k) { return PoissonCDF(k, Lambda); });
}

// ===========================================================================
// Negative binomial: failures before the R-th success; P(X <= k) = I_P(R, k + 1).

double NegBinomCDF(double x, int R, double P) {
  if (!validNegBinom(R, P) || std::isnan(x)) return kNaN;
  if (x < 0.0) return 0.0;
  if (P == 1.0 || x == kInf) return 1.0;
  double k = std::floor(x);
  return betaTails(R, k + 1.0, P).lower;
}

double NegBinomCDFc(double x, int R, double P) {
  if (!validNegBinom(R, P) || std::isnan(x)) return kNaN;
  if (x < 0.0) return 1.0;
  if (P == 1.0 || x == kInf) return 0.0;
  double k = std::floor(x);
  return betaTails(R, k + 1.0, P).upper;
}

double NegBinomPDF(double x, int R, double P) {
  if (!validNegBinom(R, P) || std::isnan(x)) return kNaN;
  if (x < 0.0 || !isWhole(x) || x == kInf) return 0.0;
  if (P == 1.0) return x == 0.0 ? 1.0 : 0.0;
  // C(k + R - 1, k) P^R (1-P)^k = P/(R + k) I'_P(R, k + 1).
  return std::min(P / (R + x) * betaDensityAt(R, x + 1.0, P), 1.0);
}

double NegBinomCDFInv(double p, int R, double P) {
  if (!validNegBinom(R, P) || !validProb(p)) return kNaN;
  if (P == 1.0 || p == 0.0) return 0.0;
  if (p == 1.0) return kInf;
  double q = 1.0 - P, sd = std::sqrt(R * q) / P;
  return smallestWholeAtLeast(p, cornishFisherGuess(p, R * q / P, sd, (2.0 - P) / std::sqrt(R * q)),
                              [&](double k) { return NegBinomCDF(k, R, P); });
}

// ===========================================================================

double ErfInv(double x) {
  if (!(x >= -1.0 && x <= 1.0)) return kNaN;
  if (x == 1.0) return kInf;
  if (x == -1.0) return -kInf;
  return noThrow([&] { return bm::erf_inv(x, PrecisePolicy()); });
}

}  // namespace statkit
