// The chunks of quantities, and references to them from anywhere in a file.

#include "tests/builders/failing_backend.h"
#include "tests/builders/record_check.h"
#include "zelmresult/quantities/grandeur.h"
#include "zelmresult/support/text.h"

#include <gtest/gtest.h>
#include <set>

namespace ZelmResult {
namespace {

using namespace test;

using Codes = std::vector<std::string>;
const wstring kPath = u"a%2b.zmx"; // a placeholder in a path is text like any other

// The data of a chunk: what all quantities here share, then the operands.
Bytes QuantityBytes(wstring_view key, const Codes& operands = {}, int involved = -1)
{
    Bytes bytes = Bytes{}.u16(256, "version").text(key, "key").text(u"Pressure %1", "name").u16(8, "UFF");
    bytes.u16(256, "dimension").raw(std::string(1, '\1') + std::string(9, '\x82'), "dimension");
    bytes.u16(256, "unit").f32s({2, 3, 4, 10}, "unit").text(u"Pascal", "unit name").text(u"Pa", "unit label");
    bytes.i32(-3, "operation").i32(involved < 0 ? static_cast<int>(operands.size()) : involved, "operands");
    for (const auto& operand : operands) bytes.code(operand, "operand");
    return bytes;
}

// A quantity that reads as if it had entered its chunk.
struct Quantity : CGrandeurFichier {
    Quantity() : CGrandeurFichier(u"", 0) { SetChunkId(0x33323130); } // "0123"
    bool Save(CMmioFile& file) { return CGrandeurMmioReaderWriter().Write(file, *this); }
    bool Load(CMmioFile& file)
    {
        return file.mmioSeek(8, OMMIO_SEEK_SET) && CGrandeurMmioReaderWriter().Read(file, *this);
    }
};

// One with those fields.
struct Pressure : Quantity {
    Pressure()
    {
        SetQuantityKey(u"P"), SetNomGrandeur(u"Pressure %1"), SetTypeUFF(8), SetOperationType(-3);
        GetEqDim().SetEqDim(1, 130, 130, 130, 130, 130, 130, 130, 130, 130);
        CUnite& unit = *GetUniteCourante();
        unit.SetCoeffA(2), unit.SetCoeffB(3), unit.SetRef0dB(4), unit.SetCoefdB(10);
        unit.SetNomUnite(u"Pascal"), unit.SetLabelLinUnite(u"Pa");
    }
};

TEST(QuantityRecord, StoresItsOperands)
{
    Pressure pressure;
    CGrandeur left, right;
    left.SetChunkId(0x34333231), right.SetChunkId(0x35343332);
    left.SetNomGrandeur(u"Force");
    pressure.SetGrandeurLeft(&left), pressure.SetGrandeurRight(&right);
    const Codes operands[] = {{}, {"1234"}, {"1234", "2345"}, {"1234", "2345"}};
    for (int involved = 0; involved <= 3; ++involved) { // the number decides, whatever the pointers
        pressure.SetGrandeurInvolved(involved);
        expectBytes(written(pressure), Bytes{}.chunk("0123", QuantityBytes(u"P", operands[involved], involved)));
    }
    pressure.SetGrandeurInvolved(1);
    EXPECT_EQ(dumpOf(pressure),
              "ckid(33323130)\n------CGrandeur\n------Key: P, Nom Pressure %1 , Type UFF 8\n------CEquationDim\n"
              "------Enumeration: 1, Radians: 1,Steradians: 1, Meters: 1\n------Kilograms: 1, Seconds: 1,Amperes: 1\n"
              "------Kelvins: 1, Moles: 1,Candelas: 1\n------CUnite\n------Nom: Pascal,Label: Pa\n"
              "------Coef A: 2.000000, Coef B: 3.000000, Ref 0 dB: 4.000000, Coef dB: 10.000000\n"
              "------Operation: -3 , Nombre de grandeur 1\n------Chunk de la grandeur: Force\n Size : 00000066\n");
    for (const CGrandeur* given : {static_cast<const CGrandeur*>(nullptr), static_cast<const CGrandeur*>(&left)})
        expectBytes(written([given](CMmioFile& file) { return file.WriteGrandeur(given); }),
                    Bytes{}.code(given == nullptr ? "9999" : "1234"));
}

TEST(QuantityRecord, PassesTheChecksOfEveryRecord)
{
    Pressure pressure;
    pressure.SetGrandeurInvolved(2); // of none
    RecordCheck<Quantity> check{.name = "CGrandeur", .lowest = 0, .newest = 256, .silentReads = -1};
    check.expect = [&](Quantity& read, std::uint16_t version) {
        const CGrandeur fresh;
        EXPECT_EQ(read.Compare(version == 0 ? &fresh : &pressure), 0) << version;
        EXPECT_EQ(read.GetUniteCourante()->Compare(pressure.GetUniteCourante()) == 0, version != 0);
        EXPECT_EQ(read.GetOperationType(), version == 0 ? 0 : -3);
        EXPECT_EQ(read.GetGrandeurInvolved(), version == 0 ? 0 : 2);
        EXPECT_TRUE(read.GetLstUnit().empty());
    };
    checkRecord<Quantity>(pressure, check);
}

using Messages = std::vector<wstring>;

// What a call says when its n-th backend call of a kind and all later ones fail, for each n.
std::set<Messages> MessagesOf(CallPlan::Kind kind, const std::function<bool(CMmioFile&)>& call)
{
    std::set<Messages> all;
    for (int n = 1;; ++n) {
        MemoryDisk disk;
        disk.Put(kPath, Bytes{}.zeros(8).append(QuantityBytes(u"P")));
        CallPlan plan{.kinds = kind, .failAt = n, .onwards = true};
        CMmioFile file(false, failingBackend(disk.backend(), plan));
        EXPECT_TRUE(file.Open(kPath, nullptr, OMMIO_WRITE));
        const bool succeeded = call(file);
        Messages messages;
        file.fetchErrors(messages, true);
        if (plan.calls < n) return all;
        EXPECT_FALSE(succeeded) << n;
        all.insert(messages);
    }
}

TEST(QuantityRecord, SaysWhatItCouldNotDo)
{
    const auto about = [](const wstring& what, const wstring& how, const wstring& name = u"Pressure %1") {
        return Messages{Concat(u"The ", what, u" of magnitude ", name, u" in file a%2b.zmx could not be ", how)};
    };
    const auto save = [](CMmioFile& file) { return Pressure().Save(file); };
    const auto load = [](CMmioFile& file) { return Quantity().Load(file); };
    EXPECT_EQ(MessagesOf(CallPlan::Create, save), (std::set{about(u"chunk", u"created")}));
    EXPECT_EQ(MessagesOf(CallPlan::Write, save),
              (std::set{Messages{}, about(u"dimension equation", u"saved."), about(u"unit", u"saved.")}));
    EXPECT_EQ(MessagesOf(CallPlan::Read, load),
              (std::set{Messages{}, about(u"dimension equation", u"loaded."), about(u"unit", u"loaded.")}));

    CMmioFile file(false, MemoryDisk().backend());
    ASSERT_TRUE(file.Open(kPath, nullptr, OMMIO_WRITE | OMMIO_CREATE));
    CGrandeur withoutUnit;
    withoutUnit.SetNomGrandeur(u"%2");
    EXPECT_FALSE(CGrandeurMmioReaderWriter().Write(file, withoutUnit));
    Messages messages;
    file.fetchErrors(messages, true);
    EXPECT_EQ(messages, about(u"unit", u"saved.", u"%2"));
}

std::string Code(int number) { return ToUtf8(ToDecimalPadded(number, 4)); }

// A file with quantities in chunks "0000", "0001" and so on, and references behind them.
class QuantityFile {
public:
    using Chunks = std::vector<std::pair<wstring, Codes>>; // keys and operands

