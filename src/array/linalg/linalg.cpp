// Dense linear algebra of the array layer: products, inverses, LU / Cholesky /
// triangular solves, Householder QR least squares, thin QR, SVD and polynomial
// roots as eigenvalues of the balanced companion matrix.
//
// Eigen 3.4 factorises over our row-major storage. Eigen reports no failure of
// LU or QR, so the checks are ours. LU is singular when a pivot is zero or the
// estimated reciprocal condition number of the equilibrated matrix is below
// epsilon (the rule of R's solve(), with units left out); QR when a diagonal
// element of R is below max(m, n) eps times the norm of its column (the rank
// tolerance of numpy.linalg.matrix_rank, after Golub & Van Loan). Residuals of
// refinement steps are accumulated in long double (Wilkinson, Rounding Errors
// in Algebraic Processes, 1963); least squares refines the augmented system
// (Bjorck, BIT 7, 1967).

// Eigen 3.4's triangular matrix-vector kernel trips a false -Wmaybe-uninitialized
// under g++ 12 (the buffer is written before it is read).
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#include <Eigen/Dense>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstring>
#include <limits>
#include <new>
#include <type_traits>
#include <vector>

#include "array/checks.h"
#include "statkit/array/Kalpa.h"

namespace statkit {

namespace {

using Eigen::Dynamic;
using Cplx = std::complex<double>;
template <class S>
using Mat = Eigen::Matrix<S, Dynamic, Dynamic, Eigen::RowMajor>;
using RMat = Mat<double>;
using CMat = Mat<Cplx>;
template <class S>
using ConstMap = Eigen::Map<const Mat<S>>;

constexpr double kEps = std::numeric_limits<double>::epsilon();

// --- checks ------------------------------------------------------------------

void requireOperation(TMtxOperation op) {
  if (op != opNone && op != opTranspose && op != opConjTranspose) ERaise(msg::InvalidParameter);
}
void requireKind(TMtxType kind) {
  if (kind > mtGeneral) ERaise(msg::InvalidParameter);
}
// A solve or a factorisation needs a non-empty square matrix.
void requireSquare(const TMtx& a) {
  if (a.Rows() != a.Cols() || a.Rows() == 0) ERaise(msg::SizeMismatch);
}
bool isSymmetricKind(TMtxType kind) { return kind <= mtHermitian; }
bool isPositiveDefiniteKind(TMtxType kind) { return kind == mtPosDefSymmetric || kind == mtPosDefHermitian; }

// --- moving data between our storage and Eigen --------------------------------

ConstMap<double> realView(const TMtx& m) { return ConstMap<double>(m.data(), m.Rows(), m.Cols()); }
ConstMap<Cplx> complexView(const TMtx& m) {
  // std::complex<double> is layout-compatible with two doubles ([complex.numbers]).
  return ConstMap<Cplx>(reinterpret_cast<const Cplx*>(m.data()), m.Rows(), m.Cols());
}

void store(TMtx& dst, const RMat& src) {
  dst.Size(static_cast<int>(src.rows()), static_cast<int>(src.cols()));
  if (src.size() > 0) std::memcpy(dst.data(), src.data(), sizeof(double) * src.size());
}
void store(TMtx& dst, const CMat& src) {
  dst.Size(static_cast<int>(src.rows()), static_cast<int>(src.cols()), true);
  if (src.size() > 0) std::memcpy(dst.data(), src.data(), sizeof(Cplx) * src.size());
}
template <class S>
void store(TVec& dst, const Mat<S>& column) {
  constexpr bool complex = !std::is_same_v<S, double>;
  dst.Size(static_cast<int>(column.size()), complex);
  if (column.size() > 0) std::memcpy(dst.data(), column.data(), sizeof(S) * column.size());
}
Eigen::VectorXd columnOf(const TVec& v) {
  return Eigen::Map<const Eigen::VectorXd>(v.data(), v.Length());
}

// The full matrix that a kind stands for: the symmetric and Hermitian kinds
// mirror the triangle named by TriangleForm (as BLAS symm/hemm read one
// triangle only); a triangular kind keeps its triangle, with a unit diagonal
// when TriangleUnit. Real data have no conjugate, so Hermitian is symmetric.
template <class S>
Mat<S> expandKind(const ConstMap<S>& a, TMtxType kind, TTriangleForm form, bool unit) {
  Mat<S> full = a;
  if (kind == mtGeneral) return full;
  if (a.rows() != a.cols()) ERaise(msg::SizeMismatch);
  const Eigen::Index n = a.rows();
  const bool hermitian = kind == mtHermitian || kind == mtPosDefHermitian;
  for (Eigen::Index i = 0; i < n; ++i) {
    for (Eigen::Index j = i + 1; j < n; ++j) {
      // (i, j) lies in the upper triangle, (j, i) in the lower.
      S& upper = full(i, j);
      S& lower = full(j, i);
      if (kind == mtTriangular) {
        (form == tfLower ? upper : lower) = S(0);
      } else if (form == tfLower) {
        upper = hermitian ? Eigen::numext::conj(lower) : lower;
      } else {
        lower = hermitian ? Eigen::numext::conj(upper) : upper;
      }
    }
    if (kind == mtTriangular && unit) full(i, i) = S(1);
    if (hermitian) full(i, i) = S(Eigen::numext::real(full(i, i)));
  }
  return full;
}

// A product operand: the caller's storage itself, or an owned copy where a
// kind must be expanded or real data promoted to complex.
template <class S>
class Operand {
public:
  Operand(const TMtx& m, TMtxType kind) {
    if constexpr (std::is_same_v<S, double>) {
      if (kind == mtGeneral) {
        ptr_ = m.data(), rows_ = m.Rows(), cols_ = m.Cols();
        return;
      }
      owned_ = expandKind<double>(realView(m), kind, m.TriangleForm(), m.TriangleUnit());
    } else if (m.Complex()) {
      if (kind == mtGeneral) {
        ptr_ = reinterpret_cast<const Cplx*>(m.data()), rows_ = m.Rows(), cols_ = m.Cols();
        return;
      }
      owned_ = expandKind<Cplx>(complexView(m), kind, m.TriangleForm(), m.TriangleUnit());
    } else {
      CMat promoted = realView(m).cast<Cplx>();
      owned_ = kind == mtGeneral ? std::move(promoted)
                                 : expandKind<Cplx>(ConstMap<Cplx>(promoted.data(), promoted.rows(), promoted.cols()),
                                                    kind, m.TriangleForm(), m.TriangleUnit());
    }
    ptr_ = owned_.data(), rows_ = owned_.rows(), cols_ = owned_.cols();
  }
  ConstMap<S> view() const { return ConstMap<S>(ptr_, rows_, cols_); }

private:
  Mat<S> owned_;
  const S* ptr_ = nullptr;
  Eigen::Index rows_ = 0, cols_ = 0;
};

// --- products ------------------------------------------------------------------

// op(m) as a plain matrix. Materialising the transpose costs one pass over the
// operand, against the product's pass per result column, and keeps a single
// matrix-product kernel per scalar type (each storage-order and conjugation
// variant is a separate instantiation of Eigen's GEMM).
template <class S>
Mat<S> applyOperation(const ConstMap<S>& m, TMtxOperation op) {
  if (op == opNone) return m;
  if (op == opTranspose) return m.transpose();
  return m.adjoint();
}

// op1(a) * op2(b), into a fresh matrix: every input is read before the caller
// writes an output, so an output may be an input.
template <class S>
Mat<S> product(const ConstMap<S>& a, const ConstMap<S>& b, TMtxOperation op1, TMtxOperation op2) {
  const Eigen::Index inner1 = op1 == opNone ? a.cols() : a.rows();
  const Eigen::Index inner2 = op2 == opNone ? b.rows() : b.cols();
  if (inner1 != inner2) ERaise(msg::SizeMismatch);
  Mat<S> lhs, rhs;
  if (op1 != opNone) lhs = applyOperation<S>(a, op1);
  if (op2 != opNone) rhs = applyOperation<S>(b, op2);
  const ConstMap<S> x = op1 == opNone ? a : ConstMap<S>(lhs.data(), lhs.rows(), lhs.cols());
  const ConstMap<S> y = op2 == opNone ? b : ConstMap<S>(rhs.data(), rhs.rows(), rhs.cols());
  Mat<S> out(x.rows(), y.cols());
  out.noalias() = x * y;
  return out;
}

template <class S>
Mat<S> productOf(const TMtx& a, const TMtx& b, TMtxType kind1, TMtxType kind2, TMtxOperation op1,
                 TMtxOperation op2) {
  Operand<S> x(a, kind1), y(b, kind2);
  return product<S>(x.view(), y.view(), op1, op2);
}

// --- square solvers ----------------------------------------------------------

// op(Self) as the kind reads it: symmetric kinds equal their transpose, and a
// transposed triangle lies on the other side of the diagonal.
struct SquareOperand {
  RMat a;
  TTriangleForm form;
};

SquareOperand squareOperand(const TMtx& self, TMtxType kind, TMtxOperation op) {
  detail::RequireReal(self);
  requireKind(kind);
  requireOperation(op);
  requireSquare(self);
  SquareOperand s{expandKind<double>(realView(self), kind, self.TriangleForm(), self.TriangleUnit()),
                  self.TriangleForm()};
  if (op != opNone && !isSymmetricKind(kind)) {
    s.a.transposeInPlace();
    s.form = s.form == tfLower ? tfUpper : tfLower;
  }
  return s;
}

bool finitePositiveDiagonal(const RMat& l) {
  for (Eigen::Index i = 0; i < l.rows(); ++i)
    if (!(l(i, i) > 0.0 && std::isfinite(l(i, i)))) return false;
  return true;
}

// A power of two near 1/x (near 1/sqrt(x) when \p root), 1 unless x > 0 is
// finite; clamped so that it stays finite. Scaling by it is exact.
double reciprocalPowerOfTwo(double x, bool root = false) {
  if (!(x > 0.0 && std::isfinite(x))) return 1.0;
  const int e = std::ilogb(x);
  return std::ldexp(1.0, -std::clamp(root ? e / 2 : e, -1022, 1023));
}

// One factorisation of a square matrix, solved against any right-hand side:
// Cholesky for the positive definite kinds, a triangular solve for the
// triangular kind, LU with partial pivoting otherwise.
//
// LU and Cholesky factor the equilibrated matrix diag(r) a diag(c), with
// powers of two as r and c (LAPACK's dgeequ and dpoequ; the scaling is exact).
// The reciprocal condition estimate then ignores the units of the variables:
// unscaled, the cross-product matrix of NIST's Pontius design (cond 2e26)
// would count as singular, equilibrated its condition is 446.
class SquareSolver {
public:
  SquareSolver(SquareOperand s, TMtxType kind) : a_(std::move(s.a)), form_(s.form) {
    const Eigen::Index n = a_.rows();
    rowScale_.setOnes(n), colScale_.setOnes(n);
    if (kind == mtTriangular) {
      // A zero on the diagonal is singular, as LAPACK's dtrtrs and R's backsolve decide.
      method_ = Method::triangular;
      for (Eigen::Index i = 0; i < n; ++i)
        if (a_(i, i) == 0.0) ERaise(msg::SingularMatrix);
      return;
    }
    if (isPositiveDefiniteKind(kind)) {
      method_ = Method::cholesky;
      for (Eigen::Index i = 0; i < n; ++i) rowScale_(i) = reciprocalPowerOfTwo(a_(i, i), true);
      colScale_ = rowScale_;
      llt_.compute(rowScale_.asDiagonal() * a_ * colScale_.asDiagonal());
      if (llt_.info() != Eigen::Success || !finitePositiveDiagonal(llt_.matrixLLT()))
        ERaise(msg::NotPositiveDefinite);
      if (llt_.rcond() < kEps) ERaise(msg::SingularMatrix);
      return;
    }
    method_ = Method::lu;
    for (Eigen::Index i = 0; i < n; ++i) rowScale_(i) = reciprocalPowerOfTwo(a_.row(i).cwiseAbs().maxCoeff());
    for (Eigen::Index j = 0; j < n; ++j)
      colScale_(j) = reciprocalPowerOfTwo((rowScale_.asDiagonal() * a_.col(j)).cwiseAbs().maxCoeff());
    lu_.compute(rowScale_.asDiagonal() * a_ * colScale_.asDiagonal());
    const RMat& u = lu_.matrixLU();
    for (Eigen::Index i = 0; i < n; ++i)
      if (u(i, i) == 0.0) ERaise(msg::SingularMatrix);
    if (lu_.rcond() < kEps) ERaise(msg::SingularMatrix);
  }

