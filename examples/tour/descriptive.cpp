// Tour: a descriptive summary of a small sample (Michelson's 1879 speed-of-light
// measurements, km/s minus 299000): location and spread, quantiles by the five
// rules, a text histogram, ranks, and the correlation matrix of three columns.

#include <cstdio>
#include <string>

#include "statkit/statkit.h"
#include "tour.h"

namespace {

using namespace statkit::Statistics;

const TVec& lightSpeeds() {
  static const TVec x{850, 740, 900, 1070, 930, 850, 950, 980, 980, 880, 1000, 980, 930, 650, 760, 810,
                      1000, 1000, 960, 960, 960, 940, 960, 940, 880, 800, 850, 880, 900, 840};
  return x;
}

void summary() {
  const TVec& x = lightSpeeds();
  std::printf("n = %d  mean %.2f  trimmed (20%%) %.2f  geometric %.2f  harmonic %.2f\n", x.Length(), x.Mean(),
              MeanT(x, 0.2), MeanG(x), MeanH(x));
  double var;
  Covariance(x, var, false);
  std::printf("variance %.2f  range %.0f  third central moment %.1f\n", var, Range(x), Moment(x, x.Mean(), 3));

  std::printf("\nquantile      ");
  for (double p : {0.1, 0.25, 0.5, 0.75, 0.9}) std::printf("%8.2f", p);
  std::printf("   IQR\n");
  for (std::size_t m = 0; m < TPercentileMethodNames.size(); ++m) {
    const auto method = static_cast<TPercentileMethod>(m);
    std::printf("%-18s", std::string(TPercentileMethodNames[m]).c_str());
    for (double p : {0.1, 0.25, 0.5, 0.75, 0.9}) std::printf("%8.1f", Percentile(x, p, method));
    std::printf("%8.1f\n", InterQuartile(x, method));
  }

  TVec counts, edges;
  Histogram(x, 8, counts, edges, false);
  std::printf("\nhistogram (8 bins between the extremes):\n");
  for (int i = 0; i < counts.Length(); ++i)
    std::printf("  [%6.1f, %6.1f) %2.0f %s\n", edges[i], edges[i + 1], counts[i],
                std::string(static_cast<std::size_t>(counts[i]), '#').c_str());

  TVec ranks, distinct;
  double tieSum;
  TiedRanks(x, ranks, tieSum);
  Unique(x, distinct);
  std::printf("%d distinct values; rank of the first (850): %.1f; tie sum %.0f\n", distinct.Length(), ranks[0],
              tieSum);
}

void correlation() {
  // two noisy measures of one quantity and an unrelated column
  const TMtx m{{1.0, 2.1, 0.3}, {2.0, 3.9, 0.1}, {3.0, 6.2, 0.4}, {4.0, 8.1, 0.2},
               {5.0, 9.8, 0.5}, {6.0, 12.2, 0.1}, {7.0, 13.9, 0.3}};
  TMtx r;
  CorrCoef(m, r);
  std::printf("correlation matrix of three columns:\n");
  for (int i = 0; i < r.Rows(); ++i) {
    for (int j = 0; j < r.Cols(); ++j) std::printf("%9.4f", r(i, j));
    std::printf("\n");
  }
  TVec acf, pacf;
  ACF(lightSpeeds(), acf, 4);
  PACF(acf, pacf);
  std::printf("autocorrelation of the light-speed series, lags 1-4:");
  for (int k = 1; k < acf.Length(); ++k) std::printf(" %.3f", acf[k]);
  std::printf("\npartial autocorrelation, lags 1-4:                 ");
  for (double v : pacf) std::printf(" %.3f", v);
  std::printf("\n");
}

void descriptive() {
  summary();
  std::printf("\n");
  correlation();
}

}  // namespace

TOUR_SECTION(30, "Descriptive statistics", descriptive);
