// Tour: principal components of three correlated measurements, normal and Weibull
// probability plots of ball-bearing fatigue lives (Lieblein and Zelen 1956, millions
// of revolutions), and quality control of fill weights in subgroups of five: X-bar,
// S and R charts, an EWMA chart and the capability indexes. The plots and the X-bar
// and EWMA charts are written as SVG files into the working directory.

#include <cstdio>
#include <string>
#include <vector>

#include "statkit/statkit.h"
#include "svg.h"
#include "tour.h"

namespace {

using namespace statkit::Statistics;
using namespace statkit::StatProbPlots;
using namespace statkit::StatControlCharts;
namespace svg = tour::svg;

std::vector<double> values(const TVec& v) { return {v.begin(), v.end()}; }
std::vector<double> ramp(int n) {
  std::vector<double> x(static_cast<std::size_t>(n));
  for (int i = 0; i < n; ++i) x[static_cast<std::size_t>(i)] = i + 1;
  return x;
}
void wrote(const svg::Chart& chart, const char* path) {
  std::printf("  %s %s\n", chart.Write(path) ? "wrote" : "could not write", path);
}

void components() {
  const TMtx m{{2.5, 2.4, 1.2}, {0.5, 0.7, 0.3}, {2.2, 2.9, 1.1}, {1.9, 2.2, 0.8}, {3.1, 3.0, 1.6},
               {2.3, 2.7, 1.0}, {2.0, 1.6, 0.9}, {1.0, 1.1, 0.4}, {1.5, 1.6, 0.7}, {1.1, 0.9, 0.6}};
  TMtx pc, scores, residuals;
  TVec eigen, share;
  PCA(m, pc, scores, eigen, &share, PCACovMat);
  std::printf("principal components (covariance): variances");
  for (int j = 0; j < eigen.Length(); ++j) std::printf(" %.4f (%.1f%%)", eigen[j], share[j]);
  std::printf("\nfirst direction: %.3f %.3f %.3f\n", pc(0, 0), pc(1, 0), pc(2, 0));
  PCAResiduals(m, 1, residuals);
  std::printf("residual of the first row after one correlation component: %.3f %.3f %.3f\n", residuals(0, 0),
              residuals(0, 1), residuals(0, 2));
}

void plots() {
  const TVec lives{17.88, 28.92, 33.00, 41.52, 42.12, 45.60, 48.48,  51.84,  51.96,  54.12,  55.56, 67.80,
                   68.64, 68.64, 68.88, 84.12, 93.12, 98.64, 105.12, 105.84, 127.92, 128.04, 173.40};
  TVec x, y;
  double x1, x2, y1, y2;
  StatNormalPlot(lives, x, y, x1, x2, y1, y2, true);
  std::printf("normal plot: line from (%.2f, %.3f) to (%.2f, %.3f)\n", x1, y1, x2, y2);
  svg::Chart normal("Normal probability plot", "fatigue life", "standard normal quantile");
  normal.Points(values(x), values(y), "steelblue");
  normal.Line(x1, y1, x2, y2, "firebrick", "quartile line", false);
  wrote(normal, "normal_plot.svg");
  StatWeibullPlot(lives, x, y, x1, x2, y1, y2, true);
  std::printf("Weibull plot: line from (%.2f, %.3f) to (%.2f, %.3f)\n", x1, y1, x2, y2);
  svg::Chart weibull("Weibull probability plot", "fatigue life (log scale)", "ln(-ln(1 - p))", true);
  weibull.Points(values(x), values(y), "steelblue");
  weibull.Line(x1, y1, x2, y2, "firebrick", "quartile line", false);
  wrote(weibull, "weibull_plot.svg");
}

void charts() {
  const TMtx fills{{500.2, 499.8, 500.5, 500.1, 499.9}, {500.4, 500.0, 499.7, 500.3, 500.2},
                   {499.6, 500.1, 500.0, 499.8, 500.4}, {500.3, 500.6, 500.2, 499.9, 500.1},
                   {500.0, 499.5, 499.9, 500.2, 499.8}, {500.5, 500.3, 500.8, 500.4, 500.1},
                   {499.9, 500.0, 500.3, 499.7, 500.2}, {500.1, 500.4, 499.8, 500.0, 500.6},
                   {500.7, 500.5, 500.9, 500.4, 500.6}, {500.2, 499.9, 500.1, 500.3, 500.0},
                   {499.8, 500.2, 500.0, 499.6, 500.1}, {500.6, 500.8, 500.4, 500.9, 500.7}};
  const int m = fills.Rows();
  TVec draw, ucl, lcl, all;
  double cl, u, l;
  QCXChart(fills, draw, cl, u, l, 0.9973);
  std::printf("X-bar chart: CL %.3f  UCL %.3f  LCL %.3f\n", cl, u, l);
  svg::Chart xbar("X-bar chart of fill weights", "subgroup", "subgroup mean (g)");
  xbar.Polyline(ramp(m), values(draw), "steelblue");
  xbar.Points(ramp(m), values(draw), "steelblue");
  xbar.Line(1, cl, m, cl, "black", "CL " + std::to_string(cl).substr(0, 7), false);
  xbar.Line(1, u, m, u, "firebrick", "UCL " + std::to_string(u).substr(0, 7), true);
  xbar.Line(1, l, m, l, "firebrick", "LCL " + std::to_string(l).substr(0, 7), true);
  wrote(xbar, "xbar_chart.svg");
  QCSChart(fills, draw, cl, u, l, 0.9973);
  std::printf("S chart: CL %.4f  UCL %.4f  LCL %.4f\n", cl, u, l);
  QCRChart(fills, draw, cl, u, l, 0.9973);
  std::printf("R chart: CL %.4f  UCL %.4f  LCL %.4f\n", cl, u, l);
  EWMAChart(fills, draw, cl, ucl, lcl, 0.2, 0.99865);
  std::printf("EWMA chart (lambda 0.2): last point %.3f, limits %.3f .. %.3f\n", draw[m - 1], lcl[m - 1],
              ucl[m - 1]);
  svg::Chart ewma("EWMA chart of fill weights (lambda 0.2)", "subgroup", "EWMA of the means (g)");
  ewma.Polyline(ramp(m), values(draw), "steelblue");
  ewma.Points(ramp(m), values(draw), "steelblue");
  ewma.Line(1, cl, m, cl, "black", "CL", false);
  ewma.Polyline(ramp(m), values(ucl), "firebrick");
  ewma.Polyline(ramp(m), values(lcl), "firebrick");
  wrote(ewma, "ewma_chart.svg");
  all.Copy(fills);
  double nonConforming, cp, cpk, cpCI[2], cpkCI[2];
  QCCapIndexes(all, 499.0, 501.5, nonConforming, cp, cpk, cpCI, cpkCI, 0.05);
  std::printf("capability for 499.0 .. 501.5 g: Cp %.2f [%.2f, %.2f]  Cpk %.2f [%.2f, %.2f]  outside %.2g\n",
              cp, cpCI[0], cpCI[1], cpk, cpkCI[0], cpkCI[1], nonConforming);
}

void run() {
  components();
  std::printf("\n");
  plots();
  std::printf("\n");
  charts();
}

}  // namespace

TOUR_SECTION(90, "Principal components, probability plots and control charts", run);
