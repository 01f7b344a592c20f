#include "call_table.h"
namespace calltable {
std::vector<Row> RegressionRows() { return {}; }
}  // namespace calltable
