#include "zelmresult/storage/field_stream.h"

#include "zelmresult/support/text.h"

#include <string>

namespace ZelmResult {

namespace {

constexpr std::uint8_t kLongLength = 0xFF;      // a u16 length follows
constexpr std::uint16_t kLongerLength = 0xFFFF; // a u32 length follows
constexpr std::uint16_t kWideText = 0xFFFE;     // a length follows, then UTF-16

// What stands before nearly every text: the marker, and a length in one byte. As one number, since bytes that are put
// together in memory and read back as one cost more than all the rest of a text.
constexpr std::uint32_t ShortWideHead(std::uint32_t length) { return length << 24U | kWideText << 8U | kLongLength; }

} // namespace

bool FieldStream::WriteThroughBackend(const void* from, std::size_t count)
{
    return m_backend && m_backend->ommioWrite(static_cast<const char*>(from), static_cast<std::int32_t>(count)) != -1;
}

std::int32_t FieldStream::ReadThroughBackend(void* to, std::size_t count)
{
    return m_backend ? m_backend->ommioRead(static_cast<char*>(to), static_cast<std::int32_t>(count)) : -1;
}

bool FieldStream::ReadTime(OTime& value)
{
    std::int64_t count = 0;
    const bool ok = Read(count);
    value = OTime::fromSerializable64(count);
    return ok;
}

bool FieldStream::ReadFlag(bool& value)
{
    std::uint32_t stored = 0;
    const bool ok = Read(stored);
    value = ok && stored != 0;
    return ok;
}

bool FieldStream::WriteText(wstring_view text)
{
    const std::size_t n = text.size();
    bool ok = false;
    if (n < kLongLength) {
        ok = Write(ShortWideHead(static_cast<std::uint32_t>(n)));
    } else {
        ok = Write(kLongLength) && Write(kWideText) && Write(kLongLength);
        ok = ok && (n < kWideText ? Write(static_cast<std::uint16_t>(n))
                                  : Write(kLongerLength) && Write(static_cast<std::uint32_t>(n)));
    }
    return ok && WriteBlock(text.data(), n);
}

// A number in which the file ends counts as 0.
template <class T>
bool FieldStream::ReadWholeOrZero(std::uint32_t& length)
{
    T value = 0;
    const std::int32_t n = ReadBytes(&value, sizeof value);
    length = n == static_cast<std::int32_t>(sizeof value) ? value : 0;
    return n != -1;
}

bool FieldStream::ReadTextLength(std::uint32_t& length)
{
    if (!ReadWholeOrZero<std::uint8_t>(length)) return false;
    if (length < kLongLength) return true;
    if (!ReadWholeOrZero<std::uint16_t>(length)) return false;
    if (length == kLongerLength) return ReadWholeOrZero<std::uint32_t>(length);
    if (length == kWideText) length = kWideMarker;
    return true;
}

bool FieldStream::ReadTextHead(std::uint32_t& length, bool& wide)
{
    std::uint32_t head = 0;
    const std::int32_t n = ReadBytes(&head, sizeof head);
    if (n == -1) return false;
    length = head >> 24U;
    wide = n == 4 && head == ShortWideHead(length);
    if (wide && length < kLongLength) return true;
    if (n > 0 && m_backend->ommioSeek(-n, OMMIO_SEEK_CUR) == -1) return false;
    if (!ReadTextLength(length)) return false;
    wide = length == kWideMarker;
    return !wide || ReadTextLength(length);
}

bool FieldStream::ReadText(wstring& text, ReadBounds& bounds)
{
    std::uint32_t length = 0;
    bool wide = false;
    if (!ReadTextHead(length, wide)) return false;
    if (length == 0) {
        text.clear();
        return true;
    }
    if (!bounds.RoomFor(*m_backend, length, wide ? sizeof(char16_t) : 1)) return false;
    if (wide) {
        text.assign(length, u'\0');
        return ReadBlock(text.data(), length);
    }
    if (!bounds.Charge(*m_backend, length * sizeof(char16_t))) return false; // narrow text is held twice for a while
    std::string narrow(length, '\0');
    if (!ReadBlock(narrow.data(), length)) return false;
    text = FromCodePage(narrow);
    return true;
}

bool FieldStream::WriteIdentifier(const idn::Idn& idn)
{
    idn::Legacy legacy;
    const bool isShort = idn::Legacy::convertIdnToLegacy(idn, legacy, false);
    const bool isNull = !isShort && idn == idn::Legacy::absent().toIdn();
    if (isNull) legacy = idn::Legacy::absent();
    if (!isShort && !isNull) legacy = idn::Legacy::magic();

    // One number for the same reason as in ShortWideHead.
    const std::uint64_t numbers =
        std::uint64_t{legacy.setting} << 32U | std::uint32_t{legacy.submodule} << 16U | legacy.module;
    return WriteBytes(&numbers, 3 * sizeof(std::uint16_t)) &&
           (isShort || isNull || WriteText(idn::IdnString::idnToStringT(idn)));
}

bool FieldStream::ReadIdentifier(idn::Idn& idn, ReadBounds& bounds)
{
    std::uint16_t numbers[3] = {};
    if (!ReadBlock(numbers, 3)) return false;
    const idn::Legacy legacy{numbers[0], numbers[1], numbers[2]};
    if (legacy.isMagic()) {
        wstring text;
        return ReadText(text, bounds) && idn::IdnString::stringToIdnT(text, idn);
    }
    const bool absent = legacy == idn::Legacy::formerAbsent() || legacy == idn::Legacy::absent();
    idn = absent ? idn::Legacy::absent().toIdn() : legacy.toIdn();
    return true;
}

} // namespace ZelmResult
