// Logistic regression: the binomial model by iteratively reweighted least squares (McCullagh and Nelder
// 1989, section 4.4), each pass a QR least-squares solve of the row-scaled design; and the ordinal
// cumulative-logit (proportional odds) model of McCullagh (1980) by maximum likelihood with Marquardt.

#include <algorithm>
#include <cmath>
#include <span>
#include <vector>

#include "statkit/Regress.h"
#include "statkit/Statistics.h"

namespace statkit::Regress {

namespace {

// logistic(t) = 1 / (1 + e^-t), without overflow on either side.
double logistic(double t) {
  if (t >= 0) return 1 / (1 + std::exp(-t));
  const double e = std::exp(t);
  return e / (1 + e);
}

constexpr int kMaxPasses = 1000;

// Row i of the design (A, or the intercept column when A is nil).
struct Design {
  const TMtx* A;
  int rows, cols;
  double at(int i, int j) const { return A != nullptr ? A->data()[i * cols + j] : 1.0; }
};

// Standard errors sqrt(diag((A'WA)^-1)) from the triangular factor R of W^(1/2) A: (A'WA)^-1 = R^-1 R^-T,
// so each variance is the squared norm of a row of R^-1.
void standardErrorsFromR(TMtx& R, TVec& se) {
  R.Inv(mtTriangular);
  const int p = R.Cols();
  se.Size(p);
  for (int j = 0; j < p; ++j) {
    double v = 0;
    for (int k = j; k < p; ++k) v += R(j, k) * R(j, k);
    se[j] = std::sqrt(v);
  }
}

// --- ordinal model ----------------------------------------------------------------------------------------

// The context of the ordinal likelihood: observation i is in the category of rank rank[i] among the q + 1
// categories present; its probability is F(theta_r + x_i b) - F(theta_(r-1) + x_i b), x_i the row of the
// scaled, negated covariates and b the scaled coefficients; the top category has F(...) = 1 for its upper
// term, the bottom one 0 for its lower term.
struct OrdinalContext final : TObject {
  int N = 0, q = 0, p = 0;
  std::vector<int> rank;
  std::vector<double> xt;         // N x p, row by row: -A(i, j) / s_j
  std::vector<double> f1, f2, d;  // F'(t1), F'(t2) (0 where the term is absent) and the probability
  std::vector<double> g1, g2;     // F(t1), F(t2)
};

// The probability of the observed category, F(t1) - F(t2) = F(t1) F(-t2) (1 - e^(t2 - t1)): no cancellation
// where both terms are near 1.
double categoryProbability(bool hasUpper, bool hasLower, double t1, double t2) {
  if (hasUpper && hasLower) return logistic(t1) * logistic(-t2) * -std::expm1(t2 - t1);
  if (hasUpper) return logistic(t1);
  if (hasLower) return logistic(-t2);
  return 1.0;
}

double ordinalObjective(std::span<const double> P, std::span<const double>, std::span<TObject* const> o) {
  OrdinalContext& c = ObjectAs<OrdinalContext>(o[0]);
  const double* b = P.data() + c.q;
  double s = 0;
  for (int i = 0; i < c.N; ++i) {
    const double* x = c.xt.data() + static_cast<std::size_t>(i) * c.p;
    double eta = 0;
    for (int j = 0; j < c.p; ++j) eta += x[j] * b[j];
    const int r = c.rank[i];
    const bool upper = r<c.q, lower = r> 0;
    const double t1 = upper ? P[r] + eta : INF, t2 = lower ? P[r - 1] + eta : -INF;
    c.g1[i] = upper ? logistic(t1) : 1.0;
    c.g2[i] = lower ? logistic(t2) : 0.0;
    c.f1[i] = upper ? c.g1[i] * logistic(-t1) : 0.0;
    c.f2[i] = lower ? c.g2[i] * logistic(-t2) : 0.0;
    c.d[i] = categoryProbability(upper, lower, t1, t2);
    s += std::log(c.d[i]);
  }
  return -2 * s;
}

// Gradient and Hessian of the log-likelihood sum ln d_i (the objective is -2 times it), from the values of
// the latest objective evaluation. With u1 = t1, u2 = t2: d ln d / du1 = a, d ln d / du2 = -b, and the second
// derivatives a(1 - 2 F(t1)) - a^2, a b and -b(1 - 2 F(t2)) - b^2, where a = F'(t1)/d, b = F'(t2)/d.
void ordinalGradHess(TOptObjective, std::span<const double>, std::span<const double>,
                     std::span<TObject* const> o, TVec& G, TMtx& H) {
  OrdinalContext& c = ObjectAs<OrdinalContext>(o[0]);
  const int q = c.q, p = c.p, m = q + p;
  G.Size(m);
  H.Size(m, m);
  double *g = G.data(), *h = H.data();
  std::fill(g, g + m, 0.0);
  std::fill(h, h + static_cast<std::size_t>(m) * m, 0.0);
  for (int i = 0; i < c.N; ++i) {
    const double* x = c.xt.data() + static_cast<std::size_t>(i) * p;
    const int r = c.rank[i];
    const double a = c.f1[i] / c.d[i], b = c.f2[i] / c.d[i];
    const double c11 = a * (1 - 2 * c.g1[i]) - a * a, c12 = a * b, c22 = -b * (1 - 2 * c.g2[i]) - b * b;
    const double cbb = c11 + 2 * c12 + c22;
    if (r < q) {
      g[r] += a;
      h[r * m + r] += c11;
      for (int j = 0; j < p; ++j) h[r * m + q + j] += (c11 + c12) * x[j];
    }
    if (r > 0) {
      g[r - 1] -= b;
      h[(r - 1) * m + r - 1] += c22;
      for (int j = 0; j < p; ++j) h[(r - 1) * m + q + j] += (c12 + c22) * x[j];
    }
    if (r > 0 && r < q) h[(r - 1) * m + r] += c12;  // the lower triangle is filled from the upper below
    for (int j = 0; j < p; ++j) {
      g[q + j] += (a - b) * x[j];
      for (int k = j; k < p; ++k) h[(q + j) * m + q + k] += cbb * x[j] * x[k];
    }
  }
  for (int j = 0; j < m; ++j)
    for (int k = 0; k < j; ++k) h[j * m + k] = h[k * m + j];
}

}  // namespace

void LogisticRegress(const TVec& y, const TVec& n, TVec& B, const TMtx* A, double Offset, TVec* YCalc,
                     TVec* BStdErr, double Tol) {
  if (y.Complex() || n.Complex()) ERaise("LogisticRegress: (y.Complex) or (n.Complex)");
  if (A != nullptr && A->Rows() != y.Length()) ERaise("LogisticRegress: A.Rows <> y.Length");
  if (n.Length() != y.Length()) ERaise("LogisticRegress: n.Length <> y.Length");
  const int N = y.Length();
  const double *ys = y.data(), *ns = n.data();
  for (int i = 0; i < N; ++i)
    if (!(ys[i] >= 0 && ys[i] <= ns[i] && ns[i] > 0 && ns[i] < INF))
      ERaise("LogisticRegress: 0 <= y <= n and n > 0 required");
  if (A != nullptr && A->Complex()) ERaise(msg::ComplexNotSupported);
  const Design X{A, N, A != nullptr ? A->Cols() : 1};
  const int p = X.cols;

  // eta excludes the offset throughout; it starts at the empirical logits, finite by the 0.5 corrections
  std::vector<double> eta(N), mu(N), w(N);
  for (int i = 0; i < N; ++i) eta[i] = std::log((ys[i] + 0.5) / (ns[i] - ys[i] + 0.5)) - Offset;
  PooledMtx WA, R;
  PooledVec wz, coef;
  WA->Size(N, p);
  wz->Size(N);
  double dNew = 1000000, dOld = 1000001;
  int passes = 0;
  while (std::fabs(dOld - dNew) > Tol && passes < kMaxPasses) {
    ++passes;
    dOld = dNew;
    double dev = 0;
    for (int i = 0; i < N; ++i) {
      const double t = eta[i] + Offset, yi = ys[i], ni = ns[i];
      mu[i] = ni * logistic(t);
      const double rest = ni * logistic(-t);  // n - mu, computed directly
      const double ya = yi == 0 ? 0.5 : yi, yb = yi == ni ? yi - 0.5 : yi;
      dev += yi * std::log(ya / mu[i]) + (ni - yi) * std::log((ni - yb) / rest);
      w[i] = mu[i] * rest / ni;
      // the working response scaled by sqrt(w): sqrt(w) eta + (y - mu) / sqrt(w); a weight of 0 drops the row
      const double sw = std::sqrt(w[i]);
      wz->data()[i] = sw > 0 ? sw * eta[i] + (yi - mu[i]) / sw : 0.0;
      for (int j = 0; j < p; ++j) WA->data()[i * p + j] = sw * X.at(i, j);
    }
    dNew = 2 * dev;
    // (A'WA) B = A'W z solved as the least-squares problem W^(1/2) A B = W^(1/2) z (QR, no normal equations)
    WA->LQRSolve(*wz, *coef, R.get());
    for (int i = 0; i < N; ++i) {
      double e = 0;
      for (int j = 0; j < p; ++j) e += X.at(i, j) * coef->data()[j];
      eta[i] = e;
    }
  }
  if (passes == 0) return;
  B.Copy(*coef);
  if (YCalc != nullptr) YCalc->Copy(TVec(mu));
  if (BStdErr != nullptr) standardErrorsFromR(*R, *BStdErr);
}

int LogisticRegress(const TVec& y, const TMtx& A, TVec& B, TVec& Theta, TVec& BStdErr, double& FMin,
                    TOptStopReason& StopReason, int MaxIter, double Tol, bool InitEstimates) {
  if (A.Rows() != y.Length()) ERaise("LogisticRegress: A.Rows <> y.Length");
  if (y.Complex() || A.Complex()) ERaise(msg::ComplexNotSupported);
  const int N = y.Length(), p = A.Cols();
  if (N == 0) ERaise(msg::EmptyVector);
  const double* ys = y.data();
  for (int i = 0; i < N; ++i)
    if (!(std::fabs(ys[i]) < INF && ys[i] == std::floor(ys[i])))
      ERaise("LogisticRegress: y must hold whole numbers");
  PooledVec s;
  if (p > 0) {
    if (N < 2) ERaise("LogisticRegress: constant column in A");
    Statistics::StdCols(A, *s);
    for (int j = 0; j < p; ++j)
      if ((*s)[j] == 0) ERaise("LogisticRegress: constant column in A");
  }

  // The categories present, ascending; an absent code merges with its neighbour (one cut-point fewer).
  std::vector<double> codes(ys, ys + N);
  std::sort(codes.begin(), codes.end());
  codes.erase(std::unique(codes.begin(), codes.end()), codes.end());
  OrdinalContext c;
  c.N = N;
  c.q = static_cast<int>(codes.size()) - 1;
  c.p = p;
  if (!InitEstimates && Theta.Length() != c.q)
    ERaise("LogisticRegress: Theta.Length <> number of cut-points");
  if (!InitEstimates && B.Length() != p) ERaise(msg::SizeMismatch);
  c.rank.resize(N);
  for (int i = 0; i < N; ++i)
    c.rank[i] = static_cast<int>(std::lower_bound(codes.begin(), codes.end(), ys[i]) - codes.begin());
  c.xt.resize(static_cast<std::size_t>(N) * p);
  for (int i = 0; i < N; ++i)
    for (int j = 0; j < p; ++j) c.xt[static_cast<std::size_t>(i) * p + j] = -A.data()[i * p + j] / (*s)[j];
  for (auto* v : {&c.f1, &c.f2, &c.d, &c.g1, &c.g2}) v->resize(N);

  // Start values: the logits of the cumulative category proportions and B = 0, or the caller's (B scaled).
  if (InitEstimates) {
    std::vector<int> count(c.q + 1, 0);
    for (int i = 0; i < N; ++i) ++count[c.rank[i]];
    Theta.Size(c.q);
    double cum = 0;
    for (int j = 0; j < c.q; ++j) {
      cum += count[j];
      const double F = cum / N;
      Theta[j] = std::log(F / (1 - F));
    }
    B.Size(p);
    for (int j = 0; j < p; ++j) B[j] = 0;
  } else {
    for (int j = 0; j < p; ++j) B[j] *= (*s)[j];
  }
  std::vector<double> P(Theta.data(), Theta.data() + c.q);
  P.insert(P.end(), B.data(), B.data() + p);

  PooledMtx covar;
  TObject* objects[1] = {&c};
  const int result = Marquardt(ordinalObjective, ordinalGradHess, P, {}, objects, FMin, *covar, StopReason,
                               MaxIter, Tol, Tol, 0.1);

  for (int j = 0; j < c.q; ++j) Theta[j] = P[j];
  for (int j = 0; j < p; ++j) B[j] = P[c.q + j] / (*s)[j];
  // Marquardt returns the inverse of the log-likelihood's Hessian: the covariance is its negative
  const int m = c.q + p;
  BStdErr.Size(m);
  for (int j = 0; j < m; ++j) BStdErr[j] = std::sqrt(-(*covar)(j, j)) / (j < c.q ? 1.0 : (*s)[j - c.q]);
  return result;
}

}  // namespace statkit::Regress
