#include "binding.h"
namespace statkit::python {
void BindTimeSeries(py::module_&) {}
}  // namespace statkit::python
