// Matrices given by a few parameters: Toeplitz (constant along each diagonal)
// and Vandermonde (powers of the nodes, highest first, as numpy.vander), and the
// symmetric Toeplitz systems of autoregression solved by the Durbin-Levinson
// recursion (Durbin 1960; Brockwell and Davis, Time Series: Theory and Methods,
// 2nd ed., section 5.2). Inputs are copied before any output is written, so a
// view of an output's storage may be passed in.

#include <algorithm>
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

void DurbinLevinson(const TVec& R, TVec& Phi, TVec& Reflection, TVec& ErrVar) {
  detail::RaisingOutOfMemory([&] {
    detail::RequireReal(R);
    const std::vector<double> r(R.begin(), R.end());  // read before any output is sized
    const int m = r.empty() ? 0 : static_cast<int>(r.size()) - 1;
    std::vector<double> phi(m, 0.0), prev(m), pac(m), err(m, 0.0);
    if (m > 0) err[0] = r[0];
    for (int k = 0; k < m; ++k) {
      double s = 0.0;
      for (int j = 0; j < k; ++j) s += phi[j] * r[k - j];
      phi[k] = (r[k + 1] - s) / err[k];
      pac[k] = phi[k];
      // the order-(k+1) coefficients from the order-k ones, all read before any is replaced
      std::copy(phi.begin(), phi.begin() + k, prev.begin());
      for (int j = 0; j < k; ++j) phi[j] = prev[j] - phi[k] * prev[k - 1 - j];
      if (k < m - 1) err[k + 1] = err[k] * (1.0 - phi[k] * phi[k]);
    }
    const auto store = [m](TVec& dst, const std::vector<double>& v) {
      dst.Size(m);
      std::copy(v.begin(), v.end(), dst.data());
    };
    store(Phi, phi);
    store(Reflection, pac);
    store(ErrVar, err);
  });
}

}  // namespace statkit
