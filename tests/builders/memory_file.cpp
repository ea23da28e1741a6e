#include "tests/builders/memory_file.h"

#include "zelmresult/support/text.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <random>

namespace ZelmResult::test {

class MemoryDisk::Handle final : public FileHandle {
public:
    explicit Handle(std::shared_ptr<State> state) : m_state(std::move(state)) {}
    ~Handle() override { (void)Handle::Close(); }

    bool Open(const wstring& path, Access access) override
    {
        (void)Close();
        if (path.empty() || path.find(u'\0') != wstring::npos) return false;
        if (access != Access::Create && !m_state->files.contains(path)) return false;
        m_file = &m_state->files[path];
        if (access == Access::Create) m_file->clear();
        return true;
    }

    std::int64_t ReadAt(std::int64_t position, char* buffer, std::size_t count) override
    {
        ++m_state->counts.reads;
        if (m_file == nullptr || position < 0) return -1;
        const std::size_t start = std::min(m_file->size(), static_cast<std::size_t>(position));
        const std::size_t n = std::min(count, m_file->size() - start);
        if (n > 0) std::memcpy(buffer, m_file->data() + start, n);
        m_state->counts.bytesRead += static_cast<std::int64_t>(n);
        return static_cast<std::int64_t>(n);
    }

    bool WriteAt(std::int64_t position, const char* buffer, std::size_t count) override
    {
        ++m_state->counts.writes;
        const std::size_t end = static_cast<std::size_t>(position) + count;
        if (m_file == nullptr || position < 0 || end > std::max(m_state->limit, m_file->size())) return false;
        if (end > m_file->size()) m_file->resize(end);
        if (count > 0) std::memcpy(m_file->data() + position, buffer, count);
        return true;
    }

    std::int64_t Size() override { return m_file != nullptr ? static_cast<std::int64_t>(m_file->size()) : -1; }

    bool Close() override
    {
        if (m_file != nullptr) ++m_state->counts.closes;
        m_file = nullptr;
        return true;
    }

private:
    std::shared_ptr<State> m_state;
    File* m_file = nullptr; // files of a disk keep their place
};

FileHandleFactory MemoryDisk::handles() const
{
    return [state = m_state] { return std::make_unique<Handle>(state); };
}

CMmioFile::BackendFactory MemoryDisk::backend(CMmioRiff::Search search) const
{
    return [makeHandle = handles(), search] { return std::make_unique<CMmioRiff>(makeHandle, search); };
}

UseBackend::UseBackend(CMmioFile::BackendFactory makeBackend) : m_former(CMmioFile::DefaultBackend())
{
    CMmioFile::SetDefaultBackend(std::move(makeBackend));
}

UseBackend::~UseBackend() { CMmioFile::SetDefaultBackend(m_former); }

TempFolder::TempFolder()
{
    std::random_device random;
    std::error_code error;
    do m_path = (::testing::TempDir() / std::filesystem::path("zelmresult-" + std::to_string(random()))).string();
    while (!std::filesystem::create_directory(m_path, error) && !error);
    if (error) ADD_FAILURE() << "no temporary folder " << m_path << ": " << error.message();
}

TempFolder::~TempFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

std::string TempFolder::file(const std::string& name) const
{
    return m_path + static_cast<char>(std::filesystem::path::preferred_separator) + name;
}

wstring TempFolder::wideFile(const std::string& name) const { return FromUtf8(file(name)); }

std::string readDiskFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

} // namespace ZelmResult::test
