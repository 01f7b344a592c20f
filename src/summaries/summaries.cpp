// Mergeable summaries: central moments to the fourth and co-moments by the pairwise
// merge formulas (Chan, Golub and LeVeque 1979; Pebay 2008, SAND2008-6212), each part
// summarised by a corrected two-pass sum; least squares by QR of the stacked triangular
// factors of [D y] (TSQR, Demmel, Grigori, Hoemmen and Langou 2012, SIAM J. Sci. Comput. 34).

#include "statkit/Summaries.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <utility>

#include "core/frame.h"
#include "regression/fit_tables.h"

namespace statkit::Summaries {

namespace {

void requireReal(const TDenseKalpa& X) {
  if (X.Complex()) ERaise(msg::ComplexNotSupported);
}

// NaN sticks in the extremes, whatever the order of the values or of the merges.
double lowest(double a, double b) { return std::isnan(a) || std::isnan(b) ? NAN : std::min(a, b); }
double highest(double a, double b) { return std::isnan(a) || std::isnan(b) ? NAN : std::max(a, b); }

// Sums of powers of d - delta from the sums s1..s4 of powers of d over n values (binomial expansion).
void shiftSums(double n, double s1, double& s2, double& s3, double& s4) {
  const double delta = s1 / n;
  s4 = s4 - 4 * delta * s3 + 6 * delta * delta * s2 - 3 * n * std::pow(delta, 4);
  s3 = s3 - 3 * delta * s2 + 2 * n * delta * delta * delta;
  s2 = s2 - n * delta * delta;
}

// Summaries of the values x[i] in the groups g[i] (all in group 0 when g is null): the
// first pass gives the means, the second the sums of powers of the deviations from them,
// corrected for the rounding of the first mean (the corrected two-pass algorithm).
std::vector<TMoments> summarise(const double* x, int n, const std::vector<int>* g, std::size_t groups) {
  std::vector<TMoments> s(groups);
  std::vector<double> d1(groups, 0.0);
  auto group = [&](int i) { return g ? static_cast<std::size_t>((*g)[i]) : 0; };
  for (int i = 0; i < n; ++i) {
    TMoments& t = s[group(i)];
    t.N += 1, t.Mean += x[i], t.Min = lowest(t.Min, x[i]), t.Max = highest(t.Max, x[i]);
  }
  for (TMoments& t : s)
    if (t.N > 0) t.Mean /= t.N;
  for (int i = 0; i < n; ++i) {
    const std::size_t k = group(i);
    const double d = x[i] - s[k].Mean, d2 = d * d;
    d1[k] += d, s[k].M2 += d2, s[k].M3 += d2 * d, s[k].M4 += d2 * d2;
  }
  for (std::size_t k = 0; k < groups; ++k) {
    if (s[k].N == 0) continue;
    shiftSums(s[k].N, d1[k], s[k].M2, s[k].M3, s[k].M4);
    s[k].Mean += d1[k] / s[k].N;
  }
  return s;
}

// Rows of Add or Merge are stacked under the factor this many at a time, so a part's QR
// works on at most (q + rowBlock) x q numbers.
constexpr int rowBlock = 1024;

// A non-empty least-squares summary whose parts disagree (its fields are public) is refused
// before any of them is read through a raw pointer.
void requireConsistent(const TLeastSquares& S) {
  const long long q = S.Cols + (S.Constant ? 1LL : 0LL) + 1;
  if (S.Cols < 0 || q > INT_MAX) ERaise(msg::SizeMismatch);
  if (S.Y.N > 0 && (S.R.Cols() != q || S.R.Rows() > q || (S.Constant && S.Shift.Length() != q - 1)))
    ERaise(msg::SizeMismatch);
}

// R becomes the triangular factor of [R; rows], rows a k x q matrix.
void stackAndFactor(TMtx& R, const TMtx& rows) {
  const int q = rows.Cols(), r = R.Rows();
  if (r > 0 && R.Cols() != q) ERaise(msg::SizeMismatch);
  PooledMtx stacked, Q;
  stacked->Size(r + rows.Rows(), q);
  std::copy(R.data(), R.data() + R.Length(), stacked->data());
  std::copy(rows.data(), rows.data() + rows.Length(), stacked->data() + R.Length());
  stacked->LQR(*Q, R);
}

// With an intercept, [1 X-a y-b] = [1 X-c y-d] T, T the identity but for row 0, which holds
// c - a and d - b: so the factor for one shift becomes that for another by changing its row 0
// alone. Factoring the data about one of its rows keeps the intercept from inflating the
// condition of the columns (Longley's years, Pontius's loads).
void reshift(TMtx& R, const double* from, const double* to) {
  for (int j = 1; j < R.Cols(); ++j) R(0, j) += R(0, 0) * (from[j - 1] - to[j - 1]);
}

// The fit of the data shifted by c (columns of A, then y) turned into that of the data as
// given: the slopes stay, the intercept becomes b0 + c_y - sum b_j c_j, and V becomes
// L V L' with L the identity but for row 0, [1, -c_1, ..., -c_k].
void unshiftFit(const TVec& c, TVec& B, TMtx& V) {
  const int p = B.Length();
  std::vector<double> u(static_cast<std::size_t>(p));
  for (int j = 0; j < p; ++j) {
    u[j] = V(0, j);
    for (int m = 1; m < p; ++m) u[j] -= c[m - 1] * V(m, j);
  }
  double v00 = u[0];
  for (int m = 1; m < p; ++m) v00 -= c[m - 1] * u[m], B[0] -= c[m - 1] * B[m];
  B[0] += c[p - 1];
  for (int j = 1; j < p; ++j) V(0, j) = V(j, 0) = u[j];
  V(0, 0) = v00;
}

}  // namespace

// --- univariate moments -------------------------------------------------------

void Merge(TMoments& S, const TMoments& Other) {
  const TMoments& a = S;
  const TMoments& b = Other;
  if (b.N == 0) return;
  if (a.N == 0) {
    S = Other;
    return;
  }
  const double na = a.N, nb = b.N, n = na + nb, delta = b.Mean - a.Mean, d2 = delta * delta;
  TMoments m;
  m.N = n;
  m.Mean = a.Mean + delta * (nb / n);
  m.M2 = a.M2 + b.M2 + d2 * (na * nb / n);
  m.M3 = a.M3 + b.M3 + d2 * delta * (na * nb * (na - nb) / (n * n)) + 3 * delta * (na * b.M2 - nb * a.M2) / n;
  m.M4 = a.M4 + b.M4 + d2 * d2 * (na * nb * (na * na - na * nb + nb * nb) / (n * n * n)) +
         6 * d2 * (na * na * b.M2 + nb * nb * a.M2) / (n * n) + 4 * delta * (na * b.M3 - nb * a.M3) / n;
  m.Min = lowest(a.Min, b.Min);
  m.Max = highest(a.Max, b.Max);
  S = m;
}

void Add(TMoments& S, const TVec& X) {
  requireReal(X);
  if (X.Length() > 0) Merge(S, summarise(X.data(), X.Length(), nullptr, 1)[0]);
}

double Variance(const TMoments& S) { return S.N < 2 ? NAN : S.M2 / (S.N - 1); }
double StdDev(const TMoments& S) { return std::sqrt(Variance(S)); }
double Skewness(const TMoments& S) { return (S.M3 / S.N) / std::pow(S.M2 / S.N, 1.5); }
double Kurtosis(const TMoments& S) { return (S.M4 / S.N) / std::pow(S.M2 / S.N, 2) - 3.0; }

// --- co-moments -----------------------------------------------------------------

void Merge(TCoMoments& S, const TCoMoments& Other) {
  if (&S == &Other) return Merge(S, TCoMoments(Other));  // read every input before writing
  if (Other.N == 0) return;
  if (S.N == 0) {
    S = Other;
    return;
  }
  const int p = S.Mean.Length();
  if (Other.Mean.Length() != p) ERaise("CoMoments: column counts differ");
  const long long cells = static_cast<long long>(p) * p;
  if (S.C.Length() != cells || Other.C.Length() != cells) ERaise(msg::SizeMismatch);
  const double na = S.N, nb = Other.N, n = na + nb;
  std::vector<double> delta(static_cast<std::size_t>(p));
  for (int j = 0; j < p; ++j) delta[j] = Other.Mean[j] - S.Mean[j];
  double* c = S.C.data();
  const double* cb = Other.C.data();
  for (int j = 0; j < p; ++j)
    for (int k = 0; k < p; ++k, ++c, ++cb) *c += *cb + delta[j] * delta[k] * (na * nb / n);
  for (int j = 0; j < p; ++j) S.Mean[j] += delta[j] * (nb / n);
  S.N = n;
}

void Add(TCoMoments& S, const TMtx& X) {
  requireReal(X);
  const int n = X.Rows(), p = X.Cols();
  if (S.N > 0 && p != S.Mean.Length()) ERaise("CoMoments: X.Cols <> columns of the summary");
  if (n == 0) return;
  // The part's own summary by the corrected two-pass sums, then merged.
  TCoMoments part;
  part.N = n;
  part.Mean.Size(p);
  part.C.Size(p, p);
  double* mean = part.Mean.data();
  const double* x = X.data();
  std::fill(mean, mean + p, 0.0);
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < p; ++j) mean[j] += x[static_cast<std::ptrdiff_t>(i) * p + j];
  for (int j = 0; j < p; ++j) mean[j] /= n;
  std::vector<double> d(static_cast<std::size_t>(p)), sum(static_cast<std::size_t>(p), 0.0);
  double* c = part.C.data();
  std::fill(c, c + static_cast<std::ptrdiff_t>(p) * p, 0.0);
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < p; ++j) d[j] = x[static_cast<std::ptrdiff_t>(i) * p + j] - mean[j], sum[j] += d[j];
    for (int j = 0; j < p; ++j)
      for (int k = 0; k < p; ++k) c[static_cast<std::ptrdiff_t>(j) * p + k] += d[j] * d[k];
  }
  for (int j = 0; j < p; ++j)
    for (int k = 0; k < p; ++k) c[static_cast<std::ptrdiff_t>(j) * p + k] -= sum[j] * sum[k] / n;
  for (int j = 0; j < p; ++j) mean[j] += sum[j] / n;
  Merge(S, part);
}

