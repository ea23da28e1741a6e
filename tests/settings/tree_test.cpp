// The tree of settings: its bytes, its versions, its look-ups, and what follows from its settings.

#include "tests/builders/new_setting.h"
#include "tests/builders/record_check.h"
#include "zelmresult/storage/chunk_codes.h"
#include "zelmresult/storage/nested_chunk.h"
#include "zelmresult/zelmresult.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ZelmResult {
namespace {

using namespace test;
using idn::Idn;
using ::testing::AllOf;
using ::testing::HasSubstr;

Idn At(std::uint32_t module, std::uint32_t submodule = 0, std::uint32_t setting = 0)
{
    const idn::Submodule under = submodule == 0 ? idn::Submodule() : idn::Submodule(submodule, 1);
    return {idn::Analyzer(0), idn::Module(module, 1), under, idn::Setting(setting)};
}

CChaineData* NewText(const Idn& idn, const wstring& value) { return NewSetting<CChaineData>(idn, value); }
CBooleenData* NewFlag(const Idn& idn, bool value) { return NewSetting<CBooleenData>(idn, value); }

Bytes Key(std::uint16_t module, std::uint16_t submodule, std::uint16_t setting, std::uint32_t type)
{
    return Bytes{}.chunk("SETT", Bytes{}.u16(256).idn(module, submodule, setting).u32(type));
}
Bytes Base() { return Bytes{}.u16(257).text(u"").flag(false); }
Bytes Flag(std::uint16_t setting, bool value)
{
    return Key(3, 7, setting, 3).chunk("R" + std::to_string(setting) + " ", Base().u16(256).flag(value));
}
Bytes Name(std::uint16_t module, std::uint16_t submodule = 0)
{
    return Bytes{}.chunk("IDNU", Bytes{}.idn(module, submodule, 0));
}
Bytes ApplicationVersion() { return Bytes{}.u32(10).u32(11).text(u"12"); }
Bytes VersionChunk(const Bytes& version) { return Bytes{}.chunk("CFVR", version); }
Bytes NoVersion() { return VersionChunk(Bytes{}.u32(0).u32(0).text(u"")); }

Bytes Module3(std::uint16_t version = 513, std::uint16_t submoduleVersion = 257)
{
    Bytes submodule = Bytes{}.versionChunk(submoduleVersion).text(u"sub");
    if (submoduleVersion >= 257) submodule.flag(true);
    submodule.append(Flag(11, true)).append(Flag(12, false));
    Bytes module = Bytes{}.versionChunk(version).text(u"mod");
    if (version >= 513) module.flag(true);
    return Name(3).list("M3  ", module.append(Name(3, 7)).list("S7  ", submodule));
}

Bytes Submodule7(const Bytes& settings) { return Bytes{}.versionChunk(257).text(u"").flag(false).append(settings); }
Bytes Tree(const Bytes& modules, std::uint16_t version = 1025)
{
    return Bytes{}.list("CONF", Bytes{}.versionChunk(version).append(modules));
}
// A tree of these settings in module 3, submodule 7.
Bytes TreeOf(const Bytes& settings)
{
    const Bytes module = Bytes{}.versionChunk(513).text(u"").flag(false).append(Name(3, 7));
    return Tree(Name(3).list("M3  ", Bytes(module).list("S7  ", Submodule7(settings))).append(NoVersion()));
}

// Reads a list "CONF" at the front of some bytes.
struct Read {
    CConfigData config;
    bool good = false;
    std::int32_t position = 0;

    explicit Read(const Bytes& file)
    {
        (void)readFrom(file.data(), [&](CMmioFile& open) {
            OMMCKINFO chunk;
            if (!open.EnterChunkListSansParent(chunk, FourCC("CONF"))) return false;
            const NestedChunk current(open, chunk);
            good = config.Load(&open);
            position = open.Position();
            EXPECT_EQ(open.CurrentMmckinfo().dwDataOffset, chunk.dwDataOffset);
            return true;
        });
    }
};

Bytes Saved(const CConfigData& config)
{
    return blockOf([&config](CMmioFile& file) { return config.Save(&file, false); });
}

bool Saves(const CConfigData& config)
{
    MemoryDisk disk;
    CMmioFile file(false, disk.backend());
    return file.Open(u"tree", nullptr, OMMIO_CREATE | OMMIO_WRITE) && config.Save(&file, false);
}

// What a setting that is fetched stores, nothing for none.
std::vector<char> Fetched(const Bytes& file, const Idn& idn)
{
    std::vector<char> stored;
    (void)readFrom(file.data(), [&](CMmioFile& open) {
        OMMCKINFO system;
        if (!open.EnterChunkListSansParent(system, FourCC("SYS0"))) return false;
        const NestedChunk current(open, system);
        if (const auto setting = CSysteme::GetReglage(&open, idn); setting != nullptr) stored = written(*setting);
        EXPECT_EQ(open.CurrentMmckinfo().dwDataOffset, system.dwDataOffset);
        return true;
    });
    return stored;
}

} // namespace

