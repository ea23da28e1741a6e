#include "tools/zmxf/comparing/result_difference.h"

#include "tools/zmxf/base/text.h"
#include "tools/zmxf/comparing/value_differences.h"
#include "zelmresult/quantities/ponderation_unite.h"

#include <algorithm>
#include <fmt/format.h>
#include <set>
#include <utility>

namespace zmxf {

namespace {

using ZelmResult::LabelledArray;
using ZelmResult::LabelledResult;
using ZelmResult::LabelledUnit;
using ZelmResult::wstring;
using What = Difference::What;

bool AreSame(double a, double b) { return Tolerance().Holds(a, b); }

bool AreSame(const LabelledUnit& a, const LabelledUnit& b)
{
    const auto areSame = [](float of, float with) {
        return AreSame(static_cast<double>(of), static_cast<double>(with));
    };
    return a.label == b.label && AreSame(a.slope, b.slope) && AreSame(a.offset, b.offset) &&
           areSame(a.decibelReference, b.decibelReference) && areSame(a.decibelFactor, b.decibelFactor);
}

// The name for people is of a language.
bool AreSame(const Quantity& a, const Quantity& b)
{
    if (!a || !b) return a.has_value() == b.has_value();
    if (!a->shown || !b->shown) return a->key == b->key && a->shown.has_value() == b->shown.has_value();
    return a->key == b->key &&
           std::equal(a->exponents.begin(), a->exponents.end(), b->exponents.begin(),
                      [](double of, double with) { return AreSame(of, with); }) &&
           AreSame(*a->shown, *b->shown);
}

// What tells two quantities apart, as short as it can be.
std::pair<std::string, std::string> Apart(const Quantity& a, const Quantity& b)
{
    const auto full = [](const Quantity& quantity) {
        if (!quantity) return std::string("none");
        const auto& unit = quantity->shown;
        return fmt::format("{} in {}, {} per {} and {} more, 0 dB at {}, factor {}", Printable(quantity->key),
                           UnitLabel(quantity), unit ? ExactText(unit->slope) : "none", Printable(quantity->siSymbol),
                           unit ? ExactText(unit->offset) : "none",
                           unit ? ExactText(ShortestDouble(unit->decibelReference)) : "none",
                           unit ? ExactText(ShortestDouble(unit->decibelFactor)) : "none");
    };
    if (!a || !b || (UnitLabel(a) == UnitLabel(b) && a->key == b->key)) return {full(a), full(b)};
    if (UnitLabel(a) != UnitLabel(b)) return {UnitLabel(a), UnitLabel(b)};
    return {Printable(a->key), Printable(b->key)};
}

// "159 x 4001 complex"
std::string ShapeText(const LabelledArray& array)
{
    return fmt::format("{}{}", array.shape.empty() ? "1" : fmt::format("{}", fmt::join(array.shape, " x ")),
                       array.Complexes() != nullptr ? " complex" : "");
}

std::string WeightingText(std::uint32_t weighting)
{
    const std::string name = Printable(ZelmResult::CPonderationUnite::GetFunctionName(static_cast<int>(weighting)));
    return name.empty() ? "none" : name;
}

std::string WeightingText(const ZelmResult::LabelledInformation& information)
{
    return fmt::format("{}, time weighting {}, window {}", WeightingText(information.weighting),
                       information.timeWeighting, information.window);
}

class Comparison {
public:
    Comparison(const LabelledResult& a, const LabelledResult& b, const Tolerance& tolerance)
        : m_a(a), m_b(b), m_tolerance(tolerance)
    {
    }

    std::vector<Difference> Run()
    {
        const std::string ofA = WeightingText(m_a.information);
        const std::string ofB = WeightingText(m_b.information);
        if (ofA != ofB) m_found.push_back({What::Weighting, {}, {}, ofA, ofB});
        CompareAll(m_a.coordinates, m_b.coordinates, false);
        CompareAll(m_a.data, m_b.data, true);
        return std::move(m_found);
    }

private:
    void Note(What what, const LabelledArray& array, std::string a, std::string b)
    {
        m_found.push_back({what, JsonText(array.name), Printable(array.title), std::move(a), std::move(b)});
    }

    void CompareAll(const std::vector<LabelledArray>& a, const std::vector<LabelledArray>& b, bool isData)
    {
        std::map<ZelmResult::wstring_view, const LabelledArray*> partners;
        for (const LabelledArray& array : b) partners[array.name] = &array;
        for (const LabelledArray& array : a) {
            const std::size_t before = m_found.size();
            if (const auto found = partners.find(array.name); found != partners.end()) {
                Compare(array, *found->second, isData);
                partners.erase(found);
            } else {
                Note(What::OnlyInA, array, ShapeText(array), "none");
            }
            if (!isData && m_found.size() > before) m_changedAxes.insert(array.name);
        }
        for (const LabelledArray& array : b)
            if (partners.contains(array.name)) Note(What::OnlyInB, array, "none", ShapeText(array));
    }

    void Compare(const LabelledArray& a, const LabelledArray& b, bool isData)
    {
        if (!AreSame(a.quantity, b.quantity)) {
            auto [ofA, ofB] = Apart(a.quantity, b.quantity);
            Note(What::Unit, a, std::move(ofA), std::move(ofB));
        }
        if (a.weighting != b.weighting)
            Note(What::Weighting, a, WeightingText(a.weighting), WeightingText(b.weighting));
        if (a.shape != b.shape || a.dimensions != b.dimensions || a.values.index() != b.values.index())
            Note(What::Shape, a, ShapeText(a), ShapeText(b));
        else if (isData && IsAlongChangedAxis(a))
            Note(What::NotCompared, a, {}, {});
        else if (auto difference = CompareValues(m_a, a, b, m_tolerance, isData))
            m_found.push_back(*std::move(difference));
    }

    [[nodiscard]] bool IsAlongChangedAxis(const LabelledArray& array) const
    {
        return std::any_of(array.dimensions.begin(), array.dimensions.end(), [this](const wstring& dimension) {
            const LabelledArray* axis = m_a.Axis(dimension);
            return m_changedAxes.contains(dimension) || (axis != nullptr && m_changedAxes.contains(axis->name));
        });
    }

    const LabelledResult& m_a;
    const LabelledResult& m_b;
    const Tolerance& m_tolerance;
    std::set<wstring> m_changedAxes; // coordinates
    std::vector<Difference> m_found;
};

} // namespace

const char* NameOf(What what)
{
    switch (what) {
    case What::OnlyInA: return "only in a";
    case What::OnlyInB: return "only in b";
    case What::Unit: return "unit";
    case What::Weighting: return "weighting";
    case What::Shape: return "shape";
    case What::Values: return "values";
    case What::NotCompared: break;
    }
    return "not compared";
}

std::vector<Difference> CompareResults(const LabelledResult& a, const LabelledResult& b, const Tolerance& tolerance)
{
    return Comparison(a, b, tolerance).Run();
}

} // namespace zmxf
