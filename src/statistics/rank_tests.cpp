// Rank tests: the Wilcoxon signed-rank test of a median (exact below 15
// non-zero differences, normal approximation with the tie correction from 15
// on) and Spearman's rank correlation with its t test and Fisher interval.
// The exact null distribution of the signed-rank sum is counted by the
// subset-sum recursion over the ranks 1..n (each rank in or out with
// probability 1/2), which gives the same counts as enumerating all 2^n sign
// patterns in O(n^3) instead of O(n 2^n).

#include <array>
#include <cmath>

#include "core/frame.h"
#include "core/test_decision.h"
#include "statkit/Statistics.h"

namespace statkit::Statistics {

namespace {

constexpr int kExactBelow = 15;  // the exact branch takes n = 0 .. 14 differences
constexpr int kMaxRankSum = (kExactBelow - 1) * kExactBelow / 2;

// Number of subsets of {1, ..., n} with each sum s = 0 .. n(n+1)/2: the
// distribution of the signed-rank sum under the null hypothesis, times 2^n.
// Counts stay below 2^14, exact in double.
std::array<double, kMaxRankSum + 1> signedRankCounts(int n) {
  std::array<double, kMaxRankSum + 1> count{};
  count[0] = 1.0;
  for (int r = 1, top = 0; r <= n; ++r) {
    top += r;
    for (int s = top; s >= r; --s) count[s] += count[s - r];
  }
  return count;
}

// P(S <= w) and P(S > w) for the signed-rank sum S of n untied ranks; w may
// be a half-integer when the observed ranks were tied.
void signedRankTails(int n, double w, double& lower, double& upper) {
  const auto count = signedRankCounts(n);
  const int top = n * (n + 1) / 2;
  double below = 0.0, above = 0.0;
  for (int s = 0; s <= top; ++s) (s <= w ? below : above) += count[s];
  const double total = std::exp2(n);
  lower = below / total;
  upper = above / total;
}

// Nearest whole number, halves to even, kept as a double: the interval's
// limits outgrow the int range from about 10^5 differences on.
double roundHalfEven(double x) {
  const double r = std::round(x);
  return std::fabs(x - std::trunc(x)) == 0.5 ? 2.0 * std::round(0.5 * x) : r;
}

}  // namespace

void WilcoxonSign(const TVec& Data, double Median, THypothesisResult& hRes, double& Signif, double* ConfInt,
                  THypothesisType hType, double Alpha) {
  core::Guarded("WilcoxonSign : ", [&] {
    if (Data.Complex()) ERaise("WilcoxonSign: Data.Complex = true");
    if (!core::ValidAlpha(Alpha)) return core::SetUndecided(hRes, Signif, nullptr);  // the interval untouched
    // A NaN median leaves no difference to rank: undecidable, with no interval.
    if (IsNan(Median)) return core::SetUndecided(hRes, Signif, ConfInt);
    // The non-zero differences in their order (ties with the median and NaNs drop out).
    PooledVec D, absD, R;
    D->Size(Data.Length());
    int n = 0;
    const double* x = Data.data();
    double* d = D->data();
    for (int i = 0; i < Data.Length(); ++i) {
      const double di = x[i] - Median;
      if (di > 0.0 || di < 0.0) d[n++] = di;
    }
    D->SetLength(n);
    absD->Abs(*D);
    R->Size(0);
    double tieSum = 0.0;
    TiedRanks(*absD, *R, tieSum);
    double wPlus = 0.0, wMinus = 0.0;
    for (int i = 0; i < n; ++i) (D->data()[i] > 0.0 ? wPlus : wMinus) += R->data()[i];
    const double T = Min(wPlus, wMinus);

    const double nn = n;
    const double mu = nn * (nn + 1.0) / 4.0;
    if (n < kExactBelow) {
      double lower, upper;
      signedRankTails(n, hType == htTwoTailed ? T : wPlus, lower, upper);
      Signif = hType == htTwoTailed ? 2.0 * lower : core::TailSignificance(hType, lower, upper);
    } else {
      const double sigma = std::sqrt(nn * (nn + 1.0) * (2.0 * nn + 1.0) - tieSum) / std::sqrt(24.0);
      // T <= mu, so the two-sided z is never positive and its lower tail is the smaller one.
      const double z = ((hType == htTwoTailed ? T : wPlus) - mu) / sigma;
      Signif = core::TailSignificance(hType, NormalCDF(z, 0.0, 1.0), NormalCDFc(z, 0.0, 1.0));
    }
    if (Signif > 1.0) Signif = 1.0;

    // The range of the signed-rank sum that the untied normal approximation
    // accepts at level Alpha, whatever the alternative.
    const double sigma0 = std::sqrt(nn * (nn + 1.0) * (2.0 * nn + 1.0) / 24.0);
    core::WriteInterval(ConfInt, roundHalfEven(NormalCDFInv(0.5 * Alpha, 0.0, 1.0) * sigma0 + mu - 0.5),
                        roundHalfEven(NormalCDFInv(1.0 - 0.5 * Alpha, 0.0, 1.0) * sigma0 + mu + 0.5));
    hRes = core::Decide(Signif, Alpha);
  });
}

void WilcoxonSign(const TVec& Data1, const TVec& Data2, THypothesisResult& hRes, double& Signif,
                  double* ConfInt, THypothesisType hType, double Alpha) {
  if (Data1.Length() != Data2.Length()) ERaise("WilcoxonSign: (Data1.Length <> Data2.Length)");
  if (Data1.Complex() || Data2.Complex()) ERaise("WilcoxonSign: vectors must be real");
  if (!core::ValidAlpha(Alpha)) ERaise("WilcoxonSign :(alpha<=0) or (alpha>=1)");
  core::Guarded("WilcoxonSign : ", [&] {
    core::OnDifferences(Data1, Data2,
                        [&](const TVec& D) { WilcoxonSign(D, 0.0, hRes, Signif, ConfInt, hType, Alpha); });
  });
}

void SpearmanRankCorr(const TVec& X, const TVec& Y, double& Rs, THypothesisResult& hRes, double& Signif,
                      double* ConfInt, THypothesisType hType, double Alpha) {
  if (X.Complex() || Y.Complex()) ERaise("SpearmanRankCorr: (X.Complex) or (Y.Complex)");
  if (X.Length() != Y.Length()) ERaise("SpearmanRankCorr: X.Length <> Y.Length");
  PooledVec RX, RY;
  double tieSum = 0.0;
  RX->Size(0);  // TiedRanks leaves its output alone for empty data
  RY->Size(0);
  TiedRanks(X, *RX, tieSum);
  TiedRanks(Y, *RY, tieSum);
  const int n = X.Length();
  const double* rx = RX->data();
  const double* ry = RY->data();
  double S = 0.0;
  for (int i = 0; i < n; ++i) {
    const double diff = rx[i] - ry[i];
    S += diff * diff;
  }

  // Rs, 1 - Rs and 1 + Rs each from its own numerator over n^3 - n: the
  // numerators are whole (or quarter-whole) numbers, exact in double below
  // about 2e5 values, so none of the three loses digits to a subtraction
  // (Rs near 0, 1 - Rs^2 and Fisher's z near Rs = +-1).
  // The untied formula on tied ranks, as defined: a constant X against an untied Y gives
  // S = (n^3 - n) / 12 and Rs = 1/2, not the 0/0 of a correlation of the ranks.
  const double nn = n;
  const double den = (nn * nn - 1.0) * nn;
  Rs = (den - 6.0 * S) / den;
  const double oneMinusRs = 6.0 * S / den, onePlusRs = (2.0 * den - 6.0 * S) / den;
  const int df = n - 2;
  const double t = Rs * std::sqrt((nn - 2.0) / (oneMinusRs * onePlusRs));
  Signif = core::TailSignificance(hType, StudentCDF(t, df), StudentCDFc(t, df));

  // Fisher's z = atanh(Rs) with the one-sided normal quantile at Alpha, always two-sided.
  const double zr = 0.5 * std::log(onePlusRs / oneMinusRs);
  const double h = -NormalCDFInv(Alpha, 0.0, 1.0) / std::sqrt(nn - 3.0);
  core::WriteInterval(ConfInt, std::tanh(zr - h), std::tanh(zr + h));
  hRes = core::Decide(Signif, Alpha);
}

}  // namespace statkit::Statistics
