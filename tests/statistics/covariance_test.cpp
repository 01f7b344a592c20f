// Covariance and correlation against numpy.cov / numpy.corrcoef (real and
// complex, both divisors, offset data), autocorrelation and partial
// autocorrelation against statsmodels, and the nesting of error prefixes.

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <tuple>

#include "statkit/Statistics.h"
#include "support/expect.h"
#include "support/fixture.h"

namespace statkit::Statistics {
namespace {

using test::kEps;

// The references sum in another order: both sides carry rounding errors of a few dozen
// ulps of the scale, which for a cross product is sqrt(C(i, i) C(j, j)) (Cauchy-Schwarz).
constexpr double kTol = 1e-13;

TMtx complexOrReal(const test::Record& r, const std::string& key) {
  TMtx re = r.Mtx(key + "re");
  if (!r.Has(key + "im")) return re;
  TMtx im = r.Mtx(key + "im");
  TMtx z(re.Rows(), re.Cols(), true);
  for (int i = 0; i < re.Length(); ++i) z.CValues(i) = {re.data()[i], im.data()[i]};
  return z;
}

TVec column(const TMtx& m) {
  TVec v;
  v.Copy(m);
  return v;
}

TCplx at(const TMtx& m, int i) { return m.Complex() ? m.CValues(i) : TCplx(m.data()[i], 0.0); }

// Every element within kTol of the scale sqrt(|E(i, i) E(j, j)|) (1 for a correlation).
void expectMatrixNear(const TMtx& actual, const TMtx& expected, bool correlation) {
  ASSERT_EQ(actual.Rows(), expected.Rows());
  ASSERT_EQ(actual.Cols(), expected.Cols());
  ASSERT_EQ(actual.Complex(), expected.Complex());
  const int p = expected.Rows();
  for (int i = 0; i < p; ++i)
    for (int j = 0; j < p; ++j) {
      const double scale =
          correlation ? 1.0 : std::sqrt(std::abs(at(expected, i * p + i)) * std::abs(at(expected, j * p + j)));
      EXPECT_LE(std::abs(at(actual, i * p + j) - at(expected, i * p + j)), kTol * scale) << "(" << i << ", " << j << ")";
    }
}

TEST(Covariance, MatchesNumpyCovAndCorrcoef) {
  for (const auto& r : test::LoadFixture("covariance.txt")) {
    test::PoolBalance pool;
    const std::string kind = r.Str("kind");
    const bool biased = r.Int("biased") != 0;
    SCOPED_TRACE(kind + (biased ? " biased" : " unbiased"));
    const TMtx x = complexOrReal(r, "x"), cov = complexOrReal(r, "cov");
    TMtx c, rho, inPlace;
    if (kind == "vec") {
      double v = -1;
      Covariance(column(x), v, biased);
      EXPECT_REL(v, cov.data()[0], kTol);
      continue;
    }
    if (kind == "pair") {
      const TVec a = column(x), b = column(complexOrReal(r, "y"));
      Covariance(a, b, c, biased);
      CorrCoef(a, b, rho);
    } else if (kind == "mtx") {  // the second call of each form writes into its input
      Covariance(x, c, biased);
      CorrCoef(x, rho);
      Covariance(inPlace = x, inPlace, biased);
      expectMatrixNear(inPlace, cov, false);
      CorrCoef(inPlace = x, inPlace);
    } else {
      const TMtx y = complexOrReal(r, "y");
      Covariance(x, y, c, biased);
      CorrCoef(x, y, rho);
      Covariance(inPlace = x, y, inPlace, biased);
      expectMatrixNear(inPlace, cov, false);
      CorrCoef(x, inPlace = y, inPlace);
    }
    expectMatrixNear(c, cov, false);
    expectMatrixNear(rho, complexOrReal(r, "corr"), true);
    if (kind != "pair") expectMatrixNear(inPlace, complexOrReal(r, "corr"), true);
  }
}

TEST(CorrCoef, ConstantColumnGivesNaNItsRowAndColumn) {
  TMtx rho;
  CorrCoef(TMtx{{1, 5, 2}, {2, 5, 4}, {4, 5, 5}}, rho);
  for (int k = 0; k < 3; ++k) EXPECT_TRUE(std::isnan(rho(1, k)) && std::isnan(rho(k, 1))) << k;
  EXPECT_TRUE(rho(0, 0) == 1.0 && rho(0, 2) > 0.9);
}

TEST(AutoCorrelation, MatchesStatsmodels) {
  for (const auto& r : test::LoadFixture("autocorrelation.txt")) {
    test::PoolBalance pool;
    const TVec x = r.Vec("x");
    const int lags = r.Int("lags");
    TVec acov, acf, pacf, phi, dst, errVar;
    AutoCov(x, acov, lags);
    ACF(x, acf, lags);
    PACF(acf, pacf);
    PACF(acov, phi, dst, errVar);
    // the recursion divides by prediction-error variances that shrink with the order and
    // sums in another order than statsmodels: about ten ulps of the unit-scale
    // coefficients differ here, so 64 ulps
    const double recursionTol = 64 * kEps;
    for (auto [what, actual, key] : {std::tuple{"AutoCov", &acov, "acov"}, {"ACF", &acf, "acf"}, {"PACF", &pacf, "pacf"},
                                     {"PACF phi", &phi, "phi"}, {"PACF partial", &dst, "pacf"},
                                     {"PACF error variance", &errVar, "errvar"}}) {
      SCOPED_TRACE(what);
      const auto expected = r.Nums(key);
      ASSERT_EQ(actual->Length(), static_cast<int>(expected.size()));
      // lags are compared on the scale of lag 0 (autocovariances) or 1 (correlations)
      const bool variances = std::string(key) == "acov" || std::string(key) == "errvar";
      const double tol = actual == &acov || actual == &acf ? kTol : recursionTol;
      for (int k = 0; k < actual->Length(); ++k)
        EXPECT_LE(std::fabs((*actual)[k] - expected[k]), tol * (variances ? expected[0] : 1.0)) << "lag " << k;
    }
  }
}

TEST(AutoCorrelation, LagsShortSeriesAndAliasing) {
  TVec d{1, 2, 3};
  AutoCov(TVec{}, d, 5);
  EXPECT_EQ(d.Length(), 0);
  AutoCov(TVec(std::vector<double>(100, 1.0)), d, -1);
  EXPECT_EQ(d.Length(), 21);  // ceil(10 log10 100) = 20 lags
  ACF(TVec{1, 3, 2}, d, 5);
  ASSERT_EQ(d.Length(), 6);
  EXPECT_TRUE(d[0] == 1.0 && d[3] == 0.0 && d[4] == 0.0 && d[5] == 0.0);  // zero lags beyond the series
  TVec series{4, 1, 3};
  ACF(series, series, 2);  // in place
  EXPECT_TRUE(series[0] == 1.0 && test::NearRel(series[1], -25.0 / 42.0, 4 * kEps));
  TVec r{1, 0.5, 0.25}, dst, errVar;  // an AR(1) sequence
  PACF(r, r, dst, errVar);  // the coefficients overwrite the sequence they come from
  EXPECT_EQ(std::vector<double>(r.begin(), r.end()), (std::vector<double>{0.5, 0.0}));
  EXPECT_EQ(std::vector<double>(dst.begin(), dst.end()), (std::vector<double>{0.5, 0.0}));
  EXPECT_EQ(std::vector<double>(errVar.begin(), errVar.end()), (std::vector<double>{1.0, 0.75}));
  PACF(TVec{1}, dst);
  EXPECT_EQ(dst.Length(), 0);
}

TEST(Covariance, BadInputAndPrefixNesting) {
  TMtx dst;
  TVec phi, pacf, errVar;
  double v;
  TVec cplx;
  cplx.Size(3, true);
  TMtx cplxMtx(2, 3, true);
  const TVec three{1, 2, 3}, four{1, 2, 3, 4};
  const TMtx m32(3, 2), m23(2, 3), m22(2, 2), noRows(0, 2);
  const test::RaiseCase cases[] = {
      {"Covariance: X.Length <> Y.Length", [&] { Covariance(three, four, dst, false); }},
      {"Covariance: X.Complex <> Y.Complex", [&] { Covariance(three, cplx, dst, false); }},
      {"Covariance: X(Rows*Cols) <> X(Rows*Cols)", [&] { Covariance(m32, m22, dst, false); }},
      {"Covariance: X.Complex <> Y.Complex", [&] { Covariance(m23, cplxMtx, dst, true); }},
      {"CorrCoef : Covariance: X.Length <> Y.Length", [&] { CorrCoef(three, four, dst); }},
      {"CorrCoef : Covariance: X(Rows*Cols) <> X(Rows*Cols)", [&] { CorrCoef(m22, m32, dst); }},
      {"Covariance : Empty vector", [&] { Covariance(TVec{}, v, false); }},
      {"Covariance : Empty vector", [&] { Covariance(noRows, dst, false); }},
      // each block on the way adds its prefix: CorrCoef, the two-vector and the matrix form
      {"CorrCoef : Covariance : Covariance : Empty vector", [&] { CorrCoef(TVec{}, TVec{}, dst); }},
      {"Integer overflow", [&] { ACF(three, pacf, std::numeric_limits<int>::max()); }},
      {"PACF: Src.Length < 2", [&] { PACF(TVec{1}, phi, pacf, errVar); }},
  };
  test::ExpectEachRaises(cases);
}

}  // namespace
}  // namespace statkit::Statistics
