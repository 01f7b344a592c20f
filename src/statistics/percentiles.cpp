// Percentiles by five rules (Hyndman and Fan, "Sample quantiles in statistical
// packages", Am. Stat. 1996: NPlus is their definition 6, NMinus 7, EDF 1),
// the interquartile range, equal-width and centred histograms and cumulative
// histograms. Percentile reads at most two order statistics, found by radix
// selection rather than a full sort.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

#include "core/frame.h"
#include "statkit/Statistics.h"

namespace statkit::Statistics {

namespace {

// Which order statistics a rule reads: x(k) alone, (1 - f) x(k) + f x(k + 1), or the
// average of x(k) and x(k + 1); k is 1-based and already clamped to the data.
struct OrderRead {
  int k = 1;
  double f = 0.0;
  bool average = false;
};

// x(1) below the data, x(n) above it (n - 1 for the rules that also read x(k + 1)).
OrderRead single(int k, int n) { return {k < 1 ? 1 : (k > n ? n : k)}; }

OrderRead interpolated(double t, int n) {
  double f;
  const int k = TruncAndFrac(t, f);
  if (k < 1) return {1};
  if (k > n - 1) return {n};
  return {k, f};
}

OrderRead ruleRead(int n, double p, TPercentileMethod Method) {
  switch (Method) {
    case pctMethodNPlus: return interpolated((n + 1.0) * p, n);
    case pctMethodNMinus: return interpolated((n - 1.0) * p + 1.0, n);
    case pctMethodClosestN: return single(aRound(n * p), n);
    case pctMethodEDF: {
      const double t = n * p;
      double frac;
      return single(t == std::floor(t) ? static_cast<int>(t) : TruncAndFrac(t + 1.0, frac), n);
    }
    case pctMethodEDFAve: {
      const double t = n * p;
      if (t == std::floor(t)) return single(static_cast<int>(t), n);
      const int k = Ceil(t);
      if (k < 1) return {1};
      if (k > n - 1) return {n};
      return {k, 0.0, true};
    }
  }
  return {0};
}

constexpr double kEps = std::numeric_limits<double>::epsilon();

void checkHistogramData(const TVec& Data) {
  if (Data.Complex()) ERaise("Histogram : Data.Complex = true");
}

void checkNumBins(int NumBins) {
  if (NumBins <= 0) ERaise("Histogram : NumBins <= 0");
}

// Counts of k = trunc((x - lo) s) over 0 <= k <= numBins; k truncates toward zero, so an
// element less than one bin width below lo lands in bin 0. Comparing t before the
// conversion keeps NaNs and far values away from an out-of-range int conversion.
// Bin numbers are computed a block at a time (a loop the compiler vectorises; elements
// not counted go to a dump slot) and then tallied; four interleaved tallies keep
// consecutive elements of one bin from waiting on each other's increment.
std::vector<double> countEqualBins(const double* x, std::size_t n, double lo, double s, int numBins) {
  const std::size_t slots = static_cast<std::size_t>(numBins) + 1;
  const int dump = numBins + 1;
  const double limit = numBins + 1.0;
  const std::size_t stride = slots + 1;
  // many bins rarely meet twice in a row: one tally then, entered four times
  const std::size_t ways = slots <= 4096 ? 4 : 1;
  std::vector<std::uint32_t> tally(ways * stride, 0);
  std::uint32_t* t[4];
  for (std::size_t w = 0; w < 4; ++w) t[w] = tally.data() + (w % ways) * stride;
  constexpr std::size_t kBlock = 256;
  int bin[kBlock];
  for (std::size_t start = 0; start < n; start += kBlock) {
    const std::size_t len = std::min(kBlock, n - start);
    const double* b = x + start;
    for (std::size_t i = 0; i < len; ++i) {
      const double v = (b[i] - lo) * s;
      bin[i] = v > -1.0 && v < limit ? static_cast<int>(v) : dump;
    }
    std::size_t i = 0;
    for (; i + 4 <= len; i += 4) {
      ++t[0][bin[i]];
      ++t[1][bin[i + 1]];
      ++t[2][bin[i + 2]];
      ++t[3][bin[i + 3]];
    }
    for (; i < len; ++i) ++t[0][bin[i]];
  }
  std::vector<double> counts(slots, 0.0);
  for (std::size_t w = 0; w < ways; ++w)
    for (std::size_t k = 0; k < slots; ++k) counts[k] += tally[w * stride + k];
  return counts;
}

// Running sum divided by the total: divided, not multiplied by 1/N, so that the last
// element is exactly 1.
void cumulate(TVec& Results) {
  double total = 0.0;
  for (double v : Results) total += v;
  Results.CumSum(0, -1);
  for (double& v : Results) v /= total;
}

}  // namespace

double Percentile(const TVec& X, double p, TPercentileMethod Method) {
  if (X.Complex()) ERaise("Percentile: X.Complex");
  if (!(p >= 0.0 && p <= 1.0)) ERaise("Percentile:(p<0) or (p>1)");  // NaN too
  return core::Guarded("Percentile : ", [&] {
    const int n = X.Length();
    if (n == 0) ERaise(msg::EmptyVector);
    const OrderRead r = ruleRead(n, p, Method);
    if (r.k == 0) return 0.0;  // not a rule of TPercentileMethod
    // x(k + 1) is read only when it has weight: an infinite neighbour must not turn 0 * INF into NaN
    const bool two = r.average || r.f != 0.0;
    // NaNs order after +INF and count in n, as in a sort: a rank that reaches them reads NaN.
    double x[2];
    X.SelectRanks(r.k - 1, std::span<double>(x, two ? 2 : 1));
    if (r.average) return 0.5 * (x[0] + x[1]);
    return two ? (1.0 - r.f) * x[0] + r.f * x[1] : x[0];
  });
}

double InterQuartile(const TVec& X, TPercentileMethod Method) {
  try {
    return Percentile(X, 0.75, Method) - Percentile(X, 0.25, Method);
  } catch (...) {
    return 0.0;
  }
}

void Histogram(const TVec& Data, int NumBins, TVec& Results, TVec& Bins, bool CenterBins, double Hi,
               double Lo) {
  checkHistogramData(Data);
  checkNumBins(NumBins);
  core::Guarded("Histogram : ", [&] {
    if (NumBins == std::numeric_limits<int>::max()) ERaise(msg::IntegerOverflow);  // no room for the spare slot
    if (Lo == Hi) {
      // an interval NumBins + 1 wide around the single value
      Lo = Lo - Floor(NumBins * 0.5) - 0.5;
      Hi = Hi + Ceil(NumBins * 0.5) + 0.5;
    }
    const double w = (Hi - Lo) / NumBins;
    const double s = NumBins / (Hi - Lo);
    // counted before any output is written: Results or Bins may be Data itself
    std::vector<double> counts = countEqualBins(Data.data(), Data.Length(), Lo, s, NumBins);
    // the spare slot holds elements at Hi and up to one width above: they join the last bin
    counts[NumBins - 1] += counts[NumBins];
    if (CenterBins) {
      Bins.Size(NumBins);
      Bins.Ramp(Lo + 0.5 * w, w);
    } else {
      Bins.Size(NumBins + 1);
      Bins.Ramp(Lo, w);
    }
    Results.Size(NumBins);
    std::copy(counts.begin(), counts.begin() + NumBins, Results.data());
  });
}

void Histogram(const TVec& Data, int NumBins, TVec& Results, TVec& Bins, bool CenterBins) {
  checkHistogramData(Data);
  checkNumBins(NumBins);
  double hi = 0.0, lo = 0.0;
  core::Guarded("Histogram : ", [&] {
    Data.MinMax(lo, hi);
  });
  Histogram(Data, NumBins, Results, Bins, CenterBins, hi, lo);
}

void Histogram(const TVec& Data, const TVec& Bins, TVec& Results) {
  checkHistogramData(Data);
  if (Bins.Length() < 1) ERaise("Histogram : Bins.Length < 1");
  if (Bins.Complex()) ERaise(msg::ComplexNotSupported);
  const int nb = Bins.Length();
  const double* c = Bins.data();
  for (int j = 1; j < nb; ++j)
    if (!(c[j] >= c[j - 1])) ERaise("Histogram : Bins not ascending");
  core::Guarded("Histogram : ", [&] {
    // Boundaries halfway between neighbouring centres, nudged up by one relative eps
    // (at least eps) so that an element on a midpoint falls into the lower bin.
    std::vector<double> edge(nb - 1);
    for (int j = 1; j < nb; ++j) {
      const double b = c[j - 1] + (c[j] - c[j - 1]) / 2.0;
      edge[j - 1] = b + std::max(std::fabs(b) * kEps, kEps);
    }
    std::vector<double> counts(nb, 0.0);
    const double* x = Data.data();
    for (int i = 0, n = Data.Length(); i < n; ++i) {
      // bin j has j boundaries at or below x (a NaN has none and lands in bin 0)
      const auto j = std::partition_point(edge.begin(), edge.end(), [v = x[i]](double e) { return e <= v; });
      counts[j - edge.begin()] += 1.0;
    }
    Results.Size(nb);
    std::copy(counts.begin(), counts.end(), Results.data());
  });
}

void CumulativeHist(const TVec& Data, int NumBins, TVec& Results, TVec& Bins, bool) {
  // always the NumBins + 1 edges, whatever the flag says
  Histogram(Data, NumBins, Results, Bins, false);
  cumulate(Results);
}

void CumulativeHist(const TVec& Data, const TVec& Bins, TVec& Results) {
  Histogram(Data, Bins, Results);
  cumulate(Results);
}

}  // namespace statkit::Statistics
