// Vectors of all kinds, pairs, order tracks and overviews.

#include "zelmresult/quantities/ponderation_unite.h"
#include "zelmresult/reading/labelled_captions.h"
#include "zelmresult/reading/labelled_parts.h"
#include "zelmresult/results/compressed_result.h"
#include "zelmresult/results/double_result.h"
#include "zelmresult/results/order_track.h"
#include "zelmresult/results/reg_vector.h"
#include "zelmresult/support/charconv.h"
#include "zelmresult/support/text.h"

#include <algorithm>
#include <limits>

namespace ZelmResult::labelled {

namespace {

std::vector<std::complex<float>> Joined(const std::vector<float>& real, const std::vector<float>& imaginary)
{
    std::vector<std::complex<float>> joined(real.size());
    std::transform(real.begin(), real.end(), imaginary.begin(), joined.begin(),
                   [](float re, float im) { return std::complex<float>(re, im); });
    return joined;
}

LabelledArray::Values ValuesOf(CVector& vector)
{
    std::vector<float> real(PointsOf(vector));
    const auto count = static_cast<std::int32_t>(real.size());
    vector.GetRealValues(real.data(), count);
    if (vector.GetComplexType() != SignalType::Complex) return real;
    std::vector<float> imaginary(real.size());
    vector.GetImValues(imaginary.data(), count);
    return Joined(real, imaginary);
}

wstring ValueTitle(const CResult& result)
{
    const CGrandeur* quantity = result.GetMagnitude();
    return quantity != nullptr ? quantity->quantityName() : u"Value";
}

LabelledArray Described(const CResult& result, LabelledArray array)
{
    DescribeAsY(result, array);
    return array;
}

// The parts of bands: values, and the levels of all of them together.
class BandParts {
public:
    BandParts(CRegVector& bands, const Dimension& axis) : m_bands(bands), m_axis(axis) {}

