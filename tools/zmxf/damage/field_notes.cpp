#include "tools/zmxf/damage/field_notes.h"

#include "tools/zmxf/base/text.h"
#include "tools/zmxf/damage/code_text.h"
#include "zelmresult/storage/mmio_file.h"
#include "zelmresult/support/text.h"
#include "zelmresult/support/wstring.h"

#include <algorithm>
#include <cstring>
#include <fmt/format.h>
#include <functional>

namespace zmxf {

namespace {

constexpr std::size_t kShownValues = 4;
constexpr std::size_t kShownCharacters = 100;

// Bytes of the file from an offset on; zeros after its end.
class Bytes {
public:
    Bytes(std::span<const char> bytes, std::int64_t offset, std::int64_t end) : m_bytes(bytes), m_at(offset), m_end(end)
    {
        m_end = std::min(m_end, static_cast<std::int64_t>(bytes.size()));
    }

    [[nodiscard]] std::int64_t Left() const { return std::max<std::int64_t>(m_end - m_at, 0); }
    template <class T>
    T Take()
    {
        T value{};
        if (Left() >= static_cast<std::int64_t>(sizeof(T))) std::memcpy(&value, m_bytes.data() + m_at, sizeof(T));
        m_at += static_cast<std::int64_t>(sizeof(T));
        return value;
    }

private:
    std::span<const char> m_bytes;
    std::int64_t m_at;
    std::int64_t m_end;
};

std::string Quoted(const ZelmResult::wstring& text, bool isCut)
{
    return fmt::format("\"{}{}\"", Printable(text), isCut ? "\u2026" : "");
}

// A byte, or after 255 two, or after the largest of these four.
std::uint32_t TakeLength(Bytes& bytes)
{
    if (const auto length = bytes.Take<std::uint8_t>(); length != 0xFF) return length;
    const auto length = bytes.Take<std::uint16_t>();
    return length < 0xFFFE ? length : bytes.Take<std::uint32_t>();
}

std::string Text(Bytes bytes)
{
    Bytes marker = bytes; // FF FE FF before UTF-16
    const bool isWide = marker.Take<std::uint8_t>() == 0xFF && marker.Take<std::uint16_t>() == 0xFFFE;
    if (isWide) bytes = marker;
    const std::uint32_t length = TakeLength(bytes);
    ZelmResult::wstring text;
    for (std::uint32_t i = 0; i < length && i < kShownCharacters && bytes.Left() > 0; ++i)
        text += isWide ? bytes.Take<char16_t>() : static_cast<char16_t>(bytes.Take<std::uint8_t>());
    return Quoted(text, length > kShownCharacters);
}

std::string Identifier(Bytes bytes)
{
    const auto module = bytes.Take<std::uint16_t>();
    const auto submodule = bytes.Take<std::uint16_t>();
    const auto setting = bytes.Take<std::uint16_t>();
    if (module == 65534 && submodule == 65534 && setting == 65534) return Text(bytes);
    if (module == setting && submodule == setting && (setting == 65535 || setting == 255)) return "null";
    return fmt::format("{}/{}/{}", module, submodule, setting);
}

std::string Floats(Bytes bytes)
{
    const auto count = static_cast<std::size_t>(bytes.Left()) / sizeof(float);
    std::string text = Counted(count, "value");
    for (std::size_t i = 0; i < std::min(count, kShownValues); ++i)
        text += (i == 0 ? ": " : ", ") + NumberText(static_cast<double>(bytes.Take<float>()));
    return count > kShownValues ? fmt::format("{}, \u2026", text) : text;
}

std::string RawBytes(Bytes bytes)
{
    std::string text = fmt::format("{}:", Counted(static_cast<std::size_t>(bytes.Left()), "byte"));
    for (std::size_t i = 0; i < kShownValues && bytes.Left() > 0; ++i)
        text += fmt::format(" {}", bytes.Take<std::uint8_t>());
    return bytes.Left() > 0 ? fmt::format("{} \u2026", text) : text;
}

std::string Date(Bytes bytes)
{
    std::string text;
    for (int i = 0; i < 8; ++i) text += fmt::format("{}{}", i == 0 ? "" : " ", bytes.Take<std::uint16_t>());
    return text;
}

} // namespace

void FieldNotes::Note(std::int64_t outermost, const ReadField& field)
{
    if (m_keep == Keep::All || field.depth == 0 || field.IsEmptyRecord() || field.IsLaterRecord() || field.IsQuantity())
        m_records[outermost].push_back(field);
}

void FieldNotes::BeginRecord(std::string_view name, std::uint16_t version, std::uint16_t newest, std::int32_t position)
{
    const std::int64_t begin = std::int64_t{position} - 2; // its version was read
    const bool isInside = !m_open.empty() && m_open.back().end == begin;
    const std::int64_t outermost = isInside ? m_open.back().outermost : begin;
    const int depth = isInside ? m_open.back().depth + 1 : 0;
    if (!isInside) m_records.erase(begin);
    Note(outermost, {depth, name, {}, begin, position, version, newest});
    m_open.push_back({outermost, position, depth});
}

void FieldNotes::EndRecord()
{
    const Open ended = m_open.back();
    m_open.pop_back();
    if (!m_open.empty() && m_open.back().outermost == ended.outermost)
        m_open.back().end = ended.end;
    else
        m_ends[ended.outermost] = ended.end;
}

void FieldNotes::Field(std::string_view name, std::string_view form, std::int32_t position)
{
    if (m_open.empty()) return;
    Open& open = m_open.back();
    // A field that failed may leave the position anywhere.
    const std::int64_t end = std::max<std::int64_t>(position, open.end);
    m_last = ReadField{open.depth + 1, name, form, open.end, end, 0, 0};
    Note(open.outermost, *m_last);
    open.end = end;
}

bool FieldNotes::HasLostRecord(std::int64_t from, std::int64_t to) const
{
    for (auto record = m_records.lower_bound(from); record != m_records.end() && record->first < to; ++record)
        if (std::any_of(record->second.begin(), record->second.end(), std::mem_fn(&ReadField::IsEmptyRecord)))
            return true;
    return std::any_of(m_ends.lower_bound(from), m_ends.lower_bound(to),
                       [to](const auto& end) { return end.second > to; });
}

std::string FieldText(std::span<const char> bytes, const ReadField& field)
{
    const std::string_view form = field.form;
    const bool isArray = form == "f32 array" || form == "bytes";
    Bytes at(bytes, field.offset, isArray ? field.end : static_cast<std::int64_t>(bytes.size()));
    if (form == "u16") return std::to_string(at.Take<std::uint16_t>());
    if (form == "u32") return std::to_string(at.Take<std::uint32_t>());
    if (form == "i32") return std::to_string(at.Take<std::int32_t>());
    if (form == "i64" || form == "time") return std::to_string(at.Take<std::int64_t>());
    if (form == "file time") return std::to_string(at.Take<std::uint64_t>());
    if (form == "f32") return NumberText(static_cast<double>(at.Take<float>()));
    if (form == "f64") return NumberText(at.Take<double>());
    if (form == "flag") return at.Take<std::uint32_t>() != 0 ? "true" : "false";
    if (form == "quantity") return CodeText(at.Take<std::uint32_t>());
    if (form == "text") return Text(at);
    if (form == "identifier") return Identifier(at);
    if (form == "f32 array") return Floats(at);
    return form == "system time" ? Date(at) : RawBytes(at);
}

} // namespace zmxf
