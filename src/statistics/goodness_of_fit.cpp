// Goodness of fit: Pearson's chi-square test of observed against expected frequencies (given, or from a
// law fitted to the data and binned over its range), and the
// Kolmogorov test of a sample against the standard normal or a tabulated distribution function with
// the exact laws of its statistics: the one-sided law by Birnbaum and Tingey's (1951) sum, the
// two-sided by Durbin's (1973) matrix as Marsaglia, Tsang and Wang (2003) write it, or in its far tail
// as twice the one-sided law (Miller 1956; Simard and L'Ecuyer 2011 for where each method holds).

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include "core/frame.h"
#include "core/test_decision.h"
#include "statkit/Statistics.h"

namespace statkit::Statistics {

namespace {

// ln(k!) - ((k + 1/2) ln k - k + ln sqrt(2 pi)), the error of Stirling's formula, for whole k >= 1:
// tabulated to 15 (computed at 40 digits), from there its asymptotic series, to a few eps.
double stirlingError(double k) {
  static constexpr double kSmall[] = {
      8.106146679532725822e-2,  4.1340695955409294094e-2, 2.7677925684998339149e-2, 2.0790672103765093112e-2,
      1.6644691189821192163e-2, 1.3876128823070747999e-2, 1.1896709945891770095e-2, 1.0411265261972096497e-2,
      9.2554621827127329177e-3, 8.3305634333628712565e-3, 7.573675487951840795e-3,  6.9428401072095298657e-3,
      6.4089941880042070684e-3, 5.9513701127588477356e-3, 5.554733551962801371e-3};
  if (k <= 15) return kSmall[static_cast<int>(k) - 1];
  const double k2 = k * k;
  constexpr double s0 = 1.0 / 12, s1 = 1.0 / 360, s2 = 1.0 / 1260, s3 = 1.0 / 1680, s4 = 1.0 / 1188;
  if (k > 500) return (s0 - s1 / k2) / k;
  if (k > 80) return (s0 - (s1 - s2 / k2) / k2) / k;
  if (k > 35) return (s0 - (s1 - (s2 - s3 / k2) / k2) / k2) / k;
  return (s0 - (s1 - (s2 - (s3 - s4 / k2) / k2) / k2) / k2) / k;
}

// x ln(x / M) + M - x without the cancellation of its terms when x is near M (Loader 2000).
double deviance(double x, double M) {
  if (std::fabs(x - M) < 0.1 * (x + M)) {
    double v = (x - M) / (x + M), s = (x - M) * v, term = 2.0 * x * v;
    v *= v;  // below 1/121: each pass shrinks the term a hundredfold
    for (int j = 1; j < 100; ++j) {
      term *= v;
      const double next = s + term / (2 * j + 1);
      if (next == s) break;
      s = next;
    }
    return s;
  }
  return x * std::log(x / M) + M - x;
}

// P(D+_n >= d), Birnbaum and Tingey's sum  d sum_{j < n(1 - d)} C(n, j) (1 - d - j/n)^(n-j) (d + j/n)^(j-1).
// Its terms are positive: term j is (d / v) b(j; n, v) with v = d + j/n and b the binomial
// probability, which Loader's (2000) saddle-point form gives to a few eps for every n, far tails
// included. O(n) terms, less work than sorting the sample.
double smirnovUpper(int n, double d) {
  if (IsNan(d)) return NAN;
  if (d <= 0.0) return 1.0;
  if (d >= 1.0) return 0.0;
  const double N = n, nd = N * d;
  double sum = std::exp(N * std::log1p(-d)), carry = 0.0;  // j = 0: (1 - d)^n
  const double stirN = stirlingError(N);
  for (double j = 1; j < N; ++j) {
    const double up = N - j - nd;  // n (1 - v), the mean count of the other outcome
    if (!(up > 0.0)) break;
    const double rest = N - j;
    const double lc =
        stirN - stirlingError(j) - stirlingError(rest) - deviance(j, nd + j) - deviance(rest, up);
    const double b = std::exp(lc) * std::sqrt(N / (2.0 * std::numbers::pi * j * rest));
    // Compensated: up to n terms, whose plain sum would drift by n eps (1e-9 at n = 10^7).
    const double term = nd / (nd + j) * b, next = sum + term;
    carry += sum >= term ? (sum - next) + term : (term - next) + sum;  // Neumaier
    sum = next;
  }
  return std::min(sum + carry, 1.0);
}

// P(D_n < d) for 0.5 < n d and n d^2 < 4, by Durbin's matrix: with k = ceil(n d), h = k - n d and the
// m x m matrix H, m = 2k - 1, of Marsaglia, Tsang and Wang (2003), P = n!/n^n (H^n)_kk. H^n e_k is
// built by n products with H, which is Toeplitz (entries 1/r!) but for its first column and last row;
// each product costs m (L + 1), L the width of the band kept: entries below 1/(L+1)! are dropped, L
// chosen so that n/(L+1)!, a bound on the probability they carry, stays below 1e-18 (L is 21 to 24
// for n = 10^3 to 10^6). The whole costs about (L + 1) n m, m < 4 sqrt(n): 10^5 values within a second.
// Accuracy: 1 - P must hold 1e-15 absolute after n products. The entries are scaled by 18!, which
// makes 18!/r! whole numbers, exact in double: rounded ones would repeat their error at every product
// (3e-13 at n = 10^5); what remains is the rounding of the sums, which does not accumulate one way.
// The factor n!/(n^n 18!^n) is gathered apart in long double; powers of two keep the vector in range.
long double durbinCdf(int n, double d) {
  constexpr double kScale = 6402373705728000.0;            // 18!
  const long double nd = static_cast<long double>(n) * d;  // exact but for the last of 64 bits
  const int k = static_cast<int>(std::ceil(nd));
  const int m = 2 * k - 1;
  const long double h = k - nd, g = nd - (k - 1);  // g = 1 - h without its cancellation
  int L = 1;
  for (long double mass = n / 2.0L; L < m && mass > 1e-18L; mass /= L + 1) ++L;  // mass = n/(L+1)!
  // 18!/r!, reversed so that an inner row is a dot product with the vector; (1 - h^r) 18!/r!, the
  // first column and, read backwards, the last row; the corner only where the band reaches it.
  const std::size_t width = static_cast<std::size_t>(L) + 1;
  std::vector<double> reversed(width), edge(width + 1);
  long double fact = 1;  // r! up to 25 is exact in 64 bits
  for (std::size_t r = 0; r <= width; ++r) {
    if (r > 0) fact *= static_cast<long double>(r);
    if (r < width) reversed[width - 1 - r] = static_cast<double>(kScale / fact);
    edge[r] =
        r == 0
            ? 0.0
            : static_cast<double>(-std::expm1(static_cast<long double>(r) * std::log1p(-g)) * kScale / fact);
  }
  double corner = 0;
  if (m <= L) {
    const long double a = std::pow(h, static_cast<long double>(m)), twoH = 2 * h - 1;
    long double mFact = 1;
    for (int r = 2; r <= m; ++r) mFact *= r;
    corner = static_cast<double>((1 - 2 * a + (twoH > 0 ? std::pow(twoH, static_cast<long double>(m)) : 0)) *
                                 kScale / mFact);
  }
  std::vector<double> current(static_cast<std::size_t>(m), 0.0), next(current.size());
  current[static_cast<std::size_t>(k - 1)] = 1;
  long exponent = 0;
  long double factor = 1;  // n!/(n^n 18!^n) so far, its binary exponent in exponent
  const double* rc = reversed.data();
  for (int step = 1; step <= n; ++step) {
    const double* w = current.data();
    double* out = next.data();
    // Inner rows L .. m - 2 take the whole band of entries 18!/r!: one pass per diagonal, along the
    // vector, which the compiler vectorises.
    const int inner = std::max(0, m - 1 - L);
    std::fill(out + L, out + L + inner, 0.0);
    for (int u = 0; u <= L && inner > 0; ++u) {
      const double cu = rc[u], *src = w + 1 + u;
      double* dst = out + L;
      for (int i = 0; i < inner; ++i) dst[i] += cu * src[i];
    }
    // The rows that reach the first column (s < L) and the last row.
    for (int s = 0; s < m; s = (s + 1 == L && inner > 0) ? m - 1 : s + 1) {
      double acc = 0;
      for (int t = std::max(0, s + 1 - L); t <= std::min(s + 1, m - 1); ++t) {
        const double coef = s == m - 1 ? (t == 0 ? corner : edge[static_cast<std::size_t>(m - t)])
                            : t == 0   ? edge[static_cast<std::size_t>(s) + 1]
                                       : rc[L - (s - t + 1)];
        acc += coef * w[t];
      }
      out[s] = acc;
    }
    const double biggest = *std::max_element(out, out + m);
    current.swap(next);
    if (biggest == 0) return 0;
    int e = 0;
    factor = std::frexp(factor * (static_cast<long double>(step) / n / kScale), &e);
    exponent += e;
    (void)std::frexp(biggest, &e);
    if (e < -256 || e > 256) {
      for (auto& v : current) v = std::ldexp(v, -e);
      exponent += e;
    }
  }
  const long double P = std::ldexp(current[static_cast<std::size_t>(k - 1)] * factor,
                                   static_cast<int>(std::max(exponent, -100000L)));
  return std::min<long double>(P, 1);
}

// P(D_n >= d), two-sided. At d >= 1/2 the statistic cannot pass both lines, so the tail is twice the
// one-sided one; from n d^2 = 4 on the chance of passing both is below 4e-11 of the whole (its
// Brownian-bridge limit e^(-6 n d^2), which the exact ratio approaches from below), and twice the
// one-sided tail keeps the relative accuracy that 1 - P would lose. Below, Durbin's matrix.
double kolmogorovUpper(int n, double d) {
  if (IsNan(d)) return NAN;
  const double nd = n * d;
  if (nd <= 0.5) return 1.0;  // D_n >= 1/(2n) always
  if (d >= 1.0) return 0.0;
  if (d >= 0.5 || nd * d >= 4.0) return std::min(2.0 * smirnovUpper(n, d), 1.0);
  return std::clamp(static_cast<double>(1 - durbinCdf(n, d)), 0.0, 1.0);
}

// The tabulated reference at x: linear between the points, held at the first ordinate below the
// first abscissa and at the last above the last; at a repeated abscissa the last of its points.
double tabulated(const double* xs, const double* ys, int m, double x) {
  if (IsNan(x)) return NAN;
  const int j = static_cast<int>(std::upper_bound(xs, xs + m, x) - xs);  // xs[j - 1] <= x < xs[j]
  if (j == 0) return ys[0];
  if (j == m) return ys[m - 1];
  const double a = xs[j - 1], b = xs[j];
  if (x == a) return ys[j - 1];
  if (IsInf(a)) return ys[j];  // x finite: the line from -INF is flat there
  if (IsInf(b)) return ys[j - 1];
  double t = (x - a) / (b - a);
  if (IsInf(b - a)) t = (0.5 * x - 0.5 * a) / (0.5 * b - 0.5 * a);
  return ys[j - 1] + t * (ys[j] - ys[j - 1]);
}

}  // namespace

void GOFChi2Test(const TVec& O, const TVec& E, int /*SampleSize*/, int DegFreedom, THypothesisResult& hRes,
                 double& Signif, THypothesisType hType, double Alpha) {
  if (O.Length() != E.Length()) ERaise("GOFChi2Test: O.Length <> E.Length");
  if (O.Complex() || E.Complex()) ERaise("GOFChi2Test: O.Complex or E.Complex");
  core::Guarded("GOFChi2Test : ", [&] {
    PooledVec terms;
    terms->Sub(O, E);
    terms->Sqr();
    terms->Divide(E);
    const double chi2 = O.Length() == 0 ? 0.0 : terms->Sum();
    Signif = core::TailSignificance(hType, ChiSquareCDF(chi2, DegFreedom), ChiSquareCDFc(chi2, DegFreedom));
    hRes = core::Decide(Signif, Alpha);
  });
}

namespace {

// A law of the test fitted to the data: its parameters and how many were fitted.
struct FittedLaw {
  TTestDistribution dist;
  double p1 = 0, p2 = 0;
  int fitted = 0;
};

FittedLaw fitLaw(const TVec& Data, TTestDistribution Dist) {
  constexpr int kMaxIter = 500;
  constexpr double kTolerance = 1e-8;
  FittedLaw law{Dist};
  switch (Dist) {
    case distBeta: BetaFit(Data, law.p1, law.p2, kMaxIter, kTolerance); break;
    case distExponent: ExponentFit(Data, law.p1); break;
    case distGamma: GammaFit(Data, law.p1, law.p2, kMaxIter, kTolerance); break;
    case distNormal: NormalFit(Data, law.p1, law.p2); break;
    case distRayleigh: RayleighFit(Data, law.p1); break;
    case distWeibull: WeibullFit(Data, law.p1, law.p2, kMaxIter, kTolerance); break;
    default: ERaise(msg::InvalidParameter);
  }
  law.fitted = Dist == distExponent || Dist == distRayleigh ? 1 : 2;
  return law;
}

// The fitted law's distribution function at \p x, into F.
void evaluateCdf(const FittedLaw& law, const TVec& x, TVec& F) {
  switch (law.dist) {
    case distBeta: return BetaCDF(x, law.p1, law.p2, F);
    case distExponent: return ExpCDF(x, law.p1, F);
    case distGamma: return GammaCDF(x, law.p1, law.p2, F);
    case distNormal: return NormalCDF(x, law.p1, law.p2, F);
    case distRayleigh: return RayleighCDF(x, law.p1, F);
    default: return WeibullCDF(x, law.p1, law.p2, F);
  }
}

}  // namespace

void GOFChi2Test(const TVec& Data, TTestDistribution Dist, int NumBins, THypothesisResult& hRes, double& Signif,
                 THypothesisType hType, double Alpha) {
  if (Data.Complex()) ERaise("GOFChi2Test: Data.Complex");
  const FittedLaw law = fitLaw(Data, Dist);
  PooledVec O, E, edges;
  Histogram(Data, NumBins, *O, *edges, false);
  evaluateCdf(law, *edges, *E);
  // Expected counts n (F(e_i+1) - F(e_i)): the probability outside the data's range goes to no bin.
  const int n = Data.Length();
  double* e = E->data();
  for (int i = 0; i < NumBins; ++i) e[i] = n * (e[i + 1] - e[i]);
  E->SetLength(NumBins);
  GOFChi2Test(*O, *E, n, NumBins - law.fitted - 1, hRes, Signif, hType, Alpha);
}

void GOFKolmogorov(const TVec& Data, THypothesisResult& hRes, double& Signif, const TVec* CDFx,
                   const TVec* CDFy, THypothesisType hType, double Alpha) {
  if (Data.Complex()) ERaise("GOFKolmogorov: Data.Complex");
  core::Guarded("GOFKolmogorov : ", [&] {
    const bool table = CDFx && CDFy;
    if (table && CDFx->Length() != CDFy->Length()) ERaise("GOFKolmogorov: CDFx.Length <> CDFy.Length");
    if (table && (CDFx->Complex() || CDFy->Complex())) ERaise(msg::ComplexNotSupported);
    const int n = Data.Length();
    if (n == 0 || (table && CDFx->Length() == 0)) ERaise(msg::EmptyVector);
    PooledVec F, xs, ys;
    F->Copy(Data);
    F->SortAscend();
    bool undefined = false;
    if (!table) {
      NormalCDF(*F, 0.0, 1.0, *F);
    } else {
      // The table ordered by its abscissae; its ordinates follow through the permutation.
      const int m = CDFx->Length();
      xs->Copy(*CDFx);
      xs->SortAscend(*ys);
      double* y = ys->data();
      const double* yIn = CDFy->data();
      for (int i = 0; i < m; ++i) y[i] = yIn[ys->IValue(i)];
      for (int i = 0; i < m; ++i) undefined = undefined || IsNan(xs->data()[i]) || IsNan(y[i]);
      double* f = F->data();
      for (int i = 0; i < n && !undefined; ++i) f[i] = tabulated(xs->data(), y, m, f[i]);
    }
    // D+ = max(i/n - F(x(i))), D- = max(F(x(i)) - (i-1)/n) over the sorted sample; NaN anywhere
    // (in the sample or the table) leaves them undefined.
    double dPlus = -INF, dMinus = -INF;
    const double* f = F->data();
    for (int i = 0; i < n && !undefined; ++i) {
      undefined = IsNan(f[i]);
      dPlus = std::max(dPlus, (i + 1.0) / n - f[i]);
      dMinus = std::max(dMinus, f[i] - static_cast<double>(i) / n);
    }
    if (undefined) dPlus = dMinus = NAN;
    switch (hType) {
      case htRightTailed:
        Signif = smirnovUpper(n, dPlus);
        break;
      case htLeftTailed:
        Signif = smirnovUpper(n, dMinus);
        break;
      default:
        Signif = kolmogorovUpper(n, std::max(dPlus, dMinus));
        break;
    }
    hRes = core::Decide(Signif, Alpha);
  });
}

}  // namespace statkit::Statistics
