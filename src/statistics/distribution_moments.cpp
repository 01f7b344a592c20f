// Means and variances of the supported distributions. Each sets both outputs
// to 0, returns NaN for both at invalid parameters (a NaN parameter fails its
// test), and NaN for a moment that does not exist. Integer parameters are
// widened to double before any product, so no intermediate is limited to 32 bits.

#include "statkit/Statistics.h"

namespace statkit::Statistics {

namespace {

/// The shared start of every member: zero both outputs, then NaN both when the
/// parameters are invalid. Returns true when the formulas may be evaluated.
bool start(bool valid, double& Mean, double& Variance) {
  Mean = 0.0;
  Variance = 0.0;
  if (valid) return true;
  Mean = Variance = NAN;
  return false;
}

}  // namespace

// A test written "x > 0" is false for NaN, so NaN parameters fail their checks.

void MVBeta(double a, double b, double& Mean, double& Variance) {
  if (!start(a > 0 && b > 0, Mean, Variance)) return;
  double s = a + b;
  Mean = a / s;
  Variance = a * b / (s * s * (s + 1.0));
}

void MVBinom(int n, double p, double& Mean, double& Variance) {
  if (!start(p >= 0 && p <= 1 && n >= 0, Mean, Variance)) return;
  double N = n;
  Mean = N * p;
  Variance = N * p * (1.0 - p);
}

void MVCauchy(double, double, double& Mean, double& Variance) { Mean = Variance = NAN; }

void MVChiSquare(int nu, double& Mean, double& Variance) {
  if (!start(nu > 0, Mean, Variance)) return;
  MVGamma(nu * 0.5, 2.0, Mean, Variance);
}

void MVExponent(double mu, double& Mean, double& Variance) {
  if (!start(mu > 0, Mean, Variance)) return;
  Mean = mu;
  Variance = mu * mu;
}

void MVF(int nu1, int nu2, double& Mean, double& Variance) {
  if (!start(nu1 > 0 && nu2 > 0, Mean, Variance)) return;
  double n1 = nu1, n2 = nu2;
  Mean = nu2 > 2 ? n2 / (n2 - 2.0) : NAN;
  Variance = nu2 > 4 ? 2.0 * Mean * Mean * (n1 + n2 - 2.0) / (n1 * (n2 - 4.0)) : NAN;
}

void MVGamma(double a, double b, double& Mean, double& Variance) {
  if (!start(a > 0 && b > 0, Mean, Variance)) return;
  Mean = a * b;
  Variance = a * b * b;
}

void MVGeometric(double p, double& Mean, double& Variance) {
  if (!start(p > 0 && p <= 1, Mean, Variance)) return;
  Mean = (1.0 - p) / p;
  Variance = (1.0 - p) / (p * p);
}

void MVHypGeometric(int M, int K, int N, double& Mean, double& Variance) {
  if (!start(M >= 0 && K >= 0 && N >= 0 && N <= M && K <= M, Mean, Variance)) return;
  // A population of 0 or 1 items: the mean where defined, no spread.
  if (M == 0) return;
  double m = M, k = K, n = N;
  Mean = n * k / m;
  Variance = M == 1 ? 0.0 : n * k * (m - k) * (m - n) / (m * m * (m - 1.0));
}

void MVMaxwell(double a, double& Mean, double& Variance) {
  if (!start(a > 0, Mean, Variance)) return;
  Mean = 4.0 * INVSQRT2PI * std::sqrt(1.0 / a);
  Variance = (3.0 - 16.0 * INVTWOPI) / a;
}

void MVNegBinom(int r, double p, double& Mean, double& Variance) {
  if (!start(p > 0 && p <= 1 && r >= 1, Mean, Variance)) return;
  double R = r;
  Mean = R * (1.0 - p) / p;
  Variance = R * (1.0 - p) / (p * p);
}

void MVNormal(double mu, double sigma, double& Mean, double& Variance) {
  if (!start(sigma > 0, Mean, Variance)) return;
  Mean = mu;
  Variance = sigma * sigma;
}

void MVPareto(double a, double b, double& Mean, double& Variance) {
  if (!start(a > 0 && b > 0, Mean, Variance)) return;
  Mean = a > 1 ? a * b / (a - 1.0) : NAN;
  Variance = a > 2 ? a * b * b / ((a - 1.0) * (a - 1.0) * (a - 2.0)) : NAN;
}

void MVPoisson(double lambda, double& Mean, double& Variance) {
  if (!start(lambda > 0, Mean, Variance)) return;
  Mean = Variance = lambda;
}

void MVRayleigh(double b, double& Mean, double& Variance) {
  if (!start(b > 0, Mean, Variance)) return;
  Mean = b * SQRT2PI * 0.5;
  Variance = b * b * (2.0 - PIDIV2);
}

void MVStudent(int v, double& Mean, double& Variance) {
  if (!start(v > 0, Mean, Variance)) return;
  if (v == 1) Mean = NAN;
  double V = v;
  Variance = v >= 3 ? V / (V - 2.0) : NAN;
}

void MVUniform(double a, double b, double& Mean, double& Variance) {
  if (!start(a < b, Mean, Variance)) return;
  Mean = (a + b) * 0.5;
  Variance = (b - a) * (b - a) / 12.0;
}

void MVUniformD(int N, double& Mean, double& Variance) {
  if (!start(N > 0, Mean, Variance)) return;
  double n = N;
  Mean = (n + 1.0) * 0.5;
  Variance = (n * n - 1.0) / 12.0;
}

void MVWeibull(double a, double b, double& Mean, double& Variance) {
  if (!start(a > 0 && b > 0, Mean, Variance)) return;
  Mean = Power(a, -1.0 / b) * Gamma(1.0 + 1.0 / b);
  Variance = Power(a, -2.0 / b) * Gamma(1.0 + 2.0 / b) - Mean * Mean;
}

}  // namespace statkit::Statistics
