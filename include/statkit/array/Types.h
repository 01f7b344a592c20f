#pragma once
// Scalar types and enumerations of the array layer.

#include <complex>
#include <cstdint>
#include <span>

#include "statkit/array/Errors.h"

namespace statkit {

using TCplx = std::complex<double>;

/// Direct access to an object's storage (shares it; writes land in the object).
using TDoubleArray = std::span<double>;

/// \brief Kind of matrix for solvers and products.
enum TMtxType : std::uint8_t {
  mtPosDefSymmetric,
  mtSymmetric,
  mtPosDefHermitian,
  mtHermitian,
  mtTriangular,
  mtGeneral
};

/// \brief How an operand enters a product: as it is, transposed, or conjugate-transposed.
enum TMtxOperation : std::uint8_t { opNone, opTranspose, opConjTranspose };

/// \brief Which triangle a triangular matrix occupies.
enum TTriangleForm : std::uint8_t { tfLower, tfUpper };

/// \brief A small row-major view of a matrix's storage.
class T2DSampleArray {
public:
  T2DSampleArray() = default;
  T2DSampleArray(double* data, int rows, int cols) : data_(data), rows_(rows), cols_(cols) {}
  double& operator()(int r, int c) const {
    if (r < 0 || r >= rows_ || c < 0 || c >= cols_) ERaise(msg::IndexOutOfRange);
    return data_[static_cast<std::size_t>(r) * cols_ + c];
  }
  int Rows() const { return rows_; }
  int Cols() const { return cols_; }
  double* data() const { return data_; }

private:
  double* data_ = nullptr;
  int rows_ = 0;
  int cols_ = 0;
};

}  // namespace statkit
