// Full factorial designs: the bit order and scaling of the two-level design,
// the level order of the mixed design, and the refused sizes.

#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <vector>

#include "statkit/Statistics.h"
#include "support/expect.h"

namespace statkit::Statistics {
namespace {

using Rows = std::vector<std::vector<double>>;

void expectRows(const TMtx& m, const Rows& expected) {
  ASSERT_EQ(m.Rows(), static_cast<int>(expected.size()));
  for (int r = 0; r < m.Rows(); ++r) {
    ASSERT_EQ(m.Cols(), static_cast<int>(expected[r].size()));
    for (int c = 0; c < m.Cols(); ++c) EXPECT_EQ(m(r, c), expected[r][c]) << "(" << r << ", " << c << ")";
  }
}

TEST(FullFactDesign, TwoLevelRowsCountInBinaryMostSignificantFirst) {
  TMtx d;
  FullFactDesign(2, d);
  expectRows(d, {{0, 0}, {0, 1}, {1, 0}, {1, 1}});
  // MulVec[0] scales the last, fastest column; row 5 = binary 101
  const TVec scale{10, 20, 30};
  FullFactDesign(3, d, &scale);
  expectRows(d, {{0, 0, 0}, {0, 0, 10}, {0, 20, 0}, {0, 20, 10}, {30, 0, 0}, {30, 0, 10}, {30, 20, 0}, {30, 20, 10}});
  FullFactDesign(0, d);
  EXPECT_EQ(d.Rows(), 1);
  EXPECT_EQ(d.Cols(), 0);
}

TEST(FullFactDesign, MixedLevelsFirstColumnFastest) {
  TMtx d;
  FullFactDesign(TVec{2, 3}, d);
  expectRows(d, {{1, 1}, {2, 1}, {1, 2}, {2, 2}, {1, 3}, {2, 3}});
  // counts are truncated each on its own: 2.9 and 3.99 are 2 and 3 (the product 11.57 would give 11 rows)
  FullFactDesign(TVec{2.9, 3.99}, d);
  expectRows(d, {{1, 1}, {2, 1}, {1, 2}, {2, 2}, {1, 3}, {2, 3}});
  FullFactDesign(TVec{}, d);
  EXPECT_EQ(d.Rows(), 1);
  EXPECT_EQ(d.Cols(), 0);
}

TEST(FullFactDesign, MixedLevelsHoldEveryCombinationOnce) {
  TMtx d;
  FullFactDesign(TVec{3, 1, 4, 2}, d);
  ASSERT_EQ(d.Rows(), 24);
  std::set<std::vector<double>> seen;
  for (int r = 0; r < d.Rows(); ++r) seen.insert({d(r, 0), d(r, 1), d(r, 2), d(r, 3)});
  EXPECT_EQ(seen.size(), 24u);
  EXPECT_EQ(*seen.rbegin(), (std::vector<double>{3, 1, 4, 2}));
}

TEST(FullFactDesign, BadInput) {
  TMtx d;
  const TVec three{1, 2, 3};
  const test::RaiseCase cases[] = {
      {"FullFactDesign : FullFactDesign : MulVec.Length <> n", [&] { FullFactDesign(2, d, &three); }},
      {"FullFactDesign : Size mismatch", [&] { FullFactDesign(-1, d); }},
      {"FullFactDesign : Integer overflow", [&] { FullFactDesign(31, d); }},
      {"FullFactDesign : Integer overflow", [&] { FullFactDesign(30, d); }},  // 2^30 rows x 30 columns
      {"FullFactDesign : Levels must be >= 1", [&] { FullFactDesign(TVec{2, 0.5}, d); }},
      {"FullFactDesign : Levels must be >= 1", [&] { FullFactDesign(TVec{NAN}, d); }},
      {"FullFactDesign : Integer overflow", [&] { FullFactDesign(TVec{65536, 65536}, d); }},
      {"FullFactDesign : Integer overflow", [&] { FullFactDesign(TVec{INF}, d); }},
      {"FullFactDesign : Integer overflow", [&] { FullFactDesign(TVec{40000, 40000, 1}, d); }},  // rows x cols
  };
  test::ExpectEachRaises(cases);
}

}  // namespace
}  // namespace statkit::Statistics