void Covariance(const TCoMoments& S, TMtx& Dst, bool Biased) {
  const int p = S.Mean.Length();
  if (S.C.Length() != static_cast<long long>(p) * p) ERaise(msg::SizeMismatch);
  const double divisor = Biased ? S.N : S.N - 1;
  Dst.Size(p, p);
  for (int i = 0; i < S.C.Length(); ++i) Dst.data()[i] = S.C.data()[i] / divisor;
}

// --- histograms with fixed edges --------------------------------------------------

void InitHistogram(THistogram& H, const TVec& Edges) {
  requireReal(Edges);
  const double* e = Edges.data();
  bool ok = Edges.Length() >= 2;
  for (int i = 0; ok && i < Edges.Length(); ++i) ok = std::isfinite(e[i]) && (i == 0 || e[i - 1] < e[i]);
  if (!ok) ERaise("Histogram: at least two finite, strictly ascending edges required");
  TVec edges = Edges;  // Edges may be H.Edges
  H = THistogram{};
  H.Edges = std::move(edges);
  H.Counts.Size(Edges.Length() - 1);
  std::fill(H.Counts.begin(), H.Counts.end(), 0.0);
}

void Add(THistogram& H, const TVec& X) {
  requireReal(X);
  if (H.Edges.Length() < 2) ERaise("Histogram: edges not set");
  if (H.Counts.Length() != H.Edges.Length() - 1) ERaise(msg::SizeMismatch);
  const double *lo = H.Edges.data(), *hi = lo + H.Edges.Length();
  for (const double x : X) {
    if (std::isnan(x)) H.NaNs += 1;
    else if (x < *lo) H.Below += 1;
    else if (x > hi[-1]) H.Above += 1;
    else if (x == hi[-1]) H.Counts[H.Counts.Length() - 1] += 1;
    else H.Counts[static_cast<int>(std::upper_bound(lo, hi, x) - lo) - 1] += 1;
  }
}

