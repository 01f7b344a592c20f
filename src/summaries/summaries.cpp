// Mergeable summaries: central moments to the fourth and co-moments by the pairwise
// merge formulas (Chan, Golub and LeVeque 1979; Pebay 2008, SAND2008-6212), each part
// summarised by a corrected two-pass sum; least squares by QR of the stacked triangular
// factors of [D y] (TSQR, Demmel, Grigori, Hoemmen and Langou 2012, SIAM J. Sci. Comput. 34),
// refined by a second pass of residual sums in double-double (Dekker 1971; Ogita, Rump and
// Oishi 2005, SIAM J. Sci. Comput. 26) solved with the merged factor (Bjorck 1987, BIT 27).

#include "statkit/Summaries.h"

#include <algorithm>
#include <climits>
#include <limits>
#include <cmath>
#include <utility>

#include "array/probability/double_double.h"
#include "core/frame.h"
#include "regression/fit_tables.h"

namespace statkit::Summaries {

namespace {

using detail::DD;
using detail::fastTwoSum;
using detail::twoProd;
using detail::twoSum;

void requireReal(const TDenseKalpa& X) {
  if (X.Complex()) ERaise(msg::ComplexNotSupported);
}

// NaN sticks in the extremes, whatever the order of the values or of the merges.
double lowest(double a, double b) { return std::isnan(a) || std::isnan(b) ? NAN : std::min(a, b); }
double highest(double a, double b) { return std::isnan(a) || std::isnan(b) ? NAN : std::max(a, b); }

// A double-double whose high part is not finite keeps no low part (it would be NaN).
DD finite(DD x) { return std::isfinite(x.hi) ? x : DD{x.hi, 0.0}; }

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
    const DD mean = finite(fastTwoSum(s[k].Mean, d1[k] / s[k].N));
    s[k].Mean = mean.hi, s[k].MeanLow = mean.lo;
  }
  return s;
}

// Rows of Add or Merge are stacked under the factor this many at a time, so a part's QR
// works on at most (q + rowBlock) x q numbers.
constexpr int rowBlock = 1024;

