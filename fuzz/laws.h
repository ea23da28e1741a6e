#pragma once

#include "tests/builders/memory_file.h"
#include "zelmresult/reading/owned_result.h"
#include "zelmresult/results/result.h"
#include "zelmresult/settings/config_data.h"
#include "zelmresult/storage/mmio_file.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

// What must hold for every input, and what the targets share. A law that doesn't hold ends the program with a message,
// so that the input is kept.

namespace ZelmResult::fuzz {

using Data = std::vector<char>;

void Require(bool holds, const std::string& law);

// The input from start to end; zeros after it.
class Input {
public:
    Input(const std::uint8_t* data, std::size_t size) : m_data(reinterpret_cast<const char*>(data)), m_left(size) {}

    template <class T>
    T take()
    {
        T value{};
        const std::size_t n = m_left < sizeof value ? m_left : sizeof value;
        if (n > 0) std::memcpy(&value, m_data, n);
        m_data += n, m_left -= n;
        return value;
    }
    // One of count choices, by one byte.
    std::size_t choice(std::size_t count) { return take<std::uint8_t>() % count; }
    [[nodiscard]] bool empty() const { return m_left == 0; }
    [[nodiscard]] Data rest() const { return {m_data, m_data + m_left}; }

private:
    const char* m_data;
    std::size_t m_left;
};

// The disk in memory that all files of the program are on.
test::MemoryDisk& Disk();

// Runs an operation on a file of that size. It may hold 16 times the file plus 64 MiB at once, as is promised of what
// is read, and 4 MiB for what is around it, such as the headers that a search remembers. It may read 2000 times the
// file plus 1 MiB: what bounds the headers that searches visit shows in that.
void Bounded(std::size_t fileSize, const std::function<void()>& operation);

// A file of any bytes: loaded in every scope, looked into, saved and loaded again.
void CheckDocument(const Data& bytes);

// Asks of a result what a host would: values, names, copies.
void Look(CResult& result);
// Whether it has points of which only the filled ones are restored.
bool MaySettle(CResult& result);
// A new result for a kind and a dimension; null for a kind without a class.
OwnedResult MakeResult(std::uint32_t kind, std::uint32_t dimension);

// Whether settings hold a table of a version without fields. It has -1 lines, which the next read of what is saved
// takes for a table of the first layout, and gives it that one's columns.
bool HasBareTable(const std::vector<CReglageData*>& settings);
bool HasBareTable(const CConfigData& tree);

// An object that a record is read into and written from, and how.
struct Subject {
    using Call = std::function<bool(CMmioFile&)>;
    Call read;               // with the file at the record, and the list that ends with the file as its current chunk
    Call write;              // whatever the position of the file
    bool isWholeRead = true; // a read takes all that a write gives
    // After a read: whether the first read of a write may change it, such as points that were not filled, which go.
    std::function<bool()> maySettle = [] { return false; };
    std::function<void()> look = [] {};   // after a read
    std::function<void()> finish = [] {}; // at the end of a check
};
template <class Object>
Subject SubjectOf(std::shared_ptr<Object> object)
{
    Subject subject;
    subject.read = [object](CMmioFile& file) { return object->Read(&file); };
    subject.write = [object](CMmioFile& file) { return object->Write(&file); };
    if constexpr (std::is_base_of_v<CResult, Object>) {
        subject.look = [object] { Look(*object); };
        subject.maySettle = [object] { return MaySettle(*object); };
    }
    return subject;
}

// A record of any bytes, after the quantities "0000", "0001" and "0002" in a list that it fills: what was read,
// written, read and written again gives the same bytes both times; what shrinks does from the second time on.
void CheckRecord(const Data& record, const std::function<Subject()>& make);

} // namespace ZelmResult::fuzz
