// Random variates of twenty laws. Each call creates its generators, seeds each
// by one draw of the process-wide generator and fills Results in storage
// order. Gamma variates come from the stream's sampler (Marsaglia and Tsang's
// squeeze-and-reject method, 2000); beta, chi-square, F and Student's t build
// on them.

#include <cmath>
#include <limits>

#include "core/frame.h"
#include "statkit/Statistics.h"

namespace statkit::Statistics {

namespace {

// The open unit interval as the stream draws it: 0 and 1 never occur.
constexpr double kOpenLow = 0x1.0p-52;
constexpr double kOpenHigh = 1.0 - 0x1.0p-52;

/// A generator of \p streams streams seeded by one draw of the process-wide
/// generator; its streams are kept apart by distinct keys.
class SeededGenerator {
public:
  explicit SeededGenerator(int streams) {
    generator_.SetStreamIndependence(siDistinctKeys);
    generator_.SetStreamCount(streams);
    generator_.Init(rgPhilox4x32, NextSeed());
  }
  TRngStream& operator[](int i) { return generator_.GetStream(i); }

private:
  TRandomGenerator generator_;
};

void requireReal(const TDenseKalpa& Results, const char* message) {
  if (Results.Complex()) ERaise(message);
}

/// Gamma variates of shape A and scale B into Results, or, when \p logScale,
/// the logarithms of those of scale 1 (B unused), from one seeded stream.
/// Non-finite parameters are refused before the seed is drawn.
void gammaFill(double A, double B, TDenseKalpa& Results, bool logScale) {
  if (!std::isfinite(A) || !std::isfinite(B)) ERaise(msg::InvalidParameter);
  SeededGenerator gen(1);
  if (logScale) gen[0].RandomLogGamma(Results, A);
  else gen[0].RandomGamma(Results, A, B);
}

}  // namespace

// --- laws drawn by a stream method -------------------------------------------------

void RandomUniform(double a, double b, TDenseKalpa& Results) {
  if (a > b) ERaise("RandomUniform: a > b");
  requireReal(Results, "RandomUniform : Results.Complex=true");
  core::Guarded("RandomUniform : ", [&] { SeededGenerator(1)[0].RandomUniform(Results, a, b); });
}

void RandomNormal(double mu, double sigma, TDenseKalpa& Results) {
  if (!(sigma >= 0.0)) ERaise("RandomNormal: sigma < 0");
  requireReal(Results, "RandomNormal : Results.Complex=true");
  core::Guarded("RandomNormal : ", [&] { SeededGenerator(1)[0].RandomGaussian(Results, mu, sigma, gmZiggurat); });
}

void RandomLogNormal(double mu, double sigma, TDenseKalpa& Results) {
  if (!(sigma >= 0.0)) ERaise("RandomLogNormal: sigma < 0");
  requireReal(Results, "RandomLogNormal : Results.Complex=true");
  core::Guarded("RandomLogNormal : ", [&] {
    // The stream refuses a NaN or infinite mu, as RandomNormal's does.
    SeededGenerator(1)[0].RandomGaussian(Results, mu, sigma, gmZiggurat);
    double* out = Results.data();
    for (int i = 0, n = Results.Length(); i < n; ++i) out[i] = std::exp(out[i]);
  });
}

void RandomExponent(double mu, TDenseKalpa& Results) {
  if (!(mu > 0.0)) ERaise("RandomExponent: mu <= 0!");
  requireReal(Results, "RandomExponent : Results.Complex=true");
  core::Guarded("RandomExponent : ", [&] { SeededGenerator(1)[0].RandomExponential(Results, 0.0, mu); });
}

void RandomCauchy(double m, double b, TDenseKalpa& Results) {
  requireReal(Results, "RandomCauchy: Results.Complex=true");
  core::Guarded("RandomCauchy : ", [&] { SeededGenerator(1)[0].RandomCauchy(Results, m, b); });
}

void RandomLaplace(double m, double b, TDenseKalpa& Results) {
  if (!(b >= 0.0)) ERaise("RandomLaplace: b < 0");
  requireReal(Results, "RandomLaplace : Results.Complex=true");
  core::Guarded("RandomLaplace : ", [&] { SeededGenerator(1)[0].RandomLaplace(Results, m, b); });
}

void RandomRayleigh(double b, TDenseKalpa& Results) {
  requireReal(Results, "RandomRayleigh : Results.Complex=true");
  // The stream's Rayleigh has density 2x/beta^2 exp(-(x/beta)^2): beta = b sqrt(2).
  core::Guarded("RandomRayleigh : ", [&] { SeededGenerator(1)[0].RandomRayleigh(Results, 0.0, b * SQRT2); });
}

void RandomWeibull(double a, double b, TDenseKalpa& Results) {
  if (!(a > 0.0) || !(b > 0.0)) ERaise("RandomWeibull: (a<=0) or (b<=0)");
  requireReal(Results, "RandomWeibull : Results.Complex=true");
  // F(x) = 1 - exp(-a x^b) is the stream's Weibull with shape b and scale a^(-1/b).
  // Where that scale overflows or underflows, the values (E/a)^(1/b) of the
  // same standard exponentials E are formed from logarithms instead.
  core::Guarded("RandomWeibull : ", [&] {
    double scale = Power(a, -1.0 / b);
    SeededGenerator gen(1);
    TRngStream& stream = gen[0];
    if (scale >= std::numeric_limits<double>::min() && scale <= std::numeric_limits<double>::max())
      return stream.RandomWeibull(Results, b, 0.0, scale);
    stream.RandomExponential(Results, 0.0, 1.0);
    double* out = Results.data();
    const double logA = std::log(a);
    for (int i = 0, n = Results.Length(); i < n; ++i) out[i] = std::exp((std::log(out[i]) - logA) / b);
  });
}

void RandomTriangular(double a, double b, double c, TDenseKalpa& Results) {
  if (a > b) ERaise("RandomTriangular: a > b");
  if (c > b || c < a) ERaise("RandomTriangular: (c>b) or (c<a)");
  requireReal(Results, "RandomTriangular : Results.Complex=true");
  core::Guarded("RandomTriangular : ", [&] { SeededGenerator(1)[0].RandomTriangular(Results, a, b, c); });
}

// The discrete laws write whole numbers as doubles straight into Results.

void RandomBinom(int n, double p, TDenseKalpa& Results) {
  if (!(p >= 0.0 && p <= 1.0)) ERaise("RandomBinom: (p < 0) or ( p > 1)");
  requireReal(Results, "RandomBinom: Results.Complex=true");
  core::Guarded("RandomBinom : ", [&] { SeededGenerator(1)[0].RandomBinomial(Results, n, p); });
}

void RandomPoisson(double lambda, TDenseKalpa& Results) {
  if (!(lambda > 0.0)) ERaise("RandomPoisson: lambda <= 0");
  requireReal(Results, "RandomPoisson : Results.Complex=true");
  core::Guarded("RandomPoisson : ", [&] { SeededGenerator(1)[0].RandomPoisson(Results, lambda, pmPTRS); });
}

void RandomNegBinom(int r, double p, TDenseKalpa& Results) {
  if (!(p >= 0.0 && p < 1.0) || r < 1) ERaise("RandomNegBinom: (p < 0 ) or (p >= 1)");
  requireReal(Results, "RandomNegBinom : Results.Complex=true");
  core::Guarded("RandomNegBinom : ", [&] { SeededGenerator(1)[0].RandomNegbinomial(Results, r, p); });
}

void RandomHypGeometric(int M, int K, int N, TDenseKalpa& Results) {
  core::Guarded("RandomHypGeometric : ", [&] {
    if (static_cast<long long>(N) > static_cast<long long>(M) + K) ERaise("RandomHypGeometric: N > M + K");
    requireReal(Results, "RandomHypGeometric : Results.Complex=true");
    SeededGenerator(1)[0].RandomHypergeometric(Results, M, K, N);
  });
}

// --- laws built here -----------------------------------------------------------------

void RandomGamma(double A, double B, TDenseKalpa& Results) {
  if (!(A > 0.0) || !(B > 0.0)) ERaise("RandomGamma: A<=0 or B<=0 ");
  requireReal(Results, "RandomGamma : Results.Complex=true");
  core::Guarded("RandomGamma : ", [&] {
    if (A == 1.0) return RandomExponent(B, Results);
    gammaFill(A, B, Results, false);
  });
}

void RandomChiSquare(int nu, TDenseKalpa& Results) {
  requireReal(Results, "RandomChiSquare : Results.Complex=true");
  core::Guarded("RandomChiSquare : ", [&] {
    Results.SetZero();
    RandomGamma(nu * 0.5, 2.0, Results);
  });
}

void RandomBeta(double A, double B, TDenseKalpa& Results) {
  if (!(A > 0.0) || !(B > 0.0)) ERaise("RandomBeta: (A<=0) or (B<=)");
  requireReal(Results, "RandomBeta: Results.Complex=true");
  core::Guarded("RandomBeta : ", [&] {
    int n = Results.Length();
    PooledVec g1, g2;
    g1->Size(n);
    g2->Size(n);
    // Shapes below 1 give gamma variates that underflow: their ratio is formed from logarithms.
    bool logScale = A < 1.0 || B < 1.0;
    core::Guarded("RandomGamma : ", [&] { gammaFill(A, 1.0, *g1, logScale); });
    core::Guarded("RandomGamma : ", [&] { gammaFill(B, 1.0, *g2, logScale); });
    const double *x = g1->data(), *y = g2->data();
    double* out = Results.data();
    for (int i = 0; i < n; ++i) out[i] = logScale ? 1.0 / (1.0 + std::exp(y[i] - x[i])) : x[i] / (x[i] + y[i]);
  });
}

void RandomF(int ANu1, int ANu2, TDenseKalpa& Results) {
  if (ANu1 <= 0 || ANu2 <= 0) ERaise("RandomF:(ANu1<=0) or (ANu2<=0)");
  requireReal(Results, "RandomF : Results.Complex=true");
  core::Guarded("RandomF : ", [&] {
    int n = Results.Length();
    PooledVec c1, c2;
    c1->Size(n);
    c2->Size(n);
    RandomChiSquare(ANu1, *c1);
    RandomChiSquare(ANu2, *c2);
    const double *x = c1->data(), *y = c2->data();
    double* out = Results.data();
    const double ratio = static_cast<double>(ANu2) / ANu1;
    for (int i = 0; i < n; ++i) out[i] = x[i] / y[i] * ratio;
  });
}

void RandomStudent(int v, TDenseKalpa& Results) {
  if (v <= 0) ERaise("RandomStudent: v <= 0");
  requireReal(Results, "RandomStudent : Results.Complex=true");
  core::Guarded("RandomStudent : ", [&] {
    int n = Results.Length();
    double* out = Results.data();
    PooledVec t1;
    t1->Size(n);
    const double* u = t1->data();
    if (v == 1) {  // the ratio of two standard normals
      SeededGenerator gen(2);
      gen[0].RandomGaussian(Results, 0.0, 1.0, gmZiggurat);
      gen[1].RandomGaussian(*t1, 0.0, 1.0, gmZiggurat);
      for (int i = 0; i < n; ++i) out[i] /= u[i];
    } else if (v == 2) {  // inversion: sqrt(2) (U - 1/2) / sqrt(U (1 - U))
      SeededGenerator(1)[0].RandomUniform(*t1, kOpenLow, kOpenHigh);
      for (int i = 0; i < n; ++i) out[i] = SQRT2 * (u[i] - 0.5) / std::sqrt(u[i] * (1.0 - u[i]));
    } else {
      // sqrt(v) (B - 1/2) / sqrt(B (1 - B)) with B = G1 / (G1 + G2) beta(v/2, v/2),
      // written in the two gamma variates so that B never rounds near 0 or 1.
      PooledVec t2;
      t2->Size(n);
      gammaFill(0.5 * v, 1.0, *t1, false);
      gammaFill(0.5 * v, 1.0, *t2, false);
      const double* w = t2->data();
      const double scale = 0.5 * std::sqrt(static_cast<double>(v));
      for (int i = 0; i < n; ++i) out[i] = scale * (u[i] - w[i]) / std::sqrt(u[i] * w[i]);
    }
  });
}

void RandomGeometric(double p, TDenseKalpa& Results) {
  if (!(p >= 0.0 && p < 1.0)) ERaise("RandomGeometric: (p < 0 ) or (p >= 1)");
  requireReal(Results, "RandomGeometric : Results.Complex=true");
  core::Guarded("RandomGeometric : ", [&] {
    SeededGenerator gen(1);
    double* out = Results.data();
    int n = Results.Length();
    if (p == 0.0) {  // no success ever: infinitely many failures
      for (int i = 0; i < n; ++i) out[i] = INF;
      return;
    }
    // Inversion: P(trunc(ln U / ln(1 - p)) >= k) = (1 - p)^k; log1p keeps tiny p exact.
    gen[0].RandomUniform(Results, kOpenLow, kOpenHigh);
    const double factor = 1.0 / std::log1p(-p);
    for (int i = 0; i < n; ++i) out[i] = std::trunc(std::log(out[i]) * factor);
  });
}

void RandomUniformD(int N, TDenseKalpa& Results) {
  if (N < 0) ERaise("RandomUniformD: N < 0");
  requireReal(Results, "RandomUniformD : Results.Complex=true");
  core::Guarded("RandomUniformD : ", [&] {
    SeededGenerator(1)[0].RandomUniform(Results, kOpenLow, kOpenHigh);
    double* out = Results.data();
    const double scale = N;
    for (int i = 0, n = Results.Length(); i < n; ++i) out[i] = std::ceil(out[i] * scale);
  });
}

}  // namespace statkit::Statistics
