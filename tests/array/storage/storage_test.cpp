// Storage of vectors and matrices: views and their lifetime, complex storage,
// sizing, copying and the shape-changing operations, with the errors that
// out-of-range, overflowing and mismatched calls raise.

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>

#include "statkit/Array.h"
#include "statkit/Statistics.h"
#include "support/expect.h"

namespace statkit {
namespace {

std::vector<double> values(const TDenseKalpa& k) { return {k.data(), k.data() + k.Length()}; }

// Each case builds copies or views, or reshapes, works through them and returns what it then sees.
TEST(Storage, CopiesViewsAndShapeOperationsKeepElementsWhereTheyBelong) {
  const TMtx m23{{1, 2, 3}, {4, 5, 6}}, sq{{1, 2, 3}, {4, 5, 6}, {7, 8, 9}};
  const struct {
    const char* label;
    std::function<std::vector<double>()> observe;
    std::vector<double> expected;
  } cases[] = {
      {"a copy is deep", [] { TVec a{1, 2, 3}, b = a; b[0] = 9; return values(a); }, {1, 2, 3}},
      {"a move takes the buffer",
       [] {
         TVec b{1, 2};
         const double* buf = b.data();
         TVec c = std::move(b);
         return std::vector<double>{double(c.data() == buf), double(b.Length())};
       },
       {1, 0}},
      {"writes reach the source both ways; element-wise work stays inside the view",
       [] {
         TVec src{0, 1, 2, 3, 4, 5}, view;
         view.SetSubRange(src, 2, 3);
         view[1] = 30;
         src[4] = 40;
         view.Scale(2);
         return values(src);
       },
       {0, 1, 4, 60, 80, 5}},
      {"a view outlives its source",
       [] {
         TVec view;
         {
           TVec src{0, 1, 2, 3};
           view.SetSubRange(src, 1, 2);
         }
         view.Size(2);  // the same length is no resize
         return values(view);
       },
       {1, 2}},
      {"resizing the source detaches it from its views",
       [] {
         TVec src{1, 2, 3, 4}, view;
         view.SetSubRange(src, 1, 2);
         src.Size(10);
         src.SetVal(7);
         return values(view);
       },
       {2, 3}},
      {"SubIndex narrows until the full range is restored",
       [] {
         TVec v{1, 2, 3, 4, 5};
         v.SetSubIndex(1, 3);
         v.Scale(10);
         v.SetFullRange();
         return values(v);
       },
       {1, 20, 30, 40, 5}},
      {"a narrowed matrix is one row of its elements, then its shape again",
       [] {
         TMtx m{{1, 2}, {3, 4}};
         m.SetSubIndex(2, 3);
         std::vector<double> seen{double(m.Rows()), double(m.Cols()), m(0, 1)};
         m.SetFullRange();
         seen.insert(seen.end(), {double(m.Rows()), m(1, 1)});
         return seen;
       },
       {1, 2, 4, 2, 4}},
      {"transpose", [&] { TMtx t; t.Transp(m23); return values(t); }, {1, 4, 2, 5, 3, 6}},
      {"transpose in place", [&] { TMtx t = m23; t.Transp(); return values(t); }, {1, 4, 2, 5, 3, 6}},
      {"column", [&] { TVec c; c.GetCol(sq, 1); return values(c); }, {2, 5, 8}},
      {"diagonal above", [&] { TVec d; d.Diag(sq, 1); return values(d); }, {2, 6}},
      {"diagonal below", [&] { TVec d; d.Diag(sq, -2); return values(d); }, {7}},
      {"resize keeps the block", [&] { TMtx r = sq; r.Resize(2, 4); return values(r); }, {1, 2, 3, 0, 4, 5, 6, 0}},
      {"shift right", [] { TVec v{1, 2, 3, 4}; v.Shift(1); return values(v); }, {0, 1, 2, 3}},
      {"shift left", [] { TVec v{1, 2, 3, 4}; v.Shift(-2); return values(v); }, {3, 4, 0, 0}},
      {"concat", [] { TVec a{1, 2}, b{3}, c; c.Concat({a, b, a}); return values(c); }, {1, 2, 3, 1, 2}},
      {"split", [] { TVec c{1, 2, 3, 4, 5}, x, y; x.Size(3); y.Size(2); c.Split({x, y}); return values(y); }, {4, 5}},
      {"concat side by side",
       [] { TMtx h, one{{1}, {2}}, two{{3, 4}, {5, 6}}; h.ConcatHorz({one, two}); return values(h); },
       {1, 3, 4, 2, 5, 6}},
      {"reverse into itself", [] { TVec r{1, 2, 3}; r.Reverse(r); r.Resize(4); return values(r); }, {3, 2, 1, 0}},
      {"overlapping blocks of one object",
       [&] { TMtx c = sq; c.Copy(c, 0, 0, 1, 1, 2, 2); return values(c); }, {1, 2, 3, 4, 1, 2, 7, 4, 5}},
  };
  for (const auto& c : cases) EXPECT_EQ(c.observe(), c.expected) << c.label;
}

TEST(Storage, ComplexElementsArePairsOfDoubles) {
  TVec z;
  z.Size(2, true);
  z.CValues(0) = {1, 2};
  z.CValues(1) = {3, -4};
  EXPECT_EQ(z.data()[3], -4);
  EXPECT_RAISES(z.begin(), "Complex data not supported");  // no range-for over complex data
  TVec zeros(3, true), three{3};  // parentheses give a length, braces the listed values
  EXPECT_EQ(zeros.CValues(2), TCplx(0, 0));
  EXPECT_EQ(three.Length(), 1);

  TVec sum;
  sum.Add(z, z);
  EXPECT_EQ(sum.CValues(1), TCplx(6, -8));
  sum.Abs();
  EXPECT_TRUE(!sum.Complex() && sum[1] == 10);

  TVec r{1, 2};
  r.ExtendToComplex();
  EXPECT_EQ(r.CValues(1), TCplx(2, 0));
  r.set_Complex(false);  // reinterpretation: two complex values are four doubles
  EXPECT_EQ(values(r), (std::vector<double>{1, 0, 2, 0}));
}

// Every case, also those whose arithmetic on the arguments would overflow an
// int before the range check, raises the array layer's message.
TEST(Storage, OutOfRangeOverflowingAndMismatchedCallsRaise) {
  TVec v{1, 2, 3}, w{1, 2}, empty, view;
  view.SetSubRange(v, 0, 2);
  TMtx m(2, 3), sq{{1, 2}, {3, 4}}, wide(0, INT_MAX);
  m.SetZero();
  const test::RaiseCase bad[] = {
      {"Index out of range", [&] { (void)v[-1]; }},
      {"Index out of range", [&] { (void)v[3]; }},
      {"Index out of range", [&] { (void)m(2, 0); }},
      {"Index out of range", [&] { (void)m(0, 3); }},
      {"Index out of range", [&] { v.Copy(w, 1, 0, 2); }},
      {"Index out of range", [&] { TVec r; r.GetRow(m, 2); }},
      {"Index out of range", [&] { TVec c; c.GetCol(m, -1); }},
      {"Index out of range", [&] { view.SetSubRange(v, 3, 2); }},
      {"Index out of range", [&] { v.SetSubIndex(3, 5); }},
      {"Index out of range", [&] { double d[1]; v.SelectRanks(4, d); }},  // First past the end
      {"Index out of range", [&] { v.SetSubIndex(0, INT_MAX); }},
      {"Index out of range", [&] { v.SetSubIndex(-1, INT_MAX); }},
      {"Index out of range", [&] { v.SetSubIndex(INT_MIN, 0); }},
      {"Index out of range", [&] { v.SetSubIndex(1, INT_MIN); }},
      {"Index out of range", [&] { TVec d; d.Diag(sq, INT_MIN); }},
      {"Index out of range", [&] { TVec d; d.Diag(sq, INT_MAX); }},
      {"Index out of range", [&] { sq.Copy(sq, 0, 0, 1, 1, 2, 2); }},
      {"Integer overflow", [&] { TMtx h; h.ConcatHorz({wide, wide}); }},
      {"Size mismatch", [&] { view.Size(3); }},
      {"Size mismatch", [&] { view.Resize(1); }},
      {"Size mismatch", [&] { v.Add(w); }},
      {"Size mismatch", [&] { TVec d; d.Mul(v, w); }},
      {"Size mismatch", [&] { (void)v.DotProd(w); }},
      {"Size mismatch", [&] { m.SetRow(w, 1); }},
      {"Size mismatch", [&] { w.CValues(0); }},
      {"Size mismatch", [&] { empty.Size(-1); }},
      {"Size mismatch", [&] { TVec n(-1); }},
      {"Size mismatch", [&] { TMtx r{{1, 2}, {3}}; }},
      {"Size mismatch", [&] { TMtx h; h.ConcatVert({m, sq}); }},
      {"Empty vector", [&] { (void)empty.Mean(); }},
      {"Empty vector", [&] { (void)empty.Max(); }},
      {"Empty vector", [&] { (void)empty.StdDev(); }},
      {"Empty vector", [&] { empty.Difference(); }},
      {"Complex data not supported", [&] { TVec z; z.Size(2, true); z.SortAscend(); }},
      {"Complex data not supported", [&] { TVec z; z.Size(2, true); (void)z[0]; }},
      {"Complex data not supported", [&] { TVec z; z.Size(3, true); z.SetZero(); TVec d; d.Add(v, z); }},
      {"Integer overflow", [&] { TVec big{3e9}; (void)big.IValue(0); }},
      {"Integer overflow", [&] { TMtx e; e.SetExternal(nullptr, INT_MAX, 2); }},
      {"Size mismatch", [&] { TVec e; e.SetExternal(nullptr, 3); }},
  };
  test::ExpectEachRaises(bad);
}

// A view on a host's memory reads and writes it in place, keeps its length,
// and a copy of it owns its own storage.
TEST(Storage, ExternalViewsUseTheHostsMemory) {
  double host[6] = {1, 2, 3, 4, 5, 6};
  TVec v;
  v.SetExternal(host, 6);
  TMtx m;
  m.SetExternal(host, 2, 3);
  EXPECT_TRUE(v.data() == host && m.data() == host && v.IsView() && m.Rows() == 2 && m(1, 2) == 6);
  m(0, 1) = 20;
  EXPECT_EQ(host[1], 20);
  EXPECT_EQ(v.Sum(), 39);
  TVec copy(v);
  copy[0] = 100;
  EXPECT_EQ(host[0], 1);
  EXPECT_RAISES(v.Size(7), "Size mismatch");
  v.SetFullRange();
  EXPECT_EQ(v.Length(), 0);
  EXPECT_EQ(host[5], 6);
}


// Requests that cannot be met raise "Out of memory" (with the prefix of the
// operation's protected block) instead of ending the process. Run by ctest
// alone, under a 4 GB address-space limit that sets STATKIT_OOM_TEST: without
// the limit the kernel may grant the requests, and AddressSanitizer aborts on them.
TEST(OutOfMemory, RequestsThatCannotBeMetRaise) {
  if (!std::getenv("STATKIT_OOM_TEST")) GTEST_SKIP() << "runs only under the memory limit of its ctest entry";
  const TVec x{1, 2, 3};
  TVec v, counts, bins;
  TMtx m;
  const test::RaiseCase cases[] = {
      {"Out of memory", [&] { v.Size(INT_MAX); }},
      {"Out of memory", [&] { v.Size(INT_MAX / 2, true); }},
      {"Out of memory", [&] { m.Eye(46340, 46340); }},
      {"Out of memory", [&] { TMtx t(INT_MAX, 1); }},
      {"Histogram : Out of memory", [&] { Statistics::Histogram(x, INT_MAX - 1, counts, bins, false, 1, 0); }},
      {"FullFactDesign : Out of memory", [&] { Statistics::FullFactDesign(26, m); }},
      {"Out of memory", [&] { Statistics::ACF(x, v, INT_MAX - 1); }},
  };
  test::ExpectEachRaises(cases);
}

}  // namespace
}  // namespace statkit