TEST(SettingsTree, IsStoredByteForByte)
{
    CConfigData config;
    config.setVersionTavide({10, 11, u"12"});
    config.AddReglage(NewFlag(At(3, 7, 11), true));
    config.AddReglage(NewFlag(At(3, 7, 12), true));
    config.AddReglage(NewFlag(At(3, 7, 12), false)); // replaces the former
    config.GetModule(At(3))->setDebugString(u"mod");
    config.GetModule(At(3))->setVisible(true);
    config.GetSousModule(At(3, 7))->setTitleString(u"sub");
    config.GetSousModule(At(3, 7))->setVisible(true);
    // A module without short numbers, and a setting of 1000 or more, have raw codes.
    const Idn odd(idn::Analyzer(2), idn::Module(16, 1), idn::Submodule(5, 3), idn::Setting(1000));
    config.AddReglage(NewText(odd, u"v"));
    auto* deep = dynamic_cast<CDeepResultGeneratorData*>(config.GetModule(odd));
    ASSERT_NE(deep, nullptr);
    auto* info = new CWaterfallFRFInfo;
    info->SetProcessType(6);
    info->SetIdResponse(At(1, 2));
    for (int time = 0; time < 2; ++time) deep->AddFRFInfo(info);

    const Bytes frf = Bytes{}.u32(1).u16(512).u32(6).idn(1, 2, 0).idn(65535, 65535, 65535);
    const Bytes value = Base().u16(256).text(u"v");
    const Bytes submodule = Submodule7(Bytes{}.chunk("SETT", Bytes{}.u16(256).idnText(u"2/16.1/5.3/1000").u32(17)))
                                .chunk({"\xE8\x03\0\0", 4}, value);
    const Bytes module = Bytes{}
                             .versionChunk(513)
                             .text(u"")
                             .chunk("WFRF", frf)
                             .chunk("IDNU", Bytes{}.idnText(u"2/16.1/5.3/0"))
                             .list({"\x05\0\x03\0", 4}, submodule);
    const Bytes version = VersionChunk(ApplicationVersion());
    const Bytes stored = Tree(
        Module3().chunk("IDNU", Bytes{}.idnText(u"2/16.1/0.0/0")).list({"\x10\0\x01\0", 4}, module).append(version));
    const auto save = [&](CMmioFile& file) { return config.Save(&file, false); };
    expectBytes(written(save), stored);
    EXPECT_THAT(dumpOf(save),
                AllOf(HasSubstr("Version Tavide 10.11.12\n"), HasSubstr("Nombre de waterfall de FRF: 1\n")));
    config.AddReglage(NewFlag(At(4, 1, 1), true));
    expectBytes(written([&](CMmioFile& file) { return config.Save(&file, true); }), Tree(Module3().append(version)));

    const Read read(stored);
    EXPECT_TRUE(read.good);
    expectBytes(Saved(read.config).data(), stored);
    CConfigData copy(read.config);
    EXPECT_EQ(dynamic_cast<CDeepResultGeneratorData*>(copy.GetModule(odd)), nullptr) << "copies are plain modules";
    EXPECT_NE(Read(Saved(copy)).config.GetReglage(odd), nullptr);
}

