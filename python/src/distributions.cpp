#include "binding.h"
namespace statkit::python {
void BindDistributions(py::module_&) {}
}  // namespace statkit::python
