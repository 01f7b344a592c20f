// Tour: random variates of a few laws, their sample moments beside the
// theoretical ones, and the reproducibility that a seeded process-wide
// generator gives.

#include <cstdio>
#include <functional>

#include "statkit/statkit.h"
#include "tour.h"

namespace {

using namespace statkit::Statistics;

void randomVariates() {
  struct Row {
    const char* law;
    std::function<void(TVec&)> draw;
    std::function<void(double&, double&)> moments;
  } rows[] = {
      {"normal(3, 2)", [](TVec& x) { RandomNormal(3, 2, x); }, [](double& m, double& v) { MVNormal(3, 2, m, v); }},
      {"gamma(0.5, 2)", [](TVec& x) { RandomGamma(0.5, 2, x); }, [](double& m, double& v) { MVGamma(0.5, 2, m, v); }},
      {"beta(2, 5)", [](TVec& x) { RandomBeta(2, 5, x); }, [](double& m, double& v) { MVBeta(2, 5, m, v); }},
      {"Student t(5)", [](TVec& x) { RandomStudent(5, x); }, [](double& m, double& v) { MVStudent(5, m, v); }},
      {"Poisson(300)", [](TVec& x) { RandomPoisson(300, x); }, [](double& m, double& v) { MVPoisson(300, m, v); }},
      {"binomial(20, 0.3)", [](TVec& x) { RandomBinom(20, 0.3, x); },
       [](double& m, double& v) { MVBinom(20, 0.3, m, v); }},
      {"hypergeometric(1000, 300, 200)", [](TVec& x) { RandomHypGeometric(1000, 300, 200, x); },
       [](double& m, double& v) { MVHypGeometric(1000, 300, 200, m, v); }},
  };
  RandSeed(2026);
  TVec x;
  x.Size(100000);
  std::printf("%-32s %12s %12s %12s %12s\n", "10^5 draws of", "mean", "law's mean", "variance", "law's var.");
  for (const auto& r : rows) {
    r.draw(x);
    double m, v, sd = x.StdDev();
    r.moments(m, v);
    std::printf("%-32s %12.4f %12.4f %12.4f %12.4f\n", r.law, x.Mean(), m, sd * sd, v);
  }

  // The same state of the process-wide generator gives the same values.
  TVec a, b;
  a.Size(3);
  b.Size(3);
  RandSeed(7);
  RandomGamma(2.5, 1, a);
  RandSeed(7);
  RandomGamma(2.5, 1, b);
  std::printf("gamma(2.5) after RandSeed(7), twice: %.6f %.6f %.6f | %.6f %.6f %.6f\n", a[0], a[1], a[2], b[0],
              b[1], b[2]);

  // A generator of independent streams, used directly.
  statkit::TRandomGenerator generator;
  generator.SetStreamCount(2);
  generator.Init(statkit::rgPhilox4x32, 42);
  TVec u0, u1;
  u0.Size(4);
  u1.Size(4);
  generator.GetStream(0).RandomUniform(u0, 0, 1);
  generator.GetStream(1).RandomUniform(u1, 0, 1);
  std::printf("Philox4x32-10 streams 0 and 1 of seed 42: %.4f %.4f %.4f %.4f | %.4f %.4f %.4f %.4f\n", u0[0], u0[1],
              u0[2], u0[3], u1[0], u1[1], u1[2], u1[3]);
}

}  // namespace

TOUR_SECTION(40, "Random variates", randomVariates);
