#pragma once
// Objectives receive their work objects as TObject pointers and take each one
// back by position with a checked cast.

#include <span>

#include "statkit/Array.h"

namespace statkit::StatTimeSerAnalysis::detail {

/// Objects[i] as a T; a missing object or one of another class raises "Invalid parameter".
template <class T>
T& ObjectAt(std::span<TObject* const> Objects, std::size_t i) {
  T* o = i < Objects.size() ? dynamic_cast<T*>(Objects[i]) : nullptr;
  if (o == nullptr) ERaise(msg::InvalidParameter);
  return *o;
}

}  // namespace statkit::StatTimeSerAnalysis::detail
