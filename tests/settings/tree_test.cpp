// The tree of settings: its bytes, its versions, its look-ups, and what follows from its settings.

#include "tests/builders/record_check.h"
#include "tests/settings/setting_text.h"
#include "zelmresult/storage/chunk_codes.h"
#include "zelmresult/storage/nested_chunk.h"

#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ZelmResult {
namespace {

using namespace test;
using idn::Idn;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

Idn At(std::uint32_t module, std::uint32_t submodule = 0, std::uint32_t setting = 0)
{
    const idn::Submodule under = submodule == 0 ? idn::Submodule() : idn::Submodule(submodule, 1);
    return {idn::Analyzer(0), idn::Module(module, 1), under, idn::Setting(setting)};
}

template <class Setting>
Setting* New(const Idn& idn)
{
    auto* setting = new Setting;
    setting->info().SetIDN(idn);
    return setting;
}

CChaineData* NewText(const Idn& idn, const wstring& value)
{
    auto* text = New<CChaineData>(idn);
    text->setValue(value);
    return text;
}

CBooleenData* NewFlag(const Idn& idn, bool value)
{
    auto* flag = New<CBooleenData>(idn);
    flag->setValue(value);
    return flag;
}

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

// The settings of module 3, submodule 7.
Bytes SettingsOf3() { return Flag(11, true).append(Flag(12, false)); }
Bytes Module3(std::uint16_t version = 513, std::uint16_t submoduleVersion = 257)
{
    Bytes submodule = Bytes{}.versionChunk(submoduleVersion).text(u"sub");
    if (submoduleVersion >= 257) submodule.flag(true);
    Bytes module = Bytes{}.versionChunk(version).text(u"mod");
    if (version >= 513) module.flag(true);
    return Name(3).list("M3  ", module.append(Name(3, 7)).list("S7  ", submodule.append(SettingsOf3())));
}

// Reads a list "CONF" at the front of some bytes.
struct Read {
    CConfigData config;
    bool good = false;
    std::int32_t position = 0;
    bool isParentBack = false;
};

std::unique_ptr<Read> ReadTree(const Bytes& file)
{
    auto result = std::make_unique<Read>();
    (void)readFrom(file.data(), [&](CMmioFile& open) {
        OMMCKINFO chunk;
        if (!open.EnterChunkListSansParent(chunk, FourCC("CONF"))) return false;
        const NestedChunk current(open, chunk);
        result->good = result->config.Load(&open);
        result->position = open.Position();
        result->isParentBack = open.CurrentMmckinfo().dwDataOffset == chunk.dwDataOffset;
        return true;
    });
    return result;
}

bool Saves(const CConfigData& config)
{
    MemoryDisk disk;
    CMmioFile file(false, disk.backend());
    return file.Open(u"tree", nullptr, OMMIO_CREATE | OMMIO_WRITE) && config.Save(&file, false);
}

std::string Fetched(const Bytes& file, const Idn& idn)
{
    std::string text;
    (void)readFrom(file.data(), [&](CMmioFile& open) {
        OMMCKINFO system;
        if (!open.EnterChunkListSansParent(system, FourCC("SYS0"))) return false;
        const NestedChunk current(open, system);
        text = TextOf(CSysteme::GetReglage(&open, idn).get());
        EXPECT_EQ(open.CurrentMmckinfo().dwDataOffset, system.dwDataOffset);
        return true;
    });
    return text;
}

constexpr char kModule3[] = "0/3.1/0.0/0 mod 1\n  0/3.1/7.1/0 sub 1\n    11 3  0 1\n    12 3  0 0\n";

} // namespace