// A non-empty least-squares summary whose parts disagree (its fields are public) is refused
// before any of them is read through a raw pointer. RLow may be empty (all zero).
void requireConsistent(const TLeastSquares& S) {
  const long long q = S.Cols + (S.Constant ? 1LL : 0LL) + 1;
  if (S.Cols < 0 || q > INT_MAX) ERaise(msg::SizeMismatch);
  if (S.Y.N > 0 && (S.R.Cols() != q || S.R.Rows() > q || (S.Constant && S.Shift.Length() != q - 1)))
    ERaise(msg::SizeMismatch);
  if (S.RLow.Length() > 0 && (S.RLow.Rows() != S.R.Rows() || S.RLow.Cols() != S.R.Cols()))
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

// A factor in double-double, row by row, q columns.
struct DDFactor {
  int rows = 0, q = 0;
  std::vector<DD> a;
  DD& operator()(int i, int j) { return a[static_cast<std::size_t>(i) * q + j]; }
  DD operator()(int i, int j) const { return a[static_cast<std::size_t>(i) * q + j]; }
};

DDFactor loadFactor(const TMtx& R, const TMtx& RLow) {
  DDFactor f{R.Rows(), R.Cols(), std::vector<DD>(static_cast<std::size_t>(R.Length()))};
  for (int i = 0; i < R.Length(); ++i) f.a[i] = DD{R.data()[i], RLow.Length() > 0 ? RLow.data()[i] : 0.0};
  return f;
}

void storeFactor(const DDFactor& f, TMtx& R, TMtx& RLow) {
  R.Size(f.rows, f.q);
  RLow.Size(f.rows, f.q);
  for (std::size_t i = 0; i < f.a.size(); ++i) {
    const DD x = finite(fastTwoSum(f.a[i].hi, f.a[i].lo));
    R.data()[i] = x.hi, RLow.data()[i] = x.lo;
  }
}

DD sqrtDD(DD a) {
  const double s = std::sqrt(a.hi);
  if (!(std::isfinite(s) && s > 0.0)) return {s, 0.0};
  const DD ss = twoProd(s, s);
  return fastTwoSum(s, ((a.hi - ss.hi) - ss.lo + a.lo) / (2.0 * s));
}

// With an intercept, [1 X-a y-b] = [1 X-c y-d] T, T the identity but for row 0, which holds
// c - a and d - b: so the factor for one shift becomes that for another by changing its row 0
// alone (in double-double, where the difference of two shifts is exact). Factoring the data
// about one of its rows keeps the intercept from inflating the condition of the columns
// (Longley's years, Pontius's loads).
void reshift(DDFactor& R, const double* from, const double* to) {
  if (R.rows == 0) return;
  for (int j = 1; j < R.q; ++j) R(0, j) = finite(R(0, j) + R(0, 0) * twoSum(from[j - 1], -to[j - 1]));
}

// Householder QR in double-double of [T1; T2] (Golub and Van Loan, algorithm 5.2.1): the
// merged factor keeps about 32 digits, so that however many merges, in whatever order, the
// only rounding left in it is that of each part's own QR in double (merges in double cost
// up to two digits of Wampler's standard errors). A merge costs about 2 m q^2 double-double
// operations for m stacked rows, a small fraction of the QR of a part of 10^5 rows.
DDFactor mergeFactors(const DDFactor& T1, const DDFactor& T2) {
  const int q = T1.rows > 0 ? T1.q : T2.q, m = T1.rows + T2.rows;
  DDFactor f{m, q, T1.a};
  f.a.insert(f.a.end(), T2.a.begin(), T2.a.end());
  for (int k = 0; k < std::min(m, q); ++k) {
    DD norm2{0.0, 0.0};
    for (int i = k; i < m; ++i) norm2 = norm2 + f(i, k) * f(i, k);
    if (norm2.hi == 0.0) continue;
    DD alpha = sqrtDD(norm2);
    if (f(k, k).hi > 0.0) alpha = -alpha;
    // v = column k from the diagonal down, with v_k = f(k, k) - alpha; v'v = 2 (norm2 -
    // alpha f(k, k)), a sum of two non-negative terms.
    const DD vk = f(k, k) - alpha, vtv = (norm2 - alpha * f(k, k)) * 2.0;
    for (int j = k + 1; j < q; ++j) {
      DD dot = vk * f(k, j);
      for (int i = k + 1; i < m; ++i) dot = dot + f(i, k) * f(i, j);
      const DD t = (dot / vtv) * 2.0;
      f(k, j) = f(k, j) - t * vk;
      for (int i = k + 1; i < m; ++i) f(i, j) = f(i, j) - t * f(i, k);
    }
    f(k, k) = alpha;
  }
  f.rows = std::min(m, q);
  f.a.resize(static_cast<std::size_t>(f.rows) * q);
  for (int i = 1; i < f.rows; ++i)
    for (int j = 0; j < i; ++j) f(i, j) = DD{0.0, 0.0};
  return f;
}

// R^-1 b (Transpose false) or R^-T b for the leading p x p triangle of R, in double-double.
std::vector<DD> triangularSolve(const DDFactor& R, int p, std::vector<DD> b, bool Transpose) {
  for (int step = 0; step < p; ++step) {
    const int i = Transpose ? step : p - 1 - step;
    for (int j = 0; j < p; ++j)
      if (Transpose ? j < i : j > i) b[i] = b[i] - (Transpose ? R(j, i) : R(i, j)) * b[j];
    b[i] = b[i] / R(i, i);
  }
  return b;
}

// The covariance of the data shifted by c (columns of A, then y) turned into that of the data
// as given: V becomes L V L' with L the identity but for row 0, [1, -c_1, ..., -c_k].
void unshiftCovariance(const TVec& c, std::vector<std::vector<DD>>& V) {
  const int p = static_cast<int>(V.size());
  std::vector<DD> u(static_cast<std::size_t>(p));
  for (int j = 0; j < p; ++j) {
    u[j] = V[0][j];
    for (int m = 1; m < p; ++m) u[j] = u[j] - V[m][j] * c[m - 1];
  }
  DD v00 = u[0];
  for (int m = 1; m < p; ++m) v00 = v00 - u[m] * c[m - 1];
  for (int j = 1; j < p; ++j) V[0][j] = V[j][0] = u[j];
  V[0][0] = v00;
}

// A residual summary whose parts disagree is refused before any is read through a pointer.
void requireConsistent(const TLeastSquaresResiduals& S) {
  const int p = S.B.Length();
  if (S.G.Length() != p || S.GLow.Length() != p) ERaise(msg::SizeMismatch);
}

// Equal numbers, NaN matching NaN: the residual sums of one pass agree on them bit for bit.
bool same(double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); }

