#pragma once
// The process-wide uniform generator: the seed source of every random
// generator that the library creates. Thread-safe; it starts from a fixed
// state, so a program that never seeds it repeats its results.

#include <cstdint>

#include "statkit/array/Config.h"

namespace statkit {

/// \brief The next uniform value in [0, 1) of the process-wide generator.
STATKIT_API double Random();
/// \brief Seeds the process-wide generator.
STATKIT_API void RandSeed(std::uint32_t Seed);
/// \brief Seeds the process-wide generator from the clock.
STATKIT_API void Randomize();

}  // namespace statkit
