// Normal, quantile-quantile and Weibull probability plots: the sorted data
// against the quantiles of the plotting positions (i + 0.5) / n (Hazen's), and a
// reference line through the points of the lower and upper quartiles
// (Chambers, Cleveland, Kleiner and Tukey, Graphical Methods for Data Analysis, 1983, ch. 6).

#include <cmath>

#include "core/frame.h"
#include "statkit/StatProbPlots.h"
#include "statkit/Statistics.h"

namespace statkit::StatProbPlots {

namespace {

struct Quartiles {
  double q1, q3;
};

Quartiles quartilesOf(const TVec& v) {
  return {Statistics::Percentile(v, 0.25, Statistics::pctMethodNPlus),
          Statistics::Percentile(v, 0.75, Statistics::pctMethodNPlus)};
}

// XOut = Src, sorted unless the caller says it is; the sort stands before the protected block.
void sortedCopy(const TVec& Src, TVec& XOut, bool Sorted) {
  XOut.Copy(Src);
  if (!Sorted) XOut.SortAscend();
}

// The extremes of the x coordinates and, at them, the line through the quartile points
// (qx1, qy1) and (qx3, qy3), written about their midpoint.
void referenceLine(const TVec& XOut, Quartiles qx, Quartiles qy, double& X1, double& X2, double& Y1,
                   double& Y2) {
  X1 = XOut[0];
  X2 = XOut[XOut.Length() - 1];
  const double slope = (qy.q3 - qy.q1) / (qx.q3 - qx.q1);
  const double mx = 0.5 * (qx.q1 + qx.q3), my = 0.5 * (qy.q1 + qy.q3);
  Y1 = (X1 - mx) * slope + my;
  Y2 = (X2 - mx) * slope + my;
}

// YOut[i] = quantile((i + 0.5) / n), the position formed by one division.
template <class Quantile>
void plottingQuantiles(int n, TVec& YOut, Quantile quantile) {
  YOut.Size(n);
  for (int i = 0; i < n; ++i) YOut[i] = quantile((i + 0.5) / n);
}

// ln a - ln b, by log1p where a and b are close: their logarithms would cancel.
double lnRatio(double a, double b) {
  const double r = a / b;
  return r > 0.5 && r < 2.0 ? std::log1p((a - b) / b) : std::log(a) - std::log(b);
}

}  // namespace

void StatNormalPlot(const TVec& Data, TVec& XOut, TVec& YOut, double& X1, double& X2, double& Y1, double& Y2,
                    bool Sorted) {
  if (Data.Complex()) ERaise("StatNormalPlot: (Data.Complex)");
  if (Data.Length() < 1) ERaise("StatNormalPlot: Data.Length < 1");
  sortedCopy(Data, XOut, Sorted);
  core::Guarded("StatNormalPlot : ", [&] {
    const Quartiles qx = quartilesOf(XOut);
    plottingQuantiles(XOut.Length(), YOut, [](double p) { return NormalCDFInv(p, 0.0, 1.0); });
    referenceLine(XOut, qx, quartilesOf(YOut), X1, X2, Y1, Y2);
  });
}

void StatQQPlot(const TVec& XData, const TVec& YData, TVec& XOut, TVec& YOut, double& X1, double& X2,
                double& Y1, double& Y2, bool XSorted, bool YSorted) {
  if (XData.Complex() || YData.Complex()) ERaise("StatQQPlot: (XData.Complex) or YData.Complex");
  if (XData.Length() != YData.Length()) ERaise("StatQQPlot: (XData.Length <> YData.Length");
  if (XData.Length() < 1) ERaise("StatQQPlot: XData.Length < 1");
  PooledVec x;  // XOut or YOut may be the other input
  x->Copy(XData);
  sortedCopy(YData, YOut, YSorted);
  sortedCopy(*x, XOut, XSorted);
  core::Guarded("StatQQPlot : ",
                [&] { referenceLine(XOut, quartilesOf(XOut), quartilesOf(YOut), X1, X2, Y1, Y2); });
}

void StatWeibullPlot(const TVec& Data, TVec& XOut, TVec& YOut, double& X1, double& X2, double& Y1, double& Y2,
                     bool Sorted) {
  if (Data.Complex()) ERaise("StatWeibullPlot: (Data.Complex)");
  if (Data.Length() < 1) ERaise("StatWeibullPlot: Data.Length < 1");
  sortedCopy(Data, XOut, Sorted);
  core::Guarded("StatWeibullPlot : ", [&] {
    const Quartiles qx = quartilesOf(XOut);
    // ln(-ln(1 - p)) with log1p: 1 - p rounds away the small positions' digits
    plottingQuantiles(XOut.Length(), YOut, [](double p) { return std::log(-std::log1p(-p)); });
    const Quartiles qy = quartilesOf(YOut);
    // straight in ln x, through (ln qx1, qy1) and (ln qx3, qy3)
    X1 = XOut[0];
    X2 = XOut[XOut.Length() - 1];
    const double slope = (qy.q3 - qy.q1) / lnRatio(qx.q3, qx.q1);
    Y1 = lnRatio(X1, qx.q1) * slope + qy.q1;
    Y2 = lnRatio(X2, qx.q1) * slope + qy.q1;
  });
}

}  // namespace statkit::StatProbPlots
