// The stored form of quantities, and the quantities that a result file carries for all its readers.

#include "zelmresult/quantities/grandeur.h"
#include "zelmresult/quantities/translation.h"
#include "zelmresult/storage/chunk_codes.h"
#include "zelmresult/storage/record_io.h"
#include "zelmresult/support/text.h"

#include <algorithm>
#include <functional>
#include <memory>

namespace ZelmResult {

namespace {

constexpr std::uint32_t kNoQuantity = FourCC("9999");

void AddMessage(CMmioFile& file, const char* text, const CGrandeur& quantity)
{
    file.AddErrorMessage(
        FillPlaceholders(TranslateUserString("ErrorMessage", text), quantity.GetNomGrandeur(), file.FileName()));
}

// A mix of what CGrandeur::Compare looks at, but for the units of the list.
std::size_t ContentHash(const CGrandeur& quantity)
{
    const EquationDim& dim = *quantity.GetEqDim().GetEqDim();
    const std::string_view bytes(reinterpret_cast<const char*>(&dim), sizeof dim);
    std::size_t hash = quantity.GetTypeUFF();
    for (const std::size_t part :
         {std::hash<wstring>()(quantity.quantityKey()), std::hash<wstring>()(quantity.GetNomGrandeur()),
          std::hash<std::string_view>()(bytes)})
        hash = hash * 31 + part;
    return hash;
}

} // namespace

template <class Io, class Quantity>
bool CGrandeurMmioReaderWriter::fields(Io& io, Quantity& g)
{
    io.dump([] { return wstring(u"CGrandeur"); });
    if (!io.record(kRecordName, newest{256})) return io.ok();
    io.dump(
        [&] { return Concat(u"Key: ", g.m_quantityKey, u", Nom ", g.m_nomGrandeur, u" , Type UFF ", g.m_typeUFF); });
    io.text("quantityKey", g.m_quantityKey);
    io.text("NomGrandeur", g.m_nomGrandeur);
    io.u16("TypeUFF", g.m_typeUFF);
    if (!io.ok()) return false;
    if (!io.template block<CEquationDimMmioReaderWriter>("EqDim", g.m_eqDim)) {
        if constexpr (Io::reading)
            AddMessage(io.file(), "The dimension equation of magnitude %1 in file %2 could not be loaded.", g);
        if constexpr (Io::writing)
            AddMessage(io.file(), "The dimension equation of magnitude %1 in file %2 could not be saved.", g);
        return false;
    }
    if (g.m_uniteCourante == nullptr ||
        !io.template block<CUniteMmioReaderWriter>("UniteCourante", *g.m_uniteCourante)) {
        io.fail("UniteCourante");
        if constexpr (Io::reading) AddMessage(io.file(), "The unit of magnitude %1 in file %2 could not be loaded.", g);
        if constexpr (Io::writing) AddMessage(io.file(), "The unit of magnitude %1 in file %2 could not be saved.", g);
        return false;
    }
    io.dump([&] { return Concat(u"Operation: ", g.m_operationType, u" , Nombre de grandeur ", g.m_grandeurInvolved); });
    io.i32("OperationType", g.m_operationType);
    io.i32("GrandeurInvolved", g.m_grandeurInvolved);
    io.quantity("GrandeurLeft", g.m_grandeurLeft, only{"GrandeurInvolved above 0", g.m_grandeurInvolved > 0});
    io.quantity("GrandeurRight", g.m_grandeurRight, only{"GrandeurInvolved above 1", g.m_grandeurInvolved > 1});
    return io.ok();
}

bool CGrandeurMmioReaderWriter::Read(CMmioFile& file, CGrandeur& quantity) const
{
    RecordReader in(file);
    return fields(in, quantity);
}

bool CGrandeurMmioReaderWriter::Write(CMmioFile& file, const CGrandeur& quantity) const
{
    OMMCKINFO chunk;
    if (!file.CreateChunk(chunk, quantity.GetChunkId())) {
        AddMessage(file, "The chunk of magnitude %1 in file %2 could not be created", quantity);
        return false;
    }
    RecordWriter out(file);
    return fields(out, quantity) && file.ExitChunk(chunk);
}

void CGrandeurMmioReaderWriter::Outline(RecordOutline& out)
{
    CGrandeur quantity;
    CUnite unit;
    quantity.AjouteUniteDynamique(&unit);
    quantity.SetUniteCourante(&unit);
    (void)fields(out, quantity);
}

// ---- The quantities of a CMmioFile ----

CGrandeurFichier* CMmioFile::GetGrandeur(const wstring& fileName, std::uint32_t id)
{
    const auto alike = m_quantities.byOrigin.find(id);
    if (alike == m_quantities.byOrigin.end()) return nullptr;
    for (CGrandeurFichier* listed : alike->second) {
        if (!listed->CompareOrigine(fileName, id)) continue;
        listed->AddUser(1);
        return listed;
    }
    return nullptr;
}

CGrandeurFichier* CMmioFile::GetSameGrandeurInList(const CGrandeur& quantity)
{
    const auto alike = m_quantities.byContent.find(ContentHash(quantity));
    if (alike == m_quantities.byContent.end()) return nullptr;
    for (CGrandeurFichier* listed : alike->second)
        if (listed->Compare(&quantity) == 0) return listed;
    return nullptr;
}

CGrandeurFichier* CMmioFile::AddGrandeurFichier(CGrandeurFichier* quantity)
{
    CGrandeurFichier* listed = GetSameGrandeurInList(*quantity);
    if (listed == nullptr) {
        listed = quantity;
        m_quantities.list.push_back(quantity);
        m_quantities.byContent[ContentHash(*quantity)].push_back(quantity);
        m_quantities.byOrigin[quantity->GetChunkOrigine()].push_back(quantity);
    }
    listed->AddUser(1);
    return listed;
}

bool CMmioFile::WriteGrandeur(const CGrandeur* quantity)
{
    if (quantity == nullptr) return WriteChunk(kNoQuantity);
    if (m_quantities.unexpected == nullptr && m_quantities.stored && !m_quantities.stored->contains(quantity))
        m_quantities.unexpected = quantity;
    if (m_debug) AddStringToDebugFile(u"Chunk de la grandeur: " + quantity->GetNomGrandeur());
    return WriteChunk(quantity->GetChunkId());
}

bool CMmioFile::ReadGrandeur(CGrandeur*& quantity)
{
    std::uint32_t id = 0;
    if (!ReadChunk(id)) return false;
    if (id == kNoQuantity) {
        quantity = nullptr;
        return true;
    }
    CGrandeurFichier* listed = nullptr;
    if (const auto known = m_quantities.byCode.find(id); known != m_quantities.byCode.end()) {
        listed = known->second;
        listed->AddUser(1);
    } else {
        listed = GetGrandeur(m_fileName, id);
    }
    if (listed == nullptr) listed = FetchGrandeur(id);
    if (listed == nullptr) return false;
    quantity = listed;
    return true;
}

// Reads the chunk of a quantity wherever it stands and comes back.
CGrandeurFichier* CMmioFile::FetchGrandeur(std::uint32_t id)
{
    const std::int32_t position = Position();
    OMMCKINFO list;
    OMMCKINFO chunk;
    if (!TopOfChunkUnite(list) || !EnterChunk(chunk, list, id)) return nullptr;
    CGrandeurFichier* listed = ReadGrandeurChunk(id);
    return mmioSeek(position, OMMIO_SEEK_SET) ? listed : nullptr;
}

CGrandeurFichier* CMmioFile::ReadGrandeurChunk(std::uint32_t id)
{
    if (const auto known = m_quantities.byCode.find(id); known != m_quantities.byCode.end()) return known->second;
    auto& path = m_quantities.beingRead;
    if (path.size() > CGrandeurMmioReaderWriter::kDeepestOperand ||
        std::find(path.begin(), path.end(), id) != path.end()) {
        (void)Refuse(Refusal::Bound::Depth);
        return nullptr;
    }
    if (!RoomFor(1, sizeof(CGrandeurFichier) + sizeof(CUnite))) return nullptr;
    auto quantity = std::make_unique<CGrandeurFichier>(m_fileName, id);
    path.push_back(id);
    const bool read = CGrandeurMmioReaderWriter().Read(*this, *quantity);
    path.pop_back();
    if (!read) return nullptr;
    CGrandeurFichier* listed = AddGrandeurFichier(quantity.get());
    if (listed == quantity.get()) (void)quantity.release(); // the list has it now
    m_quantities.byCode.emplace(id, listed);
    return listed;
}

} // namespace ZelmResult
