// PCA against numpy.linalg.eigh of the covariance and correlation matrices,
// the scores' moments, and PCAResiduals against the formula written out in NumPy.
#include "support/hypothesis.h"

namespace statkit::test {
namespace {
using namespace statkit::Statistics;

// Eigenvalues from a one-sided Jacobi SVD here and a symmetric tridiagonal QR in
// NumPy: both backward stable, so they agree to a few eps of the largest.
constexpr double kEigenTol = 1e-12;

// Eigenvalues to kEigenTol of the largest; a direction, up to sign, where its
// eigenvalue is apart from its neighbours by more than 1e-3 of the largest
// (error about eps |lambda_1| / gap, so 1e3 eps times a safety of 10).
void ExpectComponents(const TVec& eigen, const TMtx& pc, const std::vector<double>& refEigen, const TMtx& refPC) {
  const int p = static_cast<int>(refEigen.size());
  ASSERT_EQ(eigen.Length(), p);
  ASSERT_TRUE(pc.Rows() == p && pc.Cols() == p);
  for (int j = 0; j < p; ++j) {
    EXPECT_NEAR(eigen[j], refEigen[j], kEigenTol * refEigen[0]) << "eigenvalue " << j;
    double gap = INF;
    if (j > 0) gap = std::fmin(gap, refEigen[j - 1] - refEigen[j]);
    if (j + 1 < p) gap = std::fmin(gap, refEigen[j] - refEigen[j + 1]);
    if (gap < 1e-3 * refEigen[0]) continue;
    double dot = 0.0;
    for (int i = 0; i < p; ++i) dot += pc(i, j) * refPC(i, j);
    for (int i = 0; i < p; ++i) EXPECT_NEAR(pc(i, j), (dot < 0 ? -1 : 1) * refPC(i, j), 1e4 * kEps) << "PC " << j;
  }
}

// Complex data: the eigenvalues of the Hermitian matrices, and the residuals, which do
// not depend on the phase that the decomposition gives each direction.
void CheckComplex(const Record& r) {
  const TMtx re = r.Mtx("Xre"), im = r.Mtx("Xim"), resRe = r.Mtx("res1re"), resIm = r.Mtx("res1im");
  TMtx X(re.Rows(), re.Cols(), true), pc, scores, res;
  for (int i = 0; i < X.Length(); ++i) X.CValues(i) = {re.data()[i], im.data()[i]};
  TVec eigen;
  for (auto [mode, key] : {std::pair{PCACovMat, "covEigen"}, std::pair{PCACorrMat, "corrEigen"}}) {
    PCA(X, pc, scores, eigen, nullptr, mode);
    const auto expected = r.Nums(key);
    for (int j = 0; j < eigen.Length(); ++j) EXPECT_NEAR(eigen[j], expected[j], kEigenTol * expected[0]) << key;
  }
  PCAResiduals(X, 1, res);
  for (int i = 0; i < res.Length(); ++i) {
    EXPECT_NEAR(res.CValues(i).real(), resRe.data()[i], 1e3 * kEps * 5) << i;
    EXPECT_NEAR(res.CValues(i).imag(), resIm.data()[i], 1e3 * kEps * 5) << i;
  }
}

TEST(PCA, MatchesEigenDecompositionOfCovarianceAndCorrelation) {
  for (const auto& r : LoadFixture("principal_components.txt")) {
    if (r.Has("Xre")) {
      CheckComplex(r);
      continue;
    }
    const TMtx X = r.Mtx("X");
    const int n = X.Rows(), p = X.Cols();
    SCOPED_TRACE(std::to_string(n) + " x " + std::to_string(p));
    PoolBalance balance;
    TMtx pc, scores;
    TVec eigen, share;
    PCA(X, pc, scores, eigen, &share, PCACovMat);
    ExpectComponents(eigen, pc, r.Nums("covEigen"), r.Mtx("covPC"));
    // scores: centred, with the eigenvalues as variances; the shares sum to 100
    TVec mean, sd;
    scores.MeanCols(mean);
    StdCols(scores, sd);
    for (int j = 0; j < p; ++j) {
      EXPECT_NEAR(mean[j], 0.0, 64 * kEps * std::sqrt(eigen[0])) << j;
      EXPECT_NEAR(sd[j] * sd[j], eigen[j], kEigenTol * eigen[0]) << j;
    }
    EXPECT_REL(share.Sum(), 100.0, 16 * kEps);
    PCA(X, pc, scores, eigen, nullptr, PCACorrMat);
    ExpectComponents(eigen, pc, r.Nums("corrEigen"), r.Mtx("corrPC"));
    EXPECT_REL(eigen.Sum(), p, 16 * kEps);
    for (const char* m : {"cov", "corr"}) {  // the form that takes the matrix itself
      PCA(r.Mtx(m), pc, eigen, &share);
      ExpectComponents(eigen, pc, r.Nums(std::string(m) + "Eigen"), r.Mtx(std::string(m) + "PC"));
    }
    // residuals: the data less 1e6 offsets cancel, so held to the size of the data
    const double size = std::fmax(std::fabs(X.Max()), std::fabs(X.Min()));
    for (int k : {0, 1, p - 1}) {
      TMtx res, expected = r.Mtx("res" + std::to_string(k));
      PCAResiduals(X, k, res);
      ASSERT_EQ(res.Length(), expected.Length());
      for (int i = 0; i < res.Length(); ++i)
        EXPECT_NEAR(res.data()[i], expected.data()[i], 1e3 * kEps * size) << "NumPC " << k << " element " << i;
    }
  }
}

// Fewer observations than variables: the covariance mode keeps the n singular values
// of the centred data, the last of them 0. Outputs may be the data.
TEST(PCA, ShapesAndAliasing) {
  TMtx X{{1, 2, 4, 8}, {2, 1, 0, 3}, {5, 5, 1, 2}}, pc, scores;
  TVec eigen{9.0}, untouched{7.0};
  PCA(X, pc, scores, eigen, nullptr, PCACovMat);
  EXPECT_EQ(eigen.Length(), 3);
  EXPECT_NEAR(eigen[2], 0.0, 1e3 * kEps * eigen[0]);
  EXPECT_TRUE(pc.Rows() == 4 && pc.Cols() == 3 && scores.Rows() == 3 && scores.Cols() == 3);
  TMtx same = X, res;
  PCA(same, pc, same, eigen, nullptr, PCACorrMat);
  PCA(X, pc, scores, eigen, nullptr, PCACorrMat);
  for (int i = 0; i < same.Length(); ++i) EXPECT_EQ(same.data()[i], scores.data()[i]);
  same = X;
  PCAResiduals(X, 2, res);
  PCAResiduals(same, 2, same);
  for (int i = 0; i < same.Length(); ++i) EXPECT_EQ(same.data()[i], res.data()[i]);
}

}  // namespace
}  // namespace statkit::test