    QuantityFile(const Chunks& chunks, const Codes& references)
    {
        Bytes list = Bytes{}.versionChunk(256);
        int number = 0;
        for (const auto& [key, operands] : chunks) list.chunk(Code(number++), QuantityBytes(key, operands));
        Bytes bytes = Bytes{}.riff("ZMXF", Bytes{}.list("UNIT", list));
        m_start = static_cast<std::int32_t>(bytes.size());
        for (const auto& reference : references) bytes.code(reference);
        m_disk.Put(kPath, bytes);
        OpenWith(m_plan);
    }
    QuantityFile(const QuantityFile&) = delete;
    QuantityFile& operator=(const QuantityFile&) = delete;
    ~QuantityFile() { Forget(); }

    void OpenWith(CallPlan& plan)
    {
        Forget();
        file = CMmioFile(false, failingBackend(m_disk.backend(), plan));
        EXPECT_TRUE(file.Open(kPath, nullptr, OMMIO_READ) && file.mmioSeek(m_start, OMMIO_SEEK_SET));
    }
    CGrandeur* Next()
    {
        const std::int32_t behind = file.Position() + 4;
        CGrandeur* quantity = nullptr;
        EXPECT_TRUE(file.ReadGrandeur(quantity) && file.Position() == behind);
        return quantity;
    }
    bool NextSucceeds()
    {
        CGrandeur* quantity = nullptr;
        return file.ReadGrandeur(quantity);
    }
    [[nodiscard]] std::size_t Listed() const { return file.ListeGrandeur().size(); }

