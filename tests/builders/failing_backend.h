#pragma once

#include "zelmresult/storage/mmio_file.h"

#include <functional>
#include <memory>

namespace ZelmResult::test {

// Which calls of a backend count, which of them fails, and how many there were.
struct CallPlan {
    enum Kind : unsigned { Read = 1, Write = 2, Seek = 4, Descend = 8, Create = 16, Ascend = 32, Any = 63 };

    unsigned kinds = Any;             // joined by |
    int failAt = 0;                   // 1 is the first counted call; 0 lets all pass
    bool onwards = false;             // all calls from that one on fail, as on a device that was removed
    std::function<void()> event = {}; // happens at the call instead, which passes
    int calls = 0;

    // Counts one call; true when it has to fail.
    bool Fails(Kind kind);
};

// Backends of the inner kind whose calls go by the plan. The plan must outlive them.
CMmioFile::BackendFactory failingBackend(CMmioFile::BackendFactory inner, CallPlan& plan);

} // namespace ZelmResult::test
