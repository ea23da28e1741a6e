// Results of one level or of several.

#include "zelmresult/reading/labelled_captions.h"
#include "zelmresult/reading/labelled_parts.h"
#include "zelmresult/results/level_results.h"
#include "zelmresult/support/text.h"

#include <algorithm>

namespace ZelmResult::labelled {

namespace {

constexpr std::uint32_t kWeightingC = 3;

// Levels that stand in one array, and their extremes in two more.
class LevelArrays {
public:
    LevelArrays(const CResult& result, LabelledResult& labelled) : m_result(result), m_labelled(labelled) {}

    // Gives the value; the two others follow it.
    LabelledArray& Add(const wstring& name, const wstring& title, const std::vector<Dimension>& dimensions,
                       const std::vector<const CScalar*>& levels)
    {
        const bool isPlain = name == u"value";
        const auto add = [&](const wstring& own, const wstring& suffix,
                             float (CScalar::*value)() const) -> std::size_t {
            std::vector<float> values;
            values.reserve(levels.size());
            for (const CScalar* level : levels) values.push_back((level->*value)());
            m_labelled.data.push_back(Array(own, title + suffix, dimensions, std::move(values)));
            DescribeAsY(m_result, m_labelled.data.back());
            m_labelled.data.back().quantity = QuantityOf(levels);
            return m_labelled.data.size() - 1;
        };
        const std::size_t first = add(name, {}, &CScalar::lastValue);
        (void)add(isPlain ? u"maximum" : name + u"_maximum", u", maximum", &CScalar::maxValue);
        (void)add(isPlain ? u"minimum" : name + u"_minimum", u", minimum", &CScalar::minValue);
        return m_labelled.data[first];
    }
    // The last level and its extremes.
    void SetQuantity(const LabelledQuantity& quantity)
    {
        for (std::size_t i = m_labelled.data.size() - 3; i < m_labelled.data.size(); ++i)
            m_labelled.data[i].quantity = quantity;
    }
    void SetWeighting(std::uint32_t weighting)
    {
        for (std::size_t i = m_labelled.data.size() - 3; i < m_labelled.data.size(); ++i)
            m_labelled.data[i].weighting = weighting;
    }

private:
    // None for levels of different quantities.
    static std::optional<LabelledQuantity> QuantityOf(const std::vector<const CScalar*>& levels)
    {
        const bool areSame = std::all_of(levels.begin(), levels.end(), [&](const CScalar* level) {
            return level->GetMagnitude() == levels.front()->GetMagnitude();
        });
        return areSame ? LabelledQuantity::Of(levels.front()->GetMagnitude()) : std::nullopt;
    }

    const CResult& m_result;
    LabelledResult& m_labelled;
};

void AddOf(const CScalar& level, LabelledResult& labelled)
{
    labelled.form = LabelledForm::Level;
    LevelArrays(level, labelled).Add(u"value", u"Value", {}, {&level});
}

void AddOf(const CBroadBand& result, LabelledResult& labelled)
{
    labelled.form = LabelledForm::BroadBand;
    const Dimension weightings{u"weighting", CBroadBand::kTriples};
    std::vector<wstring> names =
        ItemsOf(CaptionList::BroadBand, labelled.information.process, static_cast<std::size_t>(CBroadBand::kTriples));
    const bool areNamed = !names.empty(); // by a program whose peaks are C weighted
    for (std::int32_t i = 1; i <= CBroadBand::kTriples && !areNamed; ++i) names.push_back(ToDecimal(i));
    labelled.coordinates.push_back(Array(u"weighting", u"Weighting", {weightings}, std::move(names)));

    LevelArrays arrays(result, labelled);
    arrays.Add(u"short_lpk", areNamed ? u"Short Lpk C" : u"Short Lpk", {}, {&result.GetShortLpk()});
    if (areNamed) arrays.SetWeighting(kWeightingC);
    using Get = const CScalar& (CBroadBand::*)(std::int32_t) const;
    const auto add = [&](const wstring& name, const wstring& title, Get get) {
        arrays.Add(name, title, {weightings}, {&(result.*get)(0), &(result.*get)(1), &(result.*get)(2)});
    };
    add(u"leq", u"Leq", &CBroadBand::GetLeq);
    add(u"short_leq", u"Short Leq", &CBroadBand::GetShortLeq);
    add(u"instant_leq", u"Instant Leq", &CBroadBand::GetInstantLeq);
}

void AddOf(const CGlobalLevel& result, LabelledResult& labelled)
{
    labelled.form = LabelledForm::GlobalLevel;
    LevelArrays arrays(result, labelled);
    const auto add = [&](const wstring& name, const wstring& title, CGlobalLevel::Statistic statistic) {
        arrays.Add(name, title, {}, {&result.GetLevel(statistic)});
    };
    const auto addNumber = [&](const wstring& name, const wstring& title, CGlobalLevel::Statistic statistic) {
        add(name, title, statistic);
        arrays.SetQuantity(LabelledQuantity::PlainNumber(title));
    };
    add(u"dc", u"DC", CGlobalLevel::DC);
    add(u"max", u"Maximum", CGlobalLevel::Max);
    add(u"min", u"Minimum", CGlobalLevel::Min);
    add(u"rms", u"RMS", CGlobalLevel::RMS);
    add(u"energy", u"Energy", CGlobalLevel::Energy);
    arrays.SetQuantity(LabelledQuantity::EnergyOf(labelled.data.back().quantity));
    addNumber(u"skewness", u"Skewness", CGlobalLevel::Skew);
    addNumber(u"kurtosis", u"Kurtosis", CGlobalLevel::Kurtosis);
    add(u"peak", u"Peak", CGlobalLevel::Peak);
    add(u"peak_to_peak", u"Peak to peak", CGlobalLevel::PeakPeak);
    addNumber(u"crest_factor", u"Crest factor", CGlobalLevel::CrestFactor);
}

void AddOf(const CSuiviOrdre& result, LabelledResult& labelled)
{
    labelled.form = LabelledForm::OrderLevels;
    constexpr std::int32_t count = 8;
    const Dimension orders{u"order", count};
    std::vector<float> numbers;
    std::vector<const CScalar*> levels;
    for (std::int32_t i = 0; i < count; ++i) {
        numbers.push_back(static_cast<float>(i + 1));
        levels.push_back(&result.GetOrder(i));
    }
    labelled.coordinates.push_back(Array(u"order", u"Order", {orders}, std::move(numbers)));
    LevelArrays arrays(result, labelled);
    arrays.Add(u"level", u"Order", {orders}, levels);
    arrays.Add(u"overall", u"Overall", {}, {&result.GetOverall()});
}

template <class T>
bool AddIf(const CResult& result, LabelledResult& labelled)
{
    const auto* own = dynamic_cast<const T*>(&result);
    if (own != nullptr) AddOf(*own, labelled);
    return own != nullptr;
}

} // namespace

bool AddLevels(const CResult& result, LabelledResult& labelled)
{
    return AddIf<CScalar>(result, labelled) || AddIf<CBroadBand>(result, labelled) ||
           AddIf<CGlobalLevel>(result, labelled) || AddIf<CSuiviOrdre>(result, labelled);
}

} // namespace ZelmResult::labelled
