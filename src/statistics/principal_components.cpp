// Principal component analysis: the eigenvectors and eigenvalues of a covariance
// or correlation matrix from its singular value decomposition, and for data in
// covariance mode from the SVD of the centred data, whose squared singular values
// over n - 1 are the eigenvalues without squaring the condition number as the
// covariance matrix does; scores, shares of variance and the residuals left by the
// first components (Jolliffe, Principal Component Analysis, 2nd ed. 2002, ch. 1-3).

#include <cmath>
#include <complex>

#include "core/frame.h"
#include "statkit/Statistics.h"

namespace statkit::Statistics {

namespace {

// 100 Eigen / sum(Eigen), when asked for.
void fillVarPercent(const TVec& Eigen, TVec* VarPercent) {
  if (VarPercent == nullptr) return;
  const double total = Eigen.Sum();
  VarPercent->Size(Eigen.Length());
  for (int i = 0; i < Eigen.Length(); ++i) (*VarPercent)[i] = 100.0 * Eigen[i] / total;
}

// T = Data minus its column means, each column then once more minus the mean of its
// deviations, which removes what the rounding of the first mean left (as TDenseKalpa::Centre).
template <class T>
void centreColumnsOf(const T* x, int rows, int cols, const T* mean, T* d, T* residue) {
  for (int c = 0; c < cols; ++c) residue[c] = T(0);
  for (int r = 0; r < rows; ++r)
    for (int c = 0; c < cols; ++c) residue[c] += d[r * cols + c] = x[r * cols + c] - mean[c];
  for (int c = 0; c < cols; ++c) residue[c] /= static_cast<double>(rows);
  for (int r = 0; r < rows; ++r)
    for (int c = 0; c < cols; ++c) d[r * cols + c] -= residue[c];
}

void centreColumns(const TMtx& Data, TMtx& Dst) {
  PooledVec mean, residue;
  Data.MeanCols(*mean);
  residue->Size(*mean);
  Dst.Size(Data);
  if (Data.Complex())
    centreColumnsOf(reinterpret_cast<const TCplx*>(Data.data()), Data.Rows(), Data.Cols(),
                    reinterpret_cast<const TCplx*>(mean->data()), reinterpret_cast<TCplx*>(Dst.data()),
                    reinterpret_cast<TCplx*>(residue->data()));
  else centreColumnsOf(Data.data(), Data.Rows(), Data.Cols(), mean->data(), Dst.data(), residue->data());
}

}  // namespace

void PCA(const TMtx& CovMat, TMtx& PC, TVec& Eigen, TVec* VarPercent) {
  core::Guarded("PCA : ", [&] {
    PooledMtx V;
    PooledVec S;
    CovMat.SVD(*S, *V);  // the left vectors are not needed
    PC.Copy(*V);
    Eigen.Copy(*S);
    fillVarPercent(Eigen, VarPercent);
  });
}

void PCA(const TMtx& Data, TMtx& PC, TMtx& Scores, TVec& Eigen, TVec* VarPercent, TPCAMode Mode) {
  core::Guarded("PCA : ", [&] {
    PooledMtx T, V;
    PooledVec S;
    if (Mode == PCACovMat) {
      // T' T / (n - 1) = V diag(S^2 / (n - 1)) V' for the centred data T = U diag(S) V'
      centreColumns(Data, *T);
      T->SVD(*S, *V);  // the left vectors are not needed: a QR reduction first, not Jacobi sweeps on n rows
      const double scale = 1.0 / std::sqrt(Data.Rows() - 1.0);
      for (double& s : *S) s = (s * scale) * (s * scale);
    } else {
      CorrCoef(Data, *T);
      T->SVD(*S, *V);
      ZScore(Data, *T);
    }
    // every input is read before the first output is written: an output may be Data
    Scores.Mul(*T, *V);
    PC.Copy(*V);
    Eigen.Copy(*S);
    fillVarPercent(Eigen, VarPercent);
  });
}

void PCAResiduals(const TMtx& Data, int NumPC, TMtx& Residuals) {
  if (Data.Cols() <= NumPC) ERaise("PCAResiduals: NumPC >= Data.Cols");
  if (NumPC < 0) ERaise("PCAResiduals: NumPC < 0");
  core::Guarded("PCAResiduals : ", [&] {
    PooledMtx pc, scores, fit;
    PooledVec eigen, mean;
    // the correlation-mode scores, added to the means without the column scales
    PCA(Data, *pc, *scores, *eigen, nullptr, PCACorrMat);
    const int n = Data.Rows(), p = Data.Cols();
    if (NumPC > 0) {
      scores->Resize(n, NumPC);
      pc->Resize(p, NumPC);
      fit->Mul(*scores, *pc, opNone, Data.Complex() ? opConjTranspose : opTranspose);
    } else {
      fit->Size(n, p, Data.Complex());
      fit->SetZero();
    }
    Data.MeanCols(*mean);
    // element by element (complex: real and imaginary parts), each read before it is written:
    // Residuals may be Data
    Residuals.Size(n, p, Data.Complex());
    const std::size_t line = static_cast<std::size_t>(p) * (Data.Complex() ? 2 : 1);
    const double* x = Data.data();
    const double* f = fit->data();
    const double* m = mean->data();
    double* r = Residuals.data();
    for (std::size_t k = 0, size = line * static_cast<std::size_t>(n); k < size; ++k)
      r[k] = x[k] - (m[k % line] + f[k]);
  });
}

}  // namespace statkit::Statistics
