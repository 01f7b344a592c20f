// Storage of vectors and matrices: views and their lifetime, complex storage,
// sizing, copying and the shape-changing operations, with the errors that
// out-of-range and mismatched calls raise.

#include <gtest/gtest.h>

#include "statkit/Array.h"
#include "support/expect.h"

namespace statkit {
namespace {

TEST(Storage, CopiesAreDeepAndMovesTakeTheBuffer) {
  TVec a{1, 2, 3};
  TVec b = a;
  b[0] = 9;
  EXPECT_EQ(a[0], 1);
  const double* buf = b.data();
  TVec c = std::move(b);
  EXPECT_EQ(c.data(), buf);
  EXPECT_EQ(c.Length(), 3);
  EXPECT_EQ(b.Length(), 0);
}

TEST(Storage, ViewReadsAndWritesItsSourceAndOutlivesIt) {
  TVec view;
  {
    TVec src{0, 1, 2, 3, 4, 5};
    view.SetSubRange(src, 2, 3);
    EXPECT_EQ(view.Length(), 3);
    EXPECT_EQ(view[0], 2);
    view[1] = 30;
    EXPECT_EQ(src[3], 30);
    src[4] = 40;
    EXPECT_EQ(view[2], 40);
    view.Scale(2);  // element-wise work on a view stays inside its range
    EXPECT_EQ(src[1], 1);
    EXPECT_EQ(src[2], 4);
    EXPECT_EQ(src[5], 5);
  }
  // The source is gone; the view still owns the shared buffer.
  EXPECT_EQ(view[0], 4);
}

TEST(Storage, ResizingTheSourceDetachesItFromItsViews) {
  TVec src{1, 2, 3, 4};
  TVec view;
  view.SetSubRange(src, 1, 2);
  src.Size(10);
  src.SetVal(7);
  EXPECT_EQ(view[0], 2);  // the view keeps the old elements
  EXPECT_EQ(view[1], 3);
}

TEST(Storage, ViewsHaveAFixedLength) {
  TVec src{1, 2, 3, 4};
  TVec view;
  view.SetSubRange(src, 0, 2);
  EXPECT_RAISES(view.Size(3), "Size mismatch");
  EXPECT_RAISES(view.Resize(1), "Size mismatch");
  view.Size(2);  // the same length is no resize
  EXPECT_RAISES(view.SetSubRange(src, 3, 2), "Index out of range");
}

TEST(Storage, SubIndexNarrowsUntilTheFullRangeIsRestored) {
  TVec v{1, 2, 3, 4, 5};
  v.SetSubIndex(1, 3);
  EXPECT_EQ(v.Length(), 3);
  v.Scale(10);
  v.SetFullRange();
  EXPECT_EQ(v.Length(), 5);
  const double want[] = {1, 20, 30, 40, 5};
  for (int i = 0; i < 5; ++i) EXPECT_EQ(v[i], want[i]);
  EXPECT_RAISES(v.SetSubIndex(3, 5), "Index out of range");

  TMtx m{{1, 2}, {3, 4}};
  m.SetSubIndex(2, 3);
  EXPECT_EQ(m.Rows(), 1);
  EXPECT_EQ(m.Cols(), 2);
  m.SetFullRange();
  EXPECT_EQ(m.Rows(), 2);
  EXPECT_EQ(m(1, 1), 4);
}

TEST(Storage, ComplexElementsArePairsOfDoubles) {
  TVec z;
  z.Size(2, true);
  z.CValues(0) = {1, 2};
  z.CValues(1) = {3, -4};
  EXPECT_EQ(z.data()[3], -4);
  EXPECT_RAISES(z[0], "Complex data not supported");
  EXPECT_RAISES(z.begin(), "Complex data not supported");  // no range-for over complex data
  TVec zeros(3, true), three{3};  // parentheses give a length, braces the listed values
  EXPECT_EQ(zeros.CValues(2), TCplx(0, 0));
  EXPECT_EQ(three.Length(), 1);
  TVec r{1, 2};
  EXPECT_RAISES(r.CValues(0), "Size mismatch");

  TVec sum;
  sum.Add(z, z);
  EXPECT_EQ(sum.CValues(1), TCplx(6, -8));
  sum.Abs();
  EXPECT_FALSE(sum.Complex());
  EXPECT_DOUBLE_EQ(sum[1], 10);

  r.ExtendToComplex();
  EXPECT_TRUE(r.Complex());
  EXPECT_EQ(r.CValues(1), TCplx(2, 0));
  r.set_Complex(false);  // reinterpretation: two complex values are four doubles
  EXPECT_EQ(r.Length(), 4);
  EXPECT_EQ(r[2], 2);
}

TEST(Storage, OutOfRangeAndMismatchedCallsRaise) {
  TVec v{1, 2, 3};
  TVec w{1, 2};
  TMtx m(2, 3);
  m.SetZero();
  TVec empty;
  struct Bad {
    const char* what;
    std::function<void()> call;
    const char* message;
  };
  const Bad bad[] = {
      {"element -1", [&] { (void)v[-1]; }, "Index out of range"},
      {"element 3", [&] { (void)v[3]; }, "Index out of range"},
      {"matrix row 2", [&] { (void)m(2, 0); }, "Index out of range"},
      {"matrix column 3", [&] { (void)m(0, 3); }, "Index out of range"},
      {"ranged copy past the end", [&] { v.Copy(w, 1, 0, 2); }, "Index out of range"},
      {"add of different lengths", [&] { v.Add(w); }, "Size mismatch"},
      {"mul of different lengths", [&] { TVec d; d.Mul(v, w); }, "Size mismatch"},
      {"dot product of different lengths", [&] { (void)v.DotProd(w); }, "Size mismatch"},
      {"row of the wrong length", [&] { m.SetRow(w, 1); }, "Size mismatch"},
      {"row index", [&] { TVec r; r.GetRow(m, 2); }, "Index out of range"},
      {"column index", [&] { TVec c; c.GetCol(m, -1); }, "Index out of range"},
      {"mean of nothing", [&] { (void)empty.Mean(); }, "Empty vector"},
      {"max of nothing", [&] { (void)empty.Max(); }, "Empty vector"},
      {"std of nothing", [&] { (void)empty.StdDev(); }, "Empty vector"},
      {"difference of nothing", [&] { empty.Difference(); }, "Empty vector"},
      {"negative length", [&] { empty.Size(-1); }, "Size mismatch"},
      {"negative sized vector", [&] { TVec n(-1); }, "Size mismatch"},
      {"ragged matrix", [&] { TMtx r{{1, 2}, {3}}; }, "Size mismatch"},
      {"sort complex", [&] { TVec z; z.Size(2, true); z.SortAscend(); }, "Complex data not supported"},
      {"mixed complex add", [&] { TVec z; z.Size(3, true); z.SetZero(); TVec d; d.Add(v, z); },
       "Complex data not supported"},
      {"integer view of 3e9", [&] { TVec big{3e9}; (void)big.IValue(0); }, "Integer overflow"},
  };
  for (const auto& b : bad) {
    SCOPED_TRACE(b.what);
    EXPECT_TRUE(test::RaisesExactly(b.call, b.message));
  }
}

TEST(Storage, ShapeOperationsKeepElementsWhereTheyBelong) {
  TMtx m{{1, 2, 3}, {4, 5, 6}};
  TMtx t;
  t.Transp(m);
  EXPECT_EQ(t.Rows(), 3);
  EXPECT_EQ(t(2, 1), 6);
  m.Transp();  // in place
  EXPECT_EQ(m(0, 1), 4);
  EXPECT_EQ(m(2, 0), 3);

  TVec col, diag;
  col.GetCol(t, 1);
  EXPECT_EQ(col.Length(), 3);
  EXPECT_EQ(col[2], 6);
  TMtx sq{{1, 2, 3}, {4, 5, 6}, {7, 8, 9}};
  diag.Diag(sq, 1);
  ASSERT_EQ(diag.Length(), 2);
  EXPECT_EQ(diag[1], 6);
  diag.Diag(sq, -2);
  ASSERT_EQ(diag.Length(), 1);
  EXPECT_EQ(diag[0], 7);

  sq.Resize(2, 4);
  EXPECT_EQ(sq(1, 1), 5);
  EXPECT_EQ(sq(1, 3), 0);

  TVec v{1, 2, 3, 4};
  v.Shift(1);
  EXPECT_EQ(v[0], 0);
  EXPECT_EQ(v[3], 3);
  v.Shift(-2);
  EXPECT_EQ(v[0], 2);
  EXPECT_EQ(v[3], 0);

  TVec a{1, 2}, b{3}, c;
  c.Concat({a, b, a});
  EXPECT_EQ(c.Length(), 5);
  EXPECT_EQ(c[2], 3);
  TVec x, y;
  x.Size(3);
  y.Size(2);
  c.Split({x, y});
  EXPECT_EQ(y[0], 1);

  TMtx h;
  TMtx one{{1}, {2}};
  TMtx two{{3, 4}, {5, 6}};
  h.ConcatHorz({one, two});
  EXPECT_EQ(h.Cols(), 3);
  EXPECT_EQ(h(1, 2), 6);
  EXPECT_RAISES(h.ConcatVert({one, two}), "Size mismatch");

  TVec rev{1, 2, 3};
  rev.Reverse(rev);  // aliasing
  EXPECT_EQ(rev[0], 3);
  rev.Resize(5);
  EXPECT_EQ(rev[4], 0);
  EXPECT_EQ(rev[2], 1);
}

TEST(Storage, MatrixCopyOfOverlappingBlocksOfOneObject) {
  TMtx m{{1, 2, 3}, {4, 5, 6}, {7, 8, 9}};
  m.Copy(m, 0, 0, 1, 1, 2, 2);  // the block moves down-right over itself
  EXPECT_EQ(m(1, 1), 1);
  EXPECT_EQ(m(2, 2), 5);
  EXPECT_EQ(m(2, 1), 4);
  EXPECT_RAISES(m.Copy(m, 0, 0, 2, 2, 2, 2), "Index out of range");
}

}  // namespace
}  // namespace statkit