bool sameCoefficients(const TVec& a, const TVec& b) {
  if (a.Length() != b.Length()) return false;
  for (int j = 0; j < a.Length(); ++j)
    if (!same(a[j], b[j])) return false;
  return true;
}

// The fit of S, and with Rs its refinement: B, V (unscaled, (D'D)^-1) and the residual sum
// of squares, all formed in double-double from the factor. [D y] = Q [R11 r; 0 e] (D and y
// about the shift with an intercept): R11 B = r is the least-squares solution, e^2 the residual
// sum of squares and (D'D)^-1 = R11^-1 R11^-T, as MulLinRegress forms them. With residual sums
// g = D'(y - D B0) and s = |y - D B0|^2 of the data against B0, R11'R11 d = g is a step of
// refinement of the normal equations with the merged factor (the corrected seminormal
// equations): B = B0 + d, and the residual sum of squares at B is s - g'd. A step multiplies
// the error of B0 by about cond(D)^2 eps.
DD fitOf(const TLeastSquares& S, const TLeastSquaresResiduals* Rs, TVec& B, TMtx& V) {
  const int p = S.Cols + (S.Constant ? 1 : 0);
  if (S.R.Rows() < p) ERaise(msg::SingularMatrix);
  const DDFactor R = loadFactor(S.R, S.RLow);
  // A column that is (numerically) a combination of the ones before it leaves a diagonal
  // element at rounding level against the column's norm, as the direct QR decides.
  const double tol = std::max(S.Y.N, static_cast<double>(p)) * std::numeric_limits<double>::epsilon();
  for (int k = 0; k < p; ++k) {
    double norm2 = 0.0;
    for (int i = 0; i <= k; ++i) norm2 += R(i, k).hi * R(i, k).hi;
    if (std::fabs(R(k, k).hi) <= tol * std::sqrt(norm2)) ERaise(msg::SingularMatrix);
  }
  // inv[j] is column j of R11^-1; V(i, j) = sum over k of R11^-1(i, k) R11^-1(j, k).
  std::vector<std::vector<DD>> inv(static_cast<std::size_t>(p)), Vd(static_cast<std::size_t>(p));
  for (int j = 0; j < p; ++j) {
    std::vector<DD> e(static_cast<std::size_t>(p), DD{0.0, 0.0});
    e[j] = DD{1.0, 0.0};
    inv[j] = triangularSolve(R, p, e, false);
  }
  for (int i = 0; i < p; ++i) {
    Vd[i].assign(static_cast<std::size_t>(p), DD{0.0, 0.0});
    for (int j = 0; j < p; ++j)
      for (int k = std::max(i, j); k < p; ++k) Vd[i][j] = Vd[i][j] + inv[k][i] * inv[k][j];
  }
  if (S.Constant) unshiftCovariance(S.Shift, Vd);
  V.Size(p, p);
  for (int i = 0; i < p; ++i)
    for (int j = 0; j < p; ++j) V(i, j) = Vd[i][j].hi;
  std::vector<DD> b(static_cast<std::size_t>(p)), d;
  B.Size(p);
  if (!Rs) {
    const DD e = S.R.Rows() > p ? R(p, p) : DD{0.0, 0.0};
    for (int j = 0; j < p; ++j) b[j] = R(j, p);
    d = triangularSolve(R, p, b, false);
    // The intercept of the data as given: b0 + c_y - sum b_j c_j.
    if (S.Constant) {
      for (int m = 1; m < p; ++m) d[0] = d[0] - d[m] * S.Shift[m - 1];
      d[0] = d[0] + DD{S.Shift[p - 1], 0.0};
    }
    for (int j = 0; j < p; ++j) B[j] = d[j].hi;
    return e * e;
  }
  // About the shift the design is D L, L the identity but for row 0, [1, -c_1, ..., -c_k]:
  // so g becomes L'g (slope j loses c_j times the intercept's element) and the correction
  // found about the shift comes back as L d (the intercept loses sum c_j d_j).
  for (int j = 0; j < p; ++j) b[j] = DD{Rs->G[j], Rs->GLow[j]};
  if (S.Constant)
    for (int j = 1; j < p; ++j) b[j] = finite(b[j] - b[0] * S.Shift[j - 1]);
  d = triangularSolve(R, p, triangularSolve(R, p, b, true), false);
  DD sse = DD{Rs->SSE, Rs->SSELow};
  for (int j = 0; j < p; ++j) sse = finite(sse - b[j] * d[j]);
  if (S.Constant)
    for (int m = 1; m < p; ++m) d[0] = d[0] - d[m] * S.Shift[m - 1];
  for (int j = 0; j < p; ++j) B[j] = (DD{Rs->B[j], 0.0} + d[j]).hi;
  return sse.hi < 0.0 ? DD{0.0, 0.0} : sse;
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
  // The difference of the means in double-double: parts whose means differ by little
  // against their size (Mavro's values, 2.0013 to 2.0027) would otherwise lose the digits of
  // delta, and with them those of the between-parts term of M2. The merged mean moves from
  // the larger part's, by the smaller weight.
  const double na = a.N, nb = b.N, n = na + nb;
  const DD dd = finite(twoSum(b.Mean, -a.Mean) + DD{b.MeanLow - a.MeanLow, 0.0});
  const double delta = dd.hi, d2 = delta * delta;
  TMoments m;
  m.N = n;
  const DD mean =
      finite(na >= nb ? DD{a.Mean, a.MeanLow} + dd * (nb / n) : DD{b.Mean, b.MeanLow} - dd * (na / n));
  m.Mean = mean.hi, m.MeanLow = mean.lo;
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
  // The rows' own factor in double, about the summary's shift, then merged in double-double;
  // the summary changes only once everything succeeded.
  TMtx R, RLow;
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
        std::copy(A.data() + static_cast<std::ptrdiff_t>(i) * k,
                  A.data() + static_cast<std::ptrdiff_t>(i + 1) * k, r + c);
        r[q - 1] = y[i];
        if (c)
          for (int j = 1; j < q; ++j) r[j] -= shift[j - 1];
      }
      stackAndFactor(R, *rows);
    }
    const DDFactor own = loadFactor(R, RLow);
    storeFactor(S.Y.N > 0 ? mergeFactors(loadFactor(S.R, S.RLow), own) : own, R, RLow);
  });
  S.Cols = k;
  S.R = std::move(R);
  S.RLow = std::move(RLow);
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
  TMtx R, RLow;
  core::Guarded("LeastSquares : ", [&] {
    DDFactor other = loadFactor(Other.R, Other.RLow);
    if (S.Constant) reshift(other, Other.Shift.data(), S.Shift.data());
    storeFactor(mergeFactors(loadFactor(S.R, S.RLow), other), R, RLow);
  });
  S.R = std::move(R);
  S.RLow = std::move(RLow);
  Merge(S.Y, Other.Y);
}

