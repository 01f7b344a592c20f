// Tied ranks against scipy.stats.rankdata and distinct values against
// numpy.unique, plus what the references cannot show: the Equal tolerance of
// Unique, NaNs, untouched outputs on empty input, and aliasing.

#include <gtest/gtest.h>

#include <cmath>

#include "statkit/Statistics.h"
#include "support/expect.h"
#include "support/fixture.h"

namespace statkit::Statistics {
namespace {

using test::kEps;

TEST(TiedRanks, MatchesScipyRankdataAndTieCounts) {
  for (const auto& r : test::LoadFixture("ranks.txt")) {
    test::PoolBalance pool;
    const TVec data = r.Vec("data"), expected = r.Vec("ranks");
    TVec ranks;
    double tieSum = -1;
    TiedRanks(data, ranks, tieSum);
    ASSERT_EQ(ranks.Length(), data.Length());
    // average ranks are half-integers: exact in double, so compared exactly
    for (int i = 0; i < data.Length(); ++i) EXPECT_EQ(ranks[i], expected[i]) << "element " << i;
    EXPECT_EQ(tieSum, r.Num("tiesum"));
  }
}

TEST(Unique, MatchesNumpyUnique) {
  for (const auto& r : test::LoadFixture("ranks.txt")) {
    TVec dst;
    Unique(r.Vec("data"), dst);
    const auto expected = r.Nums("unique");
    ASSERT_EQ(dst.Length(), static_cast<int>(expected.size()));
    for (int i = 0; i < dst.Length(); ++i) EXPECT_EQ(dst[i], expected[i]);
  }
}

TEST(Unique, MergesNeighboursWithinEqualTolerance) {
  struct Case {
    const char* what;
    TVec src;
    std::vector<double> expected;
  } cases[] = {
      {"one ulp apart merge", {1.0 + kEps, 1.0, 2.0}, {1.0, 2.0}},
      {"twenty ulps apart stay", {1.0, 1.0 + 20 * kEps}, {1.0, 1.0 + 20 * kEps}},
      // each value is within tolerance of its predecessor, not of the first kept one
      {"a chain collapses to its first", {1.0 + 9 * kEps, 1.0, 1.0 + 3 * kEps, 1.0 + 6 * kEps}, {1.0}},
      {"a single value", {7.0}, {7.0}},
      {"NaNs are never equal", {NAN, 1.0, NAN}, {1.0, NAN, NAN}},
      {"signed zeros are equal", {0.0, -0.0}, {0.0}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    TVec dst{99.0};
    Unique(c.src, dst);
    ASSERT_EQ(dst.Length(), static_cast<int>(c.expected.size()));
    for (int i = 0; i < dst.Length(); ++i)
      EXPECT_TRUE(dst[i] == c.expected[i] || (std::isnan(dst[i]) && std::isnan(c.expected[i])));
  }
}

TEST(TiedRanks, NaNsRankLastAndNeverTie) {
  TVec ranks;
  double tieSum = -1;
  TiedRanks(TVec{NAN, 2.0, NAN, 1.0, 2.0}, ranks, tieSum);
  // the NaNs take ranks 4 and 5 in their original order; the two 2s share 2.5
  const double expected[] = {4.0, 2.5, 5.0, 1.0, 2.5};
  for (int i = 0; i < 5; ++i) EXPECT_EQ(ranks[i], expected[i]);
  EXPECT_EQ(tieSum, 3.0);
}

TEST(TiedRanks, EmptyDataLeavesOutputsAlone) {
  TVec ranks{5.0, 6.0};
  double tieSum = 42.0;
  TiedRanks(TVec{}, ranks, tieSum);
  EXPECT_EQ(ranks.Length(), 2);
  EXPECT_EQ(ranks[1], 6.0);
  EXPECT_EQ(tieSum, 42.0);
}

TEST(RanksAndUnique, OutputMayBeTheInput) {
  TVec v{5.0, 5.0, 1.0, 3.0};
  double tieSum = 0;
  TiedRanks(v, v, tieSum);
  EXPECT_EQ(v[0], 3.5);
  EXPECT_EQ(v[2], 1.0);
  EXPECT_EQ(tieSum, 3.0);
  TVec u{3.0, 1.0, 3.0, 2.0, 1.0};
  Unique(u, u);
  ASSERT_EQ(u.Length(), 3);
  EXPECT_EQ(u[2], 3.0);
}

TEST(RanksAndUnique, BadInput) {
  TVec dst, ranks;
  double tieSum;
  TVec cplx;
  cplx.Size(2, true);
  EXPECT_RAISES(Unique(TVec{}, dst), "Empty vector");
  EXPECT_RAISES(Unique(cplx, dst), "Complex data not supported");
  EXPECT_RAISES(TiedRanks(cplx, ranks, tieSum), "Complex data not supported");
}

}  // namespace
}  // namespace statkit::Statistics
