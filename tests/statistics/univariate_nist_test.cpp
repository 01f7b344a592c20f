// NIST StRD univariate sets: mean (array layer), standard deviation (StdCols)
// and lag-1 autocorrelation (ACF), each within 0.5 digits of the best LRE the
// double-precision data allow (computed exactly by the fixture's generator).

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "statkit/Statistics.h"
#include "support/fixture.h"
#include "support/nist.h"

namespace statkit::Statistics {
namespace {

TEST(NistUnivariate, MeanStdDevAndLag1AutocorrelationReachTheAttainableDigits) {
  const std::string dir = test::StrdDir();
  if (dir.empty()) GTEST_SKIP() << "NIST StRD folder not present";
  for (const auto& r : test::LoadFixture("univariate_nist.txt")) {
    const std::string name = r.Str("name");
    SCOPED_TRACE(name);
    const test::StrdSet set = test::ReadStrd("univ/" + name);
    const TVec y = set.Column(0);
    ASSERT_EQ(y.Length(), r.Int("n"));
    TMtx column(y.Length(), 1);
    std::copy(y.begin(), y.end(), column.data());
    TVec sd, acf;
    StdCols(column, sd);
    ACF(y, acf, 1);
    // each fixture line: certified value, the exact value of the doubles, best attainable LRE
    const struct {
      const char* key;
      const char* certified;
      double value;
    } stats[] = {{"mean", "Sample Mean", y.Mean()},
                 {"sd", "Sample Standard Deviation", sd[0]},
                 {"r1", "Sample Autocorrelation", acf[1]}};
    std::printf("  %-9s", name.c_str());
    for (const auto& s : stats) {
      const auto c = r.Nums(s.key);
      EXPECT_EQ(set.Values(s.certified)[0], c[0]) << s.key << ": the file and the fixture disagree";
      const double lre = test::LRE(s.value, c[0]);
      std::printf("  %s LRE %5.2f (best %5.2f)", s.key, lre, c[2]);
      EXPECT_GE(lre, c[2] - 0.5) << s.key << " = " << s.value << ", certified " << c[0];
    }
    std::printf("\n");
  }
}

}  // namespace
}  // namespace statkit::Statistics