TEST(SettingsTree, IsReadAtEachVersion)
{
    const Bytes version = ApplicationVersion();
    const Bytes after = Bytes{}.chunk("NEXT", Bytes{}.u32(1));
    const Bytes noBuild = Bytes{}.u32(10).u32(11).text(u"");
    const auto inside = [&](std::uint16_t v, const Bytes& rest) {
        return Tree(Module3().append(rest), v).append(after);
    };
    const Bytes bare = Tree(Module3(), 512).append(version);
    const Bytes known = Tree(Module3().append(VersionChunk(version)));
    const Bytes unbuilt = Tree(Module3().append(VersionChunk(noBuild)));
    const Bytes unknown = Tree(Module3().append(NoVersion()));
    const auto empty = [](std::uint16_t module, const char* list, const Bytes& children) {
        return Tree(Name(module).list(list, Bytes{}.versionChunk(513).append(children)).append(NoVersion()));
    };
    const struct {
        Bytes stored;
        Bytes newest;
        bool visibility = false;
    } rows[] = {
        {inside(255, {}), Tree(NoVersion())},
        {inside(300, VersionChunk(version)), unknown},
        {Bytes(bare).append(after), known},
        {inside(768, version), known},
        {inside(768, Bytes(noBuild).zeros(2)), unbuilt}, // longer
        {inside(768, Bytes{}.code("JUNK").u32(10).u32(11).zeros(6).raw({"\xFF\xFE\xFF\0", 4})),
         unbuilt}, // not what ends with the list: 18 bytes before its end
        {inside(1024, VersionChunk(version)), known},
        {inside(1025, VersionChunk(version)), known, true},
        {inside(1025, {}), unknown, true},
        // Modules and submodules without flags are visible, and those of no known version are empty.
        {Tree(Module3(512, 256)), unknown, true},
        {Tree(Name(3).list("M3  ", Bytes{}.versionChunk(255).text(u"mod"))),
         empty(3, "M3  ", Bytes{}.text(u"").flag(false)), true},
        {Tree(Name(16).list("M16 ", Bytes{}.versionChunk(511).text(u"deep"))),
         empty(16, "M16 ", Bytes{}.text(u"deep").chunk("WFRF", Bytes{}.u32(0))), true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        const Read read(row.stored);
        EXPECT_TRUE(read.good);
        expectBytes(Saved(read.config).data(), row.newest);
        EXPECT_EQ(read.config.IsDataVisibilityFilled(), row.visibility);
        EXPECT_FALSE(read.config.CameInPart());
    }
    EXPECT_EQ(Read(rows[2].stored).position, static_cast<std::int32_t>(bare.size()));
}

TEST(SettingsTree, KeepsWhatStandsBeforeAFailure)
{
    const auto submodule = [&](const char* code, std::uint16_t number, std::uint32_t type) {
        const Bytes setting = Key(4, number, 1, type).chunk("R1  ", Base().u16(256).flag(true));
        return Name(4, number).list(code, Submodule7(setting));
    };
    const Bytes bad = Bytes{}.versionChunk(513).text(u"").flag(true).append(submodule("S1  ", 1, 3));
    const Read read(Tree(Module3().append(Name(4).list("M4  ", Bytes(bad).append(submodule("S2  ", 2, 33))))));
    EXPECT_FALSE(read.good);
    expectBytes(Saved(read.config).data(), Tree(Module3().append(NoVersion()))); // the module being read is not added
    EXPECT_TRUE(CConfigData(read.config).CameInPart());
    const Bytes deep = Bytes{}.versionChunk(512).text(u"");
    for (const Bytes& tree : {Tree(Name(16).list("M16 ", deep)), // no transfer functions
                              Tree(Name(16).list("M16 ", Bytes(deep).chunk("WFRF", Bytes{}.u32(0xFFFFFFFF)))),
                              Tree(Name(3)), // an identifier without its list
                              TreeOf(Bytes{}.chunk("SETT", Bytes{}.u16(256))), Bytes{}.list("CONF", {})}) {
        const Read failed(tree);
        EXPECT_FALSE(failed.good);
        EXPECT_TRUE(failed.config.CameInPart());
    }
    const Bytes endless = Bytes{}.u16(65534).u16(65534).u16(65534).raw({"\xFF\xFE\xFF\xFF\xFF\xFF", 6}).u32(0x7FFFFFFF);
    const Read ended(Tree(Module3().chunk("IDNU", endless)));
    EXPECT_TRUE(ended.good) << "a list ends with an identifier that can't be read";
    EXPECT_TRUE(ended.config.CameInPart());
}

TEST(SettingsTree, TablesNestAndLeaveWhatFollowsThem)
{
    const auto table = [](std::uint16_t number, const Bytes& children) {
        return Key(3, 7, number, 5)
            .chunk("R" + std::to_string(number) + " ", Base().u16(512).i32(1).i32(0).append(children));
    };
    const Bytes inner = table(21, Flag(11, true));
    const Bytes nested = TreeOf(table(20, Bytes(inner).append(Flag(12, false))).append(Flag(13, true)));
    const Read read(nested);
    ASSERT_TRUE(read.good);
    EXPECT_NE(read.config.GetReglage(At(3, 7, 20)), nullptr);
    EXPECT_NE(read.config.GetReglage(At(3, 7, 13)), nullptr);
    expectBytes(Saved(read.config).data(), nested);

    Bytes twelve;
    for (std::uint16_t i = 10; i < 22; ++i) twelve.append(Flag(i, true));
    const Read former(TreeOf(Key(3, 7, 20, 5).chunk("R20 ", Base().u16(256).append(twelve))));
    const auto* filled = dynamic_cast<CTableauData*>(former.config.GetReglage(At(3, 7, 20)));
    EXPECT_EQ(filled->GetNbrLineVisu(), 4);
    EXPECT_EQ(filled->GetListReglage().size(), 12U);
    EXPECT_FALSE(Read(TreeOf(table(20, Key(3, 7, 1, 33)))).good) << "an unknown kind in a table";

    CConfigData deep;
    deep.AddReglage(NewFlag(At(3, 7, 1), true));
    Bytes tables = Flag(11, true);
    for (int depth = 0; depth < 66; ++depth) {
        EXPECT_EQ(Read(TreeOf(tables)).good, depth <= 64) << depth;
        EXPECT_EQ(Saves(deep), depth <= 64) << depth << ", which a load would refuse";
        EXPECT_EQ(deep.Unstorable(false).size(), depth <= 64 ? 0U : 1U) << depth;
        tables = table(20, tables);
        auto* outer = new CTableauData;
        outer->info().SetIDN(At(3, 7, 1));
        outer->AddReglage(deep.GetReglage(At(3, 7, 1))->GetCopy());
        deep.AddReglage(outer);
    }
}

TEST(SettingsTree, OneSettingIsFetchedWithoutTheOthers)
{
    CConfigData config;
    config.AddReglage(NewFlag(At(3, 7, 11), true));
    config.AddReglage(NewFlag(At(3, 8, 11), true));
    config.AddReglage(NewText(At(16, 1, 2), u"deep"));
    config.AddReglage(NewText(At(5, 1, 1), u"last"));
    const Bytes saved = Bytes{}.chunk("JUNK", Bytes{}.u16(1)).append(Saved(config));
    const Bytes no = Base().u16(256).flag(false);
    const struct {
        Bytes system;
        Idn idn;
        Bytes setting = {};
    } rows[] = {{saved, At(3, 8, 11), Base().u16(256).flag(true)},
                {saved, At(16, 1, 2), Base().u16(256).text(u"deep")},
                {saved, At(5, 1, 1), Base().u16(256).text(u"last")},
                {saved, At(3, 7, 12)},
                {saved, At(3, 9, 11)},
                {saved, At(4, 7, 11)},
                {saved, {idn::Analyzer(1), idn::Module(3, 1), idn::Submodule(7, 1), idn::Setting(11)}},
                {Tree(Module3(512, 256), 512), At(3, 7, 12), no},
                {Tree(Module3(), 255), At(3, 7, 12)},
                {{}, At(3, 7, 12)}};
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        expectBytes(Fetched(Bytes{}.list("SYS0", row.system), row.idn), row.setting);
    }
}

