// Prints every row of the call table as "name value value ...", the values
// with 17 significant digits (exact for doubles); a row whose call raises
// prints "name error <message>".

#include "call_table.h"

#include <cstdio>

namespace calltable {

statkit::TVec Data(int n, int k) {
  statkit::TVec v(n);
  for (int i = 0; i < n; ++i) v[i] = static_cast<double>((i * 7919LL + k * 104729LL) % 1009) / 16.0;
  return v;
}

statkit::TMtx Data(int rows, int cols, int k) {
  const statkit::TVec v = Data(rows * cols, k);
  statkit::TMtx m(rows, cols);
  for (int i = 0; i < rows * cols; ++i) m.data()[i] = v[i];
  return m;
}

void Put(Values& out, const statkit::TDenseKalpa& x) {
  const int n = x.Length() * (x.Complex() ? 2 : 1);
  out.insert(out.end(), x.data(), x.data() + n);
}

}  // namespace calltable

int main() {
  using namespace calltable;
  std::vector<Row> rows;
  for (auto part : {StatisticsRows, DistributionRows, RegressionRows, SeriesAndChartRows, SummaryRows})
    for (Row& r : part()) rows.push_back(std::move(r));
  for (const Row& r : rows) {
    std::printf("%s", r.name.c_str());
    try {
      for (double v : r.call()) std::printf(" %.17g", v);
    } catch (const statkit::EArrayError& e) {
      std::printf(" error %s", e.what());
    }
    std::printf("\n");
  }
}
