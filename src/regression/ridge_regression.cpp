// Ridge regression (Hoerl and Kennard 1970) on standardised predictors: the penalised least-squares
// problem |y - Z B|^2 + k |B|^2 solved as the ordinary least-squares problem of the augmented system
// [Z; sqrt(k) I] B = [y; 0] by Householder QR, which never forms Z'Z.

#include <cmath>

#include "core/frame.h"
#include "statkit/Regress.h"
#include "statkit/Statistics.h"

namespace statkit::Regress {

void RidgeRegress(const TVec& y, const TMtx& A, double k, TVec& B) {
  if (y.Complex() || A.Complex()) ERaise("RidgeRegress: (y.Complex) or (A.Complex)");
  if (y.Length() != A.Rows()) ERaise("RidgeRegress: y.Length <> A.Rows");
  if (!(k >= 0)) ERaise("RidgeRegress: k < 0");
  core::Guarded("RidgeRegress : ", [&] {
    const int n = A.Rows(), p = A.Cols();
    if (p == 0) {
      B.Size(0);
      return;
    }
    PooledVec mean, sd, rhs, coef;
    PooledMtx Z;
    A.MeanCols(*mean);
    // a column without spread (or a single row) is only centred
    constexpr double kSpreadGuard = 1.4901161194E-8;
    if (n > 1) Statistics::StdCols(A, *sd);
    else sd->Size(p);
    for (int j = 0; j < p; ++j)
      if (!(std::fabs((*sd)[j]) >= kSpreadGuard)) (*sd)[j] = 1.0;
    if (k == INF) {  // the limit of the shrinkage: every coefficient is 0
      B.Size(p);
      for (int j = 0; j < p; ++j) B[j] = 0;
      return;
    }
    Z->Size(n + p, p);
    rhs->Size(n + p);
    double *z = Z->data(), *r = rhs->data();
    const double *a = A.data(), *m = mean->data(), *s = sd->data(), root = std::sqrt(k);
    for (int i = 0; i < n; ++i) {
      for (int j = 0; j < p; ++j) z[i * p + j] = (a[i * p + j] - m[j]) / s[j];
      r[i] = y.data()[i];
    }
    for (int i = 0; i < p; ++i) {
      for (int j = 0; j < p; ++j) z[(n + i) * p + j] = i == j ? root : 0.0;
      r[n + i] = 0;
    }
    Z->LQRSolve(*rhs, *coef);
    B.Copy(*coef);
  });
}

}  // namespace statkit::Regress
