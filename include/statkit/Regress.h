#pragma once
// The unit Regress: linear, multiple linear, nonlinear, logistic and ridge
// regression, regression statistics, and analysis of variance.
//
// Errors are EArrayError with fixed messages, prefixed by the operation's
// name when they arise while it works; outputs are caller-owned objects that
// the operation sizes.

#include "statkit/Array.h"
#include "statkit/RegModels.h"

namespace statkit::Regress {

using statkit::EArrayError;
using statkit::INF;
using statkit::IsInf;
using statkit::IsNan;
using statkit::TMtx;
using statkit::TVec;
using RegModels::TDeriveProc;
using RegModels::TRegressFun;

}  // namespace statkit::Regress
