#pragma once
// The array layer: vectors and matrices, the pool of temporaries, scalar and
// probability functions, the process-wide generator and the error routine.

#include "statkit/array/Config.h"
#include "statkit/array/Errors.h"
#include "statkit/array/Kalpa.h"
#include "statkit/array/Math.h"
#include "statkit/array/Optim.h"
#include "statkit/array/Pool.h"
#include "statkit/array/Probability.h"
#include "statkit/array/Random.h"
#include "statkit/array/Types.h"
