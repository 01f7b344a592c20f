// The vector forms of the probability functions: Dst sized like X, filled element by
// element from the scalar functions (the normal distribution function by blocks through
// the vector erfc), with every input read before an overlapping output is written.

#include "statkit/array/Probability.h"

#include "array/probability/internal.h"

#include <vector>

namespace statkit {

using namespace detail::prob;

namespace {

// Dst sized like X, with the storage to read and to write. Dst may be X itself; a
// Dst that only partly overlaps X's storage (two views of one buffer) reads from a
// copy of X, so that every input is read before any output is written.
struct Mapping {
  const double* x;
  double* d;
  int n;
  std::vector<double> copy;
};

Mapping prepareMapping(const TDenseKalpa& X, TDenseKalpa& Dst) {
  if (X.Complex()) ERaise(msg::ComplexNotSupported);
  if (&Dst != &X) Dst.Size(X);
  Mapping m{X.data(), Dst.data(), X.Length(), {}};
  if (m.n > 0 && m.x != m.d && m.x < m.d + m.n && m.d < m.x + m.n) {
    m.copy.assign(m.x, m.x + m.n);
    m.x = m.copy.data();
  }
  return m;
}

// Dst[i] = f(X[i]).
template <class F>
void mapElements(const TDenseKalpa& X, TDenseKalpa& Dst, F f) {
  Mapping m = prepareMapping(X, Dst);
  for (int i = 0; i < m.n; ++i) m.d[i] = f(m.x[i]);
}

}  // namespace

void NormalCDF(const TDenseKalpa& X, double Mu, double Sigma, TDenseKalpa& Dst) {
  if (!validNormal(Mu, Sigma)) return mapElements(X, Dst, [](double) { return kNaN; });
  Mapping m = prepareMapping(X, Dst);
  normalCdfInto(m.x, m.d, m.n, Mu, Sigma);
}

void NormalCDFInv(const TDenseKalpa& X, double Mu, double Sigma, TDenseKalpa& Dst) {
  mapElements(X, Dst, [=](double p) { return NormalCDFInv(p, Mu, Sigma); });
}

void FCDFInv(double p, const TDenseKalpa& Nu1, const TDenseKalpa& Nu2, TDenseKalpa& Dst) {
  if (Nu1.Complex() || Nu2.Complex()) ERaise(msg::ComplexNotSupported);
  if (Nu1.Length() != Nu2.Length()) ERaise(msg::SizeMismatch);
  // Degrees of freedom outside the whole numbers 1 .. INT_MAX are invalid parameters.
  auto df = [](double v) { return v >= 1.0 && v <= 2147483647.0 && isWhole(v) ? static_cast<int>(v) : 0; };
  const int n = Nu1.Length();
  std::vector<double> out(static_cast<std::size_t>(n));
  for (int i = 0; i < n; ++i) out[i] = FCDFInv(p, df(Nu1.data()[i]), df(Nu2.data()[i]));
  if (&Dst != &Nu1) Dst.Size(Nu1);
  for (int i = 0; i < n; ++i) Dst.data()[i] = out[i];
}

void GammaCDF(const TDenseKalpa& X, double A, double B, TDenseKalpa& Dst) {
  mapElements(X, Dst, [=](double x) { return GammaCDF(x, A, B); });
}

void GammaPDF(const TDenseKalpa& X, double A, double B, TDenseKalpa& Dst) {
  mapElements(X, Dst, [=](double x) { return GammaPDF(x, A, B); });
}

void BetaCDF(const TDenseKalpa& X, double A, double B, TDenseKalpa& Dst) {
  mapElements(X, Dst, [=](double x) { return BetaCDF(x, A, B); });
}

void BetaPDF(const TDenseKalpa& X, double A, double B, TDenseKalpa& Dst) {
  mapElements(X, Dst, [=](double x) { return BetaPDF(x, A, B); });
}

void WeibullCDF(const TDenseKalpa& X, double A, double B, TDenseKalpa& Dst) {
  mapElements(X, Dst, [=](double x) { return WeibullCDF(x, A, B); });
}

void WeibullPDF(const TDenseKalpa& X, double A, double B, TDenseKalpa& Dst) {
  mapElements(X, Dst, [=](double x) { return WeibullPDF(x, A, B); });
}

void ExpCDF(const TDenseKalpa& X, double Mu, TDenseKalpa& Dst) {
  mapElements(X, Dst, [=](double x) { return ExpCDF(x, Mu); });
}

void RayleighCDF(const TDenseKalpa& X, double B, TDenseKalpa& Dst) {
  mapElements(X, Dst, [=](double x) { return RayleighCDF(x, B); });
}

}  // namespace statkit