    CMmioFile file{false};

private:
    void Forget() // the quantities belong to whoever makes the file
    {
        for (const CGrandeurFichier* quantity : file.ListeGrandeur()) delete quantity;
    }

    MemoryDisk m_disk;
    CallPlan m_plan;
    std::int32_t m_start = 0;
};

int Users(const CGrandeur* quantity) { return dynamic_cast<const CGrandeurFichier*>(quantity)->GetUserNumber(); }

TEST(QuantityReference, ReadOnceAndCountedEachTime)
{
    QuantityFile file({{u"A", {}}, {u"B", {}}, {u"A", {}}}, {"0001", "9999", "0001", "0000", "0002", "0002", "0000"});
    constexpr std::uint32_t codeOfB = 0x31303030;
    CGrandeur* b = file.Next();
    EXPECT_TRUE(b->quantityKey() == u"B" && dynamic_cast<CGrandeurFichier*>(b)->CompareOrigine(kPath, codeOfB));
    EXPECT_EQ(file.Next(), nullptr);
    EXPECT_EQ(file.Next(), b);
    EXPECT_EQ(Users(b), 2);
    CGrandeur* a = file.Next();
    for (int users = 1; users < 4; ++users) {
        EXPECT_EQ(Users(a), users);
        EXPECT_EQ(file.Next(), a) << "an equal quantity is the same one";
    }
    EXPECT_EQ(file.Listed(), 2U);
    EXPECT_EQ(file.file.GetSameGrandeurInList(*a), a);
    EXPECT_EQ(file.file.GetSameGrandeurInList(CGrandeur()), nullptr);
    EXPECT_TRUE(file.file.GetGrandeur(kPath, codeOfB) == b && Users(b) == 3);
    EXPECT_EQ(file.file.GetGrandeur(u"other", codeOfB), nullptr);
    CGrandeurFichier like(a);
    EXPECT_TRUE(file.file.AddGrandeurFichier(&like) == a && Users(a) == 5) << "and the caller keeps its own";
}

TEST(QuantityReference, OperandsComeAlong)
{
    QuantityFile file({{u"AB", {"0001", "0002"}}, {u"A", {}}, {u"BA", {"0001"}}, {u"A", {"9999", "0001"}}},
                      {"0000", "0003", "0001"});
    const CGrandeur* ab = file.Next();
    const CGrandeur* ba = ab->GetGrandeurRight();
    CGrandeur* a = ab->GetGrandeurLeft();
    EXPECT_TRUE(a->quantityKey() == u"A" && ba->quantityKey() == u"BA");
    EXPECT_TRUE(ba->GetGrandeurLeft() == a && ba->GetGrandeurRight() == nullptr);
    EXPECT_EQ(Users(a), 2);
    EXPECT_EQ(file.Next(), a) << "equal but for its operands, one of which it is";
    EXPECT_EQ(Users(a), 4);
    EXPECT_EQ(file.Next(), a);
    EXPECT_EQ(file.Listed(), 3U);
}

TEST(QuantityReference, WhatCannotBeReadIsAFailure)
{
    const auto chain = [](int length) {
        QuantityFile::Chunks chunks;
        for (int i = 1; i < length; ++i) chunks.push_back({ToDecimal(i), {Code(i)}});
        chunks.push_back({u"last", {}});
        return chunks;
    };
    const struct {
        const char* what;
        QuantityFile::Chunks chunks;
        std::size_t listed; // operands that were whole stay
    } rows[] = {{"no such chunk", {}, 0},
                {"its own operand", {{u"A", {"0000"}}}, 0},
                {"a missing operand", {{u"A", {"0001", "0002"}}, {u"B", {}}}, 1},
                {"a cycle", {{u"A", {"0001"}}, {u"B", {"9999", "0002"}}, {u"C", {"0000"}}}, 0},
                {"a cycle of its operand", {{u"A", {"0001"}}, {u"B", {"0002"}}, {u"C", {"0001"}}}, 0},
                {"too deep", chain(65), 0},
                {"the deepest", chain(64), 64}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        QuantityFile file(row.chunks, {"0000"});
        EXPECT_EQ(file.NextSucceeds(), row.listed == 64);
        EXPECT_EQ(file.Listed(), row.listed);
    }

    CallPlan plan;
    QuantityFile file(chain(2), {"0000"});
    bool succeeded = false;
    for (int n = 1; !succeeded; ++n) {
        plan = {};
        file.OpenWith(plan);
        plan = {.kinds = CallPlan::Seek | CallPlan::Descend, .failAt = n};
        succeeded = file.NextSucceeds();
        EXPECT_EQ(succeeded, plan.calls < n) << n;
    }
}

} // namespace
} // namespace ZelmResult
