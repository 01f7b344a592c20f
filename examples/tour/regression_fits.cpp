// Tour: a nonlinear growth curve, a logistic dose-response model and a ridge path.

#include <cmath>
#include <cstdio>

#include "statkit/Regress.h"
#include "tour.h"

namespace {
using namespace statkit::Regress;

// Saturating growth y = b0 (1 - e^(-b1 x)) and its partial derivatives.
double growth(std::span<const double> b, double x) { return b[0] * (1 - std::exp(-b[1] * x)); }
void growthDeriv(TRegressFun, double x, double, std::span<const double> b, TVec& g) {
  g[0] = 1 - std::exp(-b[1] * x);
  g[1] = b[0] * x * std::exp(-b[1] * x);
}

void run() {
  // Dental research monomolecular adsorption (volume against pressure), Misra 1978.
  const TVec x{77.6,  114.9, 141.1, 190.8, 239.9, 289.0, 332.8,
               378.4, 434.8, 477.3, 536.8, 593.1, 689.1, 760.0};
  const TVec y{10.07, 14.73, 17.94, 23.93, 29.61, 35.18, 40.02,
               44.82, 50.76, 55.05, 61.01, 66.40, 75.47, 81.78};
  TVec B{500, 1e-4}, fitted;
  TOptStopReason why;
  const int iter = NLinRegress(x, y, growth, growthDeriv, B, optMarquardt, why, nullptr, &fitted, false, 500,
                               1e-12, 1e-12);
  std::printf("growth curve by Marquardt: b0 = %.6g, b1 = %.6g (%d iterations, %s)\n", B[0], B[1], iter,
              statkit::TOptStopReasonNames[why].data());
  std::printf("  fitted at the last pressure: %.4g (observed %.4g)\n", fitted[13], y[13]);

  // Insects killed out of 50 at six doses: logit p = b0 + b1 ln(dose).
  const TVec dose{1, 2, 4, 8, 16, 32}, killed{2, 7, 15, 28, 41, 47}, total{50, 50, 50, 50, 50, 50};
  TMtx A(6, 2);
  for (int i = 0; i < 6; ++i) A(i, 0) = 1, A(i, 1) = std::log(dose[i]);
  TVec b, se;
  LogisticRegress(killed, total, b, &A, 0.0, nullptr, &se, 1e-10);
  std::printf("dose-response: logit p = %.4f (se %.4f) + %.4f (se %.4f) ln dose; LD50 = %.3g\n", b[0], se[0],
              b[1], se[1], std::exp(-b[0] / b[1]));

  // Two nearly collinear predictors: ridge shrinks the unstable pair towards a shared value.
  const TMtx P{{1.0, 1.1}, {2.0, 1.9}, {3.0, 3.05}, {4.0, 4.1}, {5.0, 4.9}, {6.0, 6.1}};
  const TVec r{2.2, 3.8, 6.1, 8.0, 9.9, 12.2};
  std::printf("ridge path (standardised coefficients):\n");
  for (double k : {0.0, 0.1, 1.0, 10.0}) {
    TVec c;
    RidgeRegress(r, P, k, c);
    std::printf("  k = %-5g  %8.4f %8.4f\n", k, c[0], c[1]);
  }
}

TOUR_SECTION(60, "Nonlinear, logistic and ridge regression", run);
}  // namespace
