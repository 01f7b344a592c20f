#include "support/goodness_of_fit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace statkit::test {

namespace {
// Upper tail of the chi-square distribution with an even number of degrees of
// freedom 2m: exp(-x/2) sum_{k < m} (x/2)^k / k!, exact (a Poisson tail).
double chiSquareUpperTailEven(double x, int df) {
  // The terms (x/2)^k e^(-x/2) / k! on the log scale: e^(-x/2) alone underflows
  // for x above about 1400, where hundreds of cells are tested.
  double half = 0.5 * x, biggest = -INF;
  std::vector<double> logTerms;
  for (int k = 0; k < df / 2; ++k) {
    logTerms.push_back(k * std::log(half) - half - std::lgamma(k + 1.0));
    biggest = std::max(biggest, logTerms.back());
  }
  double sum = 0.0;
  for (double t : logTerms) sum += std::exp(t - biggest);
  return std::min(sum * std::exp(biggest), 1.0);
}
}  // namespace

void ExpectGoodFit(const TVec& draws, const Record& r) {
  int n = draws.Length();
  const double* x = draws.data();
  ASSERT_TRUE(std::all_of(x, x + n, [](double v) { return std::isfinite(v); })) << "non-finite draw";

  // Cells by their lower ends: the first value of each discrete cell, or -inf
  // and the inner edges of the equiprobable cells of a continuous law.
  bool continuous = r.Has("edges");
  std::vector<double> cells = r.Nums(continuous ? "edges" : "cells"), probs;
  if (continuous) cells.insert(cells.begin(), -INF);
  probs = continuous ? std::vector<double>(cells.size(), 1.0 / static_cast<double>(cells.size())) : r.Nums("probs");
  std::vector<double> counts(cells.size(), 0.0);
  for (int i = 0; i < n; ++i) {
    auto at = std::upper_bound(cells.begin(), cells.end(), x[i]) - cells.begin();
    counts[static_cast<std::size_t>(std::max<std::ptrdiff_t>(at - 1, 0))] += 1;
  }
  double chi2 = 0.0;
  for (std::size_t j = 0; j < counts.size(); ++j) chi2 += std::pow(counts[j] - n * probs[j], 2) / (n * probs[j]);
  int df = static_cast<int>(counts.size()) - 1;
  ASSERT_EQ(df % 2, 0) << "the cells must give even degrees of freedom";
  EXPECT_GT(chiSquareUpperTailEven(chi2, df), 1e-4) << "chi-square " << chi2 << " on " << df << " degrees of freedom";

  // Two-pass moments: the sample mean, then the centred sum of squares. The
  // record holds the mean and the variance where the variance is finite, and
  // the fourth central moment where it is finite too.
  double mean = 0.0, ss = 0.0;
  for (int i = 0; i < n; ++i) mean += x[i];
  mean /= n;
  for (int i = 0; i < n; ++i) ss += (x[i] - mean) * (x[i] - mean);
  if (!r.Has("var")) return;
  double v = r.Num("var"), var = ss / (n - 1);
  EXPECT_LE(std::fabs(mean - r.Num("mean")), 5.0 * std::sqrt(v / n)) << "sample mean " << mean;
  // The asymptotic standard error of the sample variance: sqrt((mu4 - var^2) / n).
  if (r.Has("mu4")) {
    EXPECT_LE(std::fabs(var - v), 5.0 * std::sqrt((r.Num("mu4") - v * v) / n)) << "variance " << var;
  }
}

}  // namespace statkit::test
