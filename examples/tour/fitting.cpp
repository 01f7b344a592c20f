// Tour: gamma and Weibull laws fitted to failure times, with intervals, and
// whether each law fits by the chi-square goodness-of-fit test.

#include <cmath>
#include <cstdio>

#include "statkit/Statistics.h"
#include "tour.h"

namespace {
using namespace statkit::Statistics;

void fitting() {
  // Hours between failures of a pump.
  const TVec hours{96.7,  121.9, 84.3,  112.0, 44.8,  257.1, 6.6,   228.8, 84.9,  56.6,
                   81.8,  58.0,  112.3, 125.5, 178.3, 46.9,  245.6, 99.1,  62.1,  111.1,
                   23.8,  20.7,  136.1, 102.2, 196.2, 75.4,  79.9,  133.1, 80.4,  11.1};
  double a, b, ciA[2], ciB[2];
  std::printf("30 times between failures (hours), 95%% intervals:\n");
  GammaFit(hours, a, b, ciA, ciB, 5000, 1e-10, 0.05);
  std::printf("  gamma    shape %7.4f [%.4f, %.4f]   scale %8.3f [%.3f, %.3f]\n", a, ciA[0], ciA[1], b, ciB[0],
              ciB[1]);
  WeibullFit(hours, a, b, ciA, ciB, 5000, 1e-10, 0.05);
  std::printf("  Weibull  a %11.4g [%.4g, %.4g]   b %7.4f [%.4f, %.4f]\n", a, ciA[0], ciA[1], b, ciB[0], ciB[1]);
  std::printf("           (F(t) = 1 - exp(-a t^b): characteristic life a^(-1/b) = %.1f hours)\n",
              std::pow(a, -1 / b));
  THypothesisResult hRes;
  double p;
  for (const auto dist : {distGamma, distWeibull, distExponent}) {
    GOFChi2Test(hours, dist, 5, hRes, p, htRightTailed, 0.05);
    std::printf("  chi-square goodness of fit, %-12s p = %-8.4f %s\n", TTestDistributionNames[dist].data(), p,
                THypothesisResultNames[hRes].data());
  }
}

TOUR_SECTION(50, "Distribution fitting and goodness of fit", fitting);
}  // namespace