// Numbers count as they are when a setting is added, however they came about.
TEST(SettingsTree, ASettingTakesThePlaceOfTheFirstOfItsNumber)
{
    constexpr std::uint32_t unused = 4;
    CConfigData config;
    for (std::uint32_t n = 0; n < unused; ++n) config.AddReglage(NewFlag(At(3, 7, n), true));
    config.GetReglage(At(3, 7, 1))->info().SetIDN(At(3, 7, unused)); // away from 1
    config.GetReglage(At(3, 7, 2))->info() = {At(3, 7, 0), 3};       // a second 0
    for (const std::uint32_t n : {1U, 2U, unused, 0U}) config.AddReglage(NewFlag(At(3, 7, n), false));
    const CSousModuleData& submodule = *config.GetSousModule(At(3, 7));
    ASSERT_EQ(submodule.settings().size(), unused + 2);
    const auto value = [&submodule](std::size_t i) {
        return dynamic_cast<CBooleenData*>(submodule.settings()[i])->value();
    };
    EXPECT_FALSE(value(0)) << "the first of a number is replaced";
    EXPECT_FALSE(value(1));
    EXPECT_TRUE(value(2));
    CConfigData copy(config);
    copy.AddReglage(NewFlag(At(3, 7, 3), false));
    EXPECT_EQ(copy.GetSousModule(At(3, 7))->settings().size(), unused + 2);
    config.GetSousModule(At(3, 7))->clearSettings();
    config.AddReglage(NewFlag(At(3, 7, 3), false));
    EXPECT_EQ(submodule.settings().size(), 1U);
}

