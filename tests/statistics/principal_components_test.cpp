// PCA against numpy.linalg.eigh of the covariance and correlation matrices,
// the scores' moments, and PCAResiduals against the formula written out in NumPy.
#include "support/hypothesis.h"

namespace statkit::test {
namespace {
using namespace statkit::Statistics;

// Eigenvalues from a one-sided Jacobi SVD here and a symmetric tridiagonal QR in
// NumPy: both backward stable, so they agree to a few eps of the largest.
constexpr double kEigenTol = 1e-12;

// The doubles of a (complex: real and imaginary parts interleaved), each within tol.
void ExpectNearAll(const TDenseKalpa& a, const std::vector<double>& e, double tol) {
  ASSERT_EQ(a.Length() * (a.Complex() ? 2u : 1u), e.size());
  for (std::size_t i = 0; i < e.size(); ++i) EXPECT_NEAR(a.data()[i], e[i], tol) << i;
}

// Eigenvalues to kEigenTol of the largest; a direction, up to sign, where its
// eigenvalue is apart from its neighbours by more than 1e-3 of the largest
// (error about eps |lambda_1| / gap, so 1e3 eps times a safety of 10).
void ExpectComponents(const TVec& eigen, const TMtx& pc, const Record& r, const std::string& key) {
  const auto w = r.Nums(key + "Eigen");
  ExpectNearAll(eigen, w, kEigenTol * w[0]);
  if (!r.Has(key + "PC")) return;  // complex data: the phase of each direction is free
  const TMtx ref = r.Mtx(key + "PC");
  const int p = ref.Cols();
  for (int j = 0; j < p; ++j) {
    const double gap = std::fmin(j > 0 ? w[j - 1] - w[j] : INF, j + 1 < p ? w[j] - w[j + 1] : INF);
    double dot = 0.0;
    for (int i = 0; i < p; ++i) dot += pc(i, j) * ref(i, j);
    for (int i = 0; gap > 1e-3 * w[0] && i < p; ++i)
      EXPECT_NEAR(pc(i, j), (dot < 0 ? -1 : 1) * ref(i, j), 1e4 * kEps);
  }
}

TEST(PCA, MatchesEigenDecompositionOfCovarianceAndCorrelation) {
  for (const auto& r : LoadFixture("principal_components.txt")) {
    const auto shape = r.Nums("shape"), x = r.Nums("X");
    const int n = static_cast<int>(shape[0]), p = static_cast<int>(shape[1]);
    TMtx X(n, p, shape[2] != 0), pc, scores, res;
    std::copy(x.begin(), x.end(), X.data());
    SCOPED_TRACE(std::to_string(n) + " x " + std::to_string(p) + (X.Complex() ? " complex" : ""));
    PoolBalance balance;
    TVec eigen, share, mean, sd;
    for (auto [mode, key] : {std::pair{PCACovMat, "cov"}, std::pair{PCACorrMat, "corr"}}) {
      PCA(X, pc, scores, eigen, &share, mode);
      ExpectComponents(eigen, pc, r, key);
      EXPECT_REL(share.Sum(), 100.0, 16 * kEps);
      if (r.Has(key)) PCA(r.Mtx(key), pc, eigen, nullptr), ExpectComponents(eigen, pc, r, key);
    }
    EXPECT_REL(eigen.Sum(), p, 16 * kEps);  // the correlation mode's: the trace p
    if (!X.Complex()) {  // covariance-mode scores: centred, with the eigenvalues as variances
      PCA(X, pc, scores, eigen, nullptr, PCACovMat);
      scores.MeanCols(mean);
      StdCols(scores, sd);
      for (int j = 0; j < p; ++j) EXPECT_NEAR(mean[j], 0.0, 64 * kEps * std::sqrt(eigen[0])) << j;
      for (int j = 0; j < p; ++j) EXPECT_NEAR(sd[j] * sd[j], eigen[j], kEigenTol * eigen[0]) << j;
    }
    // the residuals of data offset by 1e6 cancel: held to the size of the data
    double size = 0.0;
    for (double v : x) size = std::fmax(size, std::fabs(v));
    for (int k : {0, 1, p - 1})
      PCAResiduals(X, k, res), ExpectNearAll(res, r.Nums("res" + std::to_string(k)), 1e3 * kEps * size);
  }
}

// Fewer observations than variables: the covariance mode keeps the n singular values
// of the centred data, the last of them 0. Outputs may be the data.
TEST(PCA, ShapesAndAliasing) {
  const TMtx X{{1, 2, 4, 8}, {2, 1, 0, 3}, {5, 5, 1, 2}};
  TMtx pc, scores, res, same = X;
  TVec eigen;
  PCA(X, pc, scores, eigen, nullptr, PCACovMat);
  EXPECT_TRUE(eigen.Length() == 3 && pc.Cols() == 3 && eigen[2] < 1e3 * kEps * eigen[0]);
  PCA(X, pc, scores, eigen, nullptr, PCACorrMat);
  PCA(same, pc, same, eigen, nullptr, PCACorrMat);
  ExpectNearAll(same, std::vector<double>(scores.data(), scores.data() + scores.Length()), 0.0);
  PCAResiduals(X, 2, res);
  PCAResiduals(same = X, 2, same);
  ExpectNearAll(same, std::vector<double>(res.data(), res.data() + res.Length()), 0.0);
}

}  // namespace
}  // namespace statkit::test
