// Element-wise arithmetic and reductions of TDenseKalpa, over real or complex
// storage, plus the element-wise matrix operations.
//
// Sums are blocked: each block of 256 elements is summed with sixteen
// independent accumulators (which the processor pipelines and vectorises, so
// the loop runs at memory bandwidth), and the block sums are added with
// Neumaier's compensation, so the error stays near eps * 16 instead of
// growing with n (Higham, Accuracy and Stability of Numerical Algorithms,
// 2nd ed., section 4.2). Variances are computed about the mean in a second
// pass with the correction term of the corrected two-pass algorithm (Chan,
// Golub and LeVeque, 1983).

#include <algorithm>
#include <cmath>
#include <cstring>
#if defined(STATKIT_HAVE_LIBMVEC) && defined(__x86_64__)
#include <immintrin.h>
#endif

#include "array/checks.h"
#include "array/elementwise/dot_product.h"
#include "array/elementwise/order_statistics.h"
#include "statkit/array/Kalpa.h"
#include "statkit/array/Math.h"

namespace statkit {

namespace {

using Cplx = TCplx;

const Cplx* cplx(const double* p) { return reinterpret_cast<const Cplx*>(p); }
Cplx* cplx(double* p) { return reinterpret_cast<Cplx*>(p); }

void requireSameLength(const TKalpa& a, const TKalpa& b) {
  if (a.Length() != b.Length()) ERaise(msg::SizeMismatch);
}
void requireSameKind(const TKalpa& a, const TKalpa& b) {
  requireSameLength(a, b);
  if (a.Complex() != b.Complex()) ERaise(msg::ComplexNotSupported);
}
void requireNonEmpty(const TKalpa& a) {
  if (a.Length() == 0) ERaise(msg::EmptyVector);
}

/// d[i] = f(a[i]) over n real elements (d may be a).
template <class F>
void mapReal(double* d, const double* a, int n, F f) {
  for (int i = 0; i < n; ++i) d[i] = f(a[i]);
}

/// d[i] = f(a[i]) over n complex elements (d may be a).
template <class F>
void mapComplex(double* d, const double* a, int n, F f) {
  const Cplx* ac = cplx(a);
  Cplx* dc = cplx(d);
  for (int i = 0; i < n; ++i) dc[i] = f(ac[i]);
}

/// d[i] = f(a[i]) over n real or complex elements, f generic in its argument.
template <class F>
void map(double* d, const double* a, int n, bool complex, F f) {
  if (complex) mapComplex(d, a, n, f);
  else mapReal(d, a, n, f);
}

/// d[i] = f(a[i], b[i]) over n real or complex elements (d may be a or b).
template <class F>
void zip(double* d, const double* a, const double* b, int n, bool complex, F f) {
  if (complex) {
    const Cplx *ac = cplx(a), *bc = cplx(b);
    Cplx* dc = cplx(d);
    for (int i = 0; i < n; ++i) dc[i] = f(ac[i], bc[i]);
  } else {
    for (int i = 0; i < n; ++i) d[i] = f(a[i], b[i]);
  }
}

// The hot reductions are compiled for AVX-512, AVX2 and the baseline
// instruction set, and each call goes through a function pointer chosen once,
// at first use, from what the processor has. Load-time dispatch (ifunc
// resolvers) would run before the sanitizers' runtimes are up, so it is not
// used. Four-double vectors are passed only by reference: by value they would
// change the calling convention between the AVX and the baseline builds.
#if defined(__x86_64__) && (defined(__GNUC__) || defined(__clang__))
#define STATKIT_X86_VERSIONS 1
#endif

typedef double Lanes __attribute__((vector_size(32)));

[[gnu::always_inline]] inline void loadLanes(Lanes& v, const double* p) { std::memcpy(&v, p, sizeof v); }

[[gnu::always_inline]] inline double laneSum(const Lanes& v) { return (v[0] + v[1]) + (v[2] + v[3]); }

/// Neumaier's compensated addition of one block sum into (total, comp).
inline void addCompensated(double& total, double& comp, double block) {
  double t = total + block;
  // Only a finite sum has a rounding error: at an infinity the correction would be inf - inf = NaN.
  if (std::isfinite(t)) comp += std::fabs(total) >= std::fabs(block) ? (total - t) + block : (block - t) + total;
  total = t;
}

constexpr std::size_t kBlock = 256;

/// Blocked sum of n terms: sixteen independent partial sums per block (four
/// vectors of four lanes), block sums added with compensation. terms(v, i)
/// writes terms i..i+3 into v; term(i) gives term i alone, for a block's tail.
template <class Terms, class Term>
[[gnu::always_inline]] inline double blockedSum(std::size_t n, Terms terms, Term term) {
  double total = 0.0, comp = 0.0;
  for (std::size_t start = 0; start < n; start += kBlock) {
    std::size_t end = std::min(n, start + kBlock);
    Lanes a = {0, 0, 0, 0}, b = a, c = a, d = a, v;
    std::size_t i = start;
    for (; i + 16 <= end; i += 16) {
      terms(v, i), a += v;
      terms(v, i + 4), b += v;
      terms(v, i + 8), c += v;
      terms(v, i + 12), d += v;
    }
    a = (a + b) + (c + d);
    double block = laneSum(a);
    for (; i < end; ++i) block += term(i);
    addCompensated(total, comp, block);
  }
  return total + comp;
}

/// Blocked sum of g(x[i]) over x[0..n): g(v) replaces the four lanes of v by
/// the terms they contribute.
template <class G>
[[gnu::always_inline]] inline double blockedSum(const double* x, std::size_t n, G g) {
  return blockedSum(
      n, [x, g](Lanes& v, std::size_t i) { loadLanes(v, x + i), g(v); },
      [x, g](std::size_t i) {
        Lanes one = {x[i], 0, 0, 0};
        g(one);
        return one[0];
      });
}

[[gnu::always_inline]] inline double dotBody(const double* a, const double* b, std::size_t n) {
  return blockedSum(
      n,
      [a, b](Lanes& v, std::size_t i) {
        Lanes u;
        loadLanes(u, a + i), loadLanes(v, b + i), v *= u;
      },
      [a, b](std::size_t i) { return a[i] * b[i]; });
}

[[gnu::always_inline]] inline double plainSumBody(const double* x, std::size_t n) {
  return blockedSum(x, n, [](Lanes&) {});
}

[[gnu::always_inline]] inline double squaresSumBody(const double* x, std::size_t n) {
  return blockedSum(x, n, [](Lanes& v) { v *= v; });
}

/// Sum of squared deviations about m.
[[gnu::always_inline]] inline double deviationSumOfSquaresBody(const double* x, std::size_t n, double m) {
  return blockedSum(x, n, [m](Lanes& v) {
    v -= m;
    v *= v;
  });
}

/// Sum of squared deviations about m, with the corrected two-pass term: the
/// sum of the deviations themselves, gathered in the same pass, removes the
/// error of m.
[[gnu::always_inline]] inline double centredSumOfSquaresBody(const double* x, std::size_t n, double m) {
  double ss = 0.0, comp = 0.0, s = 0.0;
  for (std::size_t start = 0; start < n; start += kBlock) {
    std::size_t end = std::min(n, start + kBlock);
    Lanes q0 = {0, 0, 0, 0}, q1 = q0, d0 = q0, d1 = q0, a, b;
    std::size_t i = start;
    for (; i + 8 <= end; i += 8) {
      loadLanes(a, x + i), loadLanes(b, x + i + 4);
      a -= m, b -= m;
      q0 += a * a;
      q1 += b * b;
      d0 += a;
      d1 += b;
    }
    q0 += q1, d0 += d1;
    double block = laneSum(q0), dev = laneSum(d0);
    for (; i < end; ++i) {
      double e = x[i] - m;
      block += e * e;
      dev += e;
    }
    addCompensated(ss, comp, block);
    s += dev;
  }
  return (ss + comp) - s * s / static_cast<double>(n);
}

#ifdef STATKIT_X86_VERSIONS
/// The AVX-512 build if the processor has it, else the AVX2 build, else the baseline.
template <class F>
F bestVersion(F avx512, F avx2, F baseline) {
  __builtin_cpu_init();  // harmless when done; needed if the first call precedes the constructors
  if (__builtin_cpu_supports("avx512f")) return avx512;
  if (__builtin_cpu_supports("avx2")) return avx2;
  return baseline;
}
// NAME(Params) calls, through a pointer set at its first call, the build of
// NAME##Body for the best instruction set the processor has.
#define STATKIT_VERSIONED(Name, Params, Args)                                                           \
  __attribute__((target("avx512f"))) double Name##Avx512 Params { return Name##Body Args; }          \
  __attribute__((target("avx2"))) double Name##Avx2 Params { return Name##Body Args; }               \
  double Name##Baseline Params { return Name##Body Args; }                                           \
  double Name Params {                                                                               \
    static const auto version = bestVersion(&Name##Avx512, &Name##Avx2, &Name##Baseline);            \
    return version Args;                                                                             \
  }
#else
#define STATKIT_VERSIONED(Name, Params, Args) \
  double Name Params { return Name##Body Args; }
#endif

STATKIT_VERSIONED(dot, (const double* a, const double* b, std::size_t n), (a, b, n))
STATKIT_VERSIONED(plainSum, (const double* x, std::size_t n), (x, n))
STATKIT_VERSIONED(squaresSum, (const double* x, std::size_t n), (x, n))
STATKIT_VERSIONED(deviationSumOfSquares, (const double* x, std::size_t n, double m), (x, n, m))
STATKIT_VERSIONED(centredSumOfSquares, (const double* x, std::size_t n, double m), (x, n, m))

}  // namespace

double detail::Dot(const double* a, const double* b, std::size_t n) { return dot(a, b, n); }

namespace {

/// Sum of the real and of the imaginary parts of n complex elements.
Cplx complexSum(const double* x, int n) {
  // Real and imaginary parts interleave: sum the even and the odd doubles apart.
  double re = 0, im = 0, cre = 0, cim = 0;
  for (int i = 0; i < n; ++i) {
    double t = re + x[2 * i];
    cre += std::fabs(re) >= std::fabs(x[2 * i]) ? (re - t) + x[2 * i] : (x[2 * i] - t) + re;
    re = t;
    t = im + x[2 * i + 1];
    cim += std::fabs(im) >= std::fabs(x[2 * i + 1]) ? (im - t) + x[2 * i + 1] : (x[2 * i + 1] - t) + im;
    im = t;
  }
  return {re + cre, im + cim};
}

double complexDeviationSumOfSquares(const double* x, int n, Cplx m) {
  double s = 0, c = 0;
  for (int i = 0; i < n; ++i) {
    double v = std::norm(cplx(x)[i] - m);
    double t = s + v;
    c += s >= v ? (s - t) + v : (v - t) + s;
    s = t;
  }
  return s + c;
}

}  // namespace

// --- element-wise arithmetic -------------------------------------------------

void TDenseKalpa::Add(double Value) { Add(TCplx(Value, 0.0)); }

void TDenseKalpa::Add(TCplx Value) {
  if (Complex()) {
    mapComplex(data(), data(), Length(), [Value](Cplx a) { return a + Value; });
  } else {
    if (Value.imag() != 0.0) ERaise(msg::ComplexNotSupported);
    double v = Value.real();
    mapReal(data(), data(), Length(), [v](double a) { return a + v; });
  }
}

void TDenseKalpa::Add(const TDenseKalpa& Vec) { Add(*this, Vec); }

template <class Op>
void TDenseKalpa::Zip(const TDenseKalpa& Vec1, const TDenseKalpa& Vec2, Op op) {
  requireSameKind(Vec1, Vec2);
  SizeLike(Vec1, Vec1.Complex());
  zip(data(), Vec1.data(), Vec2.data(), Length(), Complex(), op);
}

template <class Op>
void TDenseKalpa::ZipRange(const TDenseKalpa& Vec1, const TDenseKalpa& Vec2, int Vec1Index, int Vec2Index, int Index,
                           int Len, Op op) {
  if (Vec1.Complex() != Vec2.Complex() || Vec1.Complex() != Complex()) ERaise(msg::ComplexNotSupported);
  Vec1.CheckRange(Vec1Index, Len);
  Vec2.CheckRange(Vec2Index, Len);
  CheckRange(Index, Len);
  int w = Complex() ? 2 : 1;
  zip(data() + Index * w, Vec1.data() + Vec1Index * w, Vec2.data() + Vec2Index * w, Len, Complex(), op);
}

namespace {
constexpr auto plus = [](auto a, auto b) { return a + b; };
constexpr auto minus = [](auto a, auto b) { return a - b; };
constexpr auto times = [](auto a, auto b) { return a * b; };
constexpr auto over = [](auto a, auto b) { return a / b; };
}  // namespace

void TDenseKalpa::Add(const TDenseKalpa& Vec1, const TDenseKalpa& Vec2) { Zip(Vec1, Vec2, plus); }

void TDenseKalpa::Add(const TDenseKalpa& Vec1, const TDenseKalpa& Vec2, int Vec1Index, int Vec2Index, int Index,
                      int Len) {
  ZipRange(Vec1, Vec2, Vec1Index, Vec2Index, Index, Len, plus);
}

void TDenseKalpa::AddScaled(const TDenseKalpa& Vec, double Factor) {
  requireSameKind(*this, Vec);
  zip(data(), data(), Vec.data(), Length(), Complex(), [Factor](auto a, auto b) { return a + Factor * b; });
}

void TDenseKalpa::Sub(double Value) { Add(-Value); }

void TDenseKalpa::Sub(const TDenseKalpa& Vec) { Sub(*this, Vec); }

void TDenseKalpa::Sub(const TDenseKalpa& Vec1, const TDenseKalpa& Vec2) { Zip(Vec1, Vec2, minus); }

void TDenseKalpa::Sub(const TDenseKalpa& Vec1, const TDenseKalpa& Vec2, int Vec1Index, int Vec2Index, int Index,
                      int Len) {
  ZipRange(Vec1, Vec2, Vec1Index, Vec2Index, Index, Len, minus);
}

void TDenseKalpa::Mul(double Value) { Mul(Value, 0, Length()); }

void TDenseKalpa::Mul(TCplx Value) {
  if (!Complex()) {
    if (Value.imag() != 0.0) ERaise(msg::ComplexNotSupported);
    Mul(Value.real());
    return;
  }
  mapComplex(data(), data(), Length(), [Value](Cplx a) { return a * Value; });
}

void TDenseKalpa::Mul(double Value, int Index, int Len) {
  CheckRange(Index, Len);
  int w = Complex() ? 2 : 1;
  double* d = data() + static_cast<std::size_t>(Index) * w;
  for (std::size_t i = 0; i < static_cast<std::size_t>(Len) * w; ++i) d[i] *= Value;
}

void TDenseKalpa::Mul(const TDenseKalpa& Vec) { Mul(*this, Vec); }

void TDenseKalpa::Mul(const TDenseKalpa& Vec1, const TDenseKalpa& Vec2) { Zip(Vec1, Vec2, times); }

void TDenseKalpa::Divide(const TDenseKalpa& Vec) { Divide(*this, Vec); }

void TDenseKalpa::Divide(const TDenseKalpa& Vec1, const TDenseKalpa& Vec2) { Zip(Vec1, Vec2, over); }

void TDenseKalpa::Offset(double Value) { Add(Value); }
void TDenseKalpa::Scale(double Value) { Mul(Value); }

void TDenseKalpa::Normalize(const TDenseKalpa& Vec, double Sub, double Div) {
  SizeLike(Vec, Vec.Complex());
  if (Complex()) {
    Normalize(Vec, TCplx(Sub, 0.0), Div);
    return;
  }
  mapReal(data(), Vec.data(), Length(), [Sub, Div](double a) { return (a - Sub) / Div; });
}

void TDenseKalpa::Normalize(const TDenseKalpa& Vec, TCplx Sub, double Div) {
  if (!Vec.Complex()) {
    if (Sub.imag() != 0.0) ERaise(msg::ComplexNotSupported);
    Normalize(Vec, Sub.real(), Div);
    return;
  }
  SizeLike(Vec, true);
  mapComplex(data(), Vec.data(), Length(), [Sub, Div](Cplx a) { return (a - Sub) / Div; });
}

void TDenseKalpa::Centre(const TDenseKalpa& Vec) {
  detail::RequireReal(Vec);
  const double m = Vec.Mean();
  Normalize(Vec, m, 1.0);
  Offset(-Mean());
}

void TDenseKalpa::Abs() { Abs(*this); }

void TDenseKalpa::Abs(const TDenseKalpa& Src) {
  if (!Src.Complex()) {
    SizeLike(Src, false);
    mapReal(data(), Src.data(), Length(), [](double a) { return std::fabs(a); });
    return;
  }
  // Magnitudes of complex data are real: build them apart, Self may be Src.
  TVec mags;
  mags.Size(Src.Length());
  for (int i = 0; i < Src.Length(); ++i) mags.data()[i] = std::abs(cplx(Src.data())[i]);
  SizeLike(Src, false);
  if (Length() > 0) std::memcpy(data(), mags.data(), sizeof(double) * Length());  // an empty vector may have no storage
}

void TDenseKalpa::Abs(int Index, int Len) {
  detail::RequireReal(*this);
  CheckRange(Index, Len);
  for (int i = Index; i < Index + Len; ++i) data()[i] = std::fabs(data()[i]);
}

void TDenseKalpa::Inv() { Inv(*this); }
void TDenseKalpa::Inv(const TDenseKalpa& Src) {
  SizeLike(Src, Src.Complex());
  map(data(), Src.data(), Length(), Complex(), [](auto a) { return decltype(a)(1.0) / a; });
}

namespace {

#if defined(STATKIT_HAVE_LIBMVEC) && defined(__x86_64__)
// glibc's vector exp and log (libmvec): four lanes in the AVX2 ABI where the processor has it, two in
// the SSE2 ABI that every x86-64 has; within 3 ulp of the scalar functions (measured over 10^7
// arguments spanning their ranges), the same at the special arguments, at a fraction of their cost.
extern "C" __m128d _ZGVbN2v_exp(__m128d);
extern "C" __m128d _ZGVbN2v_log(__m128d);
extern "C" [[gnu::target("avx2")]] __m256d _ZGVdN4v_exp(__m256d);
extern "C" [[gnu::target("avx2")]] __m256d _ZGVdN4v_log(__m256d);

template <__m256d (*Wide)(__m256d), double (*Scalar)(double)>
[[gnu::target("avx2")]] void mapAvx2(double* d, const double* a, int n) {
  int i = 0;
  for (; i + 4 <= n; i += 4) _mm256_storeu_pd(d + i, Wide(_mm256_loadu_pd(a + i)));
  for (; i < n; ++i) d[i] = Scalar(a[i]);
}

// d[i] = f(a[i]) over n real elements (d may be a), f = Scalar with the lanes of Wide and Narrow.
template <__m256d (*Wide)(__m256d), __m128d (*Narrow)(__m128d), double (*Scalar)(double)>
void mapVector(double* d, const double* a, int n) {
  if (__builtin_cpu_supports("avx2")) return mapAvx2<Wide, Scalar>(d, a, n);
  int i = 0;
  for (; i + 2 <= n; i += 2) _mm_storeu_pd(d + i, Narrow(_mm_loadu_pd(a + i)));
  for (; i < n; ++i) d[i] = Scalar(a[i]);
}
double scalarExp(double x) { return std::exp(x); }
double scalarLog(double x) { return std::log(x); }
void expReal(double* d, const double* a, int n) { mapVector<_ZGVdN4v_exp, _ZGVbN2v_exp, scalarExp>(d, a, n); }
void logReal(double* d, const double* a, int n) { mapVector<_ZGVdN4v_log, _ZGVbN2v_log, scalarLog>(d, a, n); }
#else
void expReal(double* d, const double* a, int n) { mapReal(d, a, n, [](double x) { return std::exp(x); }); }
void logReal(double* d, const double* a, int n) { mapReal(d, a, n, [](double x) { return std::log(x); }); }
#endif

}  // namespace

void TDenseKalpa::Exp() { Exp(*this); }
void TDenseKalpa::Exp(const TDenseKalpa& Src) {
  SizeLike(Src, Src.Complex());
  if (Complex()) mapComplex(data(), Src.data(), Length(), [](Cplx a) { return std::exp(a); });
  else expReal(data(), Src.data(), Length());
}
void TDenseKalpa::Exp(int Index, int Len) {
  CheckRange(Index, Len);
  int w = Complex() ? 2 : 1;
  map(data() + Index * w, data() + Index * w, Len, Complex(), [](auto a) { return std::exp(a); });
}

void TDenseKalpa::Ln() { Ln(*this); }
void TDenseKalpa::Ln(const TDenseKalpa& Src) {
  SizeLike(Src, Src.Complex());
  if (Complex()) mapComplex(data(), Src.data(), Length(), [](Cplx a) { return std::log(a); });
  else logReal(data(), Src.data(), Length());
}

void TDenseKalpa::Sqrt() { Sqrt(*this); }
void TDenseKalpa::Sqrt(const TDenseKalpa& Src) {
  SizeLike(Src, Src.Complex());
  map(data(), Src.data(), Length(), Complex(), [](auto a) { return std::sqrt(a); });
}

void TDenseKalpa::Sqr() { Sqr(*this); }
void TDenseKalpa::Sqr(const TDenseKalpa& Src) {
  SizeLike(Src, Src.Complex());
  map(data(), Src.data(), Length(), Complex(), [](auto a) { return a * a; });
}

void TDenseKalpa::Power(double Exponent) {
  map(data(), data(), Length(), Complex(), [Exponent](auto a) { return std::pow(a, decltype(a)(Exponent)); });
}

void TDenseKalpa::IntPower(int Exponent) {
  if (Complex()) {
    mapComplex(data(), data(), Length(), [Exponent](Cplx a) { return std::pow(a, Exponent); });
  } else {
    mapReal(data(), data(), Length(), [Exponent](double a) { return statkit::IntPower(a, Exponent); });
  }
}

void TDenseKalpa::Sign() {
  map(data(), data(), Length(), Complex(), [](auto a) { return -a; });
}

void TDenseKalpa::Ceil() {
  detail::RequireReal(*this);
  mapReal(data(), data(), Length(), [](double a) { return std::ceil(a); });
}

void TDenseKalpa::Trunc() {
  detail::RequireReal(*this);
  mapReal(data(), data(), Length(), [](double a) { return std::trunc(a); });
}

void TDenseKalpa::IntToFloat(const TDenseKalpa& Src) {
  // Whole-number storage is kept in doubles already: the conversion is a copy.
  detail::RequireReal(Src);
  Copy(Src);
}

void TDenseKalpa::Conj(const TDenseKalpa& Src) {
  Copy(Src);
  if (Complex()) mapComplex(data(), data(), Length(), [](Cplx a) { return std::conj(a); });
}

void TDenseKalpa::CumSum(int Index, int Len) {
  if (Len == -1) Len = Length() - Index;
  CheckRange(Index, Len);
  if (Complex()) {
    Cplx* d = cplx(data()) + Index;
    for (int i = 1; i < Len; ++i) d[i] += d[i - 1];
  } else {
    double* d = data() + Index;
    for (int i = 1; i < Len; ++i) d[i] += d[i - 1];
  }
}

void TDenseKalpa::Difference(const TDenseKalpa& Src, int SrcIndex, int Index, int Len) {
  if (Src.Complex() != Complex()) ERaise(msg::ComplexNotSupported);
  if (Len == 0) return;
  Src.CheckRange(SrcIndex, Len);
  CheckRange(Index, Len - 1);
  int w = Complex() ? 2 : 1;
  // Forward order: an in-place difference reads element i + 1 before it is overwritten.
  const double* s = Src.data() + SrcIndex * w;
  double* d = data() + Index * w;
  for (int i = 0; i + 1 < Len; ++i)
    for (int k = 0; k < w; ++k) d[i * w + k] = s[(i + 1) * w + k] - s[i * w + k];
}

void TDenseKalpa::Reverse(const TDenseKalpa& Src, int SrcIndex, int Index, int Len) {
  if (Src.Complex() != Complex()) ERaise(msg::ComplexNotSupported);
  Src.CheckRange(SrcIndex, Len);
  CheckRange(Index, Len);
  TVec copy;
  copy.Size(Len, Src.Complex());
  copy.Copy(Src, SrcIndex, 0, Len);
  int w = Complex() ? 2 : 1;
  for (int i = 0; i < Len; ++i)
    for (int k = 0; k < w; ++k) data()[(Index + i) * w + k] = copy.data()[(Len - 1 - i) * w + k];
}

// --- reductions ----------------------------------------------------------------

double TDenseKalpa::Sum() const {
  detail::RequireReal(*this);
  return plainSum(data(), Length());
}

void TDenseKalpa::Sum(TCplx& Result) const {
  Result = Complex() ? complexSum(data(), Length()) : TCplx(Sum(), 0.0);
}

double TDenseKalpa::Mean() const {
  detail::RequireReal(*this);
  requireNonEmpty(*this);
  return plainSum(data(), Length()) / Length();
}

double TDenseKalpa::Mean(int Index, int Len) const {
  detail::RequireReal(*this);
  CheckRange(Index, Len);
  if (Len == 0) ERaise(msg::EmptyVector);
  return plainSum(data() + Index, Len) / Len;
}

TCplx TDenseKalpa::Meanc() const {
  requireNonEmpty(*this);
  TCplx s;
  Sum(s);
  return s / static_cast<double>(Length());
}

void TDenseKalpa::MinMax(double& Lo, double& Hi) const {
  detail::RequireReal(*this);
  requireNonEmpty(*this);
  detail::MinMax(data(), Length(), Lo, Hi);
}

double TDenseKalpa::Max() const {
  double lo, hi;
  MinMax(lo, hi);
  return hi;
}

double TDenseKalpa::Min() const {
  double lo, hi;
  MinMax(lo, hi);
  return lo;
}

void TDenseKalpa::SelectRanks(int First, std::span<double> Dst) const {
  detail::RequireReal(*this);
  if (Dst.empty()) return;
  if (First < 0 || First > Length() || Dst.size() > static_cast<std::size_t>(Length() - First))
    ERaise(msg::IndexOutOfRange);
  detail::SelectRanks(data(), Length(), First, Dst.size(), Dst.data());
}

TCplx TDenseKalpa::Maxc() const {
  requireNonEmpty(*this);
  if (!Complex()) return {Max(), 0.0};
  const Cplx* x = cplx(data());
  int best = 0;
  for (int i = 1; i < Length(); ++i)
    if (std::abs(x[i]) > std::abs(x[best])) best = i;
  return x[best];
}

TCplx TDenseKalpa::Minc() const {
  requireNonEmpty(*this);
  if (!Complex()) return {Min(), 0.0};
  const Cplx* x = cplx(data());
  int best = 0;
  for (int i = 1; i < Length(); ++i)
    if (std::abs(x[i]) < std::abs(x[best])) best = i;
  return x[best];
}

double TDenseKalpa::StdDev() const {
  requireNonEmpty(*this);
  if (Complex()) return StdDev(Meanc());
  double m = Mean();
  return std::sqrt(centredSumOfSquares(data(), Length(), m) / (Length() - 1));
}

double TDenseKalpa::StdDev(double Mean) const {
  requireNonEmpty(*this);
  if (Complex()) return StdDev(TCplx(Mean, 0.0));
  return std::sqrt(deviationSumOfSquares(data(), Length(), Mean) / (Length() - 1));
}

double TDenseKalpa::StdDev(TCplx Mean) const {
  requireNonEmpty(*this);
  if (!Complex()) {
    if (Mean.imag() != 0.0) ERaise(msg::ComplexNotSupported);
    return StdDev(Mean.real());
  }
  return std::sqrt(complexDeviationSumOfSquares(data(), Length(), Mean) / (Length() - 1));
}

double TDenseKalpa::RMS() const {
  requireNonEmpty(*this);
  return std::sqrt(SumOfSquares() / Length());
}

double TDenseKalpa::NormL2() const { return std::sqrt(SumOfSquares()); }

double TDenseKalpa::SumOfSquares() const {
  // For complex data the squared magnitudes: the sum of the squares of all doubles.
  return squaresSum(data(), static_cast<std::size_t>(Length()) * (Complex() ? 2 : 1));
}

void TDenseKalpa::Product(double& Result) const {
  detail::RequireReal(*this);
  double p = 1.0;
  for (int i = 0; i < Length(); ++i) p *= data()[i];
  Result = p;
}

double TDenseKalpa::DotProd(const TDenseKalpa& Vec) const {
  requireSameLength(*this, Vec);
  return DotProd(Vec, 0, 0, Length());
}

double TDenseKalpa::DotProd(const TDenseKalpa& Vec, int VecIndex, int Index, int Len) const {
  detail::RequireReal(*this);
  detail::RequireReal(Vec);
  Vec.CheckRange(VecIndex, Len);
  CheckRange(Index, Len);
  return detail::Dot(data() + Index, Vec.data() + VecIndex, Len);
}

TCplx TDenseKalpa::DotProdc(const TDenseKalpa& Vec, bool Conjugate) const {
  requireSameLength(*this, Vec);
  if (!Complex() || !Vec.Complex()) {
    if (Complex() || Vec.Complex()) ERaise(msg::ComplexNotSupported);
    return {DotProd(Vec), 0.0};
  }
  const Cplx *a = cplx(data()), *b = cplx(Vec.data());
  Cplx s = 0;
  for (int i = 0; i < Length(); ++i) s += (Conjugate ? std::conj(a[i]) : a[i]) * b[i];
  return s;
}

double Mean(const TDenseKalpa& X) { return X.Mean(); }
double Min(const TDenseKalpa& X) { return X.Min(); }
double Max(const TDenseKalpa& X) { return X.Max(); }

// --- element-wise matrix operations ------------------------------------------

void TMtx::MulElem(const TMtx& Mtx) {
  if (Mtx.Rows() != Rows() || Mtx.Cols() != Cols()) ERaise(msg::SizeMismatch);
  TDenseKalpa::Mul(Mtx);
}

void TMtx::InvElem(double Threshold) {
  if (Complex()) {
    mapComplex(data(), data(), Length(), [Threshold](Cplx e) {
      return std::abs(e) < Threshold ? Cplx(1.0 / Threshold, 0.0) : 1.0 / e;
    });
    return;
  }
  mapReal(data(), data(), Length(), [Threshold](double e) {
    if (std::fabs(e) < Threshold) return e < 0 ? -1.0 / Threshold : 1.0 / Threshold;
    return 1.0 / e;
  });
}

void TMtx::SumCols(TVec& Dst) const {
  detail::RequireReal(*this);
  // Row by row accumulation keeps the reads sequential; each column's sum is compensated.
  std::vector<double> s(Cols(), 0.0), c(Cols(), 0.0);
  const double* x = data();
  for (int r = 0; r < Rows(); ++r) {
    const double* row = x + static_cast<std::size_t>(r) * Cols();
    for (int j = 0; j < Cols(); ++j) {
      double t = s[j] + row[j];
      c[j] += std::fabs(s[j]) >= std::fabs(row[j]) ? (s[j] - t) + row[j] : (row[j] - t) + s[j];
      s[j] = t;
    }
  }
  Dst.Size(Cols());
  for (int j = 0; j < Cols(); ++j) Dst.data()[j] = s[j] + c[j];
}

namespace {
/// Complex means of the rows (or the columns) of \p m into \p Dst.
void complexMeans(const TMtx& m, bool ofRows, TVec& Dst) {
  const int count = ofRows ? m.Rows() : m.Cols();
  TVec line;
  std::vector<Cplx> means(count);
  for (int i = 0; i < count; ++i) {
    if (ofRows) line.GetRow(m, i);
    else line.GetCol(m, i);
    means[i] = line.Meanc();
  }
  Dst.Size(count, true);
  std::copy(means.begin(), means.end(), cplx(Dst.data()));
}
}  // namespace

void TMtx::MeanCols(TVec& Dst) const {
  if (Rows() == 0) ERaise(msg::EmptyVector);
  if (Complex()) return complexMeans(*this, false, Dst);
  int rows = Rows();
  SumCols(Dst);
  Dst.Scale(1.0 / rows);
}

void TMtx::SumRows(TVec& Dst) const {
  detail::RequireReal(*this);
  std::vector<double> s(Rows());
  for (int r = 0; r < Rows(); ++r) s[r] = plainSum(data() + static_cast<std::size_t>(r) * Cols(), Cols());
  Dst.Size(Rows());
  std::copy(s.begin(), s.end(), Dst.data());
}

void TMtx::MeanRows(TVec& Dst) const {
  if (Cols() == 0) ERaise(msg::EmptyVector);
  if (Complex()) return complexMeans(*this, true, Dst);
  int cols = Cols();
  SumRows(Dst);
  Dst.Scale(1.0 / cols);
}

void TMtx::TensorProd(const TVec& Vec1, const TVec& Vec2) {
  TMtx tmp(Vec1.Length(), Vec2.Length(), Vec1.Complex() || Vec2.Complex());
  tmp.SetZero();
  tmp.AddTensorProd(Vec1, Vec2);
  *this = std::move(tmp);
}

void TMtx::AddTensorProd(const TVec& Vec1, const TVec& Vec2, bool ConjVec2) {
  if (Rows() != Vec1.Length() || Cols() != Vec2.Length()) ERaise(msg::SizeMismatch);
  if (!Complex()) {
    detail::RequireReal(Vec1, Vec2);
    for (int i = 0; i < Rows(); ++i) {
      double a = Vec1.data()[i];
      double* row = data() + static_cast<std::size_t>(i) * Cols();
      for (int j = 0; j < Cols(); ++j) row[j] += a * Vec2.data()[j];
    }
    return;
  }
  auto elem = [](const TVec& v, int i) { return v.Complex() ? cplx(v.data())[i] : Cplx(v.data()[i], 0.0); };
  Cplx* d = cplx(data());
  for (int i = 0; i < Rows(); ++i)
    for (int j = 0; j < Cols(); ++j) {
      Cplx b = elem(Vec2, j);
      d[static_cast<std::size_t>(i) * Cols() + j] += elem(Vec1, i) * (ConjVec2 ? std::conj(b) : b);
    }
}

}  // namespace statkit
