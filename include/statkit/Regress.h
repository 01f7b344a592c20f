#pragma once
// The unit Regress: linear, multiple linear, nonlinear, logistic and ridge
// regression, regression statistics, and analysis of variance.
//
// Errors are EArrayError with fixed messages, prefixed by the operation's
// name when they arise while it works; outputs are caller-owned objects that
// the operation sizes.

#include <array>

#include "statkit/Array.h"
#include "statkit/RegModels.h"

namespace statkit::Regress {

using RegModels::TDeriveProc;
using RegModels::TRegressFun;
using statkit::EArrayError;
using statkit::INF;
using statkit::IsInf;
using statkit::IsNan;
using statkit::TMtx;
using statkit::TVec;

// --- linear least squares and regression statistics -------------------------

/// \brief The goodness of fit of a regression, filled by RegressTest.
struct TRegStats {
  double ResidualVar;  ///< residual variance SSE / (n - p)
  double R2;           ///< coefficient of determination SSR / SST
  double AdjustedR2;   ///< 1 - (1 - R2) (n - 1) / (n - p)
  double F;            ///< F statistic of the regression
  double SignifProb;   ///< upper tail probability of F
};

/// \brief Straight line y = B[0] + B[1] x by (weighted) least squares.
/// \param X the abscissae.
/// \param Y the observations, as many as \p X.
/// \param B receives [intercept, slope].
/// \param Weights optional weights, as many as \p X (nullptr: unweighted).
/// \param YCalc optional: receives the fitted values.
/// \param V optional: receives the 2 x 2 matrix (X'WX)^-1.
STATKIT_API void LinRegress(const TVec& X, const TVec& Y, TVec& B, const TVec* Weights = nullptr,
                            TVec* YCalc = nullptr, TMtx* V = nullptr);
/// \brief Multiple linear regression of \p y on the columns of \p A by QR least squares.
/// \param y the observations, one per row of \p A.
/// \param A the independent variables, one column each.
/// \param B receives the coefficients (the intercept first when \p Constant).
/// \param Constant true: a column of ones stands before the columns of \p A.
/// \param YCalc optional: receives the fitted values.
/// \param V optional: receives (D'D)^-1 of the design D.
STATKIT_API void MulLinRegress(const TVec& y, const TMtx& A, TVec& B, bool Constant, TVec* YCalc = nullptr,
                               TMtx* V = nullptr);
/// \brief Weighted multiple linear regression: minimises sum w (Y - D B)^2.
/// \param Y the observations, one per row of \p A.
/// \param A the independent variables, one column each.
/// \param B receives the coefficients (the intercept first when \p Constant).
/// \param Weights the weights, one per observation.
/// \param Constant true: a column of ones stands before the columns of \p A.
/// \param YCalc optional: receives the fitted values D B.
/// \param V optional: receives (D'WD)^-1.
STATKIT_API void MulLinRegress(const TVec& Y, const TMtx& A, TVec& B, const TVec& Weights, bool Constant,
                               TVec* YCalc = nullptr, TMtx* V = nullptr);
/// \brief Regression statistics from a fit; scales \p V in place into the coefficients' covariance.
/// \param Y the observations.
/// \param YCalc the fitted values.
/// \param V the matrix (D'WD)^-1 of the fit; multiplied by the residual variance.
/// \param RegStats receives the statistics.
/// \param Constant true when the model has an intercept (centred sums of squares).
/// \param Weights optional: the weights of the fit.
STATKIT_API void RegressTest(const TVec& Y, const TVec& YCalc, TMtx& V, TRegStats& RegStats, bool Constant,
                             const TVec* Weights = nullptr);
/// \brief As the first form, and the residuals Y - YCalc and the coefficients' standard errors.
/// \param Y the observations.
/// \param YCalc the fitted values.
/// \param V the matrix (D'WD)^-1 of the fit; multiplied by the residual variance.
/// \param RegStats receives the statistics.
/// \param Residuals receives Y - YCalc (unweighted).
/// \param BStdErr receives the square roots of the diagonal of the scaled \p V.
/// \param Constant true when the model has an intercept (centred sums of squares).
/// \param Weights optional: the weights of the fit.
STATKIT_API void RegressTest(const TVec& Y, const TVec& YCalc, TMtx& V, TRegStats& RegStats, TVec& Residuals,
                             TVec& BStdErr, bool Constant, const TVec* Weights = nullptr);

// --- analysis of variance -----------------------------------------------------

/// \brief One-way table: SS_B, SS_W, SS_T, df_B, df_W, df_T, MS_B, MS_W, F, critical F.
using TANOVA1Table = std::array<double, 10>;
/// \brief Two-way table: SS, df, MS of rows, columns, interaction, error (and total), the F values and critical F values.
using TANOVA2Table = std::array<double, 20>;

/// \brief One-way analysis of variance of the columns of \p Data (one group each).
/// \param Data r x c: c groups of r observations.
/// \param Signif receives the upper tail probability of F.
/// \param Alpha the level of the critical F.
STATKIT_API TANOVA1Table ANOVA1(const TMtx& Data, double& Signif, double Alpha);
/// \brief One-way analysis of variance of \p Data in the groups numbered 0, 1, ... by \p GroupIndex (truncated).
/// \param Data the observations.
/// \param GroupIndex the group number of each observation.
/// \param Signif receives the upper tail probability of F.
/// \param Alpha the level of the critical F.
STATKIT_API TANOVA1Table ANOVA1(const TVec& Data, const TVec& GroupIndex, double& Signif, double Alpha);
/// \brief Two-way analysis of variance of a balanced layout: columns are the levels of one factor,
/// blocks of \p Replications rows the levels of the other.
/// \param Data (a Replications) x b observations.
/// \param SignifRows receives the upper tail probability of the rows' F.
/// \param SignifCols receives the upper tail probability of the columns' F.
/// \param SignifInteract receives that of the interaction (written only when Replications > 1).
/// \param Replications the observations per cell.
/// \param Alpha the level of the critical F values.
STATKIT_API TANOVA2Table ANOVA2(const TMtx& Data, double& SignifRows, double& SignifCols,
                                double& SignifInteract, int Replications, double Alpha);

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
