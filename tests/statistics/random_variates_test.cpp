// The random-variate procedures: their checks and messages, the draws they take
// from the process-wide generator, reproducibility, the shape of Results, the
// degenerate parameters, and the distribution of 10^6 values at two or more
// settings of every law against SciPy's (chi-square on the fixture's cells,
// moments within five standard errors).

#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <functional>
#include <limits>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "statkit/Statistics.h"
#include "support/expect.h"
#include "support/fixture.h"
#include "support/goodness_of_fit.h"

namespace statkit::Statistics {
namespace {

using Fill = std::function<void(TDenseKalpa&)>;

// The n-th draw (from 0) of the process-wide generator after RandSeed(seed).
double nthDraw(std::uint32_t seed, int n) {
  RandSeed(seed);
  for (int i = 0; i < n; ++i) Random();
  return Random();
}

struct BadCall {
  const char* what;
  std::function<void()> call;
  const char* message;
  int draws;  // process-wide draws made before the error
};

TEST(RandomVariates, EveryBadCallRaisesItsExactMessage) {
  TVec r(std::vector<double>(5, 0.0)), c;
  c.Size(4, true);
  const double nan = NAN;
  const BadCall table[] = {
      {"beta shape 0", [&] { RandomBeta(0, 1, r); }, "RandomBeta: (A<=0) or (B<=)", 0},
      {"beta shape NaN", [&] { RandomBeta(1, nan, r); }, "RandomBeta: (A<=0) or (B<=)", 0},
      {"beta complex", [&] { RandomBeta(1, 1, c); }, "RandomBeta: Results.Complex=true", 0},
      {"beta infinite shape", [&] { RandomBeta(INF, 1, r); }, "RandomBeta : RandomGamma : Invalid parameter", 0},
      {"binom p above 1", [&] { RandomBinom(10, 1.5, r); }, "RandomBinom: (p < 0) or ( p > 1)", 0},
      {"binom p NaN", [&] { RandomBinom(10, nan, r); }, "RandomBinom: (p < 0) or ( p > 1)", 0},
      {"binom complex", [&] { RandomBinom(10, 0.5, c); }, "RandomBinom: Results.Complex=true", 0},
      {"binom negative trials", [&] { RandomBinom(-1, 0.5, r); }, "RandomBinom : Invalid parameter", 1},
      {"cauchy complex", [&] { RandomCauchy(0, 1, c); }, "RandomCauchy: Results.Complex=true", 0},
      {"cauchy negative scale", [&] { RandomCauchy(0, -1, r); }, "RandomCauchy : Invalid parameter", 1},
      {"chi-square complex", [&] { RandomChiSquare(3, c); }, "RandomChiSquare : Results.Complex=true", 0},
      {"chi-square nu 0", [&] { RandomChiSquare(0, r); }, "RandomChiSquare : RandomGamma: A<=0 or B<=0 ", 0},
      {"exponent mu 0", [&] { RandomExponent(0, r); }, "RandomExponent: mu <= 0!", 0},
      {"exponent mu NaN", [&] { RandomExponent(nan, r); }, "RandomExponent: mu <= 0!", 0},
      {"exponent complex", [&] { RandomExponent(1, c); }, "RandomExponent : Results.Complex=true", 0},
      {"exponent infinite mu", [&] { RandomExponent(INF, r); }, "RandomExponent : Invalid parameter", 1},
      {"F nu1 0", [&] { RandomF(0, 3, r); }, "RandomF:(ANu1<=0) or (ANu2<=0)", 0},
      {"F nu2 negative", [&] { RandomF(3, -1, r); }, "RandomF:(ANu1<=0) or (ANu2<=0)", 0},
      {"F complex", [&] { RandomF(3, 4, c); }, "RandomF : Results.Complex=true", 0},
      {"gamma shape negative", [&] { RandomGamma(-1, 1, r); }, "RandomGamma: A<=0 or B<=0 ", 0},
      {"gamma scale 0", [&] { RandomGamma(1, 0, r); }, "RandomGamma: A<=0 or B<=0 ", 0},
      {"gamma shape NaN", [&] { RandomGamma(nan, 1, r); }, "RandomGamma: A<=0 or B<=0 ", 0},
      {"gamma complex", [&] { RandomGamma(2, 1, c); }, "RandomGamma : Results.Complex=true", 0},
      {"gamma infinite shape", [&] { RandomGamma(INF, 1, r); }, "RandomGamma : Invalid parameter", 0},
      {"gamma 1 infinite scale", [&] { RandomGamma(1, INF, r); },
       "RandomGamma : RandomExponent : Invalid parameter", 1},
      {"geometric p 1", [&] { RandomGeometric(1, r); }, "RandomGeometric: (p < 0 ) or (p >= 1)", 0},
      {"geometric p negative", [&] { RandomGeometric(-0.1, r); }, "RandomGeometric: (p < 0 ) or (p >= 1)", 0},
      {"geometric p NaN", [&] { RandomGeometric(nan, r); }, "RandomGeometric: (p < 0 ) or (p >= 1)", 0},
      {"geometric complex", [&] { RandomGeometric(0.5, c); }, "RandomGeometric : Results.Complex=true", 0},
      {"hypgeometric N > M + K", [&] { RandomHypGeometric(5, 3, 9, r); },
       "RandomHypGeometric : RandomHypGeometric: N > M + K", 0},
      {"hypgeometric complex", [&] { RandomHypGeometric(5, 3, 2, c); },
       "RandomHypGeometric : RandomHypGeometric : Results.Complex=true", 0},
      {"hypgeometric sample above population", [&] { RandomHypGeometric(5, 3, 8, r); },
       "RandomHypGeometric : Invalid parameter", 1},
      {"hypgeometric marked above population", [&] { RandomHypGeometric(5, 6, 2, r); },
       "RandomHypGeometric : Invalid parameter", 1},
      {"laplace negative scale", [&] { RandomLaplace(0, -1, r); }, "RandomLaplace: b < 0", 0},
      {"laplace complex", [&] { RandomLaplace(0, 1, c); }, "RandomLaplace : Results.Complex=true", 0},
      {"lognormal negative sigma", [&] { RandomLogNormal(0, -1, r); }, "RandomLogNormal: sigma < 0", 0},
      {"lognormal complex", [&] { RandomLogNormal(0, 1, c); }, "RandomLogNormal : Results.Complex=true", 0},
      {"lognormal mu NaN", [&] { RandomLogNormal(nan, 0, r); }, "RandomLogNormal : Invalid parameter", 1},
      {"negbinom p 1", [&] { RandomNegBinom(3, 1, r); }, "RandomNegBinom: (p < 0 ) or (p >= 1)", 0},
      {"negbinom r 0", [&] { RandomNegBinom(0, 0.5, r); }, "RandomNegBinom: (p < 0 ) or (p >= 1)", 0},
      {"negbinom complex", [&] { RandomNegBinom(3, 0.5, c); }, "RandomNegBinom : Results.Complex=true", 0},
      {"normal negative sigma", [&] { RandomNormal(0, -1, r); }, "RandomNormal: sigma < 0", 0},
      {"normal sigma NaN", [&] { RandomNormal(0, nan, r); }, "RandomNormal: sigma < 0", 0},
      {"normal check before complex", [&] { RandomNormal(0, -1, c); }, "RandomNormal: sigma < 0", 0},
      {"normal complex", [&] { RandomNormal(0, 1, c); }, "RandomNormal : Results.Complex=true", 0},
      {"normal infinite mean", [&] { RandomNormal(INF, 1, r); }, "RandomNormal : Invalid parameter", 1},
      {"poisson lambda 0", [&] { RandomPoisson(0, r); }, "RandomPoisson: lambda <= 0", 0},
      {"poisson complex", [&] { RandomPoisson(1, c); }, "RandomPoisson : Results.Complex=true", 0},
      {"poisson infinite lambda", [&] { RandomPoisson(INF, r); }, "RandomPoisson : Invalid parameter", 1},
      {"rayleigh complex", [&] { RandomRayleigh(1, c); }, "RandomRayleigh : Results.Complex=true", 0},
      {"rayleigh negative scale", [&] { RandomRayleigh(-1, r); }, "RandomRayleigh : Invalid parameter", 1},
      {"student v 0", [&] { RandomStudent(0, r); }, "RandomStudent: v <= 0", 0},
      {"student complex", [&] { RandomStudent(3, c); }, "RandomStudent : Results.Complex=true", 0},
      {"triangular a > b", [&] { RandomTriangular(2, 1, 1.5, r); }, "RandomTriangular: a > b", 0},
      {"triangular a > b first", [&] { RandomTriangular(2, 1, 5, r); }, "RandomTriangular: a > b", 0},
      {"triangular c above b", [&] { RandomTriangular(0, 1, 2, r); }, "RandomTriangular: (c>b) or (c<a)", 0},
      {"triangular c below a", [&] { RandomTriangular(0, 1, -1, r); }, "RandomTriangular: (c>b) or (c<a)", 0},
      {"triangular complex", [&] { RandomTriangular(0, 1, 0.5, c); }, "RandomTriangular : Results.Complex=true", 0},
      {"triangular NaN", [&] { RandomTriangular(nan, 1, 0.5, r); }, "RandomTriangular : Invalid parameter", 1},
      {"uniform a > b", [&] { RandomUniform(2, 1, r); }, "RandomUniform: a > b", 0},
      {"uniform complex", [&] { RandomUniform(0, 1, c); }, "RandomUniform : Results.Complex=true", 0},
      {"uniform NaN", [&] { RandomUniform(nan, 1, r); }, "RandomUniform : Invalid parameter", 1},
      {"uniformD N negative", [&] { RandomUniformD(-1, r); }, "RandomUniformD: N < 0", 0},
      {"uniformD complex", [&] { RandomUniformD(3, c); }, "RandomUniformD : Results.Complex=true", 0},
      {"weibull a 0", [&] { RandomWeibull(0, 1, r); }, "RandomWeibull: (a<=0) or (b<=0)", 0},
      {"weibull b NaN", [&] { RandomWeibull(1, nan, r); }, "RandomWeibull: (a<=0) or (b<=0)", 0},
      {"weibull complex", [&] { RandomWeibull(1, 1, c); }, "RandomWeibull : Results.Complex=true", 0},
      {"weibull infinite shape", [&] { RandomWeibull(1, INF, r); }, "RandomWeibull : Invalid parameter", 1},
  };
  for (const auto& t : table) {
    SCOPED_TRACE(t.what);
    test::PoolBalance balance;
    RandSeed(77);
    EXPECT_RAISES(t.call(), t.message);
    double next = Random();
    EXPECT_EQ(next, nthDraw(77, t.draws)) << "process-wide draws before the error";
  }
}

// Stream 0 of the generator the stream laws draw from, reseeded on request.
TRngStream& stream0(int seed = 0, bool reseed = false) {
  static TRandomGenerator g;
  if (reseed) g.Init(rgPhilox4x32, seed);
  return g.GetStream(0);
}

// Every procedure and the stream laws by name, parameters in the order of the call.
const std::map<std::string, std::function<void(TDenseKalpa&, const std::vector<double>&)>>& laws() {
  static const std::map<std::string, std::function<void(TDenseKalpa&, const std::vector<double>&)>> table = {
      {"RandomBeta", [](auto& x, auto& p) { RandomBeta(p[0], p[1], x); }},
      {"RandomBinom", [](auto& x, auto& p) { RandomBinom(int(p[0]), p[1], x); }},
      {"RandomCauchy", [](auto& x, auto& p) { RandomCauchy(p[0], p[1], x); }},
      {"RandomChiSquare", [](auto& x, auto& p) { RandomChiSquare(int(p[0]), x); }},
      {"RandomExponent", [](auto& x, auto& p) { RandomExponent(p[0], x); }},
      {"RandomF", [](auto& x, auto& p) { RandomF(int(p[0]), int(p[1]), x); }},
      {"RandomGamma", [](auto& x, auto& p) { RandomGamma(p[0], p[1], x); }},
      {"RandomGeometric", [](auto& x, auto& p) { RandomGeometric(p[0], x); }},
      {"RandomHypGeometric", [](auto& x, auto& p) { RandomHypGeometric(int(p[0]), int(p[1]), int(p[2]), x); }},
      {"RandomLaplace", [](auto& x, auto& p) { RandomLaplace(p[0], p[1], x); }},
      {"RandomLogNormal", [](auto& x, auto& p) { RandomLogNormal(p[0], p[1], x); }},
      {"RandomNegBinom", [](auto& x, auto& p) { RandomNegBinom(int(p[0]), p[1], x); }},
      {"RandomNormal", [](auto& x, auto& p) { RandomNormal(p[0], p[1], x); }},
      {"RandomPoisson", [](auto& x, auto& p) { RandomPoisson(p[0], x); }},
      {"RandomRayleigh", [](auto& x, auto& p) { RandomRayleigh(p[0], x); }},
      {"RandomStudent", [](auto& x, auto& p) { RandomStudent(int(p[0]), x); }},
      {"RandomTriangular", [](auto& x, auto& p) { RandomTriangular(p[0], p[1], p[2], x); }},
      {"RandomUniform", [](auto& x, auto& p) { RandomUniform(p[0], p[1], x); }},
      {"RandomUniformD", [](auto& x, auto& p) { RandomUniformD(int(p[0]), x); }},
      {"RandomWeibull", [](auto& x, auto& p) { RandomWeibull(p[0], p[1], x); }},
      {"Stream.GaussianBoxMuller", [](auto& x, auto& p) { stream0().RandomGaussian(x, p[0], p[1], gmBoxMuller); }},
      {"Stream.Exponential", [](auto& x, auto& p) { stream0().RandomExponential(x, p[0], p[1]); }},
      {"Stream.Weibull", [](auto& x, auto& p) { stream0().RandomWeibull(x, p[0], p[1], p[2]); }},
      {"Stream.Rayleigh", [](auto& x, auto& p) { stream0().RandomRayleigh(x, p[0], p[1]); }},
      {"Stream.Cauchy", [](auto& x, auto& p) { stream0().RandomCauchy(x, p[0], p[1]); }},
      {"Stream.Laplace", [](auto& x, auto& p) { stream0().RandomLaplace(x, p[0], p[1]); }},
      {"Stream.NegBinomial", [](auto& x, auto& p) { stream0().RandomNegbinomial(x, p[0], p[1]); }},
      {"Stream.Binomial", [](auto& x, auto& p) { stream0().RandomBinomial(x, int(p[0]), p[1]); }},
      {"Stream.Poisson", [](auto& x, auto& p) { stream0().RandomPoisson(x, p[0]); }},
      {"Stream.Hypergeometric", [](auto& x, auto& p) { stream0().RandomHypergeometric(x, int(p[0]), int(p[1]), int(p[2])); }},
  };
  return table;
}

// One call of every procedure (and of every path inside one), with the number
// of process-wide draws it takes: one per generator it seeds.
struct GoodCall {
  const char* law;
  std::vector<double> params;
  int draws;
} goodCalls[] = {
    {"RandomBeta", {2, 3}, 2},        {"RandomBeta", {0.3, 2}, 2},     {"RandomBinom", {30, 0.6}, 1},
    {"RandomCauchy", {1, 2}, 1},      {"RandomChiSquare", {5}, 1},     {"RandomChiSquare", {2}, 1},
    {"RandomExponent", {2}, 1},       {"RandomF", {4, 9}, 2},          {"RandomGamma", {2.5, 1}, 1},
    {"RandomGamma", {1, 2}, 1},       {"RandomGamma", {0.5, 2}, 1},    {"RandomGeometric", {0.2}, 1},
    {"RandomGeometric", {0}, 1},      {"RandomHypGeometric", {40, 12, 9}, 1}, {"RandomLaplace", {1, 2}, 1},
    {"RandomLogNormal", {0, 1}, 1},   {"RandomNegBinom", {3, 0.4}, 1}, {"RandomNormal", {1, 2}, 1},
    {"RandomPoisson", {40}, 1},       {"RandomRayleigh", {2}, 1},      {"RandomStudent", {1}, 1},
    {"RandomStudent", {2}, 1},        {"RandomStudent", {3}, 2},       {"RandomTriangular", {0, 2, 0.5}, 1},
    {"RandomUniform", {-1, 1}, 1},    {"RandomUniformD", {9}, 1},      {"RandomWeibull", {1, 2}, 1},
};

TEST(RandomVariates, DrawsPerGeneratorShapeAndReproducibility) {
  for (const auto& t : goodCalls) {
    SCOPED_TRACE(t.law + ::testing::PrintToString(t.params));
    auto fill = [&t](TDenseKalpa& x) { laws().at(t.law)(x, t.params); };
    test::PoolBalance balance;
    // A 3 x 5 matrix keeps its shape and every element is written.
    TMtx first(3, 5), again(3, 5);
    first.SetVal(NAN);
    RandSeed(2024);
    fill(first);
    double next = Random();
    EXPECT_EQ(next, nthDraw(2024, t.draws)) << "process-wide draws";
    EXPECT_EQ(first.Rows(), 3);
    EXPECT_EQ(first.Cols(), 5);
    for (int i = 0; i < first.Length(); ++i) EXPECT_FALSE(IsNan(first.data()[i])) << "element " << i;
    // The same process-wide state gives the same values.
    RandSeed(2024);
    fill(again);
    for (int i = 0; i < first.Length(); ++i) EXPECT_EQ(std::bit_cast<std::uint64_t>(first.data()[i]),
                                                       std::bit_cast<std::uint64_t>(again.data()[i]));
    // An empty Results is accepted, stays empty and still seeds its generators.
    TVec empty;
    RandSeed(2024);
    fill(empty);
    EXPECT_EQ(empty.Length(), 0);
    next = Random();
    EXPECT_EQ(next, nthDraw(2024, t.draws));
  }
}

// Calls on four threads at once take one process-wide draw each, none lost or
// shared, and keep their pool temporaries and frames apart: the values of 200
// concurrent calls are those of 200 sequential ones, in some order.
TEST(RandomVariatesConcurrency, EachCallTakesItsOwnSeed) {
  auto firstValues = [](int threads) {
    std::vector<double> first(200);
    std::vector<std::thread> running;
    RandSeed(9);
    for (int t = 0; t < threads; ++t)
      running.emplace_back([&first, t, threads] {
        TVec x(std::vector<double>(3, 0.0));
        for (int i = t; i < 200; i += threads) RandomStudent(1, x), first[static_cast<std::size_t>(i)] = x[0];
      });
    for (auto& r : running) r.join();
    double next = Random();
    EXPECT_EQ(next, nthDraw(9, 200)) << "process-wide draws";
    std::sort(first.begin(), first.end());
    return first;
  };
  test::PoolBalance balance;
  EXPECT_EQ(firstValues(4), firstValues(1));
}

// Scales 0, equal ends, p 0 or 1, N 0 or 1, hypergeometric samples that
// leave no choice (also near INT_MAX), and Weibull scales whose a^(-1/b)
// underflows to 0 or overflows while E^(1/b) overflows: no 0 x INF.
TEST(RandomVariates, DegenerateParametersGiveTheirLimit) {
  struct Case {
    const char* law;
    std::vector<double> params;
    double value;
  } table[] = {
      {"RandomNormal", {2.5, 0}, 2.5},     {"RandomLogNormal", {0.7, 0}, std::exp(0.7)}, {"RandomLaplace", {-1, 0}, -1},
      {"RandomCauchy", {4, 0}, 4},         {"RandomRayleigh", {0}, 0},         {"RandomUniform", {3, 3}, 3},
      {"RandomTriangular", {2, 2, 2}, 2},  {"RandomBinom", {7, 0}, 0},         {"RandomBinom", {7, 1}, 7},
      {"RandomBinom", {0, 0.4}, 0},        {"RandomGeometric", {0}, INF},      {"RandomNegBinom", {2, 0}, INF},
      {"RandomNegBinom", {2, 1e-320}, INF}, {"RandomUniformD", {0}, 0},        {"RandomUniformD", {1}, 1},
      {"RandomHypGeometric", {5, 0, 5}, 0}, {"RandomHypGeometric", {5, 5, 3}, 3}, {"RandomHypGeometric", {7, 3, 7}, 3},
      {"RandomHypGeometric", {2147483647, 2147483647, 5}, 5}, {"RandomWeibull", {1e300, 1e-3}, 0},
      {"RandomWeibull", {1e-300, 1e-3}, INF}, {"Stream.Weibull", {1e-3, 5, 0}, 5},
  };
  for (const auto& t : table) {
    SCOPED_TRACE(t.law + ::testing::PrintToString(t.params));
    TVec r(std::vector<double>(1000, NAN));
    laws().at(t.law)(r, t.params);
    for (double x : r) ASSERT_EQ(x, t.value);
  }
}

// Values whose naive formulas underflow, round or overflow, each in its
// support and with a known fraction of the draws in a tail, within five
// binomial standard errors: gamma and beta shapes near 0 (a beta from two
// gammas that both underflow would be 0/0; P(X < t) = t^a / Gamma(a + 1) to
// first order in t for a gamma), a geometric p below the rounding of 1 - p
// (P(X >= k) = (1 - p)^k), a Weibull scale 2000^-100 that underflows, though
// P(X > 1e-300) = exp(-2000 (1e-300)^0.01) = exp(-2), and a triangular width
// beyond the doubles.
TEST(RandomVariates, ExtremeParametersStayInTheSupport) {
  struct Case {
    const char* what;
    Fill fill;
    double lo, hi;
    bool whole;
    bool (*counted)(double);
    double probability;
  } table[] = {
      {"beta", [](TDenseKalpa& x) { RandomBeta(1e-3, 1e-3, x); }, 0, 1, false, [](double x) { return x < 0.5; }, 0.5},
      {"gamma", [](TDenseKalpa& x) { RandomGamma(1e-3, 1.0, x); }, 0, DBL_MAX, false,
       [](double x) { return x < 1e-300; }, std::pow(1e-300, 1e-3) / std::tgamma(1.001)},
      {"geometric", [](TDenseKalpa& x) { RandomGeometric(1e-17, x); }, 0, DBL_MAX, true,
       [](double x) { return x >= 1e17; }, std::exp(-1.0)},
      {"weibull", [](TDenseKalpa& x) { RandomWeibull(2000, 0.01, x); }, 0, DBL_MAX, false,
       [](double x) { return x > 1e-300; }, std::exp(-2.0)},
      {"triangular", [](TDenseKalpa& x) { RandomTriangular(-1e308, 1e308, 1e308, x); }, -1e308, 1e308, false,
       [](double x) { return x < 0.0; }, 0.25},
  };
  const int n = 200000;
  TVec r(std::vector<double>(n, 0.0));
  RandSeed(11);
  for (const auto& t : table) {
    SCOPED_TRACE(t.what);
    t.fill(r);
    int count = 0;
    for (double x : r) {
      ASSERT_TRUE(x >= t.lo && x <= t.hi && (!t.whole || x == std::trunc(x))) << x;
      count += t.counted(x);
    }
    double q = t.probability;
    EXPECT_LE(std::fabs(count - n * q), 5.0 * std::sqrt(n * q * (1 - q)));
  }
}

// The procedures, and the stream methods the procedures do not reach, by the
// fixture's names: 10^6 draws against SciPy's cells and moments. The procedures
// draw from the process-wide generator, the stream methods from stream 0 of a
// generator, both seeded with the record's seed.
TEST(RandomVariates, MillionDrawsFitTheirLaw) {
  int checked = 0;
  for (const auto& r : test::LoadFixture("random_variates.txt")) {
    auto p = r.Nums("params");
    SCOPED_TRACE(r.Str("law") + " " + ::testing::PrintToString(p));
    TVec x(std::vector<double>(1000000, 0.0));
    RandSeed(static_cast<std::uint32_t>(r.Num("seed")));
    stream0(static_cast<int>(r.Num("seed")), true);
    laws().at(r.Str("law"))(x, p);
    test::ExpectGoodFit(x, r);
    ++checked;
  }
  EXPECT_EQ(checked, 61);
}

}  // namespace
}  // namespace statkit::Statistics