namespace {

void leastSquaresFit(const TLeastSquares& S, const TLeastSquaresResiduals* Rs, TVec& B, TVec& BStdErr,
                     TRegStats& RegStats, TMtx* V) {
  if (S.Y.N > INT_MAX) ERaise(msg::IntegerOverflow);
  requireConsistent(S);
  if (Rs) {
    requireConsistent(*Rs);
    if (Rs->Constant != S.Constant || Rs->N != S.Y.N || Rs->B.Length() != S.Cols + (S.Constant ? 1 : 0))
      ERaise("LeastSquaresFit: residuals of other data");
  }
  core::Guarded("LeastSquaresFit : ", [&] {
    const int p = S.Cols + (S.Constant ? 1 : 0), n = static_cast<int>(S.Y.N);
    PooledMtx Vp;
    TMtx& Vm = V ? *V : *Vp;
    const DD SSE = fitOf(S, Rs, B, Vm);
    // With residual sums, the total sum of squares comes from their double-double sums of y
    // too, and SST - SSE is formed before rounding: where the fit explains little (Wampler5,
    // R^2 = 0.0022), SSR is a small difference of two large sums.
    DD SST{S.Constant ? S.Y.M2 : S.Y.M2 + S.Y.N * S.Y.Mean * S.Y.Mean, 0.0};
    if (Rs) {
      const DD sum{Rs->YSum, Rs->YSumLow};
      SST = DD{Rs->YSS, Rs->YSSLow} - (S.Constant ? (sum * sum) / Rs->N : DD{0.0, 0.0});
    }
    const DD SSR = finite(SST - SSE);
    Regress::detail::RegressionStats(n, p, SST.hi, SSE.hi, SSR.hi, S.Constant, Vm, RegStats);
    BStdErr.Size(p);
    for (int j = 0; j < p; ++j) BStdErr[j] = std::sqrt(Vm(j, j));
  });
}

}  // namespace

