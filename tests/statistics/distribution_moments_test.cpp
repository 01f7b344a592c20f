// Means and variances of the distribution families against SciPy's closed
// forms, and the invalid and degenerate parameters where NaN or a limit is due.

#include <gtest/gtest.h>

#include <functional>
#include <map>

#include "statkit/Statistics.h"
#include "support/expect.h"
#include "support/fixture.h"

namespace statkit::Statistics {
namespace {

using test::kEps;
using Params = std::vector<double>;

// Each family's moment function on a parameter list (counts as ints).
const std::map<std::string, std::function<void(const Params&, double&, double&)>> kMoments = {
    {"Beta", [](auto& p, double& m, double& v) { MVBeta(p[0], p[1], m, v); }},
    {"Binom", [](auto& p, double& m, double& v) { MVBinom(int(p[0]), p[1], m, v); }},
    {"Cauchy", [](auto& p, double& m, double& v) { MVCauchy(p[0], p[1], m, v); }},
    {"ChiSquare", [](auto& p, double& m, double& v) { MVChiSquare(int(p[0]), m, v); }},
    {"Exponent", [](auto& p, double& m, double& v) { MVExponent(p[0], m, v); }},
    {"F", [](auto& p, double& m, double& v) { MVF(int(p[0]), int(p[1]), m, v); }},
    {"Gamma", [](auto& p, double& m, double& v) { MVGamma(p[0], p[1], m, v); }},
    {"Geometric", [](auto& p, double& m, double& v) { MVGeometric(p[0], m, v); }},
    {"HypGeometric", [](auto& p, double& m, double& v) { MVHypGeometric(int(p[0]), int(p[1]), int(p[2]), m, v); }},
    {"Maxwell", [](auto& p, double& m, double& v) { MVMaxwell(p[0], m, v); }},
    {"NegBinom", [](auto& p, double& m, double& v) { MVNegBinom(int(p[0]), p[1], m, v); }},
    {"Normal", [](auto& p, double& m, double& v) { MVNormal(p[0], p[1], m, v); }},
    {"Pareto", [](auto& p, double& m, double& v) { MVPareto(p[0], p[1], m, v); }},
    {"Poisson", [](auto& p, double& m, double& v) { MVPoisson(p[0], m, v); }},
    {"Rayleigh", [](auto& p, double& m, double& v) { MVRayleigh(p[0], m, v); }},
    {"Student", [](auto& p, double& m, double& v) { MVStudent(int(p[0]), m, v); }},
    {"Uniform", [](auto& p, double& m, double& v) { MVUniform(p[0], p[1], m, v); }},
    {"UniformD", [](auto& p, double& m, double& v) { MVUniformD(int(p[0]), m, v); }},
    {"Weibull", [](auto& p, double& m, double& v) { MVWeibull(p[0], p[1], m, v); }},
};

TEST(DistributionMoments, AgreeWithScipyClosedForms) {
  for (const auto& r : test::LoadFixture("moments.txt")) {
    SCOPED_TRACE(r.Str("dist"));
    double m = -1, v = -1;
    kMoments.at(r.Str("dist"))(r.Nums("params"), m, v);
    // The Weibull variance is a difference of two gamma-function values close
    // to each other; with shape 3.5 it cancels about one digit.
    double tol = r.Str("dist") == "Weibull" ? 64 * kEps : 16 * kEps;
    EXPECT_REL(m, r.Num("mean"), tol);
    EXPECT_REL(v, r.Num("variance"), tol);
  }
}

// Degenerate laws (one point: variance 0) and moments that do not exist; the
// valid edges SciPy covers (Binom with p = 1, UniformD(1), huge N) are in the fixture.
TEST(DistributionMoments, InvalidParametersGiveNaNAndMissingMomentsNaNAlone) {
  const double nan = NAN;
  const struct {
    const char* dist;
    Params params;
    double mean, variance;  // NaN expected where NAN stands
  } cases[] = {
      {"ChiSquare", {0}, nan, nan},   {"Student", {1}, nan, nan},     {"Student", {2}, 0, nan},
      {"F", {5, 2}, nan, nan},        {"F", {5, 3}, 3, nan},          {"Binom", {0, 0.3}, 0, 0},
      {"Binom", {-1, 0.5}, nan, nan}, {"Binom", {5, 1.5}, nan, nan},  {"Binom", {5, nan}, nan, nan},
      {"Geometric", {1}, 0, 0},       {"Geometric", {0}, nan, nan},   {"NegBinom", {0, 0.5}, nan, nan},
      {"NegBinom", {3, 0}, nan, nan}, {"Uniform", {2, 2}, nan, nan},  {"Uniform", {nan, 1}, nan, nan},
      {"UniformD", {0}, nan, nan},    {"Pareto", {1.5, 2}, 6, nan},   {"Pareto", {0.5, 2}, nan, nan},
      {"Normal", {3, -1}, nan, nan},  {"Normal", {nan, 1}, nan, 1},   {"Cauchy", {0, 1}, nan, nan},
      {"Gamma", {1, -1}, nan, nan},   {"Beta", {0, 1}, nan, nan},     {"Exponent", {0}, nan, nan},
      {"Maxwell", {-1}, nan, nan},    {"Poisson", {0}, nan, nan},     {"Rayleigh", {0}, nan, nan},
      {"Weibull", {1, 0}, nan, nan},  {"Weibull", {nan, 1}, nan, nan}, {"HypGeometric", {10, 11, 2}, nan, nan},
      {"HypGeometric", {10, 3, 11}, nan, nan}, {"HypGeometric", {0, 0, 0}, 0, 0}, {"HypGeometric", {1, 1, 1}, 1, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.dist + ::testing::PrintToString(c.params));
    double m = 12345, v = 12345;
    kMoments.at(c.dist)(c.params, m, v);
    EXPECT_REL(m, c.mean, 4 * kEps);
    EXPECT_REL(v, c.variance, 4 * kEps);
  }
}

}  // namespace
}  // namespace statkit::Statistics
