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
using Moments = std::function<void(double&, double&)>;

Moments byName(const std::string& name, const std::vector<double>& p) {
  static const std::map<std::string, std::function<Moments(const std::vector<double>&)>> table = {
      {"Beta", [](auto& p) { return [=](double& m, double& v) { MVBeta(p[0], p[1], m, v); }; }},
      {"Binom", [](auto& p) { return [=](double& m, double& v) { MVBinom(int(p[0]), p[1], m, v); }; }},
      {"ChiSquare", [](auto& p) { return [=](double& m, double& v) { MVChiSquare(int(p[0]), m, v); }; }},
      {"Exponent", [](auto& p) { return [=](double& m, double& v) { MVExponent(p[0], m, v); }; }},
      {"F", [](auto& p) { return [=](double& m, double& v) { MVF(int(p[0]), int(p[1]), m, v); }; }},
      {"Gamma", [](auto& p) { return [=](double& m, double& v) { MVGamma(p[0], p[1], m, v); }; }},
      {"Geometric", [](auto& p) { return [=](double& m, double& v) { MVGeometric(p[0], m, v); }; }},
      {"HypGeometric",
       [](auto& p) { return [=](double& m, double& v) { MVHypGeometric(int(p[0]), int(p[1]), int(p[2]), m, v); }; }},
      {"Maxwell", [](auto& p) { return [=](double& m, double& v) { MVMaxwell(p[0], m, v); }; }},
      {"NegBinom", [](auto& p) { return [=](double& m, double& v) { MVNegBinom(int(p[0]), p[1], m, v); }; }},
      {"Normal", [](auto& p) { return [=](double& m, double& v) { MVNormal(p[0], p[1], m, v); }; }},
      {"Pareto", [](auto& p) { return [=](double& m, double& v) { MVPareto(p[0], p[1], m, v); }; }},
      {"Poisson", [](auto& p) { return [=](double& m, double& v) { MVPoisson(p[0], m, v); }; }},
      {"Rayleigh", [](auto& p) { return [=](double& m, double& v) { MVRayleigh(p[0], m, v); }; }},
      {"Student", [](auto& p) { return [=](double& m, double& v) { MVStudent(int(p[0]), m, v); }; }},
      {"Uniform", [](auto& p) { return [=](double& m, double& v) { MVUniform(p[0], p[1], m, v); }; }},
      {"UniformD", [](auto& p) { return [=](double& m, double& v) { MVUniformD(int(p[0]), m, v); }; }},
      {"Weibull", [](auto& p) { return [=](double& m, double& v) { MVWeibull(p[0], p[1], m, v); }; }},
  };
  return table.at(name)(p);
}

TEST(DistributionMoments, AgreeWithScipyClosedForms) {
  for (const auto& r : test::LoadFixture("moments.txt")) {
    SCOPED_TRACE(r.Str("dist"));
    double m = -1, v = -1;
    byName(r.Str("dist"), r.Nums("params"))(m, v);
    // The Weibull variance is a difference of two gamma-function values close
    // to each other; with shape 3.5 it cancels about one digit.
    double tol = r.Str("dist") == "Weibull" ? 64 * kEps : 16 * kEps;
    EXPECT_REL(m, r.Num("mean"), tol);
    EXPECT_REL(v, r.Num("variance"), tol);
  }
}

struct EdgeCase {
  const char* what;
  Moments call;
  double mean, variance;  // NaN expected where NAN stands
};