void LeastSquaresFit(const TLeastSquares& S, TVec& B, TVec& BStdErr, TRegStats& RegStats, TMtx* V) {
  leastSquaresFit(S, nullptr, B, BStdErr, RegStats, V);
}

void LeastSquaresFit(const TLeastSquares& S, const TLeastSquaresResiduals& Residuals, TVec& B, TVec& BStdErr,
                     TRegStats& RegStats, TMtx* V) {
  if (&B == &Residuals.B) {  // read every input before writing
    const TLeastSquaresResiduals copy = Residuals;
    return leastSquaresFit(S, &copy, B, BStdErr, RegStats, V);
  }
  leastSquaresFit(S, &Residuals, B, BStdErr, RegStats, V);
}

// --- residual sums of a least-squares fit -------------------------------------------

void InitResiduals(TLeastSquaresResiduals& S, const TLeastSquares& Fit, const TVec& B) {
  requireReal(B);
  if (B.Length() == 0) ERaise("LeastSquares: no coefficient to fit");
  TVec b = B;  // B may be S.B
  const bool constant = Fit.Constant;
  const double centre = constant ? Fit.Y.Mean : 0.0;
  S = TLeastSquaresResiduals{};
  S.Constant = constant;
  S.YCentre = centre;
  S.B = std::move(b);
  S.G.Size(S.B.Length());
  S.GLow.Size(S.B.Length());
  std::fill(S.G.begin(), S.G.end(), 0.0);
  std::fill(S.GLow.begin(), S.GLow.end(), 0.0);
}

