// Dense linear algebra: NIST StRD least squares, polynomial roots against
// NumPy and mpmath, decompositions by reconstruction, products against the
// textbook triple loop, aliasing, refinement and the error messages.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>

#include "statkit/Array.h"
#include "support/expect.h"
#include "support/fixture.h"
#include "support/nist.h"

namespace statkit::test {
namespace {

// Element (r, c) of op(m), real or complex storage alike.
TCplx opAt(const TMtx& m, int r, int c, TMtxOperation op = opNone) {
  if (op != opNone) std::swap(r, c);
  TCplx z = m.Complex() ? m.CValues(r, c) : TCplx(m(r, c));
  return op == opConjTranspose ? std::conj(z) : z;
}

using Entries = std::function<TCplx(int, int)>;

double maxDiff(const TMtx& got, const Entries& want) {
  double d = 0;
  for (int i = 0; i < got.Rows(); ++i)
    for (int j = 0; j < got.Cols(); ++j) d = std::max(d, std::abs(opAt(got, i, j) - want(i, j)));
  return d;
}

// The independent reference of every product check: the textbook triple loop.
Entries naiveProduct(const TMtx& a, const TMtx& b, TMtxOperation op1 = opNone, TMtxOperation op2 = opNone) {
  return [=, inner = op1 == opNone ? a.Cols() : a.Rows()](int i, int j) {
    TCplx s = 0;
    for (int k = 0; k < inner; ++k) s += opAt(a, i, k, op1) * opAt(b, k, j, op2);
    return s;
  };
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
    const StrdSet set = ReadStrd(std::string("lls/") + name);
    const int p = static_cast<int>(set.params.size());
    ASSERT_GT(set.Rows() * p, 0) << name;
    const TMtx design = StrdDesign(set);
    TVec b;
    design.LQRSolve(set.Column(0), b);
    double lre = 16;
    for (int j = 0; j < p; ++j) lre = std::min(lre, LRE(b[j], set.estimates[j]));
    std::printf("NIST %-9s coefficients LRE %.1f\n", name, lre);
    EXPECT_GE(lre, minLre) << name;
  }
}

// Largest distance from each reference root to its nearest unclaimed partner,
// relative to |root| (absolute for a zero root), so tiny roots count; -1 when
// the counts differ.
double rootError(std::vector<TCplx> got, const Record& r, const std::string& key) {
  auto re = r.Nums(key + "_re"), im = r.Nums(key + "_im");
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
    std::vector<TCplx> got, numpy;
    for (int i = 0; i < roots.Length(); ++i) got.push_back(roots.CValues(i));
    auto re = r.Nums("numpy_re"), im = r.Nums("numpy_im");
    for (std::size_t i = 0; i < re.size(); ++i) numpy.emplace_back(re[i], im[i]);
    double ours = rootError(got, r, "exact"), theirs = rootError(numpy, r, "exact");
    std::printf("roots %-18s error %.1e (NumPy %.1e)\n", r.Str("name").c_str(), ours, theirs);
    // The same companion matrix, balanced as LAPACK balances it: the two differ
    // by rounding only, so allow 8 x NumPy's error (at least 8 eps).
    EXPECT_GE(ours, 0) << r.Str("name") << ": wrong number of roots";
    EXPECT_LE(ours, 8 * std::max(theirs, kEps)) << r.Str("name");
  }
  TVec roots;
  PolyRoots(roots, TVec{1, NAN, 2});  // NaN in, NaN out: Eigen would give no eigenvalues
  EXPECT_TRUE(roots.Length() == 2 && std::isnan(roots.CValues(1).real()));
}

