// Exponential smoothing with constants fitted by least squares: single
// (Brown), Holt's linear trend and additive Holt-Winters (Winters 1960), each
// minimising the mean squared one-step-ahead error with Levenberg-Marquardt.

#include <cmath>
#include <vector>

#include "statkit/StatTimeSerAnalysis.h"
#include "timeseries/object_access.h"

namespace statkit::StatTimeSerAnalysis {

namespace {

// Mean square of Smooth[i] - Data[i + lead] over Smooth, the one-step forecast errors.
double meanSquaredError(const TVec& data, const TVec& smooth, TVec& resid, int lead) {
  const int n = smooth.Length();
  double ss = 0.0;
  for (int i = 0; i < n; ++i) {
    resid[i] = smooth[i] - data[i + lead];
    ss += resid[i] * resid[i];
  }
  return ss / n;
}

// Pars = [Alpha]; Consts = [InitMethod]; Objects = [Data, Smooth, residuals].
double singleObjective(std::span<const double> Pars, std::span<const double> Consts,
                       std::span<TObject* const> Objects) {
  const TVec& data = detail::ObjectAt<TVec>(Objects, 0);
  TVec& smooth = detail::ObjectAt<TVec>(Objects, 1);
  TVec& resid = detail::ObjectAt<TVec>(Objects, 2);
  const double a = Pars[0];
  const bool meanStart = std::trunc(Consts[0]) == 2.0 && data.Length() > 4;
  smooth[0] = meanStart ? (data[0] + data[1] + data[2] + data[3]) / 4.0 : data[0];
  for (int i = 1; i < smooth.Length(); ++i) smooth[i] = a * data[i] + (1.0 - a) * smooth[i - 1];
  return meanSquaredError(data, smooth, resid, 1);
}

// Pars = [Alpha, Beta]; level from Data[0], trend from Data[1] - Data[0].
double holtObjective(std::span<const double> Pars, std::span<const double>,
                     std::span<TObject* const> Objects) {
  const TVec& data = detail::ObjectAt<TVec>(Objects, 0);
  TVec& smooth = detail::ObjectAt<TVec>(Objects, 1);
  TVec& resid = detail::ObjectAt<TVec>(Objects, 2);
  const double a = Pars[0], b = Pars[1];
  double level = data[0], trend = data[1] - data[0];
  for (int i = 0; i < smooth.Length(); ++i) {
    smooth[i] = level + trend;
    const double next = a * data[i + 1] + (1.0 - a) * (level + trend);
    trend = b * (next - level) + (1.0 - b) * trend;
    level = next;
  }
  return meanSquaredError(data, smooth, resid, 1);
}

// Pars = [Alpha, Beta, Gamma]; Consts = [Period]. Start from the first two periods: level = mean
// of the first, trend = difference of the two means / Period, seasonal terms = the first period
// less its mean; this is the state after Data[Period - 1], so the forecasts begin at Data[Period].
double holtWintersObjective(std::span<const double> Pars, std::span<const double> Consts,
                            std::span<TObject* const> Objects) {
  const TVec& data = detail::ObjectAt<TVec>(Objects, 0);
  TVec& smooth = detail::ObjectAt<TVec>(Objects, 1);
  TVec& resid = detail::ObjectAt<TVec>(Objects, 2);
  const double a = Pars[0], b = Pars[1], g = Pars[2];
  const int period = static_cast<int>(Consts[0]);
  double mean1 = 0.0, mean2 = 0.0;
  for (int i = 0; i < period; ++i) mean1 += data[i], mean2 += data[period + i];
  mean1 /= period;
  mean2 /= period;
  std::vector<double> season(static_cast<std::size_t>(period));
  for (int i = 0; i < period; ++i) season[i] = data[i] - mean1;
  double level = mean1, trend = (mean2 - mean1) / period;
  for (int i = 0; i < smooth.Length(); ++i) {
    const double y = data[period + i];
    double& s = season[static_cast<std::size_t>(i % period)];  // the term of the same season, one period back
    smooth[i] = level + trend + s;
    const double next = a * (y - s) + (1.0 - a) * (level + trend);
    trend = b * (next - level) + (1.0 - b) * trend;
    level = next;
    s = g * (y - level) + (1.0 - g) * s;
  }
  return meanSquaredError(data, smooth, resid, period);
}

// Fits the constants by Marquardt on the numeric gradient and Hessian (500 iterations, tolerances
// 1e-8, damping from 0.01), then fills Smooth at the returned constants.
double fitConstants(TOptObjective objective, std::span<double> pars, std::span<const double> consts,
                    const TVec& Data, TVec& Smooth, int smoothLength) {
  PooledVec data, resid;
  PooledMtx varCovar;
  *data = Data;  // Smooth may be Data
  Smooth.Size(smoothLength);
  resid->Size(smoothLength);
  TObject* const objects[3] = {&*data, &Smooth, &*resid};
  double fMin = 0.0;
  TOptStopReason stop{};
  Marquardt(objective, NumericGradHess, pars, consts, objects, fMin, *varCovar, stop, 500, 1e-8, 1e-8, 0.01);
  objective(pars, consts, std::span<TObject* const>(objects));
  return fMin;
}

}  // namespace

double SingleExpSmooth(const TVec& Data, TVec& Smooth, double& Alpha, int InitMethod) {
  if (Data.Length() < 2) ERaise("SingleExpSmooth: Data.Length < 2");
  double pars[1] = {Alpha};
  const double consts[1] = {static_cast<double>(InitMethod)};
  const double mse = fitConstants(singleObjective, pars, consts, Data, Smooth, Data.Length() - 1);
  Alpha = pars[0];
  return mse;
}

void DoubleExpSmooth(const TVec& Data, TVec& Smooth, double& Alpha, double& Beta) {
  if (Data.Length() < 2) ERaise("DoubleExpSmooth: Data.Length < 2");
  double pars[2] = {Alpha, Beta};
  fitConstants(holtObjective, pars, {}, Data, Smooth, Data.Length() - 1);
  Alpha = pars[0];
  Beta = pars[1];
}

void TripleExpSmooth(const TVec&, TVec&, double&, double&, double&) {
  ERaise("TripleExpSmooth: Period required");
}

void TripleExpSmooth(const TVec& Data, TVec& Smooth, double& Alpha, double& Beta, double& Gamma, int Period) {
  if (Period < 2) ERaise("TripleExpSmooth: Period < 2");
  if (Data.Length() < 2L * Period) ERaise("TripleExpSmooth: Data.Length < 2 Period");
  double pars[3] = {Alpha, Beta, Gamma};
  const double consts[1] = {static_cast<double>(Period)};
  fitConstants(holtWintersObjective, pars, consts, Data, Smooth, Data.Length() - Period);
  Alpha = pars[0];
  Beta = pars[1];
  Gamma = pars[2];
}

}  // namespace statkit::StatTimeSerAnalysis
