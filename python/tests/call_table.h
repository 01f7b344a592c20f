#pragma once
// The C++ side of the Python module's call table: each row calls one
// operation on the shared inputs and lists its results as doubles, in the
// order the Python module returns them (named-tuple fields in order, arrays
// row by row, enumerations as their number). test_call_table.py makes the
// same calls from Python and expects the same doubles.

#include <functional>
#include <string>
#include <vector>

#include "statkit/statkit.h"

namespace calltable {

using Values = std::vector<double>;
struct Row {
  std::string name;  // the row's name in test_call_table.py
  std::function<Values()> call;
};

/// The shared inputs, exact in binary so both languages hold the same doubles:
/// element i of input k is ((i * 7919 + k * 104729) mod 1009) / 16.
statkit::TVec Data(int n, int k = 0);
/// Data(rows * cols, k) read row by row.
statkit::TMtx Data(int rows, int cols, int k);

/// Appends the elements of a vector or matrix (row by row).
void Put(Values& out, const statkit::TDenseKalpa& x);

// The rows of each unit.
std::vector<Row> StatisticsRows();
std::vector<Row> DistributionRows();
std::vector<Row> RegressionRows();
std::vector<Row> SeriesAndChartRows();
std::vector<Row> SummaryRows();

}  // namespace calltable
