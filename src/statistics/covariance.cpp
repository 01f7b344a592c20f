// Covariance and correlation matrices (real or complex, divisor n or n - 1),
// autocovariance and autocorrelation of a series, and partial autocorrelation
// by the array layer's Durbin-Levinson recursion.
// Sums are formed from centred data: the one-pass textbook formula cancels
// catastrophically on offset data such as NIST's NumAcc4.

#include <algorithm>
#include <cmath>
#include <complex>
#include <limits>
#include <vector>

#include "core/frame.h"
#include "statkit/Statistics.h"

namespace statkit::Statistics {

namespace {

double divisor(int n, bool Biased) { return Biased ? n : n - 1.0; }

double conjOf(double v) { return v; }
TCplx conjOf(TCplx v) { return std::conj(v); }

// C = D^H D for the centred rows D = X - 1 mean^T of a rows x cols row-major X (element
// type double or TCplx), by the corrected two-pass formula (Chan, Golub and LeVeque 1983):
// the sums of the deviations, zero but for the rounding of the mean, are taken back out.
// Rows go in blocks whose sums are added to the total, so the rounding error grows with
// the block length plus the block count instead of with the row count.
template <class T>
void centredCrossProducts(const T* x, int rows, int cols, const T* mean, T* C) {
  constexpr int kBlockRows = 256;
  const std::size_t p = static_cast<std::size_t>(cols);
  std::vector<T> total(p * p, T(0)), block(p * p), d(p), devSum(p, T(0));
  for (int r0 = 0; r0 < rows; r0 += kBlockRows) {
    std::fill(block.begin(), block.end(), T(0));
    for (int r = r0, r1 = std::min(rows, r0 + kBlockRows); r < r1; ++r) {
      const T* row = x + r * p;
      for (std::size_t j = 0; j < p; ++j) {
        d[j] = row[j] - mean[j];
        devSum[j] += d[j];
      }
      for (std::size_t i = 0; i < p; ++i) {
        const T di = conjOf(d[i]);
        T* b = &block[i * p];
        for (std::size_t j = i; j < p; ++j) b[j] += di * d[j];
      }
    }
    for (std::size_t i = 0; i < p; ++i)
      for (std::size_t j = i; j < p; ++j) total[i * p + j] += block[i * p + j];
  }
  for (std::size_t i = 0; i < p; ++i)
    for (std::size_t j = i; j < p; ++j) {
      const T c = total[i * p + j] - conjOf(devSum[i]) * devSum[j] / static_cast<double>(rows);
      C[i * p + j] = c;
      C[j * p + i] = conjOf(c);  // Hermitian
    }
}

// D^H D of rows x cols data (complex when `complex`) with the given column means, as
// doubles in storage order: the covariance matrix before the division.
std::vector<double> centredGram(const double* x, int rows, int cols, bool complex, const double* mean) {
  std::vector<double> C(static_cast<std::size_t>(cols) * cols * (complex ? 2 : 1));
  if (complex)
    centredCrossProducts(reinterpret_cast<const TCplx*>(x), rows, cols, reinterpret_cast<const TCplx*>(mean),
                         reinterpret_cast<TCplx*>(C.data()));
  else
    centredCrossProducts(x, rows, cols, mean, C.data());
  return C;
}

// C(i, j) / sqrt(C(i, i) C(j, j)) with an exact unit diagonal (NaN where a variance is 0).
// The square roots are taken one by one: their product cannot overflow or underflow
// where the product of the variances would.
void scaleToCorrelation(TMtx& C) {
  const int p = C.Rows();
  const bool cplx = C.Complex();
  const int stride = cplx ? 2 : 1;
  double* c = C.data();
  std::vector<double> var(p), sd(p);
  for (int i = 0; i < p; ++i) {
    var[i] = c[(static_cast<std::size_t>(i) * p + i) * stride];  // the real part: X^H X has a real diagonal
    sd[i] = std::sqrt(var[i]);
  }
  for (int i = 0; i < p; ++i)
    for (int j = 0; j < p; ++j) {
      double* e = c + (static_cast<std::size_t>(i) * p + j) * stride;
      if (i == j) {
        e[0] = var[i] / var[i];
        if (cplx) e[1] = 0.0;
        continue;
      }
      const double s = sd[i] * sd[j];
      e[0] /= s;
      if (cplx) e[1] /= s;
    }
}

}  // namespace

void Covariance(const TVec& X, double& Cov, bool Biased) {
  Cov = 0.0;
  core::Guarded("Covariance : ", [&] {
    const TCplx m = X.Meanc();  // (mean, 0) for real data
    // complex data: the real sum of squared magnitudes
    Cov = centredGram(X.data(), X.Length(), 1, X.Complex(), reinterpret_cast<const double*>(&m))[0] /
          divisor(X.Length(), Biased);
  });
}

void Covariance(const TMtx& X, TMtx& Dst, bool Biased) {
  core::Guarded("Covariance : ", [&] {
    PooledVec mean;
    X.MeanCols(*mean);
    const std::vector<double> C = centredGram(X.data(), X.Rows(), X.Cols(), X.Complex(), mean->data());
    const double d = divisor(X.Rows(), Biased);
    Dst.Size(X.Cols(), X.Cols(), X.Complex());  // after every read of X: Dst may be X
    for (std::size_t i = 0; i < C.size(); ++i) Dst.data()[i] = C[i] / d;
  });
}

void Covariance(const TVec& X, const TVec& Y, TMtx& Dst, bool Biased) {
  if (X.Complex() != Y.Complex()) ERaise("Covariance: X.Complex <> Y.Complex");
  if (X.Length() != Y.Length()) ERaise("Covariance: X.Length <> Y.Length");
  core::Guarded("Covariance : ", [&] {
    PooledMtx pair;
    pair->Size(X.Length(), 2, X.Complex());
    pair->SetCol(X, 0);
    pair->SetCol(Y, 1);
    Covariance(*pair, Dst, Biased);
  });
}

void Covariance(const TMtx& X, const TMtx& Y, TMtx& Dst, bool Biased) {
  if (X.Complex() != Y.Complex()) ERaise("Covariance: X.Complex <> Y.Complex");
  if (X.Length() != Y.Length()) ERaise("Covariance: X(Rows*Cols) <> X(Rows*Cols)");
  core::Guarded("Covariance : ", [&] {
    // each matrix read column by column: the storage of its transpose
    PooledMtx xt, yt;
    PooledVec x, y;
    xt->Transp(X);
    yt->Transp(Y);
    x->Copy(*xt);
    y->Copy(*yt);
    Covariance(*x, *y, Dst, Biased);
  });
}

void CorrCoef(const TVec& X, const TVec& Y, TMtx& Dst) {
  core::Guarded("CorrCoef : ", [&] {
    Covariance(X, Y, Dst, false);
    scaleToCorrelation(Dst);
  });
}

void CorrCoef(const TMtx& X, TMtx& Dst) {
  core::Guarded("CorrCoef : ", [&] {
    Covariance(X, Dst, false);
    scaleToCorrelation(Dst);
  });
}

void CorrCoef(const TMtx& X, const TMtx& Y, TMtx& Dst) {
  core::Guarded("CorrCoef : ", [&] {
    Covariance(X, Y, Dst, false);
    scaleToCorrelation(Dst);
  });
}

void AutoCov(const TVec& Src, TVec& Dst, int Lags) {
  const int n = Src.Length();
  if (n == 0) {
    Dst.Size(0);
    return;
  }
  if (Lags < 0) Lags = Ceil(10.0 * Log10(n));
  if (Lags == std::numeric_limits<int>::max()) ERaise(msg::IntegerOverflow);  // Lags + 1 elements
  PooledVec centred;
  centred->Centre(Src);
  // lags from n on have no pairs: they are the zeros that the resize appends
  Dst.AutoCorrBiased(*centred, std::min(Lags, n - 1));
  Dst.Resize(Lags + 1);
}

void ACF(const TVec& Src, TVec& Dst, int Lags) {
  AutoCov(Src, Dst, Lags);
  if (Dst.Length() == 0) return;
  const double c0 = Dst[0];
  for (double& v : Dst) v /= c0;  // division keeps element 0 exactly 1
}

void PACF(const TVec& Src, TVec& Phi, TVec& Dst, TVec& ErrVar) {
  if (Src.Length() < 2) ERaise("PACF: Src.Length < 2");
  DurbinLevinson(Src, Phi, Dst, ErrVar);
}

void PACF(const TVec& Src, TVec& Dst) {
  if (Src.Length() < 2) {
    Dst.Size(0);
    return;
  }
  PooledVec phi, errVar;
  PACF(Src, *phi, Dst, *errVar);
}

}  // namespace statkit::Statistics
