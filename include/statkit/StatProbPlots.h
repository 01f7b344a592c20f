#pragma once
// The unit StatProbPlots: the points of normal, quantile-quantile and Weibull
// probability plots with their quartile reference lines.
//
// Errors are EArrayError with fixed messages, prefixed by the operation's
// name when they arise while it works; outputs are caller-owned objects that
// the operation sizes.

#include "statkit/Array.h"

namespace statkit::StatProbPlots {

using statkit::EArrayError;
using statkit::INF;
using statkit::IsInf;
using statkit::IsNan;
using statkit::TMtx;
using statkit::TVec;

}  // namespace statkit::StatProbPlots
