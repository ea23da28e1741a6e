// The chunks of quantities, and references to them from anywhere in a file.

#include "tests/builders/failing_backend.h"
#include "tests/builders/record_check.h"
#include "zelmresult/quantities/grandeur.h"
#include "zelmresult/support/text.h"

#include <gtest/gtest.h>
#include <set>
#include <tuple>

namespace ZelmResult {
namespace {

using namespace test;

using Codes = std::vector<std::string>;
const wstring kPath = u"a%2b.zmx"; // a placeholder in a path is text like any other

// The data of a chunk: what all quantities here share, then the operands.
Bytes QuantityBytes(wstring_view key, const Codes& operands = {})
{
    Bytes bytes = Bytes{}.u16(256, "version").text(key, "key").text(u"Pressure %1", "name").u16(8, "UFF");
    bytes.u16(256, "dimension").raw(std::string(1, '\1') + std::string(9, '\x82'), "dimension");
    bytes.u16(256, "unit").f32s({2, 3, 4, 10}, "unit").text(u"Pascal", "unit name").text(u"Pa", "unit label");
    bytes.i32(-3, "operation").i32(static_cast<int>(operands.size()), "operands");
    for (const auto& operand : operands) bytes.code(operand, "operand");
    return bytes;
}

// A quantity that reads as if it had entered its chunk.
struct Quantity : CGrandeurFichier {
    Quantity() : CGrandeurFichier(u"", 0) { SetChunkId(0x33323130); } // "0123"
    bool Load(CMmioFile& file)
    {
        return file.mmioSeek(8, OMMIO_SEEK_SET) && CGrandeurMmioReaderWriter().Read(file, *this);
    }
};

TEST(QuantityRecord, SaysWhatItCouldNotDo)
{
    using Messages = std::vector<wstring>;
    MemoryDisk disk;
    disk.Put(kPath, Bytes{}.zeros(8).append(QuantityBytes(u"P")));
    std::set<Messages> all;
    Messages messages;
    bool succeeded = false;
    for (int n = 1; !succeeded; ++n) { // the n-th read and all later ones fail
        CallPlan plan{.kinds = CallPlan::Read, .failAt = n, .onwards = true};
        CMmioFile file(false, failingBackend(disk.backend(), plan));
        EXPECT_TRUE(file.Open(kPath, nullptr, OMMIO_READ));
        succeeded = Quantity().Load(file);
        EXPECT_EQ(succeeded, plan.calls < n);
        messages.clear();
        file.fetchErrors(messages, true);
        all.insert(messages);
    }
    EXPECT_EQ(all, (std::set<Messages>{
                       {},
                       {u"The dimension equation of magnitude Pressure %1 in file a%2b.zmx could not be loaded."},
                       {u"The unit of magnitude Pressure %1 in file a%2b.zmx could not be loaded."}}));

    CMmioFile file(false, MemoryDisk().backend());
    ASSERT_TRUE(file.Open(kPath, nullptr, OMMIO_WRITE | OMMIO_CREATE));
    CGrandeur withoutUnit;
    withoutUnit.SetNomGrandeur(u"%2");
    EXPECT_FALSE(CGrandeurMmioReaderWriter().Write(file, withoutUnit));
    file.fetchErrors(messages, true);
    EXPECT_EQ(messages, Messages{u"The unit of magnitude %2 in file a%2b.zmx could not be saved."});
}

std::string Code(int number) { return ToUtf8(ToDecimalPadded(number, 4)); }

// A file with quantities in chunks "0000", "0001" and so on, and references after them.
struct QuantityFile {
    using Chunks = std::vector<std::pair<wstring, Codes>>; // keys and operands

    QuantityFile(const Chunks& chunks, const Codes& references)
    {
        Bytes list = Bytes{}.versionChunk(256);
        int number = 0;
        for (const auto& [key, operands] : chunks) list.chunk(Code(number++), QuantityBytes(key, operands));
        Bytes bytes = Bytes{}.riff("ZMXF", Bytes{}.list("UNIT", list));
        const auto start = static_cast<std::int32_t>(bytes.size());
        for (const auto& reference : references) bytes.code(reference);
        disk.Put(kPath, bytes);
        EXPECT_TRUE(file.Open(kPath, nullptr, OMMIO_READ));
        EXPECT_TRUE(file.mmioSeek(start, OMMIO_SEEK_SET));
    }
    QuantityFile(const QuantityFile&) = delete;
    QuantityFile& operator=(const QuantityFile&) = delete;
    ~QuantityFile() // the quantities belong to the code that makes the file
    {
        for (const CGrandeurFichier* quantity : file.ListeGrandeur()) delete quantity;
    }

