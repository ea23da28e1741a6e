#pragma once

#include "zelmresult/storage/chunk_map.h"
#include "zelmresult/storage/file_handle.h"

namespace ZelmResult {

// The chunk map of the file that was closed last after reading, for the next open of that file: a host that fetches one
// result after the other opens the file for each. One for the process; any thread may call.
class KeptChunkMap {
public:
    // Takes the place of what was kept, unless that knows more of the same file. A map of no or too many headers isn't
    // kept.
    static void Keep(const FileStamp& file, ChunkMap map);
    // Gives what was kept, if it is of that file in that state; else an empty map.
    static ChunkMap TakeFor(const FileStamp& file);

private:
    static constexpr std::size_t kMostHeaders = 131072; // about 10 MiB
};

} // namespace ZelmResult
