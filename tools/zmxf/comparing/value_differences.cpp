#include "tools/zmxf/comparing/value_differences.h"

#include "tools/zmxf/base/text.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <limits>
#include <numbers>
#include <type_traits>

namespace zmxf {

namespace {

using ZelmResult::LabelledArray;
using ZelmResult::LabelledResult;
using ZelmResult::wstring;
using Complex = std::complex<float>;

double Magnitude(float value) { return std::fabs(static_cast<double>(value)); }
double Magnitude(std::int32_t value) { return std::fabs(static_cast<double>(value)); }
double Magnitude(const Complex& value)
{
    return std::hypot(static_cast<double>(value.real()), static_cast<double>(value.imag()));
}
double Magnitude(const wstring&) { return 0.0; }

double Apart(float a, float b) { return Distance(static_cast<double>(a), static_cast<double>(b)); }
double Apart(std::int32_t a, std::int32_t b) { return Distance(static_cast<double>(a), static_cast<double>(b)); }
double Apart(const Complex& a, const Complex& b) { return Distance(a, b); }
double Apart(const wstring& a, const wstring& b) { return a == b ? 0.0 : std::numeric_limits<double>::infinity(); }

Json ValueJson(float value) { return JsonNumber(value); }
Json ValueJson(std::int32_t value) { return value; }
Json ValueJson(const Complex& value)
{
    return {{"real", JsonNumber(value.real())}, {"imaginary", JsonNumber(value.imag())}};
}
Json ValueJson(const wstring& value) { return JsonText(value); }

Precision PrecisionOf(const LabelledArray& array) { return {array.absolutePrecision, array.relativePrecision}; }

std::string ValueTextOf(const LabelledArray& array, float value)
{
    return std::isnan(value) ? "no value" : ValueText(value, array.quantity, PrecisionOf(array), Scale::Linear);
}
std::string ValueTextOf(const LabelledArray&, std::int32_t value) { return std::to_string(value); }
std::string ValueTextOf(const LabelledArray& array, const Complex& value)
{
    const double degrees = static_cast<double>(std::arg(value)) * 180.0 / std::numbers::pi;
    return ValueTextOf(array, std::hypot(value.real(), value.imag())) + ' ' + AngleText(degrees);
}
std::string ValueTextOf(const LabelledArray&, const wstring& value) { return Printable(value); }

// All digits, for values that look alike with those that are worth printing.
std::string ExactTextOf(const LabelledArray& array, float value)
{
    const std::string unit = array.quantity ? Printable(array.quantity->siSymbol) : std::string();
    return ExactText(ShortestDouble(value)) + (unit.empty() ? "" : " " + unit);
}
std::string ExactTextOf(const LabelledArray& array, const Complex& value)
{
    return fmt::format("{}, {}", ExactTextOf(array, value.real()), ExactTextOf(array, value.imag()));
}
template <class T>
std::string ExactTextOf(const LabelledArray& array, const T& value)
{
    return ValueTextOf(array, value);
}

std::vector<std::size_t> IndexOf(const LabelledArray& array, std::size_t element)
{
    std::vector<std::size_t> index(array.shape.size());
    for (std::size_t i = index.size(); i-- > 0; element /= array.shape[i]) index[i] = element % array.shape[i];
    return index;
}

// Where it is: by the axis of each dimension, else by a text or a count.
void SetPlace(const LabelledResult& result, const LabelledArray& array, LargestDifference& largest)
{
    std::vector<std::string> texts;
    largest.at = Json::object();
    for (std::size_t i = 0; i < largest.index.size(); ++i) {
        const std::size_t at = largest.index[i];
        const wstring& dimension = array.dimensions[i];
        const LabelledArray* named = result.Coordinate(dimension);
        if (const LabelledArray* axis = result.Axis(dimension); axis != nullptr && axis != &array) {
            const float value = (*axis->Floats())[at];
            largest.at[JsonText(axis->name)] = JsonNumber(value);
            texts.push_back((axis->quantity ? "" : Printable(axis->title) + ' ') + ValueTextOf(*axis, value));
        } else if (named != nullptr && named != &array && named->Texts() != nullptr) {
            largest.at[JsonText(dimension)] = JsonText((*named->Texts())[at]);
            texts.push_back(Printable((*named->Texts())[at]));
        } else {
            largest.at[JsonText(dimension)] = at;
            texts.push_back(fmt::format("{} {}", Printable(dimension), at));
        }
    }
    largest.place = fmt::format("{}", fmt::join(texts, ", "));
}

template <class T>
class Scan {
public:
    Scan(const LabelledArray& a, const LabelledArray& b, const Tolerance& tolerance, bool isData)
        : m_a(a), m_ofA(std::get<std::vector<T>>(a.values)), m_ofB(std::get<std::vector<T>>(b.values)),
          m_tolerance(tolerance), m_isData(isData), m_hasLevels(isData && HasDecibels(a.quantity))
    {
    }

