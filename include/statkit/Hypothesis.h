#pragma once
// The outcome shape shared by every hypothesis test of statkit: the
// alternative tested and the decision reached.

#include <array>
#include <cstdint>
#include <string_view>

namespace statkit::Statistics {

/// \brief Alternative hypothesis: two-sided, upper tail, lower tail.
enum THypothesisType : std::uint8_t { htTwoTailed, htRightTailed, htLeftTailed };
inline constexpr std::array<std::string_view, 3> THypothesisTypeNames{"htTwoTailed", "htRightTailed",
                                                                      "htLeftTailed"};

/// \brief Outcome of a test: not rejected, rejected, undecidable (NaN significance).
enum THypothesisResult : std::uint8_t { hrNotReject, hrReject, hrNan };
inline constexpr std::array<std::string_view, 3> THypothesisResultNames{"hrNotReject", "hrReject", "hrNan"};

}  // namespace statkit::Statistics
