#pragma once
// The unit StatControlCharts: Shewhart charts for variables and attributes,
// the EWMA chart and the process capability indexes.
//
// Errors are EArrayError with fixed messages, prefixed by the operation's
// name when they arise while it works; outputs are caller-owned objects that
// the operation sizes.

#include "statkit/Array.h"

namespace statkit::StatControlCharts {

using statkit::EArrayError;
using statkit::INF;
using statkit::IsInf;
using statkit::IsNan;
using statkit::TMtx;
using statkit::TVec;

}  // namespace statkit::StatControlCharts
