#include "support/goodness_of_fit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace statkit::test {

double ChiSquareUpperTailEven(double x, int df) {
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

LawMoments MomentsOf(const Record& r, std::optional<double> mean, std::optional<double> variance) {
  LawMoments m;
  // The record holds the mean and the variance where the variance is finite,
  // and the fourth central moment where it is finite too.
  if (r.Has("mean")) m.mean = mean ? *mean : r.Num("mean");
  if (r.Has("var")) m.variance = variance ? *variance : r.Num("var");
  if (r.Has("mu4")) m.mu4 = r.Num("mu4");
  return m;
}

namespace {
// Counts of the draws in the record's cells and their expected probabilities.
void cellCounts(const TVec& draws, const Record& r, std::vector<double>& counts, std::vector<double>& probs) {
  const double* x = draws.data();
  int n = draws.Length();
  if (r.Has("edges")) {
    auto edges = r.Nums("edges");
    counts.assign(edges.size() + 1, 0.0);
    for (int i = 0; i < n; ++i) counts[std::upper_bound(edges.begin(), edges.end(), x[i]) - edges.begin()] += 1;
    probs.assign(counts.size(), 1.0 / static_cast<double>(counts.size()));
    return;
  }
  auto cells = r.Nums("cells");
  probs = r.Nums("probs");
  counts.assign(cells.size(), 0.0);
  for (int i = 0; i < n; ++i) {
    auto at = std::upper_bound(cells.begin(), cells.end(), x[i]) - cells.begin();
    counts[static_cast<std::size_t>(std::max<std::ptrdiff_t>(at - 1, 0))] += 1;
  }
}
}  // namespace

void ExpectGoodFit(const TVec& draws, const Record& r, const LawMoments& law) {
  int n = draws.Length();
  const double* x = draws.data();
  ASSERT_TRUE(std::all_of(x, x + n, [](double v) { return std::isfinite(v); })) << "non-finite draw";

  std::vector<double> counts, probs;
  cellCounts(draws, r, counts, probs);
  double chi2 = 0.0;
  for (std::size_t j = 0; j < counts.size(); ++j) {
    double expected = n * probs[j];
    chi2 += (counts[j] - expected) * (counts[j] - expected) / expected;
  }
  int df = static_cast<int>(counts.size()) - 1;
  ASSERT_EQ(df % 2, 0) << "the cells must give even degrees of freedom";
  double p = ChiSquareUpperTailEven(chi2, df);
  EXPECT_GT(p, 1e-4) << "chi-square " << chi2 << " on " << df << " degrees of freedom";

  // Two-pass moments: the sample mean, then the centred sum of squares.
  double mean = 0.0;
  for (int i = 0; i < n; ++i) mean += x[i];
  mean /= n;
  double ss = 0.0;
  for (int i = 0; i < n; ++i) ss += (x[i] - mean) * (x[i] - mean);
  double var = ss / (n - 1);
  if (law.mean && law.variance) {
    double se = std::sqrt(*law.variance / n);
    EXPECT_LE(std::fabs(mean - *law.mean), 5.0 * se) << "sample mean " << mean << " law mean " << *law.mean;
  }
  if (law.variance && law.mu4) {
    double v = *law.variance;
    double se = std::sqrt((*law.mu4 - v * v) / n);  // asymptotic standard error of the sample variance
    EXPECT_LE(std::fabs(var - v), 5.0 * se) << "sample variance " << var << " law variance " << v;
  }
}

}  // namespace statkit::test