void Merge(THistogram& H, const THistogram& Other) {
  const int k = H.Edges.Length();
  bool same = k == Other.Edges.Length() && k >= 2;
  for (int i = 0; same && i < k; ++i) same = H.Edges[i] == Other.Edges[i];
  if (!same) ERaise("Histogram: edges differ");
  if (H.Counts.Length() != k - 1 || Other.Counts.Length() != k - 1) ERaise(msg::SizeMismatch);
  H.Counts.Add(Other.Counts);
  H.Below += Other.Below, H.Above += Other.Above, H.NaNs += Other.NaNs;
}

// --- linear least squares ---------------------------------------------------------

void Add(TLeastSquares& S, const TVec& y, const TMtx& A) {
  requireReal(y);
  requireReal(A);
  if (y.Length() != A.Rows()) ERaise("LeastSquares: y.Length <> A.Rows");
  if (S.Y.N > 0 && A.Cols() != S.Cols) ERaise("LeastSquares: A.Cols <> columns of the summary");
  requireConsistent(S);
  if (A.Rows() == 0) return;
  // A row of k doubles exists, so k + 2 cannot overflow.
  const int n = A.Rows(), k = A.Cols(), c = S.Constant ? 1 : 0, q = k + c + 1;
  if (q < 2) ERaise("LeastSquares: no coefficient to fit");
  // The factor is updated on a copy, so that a failure leaves the summary as it was.
  TMtx R = S.R;
  TVec shift = S.Shift;
  if (c && S.Y.N == 0) {
    shift.Size(k + 1);
    std::copy(A.data(), A.data() + k, shift.data());
    shift[k] = y[0];
  }
  core::Guarded("LeastSquares : ", [&] {
    PooledMtx rows;
    for (int first = 0; first < n; first += rowBlock) {
      const int m = std::min(rowBlock, n - first);
      rows->Size(m, q);
      double* r = rows->data();
      for (int i = first; i < first + m; ++i, r += q) {
        if (c) r[0] = 1.0;
        std::copy(A.data() + static_cast<std::ptrdiff_t>(i) * k, A.data() + static_cast<std::ptrdiff_t>(i + 1) * k,
                  r + c);
        r[q - 1] = y[i];
        if (c)
          for (int j = 1; j < q; ++j) r[j] -= shift[j - 1];
      }
      stackAndFactor(R, *rows);
    }
  });
  S.Cols = k;
  S.R = std::move(R);
  S.Shift = std::move(shift);
  Add(S.Y, y);
}

