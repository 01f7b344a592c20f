#pragma once
// The calling frame shared by every exported operation: the protected block
// that prefixes errors passing through it. The pieces every hypothesis test
// shares (decision, tails, interval shapes) are in core/test_decision.h.

#include <exception>
#include <new>
#include <string>
#include <utility>

#include "statkit/Array.h"

namespace statkit::core {

/// \brief Runs \p work; any exception leaving it is raised again as an
/// EArrayError whose message is \p prefix followed by the inner message.
/// Every nested block adds exactly one prefix.
template <class Work>
decltype(auto) Guarded(const char* prefix, Work&& work) {
  try {
    return std::forward<Work>(work)();
  } catch (const std::bad_alloc&) {
    ERaise(std::string(prefix) + msg::OutOfMemory);
  } catch (const std::exception& e) {
    ERaise(std::string(prefix) + e.what());
  } catch (...) {
    ERaise(std::string(prefix) + "Unknown error");
  }
}

}  // namespace statkit::core
