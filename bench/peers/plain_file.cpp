#include "bench/peers/plain_file.h"

#include <algorithm>
#include <cstring>
#include <fcntl.h>
#include <string_view>
#include <sys/mman.h>
#include <unistd.h>
#include <utility>

namespace peers {

namespace {

constexpr std::size_t kBlock = 1048576;

// Bytes of a file by position, read a page ahead: about what a result takes.
class Window {
public:
    explicit Window(const Path& path) : m_file(path, PlainFile::Access::Read) {}

    const char* Bytes(std::size_t position, std::size_t n)
    {
        if (n > m_bytes.size()) m_bytes.resize(n);
        if (position < m_position || position + n > m_position + m_filled) {
            m_position = position;
            m_filled = m_file.ReadAt(position, m_bytes.data(), m_bytes.size());
        }
        return position + n <= m_position + m_filled ? m_bytes.data() + (position - m_position) : nullptr;
    }

private:
    PlainFile m_file;
    std::vector<char> m_bytes = std::vector<char>(4096);
    std::size_t m_position = 0;
    std::size_t m_filled = 0;
};

} // namespace

PlainFile::PlainFile(const Path& path, Access access)
    : m_descriptor(access == Access::Create ? ::open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600)
                                            : ::open(path.c_str(), O_RDONLY | O_CLOEXEC))
{
    Require(m_descriptor >= 0, "opening a plain file");
}

PlainFile::~PlainFile() { ::close(m_descriptor); }

void PlainFile::WriteAt(std::size_t position, const void* bytes, std::size_t n) const
{
    Require(::pwrite(m_descriptor, bytes, n, static_cast<off_t>(position)) == static_cast<ssize_t>(n), "a plain write");
}

std::size_t PlainFile::ReadAt(std::size_t position, void* bytes, std::size_t n) const
{
    const ssize_t read = ::pread(m_descriptor, bytes, n, static_cast<off_t>(position));
    Require(read >= 0, "a plain read");
    return static_cast<std::size_t>(read);
}

FreshMemory::FreshMemory(std::size_t size) : m_size(size)
{
    void* memory = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    Require(memory != MAP_FAILED, "fresh memory");
    m_data = static_cast<char*>(memory);
}

FreshMemory::FreshMemory(FreshMemory&& other) noexcept
    : m_data(std::exchange(other.m_data, nullptr)), m_size(std::exchange(other.m_size, 0))
{
}

FreshMemory& FreshMemory::operator=(FreshMemory&& other) noexcept
{
    std::swap(m_data, other.m_data);
    std::swap(m_size, other.m_size);
    return *this;
}

FreshMemory::~FreshMemory()
{
    if (m_data != nullptr) (void)::munmap(m_data, m_size);
}

void WritePlainly(const Path& path, const std::vector<char>& bytes)
{
    const PlainFile file(path, PlainFile::Access::Create);
    for (std::size_t done = 0; done < bytes.size(); done += kBlock)
        file.WriteAt(done, bytes.data() + done, std::min(kBlock, bytes.size() - done));
}

FreshMemory ReadPlainly(const Path& path)
{
    const PlainFile file(path, PlainFile::Access::Read);
    FreshMemory memory(std::filesystem::file_size(path));
    for (std::size_t done = 0; done < memory.size(); done += kBlock)
        (void)file.ReadAt(done, memory.data() + done, std::min(kBlock, memory.size() - done));
    return memory;
}

std::vector<std::vector<char>> WalkHeaders(const Path& path)
{
    constexpr std::size_t kHeader = 8; // of a chunk: code and size; a list has its type after it
    std::vector<std::vector<char>> copies;
    Window window(path);
    std::size_t position = 0;
    while (const char* header = window.Bytes(position, kHeader + 4)) {
        const std::string_view code(header, 4);
        const std::string_view type(header + kHeader, 4);
        std::uint32_t size = 0;
        std::memcpy(&size, header + 4, sizeof size);
        if (code == "RIFF" || (code == "LIST" && (type == "SYS0" || type == "RESU"))) {
            position += kHeader + 4;
            continue;
        }
        if (code == "INFO") {
            const char* bytes = window.Bytes(position + kHeader, size);
            Require(bytes != nullptr, "the walk over headers");
            copies.emplace_back(bytes, bytes + size);
        }
        position += kHeader + size + size % 2;
    }
    return copies;
}

} // namespace peers
