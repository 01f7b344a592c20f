// Element-wise arithmetic, reductions and sorting: accuracy of the sums,
// aliasing of outputs and inputs, NaN handling and the stability of the
// permutation that the sort returns.

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>

#include "statkit/Array.h"
#include "support/expect.h"

namespace statkit {
namespace {

using test::kEps;

TEST(Reductions, SumStaysAccurateWhereNaiveSummationDrifts) {
  // 10^6 copies of 0.1 after one 1e8: a running sum rounds every addition the
  // same way and ends 6e-11 relative off. Blocks of 256 summed four ways put
  // at most 64 additions into one accumulator, so the error stays below 64 eps.
  const int n = 1000000;
  TVec v;
  v.Size(n + 1);
  v[0] = 1e8;
  for (int i = 1; i <= n; ++i) v[i] = 0.1;
  long double exact = 1e8L + static_cast<long double>(0.1) * n;
  EXPECT_REL(v.Sum(), static_cast<double>(exact), 64 * kEps);
  EXPECT_REL(v.Mean(), static_cast<double>(exact / (n + 1)), 64 * kEps);
}

TEST(Reductions, StdDevIsCentredAndUsesTheSampleDivisor) {
  // A large offset ruins the textbook sum-of-squares formula, not the centred one.
  TVec v{1e9 + 4, 1e9 + 7, 1e9 + 13, 1e9 + 16};
  EXPECT_REL(v.StdDev(), std::sqrt(30.0), 4 * kEps);
  EXPECT_REL(v.StdDev(1e9 + 10), std::sqrt(30.0), 4 * kEps);
  TVec one{5};
  EXPECT_TRUE(std::isnan(one.StdDev()));  // 0 / 0 with one value

  TVec z;
  z.Size(2, true);
  z.CValues(0) = {1, 1};
  z.CValues(1) = {3, -1};
  // Deviations (-1, 1) and (1, -1) about (2, 0): |d|^2 = 2 each, divisor 1.
  EXPECT_DOUBLE_EQ(z.StdDev(), 2.0);
  EXPECT_EQ(z.Meanc(), TCplx(2, 0));
  EXPECT_DOUBLE_EQ(z.NormL2(), std::sqrt(12.0));
}

TEST(Reductions, ExtremesPropagateNaNAndComplexOnesGoByMagnitude) {
  TVec v{3, NAN, 1};
  EXPECT_TRUE(std::isnan(v.Max()));
  EXPECT_TRUE(std::isnan(v.Min()));
  TVec z;
  z.Size(3, true);
  z.CValues(0) = {1, 1};
  z.CValues(1) = {0, -3};
  z.CValues(2) = {0.5, 0};
  EXPECT_EQ(z.Maxc(), TCplx(0, -3));
  EXPECT_EQ(z.Minc(), TCplx(0.5, 0));
}

TEST(Arithmetic, OutputsMayAliasInputs) {
  TVec a{1, 2, 3};
  a.Add(a, a);
  EXPECT_EQ(a[2], 6);
  a.Mul(a);
  EXPECT_EQ(a[1], 16);
  a.Sub(a, a);
  EXPECT_EQ(a[0], 0);
  TVec b{4, 8};
  b.Normalize(b, 2, 2);
  EXPECT_EQ(b[1], 3);
  b.Inv(b);
  EXPECT_DOUBLE_EQ(b[0], 1.0);
  TVec c{1, 4, 9, 16};
  c.Difference(c, 0, 0, 4);  // in place: reads i + 1 before writing i
  EXPECT_EQ(c[0], 3);
  EXPECT_EQ(c[2], 7);
  TVec d{1, 2, 3, 4};
  d.CumSum(1, -1);
  EXPECT_EQ(d[0], 1);
  EXPECT_EQ(d[3], 9);
}

TEST(Arithmetic, InvElemGuardsTinyElements) {
  TMtx m{{2, 0}, {-1e-310, 1e-300}};
  m.InvElem(1e-305);
  EXPECT_EQ(m(0, 0), 0.5);
  EXPECT_EQ(m(0, 1), 1e305);   // zero counts as positive
  EXPECT_EQ(m(1, 0), -1e305);  // the sign of a tiny element is kept
  EXPECT_DOUBLE_EQ(m(1, 1), 1e300);
}

TEST(Sorting, MatchesAComparisonSortWithNaNsLast) {
  std::mt19937_64 gen(42);
  std::normal_distribution<double> normal(0, 1e3);
  for (int n : {0, 1, 7, 2047, 2048, 100000}) {
    SCOPED_TRACE(n);
    std::vector<double> x(n);
    for (auto& v : x) v = normal(gen);
    for (int i = 0; i < n; i += 97) x[i] = -x[i == 0 ? 0 : i - 1];  // ties of opposite sign too
    if (n > 10) x[3] = NAN, x[n - 2] = -INF, x[5] = INF, x[6] = -0.0, x[8] = 0.0;
    TVec v(x);
    v.SortAscend();
    std::vector<double> want;
    int nans = 0;
    for (double t : x) std::isnan(t) ? ++nans : (want.push_back(t), 0);
    std::sort(want.begin(), want.end());
    for (int i = 0; i < static_cast<int>(want.size()); ++i) ASSERT_EQ(v[i], want[i]) << i;
    for (int i = 0; i < nans; ++i) EXPECT_TRUE(std::isnan(v[n - 1 - i]));
  }
}

TEST(Sorting, PermutationIsStableOnTies) {
  for (int n : {10, 5000}) {
    SCOPED_TRACE(n);
    std::vector<double> x(n);
    for (int i = 0; i < n; ++i) x[i] = (i * 7919) % 13;  // many ties
    x[1] = NAN;
    TVec v(x), idx;
    v.SortAscend(idx);
    ASSERT_EQ(idx.Length(), n);
    for (int k = 0; k < n; ++k) {
      int p = idx.IValue(k);
      if (std::isnan(v[k])) {
        EXPECT_TRUE(std::isnan(x[p]));
      } else {
        EXPECT_EQ(v[k], x[p]);
      }
      if (k > 0 && v[k] == v[k - 1]) {
        EXPECT_GT(p, idx.IValue(k - 1)) << "tie order lost at " << k;
      }
    }
    EXPECT_EQ(idx.IValue(n - 1), 1);  // the NaN went last
  }
}

TEST(Correlation, AutoCorrBiasedDividesByNAndZeroesLagsBeyondTheSeries) {
  TVec x{1, 2, 3}, r;
  r.AutoCorrBiased(x, 4);
  ASSERT_EQ(r.Length(), 5);
  EXPECT_DOUBLE_EQ(r[0], 14.0 / 3);
  EXPECT_DOUBLE_EQ(r[1], 8.0 / 3);
  EXPECT_DOUBLE_EQ(r[2], 3.0 / 3);
  EXPECT_EQ(r[3], 0);
  EXPECT_EQ(r[4], 0);
  r.AutoCorrBiased(r, 1);  // Self as the source
  EXPECT_EQ(r.Length(), 2);
}

TEST(ScalarFunctions, RoundingAndConversionsRefuseWhatAnIntCannotHold) {
  EXPECT_EQ(aRound(2.5), 2);
  EXPECT_EQ(aRound(3.5), 4);
  EXPECT_EQ(aRound(-2.5), -2);
  EXPECT_EQ(aRound(2.4999999999999996), 2);
  EXPECT_EQ(Floor(-0.5), -1);
  EXPECT_EQ(Ceil(-0.5), 0);
  double f;
  EXPECT_EQ(TruncAndFrac(-2.75, f), -2);
  EXPECT_EQ(f, -0.75);
  EXPECT_RAISES(Floor(NAN), "Integer overflow");
  EXPECT_RAISES(Ceil(INF), "Integer overflow");
  EXPECT_RAISES(aRound(2147483647.5), "Integer overflow");
  EXPECT_RAISES(TruncAndFrac(-3e9, f), "Integer overflow");
  EXPECT_EQ(Floor(-2147483648.0), -2147483647 - 1);

  EXPECT_TRUE(Equal(1.0, 1.0 + 4 * kEps));
  EXPECT_FALSE(Equal(1.0, 1.0 + 8 * kEps));
  EXPECT_FALSE(Equal(NAN, NAN));
  EXPECT_TRUE(Equal(INF, INF));
  EXPECT_EQ(IntPower(2.0, -3), 0.125);
  EXPECT_EQ(IntPower(-3.0, 3), -27);
  EXPECT_EQ(IntPower(2.0, -2147483647 - 1), 0.0);
}

TEST(ProcessGenerator, SeedingRepeatsTheSequence) {
  RandSeed(2026);
  double a = Random(), b = Random();
  RandSeed(2026);
  EXPECT_EQ(Random(), a);
  EXPECT_EQ(Random(), b);
  for (int i = 0; i < 1000; ++i) {
    double u = Random();
    ASSERT_TRUE(u >= 0.0 && u < 1.0);
  }
}

}  // namespace
}  // namespace statkit
