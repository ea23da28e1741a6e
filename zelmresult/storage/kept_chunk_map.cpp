#include "zelmresult/storage/kept_chunk_map.h"

#include <mutex>
#include <utility>

namespace ZelmResult {

namespace {

struct Slot {
    std::mutex mutex;
    FileStamp file;
    ChunkMap map;
};

Slot& TheSlot()
{
    static Slot slot;
    return slot;
}

} // namespace

void KeptChunkMap::Keep(const FileStamp& file, ChunkMap map)
{
    if (map.size() > kMostHeaders) map = {};
    Slot& slot = TheSlot();
    const std::lock_guard lock(slot.mutex);
    slot.file = file;
    std::swap(slot.map, map);
}

ChunkMap KeptChunkMap::TakeFor(const FileStamp& file)
{
    Slot& slot = TheSlot();
    const std::lock_guard lock(slot.mutex);
    return slot.file == file ? std::exchange(slot.map, {}) : ChunkMap();
}

} // namespace ZelmResult
