// The exact ARIMA likelihood against its dense definition (Toeplitz correlation
// matrix and its Cholesky factor), ArimaMLE and ArmaAcf against R (arima, ARMAacf),
// forecasts against dense Gaussian conditioning, simulation against ArmaAcf, and
// the unit's table of bad calls.

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "statkit/StatTimeSerAnalysis.h"
#include "statkit/Statistics.h"
#include "support/expect.h"
#include "support/fixture.h"

namespace statkit::StatTimeSerAnalysis {
namespace {

constexpr double kPenalty = 1.797693134862315e308;

TVec differenced(TVec w, int d) {
  for (int k = 0; k < d; ++k) w.Difference();
  return w;
}

// Cholesky factor G of the n x n correlation matrix rho(|i - j|), and G^-1 b by forward substitution.
TMtx choleskyOf(const TVec& rho, int n) {
  TMtx R(n, n);
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j) R(i, j) = rho[std::abs(i - j)];
  R.Cholesky();
  return R;
}
std::vector<double> forward(const TMtx& G, std::vector<double> b, int n) {
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < i; ++j) b[i] -= G(i, j) * b[j];
    b[i] /= G(i, i);
  }
  return b;
}

// The likelihood's dense definition, O(N^3).
double denseArimaLike(const TVec& data, const TVec& P, const TVec& T, int d) {
  std::vector<double> pars(P.begin(), P.end());
  pars.insert(pars.end(), T.begin(), T.end());
  if (Invertability(pars) > 0) return kPenalty;
  const TVec w = differenced(data, d);
  const int n = w.Length();
  TVec rho;
  ArmaAcf(P, T, n - 1, rho, true);
  TMtx G;
  try {
    G = choleskyOf(rho, n);
  } catch (const EArrayError&) {
    return kPenalty;
  }
  std::vector<double> e = forward(G, std::vector<double>(w.begin(), w.end()), n),
                      u = forward(G, std::vector<double>(n, 1.0), n);
  double eu = 0, uu = 0, ss = 0, logDet = 0;
  for (int i = 0; i < n; ++i) eu += e[i] * u[i], uu += u[i] * u[i], logDet += 2 * std::log(G(i, i));
  for (int i = 0; i < n; ++i) ss += std::pow(e[i] - eu / uu * u[i], 2);
  return n * std::log(ss / n) + logDet;
}

double arimaLike(const TVec& data, const TVec& P, const TVec& T, int d) {
  std::vector<double> pars(P.begin(), P.end());
  pars.insert(pars.end(), T.begin(), T.end());
  const double consts[2] = {double(d), double(P.Length())};
  TVec w, acf, ar, ma;
  TMtx m5, m6, m7;
  TObject* const objects[8] = {const_cast<TVec*>(&data), &w, &acf, &ar, &ma, &m5, &m6, &m7};
  return ArimaLike(pars, consts, objects);
}

TVec simulated(const TVec& P, const TVec& T, int d, int n, double mean) {
  RandSeed(17 + n + d);
  TVec x;
  SimulateArima(P, T, TVec(std::vector<double>(d, mean)), n, x);
  if (d == 0) x.Offset(mean);
  return x;
}

struct Model {
  TVec P, T;
};

TEST(ArimaLike, EqualsTheDenseDefinition) {
  const std::vector<Model> models = {
      {{0.5}, {}},
      {{0.995}, {}},
      {{1.2, -0.5}, {}},
      {{}, {0.6}},
      {{}, {-0.99}},
      {{}, {0.5, -0.3}},
      {{0.7}, {-0.4}},
      {{1.1, -0.3}, {0.5}},
      {{0.3}, {0.2, -0.4}},
      {{0.6}, {0.6}},
      {{1.5}, {}},
      {{1.2}, {-0.8}},  // penalty cases
      {{0.2, 0.1, 0.3}, {0.5, 0.2}},
  };
  for (int d = 0; d <= 2; ++d)
    for (int n : {2 + d, 25, 500})
      for (const Model& m : models) {
        const TVec data = simulated({0.7}, {0.3}, d, n, 5.0);
        const double dense = denseArimaLike(data, m.P, m.T, d), fast = arimaLike(data, m.P, m.T, d);
        SCOPED_TRACE("d " + std::to_string(d) + " n " + std::to_string(n) + " p " +
                     std::to_string(m.P.Length()));
        // Cholesky and innovations round differently; 1e-10 relative, or 1e-10 N where the value is near 0.
        EXPECT_NEAR(fast, dense, 1e-10 * std::max(std::fabs(dense), double(n)));
      }
}

