#pragma once
// Double-double arithmetic: a value hi + lo with |lo| <= ulp(hi)/2, about 32
// significant digits (Dekker 1971; Knuth TAOCP 4.2.2). Used where a double's own
// rounding error would be amplified: the exponent of a density in the far tail
// must be right to about 1e-16 absolute when it is near -700. The low parts are
// carried to first order only, which is all that the callers need.

#include <cmath>

namespace statkit::detail {

struct DD {
  double hi, lo;
};

/// Knuth's TwoSum: s + err == a + b exactly.
inline DD twoSum(double a, double b) {
  double s = a + b;
  double bb = s - a;
  return {s, (a - (s - bb)) + (b - bb)};
}

/// The exact product through fma.
inline DD twoProd(double a, double b) {
  double p = a * b;
  return {p, std::fma(a, b, -p)};
}

/// Renormalises hi + lo for |hi| >= |lo|.
inline DD fastTwoSum(double a, double b) {
  double s = a + b;
  return {s, b - (s - a)};
}

inline DD operator-(DD a) { return {-a.hi, -a.lo}; }

// Both parts added with their errors (the "IEEE" addition of Bailey's QD library), so
// that a cancellation of the high parts leaves the low parts exact.
inline DD operator+(DD a, DD b) {
  DD s = twoSum(a.hi, b.hi);
  DD t = twoSum(a.lo, b.lo);
  s = fastTwoSum(s.hi, s.lo + t.hi);
  return fastTwoSum(s.hi, s.lo + t.lo);
}

inline DD operator-(DD a, DD b) { return a + (-b); }

inline DD operator*(DD a, DD b) {
  DD p = twoProd(a.hi, b.hi);
  return fastTwoSum(p.hi, p.lo + a.hi * b.lo + a.lo * b.hi);
}

inline DD operator*(DD a, double b) {
  DD p = twoProd(a.hi, b);
  return fastTwoSum(p.hi, p.lo + a.lo * b);
}

/// n / d: the remainder of the leading quotient is exact through fma. A quotient
/// that is not finite (an infinite numerator, an overflow) stands alone.
inline DD operator/(DD n, DD d) {
  double q = n.hi / d.hi;
  if (!std::isfinite(q)) return {q, 0.0};
  double r = std::fma(-q, d.hi, n.hi);
  return fastTwoSum(q, (r + n.lo - q * d.lo) / d.hi);
}

inline DD operator/(DD n, double d) { return n / DD{d, 0.0}; }

/// ln(1 + u) for u in [-1/4, 1/2] (|s| <= 1/5 below): with s = u/(2 + u),
/// ln(1 + u) = 2 atanh(s) = 2s + (2/3)s^3 + 2 s^5 (1/5 + s^2/7 + ...). The first two
/// terms are formed in double-double; the rest, below s^4/10 of the whole, in double.
inline DD log1pDD(DD u) {
  DD s = u / (DD{2.0, 0.0} + u);
  DD s2 = s * s;
  DD s3 = s2 * s;
  double r = s2.hi, tail = 0.0;
  for (int k = 33; k >= 5; k -= 2) tail = tail * r + 1.0 / k;
  DD third = (s3 * 2.0) / 3.0;
  return (s * 2.0 + third) + DD{2.0 * s3.hi * s2.hi * tail, 0.0};
}

/// ln(v) for v > 0: v = 2^k m with m in [3/4, 3/2), ln v = k ln 2 + ln(1 + (m - 1)).
inline DD logDD(DD v) {
  constexpr DD kLn2{0.6931471805599453, 2.3190468138462996e-17};
  int k = 0;
  double m = std::frexp(v.hi, &k);
  if (m < 0.75) {
    m *= 2.0;
    --k;
  }
  DD u = DD{m - 1.0, 0.0} + DD{std::ldexp(v.lo, -k), 0.0};  // m - 1 exact (Sterbenz)
  return log1pDD(u) + kLn2 * static_cast<double>(k);
}

/// exp(e.hi + e.lo) to first order in e.lo: glibc's exp is within an ulp.
inline double expDD(DD e) {
  double v = std::exp(e.hi);
  return v + v * e.lo;
}

}  // namespace statkit::detail
