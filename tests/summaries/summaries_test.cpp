// Mergeable summaries: data cut at random into 1 to 64 parts and merged in random
// order give the one-machine results (moments, covariance, histogram, regression,
// one-way ANOVA); NIST StRD univariate and linear sets through the merged path.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "statkit/Statistics.h"
#include "statkit/Summaries.h"
#include "support/expect.h"
#include "support/fixture.h"
#include "support/nist.h"

namespace statkit::Summaries {
namespace {

// Rows [from, to) of a vector or matrix.
TVec rowsOf(const TVec& v, int from, int to) { return TVec(std::vector<double>(v.data() + from, v.data() + to)); }
TMtx rowsOf(const TMtx& m, int from, int to) {
  TMtx r(to - from, m.Cols());
  std::copy(m.data() + from * m.Cols(), m.data() + to * m.Cols(), r.data());
  return r;
}

// Cuts n rows at parts - 1 random points (empty parts allowed), summarises each part with
// summarise(from, to), and merges random pairs until one summary is left.
template <class S, class F>
S splitAndMerge(int n, int parts, std::mt19937_64& rng, F summarise) {
  std::vector<int> cuts{0, n};
  for (int i = 1; i < parts; ++i) cuts.push_back(std::uniform_int_distribution<int>(0, n)(rng));
  std::sort(cuts.begin(), cuts.end());
  std::vector<S> s;
  for (std::size_t i = 0; i + 1 < cuts.size(); ++i) s.push_back(summarise(cuts[i], cuts[i + 1]));
  while (s.size() > 1) {
    const std::size_t a = rng() % s.size();
    std::swap(s[a], s.back());
    const std::size_t b = rng() % (s.size() - 1);
    Merge(s[b], s.back());
    s.pop_back();
  }
  return s[0];
}

// The parts are summarised by Add on a fresh summary, the whole data by Add once.
TMoments moments(const TVec& x) {
  TMoments s;
  Add(s, x);
  return s;
}

TLeastSquares leastSquares(const TVec& y, const TMtx& A, bool constant) {
  TLeastSquares s;
  s.Constant = constant;
  Add(s, y, A);
  return s;
}

// Every result within 1e-12 relative (about 4500 eps: the merges and the direct path round
// differently on 1000 values offset by 1e3 from zero); histogram counts and extremes exact.
TEST(Summaries, MergedPartsGiveTheWholeDataResults) {
  std::mt19937_64 rng(20261125);
  std::normal_distribution<double> normal;
  std::exponential_distribution<double> expo;
  const int n = 1000, k = 3;
  TVec x, y, g;
  x.Size(n), y.Size(n), g.Size(n);
  TMtx A(n, k);
  for (int i = 0; i < n; ++i) {
    x[i] = 1e3 + expo(rng);
    for (int j = 0; j < k; ++j) A(i, j) = 10 * j + normal(rng);
    g[i] = i % 5;
    y[i] = 1 + 2 * A(i, 0) - 3 * A(i, 1) + 0.5 * A(i, 2) + 0.1 * normal(rng) + 0.2 * g[i];
  }
  const TVec edges{1000, 1000.25, 1000.5, 1001, 1002, 1004};
  // The whole data on one machine.
  TMtx cov, V;
  Statistics::Covariance(A, cov, false);
  TVec B, YCalc, Res, SE;
  TRegStats st{};
  Regress::MulLinRegress(y, A, B, true, &YCalc, &V);
  Regress::RegressTest(y, YCalc, V, st, Res, SE, true);
  double sig = 0, sigMerged = 0;
  const TANOVA1Table table = Regress::ANOVA1(y, g, sig, 0.05);
  THistogram whole;
  InitHistogram(whole, edges);
  Add(whole, x);
  const double mean = x.Mean(), m2 = Statistics::Moment(x, mean, 2);

  for (int parts : {1, 2, 3, 7, 16, 64}) {
    SCOPED_TRACE("parts " + std::to_string(parts));
    const auto m = splitAndMerge<TMoments>(n, parts, rng, [&](int a, int b) { return moments(rowsOf(x, a, b)); });
    EXPECT_EQ(m.N, n);
    EXPECT_EQ(m.Min, *std::min_element(x.begin(), x.end()));
    EXPECT_EQ(m.Max, *std::max_element(x.begin(), x.end()));
    EXPECT_REL(m.Mean, mean, 1e-12);
    EXPECT_REL(Variance(m), x.StdDev() * x.StdDev(), 1e-12);
    EXPECT_REL(Skewness(m), Statistics::Moment(x, mean, 3) / std::pow(m2, 1.5), 1e-12);
    EXPECT_REL(Kurtosis(m), Statistics::Moment(x, mean, 4) / (m2 * m2) - 3, 1e-12);

    const auto c = splitAndMerge<TCoMoments>(n, parts, rng, [&](int a, int b) {
      TCoMoments s;
      Add(s, rowsOf(A, a, b));
      return s;
    });
    TMtx mergedCov;
    Covariance(c, mergedCov, false);
    for (int i = 0; i < k * k; ++i) EXPECT_REL(mergedCov.data()[i], cov.data()[i], 1e-12);

    const auto h = splitAndMerge<THistogram>(n, parts, rng, [&](int a, int b) {
      THistogram s;
      InitHistogram(s, edges);
      Add(s, rowsOf(x, a, b));
      return s;
    });
    for (int i = 0; i < edges.Length() - 1; ++i) EXPECT_EQ(h.Counts[i], whole.Counts[i]);
    EXPECT_EQ(h.Above, whole.Above);
    EXPECT_EQ(h.Below + h.NaNs, 0);

    const auto l = splitAndMerge<TLeastSquares>(
        n, parts, rng, [&](int a, int b) { return leastSquares(rowsOf(y, a, b), rowsOf(A, a, b), true); });
    TVec mB, mSE;
    TRegStats mst{};
    LeastSquaresFit(l, mB, mSE, mst);
    for (int j = 0; j <= k; ++j) {
      EXPECT_REL(mB[j], B[j], 1e-12);
      EXPECT_REL(mSE[j], SE[j], 1e-12);
    }
    EXPECT_REL(mst.ResidualVar, st.ResidualVar, 1e-12);
    EXPECT_REL(mst.R2, st.R2, 1e-12);
    EXPECT_REL(mst.AdjustedR2, st.AdjustedR2, 1e-12);
    EXPECT_REL(mst.F, st.F, 1e-12);
    // The second pass, cut and merged at random again, refines the same fit.
    const auto res = splitAndMerge<TLeastSquaresResiduals>(n, parts, rng, [&](int a, int b) {
      TLeastSquaresResiduals s;
      InitResiduals(s, l, mB);
      Add(s, rowsOf(y, a, b), rowsOf(A, a, b));
      return s;
    });
    LeastSquaresFit(l, res, mB, mSE, mst);
    for (int j = 0; j <= k; ++j) {
      EXPECT_REL(mB[j], B[j], 1e-12);
      EXPECT_REL(mSE[j], SE[j], 1e-12);
    }
    EXPECT_REL(mst.R2, st.R2, 1e-12);

    const auto gm = splitAndMerge<TGroupMoments>(n, parts, rng, [&](int a, int b) {
      TGroupMoments s;
      Add(s, rowsOf(y, a, b), rowsOf(g, a, b));
      return s;
    });
    const TANOVA1Table t = ANOVA1(gm, sigMerged, 0.05);
    for (std::size_t i = 0; i < t.size(); ++i) EXPECT_REL(t[i], table[i], 1e-12) << "entry " << i;
    EXPECT_REL(sigMerged, sig, 1e-12);
  }
}

// LRE capped at 15: beyond it both paths are within a few units in the last place, where
// the order of the roundings, not the method, decides.
double lre(double x, double c) { return std::min(test::LRE(x, c), 15.0); }

// Merged from 7 random parts, the NIST sets keep the digits of the direct path, within half a
// digit: the univariate mean and standard deviation, and the linear fits' coefficients,
// standard errors, residual SD and R^2 (the smallest LRE of each group), refined by one pass
// of residual sums cut and merged at random again. Printed side by side with the first pass.
TEST(SummariesNist, MergedPathKeepsTheDirectDigits) {
  if (test::StrdDir().empty()) GTEST_SKIP() << "NIST StRD not found beside the project";
  std::mt19937_64 rng(7);
  std::printf("  %-9s %-26s %s\n", "set", "LRE direct", "LRE merged");
  for (std::string name : {"PiDigits", "Lottery", "Lew", "Mavro", "Michelso", "NumAcc1", "NumAcc2", "NumAcc3",
                           "NumAcc4"}) {
    const test::StrdSet set = test::ReadStrd("univ/" + name);
    const TVec x = set.Column(0);
    const double mean = set.Values("Sample Mean")[0], sd = set.Values("Sample Standard Deviation")[0];
    const auto m =
        splitAndMerge<TMoments>(x.Length(), 7, rng, [&](int a, int b) { return moments(rowsOf(x, a, b)); });
    const double direct[2] = {lre(x.Mean(), mean), lre(x.StdDev(), sd)};
    const double merged[2] = {lre(m.Mean, mean), lre(StdDev(m), sd)};
    std::printf("  %-9s mean %4.1f sd %4.1f          mean %4.1f sd %4.1f\n", name.c_str(), direct[0], direct[1],
                merged[0], merged[1]);
    for (int i = 0; i < 2; ++i) EXPECT_GE(merged[i], direct[i] - 0.5) << name;
  }
  std::printf("  %-9s %-38s %-38s %s\n", "", "direct", "merged", "refined");
  for (std::string name : {"Norris", "Pontius", "NoInt1", "NoInt2", "Filip", "Longley", "Wampler1", "Wampler2",
                           "Wampler3", "Wampler4", "Wampler5"}) {
    const test::StrdSet set = test::ReadStrd("lls/" + name);
    const TVec y = set.Column(0);
    const TMtx A = test::StrdDesign(set, false);
    const bool constant = set.params.at(0) == "B0";
    TVec B, YCalc, Res, SE, mB, mSE, rB, rSE;
    TMtx V;
    TRegStats st{}, mst{}, rst{};
    Regress::MulLinRegress(y, A, B, constant, &YCalc, &V);
    Regress::RegressTest(y, YCalc, V, st, Res, SE, constant);
    const auto l = splitAndMerge<TLeastSquares>(y.Length(), 7, rng, [&](int a, int b) {
      return leastSquares(rowsOf(y, a, b), rowsOf(A, a, b), constant);
    });
    LeastSquaresFit(l, mB, mSE, mst);
    const auto r = splitAndMerge<TLeastSquaresResiduals>(y.Length(), 7, rng, [&](int a, int b) {
      TLeastSquaresResiduals s;
      InitResiduals(s, l, mB);
      Add(s, rowsOf(y, a, b), rowsOf(A, a, b));
      return s;
    });
    LeastSquaresFit(l, r, rB, rSE, rst);
    auto lres = [&](const TVec& b, const TVec& se, const TRegStats& s, double* out) {
      out[0] = out[1] = 16;
      for (int j = 0; j < b.Length(); ++j) {
        out[0] = std::min(out[0], lre(b[j], set.estimates.at(j)));
        out[1] = std::min(out[1], lre(se[j], set.Values(set.params[j])[1]));
      }
      out[2] = lre(std::sqrt(s.ResidualVar), set.Values("Standard Deviation")[0]);
      out[3] = lre(s.R2, set.Values("R-Squared")[0]);
    };
    double direct[4], merged[4], refined[4];
    lres(B, SE, st, direct);
    lres(mB, mSE, mst, merged);
    lres(rB, rSE, rst, refined);
    std::printf("  %-9s", name.c_str());
    for (const double* v : {direct, merged, refined})
      std::printf(" B %4.1f sd %4.1f res %4.1f R2 %4.1f ", v[0], v[1], v[2], v[3]);
    std::printf("\n");
    for (int i = 0; i < 4; ++i) EXPECT_GE(refined[i], direct[i] - 0.5) << name << " " << i;
  }
}

TEST(Summaries, BadInputRaisesExactly) {
  TCoMoments two, three;
  Add(two, TMtx{{1, 2}, {3, 4}});
  Add(three, TMtx{{1, 2, 3}});
  THistogram h, other;
  InitHistogram(h, TVec{0, 1, 2});
  InitHistogram(other, TVec{0, 1, 3});
  TLeastSquares withConstant = leastSquares(TVec{1, 2}, TMtx{{1}, {2}}, true);
  TLeastSquares noConstant = leastSquares(TVec{1, 2}, TMtx{{1}, {2}}, false);
  TGroupMoments oneGroup, gap;
  Add(oneGroup, TVec{1, 2}, TVec{0, 0});
  Add(gap, TVec{1, 2}, TVec{0, 2});
  TLeastSquaresResiduals unset, res, otherRes;
  InitResiduals(res, withConstant, TVec{0, 1});
  InitResiduals(otherRes, withConstant, TVec{0, 2});
  Add(otherRes, TVec{1}, TMtx{{1}});
  TVec complex;
  complex.Size(2, true);
  TMoments m;
  TRegStats st{};
  TVec B, SE;
  const std::vector<test::RaiseCase> cases = {
      {"Complex data not supported", [&] { Add(m, complex); }},
      {"CoMoments: column counts differ", [&] { Merge(two, three); }},
      {"CoMoments: X.Cols <> columns of the summary", [&] { Add(two, TMtx{{1, 2, 3}}); }},
      {"Histogram: at least two finite, strictly ascending edges required", [&] { InitHistogram(h, TVec{0, 0}); }},
      {"Histogram: at least two finite, strictly ascending edges required", [&] { InitHistogram(h, TVec{0, NAN}); }},
      {"Histogram: at least two finite, strictly ascending edges required", [&] { InitHistogram(h, TVec{0}); }},
      {"Histogram: edges not set", [&] { THistogram none; Add(none, TVec{1}); }},
      {"Histogram: edges differ", [&] { Merge(h, other); }},
      {"LeastSquares: y.Length <> A.Rows", [&] { Add(withConstant, TVec{1}, TMtx{{1}, {2}}); }},
      {"LeastSquares: A.Cols <> columns of the summary", [&] { Add(withConstant, TVec{1}, TMtx{{1, 2}}); }},
      {"LeastSquares: designs differ", [&] { Merge(withConstant, noConstant); }},
      {"Size mismatch", [&] { TLeastSquares flipped = noConstant; flipped.Constant = true; Merge(withConstant, flipped); }},
      {"LeastSquares: no coefficient to fit", [&] { leastSquares(TVec{1}, TMtx(1, 0), false); }},
      {"LeastSquaresFit : Singular matrix", [&] { LeastSquaresFit(leastSquares(TVec{1}, TMtx{{1}}, true), B, SE, st); }},
      {"LeastSquaresFit : Singular matrix",
       [&] { LeastSquaresFit(leastSquares(TVec{1, 2, 3}, TMtx{{1}, {1}, {1}}, true), B, SE, st); }},
      {"LeastSquares: no coefficient to fit", [&] { InitResiduals(res, withConstant, TVec()); }},
      {"LeastSquares: coefficients not set", [&] { Add(unset, TVec{1}, TMtx{{1}}); }},
      {"LeastSquares: A.Cols <> columns of the summary", [&] { Add(res, TVec{1}, TMtx{{1, 2}}); }},
      {"LeastSquares: y.Length <> A.Rows", [&] { Add(res, TVec{1, 2}, TMtx{{1}}); }},
      {"LeastSquares: coefficients differ", [&] { Merge(res, otherRes); }},
      {"LeastSquaresFit: residuals of other data", [&] { LeastSquaresFit(withConstant, otherRes, B, SE, st); }},
      {"GroupMoments: Data.Length <> GroupIndex.Length", [&] { Add(gap, TVec{1}, TVec{0, 1}); }},
      {"GroupMoments: GroupIndex must be finite, >= 0 and < 2^24", [&] { Add(gap, TVec{1}, TVec{NAN}); }},
      {"GroupMoments: GroupIndex must be finite, >= 0 and < 2^24", [&] { Add(gap, TVec{1}, TVec{-1}); }},
      {"GroupMoments: GroupIndex must be finite, >= 0 and < 2^24", [&] { Add(gap, TVec{1}, TVec{16777216}); }},
      {"ANOVA1: empty group", [&] { ANOVA1(gap, st.F, 0.05); }},
      {"ANOVA1: fewer than two groups", [&] { ANOVA1(oneGroup, st.F, 0.05); }},
  };
  test::ExpectEachRaises(cases);
  // A failed call leaves its summary as it was.
  EXPECT_EQ(withConstant.Y.N, 2);
  EXPECT_EQ(withConstant.R.Rows(), 2);
  EXPECT_EQ(gap.Groups.size(), 3u);
}

}  // namespace
}  // namespace statkit::Summaries
