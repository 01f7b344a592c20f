// Distribution fitting: closed-form estimates with their exact or pivotal
// intervals, and maximum likelihood for the beta, gamma and Weibull laws by
// Nelder-Mead from closed-form starts, with standard errors from the outer
// product of the scores (Berndt, Hall, Hall and Hausman 1974), formed as
// R^-1 R^-T from a QR factor of the score matrix. Binomial limits are
// Clopper and Pearson's (1934) exact interval.

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <span>

#include "core/frame.h"
#include "core/test_decision.h"
#include "statkit/Statistics.h"

namespace statkit::Statistics {

namespace {

using Pars = std::span<const double>;
using Objects = std::span<TObject* const>;

// Each law's log-density at x; ln f of a law outside its parameter space is NaN.
double betaLnPdf(double x, double a, double b) {
  if (!(a > 0 && b > 0)) return NAN;
  return (a - 1) * std::log(x) + (b - 1) * std::log1p(-x) - (GammaLn(a) + GammaLn(b) - GammaLn(a + b));
}
double gammaLnPdf(double x, double a, double b) {
  if (!(a > 0 && b > 0)) return NAN;
  return (a - 1) * std::log(x) - x / b - a * std::log(b) - GammaLn(a);
}
double weibullLnPdf(double x, double a, double b) {
  if (!(a > 0 && b > 0)) return NAN;
  const double lnx = std::log(x);
  return std::log(a * b) + (b - 1) * lnx - a * std::exp(b * lnx);
}

// sum ln x over positive finite x, with one logarithm per block of 128 values instead of one per value:
// ln of the product of the significands (each in [1, 2), so a block stays below 2^128) plus ln 2 times
// the sum of the exponents. A block's product carries at most 128 eps of relative error, about 3e-14
// in its logarithm: well inside what a likelihood needs, at a tenth of the cost. Subnormal values are
// scaled by 2^64 first; four products run side by side.
double sumOfLogs(const TVec& X) {
  constexpr int kBlock = 128, kLanes = 4;
  constexpr std::uint64_t kSignificand = 0x000FFFFFFFFFFFFFull, kExponentOfOne = 0x3FF0000000000000ull;
  constexpr double kSmallest = 2.2250738585072014e-308, kScale = 18446744073709551616.0;  // 2^64
  const double* x = X.data();
  const int n = X.Length();
  double total = 0;
  long long exponents = 0;
  for (int i = 0; i < n; i += kBlock) {
    double product[kLanes] = {1, 1, 1, 1};
    for (int j = i, end = std::min(n, i + kBlock); j < end; ++j) {
      const bool subnormal = x[j] < kSmallest;
      const auto bits = std::bit_cast<std::uint64_t>(subnormal ? x[j] * kScale : x[j]);
      exponents += static_cast<long long>(bits >> 52) - (subnormal ? 1023 + 64 : 1023);
      product[j % kLanes] *= std::bit_cast<double>((bits & kSignificand) | kExponentOfOne);
    }
    total += std::log(product[0] * product[1]) + std::log(product[2] * product[3]);
  }
  return total + static_cast<double>(exponents) * 0.6931471805599453;
}

// Every element inside the open support (lo, hi): then the log-likelihoods reduce to sums of logarithms
// taken once; elsewhere the densities' own values at the support's edge decide.
bool insideSupport(const TVec& X, double lo, double hi) {
  return std::all_of(X.data(), X.data() + X.Length(), [=](double x) { return x > lo && x < hi; });
}

const TVec& sampleOf(Objects o) { return ObjectAs<TVec>(o[0]); }
TVec& workOf(Objects o) { return ObjectAs<TVec>(o[1]); }

// -sum ln f through the vector density: the definition, used where some element lies outside the support.
template <class VectorPdf>
double negLogLikDirect(Objects o, VectorPdf pdf, double tiny = 0) {
  TVec& work = workOf(o);
  pdf(sampleOf(o), work);
  double s = 0;
  for (int i = 0; i < work.Length(); ++i) s += std::log(work[i] + tiny);
  return -s;
}

// Beta: Consts = {n, sum ln x, sum ln(1 - x)} when every x lies in (0, 1), else empty.
double betaNegLogLik(Pars p, Pars c, Objects o) {
  const double a = p[0], b = p[1];
  if (c.empty()) return negLogLikDirect(o, [&](const TVec& x, TVec& d) { BetaPDF(x, a, b, d); });
  if (!(a > 0 && b > 0)) return NAN;
  return -((a - 1) * c[1] + (b - 1) * c[2] - c[0] * (GammaLn(a) + GammaLn(b) - GammaLn(a + b)));
}

// Gamma (shape a, scale b): Consts = {n, sum x, sum ln x} when every x > 0, else empty.
double gammaNegLogLik(Pars p, Pars c, Objects o) {
  const double a = p[0], b = p[1];
  if (c.empty()) return negLogLikDirect(o, [&](const TVec& x, TVec& d) { GammaPDF(x, a, b, d); });
  if (!(a > 0 && b > 0)) return NAN;
  return -((a - 1) * c[2] - c[1] / b - c[0] * (a * std::log(b) + GammaLn(a)));
}

// Weibull, -sum ln(f + 2^-52): the constant keeps the logarithm finite where the density underflows.
constexpr double kDensityFloor = 2.220446049250313e-16;
double weibullNegLogLik(Pars p, Pars, Objects o) {
  const double a = p[0], b = p[1];
  return negLogLikDirect(
      o, [&](const TVec& x, TVec& d) { WeibullPDF(x, a, b, d); }, kDensityFloor);
}

// The same likelihood over the scale lambda = a^(-1/b) and b, from the work vector's ln x of every x > 0.
// Its valley in (a, b) is a narrow curve (a and b trade off through a x^b); in (lambda, b) it is nearly
// axis-aligned, the estimates of scale and shape being nearly uncorrelated, and the simplex needs a
// fraction of the steps for the same maximum.
//
// ln(f + 2^-52) = ln f + log1p(u), u = 2^-52 / f: the sum of ln f is n ln(b / lambda^b) + (b - 1) sum ln x
// - sum (x / lambda)^b, and u needs exp(-ln f), so two whole-vector exponentials per evaluation serve
// (the array layer evaluates them several lanes at a time). Where f underflows, u overflows and the term
// is ln 2^-52 itself.
double weibullScaleNegLogLik(Pars p, Pars c, Objects o) {
  const double lambda = p[0], b = p[1];
  if (!(lambda > 0 && b > 0)) return NAN;
  const TVec& lnx = workOf(o);
  TVec& w = ObjectAs<TVec>(o[2]);
  const double lnLambda = std::log(lambda), lnab = std::log(b) - b * lnLambda, *l = lnx.data();
  const int n = lnx.Length();
  w.Size(n);
  double* t = w.data();
  for (int i = 0; i < n; ++i) t[i] = b * (l[i] - lnLambda);
  w.Exp();  // (x / lambda)^b
  const double sumT = w.Sum();
  for (int i = 0; i < n; ++i) t[i] -= lnab + (b - 1) * l[i];
  w.Exp();  // 1 / f
  double sum = n * lnab + (b - 1) * c[0] - sumT, correction = 0;
  for (int i = 0; i < n; ++i) {
    const double u = kDensityFloor * t[i];
    if (u < 1e-5) correction += u * (1 - 0.5 * u);  // log1p(u) to well below an ulp of the term
    else if (u < INF) correction += std::log1p(u);
    else correction += std::log(kDensityFloor) - (lnab + (b - 1) * l[i] - std::exp(b * (l[i] - lnLambda)));
  }
  return -(sum + correction);
}

// Minimises the negative log-likelihood from (a, b) with the caller's limits; the stop reason is not
// reported: the estimates are the best point reached.
void maximiseLikelihood(TOptObjective negLogLik, Pars consts, const TVec& X, TVec& work, double& a, double& b,
                        int MaxIter, double Tolerance) {
  double p[2] = {a, b}, fmin = 0;
  TOptStopReason why{};
  PooledVec scratch;
  TObject* objects[3] = {const_cast<TVec*>(&X), &work, &*scratch};
  Simplex(negLogLik, p, consts, objects, fmin, why, MaxIter, Tolerance);
  a = p[0];
  b = p[1];
}

// Standard errors of (a, b) from the n x 2 matrix G of forward-difference scores of ln f:
// V = (G'G)^-1 = R^-1 R^-T with R from a Gram-Schmidt QR of the two columns (accurate for R).
template <class LnPdf>
void scoreStandardErrors(const TVec& X, double a, double b, LnPdf lnPdf, double& seA, double& seB) {
  constexpr double h = 1.4901161194e-08, invH = 67108863.999313906;
  double g00 = 0, g01 = 0, g11 = 0;
  const double* xs = X.data();
  for (int i = 0; i < X.Length(); ++i) {
    const double x = xs[i], l = lnPdf(x, a, b);
    const double ga = (lnPdf(x, a + h, b) - l) * invH, gb = (lnPdf(x, a, b + h) - l) * invH;
    g00 += ga * ga;
    g01 += ga * gb;
    g11 += gb * gb;
  }
  const double r11 = std::sqrt(g00), r12 = g01 / r11, r22 = std::sqrt(std::max(g11 - r12 * r12, 0.0));
  if (!(r11 > 0 && r22 > 0)) ERaise(msg::SingularMatrix);
  const double v11 = 1 / (r22 * r22);
  seA = std::sqrt(1 / (r11 * r11) + r12 * r12 * v11 / (r11 * r11));
  seB = std::sqrt(v11);
}

// The equal-tailed interval [limit(Alpha/2), limit(1 - Alpha/2)] of a limit increasing in its level p;
// limit(p, pc) also receives the complement pc = 1 - p as formed once here, for limits read from the
// upper quantile.
template <class Limit>
void equalTailInterval(double* ConfInt, double Alpha, Limit limit) {
  const double lo = 0.5 * Alpha, hi = 1 - 0.5 * Alpha;
  core::WriteInterval(ConfInt, limit(lo, hi), limit(hi, lo));
}

void normalInterval(double* ConfInt, double theta, double se, double Alpha) {
  equalTailInterval(ConfInt, Alpha, [&](double p, double) { return NormalCDFInv(p, theta, se); });
}

// The interval overloads of the maximum-likelihood fits: the short fit, then normal intervals from the
// score standard errors of the fit's own density.
template <class ShortFit, class LnPdf>
void fitWithIntervals(const char* prefix, const TVec& X, double& a, double& b, double* ConfIntA,
                      double* ConfIntB, double Alpha, ShortFit shortFit, LnPdf lnPdf) {
  core::Guarded(prefix, [&] {
    shortFit();
    double seA, seB;
    scoreStandardErrors(X, a, b, lnPdf, seA, seB);
    normalInterval(ConfIntA, a, seA, Alpha);
    normalInterval(ConfIntB, b, seB, Alpha);
  });
}

// Mean and sample standard deviation of ln X (log-normal) or X (normal), and their intervals:
// Student's t for the mean, the chi-square pivot for the standard deviation.
void meanAndSpreadIntervals(int n, double mu, double sigma, double* ConfIntMu, double* ConfIntSigma,
                            double Alpha) {
  const double half = sigma / std::sqrt(static_cast<double>(n));
  equalTailInterval(ConfIntMu, Alpha, [&](double p, double) { return mu + StudentCDFInv(p, n - 1) * half; });
  equalTailInterval(ConfIntSigma, Alpha, [&](double, double pc) {
    return sigma * std::sqrt((n - 1) / ChiSquareCDFInv(pc, n - 1));
  });
}

void checkReal(const TVec& X, const char* message) {
  if (X.Complex()) ERaise(message);
}

}  // namespace

// --- beta, gamma and Weibull by maximum likelihood ---------------------------

void BetaFit(const TVec& X, double& a, double& b, int MaxIter, double Tolerance) {
  checkReal(X, "BetaFit: X.Complex=True");
  core::Guarded("BetaFit : ", [&] {
    PooledVec work;
    const int n = X.Length();
    // Start from the geometric means of X and 1 - X (as means of logarithms: the products underflow).
    const bool inside = insideSupport(X, 0, 1);
    double s1 = 0, s0 = 0;
    if (inside) s1 = sumOfLogs(X);
    else
      for (const double x : X) s1 += std::log(x);
    for (const double x : X) s0 += std::log1p(-x);
    const double g1 = std::exp(s1 / n), g0 = std::exp(s0 / n), d = 1 - g1 - g0;
    a = 0.5 * (1 - g0) / d;
    b = 0.5 * (1 - g1) / d;
    const double stats[3] = {static_cast<double>(n), s1, s0};
    maximiseLikelihood(betaNegLogLik, inside ? Pars(stats) : Pars(), X, *work, a, b, MaxIter, Tolerance);
  });
}

void BetaFit(const TVec& X, double& a, double& b, double* ConfIntA, double* ConfIntB, int MaxIter,
             double Tolerance, double Alpha) {
  checkReal(X, "BetaFit: X.Complex=True");
  fitWithIntervals(
      "BetaFit : ", X, a, b, ConfIntA, ConfIntB, Alpha, [&] { BetaFit(X, a, b, MaxIter, Tolerance); },
      betaLnPdf);
}

void GammaFit(const TVec& X, double& a, double& b, int MaxIter, double Tolerance) {
  checkReal(X, "GammaFit: X.Complex=True");
  core::Guarded("GammaFit : ", [&] {
    PooledVec work;
    // Method-of-moments start: scale v/m, shape m/scale.
    const double m = X.Mean(), s = X.StdDev(m);
    b = s * s / m;
    a = m / b;
    const bool inside = insideSupport(X, 0, INF);
    const double stats[3] = {static_cast<double>(X.Length()), X.Sum(), inside ? sumOfLogs(X) : 0.0};
    maximiseLikelihood(gammaNegLogLik, inside ? Pars(stats) : Pars(), X, *work, a, b, MaxIter, Tolerance);
  });
}

void GammaFit(const TVec& X, double& a, double& b, double* ConfIntA, double* ConfIntB, int MaxIter,
              double Tolerance, double Alpha) {
  checkReal(X, "GammaFit: X.Complex=True");
  fitWithIntervals(
      "GammaFit : ", X, a, b, ConfIntA, ConfIntB, Alpha, [&] { GammaFit(X, a, b, MaxIter, Tolerance); },
      gammaLnPdf);
}

void WeibullFit(const TVec& X, double& a, double& b, int MaxIter, double Tolerance) {
  core::Guarded("WeibullFit : ", [&] {
    if (X.Complex()) ERaise(msg::ComplexNotSupported);
    PooledVec lnx;
    const int n = X.Length();
    lnx->Ln(X);
    lnx->SortAscend();
    // Start: the least-squares line of the Weibull plot, ln(-ln(1 - p_i)) against the sorted ln x(i)
    // at p_i = (i - 1/2)/n, by centred sums; slope c0, intercept c1.
    const double* s = lnx->data();
    const auto plotY = [n](int i) { return std::log(-std::log1p(-(i + 0.5) / n)); };
    double ms = 0, my = 0;
    for (int i = 0; i < n; ++i) ms += s[i], my += plotY(i);
    ms /= n, my /= n;
    double sxy = 0, sxx = 0;
    for (int i = 0; i < n; ++i) {
      const double ds = s[i] - ms;
      sxy += ds * (plotY(i) - my);
      sxx += ds * ds;
    }
    const double c0 = sxy / sxx, c1 = my - c0 * ms;
    b = c0;
    a = std::exp(c1 / c0);
    if (!insideSupport(X, 0, INF))
      return maximiseLikelihood(weibullNegLogLik, {}, X, *lnx, a, b, MaxIter, Tolerance);
    double lambda = std::exp(-std::log(a) / b);
    const double sumLn[1] = {lnx->Sum()};
    maximiseLikelihood(weibullScaleNegLogLik, sumLn, X, *lnx, lambda, b, MaxIter, Tolerance);
    a = std::exp(-b * std::log(lambda));
  });
}

void WeibullFit(const TVec& X, double& a, double& b, double* ConfIntA, double* ConfIntB, int MaxIter,
                double Tolerance, double Alpha) {
  checkReal(X, "WeibullFit: X.Complex=True");
  fitWithIntervals(
      "WeibullFit : ", X, a, b, ConfIntA, ConfIntB, Alpha, [&] { WeibullFit(X, a, b, MaxIter, Tolerance); },
      weibullLnPdf);
}

// --- closed-form fits ----------------------------------------------------------

void BinomFit(const TVec& X, double n, TVec& P) {
  if (n == 0) ERaise("BinomFit: n cannot be zero!");
  checkReal(X, "BinomFit: X.Complex=True");
  core::Guarded("BinomFit : ", [&] { P.Normalize(X, 0.0, n); });
}

void BinomFit(const TVec& X, const TVec& n, TVec& P) {
  if (X.Length() != n.Length() || X.Complex() || n.Complex()) ERaise("BinomFit: X and n must match in size!");
  core::Guarded("BinomFit : ", [&] { P.Divide(X, n); });
}

void BinomFit(const TVec& X, double n, TVec& P, TVec& PLow, TVec& PHigh, double Alpha) {
  core::Guarded("BinomFit : ", [&] {
    PooledVec x, nu1, nu2, F;
    x->Copy(X);  // the outputs may be X itself
    BinomFit(*x, n, P);
    const int len = x->Length();
    PLow.Size(len);
    PHigh.Size(len);
    // Clopper-Pearson: the limits are beta quantiles, written through the F distribution.
    const auto limit = [&](TVec& Dst, double p, double dx, double dn) {
      for (int i = 0; i < len; ++i) {
        (*nu1)[i] = 2 * ((*x)[i] + dx);
        (*nu2)[i] = 2 * (n - (*x)[i] + dn);
      }
      FCDFInv(p, *nu1, *nu2, *F);
      for (int i = 0; i < len; ++i) Dst[i] = (*nu1)[i] * (*F)[i] / ((*nu2)[i] + (*nu1)[i] * (*F)[i]);
    };
    nu1->Size(len);
    nu2->Size(len);
    limit(PLow, 0.5 * Alpha, 0, 1);
    limit(PHigh, 1 - 0.5 * Alpha, 1, 0);
    // The one-sided ends of the exact interval, where a degree of freedom is 0.
    for (int i = 0; i < len; ++i) {
      if ((*x)[i] == 0) PLow[i] = 0;
      if ((*x)[i] == n) PHigh[i] = 1;
    }
  });
}

void ExponentFit(const TVec& X, double& mu) {
  checkReal(X, "ExponentFit: X.Complex=True");
  mu = X.Mean();
}

void ExponentFit(const TVec& X, double& mu, double* ConfInt, double Alpha) {
  checkReal(X, "ExponentFit: A.Complex=True");
  ExponentFit(X, mu);
  core::Guarded("ExponentFit : ", [&] {
    // The mean of n exponential values is gamma(n, mu/n).
    const int n = X.Length();
    equalTailInterval(ConfInt, Alpha, [&](double q, double) { return GammaCDFInv(q, n, mu / n); });
  });
}

void GeometricFit(const TVec& X, double& p) {
  checkReal(X, "GeometricFit: X.Complex=True");
  core::Guarded("GeometricFit : ", [&] { p = 1 / (X.Mean() + 1); });
}

void GeometricFit(const TVec& X, double& p, double* ConfInt, double Alpha) {
  checkReal(X, "GeometricFit: X.Complex=True");
  core::Guarded("GeometricFit : ", [&] {
    GeometricFit(X, p);
    // On the scale of the mean count of failures: the sum of n counts is negative binomial (n, p).
    const int n = X.Length();
    equalTailInterval(ConfInt, Alpha, [&](double q, double) { return NegBinomCDFInv(q, n, p) / n; });
  });
}

void LogNormalFit(const TVec& X, double& mu, double& sigma) {
  checkReal(X, "LogNormalFit: X.Complex=True");
  PooledVec lnx;
  lnx->Ln(X);
  mu = lnx->Mean();
  sigma = lnx->StdDev(mu);
}

void LogNormalFit(const TVec& X, double& mu, double& sigma, double* ConfIntMu, double* ConfIntSigma,
                  double Alpha) {
  checkReal(X, "LogNormalFit: X.Complex=True");
  LogNormalFit(X, mu, sigma);
  core::Guarded("LogNormalFit : ",
                [&] { meanAndSpreadIntervals(X.Length(), mu, sigma, ConfIntMu, ConfIntSigma, Alpha); });
}

void NormalFit(const TVec& X, double& mu, double& sigma) {
  checkReal(X, "NormalFit: X.Complex=True");
  mu = X.Mean();
  sigma = X.StdDev(mu);
}

void NormalFit(const TVec& X, double& mu, double& sigma, double* ConfIntMu, double* ConfIntSigma,
               double Alpha) {
  checkReal(X, "NormalFit: X.Complex=True");
  NormalFit(X, mu, sigma);
  core::Guarded("NormalFit : ",
                [&] { meanAndSpreadIntervals(X.Length(), mu, sigma, ConfIntMu, ConfIntSigma, Alpha); });
}

void PoissonFit(const TVec& X, double& lambda) {
  checkReal(X, "PoissonFit: X.Complex=True");
  lambda = X.Mean();
}

void PoissonFit(const TVec& X, double& lambda, double* ConfInt, double Alpha) {
  checkReal(X, "PoissonFit: X.Complex=True");
  PoissonFit(X, lambda);
  core::Guarded("PoissonFit : ", [&] {
    // The sum L = n lambda is Poisson(L): its quantiles, or the normal approximation from L = 100 on.
    const int n = X.Length();
    const double L = n * lambda;
    equalTailInterval(ConfInt, Alpha, [&](double q, double) {
      return (L < 100 ? PoissonCDFInv(q, L) : NormalCDFInv(q, L, std::sqrt(L))) / n;
    });
  });
}

void RayleighFit(const TVec& X, double& b) {
  checkReal(X, "RayleighFit: X.Complex=True");
  PooledVec squares;
  squares->Sqr(X);
  b = std::sqrt(0.5 * squares->Mean());
}

void RayleighFit(const TVec& X, double& b, double* ConfInt, double Alpha) {
  checkReal(X, "RayleighFit: X.Complex=True");
  core::Guarded("RayleighFit : ", [&] {
    RayleighFit(X, b);
    // sum x^2 / b^2 is chi-square with 2n degrees of freedom.
    const int n2 = 2 * X.Length();
    equalTailInterval(ConfInt, Alpha,
                      [&](double, double qc) { return b * std::sqrt(n2 / ChiSquareCDFInv(qc, n2)); });
  });
}

void UniformDFit(const TVec& X, int& N) {
  checkReal(X, "UniformDFit: X.Complex=True");
  core::Guarded("UniformDFit : ", [&] { N = Ceil(X.Max()); });
}

void UniformDFit(const TVec& X, int& N, double* ConfInt, double Alpha) {
  UniformDFit(X, N);
  core::Guarded("UniformDFit : ", [&] {
    // P(max <= m | N) = (m/N)^n: the N whose probability of a maximum as low as m is Alpha bound it.
    core::WriteInterval(ConfInt, N, std::floor(N * std::pow(Alpha, -1.0 / X.Length())));
  });
}

void UniformFit(const TVec& X, double& a, double& b) {
  checkReal(X, "UniformFit: X.Complex=True");
  a = X.Min();
  b = X.Max();
}

void UniformFit(const TVec& X, double& a, double& b, double* ConfIntA, double* ConfIntB, double Alpha) {
  UniformFit(X, a, b);
  core::Guarded("UniformFit : ", [&] {
    const double d = (b - a) * Alpha;
    core::WriteInterval(ConfIntA, a, b - d);
    core::WriteInterval(ConfIntB, a + d, b);
  });
}

}  // namespace statkit::Statistics
