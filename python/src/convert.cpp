#include "python/src/convert.h"

#include "zelmresult/support/text.h"

#include <pybind11/stl.h>

#include <array>

namespace binding {

namespace {

using ZelmResult::LabelledArray;
using ZelmResult::LabelledResult;

// In the order of LabelledForm.
constexpr std::array kForms{"level", "broad_band",  "global_level", "order_levels", "vector",
                            "bands", "order_track", "overview",     "pair",         "waterfall"};

py::list TextsToPython(const std::vector<ZelmResult::wstring>& texts)
{
    py::list list;
    for (const ZelmResult::wstring& text : texts) list.append(ToPython(text));
    return list;
}

py::object ValuesToPython(LabelledArray&& array)
{
    if (const auto* texts = array.Texts(); texts != nullptr) return TextsToPython(*texts);
    if (auto* floats = std::get_if<0>(&array.values)) return ReadOnly(std::move(*floats), array.shape);
    if (auto* complex = std::get_if<1>(&array.values)) return ReadOnly(std::move(*complex), array.shape);
    return ReadOnly(std::move(*std::get_if<2>(&array.values)), array.shape);
}

py::list ArraysToPython(std::vector<LabelledArray>&& arrays)
{
    py::list list;
    for (LabelledArray& array : arrays) {
        py::dict made;
        made["name"] = ToPython(array.name);
        made["title"] = ToPython(array.title);
        made["dims"] = py::tuple(TextsToPython(array.dimensions));
        made["quantity"] = array.quantity;
        made["weighting"] = array.weighting;
        made["precision"] = py::make_tuple(array.absolutePrecision, array.relativePrecision);
        made["is_reference"] = array.isReference;
        made["values"] = ValuesToPython(std::move(array));
        list.append(std::move(made));
    }
    return list;
}

// By the names of dimensions, the coordinates that they are shown along.
py::dict AxesToPython(const LabelledResult& result)
{
    py::dict axes;
    for (const LabelledArray& array : result.data)
        for (const ZelmResult::wstring& dimension : array.dimensions)
            if (const LabelledArray* axis = result.Axis(dimension); axis != nullptr)
                axes[ToPython(dimension)] = ToPython(axis->name);
    return axes;
}

} // namespace

py::str ToPython(ZelmResult::wstring_view text)
{
    int order = -1; // little-endian
    PyObject* made = PyUnicode_DecodeUTF16(reinterpret_cast<const char*>(text.data()),
                                           static_cast<py::ssize_t>(2 * text.size()), "replace", &order);
    if (made == nullptr) throw py::error_already_set();
    return py::reinterpret_steal<py::str>(made);
}

py::dict ToPython(LabelledResult&& result)
{
    py::dict made;
    made["form"] = kForms.at(static_cast<std::size_t>(result.form));
    made["quantity"] = result.quantity;
    made["chosen_reference"] = ToPython(result.chosenReference);
    made["lost_references"] =
        result.lostReferences ? py::object(ToPython(result.lostReferences->Text())) : py::object(py::none());
    made["axes"] = AxesToPython(result);
    made["coords"] = ArraysToPython(std::move(result.coordinates));
    made["data"] = ArraysToPython(std::move(result.data));
    return made;
}

} // namespace binding
