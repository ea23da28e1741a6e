#include "tools/zmxf/exporting/uff_function.h"

#include "tools/zmxf/base/text.h"

#include <fmt/format.h>
#include <type_traits>

namespace zmxf {

namespace {

constexpr const char* kDelimiter = "    -1\n";
constexpr std::size_t kLineColumns = 80;
constexpr std::size_t kEntityColumns = 10;
constexpr int kHeaderLines = 11;

// A line that says -1 would end the dataset for programs that don't count columns.
std::string TextLine(const std::string& text, const char* place, const UffWarn& warn)
{
    std::string line = UffColumns(text == "-1" ? "\"-1\"" : text, kLineColumns, place, warn);
    return line.erase(line.find_last_not_of(' ') + 1) + "\n";
}

std::string EntityText(const UffEntity& entity, const UffWarn& warn)
{
    constexpr int scalar = 0; // the direction
    return fmt::format(" {}{}{:4}", UffColumns(entity.name, kEntityColumns, "channel", warn),
                       UffInteger(entity.node, 10), scalar);
}

// Of the values, in bytes or in columns.
int OrdinateType(bool isComplex, bool isBinary)
{
    constexpr int realSingle = 2;
    constexpr int realDouble = 4;
    constexpr int complexSingle = 5;
    constexpr int complexDouble = 6;
    if (isBinary) return isComplex ? complexSingle : realSingle;
    return isComplex ? complexDouble : realDouble;
}

void AppendBytes(std::string& bytes, float value) { bytes.append(reinterpret_cast<const char*>(&value), sizeof value); }
void AppendBytes(std::string& bytes, std::complex<float> value)
{
    AppendBytes(bytes, value.real());
    AppendBytes(bytes, value.imag());
}

void AppendText(std::string& text, float value) { AppendUffDouble(text, value); }
void AppendText(std::string& text, std::complex<float> value)
{
    AppendUffDouble(text, value.real());
    AppendUffDouble(text, value.imag());
}

// Writes the values one by one, a block of bytes at a time.
template <class Append>
void WriteData(std::ostream& output, std::size_t points, const Append& append)
{
    constexpr std::size_t most = 65536;
    std::string block;
    for (std::size_t i = 0; i < points; ++i) {
        append(i, block);
        if (block.size() < most) continue;
        output << block;
        block.clear();
    }
    output << block;
}

void WriteText(std::ostream& output, const UffFunction& function, bool isEven)
{
    std::visit(
        [&](const auto& values) {
            constexpr bool isReal = std::is_same_v<std::decay_t<decltype(values)>, std::vector<float>>;
            constexpr std::size_t perUnevenLine = isReal ? 2 : 1;
            const std::size_t perLine = isEven ? 2 * perUnevenLine : perUnevenLine;
            WriteData(output, values.size(), [&](std::size_t i, std::string& text) {
                if (!isEven) text += UffReal(ShortestDouble(function.points[i])).text;
                AppendText(text, values[i]);
                if ((i + 1) % perLine == 0 || i + 1 == values.size()) text += '\n';
            });
        },
        function.values);
}

void WriteBytes(std::ostream& output, const UffFunction& function, bool isEven)
{
    std::visit(
        [&](const auto& values) {
            WriteData(output, values.size(), [&](std::size_t i, std::string& bytes) {
                if (!isEven) AppendBytes(bytes, function.points[i]);
                AppendBytes(bytes, values[i]);
            });
        },
        function.values);
    output << '\n';
}

} // namespace

void UffFunction::Write(std::ostream& output, bool isBinary, const UffWarn& warn) const
{
    constexpr int littleEndian = 1;
    constexpr int ieee = 2;
    const UffAbscissa steps(points, isOfBands, warn);
    const bool isComplex = values.index() == 1;
    std::string header = kDelimiter;
    const std::size_t bytes = points.size() * sizeof(float) * ((isComplex ? 2U : 1U) + (steps.isEven ? 0U : 1U));
    if (isBinary)
        header += fmt::format("    58b{:6}{:6}{:12}{:12}{:6}{:6}{:12}{:12}\n", littleEndian, ieee, kHeaderLines, bytes,
                              0, 0, 0, 0);
    else
        header += "    58\n";
    header += TextLine(name, "name", warn) + TextLine(channels, "line of channels", warn) +
              TextLine(date, "date", warn) + TextLine(caption, "caption", warn) + TextLine(comment, "comment", warn);
    constexpr int singleExcitation = 0; // the load case
    header += fmt::format("{:5}{}{}{:10}{}{}\n", type, UffInteger(number, 10), UffInteger(part, 5), singleExcitation,
                          EntityText(response, warn), EntityText(reference, warn));
    header += fmt::format("{:10}{:10}{:10}{}{}{}\n", OrdinateType(isComplex, isBinary), points.size(),
                          steps.isEven ? 1 : 0, steps.first.text, steps.step.text, UffReal(zValue).text);
    for (const UffAxis* axis : {&abscissa, &ordinate, &denominator, &z}) header += axis->Line(warn) + "\n";
    output << header;
    if (isBinary)
        WriteBytes(output, *this, steps.isEven);
    else
        WriteText(output, *this, steps.isEven);
    output << kDelimiter;
}

void WriteUffUnits(std::ostream& output)
{
    constexpr int si = 1;
    constexpr int absoluteTemperatures = 1;
    constexpr const char* one = "  1.00000000000000000D+00";
    constexpr const char* zeroCelsius = "  2.73149999999999977D+02";
    output << kDelimiter << "   164\n"
           << fmt::format("{:10}{:20}{:10}\n", si, "  SI: Meter (newton)", absoluteTemperatures) << one << one << one
           << '\n'
           << zeroCelsius << '\n'
           << kDelimiter;
}

} // namespace zmxf
