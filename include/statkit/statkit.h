#pragma once
// Everything statkit exports.

#include "statkit/Array.h"
#include "statkit/Statistics.h"