void Merge(TLeastSquares& S, const TLeastSquares& Other) {
  if (Other.Y.N == 0) return;
  if (S.Y.N == 0) {
    S = Other;
    return;
  }
  if (S.Cols != Other.Cols || S.Constant != Other.Constant) ERaise("LeastSquares: designs differ");
  requireConsistent(S);
  requireConsistent(Other);
  TMtx R = S.R, other = Other.R;
  if (S.Constant) reshift(other, Other.Shift.data(), S.Shift.data());
  core::Guarded("LeastSquares : ", [&] { stackAndFactor(R, other); });
  S.R = std::move(R);
  Merge(S.Y, Other.Y);
}

void LeastSquaresFit(const TLeastSquares& S, TVec& B, TVec& BStdErr, TRegStats& RegStats, TMtx* V) {
  if (S.Y.N > INT_MAX) ERaise(msg::IntegerOverflow);
  requireConsistent(S);
  core::Guarded("LeastSquaresFit : ", [&] {
    const int p = S.Cols + (S.Constant ? 1 : 0), n = static_cast<int>(S.Y.N);
    if (S.R.Rows() < p) ERaise(msg::SingularMatrix);
    // [D y] = Q [R11 r; 0 e]: R11 B = r is the least-squares solution, e^2 the residual
    // sum of squares and (D'D)^-1 = R11^-1 R11^-T, as MulLinRegress forms them; with an
    // intercept, of the shifted data, which unshiftFit turns into the data as given.
    PooledMtx R11, Rinv, Vp;
    PooledVec r;
    R11->Size(p, p);
    r->Size(p);
    for (int i = 0; i < p; ++i) {
      for (int j = 0; j < p; ++j) (*R11)(i, j) = S.R(i, j);
      (*r)[i] = S.R(i, p);
    }
    const double e = S.R.Rows() > p ? S.R(p, p) : 0.0;
    R11->LQRSolve(*r, B, Rinv.get());
    Rinv->Inv(mtTriangular);
    TMtx& Vm = V ? *V : *Vp;
    Vm.Mul(*Rinv, *Rinv, opNone, opTranspose);
    if (S.Constant) unshiftFit(S.Shift, B, Vm);
    const double SST = S.Constant ? S.Y.M2 : S.Y.M2 + S.Y.N * S.Y.Mean * S.Y.Mean;
    Regress::detail::RegressionStats(n, p, SST, e * e, S.Constant, Vm, RegStats);
    BStdErr.Size(p);
    for (int j = 0; j < p; ++j) BStdErr[j] = std::sqrt(Vm(j, j));
  });
}

