// Biased auto- and cross-correlation by direct summation: each lag is one dot
// product of the series with its shifted self (the array layer's vectorised
// dot product). Direct summation costs n (Lags + 1) products, which for
// the few dozen lags that statistics asks for beats an FFT of the padded series.

#include <algorithm>
#include <limits>

#include "array/checks.h"
#include "array/elementwise/dot_product.h"
#include "statkit/array/Kalpa.h"

namespace statkit {

void TVec::AutoCorrBiased(const TVec& Src, int Lags) {
  CrossCorr(Src, Src, Lags, 0);
}

void TVec::CrossCorr(const TVec& Vec1, const TVec& Vec2, int Lags, int Offset) {
  detail::RequireReal(Vec1, Vec2);
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
    r.data()[k] = detail::Dot(Vec1.data(), Vec2.data() + shift, len) / n;
  }
  Copy(r);
}

}  // namespace statkit
