#pragma once
// The statistics of a fit and the one-way table from their sums of squares,
// shared by the regression and analysis-of-variance operations and by the
// mergeable summaries that rebuild them from merged parts.

#include "statkit/Regress.h"

namespace statkit::Regress::detail {

/// Fills \p s for a fit of \p n observations with \p p coefficients from the total and
/// residual sums of squares, and scales \p V by the residual variance.
void RegressionStats(int n, int p, double SST, double SSE, bool Constant, TMtx& V, TRegStats& s);
/// The same with the regression sum of squares \p SSR formed by the caller (more accurately than
/// SST - SSE in double, where SSE is nearly all of SST).
void RegressionStats(int n, int p, double SST, double SSE, double SSR, bool Constant, TMtx& V, TRegStats& s);

/// The one-way table of \p N values in \p k groups from its sums of squares.
TANOVA1Table OneWayTable(double between, double within, double total, int N, int k, double& Signif,
                         double Alpha);

}  // namespace statkit::Regress::detail
