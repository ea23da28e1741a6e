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
    static auto* const slot = new Slot; // files may be closed while the process ends
    return *slot;
}

} // namespace

void KeptChunkMap::Keep(const FileStamp& file, ChunkMap map)
{
    if (map.size() == 0 || map.size() > kMostHeaders) return;
    Slot& slot = TheSlot();
    const std::lock_guard lock(slot.mutex);
    if (slot.file == file && slot.map.size() > map.size()) return;
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
