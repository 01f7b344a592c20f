// Means, moments, ranges, row and column standard deviations and z-scores:
// closed-form cases that pin each definition (trimming bounds, the moment's
// given mean, complex ranges), degenerate input, aliasing and the messages.

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "statkit/Statistics.h"
#include "support/expect.h"

namespace statkit::Statistics {
namespace {

using test::kEps;

TEST(Location, ClosedFormCases) {
  struct Case {
    const char* what;
    std::function<double()> value;
    double expected;
    double tol;
  } cases[] = {
      {"geometric mean", [] { return MeanG(TVec{1, 4, 16}); }, 4.0, 4 * kEps},
      {"harmonic mean", [] { return MeanH(TVec{1, 2, 4}); }, 12.0 / 7.0, 4 * kEps},
      {"geometric mean of nothing", [] { return MeanG(TVec{}); }, NAN, 0},
      {"harmonic mean of nothing", [] { return MeanH(TVec{}); }, NAN, 0},
      {"geometric mean of a negative value", [] { return MeanG(TVec{-1, 4}); }, NAN, 0},
      {"trimmed mean with nothing trimmed is the mean", [] { return MeanT(TVec{1, 2, 3, 10}, 0); }, 4.0, 0},
      // lo = 1.2 and hi = 80.8 by the n+1 rule: 2, 3 and 4 stay, 1 and 100 go
      {"trimmed mean bounds from the n+1 percentiles", [] { return MeanT(TVec{100, 1, 3, 2, 4}, 0.4); }, 3.0, 0},
      {"trimmed mean keeps elements equal to a bound", [] { return MeanT(TVec{1, 1, 1, 5}, 0.5); }, 1.0, 0},
      {"trimmed mean just below 1", [] { return MeanT(TVec{3, 1, 2}, 0.99); }, 2.0, 0},
      {"trimmed mean keeps NaNs", [] { return MeanT(TVec{1, NAN, 2}, 0); }, NAN, 0},
      {"second moment about a given mean", [] { return Moment(TVec{1, 2, 3}, 2, 2); }, 2.0 / 3.0, kEps},
      {"third moment about another mean", [] { return Moment(TVec{1, 2, 3}, 0, 3); }, 12.0, 0},
      {"moment of order 1", [] { return Moment(TVec{1, 2, 3}, 0, 1); }, 0.0, 0},
      {"moment of order 0 of nothing", [] { return Moment(TVec{}, 5, 0); }, 0.0, 0},
      {"second moment of nothing", [] { return Moment(TVec{}, 5, 2); }, NAN, 0},
      {"range with an infinity", [] { return Range(TVec{-INF, 2}); }, INF, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_REL(c.value(), c.expected, c.tol);
  }
}

// Real StdCols is held to NIST's univariate sets; here the other direction and the complex forms.
TEST(Location, RowsAndColumnsRealAndComplex) {
  const TMtx m{{1, 7, 4}, {3, 5, 4}};
  TVec d;
  StdRows(m, d);
  ASSERT_EQ(d.Length(), 2);
  EXPECT_TRUE(test::NearRel(d[0], 3.0, kEps) && test::NearRel(d[1], 1.0, kEps));
  RangeCols(m, d);
  EXPECT_EQ(d[1], 2.0);
  RangeRows(m, d);
  EXPECT_EQ(d[0], 6.0);
  TMtx z(2, 2, true);
  z.CValues(0, 0) = {1, 1};
  z.CValues(1, 0) = {3, 3};
  z.CValues(0, 1) = {0, -2};
  z.CValues(1, 1) = {1, 0};
  StdCols(z, d);
  ASSERT_TRUE(d.Complex());
  EXPECT_REL(d.CValues(0).real(), 2.0, kEps);  // |1+i - (2+2i)|^2 + |3+3i - (2+2i)|^2 = 4, divisor 1
  EXPECT_EQ(d.CValues(0).imag(), 0.0);
  RangeCols(z, d);
  ASSERT_TRUE(d.Complex());
  // largest minus smallest magnitude: (3+3i) - (1+i) and (0-2i) - (1+0i)
  EXPECT_EQ(d.CValues(0), TCplx(2, 2));
  EXPECT_EQ(d.CValues(1), TCplx(-1, -2));
}

TEST(ZScore, ColumnsAreCentredAndScaledInPlaceToo) {
  // column means 4, 30 and 5; sums of squared deviations 38, 1400 and 0 over n - 1 = 3:
  // the constant column divides 0 by a zero deviation
  const TMtx data{{1, 10, 5}, {2, 30, 5}, {4, 20, 5}, {9, 60, 5}};
  const double mean[] = {4, 30, 5}, sd[] = {std::sqrt(38.0 / 3), std::sqrt(1400.0 / 3), 0.0};
  TMtx z, sameObject = data;
  ZScore(data, z);
  ZScore(sameObject, sameObject);
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 3; ++c) {
      EXPECT_REL(z(r, c), (data(r, c) - mean[c]) / sd[c], 2 * kEps) << "(" << r << ", " << c << ")";
      EXPECT_REL(sameObject(r, c), z(r, c), 0.0);
    }
  TMtx cz(2, 1, true), out;
  cz.CValues(0) = {1, 1};
  cz.CValues(1) = {3, 3};
  ZScore(cz, out);
  EXPECT_EQ(out.CValues(1), TCplx(0.5, 0.5));
}

TEST(Location, BadInput) {
  TVec cplx, d;
  cplx.Size(3, true);
  TMtx noRows(0, 2), noCols(2, 0), out;
  const test::RaiseCase cases[] = {
      {"MeanGData.Complex = true", [&] { (void)MeanG(cplx); }},
      {"MeanHData.Complex = true", [&] { (void)MeanH(cplx); }},
      {"MeanTData.Complex = true", [&] { (void)MeanT(cplx, 0.1); }},
      {"MeanT(Percent >= 100) or (Percent < 0)", [&] { (void)MeanT(TVec{1, 2}, 1.0); }},
      {"MeanT(Percent >= 100) or (Percent < 0)", [&] { (void)MeanT(TVec{1, 2}, -0.01); }},
      {"MeanT(Percent >= 100) or (Percent < 0)", [&] { (void)MeanT(TVec{1, 2}, NAN); }},
      {"MeanT : Percentile : Empty vector", [&] { (void)MeanT(TVec{}, 0.1); }},
      {"Moment : X.Complex = true", [&] { (void)Moment(cplx, 0, 0); }},
      {"Range: X.Complex := true", [&] { (void)Range(cplx); }},
      {"Range : Empty vector", [&] { (void)Range(TVec{}); }},
      {"RangeRows : Empty vector", [&] { RangeRows(noCols, d); }},
      {"StdCols : Empty vector", [&] { StdCols(noRows, d); }},
      {"ZScore : StdCols : Empty vector", [&] { ZScore(noRows, out); }},
  };
  test::ExpectEachRaises(cases);
}

}  // namespace
}  // namespace statkit::Statistics
