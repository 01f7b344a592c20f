// Linear least squares: the straight line from centred weighted sums, the
// multiple linear fit by Householder QR with the unscaled covariance formed as
// R^-1 R^-T from the triangular factor (never by inverting D'D, whose condition
// is the square of the design's), and the regression statistics of a fit
// (Draper and Smith, "Applied Regression Analysis", 3rd ed., chapters 1 and 5).

#include <cmath>

#include "core/frame.h"
#include "regression/fit_tables.h"
#include "statkit/Regress.h"

namespace statkit::Regress {

namespace {

// The design matrix: a column of ones before the columns of A when an intercept is fitted,
// each row i multiplied by r[i] when r is given.
void buildDesign(const TMtx& A, bool Constant, const double* r, TMtx& D) {
  const int n = A.Rows(), k = A.Cols(), p = k + (Constant ? 1 : 0);
  D.Size(n, p);
  const double* a = A.data();
  double* d = D.data();
  for (int i = 0; i < n; ++i) {
    const double s = r ? r[i] : 1.0;
    double* row = d + static_cast<std::ptrdiff_t>(i) * p;
    if (Constant) *row++ = s;
    for (int j = 0; j < k; ++j) row[j] = s * a[static_cast<std::ptrdiff_t>(i) * k + j];
  }
}

// Solves D B ~ y by QR; V (when given) becomes scale (D'D)^-1 = scale R^-1 R^-T.
void leastSquaresSolve(const TVec& y, const TMtx& D, TVec& B, TMtx* V, double scale) {
  if (!V) return D.LQRSolve(y, B);
  PooledMtx R;
  D.LQRSolve(y, B, R.get());
  R->Inv(mtTriangular);
  V->Mul(*R, *R, opNone, opTranspose);
  if (scale != 1.0) V->Mul(scale);
}

}  // namespace

void LinRegress(const TVec& X, const TVec& Y, TVec& B, const TVec* Weights, TVec* YCalc, TMtx* V) {
  if (X.Length() != Y.Length()) ERaise("LinRegress : X.Length <> Y.Length");
  if (X.Complex() || Y.Complex()) ERaise("LinRegress : X.Complex or Y.Complex or Weights.Complex");
  if (Weights && (Weights->Length() != X.Length() || Weights->Complex()))
    ERaise("LinRegress : (Weights.Length <> X.Length) or Weights.Complex)");
  core::Guarded("LinRegress : ", [&] {
    const int n = X.Length();
    const double *x = X.data(), *y = Y.data(), *w = Weights ? Weights->data() : nullptr;
    // Centred sums: the textbook S0 Sxx - Sx^2 cancels catastrophically when
    // the abscissae lie far from zero. The deviations' own sums (cx, cy)
    // correct the means for the rounding of the first pass.
    long double s0 = 0, sx = 0, sy = 0;
    for (int i = 0; i < n; ++i) {
      const long double wi = w ? w[i] : 1.0;
      s0 += wi, sx += wi * x[i], sy += wi * y[i];
    }
    const double xm0 = static_cast<double>(sx / s0), ym0 = static_cast<double>(sy / s0);
    long double cx = 0, cy = 0, sxx = 0, sxy = 0;
    for (int i = 0; i < n; ++i) {
      const long double wi = w ? w[i] : 1.0, dx = x[i] - xm0, dy = y[i] - ym0;
      cx += wi * dx, cy += wi * dy, sxx += wi * dx * dx, sxy += wi * dx * dy;
    }
    const double Sxx = static_cast<double>(sxx - cx * cx / s0), Sxy = static_cast<double>(sxy - cx * cy / s0);
    const double xm = static_cast<double>(xm0 + cx / s0), ym = static_cast<double>(ym0 + cy / s0);
    // S0 Sxx - Sx^2 = S0 * centred Sxx: zero exactly when every abscissa with weight is the same.
    if (Sxx == 0.0) ERaise(msg::SingularMatrix);
    const double slope = Sxy / Sxx, intercept = ym - slope * xm;
    if (YCalc) {
      YCalc->Size(n);
      double* f = YCalc->data();
      for (int i = 0; i < n; ++i) f[i] = x[i] * slope + intercept;
    }
    if (V) {
      const double c01 = -xm / Sxx;
      V->Size(2, 2);
      (*V)(0, 0) = static_cast<double>(1.0L / s0) + xm * xm / Sxx;
      (*V)(0, 1) = (*V)(1, 0) = c01;
      (*V)(1, 1) = 1.0 / Sxx;
    }
    B.Size(2);
    B[0] = intercept;
    B[1] = slope;
  });
}

void MulLinRegress(const TVec& y, const TMtx& A, TVec& B, bool Constant, TVec* YCalc, TMtx* V) {
  if (y.Complex() || A.Complex()) ERaise("MulLinRegress: y.Complex or A.Complex");
  if (y.Length() != A.Rows()) ERaise("MulLinRegress: y.Length <> A.Rows");
  core::Guarded("MulLinRegress : ", [&] {
    PooledMtx ones;
    if (Constant) buildDesign(A, true, nullptr, *ones);
    const TMtx& D = Constant ? *ones : A;
    leastSquaresSolve(y, D, B, V, 1.0);
    if (YCalc) YCalc->TensorProd(D, B);
  });
}

void MulLinRegress(const TVec& Y, const TMtx& A, TVec& B, const TVec& Weights, bool Constant, TVec* YCalc,
                   TMtx* V) {
  if (Y.Complex() || A.Complex()) ERaise("MulLinRegress: Y.Complex or A.Complex");
  if (Y.Length() != Weights.Length()) ERaise("MulLinRegress: Y.Length<>Weights.Length");
  core::Guarded("MulLinRegress : ", [&] {
    if (Weights.Complex()) ERaise(msg::ComplexNotSupported);
    if (A.Rows() != Y.Length()) ERaise(msg::SizeMismatch);
    // Rows scaled by sqrt(w / sum w): least squares on them minimises sum w (y - D B)^2.
    const double s = Weights.Sum();
    PooledVec r, scaledY;
    r->Size(Y.Length());
    scaledY->Size(Y.Length());
    for (int i = 0; i < Y.Length(); ++i) {
      (*r)[i] = std::sqrt(Weights[i] / s);
      (*scaledY)[i] = Y[i] * (*r)[i];
    }
    PooledMtx scaledD;
    buildDesign(A, Constant, r->data(), *scaledD);
    leastSquaresSolve(*scaledY, *scaledD, B, V, 1.0 / s);
    if (!YCalc) return;
    // The fitted values straight from the unweighted design, so that a zero weight
    // does not turn its fitted value into 0/0.
    if (!Constant) return YCalc->TensorProd(A, B);
    PooledMtx D;
    buildDesign(A, true, nullptr, *D);
    YCalc->TensorProd(*D, B);
  });
}

void RegressTest(const TVec& Y, const TVec& YCalc, TMtx& V, TRegStats& RegStats, bool Constant,
                 const TVec* Weights) {
  if (Y.Length() != YCalc.Length()) ERaise("RegressTest: Y.Length <> YCalc.Length");
  if (Weights && Weights->Length() != Y.Length()) ERaise("RegressTest: Weights.Length <> Y.Length");
  const int n = Y.Length(), p = V.Cols();
  double SST = 0.0, SSE = 0.0;
  if (n - p > 0) {
    const double *y = Y.data(), *f = YCalc.data(), *w = Weights ? Weights->data() : nullptr;
    // The mean refined by the deviations' sum, then centred sums in long double.
    double ym = 0.0;
    if (Constant) {
      long double sw = 0, swy = 0;
      for (int i = 0; i < n; ++i)
        sw += w ? w[i] : 1.0, swy += (w ? w[i] : 1.0) * static_cast<long double>(y[i]);
      ym = static_cast<double>(swy / sw);
      long double c = 0;
      for (int i = 0; i < n; ++i) c += (w ? w[i] : 1.0) * static_cast<long double>(y[i] - ym);
      ym = static_cast<double>(ym + c / sw);
    }
    long double sst = 0, sse = 0;
    for (int i = 0; i < n; ++i) {
      const long double wi = w ? w[i] : 1.0, d = y[i] - ym, e = static_cast<long double>(y[i]) - f[i];
      sst += wi * d * d, sse += wi * e * e;
    }
    SST = static_cast<double>(sst), SSE = static_cast<double>(sse);
  }
  detail::RegressionStats(n, p, SST, SSE, Constant, V, RegStats);
}

namespace detail {

void RegressionStats(int n, int p, double SST, double SSE, bool Constant, TMtx& V, TRegStats& s) {
  RegressionStats(n, p, SST, SSE, SST - SSE, Constant, V, s);
}

void RegressionStats(int n, int p, double SST, double SSE, double SSR, bool Constant, TMtx& V, TRegStats& s) {
  const int dfE = n - p;
  if (dfE <= 0) {
    s = {0.0, 1.0, 0.0, 0.0, 1.0};
  } else {
    s.ResidualVar = SSE / dfE;
    s.R2 = SSR / SST;
    s.AdjustedR2 = 1.0 - (1.0 - s.R2) * (n - 1.0) / dfE;
    if (s.ResidualVar > 0.0) {
      const int df1 = Constant ? p - 1 : p;
      s.F = SSR / df1 / s.ResidualVar;
      s.SignifProb = FCDFc(s.F, df1, dfE);
    } else {
      s.F = INF;
      s.SignifProb = 0.0;
    }
  }
  V.Mul(s.ResidualVar);
}

}  // namespace detail

void RegressTest(const TVec& Y, const TVec& YCalc, TMtx& V, TRegStats& RegStats, TVec& Residuals,
                 TVec& BStdErr, bool Constant, const TVec* Weights) {
  RegressTest(Y, YCalc, V, RegStats, Constant, Weights);
  Residuals.Sub(Y, YCalc);
  const int p = V.Cols();
  BStdErr.Size(p);
  for (int j = 0; j < p; ++j) BStdErr[j] = std::sqrt(V(j, j));
}

}  // namespace statkit::Regress
