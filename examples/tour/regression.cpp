// Tour: a straight line, a multiple regression and a one-way analysis of variance.

#include <cstdio>

#include "statkit/Regress.h"
#include "tour.h"

namespace {
using namespace statkit::Regress;

void printFit(const char* title, const TVec& B, const TVec& se, const TRegStats& s) {
  std::printf("%s\n  %-11s %12s %12s\n", title, "coefficient", "estimate", "std. error");
  for (int j = 0; j < B.Length(); ++j) std::printf("  B[%d]        %12.5g %12.5g\n", j, B[j], se[j]);
  std::printf("  residual variance %.5g, R^2 %.5f (adjusted %.5f), F %.4g, p %.3g\n\n", s.ResidualVar, s.R2,
              s.AdjustedR2, s.F, s.SignifProb);
}

void run() {
  // Fuel use (l/100 km) of eight cars against mass (t) and engine power (100 kW).
  const TVec mass{1.05, 1.21, 1.32, 1.40, 1.48, 1.55, 1.71, 1.86};
  const TVec power{0.55, 0.66, 0.81, 0.74, 0.96, 1.10, 1.02, 1.40};
  const TVec fuel{5.1, 5.8, 6.4, 6.5, 7.2, 7.6, 7.9, 9.0};
  TVec B, YCalc, residuals, se;
  TMtx V;
  TRegStats stats;
  LinRegress(mass, fuel, B, nullptr, &YCalc, &V);
  RegressTest(fuel, YCalc, V, stats, residuals, se, true);
  printFit("fuel = B[0] + B[1] mass:", B, se, stats);

  TMtx A(mass.Length(), 2);
  for (int i = 0; i < mass.Length(); ++i) A(i, 0) = mass[i], A(i, 1) = power[i];
  MulLinRegress(fuel, A, B, true, &YCalc, &V);
  RegressTest(fuel, YCalc, V, stats, residuals, se, true);
  printFit("fuel = B[0] + B[1] mass + B[2] power:", B, se, stats);

  // Yields of three fertilisers (groups 0, 1, 2 of unequal size).
  const TVec yield{20.1, 21.4, 19.8, 22.0, 23.5, 24.1, 22.8, 23.9, 24.6, 19.5, 20.2, 18.9};
  const TVec group{0, 0, 0, 0, 1, 1, 1, 1, 1, 2, 2, 2};
  double signif = 0;
  const TANOVA1Table t = ANOVA1(yield, group, signif, 0.05);
  std::printf("one-way ANOVA of yield by fertiliser:\n  %-8s %9s %4s %9s %8s %10s\n", "source", "SS", "df",
              "MS", "F", "F(0.95)");
  std::printf("  %-8s %9.4f %4.0f %9.4f %8.3f %10.3f\n", "between", t[0], t[3], t[6], t[8], t[9]);
  std::printf("  %-8s %9.4f %4.0f %9.4f\n  %-8s %9.4f %4.0f\n  p = %.3g\n", "within", t[1], t[4], t[7],
              "total", t[2], t[5], signif);
}

TOUR_SECTION(60, "Linear regression and analysis of variance", run);
}  // namespace
