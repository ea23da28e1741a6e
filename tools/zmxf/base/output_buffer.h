#pragma once

#include "zelmresult/storage/file_handle.h"

#include <cstdint>
#include <streambuf>
#include <system_error>
#include <vector>

namespace zmxf {

// What a stream writes to a file, from its start on. Keeps a pointer to the file, which gets the last bytes by a flush.
class OutputBuffer : public std::streambuf {
public:
    explicit OutputBuffer(ZelmResult::FileHandle& file);

    // Why a write failed, after which none succeeds; empty while none did.
    [[nodiscard]] const std::error_code& failure() const { return m_failure; }

private:
    int_type overflow(int_type c) override;
    int sync() override;

    ZelmResult::FileHandle* m_file;
    std::int64_t m_position = 0;
    std::vector<char> m_bytes;
    std::error_code m_failure;
};

} // namespace zmxf
