// Typed fields whose stored form is more than their bytes, and the bound on what a file may ask for.

#include "zelmresult/storage/mmio_file.h"
#include "zelmresult/support/text.h"

#include <array>
#include <string>

namespace ZelmResult {

namespace {

constexpr std::uint8_t kLongLength = 0xFF;      // a u16 length follows
constexpr std::uint16_t kLongerLength = 0xFFFF; // a u32 length follows
constexpr std::uint16_t kWideMarker = 0xFFFE;   // a length follows, then UTF-16
constexpr std::uint32_t kWideString = 0xFFFFFFFF;
constexpr std::uint64_t kAlwaysRoom =
    std::uint64_t{256} * 1024; // so that a short read of a small block stays the success it is

} // namespace

bool CMmioFile::RoomFor(std::uint64_t count, std::size_t elementSize)
{
    if (!m_backend) return false;
    const bool isCountable =
        count <= std::uint64_t{0x7FFFFFFF} && (elementSize == 0 || count <= UINT64_MAX / elementSize);
    const std::uint64_t bytes = isCountable ? count * elementSize : UINT64_MAX;
    if (bytes > kAlwaysRoom && bytes > static_cast<std::uint64_t>(m_backend->BytesLeft()))
        return Refuse(Refusal::Bound::BytesLeft);
    return Charge(bytes);
}

bool CMmioFile::Charge(std::uint64_t bytes) { return m_budget.Charge(bytes) || Refuse(Refusal::Bound::Memory); }

bool CMmioFile::Refuse(Refusal::Bound bound)
{
    if (m_refusal.bound == Refusal::Bound::None) m_refusal = {bound, m_lastEntered, Position()};
    return false;
}

bool CMmioFile::mmioRead_OTime(OTime& value)
{
    std::int64_t count = 0;
    const bool ok = Get(count);
    value = OTime::fromSerializable64(count);
    return ok;
}

bool CMmioFile::mmioReadBool(bool& value)
{
    std::uint32_t stored = 0;
    const bool ok = Get(stored);
    value = ok && stored != 0;
    return ok;
}

bool CMmioFile::WriteCString(const wstring& text)
{
    const std::size_t n = text.size();
    if (!mmioWrite_byte(kLongLength) || !mmioWrite_ushort(kWideMarker)) return false;
    bool ok = true;
    if (n < kLongLength)
        ok = mmioWrite_byte(static_cast<std::uint8_t>(n));
    else if (n < kWideMarker)
        ok = mmioWrite_byte(kLongLength) && mmioWrite_ushort(static_cast<std::uint16_t>(n));
    else
        ok = mmioWrite_byte(kLongLength) && mmioWrite_ushort(kLongerLength) &&
             mmioWrite_ulong(static_cast<std::uint32_t>(n));
    return ok && PutBlock(text.data(), n);
}

// A number that the file ends within counts as 0. False when the read fails.
template <class T>
bool CMmioFile::ReadWholeOrZero(std::uint32_t& length)
{
    T value = 0;
    const std::int32_t n = m_backend ? m_backend->ommioRead(reinterpret_cast<char*>(&value), sizeof value) : -1;
    length = n == static_cast<std::int32_t>(sizeof value) ? value : 0;
    return n != -1;
}

bool CMmioFile::ReadLength(std::uint32_t& length)
{
    if (!ReadWholeOrZero<std::uint8_t>(length)) return false;
    if (length < kLongLength) return true;
    if (!ReadWholeOrZero<std::uint16_t>(length)) return false;
    if (length == kLongerLength) return ReadWholeOrZero<std::uint32_t>(length);
    if (length == kWideMarker) length = kWideString;
    return true;
}

std::uint32_t CMmioFile::ReadStringLength()
{
    std::uint32_t length = 0;
    return ReadLength(length) ? length : 0;
}

bool CMmioFile::ReadTextLength(std::uint32_t& length, bool& wide)
{
    // Nearly every text is short and wide: its marker and length are then four bytes, taken in one read.
    std::array<std::uint8_t, 4> head{};
    const std::int32_t n = m_backend ? m_backend->ommioRead(reinterpret_cast<char*>(head.data()), 4) : -1;
    if (n == -1) return false;
    length = head[3];
    wide = n == 4 && head[0] == kLongLength && head[1] == (kWideMarker & 0xFFU) && head[2] == kWideMarker >> 8U;
    if (wide && length < kLongLength) return true;
    if (n > 0 && !mmioSeek(-n, OMMIO_SEEK_CUR)) return false;
    if (!ReadLength(length)) return false;
    wide = length == kWideString;
    return !wide || ReadLength(length);
}

bool CMmioFile::ReadCString(wstring& text)
{
    std::uint32_t length = 0;
    bool wide = false;
    if (!ReadTextLength(length, wide)) return false;
    if (length == 0) {
        text.clear();
        return true;
    }
    if (!RoomFor(length, wide ? sizeof(char16_t) : 1)) return false;
    if (wide) {
        text.assign(length, u'\0');
        return GetBlock(text.data(), length);
    }
    if (!Charge(length * sizeof(char16_t))) return false; // narrow text is held twice for a while
    std::string narrow(length, '\0');
    if (!GetBlock(narrow.data(), length)) return false;
    text = FromCodePage(narrow);
    return true;
}

bool CMmioFile::mmioWriteIDN(const idn::Idn& idn)
{
    idn::Legacy legacy;
    const bool isShort = idn::Legacy::convertIdnToLegacy(idn, legacy, false);
    const bool isNull = !isShort && idn == idn::Legacy::absent().toIdn();
    if (isNull) legacy = idn::Legacy::absent();
    if (!isShort && !isNull) legacy = idn::Legacy::magic();

    const std::uint16_t numbers[3] = {legacy.module, legacy.submodule, legacy.setting};
    if (!mmioWrite_ushort(numbers, 3)) return false;
    if (isShort && m_debug) AddStringToDebugFile(idn::IdnString::legacyIdnToLegacyStringT(legacy));
    return isShort || isNull || WriteCString(idn::IdnString::idnToStringT(idn));
}

bool CMmioFile::mmioReadIDN(idn::Idn& idn)
{
    std::uint16_t numbers[3] = {};
    if (!mmioRead_ushort(numbers, 3)) return false;
    const idn::Legacy legacy{numbers[0], numbers[1], numbers[2]};
    if (legacy.isMagic()) {
        wstring text;
        return ReadCString(text) && idn::IdnString::stringToIdnT(text, idn);
    }
    const bool absent = legacy == idn::Legacy::formerAbsent() || legacy == idn::Legacy::absent();
    idn = absent ? idn::Legacy::absent().toIdn() : legacy.toIdn();
    return true;
}

} // namespace ZelmResult
