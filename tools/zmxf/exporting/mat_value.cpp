#include "tools/zmxf/exporting/mat_value.h"

#include "tools/zmxf/exporting/uff_text.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <numeric>

namespace zmxf {

namespace {

// Types of data elements.
constexpr std::uint32_t kInt8 = 1;
constexpr std::uint32_t kInt32 = 5;
constexpr std::uint32_t kUint32 = 6;
constexpr std::uint32_t kSingle = 7;
constexpr std::uint32_t kDouble = 9;
constexpr std::uint32_t kMatrix = 14;
constexpr std::uint32_t kUtf16 = 17;

// Classes of matrices.
constexpr std::uint32_t kCellClass = 1;
constexpr std::uint32_t kStructClass = 2;
constexpr std::uint32_t kCharClass = 4;
constexpr std::uint32_t kDoubleClass = 6;
constexpr std::uint32_t kSingleClass = 7;
constexpr std::uint32_t kInt32Class = 12;
constexpr std::uint32_t kComplexFlag = 0x800;

constexpr std::size_t kFieldBytes = MatValue::kLongestName + 1; // with a zero
constexpr std::uint64_t kTagBytes = 8;

constexpr std::uint64_t Padded(std::uint64_t bytes) { return (bytes + 7) / 8 * 8; }
constexpr std::uint64_t ElementBytes(std::uint64_t bytes) { return kTagBytes + Padded(bytes); }

template <class T>
void Put(std::ostream& output, const T* values, std::size_t count)
{
    output.write(reinterpret_cast<const char*>(values), static_cast<std::streamsize>(count * sizeof(T)));
}

void PutTag(std::ostream& output, std::uint32_t type, std::uint64_t bytes)
{
    const std::array tag = {type, static_cast<std::uint32_t>(bytes)};
    Put(output, tag.data(), tag.size());
}

void PutPadding(std::ostream& output, std::uint64_t bytes)
{
    constexpr std::array<char, 8> zeros{};
    Put(output, zeros.data(), static_cast<std::size_t>(Padded(bytes) - bytes));
}

template <class T>
void PutElement(std::ostream& output, std::uint32_t type, const T* values, std::size_t count)
{
    PutTag(output, type, count * sizeof(T));
    Put(output, values, count);
    PutPadding(output, count * sizeof(T));
}

// Values are stored column by column: the place, row by row, of the one that is stored there.
std::size_t PlaceOf(std::size_t stored, const MatValue::Shape& shape)
{
    std::size_t stride = std::accumulate(shape.begin(), shape.end(), std::size_t{1}, std::multiplies<>());
    std::size_t place = 0;
    for (const std::size_t size : shape) {
        stride /= size;
        place += stored % size * stride;
        stored /= size;
    }
    return place;
}

template <class Value>
void PutColumns(std::ostream& output, std::uint32_t type, const MatValue::Shape& shape, std::size_t count,
                const Value& value)
{
    using Number = decltype(value(std::size_t{0}));
    PutTag(output, type, count * sizeof(Number));
    std::array<Number, 4096> buffer;
    for (std::size_t from = 0; from < count; from += buffer.size()) {
        const std::size_t size = std::min(buffer.size(), count - from);
        for (std::size_t i = 0; i < size; ++i) buffer[i] = value(PlaceOf(from + i, shape));
        Put(output, buffer.data(), size);
    }
    PutPadding(output, count * sizeof(Number));
}

bool IsReserved(std::string_view name)
{
    constexpr std::array<std::string_view, 20> words = {
        "break",  "case", "catch",     "classdef", "continue",   "else",   "elseif", "end",    "for", "function",
        "global", "if",   "otherwise", "parfor",   "persistent", "return", "spmd",   "switch", "try", "while"};
    return std::find(words.begin(), words.end(), name) != words.end();
}

} // namespace

MatValue::MatValue(Shape shape, Content content) : m_shape(std::move(shape)), m_content(std::move(content))
{
    while (m_shape.size() < 2) m_shape.push_back(1);
}

MatValue MatValue::Text(ZelmResult::wstring_view text)
{
    ZelmResult::wstring whole;
    for (const char16_t c : text) {
        const bool isSecondHalf = c >= 0xDC00 && c < 0xE000;
        if (!isSecondHalf) whole += c >= 0xD800 && c < 0xDC00 ? u'\uFFFD' : c;
    }
    const std::size_t size = whole.size();
    return {{size == 0 ? std::size_t{0} : std::size_t{1}, size}, std::move(whole)};
}

MatValue MatValue::Number(double number) { return {{}, number}; }

MatValue MatValue::OfSingles(Shape shape, Singles real, Singles imaginary)
{
    return {std::move(shape), Matrix{std::move(real), std::move(imaginary)}};
}

MatValue MatValue::OfIntegers(Shape shape, std::span<const std::int32_t> integers)
{
    return {std::move(shape), integers};
}

MatValue MatValue::OfTexts(const Shape& shape, std::span<const ZelmResult::wstring> texts)
{
    Members cells;
    for (std::size_t i = 0; i < texts.size(); ++i) cells.values.push_back(Text(texts[PlaceOf(i, shape)]));
    return {shape, std::move(cells)};
}

MatValue MatValue::Struct(std::vector<std::pair<std::string, MatValue>> fields)
{
    Members members{true, {}, {}};
    for (auto& field : fields) {
        members.names.push_back(std::move(field.first));
        members.values.push_back(std::move(field.second));
    }
    return {{}, std::move(members)};
}

MatValue MatValue::StructArray(std::vector<std::string> fields, std::vector<MatValue> values)
{
    const std::size_t count = values.size() / fields.size();
    return {{1, count}, Members{true, std::move(fields), std::move(values)}};
}

std::size_t MatValue::Count() const
{
    return std::accumulate(m_shape.begin(), m_shape.end(), std::size_t{1}, std::multiplies<>());
}

std::uint32_t MatValue::Flags() const
{
    if (const auto* members = std::get_if<Members>(&m_content)) return members->areFields ? kStructClass : kCellClass;
    if (const auto* matrix = std::get_if<Matrix>(&m_content))
        return kSingleClass | (matrix->imaginary ? kComplexFlag : 0);
    if (std::holds_alternative<Integers>(m_content)) return kInt32Class;
    return std::holds_alternative<double>(m_content) ? kDoubleClass : kCharClass;
}

std::uint64_t MatValue::ContentBytes() const
{
    if (std::holds_alternative<ZelmResult::wstring>(m_content)) return ElementBytes(Count() * sizeof(char16_t));
    if (std::holds_alternative<double>(m_content)) return ElementBytes(sizeof(double));
    if (std::holds_alternative<Integers>(m_content)) return ElementBytes(Count() * sizeof(std::int32_t));
    if (const auto* matrix = std::get_if<Matrix>(&m_content))
        return (matrix->imaginary ? 2 : 1) * ElementBytes(Count() * sizeof(float));
    const auto& members = std::get<Members>(m_content);
    std::uint64_t bytes = 0;
    if (members.areFields) bytes = kTagBytes + ElementBytes(members.names.size() * kFieldBytes);
    for (const MatValue& value : members.values) bytes += value.Bytes({});
    return bytes;
}

std::uint64_t MatValue::Bytes(std::string_view name) const
{
    return kTagBytes + ElementBytes(2 * sizeof(std::uint32_t)) + ElementBytes(m_shape.size() * sizeof(std::int32_t)) +
           ElementBytes(name.size()) + ContentBytes();
}

void MatValue::Write(std::ostream& output, std::string_view name) const
{
    PutTag(output, kMatrix, Bytes(name) - kTagBytes);
    const std::array<std::uint32_t, 2> flags = {Flags(), 0};
    PutElement(output, kUint32, flags.data(), flags.size());
    const std::vector<std::int32_t> sizes(m_shape.begin(), m_shape.end());
    PutElement(output, kInt32, sizes.data(), sizes.size());
    PutElement(output, kInt8, name.data(), name.size());
    WriteContent(output);
}

void MatValue::WriteContent(std::ostream& output) const
{
    if (const auto* text = std::get_if<ZelmResult::wstring>(&m_content)) {
        PutElement(output, kUtf16, text->data(), text->size());
    } else if (const auto* number = std::get_if<double>(&m_content)) {
        PutElement(output, kDouble, number, 1);
    } else if (const auto* integers = std::get_if<Integers>(&m_content)) {
        PutColumns(output, kInt32, m_shape, Count(), [&](std::size_t i) { return (*integers)[i]; });
    } else if (const auto* matrix = std::get_if<Matrix>(&m_content)) {
        PutColumns(output, kSingle, m_shape, Count(), matrix->real);
        if (matrix->imaginary) PutColumns(output, kSingle, m_shape, Count(), matrix->imaginary);
    } else {
        const auto& members = std::get<Members>(m_content);
        if (members.areFields) {
            // The bytes of a field's name are a small element: one whose value is in its tag.
            const std::array<std::uint32_t, 2> size = {4U << 16U | kInt32, kFieldBytes};
            Put(output, size.data(), size.size());
            std::string names;
            for (std::string field : members.names) {
                field.resize(kFieldBytes);
                names += field;
            }
            PutElement(output, kInt8, names.data(), names.size());
        }
        for (const MatValue& value : members.values) value.Write(output, {});
    }
}

void WriteMatHeader(std::ostream& output)
{
    constexpr std::size_t textBytes = 116;
    std::string header = "MATLAB 5.0 MAT-file, written by zmxf export";
    header.resize(textBytes, ' ');
    header.append(8, '\0'); // no data of subsystems
    header.append({'\0', '\1', 'I', 'M'});
    output << header;
}

std::string MatNames::Take(ZelmResult::wstring_view text)
{
    std::string name = AsciiText(text);
    const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
    for (char& c : name)
        if (!isLetter(c) && (c < '0' || c > '9')) c = '_';
    if (name.empty() || !isLetter(name.front()) || IsReserved(name)) name.insert(0, "x_");
    name.resize(std::min(name.size(), MatValue::kLongestName));
    const std::string base = name;
    for (int count = 2; std::find(m_taken.begin(), m_taken.end(), name) != m_taken.end(); ++count) {
        const std::string suffix = fmt::format("_{}", count);
        name = base.substr(0, MatValue::kLongestName - suffix.size()) + suffix;
    }
    m_taken.push_back(name);
    return name;
}

} // namespace zmxf
