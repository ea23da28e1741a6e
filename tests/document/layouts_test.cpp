// Files that other writers, or other versions of this one, have made: what a load takes from them.

#include "tests/document/samples.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>

namespace ZelmResult {
namespace {

using namespace test;

constexpr std::uint32_t kAllResults = FileType::kResults | FileType::kQuantities;

Bytes Joined(std::initializer_list<Bytes> parts)
{
    Bytes joined;
    for (const Bytes& part : parts) joined.append(part);
    return joined;
}

// Children of the usual file with one system, whose list holds the given chunks.
Bytes OneSystem(const Bytes& inSystem, std::uint32_t type = kAllResults)
{
    return Joined({head(1, type), units({quantityBytes(u"q0"), quantityBytes(u"q1")}), system("0", inSystem),
                   hardware({u"a", u"b", u"c", u"d"})});
}
Bytes OneList(const Bytes& inResults, std::uint32_t type = kAllResults) { return OneSystem(results(inResults), type); }

// Chunks that nobody asks for, one of odd size.
Bytes Strange()
{
    return Joined({Bytes{}.chunk("XTRA", Bytes{}.zeros(5)), Bytes{}.list("XLST", result(9, 9)),
                   Bytes{}.chunk({"\0\0\0\0", 4}, {})});
}

Bytes SeventeenSystems()
{
    Bytes children = head(18, kAllResults);
    for (int i = 0; i < 18; ++i) {
        const char digit[2] = {i == 16 ? '1' : i == 17 ? '2' : "0123456789ABCDEF"[i], 0};
        children.append(system(digit, results(result(i, 9))));
    }
    return children;
}

struct Row {
    const char* name;
    Bytes file;
    std::string expected; // empty: the load fails
    bool isLXFFile = false;
};

const std::string kTail = " q q0 q1, c, h 1, v 200";

TEST(Layouts, GiveWhatTheyHold)
{
    const Bytes comments = Joined({Bytes{}.chunk("cmts", Bytes{}.narrow("one")), Bytes{}.chunk("CMTS", Bytes{}),
                                   Bytes{}.chunk("cmts", Bytes{}.text(u"two"))});
    const Bytes project = Bytes{}.chunk("PRJI", Bytes{}.u16(0x100).text(u"m").text(u"p").text(u"u"));
    const Bytes noVersion = Bytes{}.list("SYS0", results(result(0, 9)));
    const Bytes olderSystem = Bytes{}.list("SYS0", Bytes{}.versionChunk(0x100).append(results(result(0, 9))));
    std::vector<char> wrongSize = fileOf(OneList(result(0, 9))).data();
    const auto sized = [&wrongSize](std::uint32_t size) {
        std::copy_n(reinterpret_cast<const char*>(&size), 4, wrongSize.begin() + 4);
        return AsBytes(wrongSize);
    };
    const auto wholeSize = static_cast<std::uint32_t>(wrongSize.size());
    const Bytes headBehind =
        Joined({Bytes{}.chunk("HRDI", Bytes{}.u16(0)), system("0", results(result(0, 9))), units({}), head(1, 4)});

    const Row rows[] = {
        // Older layouts
        {"version 0x100 without hardware and units",
         fileOf(Joined({head(1, 4), system("0", results(result(0, 9)))}), 0x100), "[9=0] q, c, h 0, v 100"},
        {"version 0x1FF does not look for hardware", fileOf(OneList(result(0, 9)), 0x1FF),
         "[9=0] q q0 q1, c, h 0, v 1ff"},
        {"units without version",
         fileOf(Joined({head(1, 4), Bytes{}.list("UNIT", Bytes{}.chunk("0000", quantityBytes(u"q0"))),
                        system("0", results(result(0, 9, "0000"))), hardware()})),
         "[9=0@q0] q q0, c, h 0, v 200"},
        {"units behind what refers to them",
         fileOf(Joined({head(1, 4), hardware(), system("0", results(result(0, 9, "0001"))),
                        units({quantityBytes(u"q0"), quantityBytes(u"q1")})})),
         "[9=0@q1] q q0 q1, c, h 0, v 200"},
        {"head of version 0xFF",
         fileOf(Joined(
             {Bytes{}.chunk("HEAD", Bytes{}.u16(0xFF)), units({}), system("0", results(result(0, 9))), hardware()})),
         "[] q, c, h 0, v 200"},
        {"head at the end", fileOf(headBehind), "[9=0] q, c, h 0, v 200"},
        {"system of version 0x100", fileOf(Joined({head(1, 4 | 64), olderSystem, hardware()})),
         "[9=0] q, c, h 0, v 200"},
        {"header of version 1",
         fileOf(OneList(Bytes{}
                            .chunk("INFO", headerBytes({.processType = 9, .chunkId = CodeOf("0   ")}, 1))
                            .append(resultData(0, scalarBytes(9, 7))))),
         "[9=7]" + kTail},
        {"comments of either spelling", fileOf(Joined({OneList(result(0, 9)), comments})),
         "[9=0] q q0 q1, c one two, h 1, v 200"},
        {"comments in a file with a project", fileOf(Joined({project, OneList(result(0, 9)), comments})),
         "[9=0]" + kTail, true},

        // Order and strangers
        {"unknown chunks anywhere",
         fileOf(Joined({Strange(), head(1, kAllResults), Strange(),
                        Bytes{}.list("UNIT", Joined({Bytes{}.versionChunk(0x100), Strange(),
                                                     Bytes{}.chunk("0000", quantityBytes(u"q0")), Strange(),
                                                     Bytes{}.chunk("0001", quantityBytes(u"q1")), Strange()})),
                        Strange(),
                        system("0", Joined({Strange(),
                                            results(Joined({Strange(), resultHeader(0, 9), Strange(),
                                                            resultData(0, scalarBytes(9, 5, "0001")), Strange(),
                                                            result(1, 10), Strange()})),
                                            Strange()})),
                        Strange(), hardware({u"a", u"b", u"c", u"d"}), Strange()})),
         "[9=5@q1 10=1]" + kTail},
        {"newer fields behind the known ones",
         fileOf(OneList(Joined({Bytes{}.chunk("INFO", headerBytes({.processType = 9, .chunkId = CodeOf("0   ")}, 99)
                                                          .chunk("INFO", Bytes{}.zeros(40))),
                                resultData(0, scalarBytes(9, 0).zeros(9)), result(1, 10)}))),
         "[9=0 10=1]" + kTail},
        {"data ahead of its header",
         fileOf(OneList(Joined({resultData(1, scalarBytes(10, 1)), resultHeader(0, 9), resultHeader(1, 10),
                                resultData(0, scalarBytes(9, 0))}))),
         "[9=0 10=1]" + kTail},
        {"two headers of one data chunk", fileOf(OneList(Joined({resultHeader(0, 9), result(0, 10)}))),
         "[9=0 10=0]" + kTail},
        {"a repeated code",
         fileOf(OneList(Joined({result(0, 9), resultHeader(0, 10), resultData(0, scalarBytes(10, 8))}))),
         "[9=0 10=0]" + kTail},
        {"unknown kinds",
         fileOf(OneList(
             Joined({result(0, 4711), result(1, 9), resultHeader(2, 0xFFFFFFFF), resultData(2, {}), result(3, 10)}))),
         "[9=1 10=3]" + kTail},
        {"previews alone are not loaded", fileOf(OneList(result(0, 9), 128)), "[]" + kTail},
        {"seventeen systems", fileOf(Joined({SeventeenSystems(), hardware()})),
         "[9=0] [9=1] [9=2] [9=3] [9=4] [9=5] [9=6] [9=7] [9=8] [9=9] [9=10] [9=11] [9=12] [9=13] [9=14] [9=15] "
         "[9=16] q, c, h 0, v 200"},

        // Gaps, which end a walk
        {"a gap in the quantities",
         fileOf(Joined({head(1, 4),
                        Bytes{}.list("UNIT", Bytes{}
                                                 .versionChunk(0x100)
                                                 .chunk("0000", quantityBytes(u"q0"))
                                                 .chunk("0002", quantityBytes(u"q2"))
                                                 .chunk("0003", quantityBytes(u"q3"))),
                        system("0", results(result(0, 9, "0003"))), hardware()})),
         "[9=0@q3] q q0 q3, c, h 0, v 200"},
        {"equal quantities are one",
         fileOf(Joined({head(1, 4), units({quantityBytes(u"q"), quantityBytes(u"q"), quantityBytes(u"r")}),
                        system("0", results(Joined({result(0, 9, "0001"), result(1, 9, "0002")}))), hardware()})),
         "[9=0@q 9=1@r] q q r, c, h 0, v 200"},
        {"a gap in the systems",
         fileOf(
             Joined({head(3, 4), system("0", results(result(0, 9))), system("2", results(result(1, 9))), hardware()})),
         "[9=0] q, c, h 0, v 200"},
        {"systems out of order",
         fileOf(
             Joined({head(2, 4), system("1", results(result(0, 9))), system("0", results(result(1, 9))), hardware()})),
         "[9=1] q, c, h 0, v 200"},

        // What is missing
        {"root", Bytes{}.riff("WAVE", Bytes{}.versionChunk(0x200).append(OneList(result(0, 9)))), ""},
        {"root version", Bytes{}.riff("ZMXF", OneList(result(0, 9))), ""},
        {"head", fileOf(Joined({units({}), system("0", results(result(0, 9))), hardware()})), ""},
        {"project", fileOf(OneList(result(0, 9))), "", true},
        {"units", fileOf(Joined({head(1, 4), system("0", results(result(0, 9))), hardware()})),
         "[9=0] q, c, h 0, v 200"},
        {"the quantity of a result", fileOf(OneList(result(0, 9, "0002"))), ""},
        {"system version", fileOf(Joined({head(1, 4), noVersion, hardware()})), ""},
        {"recording", fileOf(OneList(result(0, 9), 4 | 2)), ""},
        {"results", fileOf(OneSystem(Bytes{}.list("RESV", result(0, 9)))), ""},
        {"settings", fileOf(OneList(result(0, 9), 4 | 8)), ""},
        {"headers", fileOf(OneList(resultData(0, scalarBytes(9, 0)))), "[]" + kTail},
        {"a result's data", fileOf(OneList(Joined({result(0, 9), resultHeader(1, 9)}))), ""},
        {"the data of an unknown kind", fileOf(OneList(Joined({result(0, 9), resultHeader(1, 4711)}))), ""},
        {"hardware", fileOf(Joined({head(1, 4), system("0", results(result(0, 9)))})), ""},

        // Sizes of the root
        {"root of size 0", sized(0), ""},
        {"root that ends behind its version", sized(4 + 10), ""},
        {"root that ends in the head of its last chunk", sized(wholeSize - 8 - 31), ""},
        {"root that ends in the data of its last chunk", sized(wholeSize - 8 - 30), "[9=0]" + kTail},
        {"root past the end of the file", sized(wholeSize), "[9=0]" + kTail},
        {"root of the largest size", sized(0xFFFFFFFF), "[9=0]" + kTail},
        {"nothing", Bytes{}, ""},
        {"a root alone", Bytes{}.riff("ZMXF", {}), ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        MemoryDisk disk;
        disk.Put(u"f", row.file);
        const UseBackend use(disk);
        CZMXFFile document(true, row.isLXFFile);
        const bool loaded = document.Load(u"f", ZMXFFileLoadScope::all());
        document.NeedToRemoveEverything(true);
        EXPECT_EQ(loaded ? Summary(document) : "", row.expected);
        EXPECT_EQ(Messages(document), std::vector<std::string>());
        EXPECT_EQ(document.filename(), loaded ? u"f" : u"");
        EXPECT_EQ(disk.counts().closes, 1U);
    }
}

TEST(Layouts, SystemsAheadOfAFailureStay)
{
    MemoryDisk disk;
    const UseBackend use(disk);
    disk.Put(u"f",
             fileOf(Joined({head(2, 4), units({quantityBytes(u"q")}), system("0", results(result(0, 9, "0000"))),
                            system("1", results(Joined({result(1, 9, "0000"), resultHeader(2, 9)}))), hardware()})));
    CZMXFFile document(true, false);
    EXPECT_FALSE(document.Load(u"f", ZMXFFileLoadScope::all()));
    document.NeedToRemoveEverything(true);
    EXPECT_EQ(Summary(document), "[9=0@q] q q, c, h 0, v 200");
    // One that fails may still be fine for a narrower scope.
    CZMXFFile narrow(true, false);
    EXPECT_TRUE(narrow.Load(u"f", ZMXFFileLoadScope::singleResult(static_cast<std::int32_t>(CodeOf("1   ")))));
    narrow.NeedToRemoveEverything(true);
    EXPECT_EQ(Summary(narrow), "[] [9=1@q] q q, c, h 0, v 200");
}

// Quantities may be built from quantities, but not from themselves, and only so deep.
TEST(Layouts, OperandsEndSomewhere)
{
    const auto chain = [](int length, const std::string& last) {
        std::vector<Bytes> quantities;
        for (int i = 0; i < length; ++i) {
            const std::string next = i + 1 < length ? std::to_string(10000 + i + 1).substr(1) : last;
            quantities.push_back(quantityBytes(u"q" + wstring(static_cast<std::size_t>(i), u'!'), {next, next}));
        }
        return fileOf(Joined({head(1, 4), units(quantities), system("0", results(result(0, 9, "0000"))), hardware()}));
    };
    const std::pair<Bytes, bool> rows[] = {{chain(1, kNoQuantity), true},   {chain(64, kNoQuantity), true},
                                           {chain(65, kNoQuantity), false}, {chain(1, "0000"), false},
                                           {chain(9, "0004"), false},       {chain(3, "xxxx"), false}};
    for (const auto& [file, loads] : rows) {
        MemoryDisk disk;
        disk.Put(u"f", file);
        const UseBackend use(disk);
        CZMXFFile document(true, false);
        EXPECT_EQ(document.Load(u"f", ZMXFFileLoadScope::all()), loads);
        document.NeedToRemoveEverything(true);
        CScalar fetched;
        CResultHeader header;
        header.SetChunkId(CodeOf("0   "));
        header.setFilename(u"f");
        std::int32_t number = 0;
        CZMXFFile reader(false, false);
        EXPECT_EQ(reader.GetResultat(&fetched, &header, number), loads);
        std::map<CGrandeur*, int> given;
        fetched.AddInvolvedGrandeur(given);
        for (const auto& entry : given) delete entry.first;
    }
}

} // namespace
} // namespace ZelmResult
