#pragma once

#include "tests/builders/platform.h"
#include "zelmresult/waterfalls/scratch_space.h"
#include "zelmresult/waterfalls/waterfall_buffer_array.h"

#include <memory>
#include <string>

namespace ZelmResult::test {

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