// Per row, r = y - D B exactly to double-double rounding (products split by FMA, sums by
// TwoSum with the low parts gathered apart: Ogita, Rump and Oishi's Sum2/Dot2), then D'r and
// r'r summed the same way: about 30 flops per coefficient and row against the 2 p flops per
// coefficient of the QR of the first pass.
void Add(TLeastSquaresResiduals& S, const TVec& y, const TMtx& A) {
  requireReal(y);
  requireReal(A);
  if (y.Length() != A.Rows()) ERaise("LeastSquares: y.Length <> A.Rows");
  if (S.B.Length() == 0) ERaise("LeastSquares: coefficients not set");
  requireConsistent(S);
  const int c = S.Constant ? 1 : 0, k = A.Cols(), p = S.B.Length(), n = A.Rows();
  if (k + c != p) ERaise("LeastSquares: A.Cols <> columns of the summary");
  const double *b = S.B.data(), *x = A.data();
  std::vector<double> hi(S.G.begin(), S.G.end()), lo(S.GLow.begin(), S.GLow.end());
  double sHi = S.SSE, sLo = S.SSELow, ySumHi = S.YSum, ySumLo = S.YSumLow, yssHi = S.YSS, yssLo = S.YSSLow;
  for (int i = 0; i < n; ++i, x += k) {
    {  // y about the centre, for the total sum of squares
      const DD dy = twoSum(y[i], -S.YCentre), t = twoSum(ySumHi, dy.hi), sq = twoProd(dy.hi, dy.hi),
               u = twoSum(yssHi, sq.hi);
      ySumHi = t.hi, ySumLo += t.lo + dy.lo;
      yssHi = u.hi, yssLo += u.lo + sq.lo + 2 * dy.hi * dy.lo;
    }
    double rHi = y[i], rLo = 0.0;
    if (c) {
      const DD t = twoSum(rHi, -b[0]);
      rHi = t.hi, rLo += t.lo;
    }
    for (int j = 0; j < k; ++j) {
      const DD prod = twoProd(x[j], b[j + c]), t = twoSum(rHi, -prod.hi);
      rHi = t.hi, rLo += t.lo - prod.lo;
    }
    const DD r = fastTwoSum(rHi, rLo);
    if (!std::isfinite(r.hi)) {  // a NaN or an overflow poisons the sums, low parts included
      for (int j = 0; j < p; ++j) hi[j] += r.hi, lo[j] = NAN;
      sHi += r.hi * r.hi, sLo = NAN;
      continue;
    }
    if (c) {
      const DD t = twoSum(hi[0], r.hi);
      hi[0] = t.hi, lo[0] += t.lo + r.lo;
    }
    for (int j = 0; j < k; ++j) {
      const DD prod = twoProd(x[j], r.hi), t = twoSum(hi[j + c], prod.hi);
      hi[j + c] = t.hi, lo[j + c] += t.lo + prod.lo + x[j] * r.lo;
    }
    const DD sq = twoProd(r.hi, r.hi), t = twoSum(sHi, sq.hi);
    sHi = t.hi, sLo += t.lo + sq.lo + 2 * r.hi * r.lo;
  }
  for (int j = 0; j < p; ++j) {
    const DD g = finite(fastTwoSum(hi[j], lo[j]));
    S.G[j] = g.hi, S.GLow[j] = g.lo;
  }
  const DD s = finite(fastTwoSum(sHi, sLo)), ys = finite(fastTwoSum(ySumHi, ySumLo)),
           yss = finite(fastTwoSum(yssHi, yssLo));
  S.SSE = s.hi, S.SSELow = s.lo;
  S.YSum = ys.hi, S.YSumLow = ys.lo;
  S.YSS = yss.hi, S.YSSLow = yss.lo;
  S.N += n;
}

void Merge(TLeastSquaresResiduals& S, const TLeastSquaresResiduals& Other) {
  if (&S == &Other) return Merge(S, TLeastSquaresResiduals(Other));  // read every input before writing
  if (Other.N == 0 && Other.B.Length() == 0) return;
  if (S.N == 0 && S.B.Length() == 0) {
    S = Other;
    return;
  }
  requireConsistent(S);
  requireConsistent(Other);
  if (S.Constant != Other.Constant || !sameCoefficients(S.B, Other.B) || !same(S.YCentre, Other.YCentre))
    ERaise("LeastSquares: coefficients differ");
  for (int j = 0; j < S.B.Length(); ++j) {
    const DD g = finite(DD{S.G[j], S.GLow[j]} + DD{Other.G[j], Other.GLow[j]});
    S.G[j] = g.hi, S.GLow[j] = g.lo;
  }
  const DD s = finite(DD{S.SSE, S.SSELow} + DD{Other.SSE, Other.SSELow}),
           ys = finite(DD{S.YSum, S.YSumLow} + DD{Other.YSum, Other.YSumLow}),
           yss = finite(DD{S.YSS, S.YSSLow} + DD{Other.YSS, Other.YSSLow});
  S.SSE = s.hi, S.SSELow = s.lo;
  S.YSum = ys.hi, S.YSumLow = ys.lo;
  S.YSS = yss.hi, S.YSSLow = yss.lo;
  S.N += Other.N;
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
      const long double d = (static_cast<long double>(g.Mean) - all.Mean) + (g.MeanLow - all.MeanLow);
      between += g.N * d * d, within += g.M2;
    }
    return Regress::detail::OneWayTable(static_cast<double>(between), static_cast<double>(within), all.M2,
                                        static_cast<int>(all.N), static_cast<int>(S.Groups.size()), Signif,
                                        Alpha);
  });
}

}  // namespace statkit::Summaries
