#pragma once
// Symbol visibility: everything is hidden except what is marked STATKIT_API.

#include "statkit/array/Version.h"

#if defined(STATKIT_SHARED)
#  define STATKIT_API __attribute__((visibility("default")))
#else
#  define STATKIT_API
#endif
