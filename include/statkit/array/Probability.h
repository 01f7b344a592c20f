#pragma once
// Distribution functions (CDF), their complements (CDFc, the upper tail
// computed directly), densities (PDF) and inverses (CDFInv).
//
// Conventions: outside its support a CDF is 0 below and 1 above, a density
// is 0; invalid parameters give NaN. Parameterisations: normal by mean and
// standard deviation; gamma by shape A and scale B; beta by shapes A, B;
// Weibull F(x) = 1 - exp(-A x^B); exponential by its mean; Rayleigh by its
// scale; negative binomial counting failures before the R-th success.
// Degenerate laws at the edge of their parameters are valid and put all their
// mass on one point: binomial with P = 0 or 1, Poisson with Lambda = 0,
// negative binomial with P = 1. Discrete arguments are floored (BinomCDF(2.5)
// is BinomCDF(2)); discrete densities are 0 off the whole numbers. A discrete
// inverse beyond 2^53, where the whole numbers are no longer all doubles, is
// NaN, and so is a beta function with both shapes above 1e3 and one above 1e10.
// A beta shape above 1e10 with the other at most 1e3 takes the gamma limit of
// the law, within 1e-11 relative (BetaCDFInv(0.625, 2.8125, DBL_MAX) is about
// 1.68e-308); gamma shapes up to DBL_MAX are valid. Every function returns in
// bounded time for every argument; distribution functions, their complements and
// discrete probabilities lie in [0, 1].
// Accuracy: 1e-13 relative (absolute 1e-300 in the subnormal range) against
// 40-digit references, also in the tails down to 1e-300 (the Weibull density:
// about 1.5 eps times A x^B, the rounding of its exponent).
// The scalar functions never throw. Vector forms write Dst element by element,
// sized like X; complex input raises "Complex data not supported".

#include "statkit/array/Config.h"
#include "statkit/array/Kalpa.h"

