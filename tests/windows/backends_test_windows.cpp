#include "zelmresult/storage/mmio_windows.h"

#include "tests/builders/samples.h"
#include "zelmresult/storage/chunk_codes.h"
#include "zelmresult/storage/mmio_riff.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace ZelmResult {
namespace {

// The same scripts on the library's backend and on the services of Windows, which must answer alike. They differ in two
// things that the scripts avoid, headers that cross the end of what they are in and sizes that lead past the last
// position; docs/guides/windows.md lists all that differs.

constexpr std::uint32_t kWriteFlags = OMMIO_WRITE | OMMIO_CREATE | OMMIO_ALLOCBUF;
constexpr std::array<std::uint32_t, 4> kCodes{FourCC("AAAA"), FourCC("BBBB"), FourCC("aaaa"), FourCC("M 1 ")};

constexpr std::int32_t kMostByte = 0x7E; // so that no size in a file leads past the last position

class Chance {
public:
    explicit Chance(unsigned seed) : m_engine(seed) {}
    std::int32_t Of(std::int32_t least, std::int32_t most)
    {
        return std::uniform_int_distribution<std::int32_t>(least, most)(m_engine);
    }
    bool In(std::int32_t many) { return Of(1, many) == 1; }
    std::uint32_t Code() { return kCodes[static_cast<std::size_t>(Of(0, 3))]; }

private:
    std::mt19937 m_engine;
};

std::string ContentOf(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void Put(const std::filesystem::path& path, const std::string& bytes)
{
    std::ofstream(path, std::ios::binary).write(bytes.data(), std::ssize(bytes));
}

// Where the header of a chunk ends, its form type included.
std::int64_t EndOfHeader(const OMMCKINFO& chunk)
{
    return std::int64_t{chunk.dwDataOffset} + (chunk.ckid == kCodeRiff || chunk.ckid == kCodeList ? 4 : 0);
}

// The services take no long path, so files have short names and lie where the test runs.
void RemoveFiles()
{
    for (const char* name : {"own.bin", "theirs.bin", "document.bin"}) std::filesystem::remove(name);
}

// Both backends, each on a file of its own. Every operation is done on both, and fails the test where they differ.
class Backends : public ::testing::Test {
protected:
    ~Backends() override
    {
        CloseBoth();
        RemoveFiles();
    }
    void OpenBoth(std::uint32_t flags, std::int32_t buffer = 0)
    {
        OMMIOINFO info{buffer, 0};
        for (CMmio* one : Both())
            ASSERT_TRUE(one->ommioOpen(one == &own ? u"own.bin" : u"theirs.bin", buffer > 0 ? &info : nullptr, flags));
    }
    void ReadBoth()
    {
        OpenBoth(OMMIO_READ);
        m_size = static_cast<std::int64_t>(std::filesystem::file_size("own.bin"));
    }
    void CloseBoth()
    {
        own.ommioClose();
        theirs.ommioClose();
    }
    // What both give, which is compared, and where it leaves them.
    template <class Operation>
    auto Same(const char* what, Operation operation)
    {
        const auto expected = operation(static_cast<CMmio&>(theirs));
        EXPECT_EQ(operation(static_cast<CMmio&>(own)), expected) << what << ", step " << steps;
        ++steps;
        return expected;
    }
    std::int32_t Position()
    {
        return Same("position", [](CMmio& one) {
            OMMIOINFO info;
            const bool isKnown = one.ommioGetInfo(&info) == 0;
            const std::int32_t position = one.ommioSeek(0, OMMIO_SEEK_CUR);
            EXPECT_TRUE(isKnown && info.lDiskOffset == position) << info.lDiskOffset;
            return position;
        });
    }
    std::int32_t Seek(std::int32_t offset, OMMIO_SEEK_FLAG origin = OMMIO_SEEK_SET)
    {
        return Same("seek", [=](CMmio& one) { return one.ommioSeek(offset, origin); });
    }
    void Write(const std::string& bytes)
    {
        (void)Same("write",
                   [&](CMmio& one) { return one.ommioWrite(bytes.data(), static_cast<std::int32_t>(bytes.size())); });
    }
    std::string Read(std::int32_t count)
    {
        return Same("read", [=](CMmio& one) {
            std::string bytes(static_cast<std::size_t>(count), '\0');
            bytes.resize(static_cast<std::size_t>(std::max(one.ommioRead(bytes.data(), count), 0)));
            return bytes;
        });
    }
    // The record after a success, nothing after a failure.
    std::optional<OMMCKINFO> Create(std::uint32_t code, OMMIO_CREATE_CHUNK_FLAG flag)
    {
        return Same("create", [=](CMmio& one) -> std::optional<OMMCKINFO> {
            OMMCKINFO chunk;
            (flag == OMMIO_CREATECHUNK ? chunk.ckid : chunk.fccType) = code;
            if (one.ommioCreateChunk(&chunk, flag) != 0) return std::nullopt;
            return chunk;
        });
    }
    std::optional<OMMCKINFO> Ascend(const OMMCKINFO& chunk)
    {
        return Same("ascend", [=](CMmio& one) -> std::optional<OMMCKINFO> {
            OMMCKINFO left = chunk;
            if (one.ommioAscend(&left) != 0) return std::nullopt;
            return left;
        });
    }
    // A search that fails leaves the position open, so both go back to where they were.
    std::optional<OMMCKINFO> Descend(std::uint32_t code, OMMIO_DESCEND_FLAG flag, const OMMCKINFO* parent)
    {
        const std::int32_t from = Position();
        const auto found = Same("descend", [=, this](CMmio& one) -> std::optional<OMMCKINFO> {
            OMMCKINFO chunk;
            (flag == OMMIO_FINDRIFF || flag == OMMIO_FINDLIST ? chunk.fccType : chunk.ckid) = code;
            OMMCKINFO above = parent != nullptr ? *parent : OMMCKINFO();
            if (one.ommioDescend(&chunk, parent != nullptr ? &above : nullptr, flag) != 0) return std::nullopt;
            const std::int64_t end =
                parent != nullptr ? std::int64_t{parent->dwDataOffset} + parent->cksize : INT32_MAX;
            if (EndOfHeader(chunk) > std::min(end, m_size)) return std::nullopt; // only theirs finds it
            return chunk;
        });
        if (!found) (void)Seek(from);
        return found;
    }
    [[nodiscard]] std::array<CMmio*, 2> Both() { return {&own, &theirs}; }

    std::int64_t m_size = 0; // of the files when they were opened for reading
    CMmioRiff own;
    CMmioWindows theirs;
    std::int64_t steps = 0;
};

// Whether the position at its end is one.
bool IsInRange(const OMMCKINFO& chunk) { return std::int64_t{chunk.dwDataOffset} + chunk.cksize < INT32_MAX; }

std::string RandomBytes(Chance& chance, std::int32_t count)
{
    std::string bytes(static_cast<std::size_t>(count), '\0');
    for (char& byte : bytes) byte = static_cast<char>(chance.Of(0, kMostByte));
    return bytes;
}

class RandomScripts : public Backends {
protected:
    // Chunks in chunks, odd sizes among them; parts that are overwritten; some chunks are never left.
    void WriteTree(Chance& chance, std::int32_t buffer)
    {
        OpenBoth(kWriteFlags, buffer);
        m_end = 0;
        std::vector<OMMCKINFO> entered;
        for (int step = 0; step < 60 && !HasFailure(); ++step) {
            const std::int32_t choice = chance.Of(0, 9);
            if (choice < 3)
                Enter(chance, entered);
            else if (choice < 6)
                Write(RandomBytes(chance, chance.In(50) ? chance.Of(0, 200000) : chance.Of(0, 9)));
            else if (choice < 7)
                Overwrite(chance, entered);
            else
                Leave(entered);
            (void)Position();
        }
        while (!entered.empty() && !chance.In(4)) Leave(entered);
        CloseBoth();
        EXPECT_EQ(ContentOf("own.bin"), ContentOf("theirs.bin"));
    }

    void ReadTree(Chance& chance)
    {
        ReadBoth();
        const auto size = static_cast<std::int32_t>(m_size);
        std::vector<OMMCKINFO> entered;
        for (int step = 0; step < 60 && !HasFailure(); ++step) {
            const std::int32_t choice = chance.Of(0, 9);
            if (choice < 5)
                Search(chance, entered);
            else if (choice < 7)
                Leave(entered);
            else if (choice < 8)
                (void)Read(chance.Of(0, 40));
            else
                Jump(chance, size);
            (void)Position();
        }
        CloseBoth();
    }

private:
    void Enter(Chance& chance, std::vector<OMMCKINFO>& entered)
    {
        constexpr std::array flags{OMMIO_CREATECHUNK, OMMIO_CREATECHUNK, OMMIO_CREATERIFF, OMMIO_CREATELIST};
        if (const auto chunk = Create(chance.Code(), flags[static_cast<std::size_t>(chance.Of(0, 3))]))
            entered.push_back(*chunk);
    }
    void Leave(std::vector<OMMCKINFO>& entered)
    {
        if (entered.empty()) return;
        if (IsInRange(entered.back())) (void)Ascend(entered.back());
        entered.pop_back();
    }
    void Overwrite(Chance& chance, const std::vector<OMMCKINFO>& entered)
    {
        const std::int32_t from = Position();
        m_end = std::max(m_end, from);
        (void)Seek(chance.Of(0, m_end));
        Write(RandomBytes(chance, chance.Of(0, 9)));
        m_end = std::max(m_end, Position());
        if (!entered.empty() || chance.In(3)) (void)Seek(m_end);
    }
    void Search(Chance& chance, std::vector<OMMCKINFO>& entered)
    {
        constexpr std::array flags{OMMIO_FINDNEXT, OMMIO_FINDCHUNK, OMMIO_FINDRIFF, OMMIO_FINDLIST};
        const OMMCKINFO* parent = nullptr;
        if (!entered.empty() && !chance.In(3))
            parent =
                chance.In(4) ? &entered[static_cast<std::size_t>(chance.Of(0, 9)) % entered.size()] : &entered.back();
        if (const auto found = Descend(chance.Code(), flags[static_cast<std::size_t>(chance.Of(0, 3))], parent))
            entered.push_back(*found);
    }
    void Jump(Chance& chance, std::int32_t size)
    {
        switch (chance.Of(0, 2)) {
        case 0: (void)Seek(chance.Of(0, size + 10)); break;
        case 1: (void)Seek(chance.Of(-20, 20), OMMIO_SEEK_CUR); break;
        default: (void)Seek(0, OMMIO_SEEK_END); break;
        }
    }

    std::int32_t m_end = 0; // of what was written
};

// Some bytes become others, as in a damaged file; it may be cut too.
std::string Damaged(std::string bytes, Chance& chance)
{
    const auto size = static_cast<std::int32_t>(bytes.size());
    for (std::int32_t i = chance.Of(1, 6); i > 0 && size > 0; --i)
        bytes[static_cast<std::size_t>(chance.Of(0, size - 1))] = static_cast<char>(chance.Of(0, kMostByte));
    if (chance.In(3)) bytes.resize(static_cast<std::size_t>(chance.Of(0, size)));
    return bytes;
}

// A host may go on after an open that failed, with whatever counts.
TEST_F(Backends, CallsOutOfOrderFail)
{
    std::array<char, 4> bytes{};
    const auto fails = [&bytes](CMmio& one) {
        OMMCKINFO chunk{FourCC("AAAA"), 0, 0, 0, 0};
        OMMIOINFO info;
        return one.ommioSeek(0, OMMIO_SEEK_CUR) == -1 && one.ommioRead(bytes.data(), 4) == -1 &&
               one.ommioWrite(bytes.data(), 4) == -1 && one.ommioGetInfo(&info) != 0 && one.ommioAscend(&chunk) != 0 &&
               one.ommioDescend(&chunk, nullptr, OMMIO_FINDCHUNK) != 0 &&
               one.ommioCreateChunk(&chunk, OMMIO_CREATECHUNK) != 0;
    };
    EXPECT_TRUE(Same("closed", fails));
    OpenBoth(kWriteFlags);
    const auto refuses = [&bytes](CMmio& one) {
        return one.ommioWrite(bytes.data(), -1) == -1 && one.ommioRead(bytes.data(), -1) == -1;
    };
    EXPECT_TRUE(Same("counts below zero", refuses));
    CloseBoth();
    EXPECT_TRUE(Same("closed again", fails));
}

TEST_F(RandomScripts, WriteTheSameBytes)
{
    for (unsigned seed = 0; seed < 200 && !HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        Chance chance(seed);
        WriteTree(chance, chance.In(2) ? 1048576 : chance.Of(1, 600));
    }
    EXPECT_GE(steps, 10000);
}

TEST_F(RandomScripts, ReadTheSame)
{
    for (unsigned seed = 0; seed < 300 && !HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        Chance chance(seed);
        WriteTree(chance, 1048576);
        ReadTree(chance);
        const std::string damaged = Damaged(ContentOf("own.bin"), chance);
        Put("own.bin", damaged);
        Put("theirs.bin", damaged);
        ReadTree(chance);
    }
    EXPECT_GE(steps, 10000);
}

// ---- Whole documents ----

constexpr std::array kBackends{+[]() -> std::unique_ptr<CMmio> { return std::make_unique<CMmioRiff>(); },
                               +[]() -> std::unique_ptr<CMmio> { return std::make_unique<CMmioWindows>(); }};

std::string SavedBy(std::size_t backend, CZMXFFile& document)
{
    document.SetBackend(kBackends[backend]);
    EXPECT_TRUE(document.Save(u"document.bin"));
    EXPECT_THAT(test::Messages(document), ::testing::IsEmpty());
    return ContentOf("document.bin");
}

// What a document holds that was loaded from these bytes, and its messages.
std::string LoadedBy(std::size_t backend, const std::string& bytes)
{
    Put("document.bin", bytes);
    CZMXFFile document(true, false);
    document.NeedToRemoveEverything(true);
    document.SetBackend(kBackends[backend]);
    const bool isLoaded = document.Load(u"document.bin", ZMXFFileLoadScope());
    std::string found = (isLoaded ? "loaded " : "refused ") + test::Summary(document);
    for (const std::string& message : test::Messages(document)) found += '\n' + message;
    document.SetBackend(nullptr);
    const std::vector<char> again = test::SavedAnyway(document);
    return found + '\n' + std::string(again.begin(), again.end());
}

class Documents : public ::testing::Test {
protected:
    ~Documents() override { RemoveFiles(); }
};

TEST_F(Documents, AreSavedAlikeThreeTimes)
{
    CZMXFFile document(true, false);
    test::FillWhole(document);
    std::string former;
    for (int round = 0; round < 3; ++round) {
        const std::string own = SavedBy(0, document);
        EXPECT_EQ(own, SavedBy(1, document));
        EXPECT_TRUE(round == 0 || own == former) << round;
        former = own;
    }
}

TEST_F(Documents, AreLoadedAlike)
{
    Chance chance(1);
    for (const char* name : {"whole.zmxf", "whole_branches.zmxf", "whole_lxf.zmxf", "whole_references.zmxf"}) {
        const std::vector<char> stored = test::DataFile(name);
        const std::string whole(stored.begin(), stored.end());
        EXPECT_EQ(LoadedBy(0, whole), LoadedBy(1, whole)) << name;
        for (int i = 0; i < 100 && !::testing::Test::HasFailure(); ++i) {
            const std::string damaged = Damaged(whole, chance);
            EXPECT_EQ(LoadedBy(0, damaged), LoadedBy(1, damaged)) << name << ", " << i;
        }
    }
}

} // namespace
} // namespace ZelmResult
