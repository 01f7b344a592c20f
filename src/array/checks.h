#pragma once
// The checks and the error translation that every file of the array layer
// shares, so each message is raised from one place.

#include <new>
#include <utility>

#include "statkit/array/Errors.h"
#include "statkit/array/Kalpa.h"

namespace statkit::detail {

/// \brief Raises "Complex data not supported" when any operand is complex.
template <class... Operands>
void RequireReal(const Operands&... operands) {
  if ((operands.Complex() || ...)) RaiseComplex();
}

/// \brief Runs \p work; a std::bad_alloc leaving it (Eigen's and the standard
/// containers' way of failing) becomes the layer's "Out of memory".
template <class Work>
decltype(auto) RaisingOutOfMemory(Work&& work) {
  try {
    return std::forward<Work>(work)();
  } catch (const std::bad_alloc&) {
    ERaise(msg::OutOfMemory);
  }
}

}  // namespace statkit::detail
