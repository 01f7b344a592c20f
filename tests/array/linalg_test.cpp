// Dense linear algebra: NIST StRD least squares, polynomial roots against
// NumPy and mpmath, decompositions by reconstruction, products against the
// textbook triple loop, aliasing, and the error messages.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "statkit/Array.h"
#include "support/expect.h"
#include "support/fixture.h"

namespace statkit::test {
namespace {

// Element (r, c) of op(m), real or complex storage alike.
TCplx opAt(const TMtx& m, int r, int c, TMtxOperation op) {
  if (op != opNone) std::swap(r, c);
  TCplx z = m.Complex() ? m.CValues(r, c) : TCplx(m(r, c));
  return op == opConjTranspose ? std::conj(z) : z;
}

// Largest |got(i, j) - want(i, j)| over got's shape.
double maxDiff(const TMtx& got, const std::function<TCplx(int, int)>& want) {
  double d = 0;
  for (int i = 0; i < got.Rows(); ++i)
    for (int j = 0; j < got.Cols(); ++j) d = std::max(d, std::abs(opAt(got, i, j, opNone) - want(i, j)));
  return d;
}

// Independent reference for every product check: the textbook triple loop.
std::function<TCplx(int, int)> naiveProduct(const TMtx& a, const TMtx& b, TMtxOperation op1, TMtxOperation op2) {
  int inner = op1 == opNone ? a.Cols() : a.Rows();
  return [=](int i, int j) {
    TCplx s = 0;
    for (int k = 0; k < inner; ++k) s += opAt(a, i, k, op1) * opAt(b, k, j, op2);
    return s;
  };
}

TMtx complexMtx(int rows, int cols, std::initializer_list<double> reIm) {
  TMtx m(rows, cols, true);
  std::copy(reIm.begin(), reIm.end(), m.data());
  return m;
}

// --- NIST StRD linear least squares -------------------------------------------

struct NistLls {
  std::vector<int> powers;  // parameter Bj multiplies x^j (one predictor) or x_j (several)
  std::vector<double> certified;
  std::vector<std::vector<double>> data;  // y, x1, ...
};

NistLls readNistLls(const std::string& path) {
  std::ifstream in(path);
  std::vector<std::string> lines;
  for (std::string l; std::getline(in, l);) lines.push_back(l.substr(0, l.find('\r')));
  int c0 = 0, c1 = -1, d0 = 0, d1 = -1;
  for (int i = 0; i < 60 && i < static_cast<int>(lines.size()); ++i) {
    auto at = lines[i].find("(lines");
    if (at == std::string::npos) continue;
    bool certified = lines[i].find("Certified Values") != std::string::npos;
    std::sscanf(lines[i].c_str() + at, "(lines %d to %d)", certified ? &c0 : &d0, certified ? &c1 : &d1);
  }
  NistLls set;
  for (int i = c0 - 1; i < c1; ++i) {
    std::istringstream words(lines[i]);
    std::string name;
    double value;
    if (words >> name >> value && name.size() > 1 && name[0] == 'B' && std::isdigit(name[1])) {
      set.powers.push_back(std::stoi(name.substr(1)));
      set.certified.push_back(value);
    }
  }
  for (int i = d0 - 1; i < d1; ++i) {
    std::istringstream words(lines[i]);
    set.data.emplace_back();
    for (double v; words >> v;) set.data.back().push_back(v);
  }
  return set;
}

// Lowest LRE accepted per set. Refining the augmented system leaves cond(X),
// not its square, in the coefficients' error, so every set keeps 13 digits
// but Filip, whose design has cond 1.8e15 (cond x eps = 0.4: refinement no
// longer converges; a backward-stable QR keeps about 8 digits there).
TEST(LeastSquaresNist, CertifiedCoefficientsThroughHouseholderQr) {
  std::string dir = StrdDir();
  if (dir.empty()) GTEST_SKIP() << "NIST StRD not found beside the project";
  const std::pair<const char*, double> sets[] = {
      {"Norris", 13},   {"Pontius", 13},  {"NoInt1", 13},   {"NoInt2", 13},   {"Filip", 7},    {"Longley", 13},
      {"Wampler1", 13}, {"Wampler2", 13}, {"Wampler3", 13}, {"Wampler4", 13}, {"Wampler5", 13}};
  for (auto [name, minLre] : sets) {
    NistLls set = readNistLls(dir + "/lls/" + name + ".dat");
    ASSERT_FALSE(set.data.empty()) << name;
    const int n = static_cast<int>(set.data.size()), p = static_cast<int>(set.powers.size());
    const bool polynomial = set.data[0].size() == 2;
    TMtx design(n, p);
    TVec y = TVec(std::vector<double>(n)), b;
    for (int i = 0; i < n; ++i) {
      y[i] = set.data[i][0];
      for (int j = 0; j < p; ++j) {
        int k = set.powers[j];
        design(i, j) = polynomial ? std::pow(set.data[i][1], k) : (k == 0 ? 1.0 : set.data[i][k]);
      }
    }
    design.LQRSolve(y, b);
    double lre = 16;
    for (int j = 0; j < p; ++j) lre = std::min(lre, LRE(b[j], set.certified[j]));
    std::printf("NIST %-9s coefficients LRE %.1f\n", name, lre);
    EXPECT_GE(lre, minLre) << name;
  }
}

// --- polynomial roots ------------------------------------------------------------

// Largest distance from each reference root to its nearest unclaimed partner,
// relative to |root| (absolute for a zero root), so tiny roots count; -1 when
// the counts differ.
double rootError(std::vector<TCplx> got, const std::vector<double>& re, const std::vector<double>& im) {
  if (got.size() != re.size()) return -1;
  double worst = 0;
  for (std::size_t i = 0; i < re.size(); ++i) {
    TCplx want(re[i], im[i]);
    auto near = std::min_element(got.begin(), got.end(),
                                 [&](TCplx a, TCplx b) { return std::abs(a - want) < std::abs(b - want); });
    worst = std::max(worst, std::abs(*near - want) / (want == 0.0 ? 1.0 : std::abs(want)));
    got.erase(near);
  }
  return worst;
}

TEST(PolyRoots, NoLessAccurateThanNumpyCompanionEigenvalues) {
  for (const Record& r : LoadFixture("polyroots.txt")) {
    TVec roots;
    PolyRoots(roots, r.Vec("coeffs"));
    ASSERT_TRUE(roots.Complex() || roots.Length() == 0) << r.Str("name");
    std::vector<TCplx> got, numpy;
    for (int i = 0; i < roots.Length(); ++i) got.push_back(roots.CValues(i));
    auto nre = r.Nums("numpy_re"), nim = r.Nums("numpy_im");
    for (std::size_t i = 0; i < nre.size(); ++i) numpy.push_back({nre[i], nim[i]});
    double ours = rootError(got, r.Nums("exact_re"), r.Nums("exact_im"));
    double theirs = rootError(numpy, r.Nums("exact_re"), r.Nums("exact_im"));
    // Same companion matrix, balanced as LAPACK balances it: the two differ by
    // rounding only, so allow 8 x NumPy's error (at least 8 eps).
    std::printf("roots %-18s error %.1e (NumPy %.1e)\n", r.Str("name").c_str(), ours, theirs);
    EXPECT_GE(ours, 0) << r.Str("name") << ": wrong number of roots";
    EXPECT_LE(ours, 8 * std::max(theirs, kEps)) << r.Str("name") << " numpy error " << theirs;
  }
}

// --- decompositions ----------------------------------------------------------------

TEST(Decompositions, ReconstructWithOrthonormalFactors) {
  const TMtx cases[] = {
      {{4, 1, -2}, {1, 3, 0.5}, {-2, 0.5, 6}, {0.25, -1, 2}, {7, 0, 1}},  // tall
      {{1, 2, 3, 4, 5}, {2, 4.5, 6, 8, 10}, {-1, 0, 1, 0, -1}},           // wide
      {{1, 2, 3, 4}, {2, 4, 6, 8}, {1, 0, 1, 0}, {3, 4, 7, 8}},           // rank 2
      {{-3}}};
  for (const TMtx& a : cases) {
    const int m = a.Rows(), n = a.Cols(), k = std::min(m, n);
    const double tol = 32 * kEps * m * n * 10;  // backward-stable factorisations of entries up to 10
    TMtx u, v, q, r, i;
    TVec s, sOnly;
    a.SVD(u, s, v);
    a.SVD(sOnly);
    ASSERT_EQ(std::make_pair(u.Rows(), u.Cols()), std::make_pair(m, k));
    ASSERT_EQ(std::make_pair(v.Rows(), v.Cols()), std::make_pair(n, k));
    for (int j = 0; j < k; ++j) {
      EXPECT_EQ(s[j], sOnly[j]);
      EXPECT_GE(s[j], j + 1 < k ? s[j + 1] : 0.0) << "singular values not descending";
    }
    TMtx us(u);
    for (int c = 0; c < k; ++c)
      for (int row = 0; row < m; ++row) us(row, c) *= s[c];
    EXPECT_LT(maxDiff(a, naiveProduct(us, v, opNone, opTranspose)), tol);
    a.LQR(q, r);
    EXPECT_LT(maxDiff(a, naiveProduct(q, r, opNone, opNone)), tol);
    for (int row = 1; row < r.Rows(); ++row)
      for (int c = 0; c < std::min(row, r.Cols()); ++c) EXPECT_EQ(r(row, c), 0.0);
    for (const TMtx* orth : {&u, &q}) {
      i.Eye(k, k);
      EXPECT_LT(maxDiff(i, naiveProduct(*orth, *orth, opTranspose, opNone)), tol);
    }
  }
}

TEST(Decompositions, CholeskyIsLowerAndReproducesMatrix) {
  const TMtx a{{4, 2, -2}, {2, 10, 1}, {-2, 1, 5.5}};
  TMtx l(a);
  l.Cholesky();
  EXPECT_EQ(l(0, 1) + l(0, 2) + l(1, 2), 0.0);
  EXPECT_LT(maxDiff(a, naiveProduct(l, l, opNone, opTranspose)), 16 * kEps * 10);
}

// --- products, kinds and aliasing ------------------------------------------------------

TEST(MatrixProduct, EveryOperationOnRealComplexAndMixedStorage) {
  const TMtx real{{1, -2}, {0.5, 3}, {4, 0}};
  const TMtx cplx = complexMtx(3, 2, {1, 2, -1, 0.5, 0, -3, 2, 2, 1.5, -1, 0, 1});
  for (const TMtx* a : {&real, &cplx})
    for (const TMtx* b : {&real, &cplx})
      for (auto op1 : {opNone, opTranspose, opConjTranspose})
        for (auto op2 : {opNone, opTranspose, opConjTranspose}) {
          if ((op1 == opNone) == (op2 == opNone)) continue;  // inner sizes agree only when one is transposed
          TMtx c;
          c.Mul(*a, *b, op1, op2);
          EXPECT_EQ(c.Complex(), a->Complex() || b->Complex());
          EXPECT_LT(maxDiff(c, naiveProduct(*a, *b, op1, op2)), 8 * kEps * 20) << int(op1) << int(op2);
        }
}

TEST(MatrixProduct, KindsReadOnlyTheirTriangle) {
  // The unread triangle holds 99s; the effective matrices are written out in full.
  TMtx stored{{2, 99, 99}, {-1, 3, 99}, {4, 0.5, 5}}, b{{1, 2}, {3, 4}, {5, 6}}, c;
  const TMtx symmetric{{2, -1, 4}, {-1, 3, 0.5}, {4, 0.5, 5}}, unitLower{{1, 0, 0}, {-1, 1, 0}, {4, 0.5, 1}};
  c.Mul(stored, b, mtSymmetric, mtGeneral);
  EXPECT_LT(maxDiff(c, naiveProduct(symmetric, b, opNone, opNone)), 64 * kEps);
  stored.SetTriangleUnit(true);
  c.Mul(stored, b, mtTriangular, mtGeneral, opTranspose, opNone);
  EXPECT_LT(maxDiff(c, naiveProduct(unitLower, b, opTranspose, opNone)), 64 * kEps);
  // A triangular solve with the transpose reads the stored lower triangle as upper.
  TVec x, rhs{1, -2, 3};
  stored.LUSolve(rhs, x, mtTriangular, opTranspose);
  TMtx xm(3, 1);
  std::copy(x.begin(), x.end(), xm.data());
  EXPECT_LT(maxDiff(TMtx{{1}, {-2}, {3}}, naiveProduct(unitLower, xm, opTranspose, opNone)), 64 * kEps);
}

TEST(Aliasing, OutputMayBeAnInput) {
  const TMtx a0{{2, 1, 0}, {1, 3, -1}, {0.5, -1, 4}};
  TMtx a(a0);
  a.Mul(a, a);
  EXPECT_LT(maxDiff(a, naiveProduct(a0, a0, opNone, opNone)), 64 * kEps);
  TMtx tall{{1, 2}, {3, 4}, {5, 6}};  // the result changes the shape of its own input
  tall.Mul(tall, tall, opTranspose, opNone);
  EXPECT_EQ(maxDiff(tall, [](int i, int j) { return TCplx(i + j == 0 ? 35 : i + j == 1 ? 44 : 56); }), 0.0);
  TVec b{1, 2, 3};
  a0.LUSolve(b, b);
  TMtx bm{{1, 0}, {2, 1}, {3, 0}};
  a0.LUSolve(bm, bm);
  for (int i = 0; i < 3; ++i) EXPECT_NEAR(bm(i, 0), b[i], 4 * kEps);
  TVec v(b);
  v.TensorProd(a0, v);
  for (int i = 0; i < 3; ++i) EXPECT_NEAR(v[i], i + 1.0, 16 * kEps);
  TVec coeffs{1, -3, 2};
  PolyRoots(coeffs, coeffs);
  ASSERT_EQ(coeffs.Length(), 2);
  EXPECT_NEAR(std::abs(coeffs.CValues(0) * coeffs.CValues(1)), 2.0, 8 * kEps);
}

// An integer-scaled Hilbert matrix (cond 1.5e10) with an exactly representable
// system: plain LU loses about 10 digits; one refinement step with a long
// double residual recovers nearly all of them.
TEST(LUSolve, RefinementRecoversDigitsOfIllConditionedSystem) {
  const int n = 8;
  TMtx h(n, n);
  TVec x = TVec(std::vector<double>(n)), b = x, plain, refined;
  for (int i = 0; i < n; ++i) x[i] = (i % 2 ? -1.0 : 1.0) * (i + 1);
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < n; ++j) b[i] += (h(i, j) = 360360.0 / (i + j + 1)) * x[j];  // exact integers
  }
  h.LUSolve(b, plain);
  h.SetRefineSolution(true);
  h.LUSolve(b, refined);
  double errPlain = 0, errRefined = 0;
  for (int i = 0; i < n; ++i) {
    errPlain = std::max(errPlain, std::fabs(plain[i] - x[i]) / n);
    errRefined = std::max(errRefined, std::fabs(refined[i] - x[i]) / n);
  }
  EXPECT_LT(errRefined, errPlain * 1e-3) << errPlain << " " << errRefined;
}

