// Each kind of setting by its bytes, at every version, and its lines in the dump.

#include "tests/builders/record_check.h"
#include "tests/settings/setting_text.h"

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

TEST(SettingValues, AreStoredByteForByteAtEachVersion)
{
    const Bytes eight = Bytes{}.f32s({1, 2, 3, 4, 5, 6, 7, 8});
    const Bytes sources = Bytes{}.idn(1, 0, 0).idn(2, 0, 0).idn(3, 0, 0).i32(24).text(u"c");
    const struct {
        std::uint32_t type;
        Bytes stored;
        std::string text;
        const char* dump = nullptr; // null: of a former version, which is stored as the newest
    } rows[] = {
        {3, Of(256).flag(true), "3 t 1 1", "Booleen :t\n"},
        {3, Bytes{}.u16(256).text(u"t").u16(256).flag(true), "3 t 1 1"}, // visible before there was a flag
        {3, Bytes{}.u16(255).u16(255), "3  0 0"},
        {8193, Of(256).flag(true).i32(-7), "8193 t 1 1-7", "Action :t locked -7\n"},
        {17, Text(), "17 t 1 v", "Chaine : t, szValue : v\n"},
        {49, Text(), "49 t 1 v", "Chaine : t, szValue : v\n"},
        {113, Text(), "113 t 1 v", "Chaine : t, szValue : v\n"},
        {129, Scalar(), "129 t 1 1.5 2 3 4 5 1", "Scalaire : t\n"},
        {129, Of(256).f32(1.5F).u32(2).u32(3).u32(4).u32(5), "129 t 1 1.5 2 3 4 5 0"},
        {641, Scalar().u16(512).append(eight).i32(9), "641 t 1 1.5 2 3 4 5 1 1 2 3 4 5 6 7 8 type 9",
         "Scalaire : t\nCWinTuning V0 : 1.000000:V1 : 2.000000:V2 : 3.000000:V3 : 4.000000:V4 : 5.000000:V5 : "
         "6.000000:V6 : 7.000000:V7 : 8.000000:Type : 9:\n"},
        {641, Scalar().u16(256).append(eight), "641 t 1 1.5 2 3 4 5 1 1 2 3 4 5 6 7 8 type 0"},
        {65537, Of(512).u32(0xFFFFFFFF).u32(2).u32(3).flag(true), "65537 t 1 4294967295 2 3 1", "IntegerScalar : t\n"},
        {65537, Of(256).u32(1).u32(2).u32(3).flag(false), "65537 t 1 1 2 3 0"},
        {1024, Of(256).text(u"b").i32(2).text(u"a").text(u"A").text(u"b").text(u"B"), "1024 t 1 b a=A b=B",
         "Liste : t, szDefaultKey : b, Nb element: 2\nKey : a, szName : A\nKey : b, szName : B\n"},
        // Identifiers leave a line of their own, ahead.
        {9, Of(256).i32(-2).i32(2).idn(1, 2, 3).idn(4, 5, 6).idn(7, 8, 0).idn(65535, 65535, 65535),
         "9 t 1 -2 0/1.1/2.1/3<0/4.1/5.1/6 0/7.1/8.1/0<0/0.0/0.0/0",
         "Matrice : t\n1/2/3\n4/5/6\nReponse :(0/1.1/2.1/3) , Reference :(0/4.1/5.1/6\n7/8/0\nReponse "
         ":(0/7.1/8.1/0) , Reference :(0/0.0/0.0/0\n"},
        {16385, Of(256).idn(1, 2, 3).i32(1).idn(4, 5, 6), "16385 t 1 0/1.1/2.1/3 0/4.1/5.1/6",
         "1/2/3\nAssocList :(0/1.1/2.1/3\n4/5/6\nSource 0/4.1/5.1/6\n"},
        {32769, Of(256).text(u"0/1.2/3.4/5"), "32769 t 1 0/1.2/3.4/5", ""},
        {32769, Of(256).text(u"no identifier"), "32769 t 1 0/0.0/0.0/0"},
        {2049, Of(512).append(sources), "2049 t 1 0/1.1/0.0/0 0/2.1/0.0/0 0/3.1/0.0/0 24 c",
         "1/0/0\n2/0/0\n3/0/0\nWtfSource : t, m_szCaption : c\n"},
        {2049, Of(511).append(sources), "2049 t 1 0/1.1/0.0/0 0/2.1/0.0/0 0/3.1/0.0/0 131 c"},
        {273, Text().u16(512).flag(false).text(u"pp").text(u"p").text(u"m").text(u"s"), "273 t 1 v/pp/p/m///s",
         "Chaine : t, szValue : v\nSelectionSignalFile :t\n"},
        {273, Text().u16(512).flag(true).text(u"mp").text(u"m").text(u"s"), "273 t 1 v////mp/m/s",
         "Chaine : t, szValue : v\nSelectionSignalFile :t\n"},
        {273, Text().u16(256).text(u"pp").text(u"p").text(u"m").text(u"s"), "273 t 1 v/pp/p/m///s"},
        {273, Text().u16(300), "273 t 1 v//////"},
        {5, Of(512).i32(0).i32(2).i32(7).i32(-1), "5 t 1 0:7-1", "Tableau : tm_NbrLineVisu : 0\n"},
        {5, Of(256), "5 t 1 0:12345678"},
        {5, Of(255), "5 t 1 -1:"},
        {4097, Of(256), "4097 t 1 ", "VirtualTacho : t\n"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        const auto read = Make(row.type);
        readInto(*read, row.stored);
        EXPECT_EQ(TextOf(read.get()), row.text);
        const std::unique_ptr<CReglageData> copy(read->GetCopy());
        EXPECT_EQ(TextOf(copy.get()), row.text);
        if (row.dump == nullptr) continue;
        expectBytes(written(*read), row.stored);
        EXPECT_EQ(dumpOf(*read), row.dump);
        RecordCheck<CReglageData> check{.silentReads = -1};
        check.make = [&row] { return Make(row.type); };
        checkRecord(*read, check);
    }
}

} // namespace
} // namespace ZelmResult
