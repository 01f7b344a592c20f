#include "binding.h"
namespace statkit::python {
void BindRegress(py::module_&) {}
void BindRegModels(py::module_&) {}
}  // namespace statkit::python
