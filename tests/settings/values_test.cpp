// Each kind of setting by its bytes, at every version.

#include "tests/builders/record_check.h"
#include "tests/settings/setting_text.h"

#include <climits>
#include <gtest/gtest.h>

namespace ZelmResult {
namespace {

using namespace test;

std::unique_ptr<CReglageData> Make(std::uint32_t type)
{
    return CSousModuleData::CreateReglage(new CReglageInfoData({}, type));
}

Bytes Base(bool visible = true) { return Bytes{}.u16(257, "version").text(u"t", "title").flag(visible, "visible"); }
// The base and a version word of the class.
Bytes Of(std::uint16_t version) { return Base().u16(version, "version of the class"); }
Bytes Scalar(std::uint16_t version)
{
    Bytes bytes = Of(version).f32(1.5F).u32(2).u32(3).u32(4).u32(5);
    return version < 512 ? bytes : bytes.flag(true);
}
Bytes Text(std::string_view value) { return Of(256).text(FromUtf8(value)); }

struct Row {
    std::uint32_t type;
    std::string_view record; // whose version varies
    Bytes stored;
    std::string text;
    bool newest = true;
};

std::vector<Row> Rows()
{
    const Bytes eight = Bytes{}.f32s({1, 2, 3, 4, 5, 6, 7, 8});
    return {
        {3, "CBooleenData", Of(256).flag(true), "3 t 1 1"},
        {3, "", Bytes{}.u16(256).text(u"t").u16(256).flag(true), "3 t 1 1", false}, // visible before there was a flag
        {3, "", Bytes{}.u16(255).u16(255), "3  0 0", false},
        {8193, "CActionData", Of(256).flag(true).i32(-7), "8193 t 1 1-7"},
        {17, "CChaineData", Text("v"), "17 t 1 v"},
        {49, "CChaineData", Text("v"), "49 t 1 v"},
        {113, "CChaineData", Text("v"), "113 t 1 v"},
        {129, "CScalaireData", Scalar(512), "129 t 1 1.5 2 3 4 5 1"},
        {129, "", Scalar(256), "129 t 1 1.5 2 3 4 5 0", false},
        {641, "CWinTuningData", Scalar(512).u16(512).append(eight).i32(9),
         "641 t 1 1.5 2 3 4 5 1 1 2 3 4 5 6 7 8 type 9"},
        {641, "", Scalar(512).u16(256).append(eight), "641 t 1 1.5 2 3 4 5 1 1 2 3 4 5 6 7 8 type 0", false},
        {65537, "CIntegerScalarData", Of(512).u32(0xFFFFFFFF).u32(2).u32(3).flag(true), "65537 t 1 4294967295 2 3 1"},
        {65537, "", Of(256).u32(1).u32(2).u32(3).flag(false), "65537 t 1 1 2 3 0", false},
        {1024, "CListeData", Of(256).text(u"b").i32(2).text(u"a").text(u"A").text(u"b").text(u"B"),
         "1024 t 1 b a=A b=B"},
        {1024, "", Of(256).text(u"").i32(0), "1024 t 1 "},
        {9, "CMatriceData", Of(256).i32(-2).i32(2).idn(1, 2, 3).idn(4, 5, 6).idn(7, 8, 0).idn(65535, 65535, 65535),
         "9 t 1 -2 0/1.1/2.1/3<0/4.1/5.1/6 0/7.1/8.1/0<0/0.0/0.0/0"},
        {16385, "CMultiSourcesData", Of(256).idn(1, 2, 3).i32(1).idn(4, 5, 6), "16385 t 1 0/1.1/2.1/3 0/4.1/5.1/6"},
        {32769, "CReglageIdnData", Of(256).text(u"0/1.2/3.4/5"), "32769 t 1 0/1.2/3.4/5"},
        {32769, "", Of(256).text(u"no identifier"), "32769 t 1 0/0.0/0.0/0", false},
        {2049, "CWtfSourceData", Of(512).idn(1, 0, 0).idn(2, 0, 0).idn(3, 0, 0).i32(24).text(u"c"),
         "2049 t 1 0/1.1/0.0/0 0/2.1/0.0/0 0/3.1/0.0/0 24 c"},
        {2049, "", Of(511).idn(1, 0, 0).idn(2, 0, 0).idn(3, 0, 0).i32(24).text(u"c"),
         "2049 t 1 0/1.1/0.0/0 0/2.1/0.0/0 0/3.1/0.0/0 131 c", false},
        {273, "CSelectionSignalFileData", Text("v").u16(512).flag(false).text(u"pp").text(u"p").text(u"m").text(u"s"),
         "273 t 1 v/pp/p/m///s"},
        {273, "", Text("v").u16(512).flag(true).text(u"mp").text(u"m").text(u"s"), "273 t 1 v////mp/m/s"},
        {273, "", Text("v").u16(256).text(u"pp").text(u"p").text(u"m").text(u"s"), "273 t 1 v/pp/p/m///s", false},
        {273, "", Text("v").u16(300), "273 t 1 v//////", false},
        {5, "CTableauData", Of(512).i32(0).i32(2).i32(7).i32(-1), "5 t 1 0:7-1"},
        {5, "", Of(256), "5 t 1 0:12345678", false},
        {5, "", Of(255), "5 t 1 -1:", false},
        {4097, "CVirtualTachoData", Of(256), "4097 t 1 "},
    };
}

TEST(SettingValues, AreStoredByteForByteAtEachVersion)
{
    for (const Row& row : Rows()) {
        SCOPED_TRACE(row.text);
        const auto read = Make(row.type);
        readInto(*read, row.stored);
        EXPECT_EQ(TextOf(read.get()), row.text);
        if (row.newest) expectBytes(written(*read), row.stored);
        const std::unique_ptr<CReglageData> copy(read->GetCopy());
        EXPECT_EQ(TextOf(copy.get()), row.text);
        EXPECT_EQ(read->GetStringValue() == nullptr, read->titleString().empty());
        if (row.record.empty()) continue;
        RecordCheck<CReglageData> check{
            .name = row.record, .lowest = 254, .newest = 512, .silentReads = -1, .rewrites = false};
        check.make = [&row] { return Make(row.type); };
        if (row.type != 273) checkRecord(*read, check); // which holds nothing at most versions
    }
}

TEST(SettingValues, DumpTheirLines)
{
    // Identifiers leave a line of their own, ahead.
    const std::vector<std::pair<std::uint32_t, std::string>> lines{
        {3, "Booleen :t\n"},
        {8193, "Action :t locked -7\n"},
        {17, "Chaine : t, szValue : v\n"},
        {129, "Scalaire : t\n"},
        {641, "Scalaire : t\nCWinTuning V0 : 1.000000:V1 : 2.000000:V2 : 3.000000:V3 : 4.000000:V4 : 5.000000:V5 : "
              "6.000000:V6 : 7.000000:V7 : 8.000000:Type : 9:\n"},
        {65537, "IntegerScalar : t\n"},
        {1024, "Liste : t, szDefaultKey : b, Nb element: 2\nKey : a, szName : A\nKey : b, szName : B\n"},
        {9, "Matrice : t\n1/2/3\n4/5/6\nReponse :(0/1.1/2.1/3) , Reference :(0/4.1/5.1/6\n7/8/0\nReponse "
            ":(0/7.1/8.1/0) , Reference :(0/0.0/0.0/0\n"},
        {16385, "1/2/3\nAssocList :(0/1.1/2.1/3\n4/5/6\nSource 0/4.1/5.1/6\n"},
        {2049, "1/0/0\n2/0/0\n3/0/0\nWtfSource : t, m_szCaption : c\n"},
        {273, "Chaine : t, szValue : v\nSelectionSignalFile :t\n"},
        {5, "Tableau : tm_NbrLineVisu : 0\n"},
        {4097, "VirtualTacho : t\n"},
    };
    const auto rows = Rows();
    for (const auto& [type, text] : lines) {
        const auto row = std::find_if(rows.begin(), rows.end(), [t = type](const Row& r) { return r.type == t; });
        const auto setting = Make(type);
        readInto(*setting, row->stored);
        EXPECT_EQ(dumpOf(*setting), text);
    }
}

TEST(SettingValues, CountsThatTheFileDoesNotHoldFail)
{
    const std::vector<std::pair<std::uint32_t, Bytes>> rows{
        {1024, Of(256).text(u"").i32(INT_MAX)},
        {9, Of(256).i32(0).i32(INT_MAX).idn(1, 2, 3)},
        {16385, Of(256).idn(1, 2, 3).i32(1)},
        {5, Of(512).i32(0).i32(INT_MAX).i32(1)},
    };
    for (const auto& [type, stored] : rows) {
        const auto setting = Make(type);
        EXPECT_FALSE(readFrom(stored.data(), reading(*setting))) << type;
    }
}

TEST(SettingValues, KindsAreBitsAndTheFactoryKnowsThem)
{
    for (const std::uint32_t type : {0U, 1U, 2U, 33U, 257U, 513U, 1025U, 0xFFFFFFFFU}) EXPECT_EQ(Make(type), nullptr);
    EXPECT_EQ(CSousModuleData::CreateReglage(nullptr), nullptr);
    EXPECT_TRUE(Make(273)->IsOfType(17) && Make(641)->IsOfType(129) && Make(3)->IsOfType(1));
    EXPECT_FALSE(CListeData().IsOfType(1));
    EXPECT_TRUE(CWinTuningData().GetType() == 641 && CReglageInfoData().GetType() == 0xFFFFFFFF);
    const CReglageInfoData other({}, 3);
    EXPECT_EQ(CIntegerScalarData(&other).GetType(), 65537U) << "whatever the key says";
    EXPECT_EQ(CChaineData(&other).GetType(), 3U);
    const CIntegerScalarData number(1, 2, 3, true);
    EXPECT_EQ(TextOf(&number), "65537  0 1 2 3 1");

    CChaineData text;
    idn::Idn idn;
    text.setValue(u"0/1.2/3.4/5");
    EXPECT_TRUE(text.ConvertToIdn(idn) && idn.module().instance == 2 && text.valueContains(u"2/3"));
    text.setValue(u"x");
    EXPECT_FALSE(text.ConvertToIdn(idn));
    EXPECT_TRUE(CMatriceData().GetResponse(0).isNull());
}

TEST(SettingValues, TablesOwnAndCopyTheirSettings)
{
    CTableauData table;
    auto* flag = new CBooleenData;
    table.AddReglage(flag);
    table.AddReglage(flag);
    table.AddReglage(nullptr);
    table.SetListVisu({1, 2});
    CTableauData copy(table);
    flag->setValue(true);
    EXPECT_EQ(TextOf(&copy), "5  0 0:12 {3  0 0}");
    copy = table; // appends
    EXPECT_EQ(TextOf(&copy), "5  0 0:1212 {3  0 0} {3  0 1}");
    copy = *&copy;
    EXPECT_EQ(copy.GetListReglage().size(), 2U);
    CVirtualTachoData tacho;
    tacho.AddReglage(new CChaineData);
    CVirtualTachoData other(tacho);
    other = tacho;
    EXPECT_EQ(TextOf(&other), "4097  0  {17  0 }");
}

} // namespace
} // namespace ZelmResult
