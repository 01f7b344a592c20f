// Nonlinear least squares: the (weighted) sum of squared residuals of a host's model minimised by one of
// the array layer's optimisers, with Gauss-Newton derivatives for Levenberg-Marquardt (Bates and Watts
// 1988, chapter 2) and numeric model derivatives by Richardson-extrapolated central differences.

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>
#include <vector>

#include "core/frame.h"
#include "statkit/Regress.h"

namespace statkit::Regress {

namespace {

using Pars = std::span<const double>;
using Objects = std::span<TObject* const>;

// The model and its derivative travel to the callbacks as objects of the optimiser's context.
struct ModelHolder final : TObject {
  explicit ModelHolder(const TRegressFunction& f) : fun(f) {}
  const TRegressFunction& fun;
};
struct DeriveHolder final : TObject {
  explicit DeriveHolder(const TDeriveFunction& f) : fun(f) {}
  const TDeriveFunction& fun;
};

// Positions of the context objects.
enum : std::size_t {
  ctxX,
  ctxY,
  ctxWeights,
  ctxModel,
  ctxDerive,
  ctxModelValues,
  ctxResiduals,
  ctxDeriv,
  ctxCount
};

const double* weightsOf(Objects o) {
  return o[ctxWeights] == nullptr ? nullptr : ObjectAs<TVec>(o[ctxWeights]).data();
}

// S(P) = sum w_i (y_i - f(P, x_i))^2; the model values stay in the context for the derivative callbacks.
double nlinObjective(Pars P, Pars, Objects o) {
  const TVec& X = ObjectAs<TVec>(o[ctxX]);
  const TVec& Y = ObjectAs<TVec>(o[ctxY]);
  const TRegressFunction& f = ObjectAs<ModelHolder>(o[ctxModel]).fun;
  double* m = ObjectAs<TVec>(o[ctxModelValues]).data();
  const double *x = X.data(), *y = Y.data(), *w = weightsOf(o);
  double s = 0;
  for (int i = 0; i < X.Length(); ++i) {
    m[i] = f(P, x[i]);
    const double r = y[i] - m[i];
    s += w != nullptr ? w[i] * r * r : r * r;
  }
  return s;
}

// Walks the observations with the weighted residual w_i r_i and the model's derivative d_i at the
// parameters of the latest objective evaluation (the model is not evaluated again).
template <class Visit>
void eachDerivative(Pars P, Objects o, Visit visit) {
  const TVec& X = ObjectAs<TVec>(o[ctxX]);
  const TVec& Y = ObjectAs<TVec>(o[ctxY]);
  const TRegressFunction& f = ObjectAs<ModelHolder>(o[ctxModel]).fun;
  const TDeriveFunction& derive = ObjectAs<DeriveHolder>(o[ctxDerive]).fun;
  const double* m = ObjectAs<TVec>(o[ctxModelValues]).data();
  TVec& d = ObjectAs<TVec>(o[ctxDeriv]);
  const double *x = X.data(), *y = Y.data(), *w = weightsOf(o);
  for (int i = 0; i < X.Length(); ++i) {
    derive(f, x[i], m[i], P, d);
    const double wi = w != nullptr ? w[i] : 1.0;
    visit(wi, wi * (y[i] - m[i]), d.data());
  }
}

// Gradient of S for BFGS and the conjugate gradients: -2 sum w_i r_i df_i/dP.
void nlinGradient(TOptObjective, Pars P, Pars, Objects o, TVec& G) {
  const std::size_t p = P.size();
  G.Size(static_cast<int>(p));
  double* g = G.data();
  for (std::size_t j = 0; j < p; ++j) g[j] = 0;
  eachDerivative(P, o, [&](double, double wr, const double* d) {
    for (std::size_t j = 0; j < p; ++j) g[j] -= wr * d[j];
  });
  for (std::size_t j = 0; j < p; ++j) g[j] *= 2;
}

// Half the gradient of S and the Gauss-Newton matrix sum w_i d_i d_i' for Marquardt.
void nlinGradHess(TOptObjective, Pars P, Pars, Objects o, TVec& G, TMtx& H) {
  const int p = static_cast<int>(P.size());
  G.Size(p);
  H.Size(p, p);
  double *g = G.data(), *h = H.data();
  for (int j = 0; j < p; ++j) g[j] = 0;
  for (int j = 0; j < p * p; ++j) h[j] = 0;
  eachDerivative(P, o, [&](double w, double wr, const double* d) {
    for (int j = 0; j < p; ++j) {
      g[j] -= wr * d[j];
      const double wd = w * d[j];
      for (int k = 0; k <= j; ++k) h[j * p + k] += wd * d[k];
    }
  });
  for (int j = 0; j < p; ++j)
    for (int k = 0; k < j; ++k) h[k * p + j] = h[j * p + k];
}

// Richardson's two-level extrapolation of the central differences at h, 2h and 4h removes the h^2 and
// h^4 error terms: exact for a model that is a polynomial of degree up to 5 in the coefficient.
template <class Model>
void numericDerive(const Model& f, Pars B, TVec& Grad) {
  if (static_cast<std::size_t>(Grad.Length()) < B.size()) ERaise(msg::SizeMismatch);
  const double step = GradStepSize.load();
  // a copy of B to move one coordinate at a time (on the stack for the usual few coefficients)
  double small[16];
  std::vector<double> large;
  double* p = small;
  if (B.size() > 16) {
    large.resize(B.size());
    p = large.data();
  }
  std::copy(B.begin(), B.end(), p);
  const Pars P(p, B.size());
  double* grad = Grad.data();
  for (std::size_t i = 0; i < B.size(); ++i) {
    const double b = B[i];
    const double h = std::fabs(b) < std::numeric_limits<double>::epsilon() ? step : std::fabs(b) * step;
    double fv[6];
    const double offsets[6] = {-h, h, -2 * h, 2 * h, -4 * h, 4 * h};
    for (int k = 0; k < 6; ++k) {
      p[i] = b + offsets[k];
      fv[k] = f(P);
    }
    p[i] = b;
    const double d1 = (fv[1] - fv[0]) / (2 * h), d2 = (fv[3] - fv[2]) / (4 * h),
                 d3 = (fv[5] - fv[4]) / (8 * h);
    grad[i] = d1 + 0.4 * (d1 - d2) + ((d1 - d2) - (d2 - d3)) / 45;
  }
}

int runOptimiser(TOptMethod Method, std::span<double> P, Objects o, TOptStopReason& StopReason,
                 bool OptimizerFlag, int MaxIter, double Tol, double GradTol) {
  double fmin = 0;
  const Pars none;
  switch (Method) {
    case optSimplex:
      return Simplex(nlinObjective, P, none, o, fmin, StopReason, MaxIter, Tol);
    case optMarquardt: {
      PooledMtx covar;
      return Marquardt(nlinObjective, nlinGradHess, P, none, o, fmin, *covar, StopReason, MaxIter, Tol,
                       GradTol, 0.01);
    }
    case optBFGS:
    case optDFP: {
      PooledMtx invHess;
      return BFGS(nlinObjective, nlinGradient, P, none, o, fmin, *invHess, StopReason, Method == optDFP,
                  OptimizerFlag, MaxIter, Tol, GradTol);
    }
    case optConjGradFR:
    case optConjGradPR:
      return ConjGrad(nlinObjective, nlinGradient, P, none, o, fmin, StopReason, Method == optConjGradFR,
                      OptimizerFlag, MaxIter, Tol, GradTol);
  }
  return 0;
}

}  // namespace

void NumericDerive(const TRegressFunction& RegressFun, double X, double, std::span<const double> B,
                   TVec& Grad) {
  if (!RegressFun) ERaise(msg::InvalidParameter);
  numericDerive([&](Pars P) { return RegressFun(P, X); }, B, Grad);
}

void NumericDerive(TRegressFun RegressFun, double X, double, std::span<const double> B, TVec& Grad) {
  if (RegressFun == nullptr) ERaise(msg::InvalidParameter);
  numericDerive([&](Pars P) { return RegressFun(P, X); }, B, Grad);
}

int NLinRegress(const TVec& X, const TVec& Y, const TRegressFunction& RegressFun,
                const TDeriveFunction& DeriveProc, TVec& B, TOptMethod Method, TOptStopReason& StopReason,
                const TVec* Weights, TVec* YCalc, bool OptimizerFlag, int MaxIter, double Tol,
                double GradTol) {
  if (X.Length() != Y.Length()) ERaise("NLinRegress: X.Length <> Y.Length");
  if (Weights != nullptr && Weights->Length() != Y.Length())
    ERaise("NLinRegress: Weights.Length <> Y.Length");
  return core::Guarded("NLinRegress : ", [&] {
    if (!RegressFun) ERaise(msg::InvalidParameter);
    if (X.Complex() || Y.Complex() || B.Complex() || (Weights != nullptr && Weights->Complex()))
      ERaise(msg::ComplexNotSupported);
    PooledVec modelValues, residuals, deriv;
    modelValues->Size(Y.Length());
    for (int i = 0; i < Y.Length(); ++i) modelValues->data()[i] = NAN;  // until the first evaluation
    residuals->Size(Y.Length());
    deriv->Size(B.Length());
    const TDeriveFunction numeric = [](const TRegressFunction& f, double x, double y, Pars b, TVec& g) {
      NumericDerive(f, x, y, b, g);
    };
    ModelHolder model(RegressFun);
    const TDeriveFunction& chosen = DeriveProc ? DeriveProc : numeric;
    DeriveHolder derive(chosen);
    TObject* objects[ctxCount] = {const_cast<TVec*>(&X),
                                  const_cast<TVec*>(&Y),
                                  const_cast<TVec*>(Weights),
                                  &model,
                                  &derive,
                                  modelValues.get(),
                                  residuals.get(),
                                  deriv.get()};
    // the optimiser works on B's own storage, so the point it leaves is in B
    TDoubleArray pars;
    EnlistIt(B, pars);
    const int result = runOptimiser(Method, pars, objects, StopReason, OptimizerFlag, MaxIter, Tol, GradTol);
    DismissIt(pars);
    if (YCalc != nullptr) YCalc->Copy(*modelValues);
    return result;
  });
}

int NLinRegress(const TVec& X, const TVec& Y, TRegressFun RegressFun, TDeriveProc DeriveProc, TVec& B,
                TOptMethod Method, TOptStopReason& StopReason, const TVec* Weights, TVec* YCalc,
                bool OptimizerFlag, int MaxIter, double Tol, double GradTol) {
  TRegressFunction model;
  if (RegressFun != nullptr) model = RegressFun;
  TDeriveFunction derive;
  if (DeriveProc != nullptr)
    derive = [DeriveProc, RegressFun](const TRegressFunction&, double x, double y, Pars b, TVec& g) {
      DeriveProc(RegressFun, x, y, b, g);
    };
  return NLinRegress(X, Y, model, derive, B, Method, StopReason, Weights, YCalc, OptimizerFlag, MaxIter, Tol,
                     GradTol);
}

}  // namespace statkit::Regress