  RMat solve(const RMat& b) const {
    switch (method_) {
      case Method::triangular:
        if (form_ == tfLower) return a_.triangularView<Eigen::Lower>().solve(b);
        return a_.triangularView<Eigen::Upper>().solve(b);
      case Method::cholesky: return colScale_.asDiagonal() * llt_.solve(rowScale_.asDiagonal() * b);
      default: return colScale_.asDiagonal() * lu_.solve(rowScale_.asDiagonal() * b);
    }
  }

  // The solution of a * x = b, refined once when asked.
  RMat solution(const RMat& b, bool refine) const;

  const RMat& matrix() const { return a_; }

private:
  enum class Method { lu, cholesky, triangular };
  RMat a_;
  TTriangleForm form_;
  Method method_ = Method::lu;
  Eigen::VectorXd rowScale_, colScale_;
  Eigen::PartialPivLU<RMat> lu_;
  Eigen::LLT<RMat> llt_;
};

// b - a * x, each element accumulated in long double: the residual must carry
// more digits than the solution for a refinement step to gain any.
RMat extendedResidual(const RMat& a, const RMat& b, const RMat& x) {
  const Eigen::Index m = a.rows(), n = a.cols(), k = x.cols();
  RMat r(m, k);
  std::vector<long double> acc(static_cast<std::size_t>(k));
  for (Eigen::Index i = 0; i < m; ++i) {
    for (Eigen::Index j = 0; j < k; ++j) acc[j] = b(i, j);
    for (Eigen::Index p = 0; p < n; ++p) {
      const long double aip = a(i, p);
      const double* xp = x.data() + p * k;
      for (Eigen::Index j = 0; j < k; ++j) acc[j] -= aip * xp[j];
    }
    for (Eigen::Index j = 0; j < k; ++j) r(i, j) = static_cast<double>(acc[j]);
  }
  return r;
}

RMat SquareSolver::solution(const RMat& b, bool refine) const {
  RMat x = solve(b);
  if (refine) x += solve(extendedResidual(a_, b, x));
  return x;
}

// --- least squares -------------------------------------------------------------

// Householder QR of a (rows >= cols), or of a' (rows < cols) for the
// minimum-norm solution of an underdetermined system (the LQ route).
class LeastSquares {
public:
  explicit LeastSquares(RMat a) : a_(std::move(a)), tall_(a_.rows() >= a_.cols()) {
    if (a_.rows() == 0 || a_.cols() == 0) ERaise(msg::SizeMismatch);
    Eigen::MatrixXd factored = tall_ ? Eigen::MatrixXd(a_) : Eigen::MatrixXd(a_.transpose());
    // A column that is (numerically) a combination of the ones before it leaves
    // a diagonal element of R at rounding level against the column's norm.
    Eigen::VectorXd norms(factored.cols());
    for (Eigen::Index k = 0; k < factored.cols(); ++k) norms(k) = factored.col(k).stableNorm();
    qr_.compute(factored);
    const double tol = static_cast<double>(std::max(a_.rows(), a_.cols())) * kEps;
    const Eigen::MatrixXd& r = qr_.matrixQR();
    for (Eigen::Index k = 0; k < r.cols(); ++k)
      if (std::fabs(r(k, k)) <= tol * norms(k)) ERaise(msg::SingularMatrix);
  }

