// Tour: the array services and the moments of the distribution families.

#include <cstdio>

#include "statkit/statkit.h"
#include "tour.h"

namespace {

using namespace statkit::Statistics;

void arrayServices() {
  TVec x{4.2, 1.5, 3.3, 2.8, 5.1, 0.9};
  std::printf("data:            ");
  for (double v : x) std::printf(" %.2f", v);
  std::printf("\nmean %.4f  std %.4f  sum of squares %.4f\n", x.Mean(), x.StdDev(), x.SumOfSquares());

  TVec sorted(x), order;
  sorted.SortAscend(order);
  std::printf("sorted, with the former positions:");
  for (int i = 0; i < sorted.Length(); ++i) std::printf(" %.2f(%d)", sorted[i], order.IValue(i));

  TVec middle;
  middle.SetSubRange(sorted, 1, 4);  // a view: writes land in the source
  middle.Scale(10);
  std::printf("\nafter scaling a view of the middle four:");
  for (double v : sorted) std::printf(" %.1f", v);

  try {
    (void)x[6];
  } catch (const EArrayError& e) {
    std::printf("\nreading past the end raises EArrayError: \"%s\"\n", e.what());
  }
}

void moments() {
  struct Row {
    const char* name;
    void (*call)(double&, double&);
  };
  const Row rows[] = {
      {"Beta(2, 3)", [](double& m, double& v) { MVBeta(2, 3, m, v); }},
      {"Binom(10, 0.3)", [](double& m, double& v) { MVBinom(10, 0.3, m, v); }},
      {"Cauchy(0, 1)", [](double& m, double& v) { MVCauchy(0, 1, m, v); }},
      {"ChiSquare(4)", [](double& m, double& v) { MVChiSquare(4, m, v); }},
      {"Exponent(2)", [](double& m, double& v) { MVExponent(2, m, v); }},
      {"F(5, 5)", [](double& m, double& v) { MVF(5, 5, m, v); }},
      {"Gamma(2, 1.5)", [](double& m, double& v) { MVGamma(2, 1.5, m, v); }},
      {"Geometric(0.25)", [](double& m, double& v) { MVGeometric(0.25, m, v); }},
      {"HypGeometric(50, 10, 5)", [](double& m, double& v) { MVHypGeometric(50, 10, 5, m, v); }},
      {"Maxwell(1)", [](double& m, double& v) { MVMaxwell(1, m, v); }},
      {"NegBinom(3, 0.4)", [](double& m, double& v) { MVNegBinom(3, 0.4, m, v); }},
      {"Normal(10, 2)", [](double& m, double& v) { MVNormal(10, 2, m, v); }},
      {"Pareto(3, 2)", [](double& m, double& v) { MVPareto(3, 2, m, v); }},
      {"Poisson(4.5)", [](double& m, double& v) { MVPoisson(4.5, m, v); }},
      {"Rayleigh(1)", [](double& m, double& v) { MVRayleigh(1, m, v); }},
      {"Student(2)", [](double& m, double& v) { MVStudent(2, m, v); }},
      {"Uniform(0, 1)", [](double& m, double& v) { MVUniform(0, 1, m, v); }},
      {"UniformD(6)", [](double& m, double& v) { MVUniformD(6, m, v); }},
      {"Weibull(1, 2)", [](double& m, double& v) { MVWeibull(1, 2, m, v); }},
  };
  std::printf("%-26s %14s %14s\n", "distribution", "mean", "variance");
  for (const auto& r : rows) {
    double m, v;
    r.call(m, v);
    std::printf("%-26s %14.6g %14.6g\n", r.name, m, v);
  }
}

}  // namespace

TOUR_SECTION(10, "Array services", arrayServices);
TOUR_SECTION(20, "Distribution moments (NaN: the moment does not exist)", moments);