TEST(ArimaMLE, MatchesRArima) {
  int cases = 0;
  for (const test::Record& r : test::LoadFixture("arima.txt")) {
    if (r.Str("kind") == "acf") {
      TVec rho;
      ArmaAcf(r.Vec("ar"), r.Vec("ma"), 12, rho, true);
      for (int k = 0; k <= 12; ++k) EXPECT_NEAR(rho[k], r.Nums("rho")[k], 1e-13) << k;
      continue;
    }
    SCOPED_TRACE(++cases);
    TVec P(std::vector<double>(r.Int("p"), 0.0)), T(std::vector<double>(r.Int("q"), 0.0)), aux;
    test::PoolBalance balance;
    ArimaMLE(r.Vec("data"), P, T, r.Int("d"), aux);
    std::vector<double> coef(P.begin(), P.end()), expected = r.Nums("ar"), ma = r.Nums("ma");
    coef.insert(coef.end(), T.begin(), T.end());
    expected.insert(expected.end(), ma.begin(), ma.end());
    for (std::size_t j = 0; j < coef.size(); ++j) {
      EXPECT_NEAR(coef[j], expected[j], 1e-4);
      // R's standard errors come from a finite-difference Hessian of its own
      EXPECT_REL(aux[5 + int(j)], r.Nums("se")[j], 1e-3);
    }
    EXPECT_REL(aux[0], r.Num("sigma2"), 1e-4);
    EXPECT_NEAR(aux[1], r.Num("mu"), 1e-4);
    EXPECT_REL(aux[2], r.Num("m2ll"), 1e-6);
    EXPECT_NEAR(aux[3] - aux[2], 2.0 * (coef.size() + 2), 1e-9);
  }
  EXPECT_EQ(cases, 10);
}

// CondNormal written out: the future block given the observed block of the (M + h) Toeplitz matrix.
void densePredict(const TVec& data, const TVec& P, const TVec& T, int d, int h, TVec& f, TVec& se) {
  TVec w = differenced(data, d);
  const int M = w.Length();
  const double mean = w.Mean();
  w.Offset(-mean);
  const double s = w.RMS();
  TVec rho;
  ArmaAcf(P, T, M + h, rho, true);
  const TMtx G = choleskyOf(rho, M);
  const std::vector<double> u = forward(G, std::vector<double>(w.begin(), w.end()), M);
  std::vector<std::vector<double>> V(h);
  f.Size(h);
  se.Size(h);
  for (int k = 0; k < h; ++k) {
    std::vector<double> col(M);
    for (int j = 0; j < M; ++j) col[j] = rho[M + k - j];
    V[k] = forward(G, col, M);
    f[k] = 0;
    for (int j = 0; j < M; ++j) f[k] += V[k][j] * u[j];
  }
  for (int k = 0; k < h; ++k) {  // (L C L')[k][k] with the weights C(i + d - 1, d - 1)
    double v = 0;
    for (int a = 0; a <= k; ++a)
      for (int b = 0; b <= k; ++b) {
        double c = rho[std::abs(a - b)];
        for (int j = 0; j < M; ++j) c -= V[a][j] * V[b][j];
        auto weight = [d](int i) {
          return d == 0 ? double(i == 0) : std::tgamma(i + d) / std::tgamma(i + 1) / std::tgamma(d);
        };
        v += weight(k - a) * weight(k - b) * c;
      }
    se[k] = s * std::sqrt(v);
  }
  std::vector<double> x(data.end() - d, data.end());
  for (int k = 0; k < h; ++k) {  // undo the differences: x_(N+k) from the d values before it
    double next = f[k] + (d == 0 ? mean : 0.0);
    for (int j = 1; j <= d; ++j)
      next -= std::tgamma(d + 1) / std::tgamma(j + 1) / std::tgamma(d - j + 1) * (j % 2 ? -1 : 1) *
              x[x.size() - j];
    x.push_back(next);
    f[k] = next;
  }
}

TEST(PredictArima, EqualsDenseConditioning) {
  const std::vector<Model> models = {
      {{0.5}, {}}, {{}, {0.6, -0.2}}, {{1.1, -0.3}, {0.5}}, {{0}, {}}, {{0.9}, {-0.5}}};
  for (int d = 0; d <= 2; ++d)
    for (int n : {d + 1, d + 2, 40})
      for (const Model& m : models) {
        SCOPED_TRACE("d " + std::to_string(d) + " n " + std::to_string(n));
        const TVec data = simulated({0.6}, {0.2}, d, n, 3.0);
        TVec f, se, ef, ese;
        PredictArima(data, m.P, m.T, d, 7, f, se);
        densePredict(data, m.P, m.T, d, 7, ef, ese);
        for (int k = 0; k < 7; ++k) {
          EXPECT_NEAR(f[k], ef[k], 1e-9 * std::max(1.0, std::fabs(ef[k])));
          EXPECT_NEAR(se[k], ese[k], 1e-9 * std::max(1.0, ese[k]));
        }
      }
}

