// Tests of spread: the chi-square test of one standard deviation, the F test
// of a variance ratio, and Bartlett's test of the number of principal
// components, which asks whether the smallest eigenvalues of the correlation
// (or covariance) matrix are equal (Bartlett 1950, "Tests of significance in
// factor analysis", with his multiplier for the chi-square approximation).

#include <cmath>

#include "core/frame.h"
#include "core/test_decision.h"
#include "statkit/Statistics.h"

namespace statkit::Statistics {

void ChiSquareTest(const TVec& Data, double Sigma, THypothesisResult& hRes, double& Signif, double* ConfInt,
                   THypothesisType hType, double Alpha) {
  core::Guarded("Chi2Test : ", [&] {
    if (Data.Complex()) ERaise("Chi2Test: Data.Complex = true");
    if (!core::ValidAlpha(Alpha)) return core::SetUndecided(hRes, Signif, ConfInt);
    const int df = Data.Length() - 1;
    const double s = Data.StdDev();
    const double SS = df * s * s;
    const double chi2 = SS / (Sigma * Sigma);
    Signif = core::TailSignificance(hType, ChiSquareCDF(chi2, df), ChiSquareCDFc(chi2, df));
    // The limit for the standard deviation at level p divides by the quantile at 1 - p.
    core::WriteScaleInterval(ConfInt, hType, Alpha,
                             [&](double, double pc) { return std::sqrt(SS / ChiSquareCDFInv(pc, df)); });
    hRes = core::Decide(Signif, Alpha);
  });
}

void FTest(const TVec& Data1, const TVec& Data2, THypothesisResult& hRes, double& Signif, double* ConfInt,
           THypothesisType hType, double Alpha) {
  core::Guarded("FTest : ", [&] {
    if (Data1.Complex() || Data2.Complex()) ERaise("FTest: (Data1.Complex) or (Data2.Complex)");
    if (Data1.Length() < 2 || Data2.Length() < 2) ERaise("FTest: (Data1.Length<2) or (Data2.Length<2)");
    if (!core::ValidAlpha(Alpha)) return core::SetUndecided(hRes, Signif, ConfInt);
    // The second sample's variance over the first's: df1 = n2 - 1 in the numerator.
    const int df1 = Data2.Length() - 1, df2 = Data1.Length() - 1;
    const double ratio = Data2.StdDev() / Data1.StdDev();  // the ratio first: squares may overflow
    const double F = ratio * ratio;
    Signif = core::TailSignificance(hType, FCDF(F, df1, df2), FCDFc(F, df1, df2));
    core::WriteScaleInterval(ConfInt, hType, Alpha, [&](double p, double) { return F * FCDFInv(p, df1, df2); });
    hRes = core::Decide(Signif, Alpha);
  });
}

void BarlettTest(const TMtx& Data, int& NumComp, TVec& Signif, TPCAMode Mode, double Alpha) {
  core::Guarded("BarlettTest : ", [&] {
    if (Data.Complex()) ERaise("BarlettTest: Data.Complex = True");
    PooledMtx R;
    PooledVec lambda;
    if (Mode == PCACorrMat) CorrCoef(Data, *R);
    else Covariance(Data, *R, false);
    // For a symmetric positive semi-definite matrix the singular values are the eigenvalues.
    R->SVD(*lambda);
    const int p = lambda->Length();
    const double n = Data.Rows();
    Signif.Size(p > 1 ? p - 1 : 0);
    // Running sums over the eigenvalues from the smallest up; the test with k
    // components kept looks at the q = p - k smallest ones.
    const double* desc = lambda->data();
    double sumLn = 0.0, sum = 0.0;
    for (int q = 1; q <= p; ++q) {
      const double a = desc[p - q];
      sumLn += std::log(a);
      sum += a;
      if (q < 2) continue;
      const int k = p - q;
      const double kappa = (n - 1.0) - (2.0 * p + 5.0) / 6.0 - 2.0 * k / 3.0;
      const double T = kappa * (q * std::log(sum / q) - sumLn);
      Signif[k] = ChiSquareCDFc(T, (q - 1) * (q + 2) / 2);
    }
    NumComp = p;
    for (int k = 0; k + 1 < p; ++k)
      if (Signif[k] > Alpha) {
        NumComp = k;
        break;
      }
  });
}

}  // namespace statkit::Statistics
