// Call-table rows of the distribution moments, random variates and fits.

#include "call_table.h"

namespace calltable {

using namespace statkit::Statistics;

namespace {

// The outputs as the Python side lists them: numbers, intervals (lower, upper), vectors.
void Append(Values& out, double x) { out.push_back(x); }
void Append(Values& out, const double (&ci)[2]) { out.insert(out.end(), ci, ci + 2); }
void Append(Values& out, const TVec& v) { Put(out, v); }
template <class... T>
Values Flat(const T&... x) {
  Values out;
  (Append(out, x), ...);
  return out;
}

template <class F, class... A>
Row Moments(const char* name, F f, A... a) {
  return {name, [=] {
            double m, v;
            f(a..., m, v);
            return Flat(m, v);
          }};
}

// Variates into a vector of n (cols = 0) or an n x cols matrix, after seeding as the Python rows do.
template <class F, class... A>
Row Variates(const char* name, int n, int cols, F f, A... a) {
  return {name, [=] {
            RandSeed(20261125);
            TVec v(n);
            TMtx r(n, cols);
            TDenseKalpa& results = cols == 0 ? static_cast<TDenseKalpa&>(v) : r;
            f(a..., results);
            return Values(results.data(), results.data() + results.Length());
          }};
}
#define MV(f, ...) Moments(#f, f, __VA_ARGS__)
#define RV(f, n, cols, ...) Variates(#f, n, cols, f, __VA_ARGS__)

}  // namespace

std::vector<Row> DistributionRows() {
  const TVec unit{0.05, 0.13, 0.21, 0.34, 0.42, 0.5, 0.55, 0.61, 0.68, 0.77, 0.83, 0.91, 0.97};
  const TVec x = Data(30), pos = Data(30, 1), x20 = Data(20);
  double a = 0, b = 0, A[2] = {0, 0}, B[2] = {0, 0};
  int N = 0;
  TVec P, L, H;
  // clang-format off
  return {
      MV(MVBeta, 2.0, 3.5), MV(MVBinom, 10, 0.3), MV(MVCauchy, 0.0, 1.0), MV(MVChiSquare, 7),
      MV(MVExponent, 2.5), MV(MVF, 3, 5), MV(MVGamma, 2.5, 1.5), MV(MVGeometric, 0.3), MV(MVMaxwell, 0.7),
      MV(MVHypGeometric, 20, 7, 5), MV(MVNegBinom, 4, 0.35), MV(MVNormal, -1.5, 2.0), MV(MVPareto, 2.5, 1.5),
      MV(MVPoisson, 3.7), MV(MVRayleigh, 1.3), MV(MVStudent, 2), MV(MVUniform, -1.0, 3.0), MV(MVUniformD, 9),
      MV(MVWeibull, 0.5, 1.7),

      RV(RandomBeta, 7, 0, 2.0, 3.5), RV(RandomBinom, 3, 4, 10, 0.3), RV(RandomCauchy, 7, 0, 1.0, 2.0),
      RV(RandomChiSquare, 7, 0, 3), RV(RandomExponent, 7, 0, 2.5), RV(RandomF, 2, 3, 3, 5),
      RV(RandomGamma, 7, 0, 0.5, 2.0), RV(RandomGeometric, 7, 0, 0.3), RV(RandomHypGeometric, 7, 0, 20, 7, 5),
      RV(RandomLaplace, 7, 0, 1.0, 0.5), RV(RandomLogNormal, 7, 0, 0.5, 1.5),
      RV(RandomNegBinom, 7, 0, 4, 0.35), RV(RandomNormal, 3, 4, -1.0, 2.0), RV(RandomPoisson, 7, 0, 3.7),
      RV(RandomRayleigh, 7, 0, 1.3), RV(RandomStudent, 7, 0, 4), RV(RandomTriangular, 7, 0, 0.0, 2.0, 0.5),
      RV(RandomUniform, 1, 7, -1.0, 3.0), RV(RandomUniformD, 7, 0, 9), RV(RandomWeibull, 7, 0, 0.5, 1.7),
      Variates("RandomNormalSigma", 7, 0, RandomNormal, 0.0, -1.0),
      Variates("RandomShape", -1, 0, RandomUniformD, 9),

      {"BetaFit", [=]() mutable { BetaFit(unit, a, b, 200, 1e-10); return Flat(a, b); }},
      {"BetaFitCI", [=]() mutable { BetaFit(unit, a, b, A, B, 200, 1e-10, 0.1); return Flat(a, b, A, B); }},
      {"ExponentFit", [=]() mutable { ExponentFit(pos, a); return Flat(a); }},
      {"ExponentFitCI", [=]() mutable { ExponentFit(pos, a, A, 0.1); return Flat(a, A); }},
      {"GammaFit", [=]() mutable { GammaFit(pos, a, b, 300, 1e-12); return Flat(a, b); }},
      {"GammaFitCI", [=]() mutable { GammaFit(pos, a, b, A, B, 300, 1e-12, 0.1); return Flat(a, b, A, B); }},
      {"GeometricFit", [=]() mutable { GeometricFit(x, a); return Flat(a); }},
      {"GeometricFitCI", [=]() mutable { GeometricFit(x, a, A, 0.1); return Flat(a, A); }},
      {"LogNormalFit", [=]() mutable { LogNormalFit(pos, a, b); return Flat(a, b); }},
      {"LogNormalFitCI", [=]() mutable { LogNormalFit(pos, a, b, A, B, 0.1); return Flat(a, b, A, B); }},
      {"NormalFit", [=]() mutable { NormalFit(x, a, b); return Flat(a, b); }},
      {"NormalFitCI", [=]() mutable { NormalFit(x, a, b, A, B, 0.1); return Flat(a, b, A, B); }},
      {"PoissonFit", [=]() mutable { PoissonFit(x, a); return Flat(a); }},
      {"PoissonFitCI", [=]() mutable { PoissonFit(x, a, A, 0.1); return Flat(a, A); }},
      {"RayleighFit", [=]() mutable { RayleighFit(pos, a); return Flat(a); }},
      {"RayleighFitCI", [=]() mutable { RayleighFit(pos, a, A, 0.1); return Flat(a, A); }},
      {"UniformDFit", [=]() mutable { UniformDFit(x, N); return Flat(N); }},
      {"UniformDFitCI", [=]() mutable { UniformDFit(x, N, A, 0.1); return Flat(N, A); }},
      {"UniformFit", [=]() mutable { UniformFit(x, a, b); return Flat(a, b); }},
      {"UniformFitCI", [=]() mutable { UniformFit(x, a, b, A, B, 0.1); return Flat(a, b, A, B); }},
      {"WeibullFit", [=]() mutable { WeibullFit(pos, a, b, 99, 1e-9); return Flat(a, b); }},
      {"WeibullFitCI", [=]() mutable { WeibullFit(pos, a, b, A, B, 99, 1e-9, 0.1);
                                        return Flat(a, b, A, B); }},
      {"BinomFit", [=]() mutable { BinomFit(x20, 64.0, P); return Flat(P); }},
      {"BinomFitN", [=]() mutable { BinomFit(x20, Data(20, 1), P); return Flat(P); }},
      {"BinomFitCI", [=]() mutable { BinomFit(x20, 64.0, P, L, H, 0.1); return Flat(P, L, H); }},
      {"BinomFitZero", [=]() mutable { BinomFit(x20, 0.0, P); return Flat(P); }},
      {"BinomFitSizes", [=]() mutable { BinomFit(x20, Data(19), P); return Flat(P); }},
      {"ExponentFitEmpty", [=]() mutable { ExponentFit(TVec(), a); return Flat(a); }},
  };
  // clang-format on
}

}  // namespace calltable