// --- one-way analysis of variance ---------------------------------------------------

void Add(TGroupMoments& S, const TVec& Data, const TVec& GroupIndex) {
  requireReal(Data);
  requireReal(GroupIndex);
  if (Data.Length() != GroupIndex.Length()) ERaise("GroupMoments: Data.Length <> GroupIndex.Length");
  // Group numbers are bounded before conversion, and so is the table they index.
  constexpr double maxGroups = 1 << 24;
  const int n = Data.Length();
  std::vector<int> group(static_cast<std::size_t>(n));
  std::size_t groups = 0;
  for (int i = 0; i < n; ++i) {
    const double g = GroupIndex[i];
    if (!(g >= 0.0 && g < maxGroups)) ERaise("GroupMoments: GroupIndex must be finite, >= 0 and < 2^24");
    group[i] = static_cast<int>(g);
    groups = std::max(groups, static_cast<std::size_t>(group[i]) + 1);
  }
  const std::vector<TMoments> part = summarise(Data.data(), n, &group, groups);
  if (S.Groups.size() < groups) S.Groups.resize(groups);
  for (std::size_t g = 0; g < groups; ++g) Merge(S.Groups[g], part[g]);
}

void Merge(TGroupMoments& S, const TGroupMoments& Other) {
  if (S.Groups.size() < Other.Groups.size()) S.Groups.resize(Other.Groups.size());
  for (std::size_t g = 0; g < Other.Groups.size(); ++g) Merge(S.Groups[g], Other.Groups[g]);
}

TANOVA1Table ANOVA1(const TGroupMoments& S, double& Signif, double Alpha) {
  TMoments all;
  for (const TMoments& g : S.Groups) {
    if (g.N == 0) ERaise("ANOVA1: empty group");
    Merge(all, g);
  }
  if (S.Groups.size() < 2) ERaise("ANOVA1: fewer than two groups");
  if (all.N > INT_MAX) ERaise(msg::IntegerOverflow);
  return core::Guarded("ANOVA1 : ", [&] {
    long double between = 0, within = 0;
    for (const TMoments& g : S.Groups) {
      const long double d = g.Mean - all.Mean;
      between += g.N * d * d, within += g.M2;
    }
    return Regress::detail::OneWayTable(static_cast<double>(between), static_cast<double>(within), all.M2,
                                        static_cast<int>(all.N), static_cast<int>(S.Groups.size()), Signif,
                                        Alpha);
  });
}

}  // namespace statkit::Summaries
