// Full factorial designs: the bit order and scaling of the two-level design,
// the level order of the mixed design, and the refused sizes.

#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "statkit/Statistics.h"
#include "support/expect.h"

namespace statkit::Statistics {
namespace {

using Rows = std::vector<std::vector<double>>;

TEST(FullFactDesign, RowOrderScalingAndLevels) {
  const TVec scale{10, 20, 30};
  const struct {
    const char* what;
    std::function<void(TMtx&)> call;
    Rows expected;
  } cases[] = {
      {"two levels count in binary, most significant first", [](TMtx& d) { FullFactDesign(2, d); },
       {{0, 0}, {0, 1}, {1, 0}, {1, 1}}},
      // MulVec[0] scales the last, fastest column; row 5 = binary 101
      {"scaled two levels", [&](TMtx& d) { FullFactDesign(3, d, &scale); },
       {{0, 0, 0}, {0, 0, 10}, {0, 20, 0}, {0, 20, 10}, {30, 0, 0}, {30, 0, 10}, {30, 20, 0}, {30, 20, 10}}},
      {"mixed levels, first column fastest", [](TMtx& d) { FullFactDesign(TVec{2, 3}, d); },
       {{1, 1}, {2, 1}, {1, 2}, {2, 2}, {1, 3}, {2, 3}}},
      // counts are truncated each on its own: 2.9 and 3.99 are 2 and 3 (the product 11.57 would give 11 rows)
      {"truncated levels", [](TMtx& d) { FullFactDesign(TVec{2.9, 3.99}, d); },
       {{1, 1}, {2, 1}, {1, 2}, {2, 2}, {1, 3}, {2, 3}}},
      {"a one-level factor between two others", [](TMtx& d) { FullFactDesign(TVec{2, 1, 2}, d); },
       {{1, 1, 1}, {2, 1, 1}, {1, 1, 2}, {2, 1, 2}}},
      {"no factors: one empty row", [](TMtx& d) { FullFactDesign(0, d); }, {{}}},
      {"no mixed factors: one empty row", [](TMtx& d) { FullFactDesign(TVec{}, d); }, {{}}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    TMtx d;
    c.call(d);
    ASSERT_EQ(d.Rows(), static_cast<int>(c.expected.size()));
    for (int r = 0; r < d.Rows(); ++r) {
      ASSERT_EQ(d.Cols(), static_cast<int>(c.expected[r].size()));
      for (int j = 0; j < d.Cols(); ++j) EXPECT_EQ(d(r, j), c.expected[r][j]) << "(" << r << ", " << j << ")";
    }
  }
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
