// Tour: an ARIMA fit with forecasts, and Holt-Winters smoothing of a seasonal series.

#include <cmath>
#include <cstdio>

#include "statkit/StatTimeSerAnalysis.h"
#include "tour.h"

namespace {
using namespace statkit::StatTimeSerAnalysis;

void run() {
  // Level of Lake Huron in feet, 1875-1972.
  const TVec lake{580.38, 581.86, 580.97, 580.8,  579.79, 580.39, 580.42, 580.82, 581.4,  581.32, 581.44,
                  581.68, 581.17, 580.53, 580.01, 579.91, 579.14, 579.16, 579.55, 579.67, 578.44, 578.24,
                  579.1,  579.09, 579.35, 578.82, 579.32, 579.01, 579,    579.8,  579.83, 579.72, 579.89,
                  580.01, 579.37, 578.69, 578.19, 578.67, 579.55, 578.92, 578.09, 579.37, 580.13, 580.14,
                  579.51, 579.24, 578.66, 578.86, 578.05, 577.79, 576.75, 576.75, 577.82, 578.64, 580.58,
                  579.48, 577.38, 576.9,  576.94, 576.24, 576.84, 576.85, 576.9,  577.79, 578.18, 577.51,
                  577.23, 578.42, 579.61, 579.05, 579.26, 579.22, 579.38, 579.1,  577.95, 578.12, 579.75,
                  580.85, 580.41, 579.96, 579.61, 578.76, 578.18, 577.21, 577.13, 579.1,  578.25, 577.91,
                  576.89, 575.96, 576.8,  577.68, 578.38, 578.52, 579.74, 579.31, 579.89, 579.96};
  TVec P{0.0, 0.0}, T, aux, forecast, stdErr;
  ArimaMLE(lake, P, T, 0, aux);
  std::printf("Lake Huron, AR(2) by exact maximum likelihood:\n");
  std::printf("  phi = %.4f (%.4f), %.4f (%.4f); mean %.3f; sigma^2 %.4f; AIC %.2f\n", P[0], aux[5], P[1],
              aux[6], aux[1], aux[0], aux[3]);
  PredictArima(lake, P, T, 0, 10, forecast, stdErr);
  std::printf("  forecasts 1973-1982 (standard error):");
  for (int k = 0; k < forecast.Length(); ++k)
    std::printf("%s%.2f (%.2f)", k % 5 ? ", " : "\n    ", forecast[k], stdErr[k]);
  std::printf("\n");

  // Monthly CO2 at Mauna Loa (ppm), 1959-1964: additive Holt-Winters with a 12-month season.
  const TVec co2{315.42, 316.31, 316.5,  317.56, 318.13, 318,    316.39, 314.65, 313.68, 313.18, 314.66,
                 315.43, 316.27, 316.81, 317.42, 318.87, 319.87, 319.43, 318.01, 315.74, 314,    313.68,
                 314.84, 316.03, 316.73, 317.54, 318.38, 319.31, 320.42, 319.61, 318.42, 316.63, 314.83,
                 315.16, 315.94, 316.85, 317.78, 318.4,  319.53, 320.42, 320.85, 320.45, 319.45, 317.25,
                 316.11, 315.27, 316.53, 317.53, 318.58, 318.92, 319.7,  321.22, 322.08, 321.31, 319.58,
                 317.61, 316.05, 315.83, 316.91, 318.2,  319.41, 320.07, 320.74, 321.4,  322.06, 321.73,
                 320.27, 318.54, 316.54, 316.71, 317.53, 318.55};
  TVec smooth;
  double alpha = 0.3, beta = 0.1, gamma = 0.3;
  TripleExpSmooth(co2, smooth, alpha, beta, gamma, 12);
  double ss = 0;
  for (int i = 0; i < smooth.Length(); ++i) ss += (smooth[i] - co2[12 + i]) * (smooth[i] - co2[12 + i]);
  std::printf("Mauna Loa CO2, Holt-Winters: alpha %.3f, beta %.3f, gamma %.3f, one-step RMSE %.3f ppm\n",
              alpha, beta, gamma, std::sqrt(ss / smooth.Length()));
}

}  // namespace

TOUR_SECTION(80, "Time series", run);
