#pragma once
// The unit Statistics: descriptive statistics, hypothesis tests, distribution
// moments and random variates, and factorial designs.
//
// Every operation checks its arguments and raises EArrayError with a fixed
// message; errors raised while it works reach the caller prefixed with the
// operation's name ("ZTest : ..."). Outputs are caller-owned objects that the
// operation sizes; an output may be the same object as an input.

#include <array>
#include <cstdint>
#include <string_view>

#include "statkit/Array.h"
#include "statkit/Hypothesis.h"

namespace statkit::Statistics {

using statkit::EArrayError;
using statkit::INF;
using statkit::IsInf;
using statkit::IsNan;
using statkit::Random;
using statkit::Randomize;
using statkit::RandSeed;
using statkit::TCplx;
using statkit::TDenseKalpa;
using statkit::TKalpa;
using statkit::TMtx;
using statkit::TVec;

// --- shared enumerations (THypothesisType, THypothesisResult: Hypothesis.h) ---

/// \brief Principal components from the correlation or the covariance matrix.
enum TPCAMode : std::uint8_t { PCACorrMat, PCACovMat };
inline constexpr std::array<std::string_view, 2> TPCAModeNames{"PCACorrMat", "PCACovMat"};

/// \brief Hypothesised distribution of a goodness-of-fit test.
enum TTestDistribution : std::uint8_t { distBeta, distExponent, distGamma, distNormal, distRayleigh, distWeibull };
inline constexpr std::array<std::string_view, 6> TTestDistributionNames{
    "distBeta", "distExponent", "distGamma", "distNormal", "distRayleigh", "distWeibull"};

/// \brief Rule by which a percentile is read from sorted data.
enum TPercentileMethod : std::uint8_t {
  pctMethodNPlus,
  pctMethodNMinus,
  pctMethodClosestN,
  pctMethodEDF,
  pctMethodEDFAve
};
inline constexpr std::array<std::string_view, 5> TPercentileMethodNames{
    "pctMethodNPlus", "pctMethodNMinus", "pctMethodClosestN", "pctMethodEDF", "pctMethodEDFAve"};

// --- ranks and unique values ------------------------------------------------

/// \brief The distinct values of \p Src in ascending order (neighbours compared with Equal).
STATKIT_API void Unique(const TVec& Src, TVec& Dst);
/// \brief Ranks from 1 with ties averaged; \p TieSum = sum over tie groups of t (t^2 - 1) / 2.
/// NaNs sort last and count in n: each NaN is tied with nothing (NaN equals no value) and takes the
/// next rank after every number, in the order of \p Data. Empty \p Data leaves both outputs alone.
STATKIT_API void TiedRanks(const TVec& Data, TVec& Ranks, double& TieSum);

// --- location, spread and moments -------------------------------------------

/// \brief Geometric mean.
[[nodiscard]] STATKIT_API double MeanG(const TVec& Data);
/// \brief Harmonic mean.
[[nodiscard]] STATKIT_API double MeanH(const TVec& Data);
/// \brief Mean of the elements between the Percent/2 and 1 - Percent/2 percentiles (Percent a fraction).
[[nodiscard]] STATKIT_API double MeanT(const TVec& Data, double Percent);
/// \brief (1/n) sum (x - Mean)^Order; 0 when Order <= 1.
[[nodiscard]] STATKIT_API double Moment(const TVec& X, double Mean, int Order);
/// \brief Max - Min.
[[nodiscard]] STATKIT_API double Range(const TVec& X);
/// \brief Range of every row / column.
STATKIT_API void RangeRows(const TMtx& Data, TVec& Dst);
STATKIT_API void RangeCols(const TMtx& Data, TVec& Dst);
/// \brief Sample standard deviation of every row / column.
STATKIT_API void StdRows(const TMtx& Data, TVec& Dst);
STATKIT_API void StdCols(const TMtx& Data, TVec& Dst);
/// \brief Column-wise standardisation: (x - column mean) / column standard deviation.
STATKIT_API void ZScore(const TMtx& Data, TMtx& Dst);

// --- percentiles and histograms ---------------------------------------------

/// \brief The p-quantile of \p X by the rule \p Method.
/// NaNs sort last and count in n: they take the top positions x(n - k + 1) .. x(n), so a quantile that
/// reaches one of them is NaN and the others are read from the numbers below them.
[[nodiscard]] STATKIT_API double Percentile(const TVec& X, double p, TPercentileMethod Method);
/// \brief Upper minus lower quartile; 0 when the percentiles cannot be computed.
[[nodiscard]] STATKIT_API double InterQuartile(const TVec& X, TPercentileMethod Method);
/// \brief Counts \p Data into \p NumBins equal bins between \p Lo and \p Hi; \p Bins receives
/// the centres (CenterBins) or the NumBins + 1 edges.
STATKIT_API void Histogram(const TVec& Data, int NumBins, TVec& Results, TVec& Bins, bool CenterBins, double Hi,
                           double Lo);
/// \brief As above between the smallest and the largest value of \p Data.
STATKIT_API void Histogram(const TVec& Data, int NumBins, TVec& Results, TVec& Bins, bool CenterBins);
/// \brief Counts \p Data into the bins around the ascending centres \p Bins.
STATKIT_API void Histogram(const TVec& Data, const TVec& Bins, TVec& Results);
/// \brief Cumulative relative frequencies over NumBins equal bins; \p Bins receives the edges.
STATKIT_API void CumulativeHist(const TVec& Data, int NumBins, TVec& Results, TVec& Bins, bool CenterBins);
/// \brief Cumulative relative frequencies over the bins around the centres \p Bins.
STATKIT_API void CumulativeHist(const TVec& Data, const TVec& Bins, TVec& Results);

// --- covariance and correlation ---------------------------------------------

/// \brief Variance of \p X (divisor n when \p Biased, else n - 1).
STATKIT_API void Covariance(const TVec& X, double& Cov, bool Biased);
/// \brief 2 x 2 covariance matrix of two vectors.
STATKIT_API void Covariance(const TVec& X, const TVec& Y, TMtx& Dst, bool Biased);
/// \brief Covariance matrix of the columns of \p X.
STATKIT_API void Covariance(const TMtx& X, TMtx& Dst, bool Biased);
/// \brief 2 x 2 covariance matrix of two matrices read column by column.
STATKIT_API void Covariance(const TMtx& X, const TMtx& Y, TMtx& Dst, bool Biased);
/// \brief Correlation matrices of the forms of Covariance.
STATKIT_API void CorrCoef(const TVec& X, const TVec& Y, TMtx& Dst);
STATKIT_API void CorrCoef(const TMtx& X, TMtx& Dst);
STATKIT_API void CorrCoef(const TMtx& X, const TMtx& Y, TMtx& Dst);
/// \brief Biased autocovariances at lags 0..Lags (Lags < 0: ceil(10 log10 n)).
STATKIT_API void AutoCov(const TVec& Src, TVec& Dst, int Lags);
/// \brief Autocorrelations at lags 0..Lags (element 0 is 1).
STATKIT_API void ACF(const TVec& Src, TVec& Dst, int Lags);
/// \brief Durbin-Levinson recursion on the autocovariances \p Src: AR coefficients,
/// partial autocorrelations at lags 1..m and prediction-error variances.
STATKIT_API void PACF(const TVec& Src, TVec& Phi, TVec& Dst, TVec& ErrVar);
/// \brief Partial autocorrelations at lags 1..m of the autocorrelations \p Src.
STATKIT_API void PACF(const TVec& Src, TVec& Dst);

// --- location tests ---------------------------------------------------------
// The tests write a decision, a significance probability and, where they have
// one, a confidence interval through \p ConfInt (two doubles: lower, upper; a
// null pointer skips it).

/// \brief Z test of the mean with known standard deviation \p Sigma.
/// \p Sigma is used as given, unchecked: Sigma = 0 gives an infinite z (significance 0 or 1) and an
/// interval of width 0, or NaN and hrNan when the sample mean equals \p Mean; a negative Sigma flips
/// the sign of z and reverses the interval (lower limit above the upper). NaN Sigma: hrNan, NaN limits.
STATKIT_API void ZTest(const TVec& Data, double Mean, double Sigma, THypothesisResult& hRes, double& Signif,
                       double* ConfInt, THypothesisType hType, double Alpha);
/// \brief One-sample t test of the mean.
STATKIT_API void tTest(const TVec& Data, double Mean, THypothesisResult& hRes, double& Signif, double* ConfInt,
                       THypothesisType hType, double Alpha);
/// \brief Two-sample t test: paired, or independent samples with pooled variance.
STATKIT_API void tTest(const TVec& Data1, const TVec& Data2, THypothesisResult& hRes, double& Signif,
                       double* ConfInt, bool Paired, THypothesisType hType, double Alpha);
/// \brief Sign test of the median (\p ConfInt is not written).
/// Data equal to \p Median and NaN data are dropped (n counts the rest). A NaN \p Median is undecidable:
/// hrNan and a NaN significance.
STATKIT_API void SignTest(const TVec& Data, double Median, THypothesisResult& hRes, double& Signif,
                          double* ConfInt, THypothesisType hType, double Alpha);
/// \brief Paired sign test: the one-sample test of Data1 - Data2 against 0. A pair with a NaN gives a NaN
/// difference and is dropped like a zero difference, silently: n counts the pairs that remain.
STATKIT_API void SignTest(const TVec& Data1, const TVec& Data2, THypothesisResult& hRes, double& Signif,
                          double* ConfInt, THypothesisType hType, double Alpha);

// --- variance tests ---------------------------------------------------------

/// \brief Chi-square test of the standard deviation against \p Sigma; the interval is for the standard deviation.
STATKIT_API void ChiSquareTest(const TVec& Data, double Sigma, THypothesisResult& hRes, double& Signif,
                               double* ConfInt, THypothesisType hType, double Alpha);
/// \brief F test of var(Data2) / var(Data1); the interval is for that ratio.
STATKIT_API void FTest(const TVec& Data1, const TVec& Data2, THypothesisResult& hRes, double& Signif,
                       double* ConfInt, THypothesisType hType, double Alpha);
/// \brief Bartlett's test of the number of principal components to keep.
STATKIT_API void BarlettTest(const TMtx& Data, int& NumComp, TVec& Signif, TPCAMode Mode, double Alpha);

// --- rank tests -------------------------------------------------------------

/// \brief Wilcoxon signed-rank test of the median (exact below 15 non-zero differences).
/// Data equal to \p Median and NaN data are dropped (n counts the rest). A NaN \p Median is undecidable:
/// hrNan, a NaN significance and NaN limits.
STATKIT_API void WilcoxonSign(const TVec& Data, double Median, THypothesisResult& hRes, double& Signif,
                              double* ConfInt, THypothesisType hType, double Alpha);
/// \brief Paired Wilcoxon signed-rank test: the one-sample test of Data1 - Data2 against 0. A pair with a
/// NaN gives a NaN difference and is dropped like a zero difference, silently: n counts the pairs that remain.
STATKIT_API void WilcoxonSign(const TVec& Data1, const TVec& Data2, THypothesisResult& hRes, double& Signif,
                              double* ConfInt, THypothesisType hType, double Alpha);
/// \brief Spearman's rank correlation \p Rs with its t test and Fisher interval.
/// Rs = 1 - 6 sum (RX - RY)^2 / (n^3 - n) on the TiedRanks of X and Y, with no tie correction: on tied
/// data it is not the correlation of the ranks. A constant X (all ranks (n + 1) / 2) against an untied Y
/// gives Rs = 1/2, not 0/0. NaNs rank last as in TiedRanks and count in n.
STATKIT_API void SpearmanRankCorr(const TVec& X, const TVec& Y, double& Rs, THypothesisResult& hRes,
                                  double& Signif, double* ConfInt, THypothesisType hType, double Alpha);

// --- goodness of fit --------------------------------------------------------
// Neither test checks Alpha: the decision compares the significance with it as given.

/// \brief Pearson's chi-square test of the observed frequencies \p O against the expected \p E, with
/// \p DegFreedom degrees of freedom (\p SampleSize is accepted and not used). Empty cells follow IEEE
/// arithmetic: E = 0 gives an infinite or NaN term, and a NaN significance decides hrNan.
STATKIT_API void GOFChi2Test(const TVec& O, const TVec& E, int SampleSize, int DegFreedom, THypothesisResult& hRes,
                             double& Signif, THypothesisType hType, double Alpha);
/// \brief Chi-square goodness of fit of \p Data to the law \p Dist fitted to it: NumBins equal bins
/// between the smallest and the largest value, expected counts n (F(upper edge) - F(lower edge)), and
/// NumBins - 1 - (number of fitted parameters) degrees of freedom. Iterative fits use 500 iterations
/// and tolerance 1e-8.
STATKIT_API void GOFChi2Test(const TVec& Data, TTestDistribution Dist, int NumBins, THypothesisResult& hRes,
                             double& Signif, THypothesisType hType, double Alpha);
/// \brief Kolmogorov's test of \p Data against the standard normal or, when \p CDFx and \p CDFy are both
/// given, the table of points (CDFx[i], CDFy[i]), interpolated linearly and held at its first and last
/// ordinates outside its abscissae (at an abscissa given twice, a step, the later of its points holds).
/// D+ = max(i/n - F(x(i))) and D- = max(F(x(i)) - (i-1)/n) over the sorted sample; \p Signif is the
/// exact upper-tail probability of D = max(D+, D-) (htTwoTailed), of D+ (htRightTailed) or of D-
/// (htLeftTailed). A NaN in the sample or the table decides hrNan; an empty sample or table raises.
/// Cost beyond the sort: O(n) one-sided; two-sided about 25 n (2 n D + 1) steps while n D^2 < 4,
/// O(n) beyond (10^5 values within a second).
STATKIT_API void GOFKolmogorov(const TVec& Data, THypothesisResult& hRes, double& Signif, const TVec* CDFx,
                               const TVec* CDFy, THypothesisType hType, double Alpha);

// --- normality tests --------------------------------------------------------

/// \brief Shapiro-Wilk test (Royston's approximation), 3 to 5000 values.
///
/// \p Data must be sorted ascending by the caller (for example with TVec::SortAscend on a
/// copy): the test pairs its coefficients with the elements in the order given, so unsorted
/// data give a meaningless statistic and no error.
STATKIT_API void ShapiroWilks(const TVec& Data, THypothesisResult& hRes, double& Signif, THypothesisType hType,
                              double Alpha);
/// \brief Shapiro-Francia test (Royston's approximation).
///
/// \p Data must be sorted ascending by the caller, as for ShapiroWilks.
STATKIT_API void ShapiroFrancia(const TVec& Data, THypothesisResult& hRes, double& Signif, THypothesisType hType,
                                double Alpha);

// --- distribution moments ---------------------------------------------------
// Mean and variance of a distribution; NaN for both at invalid parameters (a NaN
// parameter is invalid), NaN for a moment that does not exist. These functions fix
// each law's parameterisation: the random variates below, the probability functions
// and the goodness-of-fit tests take their parameters in the same sense.

/// \brief Beta with shapes \p a, \p b > 0 (density proportional to x^(a-1) (1-x)^(b-1) on (0, 1)):
/// mean a/(a+b), variance a b/((a+b)^2 (a+b+1)).
STATKIT_API void MVBeta(double a, double b, double& Mean, double& Variance);
/// \brief Binomial: successes in \p n >= 0 trials of success probability \p p in [0, 1]: n p, n p (1-p).
STATKIT_API void MVBinom(int n, double p, double& Mean, double& Variance);
/// \brief Cauchy with location \p m and scale \p b: neither moment exists, both are always NaN.
STATKIT_API void MVCauchy(double m, double b, double& Mean, double& Variance);
/// \brief Chi-square with \p nu > 0 degrees of freedom (gamma with shape nu/2 and scale 2): nu, 2 nu.
STATKIT_API void MVChiSquare(int nu, double& Mean, double& Variance);
/// \brief Exponential with mean \p mu > 0 (the scale, not the rate): mu, mu^2.
STATKIT_API void MVExponent(double mu, double& Mean, double& Variance);
/// \brief F with \p nu1 numerator and \p nu2 denominator degrees of freedom (both > 0): mean
/// nu2/(nu2-2) for nu2 > 2, variance 2 Mean^2 (nu1+nu2-2)/(nu1 (nu2-4)) for nu2 > 4.
STATKIT_API void MVF(int nu1, int nu2, double& Mean, double& Variance);
/// \brief Gamma with shape \p a > 0 and scale \p b > 0 (density proportional to x^(a-1) e^(-x/b)): a b, a b^2.
STATKIT_API void MVGamma(double a, double b, double& Mean, double& Variance);
/// \brief Geometric: failures before the first success of probability \p p in (0, 1]: (1-p)/p, (1-p)/p^2.
STATKIT_API void MVGeometric(double p, double& Mean, double& Variance);
/// \brief Hypergeometric: marked items in a sample of \p N drawn without replacement from \p M items
/// of which \p K are marked (0 <= K <= M, 0 <= N <= M): N K/M, N K (M-K) (M-N)/(M^2 (M-1));
/// M = 0 gives 0, 0 and M = 1 gives N K, 0.
STATKIT_API void MVHypGeometric(int M, int K, int N, double& Mean, double& Variance);
/// \brief Maxwell with \p a > 0 the reciprocal of the squared scale (density proportional to
/// x^2 e^(-a x^2/2)): 2 sqrt(2/(pi a)), (3 - 8/pi)/a.
STATKIT_API void MVMaxwell(double a, double& Mean, double& Variance);
/// \brief Negative binomial: failures before the \p r-th success (r >= 1) of probability \p p in (0, 1]:
/// r (1-p)/p, r (1-p)/p^2.
STATKIT_API void MVNegBinom(int r, double p, double& Mean, double& Variance);
/// \brief Normal with mean \p mu and standard deviation \p sigma > 0 (not the variance): mu, sigma^2.
STATKIT_API void MVNormal(double mu, double sigma, double& Mean, double& Variance);
/// \brief Pareto with shape \p a > 0 and scale \p b > 0 (the smallest value): mean a b/(a-1) for a > 1,
/// variance a b^2/((a-1)^2 (a-2)) for a > 2.
STATKIT_API void MVPareto(double a, double b, double& Mean, double& Variance);
/// \brief Poisson with mean \p lambda > 0: lambda, lambda.
STATKIT_API void MVPoisson(double lambda, double& Mean, double& Variance);
/// \brief Rayleigh with scale \p b > 0 (density (x/b^2) exp(-x^2/(2 b^2)) for x >= 0):
/// b sqrt(pi/2), b^2 (2 - pi/2).
STATKIT_API void MVRayleigh(double b, double& Mean, double& Variance);
/// \brief Student's t with \p v > 0 degrees of freedom: mean 0 for v >= 2, variance v/(v-2) for v >= 3.
STATKIT_API void MVStudent(int v, double& Mean, double& Variance);
/// \brief Uniform on [\p a, \p b], a < b: (a+b)/2, (b-a)^2/12.
STATKIT_API void MVUniform(double a, double b, double& Mean, double& Variance);
/// \brief Discrete uniform on 1, 2, ..., \p N (N >= 1): (N+1)/2, (N^2-1)/12.
STATKIT_API void MVUniformD(int N, double& Mean, double& Variance);
/// \brief Weibull with rate-like scale \p a > 0 and shape \p b > 0, F(x) = 1 - exp(-a x^b) for x >= 0
/// (scale a^(-1/b) in the usual form): a^(-1/b) Gamma(1+1/b), a^(-2/b) Gamma(1+2/b) - Mean^2.
STATKIT_API void MVWeibull(double a, double b, double& Mean, double& Variance);

// --- random variates ----------------------------------------------------------
// Each fills every element of Results (a vector or a matrix, never resized) with
// variates of the named law, from a new generator (or two) seeded by one draw of
// the process-wide generator each, so a seeded process repeats its values.
// Parameterisations as for the moments above.
// A NaN parameter is refused, never turned into NaN values: one that a
// procedure checks against a bound fails that check (its message, unprefixed);
// any other NaN or infinite parameter (a location, the Cauchy or Rayleigh
// scale, the log-normal mu, an infinite gamma or beta shape) raises
// "<procedure> : Invalid parameter" through the operation's frame.

/// \brief Beta with shapes A and B, as G1 / (G1 + G2) of two gamma variates.
STATKIT_API void RandomBeta(double A, double B, TDenseKalpa& Results);
/// \brief Binomial: successes in n trials of success probability p.
STATKIT_API void RandomBinom(int n, double p, TDenseKalpa& Results);
/// \brief Cauchy with location m and scale b.
STATKIT_API void RandomCauchy(double m, double b, TDenseKalpa& Results);
/// \brief Chi-square with nu degrees of freedom (gamma with shape nu/2 and scale 2).
STATKIT_API void RandomChiSquare(int nu, TDenseKalpa& Results);
/// \brief Exponential with mean mu.
STATKIT_API void RandomExponent(double mu, TDenseKalpa& Results);
/// \brief F with ANu1 and ANu2 degrees of freedom.
STATKIT_API void RandomF(int ANu1, int ANu2, TDenseKalpa& Results);
/// \brief Gamma with shape A and scale B (Marsaglia and Tsang's method; the exponential for A = 1).
STATKIT_API void RandomGamma(double A, double B, TDenseKalpa& Results);
/// \brief Geometric: failures before the first success of probability p (+INF for p = 0).
STATKIT_API void RandomGeometric(double p, TDenseKalpa& Results);
/// \brief Hypergeometric: marked items in a sample of N from M items of which K are marked.
STATKIT_API void RandomHypGeometric(int M, int K, int N, TDenseKalpa& Results);
/// \brief Laplace with location m and scale b.
STATKIT_API void RandomLaplace(double m, double b, TDenseKalpa& Results);
/// \brief Log-normal: exp of a normal with mean mu and standard deviation sigma.
STATKIT_API void RandomLogNormal(double mu, double sigma, TDenseKalpa& Results);
/// \brief Negative binomial: failures before the r-th success of probability p.
STATKIT_API void RandomNegBinom(int r, double p, TDenseKalpa& Results);
/// \brief Normal with mean mu and standard deviation sigma.
STATKIT_API void RandomNormal(double mu, double sigma, TDenseKalpa& Results);
/// \brief Poisson with mean lambda.
STATKIT_API void RandomPoisson(double lambda, TDenseKalpa& Results);
/// \brief Rayleigh with scale b: density (x/b^2) exp(-x^2/(2 b^2)) for x >= 0, mean b sqrt(pi/2).
STATKIT_API void RandomRayleigh(double b, TDenseKalpa& Results);
/// \brief Student's t with v degrees of freedom.
STATKIT_API void RandomStudent(int v, TDenseKalpa& Results);
/// \brief Triangular on [a, b] with mode c, by inversion.
STATKIT_API void RandomTriangular(double a, double b, double c, TDenseKalpa& Results);
/// \brief Uniform on [a, b].
STATKIT_API void RandomUniform(double a, double b, TDenseKalpa& Results);
/// \brief Discrete uniform on 1..N (zeros for N = 0).
STATKIT_API void RandomUniformD(int N, TDenseKalpa& Results);
/// \brief Weibull with F(x) = 1 - exp(-a x^b) for x >= 0: \p a the rate-like scale, \p b the shape
/// (scale a^(-1/b) in the usual form).
STATKIT_API void RandomWeibull(double a, double b, TDenseKalpa& Results);

// --- distribution fitting -------------------------------------------------------
// Intervals are written through pointers to two doubles (lower, upper) at level 1 - Alpha. The beta,
// gamma and Weibull fits maximise the likelihood by Simplex with the caller's MaxIter and Tolerance and
// report the best point reached; their intervals are normal, from the standard errors of the scores.

/// \brief Beta shapes a, b by maximum likelihood, started from the geometric means of X and 1 - X.
STATKIT_API void BetaFit(const TVec& X, double& a, double& b, int MaxIter, double Tolerance);
/// \brief BetaFit with intervals for a and b.
STATKIT_API void BetaFit(const TVec& X, double& a, double& b, double* ConfIntA, double* ConfIntB, int MaxIter,
                         double Tolerance, double Alpha);
/// \brief Success probabilities P = X / n of \p n trials each.
STATKIT_API void BinomFit(const TVec& X, double n, TVec& P);
/// \brief Success probabilities P = X / n with a trial count per observation.
STATKIT_API void BinomFit(const TVec& X, const TVec& n, TVec& P);
/// \brief BinomFit with exact (Clopper-Pearson) limits per observation: PLow = 0 where x = 0, PHigh = 1
/// where x = n.
STATKIT_API void BinomFit(const TVec& X, double n, TVec& P, TVec& PLow, TVec& PHigh, double Alpha);
/// \brief Exponential mean.
STATKIT_API void ExponentFit(const TVec& X, double& mu);
/// \brief Exponential mean with the quantiles of its gamma(n, mu/n) law at the estimate.
STATKIT_API void ExponentFit(const TVec& X, double& mu, double* ConfInt, double Alpha);
/// \brief Gamma shape a and scale b by maximum likelihood, started from the moments.
STATKIT_API void GammaFit(const TVec& X, double& a, double& b, int MaxIter, double Tolerance);
/// \brief GammaFit with intervals for a and b.
STATKIT_API void GammaFit(const TVec& X, double& a, double& b, double* ConfIntA, double* ConfIntB, int MaxIter,
                          double Tolerance, double Alpha);
/// \brief Geometric success probability p = 1 / (mean + 1) of counts of failures.
STATKIT_API void GeometricFit(const TVec& X, double& p);
/// \brief GeometricFit with an interval for the mean count of failures (negative binomial quantiles / n).
STATKIT_API void GeometricFit(const TVec& X, double& p, double* ConfInt, double Alpha);
/// \brief Mean and standard deviation of ln X.
STATKIT_API void LogNormalFit(const TVec& X, double& mu, double& sigma);
/// \brief LogNormalFit with the t interval of mu and the chi-square interval of sigma.
STATKIT_API void LogNormalFit(const TVec& X, double& mu, double& sigma, double* ConfIntMu, double* ConfIntSigma,
                              double Alpha);
/// \brief Mean and sample standard deviation.
STATKIT_API void NormalFit(const TVec& X, double& mu, double& sigma);
/// \brief NormalFit with the t interval of mu and the chi-square interval of sigma.
STATKIT_API void NormalFit(const TVec& X, double& mu, double& sigma, double* ConfIntMu, double* ConfIntSigma,
                           double Alpha);
/// \brief Poisson mean.
STATKIT_API void PoissonFit(const TVec& X, double& lambda);
/// \brief PoissonFit with the quantiles of the sum's law (normal from n lambda = 100 on), divided by n.
STATKIT_API void PoissonFit(const TVec& X, double& lambda, double* ConfInt, double Alpha);
/// \brief Rayleigh scale b = sqrt(mean of X^2 / 2).
STATKIT_API void RayleighFit(const TVec& X, double& b);
/// \brief RayleighFit with the chi-square (2n) interval.
STATKIT_API void RayleighFit(const TVec& X, double& b, double* ConfInt, double Alpha);
/// \brief Discrete uniform largest value N = Ceil(max X).
STATKIT_API void UniformDFit(const TVec& X, int& N);
/// \brief UniformDFit with the exact interval [N, floor(N Alpha^(-1/n))] for N.
STATKIT_API void UniformDFit(const TVec& X, int& N, double* ConfInt, double Alpha);
/// \brief Uniform ends a = min X, b = max X.
STATKIT_API void UniformFit(const TVec& X, double& a, double& b);
/// \brief UniformFit with ConfIntA = [a, b - d], ConfIntB = [a + d, b], d = (b - a) Alpha.
STATKIT_API void UniformFit(const TVec& X, double& a, double& b, double* ConfIntA, double* ConfIntB,
                            double Alpha);
/// \brief Weibull a, b of F(x) = 1 - exp(-a x^b) by maximum likelihood, started from the Weibull plot.
STATKIT_API void WeibullFit(const TVec& X, double& a, double& b, int MaxIter, double Tolerance);
/// \brief WeibullFit with intervals for a and b.
STATKIT_API void WeibullFit(const TVec& X, double& a, double& b, double* ConfIntA, double* ConfIntB,
                            int MaxIter, double Tolerance, double Alpha);

// --- full factorial design --------------------------------------------------

/// \brief Two-level design of \p n factors: 2^n rows, Dst(i, c) = bit (n - 1 - c) of i,
/// times MulVec[n - 1 - c] when \p MulVec is given.
STATKIT_API void FullFactDesign(int n, TMtx& Dst, const TVec* MulVec = nullptr);
/// \brief Mixed-level design: every combination of levels 1..Levels[j] once, the first column fastest.
STATKIT_API void FullFactDesign(const TVec& Levels, TMtx& Dst);

// --- principal components -------------------------------------------------
// Components from the singular value decomposition, so ordered from the largest
// variance down; column j of PC is the direction of component j, with the sign
// the decomposition gives. VarPercent (nullptr to skip) receives 100 Eigen / sum(Eigen).

/// \brief Components of a covariance or correlation matrix \p CovMat: its eigenvectors and eigenvalues.
STATKIT_API void PCA(const TMtx& CovMat, TMtx& PC, TVec& Eigen, TVec* VarPercent);
/// \brief Components of the data (observations in rows): of the covariance matrix with Scores the
/// centred data times PC (PCACovMat), or of the correlation matrix with Scores the z-scores times PC.
STATKIT_API void PCA(const TMtx& Data, TMtx& PC, TMtx& Scores, TVec& Eigen, TVec* VarPercent, TPCAMode Mode);
/// \brief Data minus (column means + the first \p NumPC correlation-mode scores times their directions);
/// 0 <= NumPC < Data.Cols.
STATKIT_API void PCAResiduals(const TMtx& Data, int NumPC, TMtx& Residuals);

}  // namespace statkit::Statistics
