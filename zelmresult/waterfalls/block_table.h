#pragma once

#include "zelmresult/storage/record_io.h"
#include "zelmresult/support/text.h"

#include <cstdint>
#include <memory>
#include <vector>

// Tables of block numbers in the records and the dumps of waterfalls.

namespace ZelmResult {

using SharedBlocTable = std::shared_ptr<std::vector<std::int32_t>>;

// An entry of a table, -1 without one.
inline std::int32_t EntryOf(const SharedBlocTable& table, std::int32_t i)
{
    return table != nullptr && i >= 0 && i < std::ssize(*table) ? (*table)[static_cast<std::size_t>(i)] : -1;
}

// count block numbers, read as one block into a table that grows to hold them. Without block numbers there is no table.
inline void BlockNumbers(RecordReader& in, const char* name, SharedBlocTable& table, std::int32_t count)
{
    if (!in.ok()) return;
    if (count > 0 && !in.file().RoomFor(static_cast<std::uint64_t>(count), sizeof(std::int32_t))) {
        table.reset();
        return in.fail(name);
    }
    if (table == nullptr) table = std::make_shared<std::vector<std::int32_t>>();
    if (count > std::ssize(*table)) table->resize(static_cast<std::size_t>(count), -1);
    if (count < 1 ||
        in.file().mmioRead_ulong(reinterpret_cast<std::uint32_t*>(table->data()), static_cast<std::size_t>(count)))
        return;
    table.reset();
    in.fail(name);
}

// Writing more than the table holds fails.
inline void BlockNumbers(RecordWriter& out, const char* name, const SharedBlocTable& table, std::int32_t count)
{
    if (!out.ok() || count < 1) return;
    if (table == nullptr || count > std::ssize(*table) ||
        !out.file().mmioWrite_ulong(reinterpret_cast<const std::uint32_t*>(table->data()),
                                    static_cast<std::size_t>(count)))
        out.fail(name);
}

inline void BlockNumbers(RecordOutline& out, const char* name, const SharedBlocTable& /*table*/, std::int32_t /*count*/)
{
    out.nested(name, "i32 array");
}

// The line of five entries, from the first to the last of count, and the line of all of them. entry gives a text's
// number for an index.
template <class Entry>
wstring QuarterEntries(std::int32_t count, Entry entry)
{
    wstring line;
    for (std::int64_t quarter = 0; quarter <= 4; ++quarter) {
        const auto i = static_cast<std::int32_t>((std::int64_t{count} - 1) * quarter / 4);
        line += Concat(quarter == 0 ? u"" : u", ", u"m_plBlockNumber[", i, u"] : ", entry(i));
    }
    return line;
}

template <class Entry>
wstring AllEntries(std::int32_t count, Entry entry)
{
    wstring line;
    for (std::int32_t i = 0; i < count; ++i) line += Concat(u"m_plBlockNumber[", i, u"]:", entry(i), u",");
    return line;
}

} // namespace ZelmResult
