// Biased auto- and cross-correlation by direct summation: each lag is one dot
// product of the series with its shifted self, accumulated with four
// independent sums. Direct summation costs n (Lags + 1) products, which for
// the few dozen lags that statistics asks for beats an FFT of the padded series.

#include <algorithm>
#include <limits>

#include "statkit/array/Kalpa.h"

namespace statkit {

namespace {
double laggedDot(const double* a, const double* b, int len) {
  double s0 = 0, s1 = 0, s2 = 0, s3 = 0;
  int i = 0;
  for (; i + 4 <= len; i += 4) {
    s0 += a[i] * b[i];
    s1 += a[i + 1] * b[i + 1];
    s2 += a[i + 2] * b[i + 2];
    s3 += a[i + 3] * b[i + 3];
  }
  for (; i < len; ++i) s0 += a[i] * b[i];
  return (s0 + s1) + (s2 + s3);
}
}  // namespace

void TVec::AutoCorrBiased(const TVec& Src, int Lags) {
  CrossCorr(Src, Src, Lags, 0);
}

void TVec::CrossCorr(const TVec& Vec1, const TVec& Vec2, int Lags, int Offset) {
  if (Vec1.Complex() || Vec2.Complex()) ERaise(msg::ComplexNotSupported);
  if (Lags < 0 || Offset < 0) ERaise(msg::IndexOutOfRange);
  if (Vec1.Length() == 0) ERaise(msg::EmptyVector);
  if (Lags == std::numeric_limits<int>::max()) ERaise(msg::IntegerOverflow);
  const int n = Vec1.Length();
  // Lags at or beyond the series are zero: only the first n are computed.
  TVec r;
  r.Size(Lags + 1);
  r.SetZero();
  for (int k = 0; k <= Lags; ++k) {
    long shift = static_cast<long>(k) + Offset;
    if (shift >= Vec2.Length()) break;
    int len = static_cast<int>(std::min<long>(n, Vec2.Length() - shift));
    r.data()[k] = laggedDot(Vec1.data(), Vec2.data() + shift, len) / n;
  }
  Copy(r);
}

}  // namespace statkit
