// Element-wise arithmetic, reductions and sorting: accuracy of the sums,
// aliasing of outputs and inputs, NaN handling and the stability of the
// permutation that the sort returns.

#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <variant>

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
  // An infinite term, or a sum that overflows, gives an infinite sum, not the NaN of its compensation.
  v[n / 2] = INF;
  EXPECT_EQ(v.Sum(), INF);
  v.SetVal(1e308);
  EXPECT_EQ(v.Sum(), INF);
}

// The standard deviation is held to NIST's univariate sets (through StdCols) and,
// about a given mean, to R's t.test; its complex form to StdCols' complex columns.
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
  EXPECT_DOUBLE_EQ(z.NormL2(), std::sqrt(11.25));
}

// Each case computes into one of its inputs and returns the result.
TEST(Arithmetic, OutputsMayAliasInputs) {
  const struct {
    const char* label;
    std::function<TVec()> result;
    std::vector<double> expected;
  } cases[] = {
      {"Add(a, a)", [] { TVec a{1, 2, 3}; a.Add(a, a); return a; }, {2, 4, 6}},
      {"Mul(a)", [] { TVec a{1, 2, 3}; a.Mul(a); return a; }, {1, 4, 9}},
      {"Normalize(b, 2, 2)", [] { TVec b{4, 8}; b.Normalize(b, 2, 2); return b; }, {1, 3}},
      {"Inv(b)", [] { TVec b{4, 0.5}; b.Inv(b); return b; }, {0.25, 2}},
      // in place: reads i + 1 before writing i
      {"Difference", [] { TVec c{1, 4, 9, 16}; c.Difference(c, 0, 0, 4); return c; }, {3, 5, 7, 16}},
      {"CumSum from 1", [] { TVec d{1, 2, 3, 4}; d.CumSum(1, -1); return d; }, {1, 2, 5, 9}},
      // divided by n at every lag, zero beyond the series
      {"AutoCorrBiased of itself", [] { TVec r{1, 2, 3}; r.AutoCorrBiased(r, 4); return r; }, {14.0 / 3, 8.0 / 3, 1, 0, 0}},
  };
  for (const auto& c : cases) {
    const TVec r = c.result();
    EXPECT_EQ(std::vector<double>(r.begin(), r.end()), c.expected) << c.label;
  }
}

TEST(Arithmetic, InvElemGuardsTinyElements) {
  TMtx m{{2, 0}, {-1e-310, 1e-300}};
  m.InvElem(1e-305);
  // zero counts as positive; the sign of a tiny element is kept
  EXPECT_TRUE(m(0, 0) == 0.5 && m(0, 1) == 1e305 && m(1, 0) == -1e305);
  EXPECT_DOUBLE_EQ(m(1, 1), 1e300);
}

// The sorted values are held to SciPy's ranks (tests/reference/ranks.txt: 3000
// values for the radix path, infinities, signed zeros, subnormals) and, on 2^18
// values with NaNs, to the selection of Percentile; here the permutation.
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

// Each row: a call, and the int it returns or the message it raises.
TEST(ScalarFunctions, RoundingAndConversionsRefuseWhatAnIntCannotHold) {
  double frac = 0;
  const struct {
    const char* label;
    std::function<int()> call;
    std::variant<int, const char*> expected;
  } cases[] = {
      {"aRound(2.5) to even", [] { return aRound(2.5); }, 2},
      {"aRound(3.5) to even", [] { return aRound(3.5); }, 4},
      {"aRound(-2.5) to even", [] { return aRound(-2.5); }, -2},
      {"aRound just below a half", [] { return aRound(2.4999999999999996); }, 2},
      {"Floor(-0.5)", [] { return Floor(-0.5); }, -1},
      {"Ceil(-0.5)", [] { return Ceil(-0.5); }, 0},
      {"Floor(INT_MIN)", [] { return Floor(-2147483648.0); }, INT_MIN},
      {"Ceil just above INT_MIN - 1", [] { return Ceil(-2147483648.5); }, INT_MIN},
      {"TruncAndFrac(-2.75)", [&] { return TruncAndFrac(-2.75, frac) * 100 + int(frac * 100); }, -275},
      {"Floor(NaN)", [] { return Floor(NAN); }, "Integer overflow"},
      {"Ceil(INF)", [] { return Ceil(INF); }, "Integer overflow"},
      {"Ceil just above INT_MAX", [] { return Ceil(2147483647.0000005); }, "Integer overflow"},
      {"Floor just below INT_MIN", [] { return Floor(-2147483648.0000005); }, "Integer overflow"},
      {"aRound(INT_MAX + 0.5) to even", [] { return aRound(2147483647.5); }, "Integer overflow"},
      {"TruncAndFrac(-3e9)", [&] { return TruncAndFrac(-3e9, frac); }, "Integer overflow"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.label);
    if (const int* want = std::get_if<int>(&c.expected)) EXPECT_EQ(c.call(), *want);
    else EXPECT_TRUE(test::RaisesExactly(c.call, std::get<const char*>(c.expected)));
  }
  EXPECT_TRUE(Equal(1.0, 1.0 + 4 * kEps));
  EXPECT_FALSE(Equal(1.0, 1.0 + 8 * kEps));
  EXPECT_FALSE(Equal(NAN, NAN));
  EXPECT_TRUE(Equal(INF, INF));
  EXPECT_EQ(IntPower(2.0, -3), 0.125);
  EXPECT_EQ(IntPower(2.0, -2147483647 - 1), 0.0);
}

}  // namespace
}  // namespace statkit