  Eigen::VectorXd solve(const Eigen::VectorXd& b) const {
    const Eigen::Index k = qr_.matrixQR().cols();
    if (tall_) {
      Eigen::VectorXd qtb = qr_.householderQ().adjoint() * b;
      return qr_.matrixQR().topLeftCorner(k, k).triangularView<Eigen::Upper>().solve(qtb.head(k));
    }
    // a = R' Q': the minimum-norm x is Q [R'^-1 b; 0].
    Eigen::VectorXd z = Eigen::VectorXd::Zero(qr_.matrixQR().rows());
    z.head(k) = qr_.matrixQR().topLeftCorner(k, k).triangularView<Eigen::Upper>().transpose().solve(b);
    return qr_.householderQ() * z;
  }

  // The solution refined with residuals accumulated in long double. A
  // consistent (minimum-norm) system takes the classical step x += solve(b - a x).
  // Least squares refines the augmented system [I a; a' 0] [r; x] = [b; 0]
  // instead (Bjorck, BIT 7, 1967): it corrects r and x together, so the error
  // of x follows cond(a) rather than cond(a)^2 times the residual, which is
  // what limits plain refinement on the noisy Wampler sets of NIST.
  Eigen::VectorXd refinedSolution(const Eigen::VectorXd& b) const {
    Eigen::VectorXd x = solve(b);
    if (!tall_) {
      RMat r = extendedResidual(a_, b, x);
      return x + solve(Eigen::Map<const Eigen::VectorXd>(r.data(), r.size()));
    }
    const Eigen::Index n = a_.cols();
    const Eigen::MatrixXd& qr = qr_.matrixQR();
    RMat r0 = extendedResidual(a_, b, x);
    Eigen::VectorXd r = Eigen::Map<const Eigen::VectorXd>(r0.data(), r0.size());
    for (int step = 0; step < kAugmentedSteps; ++step) {
      Eigen::VectorXd f, g;
      augmentedResidual(b, r, x, f, g);
      // With a = Q [R; 0] and Q' dr = [u; v]: R' u = g, v = (Q' f) below n, R dx = (Q' f) above n - u.
      Eigen::VectorXd qf = qr_.householderQ().adjoint() * f;
      Eigen::VectorXd u = qr.topLeftCorner(n, n).triangularView<Eigen::Upper>().transpose().solve(g);
      x += qr.topLeftCorner(n, n).triangularView<Eigen::Upper>().solve(qf.head(n) - u);
      qf.head(n) = u;
      r += qr_.householderQ() * qf;
    }
    return x;
  }

