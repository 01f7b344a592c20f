#pragma once
// Constants and scalar functions of the array layer.

#include <cmath>
#include <limits>

#include "statkit/array/Config.h"
#include "statkit/array/Types.h"

namespace statkit {

// NAN is the <cmath> macro (a macro cannot be redeclared in a namespace).
inline constexpr double INF = std::numeric_limits<double>::infinity();
inline constexpr TCplx C_ONE{1.0, 0.0};
inline constexpr TCplx C_ZERO{0.0, 0.0};
inline constexpr double SQRT2 = 1.4142135623730950488;
inline constexpr double SQRT2PI = 2.5066282746310005024;    ///< sqrt(2 pi)
inline constexpr double INVSQRT2PI = 0.39894228040143267794;  ///< 1 / sqrt(2 pi)
inline constexpr double PIDIV2 = 1.5707963267948966192;
inline constexpr double INVTWOPI = 0.15915494309189533577;  ///< 1 / (2 pi)
inline constexpr double LN2 = 0.69314718055994530942;

/// \brief True when \p x is a NaN.
[[nodiscard]] inline bool IsNan(double x) { return std::isnan(x); }
/// \brief True when \p x is +INF or -INF.
[[nodiscard]] inline bool IsInf(double x) { return std::isinf(x); }

/// \brief a == b, or |a - b| <= 4 eps max(|a|, |b|); NaN equals nothing.
[[nodiscard]] STATKIT_API bool Equal(double a, double b);

/// \brief Largest whole number <= x, as int; raises "Integer overflow" outside the int range or for NaN.
[[nodiscard]] STATKIT_API int Floor(double x);
/// \brief Smallest whole number >= x, as int; raises "Integer overflow" outside the int range or for NaN.
[[nodiscard]] STATKIT_API int Ceil(double x);
/// \brief Integer part of x (toward zero) as result, the fractional part in \p Frac.
STATKIT_API int TruncAndFrac(double x, double& Frac);
/// \brief x rounded to the nearest int, halves to even.
[[nodiscard]] STATKIT_API int aRound(double x);

[[nodiscard]] inline double Max(double a, double b) { return a > b ? a : b; }
[[nodiscard]] inline double Min(double a, double b) { return a < b ? a : b; }
[[nodiscard]] inline int Max(int a, int b) { return a > b ? a : b; }
[[nodiscard]] inline int Min(int a, int b) { return a < b ? a : b; }

/// \brief -1, 0 or 1 by the sign of \p x (0 for NaN).
[[nodiscard]] inline double Sgn(double x) { return x > 0 ? 1.0 : (x < 0 ? -1.0 : 0.0); }
/// \brief The negated number.
[[nodiscard]] inline TCplx Sign(TCplx z) { return -z; }
[[nodiscard]] inline TCplx CAdd(TCplx a, TCplx b) { return a + b; }
[[nodiscard]] inline TCplx CSub(TCplx a, TCplx b) { return a - b; }
[[nodiscard]] inline TCplx CDiv(TCplx a, TCplx b) { return a / b; }

[[nodiscard]] inline double Exp(double x) { return std::exp(x); }
[[nodiscard]] inline double Exp2(double x) { return std::exp2(x); }
[[nodiscard]] inline double Ln(double x) { return std::log(x); }
[[nodiscard]] inline double Log10(double x) { return std::log10(x); }
[[nodiscard]] inline double Tanh(double x) { return std::tanh(x); }
[[nodiscard]] inline double Power(double Base, double Exponent) { return std::pow(Base, Exponent); }
/// \brief The gamma function.
[[nodiscard]] STATKIT_API double Gamma(double x);
/// \brief ln |Gamma(x)|, accurate where Gamma(x) itself overflows (x > 171.6); +INF at the poles.
[[nodiscard]] STATKIT_API double GammaLn(double x);
/// \brief Base raised to an integer power (exact repeated squaring; negative powers invert).
[[nodiscard]] STATKIT_API double IntPower(double Base, int Exponent);

/// \brief Switches the rounding mode to truncation; returns the previous mode for RestoreRound.
[[nodiscard]] STATKIT_API int SetRoundToTrunc();
/// \brief Restores a rounding mode saved by SetRoundToTrunc.
STATKIT_API void RestoreRound(int Saved);

}  // namespace statkit