namespace statkit {

[[nodiscard]] STATKIT_API double NormalCDF(double x, double Mu, double Sigma) noexcept;
[[nodiscard]] STATKIT_API double NormalCDFc(double x, double Mu, double Sigma) noexcept;
[[nodiscard]] STATKIT_API double NormalPDF(double x, double Mu, double Sigma) noexcept;
[[nodiscard]] STATKIT_API double NormalCDFInv(double p, double Mu, double Sigma) noexcept;
STATKIT_API void NormalCDF(const TDenseKalpa& X, double Mu, double Sigma, TDenseKalpa& Dst);
STATKIT_API void NormalCDFInv(const TDenseKalpa& X, double Mu, double Sigma, TDenseKalpa& Dst);

[[nodiscard]] STATKIT_API double StudentCDF(double x, int Nu) noexcept;
[[nodiscard]] STATKIT_API double StudentCDFc(double x, int Nu) noexcept;
[[nodiscard]] STATKIT_API double StudentPDF(double x, int Nu) noexcept;
[[nodiscard]] STATKIT_API double StudentCDFInv(double p, int Nu) noexcept;

[[nodiscard]] STATKIT_API double ChiSquareCDF(double x, int Nu) noexcept;
[[nodiscard]] STATKIT_API double ChiSquareCDFc(double x, int Nu) noexcept;
[[nodiscard]] STATKIT_API double ChiSquarePDF(double x, int Nu) noexcept;
[[nodiscard]] STATKIT_API double ChiSquareCDFInv(double p, int Nu) noexcept;

[[nodiscard]] STATKIT_API double FCDF(double x, int Nu1, int Nu2) noexcept;
[[nodiscard]] STATKIT_API double FCDFc(double x, int Nu1, int Nu2) noexcept;
[[nodiscard]] STATKIT_API double FPDF(double x, int Nu1, int Nu2) noexcept;
[[nodiscard]] STATKIT_API double FCDFInv(double p, int Nu1, int Nu2) noexcept;
/// \brief Dst[i] = FCDFInv(p, Nu1[i], Nu2[i]) (the degrees of freedom are whole numbers).
STATKIT_API void FCDFInv(double p, const TDenseKalpa& Nu1, const TDenseKalpa& Nu2, TDenseKalpa& Dst);

[[nodiscard]] STATKIT_API double GammaCDF(double x, double A, double B) noexcept;
[[nodiscard]] STATKIT_API double GammaCDFc(double x, double A, double B) noexcept;
[[nodiscard]] STATKIT_API double GammaPDF(double x, double A, double B) noexcept;
[[nodiscard]] STATKIT_API double GammaCDFInv(double p, double A, double B) noexcept;
STATKIT_API void GammaCDF(const TDenseKalpa& X, double A, double B, TDenseKalpa& Dst);
STATKIT_API void GammaPDF(const TDenseKalpa& X, double A, double B, TDenseKalpa& Dst);

[[nodiscard]] STATKIT_API double BetaCDF(double x, double A, double B) noexcept;
[[nodiscard]] STATKIT_API double BetaPDF(double x, double A, double B) noexcept;
[[nodiscard]] STATKIT_API double BetaCDFInv(double p, double A, double B) noexcept;
STATKIT_API void BetaCDF(const TDenseKalpa& X, double A, double B, TDenseKalpa& Dst);
STATKIT_API void BetaPDF(const TDenseKalpa& X, double A, double B, TDenseKalpa& Dst);

/// \brief Weibull distribution function, A the rate-like scale and B the shape: F(x) = 1 - exp(-A x^B)
/// for x >= 0, density A B x^(B-1) exp(-A x^B) (scale A^(-1/B) in the usual form); the other Weibull
/// functions take A and B in the same sense.
[[nodiscard]] STATKIT_API double WeibullCDF(double x, double A, double B) noexcept;
[[nodiscard]] STATKIT_API double WeibullPDF(double x, double A, double B) noexcept;
[[nodiscard]] STATKIT_API double WeibullCDFInv(double p, double A, double B) noexcept;
STATKIT_API void WeibullCDF(const TDenseKalpa& X, double A, double B, TDenseKalpa& Dst);
STATKIT_API void WeibullPDF(const TDenseKalpa& X, double A, double B, TDenseKalpa& Dst);

[[nodiscard]] STATKIT_API double ExpCDF(double x, double Mu) noexcept;
[[nodiscard]] STATKIT_API double ExpPDF(double x, double Mu) noexcept;
[[nodiscard]] STATKIT_API double ExpCDFInv(double p, double Mu) noexcept;
STATKIT_API void ExpCDF(const TDenseKalpa& X, double Mu, TDenseKalpa& Dst);

/// \brief Rayleigh distribution function with scale B: F(x) = 1 - exp(-x^2/(2 B^2)) for x >= 0, density
/// (x/B^2) exp(-x^2/(2 B^2)), mean B sqrt(pi/2); the other Rayleigh functions take B in the same sense.
[[nodiscard]] STATKIT_API double RayleighCDF(double x, double B) noexcept;
[[nodiscard]] STATKIT_API double RayleighPDF(double x, double B) noexcept;
[[nodiscard]] STATKIT_API double RayleighCDFInv(double p, double B) noexcept;
STATKIT_API void RayleighCDF(const TDenseKalpa& X, double B, TDenseKalpa& Dst);

/// \brief P(X <= floor(x)) for X binomial with N trials and success probability P.
[[nodiscard]] STATKIT_API double BinomCDF(double x, int N, double P) noexcept;
[[nodiscard]] STATKIT_API double BinomCDFc(double x, int N, double P) noexcept;
[[nodiscard]] STATKIT_API double BinomPDF(double x, int N, double P) noexcept;
[[nodiscard]] STATKIT_API double PoissonCDF(double x, double Lambda) noexcept;
/// \brief P(X > floor(x)), computed directly.
[[nodiscard]] STATKIT_API double PoissonCDFc(double x, double Lambda) noexcept;
[[nodiscard]] STATKIT_API double PoissonPDF(double x, double Lambda) noexcept;
/// \brief Smallest whole k with PoissonCDF(k) >= p.
[[nodiscard]] STATKIT_API double PoissonCDFInv(double p, double Lambda) noexcept;
[[nodiscard]] STATKIT_API double NegBinomCDF(double x, int R, double P) noexcept;
/// \brief P(X > floor(x)), computed directly.
[[nodiscard]] STATKIT_API double NegBinomCDFc(double x, int R, double P) noexcept;
[[nodiscard]] STATKIT_API double NegBinomPDF(double x, int R, double P) noexcept;
/// \brief Smallest whole k with NegBinomCDF(k) >= p.
[[nodiscard]] STATKIT_API double NegBinomCDFInv(double p, int R, double P) noexcept;

/// \brief Inverse error function.
[[nodiscard]] STATKIT_API double ErfInv(double x) noexcept;

}  // namespace statkit
