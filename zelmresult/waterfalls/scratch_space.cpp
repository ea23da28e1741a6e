#include "zelmresult/waterfalls/scratch_space.h"

#include "zelmresult/storage/temporary_files.h"
#include "zelmresult/waterfalls/temp_file.h"

#include <new>

namespace ZelmResult {

namespace {

// Lives to the end of the process, as buffers may.
struct Current {
    std::mutex mutex;
    std::weak_ptr<ScratchSpace> space;
    FileHandleFactory makeHandle = MakePlatformFileHandle;
};

Current& TheCurrent()
{
    static auto* const current = new Current;
    return *current;
}

} // namespace

ScratchSpace::ScratchSpace(std::unique_ptr<FileHandle> handle, std::string directory)
    : m_handle(std::move(handle)), m_directory(std::move(directory)), m_process(ProcessNumber())
{
}

bool ScratchSpace::IsFor(const std::string& directory) const { return m_directory == directory && IsOwnProcess(); }

bool ScratchSpace::IsOwnProcess() const { return m_process == ProcessNumber(); }

std::shared_ptr<ScratchSpace> ScratchSpace::Shared()
{
    Current& current = TheCurrent();
    const std::lock_guard lock(current.mutex);
    const std::string directory = TemporaryDirectory();
    if (auto space = current.space.lock(); space != nullptr && space->IsFor(directory)) return space;
    CTempFile name("wbd", "zelm");
    auto handle = current.makeHandle();
    if (!name.IsReserved() || !handle->Open(name.GetPathNameW(), FileHandle::Access::Scratch)) return nullptr;
    name.SetDeleteOnDestroy(false); // the name is removed already
    auto space = std::make_shared<ScratchSpace>(std::move(handle), directory);
    current.space = space;
    return space;
}

FileHandleFactory ScratchSpace::SetHandles(FileHandleFactory makeHandle)
{
    Current& current = TheCurrent();
    const std::lock_guard lock(current.mutex);
    return std::exchange(current.makeHandle, std::move(makeHandle));
}

// The smallest hole that is large enough, else the end of the file.
std::int64_t ScratchSpace::Take(std::int64_t bytes)
{
    if (!IsOwnProcess()) return -1;
    try {
        const std::lock_guard lock(m_mutex);
        const auto found = m_holesBySize.lower_bound({bytes, 0});
        if (found == m_holesBySize.end()) return std::exchange(m_end, m_end + bytes);
        const auto [held, position] = *found;
        if (held > bytes) Remember(position + bytes, held - bytes);
        Forget(m_holes.find(position));
        return position;
    } catch (const std::bad_alloc&) {
        return -1;
    }
}

void ScratchSpace::GiveBack(std::int64_t position, std::int64_t bytes)
{
    if (!IsOwnProcess()) return;
    m_handle->Discard(position, bytes); // before another buffer may write there
    const std::lock_guard lock(m_mutex);
    const auto after = m_holes.lower_bound(position);
    if (after != m_holes.begin())
        if (const auto before = std::prev(after); before->first + before->second == position) {
            position = before->first;
            bytes += before->second;
            Forget(before);
        }
    if (after != m_holes.end() && after->first == position + bytes) {
        bytes += after->second;
        Forget(after);
    }
    if (position + bytes == m_end) {
        m_end = position;
        return;
    }
    try {
        Remember(position, bytes);
    } catch (const std::bad_alloc&) { // the hole is lost until the file ends
    }
}

void ScratchSpace::Remember(std::int64_t position, std::int64_t bytes)
{
    m_holesBySize.emplace(bytes, position);
    try {
        m_holes.emplace(position, bytes);
    } catch (const std::bad_alloc&) {
        m_holesBySize.erase({bytes, position});
        throw;
    }
}

void ScratchSpace::Forget(std::map<std::int64_t, std::int64_t>::iterator hole)
{
    m_holesBySize.erase({hole->second, hole->first});
    m_holes.erase(hole);
}

bool ScratchSpace::Read(std::int64_t position, float* values, std::size_t count)
{
    const std::size_t bytes = count * sizeof(float);
    return m_handle->ReadAt(position, reinterpret_cast<char*>(values), bytes) == static_cast<std::int64_t>(bytes);
}

bool ScratchSpace::Write(std::int64_t position, const float* values, std::size_t count)
{
    return IsOwnProcess() && m_handle->WriteAt(position, reinterpret_cast<const char*>(values), count * sizeof(float));
}

} // namespace ZelmResult
