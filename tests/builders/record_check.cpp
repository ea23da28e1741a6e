#include "tests/builders/record_check.h"

#include "tests/builders/failing_backend.h"
#include "zelmresult/storage/stored_versions.h"

#include <gtest/gtest.h>

namespace ZelmResult::test {

namespace {

const wstring kPath = u"record";
constexpr std::uint32_t kWriteFlags = OMMIO_WRITE | OMMIO_CREATE;
constexpr std::size_t kMostSpoiled = 4096; // bytes of a record that are spoiled one by one

bool WriteTo(const CMmioFile::BackendFactory& backend, const RecordCall& write, const StoredVersions& versions)
{
    CMmioFile file(false, backend);
    for (const auto& [name, version] : versions) ZelmResult::StoredVersions::Set(file, name, version);
    return file.Open(kPath, nullptr, kWriteFlags) && write(file);
}

// Fails the n-th call for n = 1, 2, ... and counts how often the record said that all is well nevertheless.
int CountSilentFailures(CallPlan::Kind kind, const std::function<bool(CallPlan&)>& run)
{
    int silent = 0;
    for (int n = 1;; ++n) {
        CallPlan plan{.kinds = kind, .failAt = n};
        const bool succeeded = run(plan);
        if (plan.calls < n) {
            EXPECT_TRUE(succeeded) << "no call failed";
            return silent;
        }
        if (succeeded) ++silent;
    }
}

} // namespace

std::vector<char> bytesOf(const RecordCall& write, const StoredVersions& versions)
{
    MemoryDisk disk;
    EXPECT_TRUE(WriteTo(disk.backend(), write, versions)) << "the record is not written";
    return disk[kPath];
}

bool isWritten(const RecordCall& write) { return WriteTo(MemoryDisk().backend(), write, {}); }

std::string dumpLinesOf(const RecordCall& write)
{
    const TempFolder folder; // the dump itself goes to the real disk
    MemoryDisk disk;
    CMmioFile file(true, disk.backend());
    EXPECT_TRUE(file.Open(folder.wideFile("f"), nullptr, kWriteFlags));
    EXPECT_TRUE(write(file)) << "the record is not written";
    EXPECT_TRUE(file.Close());
    return readDiskFile(folder.file("fd"));
}

bool readFrom(const std::vector<char>& stored, const RecordCall& read, std::int32_t* consumed)
{
    MemoryDisk disk;
    disk[kPath] = stored;
    CMmioFile file(false, disk.backend());
    const bool succeeded = file.Open(kPath, nullptr, OMMIO_READ) && read(file);
    if (consumed != nullptr) *consumed = file.Position();
    return succeeded;
}

void expectReadsWhole(const std::vector<char>& stored, const RecordCall& read)
{
    std::vector<wstring> messages;
    std::int32_t consumed = 0;
    EXPECT_TRUE(readFrom(
        stored,
        [&](CMmioFile& file) {
            const bool succeeded = read(file);
            file.fetchErrors(messages, true);
            return succeeded;
        },
        &consumed))
        << "the record is not read";
    EXPECT_EQ(consumed, static_cast<std::int32_t>(stored.size())) << "bytes consumed";
    EXPECT_TRUE(messages.empty()) << messages.size() << " messages";
}

void detail::checkAnyRecord(const AnyRecordCheck& check)
{
    for (unsigned version = check.lowest; version <= check.newest; ++version) {
        SCOPED_TRACE("version " + std::to_string(version));
        const auto number = static_cast<std::uint16_t>(version);
        check.expectFresh(number,
                          check.name.empty() ? bytesOf(check.write) : bytesOf(check.write, {{check.name, number}}));
    }

    const std::vector<char> stored = bytesOf(check.write);
    for (std::size_t length = 0; length < stored.size(); ++length)
        (void)readFrom({stored.begin(), stored.begin() + static_cast<std::ptrdiff_t>(length)}, check.freshReader());
    for (std::size_t i = 0; i < stored.size() && i < kMostSpoiled; ++i) {
        std::vector<char> spoiled = stored;
        spoiled[i] = static_cast<char>(~spoiled[i]);
        (void)readFrom(spoiled, check.freshReader());
    }

    const int silentReads = CountSilentFailures(CallPlan::Read, [&](CallPlan& plan) {
        MemoryDisk disk;
        disk[kPath] = stored;
        CMmioFile file(false, failingBackend(disk.backend(), plan));
        return file.Open(kPath, nullptr, OMMIO_READ) && check.freshReader()(file);
    });
    if (check.silentReads >= 0) {
        EXPECT_LE(silentReads, check.silentReads) << "reads that failed unnoticed";
    }
    const int silentWrites = CountSilentFailures(CallPlan::Write, [&](CallPlan& plan) {
        return WriteTo(failingBackend(MemoryDisk().backend(), plan), check.write, {});
    });
    if (check.silentWrites >= 0) {
        EXPECT_LE(silentWrites, check.silentWrites) << "writes that failed unnoticed";
    }
}

} // namespace ZelmResult::test
