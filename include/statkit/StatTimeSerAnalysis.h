#pragma once
// The unit StatTimeSerAnalysis: exponential smoothing, ARMA autocorrelations,
// the exact ARIMA likelihood and its maximisation, forecasting and simulation.
//
// Errors are EArrayError with fixed messages, prefixed by the operation's
// name when they arise while it works; outputs are caller-owned objects that
// the operation sizes.
//
// ARMA sign convention, shared by every operation here: with the AR
// coefficients P = [phi_1 .. phi_p] and the MA coefficients T = [theta_1 .. theta_q],
// x_t - phi_1 x_(t-1) - ... - phi_p x_(t-p) = e_t - theta_1 e_(t-1) - ... - theta_q e_(t-q).

#include <span>

#include "statkit/Array.h"

namespace statkit::StatTimeSerAnalysis {

using statkit::EArrayError;
using statkit::INF;
using statkit::IsInf;
using statkit::IsNan;
using statkit::TMtx;
using statkit::TObject;
using statkit::TVec;

// --- exponential smoothing --------------------------------------------------

/// \brief Single exponential smoothing with Alpha fitted by Marquardt (from the given Alpha);
/// \p Smooth receives the n - 1 one-step forecasts at the fitted Alpha (InitMethod 2 starts from
/// the mean of the first four values when n > 4), the result is their mean squared error.
STATKIT_API double SingleExpSmooth(const TVec& Data, TVec& Smooth, double& Alpha, int InitMethod);
/// \brief Holt's linear method, Alpha and Beta fitted together by least squares; \p Smooth
/// receives the n - 1 one-step forecasts of Data[1..n-1].
STATKIT_API void DoubleExpSmooth(const TVec& Data, TVec& Smooth, double& Alpha, double& Beta);
/// \brief Without a period additive Holt-Winters cannot run: raises "TripleExpSmooth: Period required".
STATKIT_API void TripleExpSmooth(const TVec& Data, TVec& Smooth, double& Alpha, double& Beta, double& Gamma);
/// \brief Additive Holt-Winters with the season length \p Period, the three constants fitted by least
/// squares; \p Smooth receives the one-step forecasts of Data[Period..n-1].
STATKIT_API void TripleExpSmooth(const TVec& Data, TVec& Smooth, double& Alpha, double& Beta, double& Gamma,
                                 int Period);

// --- ARMA model and exact likelihood ----------------------------------------

/// \brief Autocovariances (unit innovation variance) of the ARMA process at lags 0..n, or its
/// autocorrelations when \p Normalize is true; \p Acf gets n + 1 elements.
STATKIT_API void ArmaAcf(const TVec& P, const TVec& T, int n, TVec& Acf, bool Normalize);
/// \brief 1 minus the smallest root modulus of 1 - A[0] z - ... - A[k-1] z^k: positive when a
/// root lies inside the unit circle; -INF for an empty \p A.
STATKIT_API double Invertability(std::span<const double> A);
/// \brief Objective of the exact ARIMA likelihood: N ln s2 + ln det R of the d-times differenced
/// series (Pars = [P, T], Consts = [d, p], eight work objects), or 1.797693134862315e308 for
/// inadmissible coefficients.
STATKIT_API double ArimaLike(std::span<const double> Pars, std::span<const double> Consts,
                             std::span<TObject* const> Objects);
/// \brief Maximum-likelihood fit of an ARIMA(p, d, q) model with a mean, started from \p P and \p T;
/// writes the estimates back and \p Aux = [sigma^2, mu, -2 log-likelihood, AIC, BIC, standard errors
/// of P, of T]; returns the optimiser's iteration count.
STATKIT_API int ArimaMLE(const TVec& Data, TVec& P, TVec& T, int d, TVec& Aux);

// --- forecasting and simulation ---------------------------------------------

/// \brief The h forecasts of the ARIMA(p, d, q) model for \p Data, as exact conditional
/// expectations given every observation, with their standard errors.
STATKIT_API void PredictArima(const TVec& Data, const TVec& P, const TVec& T, int d, int h, TVec& Forecast,
                              TVec& StdErr);
/// \brief n values of the ARMA process with standard normal innovations, after a burn-in.
STATKIT_API void SimulateArma(const TVec& P, const TVec& T, int n, TVec& Series);
/// \brief n values of the ARIMA process integrated Start.Length times from the start values \p Start.
STATKIT_API void SimulateArima(const TVec& P, const TVec& T, const TVec& Start, int n, TVec& Series);

}  // namespace statkit::StatTimeSerAnalysis
