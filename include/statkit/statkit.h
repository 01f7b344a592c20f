#pragma once
// Everything statkit exports.

#include "statkit/Array.h"
#include "statkit/Statistics.h"
#include "statkit/RegModels.h"
#include "statkit/Regress.h"
#include "statkit/StatTimeSerAnalysis.h"
#include "statkit/StatProbPlots.h"
#include "statkit/StatControlCharts.h"
#include "statkit/Summaries.h"
