// Percentiles against R's quantile (types 6, 7, 1) and the two rules R lacks,
// the radix selection against a full sort on large data, and the histogram
// rules at the edges where truncation, the spare slot and midpoints decide.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <map>
#include <random>

#include "statkit/Statistics.h"
#include "support/expect.h"
#include "support/fixture.h"

namespace statkit::Statistics {
namespace {

using test::kEps;

TPercentileMethod methodByName(const std::string& name) {
  for (std::size_t m = 0; m < TPercentileMethodNames.size(); ++m)
    if (TPercentileMethodNames[m] == name) return static_cast<TPercentileMethod>(m);
  throw std::runtime_error("unknown method " + name);
}

TEST(Percentile, MatchesRQuantileAndTheClosestAndAveragedRules) {
  for (const auto& r : test::LoadFixture("percentiles.txt")) {
    test::PoolBalance pool;
    const TVec x = r.Vec("x");
    const auto p = r.Nums("p"), q = r.Nums("q");
    const TPercentileMethod method = methodByName(r.Str("method"));
    SCOPED_TRACE(r.Str("method") + " n=" + std::to_string(x.Length()));
    double scale = 0;
    for (double v : x) scale = std::max(scale, std::fabs(v));
    for (std::size_t i = 0; i < p.size(); ++i) {
      // R snaps a position within 4 eps of a whole number; statkit interpolates with the
      // tiny fraction instead: a difference of a few ulps of the data's scale
      EXPECT_LE(std::fabs(Percentile(x, p[i], method) - q[i]), 8 * kEps * scale) << "p = " << p[i];
    }
  }
}

// What the fixture cannot hold: non-finite data, signed zeros and a value that is no rule.
// (Its sizes 7 and 10 put n p on halves, where the closest rule rounds to even, and on
// whole numbers, where the EDF-average rule takes one element.)
TEST(Percentile, RulesAtTheirEdges) {
  struct Case {
    const char* what;
    TVec x;
    double p;
    TPercentileMethod method;
    double expected;
  } cases[] = {
      {"an infinite neighbour with no weight", TVec{1, 2, INF}, 0.5, pctMethodNMinus, 2.0},
      {"NaNs rank last", TVec{NAN, 3, 1}, 0.5, pctMethodNMinus, 3.0},
      {"NaNs rank last, maximum", TVec{NAN, 3, 1}, 1.0, pctMethodNMinus, NAN},
      {"signed zeros", TVec{0.0, -0.0, -1}, 0.75, pctMethodEDF, 0.0},
      {"not a rule", TVec{5, 3, 1}, 0.5, static_cast<TPercentileMethod>(7), 0.0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_REL(Percentile(c.x, c.p, c.method), c.expected, 0.0);
  }
}

// Large data take the histogram path of the radix selection: every rank, also at
// bucket edges and with NaNs, infinities and heavy ties, must be the sorted copy's.
TEST(Percentile, SelectionAgreesWithAFullSortOnLargeData) {
  std::mt19937_64 gen(20261123);
  std::normal_distribution<double> normal;
  const int n = (1 << 18) + 1;  // n - 1 a power of two: the NMinus positions below are exact
  struct Case {
    const char* what;
    std::function<double(int)> value;
  } cases[] = {
      {"normal", [&](int) { return normal(gen); }},
      {"constant: one bucket holds everything", [](int) { return 2.5; }},
      {"a few ties, NaNs and infinities",
       [&](int i) { return i % 97 == 0 ? NAN : i % 89 == 0 ? -INF : i % 83 == 0 ? INF : std::round(normal(gen) * 3); }},
      {"narrow: 1 + tiny", [&](int) { return 1.0 + 1e-12 * normal(gen); }},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    TVec x;
    x.Size(n);
    for (int i = 0; i < n; ++i) x[i] = c.value(i);
    TVec sorted = x;
    sorted.SortAscend();
    auto same = [](double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); };
    for (int k : {1, 2, 1000, n / 2, n / 2 + 1, n - 3000, n - 1, n}) {
      // p = (k - 0.5) / n puts the EDF rule on x(k); NMinus with (k - 0.75) / (n - 1) on 3/4 x(k) + 1/4 x(k + 1)
      EXPECT_TRUE(same(Percentile(x, (k - 0.5) / n, pctMethodEDF), sorted[k - 1])) << "rank " << k;
      if (k == n) continue;
      const double lo = sorted[k - 1], hi = sorted[k];
      const double mixed = Percentile(x, (k - 0.75) / (n - 1), pctMethodNMinus);
      if (std::isfinite(lo) && std::isfinite(hi)) {
        EXPECT_REL(mixed, 0.75 * lo + 0.25 * hi, 4 * kEps) << "rank " << k;
      }
    }
  }
}

TEST(InterQuartile, DifferenceOfQuartilesOrZeroOnFailure) {
  TVec cplx;
  cplx.Size(4, true);
  EXPECT_EQ(InterQuartile(TVec{1, 2, 3, 4, 5, 6, 7, 8}, pctMethodNPlus), 6.75 - 2.25);
  EXPECT_TRUE(InterQuartile(cplx, pctMethodNPlus) == 0.0 && InterQuartile(TVec{}, pctMethodEDF) == 0.0);
}

TEST(Histogram, EqualWidthBinsAtTheirEdges) {
  TVec counts, bins;
  struct Case {
    const char* what;
    std::function<void()> call;
    std::vector<double> counts, bins;
  } cases[] = {
      {"the element at Hi joins the last bin",
       [&] { Histogram(TVec{1, 2, 3, 4}, 3, counts, bins, false); }, {1, 1, 2}, {1, 2, 3, 4}},
      {"constant data widen to NumBins + 1 around the value",
       [&] { Histogram(TVec{5, 5, 5}, 2, counts, bins, true); }, {0, 3}, {4.25, 5.75}},
      // -0.5 truncates to bin 0, 10.9 to the spare slot; 11.5 and NaN are not counted
      {"truncation toward zero and the spare slot",
       [&] { Histogram(TVec{-0.5, 0, 10.9, 11.5, NAN, -1.5}, 10, counts, bins, false, 10, 0); },
       {2, 0, 0, 0, 0, 0, 0, 0, 0, 1}, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10}},
      {"a midpoint falls into the lower bin", [&] { Histogram(TVec{4, 5, 6}, TVec{0, 10}, counts); }, {2, 1}, {}},
      {"below, between and above the centres",
       [&] { Histogram(TVec{-100, 1.5, 1.50001, 2.5, 100, NAN}, TVec{1, 2, 3}, counts); }, {3, 2, 1}, {}},
      {"one centre takes everything", [&] { Histogram(TVec{-1e300, 0, INF}, TVec{7}, counts); }, {3}, {}},
      {"cumulative ends at exactly 1 (49 elements)",
       [&] {
         TVec x;
         x.Size(49);
         x.Ramp(0, 1);
         CumulativeHist(x, 7, counts, bins, true);  // edges whatever the flag
       },
       {1.0 / 7, 2.0 / 7, 3.0 / 7, 4.0 / 7, 5.0 / 7, 6.0 / 7, 1.0},
       {0, 48.0 / 7, 96.0 / 7, 144.0 / 7, 192.0 / 7, 240.0 / 7, 288.0 / 7, 48}},
      {"cumulative over centres", [&] { CumulativeHist(TVec{4, 5, 6, 11}, TVec{0, 10}, counts); }, {0.5, 1.0}, {}},
      // the outputs may be the data
      {"Counts is the data", [&] { counts = {1, 2, 3, 4}; Histogram(counts, 3, counts, bins, false); }, {1, 1, 2}, {}},
      {"Counts is the data, centres", [&] { counts = {4, 5, 6}; Histogram(counts, TVec{0, 10}, counts); }, {2, 1}, {}},
      {"Bins is the data", [&] { bins = {1, 2, 3, 4}; Histogram(bins, 3, counts, bins, false); }, {1, 1, 2}, {1, 2, 3, 4}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    bins.Size(0);
    c.call();
    EXPECT_EQ(counts.Length(), static_cast<int>(c.counts.size()));
    for (int i = 0; i < std::min<int>(counts.Length(), c.counts.size()); ++i) EXPECT_REL(counts[i], c.counts[i], kEps);
    if (c.bins.empty()) continue;
    ASSERT_EQ(bins.Length(), static_cast<int>(c.bins.size()));
    for (int i = 0; i < bins.Length(); ++i) EXPECT_REL(bins[i], c.bins[i], 4 * kEps);
  }
}

TEST(Percentile, BadInput) {
  TVec cplx, counts, bins;
  cplx.Size(3, true);
  const TVec x{1, 2, 3};
  const test::RaiseCase cases[] = {
      {"Percentile: X.Complex", [&] { (void)Percentile(cplx, 0.5, pctMethodEDF); }},
      {"Percentile:(p<0) or (p>1)", [&] { (void)Percentile(x, 1.5, pctMethodEDF); }},
      {"Percentile:(p<0) or (p>1)", [&] { (void)Percentile(x, -1e-300, pctMethodEDF); }},
      {"Percentile:(p<0) or (p>1)", [&] { (void)Percentile(x, NAN, pctMethodEDF); }},
      {"Percentile : Empty vector", [&] { (void)Percentile(TVec{}, 0.5, pctMethodNPlus); }},
      {"Histogram : Data.Complex = true", [&] { Histogram(cplx, 3, counts, bins, false, 1, 0); }},
      {"Histogram : Data.Complex = true", [&] { Histogram(cplx, 3, counts, bins, false); }},
      {"Histogram : Data.Complex = true", [&] { Histogram(cplx, x, counts); }},
      {"Histogram : Data.Complex = true", [&] { CumulativeHist(cplx, x, counts); }},
      {"Histogram : NumBins <= 0", [&] { Histogram(x, 0, counts, bins, false, 1, 0); }},
      {"Histogram : NumBins <= 0", [&] { CumulativeHist(x, -2, counts, bins, false); }},
      {"Histogram : Bins.Length < 1", [&] { Histogram(x, TVec{}, counts); }},
      {"Histogram : Bins not ascending", [&] { Histogram(x, TVec{1, 3, 2}, counts); }},
      {"Histogram : Bins not ascending", [&] { Histogram(x, TVec{NAN, 1}, counts); }},
      {"Histogram : Empty vector", [&] { Histogram(TVec{}, 3, counts, bins, false); }},
      {"Histogram : Integer overflow",
       [&] { Histogram(x, std::numeric_limits<int>::max(), counts, bins, false, 1, 0); }},
  };
  test::ExpectEachRaises(cases);
}

}  // namespace
}  // namespace statkit::Statistics
