#include "tests/builders/failing_backend.h"
#include "tests/builders/memory_file.h"
#include "zelmresult/storage/chunk_codes.h"
#include "zelmresult/storage/mmio_file.h"
#include "zelmresult/support/text.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace ZelmResult {
namespace {

using namespace test;

constexpr std::uint32_t kWriteFlags = OMMIO_WRITE | OMMIO_CREATE;
const wstring kPath = u"f";

idn::Idn Short(std::uint16_t module, std::uint16_t submodule, std::uint16_t setting)
{
    return idn::Legacy(module, submodule, setting).toIdn();
}
idn::Idn Long(std::uint32_t module, std::uint32_t submodule)
{
    return {idn::Analyzer{}, {module, 2}, {submodule, 3}, idn::Setting{4}};
}
std::string Raw(std::uint32_t code) { return {reinterpret_cast<const char*>(&code), 4}; }

// A kind of chunk: how it is made and found, and what is in the file and in the dump.
using Call = bool (*)(CMmioFile&, OMMCKINFO&, OMMCKINFO&); // with a chunk and a parent
struct Kind {
    Call create;
    bool withinParent;
    Call enter;
    std::string code;
    int version; // of a list
    std::string label;
};
constexpr int kPlain = -1; // in place of the version

#define CALL(call) [](CMmioFile& f, [[maybe_unused]] OMMCKINFO& c, [[maybe_unused]] OMMCKINFO& p) { return f.call; }
#define MADE(name, ...) CALL(CreateChunk##name(c __VA_OPT__(, ) __VA_ARGS__))
#define WITHIN(name, ...) true, CALL(EnterChunk##name(c, p __VA_OPT__(, ) __VA_ARGS__))
#define ANYWHERE(name, ...) false, CALL(EnterChunk##name(c __VA_OPT__(, ) __VA_ARGS__))

// The codes that follow from more than the table of chunks says; golden documents hold the plain ones.
std::vector<Kind> kindsOfChunks()
{
    return {
        {MADE(Systeme, 16), WITHIN(Systeme, 16), "SYS1", 0x200, "SYS10"},
        {MADE(RecordInfo, 15), ANYWHERE(RecInfo, 15), "DSKF", 0x100, "DSKf"},
        {MADE(Link), ANYWHERE(ListSansParent, FourCC("LINK")), "LINK", 0x100, "link"},
        {MADE(Module, Short(5, 0, 0)), WITHIN(Module, Short(5, 2000, 1)), "M5  ", 0x201, "M5"},
        {MADE(Module, Long(7, 8)), WITHIN(Module, Long(7, 9)), Raw(0x00020007), 0x201, "Midn"},
        {MADE(Module, idn::Idn()), WITHIN(Module, idn::Idn()), Raw(0), 0x201, "Midn"},
        {MADE(SousModule, Long(7, 8)), WITHIN(SousModule, Long(9, 8)), Raw(0x00030008), 0x101, "Sidn"},
        {MADE(Reglage, Short(1, 1, 999)), WITHIN(Reglage, Short(1, 1, 999)), "R999", kPlain, "R999"},
        {MADE(Reglage, Short(1, 1, 1000)), WITHIN(Reglage, Short(1, 1, 1000)), Raw(1000), kPlain, "Ridn"},
        {MADE(VectorRef, 999), ANYWHERE(VectorRef, p, 999), "V999", kPlain, "V999"}, // takes a parent all the same
        {MADE(, FourCC("abcd")), ANYWHERE(SansParent, FourCC("abcd")), "abcd", kPlain, "ckid"},
        {MADE(, wstring(u"cmts")), WITHIN(, FourCC("CMTS")), "CMTS", kPlain, "cmts"},
    };
}

TEST(MmioFileChunks, KindsAreStoredNotedAndFoundAgain)
{
    const TempFolder folder; // of the dumps
    const wstring path = folder.wideFile("f");
    MemoryDisk disk;
    for (const Kind& kind : kindsOfChunks()) {
        SCOPED_TRACE(kind.label + " " + kind.code);
        CMmioFile file(true, disk.backend());
        OMMCKINFO form, chunk{1, 2, 3, 4, 5};
        ASSERT_TRUE(file.Open(path, nullptr, kWriteFlags));
        ASSERT_TRUE(file.CreateChunkRIFF(form));
        ASSERT_TRUE(kind.create(file, chunk, form));
        ASSERT_TRUE(file.mmioWrite_ushort(7));
        ASSERT_TRUE(file.ExitChunk(chunk));
        ASSERT_TRUE(file.ExitChunk(form));
        ASSERT_TRUE(file.Close());

        const bool isList = kind.version != kPlain;
        const auto version = static_cast<std::uint16_t>(kind.version);
        Bytes children = Bytes{}.versionChunk(0x200);
        isList ? children.list(kind.code, Bytes{}.versionChunk(version).u16(7))
               : children.chunk(kind.code, Bytes{}.u16(7));
        expectBytes(disk[path], Bytes{}.riff("ZMXF", children));

        const wstring number = ToHex8(StringToFourCC(FromCodePage(kind.code), false));
        std::string lines = "ZMXF(46584d5a)\n>>>>>>vers(53524556)\n<<<<<< Size : 00000002\n>>>>>>" + kind.label + "(" +
                            ToUtf8(number) + ")\n";
        if (isList) lines += ">>>>>>>>>>>>vers(53524556)\n<<<<<<<<<<<< Size : 00000002\n";
        lines += isList ? "<<<<<< Size : 00000010\n Size : 00000026\n" : "<<<<<< Size : 00000002\n Size : 00000018\n";
        EXPECT_EQ(readDiskFile(folder.file("fd")), lines);

        ASSERT_TRUE(file.Open(path, nullptr, OMMIO_READ));
        ASSERT_TRUE(file.EnterChunkRIFF(form));
        EXPECT_TRUE(kind.enter(file, chunk, form));
        std::uint16_t read = 0;
        if (isList) {
            EXPECT_TRUE(file.ReadChunkVersion(chunk, read));
            EXPECT_EQ(read, version);
        }
        EXPECT_TRUE(file.mmioRead_ushort(read));
        EXPECT_EQ(read, 7);
        EXPECT_TRUE(file.ExitChunk(chunk));
        EXPECT_FALSE(kind.enter(file, chunk, form)) << "only once";
        OMMCKINFO shortParent{.cksize = 10, .dwDataOffset = 12};
        ASSERT_TRUE(file.mmioSeek(12, OMMIO_SEEK_SET));
        EXPECT_EQ(kind.enter(file, chunk, shortParent), !kind.withinParent);

        for (int n = 1;; ++n) { // whatever fails while it is made is reported
            CallPlan plan{.failAt = n};
            CMmioFile failing(false, failingBackend(disk.backend(), plan));
            ASSERT_TRUE(failing.Open(path, nullptr, kWriteFlags));
            const bool created = kind.create(failing, chunk, form);
            EXPECT_EQ(created, plan.calls < n);
            if (plan.calls < n) break;
        }
    }
}

TEST(MmioFileDump, IsWrittenByCloseAfterWritingOnly)
{
    const TempFolder folder;
    const wstring path = folder.wideFile("f.zmx");
    MemoryDisk disk;
    CallPlan plan{.kinds = CallPlan::Create, .failAt = 2};
    {
        CMmioFile file(true, failingBackend(disk.backend(), plan));
        OMMCKINFO chunk;
        ASSERT_TRUE(file.Open(path, nullptr, kWriteFlags));
        file.AddStringToDebugFile(u"\xE9\xD83D\xDE00");
        EXPECT_TRUE(file.CreateChunkHeader(chunk));
        EXPECT_FALSE(file.CreateChunkITRACK(chunk)) << "the one that notes its line after the create";
        plan = {.kinds = CallPlan::Create, .failAt = 1};
        EXPECT_FALSE(file.CreateChunkConfig(chunk));
        file.FermetureChunck(-1);
        file.FermetureChunck(0x1234ABCD);
        file.FermetureChunck(0); // the level is below zero
        file.AddStringToDebugFile(u"end");
    } // the destructor closes
    const char* lines = "\xC3\xA9\xF0\x9F\x98\x80\nhead(44414548)\n>>>>>>CONF(464e4f43)\n<<<<<< Size : ffffffff\n"
                        " Size : 1234abcd\n Size : 00000000\nend\n";
    EXPECT_EQ(readDiskFile(folder.file("f.zmxd")), lines);

    OMMCKINFO chunk;
    CMmioFile reader(true, disk.backend());
    EXPECT_TRUE(reader.Open(path, nullptr, OMMIO_READ));
    EXPECT_TRUE(reader.EnterChunkSansParent(chunk, FourCC("HEAD")));
    EXPECT_TRUE(reader.ExitChunk(chunk));
    EXPECT_TRUE(reader.Close());
    EXPECT_EQ(readDiskFile(folder.file("f.zmxd")), lines) << "as it was";
    CMmioFile again(true, disk.backend());
    EXPECT_TRUE(again.Open(path, nullptr, kWriteFlags));
    EXPECT_TRUE(again.CreateChunkRIFF(chunk));
    EXPECT_TRUE(again.Open(path, nullptr, kWriteFlags));
    EXPECT_TRUE(again.Close());
    EXPECT_EQ(readDiskFile(folder.file("f.zmxd")), "") << "each open begins again";
}

TEST(MmioFileLife, OpenCloseAndCopies)
{
    MemoryDisk disk;
    CMmioFile file(false, disk.backend());
    ASSERT_TRUE(file.Open(kPath, nullptr, kWriteFlags));
    file.CurrentMmckinfo(OMMCKINFO{.ckid = 1});
    file.CurrentSystemMmmioInfo({2, 3});
    {
        const CMmioFile copy = file; // NOLINT(performance-unnecessary-copy-initialization): copies share the file
        EXPECT_EQ(copy.CurrentMmckinfo().ckid, 1U);
    }
    EXPECT_TRUE(file.mmioWrite_byte(1)) << "the copy's end closed nothing";
    EXPECT_TRUE(CMmioFile(file).Close());
    EXPECT_FALSE(file.mmioWrite_byte(1)) << "closed by the copy";
    EXPECT_EQ(file.FileName(), kPath);
    EXPECT_TRUE(file.Close());
    EXPECT_EQ(file.FileName(), u"");
    expectBytes(disk[kPath], Bytes{}.u8(1));
    EXPECT_EQ(disk.counts().closes, 1U);
    ASSERT_TRUE(file.Open(kPath, nullptr, OMMIO_READ));
    EXPECT_EQ(file.CurrentMmckinfo(), OMMCKINFO{}) << "a fresh backend";
    EXPECT_EQ(file.CurrentSystemMmmioInfo().lDiskOffset, 0);

    file.AddErrorMessage(u"a");
    file.AddErrorMessage(u"b");
    std::vector<wstring> messages;
    for (const bool clear : {false, true, true}) file.fetchErrors(messages, clear);
    EXPECT_EQ(messages, (std::vector<wstring>{u"a", u"b", u"a", u"b"}));
}

} // namespace
} // namespace ZelmResult