  // The upper triangular factor R (of a' for an underdetermined system).
  RMat triangularFactor() const {
    const Eigen::Index k = qr_.matrixQR().cols();
    return qr_.matrixQR().topLeftCorner(k, k).triangularView<Eigen::Upper>();
  }

  Eigen::Index rows() const { return a_.rows(); }

private:
  static constexpr int kAugmentedSteps = 2;

  // f = b - r - a x and g = -a' r, accumulated in long double.
  void augmentedResidual(const Eigen::VectorXd& b, const Eigen::VectorXd& r, const Eigen::VectorXd& x,
                         Eigen::VectorXd& f, Eigen::VectorXd& g) const {
    const Eigen::Index m = a_.rows(), n = a_.cols();
    std::vector<long double> acc(static_cast<std::size_t>(n), 0.0L);
    f.resize(m);
    for (Eigen::Index i = 0; i < m; ++i) {
      const double* row = a_.data() + i * n;
      long double fi = static_cast<long double>(b(i)) - r(i);
      for (Eigen::Index j = 0; j < n; ++j) {
        fi -= static_cast<long double>(row[j]) * x(j);
        acc[j] -= static_cast<long double>(row[j]) * r(i);
      }
      f(i) = static_cast<double>(fi);
    }
    g.resize(n);
    for (Eigen::Index j = 0; j < n; ++j) g(j) = static_cast<double>(acc[j]);
  }

