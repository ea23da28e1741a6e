#include "web/binding/labelled_json.h"

#include "web/binding/memory.h"

#include "zelmresult/quantities/ponderation_unite.h"
#include "zelmresult/support/text.h"

#include <array>
#include <cmath>
#include <numbers>

namespace zmxf::web {

namespace {

using ZelmResult::LabelledArray;
using ZelmResult::LabelledResult;

// In the order of LabelledForm.
constexpr std::array kForms = {"level", "broad_band",  "global_level", "order_levels", "vector",
                               "bands", "order_track", "overview",     "pair",         "waterfall"};

Json TextsJson(const std::vector<ZelmResult::wstring>& texts)
{
    Json json = Json::array();
    for (const ZelmResult::wstring& text : texts) json.push_back(JsonText(text));
    return json;
}

std::string WeightingName(std::uint32_t weighting)
{
    ZelmResult::CPonderationUnite unit;
    unit.SetPonderationLabelUnite(static_cast<int>(weighting));
    return JsonText(unit.abreviation());
}

// A precision that is none counts as exact.
Json PrecisionJson(float precision) { return std::isfinite(precision) ? JsonNumber(precision) : Json(0.0); }

// Rounded once: the C library of the module would round twice, and differ from zmxf in the last digit.
float Magnitude(const std::complex<float>& value)
{
    const std::complex<double> exact = value;
    return static_cast<float>(std::sqrt(exact.real() * exact.real() + exact.imag() * exact.imag()));
}

Json AxesJson(const LabelledResult& result)
{
    Json json = Json::object();
    for (const LabelledArray& array : result.data)
        for (const ZelmResult::wstring& dimension : array.dimensions)
            if (const LabelledArray* axis = result.Axis(dimension); axis != nullptr)
                json[JsonText(dimension)] = JsonText(axis->name);
    return json;
}

} // namespace

ToldResult::ToldResult(LabelledResult result, KnownQuantities& quantities) : m_result(std::move(result))
{
    m_json["form"] = kForms.at(static_cast<std::size_t>(m_result.form));
    m_json["kindName"] = JsonText(m_result.information.kind);
    m_json["quantity"] = quantities.Describe(m_result.quantity);
    m_json["coordinates"] = ArraysJson(m_result.coordinates, quantities);
    m_json["data"] = ArraysJson(m_result.data, quantities);
    m_json["axes"] = AxesJson(m_result);
    m_json["chosenReference"] = JsonText(m_result.chosenReference);
    const auto& lost = m_result.lostReferences;
    m_json["lostReferences"] = lost ? Json(JsonText(lost->Text())) : Json(nullptr);
}

Json ToldResult::ArraysJson(const std::vector<LabelledArray>& arrays, KnownQuantities& quantities)
{
    Json all = Json::array();
    for (const LabelledArray& array : arrays) {
        Json json{{"name", JsonText(array.name)}, {"title", JsonText(array.title)}};
        json["dimensions"] = TextsJson(array.dimensions);
        json["shape"] = array.shape;
        json["quantity"] = quantities.Describe(array.quantity);
        json["weighting"] = WeightingName(array.weighting);
        json["weightingCode"] = array.weighting;
        json["absolutePrecision"] = PrecisionJson(array.absolutePrecision);
        json["relativePrecision"] = PrecisionJson(array.relativePrecision);
        json["isReference"] = array.isReference;
        AddValues(array, json);
        all.push_back(std::move(json));
    }
    return all;
}

void ToldResult::AddValues(const LabelledArray& array, Json& json)
{
    json["floats"] = json["integers"] = json["texts"] = json["complex"] = nullptr;
    if (const auto* floats = array.Floats()) json["floats"] = PlaceJson(std::span(*floats));
    if (const auto* numbers = array.Numbers()) json["integers"] = PlaceJson(std::span(*numbers));
    if (const auto* texts = array.Texts()) json["texts"] = TextsJson(*texts);
    if (const auto* complex = array.Complexes()) AddComplex(*complex, json);
}

void ToldResult::AddComplex(const std::vector<std::complex<float>>& values, Json& json)
{
    std::vector<float> magnitude, phase, real, imaginary;
    for (auto* part : {&magnitude, &phase, &real, &imaginary}) part->reserve(values.size());
    for (const std::complex<float>& value : values) {
        magnitude.push_back(Magnitude(value));
        const double angle = std::atan2(static_cast<double>(value.imag()), static_cast<double>(value.real()));
        phase.push_back(static_cast<float>(angle * 180.0 / std::numbers::pi));
        real.push_back(value.real());
        imaginary.push_back(value.imag());
    }
    json["floats"] = Keep(std::move(magnitude));
    json["complex"] = {
        {"real", Keep(std::move(real))}, {"imaginary", Keep(std::move(imaginary))}, {"phase", Keep(std::move(phase))}};
}

Json ToldResult::Keep(std::vector<float> values)
{
    return PlaceJson(std::span<const float>(m_kept.emplace_back(std::move(values))));
}

} // namespace zmxf::web
