// A read that takes one slice of a stored waterfall, or only what says which slices there are.

#include "zelmresult/storage/record_io.h"
#include "zelmresult/waterfalls/block_table.h"
#include "zelmresult/waterfalls/slice_order.h"
#include "zelmresult/waterfalls/waterfall.h"

#include <algorithm>

namespace ZelmResult {

namespace {

constexpr std::int64_t kRangeBytes = 6 * sizeof(float) + 2 * sizeof(std::uint32_t); // limits, codes of quantities
constexpr std::uint64_t kBooksOfBlock = 32; // bytes of memory for a block number while slices are ordered
constexpr std::int32_t kNoSlice = -1;

} // namespace

bool CWaterfall::ReadWanted(CMmioFile& file)
{
    const std::int32_t stored = m_nFilled;
    if (stored < 0 || m_size < 0 || !file.Charge(static_cast<std::uint64_t>(stored) * kBooksOfBlock)) return false;
    m_nFilled = std::min(stored, 1);
    const std::int32_t start = file.Position();
    if (!ChargeSlices(file) || !MakeRoom(file, StoredArrays())) return false;
    std::int32_t raw = kNoSlice;
    if (!ReadEvenSlices(file, stored, raw)) {
        file.ForgetFailures();
        if (!file.mmioSeek(start, OMMIO_SEEK_SET) || !WalkSlices(file, stored, raw)) return false;
    }
    if (raw == kNoSlice) m_nFilled = 0;
    if (raw != kNoSlice) {
        (void)MakeBlocNumbers(1);
        SetBlocNumber(0, m_storedBlocks[static_cast<std::size_t>(m_readIndex)]);
    }
    return true;
}

// Slices of one size end where the fields after them begin, and these end with the record. A slice shows whether that
// is so: it ends where the next one begins.
bool CWaterfall::ReadEvenSlices(CMmioFile& file, std::int32_t stored, std::int32_t& raw)
{
    const std::int64_t start = file.Position();
    const std::int64_t after = std::int64_t{stored} * 4 + kRangeBytes + BytesAfterRanges();
    const std::int64_t bytes = m_wanted->end - after - start;
    if (stored == 0 || bytes <= 0 || bytes % stored != 0) return false;
    const auto place = [&](std::int64_t slice) { return static_cast<std::int32_t>(start + slice * (bytes / stored)); };
    if (!file.mmioSeek(place(stored), OMMIO_SEEK_SET) || !ReadBooks(file, stored, raw)) return false;
    const std::int32_t end = file.Position();
    const std::int32_t slice = std::max(raw, 0);
    return file.mmioSeek(place(slice), OMMIO_SEEK_SET) && ReadSlice(file, 0) && file.Position() == place(slice + 1) &&
           file.mmioSeek(end, OMMIO_SEEK_SET);
}

bool CWaterfall::WalkSlices(CMmioFile& file, std::int32_t stored, std::int32_t& raw)
{
    std::vector<std::int32_t> places;
    for (std::int32_t i = 0; i < stored; ++i) {
        places.push_back(file.Position());
        if (!ReadSlice(file, 0)) return false;
    }
    if (!ReadBooks(file, stored, raw)) return false;
    if (raw == kNoSlice) return true;
    const std::int32_t end = file.Position();
    return file.mmioSeek(places[static_cast<std::size_t>(raw)], OMMIO_SEEK_SET) && ReadSlice(file, 0) &&
           file.mmioSeek(end, OMMIO_SEEK_SET);
}

// The block numbers, which choose the slice, and what follows them.
bool CWaterfall::ReadBooks(CMmioFile& file, std::int32_t stored, std::int32_t& raw)
{
    if (!file.RoomFor(static_cast<std::uint64_t>(stored), sizeof(std::int32_t))) return false;
    auto table = std::make_shared<BlocTable>(static_cast<std::size_t>(stored), -1);
    RecordReader in(file);
    BlockNumbers(in, "block numbers", table, stored);
    return in.ok() && ReadRanges(file) && ChooseSlice(*table, raw);
}

// False for block numbers that fit no waterfall.
bool CWaterfall::ChooseSlice(const std::vector<std::int32_t>& blocks, std::int32_t& raw)
{
    raw = m_readIndex = kNoSlice;
    m_storedBlocks.clear();
    if (blocks.empty()) return true;
    if (!HasSlots(blocks.size(), *std::max_element(blocks.begin(), blocks.end()))) return false;
    const std::vector<ShownSlice> shown = ShownSlices(blocks);
    for (const ShownSlice& slice : shown) m_storedBlocks.push_back(slice.block);
    const auto isWanted = [this](std::size_t i) {
        return m_wanted->number == (m_wanted->by == WantedSlice::By::Index ? static_cast<std::int64_t>(i)
                                                                           : std::int64_t{m_storedBlocks[i]});
    };
    for (std::size_t i = 0; i < shown.size() && m_wanted->by != WantedSlice::By::None; ++i) {
        if (!isWanted(i)) continue;
        raw = shown[i].stored;
        m_readIndex = static_cast<std::int32_t>(i);
        break;
    }
    return true;
}

} // namespace ZelmResult
