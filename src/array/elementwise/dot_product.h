#pragma once
// Vectorised kernels shared by the array layer's own files.

#include <cstddef>

namespace statkit::detail {

/// \brief sum a[i] b[i] for i < n: blocks of sixteen vector lanes, block sums compensated.
double Dot(const double* a, const double* b, std::size_t n);

}  // namespace statkit::detail
