// Location tests: the Z test with a known standard deviation, Student's t test
// (one sample, paired, two independent samples with pooled variance) and the
// sign test (binomial below 20 non-zero differences, normal approximation from
// 20 on). Upper tails come from the complementary distribution functions, so a
// small significance keeps its relative accuracy instead of drowning in 1 - p.

#include <cmath>

#include "core/frame.h"
#include "core/test_decision.h"
#include "statkit/Statistics.h"

namespace statkit::Statistics {

namespace {

// The significance, interval and decision of a location estimate e with
// standard error se, tested against e0, when (e - e0) / se follows a symmetric
// reference distribution given by its lower tail, upper tail and quantile.
template <class Lower, class Upper, class Quantile>
void decideLocation(double e, double e0, double se, Lower lower, Upper upper, Quantile quantile,
                    THypothesisResult& hRes, double& Signif, double* ConfInt, THypothesisType hType,
                    double Alpha) {
  const double t = (e - e0) / se;
  Signif = core::TailSignificance(hType, lower(t), upper(t));
  core::WriteLocationInterval(ConfInt, hType, e, quantile(core::IntervalLevel(hType, Alpha)) * se);
  hRes = core::Decide(Signif, Alpha);
}

void decideStudent(double e, double e0, double se, int df, THypothesisResult& hRes, double& Signif,
                   double* ConfInt, THypothesisType hType, double Alpha) {
  decideLocation(
      e, e0, se, [df](double t) { return StudentCDF(t, df); }, [df](double t) { return StudentCDFc(t, df); },
      [df](double p) { return StudentCDFInv(p, df); }, hRes, Signif, ConfInt, hType, Alpha);
}

// The sign test's significance from npos positive signs among n non-zero
// differences. The exact branch counts a result equal to npos as not more
// extreme on the right (P(X > npos)); the two-sided normal branch corrects the
// difference of the counts by one toward zero.
double signSignificance(int npos, int n, THypothesisType hType) {
  const int nneg = n - npos;
  double signif;
  if (n < 20) {
    switch (hType) {
      case htLeftTailed: signif = BinomCDF(npos, n, 0.5); break;
      case htRightTailed: signif = BinomCDFc(npos, n, 0.5); break;
      default: signif = 2.0 * BinomCDF(Min(npos, nneg), n, 0.5); break;
    }
  } else {
    const double delta = npos - nneg;
    const double z = hType == htTwoTailed ? -std::fabs(delta - Sgn(delta)) / std::sqrt(double(n))
                                          : delta / std::sqrt(double(n));
    // With z <= 0 the smaller tail of the two-sided branch is the lower one.
    signif = core::TailSignificance(hType, NormalCDF(z, 0.0, 1.0), NormalCDFc(z, 0.0, 1.0));
  }
  return signif > 1.0 ? 1.0 : signif;
}

}  // namespace

void ZTest(const TVec& Data, double Mean, double Sigma, THypothesisResult& hRes, double& Signif,
           double* ConfInt, THypothesisType hType, double Alpha) {
  core::Guarded("ZTest : ", [&] {
    if (Data.Complex()) ERaise("ZTest: Data.Complex = true");
    if (!core::ValidAlpha(Alpha)) return core::SetUndecided(hRes, Signif, ConfInt);
    const double m = Data.Mean();
    decideLocation(
        m, Mean, Sigma / std::sqrt(double(Data.Length())), [](double z) { return NormalCDF(z, 0.0, 1.0); },
        [](double z) { return NormalCDFc(z, 0.0, 1.0); }, [](double p) { return NormalCDFInv(p, 0.0, 1.0); },
        hRes, Signif, ConfInt, hType, Alpha);
  });
}

void tTest(const TVec& Data, double Mean, THypothesisResult& hRes, double& Signif, double* ConfInt,
           THypothesisType hType, double Alpha) {
  core::Guarded("tTest : ", [&] {
    if (Data.Complex()) ERaise("tTest: Data.Complex = true");
    if (!core::ValidAlpha(Alpha)) return core::SetUndecided(hRes, Signif, ConfInt);
    const int n = Data.Length();
    const double m = Data.Mean();
    decideStudent(m, Mean, Data.StdDev(m) / std::sqrt(double(n)), n - 1, hRes, Signif, ConfInt, hType, Alpha);
  });
}

void tTest(const TVec& Data1, const TVec& Data2, THypothesisResult& hRes, double& Signif, double* ConfInt,
           bool Paired, THypothesisType hType, double Alpha) {
  core::Guarded("tTest : ", [&] {
    if (Data1.Complex() || Data2.Complex()) ERaise("tTest: vectors must be real");
    if (Paired) {
      if (Data1.Length() != Data2.Length()) ERaise("tTest: Data1.Length <> Data2.Length");
      return core::OnDifferences(Data1, Data2, [&](const TVec& D) {
        tTest(D, 0.0, hRes, Signif, ConfInt, hType, Alpha);
      });
    }
    if (!core::ValidAlpha(Alpha)) return core::SetUndecided(hRes, Signif, ConfInt);
    const int n1 = Data1.Length(), n2 = Data2.Length(), df = n1 + n2 - 2;
    const double m1 = Data1.Mean(), m2 = Data2.Mean();
    const double s1 = Data1.StdDev(m1), s2 = Data2.StdDev(m2);
    const double pooled = (s1 * s1 * (n1 - 1) + s2 * s2 * (n2 - 1)) / df;
    const double se = std::sqrt(pooled * (1.0 / n1 + 1.0 / n2));
    decideStudent(m1 - m2, 0.0, se, df, hRes, Signif, ConfInt, hType, Alpha);
  });
}

void SignTest(const TVec& Data, double Median, THypothesisResult& hRes, double& Signif, double* /*ConfInt*/,
              THypothesisType hType, double Alpha) {
  if (Data.Complex()) ERaise("SignTest: Data.Complex := true");
  if (!core::ValidAlpha(Alpha)) ERaise("SignTest :(alpha<=0) or (alpha>=1)");
  core::Guarded("SignTest : ", [&] {
    // A NaN median leaves no sign to count: undecidable (there is no interval to write).
    if (IsNan(Median)) return core::SetUndecided(hRes, Signif, nullptr);
    // The differences are classified as they are formed: a zero difference
    // (a tie with the median) or a NaN datum leaves the count.
    int n = Data.Length(), npos = 0;
    const double* x = Data.data();
    for (int i = 0; i < Data.Length(); ++i) {
      const double d = x[i] - Median;
      if (d > 0.0) ++npos;
      else if (!(d < 0.0)) --n;
    }
    Signif = signSignificance(npos, n, hType);
    hRes = core::Decide(Signif, Alpha);
  });
}

void SignTest(const TVec& Data1, const TVec& Data2, THypothesisResult& hRes, double& Signif, double* ConfInt,
              THypothesisType hType, double Alpha) {
  if (Data1.Length() != Data2.Length()) ERaise("SignTest: (Data1.Length <> Data2.Length)");
  if (Data1.Complex() || Data2.Complex()) ERaise("SignTest: vectors must be real");
  if (!core::ValidAlpha(Alpha)) ERaise("SignTest :(alpha<=0) or (alpha>=1)");
  core::Guarded("SignTest : ", [&] {
    core::OnDifferences(Data1, Data2,
                        [&](const TVec& D) { SignTest(D, 0.0, hRes, Signif, ConfInt, hType, Alpha); });
  });
}

}  // namespace statkit::Statistics
