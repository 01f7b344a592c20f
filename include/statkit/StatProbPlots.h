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

// Each plot returns the x coordinates (XOut, the data sorted ascending unless the
// caller says they already are), the y coordinates (YOut) and the two end points
// (X1, Y1), (X2, Y2) of a reference line through the points of the lower and upper
// quartiles (Percentile with pctMethodNPlus), X1 and X2 the smallest and largest x.
// The plotting position of the i-th smallest of n values (from 0) is (i + 0.5) / n.

/// \brief Normal probability plot: YOut[i] = the standard normal quantile of (i + 0.5) / n.
STATKIT_API void StatNormalPlot(const TVec& Data, TVec& XOut, TVec& YOut, double& X1, double& X2, double& Y1,
                                double& Y2, bool Sorted);
/// \brief Quantile-quantile plot of two samples of equal length: XOut and YOut the sorted samples.
STATKIT_API void StatQQPlot(const TVec& XData, const TVec& YData, TVec& XOut, TVec& YOut, double& X1, double& X2,
                            double& Y1, double& Y2, bool XSorted, bool YSorted);
/// \brief Weibull probability plot for a logarithmic x axis: YOut[i] = ln(-ln(1 - (i + 0.5) / n)), the line
/// straight in ln x through the quartile points.
STATKIT_API void StatWeibullPlot(const TVec& Data, TVec& XOut, TVec& YOut, double& X1, double& X2, double& Y1,
                                 double& Y2, bool Sorted);

}  // namespace statkit::StatProbPlots
