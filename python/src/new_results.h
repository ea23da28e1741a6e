#pragma once

#include "python/src/writer.h"

#include <pybind11/numpy.h>

#include <string>
#include <vector>

// Results made from arrays. Values are in SI units; headers are dictionaries, quantities numbers of the writer.

namespace binding {

using Floats = py::array_t<float, py::array::c_style | py::array::forcecast>;

void AddLevel(Writer& writer, const py::dict& header, std::size_t quantity, float value, float least, float most);

// A spectrum or another vector at even steps. Imaginary parts are none for real values.
struct EvenAxis {
    std::size_t quantity = 0;
    float first = 0.0F;
    float last = 0.0F;
};
void AddVector(Writer& writer, const py::dict& header, std::size_t quantity, const py::tuple& axis, const Floats& real,
               const py::object& imaginary);
// Bands of octaves from the middle of the first; levels are those of all bands, plain and weighted.
void AddBands(Writer& writer, const py::dict& header, std::size_t quantity, const py::tuple& axis,
              std::uint32_t fraction, const Floats& values, const py::tuple& levels);

// All waterfalls of one run-up, with the references that they share. A reference is a tuple of its header, its name,
// its quantity and its values; a waterfall one of its header, its quantity, its axis and its values, slice by slice.
void AddRunUp(Writer& writer, const std::vector<std::int32_t>& blocks, const std::string& chosen,
              const py::list& references, const py::list& waterfalls);

// Orders by points; references are tuples of a name, a quantity and values.
void AddOrderTrack(Writer& writer, const py::dict& header, std::size_t quantity, const std::string& chosen,
                   const py::list& references, const Floats& values);

} // namespace binding