TEST(SettingsTree, IsStoredByteForByte)
{
    CConfigData config;
    config.setVersionTavide({10, 11, u"12"});
    config.AddReglage(NewFlag(At(3, 7, 11), true));
    config.AddReglage(NewFlag(At(3, 7, 12), true));
    config.AddReglage(NewFlag(At(3, 7, 12), false)); // in the place of the former
    config.AddReglage(config.GetReglage(At(3, 7, 11)));
    config.AddReglage(nullptr);
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
    deep->AddFRFInfo(info);
    deep->AddFRFInfo(info);

    const Bytes frf = Bytes{}.u32(1).u16(512).u32(6).idn(1, 2, 0).idn(65535, 65535, 65535);
    const Bytes value = Base().u16(256).text(u"v");
    const Bytes submodule = Bytes{}
                                .versionChunk(257)
                                .text(u"")
                                .flag(false)
                                .chunk("SETT", Bytes{}.u16(256).idnText(u"2/16.1/5.3/1000").u32(17))
                                .chunk({"\xE8\x03\0\0", 4}, value);
    const Bytes module = Bytes{}
                             .versionChunk(513)
                             .text(u"")
                             .chunk("WFRF", frf)
                             .chunk("IDNU", Bytes{}.idnText(u"2/16.1/5.3/0"))
                             .list({"\x05\0\x03\0", 4}, submodule);
    const Bytes stored = Bytes{}.list("CONF", Bytes{}
                                                  .versionChunk(1025)
                                                  .append(Module3())
                                                  .chunk("IDNU", Bytes{}.idnText(u"2/16.1/0.0/0"))
                                                  .list({"\x10\0\x01\0", 4}, module)
                                                  .chunk("CFVR", ApplicationVersion()));
    const auto save = [&](CMmioFile& file) { return config.Save(&file, false); };
    expectBytes(written(save), stored);
    EXPECT_THAT(dumpOf(save), HasSubstr("Version Tavide 10.11.12\n"));
    EXPECT_THAT(dumpOf(save), HasSubstr("Nombre de waterfall de FRF: 1\n"));
    expectBytes(written([&](CMmioFile& file) { return config.Save(&file, true); }),
                Bytes{}.list("CONF", Bytes{}.versionChunk(1025).append(Module3()).chunk("CFVR", ApplicationVersion())));
    expectBytes(written([](CMmioFile& file) { return CConfigData().Save(&file, false); }),
                Bytes{}.list("CONF", Bytes{}.versionChunk(1025).chunk("CFVR", Bytes{}.u32(0).u32(0).text(u""))));

    const auto read = ReadTree(stored);
    EXPECT_TRUE(read->good && read->isParentBack && read->config.IsDataVisibilityFilled());
    EXPECT_EQ(TextOf(read->config), TextOf(config));
    CConfigData copy(read->config);
    EXPECT_EQ(dynamic_cast<CDeepResultGeneratorData*>(copy.GetModule(odd)), nullptr) << "copies are plain modules";
    EXPECT_NE(copy.GetReglage(odd), nullptr);
    const auto copied = written([&](CMmioFile& file) { return copy.Save(&file, false); });
    EXPECT_NE(ReadTree(Bytes{}.raw({copied.data(), copied.size()}))->config.GetReglage(odd), nullptr);
    copy = config;
    EXPECT_EQ(copy.modules().size(), 4U) << "the assignment appends";
}

