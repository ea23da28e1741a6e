#pragma once

#include "zelmresult/storage/file_handle.h"

#include <algorithm>

namespace ZelmResult {

// A file that keeps nothing but its size, for trying a save without writing a file.
class DiscardingFileHandle final : public FileHandle {
public:
    bool Open(const wstring& /*path*/, Access access) override
    {
        m_size = 0;
        return access == Access::Create;
    }
    std::int64_t ReadAt(std::int64_t /*position*/, char* /*buffer*/, std::size_t /*count*/) override { return 0; }
    bool WriteAt(std::int64_t position, const char* /*buffer*/, std::size_t count) override
    {
        m_size = (std::max)(m_size, position + static_cast<std::int64_t>(count));
        return true;
    }
    std::int64_t Size() override { return m_size; }
    bool Close() override { return true; }

private:
    std::int64_t m_size = 0;
};

} // namespace ZelmResult
