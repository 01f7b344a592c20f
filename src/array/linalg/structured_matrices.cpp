// Matrices given by a few parameters: Toeplitz (constant along each diagonal)
// and Vandermonde (powers of the nodes, highest first, as numpy.vander).
// Inputs are copied before Self is written, so a view of Self's storage may be
// passed in; running out of memory for those copies raises the layer's own message.

#include <new>
#include <vector>

#include "array/checks.h"
#include "statkit/array/Kalpa.h"

namespace statkit {

void TMtx::Toeplitz(const TVec& Vec1, const TVec& Vec2) {
  detail::RaisingOutOfMemory([&] {
    detail::RequireReal(Vec1, Vec2);
    // Element (i, j) is Vec1[i - j] on and below the diagonal, Vec2[j - i - 1] above it.
    const int rows = Vec1.Length();
    if (rows == 0 && Vec2.Length() > 0) ERaise(msg::SizeMismatch);
    const int cols = rows == 0 ? 0 : Vec2.Length() + 1;
    const std::vector<double> column(Vec1.begin(), Vec1.end());
    const std::vector<double> row(Vec2.begin(), Vec2.end());
    Size(rows, cols);
    double* out = data();
    for (int i = 0; i < rows; ++i)
      for (int j = 0; j < cols; ++j) *out++ = j <= i ? column[i - j] : row[j - i - 1];
  });
}

void TMtx::VanderMonde(int Cols, const TVec& Vec) {
  detail::RaisingOutOfMemory([&] {
    detail::RequireReal(Vec);
    if (Cols < 0) ERaise(msg::SizeMismatch);
    const std::vector<double> nodes(Vec.begin(), Vec.end());
    const int rows = static_cast<int>(nodes.size());
    Size(rows, Cols);
    double* out = data();
    // Powers by repeated multiplication from x^0 = 1 in the last column: exact
    // for whole numbers while they fit, and 0^0 = 1.
    for (int i = 0; i < rows; ++i) {
      double power = 1.0;
      for (int j = Cols - 1; j >= 0; --j) {
        out[static_cast<std::size_t>(i) * Cols + j] = power;
        power *= nodes[i];
      }
    }
  });
}

}  // namespace statkit
