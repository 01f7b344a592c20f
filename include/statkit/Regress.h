#pragma once
// The unit Regress: linear, multiple linear, nonlinear, logistic and ridge
// regression, regression statistics, and analysis of variance.
//
// Errors are EArrayError with fixed messages, prefixed by the operation's
// name when they arise while it works; outputs are caller-owned objects that
// the operation sizes.

#include "statkit/Array.h"
#include "statkit/RegModels.h"

namespace statkit::Regress {

using statkit::EArrayError;
using statkit::INF;
using statkit::IsInf;
using statkit::IsNan;
using statkit::TMtx;
using statkit::TVec;
using RegModels::TDeriveProc;
using RegModels::TRegressFun;

// --- nonlinear, logistic and ridge regression ---
// (std::function and std::span come with Array.h)

using statkit::optBFGS;
using statkit::optConjGradFR;
using statkit::optConjGradPR;
using statkit::optDFP;
using statkit::optMarquardt;
using statkit::optSimplex;
using statkit::TOptMethod;
using statkit::TOptStopReason;

/// \brief A model as any callable (a capturing lambda): its value at \p X for the parameters \p B.
using TRegressFunction = std::function<double(std::span<const double> B, double X)>;
/// \brief A model's derivative as any callable: fills \p Grad with d RegressFun(B, X) / d B at \p X
/// (\p Y is the model's value there).
using TDeriveFunction = std::function<void(const TRegressFunction& RegressFun, double X, double Y,
                                           std::span<const double> B, TVec& Grad)>;

/// \brief Numeric partial derivatives of \p RegressFun by every B[i] at \p X into Grad[0 .. B.size() - 1]:
/// central differences at h, 2h and 4h (h = GradStepSize |B[i]|, or GradStepSize when B[i] is 0)
/// extrapolated twice (Richardson). \p Y is not used; \p Grad is not resized ("Size mismatch" when shorter
/// than \p B).
STATKIT_API void NumericDerive(TRegressFun RegressFun, double X, double Y, std::span<const double> B,
                               TVec& Grad);
/// \brief NumericDerive for a model given as any callable.
STATKIT_API void NumericDerive(const TRegressFunction& RegressFun, double X, double Y,
                               std::span<const double> B, TVec& Grad);

/// \brief Fits the model y = RegressFun(B, x) to (X, Y) by (weighted) least squares with the optimiser
/// \p Method, starting from \p B, and returns the optimiser's result (0 when \p Method is out of range).
/// \param X the abscissae.
/// \param Y the observations, as many as \p X.
/// \param RegressFun the model.
/// \param DeriveProc the model's derivatives, or nullptr for NumericDerive.
/// \param B start values in, the fitted coefficients out.
/// \param Method the optimiser (optSimplex .. optConjGradPR).
/// \param StopReason why the optimiser stopped.
/// \param Weights optional weights of the squared residuals (nullptr: all 1).
/// \param YCalc optional: the model values of the optimiser's last objective evaluation.
/// \param OptimizerFlag the soft line search of BFGS, DFP and the conjugate gradients.
/// \param MaxIter iteration limit of the optimiser.
/// \param Tol step tolerance of the optimiser.
/// \param GradTol gradient tolerance (not used by optSimplex).
STATKIT_API int NLinRegress(const TVec& X, const TVec& Y, TRegressFun RegressFun, TDeriveProc DeriveProc,
                            TVec& B, TOptMethod Method, TOptStopReason& StopReason, const TVec* Weights,
                            TVec* YCalc, bool OptimizerFlag, int MaxIter, double Tol, double GradTol);
/// \brief NLinRegress for a model and derivative given as any callables (an empty DeriveProc selects
/// NumericDerive).
STATKIT_API int NLinRegress(const TVec& X, const TVec& Y, const TRegressFunction& RegressFun,
                            const TDeriveFunction& DeriveProc, TVec& B, TOptMethod Method,
                            TOptStopReason& StopReason, const TVec* Weights, TVec* YCalc, bool OptimizerFlag,
                            int MaxIter, double Tol, double GradTol);

/// \brief Binomial logistic regression by iteratively reweighted least squares: \p y successes of \p n
/// trials, logit p = Offset + A B (at most 1000 passes, until the deviance changes by no more than \p Tol).
/// \param y the successes per observation.
/// \param n the trials per observation.
/// \param B the coefficients, one per column of the design (not written when no pass is made).
/// \param A the design matrix, or nullptr for a single column of ones.
/// \param Offset added to every linear predictor.
/// \param YCalc optional: the fitted counts n p at the start of the last pass.
/// \param BStdErr optional: the standard errors of \p B (not written when no pass is made).
/// \param Tol the limit on the change of the deviance between passes.
STATKIT_API void LogisticRegress(const TVec& y, const TVec& n, TVec& B, const TMtx* A, double Offset,
                                 TVec* YCalc, TVec* BStdErr, double Tol);
/// \brief Ordinal (cumulative logit, proportional odds) logistic regression by maximum likelihood with
/// Marquardt: P(Y <= c) = logistic(Theta_c - A B); returns Marquardt's result.
/// \param y category codes (whole numbers).
/// \param A covariates, y.Length rows (may have no columns).
/// \param B the coefficients: start values in (unless \p InitEstimates), estimates out.
/// \param Theta the cut-points, one fewer than the categories present: start values in (unless
/// \p InitEstimates), estimates out.
/// \param BStdErr standard errors of Theta, then of B.
/// \param FMin -2 log-likelihood at the estimates.
/// \param StopReason why Marquardt stopped.
/// \param MaxIter iteration limit of Marquardt.
/// \param Tol both tolerances of Marquardt.
/// \param InitEstimates true: start from B = 0 and the logits of the cumulative category proportions.
STATKIT_API int LogisticRegress(const TVec& y, const TMtx& A, TVec& B, TVec& Theta, TVec& BStdErr,
                                double& FMin, TOptStopReason& StopReason, int MaxIter, double Tol,
                                bool InitEstimates);

/// \brief Ridge regression of \p y on the standardised columns of \p A: B minimises
/// |y - Z B|^2 + k |B|^2 (no intercept; a column without spread is only centred; k < 0 or NaN raises).
STATKIT_API void RidgeRegress(const TVec& y, const TMtx& A, double k, TVec& B);

}  // namespace statkit::Regress
