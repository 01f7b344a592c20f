#pragma once
// Declarations shared by the probability translation units of src/array/probability:
// small helpers, the incomplete gamma and beta functions and the quantiles built on
// Boost.Math (special_functions.cpp, the only one that includes Boost), the normal
// quantile and the normal distribution function over an array.

#include <cmath>
#include <limits>

namespace statkit::detail::prob {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

inline bool isWhole(double x) { return std::floor(x) == x; }
inline bool validProb(double p) { return p >= 0.0 && p <= 1.0; }
inline bool positiveFinite(double v) { return v > 0.0 && v < kInf; }
inline bool validNormal(double Mu, double Sigma) { return std::isfinite(Mu) && positiveFinite(Sigma); }
inline bool validGamma(double A, double B) { return positiveFinite(A) && positiveFinite(B); }
inline bool validBeta(double A, double B) { return positiveFinite(A) && positiveFinite(B); }
inline bool validBinom(int N, double P) { return N >= 0 && validProb(P); }
inline bool validPoisson(double Lambda) { return Lambda >= 0.0 && Lambda < kInf; }
inline bool validNegBinom(int R, double P) { return R >= 1 && P > 0.0 && P <= 1.0; }

// A probability rounded or corrected past an end of [0, 1] (1 + 2e-14 from a prefix
// near 1e-300) is that end; NaN stays NaN.
inline double unitClamp(double v) { return v < 0.0 ? 0.0 : (v > 1.0 ? 1.0 : v); }

// f(hi + lo) = f(hi) + lo f'(hi): the first-order step that removes an argument's
// rounding error from a tail, which stays a probability.
inline double corrected(double value, double derivative, double lo) {
  if (lo == 0.0 || !std::isfinite(derivative)) return value;
  return unitClamp(value + lo * derivative);
}

// Both tails and the density (the derivative of the lower tail). The smaller tail is
// computed directly and the other as its complement.
struct Tails {
  double lower, upper, density;
};

inline Tails fromLower(double lower, double density) {
  lower = unitClamp(lower);
  return {lower, 1.0 - lower, density};
}

inline Tails fromUpper(double upper, double density) {
  upper = unitClamp(upper);
  return {1.0 - upper, upper, density};
}

// special_functions.cpp: P(a, z), Q(a, z) for finite z > 0 and their density; I_x(a, b),
// 1 - I_x(a, b) for 0 < x < 1 and their density; ln Gamma and B; quantiles.
Tails gammaTails(double a, double z);
double gammaDensityAt(double a, double z);
Tails betaTails(double a, double b, double x);
double betaDensityAt(double a, double b, double x);
double lnGamma(double a);
double betaFunction(double a, double b);
double gammaQuantile(double p, double A);            // P(A, x) = p
double betaQuantile(double p, double a, double b);   // I_x(a, b) = p, 0 < p < 1
double studentQuantile(double p, double nu);
double fQuantile(double p, double n1, double n2);

// normal.cpp: the standard normal quantile; d[i] = NormalCDF(x[i], Mu, Sigma), d may be x.
double standardNormalQuantile(double p);
void normalCdfInto(const double* x, double* d, int n, double Mu, double Sigma);

// beta_family.cpp: the F law's tail (upper: P(F > x)) and density.
double fTail(double x, double n1, double n2, bool upper);
double fDensity(double x, double n1, double n2);

}  // namespace statkit::detail::prob
