#include "binding.h"
namespace statkit::python {
void BindProbPlots(py::module_&) {}
void BindControlCharts(py::module_&) {}
}  // namespace statkit::python
