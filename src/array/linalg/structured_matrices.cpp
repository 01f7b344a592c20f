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

void LevinsonStepUp(std::span<double> Phi, double Reflection) {
  const std::size_t k = Phi.size();
  if (k == 0) ERaise(msg::EmptyVector);
  // phi_j <- phi_j - r phi_(k-j) over the order k - 1 coefficients, in symmetric pairs so that
  // each pair is read before it is replaced
  for (std::size_t j = 0, l = k - 2; j + 1 < k && j <= l; ++j, --l) {
    const double a = Phi[j], b = Phi[l];
    Phi[j] = a - Reflection * b;
    if (j != l) Phi[l] = b - Reflection * a;
  }
  Phi[k - 1] = Reflection;
}

void DurbinLevinson(const TVec& R, TVec& Phi, TVec& Reflection, TVec& ErrVar) {
  detail::RaisingOutOfMemory([&] {
    detail::RequireReal(R);
    const std::vector<double> r(R.begin(), R.end());  // read before any output is sized
    const int m = r.empty() ? 0 : static_cast<int>(r.size()) - 1;
    std::vector<double> phi(m, 0.0), pac(m), err(m, 0.0);
    if (m > 0) err[0] = r[0];
    for (int k = 0; k < m; ++k) {
      double s = 0.0;
      for (int j = 0; j < k; ++j) s += phi[j] * r[k - j];
      pac[k] = (r[k + 1] - s) / err[k];
      LevinsonStepUp(std::span<double>(phi.data(), static_cast<std::size_t>(k) + 1), pac[k]);
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
