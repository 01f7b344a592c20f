// Full factorial design matrices: the two-level design of n factors (row i
// holds the bits of i, most significant first, optionally scaled per factor)
// and the mixed-level design (every combination of levels 1..L(j), the first
// factor changing fastest).

#include <cstdint>
#include <vector>

#include "core/frame.h"
#include "statkit/Statistics.h"

namespace statkit::Statistics {

void FullFactDesign(int n, TMtx& Dst, const TVec* MulVec) {
  core::Guarded("FullFactDesign : ", [&] {
    // 2^n rows: no int row count for n >= 31; a negative n is refused by the sizing
    if (n > 30) ERaise(msg::IntegerOverflow);
    const int N = n < 0 ? 0 : 1 << n;
    Dst.Size(N, n);
    Dst.SetZero();
    if (MulVec && MulVec->Length() != n) ERaise("FullFactDesign : MulVec.Length <> n");
    double* d = Dst.data();
    for (int c = 0; c < n; ++c) {
      // column c holds bit (n - 1 - c) of the row number, scaled by MulVec[n - 1 - c]
      const int bit = n - 1 - c;
      const double one = MulVec ? (*MulVec)[bit] : 1.0;
      for (int i = 0; i < N; ++i)
        if ((i >> bit) & 1) d[static_cast<std::size_t>(i) * n + c] = one;
    }
  });
}

void FullFactDesign(const TVec& Levels, TMtx& Dst) {
  // one past the largest int: counts and row numbers stay below it
  constexpr double kIntLimit = 2147483648.0;
  core::Guarded("FullFactDesign : ", [&] {
    const int k = Levels.Length();
    std::vector<int> L(k);
    std::int64_t N = 1;
    for (int j = 0; j < k; ++j) {
      const double v = Levels[j];
      if (!(v >= 1.0)) ERaise("Levels must be >= 1");  // NaN too
      if (v >= kIntLimit) ERaise(msg::IntegerOverflow);
      L[j] = static_cast<int>(v);  // truncated toward zero
      N *= L[j];
      if (N >= kIntLimit) ERaise(msg::IntegerOverflow);
    }
    Dst.Size(static_cast<int>(N), k);
    double* d = Dst.data();
    std::int64_t run = 1;  // product of the level counts of the factors before j
    for (int j = 0; j < k; ++j) {
      for (std::int64_t i = 0; i < N; ++i) d[i * k + j] = static_cast<double>((i / run) % L[j] + 1);
      run *= L[j];
    }
  });
}

}  // namespace statkit::Statistics