TEST(SimulateArma, HasTheTheoreticalAutocorrelations) {
  const TVec P{0.5, -0.3}, T{0.4};
  TVec x, rho, r;
  RandSeed(5);
  SimulateArma(P, T, 1000000, x);
  ArmaAcf(P, T, 300, rho, true);
  Statistics::ACF(x, r, 5);
  for (int k = 1; k <= 5; ++k) {  // Bartlett's variance of the sample autocorrelation
    double v = 0;
    for (int j = 1; j + k <= 300; ++j)
      v += std::pow(rho[j + k] + rho[std::abs(j - k)] - 2 * rho[j] * rho[k], 2);
    EXPECT_NEAR(r[k], rho[k], 5 * std::sqrt(v / x.Length())) << k;
  }
}

TEST(SimulateArima, IntegratesFromTheStartValues) {
  TVec arma, x, y;
  RandSeed(9);
  SimulateArma({0.5}, {0.2}, 6, arma);
  RandSeed(9);
  SimulateArima({0.5}, {0.2}, {}, 6, x);
  EXPECT_EQ(std::vector<double>(x.begin(), x.end()), std::vector<double>(arma.begin(), arma.end()));
  RandSeed(9);
  SimulateArima({0.5}, {0.2}, {10, 1}, 6, y);  // level 10, first difference 1, then the ARMA values
  double level = 10, diff = 1;
  for (int t = 0; t < 6; level += diff, diff += arma[t], ++t) EXPECT_DOUBLE_EQ(y[t], level) << t;
}

TEST(TimeSeries, ExactValuesAndBadCalls) {
  TVec a, s, f, e, aux, P{0.5}, T{}, x{1, 2, 4, 3, 5, 6};
  double al = 0.3, be = 0.1, ga = 0.1;
  ArmaAcf({0.5}, {}, 3, a, true);
  EXPECT_EQ(std::vector<double>(a.begin(), a.end()), (std::vector<double>{1, 0.5, 0.25, 0.125}));
  ArmaAcf({0.5}, {}, 1, a, false);
  EXPECT_REL(a[0], 4.0 / 3, 2 * test::kEps);
  ArmaAcf({}, {0.5}, 3, a, false);  // MA sign: gamma(1) = -theta; zeros past q
  EXPECT_EQ(std::vector<double>(a.begin(), a.end()), (std::vector<double>{1.25, -0.5, 0, 0}));
  ArmaAcf({0.2, 0.1, 0.3}, {}, 1, a, false);
  EXPECT_EQ(a.Length(), 2);
  EXPECT_REL(Invertability(std::vector<double>{0.5}), -1.0, 4 * test::kEps);
  EXPECT_REL(Invertability(std::vector<double>{2}), 0.5, 4 * test::kEps);
  EXPECT_EQ(Invertability({}), -INF);
  const std::vector<test::RaiseCase> cases = {
      {"not (Max(P.Length,T.Length) > 0)", [&] { ArmaAcf({}, {}, 3, a, true); }},
      {"n <= 0", [&] { ArmaAcf({0.5}, {}, 0, a, true); }},
      {"n <= 0", [&] { arimaLike(x, P, T, 5); }, "one value left after differencing"},
      {"not (Max(P.Length,T.Length) > 0)", [&] { arimaLike(x, {}, {}, 0); }},
      {"Data.Length = 0", [&] { ArimaMLE({}, P, T, 0, aux); }},
      {"SingleExpSmooth: Data.Length < 2", [&] { SingleExpSmooth({1}, s, al, 1); }},
      {"DoubleExpSmooth: Data.Length < 2", [&] { DoubleExpSmooth({1}, s, al, be); }},
      {"TripleExpSmooth: Period required", [&] { TripleExpSmooth(x, s, al, be, ga); }},
      {"TripleExpSmooth: Period < 2", [&] { TripleExpSmooth(x, s, al, be, ga, 1); }},
      {"TripleExpSmooth: Data.Length < 2 Period", [&] { TripleExpSmooth(x, s, al, be, ga, 4); }},
      {"SimulateArma: AR part not stationary", [&] { SimulateArma({1.0}, {}, 10, s); }},
      {"SimulateArma: AR part not stationary",
       [&] {
         SimulateArma({0.5, 0.5}, {0.3}, 10, s);
       }},
      {"PredictArima: d out of range", [&] { PredictArima(x, P, T, -1, 3, f, e); }},
      {"PredictArima: d out of range", [&] { PredictArima(x, P, T, 6, 3, f, e); }},
      {"not (Max(P.Length,T.Length) > 0)", [&] { PredictArima(x, {}, {}, 1, 3, f, e); }},
      {"n <= 0", [&] { PredictArima(x, P, T, 1, -5, f, e); }},
  };
  test::ExpectEachRaises(cases);
  EXPECT_EQ(arimaLike(x, {0.6}, {0.6}, 0), kPenalty);  // the joint root test refuses an admissible model
}

}  // namespace
}  // namespace statkit::StatTimeSerAnalysis