TEST(SettingsTree, SettingsGoToTheModulesThatBearTheirIdentifiersNow)
{
    CConfigData config;
    const auto adds = [&config](std::uint32_t module, std::uint32_t submodule) {
        auto* setting = NewFlag(At(module, submodule, 1), true);
        config.AddReglage(setting);
        return config.GetReglage(At(module, submodule, 1)) == setting;
    };
    for (const std::uint32_t module : {3U, 4U, 5U})
        for (const std::uint32_t submodule : {7U, 8U}) EXPECT_TRUE(adds(module, submodule));
    config.GetSousModule(At(3, 7))->SetIDN(At(3, 9));
    *config.GetSousModule(At(3, 8)) = CSousModuleData(At(3, 7));
    for (const std::uint32_t submodule : {7U, 8U, 9U}) EXPECT_TRUE(adds(3, submodule)) << submodule;
    EXPECT_EQ(config.GetModule(At(3))->submodules().size(), 3U);
    config.GetModule(At(3))->clearSubmodules();
    EXPECT_TRUE(adds(3, 8));

    config.GetModule(At(3))->SetIDN(At(6));
    *config.GetModule(At(4)) = CModuleData(At(3));
    for (const std::uint32_t module : {3U, 4U, 5U, 6U}) EXPECT_TRUE(adds(module, 7)) << module;
    EXPECT_EQ(config.modules().size(), 4U);
    EXPECT_EQ(config.GetModule(At(3)), config.modules()[1]);
}

TEST(SettingsTree, VersionsOfTheApplicationAreOrdered)
{
    const struct {
        VersionTavide mine;
        VersionTavide other;
        bool older;
        VersionTavide repaired = mine;
    } rows[] = {
        {{10, 11, u"124"}, {10, 11, u"123"}, false},
        {{10, 11, u"9"}, {10, 11, u"10"}, true},
        {{10, 11, u"99"}, {10, 11, u"abc"}, true},
        {{10, 11, u"abc"}, {10, 11, u"99"}, false},
        {{10, 11, u"abc"}, {10, 11, u"abd"}, true},
        {{10, 11, u""}, {10, 11, u"1"}, false},
        {{10, 11, u"99999999999999999999"}, {10, 11, u"99999999999999999998"}, false},
        {{1, 1, u"1"}, {10, 11, u"a"}, true, {10, 11, u""}},
        {{1, 1, u"2"}, {1, 11, u""}, true, {1, 10, u"2"}},
        {{1, 2, u""}, {1, 1, u""}, false},
        {{2, 0, u""}, {10, 0, u""}, true},
    };
    for (const auto& row : rows) {
        CConfigData config;
        config.setVersionTavide(row.mine);
        EXPECT_EQ(config.IsMyVersionOlder(row.other), row.older) << &row - rows;
        EXPECT_EQ(config.versionTavide(), row.repaired) << &row - rows;
    }
}

TEST(SettingsTree, InstanceCodesFollowFromSettings)
{
    CConfigData config;
    const auto code = [&](CReglageData* added, std::uint32_t module = 10) {
        config.AddReglage(added);
        return config.ComputeInstanceID(At(module));
    };
    EXPECT_EQ(code(nullptr), 0);
    EXPECT_EQ(code(NewFlag(At(10, 754, 412), true)), 0) << "without the first setting";
    EXPECT_EQ(code(NewText(At(10, 361, 84), u"1")), 1 + 2048);
    EXPECT_EQ(code(NewText(At(10, 361, 84), u"01")), 2 + 2048);
    EXPECT_EQ(code(NewText(At(10, 362, 85), u"0")), 2 + 2048);
    EXPECT_EQ(code(NewFlag(At(10, 362, 391), true)), 2 + 1024 + 2048);
    EXPECT_EQ(code(NewText(At(10, 362, 85), u"")), 2 + 512 + 1024 + 2048);
    (void)code(NewText(At(14, 362, 85), u"1"));
    EXPECT_EQ(code(NewText(At(14, 361, 84), u"1"), 14), 1);
    EXPECT_EQ(code(NewText(At(5, 361, 84), u"1"), 5), 0);
}

} // namespace ZelmResult
