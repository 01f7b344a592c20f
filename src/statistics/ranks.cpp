// Distinct values and tied ranks, both read from a sorted copy of the data
// (the array layer's radix sort, which also reports each sorted element's
// original position). Tied elements share the mean of their ranks.

#include <algorithm>

#include "core/frame.h"
#include "statkit/Statistics.h"

namespace statkit::Statistics {

void Unique(const TVec& Src, TVec& Dst) {
  if (Src.Length() == 0) ERaise(msg::EmptyVector);  // there is no first value to keep
  PooledVec sorted;
  sorted->Copy(Src);
  sorted->SortAscend();
  double* s = sorted->data();
  // Each value is compared with its sorted predecessor, not with the last kept one, so a
  // chain of values each within Equal's tolerance of the next collapses to its first.
  int kept = 1;
  for (int i = 1, n = sorted->Length(); i < n; ++i)
    if (!Equal(s[i - 1], s[i])) s[kept++] = s[i];
  Dst.Size(kept);
  std::copy(s, s + kept, Dst.data());
}

namespace {

// Sorted positions first..last form a run of equal values: each of their elements gets
// the mean rank (first + last) / 2 + 1; returns the run's share t (t^2 - 1) / 2 of TieSum.
double closeRun(const double* position, int first, int last, double* ranks) {
  const double t = last - first + 1;
  const double mean = 0.5 * (first + last) + 1.0;
  for (int k = first; k <= last; ++k) ranks[static_cast<int>(position[k])] = mean;
  return t * (t * t - 1.0) * 0.5;
}

}  // namespace

void TiedRanks(const TVec& Data, TVec& Ranks, double& TieSum) {
  const int n = Data.Length();
  if (n == 0) return;
  PooledVec sorted, position;
  sorted->Copy(Data);
  sorted->SortAscend(*position);
  const double* s = sorted->data();
  Ranks.Size(n);  // Data has been copied: Ranks may be Data
  double ties = 0.0;
  // NaNs sort last and keep their order: exact equality never ties them, so each takes its own rank.
  int first = 0;  // start of the current run
  for (int k = 1; k <= n; ++k) {
    if (k < n && s[k] == s[first]) continue;
    ties += closeRun(position->data(), first, k - 1, Ranks.data());
    first = k;
  }
  TieSum = ties;
}

}  // namespace statkit::Statistics