    std::optional<Difference> Run(const LabelledResult& result)
    {
        double highest = 0.0;
        std::optional<std::size_t> furthest;
        Difference difference{Difference::What::Values, JsonText(m_a.name), Printable(m_a.title), {}, {}, m_isData};
        LargestDifference largest;
        for (std::size_t i = 0; i < m_ofA.size(); ++i) {
            for (const double magnitude : {Magnitude(m_ofA[i]), Magnitude(m_ofB[i])})
                if (std::isfinite(magnitude)) highest = std::max(highest, magnitude);
            if (AreSame(m_ofA[i], m_ofB[i])) continue;
            ++difference.differing;
            const double distance = Apart(m_ofA[i], m_ofB[i]);
            if (furthest && distance <= largest.distance) continue;
            furthest = i;
            largest.distance = distance;
        }
        if (!furthest) return std::nullopt;
        const T& ofA = m_ofA[*furthest];
        const T& ofB = m_ofB[*furthest];
        difference.count = m_ofA.size();
        difference.a = ValueTextOf(m_a, ofA);
        difference.b = ValueTextOf(m_a, ofB);
        if (difference.a == difference.b) {
            difference.a = ExactTextOf(m_a, ofA);
            difference.b = ExactTextOf(m_a, ofB);
        }
        largest.share = highest > 0.0 ? largest.distance / highest : std::numeric_limits<double>::infinity();
        largest.index = IndexOf(m_a, *furthest);
        largest.a = ValueJson(ofA);
        largest.b = ValueJson(ofB);
        SetPlace(result, m_a, largest);
        difference.largest = std::move(largest);
        return difference;
    }

private:
    [[nodiscard]] bool AreSame(const T& a, const T& b) const
    {
        if constexpr (std::is_same_v<T, float>)
            return AreSame(static_cast<double>(a), static_cast<double>(b));
        else if constexpr (std::is_same_v<T, Complex>)
            return m_hasLevels ? m_tolerance.HoldsForLevels(a, b, *m_a.quantity) : m_tolerance.Holds(a, b);
        else
            return a == b;
    }

    [[nodiscard]] bool AreSame(double a, double b) const
    {
        return m_hasLevels ? m_tolerance.HoldsForLevels(a, b, *m_a.quantity) : m_tolerance.Holds(a, b);
    }

    const LabelledArray& m_a;
    const std::vector<T>& m_ofA;
    const std::vector<T>& m_ofB;
    const Tolerance& m_tolerance;
    bool m_isData;
    bool m_hasLevels;
};

} // namespace

std::optional<Difference> CompareValues(const LabelledResult& result, const LabelledArray& a, const LabelledArray& b,
                                        const Tolerance& tolerance, bool isData)
{
    return std::visit(
        [&](const auto& values) {
            using T = typename std::decay_t<decltype(values)>::value_type;
            return Scan<T>(a, b, tolerance, isData).Run(result);
        },
        a.values);
}

} // namespace zmxf
