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

}  // namespace statkit::Regress
