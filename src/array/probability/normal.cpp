// The normal distribution: its distribution function and complement through the C
// library's erfc (glibc's vector erfc for arrays) with the argument's rounding error
// carried in double-double, the density, and the quantile by Wichura's AS 241 (1988).

#include "statkit/array/Probability.h"

#include "array/probability/double_double.h"
#include "array/probability/internal.h"

#if defined(STATKIT_HAVE_LIBMVEC) && defined(__x86_64__)
#include <immintrin.h>
#endif

#include <algorithm>
#include <cmath>

namespace statkit::detail::prob {

using detail::DD;
using detail::twoSum;

namespace {

constexpr double kInvSqrt2Hi = 0.7071067811865476;      // 1/sqrt(2) rounded
constexpr double kInvSqrt2Lo = -4.833646656726457e-17;  // 1/sqrt(2) - kInvSqrt2Hi
constexpr double kInvSqrt2Pi = 0.3989422804014327;

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

}  // namespace

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

namespace {

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

}  // namespace

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

}  // namespace statkit::detail::prob

namespace statkit {

using namespace detail::prob;

// Normal

double NormalCDF(double x, double Mu, double Sigma) noexcept {
  if (!validNormal(Mu, Sigma)) return kNaN;
  DD z = standardize(x, Mu, Sigma);
  return normalLowerTail(z.hi, z.lo);
}

double NormalCDFc(double x, double Mu, double Sigma) noexcept {
  if (!validNormal(Mu, Sigma)) return kNaN;
  DD z = standardize(x, Mu, Sigma);
  return normalLowerTail(-z.hi, -z.lo);
}

double NormalPDF(double x, double Mu, double Sigma) noexcept {
  if (!validNormal(Mu, Sigma)) return kNaN;
  DD z = standardize(x, Mu, Sigma);
  return normalDensity(z.hi, z.lo) / Sigma;
}

double NormalCDFInv(double p, double Mu, double Sigma) noexcept {
  if (!validNormal(Mu, Sigma) || !validProb(p)) return kNaN;
  return std::fma(Sigma, standardNormalQuantile(p), Mu);
}

}  // namespace statkit
