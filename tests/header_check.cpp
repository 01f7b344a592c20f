// Compiles every public header without Eigen or Boost on the include path.
#include "statkit/statkit.h"
