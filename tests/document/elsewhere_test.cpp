// Documents that are saved and loaded elsewhere than on disk.

#include "tests/builders/samples.h"
#include "tests/builders/waterfall_samples.h"
#include "zelmresult/storage/memory_backend.h"
#include "zelmresult/storage/mmio_riff.h"

#include <gtest/gtest.h>
#include <sstream>

namespace ZelmResult {
namespace {

using namespace test;

constexpr auto kAll = [] { return ZMXFFileLoadScope::all(); };

TEST(DocumentElsewhere, MemoryAndStreamsHoldTheBytesOfTheFileSaveAfterSave)
{
    const std::vector<char> golden = DataFile("whole.zmxf");
    CZMXFFile document(true, false);
    ASSERT_TRUE(document.LoadFromMemory(golden, kAll(), u"whole.zmxf"));
    document.NeedToRemoveEverything(true);
    EXPECT_EQ(document.filename(), u"whole.zmxf");
    const MemoryDisk disk;
    document.SetBackend(disk.backend());
    std::vector<char> bytes{'o', 'l', 'd'};
    for (int round = 0; round < 2; ++round) {
        std::stringstream stream;
        ASSERT_TRUE(document.Save(u"file"));
        ASSERT_TRUE(document.SaveToMemory(bytes));
        ASSERT_TRUE(document.SaveToStream(stream));
        EXPECT_EQ(bytes, MemoryDisk(disk)[u"file"]) << round;
        EXPECT_EQ(stream.str(), std::string(bytes.begin(), bytes.end())) << round;
        CZMXFFile read(true, false);
        ASSERT_TRUE(read.LoadFromStream(stream, kAll()));
        read.NeedToRemoveEverything(true);
        EXPECT_EQ(SavedAnyway(read), bytes) << round;
    }
}

TEST(DocumentElsewhere, WhatCannotBeReadOrWrittenIsAFailureWithoutBytes)
{
    CZMXFFile document(true, false);
    EXPECT_FALSE(document.LoadFromMemory({}, kAll()));
    std::istringstream text("no document");
    EXPECT_FALSE(document.LoadFromStream(text, kAll()));
    std::ostringstream broken;
    broken.setstate(std::ios::badbit);
    EXPECT_FALSE(document.SaveToStream(broken));
    struct TakesNothing : std::streambuf {
    } buffer;
    std::ostream throwing(&buffer);
    throwing.exceptions(std::ios::badbit);
    EXPECT_FALSE(document.SaveToStream(throwing)) << "no exception leaves it";
    std::istringstream notOpen("");
    notOpen.setstate(std::ios::failbit);
    document.setFilename(u"before");
    EXPECT_FALSE(document.LoadFromStream(notOpen, kAll(), u"stream"));
    EXPECT_EQ(document.filename(), u"");
    std::vector<wstring> messages;
    document.fetchErrors(messages, true);
    EXPECT_EQ(messages.size(), 3U);
    const std::vector<char> bytes(3);
    CMmioFile reader(false, ReadMemory(bytes));
    EXPECT_FALSE(reader.Open(u"x", nullptr, OMMIO_CREATE | OMMIO_WRITE)) << "the bytes are lent to be read";
}

// Two documents at the same time, each with a disk of its own; the backend of all others stays what it was.
TEST(DocumentElsewhere, ABackendBelongsToItsDocument)
{
    const MemoryDisk disks[2];
    CZMXFFile documents[2] = {{true, false}, {true, false}};
    for (int i = 0; i < 2; ++i) documents[i].SetBackend(disks[i].backend());
    ASSERT_TRUE(documents[0].Save(u"a"));
    ASSERT_TRUE(documents[1].Save(u"b"));
    EXPECT_FALSE(disks[0].Holds(u"b"));
    EXPECT_FALSE(disks[1].Holds(u"a"));
    std::vector<CResultHeader*> headers;
    EXPECT_TRUE(documents[1].GetResultHeaderListe(u"b", headers));
    EXPECT_FALSE(documents[0].GetResultHeaderListe(u"b", headers));
    CHardInfo hardware;
    EXPECT_TRUE(documents[0].GetHardInfo(u"a", hardware));
}

} // namespace
} // namespace ZelmResult