TEST(StructuredMatrices, ToeplitzAndVandermondeElements) {
  TVec rho{1, 0.5, 0.25, -0.125}, tail, row{7, 8};
  tail.SetSubRange(rho, 1, 3);
  TMtx t, r, v;
  t.Toeplitz(rho, tail);
  EXPECT_EQ(maxDiff(t, [&](int i, int j) { return TCplx(rho[std::abs(i - j)]); }), 0.0);
  r.Toeplitz(rho, row);  // 4 x 3: the first column from rho, the first row 1, 7, 8
  ASSERT_EQ(r.Cols(), 3);
  EXPECT_EQ(maxDiff(r, [&](int i, int j) { return TCplx(j <= i ? rho[i - j] : row[j - i - 1]); }), 0.0);
  v.VanderMonde(4, TVec{0, -2, 3});
  EXPECT_EQ(maxDiff(v, [](int i, int j) { return TCplx(std::pow(i == 0 ? 0.0 : i == 1 ? -2.0 : 3.0, 3 - j)); }),
            0.0);
}

// --- errors ---------------------------------------------------------------------------

TEST(LinearAlgebraErrors, ExactMessages) {
  PoolBalance balance;
  const TMtx singular{{1, 2}, {2, 4}}, nearSingular{{1, 2}, {3, 6.000000000000001}}, indefinite{{1, 2}, {2, 1}};
  const TMtx dependent{{1, 2, 2}, {1, 3, 3}, {1, 5, 5}, {1, 7, 7}}, zeroColumn{{1, 0}, {2, 0}, {3, 0}};
  const TMtx rect{{1, 2, 3}, {4, 5, 6}}, empty, withNan{{NAN, 0}, {0, 1}}, tri{{1, 0}, {5, 0}};
  const TMtx cplx = complexMtx(1, 1, {1, 1});
  const TVec two{1, 2}, three{1, 2, 3}, cvec = [] {
    const double reIm[] = {1, 0};
    TVec v;
    v.SetIt(true, reIm);
    return v;
  }();
  const TMtx column3{{1}, {2}, {3}};
  TMtx out, m;
  TVec x;
  const std::pair<std::function<void()>, const char*> cases[] = {
      {[&] { m = singular; m.Inv(mtGeneral); }, "Singular matrix"},
      {[&] { m = nearSingular; m.Inv(mtGeneral); }, "Singular matrix"},
      {[&] { singular.LUSolve(two, x); }, "Singular matrix"},
      {[&] { tri.LUSolve(two, x, mtTriangular); }, "Singular matrix"},
      {[&] { dependent.LQRSolve(TVec{1, 2, 3, 4}, x); }, "Singular matrix"},
      {[&] { zeroColumn.LQRSolve(three, x); }, "Singular matrix"},
      {[&] { m = indefinite; m.Cholesky(); }, "Matrix is not positive definite"},
      {[&] { m = withNan; m.Cholesky(); }, "Matrix is not positive definite"},
      {[&] { m = indefinite; m.Inv(mtPosDefSymmetric); }, "Matrix is not positive definite"},
      {[&] { indefinite.LUSolve(two, x, mtPosDefSymmetric); }, "Matrix is not positive definite"},
      {[&] { out.Mul(rect, rect); }, "Size mismatch"},
      {[&] { out.Mul(rect, rect, mtSymmetric, mtGeneral, opNone, opTranspose); }, "Size mismatch"},
      {[&] { x.TensorProd(rect, two); }, "Size mismatch"},
      {[&] { m = rect; m.Inv(mtGeneral); }, "Size mismatch"},
      {[&] { rect.LUSolve(two, x); }, "Size mismatch"},
      {[&] { singular.LUSolve(three, x); }, "Size mismatch"},
      {[&] { singular.LUSolve(column3, out); }, "Size mismatch"},
      {[&] { empty.LUSolve(TVec{}, x); }, "Size mismatch"},
      {[&] { empty.LQRSolve(TVec{}, x); }, "Size mismatch"},
      {[&] { rect.LQRSolve(three, x); }, "Size mismatch"},
      {[&] { m = empty; m.Cholesky(); }, "Size mismatch"},
      {[&] { empty.SVD(x); }, "Size mismatch"},
      {[&] { empty.LQR(out, m); }, "Size mismatch"},
      {[&] { out.Toeplitz(TVec{}, two); }, "Size mismatch"},
      {[&] { out.VanderMonde(-1, two); }, "Size mismatch"},
      {[&] { m = cplx; m.Inv(mtGeneral); }, "Complex data not supported"},
      {[&] { singular.LUSolve(cvec, x); }, "Complex data not supported"},
      {[&] { PolyRoots(x, cvec); }, "Complex data not supported"},
      {[&] { out.Mul(rect, rect, static_cast<TMtxOperation>(3), opNone); }, "Invalid parameter"},
  };
  for (const auto& [call, message] : cases) EXPECT_RAISES(call(), message);
}

TEST(LinearAlgebraErrors, NonFiniteInputGivesNanNotAHang) {
  const TMtx withNan{{1, NAN}, {2, 3}};
  TMtx u, v;
  TVec s, roots;
  withNan.SVD(u, s, v);
  EXPECT_TRUE(std::isnan(s[0]) && std::isnan(s[1]));
  PolyRoots(roots, TVec{1, NAN, 2});
  ASSERT_EQ(roots.Length(), 2);
  EXPECT_TRUE(std::isnan(roots.CValues(0).real()));
}

}  // namespace
}  // namespace statkit::test
