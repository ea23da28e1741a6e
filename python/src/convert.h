#pragma once

#include "zelmresult/reading/labelled_result.h"
#include "zelmresult/support/wstring.h"

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <string>
#include <utility>
#include <vector>

// Values of the library as Python objects. All of this needs the interpreter's lock.

namespace binding {

namespace py = pybind11;

// What isn't valid UTF-16 comes with replacement characters, since such a str could not be printed.
py::str ToPython(ZelmResult::wstring_view text);

// An array that owns the values and can't be written.
template <class T>
py::array ReadOnly(std::vector<T>&& values, const std::vector<std::size_t>& shape)
{
    auto* kept = new std::vector<T>(std::move(values));
    const py::capsule owner(kept, [](void* vector) { delete static_cast<std::vector<T>*>(vector); });
    py::array array(py::dtype::of<T>(), shape, kept->data(), owner);
    py::detail::array_proxy(array.ptr())->flags &= ~py::detail::npy_api::NPY_ARRAY_WRITEABLE_;
    return array;
}

// A dictionary, of which zelmresult/_content.py makes objects.
py::dict ToPython(ZelmResult::LabelledResult&& result);

} // namespace binding
