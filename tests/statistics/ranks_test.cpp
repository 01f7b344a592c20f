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

TEST(TiedRanks, MatchesScipyRankdataAndNumpyUnique) {
  for (const auto& r : test::LoadFixture("ranks.txt")) {
    test::PoolBalance pool;
    const TVec data = r.Vec("data");
    TVec ranks, distinct;
    double tieSum = -1;
    TiedRanks(data, ranks, tieSum);
    Unique(data, distinct);
    // average ranks are half-integers, exact in double: compared exactly
    EXPECT_EQ(std::vector<double>(ranks.begin(), ranks.end()), r.Nums("ranks"));
    EXPECT_EQ(tieSum, r.Num("tiesum"));
    EXPECT_EQ(std::vector<double>(distinct.begin(), distinct.end()), r.Nums("unique"));
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

TEST(TiedRanks, NaNsRankLastEmptyInputLeavesOutputsAndAliasing) {
  TVec ranks;
  double tieSum = -1;
  TiedRanks(TVec{NAN, 2.0, NAN, 1.0, 2.0}, ranks, tieSum);
  // the NaNs take ranks 4 and 5 in their original order; the two 2s share 2.5
  EXPECT_EQ(std::vector<double>(ranks.begin(), ranks.end()), (std::vector<double>{4.0, 2.5, 5.0, 1.0, 2.5}));
  EXPECT_EQ(tieSum, 3.0);
  TiedRanks(TVec{}, ranks, tieSum);
  EXPECT_EQ(ranks.Length(), 5);
  EXPECT_EQ(tieSum, 3.0);
  TVec v{5.0, 5.0, 1.0, 3.0};
  TiedRanks(v, v, tieSum);
  EXPECT_EQ(std::vector<double>(v.begin(), v.end()), (std::vector<double>{3.5, 3.5, 1.0, 2.0}));
  Unique(TVec{3.0, 1.0, 3.0}, v);
  Unique(v, v);
  EXPECT_EQ(std::vector<double>(v.begin(), v.end()), (std::vector<double>{1.0, 3.0}));
}

TEST(RanksAndUnique, BadInput) {
  TVec dst, ranks, cplx;
  double tieSum;
  cplx.Size(2, true);
  const test::RaiseCase cases[] = {
      {"Empty vector", [&] { Unique(TVec{}, dst); }},
      {"Complex data not supported", [&] { Unique(cplx, dst); }},
      {"Complex data not supported", [&] { TiedRanks(cplx, ranks, tieSum); }},
  };
  test::ExpectEachRaises(cases);
}

}  // namespace
}  // namespace statkit::Statistics
