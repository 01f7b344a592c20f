// The EWMA chart of subgroup means (Roberts 1959), with asymptotic or exact
// limits (Lucas and Saccucci 1990), and the process capability indexes Cp and
// Cpk with a chi-square interval for Cp and Bissell's (1990) normal interval for Cpk.

#include <cmath>
#include <cstdint>

#include "core/frame.h"
#include "qualitycontrol/subgroup_constants.h"
#include "statkit/StatControlCharts.h"
#include "statkit/Statistics.h"

namespace statkit::StatControlCharts {

namespace {

// Fills DrawVec with the EWMA of the subgroup means started at their grand mean, which
// it returns; Sigma becomes the z-fold standard deviation of one value, s-bar / c4(n)
// times z, where the subgroups have a spread (n > 1).
double ewmaPoints(const TMtx& Data, TVec& DrawVec, double Lambda, double Confidence, double& Sigma) {
  const int m = Data.Rows(), n = Data.Cols();
  if (m == 0) ERaise("Data.Rows = 0");  // the recursion starts from a first subgroup
  PooledVec means;
  Data.MeanRows(*means);
  const double CL = means->Mean();
  DrawVec.Size(m);
  double ewma = CL;
  for (int i = 0; i < m; ++i) DrawVec[i] = ewma = Lambda * (*means)[i] + (1.0 - Lambda) * ewma;
  if (n > 1) {
    Statistics::StdRows(Data, *means);
    Sigma = qc::oneSidedZ(Confidence) * means->Mean() / qc::c4(n);
  }
  return CL;
}

void requireRealChart(const TMtx& Data) {
  if (Data.Complex()) ERaise("EWMAChart: (Data.Complex)");
}

}  // namespace

void EWMAChart(const TMtx& Data, TVec& DrawVec, double& CL, double& UCL, double& LCL, double Lambda,
               double Confidence) {
  requireRealChart(Data);
  core::Guarded("EWMAChart : ", [&] {
    double sigma = NAN;
    CL = ewmaPoints(Data, DrawVec, Lambda, Confidence, sigma);
    const int n = Data.Cols();
    const double w = n > 1 ? sigma * std::sqrt(Lambda / ((2.0 - Lambda) * n)) : INF;
    UCL = CL + w;
    LCL = CL - w;
  });
}

void EWMAChart(const TMtx& Data, TVec& DrawVec, double& CL, TVec& UCL, TVec& LCL, double Lambda,
               double Confidence) {
  requireRealChart(Data);
  core::Guarded("EWMAChart : ", [&] {
    double sigma = NAN;
    CL = ewmaPoints(Data, DrawVec, Lambda, Confidence, sigma);
    const int m = Data.Rows(), n = Data.Cols();
    UCL.Size(m);
    LCL.Size(m);
    const double scale = sigma * std::sqrt(1.0 / n), ratio = Lambda / (2.0 - Lambda);
    for (int i = 0; i < m; ++i) {
      // the variance of EWMA value i + 1: ratio (1 - (1 - Lambda)^(2 (i + 1))) sigma^2 / n
      const double w = n > 1 ? scale * std::sqrt(ratio * (1.0 - Power(1.0 - Lambda, 2.0 * (i + 1.0)))) : INF;
      UCL[i] = CL + w;
      LCL[i] = CL - w;
    }
  });
}

void QCCapIndexes(const TVec& Data, double LSL, double USL, double& NonConforming, double& Cp, double& Cpk,
                  double* CpCI, double* CpkCI, double Alpha) {
  const double mu = Data.Mean();
  const double s = Data.StdDev(mu);
  Cp = NAN;
  Cpk = NAN;
  if (IsInf(LSL)) {  // also when both limits are infinite
    NonConforming = NormalCDFc(USL, mu, s);
    return;
  }
  if (IsInf(USL)) {
    NonConforming = NormalCDF(LSL, mu, s);
    return;
  }
  // both tails computed directly: 1 - NormalCDF would lose a small upper tail
  NonConforming = NormalCDFc(USL, mu, s) + NormalCDF(LSL, mu, s);
  Cpk = Min(mu - LSL, USL - mu) / (3.0 * s);
  Cp = (USL - LSL) / (6.0 * s);
  const int df = Data.Length() - 1;
  if (CpCI) {
    CpCI[0] = Cp * std::sqrt(ChiSquareCDFInv(0.5 * Alpha, df) / df);
    CpCI[1] = Cp * std::sqrt(ChiSquareCDFInv(1.0 - 0.5 * Alpha, df) / df);
  }
  if (CpkCI) {
    // 9 N^2 - 1 and 2 N - 6 in 64 bits: in 32 bits 9 N^2 overflows from N = 15447 on, and
    // in 64 bits from N = 1.012e9 on, where double arithmetic is within half an ulp of it.
    const std::int64_t N = Data.Length();
    constexpr std::int64_t kExactUpTo = 1'000'000'000;
    const double nine = N <= kExactUpTo ? static_cast<double>(9 * N * N - 1) : 9.0 * N * N - 1.0;
    const double v = (N - 1.0) / nine + Cpk * Cpk / static_cast<double>(2 * N - 6) * (1.0 + 6.0 / (N - 1.0));
    const double h = NormalCDFInv(1.0 - 0.5 * Alpha, 0.0, 1.0) * std::sqrt(v);
    CpkCI[0] = Cpk - h;
    CpkCI[1] = Cpk + h;
  }
}

}  // namespace statkit::StatControlCharts
