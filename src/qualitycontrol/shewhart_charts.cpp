// Shewhart control charts: X-bar, S and R charts of subgroups and the p, np, u
// and c charts of attribute counts, with limits at z standard errors of the
// plotted statistic (Montgomery, Introduction to Statistical Quality Control, ch. 6-7).

#include <cmath>

#include "core/frame.h"
#include "qualitycontrol/subgroup_constants.h"
#include "statkit/StatControlCharts.h"
#include "statkit/Statistics.h"

namespace statkit::StatControlCharts {

namespace {

// The overloads without checks refuse complex counts as the array layer does.
void requireReal(const TVec& v) {
  if (v.Complex()) ERaise(msg::ComplexNotSupported);
}

void setLimits(double CL, double w, double& UCL, double& LCL) {
  UCL = CL + w;
  LCL = CL - w;
}

// Dst[i] = Data[i] / n; Dst may be Data.
void perUnit(const TVec& Data, double n, TVec& Dst) {
  requireReal(Data);
  if (&Dst != &Data) Dst.Size(Data.Length());
  const double* x = Data.data();
  double* d = Dst.data();
  for (int i = 0, m = Data.Length(); i < m; ++i) d[i] = x[i] / n;
}

// The frame of the charts with per-sample sizes: both checks, then the work under the
// p chart's prefix on copies (an output may be an input), given the pooled ratio
// sum(Data) / sum(SampleSize).
template <class Work>
void perSampleChart(const TVec& Data, const TVec& SampleSize, Work&& work) {
  if (Data.Complex() || SampleSize.Complex()) ERaise("QCPChart: (Data.Complex) or (SampleSize.Complex)");
  if (Data.Length() != SampleSize.Length()) ERaise("QCPChart: Data.Length <> SampleSize.Length");
  core::Guarded("QCPChart : ", [&] {
    PooledVec counts, sizes;
    counts->Copy(Data);
    sizes->Copy(SampleSize);
    work(*counts, *sizes, counts->Sum() / sizes->Sum());
  });
}

// The p and u charts with per-sample sizes: the rates Data[i] / SampleSize[i] about the pooled rate r,
// with limits r -/+ z sqrt(variance(r) / SampleSize[i]) (variance: r (1 - r) for proportions, r for
// counts per unit).
template <class Variance>
void perSampleRateChart(const TVec& Data, const TVec& SampleSize, TVec& DrawVec, double& CL, TVec& UCL,
                        TVec& LCL, double Confidence, Variance variance) {
  perSampleChart(Data, SampleSize, [&](const TVec& d, const TVec& s, double rate) {
    const double z = qc::oneSidedZ(Confidence), v = variance(rate);
    const int m = d.Length();
    DrawVec.Size(m);
    UCL.Size(m);
    LCL.Size(m);
    for (int i = 0; i < m; ++i) {
      DrawVec[i] = d[i] / s[i];
      setLimits(rate, z * std::sqrt(v / s[i]), UCL[i], LCL[i]);
    }
    CL = rate;
  });
}

}  // namespace

void QCXChart(const TMtx& Data, TVec& DrawVec, double& CL, double& UCL, double& LCL, double Confidence) {
  const int n = Data.Cols();
  PooledVec sd;
  Statistics::StdRows(Data, *sd);
  const double w = qc::twoSidedZ(Confidence) * sd->Mean() / (qc::c4(n) * std::sqrt(static_cast<double>(n)));
  Data.MeanRows(DrawVec);
  CL = DrawVec.Mean();
  setLimits(CL, w, UCL, LCL);
}

void QCSChart(const TMtx& Data, TVec& DrawVec, double& CL, double& UCL, double& LCL, double Confidence) {
  const int n = Data.Cols();
  Statistics::StdRows(Data, DrawVec);
  CL = DrawVec.Mean();
  setLimits(CL, qc::twoSidedZ(Confidence) * qc::c4Complement(n) * CL / qc::c4(n), UCL, LCL);
  if (LCL < 0.0) LCL = 0.0;
}

void QCRChart(const TMtx& Data, TVec& DrawVec, double& CL, double& UCL, double& LCL, double Confidence) {
  const double r = qc::rangeFactor(Data.Cols());
  Statistics::RangeRows(Data, DrawVec);
  CL = DrawVec.Mean();
  setLimits(CL, qc::twoSidedZ(Confidence) * r * CL, UCL, LCL);
}

void QCPChart(const TVec& Data, int SampleSize, TVec& DrawVec, double& CL, double& UCL, double& LCL,
              double Confidence) {
  const double n = SampleSize;
  perUnit(Data, n, DrawVec);
  CL = DrawVec.Mean();
  setLimits(CL, qc::oneSidedZ(Confidence) * std::sqrt(CL * (1.0 - CL) / n), UCL, LCL);
}

void QCPChart(const TVec& Data, const TVec& SampleSize, TVec& DrawVec, double& CL, TVec& UCL, TVec& LCL,
              double Confidence) {
  perSampleRateChart(Data, SampleSize, DrawVec, CL, UCL, LCL, Confidence, [](double p) { return p * (1.0 - p); });
}

void QCNPChart(const TVec& Data, int SampleSize, TVec& DrawVec, double& CL, double& UCL, double& LCL,
               double Confidence) {
  requireReal(Data);
  const double n = SampleSize;
  DrawVec.Copy(Data);
  CL = DrawVec.Mean();
  const double pbar = CL / n;
  setLimits(CL, qc::oneSidedZ(Confidence) * std::sqrt(n * pbar * (1.0 - pbar)), UCL, LCL);
}

void QCNPChart(const TVec& Data, const TVec& SampleSize, TVec& DrawVec, TVec& CL, TVec& UCL, TVec& LCL,
               double Confidence) {
  perSampleChart(Data, SampleSize, [&](const TVec& d, const TVec& s, double pbar) {
    const double z = qc::oneSidedZ(Confidence);
    const double spread = std::sqrt(pbar * (1.0 - pbar));
    const int m = d.Length();
    DrawVec.Copy(d);
    CL.Size(m);
    UCL.Size(m);
    LCL.Size(m);
    for (int i = 0; i < m; ++i) {
      CL[i] = s[i] * pbar;
      setLimits(CL[i], z * std::sqrt(s[i]) * spread, UCL[i], LCL[i]);
    }
  });
}

void QCUChart(const TVec& Data, int SampleSize, TVec& DrawVec, double& CL, double& UCL, double& LCL,
              double Confidence) {
  const double n = SampleSize;
  perUnit(Data, n, DrawVec);
  CL = DrawVec.Mean();
  setLimits(CL, qc::oneSidedZ(Confidence) * std::sqrt(CL / n), UCL, LCL);
}

void QCUChart(const TVec& Data, const TVec& SampleSize, TVec& DrawVec, double& CL, TVec& UCL, TVec& LCL,
              double Confidence) {
  perSampleRateChart(Data, SampleSize, DrawVec, CL, UCL, LCL, Confidence, [](double u) { return u; });
}

void QCCChart(const TVec& Data, TVec& DrawVec, double& CL, double& UCL, double& LCL, double Confidence) {
  requireReal(Data);
  DrawVec.Copy(Data);
  CL = DrawVec.Mean();
  setLimits(CL, qc::oneSidedZ(Confidence) * std::sqrt(CL), UCL, LCL);
}

}  // namespace statkit::StatControlCharts
