#include "tools/zmxf/damage/byte_file.h"

#include "zelmresult/settings/config_data.h"
#include "zelmresult/storage/mmio_riff.h"

#include <algorithm>
#include <cstring>
#include <memory>

namespace zmxf {

namespace {

class ByteHandle : public ZelmResult::FileHandle {
public:
    explicit ByteHandle(std::span<const char> bytes) : m_bytes(bytes) {}

    bool Open(const ZelmResult::wstring& /*path*/, Access access) override { return access == Access::Read; }
    std::int64_t ReadAt(std::int64_t position, char* buffer, std::size_t count) override
    {
        const auto left = static_cast<std::size_t>(std::max<std::int64_t>(Size() - position, 0));
        const std::size_t taken = std::min(count, left);
        if (taken != 0) std::memcpy(buffer, m_bytes.data() + position, taken);
        return static_cast<std::int64_t>(taken);
    }
    bool WriteAt(std::int64_t /*position*/, const char* /*buffer*/, std::size_t /*count*/) override { return false; }
    std::int64_t Size() override { return static_cast<std::int64_t>(m_bytes.size()); }
    bool Close() override { return true; }

private:
    std::span<const char> m_bytes;
};

ZelmResult::CMmioFile::BackendFactory BackendOf(std::span<const char> bytes)
{
    return [bytes] {
        return std::make_unique<ZelmResult::CMmioRiff>([bytes] { return std::make_unique<ByteHandle>(bytes); });
    };
}

} // namespace

ByteFile::ByteFile(std::span<const char> bytes) : m_file(false, BackendOf(bytes))
{
    (void)m_file.Open(u"bytes", nullptr, ZelmResult::OMMIO_READ); // without it no read succeeds
}

template <class Read>
std::int64_t ByteFile::EndOf(std::int64_t offset, Read read)
{
    const bool isRead = m_file.mmioSeek(static_cast<std::int32_t>(offset), ZelmResult::OMMIO_SEEK_SET) && read() &&
                        m_file.Position() > offset;
    return isRead ? m_file.Position() : -1;
}

std::int64_t ByteFile::EndOfText(std::int64_t offset)
{
    return EndOf(offset, [this] {
        ZelmResult::wstring text;
        return m_file.ReadCString(text);
    });
}

std::int64_t ByteFile::EndOfApplicationVersion(std::int64_t offset)
{
    return EndOf(offset, [this] {
        ZelmResult::VersionTavide version;
        return ReadVersionTavide(m_file, version);
    });
}

std::uint32_t NumberAt(std::span<const char> bytes, std::int64_t offset)
{
    std::uint32_t number = 0;
    if (offset + 4 <= static_cast<std::int64_t>(bytes.size()))
        std::memcpy(&number, bytes.data() + offset, sizeof number);
    return number;
}

} // namespace zmxf