  RMat a_;
  bool tall_;
  Eigen::HouseholderQR<Eigen::MatrixXd> qr_;
};

bool allFinite(const TKalpa& k) {
  const double* d = k.data();
  const std::size_t n = static_cast<std::size_t>(k.Length()) * (k.Complex() ? 2 : 1);
  for (std::size_t i = 0; i < n; ++i)
    if (!std::isfinite(d[i])) return false;
  return true;
}

// --- polynomial roots ----------------------------------------------------------

// Parlett & Reinsch (Numer. Math. 13, 1969) balancing by powers of two, as
// LAPACK's dgebal does before dgeev: scaling is exact, and it makes the
// companion matrix's eigenvalues backward stable for the polynomial
// (Edelman & Murakami, Math. Comp. 64, 1995).
void balance(Eigen::MatrixXd& a) {
  constexpr double radix = 2.0, radix2 = radix * radix;
  const Eigen::Index n = a.rows();
  // Each accepted step shrinks the norm by 5%: a bounded number of sweeps suffices.
  for (int sweep = 0; sweep < 1000; ++sweep) {
    bool converged = true;
    for (Eigen::Index i = 0; i < n; ++i) {
      double c = a.col(i).lpNorm<1>() - std::fabs(a(i, i));
      double r = a.row(i).lpNorm<1>() - std::fabs(a(i, i));
      if (!(c > 0.0 && r > 0.0)) continue;
      const double s = c + r;
      double f = 1.0;
      while (c < r / radix) f *= radix, c *= radix2;
      while (c > r * radix) f /= radix, c /= radix2;
      if ((c + r) / f < 0.95 * s) {
        converged = false;
        a.row(i) /= f;
        a.col(i) *= f;
      }
    }
    if (converged) return;
  }
}

}  // namespace

// Each exported operation below is a function-try-block: Eigen allocates its
// workspace with new, and running out of memory reaches the caller as the
// array layer's own message, as every other allocation of the layer does.

// --- products ------------------------------------------------------------------

void TMtx::Mul(const TMtx& Mtx1, const TMtx& Mtx2, TMtxOperation Op1, TMtxOperation Op2) {
  Mul(Mtx1, Mtx2, mtGeneral, mtGeneral, Op1, Op2);
}

void TMtx::Mul(const TMtx& Mtx1, const TMtx& Mtx2, TMtxType Type1, TMtxType Type2, TMtxOperation Op1,
               TMtxOperation Op2) {
  detail::RaisingOutOfMemory([&] {
    requireKind(Type1), requireKind(Type2);
    requireOperation(Op1), requireOperation(Op2);
    if (Mtx1.Complex() || Mtx2.Complex()) store(*this, productOf<Cplx>(Mtx1, Mtx2, Type1, Type2, Op1, Op2));
    else store(*this, productOf<double>(Mtx1, Mtx2, Type1, Type2, Op1, Op2));
  });
}

void TVec::TensorProd(const TMtx& Mtx, const TVec& Vec, TMtxType MtxType) {
  detail::RaisingOutOfMemory([&] {
    requireKind(MtxType);
    // The vector as a one-column matrix; a copy, so Self may be Vec.
    TMtx column(Vec.Length(), 1, Vec.Complex());
    if (Vec.Length() > 0)
      std::memcpy(column.data(), Vec.data(), sizeof(double) * Vec.Length() * (Vec.Complex() ? 2 : 1));
    if (Mtx.Complex() || Vec.Complex()) store(*this, productOf<Cplx>(Mtx, column, MtxType, mtGeneral, opNone, opNone));
    else store(*this, productOf<double>(Mtx, column, MtxType, mtGeneral, opNone, opNone));
  });
}

// --- inverse and solves ----------------------------------------------------------

void TMtx::Inv(TMtxType MtxType) {
  detail::RaisingOutOfMemory([&] {
    SquareSolver solver(squareOperand(*this, MtxType, opNone), MtxType);
    const Eigen::Index n = Rows();
    store(*this, solver.solve(RMat::Identity(n, n)));
  });
}

void TMtx::LUSolve(const TVec& B, TVec& X, TMtxType MtxType, TMtxOperation Op) const {
  detail::RaisingOutOfMemory([&] {
    detail::RequireReal(B);
    if (B.Length() != Rows()) ERaise(msg::SizeMismatch);
    SquareSolver solver(squareOperand(*this, MtxType, Op), MtxType);
    RMat b = columnOf(B);
    store(X, solver.solution(b, RefineSolution()));
  });
}

void TMtx::LUSolve(const TMtx& B, TMtx& X, TMtxType MtxType, TMtxOperation Op) const {
  detail::RaisingOutOfMemory([&] {
    detail::RequireReal(B);
    if (B.Rows() != Rows()) ERaise(msg::SizeMismatch);
    SquareSolver solver(squareOperand(*this, MtxType, Op), MtxType);
    RMat b = realView(B);
    store(X, solver.solution(b, RefineSolution()));
  });
}

void TMtx::LQRSolve(const TVec& B, TVec& X, TMtx* R, TMtxOperation Op) const {
  detail::RaisingOutOfMemory([&] {
    detail::RequireReal(*this, B);
    requireOperation(Op);
    RMat a = realView(*this);
    if (Op != opNone) a.transposeInPlace();
    LeastSquares ls(std::move(a));
    if (B.Length() != ls.rows()) ERaise(msg::SizeMismatch);
    Eigen::VectorXd x = ls.refinedSolution(columnOf(B));
    RMat triangle;
    if (R) triangle = ls.triangularFactor();
    store(X, RMat(x));
    if (R) store(*R, triangle), R->SetTriangleForm(tfUpper);
  });
}

// --- factorisations ------------------------------------------------------------

void TMtx::LQR(TMtx& Q, TMtx& R, bool) const {
  detail::RaisingOutOfMemory([&] {
    detail::RequireReal(*this);
    if (Rows() == 0 || Cols() == 0) ERaise(msg::SizeMismatch);
    const Eigen::Index m = Rows(), k = std::min(Rows(), Cols());
    Eigen::HouseholderQR<Eigen::MatrixXd> qr(Eigen::MatrixXd(realView(*this)));
    RMat q = qr.householderQ() * Eigen::MatrixXd::Identity(m, k);
    RMat r = qr.matrixQR().topRows(k).triangularView<Eigen::Upper>();
    store(Q, q);
    store(R, r);
    R.SetTriangleForm(tfUpper);
  });
}

namespace {

// Self = U diag(S) V^H for real (S = double) or complex (S = Cplx) storage; without U
// (U == nullptr) a tall matrix is first reduced to the R factor of a blocked Householder
// QR, which has its singular values and right vectors: the Jacobi sweeps then run on an
// n x n matrix, not on m x n rows.
template <class Scalar>
void svdOf(const ConstMap<Scalar>& a, bool finite, TMtx* U, TVec& S, TMtx& V, bool Thin) {
  using Dense = Eigen::Matrix<Scalar, Dynamic, Dynamic>;
  const Eigen::Index m = a.rows(), n = a.cols(), k = std::min(m, n);
  Mat<Scalar> u, v;
  Eigen::VectorXd s;
  if (!finite) {
    // Eigen refuses non-finite input without results; NaN is the IEEE answer.
    u.setConstant(m, Thin ? k : m, Scalar(NAN));
    v.setConstant(n, Thin ? k : n, Scalar(NAN));
    s.setConstant(k, NAN);
  } else if (U == nullptr) {
    Dense r = a;
    if (m > n) {
      Eigen::HouseholderQR<Eigen::Ref<Dense>> qr(r);
      r = Dense(r.topRows(n).template triangularView<Eigen::Upper>());
    }
    Eigen::JacobiSVD<Dense> svd(r, Eigen::ComputeThinV);
    v = svd.matrixV(), s = svd.singularValues();
  } else {
    // One-sided Jacobi: singular values to high relative accuracy, in descending order.
    const unsigned options = Thin ? (Eigen::ComputeThinU | Eigen::ComputeThinV)
                                  : (Eigen::ComputeFullU | Eigen::ComputeFullV);
    Eigen::JacobiSVD<Dense> svd(Dense(a), options);
    u = svd.matrixU(), v = svd.matrixV(), s = svd.singularValues();
  }
  if (U != nullptr) store(*U, u);
  store(V, v);
  store(S, RMat(s));
}

template <class Decompose>
void svdOfSelf(const TMtx& self, Decompose&& decompose) {
  detail::RaisingOutOfMemory([&] {
    if (self.Rows() == 0 || self.Cols() == 0) ERaise(msg::SizeMismatch);
    if (self.Complex()) decompose(complexView(self), allFinite(self));
    else decompose(realView(self), allFinite(self));
  });
}

}  // namespace

void TMtx::SVD(TMtx& U, TVec& S, TMtx& V, bool Thin) const {
  svdOfSelf(*this, [&](const auto& a, bool finite) { svdOf(a, finite, &U, S, V, Thin); });
}

void TMtx::SVD(TVec& S, TMtx& V) const {
  svdOfSelf(*this, [&](const auto& a, bool finite) { svdOf(a, finite, nullptr, S, V, true); });
}

void TMtx::SVD(TVec& S) const {
  detail::RaisingOutOfMemory([&] {
    detail::RequireReal(*this);
    if (Rows() == 0 || Cols() == 0) ERaise(msg::SizeMismatch);
    Eigen::VectorXd s;
    if (!allFinite(*this)) s.setConstant(std::min(Rows(), Cols()), NAN);
    else s = Eigen::JacobiSVD<Eigen::MatrixXd>(Eigen::MatrixXd(realView(*this))).singularValues();
    store(S, RMat(s));
  });
}

void TMtx::Cholesky() {
  detail::RaisingOutOfMemory([&] {
    detail::RequireReal(*this);
    requireSquare(*this);
    Eigen::LLT<RMat> llt(realView(*this));
    RMat l = llt.matrixL();
    if (llt.info() != Eigen::Success || !finitePositiveDiagonal(l)) ERaise(msg::NotPositiveDefinite);
    store(*this, l);
    SetTriangleForm(tfLower);
  });
}

// --- polynomial roots ----------------------------------------------------------

void PolyRoots(TVec& Roots, const TVec& Coeffs) {
  detail::RaisingOutOfMemory([&] {
    detail::RequireReal(Coeffs);
    const double* c = Coeffs.data();
    int first = 0, last = Coeffs.Length();
    while (first < last && c[first] == 0.0) ++first;  // leading zeros lower the degree
    int zeroRoots = 0;
    while (last > first && c[last - 1] == 0.0) --last, ++zeroRoots;  // x^k factors: exact zero roots
    const int degree = last > first ? last - first - 1 : 0;
    Eigen::VectorXcd roots = Eigen::VectorXcd::Zero(degree + zeroRoots);
    bool finite = true;
    for (int i = first; i < last; ++i) finite = finite && std::isfinite(c[i]);
    if (degree > 0) {
      // Companion matrix: first row -c[1..]/c[0], ones below the diagonal.
      Eigen::MatrixXd companion = Eigen::MatrixXd::Zero(degree, degree);
      for (int j = 0; j < degree; ++j) companion(0, j) = -c[first + 1 + j] / c[first];
      for (int i = 1; i < degree; ++i) companion(i, i - 1) = 1.0;
      Eigen::EigenSolver<Eigen::MatrixXd> eig;
      if (finite && companion.allFinite()) {
        balance(companion);
        eig.compute(companion, false);
      }
      if (finite && companion.allFinite() && eig.info() == Eigen::Success) roots.head(degree) = eig.eigenvalues();
      else roots.head(degree).setConstant(Cplx(NAN, NAN));
    }
    Roots.Size(static_cast<int>(roots.size()), true);
    if (roots.size() > 0) std::memcpy(Roots.data(), roots.data(), sizeof(Cplx) * roots.size());
  });
}

}  // namespace statkit
