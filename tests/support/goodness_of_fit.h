#pragma once
// The goodness-of-fit check of the random variates and stream laws: a
// chi-square test of a sample against the cells of a reference record
// (equiprobable cells of a continuous law, or cells of consecutive values of a
// discrete one) and sample moments within five standard errors of the law's.

#include "statkit/Array.h"
#include "support/fixture.h"

namespace statkit::test {

/// Every draw finite, the chi-square p-value on the record's cells above 1e-4,
/// the mean within five standard errors of the record's where its variance is
/// given and the variance within five where its fourth central moment is.
void ExpectGoodFit(const TVec& draws, const Record& r);

}  // namespace statkit::test
