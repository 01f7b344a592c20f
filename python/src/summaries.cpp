#include "binding.h"
namespace statkit::python {
void BindSummaries(py::module_&) {}
}  // namespace statkit::python