    CGrandeur* Next()
    {
        const std::int32_t after = file.Position() + 4;
        CGrandeur* quantity = nullptr;
        succeeded = file.ReadGrandeur(quantity);
        EXPECT_TRUE(!succeeded || file.Position() == after);
        return quantity;
    }
    [[nodiscard]] std::size_t Listed() const { return file.ListeGrandeur().size(); }

    MemoryDisk disk;
    CallPlan plan;
    CMmioFile file{false, failingBackend(disk.backend(), plan)};
    bool succeeded = false; // of the last one
};

int Users(const CGrandeur* quantity) { return dynamic_cast<const CGrandeurFichier*>(quantity)->GetUserNumber(); }

TEST(QuantityReference, ReadOnceAndCountedEachTime)
{
    QuantityFile file({{u"A", {}}, {u"B", {}}, {u"A", {}}}, {"0001", "9999", "0001", "0000", "0002", "0002", "0000"});
    constexpr std::uint32_t codeOfB = 0x31303030;
    CGrandeur* b = file.Next();
    EXPECT_EQ(b->quantityKey(), u"B");
    EXPECT_TRUE(dynamic_cast<CGrandeurFichier*>(b)->CompareOrigine(kPath, codeOfB));
    EXPECT_EQ(file.Next(), nullptr);
    EXPECT_EQ(file.Next(), b);
    EXPECT_EQ(Users(b), 2);
    CGrandeur* a = file.Next();
    for (int users = 1; users < 4; ++users) {
        EXPECT_EQ(Users(a), users);
        EXPECT_EQ(file.Next(), a) << "an equal quantity is the same one";
    }
    EXPECT_EQ(file.Listed(), 2U);
    EXPECT_EQ(file.file.GetSameGrandeurInList(CGrandeur()), nullptr);
    EXPECT_EQ(file.file.GetGrandeur(kPath, codeOfB), b);
    EXPECT_EQ(Users(b), 3);
    EXPECT_EQ(file.file.GetGrandeur(u"other", codeOfB), nullptr);
    CGrandeurFichier like(a);
    EXPECT_EQ(file.file.AddGrandeurFichier(&like), a) << "and the caller keeps its own";
    EXPECT_EQ(Users(a), 5);
    const auto former = file.file.ListeGrandeur();
    EXPECT_TRUE(file.file.Open(kPath, nullptr, OMMIO_READ));
    EXPECT_EQ(file.Listed(), 0U) << "each open begins without quantities";
    for (const CGrandeurFichier* quantity : former) delete quantity;
}

TEST(QuantityReference, WhatCannotBeReadIsAFailure)
{
    const auto chain = [](int length) {
        QuantityFile::Chunks chunks;
        for (int i = 1; i < length; ++i) chunks.push_back({ToDecimal(i), {Code(i)}});
        chunks.push_back({u"last", {}});
        return chunks;
    };
    const std::tuple<const char*, QuantityFile::Chunks, std::size_t> rows[] = {
        // operands that were whole stay listed
        {"no such chunk", {}, 0},
        {"its own operand", {{u"A", {"0000"}}}, 0},
        {"a missing operand", {{u"A", {"0001", "0002"}}, {u"B", {}}}, 1},
        {"a cycle of its operand", {{u"A", {"0001"}}, {u"B", {"9999", "0002"}}, {u"C", {"0001"}}}, 0},
        {"too deep", chain(66), 0},
        {"the deepest", chain(65), 65}};
    for (const auto& [what, chunks, listed] : rows) {
        QuantityFile file(chunks, {"0000"});
        (void)file.Next();
        EXPECT_EQ(file.succeeded, listed == 65) << what;
        EXPECT_EQ(file.Listed(), listed) << what;
    }

    bool succeeded = false;
    for (int n = 1; !succeeded; ++n) {
        QuantityFile file(chain(2), {"0000"});
        file.plan = {.kinds = CallPlan::Seek | CallPlan::Descend, .failAt = n};
        (void)file.Next();
        succeeded = file.succeeded;
        EXPECT_EQ(succeeded, file.plan.calls < n) << n;
    }
}

} // namespace
} // namespace ZelmResult
