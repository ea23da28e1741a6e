// Files that other writers, or other versions of this one, have made: what a load takes from them.

#include "tests/document/document_fixture.h"

namespace ZelmResult {
namespace {

using namespace test;

constexpr std::uint32_t kAllResults = FileType::kResults | FileType::kQuantities;

template <class... Parts>
Bytes Joined(const Parts&... parts)
{
    Bytes joined;
    (joined.append(parts), ...);
    return joined;
}

// A file that begins with the number of its systems and ends with no hardware.
template <class... Parts>
Bytes FileOf(std::uint16_t systems, const Parts&... parts)
{
    return fileOf(Joined(head(systems, 4), parts..., hardware()));
}
// The usual file with one system, whose list of results holds the given chunks.
template <class... Parts>
Bytes OneList(const Parts&... parts)
{
    return fileOf(Joined(head(1, kAllResults), units({quantityBytes(u"q0"), quantityBytes(u"q1")}),
                         system("0", results(Joined(parts...))), hardware({u"a", u"b", u"c", u"d"})));
}

// Chunks that nobody asks for, one of odd size.
Bytes Strange()
{
    return Bytes{}.chunk("XTRA", Bytes{}.zeros(5)).list("XLST", result(9, 9)).chunk({"\0\0\0\0", 4}, {});
}

Bytes EighteenSystems()
{
    Bytes systems;
    for (int i = 0; i < 18; ++i) systems.append(system({&"0123456789ABCDEF12"[i], 1}, results(result(i, 9))));
    return systems;
}

struct Row {
    const char* name;
    Bytes file;
    std::string expected; // empty: the load fails
    bool isLXFFile = false;
};

const std::string kOne = "[9=0] q, c, h 0, v 200";
const std::string kTail = " q q0 q1, c, h 1, v 200"; // of OneList

class Layouts : public LoadsDocuments {
protected:
    void ExpectGives(const std::vector<Row>& rows)
    {
        for (const Row& row : rows) {
            SCOPED_TRACE(row.name);
            const auto document = Load(row.file.data(), !row.expected.empty(), ZMXFFileLoadScope::all(), row.isLXFFile);
            if (row.expected.empty()) continue;
            EXPECT_EQ(Summary(*document), row.expected);
        }
    }

    const Bytes list = results(result(0, 9));
    const Bytes zero = system("0", list);
    const Bytes q0 = Bytes{}.chunk("0000", quantityBytes(u"q0"));
    const Bytes q1 = Bytes{}.chunk("0001", quantityBytes(u"q1"));
};

TEST_F(Layouts, OfOlderWritersGiveWhatTheyHold)
{
    const Bytes comments =
        Bytes{}.chunk("cmts", Bytes{}.narrow("one")).chunk("CMTS", {}).chunk("cmts", Bytes{}.text(u"two"));
    const Bytes project = Bytes{}.chunk("PRJI", Bytes{}.u16(0x100).text(u"m").text(u"p").text(u"u"));
    ExpectGives({
        {"version 0x1FF looks for no hardware", fileOf(head(1, 4).append(zero), 0x1FF), "[9=0] q, c, h 0, v 1ff"},
        {"units without version", FileOf(1, Bytes{}.list("UNIT", q0), system("0", results(result(0, 9, "0000")))),
         "[9=0@q0] q q0, c, h 0, v 200"},
        {"units after what refers to them",
         FileOf(1, system("0", results(result(0, 9, "0000"))), units({quantityBytes(u"q0")})),
         "[9=0@q0] q q0, c, h 0, v 200"},
        {"head of version 0xFF",
         fileOf(Joined(Bytes{}.chunk("HEAD", Bytes{}.u16(0xFF).u16(1).u32(4)), zero, hardware())),
         "[] q, c, h 0, v 200"},
        {"head at the end", fileOf(Joined(Bytes{}.chunk("HRDI", Bytes{}.u16(0)), zero, head(1, 4))), kOne},
        {"system of version 0x100",
         fileOf(Joined(head(1, 4 | 64), Bytes{}.list("SYS0", Joined(Bytes{}.versionChunk(0x100), list)), hardware())),
         kOne},
        {"comments of either spelling", FileOf(1, zero, comments), "[9=0] q, c one two, h 0, v 200"},
        {"comments in a file with a project", FileOf(1, project, zero, comments), kOne, true},

    });
}

TEST_F(Layouts, HoldStrangersInAnyOrder)
{
    const Bytes newer = Bytes{}.chunk("INFO", headerBytes({.processType = 9, .chunkId = CodeOf("0   ")}, 99).zeros(40));
    ExpectGives({
        {"unknown chunks anywhere",
         fileOf(Joined(
             Strange(), head(1, kAllResults), Strange(),
             Bytes{}.list("UNIT", Joined(Bytes{}.versionChunk(0x100), Strange(), q0, Strange(), q1, Strange())),
             Strange(),
             system("0", Joined(Strange(),
                                results(Joined(Strange(), resultHeader(0, 9), Strange(),
                                               resultData(0, scalarBytes(9, 5, "0001")), Strange(), result(1, 10))),
                                Strange())),
             Strange(), hardware({u"a", u"b", u"c", u"d"}), Strange())),
         "[9=5@q1 10=1]" + kTail},
        {"newer fields after the known ones", OneList(newer, resultData(0, scalarBytes(9, 0).zeros(9)), result(1, 10)),
         "[9=0 10=1]" + kTail},
        {"data before its header",
         OneList(resultData(1, scalarBytes(10, 1)), resultHeader(0, 9), resultHeader(1, 10),
                 resultData(0, scalarBytes(9, 0))),
         "[9=0 10=1]" + kTail},
        {"unknown kinds",
         OneList(result(0, 4711), result(1, 9), resultHeader(2, 0xFFFFFFFF), resultData(2, {}), result(3, 10)),
         "[9=1 10=3]" + kTail},
        {"previews alone are not loaded", fileOf(Joined(head(1, 128), zero, hardware())), "[] q, c, h 0, v 200"},
        {"seventeen systems at most", FileOf(18, EighteenSystems()),
         "[9=0] [9=1] [9=2] [9=3] [9=4] [9=5] [9=6] [9=7] [9=8] [9=9] [9=10] [9=11] [9=12] [9=13] [9=14] [9=15] "
         "[9=16] q, c, h 0, v 200"},

    });
}

TEST_F(Layouts, OfWhichAGapEndsAWalk)
{
    const Bytes q3 = Bytes{}.chunk("0003", quantityBytes(u"q3"));
    ExpectGives({
        {"a gap in the quantities",
         FileOf(1, Bytes{}.list("UNIT", Joined(Bytes{}.versionChunk(0x100), q0, q3)),
                system("0", results(result(0, 9, "0003")))),
         "[9=0@q3] q q0 q3, c, h 0, v 200"},
        {"equal quantities are one",
         FileOf(1, units({quantityBytes(u"q"), quantityBytes(u"q"), quantityBytes(u"r")}),
                system("0", results(result(0, 9, "0001").append(result(1, 9, "0002"))))),
         "[9=0@q 9=1@r] q q r, c, h 0, v 200"},
        {"a gap in the systems", FileOf(3, zero, system("2", results(result(1, 9)))), kOne},

    });
}

} // namespace
} // namespace ZelmResult
