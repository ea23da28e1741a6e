#pragma once

#include "tests/builders/memory_file.h"
#include "zelmresult/waterfalls/scratch_space.h"
#include "zelmresult/waterfalls/waterfall_buffer_array.h"

#include <cstdlib>
#include <memory>
#include <string>

namespace ZelmResult::test {

// The place for temporary files as long as it lives.
class TempDirectory {
public:
    explicit TempDirectory(const std::string& path)
        : m_former(std::getenv("TMPDIR") != nullptr ? std::getenv("TMPDIR") : "")
    {
        (void)setenv("TMPDIR", path.c_str(), 1);
    }
    TempDirectory(const TempDirectory&) = delete;
    TempDirectory& operator=(const TempDirectory&) = delete;
    ~TempDirectory() { (void)(m_former.empty() ? unsetenv("TMPDIR") : setenv("TMPDIR", m_former.c_str(), 1)); }

private:
    std::string m_former;
};

// As long as it lives, new buffers keep their slices on disk, in a folder of their own, and what they do there is
// counted.
class SlicesOnDisk {
public:
    SlicesOnDisk();
    SlicesOnDisk(const SlicesOnDisk&) = delete;
    SlicesOnDisk& operator=(const SlicesOnDisk&) = delete;
    ~SlicesOnDisk();

    struct Counts {
        int opens = 0;
        int writes = 0;
        std::int64_t size = 0; // of the largest file
    };
    Counts counts;

private:
    TempFolder m_folder;
    TempDirectory m_temporary{m_folder.path()};
    EStrategy m_former = CWaterfallBufferFactory::SetStrategy(EStrategy::StrategyDisk);
    FileHandleFactory m_formerHandles;
};

} // namespace ZelmResult::test
