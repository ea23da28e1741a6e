#include "zelmresult/storage/memory_backend.h"

#include "zelmresult/storage/mmio_riff.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <stdexcept>

namespace ZelmResult {

namespace {

class MemoryReader final : public FileHandle {
public:
    explicit MemoryReader(std::span<const char> bytes) : m_bytes(bytes) {}

    bool Open(const wstring& /*path*/, Access access) override { return access == Access::Read; }
    std::int64_t ReadAt(std::int64_t position, char* buffer, std::size_t count) override
    {
        if (position < 0) return -1;
        const std::size_t start = std::min(m_bytes.size(), static_cast<std::size_t>(position));
        const std::size_t n = std::min(count, m_bytes.size() - start);
        if (n > 0) std::memcpy(buffer, m_bytes.data() + start, n);
        return static_cast<std::int64_t>(n);
    }
    bool WriteAt(std::int64_t /*position*/, const char* /*buffer*/, std::size_t /*count*/) override { return false; }
    std::int64_t Size() override { return static_cast<std::int64_t>(m_bytes.size()); }
    bool Close() override { return true; }

private:
    std::span<const char> m_bytes;
};

class MemoryWriter final : public FileHandle {
public:
    explicit MemoryWriter(std::vector<char>& bytes) : m_bytes(bytes) {}

    bool Open(const wstring& /*path*/, Access access) override
    {
        if (access == Access::Create) m_bytes.clear();
        return access != Access::Scratch;
    }
    std::int64_t ReadAt(std::int64_t position, char* buffer, std::size_t count) override
    {
        return MemoryReader(m_bytes).ReadAt(position, buffer, count);
    }
    bool WriteAt(std::int64_t position, const char* buffer, std::size_t count) override
    {
        if (position < 0) return false;
        const std::size_t end = static_cast<std::size_t>(position) + count;
        try {
            if (end > m_bytes.size()) m_bytes.resize(end);
        } catch (const std::bad_alloc&) {
            return false;
        } catch (const std::length_error&) {
            return false;
        }
        if (count > 0) std::memcpy(m_bytes.data() + position, buffer, count);
        return true;
    }
    std::int64_t Size() override { return static_cast<std::int64_t>(m_bytes.size()); }
    bool Close() override { return true; }

private:
    std::vector<char>& m_bytes;
};

} // namespace

BackendFactory ReadMemory(std::span<const char> bytes)
{
    return [bytes] { return std::make_unique<CMmioRiff>([bytes] { return std::make_unique<MemoryReader>(bytes); }); };
}

BackendFactory WriteMemory(std::vector<char>& bytes)
{
    return [&bytes] { return std::make_unique<CMmioRiff>([&bytes] { return std::make_unique<MemoryWriter>(bytes); }); };
}

} // namespace ZelmResult
