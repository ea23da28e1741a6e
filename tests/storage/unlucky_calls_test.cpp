// Legal calls at the wrong time or with the oddest arguments, for files that are closed, empty, or only half there.

#include "tests/builders/memory_file.h"
#include "zelmresult/quantities/file_quantities.h"
#include "zelmresult/quantities/grandeur.h"
#include "zelmresult/storage/mmio_file.h"
#include "zelmresult/storage/mmio_riff.h"

#include <array>
#include <gtest/gtest.h>

namespace ZelmResult {
namespace {

using namespace test;

using Chunk = OMMCKINFO;

// How many of all operations that can fail say that all is well.
int CallAll(CMmioFile& file, const Chunk& given, std::int16_t number)
{
    Chunk chunk = given;
    Chunk parent = given;
    int succeeded = 0;
    const auto count = [&](bool success) {
        succeeded += success ? 1 : 0;
        chunk = parent = given;
    };
    for (const auto make : {&CMmioFile::CreateChunkRIFF, &CMmioFile::CreateChunkUnite, &CMmioFile::EnterChunkRIFF,
                            &CMmioFile::EnterChunkComments, &CMmioFile::TopOfChunkUnite, &CMmioFile::ExitChunk})
        count((file.*make)(chunk));
    for (const auto make : {&CMmioFile::CreateChunkSysteme, &CMmioFile::CreateChunkTrack, &CMmioFile::EnterChunkRecInfo,
                            &CMmioFile::TopOfChunkSystem, &CMmioFile::TopOfChunkResultat})
        count((file.*make)(chunk, number));
    for (const auto enter : {&CMmioFile::EnterChunkResultat, &CMmioFile::EnterChunkReglageInfo})
        count((file.*enter)(chunk, parent));
    const auto wide = static_cast<std::uint32_t>(number);
    const idn::Idn idn(idn::Analyzer(wide), idn::Module(wide, wide), idn::Submodule(wide, wide), idn::Setting(wide));
    count(file.CreateChunkModule(chunk, idn)), count(file.CreateChunkReglage(chunk, idn));
    count(file.EnterChunkModule(chunk, parent, idn)), count(file.EnterChunkReglage(chunk, parent, idn));
    count(file.CreateChunk(chunk, wstring(100000, u'c'))), count(file.CreateChunk(chunk, wstring()));
    count(file.CreateChunkVectorRef(chunk, number)), count(file.EnterChunkVectorRef(chunk, parent, number));
    count(file.EnterChunk(chunk, parent, wide)), count(file.EnterChunkSansParent(chunk, wide));
    count(file.EnterChunkListSansParent(chunk, wide)), count(file.EnterChunkSysteme(chunk, parent, number));

    std::array<std::uint32_t, 4> words{};
    std::array<std::uint8_t, 4> bytes{};
    wstring text = u"former";
    idn::Idn read = idn;
    std::uint16_t version = 7;
    OTime time(5);
    bool flag = true;
    CGrandeur* quantity = nullptr;
    for (const std::size_t n : {std::size_t{4}, SIZE_MAX, std::size_t{0x80000000}})
        count(file.mmioWrite_ulong(words.data(), n)), count(file.mmioRead_ulong(words.data(), n > 4 ? SIZE_MAX : n));
    count(file.mmioRead_byte(bytes.data(), 4)), count(file.mmioReadBool(flag)), count(file.mmioRead_OTime(time));
    count(file.ReadCString(text)), count(file.WriteCString(wstring(70000, u'\xD800'))), count(file.mmioReadIDN(read));
    count(file.mmioWriteIDN(idn)), count(file.WriteChunkIDN(idn)), count(file.ReadChunkIDN(parent, read));
    count(file.WriteChunkVersion(1)), count(file.ReadChunkVersion(parent, version));
    count(file.ReadChunkVersionSansParent(version)), count(file.ReadGrandeur(quantity));
    count(file.WriteGrandeur(nullptr)), (void)file.quantities().ReadChunk(file, wide), (void)file.GetGrandeur(u"", wide);
    for (const auto origin : {OMMIO_SEEK_SET, OMMIO_SEEK_CUR, OMMIO_SEEK_END, OMMIO_SEEK_FLAG(99)})
        for (const std::int32_t offset : {INT32_MIN, -1, 0, INT32_MAX})
            count(file.mmioSeek(offset, origin)), (void)file.RoomFor(UINT64_MAX, SIZE_MAX);
    count(file.TopOfFile()), count(file.IsResultFile()), count(file.IsWaveFile()), count(file.RoomFor(1, SIZE_MAX));
    file.LimitSearches();
    (void)file.Charge(UINT64_MAX);
    return succeeded;
}

TEST(UnluckyFiles, OperationsBeforeWhileAndAfter)
{
    MemoryDisk disk;
    for (const std::int16_t number : std::array<std::int16_t, 8>{INT16_MIN, -1, 0, 16, 17, 999, 1000, INT16_MAX})
        for (const Chunk& chunk : {Chunk{}, Chunk{1, 2, 3, 4, OMMIO_DIRTY}, Chunk{~0U, ~0U, ~0U, ~0U, ~0U}}) {
            CMmioFile file(false, disk.backend());
            EXPECT_EQ(CallAll(file, chunk, number), 0) << "before the open";
            EXPECT_FALSE(file.Open(u"none", nullptr, OMMIO_READ) || file.Open({}, nullptr, OMMIO_READ));
            EXPECT_EQ(CallAll(file, chunk, number), 0) << "after one that failed";
            OMMIOINFO odd{INT32_MIN, -1}; // no such position
            EXPECT_FALSE(file.Open(u"f", &odd, OMMIO_WRITE | OMMIO_CREATE));
            odd.lDiskOffset = 0;
            EXPECT_TRUE(file.Open(u"f", &odd, OMMIO_WRITE | OMMIO_CREATE));
            (void)CallAll(file, chunk, number);
            const CMmioFile copy = file;
            (void)file.Close(), (void)file.Close();
            EXPECT_TRUE(file.hFile() == nullptr && file.Position() == -1 && copy.Position() == -1);
            EXPECT_EQ(CallAll(file, chunk, number), 0) << "after the close";
            for (CGrandeurFichier* quantity : file.ListeGrandeur()) delete quantity;
            disk[u"f"].resize(std::min<std::size_t>(disk[u"f"].size(), 1 << 20U));
            EXPECT_TRUE(file.Open(u"f", nullptr, OMMIO_READ) && file.ListeGrandeur().empty());
            (void)CallAll(file, chunk, number);
            disk[u"f"].clear(); // under an open file
            (void)CallAll(file, chunk, number);
            for (CGrandeurFichier* quantity : file.ListeGrandeur()) delete quantity;
        }
}

} // namespace
} // namespace ZelmResult
