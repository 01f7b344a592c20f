#pragma once
// Exact samplers on the words of one stream: normal (ziggurat, Box-Muller),
// gamma (Marsaglia-Tsang, the library's only gamma sampler), Poisson
// (inversion, PTRS), binomial (BTRD), hypergeometric (HRUA) and guide-table
// inversion for small discrete laws.
// Each method is exact: its only departures from the law are the rounding of
// double arithmetic and the 2^-53 resolution of the uniforms.

#include <bit>
#include <cmath>
#include <cstdint>
#include <vector>

#include "array/checks.h"
#include "array/random/philox.h"
#include "statkit/array/Errors.h"
#include "statkit/array/Kalpa.h"

namespace statkit::rng {

// --- the checks every stream method makes ------------------------------------------

/// The storage of a real destination; a complex one raises "Complex data not supported".
inline double* RealDestination(TKalpa& Dst) {
  detail::RequireReal(Dst);
  return Dst.data();
}
/// Raises "Invalid parameter" unless \p ok (NaN comparisons are false, so NaN is refused).
inline void Require(bool ok) {
  if (!ok) ERaise(msg::InvalidParameter);
}

inline constexpr double kLogSqrt2Pi = 0.91893853320467274178;  // log(sqrt(2 pi))

// --- log-factorials ------------------------------------------------------------

/// log Gamma(k + 1) - [(k + 1/2) log(k + 1) - (k + 1) + log sqrt(2 pi)], whole k >= 0:
/// the remainder of Stirling's series. A table of exact factorials below 16,
/// the series through its n^-11 term above (truncation error below 1e-18).
double StirlingRemainder(double k);

/// log(a!) - log(b!) for whole a, b >= 0, without the cancellation of two large
/// log-factorials: (a - b) log(b + 1) + (a + 1/2) log1p((a - b)/(b + 1)) - (a - b) + remainders.
inline double LogFactorialRatio(double a, double b) {
  double d = a - b;
  return d * std::log(b + 1.0) + (a + 0.5) * std::log1p(d / (b + 1.0)) - d + StirlingRemainder(a) -
         StirlingRemainder(b);
}

// --- memo of log-probabilities ----------------------------------------------------

/// The rejection methods below end, for a fraction of their candidates, in a
/// test against a log-probability. A fill draws many values with the same
/// parameters, so the log-probabilities of the values near the mean are kept
/// as they are first computed.
class LogMemo {
public:
  /// Keeps the whole numbers within \p spread of \p centre, but no more than
  /// about as many as the fill draws (\p draws) and at most 2^16.
  void Reserve(double centre, double spread, double draws) {
    double halfWidth = std::fmin(spread, draws);
    if (!(halfWidth >= 1.0)) return;
    double width = std::fmin(std::ceil(2.0 * halfWidth) + 1.0, 65536.0);
    first_ = std::floor(centre - 0.5 * (width - 1.0));
    values_.assign(static_cast<std::size_t>(width), kUnknown);
  }
  template <class F>
  double operator()(double k, F&& f) {
    double at = k - first_;
    if (!(at >= 0.0 && at < static_cast<double>(values_.size()))) return f(k);
    double& v = values_[static_cast<std::size_t>(at)];
    if (v == kUnknown) v = f(k);
    return v;
  }

private:
  static constexpr double kUnknown = 1.0;  // a log-probability relative to the mode is <= 0
  double first_ = 0.0;
  std::vector<double> values_;
};

// --- normal ----------------------------------------------------------------------

/// Tables of the 256-layer ziggurat for exp(-x^2/2) (Marsaglia and Tsang, "The
/// ziggurat method for generating random variables", J. Stat. Softw. 5(8), 2000).
struct ZigguratTables {
  static constexpr double kR = 3.6541528853610088;  // right edge of the base layer
  double x[257];                                   // layer edges, x[1] = R, x[256] = 0
  double f[257];                                   // exp(-x^2/2) at the edges
  double scale[256];                               // x[i] 2^-52: 52-bit integer -> abscissa in layer i
  std::uint64_t inner[256];                        // 2^52 x[i+1]/x[i]: below it, inside the curve
};
const ZigguratTables& Ziggurat();

/// Marsaglia's (1964) exact sampler of the normal tail beyond r.
inline double NormalTail(BitSource& bits, double r) {
  for (;;) {
    double x = -std::log(bits.U01Pos()) / r;
    double y = -std::log(bits.U01Pos());
    if (y + y >= x * x) return r + x;
  }
}

/// \p x with its sign flipped when \p bit is set: a random sign bit taken
/// without a branch, which would be mispredicted half the time.
inline double WithSignBit(double x, std::uint64_t bit) {
  return std::bit_cast<double>(std::bit_cast<std::uint64_t>(x) ^ (static_cast<std::uint64_t>(bit != 0) << 63));
}

/// The rare part of the ziggurat: the tail beyond the base layer, the wedge
/// test and the retries. Kept out of line so the common path keeps its values
/// in registers.
[[gnu::noinline, gnu::cold]] double NormalZigguratSlow(BitSource& bits, const ZigguratTables& t, std::uint64_t w);

/// A standard normal variate. One 64-bit word gives the layer (8 bits), the
/// sign (1 bit) and a 52-bit abscissa, so the three are independent (Doornik,
/// "An improved ziggurat method to generate normal random samples", 2005).
/// About 99% of the words land inside a layer's inner rectangle.
inline double NormalZiggurat(BitSource& bits, const ZigguratTables& t) {
  std::uint64_t w = bits.Next64();
  unsigned i = static_cast<unsigned>(w & 0xFF);
  std::uint64_t j = w >> 12;
  if (j < t.inner[i]) return WithSignBit(static_cast<double>(j) * t.scale[i], w & 0x100);
  return NormalZigguratSlow(bits, t, w);
}

// --- gamma -------------------------------------------------------------------------

/// Gamma(a, 1), a > 0, by Marsaglia and Tsang, "A simple method for generating
/// gamma variables", ACM TOMS 26(3), 2000: for a shape s >= 1, d (1 + c X)^3
/// with X normal, d = s - 1/3, c = 1/sqrt(9 d), accepted by a squeeze or the
/// exact test (acceptance above 95% at every shape, where Best's XG accepts
/// 62% at shape 2.5); a shape a < 1 is G(a + 1) U^(1/a). Log() gives the
/// logarithm, in which the power stays a sum, so shapes near 0 (whose
/// variates underflow) keep their information for a ratio such as the beta's.
class GammaMT {
public:
  explicit GammaMT(double a) : boosted_(a < 1.0), inverseShape_(1.0 / a) {
    d_ = (boosted_ ? a + 1.0 : a) - 1.0 / 3.0;
    c_ = 1.0 / std::sqrt(9.0 * d_);
  }
  double operator()(BitSource& bits, const ZigguratTables& t) {
    double g = shapeAtLeastOne(bits, t);
    // U^(1/a) as exp(log(U)/a): half the time of pow, at a relative error of
    // |log U|/a eps, which stays at the rounding of a value that does not underflow.
    return boosted_ ? g * std::exp(std::log(bits.U01Pos()) * inverseShape_) : g;
  }
  double Log(BitSource& bits, const ZigguratTables& t) {
    double g = std::log(shapeAtLeastOne(bits, t));
    return boosted_ ? g + std::log(bits.U01Pos()) * inverseShape_ : g;
  }

private:
  double shapeAtLeastOne(BitSource& bits, const ZigguratTables& t) const {
    for (;;) {
      double x = NormalZiggurat(bits, t);
      double v = 1.0 + c_ * x;
      if (v <= 0.0) continue;
      v = v * v * v;
      double u = bits.U01Pos();
      double x2 = x * x;
      if (u < 1.0 - 0.0331 * x2 * x2 || std::log(u) < 0.5 * x2 + d_ * (1.0 - v + std::log(v))) return d_ * v;
    }
  }
  bool boosted_;
  double inverseShape_, d_, c_;
};

// --- Poisson -------------------------------------------------------------------------

/// Inversion by sequential search from 0, for small means (cost grows with lambda).
inline double PoissonBySearch(BitSource& bits, double lambda) {
  double u = bits.U01();
  double p = std::exp(-lambda), cdf = p, k = 0.0;
  while (cdf <= u && p > 0.0) {
    k += 1.0;
    p *= lambda / k;
    cdf += p;
  }
  return k;
}

/// PTRS, the transformed rejection with squeeze of Hormann, "The transformed
/// rejection method for generating Poisson random variables", Insurance:
/// Mathematics and Economics 12, 1993; for lambda >= 10.
class PoissonPTRS {
public:
  /// \p draws: how many values the caller draws with this mean (sizes the memo).
  PoissonPTRS(double lambda, double draws) : lambda_(lambda) {
    double s = std::sqrt(lambda);
    b_ = 0.931 + 2.53 * s;
    a_ = -0.059 + 0.02483 * b_;
    invAlpha_ = 1.1239 + 1.1328 / (b_ - 3.4);
    vr_ = 0.9277 - 3.6224 / (b_ - 2.0);
    memo_.Reserve(lambda, 8.0 * s + 16.0, draws);
  }
  double operator()(BitSource& bits) {
    for (;;) {
      double u = bits.U01() - 0.5;
      double v = bits.U01();
      double us = 0.5 - std::fabs(u);
      double k = std::floor((2.0 * a_ / us + b_) * u + lambda_ + 0.43);
      if (us >= 0.07 && v <= vr_) return k;
      if (k < 0.0 || (us < 0.013 && v > us)) continue;
      if (std::log(v * invAlpha_ / (a_ / (us * us) + b_)) <= memo_(k, [this](double x) { return logPmf(x); }))
        return k;
    }
  }

private:
  // log(lambda^k e^-lambda / k!) with d = k + 1 - lambda; the terms of size k
  // cancel analytically, so the error stays near eps sqrt(lambda).
  double logPmf(double k) const {
    double d = k + 1.0 - lambda_;
    return d - k * std::log1p(d / lambda_) - 0.5 * std::log(k + 1.0) - kLogSqrt2Pi - StirlingRemainder(k);
  }
  double lambda_, a_, b_, invAlpha_, vr_;
  LogMemo memo_;
};

/// One Poisson variate of any mean (the mean may change from call to call); an
/// infinite mean (an overflowed product) gives +INF.
inline double PoissonAny(BitSource& bits, double lambda) {
  if (lambda < 10.0) return PoissonBySearch(bits, lambda);
  if (!std::isfinite(lambda)) return lambda;
  return PoissonPTRS(lambda, 0.0)(bits);
}

// --- guide-table inversion -----------------------------------------------------------

/// Inversion of a unimodal discrete law through its cumulative table and a
/// guide table (Chen and Asau 1974; Devroye, Non-Uniform Random Variate
/// Generation, 1986, III.2.4): one uniform and O(1) comparisons per variate.
/// The table spans the values whose probability is above 2^-70 of the mode's,
/// far below the 2^-53 resolution of the uniform.
class GuideTable {
public:
  /// \p ratio(k) = p(k + 1) / p(k); the support is [lo, hi], the mode inside it.
  template <class Ratio>
  void Build(double lo, double hi, double mode, Ratio ratio) {
    constexpr double kNegligible = 0x1.0p-70;
    std::vector<double> down;  // p(mode - 1), p(mode - 2), ... relative to p(mode)
    double w = 1.0;
    for (double k = mode - 1.0; k >= lo; k -= 1.0) {
      w /= ratio(k);
      if (w < kNegligible) break;
      down.push_back(w);
    }
    lo_ = mode - static_cast<double>(down.size());
    cdf_.assign(down.rbegin(), down.rend());
    cdf_.push_back(1.0);
    w = 1.0;
    for (double k = mode; k < hi; k += 1.0) {
      w *= ratio(k);
      if (w < kNegligible) break;
      cdf_.push_back(w);
    }
    double total = 0.0;
    for (double& c : cdf_) c = (total += c);
    for (double& c : cdf_) c /= total;
    cdf_.back() = 1.0;  // every u < 1 finds its value
    std::size_t n = cdf_.size();
    guide_.resize(n);
    std::size_t i = 0;
    for (std::size_t j = 0; j < n; ++j) {
      double level = static_cast<double>(j) / static_cast<double>(n);
      while (cdf_[i] <= level) ++i;
      guide_[j] = static_cast<std::uint32_t>(i);
    }
  }
  /// The value for a uniform \p u in [0, 1).
  double operator()(double u) const {
    std::size_t i = guide_[static_cast<std::size_t>(u * static_cast<double>(guide_.size()))];
    while (cdf_[i] <= u) ++i;
    return lo_ + static_cast<double>(i);
  }

private:
  double lo_ = 0.0;
  std::vector<double> cdf_;
  std::vector<std::uint32_t> guide_;
};

// --- binomial ---------------------------------------------------------------------------

/// BTRD, the transformed rejection with decomposition of Hormann, "The
/// generation of binomial random variates", J. Statist. Comput. Simul. 46,
/// 1993; for n p >= 10 with p <= 1/2. The final test compares with the exact
/// log-ratio of probabilities to the mode.
class BinomialBTRD {
public:
  /// \p draws: how many values the caller draws with these parameters (sizes the memo).
  BinomialBTRD(double n, double p, double draws) : n_(n) {
    double q = 1.0 - p;
    m_ = std::floor((n + 1.0) * p);
    r_ = p / q;
    logR_ = std::log(r_);
    nr_ = (n + 1.0) * r_;
    npq_ = n * p * q;
    double s = std::sqrt(npq_);
    b_ = 1.15 + 2.53 * s;
    a_ = -0.0873 + 0.0248 * b_ + 0.01 * p;
    c_ = n * p + 0.5;
    alpha_ = (2.83 + 5.1 / b_) * s;
    vr_ = 0.92 - 4.2 / b_;
    urvr_ = 0.86 * vr_;
    memo_.Reserve(m_, 8.0 * s + 16.0, draws);
  }
  double operator()(BitSource& bits) {
    for (;;) {
      double v = bits.U01();
      double u;
      if (v <= urvr_) {  // the central triangle: accepted at once
        u = v / vr_ - 0.43;
        return std::floor((2.0 * a_ / (0.5 - std::fabs(u)) + b_) * u + c_);
      }
      if (v >= vr_) {
        u = bits.U01() - 0.5;
      } else {
        u = v / vr_ - 0.93;
        u = (u < 0.0 ? -0.5 : 0.5) - u;
        v = bits.U01() * vr_;
      }
      double us = 0.5 - std::fabs(u);
      double k = std::floor((2.0 * a_ / us + b_) * u + c_);
      if (k < 0.0 || k > n_) continue;
      v = v * alpha_ / (a_ / (us * us) + b_);
      double km = std::fabs(k - m_);
      if (km <= 15.0) {  // the ratio p(k)/p(m) by its recursion
        double f = 1.0;
        if (m_ < k) {
          for (double i = m_ + 1.0; i <= k; i += 1.0) f *= nr_ / i - r_;
        } else if (m_ > k) {
          for (double i = k + 1.0; i <= m_; i += 1.0) v *= nr_ / i - r_;
        }
        if (v <= f) return k;
        continue;
      }
      if (v == 0.0) return k;
      v = std::log(v);
      double rho = (km / npq_) * (((km / 3.0 + 0.625) * km + 1.0 / 6.0) / npq_ + 0.5);
      double t = -km * km / (2.0 * npq_);
      if (v < t - rho) return k;
      if (v > t + rho) continue;
      if (v <= memo_(k, [this](double x) { return logRatioToMode(x); })) return k;
    }
  }

private:
  double logRatioToMode(double k) const {
    return LogFactorialRatio(m_, k) + LogFactorialRatio(n_ - m_, n_ - k) + (k - m_) * logR_;
  }
  double n_, m_, r_, logR_, nr_, npq_, a_, b_, c_, alpha_, vr_, urvr_;
  LogMemo memo_;
};

// --- hypergeometric ----------------------------------------------------------------------

/// HRUA, the ratio of uniforms with the table-mountain hat of Stadlober, "The
/// ratio of uniforms approach for generating discrete random variates", J.
/// Comput. Appl. Math. 31, 1990 (and Stadlober 1989), for a population of
/// \p total items with \p marked <= total/2 marked and a sample of \p sample <= total/2.
/// The hat covers the whole support (no truncation), so the method is exact.
class HypergeometricHRUA {
public:
  /// \p draws: how many values the caller draws with these parameters (sizes the memo).
  HypergeometricHRUA(double total, double marked, double sample, double draws)
      : N_(total), M_(marked), n_(sample) {
    constexpr double kD1 = 1.7155277699214135;  // 2 sqrt(2/e)
    constexpr double kD2 = 0.8989161620588988;  // 3 - 2 sqrt(3/e)
    double p = marked / total;
    double mean = sample * p;
    double var = (total - sample) / (total - 1.0) * sample * p * (1.0 - p);
    a_ = mean + 0.5;
    h_ = kD1 * std::sqrt(var + 0.5) + kD2;
    m_ = std::floor((sample + 1.0) * (marked + 1.0) / (total + 2.0));
    bound_ = std::fmin(sample, marked) + 1.0;
    memo_.Reserve(mean, 8.0 * std::sqrt(var) + 16.0, draws);
  }
  double operator()(BitSource& bits) {
    for (;;) {
      double u = bits.U01Pos();
      double v = bits.U01();
      double x = a_ + h_ * (v - 0.5) / u;
      if (x < 0.0 || x >= bound_) continue;
      double k = std::floor(x);
      double gp = memo_(k, [this](double x) { return logRatioToMode(x); });
      if (u * (4.0 - u) - 3.0 <= gp) return k;  // squeeze: 2 log u <= u(4 - u) - 3
      if (u * (u - gp) >= 1.0) continue;        // squeeze: 2 log u >= u - 1/u
      if (2.0 * std::log(u) <= gp) return k;
    }
  }

private:
  // log p(k) - log p(mode) from the four factorial ratios of the probability.
  double logRatioToMode(double k) const {
    double rest = N_ - M_ - n_;
    return LogFactorialRatio(m_, k) + LogFactorialRatio(M_ - m_, M_ - k) + LogFactorialRatio(n_ - m_, n_ - k) +
           LogFactorialRatio(rest + m_, rest + k);
  }
  double N_, M_, n_, a_, h_, m_, bound_;
  LogMemo memo_;
};

}  // namespace statkit::rng
