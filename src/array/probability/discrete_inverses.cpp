// Inverses of the Poisson and negative binomial laws: the smallest whole k with
// CDF(k) >= p (R's convention), by galloping from a Cornish-Fisher guess to a bracket
// and bisecting on the exported distribution function (Johnson, Kotz and Kemp 2005, 1.5).

#include "statkit/array/Probability.h"

#include "array/probability/internal.h"

#include <cmath>

namespace statkit::detail::prob {
namespace {

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


}  // namespace
}  // namespace statkit::detail::prob

namespace statkit {

using namespace detail::prob;

double PoissonCDFInv(double p, double Lambda) noexcept {
  if (!validPoisson(Lambda) || !validProb(p)) return kNaN;
  if (Lambda == 0.0 || p == 0.0) return 0.0;
  if (p == 1.0) return kInf;
  double sd = std::sqrt(Lambda);
  return smallestWholeAtLeast(p, cornishFisherGuess(p, Lambda, sd, 1.0 / sd),
                              [&](double k) { return PoissonCDF(k, Lambda); });
}

double NegBinomCDFInv(double p, int R, double P) noexcept {
  if (!validNegBinom(R, P) || !validProb(p)) return kNaN;
  if (P == 1.0 || p == 0.0) return 0.0;
  if (p == 1.0) return kInf;
  double q = 1.0 - P, sd = std::sqrt(R * q) / P;
  return smallestWholeAtLeast(p, cornishFisherGuess(p, R * q / P, sd, (2.0 - P) / std::sqrt(R * q)),
                              [&](double k) { return NegBinomCDF(k, R, P); });
}

}  // namespace statkit
