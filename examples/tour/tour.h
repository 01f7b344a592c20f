#pragma once
// The tour's sections register themselves; main runs them by their order key.

#include <cstdio>

namespace tour {

using SectionFn = void (*)();
bool RegisterSection(int order, const char* title, SectionFn run);

}  // namespace tour

#define TOUR_SECTION(order, title, fn) \
  static const bool tour_registered_##fn = ::tour::RegisterSection(order, title, fn)
