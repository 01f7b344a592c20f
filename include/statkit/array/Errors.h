#pragma once
// The one error type that reaches the host, and the routine that raises it.

#include <stdexcept>
#include <string>

#include "statkit/array/Config.h"

namespace statkit {

/// \brief The library's error: what() is the message, character for character.
class STATKIT_API EArrayError : public std::runtime_error {
public:
  explicit EArrayError(const std::string& msg) : std::runtime_error(msg) {}
};

/// \brief Raises EArrayError with \p Msg; never returns.
[[noreturn]] STATKIT_API void ERaise(const std::string& Msg);

/// The array layer's own messages: a closed list, raised without a prefix.
namespace msg {
inline constexpr const char* IndexOutOfRange = "Index out of range";
inline constexpr const char* SizeMismatch = "Size mismatch";
inline constexpr const char* EmptyVector = "Empty vector";
inline constexpr const char* DivisionByZero = "Division by zero";
inline constexpr const char* SingularMatrix = "Singular matrix";
inline constexpr const char* NotPositiveDefinite = "Matrix is not positive definite";
inline constexpr const char* ComplexNotSupported = "Complex data not supported";
inline constexpr const char* InvalidParameter = "Invalid parameter";
inline constexpr const char* IntegerOverflow = "Integer overflow";
inline constexpr const char* GeneratorNotSupported = "Basic generator not supported";
inline constexpr const char* OutOfMemory = "Out of memory";
}  // namespace msg

}  // namespace statkit
