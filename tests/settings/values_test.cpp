// Each kind of setting by its bytes, at every version, and its lines in the dump.

#include "tests/builders/record_check.h"
#include "zelmresult/zelmresult.h"

#include <gtest/gtest.h>

namespace ZelmResult {
namespace {

using namespace test;

std::unique_ptr<CReglageData> Make(std::uint32_t type)
{
    return CSousModuleData::CreateReglage(new CReglageInfoData({}, type));
}

// The base and a version word of the class.
Bytes Of(std::uint16_t version) { return Bytes{}.u16(257).text(u"t").flag(true).u16(version, "version of the class"); }
Bytes Scalar() { return Of(512).f32(1.5F).u32(2).u32(3).u32(4).u32(5).flag(true); }
Bytes Text() { return Of(256).text(u"v"); }

Bytes Sources(std::int32_t process) { return Bytes{}.idn(1, 0, 0).idn(2, 0, 0).idn(3, 0, 0).i32(process).text(u"c"); }
Bytes Eight() { return Bytes{}.f32s({1, 2, 3, 4, 5, 6, 7, 8}); }

} // namespace

TEST(SettingValues, AreStoredByteForByte)
{
    const struct {
        std::uint32_t type;
        Bytes stored;
        const char* dump;
    } rows[] = {
        {3, Of(256).flag(true), "Booleen :t\n"},
        {8193, Of(256).flag(true).i32(-7), "Action :t locked -7\n"},
        {17, Text(), "Chaine : t, szValue : v\n"},
        {49, Text(), "Chaine : t, szValue : v\n"},
        {113, Text(), "Chaine : t, szValue : v\n"},
        {129, Scalar(), "Scalaire : t\n"},
        {641, Scalar().u16(512).append(Eight()).i32(9),
         "Scalaire : t\nCWinTuning V0 : 1.000000:V1 : 2.000000:V2 : 3.000000:V3 : 4.000000:V4 : 5.000000:V5 : "
         "6.000000:V6 : 7.000000:V7 : 8.000000:Type : 9:\n"},
        {65537, Of(512).u32(0xFFFFFFFF).u32(2).u32(3).flag(true), "IntegerScalar : t\n"},
        {1024, Of(256).text(u"b").i32(2).text(u"a").text(u"A").text(u"b").text(u"B"),
         "Liste : t, szDefaultKey : b, Nb element: 2\nKey : a, szName : A\nKey : b, szName : B\n"},
        // Identifiers leave a line of their own, ahead.
        {9, Of(256).i32(-2).i32(2).idn(1, 2, 3).idn(4, 5, 6).idn(7, 8, 0).idn(65535, 65535, 65535),
         "Matrice : t\n1/2/3\n4/5/6\nReponse :(0/1.1/2.1/3) , Reference :(0/4.1/5.1/6\n7/8/0\nReponse "
         ":(0/7.1/8.1/0) , Reference :(0/0.0/0.0/0\n"},
        {16385, Of(256).idn(1, 2, 3).i32(1).idn(4, 5, 6),
         "1/2/3\nAssocList :(0/1.1/2.1/3\n4/5/6\nSource 0/4.1/5.1/6\n"},
        {32769, Of(256).text(u"0/1.2/3.4/5"), ""},
        {2049, Of(512).append(Sources(24)), "1/0/0\n2/0/0\n3/0/0\nWtfSource : t, m_szCaption : c\n"},
        {273, Text().u16(512).flag(false).text(u"pp").text(u"p").text(u"m").text(u"s"),
         "Chaine : t, szValue : v\nSelectionSignalFile :t\n"},
        {273, Text().u16(512).flag(true).text(u"mp").text(u"m").text(u"s"),
         "Chaine : t, szValue : v\nSelectionSignalFile :t\n"},
        {5, Of(512).i32(0).i32(2).i32(7).i32(-1), "Tableau : tm_NbrLineVisu : 0\n"},
        {4097, Of(256), "VirtualTacho : t\n"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.type);
        const auto read = Make(row.type);
        readInto(*read, row.stored);
        expectBytes(written(*read), row.stored);
        expectBytes(written(*std::unique_ptr<CReglageData>(read->GetCopy())), row.stored);
        EXPECT_EQ(dumpOf(*read), row.dump);
        RecordCheck<CReglageData> check{.silentReads = -1};
        check.make = [&row] { return Make(row.type); };
        checkRecord(*read, check);
    }
}

// What a former version lacks has a value of its own in the newest.
TEST(SettingValues, OfFormerVersionsAreStoredAsTheNewest)
{
    const Bytes noFile = Bytes{}.text(u"").text(u"").text(u"").text(u"");
    const struct {
        std::uint32_t type;
        Bytes former;
        Bytes newest;
    } rows[] = {
        {3, Bytes{}.u16(256).text(u"t").u16(256).flag(true), Of(256).flag(true)}, // visible before there was a flag
        {3, Bytes{}.u16(255).u16(255), Bytes{}.u16(257).text(u"").flag(false).u16(256).flag(false)},
        {129, Of(256).f32(1.5F).u32(2).u32(3).u32(4).u32(5), Of(512).f32(1.5F).u32(2).u32(3).u32(4).u32(5).flag(false)},
        {641, Scalar().u16(256).append(Eight()), Scalar().u16(512).append(Eight()).i32(0)},
        {65537, Of(256).u32(1).u32(2).u32(3).flag(false), Of(512).u32(1).u32(2).u32(3).flag(false)},
        {32769, Of(256).text(u"no identifier"), Of(256).text(u"0/0.0/0.0/0")},
        {2049, Of(511).append(Sources(24)), Of(512).append(Sources(131))},
        {273, Text().u16(256).text(u"pp").text(u"p").text(u"m").text(u"s"),
         Text().u16(512).flag(false).text(u"pp").text(u"p").text(u"m").text(u"s")},
        {273, Text().u16(300), Text().u16(512).flag(false).append(noFile)},
        {5, Of(256), Of(512).i32(0).i32(8).i32(1).i32(2).i32(3).i32(4).i32(5).i32(6).i32(7).i32(8)},
        {5, Of(255), Of(512).i32(-1).i32(0)},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        const auto read = Make(row.type);
        readInto(*read, row.former);
        expectBytes(written(*read), row.newest);
    }
}

} // namespace ZelmResult
