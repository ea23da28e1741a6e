#pragma once

#include "tests/builders/bytes.h"
#include "tests/builders/memory_file.h"
#include "zelmresult/storage/mmio_file.h"

#include <concepts>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

// Writing one record to memory, reading it back, and the checks that every record has to pass.

namespace ZelmResult::test {

using RecordCall = std::function<bool(CMmioFile&)>; // writes or reads at the current position
using StoredVersions = std::vector<std::pair<std::string_view, std::uint16_t>>; // see storage/stored_versions.h

// The call for an object: a callable as it is, else its own Write or Read.
template <class T>
RecordCall writing(T&& source)
{
    if constexpr (std::is_invocable_r_v<bool, T&, CMmioFile&>)
        return std::ref(source);
    else if constexpr (requires(CMmioFile & file) { source.Write(&file); })
        return [&source](CMmioFile& file) { return source.Write(&file); };
    else if constexpr (requires(CMmioFile & file) { source.Save(&file); })
        return [&source](CMmioFile& file) { return source.Save(&file); };
    else
        return [&source](CMmioFile& file) { return source.Save(file); };
}
template <class T>
RecordCall reading(T&& target)
{
    if constexpr (std::is_invocable_r_v<bool, T&, CMmioFile&>)
        return std::ref(target);
    else if constexpr (requires(CMmioFile & file) { target.Read(&file); })
        return [&target](CMmioFile& file) { return target.Read(&file); };
    else if constexpr (requires(CMmioFile & file) { target.Load(&file); })
        return [&target](CMmioFile& file) { return target.Load(&file); };
    else
        return [&target](CMmioFile& file) { return target.Load(file); };
}

std::vector<char> bytesOf(const RecordCall& write, const StoredVersions& versions = {});
std::string dumpLinesOf(const RecordCall& write);
bool isWritten(const RecordCall& write); // the result of the call
// The result of the call; consumed is the position after it, unless null.
bool readFrom(const std::vector<char>& stored, const RecordCall& read, std::int32_t* consumed = nullptr);

// The bytes that a writer stores; fails the test when it returns false. source is a callable bool(CMmioFile&) or an
// object with Write(CMmioFile*) or Save(CMmioFile&).
template <class T>
std::vector<char> written(T&& source, const StoredVersions& versions = {})
{
    return bytesOf(writing(source), versions);
}

// The lines of the debug dump that a writer notes, as UTF-8.
template <class T>
std::string dumpOf(T&& source)
{
    return dumpLinesOf(writing(source));
}

// What a writer stores, as bytes to append.
template <class T>
Bytes blockOf(T&& source)
{
    const std::vector<char> stored = written(source);
    return Bytes{}.raw({stored.data(), stored.size()});
}
// The block of a base class.
template <class Base, class T>
Bytes baseBlockOf(T& object)
{
    return blockOf([&object](CMmioFile& file) { return object.Base::Write(&file); });
}

// Fails the test unless the reader returns true, adds no message and consumes exactly the bytes. target is a callable
// bool(CMmioFile&) or an object with Read(CMmioFile*) or Load(CMmioFile&).
void expectReadsWhole(const std::vector<char>& stored, const RecordCall& read);
template <class T>
void readInto(T&& target, const std::vector<char>& stored)
{
    expectReadsWhole(stored, reading(target));
}
template <class T>
void readInto(T&& target, const Bytes& stored)
{
    expectReadsWhole(stored.data(), reading(target));
}
template <class T>
    requires std::default_initializable<T> std::unique_ptr<T> readBack(const Bytes& stored)
    {
        auto object = std::make_unique<T>();
        readInto(*object, stored);
        return object;
    }

// What checkRecord has to know. The defaults suit an object with Write(CMmioFile*) and Read(CMmioFile*).
template <class Object>
struct RecordCheck {
    std::string_view name = {}; // of the record whose versions are tried; empty for one without a version
    std::uint16_t lowest = 1;
    std::uint16_t newest = 1;
    std::function<bool(CMmioFile&, Object&)> write = [](CMmioFile& file, Object& o) { return writing(o)(file); };
    std::function<bool(CMmioFile&, Object&)> read = [](CMmioFile& file, Object& o) { return reading(o)(file); };
    std::function<std::unique_ptr<Object>()> make = [] {
        if constexpr (std::default_initializable<Object>)
            return std::make_unique<Object>();
        else
            return std::unique_ptr<Object>();
    };
    // Looks at a fresh object that was read from the given version: values and newer fields' absent values.
    std::function<void(Object&, std::uint16_t)> expect = {};
    // How many calls of the backend may fail, one at a time, without the record saying so; -1 for any number. The
    // length of a text takes up to three reads whose failure may go unnoticed.
    int silentReads = 0;
    int silentWrites = 0;
};

namespace detail {
struct AnyRecordCheck {
    std::string_view name;
    std::uint16_t lowest;
    std::uint16_t newest;
    int silentReads;
    int silentWrites;
    RecordCall write;
    std::function<RecordCall()> freshReader; // a reader into a fresh object, which it owns
    std::function<void(std::uint16_t, const std::vector<char>&)> expectFresh;
};
void checkAnyRecord(const AnyRecordCheck& check);
} // namespace detail

// For each version: writes the sample, reads it into a fresh object, sees that exactly the written bytes were consumed.
// Then, of the newest version: cuts the bytes at every length and spoils every byte (must not crash), and fails the
// n-th read or write until none is left (must return false).
template <class Object>
void checkRecord(Object& sample, const RecordCheck<Object>& check)
{
    detail::checkAnyRecord({
        check.name,
        check.lowest,
        check.newest,
        check.silentReads,
        check.silentWrites,
        [&](CMmioFile& file) { return check.write(file, sample); },
        [&]() -> RecordCall {
            return [&check, object = std::shared_ptr<Object>(check.make())](CMmioFile& file) {
                return check.read(file, *object);
            };
        },
        [&](std::uint16_t version, const std::vector<char>& stored) {
            const auto object = check.make();
            expectReadsWhole(stored, [&](CMmioFile& file) { return check.read(file, *object); });
            if (check.expect) check.expect(*object, version);
            if (version != check.newest) return; // which stores the same bytes again
            Bytes again;
            again.raw({stored.data(), stored.size()}, "what the sample stored");
            expectBytes(bytesOf([&](CMmioFile& file) { return check.write(file, *object); }), again);
        },
    });
}

} // namespace ZelmResult::test
