#include "tools/zmxf/base/output_buffer.h"

#include "zelmresult/support/system_error.h"

namespace zmxf {

OutputBuffer::OutputBuffer(ZelmResult::FileHandle& file) : m_file(&file), m_bytes(65536)
{
    setp(m_bytes.data(), m_bytes.data() + m_bytes.size());
}

OutputBuffer::int_type OutputBuffer::overflow(int_type c)
{
    if (sync() != 0) return traits_type::eof();
    return traits_type::eq_int_type(c, traits_type::eof()) ? traits_type::not_eof(c)
                                                           : sputc(traits_type::to_char_type(c));
}

int OutputBuffer::sync()
{
    if (m_failure) return -1;
    const auto count = static_cast<std::size_t>(pptr() - pbase());
    if (count != 0 && !m_file->WriteAt(m_position, pbase(), count)) {
        m_failure = ZelmResult::LastSystemError();
        return -1;
    }
    m_position += static_cast<std::int64_t>(count);
    setp(m_bytes.data(), m_bytes.data() + m_bytes.size());
    return 0;
}

} // namespace zmxf