TEST(DistributionMoments, InvalidParametersGiveNaNAndMissingMomentsNaNAlone) {
  const double nan = NAN;
  const EdgeCase cases[] = {
      {"ChiSquare(0)", [](double& m, double& v) { MVChiSquare(0, m, v); }, nan, nan},
      {"ChiSquare(4) is exact", [](double& m, double& v) { MVChiSquare(4, m, v); }, 4, 8},
      {"Student(1)", [](double& m, double& v) { MVStudent(1, m, v); }, nan, nan},
      {"Student(2)", [](double& m, double& v) { MVStudent(2, m, v); }, 0, nan},
      {"Student(3)", [](double& m, double& v) { MVStudent(3, m, v); }, 0, 3},
      {"F(5, 2)", [](double& m, double& v) { MVF(5, 2, m, v); }, nan, nan},
      {"F(5, 3)", [](double& m, double& v) { MVF(5, 3, m, v); }, 3, nan},
      {"Binom(0, 0.3)", [](double& m, double& v) { MVBinom(0, 0.3, m, v); }, 0, 0},
      {"Binom(10, 1)", [](double& m, double& v) { MVBinom(10, 1.0, m, v); }, 10, 0},
      {"Binom(-1, 0.5)", [](double& m, double& v) { MVBinom(-1, 0.5, m, v); }, nan, nan},
      {"Binom(5, 1.5)", [](double& m, double& v) { MVBinom(5, 1.5, m, v); }, nan, nan},
      {"Binom(5, NaN)", [](double& m, double& v) { MVBinom(5, NAN, m, v); }, nan, nan},
      {"Geometric(1)", [](double& m, double& v) { MVGeometric(1.0, m, v); }, 0, 0},
      {"Geometric(0)", [](double& m, double& v) { MVGeometric(0.0, m, v); }, nan, nan},
      {"NegBinom(0, 0.5)", [](double& m, double& v) { MVNegBinom(0, 0.5, m, v); }, nan, nan},
      {"NegBinom(3, 0)", [](double& m, double& v) { MVNegBinom(3, 0.0, m, v); }, nan, nan},
      {"Uniform(2, 2)", [](double& m, double& v) { MVUniform(2, 2, m, v); }, nan, nan},
      {"Uniform(NaN, 1)", [](double& m, double& v) { MVUniform(NAN, 1, m, v); }, nan, nan},
      {"UniformD(1)", [](double& m, double& v) { MVUniformD(1, m, v); }, 1, 0},
      {"UniformD(0)", [](double& m, double& v) { MVUniformD(0, m, v); }, nan, nan},
      {"UniformD(100000) without overflow", [](double& m, double& v) { MVUniformD(100000, m, v); }, 50000.5,
       833333333.25},
      {"HypGeometric(10, 11, 2)", [](double& m, double& v) { MVHypGeometric(10, 11, 2, m, v); }, nan, nan},
      {"HypGeometric(10, 3, 11)", [](double& m, double& v) { MVHypGeometric(10, 3, 11, m, v); }, nan, nan},
      {"HypGeometric(0, 0, 0)", [](double& m, double& v) { MVHypGeometric(0, 0, 0, m, v); }, 0, 0},
      {"HypGeometric(1, 1, 1)", [](double& m, double& v) { MVHypGeometric(1, 1, 1, m, v); }, 1, 0},
      {"Pareto(1.5, 2)", [](double& m, double& v) { MVPareto(1.5, 2, m, v); }, 6, nan},
      {"Pareto(0.5, 2)", [](double& m, double& v) { MVPareto(0.5, 2, m, v); }, nan, nan},
      {"Normal(3, -1)", [](double& m, double& v) { MVNormal(3, -1, m, v); }, nan, nan},
      {"Normal(NaN, 1) propagates the mean", [](double& m, double& v) { MVNormal(NAN, 1, m, v); }, nan, 1},
      {"Cauchy(0, 1)", [](double& m, double& v) { MVCauchy(0, 1, m, v); }, nan, nan},
      {"Gamma(1, -1)", [](double& m, double& v) { MVGamma(1, -1, m, v); }, nan, nan},
      {"Beta(0, 1)", [](double& m, double& v) { MVBeta(0, 1, m, v); }, nan, nan},
      {"Exponent(0)", [](double& m, double& v) { MVExponent(0, m, v); }, nan, nan},
      {"Maxwell(-1)", [](double& m, double& v) { MVMaxwell(-1, m, v); }, nan, nan},
      {"Poisson(0)", [](double& m, double& v) { MVPoisson(0, m, v); }, nan, nan},
      {"Rayleigh(0)", [](double& m, double& v) { MVRayleigh(0, m, v); }, nan, nan},
      {"Weibull(1, 0)", [](double& m, double& v) { MVWeibull(1, 0, m, v); }, nan, nan},
      {"Weibull(NaN, 1)", [](double& m, double& v) { MVWeibull(NAN, 1, m, v); }, nan, nan},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    double m = 12345, v = 12345;
    c.call(m, v);
    EXPECT_REL(m, c.mean, 4 * kEps);
    EXPECT_REL(v, c.variance, 4 * kEps);
  }
}

}  // namespace
}  // namespace statkit::Statistics
