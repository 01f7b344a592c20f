#pragma once
// The goodness-of-fit check shared by the tests of the random streams and of
// the random variates: a chi-square test of a sample against the cells of a
// reference record (equiprobable cells of a continuous law, or cells of
// consecutive values of a discrete one) and sample moments within five
// standard errors of the law's.

#include <optional>

#include "statkit/Array.h"
#include "support/fixture.h"

namespace statkit::test {

/// Upper tail of the chi-square distribution with an even number of degrees of
/// freedom 2m: exp(-x/2) sum_{k < m} (x/2)^k / k!, exact (a Poisson tail).
double ChiSquareUpperTailEven(double x, int df);

/// The theoretical moments a sample is held to; absent where they are infinite
/// (the mean is only held where the variance is finite).
struct LawMoments {
  std::optional<double> mean, variance, mu4;
};

/// The moments of the record (SciPy's); \p mean and \p variance replace its
/// values where statkit's own moment function gives them.
LawMoments MomentsOf(const Record& r, std::optional<double> mean = {}, std::optional<double> variance = {});

/// Every draw finite, the chi-square p-value above 1e-4, the mean within five
/// standard errors where the variance is finite and the variance within five
/// where the fourth moment is.
void ExpectGoodFit(const TVec& draws, const Record& r, const LawMoments& law);

}  // namespace statkit::test