TEST(Decompositions, ReconstructWithOrthonormalFactors) {
  const TMtx cases[] = {{{4, 1, -2}, {1, 3, 0.5}, {-2, 0.5, 6}, {0.25, -1, 2}, {7, 0, 1}},
                        {{1, 2, 3, 4, 5}, {2, 4.5, 6, 8, 10}, {-1, 0, 1, 0, -1}},
                        {{1, 2, 3, 4}, {2, 4, 6, 8}, {1, 0, 1, 0}, {3, 4, 7, 8}},  // rank 2
                        {{-3}}};
  for (const TMtx& a : cases) {
    const int m = a.Rows(), n = a.Cols(), k = std::min(m, n);
    const double tol = 32 * kEps * m * n * 10;  // backward-stable factorisations of entries up to 10
    PooledMtx pooledR;  // the previous case's R, given back to the pool: its solver options reset
    EXPECT_TRUE(pooledR->TriangleForm() == tfLower && !pooledR->TriangleUnit() && !pooledR->RefineSolution());
    TMtx u, v, q, eye, &r = pooledR;
    TVec s;
    a.SVD(u, s, v);  // the values alone are held to R's eigenvalues by Bartlett's test
    ASSERT_TRUE(u.Rows() == m && u.Cols() == k && v.Rows() == n && v.Cols() == k && s.Length() == k);
    for (int j = 0; j < k; ++j) EXPECT_GE(s[j], j + 1 < k ? s[j + 1] : 0.0) << "singular values not descending";
    TMtx us(u);  // U diag(S)
    for (int i = 0; i < m * k; ++i) us.data()[i] *= s[i % k];
    EXPECT_LT(maxDiff(a, naiveProduct(us, v, opNone, opTranspose)), tol);
    a.LQR(q, r);
    EXPECT_LT(maxDiff(a, naiveProduct(q, r)), tol);
    EXPECT_LT(maxDiff(r, [&](int i, int j) { return j < i ? TCplx(0) : opAt(r, i, j); }), 1e-300) << "R not upper";
    if (m >= n && s[k - 1] > 1e-8 * s[0]) {  // R square and regular: its form is set for Inv
      TMtx rInv(r);
      rInv.Inv(mtTriangular);
      eye.Eye(k, k);
      EXPECT_LT(maxDiff(eye, naiveProduct(r, rInv)), tol);
    }
    for (const TMtx* orth : {&u, &q}) {
      eye.Eye(k, k);
      EXPECT_LT(maxDiff(eye, naiveProduct(*orth, *orth, opTranspose, opNone)), tol);
    }
    r.SetTriangleUnit(true), r.SetRefineSolution(true);  // LQR has marked R upper
  }
  const TMtx pd{{4, 2, -2}, {2, 10, 1}, {-2, 1, 5.5}};
  TMtx l(pd);
  l.Cholesky();
  EXPECT_EQ(l(0, 1) + l(0, 2) + l(1, 2), 0.0);
  EXPECT_LT(maxDiff(pd, naiveProduct(l, l, opNone, opTranspose)), 16 * kEps * 10);
}

TEST(MatrixProduct, EveryOperationOnRealComplexAndMixedStorage) {
  const TMtx real{{1, -2}, {0.5, 3}, {4, 0}};
  const TMtx cplx = [] {
    TMtx c(3, 2, true);
    for (int i = 0; i < 12; ++i) c.data()[i] = 3 * std::sin(1.0 + i);  // no zero imaginary parts
    return c;
  }();
  for (const TMtx* a : {&real, &cplx})
    for (const TMtx* b : {&real, &cplx})
      for (auto [op1, op2] : {std::pair{opNone, opTranspose}, {opNone, opConjTranspose}, {opTranspose, opNone},
                              {opConjTranspose, opNone}}) {
        TMtx c, same = *a;
        c.Mul(*a, *b, op1, op2);
        same.Mul(same, a == b ? same : *b, op1, op2);  // the output one input or both, its shape changing
        EXPECT_EQ(c.Complex(), a->Complex() || b->Complex());
        EXPECT_LT(maxDiff(c, naiveProduct(*a, *b, op1, op2)), 8 * kEps * 20) << int(op1) << int(op2);
        EXPECT_LT(maxDiff(same, naiveProduct(*a, *b, op1, op2)), 8 * kEps * 20) << int(op1) << int(op2);
      }
}

TEST(MatrixProduct, KindsReadOnlyTheirTriangle) {
  // The unread triangle holds 99s; the matrices the kinds stand for are written out in full.
  TMtx stored{{2, 99, 99}, {-1, 3, 99}, {4, 0.5, 5}}, b{{1, 2}, {3, 4}, {5, 6}}, c, x;
  const TMtx symmetric{{2, -1, 4}, {-1, 3, 0.5}, {4, 0.5, 5}}, unitLower{{1, 0, 0}, {-1, 1, 0}, {4, 0.5, 1}};
  c.Mul(stored, b, mtSymmetric, mtGeneral);
  EXPECT_LT(maxDiff(c, naiveProduct(symmetric, b)), 64 * kEps);
  stored.SetTriangleUnit(true);
  c.Mul(stored, b, mtTriangular, mtGeneral, opTranspose, opNone);
  EXPECT_LT(maxDiff(c, naiveProduct(unitLower, b, opTranspose)), 64 * kEps);
  stored.LUSolve(b, x, mtTriangular, opTranspose);  // the transposed lower triangle solves as upper
  EXPECT_LT(maxDiff(b, naiveProduct(unitLower, x, opTranspose)), 64 * kEps);
}

TEST(Aliasing, SolutionsAndRootsMayOverwriteTheirInput) {  // products: in their own test
  const TMtx a0{{2, 1, 0}, {1, 3, -1}, {0.5, -1, 4}};
  TMtx bm{{1, 0}, {2, 1}, {3, 0}};
  TVec b{1, 2, 3}, coeffs{1, -3, 2};
  a0.LUSolve(b, b);
  a0.LUSolve(bm, bm);
  b.TensorProd(a0, b);
  for (int i = 0; i < 3; ++i) EXPECT_NEAR(b[i], i + 1.0, 16 * kEps);
  EXPECT_LT(maxDiff(TMtx{{1, 0}, {2, 1}, {3, 0}}, naiveProduct(a0, bm)), 16 * kEps);
  PolyRoots(coeffs, coeffs);
  ASSERT_EQ(coeffs.Length(), 2);
  EXPECT_NEAR(std::abs(coeffs.CValues(0) * coeffs.CValues(1)), 2.0, 8 * kEps);
}

