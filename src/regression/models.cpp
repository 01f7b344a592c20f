// The predefined regression models: straight line, power curve, exponential
// curve and multiple linear model; their values, their derivatives by the
// coefficients, and direct fits that linearise the model (logarithms, with the
// weights y^2 that make the log-scale fit approximate the original one) and
// solve it by linear least squares.

#include <cmath>
#include <stdexcept>

#include "statkit/RegModels.h"
#include "statkit/Regress.h"

namespace statkit::RegModels {

namespace {

// B[i], refusing a coefficient array too short for the model.
double coef(std::span<const double> B, std::size_t i) {
  if (i >= B.size()) ERaise(msg::IndexOutOfRange);
  return B[i];
}

// Y[i] = f(X[i]) for every element (Y may be X).
template <class F>
void evalEach(const TVec& X, TVec& Y, F f) {
  const int n = X.Length();
  if (&Y != &X) Y.Size(n);
  for (int i = 0; i < n; ++i) Y[i] = f(X[i]);
}

void setGrad(TVec& Grad, double d0, double d1) {
  Grad.Size(2);
  Grad[0] = d0;
  Grad[1] = d1;
}

// Straight line through (u, v) = (transformed x, ln y) over the points that \p keep admits,
// weighted by y^2 (times the given weights); B[0] then returns to the original scale.
template <class Keep, class U>
void linearisedFit(TVec& B, const TVec& X, const TVec& Y, const TVec* Weights, Keep keep, U transform) {
  if (X.Length() != Y.Length()) throw std::runtime_error("X.Lenght <> Y.Length");
  if (Weights && Weights->Length() < X.Length()) throw std::runtime_error("Weights.Length < X.Length");
  const int n = X.Length();
  PooledVec u, v, w;
  u->Size(n), v->Size(n), w->Size(n);
  int m = 0;
  for (int i = 0; i < n; ++i) {
    const double x = X[i], y = Y[i];
    if (!keep(x, y)) continue;
    (*u)[m] = transform(x);
    (*v)[m] = std::log(y);
    (*w)[m] = y * y * (Weights ? (*Weights)[i] : 1.0);
    ++m;
  }
  if (m == 0) return;
  u->SetLength(m), v->SetLength(m), w->SetLength(m);
  Regress::LinRegress(*u, *v, B, w.get());
  B[0] = std::exp(B[0]);
}

}  // namespace

double LineEval(std::span<const double> B, double X) { return coef(B, 0) + coef(B, 1) * X; }

void LineEval(std::span<const double> B, const TVec& X, TVec& Y) {
  const double b0 = coef(B, 0), b1 = coef(B, 1);
  evalEach(X, Y, [&](double x) { return x * b1 + b0; });
}

void LineDeriv(TRegressFun, double X, double, std::span<const double>, TVec& Grad) { setGrad(Grad, 1.0, X); }

void LineFit(TVec& B, const TVec& X, const TVec& Y, const TVec* Weights) {
  Regress::LinRegress(X, Y, B, Weights);
}

double PowerEval(std::span<const double> B, double X) { return coef(B, 0) * std::pow(X, coef(B, 1)); }

void PowerEval(std::span<const double> B, const TVec& X, TVec& Y) {
  const double b0 = coef(B, 0), b1 = coef(B, 1);
  evalEach(X, Y, [&](double x) { return std::pow(x, b1) * b0; });
}

void PowerDeriv(TRegressFun, double X, double Y, std::span<const double> B, TVec& Grad) {
  setGrad(Grad, Y / coef(B, 0), Y * std::log(X));
}

void PowerFit(TVec& B, const TVec& X, const TVec& Y, const TVec* Weights) {
  linearisedFit(
      B, X, Y, Weights, [](double x, double y) { return x > 0.0 && y > 0.0; },
      [](double x) { return std::log(x); });
}

double ExpEval(std::span<const double> B, double X) { return coef(B, 0) * std::exp(coef(B, 1) * X); }

void ExpEval(std::span<const double> B, const TVec& X, TVec& Y) {
  const double b0 = coef(B, 0), b1 = coef(B, 1);
  evalEach(X, Y, [&](double x) { return std::exp(x * b1) * b0; });
}

void ExpDeriv(TRegressFun, double X, double Y, std::span<const double> B, TVec& Grad) {
  setGrad(Grad, Y / coef(B, 0), Y * X);
}

void ExpFit(TVec& B, const TVec& X, const TVec& Y, const TVec* Weights) {
  linearisedFit(
      B, X, Y, Weights, [](double, double y) { return y > 0.0; }, [](double x) { return x; });
}

double MulLinEval(std::span<const double> B, const TVec& X, bool Constant) {
  double s = Constant ? coef(B, 0) : coef(B, 0) * X[0];
  for (std::size_t j = 1; j < B.size(); ++j) s += B[j] * X[static_cast<int>(j)];
  return s;
}

void MulLinEval(std::span<const double> B, const TMtx& A, TVec& Y, bool Constant) {
  // B is copied first: it may be a view of Y's own storage.
  TVec b(std::vector<double>(B.begin(), B.end()));
  if (!Constant) return Y.TensorProd(A, b);
  TMtx D(A.Rows(), A.Cols() + 1);
  D.SetVal(1.0);
  D.Copy(A, 0, 0, 0, 1, A.Rows(), A.Cols());
  Y.TensorProd(D, b);
}

void MulLinFit(TVec& B, const TMtx& A, const TVec& Y, bool Constant, const TVec* Weights) {
  if (Weights) Regress::MulLinRegress(Y, A, B, *Weights, Constant);
  else Regress::MulLinRegress(Y, A, B, Constant);
}

}  // namespace statkit::RegModels
