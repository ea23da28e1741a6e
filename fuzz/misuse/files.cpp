// Files before they are open, while they are, half there, and after their end.

#include "fuzz/misuse/rooms.h"
#include "zelmresult/quantities/grandeur.h"
#include "zelmresult/storage/mmio_file.h"

namespace ZelmResult::fuzz {

namespace {

class Misuse : public Room {
public:
    explicit Misuse(Odd& odd) : Room(odd) { m_disk.SetLimit(1U << 20U); }
    ~Misuse() { DeleteAll(m_file.ListeGrandeur()); }

    void Step()
    {
        m_chunk = m_parent = m_odd.pick<OMMCKINFO>({{}, {1, 2, 3, 4, OMMIO_DIRTY}, {~0U, ~0U, ~0U, ~0U, ~0U}, m_chunk});
        switch (m_odd.choice(8)) {
        case 0: Open(); break;
        case 1: Close(); break;
        case 2: m_disk[u"f"].resize(m_odd.choice(2) * m_disk[u"f"].size()); break; // under an open file
        default:
            const bool succeeded = m_odd.flag() ? Enclose() : Transfer();
            Require(m_isOpen || !succeeded, "nothing works on a file that isn't open");
        }
        Require((m_file.Position() == -1) == !m_isOpen, "a file has a position while it is open");
    }

private:
    static void DeleteAll(const std::vector<CGrandeurFichier*>& quantities)
    {
        for (const CGrandeurFichier* quantity : quantities) delete quantity;
    }
    void Open()
    {
        const std::vector<CGrandeurFichier*> before = m_file.ListeGrandeur();
        OMMIOINFO info{m_odd.number(), m_odd.pick<std::int32_t>({0, 0, 1, -1, INT32_MIN})};
        const bool hasInfo = m_odd.flag();
        const auto name = m_odd.pick<wstring>({u"f", u"f", u"none", u""});
        const bool writes = name == u"f" && m_odd.flag();
        if (!m_file.Open(name, hasInfo ? &info : nullptr, writes ? OMMIO_WRITE | OMMIO_CREATE : OMMIO_READ)) {
            m_isOpen = m_file.Position() != -1; // as before
            return;
        }
        m_isOpen = true;
        Require(name == u"f", "a file that isn't there doesn't open");
        Require(!hasInfo || info.lDiskOffset >= 0, "a file doesn't open before its beginning");
        Require(m_file.ListeGrandeur().empty(), "a file begins without quantities");
        DeleteAll(before);
    }
    void Close()
    {
        const CMmioFile copy = m_file;
        (void)m_file.Close();
        m_isOpen = false;
        Require(m_file.hFile() == nullptr, "a file that was closed has no backend");
        Require(copy.Position() == -1, "a copy of a file ends with it");
    }

    // Chunks: made, entered, left.
    bool Enclose()
    {
        const std::int16_t number = m_odd.shortNumber();
        const idn::Idn idn = m_odd.idn();
        switch (m_odd.choice(20)) {
        case 0: return m_file.CreateChunkRIFF(m_chunk);
        case 1: return m_file.CreateChunkUnite(m_chunk);
        case 2: return m_file.CreateChunkSysteme(m_chunk, number);
        case 3: return m_file.CreateChunkVectorRef(m_chunk, number);
        case 4: return m_file.CreateChunkModule(m_chunk, idn);
        case 5: return m_file.CreateChunkReglage(m_chunk, idn);
        case 6: return m_file.CreateChunk(m_chunk, m_odd.text());
        case 7: return m_file.ExitChunk(m_chunk);
        case 8: return m_file.EnterChunkRIFF(m_chunk);
        case 9: return m_file.EnterChunkComments(m_chunk);
        case 10: return m_file.EnterChunkSysteme(m_chunk, m_parent, number);
        case 11: return m_file.EnterChunkVectorRef(m_chunk, m_parent, number);
        case 12: return m_file.EnterChunkModule(m_chunk, m_parent, idn);
        case 13: return m_file.EnterChunkReglage(m_chunk, m_parent, idn);
        case 14: return m_file.EnterChunkSansParent(m_chunk, m_odd.word());
        case 15: return m_file.EnterChunkListSansParent(m_chunk, m_odd.word());
        case 16: return m_file.TopOfChunkSystem(m_chunk, number);
        case 17: return m_file.TopOfChunkUnite(m_chunk);
        case 18: return m_file.IsResultFile();
        default: return m_file.TopOfFile();
        }
    }
    // What chunks hold.
    bool Transfer()
    {
        const auto count = m_odd.pick({std::size_t{4}, SIZE_MAX, std::size_t{0x80000000}});
        std::array<std::uint32_t, 4> words{};
        wstring text = u"before";
        idn::Idn idn = m_odd.idn();
        std::uint16_t version = 7;
        OTime time(5);
        bool flag = true;
        CGrandeur* quantity = nullptr;
        switch (m_odd.choice(18)) {
        case 0: return m_file.mmioWrite_ulong(words.data(), count);
        case 1: return m_file.WriteCString(m_odd.text());
        case 2: return m_file.WriteGrandeur(nullptr);
        case 3: return m_file.WriteChunkVersion(version);
        case 4: return m_file.WriteChunkIDN(idn);
        case 5: return m_file.mmioRead_ulong(words.data(), count);
        case 6: return m_file.ReadCString(text);
        case 7: return m_file.mmioReadIDN(idn);
        case 8: return m_file.mmioRead_OTime(time);
        case 9: return m_file.mmioReadBool(flag);
        case 10: return m_file.ReadChunkVersion(m_parent, version);
        case 11: return m_file.ReadChunkVersionSansParent(version);
        case 12: return m_file.ReadChunkIDN(m_parent, idn);
        case 13: return m_file.ReadGrandeur(quantity);
        case 14: return m_file.mmioWriteIDN(idn);
        case 15:
            return m_file.mmioSeek(m_odd.number(), m_odd.pick({OMMIO_SEEK_CUR, OMMIO_SEEK_END, OMMIO_SEEK_FLAG(99)}));
        case 16: return m_file.RoomFor(UINT64_MAX, SIZE_MAX);
        default: m_file.LimitSearches(); return m_file.Charge(UINT64_MAX);
        }
    }

    OMMCKINFO m_chunk;
    OMMCKINFO m_parent;
    bool m_isOpen = false;
    test::MemoryDisk m_disk;
    CMmioFile m_file{false, m_disk.backend()};
};

} // namespace

void MisuseFiles(Odd& odd) { Run<Misuse>(odd); }

} // namespace ZelmResult::fuzz
