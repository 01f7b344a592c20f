#pragma once
// The unit StatTimeSerAnalysis: exponential smoothing, ARMA autocorrelations,
// the exact ARIMA likelihood and its maximisation, forecasting and simulation.
//
// Errors are EArrayError with fixed messages, prefixed by the operation's
// name when they arise while it works; outputs are caller-owned objects that
// the operation sizes.

#include "statkit/Array.h"

namespace statkit::StatTimeSerAnalysis {

using statkit::EArrayError;
using statkit::INF;
using statkit::IsInf;
using statkit::IsNan;
using statkit::TMtx;
using statkit::TVec;

}  // namespace statkit::StatTimeSerAnalysis
