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

// Variables charts take one subgroup per row of Data (subgroup size n = Data.Cols) and
// set their limits at z = NormalCDFInv(0.5 Confidence + 0.5, 0, 1) (two-sided); the
// attribute and EWMA charts at z = NormalCDFInv(Confidence, 0, 1). The subgroup
// constants c4(n) (the mean of the sample standard deviation of n normal values over
// sigma) and r(n) = 0.5 sqrt(n ln 2 / ((n - 1) ln n)) (standing in for d3/d2) are
// computed for any n; n = 1 leaves them undefined (NaN or infinite limits). Only the
// S chart clips its lower limit at 0.

/// \brief X-bar chart: DrawVec the subgroup means, CL their mean, limits CL +- z s-bar / (c4(n) sqrt(n)).
STATKIT_API void QCXChart(const TMtx& Data, TVec& DrawVec, double& CL, double& UCL, double& LCL, double Confidence);
/// \brief S chart: DrawVec the subgroup standard deviations, CL = s-bar, limits CL +- z sqrt(1 - c4^2) s-bar / c4.
STATKIT_API void QCSChart(const TMtx& Data, TVec& DrawVec, double& CL, double& UCL, double& LCL, double Confidence);
/// \brief R chart: DrawVec the subgroup ranges, CL = R-bar, limits CL +- z r(n) R-bar.
STATKIT_API void QCRChart(const TMtx& Data, TVec& DrawVec, double& CL, double& UCL, double& LCL, double Confidence);
/// \brief p chart, one sample size: DrawVec = Data / SampleSize, CL = p-bar, limits p-bar +- z sqrt(p-bar (1 - p-bar) / n).
STATKIT_API void QCPChart(const TVec& Data, int SampleSize, TVec& DrawVec, double& CL, double& UCL, double& LCL,
                          double Confidence);
/// \brief p chart, per-sample sizes: CL = sum Data / sum SampleSize, one pair of limits per sample.
STATKIT_API void QCPChart(const TVec& Data, const TVec& SampleSize, TVec& DrawVec, double& CL, TVec& UCL, TVec& LCL,
                          double Confidence);
/// \brief np chart, one sample size: DrawVec = Data, CL the mean count, limits CL +- z sqrt(n p-bar (1 - p-bar)).
STATKIT_API void QCNPChart(const TVec& Data, int SampleSize, TVec& DrawVec, double& CL, double& UCL, double& LCL,
                           double Confidence);
/// \brief np chart, per-sample sizes: CL[i] = SampleSize[i] p-bar with its own limits.
STATKIT_API void QCNPChart(const TVec& Data, const TVec& SampleSize, TVec& DrawVec, TVec& CL, TVec& UCL, TVec& LCL,
                           double Confidence);
/// \brief u chart, one sample size: DrawVec = Data / SampleSize, CL = u-bar, limits u-bar +- z sqrt(u-bar / n).
STATKIT_API void QCUChart(const TVec& Data, int SampleSize, TVec& DrawVec, double& CL, double& UCL, double& LCL,
                          double Confidence);
/// \brief u chart, per-sample sizes: CL = sum Data / sum SampleSize, one pair of limits per sample.
STATKIT_API void QCUChart(const TVec& Data, const TVec& SampleSize, TVec& DrawVec, double& CL, TVec& UCL, TVec& LCL,
                          double Confidence);
/// \brief c chart: DrawVec = Data, CL = c-bar, limits c-bar +- z sqrt(c-bar).
STATKIT_API void QCCChart(const TVec& Data, TVec& DrawVec, double& CL, double& UCL, double& LCL, double Confidence);
/// \brief EWMA chart of the subgroup means started at the grand mean CL, with the asymptotic limits
/// CL +- z sigma sqrt(Lambda / ((2 - Lambda) n)), sigma = s-bar / c4(n); +-INF for subgroups of one value.
STATKIT_API void EWMAChart(const TMtx& Data, TVec& DrawVec, double& CL, double& UCL, double& LCL, double Lambda,
                           double Confidence);
/// \brief EWMA chart with the exact limits of subgroup i (from 1): the asymptotic half-width times
/// sqrt(1 - (1 - Lambda)^(2 i)).
STATKIT_API void EWMAChart(const TMtx& Data, TVec& DrawVec, double& CL, TVec& UCL, TVec& LCL, double Lambda,
                           double Confidence);
/// \brief Capability indexes Cp and Cpk of Data against LSL < USL with their 1 - Alpha intervals
/// (chi-square for Cp, normal approximation for Cpk) and the normal fraction outside the limits; an
/// infinite limit means none on that side and leaves Cp and Cpk NaN and the intervals unwritten.
STATKIT_API void QCCapIndexes(const TVec& Data, double LSL, double USL, double& NonConforming, double& Cp,
                              double& Cpk, double* CpCI, double* CpkCI, double Alpha);

}  // namespace statkit::StatControlCharts