    void Add(const wstring& name, const wstring& title, LabelledArray::Values values)
    {
        m_parts.push_back(Described(m_bands, Array(name, title, {m_axis}, std::move(values))));
    }
    void AddLevels(const wstring& name, const wstring& title, AvgOctaveTarget target)
    {
        const std::uint32_t weighting = m_bands.GetPonderationGlob();
        const wstring function = CPonderationUnite::GetFunctionName(static_cast<int>(weighting));
        const auto level = [](float value) { return std::vector<float>{value}; };
        m_parts.push_back(Described(m_bands, Array(name, title, {}, level(m_bands.GetGlobLevel(target)))));
        m_parts.push_back(
            Described(m_bands, Array(name + u"_weighted",
                                     function.empty() ? title + u", weighted" : Concat(title, u", weighted ", function),
                                     {}, level(m_bands.GetGlobPondLevel(target)))));
        m_parts.back().weighting = weighting;
    }
    std::vector<LabelledArray> Take() { return std::move(m_parts); }

private:
    CRegVector& m_bands;
    const Dimension& m_axis;
    std::vector<LabelledArray> m_parts;
};

// The minimum and the maximum have values and levels of their own, beside the others or alone.
std::vector<LabelledArray> PartsOfBands(CRegVector& bands, const Dimension& axis)
{
    const SignalType type = bands.GetComplexType();
    std::vector<float> values(axis.size);
    const auto count = static_cast<std::int32_t>(values.size());
    BandParts parts(bands, axis);
    if (type == SignalType::Octave || type == SignalType::OctaveMinMax) {
        parts.Add(u"value", ValueTitle(bands), ValuesOf(bands));
        parts.AddLevels(u"global", u"Global", AvgOctaveTarget::Averaged);
    }
    if (type == SignalType::OctaveMin || type == SignalType::OctaveMinMax) {
        bands.GetRealValuesMin(values.data(), count);
        parts.Add(u"minimum", u"Minimum", values);
        parts.AddLevels(u"global_minimum", u"Global minimum", AvgOctaveTarget::Minimum);
    }
    if (type == SignalType::OctaveMax || type == SignalType::OctaveMinMax) {
        bands.GetRealValuesMax(values.data(), count);
        parts.Add(u"maximum", u"Maximum", values);
        parts.AddLevels(u"global_maximum", u"Global maximum", AvgOctaveTarget::Maximum);
    }
    return parts.Take();
}

// The names of orders, and their numbers when all of them are numbers.
void AddOrders(const Dimension& orders, Names& names, LabelledResult& labelled)
{
    const wstring number = names.Take(u"order");
    const wstring name = names.Take(u"order_name");
    std::vector<wstring> items = ItemsOf(CaptionList::Orders, labelled.information.process, orders.size);
    if (items.empty()) return;
    std::vector<float> numbers;
    for (const wstring& item : items) {
        const std::string text = ToUtf8(item);
        float read = 0.0F;
        if (!text.empty() && FromChars(text, read) == text.size()) numbers.push_back(read);
    }
    if (numbers.size() == items.size())
        labelled.coordinates.push_back(Array(number, u"Order", {orders}, std::move(numbers)));
    labelled.coordinates.push_back(Array(name, u"Order", {orders}, std::move(items)));
}

// A track without points has one order of none.
bool AddTrack(CResult& result, LabelledResult& labelled)
{
    const auto* track = dynamic_cast<const COrderTracking*>(&result);
    if (track == nullptr) return false;
    labelled.form = LabelledForm::OrderTrack;
    const auto stored = static_cast<std::size_t>(std::max(track->GetNbOrder(), 0));
    const std::size_t size = stored != 0 ? static_cast<std::size_t>(std::max(track->GetFilled(), 0)) : 0;
    const Dimension orders{u"order", size != 0 ? stored : 1};
    Names names;
    AddOrders(orders, names, labelled);
    const auto* referenced = dynamic_cast<const CReferencedAxis*>(&result);
    const Dimension points = referenced != nullptr ? AddReferenceAxis(*referenced, result, size, names, labelled)
                                                   : AddEvenAxis(result, size, names, labelled);
    std::vector<float> real(orders.size * size);
    const auto count = [](std::size_t value) { return static_cast<std::int32_t>(value); };
    track->GetRealValues(real.data(), count(size), count(orders.size));
    LabelledArray::Values values = real;
    if (track->GetComplexType() == SignalType::Complex) {
        std::vector<float> imaginary(real.size());
        track->GetImValues(imaginary.data(), count(size), count(orders.size));
        values = Joined(real, imaginary);
    }
    labelled.data.push_back(
        Described(*track, Array(u"value", ValueTitle(*track), {orders, points}, std::move(values))));
    return true;
}

void AddTables(const CCompressedAbstract& overview, const Dimension& axis, LabelledResult& labelled)
{
    const auto add = [&](const wstring& name, const wstring& title, auto copy) {
        std::vector<float> values(axis.size);
        copy(values.data(), static_cast<std::int32_t>(values.size()));
        labelled.data.push_back(Described(overview, Array(name, title, {axis}, std::move(values))));
    };
    if (const auto* envelope = dynamic_cast<const CCompressedVector*>(&overview)) {
        add(u"upper", u"Upper", [&](float* target, std::int32_t n) { envelope->GetUpValues(target, n); });
        add(u"lower", u"Lower", [&](float* target, std::int32_t n) { envelope->GetDownValues(target, n); });
    } else if (const auto* levels = dynamic_cast<const CCompressedScalar*>(&overview)) {
        constexpr std::size_t further = CCompressedScalar::kTables - 2;
        const std::vector<wstring> titles = ItemsOf(CaptionList::Overview, labelled.information.process, further);
        const auto addTable = [&](const wstring& name, const wstring& title, std::size_t table) {
            add(name, title, [&](float* target, std::int32_t n) {
                levels->GetScalarValues(static_cast<OffsetScalarArray>(table), target, n);
            });
        };
        addTable(u"upper", u"Upper", 0);
        addTable(u"lower", u"Lower", 1);
        for (std::size_t i = 0; i < further; ++i) {
            const auto number = static_cast<std::int64_t>(i + 1);
            addTable(Concat(u"level_", number), titles.empty() ? Concat(u"Level ", number) : titles[i], i + 2);
        }
    }
}

bool AddOverview(const CResult& result, LabelledResult& labelled)
{
    const auto* overview = dynamic_cast<const CCompressedAbstract*>(&result);
    if (overview == nullptr) return false;
    labelled.form = LabelledForm::Overview;
    const auto size = static_cast<std::size_t>(std::max(overview->GetCompSize(), 0));
    const auto frequency = static_cast<double>(overview->GetSamplingFrequency());
    const Dimension points = AddStepAxis(result, static_cast<double>(overview->GetXMin()),
                                         frequency > 0.0 ? 1.0 / frequency : 1.0, size, labelled);
    AddTables(*overview, points, labelled);
    return true;
}

// The pair may be uneven: what one of them lacks is missing.
bool AddPair(const CResult& result, LabelledResult& labelled)
{
    const auto* pair = dynamic_cast<const CDoubleResult*>(&result);
    if (pair == nullptr || pair->GetMinVector() == nullptr || pair->GetMaxVector() == nullptr) return false;
    labelled.form = LabelledForm::Pair;
    Names names;
    const Dimension axis = AddAxis(*pair->GetMinVector(), names, labelled);
    const auto add = [&](const wstring& name, const wstring& title, CVector& vector) {
        LabelledArray::Values values = ValuesOf(vector);
        constexpr float missing = std::numeric_limits<float>::quiet_NaN();
        if (auto* floats = std::get_if<std::vector<float>>(&values)) floats->resize(axis.size, missing);
        if (auto* complex = std::get_if<std::vector<std::complex<float>>>(&values))
            complex->resize(axis.size, {missing, missing});
        labelled.data.push_back(Described(vector, Array(name, title, {axis}, std::move(values))));
    };
    add(u"minimum", u"Minimum", *pair->GetMinVector());
    add(u"maximum", u"Maximum", *pair->GetMaxVector());
    labelled.quantity = labelled.data.front().quantity;
    return true;
}

} // namespace

std::vector<LabelledArray> PartsOf(CVector& vector, const Dimension& axis)
{
    auto* regular = dynamic_cast<CRegVector*>(&vector);
    if (regular != nullptr && IsBands(vector)) return PartsOfBands(*regular, axis);
    return {Described(vector, Array(u"value", ValueTitle(vector), {axis}, ValuesOf(vector)))};
}

bool AddVector(CResult& result, LabelledResult& labelled)
{
    // An overview is a vector besides.
    if (AddTrack(result, labelled) || AddOverview(result, labelled) || AddPair(result, labelled)) return true;
    auto* vector = dynamic_cast<CVector*>(&result);
    if (vector == nullptr) return false;
    labelled.form = IsBands(*vector) ? LabelledForm::Bands : LabelledForm::Vector;
    Names names;
    const Dimension axis = AddAxis(*vector, names, labelled);
    labelled.data = PartsOf(*vector, axis);
    return true;
}

} // namespace ZelmResult::labelled