TEST(SettingsTree, IsReadAtEachVersion)
{
    const Bytes version = ApplicationVersion();
    const Bytes behind = Bytes{}.chunk("NEXT", Bytes{}.u32(1));
    const auto inside = [&](std::uint16_t v, const Bytes& rest) {
        return Bytes{}.list("CONF", Bytes{}.versionChunk(v).append(Module3()).append(rest)).append(behind);
    };
    const std::string known = std::string("10.11.12\n") + kModule3;
    const std::string unknown = std::string("0.0.\n") + kModule3;
    const struct {
        Bytes stored;
        std::string text;
        bool visibility;
    } rows[] = {
        {inside(255, {}), "0.0.\n", false},
        {inside(300, Bytes{}.chunk("CFVR", version)), unknown, false},
        {Bytes{}.list("CONF", Bytes{}.versionChunk(512).append(Module3())).append(version).append(behind), known,
         false},
        {inside(768, version), known, false},
        {inside(768, Bytes{}.u32(10).u32(11).text(u"")), std::string("10.11.\n") + kModule3, false},
        {inside(768, Bytes{}.u32(10).u32(11).text(u"").zeros(2)), std::string("10.11.\n") + kModule3, false}, // longer
        {inside(768, Bytes{}.code("JUNK").u32(10).u32(11).zeros(6).raw({"\xFF\xFE\xFF\0", 4})),
         std::string("10.11.\n") + kModule3, false}, // not what ends with the list: 18 bytes before its end
        {inside(1024, Bytes{}.chunk("CFVR", version)), known, false},
        {inside(1025, Bytes{}.chunk("CFVR", version)), known, true},
        {inside(1025, {}), unknown, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        const auto read = ReadTree(row.stored);
        EXPECT_TRUE(read->good && read->isParentBack);
        EXPECT_EQ(TextOf(read->config), row.text);
        EXPECT_EQ(read->config.IsDataVisibilityFilled(), row.visibility);
    }
    const auto bare = ReadTree(rows[2].stored);
    EXPECT_EQ(bare->position, static_cast<std::int32_t>(rows[2].stored.size() - behind.size()));

    // Modules and submodules without flags are visible, and those of no known version are empty.
    const auto tree = [](const Bytes& module) {
        return TextOf(ReadTree(Bytes{}.list("CONF", Bytes{}.versionChunk(1025).append(module)))->config);
    };
    EXPECT_EQ(tree(Module3(512, 256)), unknown);
    EXPECT_EQ(tree(Name(3).list("M3  ", Bytes{}.versionChunk(255).text(u"mod"))), "0.0.\n0/3.1/0.0/0  0\n");
    EXPECT_EQ(tree(Name(16).list("M16 ", Bytes{}.versionChunk(511).text(u"deep"))), "0.0.\n0/16.1/0.0/0 deep 0\n");
}

TEST(SettingsTree, KeepsWhatStandsBeforeAFailure)
{
    const auto tree = [](const Bytes& modules) {
        return ReadTree(Bytes{}.list("CONF", Bytes{}.versionChunk(1025).append(modules)));
    };
    const Bytes head = Bytes{}.versionChunk(257).text(u"").flag(true);
    const auto submodule = [&](const char* code, std::uint16_t number, std::uint32_t type) {
        return Name(4, number).list(
            code, Bytes(head).append(Key(4, number, 1, type)).chunk("R1  ", Base().u16(256).flag(true)));
    };
    const Bytes list = Bytes{}.versionChunk(513).text(u"").flag(true);
    const Bytes bad =
        Name(4).list("M4  ", Bytes(list).append(submodule("S1  ", 1, 3)).append(submodule("S2  ", 2, 33)));
    const auto read = tree(Module3().append(bad));
    EXPECT_TRUE(!read->good && read->isParentBack);
    EXPECT_EQ(TextOf(read->config), std::string("0.0.\n") + kModule3) << "the module being read is not added";
    EXPECT_FALSE(tree(Name(16).list("M16 ", Bytes{}.versionChunk(512).text(u"")))->good) << "no transfer functions";
    EXPECT_FALSE(
        tree(Name(16).list("M16 ", Bytes{}.versionChunk(512).text(u"").chunk("WFRF", Bytes{}.u32(0xFFFFFFFF))))->good);
    EXPECT_FALSE(tree(Name(3))->good) << "an identifier without its list";
    EXPECT_FALSE(ReadTree(Bytes{}.list("CONF", {}))->good);
}

TEST(SettingsTree, TablesNestAndLeaveWhatStandsBehindThem)
{
    const auto table = [](std::uint16_t number, const Bytes& children) {
        return Key(3, 7, number, 5)
            .chunk("R" + std::to_string(number) + " ", Base().u16(512).i32(1).i32(0).append(children));
    };
    const auto tree = [](const Bytes& settings) {
        const Bytes submodule = Bytes{}.versionChunk(257).text(u"").flag(false).append(settings);
        const Bytes module = Bytes{}.versionChunk(513).text(u"").flag(false).append(Name(3, 7)).list("S7  ", submodule);
        return ReadTree(Bytes{}.list("CONF", Bytes{}.versionChunk(1025).append(Name(3)).list("M3  ", module)));
    };
    const Bytes inner = table(21, Flag(11, true));
    const auto read = tree(table(20, Bytes(inner).append(Flag(12, false))).append(Flag(13, true)));
    ASSERT_TRUE(read->good);
    EXPECT_EQ(TextOf(read->config.GetReglage(At(3, 7, 20))), "5  0 1: {5  0 1: {3  0 1}} {3  0 0}");
    EXPECT_EQ(TextOf(read->config.GetReglage(At(3, 7, 13))), "3  0 1");
    const Bytes twelve = [] {
        Bytes flags;
        for (std::uint16_t i = 10; i < 22; ++i) flags.append(Flag(i, true));
        return flags;
    }();
    const auto former = tree(Key(3, 7, 20, 5).chunk("R20 ", Base().u16(256).append(twelve)));
    EXPECT_THAT(TextOf(former->config.GetReglage(At(3, 7, 20))), HasSubstr("5  0 4:12345678 {"));
    EXPECT_FALSE(tree(table(20, Key(3, 7, 1, 33)))->good) << "an unknown kind in a table";

    const auto nested = [&](int depth) {
        Bytes tables = Flag(11, true);
        for (int i = 0; i < depth; ++i) tables = table(20, tables);
        return tree(tables)->good;
    };
    EXPECT_TRUE(nested(64));
    EXPECT_FALSE(nested(65));
    CConfigData deep;
    deep.AddReglage(NewFlag(At(3, 7, 1), true));
    for (int tables = 0; tables < 66; ++tables) {
        EXPECT_EQ(Saves(deep), tables <= 64) << tables << ", which a load would refuse";
        auto* outer = New<CTableauData>(At(3, 7, 1));
        outer->AddReglage(deep.GetReglage(At(3, 7, 1))->GetCopy());
        deep.AddReglage(outer);
    }

    // What is read is what is written, children included.
    const auto again = [&](CMmioFile& file) { return read->config.Save(&file, false); };
    EXPECT_EQ(TextOf(ReadTree(Bytes{}.raw({written(again).data(), written(again).size()}))->config),
              TextOf(read->config));
}

// What could not be read back is not written.
TEST(SettingsTree, SettingsOfAForeignKindAreRefused)
{
    for (const std::uint32_t type : {0xFFFFFFFFU, 1U, 17U, 129U}) {
        CConfigData config;
        config.AddReglage(NewFlag(At(3, 7, 11), true));
        EXPECT_TRUE(Saves(config));
        config.GetReglage(At(3, 7, 11))->info().SetType(type);
        EXPECT_FALSE(Saves(config)) << type;
        EXPECT_FALSE(config.GetReglage(At(3, 7, 11))->HasKindOfItsClass());
    }
    EXPECT_TRUE(CChaineData().HasKindOfItsClass() && CSelectionSignalFileData().HasKindOfItsClass());
}

TEST(SettingsTree, OneSettingIsFetchedWithoutTheOthers)
{
    CConfigData config;
    config.AddReglage(NewFlag(At(3, 7, 11), true));
    config.AddReglage(NewFlag(At(3, 8, 11), true));
    config.AddReglage(NewText(At(16, 1, 2), u"deep"));
    config.AddReglage(NewText(At(5, 1, 1), u"last"));
    const auto list = written([&](CMmioFile& file) { return config.Save(&file, false); });
    const Bytes system = Bytes{}.list("SYS0", Bytes{}.chunk("JUNK", Bytes{}.u16(1)).raw({list.data(), list.size()}));
    EXPECT_EQ(Fetched(system, At(3, 8, 11)), "3  0 1");
    EXPECT_EQ(Fetched(system, At(16, 1, 2)), "17  0 deep");
    EXPECT_EQ(Fetched(system, At(5, 1, 1)), "17  0 last");
    for (const Idn& missing : {At(3, 7, 12), At(3, 9, 11), At(4, 7, 11), At(2000, 1, 1),
                               Idn(idn::Analyzer(1), idn::Module(3, 1), idn::Submodule(7, 1), idn::Setting(11))})
        EXPECT_EQ(Fetched(system, missing), "none");
    EXPECT_EQ(Fetched(Bytes{}.list("SYS0", Bytes{}.list("CONF", Bytes{}.versionChunk(512).append(Module3(512, 256)))),
                      At(3, 7, 12)),
              "3  0 0");
    EXPECT_EQ(
        Fetched(Bytes{}.list("SYS0", Bytes{}.list("CONF", Bytes{}.versionChunk(255).append(Module3()))), At(3, 7, 12)),
        "none");
    EXPECT_EQ(Fetched(Bytes{}.list("SYS0", {}), At(3, 7, 12)), "none");
}

TEST(SettingsTree, LookUpsIgnoreTheAnalyzer)
{
    CConfigData config;
    config.AddReglage(NewFlag(At(3, 365, 2), true));
    config.AddReglage(NewFlag(At(3, 366, 2), true));
    const Idn second(idn::Analyzer(0), idn::Module(3, 1), idn::Submodule(365, 2), idn::Setting(2));
    config.AddReglage(NewFlag(second, true));
    const Idn elsewhere(idn::Analyzer(9), idn::Module(3, 1), idn::Submodule(365, 2), idn::Setting(2));
    EXPECT_EQ(config.GetReglage(elsewhere), config.GetReglage(second));
    EXPECT_NE(config.GetReglage(second), config.GetReglage(At(3, 365, 2)));
    const auto kind = static_cast<idn::ESubmoduleCollection>(365);
    EXPECT_THAT(config.GetSubmoduleSet(At(3), kind),
                ElementsAre(At(3, 365), Idn::generateSubmoduleIdn({}, idn::Module(3, 1), idn::Submodule(365, 2))));
    EXPECT_TRUE(config.GetSubmoduleSet(At(4), kind).empty());
    EXPECT_TRUE(config.GetReglage(At(3, 367, 2)) == nullptr && config.GetReglage(At(4, 1, 1)) == nullptr);
    EXPECT_EQ(config.GetReglageOf<CChaineData>(second), nullptr) << "of another class";
}

TEST(SettingsTree, VersionsOfTheApplicationAreOrdered)
{
    const struct {
        VersionTavide mine;
        VersionTavide other;
        bool older;
        VersionTavide repaired;
    } rows[] = {
        {{10, 11, u"123"}, {10, 11, u"124"}, true, {10, 11, u"123"}},
        {{10, 11, u"124"}, {10, 11, u"123"}, false, {10, 11, u"124"}},
        {{10, 11, u"9"}, {10, 11, u"10"}, true, {10, 11, u"9"}},
        {{10, 11, u"99"}, {10, 11, u"abc"}, true, {10, 11, u"99"}},
        {{10, 11, u"abc"}, {10, 11, u"99"}, false, {10, 11, u"abc"}},
        {{10, 11, u"abc"}, {10, 11, u"abd"}, true, {10, 11, u"abc"}},
        {{10, 11, u""}, {10, 11, u"1"}, false, {10, 11, u""}},
        {{10, 11, u"99999999999999999999"},
         {10, 11, u"99999999999999999998"},
         false,
         {10, 11, u"99999999999999999999"}},
        {{1, 1, u"1"}, {10, 11, u"a"}, true, {10, 11, u""}},
        {{1, 1, u"2"}, {1, 11, u""}, true, {1, 10, u"2"}},
        {{1, 2, u""}, {1, 1, u""}, false, {1, 2, u""}},
        {{2, 0, u""}, {10, 0, u""}, true, {2, 0, u""}},
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
    EXPECT_EQ(config.ComputeInstanceID(At(10)), 0);
    config.AddReglage(NewFlag(At(10, 754, 412), true));
    EXPECT_EQ(config.ComputeInstanceID(At(10)), 0) << "without the first setting";
    config.AddReglage(NewText(At(10, 361, 84), u"1"));
    EXPECT_EQ(config.ComputeInstanceID(At(10)), 2049);
    config.AddReglage(NewText(At(10, 361, 84), u"01"));
    config.AddReglage(NewText(At(10, 362, 85), u"0"));
    config.AddReglage(NewFlag(At(10, 362, 391), true));
    EXPECT_EQ(config.ComputeInstanceID(At(10)), 2 + 1024 + 2048);
    config.AddReglage(NewText(At(10, 362, 85), u""));
    EXPECT_EQ(config.ComputeInstanceID(At(10)), 2 + 512 + 1024 + 2048);
    for (const std::uint32_t module : {5U, 14U}) {
        config.AddReglage(NewText(At(module, 361, 84), u"1"));
        config.AddReglage(NewText(At(module, 362, 85), u"1"));
    }
    EXPECT_EQ(config.ComputeInstanceID(At(14)), 1);
    EXPECT_EQ(config.ComputeInstanceID(At(5)), 0);
}

} // namespace ZelmResult
