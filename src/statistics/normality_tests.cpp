// Normality tests of sorted data: Shapiro-Wilk with Royston's approximations
// of the coefficients and of the null distribution of W (Royston 1992,
// "Approximating the Shapiro-Wilk W-test for non-normality", Statistics and
// Computing 2; Royston 1995, algorithm AS R94), and Shapiro-Francia with
// Royston's normalising transformation (Royston 1993, "A pocket-calculator
// algorithm for the Shapiro-Francia test for non-normality").

#include <cmath>
#include <initializer_list>

#include "core/frame.h"
#include "core/test_decision.h"
#include "statkit/Statistics.h"

namespace statkit::Statistics {

namespace {

double poly(double x, std::initializer_list<double> c) {  // c[0] + c[1] x + ..., by Horner
  double r = 0.0;
  for (auto it = c.end(); it != c.begin();) r = r * x + *--it;
  return r;
}

// Blom's approximate expected normal order statistics
// m_i = Phi^-1((i - 3/8) / (n + 1/4)), i = 1..n. The lower half is evaluated
// and mirrored: the scores are antisymmetric, and a probability near 1 keeps
// only the absolute accuracy of its rounding, which would cost the upper
// scores digits (and half the inverse-normal evaluations).
void normalScores(int n, TVec& m) {
  const int half = (n + 1) / 2;
  m.Size(half);
  m.Ramp(1.0, 1.0);
  m.Normalize(m, 0.375, n + 0.25);
  NormalCDFInv(m, 0.0, 1.0, m);
  m.SetLength(n);
  double* v = m.data();
  for (int i = half; i < n; ++i) v[i] = -v[n - 1 - i];
}

// 1 - W for W = s (a'x)^2 / (|a|^2 SS), s = the intended sum of squares of the
// coefficients (1 when they are normalised). (a'x)^2 / (|a|^2 SS) is the
// squared cosine of the angle between a and the centred data xc; its
// complement is taken from the residual of projecting xc on a, so a W near 1
// keeps the relative accuracy of 1 - W that a subtraction would lose. xc is
// overwritten with the residual.
double oneMinusW(const TVec& a, TVec& xc, double s) {
  const double SS = xc.SumOfSquares();
  xc.AddScaled(a, -a.DotProd(xc) / a.SumOfSquares());
  return (1.0 - s) + s * (xc.SumOfSquares() / SS);
}

// Both tests map their statistic to an approximately standard normal z that
// grows as the sample departs from normality; the two-tailed significance is
// the smaller tail, not doubled.
void decideNormality(double z, THypothesisResult& hRes, double& Signif, THypothesisType hType, double Alpha) {
  Signif = core::TailSignificance(hType, NormalCDF(z, 0.0, 1.0), NormalCDFc(z, 0.0, 1.0), false);
  hRes = core::Decide(Signif, Alpha);
}

// Royston's coefficients: the two outer pairs from polynomials in 1/sqrt(n)
// added to the normalised scores, the inner ones the scores rescaled so that
// the squares sum to 1. With n = 3 the exact coefficients (-sqrt(1/2), 0,
// sqrt(1/2)). Returns the sum of squares the coefficients are meant to have.
double shapiroWilkCoefficients(const TVec& m, TVec& a) {
  const int n = m.Length();
  const double* mv = m.data();
  a.Size(n);
  double* av = a.data();
  if (n == 3) {
    av[0] = -std::sqrt(0.5);
    av[1] = 0.0;
    av[2] = std::sqrt(0.5);
    return 1.0;
  }
  const double summ2 = m.SumOfSquares();
  const double rsn = 1.0 / std::sqrt(double(n));
  const double an = mv[n - 1] / std::sqrt(summ2) + poly(rsn, {0.0, 0.221157, -0.147981, -2.071190, 4.434685, -2.706056});
  const double an1 = mv[n - 2] / std::sqrt(summ2) + poly(rsn, {0.0, 0.042981, -0.293762, -1.752461, 5.682633, -3.582633});
  const double phi = Max(0x1p-52, (summ2 - 2.0 * mv[n - 1] * mv[n - 1] - 2.0 * mv[n - 2] * mv[n - 2]) /
                                      (1.0 - 2.0 * an * an - 2.0 * an1 * an1));
  const double scale = 1.0 / std::sqrt(phi);
  for (int i = 2; i < n - 2; ++i) av[i] = mv[i] * scale;
  av[0] = -an;
  av[1] = -an1;
  av[n - 2] = an1;
  av[n - 1] = an;
  // From n = 6 on the inner coefficients take up the rest of the unit sum of
  // squares; with n = 4 and 5 there are none to do it (the middle score of n = 5 is 0).
  return n >= 6 ? 1.0 : a.SumOfSquares();
}

}  // namespace

void ShapiroWilks(const TVec& Data, THypothesisResult& hRes, double& Signif, THypothesisType hType,
                  double Alpha) {
  if (Data.Complex()) ERaise("ShapiroWilks: Data.Complex");
  const int n = Data.Length();
  if (n < 3 || n > 5000) ERaise("ShapiroWilks: (Data.Length<3) or (Data.Length>5000)");
  core::Guarded("ShapiroWilks : ", [&] {
    PooledVec m, a, xc;
    normalScores(n, *m);
    const double s = shapiroWilkCoefficients(*m, *a);
    xc->Centre(Data);
    const double y = std::log(oneMinusW(*a, *xc, s));
    // Royston's normalisation of ln(1 - W): a further log transform with
    // polynomials in n for 4..11 values, polynomials in ln n otherwise.
    double w, mu, sigma;
    if (n >= 4 && n <= 11) {
      const double gamma = 0.459 * n - 2.273;
      mu = poly(n, {0.544, -0.39978, 0.025054, -0.0006714});
      sigma = std::exp(poly(n, {1.3822, -0.77857, 0.062767, -0.0020322}));
      w = -std::log(gamma - y);
    } else {
      const double u = std::log(double(n));
      mu = poly(u, {-1.5861, -0.31082, -0.083751, 0.0038915});
      sigma = std::exp(poly(u, {-0.4803, -0.082676, 0.0030302}));
      w = y;
    }
    decideNormality((w - mu) / sigma, hRes, Signif, hType, Alpha);
  });
}

void ShapiroFrancia(const TVec& Data, THypothesisResult& hRes, double& Signif, THypothesisType hType,
                    double Alpha) {
  if (Data.Complex()) ERaise("ShapiroWilks: Data.Complex");
  core::Guarded("ShapiroWilks : ", [&] {
    // W' is the squared correlation of the data with the normal scores; the
    // scores need no normalising for the angle between them and the data.
    const int n = Data.Length();
    PooledVec m, xc;
    normalScores(n, *m);
    xc->Centre(Data);
    const double y = std::log(oneMinusW(*m, *xc, 1.0));
    const double u = std::log(double(n)), v = std::log(u);
    const double mu = 1.0521 * (v - u) - 1.2725;
    const double sigma = 1.0308 - 0.26758 * (v + 2.0 / u);
    decideNormality((y - mu) / sigma, hRes, Signif, hType, Alpha);
  });
}

}  // namespace statkit::Statistics
