// Documents that live in the memory of the process.

#include "zelmresult/zelmresult.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <string>

using namespace ZelmResult;

namespace {

// Files of one process, by name. Only the bytes are ours: the RIFF logic stays that of the library.
class MemoryFile : public FileHandle {
public:
    bool Open(const wstring& path, Access access) override
    {
        static std::map<wstring, std::shared_ptr<std::string>> files;
        auto& file = files[path];
        if (file == nullptr && access != Access::Create) return false;
        if (file == nullptr) file = std::make_shared<std::string>();
        if (access == Access::Create) file->clear();
        m_bytes = file;
        return true;
    }
    std::int64_t ReadAt(std::int64_t position, char* buffer, std::size_t count) override
    {
        const auto from = std::min(static_cast<std::size_t>(position), m_bytes->size());
        return static_cast<std::int64_t>(m_bytes->copy(buffer, count, from));
    }
    bool WriteAt(std::int64_t position, const char* buffer, std::size_t count) override
    {
        const auto from = static_cast<std::size_t>(position);
        m_bytes->resize(std::max(m_bytes->size(), from + count));
        std::memcpy(m_bytes->data() + from, buffer, count);
        return true;
    }
    std::int64_t Size() override { return static_cast<std::int64_t>(m_bytes->size()); }
    bool Close() override { return true; }

private:
    std::shared_ptr<std::string> m_bytes;
};

void KeepInMemory(CZMXFFile& document)
{
    document.SetBackend([] { return std::make_unique<CMmioRiff>([] { return std::make_unique<MemoryFile>(); }); });
}

} // namespace

int main()
{
    CZMXFFile written(true, false);
    CZMXFFile read(true, false);
    KeepInMemory(written);
    KeepInMemory(read);
    if (!written.Save(u"no disk") || !read.Load(u"no disk", ZMXFFileLoadScope::all())) return 1;
    std::FILE* onDisk = std::fopen("no disk", "rb");
    std::printf("loaded from memory; on disk: %s\n", onDisk != nullptr ? "yes" : "no");
    return 0;
}
