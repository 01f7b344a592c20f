#pragma once
// Mergeable summaries: small records of a part of the data (counts, moments,
// co-moments, histograms, the triangular factor of a least-squares fit) that
// merge pairwise, so that statistics of data split across parts or machines
// come out of the merged records. Merging is associative and order-independent
// up to rounding; histogram counts merge exactly.
//
// Errors are EArrayError with fixed messages.

#include <vector>

#include "statkit/Array.h"
#include "statkit/Regress.h"

namespace statkit::Summaries {

using Regress::TANOVA1Table;
using Regress::TRegStats;
using statkit::EArrayError;
using statkit::INF;
using statkit::TMtx;
using statkit::TVec;

// --- univariate moments -------------------------------------------------------

/// \brief Count, mean, central sums of powers 2 to 4, minimum and maximum of a set of numbers.
struct TMoments {
  double N = 0.0;        ///< number of values
  double Mean = 0.0;     ///< their mean (rounded)
  double MeanLow = 0.0;  ///< what Mean lacks: the mean is Mean + MeanLow, to a few eps of the spread
  double M2 = 0.0;       ///< sum of (x - Mean)^2
  double M3 = 0.0;       ///< sum of (x - Mean)^3
  double M4 = 0.0;       ///< sum of (x - Mean)^4
  double Min = INF;      ///< smallest value (NaN once a NaN was added)
  double Max = -INF;     ///< largest value (NaN once a NaN was added)
};

/// \brief Adds the values of \p X to \p S (a two-pass summary of \p X merged into \p S).
/// \param S the summary to extend.
/// \param X the values (real).
STATKIT_API void Add(TMoments& S, const TVec& X);
/// \brief Merges \p Other into \p S: \p S then summarises the values of both.
/// \param S the summary to extend.
/// \param Other the summary merged in.
STATKIT_API void Merge(TMoments& S, const TMoments& Other);
/// \brief Sample variance M2 / (N - 1) (NaN for fewer than two values).
[[nodiscard]] STATKIT_API double Variance(const TMoments& S);
/// \brief Sample standard deviation, the square root of Variance.
[[nodiscard]] STATKIT_API double StdDev(const TMoments& S);
/// \brief Moment skewness m3 / m2^1.5 with m_k = M_k / N.
[[nodiscard]] STATKIT_API double Skewness(const TMoments& S);
/// \brief Moment excess kurtosis m4 / m2^2 - 3 with m_k = M_k / N.
[[nodiscard]] STATKIT_API double Kurtosis(const TMoments& S);

// --- co-moments -----------------------------------------------------------------

/// \brief Count, column means and the matrix of centred cross-product sums of the rows of matrices.
struct TCoMoments {
  double N = 0.0;  ///< number of rows
  TVec Mean;       ///< column means (empty until the first rows are added)
  TMtx C;          ///< C(j, k) = sum (x_j - Mean[j]) (x_k - Mean[k])
};

/// \brief Adds the rows of \p X (one observation each) to \p S.
/// \param S the summary to extend.
/// \param X the observations, as many columns as earlier ones.
STATKIT_API void Add(TCoMoments& S, const TMtx& X);
/// \brief Merges \p Other into \p S (the same number of columns).
/// \param S the summary to extend.
/// \param Other the summary merged in.
STATKIT_API void Merge(TCoMoments& S, const TCoMoments& Other);
/// \brief Covariance matrix C / (N - 1), or C / N when \p Biased.
/// \param S the summary.
/// \param Dst receives the covariance matrix.
/// \param Biased true: divisor N.
STATKIT_API void Covariance(const TCoMoments& S, TMtx& Dst, bool Biased);

// --- histograms with fixed edges --------------------------------------------------

/// \brief Counts of values in the bins [Edges[i], Edges[i+1]) (the last bin closed), and of the rest.
struct THistogram {
  TVec Edges;          ///< ascending, finite bin edges
  TVec Counts;         ///< one count per bin
  double Below = 0.0;  ///< values below Edges[0]
  double Above = 0.0;  ///< values above the last edge
  double NaNs = 0.0;   ///< NaN values
};

/// \brief Sets \p H to empty bins between \p Edges (at least two, finite and strictly ascending).
/// \param H the histogram.
/// \param Edges the bin edges.
STATKIT_API void InitHistogram(THistogram& H, const TVec& Edges);
/// \brief Counts the values of \p X into \p H.
/// \param H the histogram.
/// \param X the values (real).
STATKIT_API void Add(THistogram& H, const TVec& X);
/// \brief Adds the counts of \p Other (the same edges) to \p H.
/// \param H the histogram.
/// \param Other the histogram merged in.
STATKIT_API void Merge(THistogram& H, const THistogram& Other);

// --- linear least squares ---------------------------------------------------------

/// \brief A linear least-squares fit of y on the columns of A kept as the triangular factor
/// of the QR decomposition of [D y] (D the design) and the moments of y.
struct TLeastSquares {
  bool Constant = true;  ///< a column of ones stands before the columns of A (set before adding)
  int Cols = 0;          ///< columns of A (fixed by the first rows added)
  TMtx R;                ///< upper triangular factor of [D y] (about Shift), min(N, Cols + Constant + 1) rows
  TMtx RLow;             ///< what R lacks: the factor is R + RLow (double-double); empty means zero
  TVec Shift;            ///< with Constant: subtracted from [A y] before factoring (the first row added)
  TMoments Y;            ///< moments of y
};

/// \brief Adds the observations \p y on the rows of \p A to \p S.
/// \param S the summary to extend.
/// \param y the observations, one per row of \p A.
/// \param A the independent variables, one column each.
STATKIT_API void Add(TLeastSquares& S, const TVec& y, const TMtx& A);
/// \brief Merges \p Other into \p S (the same columns and Constant) by QR of the stacked factors.
/// \param S the summary to extend.
/// \param Other the summary merged in.
STATKIT_API void Merge(TLeastSquares& S, const TLeastSquares& Other);
/// \brief The fit of the summarised data, as MulLinRegress followed by RegressTest gives it.
/// \param S the summary.
/// \param B receives the coefficients (the intercept first when Constant).
/// \param BStdErr receives their standard errors.
/// \param RegStats receives the regression statistics.
/// \param V optional: receives the coefficients' covariance matrix.
STATKIT_API void LeastSquaresFit(const TLeastSquares& S, TVec& B, TVec& BStdErr, TRegStats& RegStats,
                                 TMtx* V = nullptr);

// A second pass refines the fit: with B0 from LeastSquaresFit(S) on the merged S, each part
// does InitResiduals(r, S, B0) and Add(r, y, A) on its rows; the merged r gives the refined
// fit LeastSquaresFit(S, r, ...). A step multiplies the error of B0 by about cond^2 eps, and
// may be repeated with the refined coefficients.

/// \brief Sums of the residuals r = y - D B of fixed coefficients B, in double-double (about 32
/// digits): built in a second pass over the data, they refine the fit of a TLeastSquares.
struct TLeastSquaresResiduals {
  bool Constant = true;  ///< a column of ones stands before the columns of A
  TVec B;                ///< the coefficients (the intercept first when Constant)
  double N = 0.0;        ///< number of rows added
  TVec G;                ///< D'r rounded to double, one element per coefficient
  TVec GLow;             ///< what G lacks: D'r = G + GLow
  double SSE = 0.0;      ///< r'r rounded to double
  double SSELow = 0.0;   ///< what SSE lacks: r'r = SSE + SSELow
  double YCentre = 0.0;  ///< y is summed about it: the mean of y with Constant, else 0
  double YSum = 0.0;     ///< sum of y - YCentre, rounded to double
  double YSumLow = 0.0;  ///< what YSum lacks
  double YSS = 0.0;      ///< sum of (y - YCentre)^2, rounded to double
  double YSSLow = 0.0;   ///< what YSS lacks
};

/// \brief Sets \p S to empty residual sums of the data of \p Fit against the coefficients \p B.
/// \param S the summary.
/// \param Fit the merged least-squares summary of the data (gives Constant and the mean of y).
/// \param B the coefficients, as LeastSquaresFit gives them (the intercept first when Constant).
STATKIT_API void InitResiduals(TLeastSquaresResiduals& S, const TLeastSquares& Fit, const TVec& B);
/// \brief Adds the residuals of the observations \p y on the rows of \p A to \p S.
/// \param S the summary to extend.
/// \param y the observations, one per row of \p A.
/// \param A the independent variables, one column each.
STATKIT_API void Add(TLeastSquaresResiduals& S, const TVec& y, const TMtx& A);
/// \brief Merges \p Other (residuals of the same coefficients) into \p S by double-double addition.
/// \param S the summary to extend.
/// \param Other the summary merged in.
STATKIT_API void Merge(TLeastSquaresResiduals& S, const TLeastSquaresResiduals& Other);
/// \brief The fit of \p S refined by the residual sums \p Residuals of the same data.
/// \param S the summary.
/// \param Residuals residual sums of the data of \p S against coefficients near the fit.
/// \param B receives the refined coefficients (the intercept first when Constant).
/// \param BStdErr receives their standard errors.
/// \param RegStats receives the regression statistics.
/// \param V optional: receives the coefficients' covariance matrix.
STATKIT_API void LeastSquaresFit(const TLeastSquares& S, const TLeastSquaresResiduals& Residuals, TVec& B,
                                 TVec& BStdErr, TRegStats& RegStats, TMtx* V = nullptr);

// --- one-way analysis of variance ---------------------------------------------------

/// \brief Moments of the values of every group, numbered 0, 1, ...
struct TGroupMoments {
  std::vector<TMoments> Groups;  ///< Groups[g] summarises group g
};

/// \brief Adds the values of \p Data to the groups numbered by \p GroupIndex (truncated).
/// \param S the summary to extend.
/// \param Data the values (real).
/// \param GroupIndex the group of each value.
STATKIT_API void Add(TGroupMoments& S, const TVec& Data, const TVec& GroupIndex);
/// \brief Merges \p Other into \p S group by group.
/// \param S the summary to extend.
/// \param Other the summary merged in.
STATKIT_API void Merge(TGroupMoments& S, const TGroupMoments& Other);
/// \brief The one-way table of ANOVA1 from the summarised groups.
/// \param S the summary.
/// \param Signif receives the upper tail probability of F.
/// \param Alpha the level of the critical F.
STATKIT_API TANOVA1Table ANOVA1(const TGroupMoments& S, double& Signif, double Alpha);

}  // namespace statkit::Summaries