// An integer-scaled Hilbert matrix (cond 1.5e7) with an exactly representable
// system: plain LU loses about 7 digits; one refinement step with a long
// double residual wins back more than 2 of them (with a double residual, none).
TEST(LUSolve, RefinementRecoversDigitsOfIllConditionedSystem) {
  const int n = 6;
  TMtx h(n, n);
  TVec x = TVec(std::vector<double>(n)), b = x, plain, refined;
  for (int i = 0; i < n; ++i) x[i] = (i % 2 ? -1.0 : 1.0) * (i + 1);
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j) b[i] += (h(i, j) = 27720.0 / (i + j + 1)) * x[j];  // exact integers
  h.LUSolve(b, plain);
  h.SetRefineSolution(true);
  h.LUSolve(b, refined);
  plain.Sub(x), refined.Sub(x);
  EXPECT_LT(refined.NormL2(), plain.NormL2() * 1e-2) << plain.NormL2() << " " << refined.NormL2();
}

// Units must not make a matrix singular: the rank test runs on the equilibrated
// matrix. The cross products of a quadratic in x ~ 1e3 span 12 orders of
// magnitude (cond 4e15) but equilibrate to cond 713.
TEST(Inverse, BadlyScaledButWellConditionedIsInvertible) {
  TMtx d, g, inv(TMtx{{1e200, 0}, {0, 1e-200}});
  inv.Inv(mtGeneral);
  EXPECT_TRUE(inv(0, 0) == 1e-200 && inv(1, 1) == 1e200 && inv(0, 1) == 0 && inv(1, 0) == 0);
  d.VanderMonde(3, TVec{1e3, 2e3, 3e3, 5e3});
  g.Mul(d, d, opTranspose, opNone);
  for (TMtxType kind : {mtGeneral, mtPosDefSymmetric}) {
    inv = g;
    inv.Inv(kind);
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(naiveProduct(inv, g)(i, i).real(), 1.0, 713 * 16 * kEps);
  }
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
  EXPECT_EQ(maxDiff(v, [](int i, int j) { return TCplx(std::pow(i == 0 ? 0.0 : i == 1 ? -2.0 : 3.0, 3 - j)); }), 0.0);
}

TEST(LinearAlgebraErrors, ExactMessages) {
  const TMtx singular{{1, 2}, {2, 4}}, nearSingular{{1, 2}, {3, 6.000000000000001}}, indefinite{{1, 2}, {2, 1}};
  const TMtx dependent{{1, 2, 2}, {1, 3, 3}, {1, 5, 5}, {1, 7, 7}}, rect{{1, 2, 3}, {4, 5, 6}}, empty;
  const TVec two{1, 2}, three{1, 2, 3};
  TMtx out, m, cplx(1, 1, true);
  TVec x;
  const RaiseCase cases[] = {
      {"Singular matrix", [&] { (m = singular).Inv(mtGeneral); }},
      {"Singular matrix", [&] { (m = nearSingular).Inv(mtGeneral); }},  // reciprocal condition 1e-17
      {"Singular matrix", [&] { TMtx{{1, 0}, {5, 0}}.LUSolve(two, x, mtTriangular); }},
      {"Singular matrix", [&] { dependent.LQRSolve(TVec{1, 2, 3, 4}, x); }},
      {"Singular matrix", [&] { TMtx{{1, 0}, {2, 0}, {3, 0}}.LQRSolve(three, x); }},
      {"Matrix is not positive definite", [&] { (m = indefinite).Cholesky(); }},
      {"Matrix is not positive definite", [&] { TMtx{{NAN, 0}, {0, 1}}.Cholesky(); }},
      {"Matrix is not positive definite", [&] { indefinite.LUSolve(two, x, mtPosDefSymmetric); }},
      {"Size mismatch", [&] { out.Mul(rect, rect); }},
      {"Size mismatch", [&] { out.Mul(rect, rect, mtSymmetric, mtGeneral, opNone, opTranspose); }},
      {"Size mismatch", [&] { x.TensorProd(rect, two); }},
      {"Size mismatch", [&] { rect.LUSolve(two, x); }},
      {"Size mismatch", [&] { singular.LUSolve(three, x); }},
      {"Size mismatch", [&] { empty.LUSolve(TVec{}, x); }},
      {"Size mismatch", [&] { empty.LQRSolve(TVec{}, x); }},
      {"Size mismatch", [&] { rect.LQRSolve(three, x); }},
      {"Size mismatch", [&] { out.Toeplitz(TVec{}, two); }},
      {"Complex data not supported", [&] { cplx.Inv(mtGeneral); }},
      {"Invalid parameter", [&] { out.Mul(rect, rect, static_cast<TMtxOperation>(3), opNone); }},
  };
  ExpectEachRaises(cases);
  TMtx u, w, withNan{{1, NAN}, {2, 3}};
  withNan.SVD(u, x, w);  // Eigen refuses non-finite input without results: NaN, not garbage
  EXPECT_TRUE(std::isnan(x[0]) && std::isnan(x[1]));
}

}  // namespace
}  // namespace statkit::test
