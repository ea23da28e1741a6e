#pragma once

#include <pybind11/pybind11.h>

namespace ZelmResult {
class CGrandeur;
class CUnite;
} // namespace ZelmResult

namespace binding {

namespace py = pybind11;

void BindQuantity(py::module_& module);
// Gives a quantity the fields of a dictionary, and the unit. Keeps a pointer to the unit.
void FillQuantity(const py::dict& fields, ZelmResult::CUnite& unit, ZelmResult::CGrandeur& quantity);
void BindReader(py::module_& module);
void BindWriter(py::module_& module);

} // namespace binding
