#pragma once
// The pieces every hypothesis test shares, in the statistics units and in
// regression and time series alike: the decision from the significance, the
// tail selection by alternative, and the shapes of the confidence intervals.

#include "statkit/Array.h"
#include "statkit/Hypothesis.h"

namespace statkit::core {

using Statistics::THypothesisResult;
using Statistics::THypothesisType;

/// \brief The decision of every test: reject when Signif <= Alpha, undecidable when Signif is NaN.
inline THypothesisResult Decide(double Signif, double Alpha) {
  if (IsNan(Signif)) return Statistics::hrNan;
  return Signif <= Alpha ? Statistics::hrReject : Statistics::hrNotReject;
}

/// \brief A level the tests accept: inside the open interval (0, 1); NaN is outside.
inline bool ValidAlpha(double Alpha) { return Alpha > 0.0 && Alpha < 1.0; }

/// \brief The undecidable outcome of a test given an invalid level: hrNan and NaN everywhere.
inline void SetUndecided(THypothesisResult& hRes, double& Signif, double* ConfInt) {
  hRes = Statistics::hrNan;
  Signif = NAN;
  if (ConfInt) ConfInt[0] = ConfInt[1] = NAN;
}

/// \brief The significance by alternative from the two tail probabilities of
/// the statistic: the upper tail for a right-tailed test, the lower tail for a
/// left-tailed one, and for a two-tailed test the smaller tail, doubled when
/// \p doubled (the normality tests take it undoubled).
inline double TailSignificance(THypothesisType hType, double lower, double upper, bool doubled = true) {
  switch (hType) {
    case Statistics::htRightTailed: return upper;
    case Statistics::htLeftTailed: return lower;
    default: {
      if (IsNan(lower) || IsNan(upper)) return NAN;
      double smaller = lower < upper ? lower : upper;
      return doubled ? 2.0 * smaller : smaller;
    }
  }
}

/// \brief Writes an interval through \p ConfInt when it is given.
inline void WriteInterval(double* ConfInt, double lower, double upper) {
  if (!ConfInt) return;
  ConfInt[0] = lower;
  ConfInt[1] = upper;
}

/// \brief Runs a one-sample test on the element-wise differences Data1 - Data2,
/// held in a pool temporary: the paired form of every one-sample test.
template <class OneSample>
void OnDifferences(const TVec& Data1, const TVec& Data2, OneSample test) {
  PooledVec differences;
  differences->Sub(Data1, Data2);
  test(static_cast<const TVec&>(*differences));
}

/// \brief The interval of a location estimate \p e with half-width \p d: two-sided;
/// a right-tailed test reports an upper bound, a left-tailed test a lower bound.
inline void WriteLocationInterval(double* ConfInt, THypothesisType hType, double e, double d) {
  switch (hType) {
    case Statistics::htRightTailed: WriteInterval(ConfInt, -INF, e + d); break;
    case Statistics::htLeftTailed: WriteInterval(ConfInt, e - d, INF); break;
    default: WriteInterval(ConfInt, e - d, e + d); break;
  }
}

/// \brief The quantile level of an interval: 1 - Alpha/2 two-tailed, 1 - Alpha one-tailed.
inline double IntervalLevel(THypothesisType hType, double Alpha) {
  return hType == Statistics::htTwoTailed ? 1.0 - 0.5 * Alpha : 1.0 - Alpha;
}

/// \brief The interval of a scale estimate (a standard deviation, a variance
/// ratio) whose confidence limit at level p is \p limit(p, 1 - p), increasing
/// in p; the complement is passed exactly (Alpha/2 or Alpha), not re-formed
/// as 1 - p. Two-sided at Alpha/2 and 1 - Alpha/2; a right-tailed test reports
/// the upper bound [0, limit(1 - Alpha)], a left-tailed test the lower bound
/// [limit(Alpha), INF]: the one-sided intervals contain the estimate.
template <class Limit>
void WriteScaleInterval(double* ConfInt, THypothesisType hType, double Alpha, Limit&& limit) {
  const double a = hType == Statistics::htTwoTailed ? 0.5 * Alpha : Alpha;
  switch (hType) {
    case Statistics::htRightTailed: WriteInterval(ConfInt, 0.0, limit(1.0 - a, a)); break;
    case Statistics::htLeftTailed: WriteInterval(ConfInt, limit(a, 1.0 - a), INF); break;
    default: WriteInterval(ConfInt, limit(a, 1.0 - a), limit(1.0 - a, a)); break;
  }
}

}  // namespace statkit::core
