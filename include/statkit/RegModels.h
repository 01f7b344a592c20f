#pragma once
// The unit RegModels: the predefined regression models (line, power, exponential,
// multiple linear), their evaluation, derivatives and direct fits, and the
// callback shapes of a model and its derivative.
//
// Errors are EArrayError with fixed messages, prefixed by the operation's
// name when they arise while it works; outputs are caller-owned objects that
// the operation sizes.

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

#include "statkit/Array.h"

namespace statkit::RegModels {

using statkit::EArrayError;
using statkit::INF;
using statkit::IsInf;
using statkit::IsNan;
using statkit::TMtx;
using statkit::TVec;

/// \brief A regression model: its value at \p X for the parameters \p B.
using TRegressFun = double (*)(std::span<const double> B, double X);
/// \brief A model's derivative: fills \p Grad with d RegressFun(B, X) / d B at \p X.
using TDeriveProc = void (*)(TRegressFun RegressFun, double X, double Y, std::span<const double> B,
                             TVec& Grad);

/// \brief The predefined models: line, power, polynomial (no routines), exponential, multiple linear.
enum TRegressionModel : std::uint8_t { rmLine, rmPower, rmPoly, rmExp, rmMulLin };
inline constexpr std::array<std::string_view, 5> TRegressionModelNames{"rmLine", "rmPower", "rmPoly", "rmExp",
                                                                       "rmMulLin"};

// --- straight line y = B[0] + B[1] x ------------------------------------------

/// \brief B[0] + B[1] X.
STATKIT_API double LineEval(std::span<const double> B, double X);
/// \brief Y[i] = B[0] + B[1] X[i].
STATKIT_API void LineEval(std::span<const double> B, const TVec& X, TVec& Y);
/// \brief Grad = [1, X].
STATKIT_API void LineDeriv(TRegressFun RegressFun, double X, double Y, std::span<const double> B, TVec& Grad);
/// \brief Fits the line by LinRegress (\p Weights optional).
STATKIT_API void LineFit(TVec& B, const TVec& X, const TVec& Y, const TVec* Weights = nullptr);

// --- power curve y = B[0] x^B[1] ------------------------------------------------

/// \brief B[0] X^B[1].
STATKIT_API double PowerEval(std::span<const double> B, double X);
/// \brief Y[i] = B[0] X[i]^B[1].
STATKIT_API void PowerEval(std::span<const double> B, const TVec& X, TVec& Y);
/// \brief Grad = [Y / B[0], Y ln X], Y the model value at X.
STATKIT_API void PowerDeriv(TRegressFun RegressFun, double X, double Y, std::span<const double> B,
                            TVec& Grad);
/// \brief Log-log straight line through the points with X > 0 and Y > 0, weighted by Y^2 (times
/// \p Weights); leaves \p B alone when no point qualifies. Raises std::runtime_error on bad lengths.
STATKIT_API void PowerFit(TVec& B, const TVec& X, const TVec& Y, const TVec* Weights = nullptr);

// --- exponential curve y = B[0] e^(B[1] x) ----------------------------------------

/// \brief B[0] e^(B[1] X).
STATKIT_API double ExpEval(std::span<const double> B, double X);
/// \brief Y[i] = B[0] e^(B[1] X[i]).
STATKIT_API void ExpEval(std::span<const double> B, const TVec& X, TVec& Y);
/// \brief Grad = [Y / B[0], Y X], Y the model value at X.
STATKIT_API void ExpDeriv(TRegressFun RegressFun, double X, double Y, std::span<const double> B, TVec& Grad);
/// \brief Semi-log straight line through the points with Y > 0, weighted by Y^2 (times \p Weights);
/// leaves \p B alone when no point qualifies. Raises std::runtime_error on bad lengths.
STATKIT_API void ExpFit(TVec& B, const TVec& X, const TVec& Y, const TVec* Weights = nullptr);

// --- multiple linear model ----------------------------------------------------

/// \brief One observation: B[0] + sum_{j>=1} B[j] X[j] with \p Constant, else sum_j B[j] X[j].
STATKIT_API double MulLinEval(std::span<const double> B, const TVec& X, bool Constant);
/// \brief Y = D B for every row of \p A, D being \p A behind a column of ones when \p Constant.
STATKIT_API void MulLinEval(std::span<const double> B, const TMtx& A, TVec& Y, bool Constant);
/// \brief Fits by MulLinRegress, weighted when \p Weights is given.
STATKIT_API void MulLinFit(TVec& B, const TMtx& A, const TVec& Y, bool Constant,
                           const TVec* Weights = nullptr);

}  // namespace statkit::RegModels
