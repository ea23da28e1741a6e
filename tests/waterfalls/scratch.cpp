#include "tests/waterfalls/scratch.h"

#include <algorithm>

namespace ZelmResult::test {

namespace {

// A real file whose calls are counted.
class CountedHandle final : public FileHandle {
public:
    explicit CountedHandle(SlicesOnDisk::Counts& counts) : m_counts(counts) {}

    bool Open(const wstring& path, Access access) override
    {
        ++m_counts.opens;
        return m_file->Open(path, access);
    }
    std::int64_t ReadAt(std::int64_t position, char* buffer, std::size_t count) override
    {
        return m_file->ReadAt(position, buffer, count);
    }
    bool WriteAt(std::int64_t position, const char* buffer, std::size_t count) override
    {
        ++m_counts.writes;
        m_counts.size = std::max(m_counts.size, position + static_cast<std::int64_t>(count));
        return m_file->WriteAt(position, buffer, count);
    }
    void Discard(std::int64_t position, std::int64_t count) override { m_file->Discard(position, count); }
    std::int64_t Size() override { return m_file->Size(); }
    bool Close() override { return m_file->Close(); }

private:
    SlicesOnDisk::Counts& m_counts;
    std::unique_ptr<FileHandle> m_file = MakePlatformFileHandle();
};

} // namespace

SlicesOnDisk::SlicesOnDisk()
    : m_formerHandles(ScratchSpace::SetHandles([this] { return std::make_unique<CountedHandle>(counts); }))
{
}

SlicesOnDisk::~SlicesOnDisk()
{
    (void)ScratchSpace::SetHandles(std::move(m_formerHandles));
    CWaterfallBufferFactory::SetStrategy(m_former);
}

} // namespace ZelmResult::test
