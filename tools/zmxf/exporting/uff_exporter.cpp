#include "tools/zmxf/base/failure.h"
#include "tools/zmxf/base/text.h"
#include "tools/zmxf/exporting/exporter.h"
#include "tools/zmxf/exporting/uff_function.h"
#include "zelmresult/results/kinds.h"
#include "zelmresult/support/text.h"

#include <array>
#include <cmath>
#include <fmt/format.h>
#include <set>

// Results as functions of one variable: a vector is one, a waterfall or an order track one per slice or order.

namespace zmxf {

namespace {

using ZelmResult::LabelledArray;
using ZelmResult::LabelledForm;
using ZelmResult::LabelledResult;
using ZelmResult::ResultGroup;
using ZelmResult::ResultKind;

bool IsOfLevels(LabelledForm form)
{
    return form == LabelledForm::Level || form == LabelledForm::BroadBand || form == LabelledForm::GlobalLevel ||
           form == LabelledForm::OrderLevels;
}

int FunctionTypeOf(const LabelledResult& result, ZelmResult::wstring_view dimension)
{
    if (result.form == LabelledForm::OrderTrack) return UffFunction::kOrder;
    if (result.form == LabelledForm::Overview) return UffFunction::kTimeResponse;
    if (dimension == u"band") return UffFunction::kSpectrum;
    if (dimension != u"frequency") return UffFunction::kUnknown;
    // Slices of a waterfall are like a result of the kind without one.
    const ResultKind& kind = ResultKind::Of(result.information.processType);
    switch (kind.GroupAt(ZelmResult::WaterfallDimension::kNone)) {
    case ResultGroup::Autospectrum: return UffFunction::kSpectrum;
    case ResultGroup::Spectrum:
        return kind.Has(ResultKind::CrossSpectral) ? UffFunction::kUnknown : UffFunction::kSpectrum;
    case ResultGroup::Frf: return UffFunction::kTransferFunction;
    case ResultGroup::Coherence: return UffFunction::kCoherence;
    default: return UffFunction::kUnknown;
    }
}

// As programs write it that make such files; empty for a document without a date.
std::string DateText(const ZelmResult::OTime& date)
{
    if (date.GetTime() == 0) return {};
    constexpr std::array months = {"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const std::string text = ZelmResult::OTimeToDateString(date); // 1970-01-01 00:00:00Z
    const auto month = static_cast<std::size_t>(std::stoi(text.substr(5, 2)));
    return fmt::format("{}-{}-{} {}", text.substr(8, 2), months.at(month - 1), text.substr(2, 2), text.substr(11, 8));
}

std::string JoinedNames(const std::string& one, const std::string& other)
{
    return one.empty() || other.empty() ? one + other : one + " / " + other;
}

bool IsNumber(float value) { return std::isfinite(value); }
bool IsNumber(std::complex<float> value) { return std::isfinite(value.real()) && std::isfinite(value.imag()); }

float Scaled(float value, double factor)
{
    return factor == 1.0 ? value : static_cast<float>(static_cast<double>(value) * factor);
}
std::complex<float> Scaled(std::complex<float> value, double factor)
{
    return {Scaled(value.real(), factor), Scaled(value.imag(), factor)};
}

// The text or the number of the row, by the first coordinate along it that has one: "2" of an order, "17" of a slice.
std::string RowName(const LabelledResult& result, const ZelmResult::wstring& dimension, std::size_t row)
{
    for (const LabelledArray& coordinate : result.coordinates) {
        if (coordinate.dimensions.size() != 1 || coordinate.dimensions.front() != dimension) continue;
        if (const auto* texts = coordinate.Texts()) return AsciiText((*texts)[row]);
        if (const auto* numbers = coordinate.Numbers()) return fmt::format("{}", (*numbers)[row]);
    }
    return fmt::format("{}", row);
}

// One result on its way into the file.
class UffResult {
public:
    // isEmpty says whether nothing is in the file yet.
    UffResult(std::ostream& output, bool isBinary, bool& isEmpty, const LabelledResult& result, ExportNotes& notes)
        : m_output(output), m_isBinary(isBinary), m_isEmpty(isEmpty), m_result(result), m_notes(notes),
          m_warn([this](const std::string& what) { m_warnings.insert(what); })
    {
    }

    void Write()
    {
        std::size_t levels = 0;
        for (const LabelledArray& array : m_result.data) {
            if (array.dimensions.size() == 1)
                WriteVector(array);
            else if (array.dimensions.size() == 2)
                WriteRows(array);
            else
                ++levels;
        }
        if (m_parts == 0) return m_notes.LeaveOut(m_result, "without values");
        if (levels != 0) m_warn("the levels of all bands together are left out");
        if (m_empty != 0) m_warn(fmt::format("{} without values left out", Counted(m_empty, "function")));
        if (m_missing != 0) m_warn(fmt::format("{} without a value left out", Counted(m_missing, "point")));
        WarnOfReferences();
        for (const std::string& warning : m_warnings) m_notes.Warn(m_result, warning);
    }

private:
    UffFunction Describe(const LabelledArray& array, const std::string& row)
    {
        const auto& information = m_result.information;
        const ZelmResult::wstring& dimension = array.dimensions.back();
        UffFunction function;
        function.name = AsciiText(information.process.empty() ? information.kind : information.process);
        if (array.name != u"value") function.name += ", " + AsciiText(array.title);
        function.name += row;
        function.response = {AsciiText(information.channel), information.channelNumber};
        function.reference = {AsciiText(information.reference), information.referenceNumber};
        function.channels = JoinedNames(function.response.name, function.reference.name);
        function.date = DateText(information.date);
        function.caption = AsciiText(information.caption);
        function.comment = AsciiText(information.comment);
        function.type = FunctionTypeOf(m_result, dimension);
        function.number = static_cast<std::int64_t>(information.number);
        function.abscissa = UffAxisOf(m_result.Axis(dimension), m_warn);
        function.isOfBands = dimension == u"band";
        if (array.quantity && array.quantity->IsQuotient()) {
            function.ordinate = UffAxisOf(array.quantity->operands[0], array.title, m_warn);
            function.denominator = UffAxisOf(array.quantity->operands[1], {}, m_warn);
        } else {
            function.ordinate = UffAxisOf(array.quantity, array.title, m_warn);
        }
        return function;
    }

    // The values from there on, as many as the abscissa is long.
    void WritePoints(UffFunction& function, const LabelledArray& array, std::size_t from)
    {
        const LabelledArray* axis = m_result.Axis(array.dimensions.back());
        const std::size_t size = array.shape.back();
        const double factor = function.ordinate.factor / function.denominator.factor;
        const auto fill = [&](const auto& all) {
            std::decay_t<decltype(all)> values;
            function.points.clear();
            for (std::size_t i = 0; i < size; ++i) {
                const float x = axis != nullptr ? function.abscissa((*axis->Floats())[i]) : static_cast<float>(i);
                const auto value = Scaled(all[from + i], factor);
                if (!IsNumber(x) || !IsNumber(value)) continue;
                function.points.push_back(x);
                values.push_back(value);
            }
            function.values = std::move(values);
        };
        if (const auto* floats = array.Floats()) fill(*floats);
        if (const auto* complexes = array.Complexes()) fill(*complexes);
        if (function.points.empty()) {
            ++m_empty;
            return;
        }
        m_missing += size - function.points.size();
        if (m_isEmpty) WriteUffUnits(m_output);
        m_isEmpty = false;
        function.part = static_cast<std::int64_t>(++m_parts);
        function.Write(m_output, m_isBinary, m_warn);
    }

    void WriteVector(const LabelledArray& array)
    {
        UffFunction function = Describe(array, {});
        WritePoints(function, array, 0);
    }

    void WriteRows(const LabelledArray& array)
    {
        const ZelmResult::wstring& dimension = array.dimensions.front();
        const LabelledArray* along = m_result.Axis(dimension);
        for (std::size_t row = 0; row < array.shape.front(); ++row) {
            UffFunction function =
                Describe(array, fmt::format(", {} {}", AsciiText(dimension), RowName(m_result, dimension, row)));
            function.z = UffAxisOf(along, m_warn);
            if (along == nullptr) {
                function.z.label = AsciiText(dimension);
                function.zValue = static_cast<double>(row);
            } else if (const float z = function.z((*along->Floats())[row]); IsNumber(z)) {
                function.zValue = ShortestDouble(z);
            } else {
                m_warn(fmt::format("some {} is unknown, and 0 in the file", function.z.label));
            }
            WritePoints(function, array, row * array.shape.back());
        }
    }

    void WarnOfReferences()
    {
        std::string names;
        for (const LabelledArray& coordinate : m_result.coordinates)
            if (coordinate.isReference && coordinate.name != m_result.chosenReference)
                names += (names.empty() ? "" : ", ") + Printable(coordinate.name);
        if (!names.empty()) m_warn("functions have room for one reference, which isn't " + names);
    }

    std::ostream& m_output;
    bool m_isBinary;
    bool& m_isEmpty;
    const LabelledResult& m_result;
    ExportNotes& m_notes;
    std::set<std::string> m_warnings;
    UffWarn m_warn;
    std::size_t m_parts = 0;
    std::size_t m_empty = 0;
    std::size_t m_missing = 0; // points
};

class UffExporter final : public Exporter {
public:
    UffExporter(std::ostream& output, bool isBinary, ExportNotes& notes)
        : m_output(output), m_isBinary(isBinary), m_notes(notes)
    {
    }

    void Add(const LabelledResult& result) override
    {
        if (IsOfLevels(result.form))
            m_notes.LeaveOut(result, "Universal Files hold functions, no levels");
        else
            UffResult(m_output, m_isBinary, m_isEmpty, result, m_notes).Write();
    }
    void Finish() override {}

private:
    std::ostream& m_output;
    bool m_isBinary;
    bool m_isEmpty = true;
    ExportNotes& m_notes;
};

} // namespace

std::unique_ptr<Exporter> MakeUffExporter(std::ostream& output, const ExportedDocument& /*document*/,
                                          const ExportChoices& choices, ExportNotes& notes)
{
    return std::make_unique<UffExporter>(output, choices.format == ExportFormat::UffBinary, notes);
}

} // namespace zmxf
