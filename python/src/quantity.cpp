#include "python/src/bindings.h"
#include "python/src/convert.h"
#include "tools/zmxf/showing/value_text.h"
#include "zelmresult/quantities/grandeur.h"
#include "zelmresult/reading/labelled_quantity.h"
#include "zelmresult/support/text.h"

#include <pybind11/stl.h>

#include <cmath>
#include <limits>

namespace binding {

namespace {

using ZelmResult::LabelledQuantity;
using ZelmResult::LabelledUnit;
using Floats = py::array_t<float, py::array::c_style | py::array::forcecast>;

std::vector<std::size_t> ShapeOf(const Floats& values) { return {values.shape(), values.shape() + values.ndim()}; }

// One number for each of the values, without the interpreter's lock.
template <class Convert>
py::array Converted(const Floats& values, const Convert& convert)
{
    std::vector<double> converted(static_cast<std::size_t>(values.size()));
    const float* const first = values.data();
    {
        const py::gil_scoped_release unlocked;
        for (std::size_t i = 0; i < converted.size(); ++i) converted[i] = convert(first[i]);
    }
    return ReadOnly(std::move(converted), ShapeOf(values));
}

py::array InUnit(const LabelledQuantity& quantity, const Floats& values)
{
    return Converted(values, [&quantity](float value) { return quantity.InUnit(value); });
}

py::array InDecibels(const LabelledQuantity& quantity, const Floats& values)
{
    return Converted(values, [&quantity](float value) {
        return quantity.InDecibels(value).value_or(std::numeric_limits<double>::quiet_NaN());
    });
}

py::dict Dimension(const LabelledQuantity& quantity)
{
    py::dict dimension;
    for (std::size_t i = 0; i < quantity.exponents.size(); ++i)
        if (quantity.exponents[i] != 0.0)
            dimension[ToPython(LabelledQuantity::kBaseSymbols[i])] = quantity.exponents[i];
    return dimension;
}

std::string Text(const std::optional<LabelledQuantity>& quantity, float value, bool decibels,
                 std::pair<float, float> precision, std::uint32_t weighting)
{
    ZelmResult::CPonderationUnite function;
    function.SetPonderationLabelUnite(static_cast<int>(weighting));
    return zmxf::ValueText(value, quantity, {precision.first, precision.second},
                           decibels ? zmxf::Scale::Decibels : zmxf::Scale::Linear, &function);
}

py::tuple State(const LabelledQuantity& quantity)
{
    py::object shown = py::none();
    if (const auto& unit = quantity.shown; unit)
        shown = py::make_tuple(unit->label, unit->slope, unit->offset, unit->decibelReference, unit->decibelFactor);
    return py::make_tuple(quantity.key, quantity.name, quantity.exponents, quantity.uffType, quantity.siSymbol, shown);
}

LabelledQuantity FromState(const py::tuple& state)
{
    LabelledQuantity quantity;
    quantity.key = state[0].cast<ZelmResult::wstring>();
    quantity.name = state[1].cast<ZelmResult::wstring>();
    quantity.exponents = state[2].cast<decltype(quantity.exponents)>();
    quantity.uffType = state[3].cast<std::uint16_t>();
    quantity.siSymbol = state[4].cast<ZelmResult::wstring>();
    if (state[5].is_none()) return quantity;
    const auto unit = state[5].cast<py::tuple>();
    quantity.shown = LabelledUnit{unit[0].cast<ZelmResult::wstring>(), unit[1].cast<double>(), unit[2].cast<double>(),
                                  unit[3].cast<float>(), unit[4].cast<float>()};
    return quantity;
}

// From the fields of a quantity that is to be written.
std::optional<LabelledQuantity> MakeQuantity(const py::dict& fields)
{
    ZelmResult::CUnite unit;
    ZelmResult::CGrandeur quantity;
    FillQuantity(fields, unit, quantity);
    return LabelledQuantity::Of(&quantity);
}

// A property of the shown unit; without one the value that changes nothing.
template <class T>
auto OfUnit(T LabelledUnit::*member)
{
    return [member](const LabelledQuantity& quantity) { return quantity.shown.value_or(LabelledUnit{}).*member; };
}

// As it is stored.
std::uint8_t BiasedExponent(const py::handle& exponent)
{
    const double twice = 2.0 * exponent.cast<double>();
    if (twice != std::round(twice) || std::fabs(twice) > 100.0)
        throw py::value_error("exponents are multiples of 1/2, from -50 to 50");
    return static_cast<std::uint8_t>(128 + static_cast<int>(twice));
}

} // namespace

void FillQuantity(const py::dict& fields, ZelmResult::CUnite& unit, ZelmResult::CGrandeur& quantity)
{
    const auto text = [&fields](const char* name) { return ZelmResult::FromUtf8(fields[name].cast<std::string>()); };
    unit.SetUnitKey(text("unit"));
    unit.SetNomUnite(text("unit"));
    unit.SetLabelLinUnite(text("unit"));
    unit.SetCoeffA(fields["slope"].cast<float>());
    unit.SetCoeffB(fields["offset"].cast<float>());
    unit.SetRef0dB(fields["db_reference"].cast<float>());
    unit.SetCoefdB(fields["db_factor"].cast<float>());
    quantity.SetQuantityKey(text("key"));
    quantity.SetNomGrandeur(text("name"));
    quantity.SetTypeUFF(fields["uff_type"].cast<std::uint16_t>());
    ZelmResult::EquationDim dimension;
    std::uint8_t* const exponents[] = {&dimension.Radians,   &dimension.Steradians, &dimension.Meters,
                                       &dimension.Kilograms, &dimension.Seconds,    &dimension.Amperes,
                                       &dimension.Kelvins,   &dimension.Moles,      &dimension.Candelas};
    std::size_t i = 0;
    for (std::uint8_t* exponent : exponents) *exponent = BiasedExponent(fields["exponents"].cast<py::list>()[i++]);
    quantity.SetEqDim(ZelmResult::CEquationDim(dimension));
    quantity.AjouteUniteDynamique(&unit);
    (void)quantity.SetUniteCourante(&unit); // it was just added
}

void BindQuantity(py::module_& module)
{
    py::class_<LabelledQuantity>(module, "QuantityCore")
        .def_property_readonly("key", [](const LabelledQuantity& q) { return ToPython(q.key); })
        .def_property_readonly("name", [](const LabelledQuantity& q) { return ToPython(q.name); })
        .def_property_readonly("si_unit", [](const LabelledQuantity& q) { return ToPython(q.siSymbol); })
        .def_property_readonly("shown_unit",
                               [](const LabelledQuantity& q) { return ToPython(OfUnit(&LabelledUnit::label)(q)); })
        .def_property_readonly("slope", OfUnit(&LabelledUnit::slope))
        .def_property_readonly("offset", OfUnit(&LabelledUnit::offset))
        .def_property_readonly("db_reference", OfUnit(&LabelledUnit::decibelReference))
        .def_property_readonly("db_factor", OfUnit(&LabelledUnit::decibelFactor))
        .def_property_readonly("db_reference_text", [](const LabelledQuantity& q) { return zmxf::DecibelReference(q); })
        .def_property_readonly("has_db", &LabelledQuantity::HasDecibels)
        .def_property_readonly("dimension", Dimension)
        .def_readonly("uff_type", &LabelledQuantity::uffType)
        .def("in_unit", InUnit)
        .def("in_db", InDecibels)
        .def("__eq__", [](const LabelledQuantity& a, const LabelledQuantity& b) { return a == b; })
        .def("__hash__", [](const LabelledQuantity& q) { return py::hash(State(q)[0]); })
        .def(py::pickle([](const LabelledQuantity& q) { return State(q); },
                        [](const py::tuple& s) { return FromState(s); }));
    module.def("value_text", Text);
    module.def("make_quantity", MakeQuantity);
}

} // namespace binding
