#pragma once
// The unit RegModels: the predefined regression models (line, power, exponential,
// multiple linear), their evaluation, derivatives and direct fits, and the
// callback shapes of a model and its derivative.
//
// Errors are EArrayError with fixed messages, prefixed by the operation's
// name when they arise while it works; outputs are caller-owned objects that
// the operation sizes.

#include <span>

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
using TDeriveProc = void (*)(TRegressFun RegressFun, double X, double Y, std::span<const double> B, TVec& Grad);

}  // namespace statkit::RegModels
